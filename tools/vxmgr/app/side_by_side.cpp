#include "vxmgr/app/side_by_side.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>

#include "vxmgr/app/worker_threads.h"

namespace vxmgr {

using Clock = std::chrono::steady_clock;

struct TaskBoard {
    enum class State : uint8_t { Queued, Running, Done, GivenUp };
    struct Place {
        State state = State::Queued;
        bool announced = false;
        Clock::time_point asked{};  // since then the driver owes an answer
        std::chrono::seconds patience{};
        std::vector<Message> messages;
        std::exception_ptr error;
    };

    const std::chrono::seconds usual;
    const bool given;  // by the user: holds for every answer
    std::mutex lock;   // guards what follows
    std::condition_variable changed;
    std::vector<PortWork> works;  // empty when none is to be begun any more
    std::vector<Place> places;
    size_t next = 0;      // the first one that was not begun
    size_t starting = 0;  // threads that have not looked here yet
    size_t threads = 0;   // at work

    bool HasNext() const { return next < works.size(); }
};

namespace {

using State = TaskBoard::State;
using Place = TaskBoard::Place;
using std::chrono::milliseconds;

constexpr std::chrono::seconds kUsualPatience{5};
constexpr milliseconds kAnnounceAfter{1000};
constexpr milliseconds kPoll{100};  // a stop request is seen as late as this
constexpr milliseconds kGrace{1000};

// So many are asked at a time: more threads keep each other waiting. A port that takes longer than
// usual for an answer does not count: no number of them holds up the others.
constexpr size_t kAtATime = 8;
constexpr milliseconds kUsualAnswer{20};

// Ends the work on a port that nobody waits for.
struct Unwanted {};

// What the work owns is gone before it counts as done.
std::exception_ptr RunOne(const std::shared_ptr<TaskBoard>& board, size_t place, PortWork work) {
    try {
        PortTask task(board, place);
        work.run(task);
    } catch (const Unwanted&) {
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

// On a thread of its own: one port after the other, up to one that was given up.
void WorkOnBoard(const std::shared_ptr<TaskBoard>& board) {
    std::unique_lock guard(board->lock);
    --board->starting;
    ++board->threads;
    bool wanted = true;
    while (wanted && board->HasNext()) {
        const size_t place = board->next++;
        board->places[place].state = State::Running;
        board->places[place].asked = Clock::now();
        board->places[place].patience = board->usual;
        PortWork work = std::move(board->works[place]);
        guard.unlock();
        const std::exception_ptr error = RunOne(board, place, std::move(work));
        guard.lock();
        Place& own = board->places[place];
        own.error = error;
        wanted = own.state == State::Running;
        own.state = wanted ? State::Done : own.state;
    }
    --board->threads;
    board->changed.notify_all();
}

class Supervisor {
  public:
    Supervisor(Invocation& invocation, std::vector<PortWork> works)
        : invocation_(invocation), oneByOne_(invocation.Given().Has("trace")) {
        for (const PortWork& work : works) {
            names_.push_back(work.name);
        }
        board_.reset(new TaskBoard{AnswerTime(invocation),
                                   invocation.Given().Has("timeout"),
                                   {},
                                   {},
                                   std::move(works),
                                   {}});
        board_->places.resize(names_.size());
    }

    ~Supervisor() {
        std::unique_lock guard(board_->lock);
        board_->works.clear();
        bool stopped = false;
        for (Place& place : board_->places) {
            if (place.state == State::Running) {
                place.state = State::GivenUp;
                stopped = true;
            }
        }
        if (stopped) {
            // Most end at once when they are asked to, and put back what they began.
            board_->changed.wait_for(guard, kGrace, [this] { return board_->threads == 0; });
        }
        if (board_->threads != 0) {
            invocation_.Stop().LeaveThread();
        }
    }

    std::vector<bool> Run() {
        const LimitPause pause(invocation_.Stop());
        std::unique_lock guard(board_->lock);
        while (StartThreads()) {
            board_->changed.wait_for(guard, board_->HasNext() ? kUsualAnswer : kPoll);
            const std::string waited = LookAtTheTime();
            guard.unlock();
            if (!waited.empty()) {
                invocation_.Progress("waiting for " + waited);
            }
            invocation_.CheckStop();
            guard.lock();
        }
        return Close();
    }

  private:
    // As many as are missing; false when all is done.
    bool StartThreads() {
        const Clock::time_point now = Clock::now();
        size_t running = board_->starting;
        size_t quick = running;
        for (const Place& place : board_->places) {
            if (place.state == State::Running) {
                ++running;
                quick += now - place.asked < kUsualAnswer ? 1 : 0;
            }
        }
        const size_t most = oneByOne_ ? 1 : kAtATime;
        const size_t busy = oneByOne_ ? running : quick;
        const size_t left = board_->works.size() - board_->next;
        for (size_t missing = std::min(left, most - std::min(most, busy)); missing > 0; --missing) {
            try {
                RunOnWorker([board = board_] { WorkOnBoard(board); });
                ++board_->starting;
                ++running;
            } catch (const std::system_error&) {
                if (running != 0) {
                    break;  // those at work go on with the rest
                }
                board_->places[board_->next].error = std::current_exception();
                board_->places[board_->next++].state = State::Done;
            }
        }
        return running != 0 || board_->HasNext();
    }

    // Gives up those whose time is over; those to announce, as a list.
    std::string LookAtTheTime() {
        std::string announced;
        for (size_t i = 0; i < board_->places.size(); ++i) {
            Place& place = board_->places[i];
            if (place.state != State::Running) {
                continue;
            }
            const auto waited = Clock::now() - place.asked;
            if (waited >= place.patience) {
                place.state = State::GivenUp;
            } else if (!place.announced && waited >= kAnnounceAfter) {
                place.announced = true;
                announced += (announced.empty() ? "" : ", ") + names_[i];
            }
        }
        return announced;
    }

    std::vector<bool> Close() {
        std::vector<bool> done;
        std::exception_ptr error;
        for (Place& place : board_->places) {
            done.push_back(place.state == State::Done);
            for (Message& message : place.messages) {
                invocation_.Add(std::move(message));
            }
            place.messages.clear();
            if (error == nullptr && place.state == State::Done) {
                error = place.error;
            }
        }
        if (error != nullptr) {
            std::rethrow_exception(error);
        }
        return done;
    }

    Invocation& invocation_;
    std::vector<std::string> names_;
    const bool oneByOne_;
    std::shared_ptr<TaskBoard> board_;
};

}  // namespace

std::chrono::seconds AnswerTime(Invocation& invocation) {
    const auto given = invocation.Given().Number("timeout");
    return given ? std::chrono::seconds(*given) : kUsualPatience;
}

PortTask::PortTask(std::shared_ptr<TaskBoard> board, size_t place)
    : board_(std::move(board)), place_(place) {}

void PortTask::Answered() {
    Answered(board_->usual);
}

void PortTask::Answered(std::chrono::seconds nextTime) {
    const std::lock_guard guard(board_->lock);
    Place& own = board_->places[place_];
    if (own.state == State::GivenUp) {
        throw Unwanted();
    }
    own.asked = Clock::now();
    own.patience = board_->given ? board_->usual : nextTime;
}

void PortTask::Tell(Message message) {
    const std::lock_guard guard(board_->lock);
    board_->places[place_].messages.push_back(std::move(message));
}

std::vector<bool> RunSideBySide(Invocation& invocation, std::vector<PortWork> works) {
    return Supervisor(invocation, std::move(works)).Run();
}

}  // namespace vxmgr
