#include "vxmgr/settings/commands.h"

#include <algorithm>
#include <utility>

#include "common/text.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/settings/settings_bank.h"
#include "vxmgr/settings/settings_store.h"
#include "vxmgr/settings/vpd_pci.h"
#include "vxmgr/update/update_checks.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Tone;
using tools::Value;

constexpr uint32_t kUsualRoom = 4096;
constexpr uint32_t kMostRoom = 1u << 20;
constexpr uint32_t kWholeKib = 1023;  // the library writes the last piece of a long region whole
constexpr size_t kShownCharacters = 64;
constexpr std::string_view kSerialKeyword = "SN";

constexpr Argument kReadArguments[] = {
    {.name = "FILE", .help = "the file to write", .required = true},
    {.name = "--bank",
     .valueName = "BANK",
     .help = "in-use or other (in-use)",
     .choices = kBankChoices},
};
constexpr Argument kWriteArguments[] = {
    {.name = "FILE", .help = "the product data, as `vpd read` fetches it", .required = true},
    {"--other-identity", ArgumentKind::Flag, "",
     "also when part or serial number are not those of the adapter"},
};

HX_STATUS ReadInUse(const PortSession& session, std::vector<uint8_t>* bytes) {
    uint32_t size = kUsualRoom;
    HX_STATUS status = HXMGT_BUFFER_TOO_SMALL;
    for (int i = 0; i < 2 && status == HXMGT_BUFFER_TOO_SMALL && size <= kMostRoom; ++i) {
        bytes->assign((size + kWholeKib) & ~size_t{kWholeKib}, 0);
        status = HXGetVpd(session.Handle(), 0, bytes->data(), &size);
    }
    bytes->resize(status == HXMGT_SUCCESS ? std::min<size_t>(size, bytes->size()) : 0);
    return status;
}

// The product data of a port, of one bank.
struct PortVpd {
    std::vector<uint8_t> bytes;
    std::optional<OtherBank> bank;
    bool fromOther = false;

    Value BankName() const {
        return bank ? Value::Text(fromOther ? bank->Name() : bank->NameInUse()) : Value();
    }
};

PortVpd ReadPortVpd(tools::Invocation& invocation, const PortSession& session, bool otherBank) {
    PortVpd vpd;
    vpd.bank = otherBank ? RequireOtherBank(invocation, session, Settings::Vpd)
                         : FindOtherBank(invocation, session, Settings::Vpd);
    vpd.fromOther = otherBank;
    const HX_STATUS status =
        otherBank ? ReadBank(session, *vpd.bank, &vpd.bytes) : ReadInUse(session, &vpd.bytes);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the product data cannot be read", session.port.Object());
    }
    return vpd;
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

Record ItemRow(const VpdItem& item) {
    Record row;
    row.Add("section", "Section", Value::Text(NameOf(item.section)), "SECTION");
    row.Add("keyword", "Keyword", Value::TextOrNull(item.keyword), "KEYWORD");
    row.Add("meaning", "Meaning",
            Value::Text(item.keyword.empty() ? "product name" : VpdKeywordText(item.keyword)),
            "MEANING");
    row.Add("offset", "Offset", Value::Text(tools::Hex(item.offset, 4)), "OFFSET");
    row.Add("length", "Length", Value::Number(item.data.size(), "bytes"));
    row.Add("is_text", "Text", Value::Flag(item.IsText()));
    row.Add("value", "Value", DataValue(item), "VALUE");
    return row;
}

std::string FaultsText(const PciVpd& vpd) {
    std::string text;
    for (const std::string& fault : vpd.faults) {
        text += (text.empty() ? "" : "; ") + fault;
    }
    return text;
}

// Everything that can be wrong with a file, before the first byte goes out.
void CheckImage(tools::Invocation& invocation, const std::string& path, Bytes image,
                Bytes current) {
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

bool WriteImage(tools::Invocation& invocation, const PortSession& session, const PortVpd& current,
                std::vector<uint8_t> replaced, std::vector<uint8_t> image) {
    const auto readInUse = [&](std::vector<uint8_t>* bytes) { return ReadInUse(session, bytes); };
    const auto readOther = [&](std::vector<uint8_t>* bytes) {
        return ReadBank(session, *current.bank, bytes);
    };
    SettingsWrite write{"the product data",
                        current.bank,
                        std::move(image),
                        current.bytes,
                        readInUse,
                        current.bank ? ReadBytes(readOther) : ReadBytes(readInUse),
                        std::move(replaced),
                        [&](std::vector<uint8_t>& bytes) {
                            return HXUpdateVpd(session.Handle(), 0, bytes.data(),
                                               static_cast<uint32_t>(bytes.size()));
                        }};
    return WriteSettings(invocation, session, write);
}

ExitCode PciVpdShow(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortVpd vpd = ReadPortVpd(invocation, session, WantsOtherBank(invocation));
    const PciVpd decoded = DecodeVpd(vpd.bytes);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("bank", "Bank", vpd.BankName());
    result.Add("size", "Size", Value::Number(vpd.bytes.size(), "bytes"));
    result.Add("used", "Used", decoded.used == 0 ? Value() : Value::Number(decoded.used, "bytes"));
    const bool checksum = decoded.checksumHolds.value_or(false);
    result.Add("checksum_good", "Checksum",
               decoded.checksumHolds ? Value::Flag(checksum)
                                           .Shown(checksum ? "good" : "wrong")
                                           .In(checksum ? Tone::Plain : Tone::Bad)
                                     : Value());
    result.Add("sound", "Sound", Value::Flag(decoded.faults.empty()));
    std::vector<Record> rows;
    for (const VpdItem& item : decoded.items) {
        rows.push_back(ItemRow(item));
    }
    result.AddList("items", "Items", tools::ListLayout::Table, ItemRow({}), "no product data",
                   std::move(rows));
    for (const std::string& fault : decoded.faults) {
        invocation.Warn("product data: " + fault);
    }
    return ExitCode::Done;
}

ExitCode PciVpdRead(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const PortSession session = OpenSelectedPort(invocation);
    const PortVpd vpd = ReadPortVpd(invocation, session, WantsOtherBank(invocation));
    SaveFile(invocation, path, vpd.bytes);
    if (invocation.Names().Enabled()) {
        invocation.Note("the file itself has the serial number: --redact masks the output alone");
    }
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("bank", "Bank", vpd.BankName());
    result.Add("file", "File", Value::Text(path));
    result.Add("size", "Size", Value::Number(vpd.bytes.size(), "bytes"));
    return ExitCode::Done;
}

ExitCode PciVpdWrite(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    std::vector<uint8_t> image = LoadFile(invocation, path, kMostRoom);
    const PortSession session = OpenSelectedPort(invocation);
    const PortVpd current = ReadPortVpd(invocation, session, false);
    CheckImage(invocation, path, image, current.bytes);
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    const bool needed = image != current.bytes;
    bool interrupted = false;
    if (needed && !invocation.DryRun()) {
        std::vector<uint8_t> replaced;
        if (current.bank && ReadBank(session, *current.bank, &replaced) != HXMGT_SUCCESS) {
            replaced.clear();
        }
        const PciVpd given = DecodeVpd(image);
        tools::Question question = QuestionAbout(
            session, "Write the product data of " + path + ".",
            WhereItGoes(current.bank) + " Wrong product data can keep the host from starting.");
        question.lines.push_back("  " + DecodeVpd(current.bytes).Identifier() + " -> " +
                                 given.Identifier() + ", part " + given.Text("PN"));
        question.lines.insert(question.lines.end(), outlook.warnings.begin(),
                              outlook.warnings.end());
        invocation.Confirm(question);
        invocation.CheckStop();
        interrupted =
            WriteImage(invocation, session, current, std::move(replaced), std::move(image));
    }
    const bool stored = needed && !invocation.DryRun();
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("bank", "Goes to bank", current.bank ? Value::Text(current.bank->Name()) : Value());
    result.Add("file", "File", Value::Text(path));
    result.Add("size", "Size", Value::Number(current.bytes.size(), "bytes"));
    result.Add("stored", "Stored", Value::Flag(stored));
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: nothing was written");
    } else if (current.bank) {
        invocation.AddPending({session.port.Object(), "port_reset",
                               "stored and read back, pending: it is in use from the port's next "
                               "reset on, or from `nvram activate` on"});
    }
    return interrupted ? ExitCode::Cancelled : ExitCode::Done;
}

}  // namespace

tools::CommandRows VpdCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "vpd show",
            .risk = tools::Risk::Reads,
            .help = "show the product data of a port",
            .schema = "vpd.show",
            .arguments = BankArguments(),
            .run = PciVpdShow,
            .example = "vpd show -p scsi:3",
        },
        {
            .path = "vpd read",
            .risk = tools::Risk::Reads,
            .help = "fetch the product data into a file",
            .schema = "vpd.read",
            .arguments = kReadArguments,
            .run = PciVpdRead,
            .example = "vpd read vpd.bin -p scsi:3",
        },
        {
            .path = "vpd write",
            .risk = tools::Risk::Irrecoverable,
            .help = "write product data from a file",
            .schema = "vpd.write",
            .arguments = kWriteArguments,
            .run = PciVpdWrite,
            .example = "vpd write vpd.bin -p scsi:3 --dry-run",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
