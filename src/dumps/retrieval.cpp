#include <algorithm>
#include <cstring>

#include "dumps/dumps.h"
#include "dumps/piece_transfer.h"
#include "frame/handle_table.h"

namespace dumps {
namespace {

// What the caller's size says after a retrieval.
HX_STATUS Finish(HX_STATUS status, uint32_t dumpSize, uint32_t& size) {
    if (status == HXMGT_SUCCESS || status == HXMGT_BUFFER_TOO_SMALL) {
        size = dumpSize;
    } else if (status == HXMGT_NO_FIRMWARE_DUMP) {
        size = 0;
    }
    return status;
}

HX_STATUS GetRaw(uint32_t handle, transport::Command command, void* buffer) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (buffer == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    auto* const bytes = static_cast<uint8_t*>(buffer);
    uint32_t* const sizeWord = static_cast<uint32_t*>(buffer);
    const uint32_t capacity = *sizeWord;
    uint32_t size = 0;
    HX_STATUS status = QuerySize<RawQuery>(handle, command, RawHeader{}, size);
    if (status == HXMGT_SUCCESS && capacity < size) {
        status = HXMGT_BUFFER_TOO_SMALL;
    }
    if (status == HXMGT_SUCCESS) {
        std::memset(buffer, 0, capacity);
        RawHeader last{};
        status = FetchPieces<RawPiece>(handle, command, last, size, {bytes + sizeof last, size},
                                       Advance::ByDelivered);
        if (status == HXMGT_SUCCESS) {
            std::memcpy(bytes + offsetof(RawHeader, attributes), last.attributes,
                        sizeof last.attributes);
        }
    }
    return Finish(status, size, *sizeWord);
}

HX_STATUS CheckSized(uint32_t handle, const void* buffer, const uint32_t* size) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    return size == nullptr || (buffer == nullptr && *size != 0) ? HXMGT_INVALID_PARAMETER
                                                                : HXMGT_SUCCESS;
}

MiniHeader PartHeader(uint8_t part) {
    MiniHeader header{};
    header.part = part;
    return header;
}

}  // namespace

HX_STATUS ForceFirmwareDump(uint32_t handle) {
    const transport::Command command = transport::command::ForceDump;
    uint32_t returned = 0;
    return transport::SendExtended(handle, command.code, command.subCode, nullptr, 0, nullptr, 0,
                                   &returned);
}

HX_STATUS GetRawFirmwareDump(uint32_t handle, void* buffer) {
    return GetRaw(handle, transport::command::RawFirmwareDump, buffer);
}

HX_STATUS GetRawMpiDump(uint32_t handle, void* buffer) {
    return GetRaw(handle, transport::command::RawMpiDump, buffer);
}

HX_STATUS GetMctpDump(uint32_t handle, void* buffer, uint32_t* size) {
    if (const HX_STATUS status = CheckSized(handle, buffer, size); status != HXMGT_SUCCESS) {
        return status;
    }
    const transport::Command command = transport::command::MctpDump;
    const uint32_t capacity = *size;
    MctpHeader header{};
    uint32_t dumpSize = 0;
    HX_STATUS status = QuerySize<MctpQuery>(handle, command, header, dumpSize);
    if (status == HXMGT_SUCCESS && capacity < dumpSize) {
        status = HXMGT_BUFFER_TOO_SMALL;
    }
    if (status == HXMGT_SUCCESS && capacity != 0) {
        std::memset(buffer, 0, capacity);
        // The offset grows by what was asked, the write position by what came: intended.
        status =
            FetchPieces<MctpPiece>(handle, command, header, dumpSize,
                                   {static_cast<uint8_t*>(buffer), dumpSize}, Advance::ByAsked);
    }
    return Finish(status, dumpSize, *size);
}

HX_STATUS GetMiniDump(uint32_t handle, void* buffer, uint32_t* size) {
    if (const HX_STATUS status = CheckSized(handle, buffer, size); status != HXMGT_SUCCESS) {
        return status;
    }
    const transport::Command command = transport::command::MiniDump;
    const uint32_t capacity = *size;
    uint32_t partSizes[2] = {};
    HX_STATUS status = HXMGT_SUCCESS;
    for (uint8_t part = 0; part < 2 && status == HXMGT_SUCCESS; ++part) {
        status = QuerySize<MiniQuery>(handle, command, PartHeader(part + 1), partSizes[part]);
    }
    const uint64_t whole = uint64_t{partSizes[0]} + partSizes[1];
    if (status == HXMGT_SUCCESS && capacity < whole) {
        status = HXMGT_BUFFER_TOO_SMALL;
    }
    if (status == HXMGT_SUCCESS && capacity != 0) {
        std::memset(buffer, 0, capacity);
        auto* out = static_cast<uint8_t*>(buffer);
        for (uint8_t part = 0; part < 2 && status == HXMGT_SUCCESS; ++part) {
            MiniHeader header = PartHeader(part + 1);
            status = FetchPieces<MiniPiece>(handle, command, header, partSizes[part],
                                            {out, partSizes[part]}, Advance::ByDelivered);
            out += partSizes[part];
        }
    }
    return Finish(status, static_cast<uint32_t>(std::min<uint64_t>(whole, UINT32_MAX)), *size);
}

}  // namespace dumps
