#include <cstring>

#include "formats/common_transport.h"
#include "frame/owned.h"
#include "frame/trace.h"
#include "passthru/fabric_records.h"
#include "passthru/fabric_support.h"
#include "passthru/passthru.h"
#include "properties/generation.h"
#include "transport/requests.h"

namespace passthru {
namespace {

HX_STATUS SendLegacy(const HXMGT_API_HANDLE& device, const void* request, uint32_t requestSize,
                     void* response, uint32_t responseSize) {
    const uint64_t total = uint64_t{sizeof(LegacyCtRequest)} + requestSize + responseSize;
    if (total > UINT32_MAX) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const uint32_t size = static_cast<uint32_t>(total);
    const frame::Bytes buffer = frame::UnclearedBytes(size);
    if (buffer == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    LegacyCtRequest& head = *reinterpret_cast<LegacyCtRequest*>(buffer.get());
    head = {};
    head.srb.headerLength = transport::kHeaderLength;
    std::memcpy(head.srb.signature, transport::kSignature, sizeof head.srb.signature);
    head.srb.timeout = kLegacyCtTimeoutSeconds;
    head.srb.controlCode = transport::command::LegacyCtPassThrough;
    head.srb.length = size - transport::kHeaderLength;
    head.requestSize = requestSize;
    head.responseSize = responseSize;
    uint8_t* const requestArea = buffer.get() + sizeof head;
    uint8_t* const responseArea = requestArea + requestSize;
    std::memcpy(requestArea, request, requestSize);
    std::memset(responseArea, 0, responseSize);  // all of it goes to the caller

    unsigned long returned = 0;
    if (const HX_STATUS error = transport::SendToDevice(
            device.hDevice, {buffer.get(), size, buffer.get(), size}, &returned);
        error != HXMGT_SUCCESS) {
        return error;
    }
    std::memcpy(response, responseArea, responseSize);
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS SendCt(uint32_t handle, const void* request, uint32_t requestSize, void* response,
                 uint32_t responseSize) {
    const std::optional<HXMGT_API_HANDLE> device = frame::CopyOfRecord(handle);
    if (!device) {
        return HXMGT_INVALID_HANDLE;
    }
    if (IsOldestChip(*device)) {
        return HXMGT_NOT_SUPPORTED;
    }
    if (request == nullptr || response == nullptr || requestSize < formats::kCtPreamble ||
        responseSize < formats::kCtPreamble) {
        return HXMGT_INVALID_PARAMETER;
    }
    VX_TRACE(handle, "CT Request buffer to DeviceIoControl\n");
    frame::TraceBytes(handle, request, requestSize);
    const transport::Command command = transport::command::CtPassThrough;
    uint32_t returned = responseSize;  // what older drivers give counts as whole
    const HX_STATUS status =
        properties::TakesExtendedRequests(*device)
            ? transport::SendExtended(handle, command.code, command.subCode, request, requestSize,
                                      response, responseSize, &returned)
            : SendLegacy(*device, request, requestSize, response, responseSize);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    if (std::memcmp(request, response, formats::kCtPreamble) != 0) {
        return HXMGT_MS_NO_RESPONSE;
    }
    VX_TRACE(handle, "CT Response buffer from DeviceIoControl\n");
    frame::TraceBytes(handle, response, responseSize, returned);
    return HXMGT_SUCCESS;
}

}  // namespace passthru
