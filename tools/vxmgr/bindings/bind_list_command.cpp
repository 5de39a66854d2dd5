// bind list.
#include <set>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/bindings/store_port.h"
#include "vxmgr/bindings/store_steps.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

constexpr Argument kListArguments[] = {kStoreArgument};

// A binding as the store and the driver have it, or one of them. Of a port that cannot be read
// there is neither.
struct BindRow {
    const Port* port;
    const HX_TARGET_ENTRY* stored = nullptr;
    size_t place = 0;
    const HX_DEVICE_RECORD* live = nullptr;

    std::string Serial() const { return port->Serial(); }
    std::optional<size_t> Slot() const { return stored ? std::optional(place) : std::nullopt; }
};

// What both records tell of the target, by the stored one where there is one.
template <auto stored, auto live, auto make>
auto NamedBy(const BindRow& row) {
    const bool named = row.stored || (row.live && !IsFree(*row.live));
    return !named ? std::nullopt
                  : std::optional(make(row.stored ? row.stored->*stored : row.live->*live));
}

constexpr auto kAddressText = [](const auto& binding) {
    return Value(Value::Number(binding.target)
                     .Shown(std::to_string(binding.bus) + ":" + std::to_string(binding.target)));
};

constexpr auto kNumber = kInteger.OrNull();
constexpr auto kFlags = Hexadecimal(2).OrNull();
const Fields<BindRow> kBindRowFields = {
    {PortKeys(), &BindRow::port},
    {"serial", "Adapter", kSerial.OrNull(), &BindRow::Serial},
    {"target_wwn", "Target", "TARGET", kWwn.OrNull(),
     NamedBy<&HX_TARGET_ENTRY::portName, &HX_DEVICE_RECORD::portName, Wwn::Of>,
     "port name; null in the row of a port that failed"},
    {"node_wwn", "Node name", kWwn.OrNull(),
     NamedBy<&HX_TARGET_ENTRY::nodeName, &HX_DEVICE_RECORD::nodeName, Wwn::Of>},
    {"port_id", "Port identifier", "PORT ID", Hexadecimal(6).OrNull(),
     NamedBy<&HX_TARGET_ENTRY::portId, &HX_DEVICE_RECORD::portId, PortIdOf>},
    {"slot", "Slot", "SLOT", kNumber, &BindRow::Slot, "place in the stored block"},
    {"stored_bus", "HX_TARGET_ENTRY bus", kNumber,
     Of(&BindRow::stored, Packed<&HX_TARGET_ENTRY::bus>)},
    {"stored_target", "HX_TARGET_ENTRY target", "STORED", kNumber,
     Of(&BindRow::stored, kAddressText)},
    {"stored_target_number", "HX_TARGET_ENTRY target number", kNumber,
     Of(&BindRow::stored, Packed<&HX_TARGET_ENTRY::targetNumber>)},
    {"stored_flags", "HX_TARGET_ENTRY flags", "STORED FLAGS", kFlags,
     Of(&BindRow::stored, Packed<&HX_TARGET_ENTRY::bindingFlags>)},
    {"stored_lun_base", "HX_TARGET_ENTRY LUN base", kNumber,
     Of(&BindRow::stored, Packed<&HX_TARGET_ENTRY::lunBase>)},
    {"live_bus", "HX_DEVICE_RECORD bus", kNumber,
     Of(&BindRow::live, Packed<&HX_DEVICE_RECORD::bus>)},
    {"live_target", "HX_DEVICE_RECORD target", "LIVE", kNumber, Of(&BindRow::live, kAddressText)},
    {"live_target_number", "HX_DEVICE_RECORD target number", kNumber,
     Of(&BindRow::live, Packed<&HX_DEVICE_RECORD::targetNumber>)},
    {"live_flags", "HX_DEVICE_RECORD flags", "LIVE FLAGS", kFlags,
     Of(&BindRow::live, Packed<&HX_DEVICE_RECORD::bindingFlags>)},
    {"status", "Status", kText.OrNull(),
     [](const BindRow& row) { return StatusValue(row.port->failure); }},
};

const auto kBindListFields = ListOf("bindings", "Bindings", kBindRowFields, "no bindings",
                                    "a binding that is in one store alone has null for the other");

const HX_DEVICE_RECORD* LiveBindingOf(const Port& port, const KnownTarget* known) {
    return known != nullptr && IsBound(port, *known).value_or(false) ? &known->record : nullptr;
}

// Stored bindings by slot, then what is bound live alone.
void AddBindings(const PortTargets& targets, const StoreChoice& stores,
                 std::vector<BindRow>* rows) {
    const Port& port = targets.OwnPort();
    std::set<std::string> listed;
    const auto entries = RowsOf(*targets.bindings.block);
    for (size_t slot = 0; stores.registry && slot < entries.size(); ++slot) {
        if (!IsFree(entries[slot])) {
            const Wwn name = Wwn::Of(entries[slot].portName);
            listed.insert(name.Digits());
            rows->push_back({&port, &entries[slot], slot,
                             LiveBindingOf(port, stores.live ? targets.Known(name) : nullptr)});
        }
    }
    for (const KnownTarget& known : targets.known) {
        const HX_DEVICE_RECORD* const live = LiveBindingOf(port, &known);
        if (stores.live && live && !listed.contains(known.PortName().Digits())) {
            rows->push_back({&port, nullptr, 0, live});
        }
    }
}

ExitCode BindList(Invocation& invocation) {
    const StoreChoice stores = GivenStores(invocation);
    const auto add = [&](const PortTargets& targets, std::vector<BindRow>* rows) {
        if (stores.registry) {
            TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
        }
        if (stores.live && !targets.OwnPort().IsCurrentGeneration()) {
            invocation.Note(targets.OwnPort().Object() +
                            ": this driver does not tell which targets it has bound");
        }
        AddBindings(targets, stores, rows);
    };
    return ListPortTargets(invocation, kBindListFields, {}, add);
}

}  // namespace

CommandRows BindListCommands() {
    static const Command kCommands[] = {
        {.path = "bind list",
         .help = "list the bound targets",
         .arguments = kListArguments,
         .run = BindList,
         .example = "bind list --store registry",
         .result = ShapeOf<kBindListFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
