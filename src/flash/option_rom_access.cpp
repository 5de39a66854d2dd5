// Flash without regions in mind: whole, or by byte offset.
#include <algorithm>
#include <cstring>

#include "flash/carried_identity.h"
#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/region_rules.h"
#include "flash/transfer_progress.h"
#include "frame/owned.h"
#include "properties/chip_families.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace flash {
namespace {

constexpr uint32_t kRegionRequestsVersion = 80100;  // drivers with the newer flash requests
constexpr uint32_t kWholeBytes = 128 * 1024;
constexpr uint32_t kAlignment = 256;

HX_STATUS CheckBuffer(uint32_t handle, const void* buffer, uint32_t size) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    return buffer == nullptr && size != 0 ? HXMGT_INVALID_PARAMETER : HXMGT_SUCCESS;
}

// How the whole flash is read and written, by driver.
struct WholeCommands {
    transport::Command read;
    transport::Command write;
};

HX_STATUS ChooseWholeCommands(uint32_t handle, WholeCommands& commands) {
    const std::optional<HXMGT_API_HANDLE> device = frame::CopyOfRecord(handle);
    if (!device) {
        return HXMGT_INVALID_HANDLE;
    }
    if (!properties::TakesExtendedRequests(*device)) {
        return HXMGT_NOT_SUPPORTED;
    }
    if (device->dwDriverVersion < kRegionRequestsVersion) {
        commands = {transport::command::OptionRomReadOld, transport::command::OptionRomWriteOld};
        return HXMGT_SUCCESS;
    }
    commands = {transport::command::FlashRead, transport::command::FlashWrite};
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return HasPortRegions(properties::ChipOf(chip.deviceId)) ? HXMGT_INVALID_REQUEST
                                                             : HXMGT_SUCCESS;
}

HX_STATUS ReadWhole(uint32_t handle, transport::Command command, uint8_t* out, uint32_t& returned) {
    return transport::SendExtended(handle, command.code, command.subCode, nullptr, 0, out,
                                   kWholeBytes, &returned);
}

HX_STATUS CheckOffset(uint32_t handle, uint32_t flashOffset) {
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const bool mustAlign =
        properties::ChipOf(chip.deviceId).Has(properties::ChipTrait::OffsetAligned);
    return mustAlign && flashOffset % kAlignment != 0 ? HXMGT_INVALID_PARAMETER : HXMGT_SUCCESS;
}

// Calls move(request, position) for each piece of up to 64 KiB; a length of 0 is one piece.
template <class Move>
HX_STATUS ForEachPiece(uint32_t handle, uint32_t length, uint32_t flashOffset, Move move) {
    uint32_t done = 0;
    for (;;) {
        const uint32_t bytes = std::min(length - done, kChunkBytes);
        HX_STATUS status = TellProgress(handle, kByOffset, done, length);
        if (status == HXMGT_SUCCESS) {
            status = move(OffsetRequest{bytes, flashOffset + done}, done);
        }
        if (status != HXMGT_SUCCESS) {
            return status;
        }
        done += bytes;
        if (done == length) {
            TellProgress(handle, kByOffset, done, length);
            return status;
        }
    }
}

}  // namespace

HX_STATUS GetOptionRom(uint32_t handle, void* buffer, uint32_t bufferSize) {
    if (const HX_STATUS status = CheckBuffer(handle, buffer, bufferSize); status != HXMGT_SUCCESS) {
        return status;
    }
    WholeCommands commands{};
    if (const HX_STATUS status = ChooseWholeCommands(handle, commands); status != HXMGT_SUCCESS) {
        return status;
    }
    const frame::Bytes image = frame::ZeroedBytes(kWholeBytes);
    if (image == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    uint32_t returned = 0;
    const HX_STATUS status = ReadWhole(handle, commands.read, image.get(), returned);
    if (returned > bufferSize) {
        return HXMGT_CALLER_BUFFER_TOO_SMALL;
    }
    if (status == HXMGT_SUCCESS && returned != 0) {
        std::memcpy(buffer, image.get(), returned);
    }
    return status;
}

HX_STATUS UpdateOptionRom(uint32_t handle, void* image, uint32_t imageSize) {
    if (const HX_STATUS status = CheckBuffer(handle, image, imageSize); status != HXMGT_SUCCESS) {
        return status;
    }
    WholeCommands commands{};
    if (const HX_STATUS status = ChooseWholeCommands(handle, commands); status != HXMGT_SUCCESS) {
        return status;
    }
    const frame::Bytes current = frame::ZeroedBytes(kWholeBytes);
    if (current == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    uint32_t returned = 0;
    // A flash that cannot be read has nothing to carry over.
    if (ReadWhole(handle, commands.read, current.get(), returned) == HXMGT_SUCCESS &&
        !CarryOverIdentity({static_cast<uint8_t*>(image), imageSize}, {current.get(), returned})) {
        return HXMGT_OPTION_ROM_CHECKSUM_ERROR;
    }
    HX_STATUS status = TellProgress(handle, kWholeFlashRegion, 0, imageSize);
    if (status == HXMGT_SUCCESS) {
        status = transport::SendExtended(handle, commands.write.code, commands.write.subCode, image,
                                         imageSize, nullptr, 0, &returned);
    }
    if (status == HXMGT_SUCCESS) {
        TellProgress(handle, kWholeFlashRegion, imageSize, imageSize);
    }
    return status;
}

HX_STATUS GetAtOffset(uint32_t handle, void* buffer, uint32_t length, uint32_t flashOffset) {
    if (const HX_STATUS status = CheckBuffer(handle, buffer, length); status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = CheckOffset(handle, flashOffset); status != HXMGT_SUCCESS) {
        return status;
    }
    uint32_t returned = 0;
    return ForEachPiece(
        handle, length, flashOffset, [&](const OffsetRequest& request, uint32_t done) {
            return transport::SendExtended(
                handle, transport::command::FlashRead.code, kByOffset, &request, sizeof request,
                static_cast<uint8_t*>(buffer) + done, request.length, &returned);
        });
}

HX_STATUS UpdateAtOffset(uint32_t handle, const void* data, uint32_t length, uint32_t flashOffset) {
    if (const HX_STATUS status = CheckBuffer(handle, data, length); status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = CheckOffset(handle, flashOffset); status != HXMGT_SUCCESS) {
        return status;
    }
    uint32_t returned = 0;
    const auto send = [&](const uint8_t* bytes, OffsetRequest request) {
        return transport::SendExtended(handle, transport::command::FlashWrite.code, kByOffset,
                                       bytes, request.length, &request, sizeof request, &returned);
    };
    bool all = false;
    const HX_STATUS status =
        ForEachPiece(handle, length, flashOffset, [&](const OffsetRequest& request, uint32_t done) {
            all = done + request.length == length;
            return send(static_cast<const uint8_t*>(data) + done, request);
        });
    if (all) {
        send(nullptr, {0, 0});  // the end marker; its status does not count: intended
    }
    return status;
}

}  // namespace flash
