// The file in which the flash of an adapter lasts: a head that says whose it is, then a record of
// each change in its order.
//
// What a request changes counts as a whole or not at all: its records are written behind the
// others, then a commit tells how far the file counts. It stands there twice, in disk sectors of
// their own, one written after the other, so that one that is cut off or damaged leaves the other.
// Whatever stands behind the place that the newer one names was never completed.
#pragma once

#include <cstddef>
#include <cstdint>

#include "formats/crc32.h"
#include "model/host.h"
#include "model/storage/host_files.h"

namespace vxemu {

// What becomes of what is written to a flash.
enum class FlashKeep : uint8_t {
    Nowhere,    // it goes with the driver: there is no folder to keep it in
    Kept,       // it lasts
    Foreign,    // the file is of another adapter, or of another content as delivered
    Truncated,  // the file ends before its last change
    Damaged,    // a checksum in it does not hold
    Failed,     // the file can not be read or written
};

enum class FlashRecordKind : uint32_t {
    Bytes = 1,      // of the flash, from offset on
    Port = 2,       // a KeptPort
    Eeprom = 3,     // a PortEeprom
    Companion = 4,  // the version of its stored firmware
};

#pragma pack(push, 1)

struct FlashFileHead {
    char mark[8];  // kFlashFileMark
    uint32_t version;
    uint32_t deviceId;
    char serial[32];
    uint32_t flashBytes;
    uint32_t delivered;  // CRC-32 of what the adapter was delivered with
    uint32_t reserved56;
    uint32_t crc;  // of what is before it
};
static_assert(sizeof(FlashFileHead) == 64);

struct FlashFileCommit {
    uint64_t number;
    uint64_t end;   // bytes of the file that count
    uint32_t head;  // the head's crc
    uint32_t crc;   // of what is before it
};
static_assert(sizeof(FlashFileCommit) == 24);

struct FlashFileRecord {
    FlashRecordKind kind;
    uint32_t length;      // of the bytes that follow
    uint32_t offset;      // Bytes alone
    uint8_t portName[8];  // Port and Eeprom alone
    uint32_t crc;         // of what is before it and of the bytes
};
static_assert(sizeof(FlashFileRecord) == 24);

#pragma pack(pop)

inline constexpr char kFlashFileMark[8] = {'V', 'X', 'E', 'M', 'U', 'F', 'L', 'A'};
inline constexpr uint32_t kFlashFileVersion = 1;          // raised with every change of a record
inline constexpr uint64_t kFlashCommits[] = {512, 1024};  // where they stand
inline constexpr uint64_t kFlashRecords = 4096;           // where the first record stands
inline constexpr uint32_t kMostRecordBytes = 65536;

// A head that matches no file but the adapter's: mark, version and crc are set here.
void SealHead(FlashFileHead& head);

// The name of an adapter's file: its serial number, as far as that may stand in a name.
class FlashFileName {
  public:
    explicit FlashFileName(const char* serial, const char* suffix = "");
    const char* Get() const { return text_; }

  private:
    char text_[48];
};

// Zero is a file that is not open.
class FlashFile {
  public:
    bool IsOpen() const { return file_ != nullptr; }

    FileFound Open(const HostFiles& files, const char* name);
    // Whether it is the file of that head and sound, as far as it can be told without its records.
    FlashKeep Check(const FlashFileHead& head);
    bool Create(const HostFiles& files, const char* name, const FlashFileHead& head);
    void Close();
    // Closes it, and it is gone.
    bool Erase();
    // Closes the other one, and takes its place.
    bool TakePlaceOf(FlashFile& other, const char* name);

    // Calls apply(record, bytes) for each record; what it is given has been checked, and is a copy.
    // It returns false for a record that cannot be.
    template <typename Apply>
    FlashKeep Replay(const Host& host, Apply apply);

    // False when it was not written; what has been appended does not count before Commit.
    bool Append(FlashFileRecord record, const void* bytes);
    bool Commit();
    bool Pending() const { return end_ != committed_; }

    uint64_t Bytes() const { return end_; }

  private:
    bool ReadCommits();
    FlashKeep ReadRecord(uint64_t at, FlashFileRecord& record, uint8_t* bytes) const;
    bool Read(uint64_t offset, void* bytes, uint32_t length) const {
        return files_->read(files_->context, file_, offset, bytes, length);
    }
    bool Write(uint64_t offset, const void* bytes, uint32_t length) const {
        return files_->write(files_->context, file_, offset, bytes, length);
    }

    const HostFiles* files_;
    void* file_;
    uint32_t head_;    // its crc
    uint64_t number_;  // of the last commit
    uint64_t committed_;
    uint64_t end_;
};

template <typename Apply>
FlashKeep FlashFile::Replay(const Host& host, Apply apply) {
    auto* bytes = static_cast<uint8_t*>(host.allocate(host.context, kMostRecordBytes));
    FlashKeep keep = bytes != nullptr ? FlashKeep::Kept : FlashKeep::Failed;
    for (uint64_t at = kFlashRecords; keep == FlashKeep::Kept && at < committed_;) {
        FlashFileRecord record;
        keep = ReadRecord(at, record, bytes);
        if (keep == FlashKeep::Kept && !apply(record, static_cast<const uint8_t*>(bytes))) {
            keep = FlashKeep::Damaged;
        }
        at += sizeof record + record.length;
    }
    if (bytes != nullptr) {
        host.release(host.context, bytes);
    }
    return keep;
}

}  // namespace vxemu
