// sfp write, sfp load.
#include <algorithm>

#include "common/status_codes.h"
#include "common/text.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/sfp/commands.h"
#include "vxmgr/sfp/sfp_port.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_interrupt.h"
#include "vxmgr/update/update_lock.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Severity;
using tools::Value;

constexpr size_t kLargestFirmware = size_t{4} << 20;
constexpr uint16_t kNoOptions = 0;

constexpr Argument kWriteArguments[] = {
    {.name = "PAGE",
     .help = "a0 (identity) or a2 (diagnostics)",
     .required = true,
     .choices = kSfpPageNames},
    {.name = "OFFSET",
     .kind = ArgumentKind::Number,
     .help = "where in the page",
     .required = true,
     .most = kSfpPageBytes - 1},
    {.name = "BYTES",
     .help = "the bytes, in pairs of hexadecimal digits",
     .required = true,
     .repeated = true},
};
constexpr Argument kLoadArguments[] = {
    {.name = "FILE",
     .help = "the firmware, as the transceiver's maker gives it out",
     .required = true},
};

// What is to be written, and what stands there.
struct Patch {
    const SfpPage& page;
    size_t offset;
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> before;  // the whole page

    Bytes Before() const { return Part(before, offset, bytes.size()); }
    bool IsNeeded() const { return !std::ranges::equal(Before(), bytes); }
    std::vector<uint8_t> PageAfter() const {
        std::vector<uint8_t> after = before;
        std::copy(bytes.begin(), bytes.end(), after.begin() + static_cast<std::ptrdiff_t>(offset));
        return after;
    }
};

std::vector<uint8_t> GivenBytes(tools::Invocation& invocation, size_t offset) {
    std::string digits;
    for (const std::string& word : invocation.Given().All("BYTES")) {
        digits += (digits.empty() ? "" : " ") + word;
    }
    std::vector<uint8_t> bytes;
    if (!ParseHex(digits, &bytes)) {
        invocation.Fail(ExitCode::Usage, "\"" + digits + "\" is not pairs of hexadecimal digits");
    }
    if (bytes.size() > kSfpPageBytes - offset) {
        invocation.Fail(ExitCode::Usage, std::to_string(bytes.size()) + " bytes at " +
                                             std::to_string(offset) + " lead beyond the page of " +
                                             std::to_string(kSfpPageBytes));
    }
    return bytes;
}

[[noreturn]] void FailTransfer(const PortSession& session, HX_STATUS failure, ExitCode exit,
                               const std::string& text, uint16_t deviceStatus) {
    const HX_STATUS status = CauseOf(failure, session.port.Object());
    throw tools::CommandError{
        status == kWentAway ? ExitCode::NotFound : exit,
        {Severity::Error,
         text + " (device status " + std::to_string(deviceStatus) + "): " + StatusMessage(status),
         "", session.port.Object(), status}};
}

std::vector<uint8_t> ReadPage(const PortSession& session, const SfpPage& page) {
    std::vector<uint8_t> bytes(kSfpPageBytes);
    uint16_t deviceStatus = 0;
    const HX_STATUS status = ReadSfp(session.Handle(), page, 0, bytes, &deviceStatus);
    if (status != HXMGT_SUCCESS) {
        FailTransfer(session, status, tools::ExitCodeOf(status),
                     std::string("page ") + page.name + " cannot be read; nothing was written",
                     deviceStatus);
    }
    return bytes;
}

// A checksum that held and would not any more: hosts may refuse such a transceiver.
bool BreaksChecksum(const Patch& patch) {
    const std::vector<uint8_t> after = patch.PageAfter();
    const auto breaks = [&](auto holds, auto layout) {
        using Layout = decltype(layout);
        return holds(Padded<Layout>(patch.before)) && !holds(Padded<Layout>(after));
    };
    if (patch.page.device != kSfpPages[0].device) {
        return breaks([](const SfpDiagnostics& page) { return ChecksumHolds(page); },
                      SfpDiagnostics{});
    }
    return breaks([](const SfpIdentity& page) { return BaseChecksumHolds(page); }, SfpIdentity{}) ||
           breaks([](const SfpIdentity& page) { return ExtendedChecksumHolds(page); },
                  SfpIdentity{});
}

// What the page holds after the write. Bytes outside the patch may move: measured values do.
ExitCode Prove(tools::Invocation& invocation, const PortSession& session, const Patch& patch,
               HX_STATUS status, uint16_t deviceStatus) {
    std::vector<uint8_t> after(patch.bytes.size());
    const HX_STATUS readStatus = ReadSfp(session.Handle(), patch.page, patch.offset, after);
    const bool isNew = readStatus == HXMGT_SUCCESS && after == patch.bytes;
    const bool isOld = readStatus == HXMGT_SUCCESS && std::ranges::equal(after, patch.Before());
    if (!isOld) {
        invocation.Changed();
    }
    if (status != HXMGT_SUCCESS) {
        const char* state = isOld   ? "the write failed, the old bytes stand there"
                            : isNew ? "the bytes stand there, but the write reported a failure"
                                    : "the write failed half way, or its result cannot be read";
        FailTransfer(session, status,
                     isOld   ? tools::ExitCodeOf(status)
                     : isNew ? ExitCode::NotProven
                             : ExitCode::Failed,
                     state, deviceStatus);
    }
    if (readStatus != HXMGT_SUCCESS) {
        const ExitCode exit = invocation.Report(readStatus, "written, but it cannot be read back",
                                                session.port.Object());
        return exit == ExitCode::NotFound ? exit : ExitCode::NotProven;
    }
    if (!isNew) {
        invocation.Add({Severity::Error,
                        "the write was accepted, but other bytes stand there",
                        "the transceiver may protect them, or measure them",
                        session.port.Object(),
                        {}});
        return ExitCode::Failed;
    }
    return ExitCode::Done;
}

ExitCode WritePatch(tools::Invocation& invocation, const PortSession& session, const Patch& patch) {
    const FinishFirst finish(invocation, "the write to the transceiver");
    const UpdateLock lock(invocation, session);
    uint16_t deviceStatus = 0;
    const HX_STATUS status =
        HXWriteSFPData(session.Handle(), 0, patch.page.device, patch.bytes.data(),
                       static_cast<uint16_t>(patch.bytes.size()),
                       static_cast<uint16_t>(patch.offset), kNoOptions, &deviceStatus);
    return Prove(invocation, session, patch, status, deviceStatus);
}

std::string RevisionOf(const SfpModule& module) {
    return tools::FieldText(module.identity.revision, sizeof module.identity.revision);
}

std::string Describe(const SfpModule& module) {
    const SfpIdentity& identity = module.identity;
    return tools::FieldText(identity.vendor, sizeof identity.vendor) + " " +
           tools::FieldText(identity.part, sizeof identity.part) + ", revision " +
           RevisionOf(module);
}

HX_STATUS LoadUnderLock(tools::Invocation& invocation, const PortSession& session,
                        const std::vector<uint8_t>& image) {
    const tools::AbandonHooks::Registration whenGivenUp(
        invocation.Hooks(), [&invocation, &session] {
            invocation.Add({Severity::Error,
                            "the transceiver was being loaded and may have half of the firmware",
                            "load it again before the port or the host is reset",
                            session.port.Object(),
                            {}});
        });
    const FinishFirst finish(invocation, "the transceiver's firmware");
    const UpdateLock lock(invocation, session);
    invocation.Progress("loading the transceiver, " + SizeText(image.size()));
    return HXLoadSFPFirmware(session.Handle(), 0, image.data(),
                             static_cast<uint32_t>(image.size()));
}

// The call that failed, and what is known of the transceiver now.
[[noreturn]] void FailLoad(tools::Invocation& invocation, const PortSession& session,
                           HX_STATUS failure) {
    const HX_STATUS status = CauseOf(failure, session.port.Object());
    if (status == HXMGT_SFP_FIRMWARE_INCOMPATIBLE) {
        invocation.Fail(status, "the transceiver refused the file, it keeps its firmware",
                        session.port.Object());
    }
    SfpModule module;
    const bool answers = ReadSfpModule(session.Handle(), &module) == HXMGT_SUCCESS;
    throw tools::CommandError{
        tools::ExitCodeOf(status),
        {Severity::Error,
         std::string("the transceiver was not loaded: ") + StatusMessage(status) +
             (answers ? "; it answers as " + Describe(module) : "; it does not answer"),
         "load it again before the port or the host is reset", session.port.Object(), status}};
}

ExitCode SfpWrite(tools::Invocation& invocation) {
    const auto offset = static_cast<size_t>(invocation.Given().Number("OFFSET").value_or(0));
    std::vector<uint8_t> bytes = GivenBytes(invocation, offset);
    const PortSession session = OpenSelectedPort(invocation);
    const SfpPage& page = SfpPageOf(invocation.Given().Text("PAGE"));
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    const Patch patch{page, offset, std::move(bytes), ReadPage(session, page)};
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("page", "Page", Value::Text(page.name));
    result.Add("offset", "Offset", Value::Number(offset));
    // A serial number among the bytes cannot be told from the rest.
    const auto shown = [&](Bytes data) {
        return invocation.Names().Enabled() ? Value() : Value::Text(HexDigits(data));
    };
    result.Add("before", "Before", shown(patch.Before()));
    result.Add("after", "Written", shown(patch.bytes));
    if (!patch.IsNeeded()) {
        invocation.Note("nothing to do");
        return ExitCode::Done;
    }
    if (BreaksChecksum(patch)) {
        invocation.Warn("the page's checksum will be wrong afterwards",
                        "hosts may refuse such a transceiver");
    }
    if (invocation.DryRun()) {
        invocation.Note("dry run: nothing was written");
        return ExitCode::Done;
    }
    tools::Question question =
        QuestionAbout(session,
                      std::string("Write to page ") + page.name +
                          " of the transceiver, from byte " + std::to_string(offset) + ": " +
                          HexDigits(patch.Before()) + " -> " + HexDigits(patch.bytes),
                      "Wrong bytes can make the transceiver useless, in every host.");
    question.lines.insert(question.lines.end(), outlook.warnings.begin(), outlook.warnings.end());
    invocation.Confirm(question);
    invocation.CheckStop();
    return WritePatch(invocation, session, patch);
}

ExitCode SfpLoad(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const std::vector<uint8_t> image = LoadFile(invocation, path, kLargestFirmware);
    if (image.empty()) {
        invocation.Fail(ExitCode::Refused, path + " is empty");
    }
    const PortSession session = OpenSelectedPort(invocation);
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    SfpModule before;
    if (const HX_STATUS status = ReadSfpModule(session.Handle(), &before);
        status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the transceiver cannot be read; nothing was written",
                        session.port.Object());
    }
    const auto report = [&](const std::string& revision, bool loaded) {
        Record& result = invocation.Result();
        result.Add("port", "Port", Value::Number(session.port.index));
        result.Add("file", "File", Value::Text(path));
        result.Add("size", "Size", Value::Number(image.size(), "bytes"));
        result.Add("transceiver", "Transceiver", Value::Text(Describe(before)));
        result.Add("revision_before", "Revision before", Value::TextOrNull(RevisionOf(before)));
        result.Add("revision", "Revision", Value::TextOrNull(revision));
        result.Add("loaded", "Loaded", Value::Flag(loaded));
    };
    if (invocation.DryRun()) {
        report(RevisionOf(before), false);
        invocation.Note("dry run: nothing was written",
                        "whether the file fits is for the transceiver to say");
        return ExitCode::Done;
    }
    tools::Question question = QuestionAbout(
        session,
        "Load " + path + ", " + SizeText(image.size()) + ", into the transceiver " +
            Describe(before) + ".",
        "The link may go down meanwhile. A load that is cut short can make the transceiver "
        "useless.");
    question.lines.insert(question.lines.end(), outlook.warnings.begin(), outlook.warnings.end());
    invocation.Confirm(question);
    invocation.CheckStop();
    const HX_STATUS status = LoadUnderLock(invocation, session, image);
    if (status != HXMGT_SUCCESS) {
        FailLoad(invocation, session, status);
    }
    invocation.Changed();
    SfpModule after;
    const HX_STATUS readStatus = ReadSfpModule(session.Handle(), &after);
    report(readStatus == HXMGT_SUCCESS ? RevisionOf(after) : std::string(), true);
    if (readStatus != HXMGT_SUCCESS) {
        invocation.Report(readStatus, "loaded, but the transceiver does not answer",
                          session.port.Object());
        return ExitCode::NotProven;
    }
    invocation.Note("the transceiver took the firmware over; it cannot be read back",
                    "the revision tells what it runs");
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows SfpChangeCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "sfp write",
            .risk = tools::Risk::Irrecoverable,
            .help = "write bytes to the memory of a transceiver",
            .schema = "sfp.write",
            .arguments = kWriteArguments,
            .run = SfpWrite,
            .example = "sfp write a2 0x80 01020304 -p scsi:3",
        },
        {
            .path = "sfp load",
            .risk = tools::Risk::Irrecoverable,
            .help = "load firmware into a transceiver",
            .schema = "sfp.load",
            .arguments = kLoadArguments,
            .run = SfpLoad,
            .example = "sfp load transceiver.bin -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
