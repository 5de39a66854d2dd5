#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <optional>

#include "frame/owned.h"
#include "persist/lun_mask_target.h"
#include "persist/target_requests.h"
#include "properties/generation.h"
#include "properties/legacy_targets.h"
#include "transport/requests.h"

namespace persist {
namespace {

// The target's entry in an older driver's list.
HX_STATUS FindListed(uint32_t handle, const MaskTarget& target,
                     std::optional<HX_TARGET_ENTRY>& found) {
    properties::LegacyTargets targets;
    if (const HX_STATUS status = targets.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    for (const properties::LegacyTargetEntry& listed : targets.Entries()) {
        const auto entry = std::bit_cast<HX_TARGET_ENTRY>(listed);
        if (Names(target, entry)) {
            found = entry;
            break;
        }
    }
    return HXMGT_SUCCESS;
}

HX_STATUS ReadListedMask(uint32_t handle, const MaskTarget& target, uint8_t* mask,
                         uint32_t maskSize) {
    std::optional<HX_TARGET_ENTRY> entry;
    if (const HX_STATUS status = FindListed(handle, target, entry); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!entry.has_value() && !target.unknownHasNoName) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    const HX_TARGET_ENTRY wanted = entry.value_or(HX_TARGET_ENTRY{});
    const std::unique_ptr<LunDataV1> list(new (std::nothrow) LunDataV1{});
    if (list == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    if (const HX_STATUS status = transport::AskLegacy(handle, LunSelector::LunList, *list);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const std::span bytes(reinterpret_cast<const uint8_t*>(list.get()), sizeof *list);
    for (const LunRecordV1& record : RecordsIn<LunRecordV1>(bytes)) {
        if (!IsFree(record) && SameName(record.portName, wanted.portName)) {
            std::copy_n(record.visible, std::min<size_t>(maskSize, sizeof record.visible), mask);
            return HXMGT_SUCCESS;
        }
    }
    return HXMGT_DEVICE_NOT_FOUND;
}

HX_STATUS WriteListedMask(uint32_t handle, const MaskTarget& target, const uint8_t* mask,
                          uint32_t maskSize) {
    std::optional<HX_TARGET_ENTRY> entry;
    if (const HX_STATUS status = FindListed(handle, target, entry); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!entry.has_value()) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    return SendTargetAndMask(handle, target.legacyWrite, *entry, {mask, maskSize});
}

}  // namespace

HX_STATUS ReadLiveMask(uint32_t handle, const MaskTarget& target, uint8_t* mask,
                       uint32_t maskSize) {
    if (!properties::TakesExtendedRequests(handle)) {
        return ReadListedMask(handle, target, mask, maskSize);
    }
    if (target.kind == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    uint32_t returned = 0;
    return transport::SendExtended(handle, target.read.code, target.read.subCode,
                                   target.block.data(), sizeof target.block, mask, maskSize,
                                   &returned);
}

HX_STATUS WriteLiveMask(uint32_t handle, const MaskTarget& target, const uint8_t* mask,
                        uint32_t maskSize) {
    if (!properties::TakesExtendedRequests(handle)) {
        return WriteListedMask(handle, target, mask, maskSize);
    }
    if (target.kind == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    if (maskSize > UINT32_MAX - sizeof target.block) {
        return HXMGT_OUT_OF_MEMORY;
    }
    // At most 256 bytes of mask travel, in a request as long as the caller's mask.
    const uint32_t size = static_cast<uint32_t>(sizeof target.block) + maskSize;
    const frame::Bytes request = frame::ZeroedBytes(size);
    if (request == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    std::memcpy(request.get(), target.block.data(), sizeof target.block);
    std::memcpy(request.get() + sizeof target.block, mask,
                std::min<size_t>(maskSize, HX_LUN_MASK_SIZE));
    uint32_t returned = 0;
    return transport::SendExtended(handle, target.write.code, target.write.subCode, request.get(),
                                   size, nullptr, 0, &returned);
}

}  // namespace persist
