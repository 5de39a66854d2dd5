// sfp write, sfp load.
#include <algorithm>

#include "vxmgr/app/files.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/commands.h"
#include "vxmgr/sfp/sfp_port.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_write.h"

namespace vxmgr {
namespace {

constexpr size_t kLargestFirmware = size_t{4} << 20;
constexpr char kLoadAgain[] = "load it again before the port or the host is reset";

constexpr Argument kSfpWriteArguments[] = {
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
constexpr Argument kSfpLoadArguments[] = {
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

std::vector<uint8_t> GivenBytes(Invocation& invocation, size_t offset) {
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

std::string DeviceNote(uint16_t deviceStatus) {
    return " (device status " + std::to_string(deviceStatus) + ")";
}

std::vector<uint8_t> ReadPage(Invocation& invocation, const PortSession& session,
                              const SfpPage& page) {
    std::vector<uint8_t> bytes(kSfpPageBytes);
    uint16_t deviceStatus = 0;
    const HX_STATUS status = ReadSfp(session.Handle(), page, 0, bytes, &deviceStatus);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status,
                        std::string("page ") + page.name + " cannot be read; nothing was written" +
                            DeviceNote(deviceStatus),
                        session.port.Object());
    }
    return bytes;
}

// The checksums of the page that hold, as bits.
unsigned HoldingChecksums(const SfpPage& page, Bytes bytes) {
    if (page.device != kSfpPages[0].device) {
        return ChecksumHolds(Padded<SfpDiagnostics>(bytes)) ? 1 : 0;
    }
    const auto identity = Padded<SfpIdentity>(bytes);
    return (BaseChecksumHolds(identity) ? 1 : 0) | (ExtendedChecksumHolds(identity) ? 2 : 0);
}

// One that held and would not any more: hosts may refuse such a transceiver.
bool BreaksChecksum(const Patch& patch) {
    return (HoldingChecksums(patch.page, patch.before) &
            ~HoldingChecksums(patch.page, patch.PageAfter())) != 0;
}

// Bytes outside the patch may move: measured values do.
ExitCode WritePatch(Invocation& invocation, const PortSession& session, const Patch& patch) {
    constexpr char kOtherBytes[] = ": the write was accepted, but other bytes stand there";
    constexpr char kHalfWay[] = ": the write failed half way, or its result cannot be read";
    constexpr char kProtected[] = "the transceiver may protect them, or measure them";
    const Bytes before = patch.Before();
    PlaceWrite write{
        .what = std::string("page ") + patch.page.name + " of the transceiver",
        .finishes = "the write to the transceiver",
        .image = patch.bytes,
        .before = {before.begin(), before.end()},
        .lookAgain = "",
        .recheck = Recheck::None,
        .read =
            [&](std::vector<uint8_t>* bytes) {
                bytes->resize(patch.bytes.size());
                return ReadSfp(session.Handle(), patch.page, patch.offset, *bytes);
            },
        .write = nullptr,
        .failed = {{kHalfWay, "read it with `sfp dump`, and write it again"},
                   {": the write failed, the old bytes stand there", ""},
                   {": the bytes stand there, but the write reported a failure", ""},
                   {kHalfWay, ""}},
        .accepted = {{": written, but it cannot be read back", ""},
                     {kOtherBytes, kProtected},
                     {},
                     {kOtherBytes, kProtected}},
    };
    write.write = [&](std::vector<uint8_t>& bytes) {
        uint16_t deviceStatus = 0;
        const HX_STATUS status =
            HXWriteSFPData(session.Handle(), 0, patch.page.device, bytes.data(),
                           static_cast<uint16_t>(bytes.size()), static_cast<uint16_t>(patch.offset),
                           kNoSfpOptions, &deviceStatus);
        write.detail = DeviceNote(deviceStatus);
        return status;
    };
    const WriteOutcome outcome = WritePlace(invocation, session.Handle(), session.port, write);
    if (outcome.trouble) {
        throw *outcome.trouble;
    }
    return ExitCode::Done;
}

struct SfpWritten {
    const Port* port;
    const Patch* patch;
    bool shown;  // a serial number among the bytes cannot be told from the rest

    Value Digits(Bytes bytes) const { return shown ? Value::Text(HexDigits(bytes)) : Value(); }
};

const Fields<SfpWritten> kSfpWriteFields = {
    {PortKeys(), &SfpWritten::port},
    {"page", "Page", Choice(kSfpPageNames),
     [](const SfpWritten& one) { return one.patch->page.name; }},
    {"offset", "Offset", kInteger, [](const SfpWritten& one) { return one.patch->offset; }},
    {"before", "Before", kText.OrNull(),
     [](const SfpWritten& one) { return one.Digits(one.patch->Before()); },
     "hexadecimal digits; null with --redact"},
    {"after", "Written", kText.OrNull(),
     [](const SfpWritten& one) { return one.Digits(one.patch->bytes); },
     "hexadecimal digits; null with --redact"},
};

struct SfpLoaded {
    const Port* port;
    std::string file;
    size_t size;
    SfpModule before;
    std::string revision;
    bool loaded = false;
};

std::string RevisionOf(const SfpModule& module) {
    return FieldText(module.identity.revision, sizeof module.identity.revision);
}

std::string Describe(const SfpModule& module) {
    const SfpIdentity& identity = module.identity;
    return FieldText(identity.vendor, sizeof identity.vendor) + " " +
           FieldText(identity.part, sizeof identity.part) + ", revision " + RevisionOf(module);
}

const Fields<SfpLoaded> kSfpLoadFields = {
    {PortKeys(), &SfpLoaded::port},
    {"file", "File", kText, &SfpLoaded::file},
    {"size", "Size", Integer("bytes"), &SfpLoaded::size},
    {"transceiver", "Transceiver", kText,
     [](const SfpLoaded& one) { return Describe(one.before); }},
    {"revision_before", "Revision before", kText.OrNull(),
     [](const SfpLoaded& one) { return RevisionOf(one.before); }},
    {"revision", "Revision", kText.OrNull(), &SfpLoaded::revision},
    {"loaded", "Loaded", kFlag, &SfpLoaded::loaded},
};

HX_STATUS LoadUnderLock(Invocation& invocation, const PortSession& session,
                        const std::vector<uint8_t>& image) {
    const AbandonHooks::Registration whenGivenUp(invocation.Hooks(), [&invocation, &session] {
        Complain(invocation, session.port.Object(),
                 "the transceiver was being loaded and may have half of the firmware", kLoadAgain);
    });
    const tools::StopHold hold(invocation.Stop(), "the transceiver's firmware");
    const UpdateLock lock(invocation, session);
    invocation.Progress("loading the transceiver, " + SizeText(image.size()));
    return HXLoadSFPFirmware(session.Handle(), 0, image.data(),
                             static_cast<uint32_t>(image.size()));
}

// The call that failed, and what is known of the transceiver now.
[[noreturn]] void FailLoad(Invocation& invocation, const PortSession& session, HX_STATUS failure) {
    const HX_STATUS status = CauseOf(failure, session.port.Object());
    if (status == HXMGT_SFP_FIRMWARE_INCOMPATIBLE) {
        invocation.Fail(status, "the transceiver refused the file, it keeps its firmware",
                        session.port.Object());
    }
    SfpModule module;
    const bool answers = ReadSfpModule(session.Handle(), &module) == HXMGT_SUCCESS;
    FailAt(session.port.Object(), ExitCodeOf(status),
           "the transceiver was not loaded: " + StatusMessage(status) +
               (answers ? "; it answers as " + Describe(module) : "; it does not answer"),
           kLoadAgain, status);
}

ExitCode SfpWrite(Invocation& invocation) {
    const auto offset = static_cast<size_t>(invocation.Given().Number("OFFSET").value_or(0));
    std::vector<uint8_t> bytes = GivenBytes(invocation, offset);
    const PortSession session = OpenSelectedPort(invocation);
    const SfpPage& page = SfpPageOf(invocation.Given().Text("PAGE"));
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    const Patch patch{page, offset, std::move(bytes), ReadPage(invocation, session, page)};
    invocation.Result() =
        kSfpWriteFields.Make({&session.port, &patch, !invocation.Names().Enabled()});
    if (!patch.IsNeeded()) {
        return invocation.DoneWith("nothing to do");
    }
    if (BreaksChecksum(patch)) {
        invocation.Warn("the page's checksum will be wrong afterwards",
                        "hosts may refuse such a transceiver");
    }
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: nothing was written");
    }
    ConfirmUpdate(invocation, session, outlook,
                  std::string("Write to page ") + page.name + " of the transceiver, from byte " +
                      std::to_string(offset) + ": " + HexDigits(patch.Before()) + " -> " +
                      HexDigits(patch.bytes),
                  "Wrong bytes can make the transceiver useless, in every host.");
    return WritePatch(invocation, session, patch);
}

ExitCode SfpLoad(Invocation& invocation) {
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
    SfpLoaded loaded{&session.port, path, image.size(), before, RevisionOf(before)};
    if (invocation.DryRun()) {
        invocation.Result() = kSfpLoadFields.Make(loaded);
        return invocation.DoneWith("dry run: nothing was written",
                                   "whether the file fits is for the transceiver to say");
    }
    ConfirmUpdate(invocation, session, outlook,
                  "Load " + path + ", " + SizeText(image.size()) + ", into the transceiver " +
                      Describe(before) + ".",
                  "The link may go down meanwhile. A load that is cut short can make the "
                  "transceiver useless.");
    const HX_STATUS status = LoadUnderLock(invocation, session, image);
    if (status != HXMGT_SUCCESS) {
        FailLoad(invocation, session, status);
    }
    invocation.Changed();
    SfpModule after;
    const HX_STATUS readStatus = ReadSfpModule(session.Handle(), &after);
    loaded.revision = readStatus == HXMGT_SUCCESS ? RevisionOf(after) : std::string();
    loaded.loaded = true;
    invocation.Result() = kSfpLoadFields.Make(loaded);
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

CommandRows SfpChangeCommands() {
    static const Command kCommands[] = {
        {.path = "sfp write",
         .risk = Risk::Irrecoverable,
         .help = "write bytes to the memory of a transceiver",
         .arguments = kSfpWriteArguments,
         .run = SfpWrite,
         .example = "sfp write a2 0x80 01020304 -p scsi:3",
         .result = ShapeOf<kSfpWriteFields>},
        {.path = "sfp load",
         .risk = Risk::Irrecoverable,
         .help = "load firmware into a transceiver",
         .arguments = kSfpLoadArguments,
         .run = SfpLoad,
         .example = "sfp load transceiver.bin -p scsi:3",
         .result = ShapeOf<kSfpLoadFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
