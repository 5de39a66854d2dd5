// target list|show|luns.
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/targets/target_luns.h"
#include "vxmgr/targets/target_records.h"
#include "vxmgr/targets/target_walk.h"

namespace vxmgr {
namespace {

using DeviceRecord = HX_DEVICE_RECORD;

constexpr Argument kSelectArguments[] = {kSelectTargetArgument};

// What is known of a target; without a target: of a port that failed.
struct TargetRow {
    const Port* port = nullptr;
    const KnownTarget* target = nullptr;
    const HX_TARGET_ENTRY* stored = nullptr;
    std::optional<LunSet> maskedLive = std::nullopt;
    std::optional<LunSet> maskedStored = std::nullopt;

    const DeviceRecord& Device() const {
        static const DeviceRecord kNone{};
        return target != nullptr ? target->record : kNone;
    }
    const KnownTarget* NamedTarget() const {
        return target != nullptr && !target->NodeName().IsZero() ? target : nullptr;
    }
    const DeviceRecord* NamedDevice() const {
        return NamedTarget() != nullptr ? &target->record : nullptr;
    }
    // Drivers of the current generation alone tell the words of flags.
    const DeviceRecord* CurrentDevice() const {
        return port->IsCurrentGeneration() ? &Device() : nullptr;
    }
};

const Fields<TargetRow> kTargetHeadFields = {
    {PortKeys(kPortIndex | (kAdapterSerial & kPortLabels) | kOldSerialKey), &TargetRow::port},
    {"target_wwn", "Port name", "TARGET", kWwn.OrNull(),
     Of(&TargetRow::NamedTarget, &KnownTarget::PortName),
     "port name; null in the row of a port that failed"},
    {"node_wwn", "Node name", kWwn.OrNull(), Of(&TargetRow::NamedTarget, &KnownTarget::NodeName)},
    {"port_id", "Port identifier", "PORT ID", Hexadecimal(6).OrNull(),
     Of(&TargetRow::NamedDevice,
        [](const DeviceRecord& device) { return PortIdOf(device.portId); })},
    {"bus", "Bus", "BUS", kInteger.OrNull(),
     Of(&TargetRow::NamedDevice, Packed<&DeviceRecord::bus>)},
    {"target", "Target", "ID", kInteger.OrNull(),
     Of(&TargetRow::NamedDevice, Packed<&DeviceRecord::target>), "target ID"},
    {"symbolic_name", "Name", "NAME", kText.OrNull(),
     [](const TargetRow& row) { return TextOf<&DeviceRecord::symbolicName>(row.Device()); }},
    {"role", "Role", "ROLE", Choice(kTargetRoles).OrNull(),
     [](const TargetRow& row) { return RoleText(row.Device().roleAndState); }},
    {"present", "Reached now", "PRESENT", kFlag.OrNull(),
     Of(&TargetRow::NamedTarget, &KnownTarget::present), "the driver reaches it now"},
    {"luns", "LUNs", "LUNS", kInteger.OrNull(), Of(&TargetRow::target, &KnownTarget::luns),
     "as the driver counts them; null on drivers below 7.05.03"},
};

const Fields<TargetRow> kBoundFields = {
    {"bound_live", "Bound live", "BOUND LIVE", kFlag.OrNull(),
     [](const TargetRow& row) {
         return row.target != nullptr ? IsBound(*row.port, *row.target) : std::nullopt;
     },
     "null: the driver does not tell"},
    {"bound_stored", "Bound in the store", "BOUND STORED", kFlag.OrNull(),
     [](const TargetRow& row) {
         return row.target != nullptr ? std::optional(row.stored != nullptr) : std::nullopt;
     }},
};

const Fields<TargetRow> kTargetSummaryFields = {
    {kTargetHeadFields, std::identity()},
    {kBoundFields, std::identity()},
    {"masked_live", "Masked live", "MASKED LIVE", kInteger.OrNull(),
     Of(&TargetRow::maskedLive, &LunSet::count),
     "number of masked LUNs; null when there is no mask"},
    {"masked_stored", "Masked in the store", "MASKED STORED", kInteger.OrNull(),
     Of(&TargetRow::maskedStored, &LunSet::count),
     "number of masked LUNs; null when nothing is stored"},
    {kPortStatus, &TargetRow::port},
};

std::string TargetTitle(const TargetRow& row) {
    const std::string port = std::to_string(row.port->index);
    return row.target != nullptr ? "Target " + row.target->PortName().Colons() + " of port " + port
                                 : "Port " + port;
}

const Fields<TargetRow> kTargetDetailFields = {
    TargetTitle,
    {
        {kTargetHeadFields, std::identity()},
        {"target_number", "Target number", kInteger,
         [](const TargetRow& row) { return row.Device().targetNumber; }},
        {"role_and_state", "Role and state word", Hexadecimal(8).OrNull(),
         Of(&TargetRow::CurrentDevice, Packed<&DeviceRecord::roleAndState>)},
        {"port_flags", "Port flags", Hexadecimal(4).OrNull(),
         Of(&TargetRow::CurrentDevice, Packed<&DeviceRecord::portFlags>)},
        {"binding_flags", "Binding flags", Hexadecimal(2).OrNull(),
         Of(&TargetRow::CurrentDevice, Packed<&DeviceRecord::bindingFlags>)},
        {kBoundFields, std::identity()},
        {"stored_address", "Stored bus:target", kText.OrNull(),
         Of(&TargetRow::stored,
            [](const HX_TARGET_ENTRY& entry) {
                return std::to_string(entry.bus) + ":" + std::to_string(entry.target);
            }),
         "bus:target"},
        {"stored_flags", "Stored flags", Hexadecimal(2).OrNull(),
         Of(&TargetRow::stored, Packed<&HX_TARGET_ENTRY::bindingFlags>)},
        {"masked_live", "Masked live", kText.OrNull(), Of(&TargetRow::maskedLive, LunsValue),
         "LUNs as in 0-7,12; empty when none is masked"},
        {"masked_stored", "Masked in the store", kText.OrNull(),
         Of(&TargetRow::maskedStored, LunsValue)},
        {kPortStatus, &TargetRow::port},
    }};

template <const auto& target, ListLayout layout>
const Fields<std::vector<TargetRow>>& TargetList() {
    static const auto kFields = ListOf("targets", "Targets", target, layout, "no targets");
    return kFields;
}

struct LunRow {
    const Port* port = nullptr;
    const KnownTarget* target = nullptr;  // null: a port that failed
    std::optional<LunRun> run = std::nullopt;
};

const Fields<LunRow> kLunFields = {
    {PortKeys(kPortIndex | kOldSerialKey), &LunRow::port},
    {"target_wwn", "Target", "TARGET", kWwn.OrNull(), Of(&LunRow::target, &KnownTarget::PortName)},
    {"luns", "LUNs", "LUNS", kText.OrNull(),
     Of(&LunRow::run, [](const LunRun& run) { return RangeText(run.luns); }),
     "one LUN, or a range of LUNs that all look the same"},
    {"first", "First", kInteger.OrNull(),
     Of(&LunRow::run, [](const LunRun& run) { return run.luns.first; })},
    {"last", "Last", kInteger.OrNull(),
     Of(&LunRow::run, [](const LunRun& run) { return run.luns.last; })},
    {"seen", "Seen", "SEEN", kFlag.OrNull(), Of(&LunRow::run, &LunRun::seen),
     "the target reports it to this host; null: it did not answer"},
    {"masked_live", "Masked live", "MASKED LIVE", kFlag.OrNull(),
     Of(&LunRow::run, &LunRun::maskedLive)},
    {"masked_stored", "Masked in the store", "MASKED STORED", kFlag.OrNull(),
     Of(&LunRow::run, &LunRun::maskedStored), "null: no mask is stored"},
    {kPortStatus, &LunRow::port},
};

const auto kLunList = ListOf("luns", "LUNs", kLunFields, "no LUNs",
                             "LUNs that nobody sees and nobody masks are left out");

// add(targets, target, rows) of every known target; with -t for those ports that know the target.
template <class Row, class Add>
ExitCode ListTargets(Invocation& invocation, const Fields<std::vector<Row>>& list,
                     TargetQuestions questions, Add add) {
    CheckTargetOption(invocation);
    questions.only = WantedTarget(invocation);
    bool found = false;
    const auto addKnown = [&](const PortTargets& targets, std::vector<Row>* rows) {
        for (const KnownTarget* target : ChooseKnown(invocation, targets)) {
            invocation.CheckStop();
            found = true;
            add(targets, *target, rows);
        }
    };
    return CheckFound(invocation, ListPortTargets(invocation, list, questions, addKnown), found);
}

template <const auto& fields, ListLayout layout>
ExitCode ShowTargets(Invocation& invocation) {
    const auto add = [](const PortTargets& targets, const KnownTarget& target,
                        std::vector<TargetRow>* rows) {
        const Wwn name = target.PortName();
        rows->push_back({&targets.OwnPort(), &target, FindRow(*targets.bindings.block, name),
                         target.masked, StoredMaskOf(targets, name)});
    };
    return ListTargets(invocation, TargetList<fields, layout>(), {.masks = true}, add);
}

ExitCode TargetLuns(Invocation& invocation) {
    const auto add = [&](const PortTargets& targets, const KnownTarget& target,
                         std::vector<LunRow>* rows) {
        const Port& port = targets.OwnPort();
        const LunViews views{target.reported, target.masked,
                             StoredMaskOf(targets, target.PortName())};
        for (const LunRun& run : LunRuns(views)) {
            rows->push_back({&port, &target, run});
        }
    };
    return ListTargets(invocation, kLunList, {.masks = true, .luns = true}, add);
}

}  // namespace

CommandRows TargetCommands() {
    using enum ListLayout;
    static const Command kCommands[] = {
        {.path = "target list",
         .help = "list the targets of the ports",
         .arguments = kSelectArguments,
         .run = ShowTargets<kTargetSummaryFields, Table>,
         .example = "target list -p scsi:3",
         .result = ShapeOf<TargetList<kTargetSummaryFields, Table>>},
        {.path = "target show",
         .help = "show targets in detail",
         .arguments = kSelectArguments,
         .run = ShowTargets<kTargetDetailFields, Sections>,
         .example = "target show -t wwn:2b:00:02:45:4d:00:01:00",
         .result = ShapeOf<TargetList<kTargetDetailFields, Sections>>},
        {.path = "target luns",
         .help = "list the LUNs that targets report, with their masks",
         .arguments = kSelectArguments,
         .run = TargetLuns,
         .example = "target luns -p scsi:3",
         .result = ShapeOf<kLunList>},
    };
    return kCommands;
}

}  // namespace vxmgr
