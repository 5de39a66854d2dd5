#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/bindings/store_live.h"
#include "vxmgr/bindings/store_steps.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/scsi_unit.h"
#include "vxmgr/targets/target_records.h"
#include "vxmgr/targets/target_walk.h"

namespace vxmgr {
namespace {

constexpr Argument kShowArguments[] = {kSelectTargetArgument, kStoreArgument};
constexpr Argument kChangeArguments[] = {
    {.name = "LUNS", .help = "LUNs and ranges of them, as in 0-7,12, or all", .required = true},
    kTargetArgument,
    kStoreArgument,
};

// The masks of a target; a store that was not asked for gives nothing. Of a port that cannot be
// read all but the port is missing.
struct MaskRow {
    const Port* port;
    Wwn portName{};
    Wwn nodeName{};
    std::optional<LunSet> live{};
    std::optional<LunSet> stored{};

    std::string Serial() const { return port->Serial(); }
};

// A target without a node name is none.
template <auto name>
std::optional<Wwn> NameIn(const MaskRow& row) {
    return row.nodeName.IsZero() ? std::nullopt : std::optional(row.*name);
}

const Fields<MaskRow> kMaskFields = {
    {PortKeys(), &MaskRow::port},
    {"serial", "Adapter", kSerial.OrNull(), &MaskRow::Serial},
    {"target_wwn", "Target", "TARGET", kWwn.OrNull(), NameIn<&MaskRow::portName>,
     "port name; null in the row of a port that failed"},
    {"node_wwn", "Node name", kWwn.OrNull(), NameIn<&MaskRow::nodeName>},
    {"masked_live", "Masked live", "MASKED LIVE", kText.OrNull(), Of(&MaskRow::live, LunsValue),
     "LUNs as in 0-7,12; empty when none is masked, null when there is no mask"},
    {"masked_live_count", "LUNs masked live", kInteger.OrNull(),
     Of(&MaskRow::live, &LunSet::count)},
    {"masked_stored", "Masked in the store", "MASKED IN THE STORE", kText.OrNull(),
     Of(&MaskRow::stored, LunsValue)},
    {"masked_stored_count", "LUNs masked in the store", kInteger.OrNull(),
     Of(&MaskRow::stored, &LunSet::count)},
    {"status", "Status", kText.OrNull(),
     [](const MaskRow& row) { return StatusValue(row.port->failure); }},
};

const auto kMaskListFields = ListOf("masks", "LUN masks", kMaskFields, "no LUN masks");

// Targets that the driver knows, then those that are stored alone.
void AddMasks(Invocation& invocation, const PortTargets& targets, const StoreChoice& stores,
              std::vector<MaskRow>* rows) {
    const Port& port = targets.OwnPort();
    const auto chosen = invocation.Given().Has("target")
                            ? FindTarget(targets, GivenAddress(invocation, "target"))
                            : std::nullopt;
    const auto addWanted = [&](const MaskRow& row) {
        if (!invocation.Given().Has("target") || (chosen && chosen->portName == row.portName)) {
            rows->push_back(row);
        }
    };
    for (const KnownTarget& known : targets.known) {
        const Wwn name = known.PortName();
        const MaskRow row{&port, name, known.NodeName(), known.masked,
                          stores.registry ? StoredMaskOf(targets, name) : std::nullopt};
        if (row.live || row.stored || stores.live) {
            addWanted(row);
        }
    }
    for (const HX_LUN_RECORD& record : RowsOf(*targets.masks.block)) {
        const Wwn name = Wwn::Of(record.portName);
        if (stores.registry && !IsFree(record) && targets.Known(name) == nullptr) {
            addWanted(
                {&port, name, Wwn::Of(record.nodeName), std::nullopt, StoredMaskOf(targets, name)});
        }
    }
}

LunSet GivenLuns(Invocation& invocation) {
    LunSet luns;
    std::string error;
    if (!ParseLuns(invocation.Given().Text("LUNS"), &luns, &error)) {
        invocation.Fail(ExitCode::Usage, "LUNS: " + error, "as in 0-7,12, or all");
    }
    return luns;
}

// The LUNs within what the driver's masks cover; "all" means all of these.
LunSet WithinLimit(Invocation& invocation, const Port& port, const LunSet& luns) {
    const LunSet limit = FirstLuns(LunLimit(port));
    if (luns.all() || (luns & ~limit).none()) {
        return luns & limit;
    }
    invocation.Fail(ExitCode::NotSupported,
                    port.Object() + ": this driver has masks for LUNs 0 to " +
                        std::to_string(LunLimit(port) - 1) + " alone",
                    "leave out " + LunsText(luns & ~limit));
}

LunSet ChangedMask(const LunSet& masked, const LunSet& luns, bool allow) {
    return allow ? masked & ~luns : masked | luns;
}

// The block that the driver reads at its start: the one that HXSetLunData writes. A target without
// a record begins as the driver has it now, so that its next start changes nothing else.
void ChangeStoredMask(Invocation& invocation, PortTargets& targets, const ChosenTarget& target,
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
    const LunSet after = ChangedMask(before, luns, allow);
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

void ChangeLiveMask(Invocation& invocation, const PortTargets& targets, const ChosenTarget& target,
                    const LunSet& luns, bool allow, Steps& steps) {
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
    MaskLive(invocation, targets, target.portName, ChangedMask(before, luns, allow), steps);
}

template <bool allow>
ExitCode ChangeMask(Invocation& invocation) {
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
    Steps steps(invocation, targets.OwnPort());
    if (stores.registry) {
        ChangeStoredMask(invocation, targets, target, luns, allow, steps);
    }
    if (stores.live) {
        ChangeLiveMask(invocation, targets, target, luns, allow, steps);
    }
    return steps.FinishResult();
}

ExitCode LunMaskShow(Invocation& invocation) {
    CheckTargetOption(invocation);
    const StoreChoice stores = GivenStores(invocation);
    const TargetQuestions questions{.masks = stores.live, .only = WantedTarget(invocation)};
    const auto add = [&](const PortTargets& targets, std::vector<MaskRow>* rows) {
        if (stores.registry) {
            TellState(invocation, targets.OwnPort(), targets.masks.state, "LUN masks");
        }
        AddMasks(invocation, targets, stores, rows);
    };
    const ExitCode exit = ListPortTargets(invocation, kMaskListFields, questions, add);
    if (invocation.Result().MainList()->records.empty() && invocation.Given().Has("target")) {
        invocation.Fail(
            ExitCode::NotFound,
            "no selected port has a mask of the target " + invocation.Given().Text("target"),
            "see `target list`");
    }
    return exit;
}

}  // namespace

CommandRows LunmaskCommands() {
    static const Command kCommands[] = {
        {.path = "lunmask show",
         .help = "show the LUN masks of targets",
         .arguments = kShowArguments,
         .run = LunMaskShow,
         .example = "lunmask show -p scsi:3",
         .result = ShapeOf<kMaskListFields>},
        {.path = "lunmask allow",
         .risk = Risk::Reversible,
         .help = "let the host see LUNs of a target",
         .schema = "lunmask.change",
         .arguments = kChangeArguments,
         .run = ChangeMask<true>,
         .example = "lunmask allow 0-7,12 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
         .result = ShapeOf<kStoreChangeFields>},
        {.path = "lunmask deny",
         .risk = Risk::InterruptsIo,
         .help = "hide LUNs of a target from the host",
         .schema = "lunmask.change",
         .arguments = kChangeArguments,
         .run = ChangeMask<false>,
         .example = "lunmask deny 3 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
         .result = ShapeOf<kStoreChangeFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
