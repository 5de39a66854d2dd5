#include "vxmgr/support/zip.h"

#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vxmgr {
namespace {

constexpr uint16_t kVersion = 20;  // the first that deflates
constexpr uint16_t kUtf8Names = 1 << 11;
constexpr uint16_t kDeflated = 8;
constexpr size_t kMostMembers = 0xFFFF;
constexpr uint64_t kMostBytes = 0xFFFFFFFF;

#pragma pack(push, 1)
// In front of each member's bytes.
struct LocalHeader {
    uint32_t signature = 0x04034B50;
    uint16_t versionNeeded = kVersion;
    uint16_t flags = kUtf8Names;
    uint16_t method = kDeflated;
    uint16_t time;
    uint16_t date;
    uint32_t checksum;
    uint32_t deflatedSize;
    uint32_t size;
    uint16_t nameLength;
    uint16_t extraLength = 0;
};
static_assert(sizeof(LocalHeader) == 30 && offsetof(LocalHeader, checksum) == 14);

// The same in the directory, and where the member is.
struct DirectoryHeader {
    uint32_t signature = 0x02014B50;
    uint16_t versionMadeBy = kVersion;
    uint16_t versionNeeded = kVersion;
    uint16_t flags = kUtf8Names;
    uint16_t method = kDeflated;
    uint16_t time;
    uint16_t date;
    uint32_t checksum;
    uint32_t deflatedSize;
    uint32_t size;
    uint16_t nameLength;
    uint16_t extraLength = 0;
    uint16_t commentLength = 0;
    uint16_t disk = 0;
    uint16_t internalAttributes = 0;
    uint32_t externalAttributes = 0;
    uint32_t offset;
};
static_assert(sizeof(DirectoryHeader) == 46 && offsetof(DirectoryHeader, checksum) == 16 &&
              offsetof(DirectoryHeader, offset) == 42);

// The end of the file, by which readers find the directory.
struct EndRecord {
    uint32_t signature = 0x06054B50;
    uint16_t disk = 0;
    uint16_t directoryDisk = 0;
    uint16_t membersOnDisk;
    uint16_t members;
    uint32_t directorySize;
    uint32_t directoryOffset;
    uint16_t commentLength = 0;
};
static_assert(sizeof(EndRecord) == 22 && offsetof(EndRecord, directoryOffset) == 16);
#pragma pack(pop)

template <class Record>
std::span<const uint8_t> BytesOf(const Record& record) {
    return {reinterpret_cast<const uint8_t*>(&record), sizeof record};
}

std::span<const uint8_t> BytesOf(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// Times have a step of two seconds; the calendar begins in 1980.
uint16_t PackedTime(const ZipTime& time) {
    return static_cast<uint16_t>(time.hour << 11 | time.minute << 5 | time.second / 2);
}
uint16_t PackedDate(const ZipTime& time) {
    return static_cast<uint16_t>(std::clamp(time.year - 1980, 0, 127) << 9 | time.month << 5 |
                                 time.day);
}

// Raw deflate. Empty when there is no memory for it; no stream is that short.
std::vector<uint8_t> Deflated(std::span<const uint8_t> bytes) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        return {};
    }
    std::vector<uint8_t> deflated(deflateBound(&stream, static_cast<uLong>(bytes.size())));
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = deflated.data();
    stream.avail_out = static_cast<uInt>(deflated.size());
    const bool whole = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    deflated.resize(whole ? stream.total_out : 0);
    deflateEnd(&stream);
    return deflated;
}

}  // namespace

ZipWriter::ZipWriter(const ZipTime& time, Sink sink)
    : time_(PackedTime(time)), date_(PackedDate(time)), sink_(std::move(sink)) {}

ZipOutcome ZipWriter::Write(std::span<const uint8_t> bytes) {
    if (!sink_(bytes)) {
        return ZipOutcome::NotWritten;
    }
    size_ += bytes.size();
    return ZipOutcome::Good;
}

ZipOutcome ZipWriter::Add(const std::string& name, std::span<const uint8_t> bytes) {
    constexpr size_t kMostName = 0xFFFF;
    // What deflate may add to bytes that cannot be made smaller is far less than a part in a
    // hundred.
    if (members_ == kMostMembers || name.size() > kMostName ||
        size_ + directory_.size() + bytes.size() + bytes.size() / 100 + kMostName > kMostBytes) {
        return ZipOutcome::TooLarge;
    }
    const std::vector<uint8_t> deflated = Deflated(bytes);
    if (deflated.empty()) {
        return ZipOutcome::NotWritten;
    }
    LocalHeader local{};
    local.time = time_;
    local.date = date_;
    local.checksum = static_cast<uint32_t>(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
    local.deflatedSize = static_cast<uint32_t>(deflated.size());
    local.size = static_cast<uint32_t>(bytes.size());
    local.nameLength = static_cast<uint16_t>(name.size());
    DirectoryHeader entry{};
    entry.time = local.time;
    entry.date = local.date;
    entry.checksum = local.checksum;
    entry.deflatedSize = local.deflatedSize;
    entry.size = local.size;
    entry.nameLength = local.nameLength;
    entry.offset = static_cast<uint32_t>(size_);
    for (const std::span<const uint8_t> part :
         {BytesOf(local), BytesOf(name), std::span<const uint8_t>(deflated)}) {
        if (const ZipOutcome outcome = Write(part); outcome != ZipOutcome::Good) {
            return outcome;
        }
    }
    const auto head = BytesOf(entry);
    directory_.insert(directory_.end(), head.begin(), head.end());
    directory_.insert(directory_.end(), name.begin(), name.end());
    ++members_;
    return ZipOutcome::Good;
}

ZipOutcome ZipWriter::Finish() {
    EndRecord end{};
    end.members = end.membersOnDisk = static_cast<uint16_t>(members_);
    end.directorySize = static_cast<uint32_t>(directory_.size());
    end.directoryOffset = static_cast<uint32_t>(size_);
    const ZipOutcome outcome = Write(directory_);
    return outcome == ZipOutcome::Good ? Write(BytesOf(end)) : outcome;
}

}  // namespace vxmgr
