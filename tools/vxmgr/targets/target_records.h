// The LUNs of a target: those that it reports, and those that are masked.
#pragma once

#include <functional>

#include "vxmgr/bindings/store_port.h"

namespace vxmgr {

Value LunsValue(const LunSet& luns);  // "none" for people when there are none

// The masked LUNs; nothing when there is no such mask.
std::optional<LunSet> LiveMaskOf(const PortTargets& targets, const KnownTarget& target);
std::optional<LunSet> StoredMaskOf(const PortTargets& targets, const Wwn& target);

// LUNs that the target of this port name reports to this host. What there is to say besides is
// told: that it refuses to list them, or does not answer (then the status says why).
using TellMessage = std::function<void(Message message)>;
HX_STATUS ReadReportedLuns(const TellMessage& tell, const Port& port, uint32_t handle,
                           const Wwn& target, LunSet* luns);

}  // namespace vxmgr
