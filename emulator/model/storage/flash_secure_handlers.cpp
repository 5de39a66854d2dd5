// Secure updates: begin, header, pieces, verify, status, commit; abort at any time.
#include <algorithm>
#include <cstring>

#include "flash/flash_records.h"
#include "formats/crc32.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/storage/flash_signature.h"
#include "model/storage/flash_staging.h"
#include "model/storage/nvram_content.h"
#include "model/storage/vpd_content.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;

// Results beside those that the library knows: the image is not what was announced.
constexpr auto kNotAsAnnounced = flash::SecureResult{2};
constexpr auto kIncomplete = flash::SecureResult{3};

bool HasSecureFlash(const Port& port) {
    return ChipOf(port).Has(properties::ChipTrait::SecureFlash);
}

uint32_t HeadHash(std::span<const uint8_t> image) {
    CodeHash hash(0, 0);
    hash.Add(image.data(), std::min<size_t>(image.size(), flash::kSecureImageHead));
    return hash.Value();
}

// Code has to be signed; settings have to be sound.
bool IsAcceptable(const FlashRegion& region, uint16_t deviceId, std::span<const uint8_t> image) {
    switch (region.content) {
        case RegionContent::Nvram:
            return NvramHolds(image);
        case RegionContent::Vpd:
            return VpdHolds(image);
        case RegionContent::Blank:
            return true;
        default:
            return SignatureHolds(image, deviceId, region.code);
    }
}

flash::SecureResult Verify(const Port& port) {
    const Staging& staging = port.flash->staging;
    const std::span<const uint8_t> image(staging.bytes, staging.size);
    if (staging.received != staging.size) {
        return kIncomplete;
    }
    if (formats::Crc32(image) != staging.crc || HeadHash(image) != staging.headHash) {
        return kNotAsAnnounced;
    }
    const PlacedRegion placed = port.flash->memory.Regions().WithCode(staging.region);
    return IsAcceptable(*placed.region, port.adapter->deviceId, image)
               ? flash::SecureResult::Accepted
               : flash::SecureResult::SignatureRefused;
}

DriverStatus SecureFlashState(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    if (!HasSecureFlash(port)) {
        return DriverStatus::InvalidRequest;
    }
    flash::SecureStateRecord reply = {};
    reply.flags = port.adapter->secureUpdates != 0 ? flash::kSecureInForce : 0;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

// A session that somebody left behind ends here.
DriverStatus SecureFlashBegin(Exchange& exchange) {
    Port& port = exchange.GetPort();
    if (!HasSecureFlash(port)) {
        return DriverStatus::InvalidRequest;
    }
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    StartStaging(port.fabric->host, port.flash->staging, StagingUse::SecureUpdate, 0);
    port.flash->staging.stage = SecureStage::Begun;
    return DriverStatus::Success;
}

DriverStatus SecureFlashHeader(Exchange& exchange) {
    Port& port = exchange.GetPort();
    Staging& staging = port.flash->staging;
    flash::SecureHeaderRecord header;
    if (!exchange.Read(header)) {
        return DriverStatus::InvalidParameter;
    }
    if (staging.use != StagingUse::SecureUpdate || staging.stage == SecureStage::None) {
        return DriverStatus::InvalidRequest;
    }
    const PlacedRegion placed = port.flash->memory.Regions().WithCode(header.region);
    if (!placed || placed.region->size != header.imageSize) {
        return DriverStatus::InvalidParameter;
    }
    if (placed.region->readOnly) {
        exchange.SetDetail(kWriteRefused);
        return DriverStatus::MailboxFailed;
    }
    if (!StartStaging(port.fabric->host, staging, StagingUse::SecureUpdate, header.imageSize)) {
        return DriverStatus::OutOfMemory;
    }
    staging.stage = SecureStage::Announced;
    staging.region = header.region;
    staging.crc = header.crc;
    staging.headHash =
        HeadHash({header.imageHead, std::min(header.imageSize, flash::kSecureImageHead)});
    return DriverStatus::Success;
}

DriverStatus SecureFlashVerify(Exchange& exchange) {
    Staging& staging = exchange.GetPort().flash->staging;
    if (staging.use != StagingUse::SecureUpdate || staging.stage != SecureStage::Announced) {
        return DriverStatus::InvalidRequest;
    }
    const flash::SecureResult result = exchange.Meets(FaultKind::BadSignature)
                                           ? flash::SecureResult::SignatureRefused
                                           : Verify(exchange.GetPort());
    staging.result = static_cast<uint32_t>(result);
    staging.stage = SecureStage::Verified;
    return DriverStatus::Success;
}

DriverStatus SecureFlashStatus(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    const Staging& staging = port.flash->staging;
    if (!HasSecureFlash(port)) {
        return DriverStatus::InvalidRequest;
    }
    flash::SecureStatusRecord reply = {};
    if (staging.use == StagingUse::SecureUpdate) {
        reply.stage = static_cast<uint32_t>(staging.stage);
        reply.result = staging.stage < SecureStage::Verified ? static_cast<uint32_t>(kIncomplete)
                                                             : staging.result;
    }
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus SecureFlashCommit(Exchange& exchange) {
    Port& port = exchange.GetPort();
    Staging& staging = port.flash->staging;
    if (staging.use != StagingUse::SecureUpdate || staging.stage != SecureStage::Verified ||
        staging.result != static_cast<uint32_t>(flash::SecureResult::Accepted)) {
        return DriverStatus::InvalidRequest;
    }
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    // The adapter switches to an image that it holds whole: no power cut falls into that.
    const PlacedRegion placed = port.flash->memory.Regions().WithCode(staging.region);
    const Host& host = port.fabric->host;
    if (!StoreBytes(port, placed.start, staging.bytes, staging.size)) {
        return DriverStatus::OutOfMemory;
    }
    NoteSettingsWritten(port, placed.start, staging.size);
    StartStaging(host, staging, StagingUse::SecureUpdate, 0);
    staging.stage = SecureStage::Committed;
    return DriverStatus::Success;
}

DriverStatus SecureFlashAbort(Exchange& exchange) {
    Port& port = exchange.GetPort();
    if (!HasSecureFlash(port)) {
        return DriverStatus::InvalidRequest;
    }
    DropStaging(port.fabric->host, port.flash->staging);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::SecureFlashState, .handle = SecureFlashState},
    {.command = command::SecureFlashBegin, .handle = SecureFlashBegin},
    {.command = command::SecureFlashHeader, .handle = SecureFlashHeader},
    {.command = command::SecureFlashVerify, .handle = SecureFlashVerify},
    {.command = command::SecureFlashStatus, .handle = SecureFlashStatus},
    {.command = command::SecureFlashCommit, .handle = SecureFlashCommit},
    {.command = command::SecureFlashAbort, .handle = SecureFlashAbort},
};

}  // namespace

DriverStatus StagePiece(Exchange& exchange, uint32_t offset, uint32_t length, uint32_t inside) {
    Flash& flash = *exchange.GetPort().flash;
    Staging& staging = flash.staging;
    if (offset != staging.received ||
        std::min(exchange.InputLength(), exchange.Ext().requestLen) < length) {
        return DriverStatus::InvalidParameter;
    }
    std::memcpy(staging.bytes + offset, exchange.Bytes(), inside);
    staging.received += SpendPower(flash, inside);
    exchange.KeepReply(0);
    return DriverStatus::Success;
}

RequestRows SecureFlashRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
