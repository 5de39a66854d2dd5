// bind list.
#include <set>

#include "vxmgr/app/port_id.h"
#include "vxmgr/app/values.h"
#include "vxmgr/bindings/bind_document.h"
#include "vxmgr/bindings/commands.h"
#include "vxmgr/bindings/store_choice.h"
#include "vxmgr/targets/target_records.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr tools::Argument kListArguments[] = {kStoreArgument};

// A binding as one store has it.
struct Binding {
    uint32_t bus;
    uint32_t target;
    uint32_t targetNumber;
    uint8_t flags;
};

template <class Row>
Binding BindingOf(const Row& row) {
    return {row.bus, row.target, row.targetNumber, row.bindingFlags};
}

void AddBinding(Record& row, const std::string& key, const std::string& label,
                const std::string& column, const std::optional<Binding>& binding) {
    const auto number = [&](uint32_t Binding::*member) {
        return binding ? Value::Number((*binding).*member) : Value();
    };
    const std::string address =
        binding ? std::to_string(binding->bus) + ":" + std::to_string(binding->target) : "";
    row.Add(key + "_bus", label + " bus", number(&Binding::bus));
    row.Add(key + "_target", label + " target", number(&Binding::target).Shown(address), column);
    row.Add(key + "_target_number", label + " target number", number(&Binding::targetNumber));
    row.Add(key + "_flags", label + " flags", binding ? HexValue(binding->flags, 2) : Value(),
            column + " FLAGS");
}

struct Names {
    tools::Wwn portName;
    tools::Wwn nodeName;
    uint32_t portId = 0;
};

Record BindRow(const Port& port, const Names& names, const HX_TARGET_ENTRY* entry,
               std::optional<size_t> slot, const std::optional<Binding>& live) {
    const bool named = !names.nodeName.IsZero();
    Record row;
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter", Value::Serial(port.Serial()));
    row.Add("target_wwn", "Target", named ? Value::Name(names.portName) : Value(), "TARGET");
    row.Add("node_wwn", "Node name", named ? Value::Name(names.nodeName) : Value());
    row.Add("port_id", "Port identifier", named ? HexValue(names.portId, 6) : Value(), "PORT ID");
    row.Add("slot", "Slot", slot ? Value::Number(*slot) : Value(), "SLOT");
    AddBinding(row, "stored", "Stored", "STORED",
               entry != nullptr ? std::optional(BindingOf(*entry)) : std::nullopt);
    row.Add("stored_lun_base", "Stored LUN base",
            entry != nullptr ? Value::Number(entry->lunBase) : Value());
    AddBinding(row, "live", "Live", "LIVE", live);
    row.Add("status", "Status", StatusValue(port.failure));
    return row;
}

template <class Row>
Names NamesOf(const Row& row) {
    return {tools::Wwn::Of(row.portName), tools::Wwn::Of(row.nodeName), PortIdOf(row.portId)};
}

std::optional<Binding> LiveBindingOf(const Port& port, const KnownTarget* known) {
    return known != nullptr && IsBound(port, *known).value_or(false)
               ? std::optional(BindingOf(known->record))
               : std::nullopt;
}

// Stored bindings by slot, then what is bound live alone.
void AddRows(PortTargets& targets, const StoreChoice& stores, std::vector<Record>* rows) {
    const Port& port = targets.OwnPort();
    std::set<std::string> listed;
    const auto entries = RowsOf(*targets.bindings.block);
    for (size_t slot = 0; stores.registry && slot < entries.size(); ++slot) {
        if (IsFree(entries[slot])) {
            continue;
        }
        const Names names = NamesOf(entries[slot]);
        listed.insert(names.portName.Digits());
        const KnownTarget* known = stores.live ? targets.Known(names.portName) : nullptr;
        rows->push_back(BindRow(port, names, &entries[slot], slot, LiveBindingOf(port, known)));
    }
    for (const KnownTarget& known : targets.known) {
        const auto live = LiveBindingOf(port, &known);
        if (stores.live && live && !listed.contains(known.PortName().Digits())) {
            rows->push_back(BindRow(port, NamesOf(known.record), nullptr, std::nullopt, live));
        }
    }
}

ExitCode BindList(tools::Invocation& invocation) {
    const StoreChoice stores = GivenStores(invocation);
    std::vector<Record> rows;
    const ExitCode exit = ListPortTargets(
        invocation,
        [&](PortTargets& targets, std::vector<Record>* into) {
            if (stores.registry) {
                TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
            }
            if (stores.live && !targets.OwnPort().IsCurrentGeneration()) {
                invocation.Note(targets.OwnPort().Object() +
                                ": this driver does not tell which targets it has bound");
            }
            AddRows(targets, stores, into);
        },
        [](const Port& port) { return BindRow(port, {}, nullptr, {}, {}); }, &rows);
    invocation.Result().AddList("bindings", "Bindings", tools::ListLayout::Table,
                                BindRow({}, {}, nullptr, {}, {}), "no bindings", std::move(rows));
    return exit;
}

}  // namespace

tools::CommandRows BindListCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "bind list",
            .risk = tools::Risk::Reads,
            .help = "list the bound targets",
            .schema = "bind.list",
            .arguments = kListArguments,
            .run = BindList,
            .example = "bind list --store registry",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
