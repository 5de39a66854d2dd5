#include "vxmgr/targets/target_walk.h"

namespace vxmgr {

std::optional<HX_SCSI_ADDRESS> WantedTarget(Invocation& invocation) {
    return invocation.Given().Has("target") ? std::optional(GivenAddress(invocation, "target"))
                                            : std::nullopt;
}

std::vector<const KnownTarget*> WantedOf(const std::vector<KnownTarget>& known,
                                         const std::optional<HX_SCSI_ADDRESS>& wanted) {
    std::vector<const KnownTarget*> targets;
    if (wanted) {
        if (const KnownTarget* found = FindKnown(known, *wanted)) {
            targets.push_back(found);
        }
        return targets;
    }
    for (const KnownTarget& target : known) {
        if (!target.NodeName().IsZero()) {
            targets.push_back(&target);
        }
    }
    return targets;
}

ExitCode CheckFound(Invocation& invocation, ExitCode exit, bool found) {
    if (!found && exit == ExitCode::Done && invocation.Given().Has("target")) {
        invocation.Fail(ExitCode::NotFound,
                        "no selected port knows the target " + invocation.Given().Text("target"),
                        "see `target list`");
    }
    return exit;
}

const Fields<TargetRowHead> kTargetRowHeadFields = {
    {PortKeys(kPortIndex | kOldSerialKey), &TargetRowHead::port},
    {"target_wwn", "Target", "TARGET", kWwn.OrNull(), &TargetRowHead::name,
     "port name; null in the row of a port that failed, or knows no target"},
};

const Fields<TargetRowHead> kTargetRowStatus = {
    {"status", "Status", kText.OrNull().Quiet(),
     [](const TargetRowHead& row) {
         return StatusValue(row.name ? row.status : row.port->failure);
     },
     "null, or the status that the target or its port failed with"}};

OpenTarget OpenGivenTarget(Invocation& invocation) {
    const HX_SCSI_ADDRESS wanted = GivenAddress(invocation, "target");
    OpenTarget target{OpenSelectedPort(invocation), {}, {}};
    std::vector<KnownTarget> known;
    const std::string object = target.OwnPort().Object();
    invocation.Require(ReadKnownTargets(target.OwnPort(), target.Handle(), &known), "known targets",
                       object);
    const KnownTarget* found = FindKnown(known, wanted);
    if (found == nullptr) {
        const bool down = LinkIsDown(target.session);
        invocation.Fail(ExitCode::NotFound,
                        object + (down ? ": the link is down, and so the driver knows no target"
                                       : ": the driver does not know the target " +
                                             invocation.Given().Text("target")),
                        down ? kLinkHint : "see `target list`");
    }
    target.name = found->PortName();
    target.address = AddressByPortName(target.name);
    return target;
}

}  // namespace vxmgr
