#include <algorithm>
#include <utility>

#include "vxmgr/app/files.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/settings/settings_store.h"
#include "vxmgr/settings/vpd_pci.h"
#include "vxmgr/settings/vpd_port.h"
#include "vxmgr/update/update_checks.h"

namespace vxmgr {
namespace {

constexpr size_t kShownCharacters = 64;
constexpr std::string_view kSerialKeyword = "SN";

constexpr Argument kVpdReadArguments[] = {
    {.name = "FILE", .help = "the file to write", .required = true},
    kBankArgument,
};
constexpr Argument kVpdWriteArguments[] = {
    {.name = "FILE", .help = "the product data, as `vpd read` fetches it", .required = true},
    FlagOption("--other-identity", "also when part or serial number are not those of the adapter"),
};

PortSettings ReadPortVpd(Invocation& invocation, const PortSession& session, bool otherBank) {
    const auto readInUse = [&session](std::vector<uint8_t>* bytes) {
        return ReadVpd(session.Handle(), bytes);
    };
    return ReadSettings(invocation, session, Settings::Vpd, readInUse, otherBank);
}

Value DataValue(const VpdItem& item) {
    if (item.keyword == kSerialKeyword) {
        return Value::Serial(item.Shown());
    }
    const std::string text = item.Shown();
    Value value = Value::Text(text);
    return text.size() <= kShownCharacters
               ? value
               : std::move(value).Shown(text.substr(0, kShownCharacters) + "...");
}

const Fields<VpdItem> kVpdItemFields = {
    {"section", "Section", "SECTION", Choice(kVpdSections),
     [](const VpdItem& item) { return kVpdSections[static_cast<size_t>(item.section)]; }},
    {"keyword", "Keyword", "KEYWORD", kText.OrNull(), &VpdItem::keyword},
    {"meaning", "Meaning", "MEANING", kText,
     [](const VpdItem& item) {
         return item.keyword.empty() ? "product name" : VpdKeywordText(item.keyword);
     }},
    {"offset", "Offset", "OFFSET", kText,
     [](const VpdItem& item) { return HexValue(item.offset, 4); }},
    {"length", "Length", Integer("bytes"), [](const VpdItem& item) { return item.data.size(); }},
    {"is_text", "Text", kFlag, &VpdItem::IsText, "else the value is in hexadecimal digits"},
    {"value", "Value", "VALUE", kText.OrNull(), DataValue},
};

struct ShownVpd {
    const PortSettings* settings;
    PciVpd vpd = DecodeVpd(settings->bytes);
    std::string file{};
    bool stored = false;

    size_t Size() const { return settings->bytes.size(); }
};

Value VpdChecksumValue(const ShownVpd& shown) {
    const auto& holds = shown.vpd.checksumHolds;
    return !holds ? Value()
                  : Value::Flag(*holds)
                        .Shown(*holds ? "good" : "wrong")
                        .In(*holds ? Tone::Plain : Tone::Bad);
}

const Fields<ShownVpd> kVpdShowFields = {
    {kSettingsReadFields, &ShownVpd::settings},
    {"size", "Size", Integer("bytes"), &ShownVpd::Size},
    {"used", "Used", kInteger.OrNull(),
     [](const ShownVpd& shown) {
         return shown.vpd.used == 0 ? Value() : Value::Number(shown.vpd.used, "bytes");
     }},
    {"checksum_good", "Checksum", kFlag.OrNull(), VpdChecksumValue},
    {"sound", "Sound", kFlag, [](const ShownVpd& shown) { return shown.vpd.faults.empty(); }},
    {"items", "Items", kVpdItemFields, [](const ShownVpd& shown) { return shown.vpd.items; },
     "no product data"},
};

const Fields<ShownVpd> kVpdReadFields = {
    {kSettingsReadFields, &ShownVpd::settings},
    {"file", "File", kText, &ShownVpd::file},
    {"size", "Size", Integer("bytes"), &ShownVpd::Size},
};

const Fields<ShownVpd> kVpdWriteFields = {
    {kSettingsWrittenFields, &ShownVpd::settings},
    {"file", "File", kText, &ShownVpd::file},
    {"size", "Size", Integer("bytes"), &ShownVpd::Size},
    {"stored", "Stored", kFlag, &ShownVpd::stored, "written and read back"},
};

std::string FaultsText(const PciVpd& vpd) {
    return TextsJoined(vpd.faults, "; ");
}

// Everything that can be wrong with a file, before the first byte goes out.
void CheckVpdImage(Invocation& invocation, const std::string& path, Bytes image, Bytes current) {
    if (image.size() != current.size()) {
        invocation.Fail(ExitCode::Refused,
                        path + " has " + std::to_string(image.size()) +
                            " bytes, the adapter's product data " + std::to_string(current.size()),
                        "`vpd read` fetches a file of the right size");
    }
    const PciVpd given = DecodeVpd(image);
    if (!given.faults.empty()) {
        invocation.Fail(ExitCode::Refused, path + ": " + FaultsText(given), "nothing was written");
    }
    const PciVpd own = DecodeVpd(current);
    for (const std::string_view keyword : {std::string_view("PN"), kSerialKeyword}) {
        const std::string before = own.Text(keyword);
        const std::string after = given.Text(keyword);
        if (before.empty() || before == after) {
            continue;
        }
        // "serial:" lets --redact mask them.
        const std::string mark = keyword == kSerialKeyword ? "serial:" : "part ";
        const std::string what = mark + after + " instead of " + mark + before;
        if (!invocation.Given().Has("other-identity")) {
            invocation.Fail(ExitCode::Refused, path + " is of another adapter: " + what,
                            "--other-identity writes it all the same");
        }
        invocation.Warn(path + " has " + what);
    }
}

bool WriteVpd(Invocation& invocation, const PortSettings& current, std::vector<uint8_t> replaced,
              std::vector<uint8_t>& image) {
    const auto write = [](uint32_t handle, std::vector<uint8_t>& bytes) {
        return HXUpdateVpd(handle, 0, bytes.data(), static_cast<uint32_t>(bytes.size()));
    };
    return WriteSettings(invocation, {"the product data", current, std::move(replaced), write},
                         image);
}

ExitCode PciVpdShow(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortSettings settings = ReadPortVpd(invocation, session, WantsOtherBank(invocation));
    const ShownVpd shown{&settings};
    invocation.Result() = kVpdShowFields.Make(shown);
    for (const std::string& fault : shown.vpd.faults) {
        invocation.Warn("product data: " + fault);
    }
    return ExitCode::Done;
}

ExitCode PciVpdRead(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const PortSession session = OpenSelectedPort(invocation);
    const PortSettings settings = ReadPortVpd(invocation, session, WantsOtherBank(invocation));
    SaveFile(invocation, path, settings.bytes);
    if (invocation.Names().Enabled()) {
        invocation.Note("the file itself has the serial number: --redact masks the output alone");
    }
    invocation.Result() = kVpdReadFields.Make({.settings = &settings, .file = path});
    return ExitCode::Done;
}

ExitCode PciVpdWrite(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    std::vector<uint8_t> image = LoadFile(invocation, path, kMostVpdBytes);
    const PortSession session = OpenSelectedPort(invocation);
    const PortSettings current = ReadPortVpd(invocation, session, false);
    CheckVpdImage(invocation, path, image, current.bytes);
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    const bool needed = image != current.bytes;
    ShownVpd shown{.settings = &current, .file = path};
    bool interrupted = false;
    if (needed && !invocation.DryRun()) {
        std::vector<uint8_t> replaced = ReadReplaced(current);
        const PciVpd given = DecodeVpd(image);
        ConfirmUpdate(
            invocation, session, outlook, "Write the product data of " + path + ".",
            WhereItGoes(current.bank) + " Wrong product data can keep the host from starting.",
            {"  " + shown.vpd.Identifier() + " -> " + given.Identifier() + ", part " +
             given.Text("PN")});
        interrupted = WriteVpd(invocation, current, std::move(replaced), image);
        shown.stored = true;
    }
    invocation.Result() = kVpdWriteFields.Make(shown);
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (!shown.stored) {
        invocation.Note("dry run: nothing was written");
    } else if (current.bank) {
        invocation.AddPending({session.port.Object(), "port_reset",
                               "stored and read back, pending: it is in use from the port's next "
                               "reset on, or from `nvram activate` on"});
    }
    return interrupted ? tools::ExitCodeOf(invocation.Stop().Reason()) : ExitCode::Done;
}

}  // namespace

CommandRows VpdCommands() {
    static const Command kCommands[] = {
        {.path = "vpd show",
         .help = "show the product data of a port",
         .arguments = {&kBankArgument, 1},
         .run = PciVpdShow,
         .example = "vpd show -p scsi:3",
         .result = ShapeOf<kVpdShowFields>},
        {.path = "vpd read",
         .help = "fetch the product data into a file",
         .arguments = kVpdReadArguments,
         .run = PciVpdRead,
         .example = "vpd read vpd.bin -p scsi:3",
         .result = ShapeOf<kVpdReadFields>},
        {.path = "vpd write",
         .risk = Risk::Irrecoverable,
         .help = "write product data from a file",
         .arguments = kVpdWriteArguments,
         .run = PciVpdWrite,
         .example = "vpd write vpd.bin -p scsi:3 --dry-run",
         .result = ShapeOf<kVpdWriteFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
