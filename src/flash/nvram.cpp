#include <windows.h>

#include <cstring>

#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/nvram_variables.h"
#include "flash/port_region.h"
#include "flash/region_transfer.h"
#include "frame/owned.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace flash {
namespace {

static_assert(HX_NVRAM_CLASSIC_BYTES == kClassicBlock);
static_assert(HX_NVRAM_EXTENDED_BYTES == kExtendedBlock);
static_assert(HX_NVRAM_VARIABLES == kVariables);
static_assert(sizeof(HX_VARIABLE_FIELD) == 4);

constexpr uint32_t kRestartWaitMs = 500;

// Sub-codes of NvramRead and NvramWrite.
constexpr uint16_t kReadBlock = 0;
constexpr uint16_t kReadVerified = 1;
constexpr uint16_t kWriteBlock = 0;
constexpr uint16_t kWriteSettings = 1;
constexpr uint16_t kWriteRestart = 2;

HX_STATUS CheckBlock(uint32_t handle, const void* buffer, uint32_t size) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    return buffer == nullptr && size != 0 ? HXMGT_INVALID_PARAMETER : HXMGT_SUCCESS;
}

HX_STATUS GetLegacy(uint32_t handle, uint32_t mode, uint8_t* block, uint32_t size) {
    const bool parts = mode == HX_NVRAM_VERIFIED;
    if ((mode != HX_NVRAM_BLOCK && !parts) || (parts && size < kLegacyPartsEnd)) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (const HX_STATUS status = transport::SendPlain(handle, transport::command::LegacyNvramRead,
                                                      block, size, block, size);
        status != HXMGT_SUCCESS || !parts) {
        return status;
    }
    LegacySettingsReply settings{};
    if (const HX_STATUS status =
            transport::AskLegacy(handle, LegacyNvramSelector::Settings, settings);
        status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(block + kLegacySettingsOffset, settings.bytes, sizeof settings.bytes);
    LegacyTailReply tail{};
    const HX_STATUS status = transport::AskLegacy(handle, LegacyNvramSelector::Tail, tail);
    if (status == HXMGT_SUCCESS) {
        std::memcpy(block + kLegacyTailOffset, tail.bytes, sizeof tail.bytes);
    }
    return status;
}

HX_STATUS UpdateLegacy(uint32_t handle, uint32_t mode, const uint8_t* block, uint32_t size) {
    const bool whole = mode == HX_NVRAM_BLOCK || mode == HX_NVRAM_RESTART;
    const bool parts = mode == HX_NVRAM_VERIFIED || mode == HX_NVRAM_RESTART;
    if ((!whole && !parts) || (parts && size < kLegacyPartsEnd)) {
        return HXMGT_INVALID_PARAMETER;
    }
    HX_STATUS status = HXMGT_SUCCESS;
    if (whole) {
        // The reply has the block's length and is not wanted.
        const frame::Bytes reply = frame::UnclearedBytes(size_t{size} + 1);
        if (reply == nullptr) {
            return HXMGT_OUT_OF_MEMORY;
        }
        status = transport::SendPlain(handle, transport::command::LegacyNvramWrite, block, size,
                                      reply.get(), size);
    }
    if (status == HXMGT_SUCCESS && parts) {
        status =
            transport::SendPlain(handle, transport::command::LegacyNvramWrite64,
                                 block + kLegacySettingsOffset, kLegacySettingsBytes, nullptr, 0);
    }
    if (status == HXMGT_SUCCESS && parts) {
        status = transport::SendPlain(handle, transport::command::LegacyNvramWrite16,
                                      block + kLegacyTailOffset, kLegacyTailBytes, nullptr, 0);
    }
    return status;
}

HX_STATUS AskDriver(uint32_t handle, uint16_t subCode, void* buffer, uint32_t size) {
    return transport::SendExtended(handle, transport::command::NvramRead.code, subCode, nullptr, 0,
                                   buffer, size, nullptr);
}

HX_STATUS TellDriver(uint32_t handle, uint16_t subCode, const void* buffer, uint32_t size) {
    return transport::SendExtended(handle, transport::command::NvramWrite.code, subCode, buffer,
                                   size, nullptr, 0, nullptr);
}

// Writes the port's region, and has the driver take it over where the mode says so.
HX_STATUS UpdatePortRegion(uint32_t handle, const PortIdentity& port, uint32_t mode, uint8_t* block,
                           uint32_t size) {
    if (mode < HX_NVRAM_BLOCK || mode > HX_NVRAM_RESTART || size < kExtendedBlock) {
        return HXMGT_INVALID_PARAMETER;
    }
    formats::MakeChecksum(BlockKind::Extended, {block, kExtendedBlock});
    uint32_t region = 0;
    HX_STATUS status = ChoosePortRegion(handle, kNvramRegions, port, Direction::Write, region);
    if (status == HXMGT_SUCCESS) {
        status = UpdateRegionOfLayout(handle, block, size, region);
    }
    const bool written = status == HXMGT_SUCCESS || status == HXMGT_FLASH_UPDATE_NOT_ACTIVATED;
    if (!written || mode != HX_NVRAM_RESTART) {
        return status;
    }
    if (port.chip.Has(properties::ChipTrait::NvramRestartWait)) {
        Sleep(kRestartWaitMs);
    }
    return TellDriver(handle, kWriteRestart, block, size);
}

// The chip's kind of block; nothing for a handle or chip that cannot be asked.
HX_STATUS KindOfBlock(uint32_t handle, BlockKind& kind) {
    PortIdentity port{};
    const HX_STATUS status = IdentifyPort(handle, port);
    kind = HasPortRegions(port.chip) ? BlockKind::Extended : BlockKind::Classic;
    return status;
}

}  // namespace

HX_STATUS GetNvram(uint32_t handle, uint32_t mode, void* buffer, uint32_t size) {
    if (const HX_STATUS status = CheckBlock(handle, buffer, size); status != HXMGT_SUCCESS) {
        return status;
    }
    auto* const block = static_cast<uint8_t*>(buffer);
    if (!properties::TakesExtendedRequests(handle)) {
        return GetLegacy(handle, mode, block, size);
    }
    PortIdentity port{};
    if (const HX_STATUS status = IdentifyPort(handle, port); status != HXMGT_SUCCESS) {
        return status;
    }
    if (mode == HX_NVRAM_VERIFIED) {
        return AskDriver(handle, kReadVerified, buffer, size);
    }
    if (mode != HX_NVRAM_BLOCK) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (!HasPortRegions(port.chip)) {
        return AskDriver(handle, kReadBlock, buffer, size);
    }
    FoundRegion region{};
    if (const HX_STATUS status =
            FindPortRegion(handle, kNvramRegions, port, Direction::Read, region);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return size < region.size ? HX_STATUS{HXMGT_BUFFER_TOO_SMALL}
                              : ReadRegion(handle, region.code, region.size, {block, size});
}

HX_STATUS UpdateNvram(uint32_t handle, uint32_t mode, void* buffer, uint32_t size) {
    if (const HX_STATUS status = CheckBlock(handle, buffer, size); status != HXMGT_SUCCESS) {
        return status;
    }
    auto* const block = static_cast<uint8_t*>(buffer);
    if (!properties::TakesExtendedRequests(handle)) {
        return UpdateLegacy(handle, mode, block, size);
    }
    PortIdentity port{};
    if (const HX_STATUS status = IdentifyPort(handle, port); status != HXMGT_SUCCESS) {
        return status;
    }
    if (HasPortRegions(port.chip)) {
        return UpdatePortRegion(handle, port, mode, block, size);
    }
    switch (mode) {
        case HX_NVRAM_BLOCK:
            return TellDriver(handle, kWriteBlock, buffer, size);
        case HX_NVRAM_VERIFIED:
            return TellDriver(handle, kWriteSettings, buffer, size);
        default:
            return TellDriver(handle, kWriteRestart, buffer, size);
    }
}

HX_STATUS VerifyNvram(uint32_t handle) {
    uint8_t block[kClassicBlock];
    return GetNvram(handle, HX_NVRAM_VERIFIED, block, sizeof block) == HXMGT_SUCCESS
               ? HXMGT_SUCCESS
               : HXMGT_NVRAM_CHECKSUM_INVALID;
}

uint32_t GetVariable(uint32_t handle, const void* block, uint32_t variable) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    BlockKind kind{};
    if (block == nullptr || KindOfBlock(handle, kind) != HXMGT_SUCCESS) {
        return 0;
    }
    return GetVariable({static_cast<const uint8_t*>(block), BlockBytes(kind)}, kind, variable);
}

uint32_t SetVariable(uint32_t handle, void* block, uint32_t variable, uint32_t value) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    BlockKind kind{};
    if (block == nullptr || KindOfBlock(handle, kind) != HXMGT_SUCCESS) {
        return 0;
    }
    return SetVariable({static_cast<uint8_t*>(block), BlockBytes(kind)}, kind, variable, value) ? 1
                                                                                                : 0;
}

HX_STATUS GetVariableFields(uint32_t handle, HX_VARIABLE_FIELD* fields, uint32_t* count) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (count == nullptr || (fields == nullptr && *count != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    const uint32_t room = *count;
    *count = 0;
    BlockKind kind{};
    if (const HX_STATUS status = KindOfBlock(handle, kind); status != HXMGT_SUCCESS) {
        return status;
    }
    for (uint32_t variable = 0; variable < kVariables && variable < room; ++variable) {
        const BitPlace place = PlaceOf(kind, variable);
        fields[variable] = {place.first, place.width};
    }
    *count = kVariables;
    return room < kVariables ? HX_STATUS{HXMGT_BUFFER_TOO_SMALL} : HX_STATUS{HXMGT_SUCCESS};
}

const char* DescribeVariable(uint32_t variable) {
    return variable < kVariables ? kVariableTable[variable].description : nullptr;
}

bool IsReadOnlyVariable(const void* block, uint32_t variable) {
    return block != nullptr &&
           IsReadOnly({static_cast<const uint8_t*>(block), kClassicBlock}, variable);
}

}  // namespace flash
