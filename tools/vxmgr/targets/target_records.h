// A port's targets as records: the same keys in the list and in detail.
#pragma once

#include "vxmgr/bindings/store_port.h"

namespace vxmgr {

tools::Value LunsValue(const LunSet& luns);  // null for none
tools::Value FlagOrNull(const std::optional<bool>& flag);

// The masked LUNs in the driver and in the store; nothing when there is no such mask.
std::optional<LunSet> LiveMaskOf(const PortTargets& targets, const KnownTarget& target);
std::optional<LunSet> StoredMaskOf(const PortTargets& targets, const tools::Wwn& target);

tools::Record TargetSummary(const PortTargets& targets, const KnownTarget& target);
tools::Record TargetDetail(const PortTargets& targets, const KnownTarget& target);
tools::Record FailedSummary(const Port& port);
tools::Record FailedDetail(const Port& port);

}  // namespace vxmgr
