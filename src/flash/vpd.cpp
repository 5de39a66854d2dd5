#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/layout.h"
#include "flash/port_region.h"
#include "flash/region_transfer.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace flash {

HX_STATUS GetVpd(uint32_t handle, void* buffer, uint32_t* size) {
    if (const HX_STATUS status = properties::CheckQuery(handle, size); status != HXMGT_SUCCESS) {
        return status;
    }
    if (buffer == nullptr && *size != 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    PortIdentity port{};
    if (const HX_STATUS status = IdentifyPort(handle, port); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!HasPortRegions(port.chip)) {
        const transport::Command command = transport::command::VpdRead;
        uint32_t returned = 0;
        const HX_STATUS status = transport::SendExtended(handle, command.code, command.subCode,
                                                         nullptr, 0, buffer, *size, &returned);
        *size = returned;
        return status;
    }
    FoundRegion region{};
    if (const HX_STATUS status = FindPortRegion(handle, kVpdRegions, port, Direction::Read, region);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const uint32_t room = *size;
    if (room < region.size) {
        *size = region.size;
        return HXMGT_BUFFER_TOO_SMALL;
    }
    const HX_STATUS status =
        ReadRegion(handle, region.code, region.size, {static_cast<uint8_t*>(buffer), room});
    if (status == HXMGT_SUCCESS) {
        *size = region.size;
    }
    return status;
}

HX_STATUS UpdateVpd(uint32_t handle, const void* buffer, uint32_t size) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (buffer == nullptr && size != 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    PortIdentity port{};
    if (const HX_STATUS status = IdentifyPort(handle, port); status != HXMGT_SUCCESS) {
        return status;
    }
    if (HasPortRegions(port.chip)) {
        uint32_t region = 0;
        HX_STATUS status = ChoosePortRegion(handle, kVpdRegions, port, Direction::Write, region);
        if (status == HXMGT_SUCCESS) {
            status = UpdateRegionOfLayout(handle, buffer, size, region);
        }
        if (status != HXMGT_SUCCESS) {
            return status;
        }
    }
    // Behind a region write, this brings the driver's own copy up to date.
    const transport::Command command = transport::command::VpdWrite;
    return transport::SendExtended(handle, command.code, command.subCode, buffer, size, nullptr, 0,
                                   nullptr);
}

}  // namespace flash
