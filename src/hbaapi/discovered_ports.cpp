// Attributes of ports that the adapter's port has discovered.
#include <cstring>
#include <optional>

#include "frame/trace.h"
#include "hbaapi/handlers.h"
#include "hbaapi/port_values.h"
#include "hbaapi/status.h"
#include "mapping/discovered_ports.h"
#include "mapping/os_devices.h"
#include "properties/adapter_texts.h"
#include "properties/generation.h"
#include "properties/port_database.h"

namespace hbaapi {
namespace {

// Empty when the system has no device of the port, or cannot tell.
void PutOsDeviceName(uint32_t handle, uint32_t scsiPort, const HX_DISCOVERED_DEVICE& port,
                     HBA_PORTATTRIBUTES& out) {
    mapping::OsDevices devices;
    if (devices.FetchAt(handle, scsiPort, port.bus, port.target) != HXMGT_SUCCESS) {
        return;
    }
    if (const HX_OS_DEVICE* const device = devices.At(port.bus, port.target)) {
        properties::PutText(properties::TextOf(device->name), out.OSDeviceName);
    }
}

void TraceName(uint32_t handle, const char* title, const HBA_WWN& name) {
    const HBA_UINT8* const b = name.wwn;
    VX_TRACE(handle, "%s Name %02x %02x %02x %02x %02x %02x %02x %02x\n", title, b[0], b[1], b[2],
             b[3], b[4], b[5], b[6], b[7]);
}

}  // namespace

HBA_STATUS GetDiscoveredPortAttributes(HBA_HANDLE handle, HBA_UINT32 portIndex,
                                       HBA_UINT32 discoveredPortIndex,
                                       HBA_PORTATTRIBUTES* attributes) {
    HXMGT_API_HANDLE device;
    if (const HX_STATUS status = properties::CheckQuery(handle, attributes, device);
        status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    HX_DISCOVERED_PORT record{};
    if (const HX_STATUS status =
            properties::GetDiscoveredPort(handle, discoveredPortIndex, &record);
        status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    const HX_DISCOVERED_DEVICE& port = record.device;
    HBA_PORTATTRIBUTES& out = *attributes;
    out = {};
    std::memcpy(out.NodeWWN.wwn, port.nodeName, sizeof out.NodeWWN.wwn);
    std::memcpy(out.PortWWN.wwn, port.portName, sizeof out.PortWWN.wwn);
    out.PortFcId = FcIdOf(port.portId);
    out.PortType = HBA_PORTTYPE_UNKNOWN;
    out.PortState = HBA_PORTSTATE_UNKNOWN;
    PutOsDeviceName(handle, device.dwScsiPort, port, out);

    VX_TRACE(handle, "HBAGetDiscoveredPortAttributes (Port %d, Disc Index %d)\n",
             static_cast<int>(portIndex), static_cast<int>(discoveredPortIndex));
    TraceName(handle, "Node", out.NodeWWN);
    TraceName(handle, "Port", out.PortWWN);
    VX_TRACE(handle, "Port ID 0x%x\n", static_cast<unsigned>(out.PortFcId));
    return HBA_STATUS_OK;
}

HBA_STATUS GetPortAttributesByWwn(HBA_HANDLE handle, HBA_WWN portWwn,
                                  HBA_PORTATTRIBUTES* attributes) {
    if (const HBA_STATUS status = CheckCall(handle, attributes); status != HBA_STATUS_OK) {
        return status;
    }
    mapping::DiscoveredPorts ports;
    // A list that cannot be had holds no such name, whatever the reason: intended.
    const std::optional<uint32_t> index =
        ports.Fetch(handle) == HXMGT_SUCCESS ? ports.Find(portWwn.wwn) : std::nullopt;
    return index ? GetDiscoveredPortAttributes(handle, 0, *index, attributes)
                 : HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_WWN};
}

}  // namespace hbaapi
