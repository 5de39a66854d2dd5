#include "vxmgr/app/watch.h"

#include <algorithm>

namespace vxmgr {
namespace {

using WatchClock = std::chrono::steady_clock;

constexpr std::chrono::seconds kUsualInterval{5};
constexpr int kMostFailures = 3;  // of a port, one after the other

class Watcher {
  public:
    Watcher(Invocation& invocation, const WatchPlan& plan, std::vector<WatchedPort> ports)
        : invocation_(invocation), plan_(plan) {
        for (WatchedPort& port : ports) {
            places_.push_back({std::move(port)});
        }
        if (const auto seconds = invocation.Given().Number("for")) {
            until_ = WatchClock::now() + std::chrono::seconds(*seconds);
        }
    }

    ExitCode Run(ExitCode started) {
        FieldShape list = plan_.list ? *plan_.list : invocation_.OwnCommand().result().front();
        list.emptyText = "";  // there may be ports, and messages say what about them
        if (places_.empty()) {
            invocation_.Result() = PrototypeOf({list});
            return started != ExitCode::Done ? started : ExitCode::NotSupported;
        }
        invocation_.Progress("watching " + std::to_string(places_.size()) + " " + plan_.what +
                             (places_.size() == 1 ? "" : "s") + "; Ctrl-C ends");
        invocation_.BeginStream(list.key, list.label, PrototypeOf(list.children), "");
        for (uint64_t turn = 0; turn < plan_.turns && CountLive() != 0; ++turn) {
            const bool last = (turn != 0 || plan_.waitsFirst) && Wait();
            if (turn != 0 && plan_.repeatsHeading) {
                invocation_.RepeatHeading();
            }
            if (!AskAll() || last) {
                break;
            }
        }
        const size_t live = CountLive();
        return live == places_.size() ? started : live != 0 ? ExitCode::Partial : lost_;
    }

  private:
    struct Place {
        WatchedPort watched;
        int failures = 0;

        bool IsLive() const { return failures < kMostFailures; }
    };

    // True when the time of --for is over.
    bool Wait() {
        const auto now = WatchClock::now();
        const bool last = until_ && *until_ <= now + plan_.interval;
        const auto time = last ? std::max(*until_ - now, WatchClock::duration()) : plan_.interval;
        invocation_.Sleep(std::chrono::ceil<std::chrono::milliseconds>(time));
        return last;
    }

    // False when the rows asked for are complete.
    bool AskAll() {
        std::vector<Place*> live;
        std::vector<PortQuestion<WatchTurn>> questions;
        for (Place& place : places_) {
            if (place.IsLive()) {
                live.push_back(&place);
                questions.push_back({place.watched.port.Name(), place.watched.ask});
            }
        }
        const auto turns = AskSideBySide(invocation_, std::move(questions));
        for (size_t i = 0; i < live.size(); ++i) {
            if (!Take(*live[i], turns[i])) {
                return false;
            }
        }
        return true;
    }

    bool Take(Place& place, const std::optional<WatchTurn>& turn) {
        for (size_t i = 0; turn && i < turn->rows.size(); ++i) {
            invocation_.Stream(turn->rows[i]);
            if (++rows_ == plan_.rows) {
                return false;
            }
        }
        if (turn && turn->status == HXMGT_SUCCESS) {
            place.failures = 0;
            return true;
        }
        // A thread still waits for a port that does not answer: it is not asked again.
        place.failures = turn ? place.failures + 1 : kMostFailures;
        if (!place.IsLive()) {
            const ExitCode exit = invocation_.Report(
                turn ? turn->status : HX_STATUS{HXMGT_TIMED_OUT},
                turn && !turn->query.empty() ? turn->query : "the port is no longer watched",
                place.watched.port.Object());
            lost_ = lost_ == ExitCode::Done ? exit : lost_;
            place.watched.ask = nullptr;
        }
        return true;
    }

    size_t CountLive() const {
        return static_cast<size_t>(std::ranges::count_if(places_, &Place::IsLive));
    }

    Invocation& invocation_;
    const WatchPlan& plan_;
    std::vector<Place> places_;
    std::optional<WatchClock::time_point> until_;
    uint64_t rows_ = 0;
    ExitCode lost_ = ExitCode::Done;  // of the first port that was lost
};

}  // namespace

WatchPlan GivenPlan(Invocation& invocation, const char* what) {
    const auto interval = invocation.Given().Number("interval");
    return {.what = what,
            .interval = interval ? std::chrono::seconds(*interval) : kUsualInterval,
            .turns = invocation.Given().Number("count").value_or(UINT64_MAX)};
}

ExitCode WatchPorts(Invocation& invocation, const WatchPlan& plan, std::vector<WatchedPort> ports,
                    ExitCode started) {
    return Watcher(invocation, plan, std::move(ports)).Run(started);
}

std::string TimeNow() {
    return FormatUtc(std::chrono::system_clock::now());
}

}  // namespace vxmgr
