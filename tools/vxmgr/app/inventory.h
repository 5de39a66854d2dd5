// The adapters and ports of this machine, as the library reports them.
#pragma once

#include "common/selector.h"
#include "vxmgr/app/library.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// One port. A query that failed leaves its record empty; `failure` is the first status that says
// more than "not supported". A port that did not answer at all has nothing else.
struct Port {
    uint32_t index = 0;
    std::optional<uint32_t> scsiPort;
    std::string driverService;  // empty: the registry names none
    uint32_t driverVersionCode = 0;
    bool answers = true;
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
    std::string Name() const;    // "port 2 (scsi:6)", for people
    tools::Identity Identity() const;

    // The failure at once when the port did not answer before: nobody waits for it twice.
    HX_STATUS Open(const std::string& tracePath, Device* device) const;
};

// The ports that share a serial number. A port without one is an adapter of its own.
struct Adapter {
    uint32_t index = 0;
    std::vector<const Port*> ports;

    const Port& First() const { return *ports.front(); }
    const Port& Speaker() const;  // the first port that answers, or else the first
    tools::Identity Identity() const;
};

// Opens and reads every port: those that the registry gives to a driver of the family, in the order
// of their SCSI ports, then every other that answers as one of the family. A port of the registry
// that cannot be opened or read keeps its row and with it its index.
std::vector<Port> ReadPorts(Invocation& invocation);

// The same for commands about ports: with `-p index:N` or `-p scsi:N` nothing else is touched, and
// that port alone is in the list.
std::vector<Port> ReadSelectedPorts(Invocation& invocation);

// While it lives, the ports are read once, and one that did not answer is waited for once: for a
// command that runs others inside it, in a moment when nothing changes. One at a time.
class InventoryMemory {
  public:
    InventoryMemory();
    ~InventoryMemory();
    InventoryMemory(const InventoryMemory&) = delete;
    InventoryMemory& operator=(const InventoryMemory&) = delete;
};

// Tells an InventoryMemory that lives from others; 0: none does.
uint64_t InventoryGeneration();

// Marks a port that did not answer in time.
void DoesNotAnswer(Invocation& invocation, Port* port);

std::vector<Adapter> GroupAdapters(const std::vector<Port>& ports);

// The trace file of --trace, for the library.
std::string TracePath(Invocation& invocation);

// What the option says; none when it is not given. Ends the command when it is wrong.
std::optional<Selector> GivenSelector(Invocation& invocation, const char* option);

// What -a and -p select, or everything when neither is given. Ends the command when a selection is
// wrong, matches nothing, is bare text that matches more than one object, or is the number of an
// adapter that is not certain because a port before it does not answer.
std::vector<const Port*> SelectPorts(Invocation& invocation, const std::vector<Port>& ports);
std::vector<Port*> SelectPorts(Invocation& invocation, std::vector<Port>& ports);
std::vector<const Adapter*> SelectAdapters(Invocation& invocation,
                                           const std::vector<Adapter>& adapters);

// Has `listen` hear of each adapter that a command selects, once: so that rooms can speak up that
// this one does not know. For main.
using SelectionListener = void (*)(Invocation& invocation, const std::string& serial);
void WhenSelected(SelectionListener listen);

// The positions of the identities that the option selects, all of them without it; ends the command
// likewise.
std::vector<size_t> SelectPositions(Invocation& invocation, const char* option,
                                    const std::vector<Identity>& identities);

// The one port of a command that changes something.
const Port& SelectOnePort(Invocation& invocation, const std::vector<Port>& ports);

// Reports the failed ports as messages. The exit code of the whole: Partial when some failed, the
// first one's when all did.
ExitCode ReportFailures(Invocation& invocation, const std::vector<const Port*>& ports);
ExitCode ReportFailures(Invocation& invocation, const std::vector<Port*>& ports);

}  // namespace vxmgr
