// Attributes of the adapter's own port.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "hbaapi/handlers.h"
#include "hbaapi/port_values.h"
#include "hbaapi/status.h"
#include "mapping/device_names.h"
#include "properties/adapter_texts.h"
#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/legacy_targets.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace hbaapi {
namespace {

using properties::LegacySelector;
using properties::TextOf;
namespace command = transport::command;

constexpr uint32_t kFrameSize = 2048;
constexpr uint16_t kWithoutLowestSpeed = 1u << 0;  // of PortReplyBase::speedFlags

template <size_t Size>
HBA_WWN WwnOf(const uint8_t (&name)[Size]) {
    HBA_WWN wwn;
    static_assert(Size == sizeof wwn.wwn);
    std::memcpy(wwn.wwn, name, Size);
    return wwn;
}

// "\Device\ScsiPort3" as the name that opens the port, "\\.\Scsi3:". The number stands nine
// characters behind the last backslash.
void PutOsDeviceName(std::string_view device, HBA_PORTATTRIBUTES& out) {
    constexpr size_t kToNumber = 9;
    const size_t backslash = device.rfind('\\');
    if (backslash == std::string_view::npos) {
        properties::PutText(device.substr(0, sizeof out.OSDeviceName - 1), out.OSDeviceName);
        return;
    }
    char name[sizeof out.OSDeviceName];
    mapping::JoinText("\\\\.\\Scsi", device.substr(std::min(backslash + kToNumber, device.size())),
                      name);
    mapping::JoinText(TextOf(name), ":", out.OSDeviceName);
}

bool DriverReportsSpeeds(uint32_t handle) {
    HX_NODE_PROPERTY node{};
    return properties::GetNodeProperty(handle, &node) == HXMGT_SUCCESS &&
           properties::ReportsSpeeds(TextOf(node.driverVersion));
}

HX_STATUS GetExtended(uint32_t handle, HBA_PORTATTRIBUTES& out) {
    properties::NodeReply node{};
    if (const HX_STATUS status = transport::Ask(handle, command::NodeProperties, node);
        status != HXMGT_SUCCESS) {
        return status;
    }
    properties::PortReply reply{};
    if (const HX_STATUS status = transport::Ask(handle, command::PortProperties, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const properties::PortReplyBase& port = reply.base;
    out.NodeWWN = WwnOf(node.nodeName);
    out.PortWWN = WwnOf(port.portName);
    out.PortFcId = FcIdOf(port.portId);
    out.PortType = PortTypeOf(port.topology, out.PortFcId);
    out.PortState = PortStateOf(port.state);
    out.PortSupportedClassofService = HBA_CLASS_OF_SERVICE_3;
    out.PortMaxFrameSize = kFrameSize;
    out.NumberofDiscoveredPorts = port.discoveredDevices;
    out.PortSupportedSpeed = HBA_PORTSPEED_NOT_REPORTED;
    out.PortSpeed = HBA_PORTSPEED_NOT_REPORTED;
    if (DriverReportsSpeeds(handle)) {
        out.PortSupportedSpeed =
            SupportedSpeedsOf(port.supportedSpeeds, (port.speedFlags & kWithoutLowestSpeed) != 0);
        out.PortSpeed = SpeedOf(port.currentSpeed);
        out.PortSupportedFc4Types = Fc4TypesOf(port.supportedFc4);
        out.PortActiveFc4Types = Fc4TypesOf(port.activeFc4);
    }
    return HXMGT_SUCCESS;
}

HX_STATUS GetLegacy(uint32_t handle, HBA_PORTATTRIBUTES& out) {
    // One name serves as both, and the driver is asked for it twice: intended.
    for (HBA_WWN* const wwn : {&out.NodeWWN, &out.PortWWN}) {
        properties::LegacyPortAndNodeReply names{};
        if (const HX_STATUS status = transport::AskPlain(handle, command::LegacyPortAndNode, names);
            status != HXMGT_SUCCESS) {
            return status;
        }
        *wwn = WwnOf(names.worldWideName);
    }
    properties::LegacyAdapterReply adapter{};
    HX_STATUS status = transport::AskLegacy(handle, LegacySelector::AdapterInformation, adapter);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    out.PortFcId = FcIdOf(adapter.portId);

    properties::LegacyTargets targets;
    status = targets.Fetch(handle);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    // All that are listed, valid or not: intended.
    out.NumberofDiscoveredPorts = static_cast<HBA_UINT32>(targets.Entries().size());

    properties::LegacyLinkReply link{};
    status = transport::AskLegacy(handle, LegacySelector::LinkValue, link);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    out.PortState =
        link.linkValue < properties::kLegacyLinkUp ? HBA_PORTSTATE_LINKDOWN : HBA_PORTSTATE_ONLINE;
    out.PortSupportedSpeed = HBA_PORTSPEED_1GBIT;
    out.PortSpeed = HBA_PORTSPEED_1GBIT;
    return HXMGT_SUCCESS;
}

}  // namespace

HBA_STATUS GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32, HBA_PORTATTRIBUTES* attributes) {
    HXMGT_API_HANDLE device;
    if (const HX_STATUS status = properties::CheckQuery(handle, attributes, device);
        status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    *attributes = {};
    PutOsDeviceName(TextOf(device.szDeviceName), *attributes);
    // A legacy request's failure is not mapped: intended.
    return properties::TakesExtendedRequests(device) ? MapStatus(GetExtended(handle, *attributes))
                                                     : GetLegacy(handle, *attributes);
}

}  // namespace hbaapi
