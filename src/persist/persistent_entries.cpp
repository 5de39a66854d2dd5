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

HX_STATUS ListDevices(const StoreKind& kind, HX_WWN_LIST& list) {
    return WalkStores(kind, AnyPort, [&](const PortValues&, const Wwn& wwn) {
        AddUniqueName(list, wwn.data());
        return AfterPort::NextPort;
    });
}

template <class Wanted>
HX_STATUS ListTargets(const StoreKind& kind, Wanted wanted, HX_WWN_LIST& list) {
    HX_STATUS status = HXMGT_SUCCESS;
    const HX_STATUS walk = WalkStores(kind, wanted, [&](const PortValues& port, const Wwn&) {
        if (AddTargets(port, list)) {
            return AfterPort::NextPort;
        }
        status = HXMGT_PERSISTENT_STORAGE_ERROR;
        return AfterPort::NextService;
    });
    return status != HXMGT_SUCCESS ? status : walk;
}

struct Deletion {
    bool found = false;
    bool deleted = false;
    HX_STATUS walk = HXMGT_SUCCESS;
};

// Deletes the first port of that name in the walk.
Deletion DeleteDevice(const StoreKind& kind, const Wwn& wanted) {
    Deletion result;
    result.walk = WalkStores(kind, AnyPort, [&](const PortValues& port, const Wwn& wwn) {
        if (wwn != wanted) {
            return AfterPort::NextPort;
        }
        result.found = true;
        result.deleted = kind.layout == Layout::Subkeys ? port.DeleteKey() : DeleteValues(port);
        return AfterPort::End;
    });
    return result;
}

template <class Wanted>
HX_STATUS DeleteTargetFrom(const StoreKind& kind, Wanted wanted, const uint8_t* key) {
    HX_STATUS status = HXMGT_SUCCESS;
    const HX_STATUS walk = WalkStores(kind, wanted, [&](const PortValues& port, const Wwn&) {
        if (!DeleteTarget(port, key)) {
            status = HXMGT_PERSISTENT_STORAGE_ERROR;
        }
        return AfterPort::NextPort;
    });
    return status != HXMGT_SUCCESS ? status : walk;
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
