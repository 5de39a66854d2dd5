// The walk over the ports in the stores of all driver services.
#pragma once

#include <windows.h>

#include <cstdint>
#include <iterator>
#include <string_view>

#include "frame/names.h"
#include "frame/owned.h"
#include "hxmgtapi.h"
#include "persist/port_values.h"
#include "persist/services.h"

namespace persist {

// Where the ports of a service are found: as subkeys of its parameters, or in the names of the
// values of one key.
struct StoreKind {
    Layout layout;
    const char* leaf;
};
inline constexpr StoreKind kSubkeyStores{Layout::Subkeys, ""};
inline constexpr StoreKind kDeviceStores{Layout::ValueNames, kDevice};
inline constexpr StoreKind kDeviceZeroStores{Layout::ValueNames, kDeviceZero};

enum class AfterPort { NextPort, NextService, End };

// What became of a port.
struct Step {
    AfterPort next;
    bool failed = false;
};

// A name of WWN form in a store.
struct FoundPort {
    const StoreKind& kind;
    const char* service;
    const char* name;

    // The port that it names; nothing for a malformed name.
    std::optional<Wwn> Port() const { return ParseWwn(name); }

    // The values of a port under the name that it has by rights.
    PortValues ValuesOf(const Wwn& wwn) const {
        frame::WwnText text;
        frame::WriteWwn(wwn.data(), text);
        return kind.layout == Layout::Subkeys ? PortValues::InSubkey(service, text)
                                              : PortValues::InValueNames(service, kind.leaf, text);
    }
    // The values that belong to the name found: those of the subkey, whatever its name; else those
    // of the port, nothing for a malformed name.
    std::optional<PortValues> Values() const {
        if (kind.layout == Layout::Subkeys) {
            return PortValues::InSubkey(service, name);
        }
        const std::optional<Wwn> wwn = Port();
        return wwn ? std::optional(ValuesOf(*wwn)) : std::nullopt;
    }
};

// One name of a key's subkeys or values.
class NameEnumeration {
  public:
    NameEnumeration(HKEY key, Layout layout) : key_(key), layout_(layout) {}
    // False at the end of the names and after a failure.
    bool Next() {
        DWORD length = sizeof name_;
        const LSTATUS error =
            layout_ == Layout::Subkeys
                ? RegEnumKeyExA(key_, index_, name_, &length, nullptr, nullptr, nullptr, nullptr)
                : RegEnumValueA(key_, index_, name_, &length, nullptr, nullptr, nullptr, nullptr);
        ++index_;
        failed_ = error != ERROR_SUCCESS && error != ERROR_NO_MORE_ITEMS;
        name_[error == ERROR_SUCCESS ? length : 0] = 0;
        return error == ERROR_SUCCESS;
    }
    bool Failed() const { return failed_; }
    const char* Name() const { return name_; }

  private:
    HKEY key_;
    Layout layout_;
    DWORD index_ = 0;
    bool failed_ = false;
    char name_[256] = {};
};

// Calls visit(found) -> Step for each name of WWN form that wanted(name) accepts; in the value-name
// layout once per value, so for one port several times. A failed step, and an enumeration that
// fails and then goes on as afterFailure says, make the result HXMGT_PERSISTENT_STORAGE_ERROR.
// Stores that do not open are passed over.
template <class Wanted, class Visitor>
HX_STATUS WalkStores(const StoreKind& kind, Wanted wanted, Visitor visit,
                     AfterPort afterFailure = AfterPort::NextService) {
    bool failed = false;
    for (const char* const service : kServices) {
        char path[kPathRoom];
        wsprintfA(path, "SYSTEM\\CurrentControlSet\\Services\\%s\\Parameters%s%s", service,
                  kind.leaf[0] != 0 ? "\\" : "", kind.leaf);
        frame::OwnedKey key;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, key.Receive()) !=
            ERROR_SUCCESS) {
            continue;
        }
        NameEnumeration names(key.Get(), kind.layout);
        AfterPort next = AfterPort::NextPort;
        while (next == AfterPort::NextPort && names.Next()) {
            const FoundPort found{kind, service, names.Name()};
            if (HasWwnForm(found.name) && wanted(std::string_view(found.name))) {
                const Step step = visit(found);
                failed |= step.failed;
                next = step.next;
            }
        }
        if (names.Failed()) {
            failed = true;
            next = afterFailure;
        }
        if (next == AfterPort::End) {
            break;
        }
    }
    return failed ? HXMGT_PERSISTENT_STORAGE_ERROR : HXMGT_SUCCESS;
}

}  // namespace persist
