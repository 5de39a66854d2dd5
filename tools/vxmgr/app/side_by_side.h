// Work on several ports at a time: a port whose driver hangs holds up nobody else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// How long a driver may take for an answer: --timeout, or five seconds.
std::chrono::seconds AnswerTime(Invocation& invocation);

struct TaskBoard;

// What the work on a port has of the command that waits for it. The command goes on without a port
// that does not answer, so the work may outlive it: it owns, or shares, everything that it uses.
class PortTask {
  public:
    PortTask(std::shared_ptr<TaskBoard> board, size_t place);

    // Between requests: the driver has answered, and the time for its next answer begins, which may
    // be longer than others (--timeout holds for all). Ends the work (by an exception) when nobody
    // waits for it any more.
    void Answered();
    void Answered(std::chrono::seconds nextTime);

    // Messages come in the order of the ports, when the port is done.
    void Tell(Message message);

  private:
    const std::shared_ptr<TaskBoard> board_;
    const size_t place_;
};

struct PortWork {
    std::string name;  // for people: "port 2 (scsi:6)"
    std::function<void(PortTask& task)> run;
};

// Runs them all and says on stderr who is waited for. For each whether it was done in time; only
// then may what it made be looked at. What one throws ends the command, the first one's first. With
// --trace they run one after the other: the trace of each stays in one piece.
std::vector<bool> RunSideBySide(Invocation& invocation, std::vector<PortWork> works);

// The same for work that makes something: empty for what was not done in time.
template <class Made>
struct PortQuestion {
    std::string name;
    std::function<void(PortTask& task, Made& made)> ask;
};
template <class Made>
std::vector<std::optional<Made>> AskSideBySide(Invocation& invocation,
                                               std::vector<PortQuestion<Made>> questions) {
    std::vector<std::shared_ptr<Made>> shared;
    std::vector<PortWork> works;
    for (PortQuestion<Made>& question : questions) {
        const auto made = shared.emplace_back(std::make_shared<Made>());
        works.push_back({std::move(question.name), [ask = std::move(question.ask),
                                                    made](PortTask& task) { ask(task, *made); }});
    }
    const std::vector<bool> done = RunSideBySide(invocation, std::move(works));
    std::vector<std::optional<Made>> results(shared.size());
    for (size_t i = 0; i < shared.size(); ++i) {
        if (done[i]) {
            results[i] = std::move(*shared[i]);
        }
    }
    return results;
}

}  // namespace vxmgr
