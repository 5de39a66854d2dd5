// The counters of a port as fields of its rows.
#pragma once

#include "vxmgr/ports/stats_counters.h"

namespace vxmgr {

enum StatsKind : unsigned {
    kLinkKind = 1,
    kTrafficKind = 2,
    kScmKind = 4,
    kPrivateKind = 8,
    kLatencyKind = 16,
    kAllKinds = 31,
};

// The counters of the link are among the row's own fields, the others in groups. shown: the kinds
// that people see, as text and as columns; a group that is not among them is null.
const Fields<PortCounters>& CounterFields(unsigned shown);

extern const Fields<HX_PORT_STATISTICS> kLinkFields;
extern const Fields<HX_PRIVATE_STATISTICS> kPrivateFields;
extern const Fields<HX_PRIVATE_STATISTICS_EX> kLatencyFields;

}  // namespace vxmgr
