// Everything about the targets of one port: those that its driver knows, and what is stored for the
// driver's next start.
#pragma once

#include <functional>
#include <memory>

#include "vxmgr/app/port_session.h"
#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/bindings/store_document.h"
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

// Rows of every selected port; one that cannot be read gives the row of its failure. The exit code
// of the whole.
using RowsOfPort = std::function<void(PortTargets& targets, std::vector<Record>* rows)>;
using RowOfFailure = std::function<Record(const Port& port)>;
ExitCode ListPortTargets(Invocation& invocation, const RowsOfPort& rowsOf,
                         const RowOfFailure& failed, std::vector<Record>* rows);

// Why the driver does not know a target.
const char* WhyAway(const PortTargets& targets);

// Says why there is nothing to show; what: "bindings".
void TellState(Invocation& invocation, const Port& port, StoreState state, const std::string& what);

// Writes the block and reads it back; ends the command when one of these fails.
void WriteStored(Invocation& invocation, PortTargets& targets, HX_TARGET_DATA& block);
void WriteStored(Invocation& invocation, PortTargets& targets, HX_LUN_DATA& block);

}  // namespace vxmgr
