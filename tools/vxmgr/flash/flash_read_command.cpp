// flash read
#include <cstdio>
#include <filesystem>

#include "common/text.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/commands.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {
namespace {

namespace fs = std::filesystem;
using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr uint64_t kMostBytes = 64u << 20;
constexpr const char* kAll = "all";

constexpr Argument kReadArguments[] = {
    {.name = "REGION",
     .help = "region by key or code, or all; with --offset the file to write",
     .required = true},
    {"FILE", ArgumentKind::Text, "", "the file to write; with all, the folder"},
    {"--offset", ArgumentKind::Number, "N", "read from this byte of the flash on"},
    {.name = "--length",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "bytes to read from --offset",
     .least = 1,
     .most = kMostBytes},
};

// What was read and saved, or why not.
struct Saved {
    FlashRegion region;
    std::string file;
    HX_STATUS status = HXMGT_SUCCESS;
    ImageInfo image;
};

Record SavedRow(const Saved& saved) {
    Record row;
    row.Add("code", "Region", Value::Number(saved.region.code), "CODE");
    row.Add("key", "Key", Value::Text(RegionKey(saved.region.code)), "KEY");
    row.Add("content", "Content",
            saved.status == HXMGT_SUCCESS
                ? Value::Text(KindKey(saved.image.kind)).Shown(KindName(saved.image.kind))
                : Value(),
            "CONTENT");
    row.Add("version", "Version", Value::TextOrNull(saved.image.version), "VERSION");
    row.Add("size", "Size",
            Value::Number(saved.region.size, "bytes").Shown(SizeText(saved.region.size)), "SIZE");
    row.Add("file", "File", saved.status == HXMGT_SUCCESS ? Value::Text(saved.file) : Value(),
            "FILE");
    row.Add("status", "Status", StatusValue(saved.status), "STATUS");
    return row;
}

void SaveRegion(tools::Invocation& invocation, const AdapterSession& session,
                const FlashLayout& layout, Saved& saved) {
    invocation.CheckStop();
    invocation.Progress("reading region " + std::to_string(saved.region.code) + ", " +
                        SizeText(saved.region.size));
    std::vector<uint8_t> bytes;
    saved.status = ReadRegion(session.Handle(), layout, saved.region, &bytes);
    if (saved.status == HXMGT_SUCCESS) {
        SaveFile(invocation, saved.file, bytes);
        saved.image = InspectImage(bytes);
    }
}

// "007-boot.bin": in the order of the codes, and known by itself.
std::string FileNameOf(const FlashRegion& region) {
    char code[16];
    std::snprintf(code, sizeof code, "%03u", static_cast<unsigned>(region.code));
    return std::string(code) + "-" + RegionKey(region.code) + ".bin";
}

void MakeFolder(tools::Invocation& invocation, const std::string& folder) {
    const fs::path path(std::u8string(folder.begin(), folder.end()));
    std::error_code error;
    fs::create_directories(path, error);
    if (!fs::is_directory(path)) {
        invocation.Fail(error ? static_cast<uint32_t>(error.value()) : 0u,
                        folder + " cannot be made a folder");
    }
}

std::vector<Saved> WhatToRead(tools::Invocation& invocation, const FlashLayout& layout,
                              const std::string& region, const std::string& path) {
    if (region != kAll) {
        return {{GivenRegion(invocation, layout, region), path, HXMGT_SUCCESS, {}}};
    }
    MakeFolder(invocation, path);
    std::vector<Saved> all;
    for (const FlashRegion& one : layout.regions) {
        all.push_back({one, path + "/" + FileNameOf(one), HXMGT_SUCCESS, {}});
    }
    return all;
}

ExitCode ReadRegions(tools::Invocation& invocation, const std::string& region,
                     const std::string& path) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    const FlashLayout layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    std::vector<Record> rows;
    size_t failures = 0;
    ExitCode first = ExitCode::Done;
    std::vector<Saved> wanted = WhatToRead(invocation, layout, region, path);
    for (Saved& saved : wanted) {
        SaveRegion(invocation, session, layout, saved);
        if (saved.status != HXMGT_SUCCESS) {
            const ExitCode exit = invocation.Report(
                saved.status, "region " + std::to_string(saved.region.code) + " cannot be read",
                session.Object());
            first = failures++ == 0 ? exit : first;
        }
        rows.push_back(SavedRow(saved));
    }
    Record& result = invocation.Result();
    result.Add("serial", "Adapter", Value::Serial(session.Serial()));
    result.AddList("regions", "Regions", tools::ListLayout::Table, SavedRow({}), "no regions",
                   std::move(rows));
    return failures != 0 && failures < wanted.size() ? ExitCode::Partial : first;
}

ExitCode ReadRange(tools::Invocation& invocation, uint32_t offset, uint32_t length,
                   const std::string& path) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    std::vector<uint8_t> bytes(length);
    const HX_STATUS status =
        HXGetOptionRomOffset(session.Handle(), 0, bytes.data(), length, offset);
    if (status == HXMGT_INVALID_PARAMETER) {
        throw tools::CommandError{
            ExitCode::Failed,
            {tools::Severity::Error, "the flash has no such bytes, or none from this offset on",
             "newer chips are read from multiples of 256 on; `flash layout` shows the size",
             session.Object(), status}};
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the flash cannot be read", session.Object());
    }
    SaveFile(invocation, path, bytes);
    Record& result = invocation.Result();
    result.Add("serial", "Adapter", Value::Serial(session.Serial()));
    result.Add("offset", "Offset", HexValue(offset, 8));
    result.Add("size", "Size", Value::Number(length, "bytes").Shown(SizeText(length)));
    result.Add("file", "File", Value::Text(path));
    return ExitCode::Done;
}

ExitCode FlashRead(tools::Invocation& invocation) {
    const auto& given = invocation.Given();
    const auto offset = given.Number("offset");
    const auto length = given.Number("length");
    if (offset.has_value() != length.has_value()) {
        invocation.Fail(ExitCode::Usage, "--offset and --length belong together");
    }
    if (offset.has_value() == given.Has("FILE")) {
        invocation.Fail(ExitCode::Usage,
                        offset ? "with --offset the file alone is named" : "the file is missing",
                        "flash read REGION FILE, flash read all FOLDER, or flash read FILE "
                        "--offset N --length N");
    }
    if (offset) {
        return ReadRange(invocation, static_cast<uint32_t>(*offset), static_cast<uint32_t>(*length),
                         given.Text("REGION"));
    }
    return ReadRegions(invocation, given.Text("REGION"), given.Text("FILE"));
}

}  // namespace

tools::CommandRows FlashReadCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "flash read",
            .risk = tools::Risk::Reads,
            .help = "save a region, all of them, or a range of bytes",
            .schema = "flash.read",
            .arguments = kReadArguments,
            .run = FlashRead,
            .example = "flash read boot boot.bin -a serial:EMU7740A0001",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
