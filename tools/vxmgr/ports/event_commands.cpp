// event watch, event test.
#include <algorithm>
#include <memory>

#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"
#include "vxmgr/ports/event_delivery.h"
#include "vxmgr/ports/event_kinds.h"

namespace vxmgr {
namespace {

constexpr Argument kWatchArguments[] = {
    {.name = "--kind",
     .valueName = "K",
     .help = "only events of this kind; may be repeated",
     .repeated = true,
     .choices = kEventNames},
    NumberOption("--count", "N", "end after N events", 1),
    kForArgument,
};

struct PortEvent {
    const Port* port;
    HX_EVENT event;

    std::string Kind() const { return EventName(event); }
    std::string Meaning() const { return EventMeaning(event); }

    template <size_t word>
    uint32_t Data() const {
        return event.data[word];
    }
};

const Fields<PortEvent> kEventFields = {
    TimeField<PortEvent>("UTC, when the event was fetched"),
    {PortKeys(kPortIndex | kAdapterSerial | kOldSerialKey), &PortEvent::port},
    {"kind", "Kind", "KIND", kText, &PortEvent::Kind, "", 11},
    {"meaning", "Meaning", "MEANING", kText, &PortEvent::Meaning},
    {"type", "Type", kInteger, [](const PortEvent& one) { return one.event.type; }},
    {"data0", "Data 0", Hexadecimal(8), &PortEvent::Data<0>},
    {"data1", "Data 1", Hexadecimal(8), &PortEvent::Data<1>},
    {"data2", "Data 2", Hexadecimal(8), &PortEvent::Data<2>},
};

const auto kEventList = ListOf("events", "Events", kEventFields);

// Those of the port's events that --kind wants: all without it.
auto EventsOf(const Port& port, std::shared_ptr<Delivery> delivery,
              std::vector<std::string> kinds) {
    return [port, delivery = std::move(delivery), kinds = std::move(kinds)](PortTask& task,
                                                                            WatchTurn& turn) {
        HX_EVENT events[kEventsPerRead];
        uint32_t count = 0;
        task.Answered(kFetchTime);
        turn.status = delivery->Read(events, &count);
        turn.query = FailedFetch(turn.status);
        for (uint32_t i = 0; i < count; ++i) {
            const PortEvent event{&port, events[i]};
            if (kinds.empty() || std::ranges::find(kinds, event.Kind()) != kinds.end()) {
                turn.rows.push_back(kEventFields.Make(event));
            }
        }
        if (count >= kFullRead) {
            task.Tell({Severity::Warning, kEventsLost, {}, port.Object(), {}});
        }
    };
}

ExitCode EventWatch(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
    }
    const auto all = std::make_shared<AllDeliveries>();
    const AskPort<std::shared_ptr<Delivery>> enable = [all](PortVisit& visit, auto* made) {
        visit.query = "events cannot be enabled";
        *made = std::make_shared<Delivery>(std::make_shared<Device>(std::move(visit.device)));
        all->Add(*made);
        const HX_STATUS status = (*made)->Enable();
        try {
            visit.task.Answered();
        } catch (...) {
            (*made)->Disable();  // nobody waits for it any more
            throw;
        }
        return status;
    };
    const bool chosen = invocation.Given().Has("port") || invocation.Given().Has("adapter");
    std::vector<bool> answered;
    for (const Port* port : selected) {
        answered.push_back(port->answers);
    }
    std::vector<const Port*> counted;
    std::vector<WatchedPort> watched;
    const AbandonHooks::Registration cleanUp(invocation.Hooks(), [all] { all->Disable(); });
    auto answers = ForEachPort(invocation, selected, enable);
    for (size_t i = 0; i < answers.size(); ++i) {
        auto& [port, status, query, delivery] = answers[i];
        if (status == HXMGT_NOT_SUPPORTED && !chosen) {
            invocation.Note("port " + std::to_string(port->index) +
                            " is left out: its driver delivers no events");
            continue;
        }
        // The first enabling of a port counts the adapters at the ports before it, and waits for
        // each of them that does not answer.
        const bool fellSilent = answered[i] && !port->answers;
        port->failure = status;
        port->failedQuery = !fellSilent ? query
                                        : "events cannot be enabled: " + port->Name() +
                                              " or a port in front of it is not answering";
        counted.push_back(port);
        if (status == HXMGT_SUCCESS) {
            watched.push_back(
                {*port, EventsOf(*port, std::move(delivery), invocation.Given().All("kind"))});
        }
    }
    const ExitCode exit = ReportFailures(invocation, counted);
    return WatchPorts(invocation,
                      {.what = "port",
                       .interval = std::chrono::milliseconds(250),
                       .rows = invocation.Given().Number("count").value_or(UINT64_MAX)},
                      std::move(watched), exit);
}

struct Raised {
    Port port;
    bool raised;
};

const Fields<Raised> kRaisedFields = {
    {PortKeys(kPortIndex | kAdapterSerial | kOldSerialKey), &Raised::port},
    {"raised", "Test event raised", kFlag, &Raised::raised},
};

ExitCode EventTest(Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const Port& port = SelectOnePort(invocation, ports);
    const bool dry = invocation.DryRun();
    if (dry) {
        invocation.Note("dry run: no event was raised");
    } else {
        Device device;
        HX_STATUS status = port.Open(TracePath(invocation), &device);
        if (status == HXMGT_SUCCESS) {
            status = HXForceZetaAEN(static_cast<int32_t>(device.Handle()));
        }
        invocation.Require(status, "the test event was not raised", port.Object());
    }
    invocation.Result() = kRaisedFields.Make({port, !dry});
    return ExitCode::Done;
}

}  // namespace

CommandRows EventCommands() {
    static const Command kCommands[] = {
        {.path = "event watch",
         .help = "print events as they come",
         .arguments = kWatchArguments,
         .run = EventWatch,
         .example = "event watch --count 2",
         .result = ShapeOf<kEventList>},
        {.path = "event test",
         .risk = Risk::Reversible,
         .help = "have an adapter report a test event",
         .run = EventTest,
         .example = "event test -p scsi:3",
         .result = ShapeOf<kRaisedFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
