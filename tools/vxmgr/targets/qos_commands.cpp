// qos get|set: priorities of targets' logical units.
#include <cstring>

#include "vxmgr/app/code_text.h"
#include "vxmgr/commands.h"
#include "vxmgr/targets/qos_levels.h"
#include "vxmgr/targets/target_walk.h"

namespace vxmgr {
namespace {

constexpr Argument kQosGetArguments[] = {kSelectTargetArgument};
constexpr Argument kQosSetArguments[] = {
    {.name = "LEVEL", .help = "none, low, medium, high, or 0 to 3", .required = true},
    TextOption("--luns", "LUNS", "LUNs and ranges of them, as in 0-7,12 (all)"),
    {.name = kSelectTargetArgument.name,
     .valueName = kSelectTargetArgument.valueName,
     .help = kSelectTargetArgument.help,
     .required = true},
};

struct QosRow : TargetRowHead {
    std::optional<QosRun> run = std::nullopt;
    std::optional<bool> inForce = std::nullopt;

    const TargetRowHead& Head() const { return *this; }
};

struct QosResult {
    std::optional<bool> enabled = std::nullopt;
    std::vector<QosRow> levels{};
};

template <bool before>
const Fields<QosResult>& QosFields() {
    static const Fields<QosRow> kRows = {
        {kTargetRowHeadFields, &QosRow::Head},
        {"luns", "LUNs", "LUNS", kText.OrNull(),
         Of(&QosRow::run, [](const QosRun& run) { return RangeText(run.luns); }),
         "one LUN, or a range of LUNs that have the same level"},
        {"level", "Level", "LEVEL", Choice(kQosLevels).OrNull(),
         Of(&QosRow::run, [](const QosRun& run) { return NameAt(kQosLevels, run.level); })},
        {"previous", "Before", before ? "BEFORE" : "", Choice(kQosLevels).OrNull(),
         [](const QosRow& row) {
             return row.run && row.run->before ? NameAt(kQosLevels, *row.run->before) : nullptr;
         },
         "before a set"},
        {"in_force", "In force", "IN FORCE", kFlag.OrNull(), &QosRow::inForce},
        {kTargetRowStatus, &QosRow::Head},
    };
    static const Fields<QosResult> kFields = {
        {"enabled", "", kFlag.OrNull(), &QosResult::enabled,
         "priorities are in force on every port that tells; null: none does"},
        {"levels", "Levels", kRows, &QosResult::levels, "no targets"},
    };
    return kFields;
}

struct Priorities {
    HX_LUN_QOS qos{};
    std::optional<bool> inForce = std::nullopt;
};

std::optional<bool> AreInForce(uint32_t handle) {
    uint8_t enabled = 0;
    return HXGetLunQosEnable(handle, &enabled) == HXMGT_SUCCESS ? std::optional(enabled != 0)
                                                                : std::nullopt;
}

HX_STATUS ReadPriorities(uint32_t handle, const HX_SCSI_ADDRESS& address, Priorities* told) {
    told->inForce = AreInForce(handle);
    return HXGetLunQos(handle, &address, &told->qos);
}

void WarnWhenOff(Invocation& invocation, const Port& port, std::optional<bool> inForce) {
    if (inForce && !*inForce) {
        invocation.Add({Severity::Warning,
                        "priorities are not in force",
                        "adapter and driver decide about that: levels are kept, and act once it is "
                        "switched on there",
                        port.Object(),
                        {}});
    }
}

void AddRuns(const TargetRowHead& head, const Priorities& told, const HX_LUN_QOS* before,
             QosResult& result) {
    for (const QosRun& run : QosRuns(told.qos, before)) {
        result.levels.push_back({head, run, told.inForce});
    }
    if (told.inForce) {
        result.enabled = result.enabled.value_or(true) && *told.inForce;
    }
}

ExitCode QosGet(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const auto answers =
        AskTargets<Priorities>(invocation, ports, "priorities of LUNs", ReadPriorities);
    const ExitCode exit = ReportAnswers(invocation, answers);
    QosResult result;
    bool found = false;
    for (const auto& one : answers) {
        std::optional<bool> inForce;
        for (const TargetAnswer<Priorities>& target : one.answer) {
            found = true;
            const TargetRowHead head{one.port, target.name, target.status};
            if (target.status == HXMGT_SUCCESS) {
                inForce = target.told.inForce;
                AddRuns(head, target.told, nullptr, result);
            } else {
                result.levels.push_back({head, {}, {}});
            }
        }
        WarnWhenOff(invocation, *one.port, inForce);
        if (one.answer.empty() && one.status != HXMGT_SUCCESS) {
            result.levels.push_back({{one.port}, {}, {}});
        }
    }
    invocation.Result() = QosFields<false>().Make(result);
    return CheckFound(invocation, exit, found);
}

LunSet GivenQosLuns(Invocation& invocation) {
    LunSet luns;
    std::string error;
    if (!ParseLuns(invocation.Given().Text("luns", "all"), &luns, &error)) {
        invocation.Fail(ExitCode::Usage, "--luns: " + error, "as in 0-7,12, or all");
    }
    const LunSet limit = FirstLuns(HX_QOS_LUNS);
    if (!luns.all() && (luns & ~limit).any()) {
        invocation.Fail(ExitCode::NotSupported, "LUNs 0 to 255 alone have priorities",
                        "leave out " + LunsText(luns & ~limit));
    }
    return luns & limit;
}

ExitCode QosSet(Invocation& invocation) {
    const std::string name = invocation.Given().Text("LEVEL");
    const auto level = ParseQosLevel(name);
    if (!level) {
        invocation.Fail(ExitCode::Usage, "LEVEL: \"" + name + "\" is no priority",
                        "none, low, medium, high, or 0 to 3");
    }
    const LunSet luns = GivenQosLuns(invocation);
    const OpenTarget target = OpenGivenTarget(invocation);
    Priorities before;
    HX_STATUS status = ReadPriorities(target.Handle(), target.address, &before);
    if (status != HXMGT_SUCCESS) {
        target.Fail(status, "priorities cannot be read of target");
    }
    HX_LUN_QOS wanted = before.qos;
    for (uint32_t lun = 0; lun < HX_QOS_LUNS; ++lun) {
        wanted.levels[lun] = luns[lun] ? *level : wanted.levels[lun];
    }
    Priorities after = before;
    const auto tell = [&] {
        QosResult result;
        AddRuns(target.Head(), after, &before.qos, result);
        invocation.Result() = QosFields<true>().Make(result);
    };
    tell();
    const bool needed = std::memcmp(&wanted, &before.qos, sizeof wanted) != 0;
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: LUNs " + LunsText(luns) + " of target " + target.name.Colons() +
                        " would get priority " + kQosLevels[*level]);
    } else {
        HX_LUN_QOS sent = wanted;
        status = HXSetLunQos(target.Handle(), &target.address, &sent);
        if (status != HXMGT_SUCCESS) {
            target.Fail(status, "priorities cannot be set of target");
        }
        invocation.Changed();
        status = ReadPriorities(target.Handle(), target.address, &after);
        tell();
        if (status != HXMGT_SUCCESS || std::memcmp(&wanted, &after.qos, sizeof wanted) != 0) {
            invocation.Fail(ExitCode::NotProven,
                            "the priorities were set, but read back differently", "see `qos get`");
        }
    }
    WarnWhenOff(invocation, target.OwnPort(), after.inForce);
    return ExitCode::Done;
}

}  // namespace

CommandRows QosCommands() {
    static const Command kCommands[] = {
        {.path = "qos get",
         .help = "show the priorities of targets' logical units",
         .schema = "qos",
         .arguments = kQosGetArguments,
         .run = QosGet,
         .example = "qos get -p scsi:3",
         .result = ShapeOf<QosFields<false>>},
        {.path = "qos set",
         .risk = Risk::Reversible,
         .help = "set the priority of logical units of a target",
         .schema = "qos",
         .arguments = kQosSetArguments,
         .run = QosSet,
         .example = "qos set high --luns 0-1 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
         .result = ShapeOf<QosFields<true>>},
    };
    return kCommands;
}

}  // namespace vxmgr
