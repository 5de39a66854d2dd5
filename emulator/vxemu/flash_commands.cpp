// flash show, dump, image, corrupt, power-fail; lockdown, bfs.
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "commands.h"
#include "common/console.h"
#include "common/text.h"
#include "flash_image.h"
#include "model/profile/profile_fields.h"
#include "running_driver.h"

namespace vxemu {
namespace {

using tools::ExitCode;
using tools::Invocation;
using tools::Record;
using tools::Tone;
using tools::Value;

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

Record RegionRow(const FlashRegionStatus& region) {
    Record row;
    row.Add("region", "Region", Value::Number(region.code), "REGION");
    row.Add("content", "Content", Value::Text(NameOf(region.content)), "CONTENT");
    row.Add("start", "Start", Value::Text(tools::Hex(region.start, 6)), "START");
    row.Add("bytes", "Bytes", Value::Number(region.size), "BYTES");
    row.Add("flags", "Flags", Value::Text(tools::Hex(region.flags, 2)));
    row.Add("read_only", "Read-only", Value::Flag(region.readOnly != 0));
    row.Add("version", "Version", Value::TextOrNull(region.version), "VERSION");
    row.Add("checksum", "Checksum", CheckValue(region.checksum), "CHECKSUM");
    row.Add("signature", "Signature", CheckValue(region.signature), "SIGNATURE");
    return row;
}

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

Record ResultOf(const FlashSelector& place) {
    Record result;
    result.Add("port", "Port", Value::Text(PortName(place.scsiPort)));
    result.Add("region", "Region", Value::Number(place.region));
    return result;
}

// Writes the file unless this is a dry run, and completes the result.
ExitCode Save(Invocation& invocation, Record result, const std::vector<uint8_t>& bytes) {
    const std::string path = invocation.Given().Text("FILE");
    if (!invocation.DryRun()) {
        uint32_t error = 0;
        std::FILE* file = tools::console::CreateForWriting(path, &error);
        if (file == nullptr) {
            invocation.Fail(error, path + " cannot be written");
        }
        const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        if (std::fclose(file) != 0 || !written) {
            invocation.Fail(ExitCode::Failed, path + " cannot be written", "is the disk full?");
        }
    }
    result.Add("bytes", "Bytes", Value::Number(bytes.size()));
    result.Add("file", "File", Value::Text(path));
    invocation.Result() = std::move(result);
    return ExitCode::Done;
}

// Sets a flag of the port, or of its adapter.
ExitCode SetFlag(Invocation& invocation, const char* field, const char* key, const char* label) {
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
    invocation.Result().Add("port", "Port", Value::Text(PortName(port)));
    invocation.Result().Add(key, label, Value::Text(state));
    return ExitCode::Done;
}

}  // namespace

ExitCode RunFlashShow(Invocation& invocation) {
    const uint32_t port = GivenPort(invocation);
    const auto report =
        RunningDriver(invocation, false)
            .Fetch<FlashReport>(control::kFlashShow, PortSelector{port}, PortName(port));
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Text(PortName(port)));
    result.Add("bytes", "Bytes", Value::Number(report->bytes));
    result.Add("powered", "Powered", Value::Flag(report->withoutPower == 0));
    result.Add(
        "power_fails_after", "Power fails after",
        report->failsSoon != 0 ? Value::Number(report->bytesUntilFailure, "bytes") : Value());
    result.Add("bank", "Bank of NVRAM and VPD", Value::Number(report->secondBank != 0 ? 2 : 1));
    std::vector<Record> rows;
    for (uint32_t at = 0; at < report->count && at < kMaxFlashRegions; ++at) {
        rows.push_back(RegionRow(report->regions[at]));
    }
    result.AddList("regions", "Regions", tools::ListLayout::Table, RegionRow({}), "No regions.",
                   std::move(rows));
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
    return Save(invocation, ResultOf(place), bytes);
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
    Record result = ResultOf(place);
    result.Add("version", "Version", Value::Text(version));
    return Save(invocation, std::move(result), image);
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
    Record result = ResultOf(place);
    result.Add("at", "Byte inverted", Value::Number(place.offset));
    invocation.Result() = std::move(result);
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
    invocation.Result().Add("port", "Port", Value::Text(PortName(request.scsiPort)));
    invocation.Result().Add("after_bytes", "Power fails after",
                            Value::Number(request.afterBytes, "bytes"));
    return ExitCode::Done;
}

ExitCode RunLockdown(Invocation& invocation) {
    return SetFlag(invocation, "lockdown", "lockdown", "Lockdown");
}

ExitCode RunBootFromSan(Invocation& invocation) {
    return SetFlag(invocation, "boots_from_san", "boots_from_san", "Boots from SAN");
}

}  // namespace vxemu
