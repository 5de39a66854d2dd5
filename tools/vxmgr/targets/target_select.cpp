#include "vxmgr/targets/target_select.h"

#include <cstring>

#include "vxmgr/fabric/scsi_target.h"

namespace vxmgr {
namespace {

// Of a port or a node.
bool IsName(const HX_SCSI_ADDRESS& address, const uint8_t (&name)[8]) {
    return address.type == HX_ADDRESS_PORT_NAME &&
           std::memcmp(address.address, name, sizeof name) == 0;
}

// A device record or a target entry.
template <class Row>
bool HasAddress(const HX_SCSI_ADDRESS& address, const Row& row) {
    if (address.type == HX_ADDRESS_PORT_ID) {
        return std::memcmp(address.address, row.portId, sizeof row.portId) == 0;
    }
    uint16_t numbers[2];
    std::memcpy(numbers, address.address, sizeof numbers);
    return address.type == HX_ADDRESS_BUS_TARGET && numbers[0] == row.bus &&
           numbers[1] == row.target;
}

const HX_DEVICE_RECORD& RowOf(const KnownTarget& target) {
    return target.record;
}
HX_TARGET_ENTRY& RowOf(HX_TARGET_ENTRY& entry) {
    return entry;
}

// A name is a port's first, a node's only when no port has it.
template <class Range>
auto* FindIn(Range&& range, const HX_SCSI_ADDRESS& address) {
    decltype(&*range.begin()) byNode = nullptr;
    for (auto& one : range) {
        const auto& row = RowOf(one);
        if (Wwn::Of(row.nodeName).IsZero()) {
            continue;
        }
        if (IsName(address, row.portName) || HasAddress(address, row)) {
            return &one;
        }
        if (byNode == nullptr && IsName(address, row.nodeName)) {
            byNode = &one;
        }
    }
    return byNode;
}

}  // namespace

HX_SCSI_ADDRESS GivenAddress(Invocation& invocation, const char* option) {
    const std::string text = invocation.Given().Text(option);
    HX_SCSI_ADDRESS address{};
    std::string error;
    if (!ParseTarget(text, &address, &error)) {
        invocation.Fail(ExitCode::Usage, std::string("--") + option + " " + text + ": " + error,
                        "`target list` shows the targets");
    }
    return address;
}

void CheckTargetOption(Invocation& invocation) {
    if (invocation.Given().Has("target")) {
        GivenAddress(invocation, "target");
    }
}

std::optional<ChosenTarget> FindTarget(const PortTargets& targets, const HX_SCSI_ADDRESS& address) {
    ChosenTarget chosen;
    const auto take = [&](const auto& row) {
        chosen.portName = Wwn::Of(row.portName);
        chosen.nodeName = Wwn::Of(row.nodeName);
    };
    chosen.known = FindIn(targets.known, address);
    if (chosen.known != nullptr) {
        take(chosen.known->record);
        chosen.bound = FindRow(*targets.bindings.block, chosen.portName);
        return chosen;
    }
    chosen.bound = FindIn(RowsOf(*targets.bindings.block), address);
    if (chosen.bound != nullptr) {
        take(*chosen.bound);
        chosen.known = targets.Known(chosen.portName);
        return chosen;
    }
    for (const HX_LUN_RECORD& record : RowsOf(*targets.masks.block)) {
        if (!IsFree(record) && IsName(address, record.portName)) {
            take(record);
            return chosen;
        }
    }
    return std::nullopt;
}

std::optional<ChosenTarget> FindTarget(Invocation& invocation, const PortTargets& targets,
                                       const char* option) {
    const HX_SCSI_ADDRESS address = GivenAddress(invocation, option);
    const auto chosen = FindTarget(targets, address);
    if (!chosen || address.type != HX_ADDRESS_BUS_TARGET) {
        return chosen;
    }
    const std::string object = targets.OwnPort().Object();
    const std::string means = invocation.Given().Text(option) + " is target " + chosen->Text();
    const HX_TARGET_ENTRY* stored = FindIn(RowsOf(*targets.bindings.block), address);
    if (FindIn(targets.known, address) == nullptr) {
        invocation.Add(
            {Severity::Info, means + ", as stored: the driver has none there", {}, object, {}});
    } else if (stored != nullptr && Wwn::Of(stored->portName) != chosen->portName) {
        invocation.Add({Severity::Warning,
                        means + ", as the driver has it now; in the store it is " +
                            Wwn::Of(stored->portName).Colons(),
                        "wwn:NAME says which one is meant",
                        object,
                        {}});
    } else {
        invocation.Add({Severity::Info, means + ", as the driver has it now", {}, object, {}});
    }
    return chosen;
}

void FailUnknown(Invocation& invocation, const PortTargets& targets, const char* option,
                 const std::string& text, const std::string& hint) {
    const bool down = LinkIsDown(targets.session);
    invocation.Fail(ExitCode::NotFound,
                    targets.OwnPort().Object() + ": " +
                        (down ? "the link is down, and so the driver knows no target: " : "") +
                        "--" + option + " " + invocation.Given().Text(option) + " " + text,
                    down ? kLinkHint : hint);
}

ChosenTarget ChooseTarget(Invocation& invocation, const PortTargets& targets) {
    const auto chosen = FindTarget(invocation, targets, "target");
    if (!chosen) {
        FailUnknown(invocation, targets, "target", "is neither known to the driver nor stored",
                    "`target list` and `bind list` show the targets");
    }
    return *chosen;
}

const KnownTarget* FindKnown(const std::vector<KnownTarget>& known,
                             const HX_SCSI_ADDRESS& address) {
    return FindIn(known, address);
}

std::vector<const KnownTarget*> ChooseKnown(Invocation& invocation, const PortTargets& targets) {
    std::vector<const KnownTarget*> chosen;
    if (invocation.Given().Has("target")) {
        const KnownTarget* found = FindKnown(targets.known, GivenAddress(invocation, "target"));
        if (found != nullptr) {
            chosen.push_back(found);
        }
        return chosen;
    }
    for (const KnownTarget& target : targets.known) {
        chosen.push_back(&target);
    }
    return chosen;
}

}  // namespace vxmgr
