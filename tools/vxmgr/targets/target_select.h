// Which target -t means, among those that a driver knows and those that are stored.
#pragma once

#include "vxmgr/bindings/store_port.h"

namespace vxmgr {

inline constexpr Argument kSelectTargetArgument =
    TextOption("-t,--target", "TARGET", "target: wwn:NAME, id:0xDDAAPP or BUS:TARGET");

// The address after an option like -t; ends the command when it is wrong.
HX_SCSI_ADDRESS GivenAddress(Invocation& invocation, const char* option);

// Ends the command when there is a -t, and a wrong one.
void CheckTargetOption(Invocation& invocation);

// A target by all that it is known by. Neither pointer is set for a target that was only named.
struct ChosenTarget {
    Wwn portName;
    Wwn nodeName;
    const KnownTarget* known = nullptr;
    const HX_TARGET_ENTRY* bound = nullptr;

    std::string Text() const { return portName.Colons(); }
};

// Ends the command: the option names a target that nobody knows.
[[noreturn]] void FailUnknown(Invocation& invocation, const PortTargets& targets,
                              const char* option, const std::string& text, const std::string& hint);

// Looks in the driver first, then in the stored bindings, then (names alone) in the stored masks.
// Nothing when the target is in none of them.
std::optional<ChosenTarget> FindTarget(const PortTargets& targets, const HX_SCSI_ADDRESS& address);

// The same for an option like -t. An address on the bus is the driver's where it has one there,
// else that of the store: what it means is told.
std::optional<ChosenTarget> FindTarget(Invocation& invocation, const PortTargets& targets,
                                       const char* option);

// The same for -t; ends the command when there is no such target.
ChosenTarget ChooseTarget(Invocation& invocation, const PortTargets& targets);

// The known target that an address means, or null.
const KnownTarget* FindKnown(const std::vector<KnownTarget>& known, const HX_SCSI_ADDRESS& address);

// The known targets that -t means, all of them without -t.
std::vector<const KnownTarget*> ChooseKnown(Invocation& invocation, const PortTargets& targets);

}  // namespace vxmgr
