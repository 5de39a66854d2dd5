// Everything about the targets of one port: those that its driver knows, and what is stored for the
// driver's next start.
#pragma once

#include <memory>

#include "vxmgr/app/document.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/targets/target_known.h"

namespace vxmgr {

// The library has one status for a store that is not there and one that is damaged. The list of
// ports with stored data tells the first one apart, but a port can have one block and not the
// other.
enum class StoreState { Stored, Nothing, Unusable };

template <class Block>
struct StoredBlock {
    HX_STATUS status = HXMGT_SUCCESS;  // a failure other than that nothing usable is stored
    StoreState state = StoreState::Nothing;
    std::unique_ptr<Block> block = std::make_unique<Block>();  // of zeros unless stored

    StoredBlock() = default;
    StoredBlock(const StoredBlock& other)
        : status(other.status), state(other.state), block(std::make_unique<Block>(*other.block)) {}
    StoredBlock(StoredBlock&&) = default;
    StoredBlock& operator=(StoredBlock&&) = default;

    bool IsStored() const { return state == StoreState::Stored; }
};

struct PortTargets {
    PortSession session;
    std::vector<KnownTarget> known;
    StoredBlock<HX_TARGET_DATA> bindings;
    StoredBlock<HX_LUN_DATA> masks;

    const Port& OwnPort() const { return session.port; }
    uint32_t Handle() const { return session.Handle(); }
    DocumentPort Origin() const;
    const KnownTarget* Known(const Wwn& portName) const;
    HX_STATUS ReadKnown() { return ReadKnownTargets(OwnPort(), Handle(), &known); }
};

// The one selected port; ends the command when something cannot be read.
PortTargets OpenPortTargets(Invocation& invocation);

// What is asked about each known target besides; for KnownTarget.
struct TargetQuestions {
    bool masks = false;
    bool luns = false;
    std::optional<HX_SCSI_ADDRESS> only = {};  // about this target alone
};

// The targets of every selected port, as far as they can be read.
std::vector<PortAnswer<PortTargets>> AskPortTargets(Invocation& invocation,
                                                    std::vector<Port>& ports,
                                                    const TargetQuestions& questions);

// Says so where a port knows no target because its link is down.
void TellLinkDown(Invocation& invocation, const PortTargets& targets);

// The list that add(targets, rows) makes of them as the command's result; a port that cannot be
// read has a row with nothing but the port. The exit code of the whole.
template <class Row, class Add>
ExitCode ListPortTargets(Invocation& invocation, const Fields<std::vector<Row>>& list,
                         const TargetQuestions& questions, Add add) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<Row> rows;
    std::vector<const Port*> asked;
    const auto answers = AskPortTargets(invocation, ports, questions);
    for (const auto& one : answers) {
        invocation.CheckStop();
        asked.push_back(one.port);
        if (one.status != HXMGT_SUCCESS) {
            rows.push_back({one.port});
        } else {
            add(one.answer, &rows);
            TellLinkDown(invocation, one.answer);
        }
    }
    invocation.Result() = list.Make(rows);
    return ReportFailures(invocation, asked);
}

// Why the driver does not know a target.
const char* WhyAway(const PortTargets& targets);

// Says why there is nothing to show; what: "bindings".
void TellState(Invocation& invocation, const Port& port, StoreState state, const std::string& what);

// Writes the block and reads it back; ends the command when one of these fails.
void WriteStored(Invocation& invocation, PortTargets& targets, HX_TARGET_DATA& block);
void WriteStored(Invocation& invocation, PortTargets& targets, HX_LUN_DATA& block);

}  // namespace vxmgr
