// event watch, event test.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <memory>
#include <mutex>

#include "common/status_codes.h"
#include "common/text.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/ports/commands.h"
#include "vxmgr/ports/event_texts.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr std::chrono::milliseconds kPollInterval{250};
constexpr size_t kEventsPerRead = 32;
// The library's queue keeps 31 events and drops the oldest without a word: a read that brings as
// many may have come too late for others.
constexpr size_t kFullRead = 31;
// The library says busy for a process without an event slot, and now and then for a fetch that
// another program held up.
constexpr int kBusyReads = 3;

constexpr tools::Argument kWatchArguments[] = {
    {.name = "--kind",
     .valueName = "K",
     .help = "only events of this kind; may be repeated",
     .repeated = true,
     .choices = kEventKindNames},
    {.name = "--count",
     .kind = tools::ArgumentKind::Number,
     .valueName = "N",
     .help = "end after N events",
     .least = 1},
};

// A port that delivers events. Delivery is switched off once, by whoever comes first: the end of
// the command, or its clean-up when the command hangs.
class Watch {
  public:
    Watch(Port port, Device device) : port_(std::move(port)), device_(std::move(device)) {}
    ~Watch() { Disable(); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

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

    const Port& Watched() const { return port_; }
    bool IsLive() const { return enabled_; }
    int busyReads = 0;

  private:
    const Port port_;
    Device device_;
    std::atomic<bool> enabled_{false};
};
using WatchPointer = std::shared_ptr<Watch>;

// Every watch that was made, whichever thread made it: for the clean-up.
class AllWatches {
  public:
    void Add(WatchPointer watch) {
        const std::lock_guard guard(lock_);
        watches_.push_back(std::move(watch));
    }
    void Disable() {
        const std::lock_guard guard(lock_);
        for (const WatchPointer& watch : watches_) {
            watch->Disable();
        }
    }

  private:
    std::mutex lock_;
    std::vector<WatchPointer> watches_;
};

Record EventRow(const Port& port, const HX_EVENT& event, const std::string& time) {
    Record row;
    row.Add("time", "Time", Value::Text(time), "TIME", time.size());
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("scsi_port", "SCSI port", port.scsiPort ? Value::Number(*port.scsiPort) : Value());
    row.Add("serial", "Adapter", Value::Serial(port.Serial()), "ADAPTER", 14);
    row.Add("port_wwn", "Port name",
            port.port ? Value::Name(tools::Wwn::Of(port.port->portName)) : Value());
    row.Add("kind", "Kind", Value::Text(EventKindName(event.type)), "KIND", 11);
    row.Add("meaning", "Meaning", Value::Text(EventMeaning(event)), "MEANING");
    row.Add("type", "Type", Value::Number(event.type));
    row.Add("data0", "Data 0", HexValue(event.data[0], 8));
    row.Add("data1", "Data 1", HexValue(event.data[1], 8));
    row.Add("data2", "Data 2", HexValue(event.data[2], 8));
    return row;
}

class Watcher {
  public:
    explicit Watcher(tools::Invocation& invocation)
        : invocation_(invocation),
          kinds_(invocation.Given().All("kind")),
          remaining_(invocation.Given().Number("count")),
          cleanUp_(invocation.Hooks(), [all = all_] { all->Disable(); }) {}
    ~Watcher() { all_->Disable(); }

    // The first enabling of a port counts the adapters at the ports before it, and waits for each
    // of them that does not answer.
    void Start(const std::vector<Port*>& ports) {
        const bool chosen = invocation_.Given().Has("port") || invocation_.Given().Has("adapter");
        const AskPort<WatchPointer> enable = [all = all_](PortVisit& visit, WatchPointer* made) {
            visit.query = "events cannot be enabled";
            *made = std::make_shared<Watch>(visit.port, std::move(visit.device));
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
        std::vector<const Port*> answered;
        std::copy_if(ports.begin(), ports.end(), std::back_inserter(answered),
                     [](const Port* port) { return port->answers; });
        for (auto& one : ForEachPort<WatchPointer>(invocation_, ports, enable)) {
            if (!one.port->answers &&
                std::find(answered.begin(), answered.end(), one.port) != answered.end()) {
                one.query = "events cannot be enabled: " + one.port->Name() +
                            " or a port in front of it is not answering";
            }
            if (one.answer != nullptr) {
                watches_.push_back(std::move(one.answer));
            }
            if (one.status == HXMGT_NOT_SUPPORTED && !chosen) {
                invocation_.Note("port " + std::to_string(one.port->index) +
                                 " is left out: its driver delivers no events");
            } else if (one.status != HXMGT_SUCCESS) {
                Failed(*one.port, one.status, one.query.c_str());
            }
        }
    }

    ExitCode Run() {
        if (CountLive() == 0) {
            invocation_.Result().AddList("events", "Events", tools::ListLayout::Table,
                                         EventRow(Port(), HX_EVENT{}, {}), "", {});
            return failures_ != 0 ? exit_ : ExitCode::NotSupported;
        }
        invocation_.Progress("watching " + std::to_string(CountLive()) + " of " +
                             std::to_string(watches_.size()) + " ports; Ctrl-C ends");
        invocation_.BeginStream("events", "Events",
                                EventRow(Port(), HX_EVENT{}, tools::FormatUtc({})), "");
        while (CountLive() != 0) {
            for (const WatchPointer& watch : watches_) {
                if (watch->IsLive() && !Poll(*watch)) {
                    return ExitOfAll();
                }
            }
            invocation_.Sleep(kPollInterval);
        }
        return exit_;
    }

  private:
    // False when the number of events asked for is complete.
    bool Poll(Watch& watch) {
        HX_EVENT events[kEventsPerRead];
        uint32_t count = 0;
        const HX_STATUS status = watch.Read(events, &count);
        const std::string time = tools::FormatUtc(std::chrono::system_clock::now());
        for (uint32_t i = 0; i < count; ++i) {
            if (Wanted(events[i])) {
                invocation_.Stream(EventRow(watch.Watched(), events[i], time));
                if (remaining_ && --*remaining_ == 0) {
                    return false;
                }
            }
        }
        if (count >= kFullRead) {
            invocation_.Add({tools::Severity::Warning,
                             "events may be lost: more came at once than the queue keeps",
                             {},
                             watch.Watched().Object(),
                             {}});
        }
        if (status == HXMGT_DEVICE_BUSY && ++watch.busyReads < kBusyReads) {
            return true;
        }
        if (status != HXMGT_SUCCESS) {
            Failed(watch.Watched(), status,
                   status == HXMGT_DEVICE_BUSY
                       ? "no event slot is free (eight processes share them)"
                       : "events cannot be read");
            watch.Disable();
        } else {
            watch.busyReads = 0;
        }
        return true;
    }

    bool Wanted(const HX_EVENT& event) const {
        return kinds_.empty() ||
               std::find(kinds_.begin(), kinds_.end(), EventKindName(event.type)) != kinds_.end();
    }

    void Failed(const Port& port, HX_STATUS status, const char* text) {
        const ExitCode exit = invocation_.Report(status, text, port.Object());
        exit_ = failures_++ == 0 ? exit : exit_;
    }

    size_t CountLive() const {
        return static_cast<size_t>(
            std::count_if(watches_.begin(), watches_.end(),
                          [](const WatchPointer& watch) { return watch->IsLive(); }));
    }

    ExitCode ExitOfAll() const { return failures_ == 0 ? ExitCode::Done : ExitCode::Partial; }

    tools::Invocation& invocation_;
    const std::vector<std::string> kinds_;
    std::optional<uint64_t> remaining_;
    const std::shared_ptr<AllWatches> all_ = std::make_shared<AllWatches>();
    std::vector<WatchPointer> watches_;  // in the order of the ports
    size_t failures_ = 0;
    ExitCode exit_ = ExitCode::Done;
    tools::AbandonHooks::Registration cleanUp_;  // goes first
};

ExitCode EventWatch(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
    }
    Watcher watcher(invocation);
    watcher.Start(selected);
    return watcher.Run();
}

ExitCode EventTest(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const Port& port = SelectOnePort(invocation, ports);
    const auto finish = [&](bool raised) {
        Record& result = invocation.Result();
        result.Add("port", "Port", Value::Number(port.index));
        result.Add("serial", "Adapter serial", Value::Serial(port.Serial()));
        result.Add("raised", "Test event raised", Value::Flag(raised));
        return ExitCode::Done;
    };
    if (invocation.DryRun()) {
        invocation.Note("dry run: no event was raised");
        return finish(false);
    }
    Device device;
    HX_STATUS status = port.Open(TracePath(invocation), &device);
    if (status == HXMGT_SUCCESS) {
        status = HXForceZetaAEN(static_cast<int32_t>(device.Handle()));
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the test event was not raised", port.Object());
    }
    return finish(true);
}

}  // namespace

tools::CommandRows EventCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "event watch",
            .risk = tools::Risk::Reads,
            .help = "print events as they come",
            .schema = "event.watch",
            .arguments = kWatchArguments,
            .run = EventWatch,
            .example = "event watch --count 2",
        },
        {
            .path = "event test",
            .risk = tools::Risk::Reversible,
            .help = "have an adapter report a test event",
            .schema = "event.test",
            .run = EventTest,
            .example = "event test -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
