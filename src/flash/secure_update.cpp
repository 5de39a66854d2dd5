// Updates whose image the adapter verifies before it takes effect.
#include <algorithm>
#include <cstring>

#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/region_transfer.h"
#include "flash/region_update.h"
#include "formats/crc32.h"
#include "transport/requests.h"

namespace flash {
namespace {

using Image = std::span<const uint8_t>;

HX_STATUS Step(uint32_t handle, transport::Command command) {
    return transport::SendExtended(handle, command.code, command.subCode, nullptr, 0, nullptr, 0,
                                   nullptr);
}

HX_STATUS Announce(uint32_t handle, uint32_t regionCode, Image image) {
    SecureHeaderRecord header{};
    header.region = regionCode;
    header.imageSize = static_cast<uint32_t>(image.size());
    header.crc = formats::Crc32(image);
    std::copy_n(image.begin(), std::min(image.size(), sizeof header.imageHead), header.imageHead);
    return transport::Tell(handle, transport::command::SecureFlashHeader, header);
}

HX_STATUS AskResult(uint32_t handle) {
    const SecureStatusRecord request{};
    SecureStatusRecord reply{};
    if (const HX_STATUS status =
            transport::Exchange(handle, transport::command::SecureFlashStatus, request, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    switch (static_cast<SecureResult>(reply.result)) {
        case SecureResult::Accepted:
            return HXMGT_SUCCESS;
        case SecureResult::SignatureRefused:
            return HXMGT_OPTION_ROM_INVALID_FIRMWARE;
        default:
            return HXMGT_OPTION_ROM_WRITE_ERROR;
    }
}

HX_STATUS RunSession(uint32_t handle, uint32_t regionCode, Image image) {
    HX_STATUS status = Announce(handle, regionCode, image);
    if (status == HXMGT_SUCCESS) {
        status = WriteRegion(handle, regionCode, image);
    }
    if (status == HXMGT_SUCCESS) {
        status = Step(handle, transport::command::SecureFlashVerify);
    }
    if (status == HXMGT_SUCCESS) {
        status = AskResult(handle);
    }
    if (status == HXMGT_SUCCESS) {
        status = Step(handle, transport::command::SecureFlashCommit);
    }
    return status;
}

}  // namespace

HX_STATUS UpdateSecureRegion(uint32_t handle, const void* image, uint32_t imageSize,
                             uint32_t regionCode) {
    HX_CHIP_PROPERTY identity{};
    if (const HX_STATUS status = CheckUpdate(handle, image, imageSize, identity);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = CheckUpdateToken(handle, regionCode); status != HXMGT_SUCCESS) {
        return status;
    }
    RegionTable table;
    if (const HX_STATUS status = LoadExactRegion(handle, regionCode, imageSize, table);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = Step(handle, transport::command::SecureFlashBegin);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const HX_STATUS status =
        RunSession(handle, regionCode, {static_cast<const uint8_t*>(image), imageSize});
    if (status != HXMGT_SUCCESS) {
        Step(handle, transport::command::SecureFlashAbort);  // the first failure is what counts
    }
    return status;
}

}  // namespace flash
