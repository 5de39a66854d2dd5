// bind add, remove, swap, apply.
#include <algorithm>

#include "vxmgr/app/document.h"
#include "vxmgr/bindings/bind_edit.h"
#include "vxmgr/bindings/store_live.h"
#include "vxmgr/bindings/store_steps.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/scsi_unit.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {
namespace {

constexpr uint8_t kBound = 1;
constexpr uint16_t kHighestTargetNumber = 2047;

constexpr Argument kNodeArgument =
    TextOption("--node", "NAME", "node name of a target that the driver does not know");
constexpr Argument kPortIdArgument =
    NumberOption("--port-id", "ID", "its port identifier", 0, 0xFFFFFF);

constexpr Argument kAddArguments[] = {
    kTargetArgument,
    kNodeArgument,
    kPortIdArgument,
    NumberOption("--bus", "N", "bus of the binding (the one that the driver gave)", 0, UINT8_MAX),
    NumberOption("--id", "N", "target ID of the binding (the same)", 0, UINT8_MAX),
    NumberOption("--flags", "N", "binding flags (those that the target has, or 1)", 0, UINT8_MAX),
    NumberOption("--lun-base", "N", "LUN byte of its stored mask that stands for LUN 0", 0,
                 HX_MAX_LUNS - 1),
    kStoreArgument,
};
constexpr Argument kRemoveArguments[] = {kTargetArgument, kStoreArgument};
constexpr Argument kSwapArguments[] = {
    kTargetArgument,
    {.name = "--with",
     .valueName = "TARGET",
     .help = "the target that takes its place",
     .required = true},
    kNodeArgument,
    kPortIdArgument,
    kStoreArgument,
};

constexpr Argument kApplyArguments[] = {
    FlagOption("--masks", "the stored LUN masks too"),
};

std::string NameAfter(Invocation& invocation, const char* option) {
    return std::string("--") + option + " " + invocation.Given().Text(option);
}

// Drivers keep devices apart by their numbers, of which the low bit says to older ones that the
// device is there. They count from below, hosts and lost devices too: a free one is found above.
uint16_t FreeTargetNumber(const PortTargets& targets) {
    const auto isUsed = [&](uint16_t number) {
        const auto entries = RowsOf(*targets.bindings.block);
        const auto sameAs = [number](uint16_t other) { return other / 2 == number / 2; };
        return std::any_of(
                   targets.known.begin(), targets.known.end(),
                   [&](const KnownTarget& known) { return sameAs(known.record.targetNumber); }) ||
               std::any_of(entries.begin(), entries.end(), [&](const HX_TARGET_ENTRY& entry) {
                   return !IsFree(entry) && sameAs(entry.targetNumber);
               });
    };
    uint16_t number = kHighestTargetNumber;
    while (number > 1 && isUsed(number)) {
        number = static_cast<uint16_t>(number - 2);
    }
    return number;
}

// A target that the driver does not know, from the command line alone.
HX_DEVICE_RECORD NamedTarget(Invocation& invocation, const PortTargets& targets,
                             const char* option) {
    const HX_SCSI_ADDRESS address = GivenAddress(invocation, option);
    const auto node = Wwn::Parse(invocation.Given().Text("node"));
    if (invocation.Given().Has("node") && (!node || node->IsZero())) {
        invocation.Fail(ExitCode::Usage, NameAfter(invocation, "node") + " is no node name");
    }
    if (address.type != HX_ADDRESS_PORT_NAME || !node) {
        FailUnknown(invocation, targets, option, "is not known to the driver",
                    "a target that is away is named with wwn:PORTNAME and --node NODENAME");
    }
    HX_DEVICE_RECORD record{};
    std::memcpy(record.portName, address.address, sizeof record.portName);
    std::memcpy(record.nodeName, node->bytes.data(), sizeof record.nodeName);
    if (Wwn::Of(record.portName).IsZero()) {
        invocation.Fail(ExitCode::Usage, NameAfter(invocation, option) + " is no port name");
    }
    record.targetNumber = FreeTargetNumber(targets);
    record.roleAndState = kTargetRole;
    return record;
}

// What is known of the target, in the driver or else in the store.
HX_DEVICE_RECORD RecordOf(const ChosenTarget& target) {
    if (target.known != nullptr) {
        return target.known->record;
    }
    HX_DEVICE_RECORD record{};
    SetNames(record, target.nodeName, target.portName);
    record.roleAndState = kTargetRole;
    if (target.bound != nullptr) {
        std::memcpy(record.portId, target.bound->portId, sizeof record.portId);
        record.bus = target.bound->bus;
        record.target = target.bound->target;
        record.targetNumber = target.bound->targetNumber;
        record.bindingFlags = target.bound->bindingFlags;
    }
    return record;
}

HX_DEVICE_RECORD TargetAfter(Invocation& invocation, PortTargets& targets, const char* option) {
    const auto chosen = FindTarget(invocation, targets, option);
    HX_DEVICE_RECORD record = chosen ? RecordOf(*chosen) : NamedTarget(invocation, targets, option);
    if (const auto id = invocation.Given().Number("port-id")) {
        SetPortId(static_cast<uint32_t>(*id), record.portId);
    }
    return record;
}

void CheckRange(Invocation& invocation, const HX_DEVICE_RECORD& wanted) {
    if (wanted.bus > UINT8_MAX || wanted.target > UINT8_MAX) {
        invocation.Fail(ExitCode::NotSupported,
                        "bus and target ID of a binding end at 255, and the driver gave others",
                        "choose them with `bind add --bus --id`");
    }
}

HX_DEVICE_RECORD WantedBinding(Invocation& invocation, PortTargets& targets) {
    HX_DEVICE_RECORD wanted = TargetAfter(invocation, targets, "target");
    const Wwn name = Wwn::Of(wanted.portName);
    const Options& given = invocation.Given();
    const bool hasAddress =
        targets.Known(name) != nullptr || FindRow(*targets.bindings.block, name) != nullptr;
    if (!hasAddress && !given.Has("id")) {
        invocation.Fail(ExitCode::Usage,
                        "the driver does not know the target, so that it has no target ID yet",
                        "give one with --id, and with --bus unless it is 0");
    }
    wanted.bus = static_cast<uint16_t>(given.Number("bus").value_or(wanted.bus));
    wanted.target = static_cast<uint16_t>(given.Number("id").value_or(wanted.target));
    CheckRange(invocation, wanted);
    const HX_TARGET_ENTRY* stored = FindRow(*targets.bindings.block, name);
    const uint8_t before = wanted.bindingFlags != 0 ? wanted.bindingFlags
                           : stored != nullptr      ? stored->bindingFlags
                                                    : uint8_t{0};
    wanted.bindingFlags =
        static_cast<uint8_t>(given.Number("flags").value_or(before != 0 ? before : kBound));
    return wanted;
}

void CheckAddress(Invocation& invocation, const HX_TARGET_DATA& block,
                  const HX_DEVICE_RECORD& wanted) {
    if (const auto holder = AddressHolder(block, wanted)) {
        invocation.Fail(ExitCode::Refused,
                        "bus:target " + std::to_string(wanted.bus) + ":" +
                            std::to_string(wanted.target) + " is bound to " + holder->Colons() +
                            " in the store",
                        "choose another with --id, or remove that binding first");
    }
}

// The block as it was, edited and written. False when nothing changed.
template <class Edit>
bool ChangeStored(Invocation& invocation, PortTargets& targets, Edit edit) {
    const HX_TARGET_DATA before = *targets.bindings.block;
    HX_TARGET_DATA& block = *targets.bindings.block;
    edit(block);
    if (targets.bindings.IsStored() && SameBytes(before, block)) {
        return false;
    }
    if (targets.bindings.state == StoreState::Unusable) {
        TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
    }
    if (!invocation.DryRun()) {
        WriteStored(invocation, targets, block);
    }
    return true;
}

// The same as a step.
template <class Edit>
void EditStored(Invocation& invocation, PortTargets& targets, const Wwn& name,
                const std::string& what, Steps& steps, Edit edit) {
    if (ChangeStored(invocation, targets, edit)) {
        steps.Done(kInRegistry, name, what);
    } else {
        steps.Add(kInRegistry, name, Outcome::Unchanged, what);
    }
}

[[noreturn]] void FailFull(const Invocation& invocation) {
    invocation.Fail(ExitCode::Refused, "the store of this port is full: 256 bindings",
                    "remove one first");
}

uint8_t FirstFlags(std::initializer_list<uint8_t> flags) {
    const auto found =
        std::find_if(flags.begin(), flags.end(), [](uint8_t one) { return one != 0; });
    return found == flags.end() ? kBound : *found;
}

// A swap in both stores, or in one of them: the targets, the block as it is to be stored, and
// whether that differs at all.
struct SwapPlan {
    BindingSwap swap;
    HX_TARGET_DATA block;
    bool inStore = false;
};

// In the store alone the new target takes the old one's binding. In the driver it also gets its
// flags. In both, the two are bound afterwards where they stand in the driver, unless neither of
// them was bound before: its next start then changes nothing.
SwapPlan PlanSwap(Invocation& invocation, PortTargets& targets, const ChosenTarget& chosen,
                  const HX_DEVICE_RECORD& newTarget, const StoreChoice& stores) {
    const HX_DEVICE_RECORD oldTarget = RecordOf(chosen);
    const Wwn newName = Wwn::Of(newTarget.portName);
    SwapPlan plan{SwapOf(oldTarget, newTarget), *targets.bindings.block, false};
    BindingSwap& swap = plan.swap;
    const HX_TARGET_ENTRY* newRow = FindRow(plan.block, newName);
    const auto storedFlags = [](const HX_TARGET_ENTRY* row) {
        return row != nullptr ? row->bindingFlags : uint8_t{0};
    };
    const bool isBound = chosen.bound != nullptr || newRow != nullptr ||
                         (oldTarget.bindingFlags | newTarget.bindingFlags) != 0;
    if (stores.live && isBound) {
        swap.newAfter.bindingFlags = FirstFlags({newTarget.bindingFlags, oldTarget.bindingFlags,
                                                 storedFlags(chosen.bound), storedFlags(newRow)});
    }
    if (stores.registry && !stores.live) {
        plan.inStore = SwapBindings(plan.block, chosen.portName, newTarget);
        return plan;
    }
    if (!stores.registry || !isBound) {
        return plan;
    }
    swap.oldAfter.bindingFlags = FirstFlags({oldTarget.bindingFlags, newTarget.bindingFlags,
                                             storedFlags(chosen.bound), storedFlags(newRow)});
    const bool oldHasPlace = targets.Known(newName) != nullptr || newRow != nullptr;
    CheckRange(invocation, swap.newAfter);
    if (oldHasPlace) {
        CheckRange(invocation, swap.oldAfter);
    }
    if (!PutSwap(plan.block, swap, oldHasPlace)) {
        FailFull(invocation);
    }
    CheckAddress(invocation, plan.block, swap.newAfter);
    if (oldHasPlace) {
        CheckAddress(invocation, plan.block, swap.oldAfter);
    }
    plan.inStore = true;
    return plan;
}

ExitCode BindAdd(Invocation& invocation) {
    CheckTargetOption(invocation);
    const StoreChoice stores = GivenStores(invocation);
    PortTargets targets = OpenPortTargets(invocation);
    const HX_DEVICE_RECORD wanted = WantedBinding(invocation, targets);
    const Wwn name = Wwn::Of(wanted.portName);
    Steps steps(invocation, targets.OwnPort());
    if (stores.registry) {
        CheckAddress(invocation, *targets.bindings.block, wanted);
        const auto lunBase = invocation.Given().Number("lun-base");
        const std::string what = "bind, bus:target " + std::to_string(wanted.bus) + ":" +
                                 std::to_string(wanted.target) + ", flags " +
                                 Hex(wanted.bindingFlags, 2);
        EditStored(invocation, targets, name, what, steps, [&](HX_TARGET_DATA& block) {
            if (!PutBinding(
                    block, wanted,
                    lunBase ? std::optional(static_cast<uint16_t>(*lunBase)) : std::nullopt)) {
                FailFull(invocation);
            }
        });
    }
    if (stores.live) {
        BindLive(invocation, targets, wanted,
                 stores.registry ? AwayTarget::Pending : AwayTarget::Failed, steps);
    }
    return steps.FinishResult();
}

ExitCode BindRemove(Invocation& invocation) {
    const StoreChoice stores = GivenStores(invocation);
    if (!stores.registry) {
        invocation.Fail(ExitCode::NotSupported, "a running driver gives up no binding",
                        "remove it from the store: it goes with the driver's next start");
    }
    CheckTargetOption(invocation);
    PortTargets targets = OpenPortTargets(invocation);
    const auto chosen = FindTarget(invocation, targets, "target");
    if (!chosen || chosen->bound == nullptr) {
        TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
        invocation.Fail(ExitCode::NotFound,
                        targets.OwnPort().Object() + ": " + NameAfter(invocation, "target") +
                            " is not bound in the store",
                        "`bind list` shows what is");
    }
    Steps steps(invocation, targets.OwnPort());
    EditStored(invocation, targets, chosen->portName, "remove", steps,
               [&](HX_TARGET_DATA& block) { RemoveBinding(block, chosen->portName); });
    if (stores.live && chosen->known != nullptr &&
        IsBound(targets.OwnPort(), *chosen->known).value_or(true)) {
        steps.Add(kLive, chosen->portName, Outcome::Pending,
                  "a running driver gives up no binding: it goes with the driver's next start");
    }
    return steps.FinishResult();
}

ExitCode BindSwap(Invocation& invocation) {
    CheckTargetOption(invocation);
    const StoreChoice stores = GivenStores(invocation);
    PortTargets targets = OpenPortTargets(invocation);
    const ChosenTarget chosen = ChooseTarget(invocation, targets);
    const HX_DEVICE_RECORD newTarget = TargetAfter(invocation, targets, "with");
    const Wwn newName = Wwn::Of(newTarget.portName);
    if (newName == chosen.portName) {
        invocation.Fail(ExitCode::Usage, "a target cannot take its own place");
    }
    if (stores.registry && chosen.bound == nullptr && (!stores.live || chosen.known == nullptr)) {
        invocation.Fail(ExitCode::NotFound, chosen.Text() + " is not bound in the store",
                        "`bind list` shows what is");
    }
    const HX_TARGET_DATA before = *targets.bindings.block;
    const SwapPlan plan = PlanSwap(invocation, targets, chosen, newTarget, stores);
    if (!invocation.DryRun()) {
        invocation.Confirm(QuestionAbout(
            targets.session,
            "Put target " + newName.Colons() + " in the place of " + chosen.Text() + ".",
            "I/O to the address goes to the new target, whose data may be another."));
    }
    Steps steps(invocation, targets.OwnPort());
    // The store comes first, since it can be put back.
    const bool stored =
        plan.inStore &&
        ChangeStored(invocation, targets, [&](HX_TARGET_DATA& block) { block = plan.block; });
    const bool swapped = !stores.live || SwapLive(invocation, targets, plan.swap, steps);
    if (stored && !swapped) {
        *targets.bindings.block = before;
        WriteStored(invocation, targets, *targets.bindings.block);
        steps.Add(kInRegistry, chosen.portName, Outcome::Unchanged,
                  "is as it was, since the driver did not swap them");
    } else if (stored) {
        steps.Done(kInRegistry, chosen.portName, SwapText(newName));
    } else if (stores.registry) {
        steps.Add(kInRegistry, chosen.portName, Outcome::Unchanged,
                  "neither of the two is bound in the store");
    }
    return steps.FinishResult();
}

ExitCode BindApply(Invocation& invocation) {
    PortTargets targets = OpenPortTargets(invocation);
    const bool masks = invocation.Given().Has("masks");
    TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
    if (!targets.bindings.IsStored() && !(masks && targets.masks.IsStored())) {
        invocation.Fail(ExitCode::NotFound, "there is nothing stored to apply",
                        "`bind add` and `bind import` store bindings");
    }
    if (!invocation.DryRun()) {
        invocation.Confirm(QuestionAbout(
            targets.session, "Bind the stored targets in the running driver.",
            "A target whose address changes is not reached meanwhile: I/O to it stops."));
    }
    Steps steps(invocation, targets.OwnPort());
    ApplyBindings(invocation, targets, *targets.bindings.block, AwayTarget::Failed, steps);
    if (masks) {
        TellState(invocation, targets.OwnPort(), targets.masks.state, "LUN masks");
        ApplyMasks(invocation, targets, *targets.masks.block, AwayTarget::Failed, steps);
    }
    return steps.FinishResult();
}

}  // namespace

CommandRows BindChangeCommands() {
    static const Command kCommands[] = {
        {.path = "bind add",
         .risk = Risk::Reversible,
         .help = "bind a target, or change its binding",
         .schema = "bind.change",
         .arguments = kAddArguments,
         .run = BindAdd,
         .example = "bind add -t wwn:2b:00:02:45:4d:00:01:00 --id 5 -p scsi:3",
         .result = ShapeOf<kStoreChangeFields>},
        {.path = "bind remove",
         .risk = Risk::Reversible,
         .help = "remove a binding from the store",
         .schema = "bind.change",
         .arguments = kRemoveArguments,
         .run = BindRemove,
         .example = "bind remove -t 0:5 -p scsi:3",
         .result = ShapeOf<kStoreChangeFields>},
        {.path = "bind swap",
         .risk = Risk::InterruptsIo,
         .help = "put a target in the place of another",
         .schema = "bind.change",
         .arguments = kSwapArguments,
         .run = BindSwap,
         .example = "bind swap -t 0:5 --with wwn:2b:00:02:45:4d:00:02:00 -p scsi:3",
         .result = ShapeOf<kStoreChangeFields>},
        {.path = "bind apply",
         .risk = Risk::InterruptsIo,
         .help = "bind in the driver what is stored",
         .schema = "bind.change",
         .arguments = kApplyArguments,
         .run = BindApply,
         .example = "bind apply --masks -p scsi:3",
         .result = ShapeOf<kStoreChangeFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
