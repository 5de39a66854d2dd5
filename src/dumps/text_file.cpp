#include <windows.h>

#include <cstdio>

#include "dumps/dump_text.h"
#include "dumps/dumps.h"
#include "dumps/piece_transfer.h"
#include "frame/handle_table.h"
#include "frame/owned.h"
#include "properties/chip_families.h"
#include "properties/properties.h"

namespace dumps {
namespace {

class FileSink final : public DumpSink {
  public:
    explicit FileSink(FILE* stream) : stream_(stream) {}

    void Write(std::string_view text) override {
        failed_ |= std::fwrite(text.data(), 1, text.size(), stream_) != text.size();
    }

    LocalTime ToLocal(uint64_t fileTime) override {
        const FILETIME utc{static_cast<DWORD>(fileTime), static_cast<DWORD>(fileTime >> 32)};
        FILETIME local{};
        SYSTEMTIME time{};
        if (!FileTimeToLocalFileTime(&utc, &local) || !FileTimeToSystemTime(&local, &time)) {
            return {};
        }
        return {time.wYear,   time.wMonth,  time.wDay,         time.wHour,
                time.wMinute, time.wSecond, time.wMilliseconds};
    }

    // Also when what is still buffered does not reach the file.
    bool Failed() const { return failed_ || std::fflush(stream_) != 0; }

  private:
    FILE* stream_;
    bool failed_ = false;
};

// Layout of a chip's dump, as a column of the section table.
uint32_t ColumnOfChip(const properties::Chip& chip) {
    return ColumnOfLayout(chip.Has(properties::ChipTrait::Newest) ? kNewestLayout
                                                                  : chip.dumpLayout);
}

HX_STATUS StatusOf(DumpEnd end) {
    switch (end) {
        case DumpEnd::Complete:
            return HXMGT_SUCCESS;
        case DumpEnd::NoRecord:
            return HXMGT_INCOMPATIBLE_VERSION;
        default:
            return HXMGT_DATA_UNDERRUN;
    }
}

}  // namespace

HX_STATUS WriteFirmwareDumpText(uint32_t handle, const char* fileName) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (fileName == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const transport::Command command = transport::command::FirmwareDump;
    uint32_t size = 0;
    if (const HX_STATUS status = QuerySize<TextQuery>(handle, command, TextHeader{}, size);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (size == 0) {
        return HXMGT_NO_FIRMWARE_DUMP;
    }
    const frame::Bytes dump = frame::ZeroedBytes(size);
    if (dump == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    TextHeader last{};
    if (const HX_STATUS status = FetchPieces<TextPiece>(handle, command, last, size,
                                                        {dump.get(), size}, Advance::ByDelivered);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (last.formatVersion < kOldestTextFormat) {
        return HXMGT_INCOMPATIBLE_VERSION;
    }
    const uint32_t column = ColumnOfChip(properties::ChipOf(chip.deviceId));
    if (column == kLayouts) {
        return HXMGT_NOT_SUPPORTED;
    }
    const frame::OwnedStream stream(std::fopen(fileName, "w"));
    if (!stream.Valid()) {
        return HXMGT_DUMP_FILE_NOT_OPENED;
    }
    FileSink sink(stream.Get());
    const DumpEnd end = WriteDumpText(
        {dump.get(), size}, column,
        {last.externalMemoryWords, last.traceWords, last.fceWords, last.queues}, sink);
    return sink.Failed() ? HX_STATUS{HXMGT_PERSISTENT_STORAGE_ERROR} : StatusOf(end);
}

}  // namespace dumps
