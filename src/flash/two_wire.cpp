// The adapter's two-wire devices, the transceiver among them.
#include <algorithm>
#include <cstring>

#include "flash/flash.h"
#include "flash/flash_records.h"
#include "frame/handle_table.h"
#include "transport/requests.h"

namespace flash {
namespace {

// The device's status word comes back whatever becomes of the request.
HX_STATUS Transfer(uint32_t handle, transport::Command command, const TwoWireRecord& request,
                   TwoWireRecord& reply, uint16_t* deviceStatus) {
    const HX_STATUS status = transport::Exchange(handle, command, request, reply);
    if (deviceStatus != nullptr) {
        *deviceStatus = reply.deviceStatus;
    }
    return status;
}

TwoWireRecord RequestFor(uint16_t device, uint16_t length, uint16_t offset, uint16_t options) {
    TwoWireRecord request{};
    request.device = device;
    request.length = length;
    request.offset = offset;
    request.options = options;
    return request;
}

}  // namespace

HX_STATUS ReadTwoWire(uint32_t handle, uint16_t device, void* buffer, uint16_t length,
                      uint16_t offset, uint16_t options, uint16_t* deviceStatus) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (length > kTwoWireData || (buffer == nullptr && length != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    TwoWireRecord reply{};
    const HX_STATUS status =
        Transfer(handle, transport::command::I2cRead, RequestFor(device, length, offset, options),
                 reply, deviceStatus);
    if (status == HXMGT_SUCCESS && length != 0) {
        std::memcpy(buffer, reply.data, length);
    }
    return status;
}

HX_STATUS WriteTwoWire(uint32_t handle, uint16_t device, const void* data, uint16_t length,
                       uint16_t offset, uint16_t options, uint16_t* deviceStatus) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    TwoWireRecord request = RequestFor(device, length, offset, options);
    if ((options & kTwoWireNoData) == 0) {
        if (length > kTwoWireData || (data == nullptr && length != 0)) {
            return HXMGT_INVALID_PARAMETER;
        }
        if (length != 0) {
            std::memcpy(request.data, data, length);
        }
    }
    TwoWireRecord reply{};
    return Transfer(handle, transport::command::I2cWrite, request, reply, deviceStatus);
}

HX_STATUS ReadTransceiver(uint32_t handle, void* buffer, uint32_t* size) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (buffer == nullptr || size == nullptr || *size == 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    TransceiverMemory memory{};
    const uint32_t room = std::min<uint32_t>(*size, sizeof memory);
    const transport::Command command = transport::command::SfpRead;
    uint32_t returned = 0;
    const HX_STATUS status = transport::SendExtended(handle, command.code, command.subCode, &memory,
                                                     room, &memory, room, &returned);
    if (status == HXMGT_SUCCESS) {
        *size = returned;
        std::memcpy(buffer, &memory, returned);
    }
    return status;
}

}  // namespace flash
