#include "vxmgr/app/side_by_side.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

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
    std::vector<Place> places;
    size_t threads = 0;
};

namespace {

using State = TaskBoard::State;
using Place = TaskBoard::Place;
using std::chrono::milliseconds;

constexpr std::chrono::seconds kUsualPatience{5};
constexpr milliseconds kAnnounceAfter{1000};
constexpr milliseconds kPoll{100};  // a stop request is seen as late as this
constexpr milliseconds kGrace{1000};

// Ends the work on a port that nobody waits for.
struct Unwanted {};

// On the port's own thread. What the work owns is gone before it counts as done.
void RunOnBoard(const std::shared_ptr<TaskBoard>& board, size_t place, PortWork work) {
    std::exception_ptr error;
    try {
        PortTask task(board, place);
        work.run(task);
    } catch (const Unwanted&) {
    } catch (...) {
        error = std::current_exception();
    }
    work = {};
    const std::lock_guard guard(board->lock);
    Place& own = board->places[place];
    own.error = error;
    own.state = own.state == State::GivenUp ? State::GivenUp : State::Done;
    --board->threads;
    board->changed.notify_all();
}

class Supervisor {
  public:
    Supervisor(Invocation& invocation, std::vector<PortWork> works)
        : invocation_(invocation),
          works_(std::move(works)),
          width_(invocation.Given().Has("trace") ? 1 : works_.size()),
          board_(new TaskBoard{
              AnswerTime(invocation), invocation.Given().Has("timeout"), {}, {}, {}, 0}) {
        board_->places.resize(works_.size());
        for (const PortWork& work : works_) {
            names_.push_back(work.name);
        }
    }

    ~Supervisor() {
        std::unique_lock guard(board_->lock);
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
        while (StartAndCount() != 0) {
            board_->changed.wait_for(guard, kPoll);
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
    // Starts what there is room for; how many run.
    size_t StartAndCount() {
        size_t running = 0;
        for (const Place& place : board_->places) {
            running += place.state == State::Running ? 1 : 0;
        }
        for (; next_ < works_.size() && running < width_; ++next_) {
            Place& place = board_->places[next_];
            place.state = State::Running;
            place.asked = Clock::now();
            place.patience = board_->usual;
            try {
                std::thread(RunOnBoard, board_, next_, std::move(works_[next_])).detach();
                ++board_->threads;
                ++running;
            } catch (const std::system_error&) {
                place.error = std::current_exception();
                place.state = State::Done;
            }
        }
        return running;
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
    std::vector<PortWork> works_;
    std::vector<std::string> names_;
    const size_t width_;
    const std::shared_ptr<TaskBoard> board_;
    size_t next_ = 0;
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
