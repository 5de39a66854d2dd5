// The adapters and ports of this machine, as the library reports them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/invocation.h"
#include "common/selector.h"
#include "vxmgr/app/library.h"

namespace vxmgr {

// One port. A query that failed leaves its record empty; `failure` is the first status that says
// more than "not supported".
struct Port {
    uint32_t index = 0;
    std::optional<uint32_t> scsiPort;
    std::string driverService;  // empty: the registry names none
    uint32_t driverVersionCode = 0;
    HX_STATUS failure = HXMGT_SUCCESS;
    std::string failedQuery;

    std::optional<HX_NODE_PROPERTY> node;
    std::optional<HX_PORT_PROPERTY> port;
    bool hasSecondVersion = false;  // the port record's V2 fields hold
    std::optional<HX_CHIP_PROPERTY> chip;
    std::optional<HX_DRIVER_PROPERTY> driver;
    std::optional<HX_FIRMWARE_PROPERTY> firmware;
    std::optional<bool> disabled;
    std::optional<bool> smartSan;

    std::string Serial() const;  // empty: none, or not known
    bool IsCurrentGeneration() const { return driverVersionCode >= kCurrentDriver; }
    std::string Object() const;  // "index:2", for messages
    tools::Identity Identity() const;
};

// The ports that share a serial number. A port without one is an adapter of its own.
struct Adapter {
    uint32_t index = 0;
    std::vector<const Port*> ports;

    const Port& First() const { return *ports.front(); }
    tools::Identity Identity() const;
};

// Opens and reads every port. One that cannot be opened or read stays in the list.
std::vector<Port> ReadPorts(tools::Invocation& invocation);

std::vector<Adapter> GroupAdapters(const std::vector<Port>& ports);

// The trace file of --trace, for the library.
std::string TracePath(tools::Invocation& invocation);

// What -a and -p select, or everything when neither is given. Ends the command when a selection is
// wrong, matches nothing, or is bare text that matches more than one object.
std::vector<const Port*> SelectPorts(tools::Invocation& invocation, const std::vector<Port>& ports);
std::vector<const Adapter*> SelectAdapters(tools::Invocation& invocation,
                                           const std::vector<Adapter>& adapters);

// The positions of the identities that the option selects, all of them without it; ends the command
// likewise.
std::vector<size_t> SelectPositions(tools::Invocation& invocation, const char* option,
                                    const std::vector<tools::Identity>& identities);

// The one port of a command that changes something.
const Port& SelectOnePort(tools::Invocation& invocation, const std::vector<Port>& ports);

// Reports the failed ports as messages. The exit code of the whole: Partial when some failed, the
// first one's when all did.
tools::ExitCode ReportFailures(tools::Invocation& invocation,
                               const std::vector<const Port*>& ports);

}  // namespace vxmgr
