// reset, event, link, adapter set, port set.
#include "assignments.h"
#include "commands.h"
#include "model/event_codes.h"
#include "port_rows.h"
#include "running_driver.h"

namespace vxemu {
namespace {

constexpr const char* kUpDown[] = {"up", "down"};

struct EventRow {
    const char* name;
    uint32_t code;
};
constexpr EventRow kEvents[] = {
    {"lip", event_code::kLip},
    {"link-up", event_code::kLinkUp},
    {"link-down", event_code::kLinkDown},
    {"lip-reset", event_code::kLipReset},
    {"rscn", event_code::kRscn},
    {"port-update", event_code::kPortUpdate},
    {"test", event_code::kTest},
};

uint32_t RequireEventCode(Invocation& invocation, const std::string& kind) {
    std::string names;
    for (const EventRow& row : kEvents) {
        if (kind == row.name) {
            return row.code;
        }
        names += row.name + std::string(", ");
    }
    const auto code = ParseNumber(kind);
    if (!code || *code > 0xFFFFFFFF) {
        invocation.Fail(ExitCode::Usage, "\"" + kind + "\" is not a kind of event",
                        "give " + names + "or an event code such as 0x8016");
    }
    return static_cast<uint32_t>(*code);
}

struct Raised {
    uint32_t port;
    uint32_t code;
    bool queued;
};

const Fields<Raised> kRaisedFields = {
    {kPortNameFields, &Raised::port},
    {"code", "Event code", kText, [](const Raised& raised) { return Hex(raised.code, 4); }},
    {"queued", "Queued", kFlag, &Raised::queued},
};

struct Linked {
    uint32_t port;
    std::string state;
};

const Fields<Linked> kLinkFields = {
    {kPortNameFields, &Linked::port},
    {"link", "Link", Choice(kUpDown), &Linked::state},
};

ExitCode Set(Invocation& invocation, FieldScope scope) {
    const uint32_t port = RequirePort(invocation, invocation.Given().Text("PORT"));
    const std::vector<Assignment> assignments = RequireAssignments(invocation, scope);
    RunningDriver driver(invocation, true);
    Record result = kPortNameFields.Make(port);
    for (const Assignment& assignment : assignments) {
        if (!invocation.DryRun()) {
            driver.SendForCount(control::kSetField, FieldRequest{port, assignment.change},
                                PortName(port));
            invocation.Changed();
        }
        AddAssignment(assignment, result);
    }
    invocation.Result() = std::move(result);
    return ExitCode::Done;
}

ExitCode RunReset(Invocation& invocation) {
    const uint32_t port = RequirePort(invocation, invocation.Given().Text("PORT"));
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.Send(control::kPortReset, PortSelector{port}, PortName(port));
        invocation.Changed();
    }
    invocation.Result() = kPortNameFields.Make(port);
    return ExitCode::Done;
}

ExitCode RunEvent(Invocation& invocation) {
    const uint32_t port = RequirePort(invocation, invocation.Given().Text("PORT"));
    EventRequest request = {
        port, {RequireEventCode(invocation, invocation.Given().Text("KIND")), {0, 0, 0}}};
    size_t words = 0;
    for (const std::string& text : invocation.Given().All("data")) {
        const auto word = ParseNumber(text);
        if (!word || *word > 0xFFFFFFFF || words == 3) {
            invocation.Fail(ExitCode::Usage, "--data: at most three 32-bit numbers");
        }
        request.event.data[words++] = static_cast<uint32_t>(*word);
    }
    RunningDriver driver(invocation, true);
    bool queued = false;
    if (!invocation.DryRun()) {
        queued = driver.SendForCount(control::kRaiseEvent, request, PortName(port)) != 0;
        if (queued) {
            invocation.Changed();
        } else {
            invocation.Warn("nobody has event delivery of " + PortName(port) + " switched on",
                            "the event is gone: watch first, then raise it");
        }
    }
    invocation.Result() = kRaisedFields.Make({port, request.event.code, queued});
    return ExitCode::Done;
}

ExitCode RunLink(Invocation& invocation) {
    const uint32_t port = RequirePort(invocation, invocation.Given().Text("PORT"));
    const std::string state = invocation.Given().Text("STATE");
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.Send(control::kSetLink, LinkRequest{port, state == "up" ? 1u : 0u}, PortName(port));
        invocation.Changed();
    }
    invocation.Result() = kLinkFields.Make({port, state});
    return ExitCode::Done;
}

ExitCode RunAdapterSet(Invocation& invocation) {
    return Set(invocation, FieldScope::Adapter);
}

ExitCode RunPortSet(Invocation& invocation) {
    return Set(invocation, FieldScope::Port);
}

Shape PortShape() {
    return kPortNameFields.ShapeOfAll();
}

Shape AdapterSetShape() {
    return WithAssignments(PortShape(), FieldScope::Adapter);
}

Shape PortSetShape() {
    return WithAssignments(PortShape(), FieldScope::Port);
}

constexpr Argument kEvent[] = {
    kPortArgument,
    {.name = "KIND",
     .help =
         "lip, link-up, link-down, lip-reset, rscn, port-update, test or an event code (0x8016)",
     .required = true},
    {.name = "--data",
     .valueName = "WORD",
     .help = "a data word of the event, up to three times",
     .repeated = true},
};
constexpr Argument kLink[] = {
    kPortArgument,
    {.name = "STATE", .help = "up or down", .required = true, .choices = kUpDown},
};
constexpr Argument kSet[] = {
    kPortArgument,
    {.name = "ASSIGNMENT",
     .help = "NAME=VALUE, as in a profile file",
     .required = true,
     .repeated = true},
};

}  // namespace

CommandRows PortCommands() {
    static const Command kCommands[] = {
        {.path = "reset",
         .risk = Risk::Reversible,
         .help = "put a port back to its start: power, firmware, link and events",
         .arguments = {&kPortArgument, 1},
         .run = RunReset,
         .example = "reset scsi:3",
         .result = PortShape},
        {.path = "event",
         .risk = Risk::Reversible,
         .help = "raise an adapter event",
         .arguments = kEvent,
         .run = RunEvent,
         .example = "event scsi:3 rscn --data 0x010203",
         .result = ShapeOf<kRaisedFields>},
        {.path = "link",
         .risk = Risk::Reversible,
         .help = "take a port's link up or down",
         .arguments = kLink,
         .run = RunLink,
         .example = "link scsi:3 down",
         .result = ShapeOf<kLinkFields>},
        {.path = "adapter set",
         .risk = Risk::Reversible,
         .help = "change values of the adapter that has this port",
         .arguments = kSet,
         .run = RunAdapterSet,
         .example = "adapter set scsi:3 firmware_version=8.1.1",
         .result = AdapterSetShape},
        {.path = "port set",
         .risk = Risk::Reversible,
         .help = "change values of a port",
         .arguments = kSet,
         .run = RunPortSet,
         .example = "port set scsi:3 topology=public-loop",
         .result = PortSetShape},
    };
    return kCommands;
}

}  // namespace vxemu
