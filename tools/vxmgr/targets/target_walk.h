// What the drivers of ports say of each target.
#pragma once

#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/values.h"
#include "vxmgr/targets/target_known.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {

template <class Told>
struct TargetAnswer {
    Wwn name;
    HX_STATUS status = HXMGT_SUCCESS;
    Told told{};
};
template <class Told>
using TargetAnswers = std::vector<TargetAnswer<Told>>;

// Which targets to ask about: those of the port, or the one that -t means.
std::optional<HX_SCSI_ADDRESS> WantedTarget(Invocation& invocation);
std::vector<const KnownTarget*> WantedOf(const std::vector<KnownTarget>& known,
                                         const std::optional<HX_SCSI_ADDRESS>& wanted);

// Ends a list of targets: with -t, and no target in it, nobody knows that one.
ExitCode CheckFound(Invocation& invocation, ExitCode exit, bool found);

// ask(handle, address, told) of each target, side by side for the ports. A target that is away is
// no failure of its port, unless it was named.
template <class Told, class Ask>
std::vector<PortAnswer<TargetAnswers<Told>>> AskTargets(Invocation& invocation,
                                                        std::vector<Port>& ports, const char* query,
                                                        Ask ask) {
    const auto wanted = WantedTarget(invocation);
    const AskPort<TargetAnswers<Told>> askPort = [=](PortVisit& visit,
                                                     TargetAnswers<Told>* answers) {
        visit.query = "known targets";
        std::vector<KnownTarget> known;
        HX_STATUS failure = ReadKnownTargets(visit.port, visit.Handle(), &known);
        if (failure != HXMGT_SUCCESS) {
            return failure;
        }
        visit.query = query;
        for (const KnownTarget* target : WantedOf(known, wanted)) {
            visit.task.Answered();
            TargetAnswer<Told>& answer = answers->emplace_back();
            answer.name = target->PortName();
            const HX_SCSI_ADDRESS address = AddressByPortName(answer.name);
            answer.status = ask(visit.Handle(), address, &answer.told);
            const bool away = answer.status == HXMGT_DEVICE_NOT_FOUND && !target->present;
            if (failure == HXMGT_SUCCESS && (wanted || !away)) {
                failure = answer.status;
            }
        }
        return failure;
    };
    return ForEachPort<TargetAnswers<Told>>(invocation, SelectPorts(invocation, ports), askPort);
}

// The keys of a row about a target. Row has port, and name and status of the target; without a
// name it is the row of a port.
struct TargetRowHead {
    const Port* port = nullptr;
    std::optional<Wwn> name = std::nullopt;
    HX_STATUS status = HXMGT_SUCCESS;
};
extern const Fields<TargetRowHead> kTargetRowHeadFields;
extern const Fields<TargetRowHead> kTargetRowStatus;

// One target of the selected port, open.
struct OpenTarget {
    PortSession session;
    Wwn name;
    HX_SCSI_ADDRESS address{};

    uint32_t Handle() const { return session.Handle(); }
    const Port& OwnPort() const { return session.port; }
    TargetRowHead Head() const { return {&session.port, name, HXMGT_SUCCESS}; }
    // Ends the command: what could not be done at the target.
    [[noreturn]] void Fail(HX_STATUS status, const std::string& text) const {
        throw RemoteFailure(session, status, text + " " + name.Colons());
    }
};
OpenTarget OpenGivenTarget(Invocation& invocation);

}  // namespace vxmgr
