#include "frame/discovery.h"

#include <windows.h>

#include <cstring>

#include "frame/family_services.h"
#include "frame/owned.h"
#include "frame/record_list.h"
#include "frame/registry.h"
#include "properties/driver_replies.h"
#include "transport/requests.h"

namespace frame {
namespace {

// The discovery probe: the reply's status is all that is looked at.
#pragma pack(push, 1)
struct DiscoveryProbe {
    transport::ExtRequest envelope;
    properties::DriverReply reply;
};
#pragma pack(pop)
static_assert(sizeof(DiscoveryProbe) == 316);

static_assert(sizeof(HX_SCSI_PORT) == 264);
static_assert(offsetof(HX_SCSI_PORT, familyDriver) == 4);
static_assert(offsetof(HX_SCSI_PORT, driver) == 8);
static_assert(sizeof(HX_SCSI_PORT::driver) == kDiscoveryTextSize);

using PortKeyPath = char[64];

void WritePortKeyPath(uint32_t port, PortKeyPath& path) {
    wsprintfA(path, "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port %d", port);
}

bool IsKnownToRegistry(uint32_t port) {
    PortKeyPath path;
    WritePortKeyPath(port, path);
    OwnedKey key;
    return RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, key.Receive()) ==
           ERROR_SUCCESS;
}

// Service names have no letter case; one with a file extension counts as the bare name.
bool IsFamilyService(const char* name) {
    const size_t length = std::strcspn(name, ".");
    for (const char* const service : kFamilyServices) {
        if (std::strlen(service) == length && _strnicmp(service, name, length) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool IsFamilyPort(uint32_t port) {
    char path[32];
    wsprintfA(path, kScsiPortPath, port);
    // Not checked: the request on a port that did not open fails by itself.
    const OwnedFile device(CreateFileA(path, GENERIC_READ | GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    // The EXT_IOCTL signature, level and version stay zero: intended, drivers answer all the same.
    DiscoveryProbe probe{};
    probe.envelope.srb.headerLength = transport::kHeaderLength;
    std::memcpy(probe.envelope.srb.signature, transport::kSignature, sizeof transport::kSignature);
    probe.envelope.srb.timeout = transport::kTimeoutSeconds;
    probe.envelope.srb.controlCode = transport::command::DriverProperties.code;
    probe.envelope.srb.length = sizeof(DiscoveryProbe) - transport::kHeaderLength;
    probe.envelope.ext.subCode = transport::command::DriverProperties.subCode;
    probe.envelope.ext.responseLen = sizeof probe.reply;

    DWORD returned = 0;
    const DWORD error = transport::SendToDevice(
        device.Get(), {&probe, sizeof probe, &probe, sizeof probe}, &returned);
    return error == ERROR_SUCCESS && probe.envelope.ext.status == 0;
}

std::span<char> DiscoveryText() {
    thread_local char text[kDiscoveryTextSize];
    return text;
}

const char* DriverNameOfPort(uint32_t port) {
    PortKeyPath path;
    WritePortKeyPath(port, path);
    const std::span<char> name = DiscoveryText();
    if (ReadRegistryText(path, "Driver", name) != ERROR_SUCCESS) {
        name[0] = 0;  // a name too long for the buffer is none
    }
    return name.data();
}

const char* FamilyDriverName(uint32_t port) {
    const char* const name = DriverNameOfPort(port);
    return IsFamilyPort(port) ? name : nullptr;
}

uint32_t CountAdapters() {
    uint32_t count = 0;
    for (uint32_t port = 0; port < HX_MAX_SCSI_PORTS; ++port) {
        count += IsFamilyPort(port) ? 1 : 0;
    }
    return count;
}

HX_STATUS ListScsiPorts(HX_SCSI_PORT* ports, uint32_t* count) {
    if (!CallerList<HX_SCSI_PORT>::Accepts(ports, count)) {
        return HXMGT_INVALID_PARAMETER;
    }
    CallerList<HX_SCSI_PORT> out(ports, count);
    for (uint32_t number = 0; number < HX_MAX_SCSI_PORTS; ++number) {
        if (!IsKnownToRegistry(number)) {
            continue;
        }
        HX_SCSI_PORT port{};
        port.scsiPort = number;
        std::strcpy(port.driver, DriverNameOfPort(number));
        port.familyDriver = IsFamilyService(port.driver) ? 1 : 0;
        out.Add(port);
    }
    return out.Close();
}

uint8_t GetDriverType(uint32_t handle) {
    // Input and output are one buffer; what goes in is not looked at.
    properties::NodeReply node{};
    if (transport::Exchange(handle, transport::command::NodeProperties, node, node) !=
        HXMGT_SUCCESS) {
        return kDriverTypeUnknown;
    }
    return node.vendorSpecificId != 0 ? 1 : 0;
}

}  // namespace frame
