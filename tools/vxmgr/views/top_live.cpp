#include "vxmgr/views/top_live.h"

#include <algorithm>

#include "vxmgr/app/side_by_side.h"
#include "vxmgr/ports/event_delivery.h"
#include "vxmgr/ports/event_kinds.h"
#include "vxmgr/views/background.h"
#include "vxmgr/views/top_board.h"
#include "vxmgr/views/top_screen.h"

namespace vxmgr {
namespace {

using LiveClock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kRedraw{200};       // what has come is seen as late as this
constexpr milliseconds kEventPause{500};   // between two looks for events
constexpr milliseconds kEventRetry{1000};  // where there are none to be had

// Reads the port's counters again and again.
Background::Work ReadingOf(const std::shared_ptr<TopBoard>& board, size_t place, const Port& port,
                           const std::string& trace, std::chrono::seconds interval) {
    return [board, place, session = std::make_shared<TopSession>(port, trace),
            interval](Background::Sign& sign) {
        auto due = LiveClock::now();
        do {
            board->Asks(place);
            const TopReading reading = session->Read([&] { board->Asks(place); });
            board->Put(place, reading, session->OpenDevice());
            due = std::max(due + interval, LiveClock::now());
        } while (!sign.WaitFor(std::chrono::ceil<milliseconds>(due - LiveClock::now())));
    };
}

Tone ToneOf(const HX_EVENT& event) {
    return event.type == HX_EVENT_LINK_UP     ? Tone::Good
           : event.type == HX_EVENT_LINK_DOWN ? Tone::Bad
                                              : Tone::Plain;
}

// Fetches for as long as this is the port's device; false when its driver delivers nothing. told:
// what was said of a failure last, which is not said again.
bool FetchEvents(TopBoard& board, size_t place, const Port& port, Delivery& delivery,
                 const Device* device, std::string& told, Background::Sign& sign) {
    HX_STATUS status = delivery.Enable();
    if (status == HXMGT_NOT_SUPPORTED) {
        return false;
    }
    const char* failed = "events cannot be enabled";
    while (status == HXMGT_SUCCESS && board.DeviceAt(place).get() == device &&
           !sign.WaitFor(kEventPause)) {
        HX_EVENT events[kEventsPerRead];
        uint32_t count = 0;
        status = delivery.Read(events, &count);
        failed = FailedFetch(status);
        for (uint32_t i = 0; i < count && i < kEventsPerRead; ++i) {
            board.Tell(port, EventMeaning(events[i]), ToneOf(events[i]));
        }
        if (count >= kFullRead) {
            board.Tell(port, kEventsLost, Tone::Warning);
        }
    }
    if (status != HXMGT_SUCCESS && CauseOf(status, port.Object()) != kWentAway) {
        const std::string text = std::string(failed) + ": " + StatusMessage(status);
        if (text != told) {
            board.Tell(port, text, Tone::Warning);
        }
        told = text;
    }
    return true;
}

// Events come on a thread of their own: to enable them may wait for other ports.
Background::Work EventsOfPort(const std::shared_ptr<TopBoard>& board, size_t place,
                              const Port& port, const std::shared_ptr<AllDeliveries>& deliveries) {
    return [board, place, port, deliveries](Background::Sign& sign) {
        bool goesOn = true;
        std::string told;
        while (goesOn) {
            if (const auto device = board->DeviceAt(place)) {
                const auto delivery = std::make_shared<Delivery>(device);
                deliveries->Add(delivery);
                goesOn = FetchEvents(*board, place, port, *delivery, device.get(), told, sign);
            }
            goesOn = goesOn && !sign.WaitFor(kEventRetry);
        }
    };
}

class TopLoop {
  public:
    TopLoop(Invocation& invocation, Screen& screen, TopBoard& board)
        : invocation_(invocation), screen_(screen), board_(board) {}

    void Run(std::optional<LiveClock::time_point> until) {
        while (!until || LiveClock::now() < *until) {
            invocation_.CheckStop();
            if (!view_.Paused()) {
                picture_ = board_.Picture(invocation_.Names());
            }
            screen_.Show(
                DrawTop(picture_, view_,
                        {screen_.Size(), screen_.DrawsBlocks(), invocation_.Style().color}));
            const auto left =
                until ? std::chrono::ceil<milliseconds>(*until - LiveClock::now()) : kRedraw;
            const auto key = screen_.Wait(std::clamp(left, milliseconds(0), kRedraw));
            if (key && !view_.Press(*key)) {
                return;
            }
        }
    }

  private:
    Invocation& invocation_;
    Screen& screen_;
    TopBoard& board_;
    TopView view_;
    TopPicture picture_;
};

std::optional<LiveClock::time_point> EndOf(Invocation& invocation, std::chrono::seconds interval) {
    const auto now = LiveClock::now();
    std::optional<LiveClock::time_point> end;
    if (const auto seconds = invocation.Given().Number("for")) {
        end = now + std::chrono::seconds(*seconds);
    }
    if (const auto count = invocation.Given().Number("count")) {
        // The first reading has no rates. As far as the clock goes.
        constexpr uint64_t kMostSeconds = UINT32_MAX;
        const auto seconds = static_cast<uint64_t>(interval.count()) * *count;
        const auto counted =
            now + kRedraw +
            std::chrono::seconds(static_cast<int64_t>(std::min(seconds, kMostSeconds)));
        end = end ? std::min(*end, counted) : counted;
    }
    return end;
}

}  // namespace

ExitCode ShowTopScreen(Invocation& invocation, std::unique_ptr<Screen> screen,
                       const std::vector<Port*>& ports, std::chrono::seconds interval) {
    const auto board = std::make_shared<TopBoard>(ports, AnswerTime(invocation));
    const auto deliveries = std::make_shared<AllDeliveries>();
    {
        const AbandonHooks::Registration cleanUp(invocation.Hooks(), [&] {
            screen->Restore();
            deliveries->Disable();
        });
        Background background(invocation.Stop());
        const std::string trace = TracePath(invocation);
        for (size_t place = 0; place < ports.size(); ++place) {
            background.Start(ReadingOf(board, place, *ports[place], trace, interval));
            background.Start(EventsOfPort(board, place, *ports[place], deliveries));
        }
        TopLoop(invocation, *screen, *board).Run(EndOf(invocation, interval));
        screen->Restore();  // before what may have to wait for a port
    }
    for (size_t place = 0; place < ports.size(); ++place) {
        ports[place]->failure = board->Failure(place, &ports[place]->failedQuery);
    }
    return ReportFailures(invocation, ports);
}

}  // namespace vxmgr
