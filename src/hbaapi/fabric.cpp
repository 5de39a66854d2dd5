// Common Transport, and topology discovery with RNID.
#include <algorithm>
#include <cstring>

#include "formats/link_services.h"
#include "hbaapi/handlers.h"
#include "hbaapi/status.h"
#include "passthru/passthru.h"
#include "statistics/statistics.h"

namespace hbaapi {
namespace {

constexpr uint32_t kAddressRoom = 256;

struct WwnTypeRow {
    HBA_WWNTYPE type;
    uint16_t addressType;
};
constexpr WwnTypeRow kWwnTypes[] = {
    {NODE_WWN, HX_ADDRESS_NODE_NAME},
    {PORT_WWN, HX_ADDRESS_PORT_NAME},
};

constexpr uint32_t kAcceptLength = 56;  // of an accept without common data

template <typename Number, size_t size>
Number FromBigEndian(const uint8_t (&bytes)[size]) {
    static_assert(sizeof(Number) == size);
    return static_cast<Number>(formats::BigEndian(bytes));
}

}  // namespace

HBA_STATUS SendCtPassThru(HBA_HANDLE handle, void* request, HBA_UINT32 requestSize, void* response,
                          HBA_UINT32 responseSize) {
    return MapStatus(passthru::SendCt(handle, request, requestSize, response, responseSize));
}

HBA_STATUS SetRnidMgmtInfo(HBA_HANDLE handle, HBA_MGMTINFO* info) {
    if (const HBA_STATUS status = CheckCall(handle, info); status != HBA_STATUS_OK) {
        return status;
    }
    HX_MGMT_ADDRESS_SETTING setting;
    formats::PutBigEndian(info->IPVersion, setting.ipVersion);
    formats::PutBigEndian(info->UDPPort, setting.udpPort);
    std::memcpy(setting.ipAddress, info->IPAddress, sizeof setting.ipAddress);
    return MapStatus(statistics::SetManagementAddress(handle, &setting));
}

HBA_STATUS GetRnidMgmtInfo(HBA_HANDLE handle, HBA_MGMTINFO* info) {
    if (const HBA_STATUS status = CheckCall(handle, info); status != HBA_STATUS_OK) {
        return status;
    }
    union {
        HX_MGMT_ADDRESS address;
        uint8_t room[kAddressRoom];
    } reply;
    std::memset(&reply, 0, sizeof reply);
    const HX_STATUS status = statistics::GetManagementAddress(handle, &reply, sizeof reply);
    if (status == HXMGT_SUCCESS) {
        const HX_MGMT_ADDRESS& address = reply.address;
        std::memcpy(info->wwn.wwn, address.portName, sizeof info->wwn.wwn);
        info->unittype = FromBigEndian<HBA_UINT32>(address.unitType);
        info->PortId = FromBigEndian<HBA_UINT32>(address.portId);
        info->NumberOfAttachedNodes = FromBigEndian<HBA_UINT32>(address.attachedNodes);
        info->IPVersion = FromBigEndian<HBA_UINT16>(address.ipVersion);
        info->UDPPort = FromBigEndian<HBA_UINT16>(address.udpPort);
        std::memcpy(info->IPAddress, address.ipAddress, sizeof info->IPAddress);
        std::memcpy(&info->reserved, address.reserved48, sizeof info->reserved);
        info->TopologyDiscoveryFlags = FromBigEndian<HBA_UINT16>(address.topologyDiscoveryFlags);
    }
    return MapStatus(status);
}

HBA_STATUS SendRnid(HBA_HANDLE handle, HBA_WWN wwn, HBA_WWNTYPE wwnType, void* response,
                    HBA_UINT32* responseSize) {
    if (const HBA_STATUS status = CheckCall(handle, responseSize); status != HBA_STATUS_OK) {
        return status;
    }
    HX_SCSI_ADDRESS destination{};
    // Another type of name leaves the address type unset: intended.
    for (const WwnTypeRow& row : kWwnTypes) {
        if (row.type == wwnType) {
            destination.type = row.addressType;
        }
    }
    std::memcpy(destination.address, wwn.wwn, sizeof destination.address);
    const HX_STATUS status = passthru::SendRnid(handle, &destination, formats::kTopologyFormat,
                                                static_cast<uint8_t*>(response), *responseSize);
    if (status == HXMGT_SUCCESS && *responseSize >= offsetof(formats::NodeIdHead, reserved6)) {
        const auto& accept = *static_cast<const formats::NodeIdHead*>(response);
        *responseSize = std::min(*responseSize, kAcceptLength + accept.commonLength);
    }
    return MapStatus(status);
}

}  // namespace hbaapi
