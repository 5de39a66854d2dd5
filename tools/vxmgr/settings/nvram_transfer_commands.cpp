// nvram export, nvram diff.
#include "vxmgr/app/files.h"
#include "vxmgr/settings/commands.h"
#include "vxmgr/settings/nvram_change.h"
#include "vxmgr/settings/nvram_file.h"
#include "vxmgr/settings/nvram_records.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr Argument kDiffArguments[] = {
    {.name = "FILE", .help = "a document or text of `nvram export`", .required = true},
    {.name = "--bank",
     .valueName = "BANK",
     .help = "in-use or other (in-use)",
     .choices = kBankChoices},
};
constexpr Argument kExportArguments[] = {
    {.name = "FILE", .help = "the file to write", .required = true},
    {"--text", ArgumentKind::Flag, "",
     "one line for each variable, without the bytes between them (older chips alone)"},
    {.name = "--bank",
     .valueName = "BANK",
     .help = "in-use or other (in-use)",
     .choices = kBankChoices},
};
constexpr DifferenceHeadings kHeadings = {"adapter", "file", "Adapter", "File"};

ExitCode NvramDiff(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    const std::vector<uint8_t> block = LoadNvramFile(invocation, session, nvram, FileUse::Compare);
    const NvramDifference difference = DifferenceOf(nvram.map, nvram.block, block);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("bank", "Bank", BankValue(nvram));
    AddDifference(invocation, difference, kHeadings, "no variable differs");
    result.Add("equal", "Equal", Value::Flag(nvram.block == block));
    return ExitCode::Done;
}

ExitCode NvramExport(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    if (!session.port.port || !session.port.chip) {
        invocation.Fail(ExitCode::Failed, "the port does not tell its name and chip",
                        "see `port show`");
    }
    if (invocation.Given().Has("text")) {
        SaveNvramText(invocation, nvram, path);
    } else {
        const std::string text = DocumentOf(session, nvram);
        SaveFile(invocation, path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    }
    const bool sound = IsSound(nvram.map.kind, nvram.block);
    if (!sound) {
        invocation.Warn("signature or checksum of the block are wrong: it cannot be imported");
    }
    if (invocation.Names().Enabled()) {
        invocation.Note("the file itself has the names: --redact masks the output alone");
    }
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("kind", "Kind", Value::Text(NameOf(nvram.map.kind)));
    result.Add("bank", "Bank", BankValue(nvram));
    result.Add("file", "File", Value::Text(path));
    result.Add("size", "Block", Value::Number(nvram.block.size(), "bytes"));
    result.Add("sound", "Sound", Value::Flag(sound));
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows NvramTransferCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "nvram diff",
            .risk = tools::Risk::Reads,
            .help = "compare the settings with a file",
            .schema = "nvram.diff",
            .arguments = kDiffArguments,
            .run = NvramDiff,
            .example = "nvram diff settings.json -p scsi:3",
        },
        {
            .path = "nvram export",
            .risk = tools::Risk::Reads,
            .help = "write the settings to a file",
            .schema = "nvram.export",
            .arguments = kExportArguments,
            .run = NvramExport,
            .example = "nvram export settings.json -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
