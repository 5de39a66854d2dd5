// port stats with --interval, --count or --delta.
#include <chrono>
#include <deque>
#include <optional>

#include "vxmgr/app/port_walk.h"
#include "vxmgr/ports/commands.h"
#include "vxmgr/ports/stats_counters.h"
#include "vxmgr/ports/stats_row.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

constexpr uint64_t kUsualInterval = 5;
constexpr int kMostFailures = 3;  // of a port, one after the other

struct Watched {
    const Port& port;
    std::shared_ptr<Device> device;  // shared with a thread that may be left behind
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
        std::vector<Port> ports = ReadSelectedPorts(invocation_);
        const std::vector<Port*> selected = SelectPorts(invocation_, ports);
        if (selected.empty()) {
            invocation_.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
        }
        // The first reading tells whether a port can be watched at all.
        for (auto& one : ForEachPort<Reading>(invocation_, selected, ReadFirst)) {
            if (one.status == HXMGT_SUCCESS) {
                watched_.push_back({*one.port,
                                    std::make_shared<Device>(std::move(one.answer.device)),
                                    one.answer.statistics});
            } else {
                Failed(*one.port, one.status, one.query.c_str());
            }
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
    struct Answer {
        HX_STATUS status = HXMGT_SUCCESS;
        HX_STATISTICS now{};
    };

    struct Reading {
        Device device;
        HX_STATISTICS statistics{};
    };
    static HX_STATUS ReadFirst(PortVisit& visit, Reading* first) {
        visit.query = "statistics";
        const HX_STATUS status = HXGetStatistics(visit.Handle(), 0, &first->statistics);
        first->device = std::move(visit.device);
        return status;
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
            ReadAll();
        }
    }

    void ReadAll() {
        std::vector<Watched*> live;
        std::vector<PortQuestion<Answer>> questions;
        for (Watched& one : watched_) {
            if (one.IsLive()) {
                live.push_back(&one);
                questions.push_back(
                    {one.port.Name(), [device = one.device](PortTask&, Answer& answer) {
                         answer.status = HXGetStatistics(device->Handle(), 0, &answer.now);
                     }});
            }
        }
        const auto answers = AskSideBySide(invocation_, std::move(questions));
        for (size_t i = 0; i < live.size(); ++i) {
            Take(*live[i], answers[i]);
        }
    }

    void Take(Watched& one, const std::optional<Answer>& answer) {
        if (answer && answer->status == HXMGT_SUCCESS) {
            const HX_STATISTICS& now = answer->now;
            one.failures = 0;
            Print(one, delta_ ? CountedBetween(one.last, now) : now, WasReset(one.last, now));
            one.last = now;
            return;
        }
        // A thread still waits for a port that does not answer: it is not asked again.
        one.failures = answer ? one.failures + 1 : kMostFailures;
        if (!one.IsLive()) {
            Failed(one.port, answer ? answer->status : HX_STATUS{HXMGT_TIMED_OUT},
                   "the port is no longer watched");
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
