#include "vxmgr/bindings/store_transfer.h"

#include "vxmgr/app/files.h"
#include "vxmgr/bindings/store_choice.h"
#include "vxmgr/bindings/store_difference.h"

namespace vxmgr {
namespace {

using tools::ArgumentKind;
using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Value;

constexpr size_t kLongestDocument = size_t{16} << 20;
constexpr size_t kRowsInQuestion = 12;

constexpr const char* kExportStores[] = {kInRegistry, kLive};
constexpr tools::Argument kExportArguments[] = {
    {.name = "FILE", .help = "the document to write", .required = true},
    {.name = "--store",
     .valueName = "STORE",
     .help = "registry or live (registry)",
     .choices = kExportStores},
};
constexpr tools::Argument kImportArguments[] = {
    {.name = "FILE", .help = "the document to read", .required = true},
    {"--as-port", ArgumentKind::Flag, "", "take the document of another port for the selected one"},
    kStoreArgument,
};

template <class Block>
DocumentPort LoadDocument(tools::Invocation& invocation, const ImportKind<Block>& kind,
                          Block* block) {
    const std::string path = invocation.Given().Text("FILE");
    const std::vector<uint8_t> bytes = LoadFile(invocation, path, kLongestDocument);
    try {
        return kind.read({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, block);
    } catch (const DocumentError& error) {
        invocation.Fail(ExitCode::Refused, path + ": " + error.text, "nothing was changed");
    }
}

void CheckPort(tools::Invocation& invocation, const PortTargets& targets,
               const DocumentPort& origin) {
    if (origin.portName == targets.Origin().portName) {
        return;
    }
    const std::string serial = invocation.Names().Mask(tools::Secret::Serial, origin.serial);
    const std::string what = "the document is of port " + origin.portName.Colons() + " (serial " +
                             serial + "), the selected one is " +
                             targets.Origin().portName.Colons();
    if (!invocation.Given().Has("as-port")) {
        invocation.Fail(ExitCode::Refused, what, "--as-port takes it for the selected port");
    }
    invocation.Warn(what);
}

tools::Question QuestionOf(const PortTargets& targets, const char* name, const char* consequence,
                           const std::vector<DifferenceRow>& rows) {
    tools::Question question = QuestionAbout(
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

}  // namespace

std::span<const tools::Argument> ExportArguments() {
    return kExportArguments;
}

std::span<const tools::Argument> ImportArguments() {
    return kImportArguments;
}

ExitCode Export(tools::Invocation& invocation, const MakeDocument& make) {
    const std::string path = invocation.Given().Text("FILE");
    PortTargets targets = OpenPortTargets(invocation);
    size_t count = 0;
    const std::string text = make(targets, &count);
    SaveFile(invocation, path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(targets.OwnPort().index));
    result.Add("port_wwn", "Port name", Value::Name(targets.Origin().portName));
    result.Add("file", "File", Value::Text(path));
    result.Add("targets", "Targets", Value::Number(count));
    if (invocation.Names().Enabled()) {
        invocation.Note("the document itself has the names: --redact masks the output alone");
    }
    return ExitCode::Done;
}

template <class Block>
ExitCode Import(tools::Invocation& invocation, const ImportKind<Block>& kind) {
    const StoreChoice stores = GivenStores(invocation);
    const auto block = std::make_unique<Block>();
    const DocumentPort origin = LoadDocument(invocation, kind, block.get());
    PortTargets targets = OpenPortTargets(invocation);
    CheckPort(invocation, targets, origin);
    kind.adapt(invocation, targets, *block);

    const StoredBlock<Block>& stored = targets.*kind.stored;
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

    std::vector<Record> rows;
    for (const DifferenceRow& difference : differences) {
        rows.push_back(RecordOf(difference));
    }
    Record& result = invocation.Result();
    result.AddList("differences", "Differences", ListLayout::Table,
                   RecordOf(DifferenceRow{"", {}, {}, ""}),
                   stores.registry ? "no target changes in the store" : "", std::move(rows));
    result.Add("stored", "Stored", Value::Flag(needed && !invocation.DryRun()));
    if (needed && !invocation.DryRun()) {
        WriteStored(invocation, targets, *block);
    }
    Steps steps(invocation, targets.OwnPort().Object());
    if (needed) {
        steps.StoreWritten();
    }
    if (stores.live) {
        kind.applyLive(invocation, targets, *block, steps);
    }
    return steps.Finish();
}

template ExitCode Import(tools::Invocation& invocation, const ImportKind<HX_TARGET_DATA>& kind);
template ExitCode Import(tools::Invocation& invocation, const ImportKind<HX_LUN_DATA>& kind);

}  // namespace vxmgr
