// The loop of every command that asks several ports.
#pragma once

#include <functional>
#include <utility>

#include "vxmgr/app/inventory.h"
#include "vxmgr/app/side_by_side.h"

namespace vxmgr {

// An open port, on a thread of its own.
struct PortVisit {
    PortTask& task;
    const Port& port;
    Device device;
    std::string query;  // what is being asked: what failed, when it does

    uint32_t Handle() const { return device.Handle(); }
};

template <class Answer>
struct PortAnswer {
    Port* port = nullptr;
    HX_STATUS status = HXMGT_SUCCESS;
    std::string query;  // what failed
    Answer answer{};    // as far as it came; nothing of a port that did not answer in time
};

// What is asked of each port. It may outlive the command: it owns what it uses (captures by value).
template <class Answer>
using AskPort = std::function<HX_STATUS(PortVisit& visit, Answer* answer)>;

// Opens the ports and asks them side by side; the answers come in the order of the ports. A port
// that does not answer is marked as such, and one that did not before is not asked again.
template <class Answer>
std::vector<PortAnswer<Answer>> ForEachPort(Invocation& invocation, const std::vector<Port*>& ports,
                                            const AskPort<Answer>& ask) {
    std::vector<PortQuestion<PortAnswer<Answer>>> questions;
    for (const Port* port : ports) {
        const auto visitPort = [own = *port, trace = TracePath(invocation), ask](
                                   PortTask& task, PortAnswer<Answer>& answer) {
            PortVisit visit{task, own, {}, "open"};
            answer.status = own.Open(trace, &visit.device);
            if (answer.status == HXMGT_SUCCESS) {
                task.Answered();
                answer.status = ask(visit, &answer.answer);
            }
            answer.query = std::move(visit.query);
        };
        questions.push_back({port->Name(), visitPort});
    }
    auto made = AskSideBySide(invocation, std::move(questions));
    std::vector<PortAnswer<Answer>> answers;
    for (size_t i = 0; i < ports.size(); ++i) {
        if (!made[i]) {
            DoesNotAnswer(invocation, ports[i]);
        }
        PortAnswer<Answer>& answer =
            answers.emplace_back(made[i] ? std::move(*made[i]) : PortAnswer<Answer>());
        answer.port = ports[i];
        if (!ports[i]->answers) {
            answer.status = ports[i]->failure;
            answer.query = ports[i]->failedQuery;
        }
    }
    return answers;
}

}  // namespace vxmgr
