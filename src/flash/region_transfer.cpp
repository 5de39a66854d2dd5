#include "flash/region_transfer.h"

#include <algorithm>
#include <cstring>

#include "frame/owned.h"
#include "transport/requests.h"

namespace flash {
namespace {

// Calls move(chunk request, offset, bytes, bytes rounded up to whole KiB) for each piece.
template <class Move>
HX_STATUS ForEachChunk(uint32_t size, Move move) {
    for (uint32_t index = 0, offset = 0; offset < size; ++index) {
        const uint32_t bytes = std::min(size - offset, kChunkBytes);
        const ChunkRequest request{static_cast<uint16_t>(WholeKib(bytes)),
                                   static_cast<uint16_t>(index)};
        if (const HX_STATUS status = move(request, offset, bytes, request.kib * 1024u);
            status != HXMGT_SUCCESS) {
            return status;
        }
        offset += bytes;
    }
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS ReadRegion(uint32_t handle, uint32_t regionCode, uint32_t size, uint8_t* buffer) {
    const uint32_t code = transport::command::FlashRead.code;
    const auto subCode = static_cast<uint16_t>(regionCode);
    uint32_t returned = 0;
    if (size <= kChunkBytes) {
        return transport::SendExtended(handle, code, subCode, nullptr, 0, buffer, size, &returned);
    }
    // The last piece is not cut to the region's end: intended.
    return ForEachChunk(
        size, [&](const ChunkRequest& request, uint32_t offset, uint32_t, uint32_t whole) {
            return transport::SendExtended(handle, code, subCode, &request, sizeof request,
                                           buffer + offset, whole, &returned);
        });
}

HX_STATUS ReadRegionWithin(uint32_t handle, uint32_t regionCode, uint32_t size,
                           std::span<uint8_t> buffer) {
    const size_t whole = size > kChunkBytes ? size_t{WholeKib(size)} * 1024 : size;
    if (whole <= buffer.size()) {
        return ReadRegion(handle, regionCode, size, buffer.data());
    }
    const frame::Bytes region = frame::ZeroedBytes(whole);
    if (region == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const HX_STATUS status = ReadRegion(handle, regionCode, size, region.get());
    if (status == HXMGT_SUCCESS) {
        std::memcpy(buffer.data(), region.get(), size);
    }
    return status;
}

HX_STATUS WriteRegion(uint32_t handle, uint32_t regionCode, std::span<const uint8_t> image) {
    const uint32_t code = transport::command::FlashWrite.code;
    const auto subCode = static_cast<uint16_t>(regionCode);
    const auto size = static_cast<uint32_t>(image.size());
    uint32_t returned = 0;
    if (size <= kChunkBytes) {
        return transport::SendExtended(handle, code, subCode, image.data(), size, nullptr, 0,
                                       &returned);
    }
    const frame::Bytes lastPiece = frame::ZeroedBytes(kChunkBytes);
    if (lastPiece == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    return ForEachChunk(
        size,
        [&](ChunkRequest request, uint32_t offset, uint32_t bytes, uint32_t whole) -> HX_STATUS {
            const uint8_t* data = image.data() + offset;
            if (bytes != whole) {
                std::memcpy(lastPiece.get(), data, bytes);
                data = lastPiece.get();
            }
            // The request travels in the output slot; the driver may overwrite this copy.
            return transport::SendExtended(handle, code, subCode, data, whole, &request,
                                           sizeof request, &returned);
        });
}

}  // namespace flash
