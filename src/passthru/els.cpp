#include <algorithm>
#include <cstring>

#include "frame/owned.h"
#include "passthru/fabric_records.h"
#include "passthru/fabric_support.h"
#include "passthru/passthru.h"
#include "properties/generation.h"
#include "transport/requests.h"

namespace passthru {
namespace {

constexpr int32_t kLongestPayload = 252;
constexpr uint32_t kLsAcc = 2;  // as a little-endian word in front of an RNID response

bool PutDestination(const HX_SCSI_ADDRESS& destination, ElsRequest& request) {
    switch (destination.type) {
        case HX_ADDRESS_PORT_NAME:
            std::memcpy(request.portName, destination.address, sizeof request.portName);
            request.addressFlags = kElsByPortName;
            return true;
        case HX_ADDRESS_PORT_ID:
            std::memcpy(request.portId, destination.address, sizeof request.portId);
            request.addressFlags = kElsByPortId;
            return true;
        default:
            return false;
    }
}

HX_STATUS CheckFabricCall(const std::optional<HXMGT_API_HANDLE>& device) {
    if (!device) {
        return HXMGT_INVALID_HANDLE;
    }
    return properties::TakesExtendedRequests(*device) ? HXMGT_SUCCESS : HXMGT_NOT_SUPPORTED;
}

// The name and identifier that the caller may have put into the response buffer.
void PutRnidOptions(const uint8_t* response, uint32_t responseSize, RnidRequest& request) {
    RnidOptions options{};
    if (responseSize < sizeof options) {
        return;
    }
    std::memcpy(&options, response, sizeof options);
    std::memcpy(request.optionalName, options.name, sizeof request.optionalName);
    std::reverse_copy(std::begin(options.portIdReversed), std::end(options.portIdReversed),
                      request.optionalPortId);
}

// One request in the buffer that also takes its answer.
struct ElsExchange {
    frame::Bytes buffer;
    uint32_t capacity = 0;  // of the answer
    uint32_t returned = 0;  // bytes of the reply, its header included

    uint8_t* Data() const { return buffer.get() + sizeof(ElsRequest); }
    uint32_t AnswerLength() const {
        constexpr uint32_t kHead = sizeof(ElsRequest);
        return returned > kHead ? std::min(capacity, returned - kHead) : 0;
    }
    HX_STATUS Run(uint32_t handle, const HX_SCSI_ADDRESS* destination, const void* payload,
                  int32_t payloadSize, const void* response, const uint32_t* responseSize,
                  uint8_t option);
};

HX_STATUS ElsExchange::Run(uint32_t handle, const HX_SCSI_ADDRESS* destination, const void* payload,
                           int32_t payloadSize, const void* response, const uint32_t* responseSize,
                           uint8_t option) {
    if (const HX_STATUS status = CheckFabricCall(frame::CopyOfRecord(handle));
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (payloadSize < 1 || payloadSize > kLongestPayload || destination == nullptr ||
        payload == nullptr || responseSize == nullptr ||
        (response == nullptr && *responseSize != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    capacity = *responseSize;
    const uint32_t sent = static_cast<uint32_t>(payloadSize);
    if (capacity > UINT32_MAX - sizeof(ElsRequest)) {
        return HXMGT_OUT_OF_MEMORY;
    }
    buffer = frame::ZeroedBytes(sizeof(ElsRequest) + std::max(sent, capacity));
    if (buffer == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    ElsRequest& request = *reinterpret_cast<ElsRequest*>(buffer.get());
    if (!PutDestination(*destination, request)) {
        return HXMGT_INVALID_PARAMETER;
    }
    request.option = option;
    std::memcpy(Data(), payload, sent);

    const transport::Command command = transport::command::ElsPassThrough;
    const HX_STATUS status =
        transport::SendExtended(handle, command.code, command.subCode, buffer.get(),
                                static_cast<uint32_t>(sizeof request) + sent, buffer.get(),
                                static_cast<uint32_t>(sizeof request) + capacity, &returned);
    return status == HXMGT_SUCCESS && request.rejected == 1 ? HXMGT_ELS_REJECTED : status;
}

}  // namespace

HX_STATUS SendEls(uint32_t handle, const HX_SCSI_ADDRESS* destination, const void* payload,
                  int32_t payloadSize, void* response, const uint32_t* responseSize,
                  uint8_t option) {
    ElsExchange els;
    const HX_STATUS status =
        els.Run(handle, destination, payload, payloadSize, response, responseSize, option);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    // The caller learns the length from the payload; *responseSize stays: intended.
    if (const uint32_t copied = std::min(els.capacity, els.returned); copied != 0) {
        std::memcpy(response, els.Data(), copied);
    }
    return HXMGT_SUCCESS;
}

HX_STATUS SendElsEx(uint32_t handle, const HX_SCSI_ADDRESS* destination, const void* payload,
                    int32_t payloadSize, void* response, uint32_t* responseSize, uint8_t option) {
    ElsExchange els;
    const HX_STATUS status =
        els.Run(handle, destination, payload, payloadSize, response, responseSize, option);
    if (status != HXMGT_SUCCESS && status != HXMGT_ELS_REJECTED) {
        return status;
    }
    *responseSize = els.AnswerLength();
    if (*responseSize != 0) {
        std::memcpy(response, els.Data(), *responseSize);
    }
    return status;
}

HX_STATUS SendRnid(uint32_t handle, const HX_SCSI_ADDRESS* destination, uint8_t format,
                   uint8_t* response, uint32_t responseSize) {
    const std::optional<HXMGT_API_HANDLE> device = frame::CopyOfRecord(handle);
    if (const HX_STATUS status = CheckFabricCall(device); status != HXMGT_SUCCESS) {
        return status;
    }
    if (IsOldestChip(*device)) {
        return HXMGT_NOT_SUPPORTED;
    }
    if (destination == nullptr || response == nullptr || responseSize < sizeof kLsAcc) {
        return HXMGT_INVALID_PARAMETER;
    }
    RnidRequest request{};
    if (destination->type == HX_ADDRESS_NODE_NAME || destination->type == HX_ADDRESS_PORT_NAME) {
        request.destinationType = destination->type;
        std::memcpy(request.name, destination->address, sizeof request.name);
    } else if (destination->type == 0) {
        request.destinationType = kRnidToAttachedPort;
    }
    request.format = format;
    PutRnidOptions(response, responseSize, request);

    const transport::Command command = transport::command::ElsRnid;
    uint32_t returned = 0;
    const HX_STATUS status =
        transport::SendExtended(handle, command.code, command.subCode, &request, sizeof request,
                                response, responseSize, &returned);
    // Whatever the status: the reply moves behind its command code and loses its last four bytes.
    std::memmove(response + sizeof kLsAcc, response, responseSize - sizeof kLsAcc);
    std::memcpy(response, &kLsAcc, sizeof kLsAcc);
    return status;
}

HX_STATUS ManageScm(uint32_t handle, uint8_t* settings) {
    if (const HX_STATUS status = CheckFabricCall(frame::CopyOfRecord(handle));
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (settings == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    const transport::Command command = transport::command::ScmManagement;
    ScmRequest request{};
    request.flags = settings[0];
    if ((request.flags & kScmRead) == 0) {
        request.values[0] = settings[1];
        return transport::Tell(handle, command, request);
    }
    ScmRequest reply{};
    uint32_t returned = 0;
    const HX_STATUS status =
        transport::SendExtended(handle, command.code, command.subCode, &request, sizeof request,
                                &reply, sizeof reply, &returned);
    if (status == HXMGT_SUCCESS) {
        std::memcpy(settings + 1, reply.values, std::min(returned, kScmValues));
    }
    return status;
}

}  // namespace passthru
