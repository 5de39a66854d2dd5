// flash show, dump, image, corrupt, power-fail, reset; lockdown, bfs.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "commands.h"
#include "common/console.h"
#include "flash_image.h"
#include "model/profile/profile_fields.h"
#include "port_rows.h"
#include "running_driver.h"

namespace vxemu {
namespace {

struct ContentRow {
    RegionContent content;
    const char* name;
};
constexpr ContentRow kContents[] = {
    {RegionContent::Blank, "unused"},
    {RegionContent::Boot, "boot code"},
    {RegionContent::RecoveryBoot, "recovery boot code"},
    {RegionContent::Firmware, "firmware"},
    {RegionContent::RecoveryFirmware, "recovery firmware"},
    {RegionContent::AuxiliaryFirmware, "auxiliary firmware"},
    {RegionContent::Parameters, "parameters"},
    {RegionContent::Nvram, "NVRAM"},
    {RegionContent::Vpd, "VPD"},
};

std::string NameOf(RegionContent content) {
    for (const ContentRow& row : kContents) {
        if (row.content == content) {
            return row.name;
        }
    }
    return "unknown";
}

Value CheckValue(CheckState state) {
    switch (state) {
        case CheckState::Good:
            return Value::Text("ok").In(Tone::Good);
        case CheckState::Bad:
            return Value::Text("bad").In(Tone::Bad);
        case CheckState::None:
            break;
    }
    return {};
}

constexpr const char* kChecks[] = {"ok", "bad"};
const Fields<FlashRegionStatus> kRegionFields = {
    {"region", "Region", "REGION", kInteger, [](const FlashRegionStatus& r) { return r.code; }},
    {"content", "Content", "CONTENT", kText,
     [](const FlashRegionStatus& r) { return NameOf(r.content); }},
    {"start", "Start", "START", kText, [](const FlashRegionStatus& r) { return Hex(r.start, 6); }},
    {"bytes", "Bytes", "BYTES", kInteger, [](const FlashRegionStatus& r) { return r.size; }},
    {"flags", "Flags", kText, [](const FlashRegionStatus& r) { return Hex(r.flags, 2); }},
    {"read_only", "Read-only", kFlag, [](const FlashRegionStatus& r) { return r.readOnly != 0; }},
    {"version", "Version", "VERSION", kText.OrNull(),
     [](const FlashRegionStatus& r) { return std::string(r.version); }},
    {"checksum", "Checksum", "CHECKSUM", Choice(kChecks).OrNull(),
     [](const FlashRegionStatus& r) { return CheckValue(r.checksum); }},
    {"signature", "Signature", "SIGNATURE", Choice(kChecks).OrNull(),
     [](const FlashRegionStatus& r) { return CheckValue(r.signature); }},
};

struct ShownFlash {
    uint32_t port;
    const FlashReport* report;
};

const Fields<ShownFlash> kFlashFields = {
    {kPortNameFields, &ShownFlash::port},
    {"bytes", "Bytes", kInteger, [](const ShownFlash& f) { return f.report->bytes; }},
    {"powered", "Powered", kFlag, [](const ShownFlash& f) { return f.report->withoutPower == 0; }},
    {"power_fails_after", "Power fails after", Integer("bytes").OrNull(),
     [](const ShownFlash& f) {
         return f.report->failsSoon != 0 ? std::optional(f.report->bytesUntilFailure)
                                         : std::nullopt;
     }},
    {"flash_file", "File", Choice(kFlashFileStates),
     [](const ShownFlash& f) { return FlashFileState(f.report->keep); }},
    {"bank", "Bank of NVRAM and VPD", kInteger,
     [](const ShownFlash& f) { return f.report->secondBank != 0 ? 2 : 1; }},
    {"regions", "Regions", kRegionFields,
     [](const ShownFlash& f) {
         return std::span(f.report->regions, std::min<size_t>(f.report->count, kMaxFlashRegions));
     },
     "No regions."},
};

uint32_t GivenPort(Invocation& invocation) {
    return RequirePort(invocation, invocation.Given().Text("PORT"));
}

FlashSelector RequirePlace(Invocation& invocation, uint32_t offset) {
    return {GivenPort(invocation),
            static_cast<uint32_t>(invocation.Given().Number("REGION").value_or(0)), offset};
}

std::string NameOf(const FlashSelector& place) {
    return PortName(place.scsiPort) + " region " + std::to_string(place.region);
}

const Fields<FlashSelector> kPlaceFields = {
    {kPortNameFields, [](const FlashSelector& place) { return place.scsiPort; }},
    {"region", "Region", kInteger, [](const FlashSelector& place) { return place.region; }},
};

struct Saved {
    FlashSelector place;
    std::string version;  // of an image that was made
    size_t bytes = 0;
    std::string file{};
};

const Fields<Saved> kSavedFields = {
    {kPlaceFields, &Saved::place},
    {"version", "Version", kText.OrAbsent(), &Saved::version},
    {"bytes", "Bytes", kInteger, &Saved::bytes},
    {"file", "File", kText, &Saved::file},
};

const Fields<FlashSelector> kCorruptedFields = {
    {kPlaceFields, [](const FlashSelector& place) { return place; }},
    {"at", "Byte inverted", kInteger, [](const FlashSelector& place) { return place.offset; }},
};

const Fields<PowerFailRequest> kPowerFailFields = {
    {kPortNameFields, [](const PowerFailRequest& request) { return request.scsiPort; }},
    {"after_bytes", "Power fails after", Integer("bytes"),
     [](const PowerFailRequest& request) { return request.afterBytes; }},
};

struct Switched {
    uint32_t port;
    std::string state;
};

constexpr const char* kOnOff[] = {"on", "off"};

const Fields<Switched> kLockdownFields = {
    {kPortNameFields, &Switched::port},
    {"lockdown", "Lockdown", Choice(kOnOff), &Switched::state},
};

const Fields<Switched> kBootFields = {
    {kPortNameFields, &Switched::port},
    {"boots_from_san", "Boots from SAN", Choice(kOnOff), &Switched::state},
};

// Writes the file unless this is a dry run, and completes the result.
ExitCode Save(Invocation& invocation, Saved saved, const std::vector<uint8_t>& bytes) {
    const std::string path = invocation.Given().Text("FILE");
    if (!invocation.DryRun()) {
        uint32_t error = 0;
        std::FILE* file = console::CreateForWriting(path, &error);
        if (file == nullptr) {
            invocation.Fail(error, path + " cannot be written");
        }
        const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        if (std::fclose(file) != 0 || !written) {
            invocation.Fail(ExitCode::Failed, path + " cannot be written", "is the disk full?");
        }
    }
    saved.bytes = bytes.size();
    saved.file = path;
    invocation.Result() = kSavedFields.Make(saved);
    return ExitCode::Done;
}

// Sets a flag of the port, or of its adapter.
ExitCode SetFlag(Invocation& invocation, const char* field, const Fields<Switched>& result) {
    const uint32_t port = GivenPort(invocation);
    const std::string state = invocation.Given().Text("STATE");
    FieldRequest request = {port, {{}, 1, {}}};
    std::strncpy(request.change.name, field, sizeof request.change.name - 1);
    request.change.value[0] = state == "on" ? 1 : 0;
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.SendForCount(control::kSetField, request, PortName(port));
        invocation.Changed();
    }
    invocation.Result() = result.Make({port, state});
    return ExitCode::Done;
}

ExitCode RunFlashShow(Invocation& invocation) {
    const uint32_t port = GivenPort(invocation);
    const auto report =
        RunningDriver(invocation, false)
            .Fetch<FlashReport>(control::kFlashShow, PortSelector{port}, PortName(port));
    invocation.Result() = kFlashFields.Make({port, report.get()});
    return ExitCode::Done;
}

ExitCode RunFlashDump(Invocation& invocation) {
    FlashSelector place = RequirePlace(invocation, 0);
    RunningDriver driver(invocation, false);
    const auto report = driver.Fetch<FlashReport>(control::kFlashShow, PortSelector{place.scsiPort},
                                                  PortName(place.scsiPort));
    uint32_t size = 0;
    for (uint32_t at = 0; at < report->count && at < kMaxFlashRegions; ++at) {
        size = report->regions[at].code == place.region ? report->regions[at].size : size;
    }
    std::vector<uint8_t> bytes;
    do {
        place.offset = static_cast<uint32_t>(bytes.size());
        const auto piece = driver.Fetch<FlashPiece>(control::kFlashDump, place, NameOf(place));
        if (piece->length == 0 || piece->length > sizeof piece->bytes) {
            invocation.Fail(ExitCode::Failed, NameOf(place) + ": the driver gives nothing");
        }
        bytes.insert(bytes.end(), piece->bytes, piece->bytes + piece->length);
    } while (bytes.size() < size);
    return Save(invocation, {place, ""}, bytes);
}

ExitCode RunFlashImage(Invocation& invocation) {
    const FlashSelector place = RequirePlace(invocation, 0);
    const auto profile = RunningDriver(invocation, false).RunningProfile();
    const std::string version = invocation.Given().Text("as");
    std::string error;
    const auto image = MakeFlashImage(*profile, place.scsiPort, place.region, version, &error);
    if (image.empty()) {
        invocation.Fail(ExitCode::Refused, NameOf(place) + ": " + error,
                        "see `vxemu flash show " + std::to_string(place.scsiPort) + "`");
    }
    return Save(invocation, {place, version}, image);
}

ExitCode RunFlashCorrupt(Invocation& invocation) {
    const FlashSelector place = RequirePlace(
        invocation, static_cast<uint32_t>(invocation.Given().Number("AT").value_or(0)));
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.SendForCount(control::kFlashCorrupt, place,
                            NameOf(place) + ", byte " + std::to_string(place.offset));
        invocation.Changed();
    }
    invocation.Result() = kCorruptedFields.Make(place);
    return ExitCode::Done;
}

ExitCode RunFlashPowerFail(Invocation& invocation) {
    const PowerFailRequest request = {
        GivenPort(invocation),
        static_cast<uint32_t>(invocation.Given().Number("after-bytes").value_or(0))};
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.Send(control::kPowerFail, request, PortName(request.scsiPort));
        invocation.Changed();
    }
    invocation.Result() = kPowerFailFields.Make(request);
    return ExitCode::Done;
}

ExitCode RunFlashReset(Invocation& invocation) {
    const PortSelector request = {RequirePortOrAll(invocation, invocation.Given().Text("PORT"))};
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.Send(control::kFlashReset, request, PortName(request.scsiPort));
        invocation.Changed();
    }
    invocation.Result() = kPortNameFields.Make(request.scsiPort);
    return ExitCode::Done;
}

ExitCode RunLockdown(Invocation& invocation) {
    return SetFlag(invocation, "lockdown", kLockdownFields);
}

ExitCode RunBootFromSan(Invocation& invocation) {
    return SetFlag(invocation, "boots_from_san", kBootFields);
}

constexpr const char* kRegionHelp = "code of a flash region, as `flash show` lists them";
constexpr Argument kFlashDump[] = {
    kPortArgument,
    {.name = "REGION", .kind = ArgumentKind::Number, .help = kRegionHelp, .required = true},
    {.name = "FILE", .help = "file to write", .required = true},
};
constexpr Argument kFlashImage[] = {
    kPortArgument,
    {.name = "REGION",
     .kind = ArgumentKind::Number,
     .help = "code of a region of firmware or boot code",
     .required = true},
    {.name = "FILE", .help = "file to write", .required = true},
    {.name = "--as",
     .valueName = "VERSION",
     .help = "version of the image: 9.13.00, or 3.62 of boot code",
     .required = true},
};
constexpr Argument kFlashCorrupt[] = {
    kPortArgument,
    {.name = "REGION", .kind = ArgumentKind::Number, .help = kRegionHelp, .required = true},
    {.name = "AT",
     .kind = ArgumentKind::Number,
     .help = "offset of the byte in the region",
     .required = true},
};
constexpr Argument kFlashPowerFail[] = {
    kPortArgument,
    NumberOption("--after-bytes", "N", "bytes that are still written (0)"),
};
constexpr Argument kFlashReset[] = {{.name = "PORT", .help = "scsi:N, N or all", .required = true}};
constexpr Argument kSwitch[] = {
    kPortArgument,
    {.name = "STATE", .help = "on or off", .required = true, .choices = kOnOff},
};

}  // namespace

CommandRows FlashCommands() {
    static const Command kCommands[] = {
        {.path = "flash show",
         .help = "regions of an adapter's flash, and whether they are sound",
         .arguments = {&kPortArgument, 1},
         .run = RunFlashShow,
         .example = "flash show scsi:3",
         .result = ShapeOf<kFlashFields>},
        {.path = "flash dump",
         .help = "write what a region holds to a file",
         .arguments = kFlashDump,
         .run = RunFlashDump,
         .example = "flash dump scsi:3 1 old.bin",
         .result = ShapeOf<kSavedFields>},
        {.path = "flash image",
         .help = "make an image to update a region with",
         .arguments = kFlashImage,
         .run = RunFlashImage,
         .example = "flash image scsi:3 1 new.bin --as 9.13.00",
         .result = ShapeOf<kSavedFields>},
        {.path = "flash corrupt",
         .risk = Risk::Reversible,
         .help = "invert a byte of a region",
         .arguments = kFlashCorrupt,
         .run = RunFlashCorrupt,
         .example = "flash corrupt scsi:3 1 0x1000",
         .result = ShapeOf<kCorruptedFields>},
        {.path = "flash power-fail",
         .risk = Risk::Reversible,
         .help = "let the adapter's power fail during a write; reset one of its ports to end that",
         .schema = "flash.power_fail",
         .arguments = kFlashPowerFail,
         .run = RunFlashPowerFail,
         .example = "flash power-fail scsi:3 --after-bytes 70000",
         .result = ShapeOf<kPowerFailFields>},
        {.path = "flash reset",
         .risk = Risk::Reversible,
         .help = "let the port's adapter, or all, store what it was delivered with",
         .arguments = kFlashReset,
         .run = RunFlashReset,
         .example = "flash reset scsi:3",
         .result = ShapeOf<kPortNameFields>},
        {.path = "lockdown",
         .risk = Risk::Reversible,
         .help = "let the adapter refuse every change of what it stores",
         .arguments = kSwitch,
         .run = RunLockdown,
         .example = "lockdown scsi:3 on",
         .result = ShapeOf<kLockdownFields>},
        {.path = "bfs",
         .risk = Risk::Reversible,
         .help = "put the system's boot disk behind a port",
         .arguments = kSwitch,
         .run = RunBootFromSan,
         .example = "bfs scsi:3 on",
         .result = ShapeOf<kBootFields>},
    };
    return kCommands;
}

}  // namespace vxemu
