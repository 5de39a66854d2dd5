// What a list of ports makes of their answers.
#pragma once

#include <map>

#include "vxmgr/app/port_walk.h"

namespace vxmgr {

// Its chip, driver or firmware does not know the request.
inline bool CannotTell(HX_STATUS status) {
    return ExitCodeOf(status) == ExitCode::NotSupported;
}

// Marks the ports that failed and reports them; the exit code of the whole. A port that cannot tell
// is a failure only when it was chosen.
template <class Answer>
ExitCode ReportAnswers(Invocation& invocation, const std::vector<PortAnswer<Answer>>& answers) {
    const bool chosen = invocation.Given().Has("port") || invocation.Given().Has("adapter");
    std::vector<const Port*> counted;
    std::map<std::string, std::vector<const Port*>> unable;  // by what is said of them
    for (const PortAnswer<Answer>& one : answers) {
        // What else the port fails at is not asked here.
        one.port->failure = one.status;
        one.port->failedQuery = one.query;
        if (CannotTell(one.status) && !chosen && one.port->answers) {
            unable[one.query + ": " + StatusMessage(one.status)].push_back(one.port);
        } else {
            counted.push_back(one.port);
        }
    }
    for (const auto& [text, ports] : unable) {
        invocation.Note(
            (ports.size() == 1 ? ports.front()->Name() : std::to_string(ports.size()) + " ports") +
            ": " + text);
    }
    return ReportFailures(invocation, counted);
}

}  // namespace vxmgr
