// Lists and deletes over the stores of every driver service, present adapters or not.
#include <algorithm>
#include <cstring>

#include "persist/persist.h"
#include "persist/port_blocks.h"
#include "persist/store_walk.h"

namespace persist {
namespace {

bool AnyPort(std::string_view) {
    return true;
}

// A port of the value-name layout counts for its targets only when it has LUN data: intended.
bool HasLunData(std::string_view name) {
    return name.find(value::kLunData) != std::string_view::npos;
}

bool IsWwnAlone(std::string_view name) {
    return name.size() == kWwnTextLength;
}

Wwn WwnOf(const uint8_t* name) {
    Wwn wwn;
    std::copy_n(name, wwn.size(), wwn.begin());
    return wwn;
}

// Both keys of the value-name layout; the second one's status is the result: intended.
template <class Scan>
HX_STATUS ScanBoth(Scan scan) {
    static_cast<void>(scan(kDeviceStores));
    return scan(kDeviceZeroStores);
}

// A malformed name ends the list in subkeys, and its service in value names.
HX_STATUS ListDevices(const StoreKind& kind, HX_WWN_LIST& list) {
    const AfterPort afterFailure =
        kind.layout == Layout::Subkeys ? AfterPort::End : AfterPort::NextService;
    const auto add = [&](const FoundPort& found) -> Step {
        const std::optional<Wwn> port = found.Port();
        if (!port) {
            return {afterFailure, true};
        }
        AddUniqueName(list, port->data());
        return {AfterPort::NextPort};
    };
    return WalkStores(kind, AnyPort, add, afterFailure);
}

template <class Wanted>
HX_STATUS ListTargets(const StoreKind& kind, Wanted wanted, HX_WWN_LIST& list) {
    return WalkStores(kind, wanted, [&](const FoundPort& found) -> Step {
        const std::optional<PortValues> values = found.Values();
        return found.Port() && values && AddTargets(*values, list)
                   ? Step{AfterPort::NextPort}
                   : Step{AfterPort::NextService, true};
    });
}

struct Deletion {
    bool found = false;
    bool deleted = false;
    HX_STATUS walk = HXMGT_SUCCESS;
};

// Deletes the first port of that name in the walk, under the name that it has by rights: what else
// begins with it is left, and counts as a deletion that fails. Malformed names are walked past.
Deletion DeleteDevice(const StoreKind& kind, const Wwn& wanted) {
    Deletion result;
    result.walk = WalkStores(kind, AnyPort, [&](const FoundPort& found) -> Step {
        const std::optional<Wwn> port = found.Port();
        if (port != wanted) {
            return {AfterPort::NextPort, !port};
        }
        const PortValues values = found.ValuesOf(wanted);
        result.found = true;
        result.deleted = kind.layout == Layout::Subkeys ? values.DeleteKey() : DeleteValues(values);
        return {AfterPort::End};
    });
    return result;
}

template <class Wanted>
HX_STATUS DeleteTargetFrom(const StoreKind& kind, Wanted wanted, const uint8_t* key) {
    return WalkStores(kind, wanted, [&](const FoundPort& found) -> Step {
        const std::optional<PortValues> values = found.Values();
        return values ? Step{AfterPort::NextPort, !DeleteTarget(*values, key)}
                      : Step{AfterPort::NextService, true};
    });
}

}  // namespace

HX_STATUS GetDeviceList(HX_WWN_LIST* list) {
    if (list == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    std::memset(list, 0, sizeof *list);
    if (const HX_STATUS status = ListDevices(kSubkeyStores, *list); status != HXMGT_SUCCESS) {
        return status;
    }
    return ScanBoth([&](const StoreKind& kind) { return ListDevices(kind, *list); });
}

HX_STATUS GetTargetList(HX_WWN_LIST* list) {
    if (list == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    std::memset(list, 0, sizeof *list);
    if (const HX_STATUS status = ListTargets(kSubkeyStores, AnyPort, *list);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return ScanBoth([&](const StoreKind& kind) { return ListTargets(kind, HasLunData, *list); });
}

HX_STATUS DeleteDeviceEntry(const uint8_t* portName) {
    if (portName == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    const Wwn wanted = WwnOf(portName);
    if (const Deletion key = DeleteDevice(kSubkeyStores, wanted); key.found && !key.deleted) {
        return HXMGT_PERSISTENT_STORAGE_ERROR;
    }
    DeleteDevice(kDeviceStores, wanted);
    // Here, too, the second key alone decides; a name that is stored nowhere is no error: intended.
    const Deletion last = DeleteDevice(kDeviceZeroStores, wanted);
    const bool failed = last.found ? !last.deleted : last.walk != HXMGT_SUCCESS;
    return failed ? HXMGT_PERSISTENT_STORAGE_ERROR : HXMGT_SUCCESS;
}

HX_STATUS DeleteTargetEntry(const uint8_t* targetName) {
    if (targetName == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (const HX_STATUS status = DeleteTargetFrom(kSubkeyStores, IsWwnAlone, targetName);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return ScanBoth(
        [&](const StoreKind& kind) { return DeleteTargetFrom(kind, HasLunData, targetName); });
}

}  // namespace persist
