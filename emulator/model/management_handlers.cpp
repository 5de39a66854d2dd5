// The management address of a port: what it tells those who ask with RNID for general topology
// discovery (FC-LS).
#include <cstring>

#include "model/fabric/name_server.h"
#include "model/handlers.h"
#include "statistics/statistics_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint8_t kIpV4 = 1;
constexpr uint8_t kIpV6 = 2;
constexpr uint8_t kSnmpPort = 161;
// Behind this prefix no host of any network is found (documentation addresses).
constexpr uint8_t kDocumentation[3] = {192, 0, 2};

// As RNID has it, an IPv4 address stands in the last four of the sixteen bytes.
HX_MGMT_ADDRESS_SETTING StartAddress(const PortProfile& port) {
    HX_MGMT_ADDRESS_SETTING address = {};
    address.ipVersion[1] = kIpV4;
    address.udpPort[1] = kSnmpPort;
    std::memcpy(address.ipAddress + 12, kDocumentation, sizeof kDocumentation);
    address.ipAddress[15] = static_cast<uint8_t>(100 + port.scsiPort);
    return address;
}

DriverStatus ManagementAddress(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    const HX_MGMT_ADDRESS_SETTING address =
        port.managementAddressSet ? port.managementAddress : StartAddress(*port.profile);
    HX_MGMT_ADDRESS reply = {};
    std::memcpy(reply.portName, port.profile->portName, sizeof reply.portName);
    reply.unitType[3] = static_cast<uint8_t>(UnitType::Host);
    reply.portId[3] = port.profile->pciFunction;  // the number of the port at its adapter
    reply.attachedNodes[3] = 1;
    std::memcpy(reply.ipVersion, address.ipVersion, sizeof reply.ipVersion);
    std::memcpy(reply.udpPort, address.udpPort, sizeof reply.udpPort);
    std::memcpy(reply.ipAddress, address.ipAddress, sizeof reply.ipAddress);
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus SetManagementAddress(Exchange& exchange) {
    statistics::SetAddressRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const uint8_t(&version)[2] = request.setting.ipVersion;
    if (version[0] != 0 || version[1] < kIpV4 || version[1] > kIpV6) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    port.managementAddress = request.setting;
    port.managementAddressSet = true;
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::ManagementAddress, .handle = ManagementAddress, .flags = WithinPort},
    {.command = command::SetManagementAddress, .handle = SetManagementAddress, .flags = WithinPort},
};

}  // namespace

RequestRows ManagementRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
