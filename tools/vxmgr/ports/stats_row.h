// Readings of a port's link counters.
#pragma once

#include <optional>

#include "common/invocation.h"
#include "hxstatistics.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

// port stats, as rows that keep coming.
tools::ExitCode PortStatsWatch(tools::Invocation& invocation);

// A reading taken now; null statistics: there is none. reset: whether the counters were reset since
// the reading before.
tools::Record StatsRow(const Port& port, const HX_STATISTICS* statistics,
                       std::optional<bool> reset);

}  // namespace vxmgr
