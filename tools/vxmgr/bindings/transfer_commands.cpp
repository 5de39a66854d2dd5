// bind export, import.
#include "vxmgr/bindings/bind_document.h"
#include "vxmgr/bindings/store_live.h"
#include "vxmgr/bindings/commands.h"
#include "vxmgr/bindings/store_transfer.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

size_t CountTargets(const HX_TARGET_DATA& block) {
    const auto rows = RowsOf(block);
    return static_cast<size_t>(std::count_if(
        rows.begin(), rows.end(), [](const HX_TARGET_ENTRY& entry) { return !IsFree(entry); }));
}

// What the driver has bound, as the store would hold it.
HX_TARGET_DATA LiveBindings(tools::Invocation& invocation, const PortTargets& targets) {
    if (!targets.OwnPort().IsCurrentGeneration()) {
        invocation.Fail(
            ExitCode::NotSupported,
            targets.OwnPort().Object() + ": this driver does not tell which targets it has bound");
    }
    HX_TARGET_DATA block{};
    for (const KnownTarget& target : targets.known) {
        HX_TARGET_ENTRY* entry =
            IsBound(targets.OwnPort(), target).value_or(false) ? NewRow(block) : nullptr;
        if (entry == nullptr) {
            continue;
        }
        SetNames(*entry, target.NodeName(), target.PortName());
        std::memcpy(entry->portId, target.record.portId, sizeof entry->portId);
        entry->bus = static_cast<uint8_t>(target.record.bus);
        entry->target = static_cast<uint8_t>(target.record.target);
        entry->targetNumber = target.record.targetNumber;
        entry->bindingFlags = target.record.bindingFlags;
    }
    return block;
}

void Adapt(tools::Invocation&, const PortTargets&, HX_TARGET_DATA&) {}

void ApplyLive(tools::Invocation& invocation, PortTargets& targets, const HX_TARGET_DATA& block,
               Steps& steps) {
    ApplyBindings(invocation, targets, block, AwayTarget::Pending, steps);
}

ExitCode BindExport(tools::Invocation& invocation) {
    return Export(invocation, [&](PortTargets& targets, size_t* count) {
        const bool live = invocation.Given().Text("store") == kLive;
        if (!live && !targets.bindings.IsStored()) {
            TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
            invocation.Fail(ExitCode::NotFound, "there are no stored bindings to export");
        }
        const HX_TARGET_DATA block =
            live ? LiveBindings(invocation, targets) : *targets.bindings.block;
        *count = CountTargets(block);
        return BindDocument(targets.Origin(), block);
    });
}

ExitCode BindImport(tools::Invocation& invocation) {
    return Import<HX_TARGET_DATA>(
        invocation, {"bindings", ReadBindDocument, &PortTargets::bindings, Adapt, ApplyLive, ""});
}

}  // namespace

tools::CommandRows BindTransferCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "bind export",
            .risk = tools::Risk::Reads,
            .help = "write a port's bindings to a document",
            .schema = "bind.export",
            .arguments = ExportArguments(),
            .run = BindExport,
            .example = "bind export bindings.json -p scsi:3",
        },
        {
            .path = "bind import",
            .risk = tools::Risk::Reversible,
            .help = "take a port's bindings from a document",
            .schema = "bind.import",
            .arguments = ImportArguments(),
            .run = BindImport,
            .example = "bind import bindings.json -p scsi:3 --dry-run",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
