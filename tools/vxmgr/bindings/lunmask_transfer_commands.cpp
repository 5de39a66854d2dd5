// lunmask export, import.
#include "vxmgr/bindings/commands.h"
#include "vxmgr/bindings/lunmask_document.h"
#include "vxmgr/bindings/lunmask_live.h"
#include "vxmgr/bindings/store_transfer.h"
#include "vxmgr/targets/target_records.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

size_t CountTargets(const HX_LUN_DATA& block) {
    const auto rows = RowsOf(block);
    return static_cast<size_t>(std::count_if(
        rows.begin(), rows.end(), [](const HX_LUN_RECORD& record) { return !IsFree(record); }));
}

// The driver's generation decides on the form in which masks are stored.
uint16_t FormOf(const Port& port) {
    return port.IsCurrentGeneration() ? 2 : 1;
}

// The driver's masks, as the store would hold them.
std::unique_ptr<HX_LUN_DATA> LiveMasks(tools::Invocation& invocation, const PortTargets& targets) {
    auto block = std::make_unique<HX_LUN_DATA>();
    block->version = FormOf(targets.OwnPort());
    for (const KnownTarget& target : targets.known) {
        invocation.CheckStop();
        const auto masked = LiveMaskOf(targets, target);
        HX_LUN_RECORD* record = masked ? NewRow(*block) : nullptr;
        if (record != nullptr) {
            SetNames(*record, target.NodeName(), target.PortName());
            SetMasked(*masked, *record);
        }
    }
    return block;
}

void Adapt(tools::Invocation& invocation, const PortTargets& targets, HX_LUN_DATA& block) {
    const LunSet beyond = ~FirstLuns(LunLimit(targets.OwnPort()));
    for (const HX_LUN_RECORD& record : RowsOf(block)) {
        if (const LunSet lost = MaskedOf(record) & beyond; lost.any()) {
            invocation.Fail(ExitCode::Refused,
                            "the document masks LUNs " + LunsText(lost) + " of " +
                                tools::Wwn::Of(record.portName).Colons() +
                                ": this driver has masks for LUNs 0 to " +
                                std::to_string(LunLimit(targets.OwnPort()) - 1) + " alone");
        }
    }
    const uint16_t form = FormOf(targets.OwnPort());
    if (block.version != form) {
        invocation.Note("the masks were stored in form " + std::to_string(block.version) +
                        "; this driver stores them in form " + std::to_string(form));
        block.version = form;
    }
}

void ApplyLive(tools::Invocation& invocation, PortTargets& targets, const HX_LUN_DATA& block,
               Steps& steps) {
    ApplyMasks(invocation, targets, block, AwayTarget::Pending, steps);
}

ExitCode LunMaskExport(tools::Invocation& invocation) {
    return Export(invocation, [&](PortTargets& targets, size_t* count) {
        const bool live = invocation.Given().Text("store") == kLive;
        if (!live && !targets.masks.IsStored()) {
            TellState(invocation, targets.OwnPort(), targets.masks.state, "LUN masks");
            invocation.Fail(ExitCode::NotFound, "there are no stored LUN masks to export");
        }
        const std::unique_ptr<HX_LUN_DATA> block =
            live ? LiveMasks(invocation, targets) : AsStored(*targets.masks.block);
        *count = CountTargets(*block);
        return LunMaskDocument(targets.Origin(), *block);
    });
}

ExitCode LunMaskImport(tools::Invocation& invocation) {
    return Import<HX_LUN_DATA>(
        invocation, {"LUN masks", ReadLunMaskDocument, &PortTargets::masks, Adapt, ApplyLive,
                     "LUNs that become masked are hidden from this host: I/O to them stops."});
}

}  // namespace

tools::CommandRows LunmaskTransferCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "lunmask export",
            .risk = tools::Risk::Reads,
            .help = "write a port's LUN masks to a document",
            .schema = "lunmask.export",
            .arguments = ExportArguments(),
            .run = LunMaskExport,
            .example = "lunmask export masks.json -p scsi:3",
        },
        {
            .path = "lunmask import",
            .risk = tools::Risk::InterruptsIo,
            .help = "take a port's LUN masks from a document",
            .schema = "lunmask.import",
            .arguments = ImportArguments(),
            .run = LunMaskImport,
            .example = "lunmask import masks.json -p scsi:3 --dry-run",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
