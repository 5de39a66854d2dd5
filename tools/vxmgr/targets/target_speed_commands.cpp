// target speed get|set: the rate at which frames go to a target.
#include "vxmgr/commands.h"
#include "vxmgr/targets/target_walk.h"

namespace vxmgr {
namespace {

using LinkSpeed = HX_TARGET_LINK_SPEED;

constexpr char kAutoSpeed[] = "auto";
constexpr uint16_t kNegotiated = 0;  // as a set takes it

constexpr Argument kSpeedGetArguments[] = {kSelectTargetArgument};
constexpr Argument kSpeedSetArguments[] = {
    {.name = "SPEED", .help = "in Gbit/s, or auto: the rate that was negotiated", .required = true},
    {.name = kSelectTargetArgument.name,
     .valueName = kSelectTargetArgument.valueName,
     .help = kSelectTargetArgument.help,
     .required = true},
};

struct SpeedRow : TargetRowHead {
    std::optional<LinkSpeed> now = std::nullopt;
    std::optional<LinkSpeed> before = std::nullopt;

    const TargetRowHead& Head() const { return *this; }
};

bool IsSet(const LinkSpeed& speed) {
    return (speed.flags & HX_LINK_SPEED_SET) != 0;
}

template <auto member>
constexpr auto kSpeedOf = [](const LinkSpeed& speeds) { return SpeedValue(speeds.*member); };

// setting: something was set, and there is a speed before.
template <bool setting>
const Fields<std::vector<SpeedRow>>& SpeedList() {
    constexpr auto kGigabits = Integer("Gbit/s").OrNull();
    static const Fields<SpeedRow> kRows = {
        {kTargetRowHeadFields, &SpeedRow::Head},
        {"speed_gbit", "Speed", "SPEED", kGigabits, Of(&SpeedRow::now, kSpeedOf<&LinkSpeed::speed>),
         "at which frames go to the target"},
        {"previous_gbit", "Before", setting ? "BEFORE" : "", kGigabits,
         Of(&SpeedRow::before, kSpeedOf<&LinkSpeed::speed>), "before a set"},
        {"target_max_gbit", "Target can", "TARGET CAN", kGigabits,
         Of(&SpeedRow::now, kSpeedOf<&LinkSpeed::highest>)},
        {"port_gbit", "Link", "LINK", kGigabits,
         Of(&SpeedRow::now, kSpeedOf<&LinkSpeed::portSpeed>), "of the port's link"},
        {"set", "Set", "SET", kFlag.OrNull(), Of(&SpeedRow::now, IsSet),
         "set by management; false: as negotiated"},
        {kTargetRowStatus, &SpeedRow::Head},
    };
    static const auto kFields = ListOf("speeds", "Speeds", kRows, "no targets");
    return kFields;
}

ExitCode TargetSpeedGet(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const auto ask = [](uint32_t handle, const HX_SCSI_ADDRESS& address, LinkSpeed* speed) {
        return HXGetTargetIDMALinkSpeed(handle, &address, speed);
    };
    const auto answers = AskTargets<LinkSpeed>(invocation, ports, "speeds of targets", ask);
    const ExitCode exit = ReportAnswers(invocation, answers);
    std::vector<SpeedRow> rows;
    bool found = false;
    for (const auto& one : answers) {
        for (const TargetAnswer<LinkSpeed>& target : one.answer) {
            found = true;
            rows.push_back(
                {{one.port, target.name, target.status},
                 target.status == HXMGT_SUCCESS ? std::optional(target.told) : std::nullopt,
                 {}});
        }
        if (one.answer.empty() && one.status != HXMGT_SUCCESS) {
            rows.push_back({{one.port}, {}, {}});
        }
    }
    invocation.Result() = SpeedList<false>().Make(rows);
    return CheckFound(invocation, exit, found);
}

uint16_t GivenSpeed(Invocation& invocation) {
    const std::string text = invocation.Given().Text("SPEED");
    if (EqualIgnoringCase(text, kAutoSpeed)) {
        return kNegotiated;
    }
    const auto gigabits = ParseNumber(text);
    const auto code = gigabits ? SpeedCodeOf(*gigabits) : std::nullopt;
    if (!code) {
        invocation.Fail(ExitCode::Usage, "SPEED: \"" + text + "\" is no speed of a link",
                        SpeedsText() + " (Gbit/s) or auto");
    }
    return *code;
}

bool IsAt(const LinkSpeed& speed, uint16_t wanted) {
    return wanted == kNegotiated ? !IsSet(speed) : IsSet(speed) && speed.speed == wanted;
}

LinkSpeed ReadSpeed(const OpenTarget& target) {
    LinkSpeed speed{};
    const HX_STATUS status = HXGetTargetIDMALinkSpeed(target.Handle(), &target.address, &speed);
    if (status != HXMGT_SUCCESS) {
        target.Fail(status, "the speed cannot be read of target");
    }
    return speed;
}

ExitCode TargetSpeedSet(Invocation& invocation) {
    const uint16_t wanted = GivenSpeed(invocation);
    const OpenTarget target = OpenGivenTarget(invocation);
    GrowingResult<std::vector<SpeedRow>> rows(invocation.Result(), SpeedList<true>());
    rows.push_back({target.Head(), {}, {}});
    SpeedRow& row = rows.front();
    const LinkSpeed before = ReadSpeed(target);
    row.before = row.now = before;
    if (IsAt(before, wanted)) {
        return invocation.DoneWith("nothing to do");
    }
    const std::string given = invocation.Given().Text("SPEED");
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: the speed to target " + target.name.Colons() +
                                   " would be set to " + given);
    }
    const HX_STATUS status = HXSetTargetIDMALinkSpeed(target.Handle(), &target.address, wanted);
    if (status != HXMGT_SUCCESS) {
        row.status = status;
        target.Fail(status, status == HXMGT_INVALID_PARAMETER
                                ? "the driver refuses a speed of " + given +
                                      " (faster than the port's link?) to target"
                                : "the speed cannot be set to target");
    }
    invocation.Changed();
    row.now = ReadSpeed(target);
    if (!IsAt(*row.now, wanted)) {
        invocation.Fail(ExitCode::NotProven, "the speed was set, but reads back differently",
                        "can the target do this speed? `target speed get` tells");
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows TargetSpeedCommands() {
    static const Command kCommands[] = {
        {.path = "target speed get",
         .help = "show the rates at which frames go to targets",
         .schema = "target.speed",
         .arguments = kSpeedGetArguments,
         .run = TargetSpeedGet,
         .example = "target speed get -p scsi:3",
         .result = ShapeOf<SpeedList<false>>},
        {.path = "target speed set",
         .risk = Risk::Reversible,
         .help = "set the rate at which frames go to a target, until the driver stops",
         .schema = "target.speed",
         .arguments = kSpeedSetArguments,
         .run = TargetSpeedSet,
         .example = "target speed set 16 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
         .result = ShapeOf<SpeedList<true>>},
    };
    return kCommands;
}

}  // namespace vxmgr
