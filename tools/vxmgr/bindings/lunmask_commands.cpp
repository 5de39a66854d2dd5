#include "vxmgr/bindings/commands.h"

#include "vxmgr/app/values.h"
#include "vxmgr/bindings/lunmask_live.h"
#include "vxmgr/bindings/store_choice.h"
#include "vxmgr/fabric/scsi_unit.h"
#include "vxmgr/targets/target_records.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr tools::Argument kShowArguments[] = {kSelectTargetArgument, kStoreArgument};
constexpr tools::Argument kChangeArguments[] = {
    {.name = "LUNS", .help = "LUNs and ranges of them, as in 0-7,12, or all", .required = true},
    kTargetArgument,
    kStoreArgument,
};

// The masks of a target; a store that was not asked for gives nothing.
struct Masks {
    std::optional<LunSet> live;
    std::optional<LunSet> stored;
};

Record MaskRow(const Port& port, const tools::Wwn& name, const tools::Wwn& node,
               const Masks& masks) {
    const bool named = !node.IsZero();
    const auto count = [](const std::optional<LunSet>& masked) {
        return masked ? Value::Number(masked->count()) : Value();
    };
    const auto luns = [](const std::optional<LunSet>& masked) {
        return masked ? LunsValue(*masked) : Value();
    };
    Record row;
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter", Value::Serial(port.Serial()));
    row.Add("target_wwn", "Target", named ? Value::Name(name) : Value(), "TARGET");
    row.Add("node_wwn", "Node name", named ? Value::Name(node) : Value());
    row.Add("masked_live", "Masked live", luns(masks.live), "MASKED LIVE");
    row.Add("masked_live_count", "LUNs masked live", count(masks.live));
    row.Add("masked_stored", "Masked in the store", luns(masks.stored), "MASKED IN THE STORE");
    row.Add("masked_stored_count", "LUNs masked in the store", count(masks.stored));
    row.Add("status", "Status", StatusValue(port.failure));
    return row;
}

// Targets that the driver knows, then those that are stored alone.
void AddRows(tools::Invocation& invocation, PortTargets& targets, const StoreChoice& stores,
             std::vector<Record>* rows) {
    const Port& port = targets.OwnPort();
    const auto chosen = invocation.Given().Has("target")
                            ? FindTarget(targets, GivenAddress(invocation, "target"))
                            : std::nullopt;
    const auto isWanted = [&](const tools::Wwn& name) {
        return !invocation.Given().Has("target") || (chosen && chosen->portName == name);
    };
    for (const KnownTarget& known : targets.known) {
        const tools::Wwn name = known.PortName();
        const Masks masks{stores.live ? LiveMaskOf(targets, known) : std::nullopt,
                          stores.registry ? StoredMaskOf(targets, name) : std::nullopt};
        if (isWanted(name) && (masks.live || masks.stored || stores.live)) {
            rows->push_back(MaskRow(port, name, known.NodeName(), masks));
        }
    }
    for (const HX_LUN_RECORD& record : RowsOf(*targets.masks.block)) {
        const tools::Wwn name = tools::Wwn::Of(record.portName);
        if (stores.registry && !IsFree(record) && targets.Known(name) == nullptr &&
            isWanted(name)) {
            rows->push_back(MaskRow(port, name, tools::Wwn::Of(record.nodeName),
                                    {std::nullopt, StoredMaskOf(targets, name)}));
        }
    }
}

LunSet GivenLuns(tools::Invocation& invocation) {
    LunSet luns;
    std::string error;
    if (!ParseLuns(invocation.Given().Text("LUNS"), &luns, &error)) {
        invocation.Fail(ExitCode::Usage, "LUNS: " + error, "as in 0-7,12, or all");
    }
    return luns;
}

// The LUNs within what the driver's masks cover; "all" means all of these.
LunSet WithinLimit(tools::Invocation& invocation, const Port& port, const LunSet& luns) {
    const LunSet limit = FirstLuns(LunLimit(port));
    if (luns.all() || (luns & ~limit).none()) {
        return luns & limit;
    }
    invocation.Fail(ExitCode::NotSupported,
                    port.Object() + ": this driver has masks for LUNs 0 to " +
                        std::to_string(LunLimit(port) - 1) + " alone",
                    "leave out " + LunsText(luns & ~limit));
}

LunSet Changed(const LunSet& masked, const LunSet& luns, bool allow) {
    return allow ? masked & ~luns : masked | luns;
}

// The block that the driver reads at its start: the one that HXSetLunData writes. A target without
// a record begins as the driver has it now, so that its next start changes nothing else.
void ChangeStored(tools::Invocation& invocation, PortTargets& targets, const ChosenTarget& target,
                  const LunSet& luns, bool allow, Steps& steps) {
    HX_LUN_DATA& block = *targets.masks.block;
    HX_LUN_RECORD* record = FindRow(block, target.portName);
    const bool isNew = record == nullptr;
    if (isNew) {
        record = NewRow(block);
    }
    if (record == nullptr) {
        invocation.Fail(ExitCode::Refused, "the store of this port is full: masks of 256 targets",
                        "`lunmask export`, edit and import make room");
    }
    if (isNew) {
        SetNames(*record, target.nodeName, target.portName);
        const auto live =
            target.known != nullptr ? LiveMaskOf(targets, *target.known) : std::optional<LunSet>();
        SetMasked(live.value_or(LunSet()), *record);
    }
    const LunSet before = MaskedOf(*record);
    const LunSet after = Changed(before, luns, allow);
    if (!isNew && before == after) {
        steps.Add(kInRegistry, target.portName, Outcome::Unchanged, MaskText(after));
        return;
    }
    if (targets.masks.state == StoreState::Unusable) {
        TellState(invocation, targets.OwnPort(), targets.masks.state, "LUN masks");
    }
    SetMasked(after, *record);
    if (!invocation.DryRun()) {
        WriteStored(invocation, targets, block);
    }
    steps.Done(kInRegistry, target.portName,
               (isNew ? "no mask" : MaskText(before)) + " -> " + MaskText(after));
}

void ChangeLive(tools::Invocation& invocation, const PortTargets& targets,
                const ChosenTarget& target, const LunSet& luns, bool allow, Steps& steps) {
    LunSet before;
    const HX_STATUS status =
        ReadLiveMask(targets.OwnPort(), targets.Handle(), target.portName, &before);
    if (status == HXMGT_DEVICE_NOT_FOUND) {
        steps.Away(target.portName, AwayTarget::Failed, WhyAway(targets));
        return;
    }
    if (status != HXMGT_SUCCESS) {
        steps.Tried(kLive, target.portName, status, "the mask cannot be read");
        return;
    }
    MaskLive(invocation, targets, target.portName, Changed(before, luns, allow), steps);
}

ExitCode Change(tools::Invocation& invocation, bool allow) {
    CheckTargetOption(invocation);
    const StoreChoice stores = GivenStores(invocation);
    const LunSet given = GivenLuns(invocation);
    PortTargets targets = OpenPortTargets(invocation);
    const LunSet luns = WithinLimit(invocation, targets.OwnPort(), given);
    const ChosenTarget target = ChooseTarget(invocation, targets);
    if (!invocation.DryRun()) {
        invocation.Confirm(QuestionAbout(
            targets.session,
            "Hide LUNs " + LunsText(luns) + " of target " + target.Text() + " from this host.",
            "I/O to them stops."));
    }
    Steps steps(invocation, targets.OwnPort().Object());
    if (stores.registry) {
        ChangeStored(invocation, targets, target, luns, allow, steps);
    }
    if (stores.live) {
        ChangeLive(invocation, targets, target, luns, allow, steps);
    }
    return steps.Finish();
}

ExitCode LunMaskShow(tools::Invocation& invocation) {
    CheckTargetOption(invocation);
    const StoreChoice stores = GivenStores(invocation);
    std::vector<Record> rows;
    const ExitCode exit = ListPortTargets(
        invocation,
        [&](PortTargets& targets, std::vector<Record>* into) {
            if (stores.registry) {
                TellState(invocation, targets.OwnPort(), targets.masks.state, "LUN masks");
            }
            AddRows(invocation, targets, stores, into);
        },
        [](const Port& port) { return MaskRow(port, {}, {}, {}); }, &rows);
    const bool none = rows.empty() && invocation.Given().Has("target");
    invocation.Result().AddList("masks", "LUN masks", tools::ListLayout::Table,
                                MaskRow({}, {}, {}, {}), "no LUN masks", std::move(rows));
    if (none) {
        invocation.Fail(
            ExitCode::NotFound,
            "no selected port has a mask of the target " + invocation.Given().Text("target"),
            "see `target list`");
    }
    return exit;
}

ExitCode LunMaskAllow(tools::Invocation& invocation) {
    return Change(invocation, true);
}

ExitCode LunMaskDeny(tools::Invocation& invocation) {
    return Change(invocation, false);
}

}  // namespace

tools::CommandRows LunmaskCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "lunmask show",
            .risk = tools::Risk::Reads,
            .help = "show the LUN masks of targets",
            .schema = "lunmask.show",
            .arguments = kShowArguments,
            .run = LunMaskShow,
            .example = "lunmask show -p scsi:3",
        },
        {
            .path = "lunmask allow",
            .risk = tools::Risk::Reversible,
            .help = "let the host see LUNs of a target",
            .schema = "lunmask.change",
            .arguments = kChangeArguments,
            .run = LunMaskAllow,
            .example = "lunmask allow 0-7,12 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
        },
        {
            .path = "lunmask deny",
            .risk = tools::Risk::InterruptsIo,
            .help = "hide LUNs of a target from the host",
            .schema = "lunmask.change",
            .arguments = kChangeArguments,
            .run = LunMaskDeny,
            .example = "lunmask deny 3 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
