// What a target itself says of its LUNs.
#pragma once

#include <optional>

#include "vxmgr/app/inventory.h"
#include "vxmgr/bindings/lunmask_luns.h"

namespace vxmgr {

// LUNs that the target of this port name reports to this host. HXMGT_BUILT_BY_API: it refuses to,
// and LUNs 0 to 7 were asked.
HX_STATUS ReadReportedLuns(const Port& port, uint32_t handle, const tools::Wwn& target,
                           LunSet* luns);

// The same, told: nothing, and a warning, when it does not answer.
std::optional<LunSet> ReportedLuns(tools::Invocation& invocation, const Port& port, uint32_t handle,
                                   const tools::Wwn& target);

}  // namespace vxmgr
