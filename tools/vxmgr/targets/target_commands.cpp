#include "vxmgr/targets/commands.h"

#include "vxmgr/app/values.h"
#include "vxmgr/targets/target_luns.h"
#include "vxmgr/targets/target_records.h"
#include "vxmgr/targets/target_reported.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Value;

constexpr tools::Argument kSelectArguments[] = {kSelectTargetArgument};

using TargetRecord = Record (*)(const PortTargets& targets, const KnownTarget& target);
using FailedRecord = Record (*)(const Port& port);

// One record per known target; with -t for those ports that know the target.
ExitCode ListTargets(tools::Invocation& invocation, TargetRecord record, FailedRecord failed,
                     ListLayout layout) {
    CheckTargetOption(invocation);
    std::vector<Record> rows;
    const ExitCode exit = ListPortTargets(
        invocation,
        [&](PortTargets& targets, std::vector<Record>* into) {
            for (const KnownTarget* target : ChooseKnown(invocation, targets)) {
                invocation.CheckStop();
                into->push_back(record(targets, *target));
            }
        },
        failed, &rows);
    const bool none = rows.empty() && invocation.Given().Has("target");
    invocation.Result().AddList("targets", "Targets", layout, failed({}), "no targets",
                                std::move(rows));
    if (none) {
        invocation.Fail(ExitCode::NotFound,
                        "no selected port knows the target " + invocation.Given().Text("target"),
                        "see `target list`");
    }
    return exit;
}

Record LunRow(const Port& port, const tools::Wwn& target, const LunRun* run) {
    Record row;
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter", Value::Serial(port.Serial()));
    row.Add("target_wwn", "Target", target.IsZero() ? Value() : Value::Name(target), "TARGET");
    row.Add("luns", "LUNs", run != nullptr ? Value::Text(RangeText(run->luns)) : Value(), "LUNS");
    row.Add("first", "First", run != nullptr ? Value::Number(run->luns.first) : Value());
    row.Add("last", "Last", run != nullptr ? Value::Number(run->luns.last) : Value());
    row.Add("seen", "Seen", run != nullptr ? FlagOrNull(run->seen) : Value(), "SEEN");
    row.Add("masked_live", "Masked live", run != nullptr ? FlagOrNull(run->maskedLive) : Value(),
            "MASKED LIVE");
    row.Add("masked_stored", "Masked in the store",
            run != nullptr ? FlagOrNull(run->maskedStored) : Value(), "MASKED STORED");
    row.Add("status", "Status", StatusValue(port.failure));
    return row;
}

ExitCode TargetList(tools::Invocation& invocation) {
    return ListTargets(invocation, TargetSummary, FailedSummary, ListLayout::Table);
}

ExitCode TargetShow(tools::Invocation& invocation) {
    return ListTargets(invocation, TargetDetail, FailedDetail, ListLayout::Sections);
}

ExitCode TargetLuns(tools::Invocation& invocation) {
    CheckTargetOption(invocation);
    std::vector<Record> rows;
    bool found = false;
    const ExitCode exit = ListPortTargets(
        invocation,
        [&](PortTargets& targets, std::vector<Record>* into) {
            for (const KnownTarget* target : ChooseKnown(invocation, targets)) {
                invocation.CheckStop();
                found = true;
                const LunViews views{ReportedLuns(invocation, targets.OwnPort(), targets.Handle(),
                                                  target->PortName()),
                                     LiveMaskOf(targets, *target),
                                     StoredMaskOf(targets, target->PortName())};
                for (const LunRun& run : LunRuns(views)) {
                    into->push_back(LunRow(targets.OwnPort(), target->PortName(), &run));
                }
            }
        },
        [](const Port& port) { return LunRow(port, {}, nullptr); }, &rows);
    invocation.Result().AddList("luns", "LUNs", ListLayout::Table, LunRow({}, {}, nullptr),
                                "no LUNs", std::move(rows));
    if (!found && exit == ExitCode::Done && invocation.Given().Has("target")) {
        invocation.Fail(ExitCode::NotFound,
                        "no selected port knows the target " + invocation.Given().Text("target"),
                        "see `target list`");
    }
    return exit;
}

}  // namespace

tools::CommandRows TargetCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "target list",
            .risk = tools::Risk::Reads,
            .help = "list the targets of the ports",
            .schema = "target.list",
            .arguments = kSelectArguments,
            .run = TargetList,
            .example = "target list -p scsi:3",
        },
        {
            .path = "target show",
            .risk = tools::Risk::Reads,
            .help = "show targets in detail",
            .schema = "target.show",
            .arguments = kSelectArguments,
            .run = TargetShow,
            .example = "target show -t wwn:2b:00:02:45:4d:00:01:00",
        },
        {
            .path = "target luns",
            .risk = tools::Risk::Reads,
            .help = "list the LUNs that targets report, with their masks",
            .schema = "target.luns",
            .arguments = kSelectArguments,
            .run = TargetLuns,
            .example = "target luns -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
