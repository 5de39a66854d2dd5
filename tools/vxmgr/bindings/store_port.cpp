#include "vxmgr/bindings/store_port.h"

#include <algorithm>

#include "vxmgr/app/answer_memory.h"
#include "vxmgr/targets/target_records.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {
namespace {

HX_STATUS Load(uint32_t handle, HX_TARGET_DATA& block) {
    return HXGetTargetData(handle, 0, &block, 1);
}
HX_STATUS Load(uint32_t handle, HX_LUN_DATA& block) {
    return HXGetLunData(handle, 0, &block, 1);
}
HX_STATUS Save(uint32_t handle, HX_TARGET_DATA& block) {
    return HXSetTargetData(handle, 0, &block, 1);
}
HX_STATUS Save(uint32_t handle, HX_LUN_DATA& block) {
    return HXSetLunData(handle, 0, &block, 1);
}

bool ReadsAs(const HX_TARGET_DATA& written, const HX_TARGET_DATA& read) {
    return SameBytes(written, read);
}
bool ReadsAs(const HX_LUN_DATA& written, const HX_LUN_DATA& read) {
    return SameBytes(*AsStored(written), read) || SameBytes(*AsVersion1(written), read);
}

// Whether the port has nothing in the store at all.
bool HasNothing(const Port& port) {
    const auto names = std::make_unique<HX_WWN_LIST>();
    if (!port.port || HXGetPersistentDeviceEntryList(names.get()) != HXMGT_SUCCESS) {
        return false;
    }
    const Wwn own = Wwn::Of(port.port->portName);
    return std::none_of(std::begin(names->names), std::end(names->names),
                        [&](const uint8_t(&name)[8]) { return Wwn::Of(name) == own; });
}

// A block of that kind that cannot be read is not there, rather than damaged. The walk over all
// stored targets reads the blocks of every port; bindings have a checksum besides, which it does
// not look at.
bool IsAbsent(const HX_LUN_DATA&) {
    const auto names = std::make_unique<HX_WWN_LIST>();
    return HXGetPersistentTargetEntryList(names.get()) == HXMGT_SUCCESS;
}
bool IsAbsent(const HX_TARGET_DATA&) {
    return false;
}

template <class Block>
StoredBlock<Block> AskStored(const Port& port, uint32_t handle) {
    StoredBlock<Block> stored;
    const HX_STATUS status = Load(handle, *stored.block);
    if (status == HXMGT_SUCCESS) {
        stored.state = StoreState::Stored;
        stored.block->count = std::min<uint16_t>(stored.block->count, HX_MAX_TARGETS);
    } else {
        stored.block = std::make_unique<Block>();  // a failed read may have touched it
        stored.state = HasNothing(port) || IsAbsent(*stored.block) ? StoreState::Nothing
                                                                   : StoreState::Unusable;
        stored.status = status == HXMGT_REGISTRY_INVALID ? HX_STATUS{HXMGT_SUCCESS} : status;
    }
    return stored;
}

template <class Block>
void ReadStored(const Port& port, uint32_t handle, StoredBlock<Block>* stored) {
    static AnswerMemory<uint32_t, StoredBlock<Block>> memory;
    *stored = memory.Get(port.index, [&] { return AskStored<Block>(port, handle); });
}

// The first failure, with what it was about in *query.
HX_STATUS ReadAll(PortTargets* targets, const char** query) {
    *query = "known targets";
    if (const HX_STATUS status = targets->ReadKnown(); status != HXMGT_SUCCESS) {
        return status;
    }
    ReadStored(targets->OwnPort(), targets->Handle(), &targets->bindings);
    ReadStored(targets->OwnPort(), targets->Handle(), &targets->masks);
    *query = "stored data";
    return targets->bindings.status != HXMGT_SUCCESS ? targets->bindings.status
                                                     : targets->masks.status;
}

void AskAboutTargets(PortTask& task, const TargetQuestions& questions, PortTargets* targets) {
    const Port& port = targets->OwnPort();
    const KnownTarget* const only =
        questions.only ? FindKnown(targets->known, *questions.only) : nullptr;
    const TellMessage tell = [&task](Message message) { task.Tell(std::move(message)); };
    for (KnownTarget& target : targets->known) {
        if (questions.only && only != &target) {
            continue;
        }
        LunSet luns;
        if (questions.masks) {
            task.Answered();
            if (ReadLiveMask(port, targets->Handle(), target.PortName(), &luns) == HXMGT_SUCCESS) {
                target.masked = luns;
            }
        }
        if (questions.luns) {
            task.Answered();
            if (ReadReportedLuns(tell, port, targets->Handle(), target.PortName(), &luns) ==
                HXMGT_SUCCESS) {
                target.reported = luns;
            }
        }
    }
}

HX_STATUS ReadPortTargets(PortVisit& visit, const TargetQuestions& questions,
                          PortTargets* targets) {
    targets->session.port = visit.port;
    targets->session.device = std::move(visit.device);
    const char* query = "";
    const HX_STATUS status = ReadAll(targets, &query);
    visit.query = query;
    if (status == HXMGT_SUCCESS) {
        AskAboutTargets(visit.task, questions, targets);
    }
    return status;
}

template <class Block>
void Write(Invocation& invocation, PortTargets& targets, Block& block) {
    const std::string object = targets.OwnPort().Object();
    invocation.Require(Save(targets.Handle(), block),
                       "the store cannot be written, and may be half written", object);
    invocation.Changed();
    const auto read = std::make_unique<Block>();
    if (Load(targets.Handle(), *read) != HXMGT_SUCCESS || !ReadsAs(block, *read)) {
        invocation.Fail(ExitCode::NotProven,
                        object +
                            ": the store was written, but reads back "
                            "differently",
                        "does another program write it at the same time?");
    }
}

}  // namespace

DocumentPort PortTargets::Origin() const {
    const Port& port = OwnPort();
    return {port.port ? Wwn::Of(port.port->portName) : Wwn(),
            port.node ? Wwn::Of(port.node->nodeName) : Wwn(), port.Serial()};
}

const KnownTarget* PortTargets::Known(const Wwn& portName) const {
    const auto found = std::find_if(known.begin(), known.end(), [&](const KnownTarget& target) {
        return target.PortName() == portName;
    });
    return found == known.end() ? nullptr : &*found;
}

PortTargets OpenPortTargets(Invocation& invocation) {
    PortTargets targets{OpenSelectedPort(invocation), {}, {}, {}};
    const char* query = "";
    const HX_STATUS status = ReadAll(&targets, &query);
    invocation.Require(status, query, targets.OwnPort().Object());
    return targets;
}

std::vector<PortAnswer<PortTargets>> AskPortTargets(Invocation& invocation,
                                                    std::vector<Port>& ports,
                                                    const TargetQuestions& questions) {
    const AskPort<PortTargets> ask = [questions](PortVisit& visit, PortTargets* targets) {
        return ReadPortTargets(visit, questions, targets);
    };
    auto answers = ForEachPort<PortTargets>(invocation, SelectPorts(invocation, ports), ask);
    for (const auto& one : answers) {
        // A property that could not be read does not keep the targets from being shown.
        one.port->failure = one.status;
        one.port->failedQuery = one.query;
    }
    return answers;
}

void TellLinkDown(Invocation& invocation, const PortTargets& targets) {
    if (targets.known.empty() && LinkIsDown(targets.session)) {
        invocation.Note(targets.OwnPort().Object() + ": the link is down: no target is reached",
                        kLinkHint);
    }
}

const char* WhyAway(const PortTargets& targets) {
    return LinkIsDown(targets.session) ? "the link is down" : "the target is away";
}

void TellState(Invocation& invocation, const Port& port, StoreState state,
               const std::string& what) {
    if (state == StoreState::Nothing) {
        invocation.Note(port.Object() + ": no " + what + " are stored");
    } else if (state == StoreState::Unusable) {
        invocation.Note(port.Object() + ": no usable " + what +
                            " are stored: there are none, or they are damaged",
                        "writing new ones mends a damaged store");
    }
}

void WriteStored(Invocation& invocation, PortTargets& targets, HX_TARGET_DATA& block) {
    Write(invocation, targets, block);
}

void WriteStored(Invocation& invocation, PortTargets& targets, HX_LUN_DATA& block) {
    Write(invocation, targets, block);
}

}  // namespace vxmgr
