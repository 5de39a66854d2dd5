// port stats with --interval, --count or --delta.
#include <chrono>
#include <deque>
#include <optional>

#include "vxmgr/app/inventory.h"
#include "vxmgr/ports/stats_commands.h"
#include "vxmgr/ports/stats_counters.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

constexpr uint64_t kUsualInterval = 5;
constexpr int kMostFailures = 3;  // of a port, one after the other

struct Watched {
    const Port& port;
    Device device;
    HX_STATISTICS last;
    int failures = 0;

    bool IsLive() const { return failures < kMostFailures; }
};

class Watcher {
  public:
    explicit Watcher(tools::Invocation& invocation)
        : invocation_(invocation),
          interval_(invocation.Given().Number("interval").value_or(kUsualInterval)),
          count_(invocation.Given().Number("count")),
          delta_(invocation.Given().Has("delta")) {}

    ExitCode Run() {
        const std::vector<Port> ports = ReadPorts(invocation_);
        const std::vector<const Port*> selected = SelectPorts(invocation_, ports);
        if (selected.empty()) {
            invocation_.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
        }
        for (const Port* port : selected) {
            Start(*port);
        }
        if (CountLive() != 0) {
            Stream();
        } else {
            invocation_.Result().AddList("readings", "Readings", tools::ListLayout::Table,
                                         StatsRow(Port(), nullptr, false), "", {});
        }
        return failures_ != 0 && CountLive() != 0 ? ExitCode::Partial : exit_;
    }

  private:
    // The first reading tells whether the port can be watched at all.
    void Start(const Port& port) {
        Device device;
        HX_STATISTICS first{};
        HX_STATUS status = device.Open(port.index, TracePath(invocation_));
        if (status == HXMGT_SUCCESS) {
            status = HXGetStatistics(device.Handle(), 0, &first);
        }
        if (status != HXMGT_SUCCESS) {
            Failed(port, status, device.IsOpen() ? "statistics" : "open");
            return;
        }
        watched_.push_back({port, std::move(device), first});
    }

    void Stream() {
        invocation_.Progress("watching " + std::to_string(watched_.size()) + " ports; Ctrl-C ends");
        invocation_.BeginStream("readings", "Readings", StatsRow(Port(), nullptr, false), "");
        if (!delta_) {
            for (Watched& one : watched_) {
                Print(one, one.last, false);
            }
        }
        // Differences begin behind the second reading.
        for (uint64_t rows = delta_ ? 0 : 1; CountLive() != 0 && (!count_ || rows < *count_);
             ++rows) {
            invocation_.Sleep(std::chrono::seconds(interval_));
            for (Watched& one : watched_) {
                if (one.IsLive()) {
                    invocation_.CheckStop();
                    Read(one);
                }
            }
        }
    }

    void Read(Watched& one) {
        HX_STATISTICS now{};
        const HX_STATUS status = HXGetStatistics(one.device.Handle(), 0, &now);
        if (status == HXMGT_SUCCESS) {
            one.failures = 0;
            Print(one, delta_ ? CountedBetween(one.last, now) : now, WasReset(one.last, now));
            one.last = now;
        } else if (++one.failures; !one.IsLive()) {
            Failed(one.port, status, "the port is no longer watched");
        }
    }

    void Print(const Watched& one, const HX_STATISTICS& statistics, bool reset) {
        invocation_.Stream(StatsRow(one.port, &statistics, reset));
    }

    void Failed(const Port& port, HX_STATUS status, const char* text) {
        const ExitCode exit = invocation_.Report(status, text, port.Object());
        exit_ = failures_++ == 0 ? exit : exit_;
    }

    size_t CountLive() const {
        size_t live = 0;
        for (const Watched& one : watched_) {
            live += one.IsLive() ? 1 : 0;
        }
        return live;
    }

    tools::Invocation& invocation_;
    const uint64_t interval_;
    const std::optional<uint64_t> count_;
    const bool delta_;
    std::deque<Watched> watched_;
    size_t failures_ = 0;
    ExitCode exit_ = ExitCode::Done;
};

}  // namespace

ExitCode PortStatsWatch(tools::Invocation& invocation) {
    return Watcher(invocation).Run();
}

}  // namespace vxmgr
