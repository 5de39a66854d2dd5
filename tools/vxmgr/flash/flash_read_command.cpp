// flash read
#include <cstdio>
#include <filesystem>

#include "vxmgr/app/files.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t kMostBytes = 64u << 20;
constexpr const char* kAll = "all";

constexpr Argument kReadArguments[] = {
    {.name = "REGION",
     .help = "region by key or code, or all; with --offset the file to write",
     .required = true},
    {.name = "FILE", .help = "the file to write; with all, the folder"},
    NumberOption("--offset", "N", "read from this byte of the flash on"),
    NumberOption("--length", "N", "bytes to read from --offset", 1, kMostBytes),
};

// What was read and saved, or why not.
struct SavedRegion : FlashRegion {
    std::string file{};
    HX_STATUS status = HXMGT_SUCCESS;
    ImageInfo image{};

    bool IsSaved() const { return status == HXMGT_SUCCESS; }
};
using SavedRegions = std::vector<SavedRegion>;

const Fields<SavedRegion> kSavedRegionFields = {
    {"code", "Region", "CODE", kInteger, &SavedRegion::code},
    {"key", "Key", "KEY", kText, &SavedRegion::Key},
    {"content", "Content", "CONTENT", Choice(kImageKinds).OrNull(),
     [](const SavedRegion& one) { return one.IsSaved() ? KindValue(one.image.kind) : Value(); }},
    {"version", "Version", "VERSION", kText.OrNull(),
     [](const SavedRegion& one) { return one.image.version; }},
    {"size", "Size", "SIZE", kInteger, SizeOf<&SavedRegion::size>},
    {"file", "File", "FILE", kText.OrNull(),
     [](const SavedRegion& one) { return one.IsSaved() ? one.file : std::string(); },
     "null when the region could not be read"},
    {"status", "Status", "STATUS", kText.OrNull(),
     [](const SavedRegion& one) { return StatusValue(one.status); }},
};

// A part of the flash that has no name.
struct SavedRange {
    uint32_t offset;
    uint32_t length;
    std::string file;
};

const Fields<SavedRange> kRangeFields = {
    {"offset", "Offset", Hexadecimal(8), &SavedRange::offset, "with --offset"},
    {"size", "Size", kInteger, SizeOf<&SavedRange::length>, "with --offset"},
    {"file", "File", kText, &SavedRange::file, "with --offset"},
};

struct FlashSaved {
    const AdapterSession* session;
    std::optional<SavedRegions> regions{};
    std::optional<SavedRange> range{};
};

const Fields<FlashSaved> kFlashReadFields = {
    {kSessionFields, &FlashSaved::session},
    {"regions", "Regions", kSavedRegionFields, &FlashSaved::regions, "no regions",
     "without --offset"},
    {kRangeFields, &FlashSaved::range},
};

void SaveRegion(Invocation& invocation, const AdapterSession& session, const FlashLayout& layout,
                SavedRegion& saved) {
    invocation.CheckStop();
    invocation.Progress("reading region " + std::to_string(saved.code) + ", " +
                        SizeText(saved.size));
    std::vector<uint8_t> bytes;
    saved.status = ReadRegion(session.Handle(), layout, saved, &bytes);
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

void MakeFolder(Invocation& invocation, const std::string& folder) {
    const fs::path path(std::u8string(folder.begin(), folder.end()));
    std::error_code error;
    fs::create_directories(path, error);
    if (!fs::is_directory(path)) {
        invocation.Fail(error ? static_cast<uint32_t>(error.value()) : 0u,
                        folder + " cannot be made a folder");
    }
}

SavedRegions WhatToRead(Invocation& invocation, const FlashLayout& layout,
                        const std::string& region, const std::string& path) {
    if (region != kAll) {
        return {{GivenRegion(invocation, layout, region), path}};
    }
    MakeFolder(invocation, path);
    SavedRegions all;
    for (const FlashRegion& one : layout.regions) {
        all.push_back({one, path + "/" + FileNameOf(one)});
    }
    return all;
}

ExitCode ReadRegions(Invocation& invocation, const std::string& region, const std::string& path) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    const FlashLayout layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    FailureTally failed;
    SavedRegions wanted = WhatToRead(invocation, layout, region, path);
    for (SavedRegion& saved : wanted) {
        SaveRegion(invocation, session, layout, saved);
        if (saved.status != HXMGT_SUCCESS) {
            failed.Add(invocation.Report(saved.status,
                                         "region " + std::to_string(saved.code) + " cannot be read",
                                         session.Object()));
        }
    }
    invocation.Result() = kFlashReadFields.Make({&session, wanted});
    return failed.Of(wanted.size());
}

ExitCode ReadRange(Invocation& invocation, uint32_t offset, uint32_t length,
                   const std::string& path) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    std::vector<uint8_t> bytes(length);
    const HX_STATUS status =
        HXGetOptionRomOffset(session.Handle(), 0, bytes.data(), length, offset);
    if (status == HXMGT_INVALID_PARAMETER) {
        FailAt(session.Object(), ExitCode::Failed,
               "the flash has no such bytes, or none from this offset on",
               "newer chips are read from multiples of 256 on; `flash layout` shows the size",
               status);
    }
    invocation.Require(status, "the flash cannot be read", session.Object());
    SaveFile(invocation, path, bytes);
    invocation.Result() =
        kFlashReadFields.Make({&session, std::nullopt, SavedRange{offset, length, path}});
    return ExitCode::Done;
}

ExitCode FlashRead(Invocation& invocation) {
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

CommandRows FlashReadCommands() {
    static const Command kCommands[] = {
        {.path = "flash read",
         .help = "save a region, all of them, or a range of bytes",
         .arguments = kReadArguments,
         .run = FlashRead,
         .example = "flash read boot boot.bin -a serial:EMU7740A0001",
         .result = ShapeOf<kFlashReadFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
