#include "model/storage/flash_file.h"

#include <cstring>

namespace vxemu {
namespace {

// The sum over a record up to its crc, and over bytes that follow it.
template <typename Record>
uint32_t SealOf(const Record& record, formats::Bytes bytes = {}) {
    static_assert(offsetof(Record, crc) + sizeof record.crc == sizeof record);
    const formats::Bytes before = formats::BytesOf(record).first(offsetof(Record, crc));
    return ~formats::Crc32Remainder(formats::Crc32Remainder(0xFFFFFFFF, before), bytes);
}

bool IsNameCharacter(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || character == '-';
}

}  // namespace

void SealHead(FlashFileHead& head) {
    std::memcpy(head.mark, kFlashFileMark, sizeof head.mark);
    head.version = kFlashFileVersion;
    head.reserved56 = 0;
    head.crc = SealOf(head);
}

FlashFileName::FlashFileName(const char* serial, const char* suffix) : text_() {
    constexpr uint32_t kMostCharacters = 32;
    uint32_t length = 0;
    for (; length < kMostCharacters && serial[length] != 0; ++length) {
        text_[length] = IsNameCharacter(serial[length]) ? serial[length] : '_';
    }
    for (const char* part : {".flash", suffix}) {
        for (; *part != 0 && length + 1 < sizeof text_; ++part) {
            text_[length++] = *part;
        }
    }
}

FileFound FlashFile::Open(const HostFiles& files, const char* name) {
    files_ = &files;
    const FileFound found = files.open(files.context, name, FileOpening::Existing, &file_);
    if (found != FileFound::Opened) {
        file_ = nullptr;
    }
    return found;
}

FlashKeep FlashFile::Check(const FlashFileHead& head) {
    const uint64_t bytes = files_->bytes(files_->context, file_);
    if (bytes < kFlashRecords) {
        return FlashKeep::Truncated;
    }
    FlashFileHead found;
    if (!Read(0, &found, sizeof found)) {
        return FlashKeep::Failed;
    }
    if (std::memcmp(found.mark, kFlashFileMark, sizeof found.mark) != 0 ||
        found.version != kFlashFileVersion) {
        return FlashKeep::Foreign;
    }
    if (found.crc != SealOf(found)) {
        return FlashKeep::Damaged;
    }
    if (std::memcmp(&found, &head, sizeof found) != 0) {
        return FlashKeep::Foreign;
    }
    head_ = head.crc;
    if (!ReadCommits()) {
        return FlashKeep::Damaged;
    }
    return bytes < committed_ ? FlashKeep::Truncated : FlashKeep::Kept;
}

// The newer one of those that hold.
bool FlashFile::ReadCommits() {
    bool found = false;
    for (const uint64_t place : kFlashCommits) {
        FlashFileCommit commit;
        if (Read(place, &commit, sizeof commit) && commit.crc == SealOf(commit) &&
            commit.head == head_ && commit.end >= kFlashRecords &&
            (!found || commit.number > number_)) {
            number_ = commit.number;
            committed_ = commit.end;
            found = true;
        }
    }
    end_ = committed_;
    return found;
}

bool FlashFile::Create(const HostFiles& files, const char* name, const FlashFileHead& head) {
    if (files.open(files.context, name, FileOpening::Fresh, &file_) != FileFound::Opened) {
        file_ = nullptr;
        return false;
    }
    files_ = &files;
    head_ = head.crc;
    number_ = 0;
    committed_ = kFlashRecords;
    end_ = kFlashRecords;
    const uint8_t last = 0;  // so that a file without records is as long as one
    if (Write(kFlashRecords - 1, &last, sizeof last) && Write(0, &head, sizeof head) && Commit()) {
        return true;
    }
    Erase();
    return false;
}

void FlashFile::Close() {
    if (file_ != nullptr) {
        files_->close(files_->context, file_);
        file_ = nullptr;
    }
}

bool FlashFile::Erase() {
    const bool erased = file_ == nullptr || files_->erase(files_->context, file_);
    Close();
    return erased;
}

bool FlashFile::TakePlaceOf(FlashFile& other, const char* name) {
    other.Close();
    return files_->replace(files_->context, file_, name);
}

// Lengths are checked before anything is read by them.
FlashKeep FlashFile::ReadRecord(uint64_t at, FlashFileRecord& record, uint8_t* bytes) const {
    if (committed_ - at < sizeof record) {
        return FlashKeep::Damaged;
    }
    if (!Read(at, &record, sizeof record)) {
        return FlashKeep::Failed;
    }
    if (record.length > kMostRecordBytes || record.length > committed_ - at - sizeof record) {
        return FlashKeep::Damaged;
    }
    if (record.length != 0 && !Read(at + sizeof record, bytes, record.length)) {
        return FlashKeep::Failed;
    }
    return record.crc == SealOf(record, {bytes, record.length}) ? FlashKeep::Kept
                                                                : FlashKeep::Damaged;
}

bool FlashFile::Append(FlashFileRecord record, const void* bytes) {
    record.crc = SealOf(record, {static_cast<const uint8_t*>(bytes), record.length});
    if (!Write(end_, &record, sizeof record) ||
        !Write(end_ + sizeof record, bytes, record.length)) {
        return false;
    }
    end_ += sizeof record + record.length;
    return true;
}

bool FlashFile::Commit() {
    FlashFileCommit commit = {number_ + 1, end_, head_, 0};
    commit.crc = SealOf(commit);
    for (const uint64_t place : kFlashCommits) {
        if (!Write(place, &commit, sizeof commit)) {
            return false;
        }
    }
    number_ = commit.number;
    committed_ = end_;
    return true;
}

}  // namespace vxemu
