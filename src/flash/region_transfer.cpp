#include "flash/region_transfer.h"

#include <algorithm>
#include <cstring>

#include "flash/transfer_progress.h"
#include "frame/owned.h"
#include "transport/requests.h"

namespace flash {
namespace {

// A transfer in one piece.
template <class Move>
HX_STATUS Alone(uint32_t handle, uint32_t regionCode, uint32_t size, Move move) {
    HX_STATUS status = TellProgress(handle, regionCode, 0, size);
    if (status == HXMGT_SUCCESS) {
        status = move();
    }
    if (status == HXMGT_SUCCESS) {
        TellProgress(handle, regionCode, size, size);
    }
    return status;
}

// Calls move(chunk request, offset, bytes, bytes rounded up to whole KiB) for each piece.
template <class Move>
HX_STATUS ForEachChunk(uint32_t handle, uint32_t regionCode, uint32_t size, Move move) {
    for (uint32_t index = 0, offset = 0; offset < size; ++index) {
        const uint32_t bytes = std::min(size - offset, kChunkBytes);
        const ChunkRequest request{static_cast<uint16_t>(WholeKib(bytes)),
                                   static_cast<uint16_t>(index)};
        HX_STATUS status = TellProgress(handle, regionCode, offset, size);
        if (status == HXMGT_SUCCESS) {
            status = move(request, offset, bytes, request.kib * 1024u);
        }
        if (status != HXMGT_SUCCESS) {
            return status;
        }
        offset += bytes;
    }
    TellProgress(handle, regionCode, size, size);
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS ReadRegion(uint32_t handle, uint32_t regionCode, uint32_t size,
                     std::span<uint8_t> buffer) {
    const uint32_t code = transport::command::FlashRead.code;
    const auto subCode = static_cast<uint16_t>(regionCode);
    uint32_t returned = 0;
    if (size <= kChunkBytes) {
        return Alone(handle, regionCode, size, [&] {
            return transport::SendExtended(handle, code, subCode, nullptr, 0, buffer.data(), size,
                                           &returned);
        });
    }
    return ForEachChunk(
        handle, regionCode, size,
        [&](const ChunkRequest& request, uint32_t offset, uint32_t, uint32_t whole) -> HX_STATUS {
            const auto read = [&](uint8_t* out) {
                return transport::SendExtended(handle, code, subCode, &request, sizeof request, out,
                                               whole, &returned);
            };
            // The last piece is cut to the buffer's end, and not to the region's: intended.
            const std::span<uint8_t> rest = buffer.subspan(offset);
            if (whole <= rest.size()) {
                return read(rest.data());
            }
            const frame::Bytes piece = frame::UnclearedBytes(whole);
            if (piece == nullptr) {
                return HXMGT_OUT_OF_MEMORY;
            }
            const HX_STATUS status = read(piece.get());
            std::memcpy(rest.data(), piece.get(), std::min<size_t>(returned, rest.size()));
            return status;
        });
}

HX_STATUS WriteRegion(uint32_t handle, uint32_t regionCode, std::span<const uint8_t> image) {
    const uint32_t code = transport::command::FlashWrite.code;
    const auto subCode = static_cast<uint16_t>(regionCode);
    const auto size = static_cast<uint32_t>(image.size());
    uint32_t returned = 0;
    if (size <= kChunkBytes) {
        return Alone(handle, regionCode, size, [&] {
            return transport::SendExtended(handle, code, subCode, image.data(), size, nullptr, 0,
                                           &returned);
        });
    }
    const frame::Bytes lastPiece = frame::ZeroedBytes(kChunkBytes);
    if (lastPiece == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    return ForEachChunk(
        handle, regionCode, size,
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
