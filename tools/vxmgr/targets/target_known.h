// The targets that a port's driver knows.
#pragma once

#include "vxmgr/app/inventory.h"
#include "vxmgr/bindings/lunmask_luns.h"

namespace vxmgr {

// Of the role and state word.
inline constexpr uint32_t kTargetRole = 1;

struct KnownTarget {
    HX_DEVICE_RECORD record{};
    bool present = false;          // the driver reaches it now
    std::optional<uint32_t> luns;  // as the driver counts them
    // Where they were asked for, and told:
    std::optional<LunSet> masked = {};    // by the driver
    std::optional<LunSet> reported = {};  // by the target, to this host

    Wwn PortName() const { return Wwn::Of(record.portName); }
    Wwn NodeName() const { return Wwn::Of(record.nodeName); }
};

// Everything that the driver knows.
HX_STATUS ReadPortDatabase(uint32_t handle, std::vector<HX_DEVICE_RECORD>* devices);

// Other hosts are left out.
HX_STATUS ReadKnownTargets(const Port& port, uint32_t handle, std::vector<KnownTarget>* targets);

// Nothing for a driver below 7.05.03, which does not tell.
std::optional<bool> IsBound(const Port& port, const KnownTarget& target);

inline constexpr const char* kTargetRoles[] = {"target", "initiator", "target and initiator"};
const char* RoleText(uint32_t roleAndState);  // null: the driver gives no role

// LUNs that a mask of the port's driver covers.
uint32_t LunLimit(const Port& port);

HX_SCSI_ADDRESS AddressByPortName(const Wwn& target);

HX_STATUS ReadLiveMask(const Port& port, uint32_t handle, const Wwn& target, LunSet* masked);
HX_STATUS WriteLiveMask(uint32_t handle, const Wwn& target, const LunSet& masked);

}  // namespace vxmgr
