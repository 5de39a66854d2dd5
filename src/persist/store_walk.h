// The walk over the ports in the stores of all driver services.
#pragma once

#include <windows.h>

#include <cstdint>
#include <iterator>
#include <string_view>

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

// Calls visit(values, wwn) -> AfterPort for each name of WWN form that wanted(name) accepts; in the
// value-name layout once per value, so for one port several times. A malformed name or a failing
// enumeration ends the walk of its service and makes the result
// HXMGT_PERSISTENT_STORAGE_ERROR. Stores that do not open are passed over.
template <class Wanted, class Visitor>
HX_STATUS WalkStores(const StoreKind& kind, Wanted wanted, Visitor visit) {
    HX_STATUS status = HXMGT_SUCCESS;
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
        while (names.Next()) {
            const char* const name = names.Name();
            if (!HasWwnForm(name) || !wanted(std::string_view(name))) {
                continue;
            }
            const std::optional<Wwn> wwn = ParseWwn(name);
            if (!wwn.has_value()) {
                status = HXMGT_PERSISTENT_STORAGE_ERROR;
                break;
            }
            const AfterPort next = visit(kind.layout == Layout::Subkeys
                                             ? PortValues::InSubkey(service, name)
                                             : PortValues::InValueNames(service, kind.leaf, name),
                                         *wwn);
            if (next == AfterPort::End) {
                return status;
            }
            if (next == AfterPort::NextService) {
                break;
            }
        }
        if (names.Failed()) {
            status = HXMGT_PERSISTENT_STORAGE_ERROR;
        }
    }
    return status;
}

}  // namespace persist
