// nvram export, nvram diff.
#include "vxmgr/commands.h"
#include "vxmgr/settings/nvram_file.h"
#include "vxmgr/settings/nvram_records.h"

namespace vxmgr {
namespace {

constexpr Argument kDiffArguments[] = {
    {.name = "FILE", .help = "a document or text of `nvram export`", .required = true},
    kBankArgument,
};
constexpr Argument kExportArguments[] = {
    {.name = "FILE", .help = "the file to write", .required = true},
    FlagOption("--text",
               "one line for each variable, without the bytes between them (older chips alone)"),
    kBankArgument,
};

struct NvramCompared {
    const PortNvram* nvram;
    NvramDifference difference;
    bool equal;
};

const Fields<NvramCompared> kNvramDiffFields = {
    {kSettingsReadFields, &NvramCompared::nvram},
    {kFileDiffFields, &NvramCompared::difference},
    {"equal", "Equal", kFlag, &NvramCompared::equal, "byte for byte"},
};

struct NvramExported {
    const PortNvram* nvram;
    std::string file;
};

const Fields<NvramExported> kNvramExportFields = {
    {PortKeys(), [](const NvramExported& one) { return &one.nvram->ItsPort(); }},
    {"kind", "Kind", Choice(kNvramKinds),
     [](const NvramExported& one) { return NameOf(one.nvram->map.kind); }},
    {"bank", "Bank", kBank, [](const NvramExported& one) { return one.nvram->Bank(); },
     "null on chips with one bank"},
    {"file", "File", kText, &NvramExported::file},
    {"size", "Block", Integer("bytes"),
     [](const NvramExported& one) { return one.nvram->bytes.size(); }},
    {"sound", "Sound", kFlag, [](const NvramExported& one) { return one.nvram->IsWhole(); },
     "signature and checksum hold"},
};

ExitCode NvramDiff(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    const std::vector<uint8_t> block = LoadNvramFile(invocation, nvram, FileUse::Compare);
    invocation.Result() = kNvramDiffFields.Make(
        {&nvram, DifferenceOf(nvram.map, nvram.bytes, block), nvram.bytes == block});
    return ExitCode::Done;
}

ExitCode NvramExport(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    if (!session.port.port || !session.port.chip) {
        invocation.Fail(ExitCode::Failed, "the port does not tell its name and chip",
                        "see `port show`");
    }
    const bool asText = invocation.Given().Has("text");
    (asText ? SaveNvramText : SaveNvramDocument)(invocation, nvram, path);
    if (!nvram.IsWhole()) {
        invocation.Warn("signature or checksum of the block are wrong: it cannot be imported");
    }
    if (invocation.Names().Enabled()) {
        invocation.Note("the file itself has the names: --redact masks the output alone");
    }
    invocation.Result() = kNvramExportFields.Make({&nvram, path});
    return ExitCode::Done;
}

}  // namespace

CommandRows NvramTransferCommands() {
    static const Command kCommands[] = {
        {.path = "nvram diff",
         .help = "compare the settings with a file",
         .arguments = kDiffArguments,
         .run = NvramDiff,
         .example = "nvram diff settings.json -p scsi:3",
         .result = ShapeOf<kNvramDiffFields>},
        {.path = "nvram export",
         .help = "write the settings to a file",
         .arguments = kExportArguments,
         .run = NvramExport,
         .example = "nvram export settings.json -p scsi:3",
         .result = ShapeOf<kNvramExportFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
