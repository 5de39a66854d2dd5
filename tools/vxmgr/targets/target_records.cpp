#include "vxmgr/targets/target_records.h"

#include "common/text.h"
#include "vxmgr/app/port_id.h"
#include "vxmgr/app/values.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Value;

std::string Address(uint32_t bus, uint32_t target) {
    return std::to_string(bus) + ":" + std::to_string(target);
}

Value MaskedValue(const std::optional<LunSet>& masked) {
    return masked ? Value::Number(masked->count()) : Value();
}

void AddHead(Record& row, const Port& port, const KnownTarget& target) {
    const HX_DEVICE_RECORD& record = target.record;
    const auto known = [&](Value value) { return target.NodeName().IsZero() ? Value() : value; };
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter", Value::Serial(port.Serial()));
    row.Add("target_wwn", "Port name", known(Value::Name(target.PortName())), "TARGET");
    row.Add("node_wwn", "Node name", known(Value::Name(target.NodeName())));
    row.Add("port_id", "Port identifier", known(HexValue(PortIdOf(record.portId), 6)), "PORT ID");
    row.Add("bus", "Bus", known(Value::Number(record.bus)), "BUS");
    row.Add("target", "Target", known(Value::Number(record.target)), "ID");
    row.Add(
        "symbolic_name", "Name",
        FieldValue(reinterpret_cast<const char*>(record.symbolicName), sizeof record.symbolicName),
        "NAME");
    const char* role = RoleText(record.roleAndState);
    row.Add("role", "Role", role != nullptr ? Value::Text(role) : Value(), "ROLE");
    row.Add("present", "Reached now", known(Value::Flag(target.present)), "PRESENT");
    row.Add("luns", "LUNs", target.luns ? Value::Number(*target.luns) : Value(), "LUNS");
}

void AddBinding(Record& row, std::optional<bool> live, std::optional<bool> stored) {
    row.Add("bound_live", "Bound live", FlagOrNull(live), "BOUND LIVE");
    row.Add("bound_stored", "Bound in the store", FlagOrNull(stored), "BOUND STORED");
}

Record Summary(const Port& port, const KnownTarget& target, std::optional<bool> live,
               std::optional<bool> stored, const std::optional<LunSet>& liveMask,
               const std::optional<LunSet>& storedMask) {
    Record row;
    AddHead(row, port, target);
    AddBinding(row, live, stored);
    row.Add("masked_live", "Masked live", MaskedValue(liveMask), "MASKED LIVE");
    row.Add("masked_stored", "Masked in the store", MaskedValue(storedMask), "MASKED STORED");
    row.Add("status", "Status", StatusValue(port.failure));
    return row;
}

Record Detail(const Port& port, const KnownTarget& target, std::optional<bool> live,
              const HX_TARGET_ENTRY* stored, const std::optional<LunSet>& liveMask,
              const std::optional<LunSet>& storedMask) {
    const HX_DEVICE_RECORD& record = target.record;
    const bool current = port.IsCurrentGeneration();
    Record row;
    row.title = "Target " + target.PortName().Colons() + " of port " + std::to_string(port.index);
    AddHead(row, port, target);
    row.Add("target_number", "Target number", Value::Number(record.targetNumber));
    row.Add("role_and_state", "Role and state word",
            current ? HexValue(record.roleAndState, 8) : Value());
    row.Add("port_flags", "Port flags", current ? HexValue(record.portFlags, 4) : Value());
    row.Add("binding_flags", "Binding flags", current ? HexValue(record.bindingFlags, 2) : Value());
    AddBinding(row, live, stored != nullptr);
    row.Add("stored_address", "Stored bus:target",
            stored != nullptr ? Value::Text(Address(stored->bus, stored->target)) : Value());
    row.Add("stored_flags", "Stored flags",
            stored != nullptr ? HexValue(stored->bindingFlags, 2) : Value());
    row.Add("masked_live", "Masked live", liveMask ? LunsValue(*liveMask) : Value());
    row.Add("masked_stored", "Masked in the store", storedMask ? LunsValue(*storedMask) : Value());
    row.Add("status", "Status", StatusValue(port.failure));
    return row;
}

}  // namespace

Value LunsValue(const LunSet& luns) {
    return luns.none() ? Value::Text("").Shown("none") : Value::Text(LunsText(luns));
}

Value FlagOrNull(const std::optional<bool>& flag) {
    return flag ? Value::Flag(*flag) : Value();
}

std::optional<LunSet> LiveMaskOf(const PortTargets& targets, const KnownTarget& target) {
    LunSet masked;
    const HX_STATUS status =
        ReadLiveMask(targets.OwnPort(), targets.Handle(), target.PortName(), &masked);
    return status == HXMGT_SUCCESS ? std::optional(masked) : std::nullopt;
}

std::optional<LunSet> StoredMaskOf(const PortTargets& targets, const tools::Wwn& target) {
    const HX_LUN_RECORD* record = FindRow(*targets.masks.block, target);
    return record == nullptr
               ? std::nullopt
               : std::optional(MaskedOf(*record) & FirstLuns(LunLimit(targets.OwnPort())));
}

Record TargetSummary(const PortTargets& targets, const KnownTarget& target) {
    return Summary(targets.OwnPort(), target, IsBound(targets.OwnPort(), target),
                   FindRow(*targets.bindings.block, target.PortName()) != nullptr,
                   LiveMaskOf(targets, target), StoredMaskOf(targets, target.PortName()));
}

Record TargetDetail(const PortTargets& targets, const KnownTarget& target) {
    return Detail(targets.OwnPort(), target, IsBound(targets.OwnPort(), target),
                  FindRow(*targets.bindings.block, target.PortName()), LiveMaskOf(targets, target),
                  StoredMaskOf(targets, target.PortName()));
}

Record FailedSummary(const Port& port) {
    return Summary(port, {}, {}, {}, {}, {});
}

Record FailedDetail(const Port& port) {
    Record row = Detail(port, {}, {}, nullptr, {}, {});
    row.title = "Port " + std::to_string(port.index);
    return row;
}

}  // namespace vxmgr
