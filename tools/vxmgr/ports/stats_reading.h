// Reading the counters of an open port.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/ports/stats_fields.h"

namespace vxmgr {

// What is asked of a port: kinds of counters, of the port itself or of a remote port.
struct StatsQuestion {
    unsigned kinds = kLinkKind;
    std::optional<HX_SCSI_ADDRESS> remote;
};

// A group that chip or driver does not know stays empty; when there is no other, its status is
// returned. query: what failed.
HX_STATUS ReadCounters(uint32_t handle, const StatsQuestion& question, PortCounters* counters,
                       std::string* query);

}  // namespace vxmgr
