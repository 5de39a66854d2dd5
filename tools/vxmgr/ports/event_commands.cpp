// event watch, event test.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>

#include "common/status_codes.h"
#include "common/text.h"
#include "vxmgr/app/inventory.h"
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
    {"--kind", tools::ArgumentKind::Text, "K", "only events of this kind; may be repeated", false,
     true, kEventKindNames},
    {"--count", tools::ArgumentKind::Number, "N", "end after N events", false, false, {}, 1},
};

// A port that delivers events. Delivery is switched off once, by whoever comes first: the end of
// the command, or its clean-up when the command hangs.
class Watch {
  public:
    Watch(const Port& port, Device device) : port_(port), device_(std::move(device)) {}
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
    const Port& port_;
    Device device_;
    std::atomic<bool> enabled_{false};
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
          cleanUp_(invocation.Hooks(), [this] { DisableAll(); }) {}

    // The hook reads watches_, so that it is complete before the first delivery is switched on.
    void Start(const std::vector<const Port*>& ports) {
        const bool chosen = invocation_.Given().Has("port") || invocation_.Given().Has("adapter");
        for (const Port* port : ports) {
            Device device;
            const HX_STATUS status = device.Open(port->index, TracePath(invocation_));
            if (status != HXMGT_SUCCESS) {
                Failed(*port, status, "open");
                continue;
            }
            watches_.emplace_back(*port, std::move(device));
        }
        for (Watch& watch : watches_) {
            const HX_STATUS status = watch.Enable();
            if (status == HXMGT_NOT_SUPPORTED && !chosen) {
                invocation_.Note("port " + std::to_string(watch.Watched().index) +
                                 " is left out: its driver delivers no events");
            } else if (status != HXMGT_SUCCESS) {
                Failed(watch.Watched(), status, "events cannot be enabled");
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
            for (Watch& watch : watches_) {
                if (watch.IsLive() && !Poll(watch)) {
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
        return static_cast<size_t>(std::count_if(
            watches_.begin(), watches_.end(), [](const Watch& watch) { return watch.IsLive(); }));
    }

    ExitCode ExitOfAll() const { return failures_ == 0 ? ExitCode::Done : ExitCode::Partial; }

    void DisableAll() {
        for (Watch& watch : watches_) {
            watch.Disable();
        }
    }

    tools::Invocation& invocation_;
    const std::vector<std::string> kinds_;
    std::optional<uint64_t> remaining_;
    std::deque<Watch> watches_;
    size_t failures_ = 0;
    ExitCode exit_ = ExitCode::Done;
    tools::AbandonHooks::Registration cleanUp_;  // goes first
};

}  // namespace

std::span<const tools::Argument> EventWatchArguments() {
    return kWatchArguments;
}

ExitCode EventWatch(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<const Port*> selected = SelectPorts(invocation, ports);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
    }
    Watcher watcher(invocation);
    watcher.Start(selected);
    return watcher.Run();
}

ExitCode EventTest(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
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
    HX_STATUS status = device.Open(port.index, TracePath(invocation));
    if (status == HXMGT_SUCCESS) {
        status = HXForceZetaAEN(static_cast<int32_t>(device.Handle()));
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the test event was not raised", port.Object());
    }
    return finish(true);
}

}  // namespace vxmgr
