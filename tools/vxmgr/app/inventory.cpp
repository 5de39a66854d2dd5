#include "vxmgr/app/inventory.h"

#include <algorithm>
#include <iterator>
#include <mutex>

#include "common/console.h"
#include "vxmgr/app/port_reader.h"

namespace vxmgr {
namespace {

// The ports that may be worth asking.
struct Candidates {
    std::vector<Port> family;  // of the registry's family drivers, with their indexes
    std::vector<Port> others;  // of other drivers, or of none: most are no adapters of the family
    uint32_t familyPorts = 0;  // how many there are, asked or not: the others come behind them
};

Candidates ListCandidates(Invocation& invocation) {
    std::vector<HX_SCSI_PORT> listed(HX_MAX_SCSI_PORTS);
    uint32_t count = HX_MAX_SCSI_PORTS;
    invocation.Require(HXListScsiPorts(listed.data(), &count),
                       "the registry's list of SCSI ports cannot be read");
    listed.resize(count);
    Candidates candidates;
    auto next = listed.begin();
    for (uint32_t scsiPort = 0; scsiPort < HX_MAX_SCSI_PORTS; ++scsiPort) {
        Port port;
        port.scsiPort = scsiPort;
        bool family = false;
        if (next != listed.end() && next->scsiPort == scsiPort) {
            port.driverService = next->driver;
            family = next->familyDriver != 0;
            ++next;
        }
        // The indexes of the others are known when they have answered; no other port has these.
        port.index = family ? candidates.familyPorts++ : HX_MAX_SCSI_PORTS + scsiPort;
        (family ? candidates.family : candidates.others).push_back(std::move(port));
    }
    return candidates;
}

// What -p leaves to ask when it names one port by its place: a port of the family alone, or only
// those that are not.
void Narrow(const Selector& selector, Candidates* candidates) {
    const bool byIndex = selector.kind == SelectorKind::Index;
    if (!byIndex && selector.kind != SelectorKind::Scsi) {
        return;
    }
    std::erase_if(candidates->family, [&](const Port& port) {
        return selector.number != (byIndex ? port.index : *port.scsiPort);
    });
    if (!candidates->family.empty()) {
        candidates->others.clear();
    }
}

std::string SilenceText(const Port& port, const std::string& after) {
    return port.Name() + " is not answering" + after;
}

// Those of the ports that are of the family, or turn out to be. Most numbers without a driver
// belong to nobody, which is known at once: one thread asks them all.
using Found = std::vector<Port>;
PortQuestion<Found> QuestionTo(const std::string& name, std::vector<Port> ports, bool family,
                               const ReadingOptions& options) {
    return {name, [ports = std::move(ports), family, options](PortTask& task, Found& found) {
                for (Port port : ports) {
                    if (ReadPort(task, options, port) || family || IsOneOfUs(port)) {
                        found.push_back(std::move(port));
                    }
                    task.Answered();
                }
            }};
}

std::vector<Port> Read(Invocation& invocation, const Candidates& candidates) {
    const ReadingOptions options{TracePath(invocation), invocation.Given().Text("trace"),
                                 invocation.Verbose()};
    std::vector<PortQuestion<Found>> questions;
    for (const Port& port : candidates.family) {
        questions.push_back(QuestionTo(port.Name(), {port}, true, options));
    }
    std::vector<Port> unknown;
    for (const Port& port : candidates.others) {
        if (port.driverService.empty()) {
            unknown.push_back(port);
        } else {
            questions.push_back(
                QuestionTo("scsi:" + std::to_string(*port.scsiPort), {port}, false, options));
        }
    }
    if (!unknown.empty()) {
        questions.push_back(
            QuestionTo("SCSI ports without a driver", std::move(unknown), false, options));
    }
    std::vector<std::optional<Found>> answers = AskSideBySide(invocation, std::move(questions));

    std::vector<Port> read;
    std::vector<Port> others;
    for (size_t i = 0; i < answers.size(); ++i) {
        const bool family = i < candidates.family.size();
        if (answers[i]) {
            std::ranges::move(*answers[i], std::back_inserter(family ? read : others));
        } else if (family) {
            read.push_back(candidates.family[i]);
            DoesNotAnswer(invocation, &read.back());
        }
    }
    std::ranges::sort(others, {}, &Port::scsiPort);
    uint32_t index = candidates.familyPorts;
    for (Port& port : others) {
        port.index = index++;
        read.push_back(std::move(port));
    }
    for (Port& port : read) {
        if (!port.answers && port.failedQuery.empty()) {
            port.failedQuery = SilenceText(port, "");
        }
    }
    return read;
}

// What an InventoryMemory remembers.
struct Remembered {
    std::recursive_mutex lock;  // reading finds out which ports are silent
    bool active = false;
    uint64_t generation = 0;
    std::optional<std::vector<Port>> ports;
};

Remembered& Memory() {
    static Remembered memory;
    return memory;
}

// The ports as they were read first, where something remembers them. Two commands that run at a
// time read them once.
std::optional<std::vector<Port>> FromMemory(Invocation& invocation) {
    Remembered& memory = Memory();
    const std::lock_guard guard(memory.lock);
    if (memory.active && !memory.ports) {
        memory.ports = Read(invocation, ListCandidates(invocation));
    }
    return memory.active ? memory.ports : std::nullopt;
}

void RememberSilence(const Port& silent) {
    Remembered& memory = Memory();
    const std::lock_guard guard(memory.lock);
    if (!memory.ports) {
        return;
    }
    const auto known = std::ranges::find(*memory.ports, silent.index, &Port::index);
    if (known != memory.ports->end()) {
        known->answers = silent.answers;
        known->failure = silent.failure;
        known->failedQuery = silent.failedQuery;
    }
}

void WarnWhenNothingIsVisible(Invocation& invocation, const std::vector<Port>& ports) {
    if (ports.empty() && !console::IsElevated()) {
        invocation.Warn("no adapter is visible to this user",
                        "run the command from an elevated prompt");
    }
}

}  // namespace

std::string Port::Serial() const {
    if (!node || node->serialPresent == 0) {
        return {};
    }
    return FieldText(node->serialNumber, sizeof node->serialNumber);
}

std::string Port::Object() const {
    return "index:" + std::to_string(index);
}

std::string Port::Name() const {
    return "port " + std::to_string(index) +
           (scsiPort ? " (scsi:" + std::to_string(*scsiPort) + ")" : "");
}

HX_STATUS Port::Open(const std::string& tracePath, Device* device) const {
    if (!answers) {
        return failure;
    }
    return scsiPort ? device->Open(*scsiPort, Object(), tracePath)
                    : HX_STATUS{HXMGT_DEVICE_NOT_FOUND};
}

tools::Identity Port::Identity() const {
    tools::Identity identity;
    identity.index = index;
    identity.serial = Serial();
    if (scsiPort) {
        identity.scsiPorts.push_back(*scsiPort);
    }
    if (port) {
        identity.names.push_back(Wwn::Of(port->portName));
    }
    if (node) {
        identity.names.push_back(Wwn::Of(node->nodeName));
    }
    return identity;
}

tools::Identity Adapter::Identity() const {
    tools::Identity identity;
    identity.index = index;
    identity.serial = First().Serial();
    for (const Port* port : ports) {
        const tools::Identity own = port->Identity();
        identity.scsiPorts.insert(identity.scsiPorts.end(), own.scsiPorts.begin(),
                                  own.scsiPorts.end());
        identity.names.insert(identity.names.end(), own.names.begin(), own.names.end());
    }
    return identity;
}

const Port& Adapter::Speaker() const {
    for (const Port* port : ports) {
        if (port->answers) {
            return *port;
        }
    }
    return First();
}

std::string TracePath(Invocation& invocation) {
    return console::ToSystemCodePage(invocation.Given().Text("trace"));
}

void DoesNotAnswer(Invocation& invocation, Port* port) {
    port->answers = false;
    port->failure = HXMGT_TIMED_OUT;
    port->failedQuery =
        SilenceText(*port, " after " + std::to_string(AnswerTime(invocation).count()) + " s");
    RememberSilence(*port);
}

InventoryMemory::InventoryMemory() {
    const std::lock_guard guard(Memory().lock);
    Memory().active = true;
    ++Memory().generation;
}

InventoryMemory::~InventoryMemory() {
    const std::lock_guard guard(Memory().lock);
    Memory().active = false;
    Memory().ports.reset();
}

uint64_t InventoryGeneration() {
    const std::lock_guard guard(Memory().lock);
    return Memory().active ? Memory().generation : 0;
}

std::vector<Port> ReadPorts(Invocation& invocation) {
    const auto remembered = FromMemory(invocation);
    std::vector<Port> ports =
        remembered ? *remembered : Read(invocation, ListCandidates(invocation));
    WarnWhenNothingIsVisible(invocation, ports);
    return ports;
}

std::vector<Port> ReadSelectedPorts(Invocation& invocation) {
    if (const auto remembered = FromMemory(invocation)) {
        return *remembered;
    }
    Candidates candidates = ListCandidates(invocation);
    const auto selector = GivenSelector(invocation, "port");
    if (selector && !invocation.Given().Has("adapter")) {
        Narrow(*selector, &candidates);
    }
    std::vector<Port> ports = Read(invocation, candidates);
    WarnWhenNothingIsVisible(invocation, ports);
    return ports;
}

std::vector<Adapter> GroupAdapters(const std::vector<Port>& ports) {
    std::vector<Adapter> adapters;
    for (const Port& port : ports) {
        const std::string serial = port.Serial();
        Adapter* owner = nullptr;
        for (Adapter& adapter : adapters) {
            if (!serial.empty() && adapter.First().Serial() == serial) {
                owner = &adapter;
            }
        }
        if (owner == nullptr) {
            owner = &adapters.emplace_back();
            owner->index = static_cast<uint32_t>(adapters.size() - 1);
        }
        owner->ports.push_back(&port);
    }
    return adapters;
}

ExitCode ReportFailures(Invocation& invocation, const std::vector<const Port*>& ports) {
    size_t failures = 0;
    ExitCode first = ExitCode::Done;
    for (const Port* port : ports) {
        if (port->failure == HXMGT_SUCCESS) {
            continue;
        }
        const ExitCode exit = invocation.Report(port->failure, port->failedQuery, port->Object());
        first = failures++ == 0 ? exit : first;
    }
    return failures != 0 && failures < ports.size() ? ExitCode::Partial : first;
}

ExitCode ReportFailures(Invocation& invocation, const std::vector<Port*>& ports) {
    return ReportFailures(invocation, std::vector<const Port*>(ports.begin(), ports.end()));
}

}  // namespace vxmgr
