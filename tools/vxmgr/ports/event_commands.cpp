// event watch, event test.
#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>

#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

constexpr size_t kEventsPerRead = 32;
// The library's queue keeps 31 events and drops the oldest without a word: a read that brings as
// many may have come too late for others.
constexpr size_t kFullRead = 31;
// The library itself waits for another program that fetches events of the adapter.
constexpr std::chrono::seconds kFetchTime{40};

// The names that --kind takes.
constexpr const char* kKindNames[] = {"lip",  "link-up",     "link-down", "lip-reset",
                                      "rscn", "port-update", "test"};
struct EventKind {
    uint32_t type;
    const char* name;
    const char* meaning;
};
constexpr EventKind kEventKinds[] = {
    {HX_EVENT_LIP, kKindNames[0], "the loop was initialised"},
    {HX_EVENT_LINK_UP, kKindNames[1], "the link came up"},
    {HX_EVENT_LINK_DOWN, kKindNames[2], "the link went down"},
    {HX_EVENT_LIP_RESET, kKindNames[3], "the loop was reset"},
    {HX_EVENT_RSCN, kKindNames[4], "the fabric reports a state change"},
    {HX_EVENT_PORT_UPDATE, kKindNames[5], "the list of discovered ports changed"},
    {HX_EVENT_TEST, kKindNames[6], "test event"},
};
static_assert(std::size(kKindNames) == std::size(kEventKinds));

constexpr Argument kWatchArguments[] = {
    {.name = "--kind",
     .valueName = "K",
     .help = "only events of this kind; may be repeated",
     .repeated = true,
     .choices = kKindNames},
    NumberOption("--count", "N", "end after N events", 1),
    kForArgument,
};

const EventKind* KindOf(uint32_t type) {
    const auto found = std::ranges::find(kEventKinds, type, &EventKind::type);
    return found != std::end(kEventKinds) ? &*found : nullptr;
}

struct PortEvent {
    const Port* port;
    HX_EVENT event;

    std::string Kind() const {
        const EventKind* const kind = KindOf(event.type);
        return kind != nullptr ? kind->name : "type-" + std::to_string(event.type);
    }

    std::string Meaning() const {
        const EventKind* const kind = KindOf(event.type);
        std::string meaning = kind != nullptr ? kind->meaning : "an event without a known meaning";
        if (event.type == HX_EVENT_RSCN) {
            // Affected N_Port page: address format in the top byte's low bits, then the address.
            constexpr const char* kFormats[] = {"port", "area", "domain", "fabric"};
            const uint32_t page = event.data[0];
            meaning +=
                std::string(": ") + kFormats[(page >> 24) & 3] + " " + Hex(page & 0xFFFFFF, 6);
        }
        return meaning;
    }

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

// The event delivery of a port. It is switched off once, by whoever comes first: the end of the
// command, or its clean-up when the command hangs.
class Delivery {
  public:
    explicit Delivery(Device device) : device_(std::move(device)) {}
    ~Delivery() { Disable(); }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    HX_STATUS Enable() {
        const HX_STATUS status = HXEnableAen(device_.Handle());
        enabled_ = status == HXMGT_SUCCESS;
        return status;
    }

    void Disable() {
        if (enabled_.exchange(false)) {
            HXDisableAen(device_.Handle());
        }
    }

    HX_STATUS Read(HX_EVENT (&events)[kEventsPerRead], uint32_t* count) {
        return HXGetAen(device_.Handle(), reinterpret_cast<uint8_t*>(events), sizeof events, count);
    }

  private:
    Device device_;
    std::atomic<bool> enabled_{false};
};

// Every delivery that was switched on, whichever thread did it: for the clean-up.
class AllDeliveries {
  public:
    void Add(const std::shared_ptr<Delivery>& delivery) {
        const std::lock_guard guard(lock_);
        deliveries_.push_back(delivery);
    }
    void Disable() {
        const std::lock_guard guard(lock_);
        for (const std::weak_ptr<Delivery>& one : deliveries_) {
            if (const auto delivery = one.lock()) {
                delivery->Disable();
            }
        }
    }

  private:
    std::mutex lock_;
    std::vector<std::weak_ptr<Delivery>> deliveries_;
};

// Those of the port's events that --kind wants: all without it.
auto EventsOf(const Port& port, std::shared_ptr<Delivery> delivery,
              std::vector<std::string> kinds) {
    return [port, delivery = std::move(delivery), kinds = std::move(kinds)](PortTask& task,
                                                                            WatchTurn& turn) {
        HX_EVENT events[kEventsPerRead];
        uint32_t count = 0;
        task.Answered(kFetchTime);
        turn.status = delivery->Read(events, &count);
        turn.query = turn.status == HXMGT_DEVICE_BUSY
                         ? "no event slot is free (eight processes share them)"
                         : "events cannot be read";
        for (uint32_t i = 0; i < count; ++i) {
            const PortEvent event{&port, events[i]};
            if (kinds.empty() || std::ranges::find(kinds, event.Kind()) != kinds.end()) {
                turn.rows.push_back(kEventFields.Make(event));
            }
        }
        if (count >= kFullRead) {
            task.Tell({Severity::Warning,
                       "events may be lost: more came at once than the queue keeps",
                       {},
                       port.Object(),
                       {}});
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
        *made = std::make_shared<Delivery>(std::move(visit.device));
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
