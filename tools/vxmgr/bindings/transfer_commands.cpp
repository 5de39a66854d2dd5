// bind export, import; lunmask export, import: the same for both kinds of stored data.
#include "vxmgr/app/files.h"
#include "vxmgr/bindings/store_difference.h"
#include "vxmgr/bindings/store_documents.h"
#include "vxmgr/bindings/store_live.h"
#include "vxmgr/commands.h"
#include "vxmgr/targets/target_records.h"

namespace vxmgr {
namespace {

constexpr size_t kLongestDocument = size_t{16} << 20;
constexpr size_t kRowsInQuestion = 12;

constexpr const char* kExportStores[] = {kInRegistry, kLive};
constexpr Argument kExportArguments[] = {
    {.name = "FILE", .help = "the document to write", .required = true},
    TextOption("--store", "STORE", "registry or live (registry)", kExportStores),
};
constexpr Argument kImportArguments[] = {
    {.name = "FILE", .help = "the document to read", .required = true},
    FlagOption("--as-port", "take the document of another port for the selected one"),
    kStoreArgument,
};

// One kind of stored data.
template <class Block>
struct StoredKind {
    const char* name;  // "bindings"
    StoredBlock<Block> PortTargets::*stored;
    // What the driver has now, as the store would hold it.
    std::unique_ptr<Block> (*live)(Invocation& invocation, const PortTargets& targets);
    std::string (*write)(const DocumentPort& port, const Block& block);
    DocumentPort (*read)(std::string_view text, Block* block);
    // Makes the block fit for the port's driver, or ends the command; null where any block fits.
    void (*adapt)(Invocation& invocation, const PortTargets& targets, Block& block);
    void (*applyLive)(Invocation& invocation, PortTargets& targets, const Block& block,
                      AwayTarget away, Steps& steps);
    const char* consequence;  // for the question, where the command asks one
};

template <class Block>
std::unique_ptr<Block> NewBlock(const StoredKind<Block>&) {
    return std::make_unique<Block>();
}

template <class Block>
DocumentPort LoadDocument(Invocation& invocation, const StoredKind<Block>& kind, Block* block) {
    const std::string path = invocation.Given().Text("FILE");
    const std::vector<uint8_t> bytes = LoadFile(invocation, path, kLongestDocument);
    try {
        return kind.read({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, block);
    } catch (const DocumentError& error) {
        invocation.Fail(ExitCode::Refused, path + ": " + error.text, "nothing was changed");
    }
}

void CheckPort(Invocation& invocation, const PortTargets& targets, const DocumentPort& origin) {
    if (origin.portName == targets.Origin().portName) {
        return;
    }
    const std::string serial = invocation.Names().Mask(Secret::Serial, origin.serial);
    const std::string what = "the document is of port " + origin.portName.Colons() + " (serial " +
                             serial + "), the selected one is " +
                             targets.Origin().portName.Colons();
    if (!invocation.Given().Has("as-port")) {
        invocation.Fail(ExitCode::Refused, what, "--as-port takes it for the selected port");
    }
    invocation.Warn(what);
}

Question QuestionOf(const PortTargets& targets, const char* name, const char* consequence,
                    const std::vector<DifferenceRow>& rows) {
    Question question = QuestionAbout(
        targets.session, std::string("Import ") + name + " from a document.", consequence);
    for (size_t i = 0; i < rows.size() && i < kRowsInQuestion; ++i) {
        question.lines.push_back(std::string("  ") + rows[i].action + " " +
                                 rows[i].target.Colons() + ": " + rows[i].what);
    }
    if (rows.size() > kRowsInQuestion) {
        question.lines.push_back("  and " + std::to_string(rows.size() - kRowsInQuestion) +
                                 " more: see them with --dry-run");
    }
    return question;
}

struct ExportResult {
    const Port* port;
    std::string file;
    size_t targets;
};

struct ImportResult {
    const Port* port;
    std::vector<DifferenceRow> differences;
    bool stored;
    std::optional<std::vector<StoreStep>> steps;
};

const Fields<ExportResult> kExportFields = {
    {PortKeys(kPortIndex | kPortName), &ExportResult::port},
    {"file", "File", kText, &ExportResult::file},
    {"targets", "Targets", kInteger, &ExportResult::targets, "number of targets in the document"},
};

// An import that leaves the store alone has nothing to say of it.
template <bool toStore>
const Fields<ImportResult>& ImportFields() {
    static const Fields<ImportResult> kFields = {
        {PortKeys(kNoPortKey), &ImportResult::port},
        {"differences", "Differences", kDifferenceFields, &ImportResult::differences,
         toStore ? "no target changes in the store" : "", "against what was stored before"},
        {"stored", "Stored", kFlag, &ImportResult::stored, "the store was written"},
        {"steps", "Steps", kStoreStepFields, &ImportResult::steps, "nothing to do",
         "what was done in the driver"},
    };
    return kFields;
}

template <const auto& kind>
ExitCode Export(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    PortTargets targets = OpenPortTargets(invocation);
    const auto& stored = targets.*kind.stored;
    const bool live = invocation.Given().Text("store") == kLive;
    if (!live && !stored.IsStored()) {
        TellState(invocation, targets.OwnPort(), stored.state, kind.name);
        invocation.Fail(ExitCode::NotFound,
                        std::string("there are no stored ") + kind.name + " to export");
    }
    const auto block = live ? kind.live(invocation, targets) : AsStored(*stored.block);
    const std::string text = kind.write(targets.Origin(), *block);
    SaveFile(invocation, path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    const auto rows = RowsOf(*block);
    const auto count =
        std::count_if(rows.begin(), rows.end(), [](const auto& row) { return !IsFree(row); });
    invocation.Result() =
        kExportFields.Make({&targets.OwnPort(), path, static_cast<size_t>(count)});
    if (invocation.Names().Enabled()) {
        invocation.Note("the document itself has the names: --redact masks the output alone");
    }
    return ExitCode::Done;
}

template <const auto& kind>
ExitCode Import(Invocation& invocation) {
    const StoreChoice stores = GivenStores(invocation);
    const auto block = NewBlock(kind);
    const DocumentPort origin = LoadDocument(invocation, kind, block.get());
    PortTargets targets = OpenPortTargets(invocation);
    CheckPort(invocation, targets, origin);
    if (kind.adapt != nullptr) {
        kind.adapt(invocation, targets, *block);
    }

    const auto& stored = targets.*kind.stored;
    std::vector<DifferenceRow> differences;
    if (stores.registry) {
        if (stored.state == StoreState::Unusable) {
            TellState(invocation, targets.OwnPort(), stored.state, kind.name);
        }
        differences = DifferencesOf(*stored.block, *block);
    }
    const bool needed =
        stores.registry && (!stored.IsStored() || !SameBytes(*stored.block, *block));
    if ((needed || stores.live) && !invocation.DryRun()) {
        invocation.Confirm(QuestionOf(targets, kind.name, kind.consequence, differences));
    }

    GrowingResult<ImportResult> result(
        invocation.Result(), stores.registry ? ImportFields<true>() : ImportFields<false>(),
        {&targets.OwnPort(), differences, needed && !invocation.DryRun(), {}});
    if (needed && !invocation.DryRun()) {
        WriteStored(invocation, targets, *block);
    }
    Steps steps(invocation, targets.OwnPort());
    if (needed) {
        steps.StoreWritten();
    }
    if (stores.live) {
        kind.applyLive(invocation, targets, *block, AwayTarget::Pending, steps);
    }
    result.steps = steps.Rows();
    return steps.Finish();
}

std::unique_ptr<HX_TARGET_DATA> LiveBindings(Invocation& invocation, const PortTargets& targets) {
    if (!targets.OwnPort().IsCurrentGeneration()) {
        invocation.Fail(
            ExitCode::NotSupported,
            targets.OwnPort().Object() + ": this driver does not tell which targets it has bound");
    }
    auto block = std::make_unique<HX_TARGET_DATA>();
    for (const KnownTarget& target : targets.known) {
        HX_TARGET_ENTRY* entry =
            IsBound(targets.OwnPort(), target).value_or(false) ? NewRow(*block) : nullptr;
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

// The driver's generation decides on the form in which masks are stored.
uint16_t FormOf(const Port& port) {
    return port.IsCurrentGeneration() ? 2 : 1;
}

std::unique_ptr<HX_LUN_DATA> LiveMasks(Invocation& invocation, const PortTargets& targets) {
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

void AdaptMasks(Invocation& invocation, const PortTargets& targets, HX_LUN_DATA& block) {
    const LunSet beyond = ~FirstLuns(LunLimit(targets.OwnPort()));
    for (const HX_LUN_RECORD& record : RowsOf(block)) {
        if (const LunSet lost = MaskedOf(record) & beyond; lost.any()) {
            invocation.Fail(ExitCode::Refused, "the document masks LUNs " + LunsText(lost) +
                                                   " of " + Wwn::Of(record.portName).Colons() +
                                                   ": this driver has masks for LUNs 0 to " +
                                                   std::to_string(LunLimit(targets.OwnPort()) - 1) +
                                                   " alone");
        }
    }
    const uint16_t form = FormOf(targets.OwnPort());
    if (block.version != form) {
        invocation.Note("the masks were stored in form " + std::to_string(block.version) +
                        "; this driver stores them in form " + std::to_string(form));
        block.version = form;
    }
}

constexpr StoredKind<HX_TARGET_DATA> kBindings{
    .name = "bindings",
    .stored = &PortTargets::bindings,
    .live = LiveBindings,
    .write = BindDocument,
    .read = ReadBindDocument,
    .adapt = nullptr,
    .applyLive = ApplyBindings,
    .consequence = "",
};
constexpr StoredKind<HX_LUN_DATA> kMasks{
    .name = "LUN masks",
    .stored = &PortTargets::masks,
    .live = LiveMasks,
    .write = LunMaskDocument,
    .read = ReadLunMaskDocument,
    .adapt = AdaptMasks,
    .applyLive = ApplyMasks,
    .consequence = "LUNs that become masked are hidden from this host: I/O to them stops.",
};

}  // namespace

CommandRows BindTransferCommands() {
    static const Command kCommands[] = {
        {.path = "bind export",
         .help = "write a port's bindings to a document",
         .arguments = kExportArguments,
         .run = Export<kBindings>,
         .example = "bind export bindings.json -p scsi:3",
         .result = ShapeOf<kExportFields>},
        {.path = "bind import",
         .risk = Risk::Reversible,
         .help = "take a port's bindings from a document",
         .arguments = kImportArguments,
         .run = Import<kBindings>,
         .example = "bind import bindings.json -p scsi:3 --dry-run",
         .result = ShapeOf<ImportFields<true>>},
    };
    return kCommands;
}

CommandRows LunmaskTransferCommands() {
    static const Command kCommands[] = {
        {.path = "lunmask export",
         .help = "write a port's LUN masks to a document",
         .arguments = kExportArguments,
         .run = Export<kMasks>,
         .example = "lunmask export masks.json -p scsi:3",
         .result = ShapeOf<kExportFields>},
        {.path = "lunmask import",
         .risk = Risk::InterruptsIo,
         .help = "take a port's LUN masks from a document",
         .arguments = kImportArguments,
         .run = Import<kMasks>,
         .example = "lunmask import masks.json -p scsi:3 --dry-run",
         .result = ShapeOf<ImportFields<true>>},
    };
    return kCommands;
}

}  // namespace vxmgr
