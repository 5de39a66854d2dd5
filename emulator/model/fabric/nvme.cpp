// NVMe over Fibre Channel: a target that speaks it is a subsystem of one controller, whose
// namespaces are the target's LUNs.
#include <cstring>

#include "formats/bytes.h"
#include "model/bytes/bytes.h"
#include "model/bytes/pattern.h"
#include "model/fabric/device_page.h"
#include "model/handlers.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint8_t kNvmeProtocol = 0x04;  // of a port's protocol flags
constexpr uint32_t kNvmeVersion = 1u << 16 | 4u << 8;
constexpr uint32_t kMaxTransfer = 1024 * 1024;
constexpr uint16_t kIoQueues = 4;
constexpr uint16_t kQueueDepth = 128;
constexpr uint32_t kKeepAlive = 5000;
constexpr uint32_t kLossTimeout = 60;
constexpr uint64_t kConnectRequests = 1 + 1 + kIoQueues;  // association, administration, queues
constexpr uint32_t kGroup = 1;
constexpr char kSubsystemPrefix[] = "nqn.2026-01.test.emulated:";
constexpr char kHostPrefix[] = "nqn.2026-01.test.emulated:host-";

// The prefix and the name's digits.
template <size_t size>
void PutQualifiedName(char (&text)[size], const char* prefix, const uint8_t (&name)[8]) {
    CopyText(text, prefix);
    char* at = text + std::strlen(prefix);
    for (const uint8_t byte : name) {
        *at++ = "0123456789abcdef"[byte >> 4];
        *at++ = "0123456789abcdef"[byte & 0xF];
    }
}

bool SpeaksNvme(const Port& port) {
    return (port.profile->protocolFlags & kNvmeProtocol) != 0;
}

uint32_t CountNamespaces(const Port& port, const TargetProfile& device) {
    const Profile& profile = *port.fabric->profile;
    uint32_t count = 0;
    for (uint32_t at = 0; at < profile.lunCount; ++at) {
        count += profile.luns[at].target == IndexOf(*port.fabric, device) ? 1 : 0;
    }
    return count;
}

// The LUN with the lowest number from that one on, or null.
const LunProfile* LunFrom(const Port& port, const TargetProfile& device, uint32_t number) {
    const Profile& profile = *port.fabric->profile;
    const LunProfile* found = nullptr;
    for (uint32_t at = 0; at < profile.lunCount; ++at) {
        const LunProfile& lun = profile.luns[at];
        if (lun.target == IndexOf(*port.fabric, device) && lun.number >= number &&
            (found == nullptr || lun.number < found->number)) {
            found = &lun;
        }
    }
    return found;
}

HX_NVME_PORT DescribePort(const Port& port, const TargetProfile& device) {
    HX_NVME_PORT record = {};
    std::memcpy(record.portName, device.portName, sizeof record.portName);
    std::memcpy(record.nodeName, device.nodeName, sizeof record.nodeName);
    std::memcpy(record.portId, device.portId, sizeof record.portId);
    record.roles = HX_NVME_SUBSYSTEM;
    record.state = Sees(port, device) ? HX_NVME_PORT_ONLINE : HX_NVME_PORT_LOST;
    record.controllers = 1;
    record.namespaces = CountNamespaces(port, device);
    record.secondsOnline = SecondsOnline(port, device);
    record.lsRequests = kConnectRequests;
    return record;
}

DriverStatus NvmeInfo(Exchange& exchange) {
    statistics::ListRequest request;
    const Port& port = exchange.GetPort();
    if (!SpeaksNvme(port)) {
        return DriverStatus::UnsupportedSubCode;
    }
    if (!exchange.Read(request) || request.version != statistics::kListVersion) {
        return DriverStatus::InvalidParameter;
    }
    ReplyDevicePage<statistics::NvmePortReply>(
        exchange, request.first,
        [&](const TargetProfile& device) { return device.nvme != 0 && MaySee(port, device); },
        [&](const TargetProfile& device) { return DescribePort(port, device); });
    return DriverStatus::Success;
}

// The controller that a request names: its only one has the index 0.
DriverStatus FindController(const Exchange& exchange, DESTINATIONADDRESS& request,
                            const TargetProfile*& device) {
    const Port& port = exchange.GetPort();
    if (!SpeaksNvme(port)) {
        return DriverStatus::UnsupportedSubCode;
    }
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    device =
        FindEvenIfGone(port, static_cast<properties::DriverAddress>(request.type), request.address);
    return device != nullptr && device->nvme != 0 ? DriverStatus::Success
                                                  : DriverStatus::DeviceNotFound;
}

void FillController(const Port& port, const TargetProfile& device, HX_NVME_TARGET& record) {
    std::memcpy(record.portName, device.portName, sizeof record.portName);
    std::memcpy(record.nodeName, device.nodeName, sizeof record.nodeName);
    std::memcpy(record.portId, device.portId, sizeof record.portId);
    record.kind = HX_NVME_KIND_NVM;
    record.controllers = 1;
    record.controllerId = 1;
    record.state = Sees(port, device) ? HX_NVME_LIVE : HX_NVME_RECONNECTING;
    record.flags = HX_NVME_FLAG_ANA;
    record.namespaces = CountNamespaces(port, device);
    record.version = kNvmeVersion;
    record.maxTransfer = kMaxTransfer;
    record.ioQueues = kIoQueues;
    record.queueDepth = kQueueDepth;
    record.keepAlive = kKeepAlive;
    record.lossTimeout = kLossTimeout;
    record.reconnects = port.linkUps != 0 ? port.linkUps - 1 : 0;
    record.associationId =
        formats::BigEndian(port.profile->portName) ^ formats::BigEndian(device.portName) << 1;
    PutQualifiedName(record.subsystemNqn, kSubsystemPrefix, device.portName);
    PutQualifiedName(record.hostNqn, kHostPrefix, port.profile->portName);
    std::memcpy(record.hostId, port.profile->nodeName, sizeof port.profile->nodeName);
    std::memcpy(record.hostId + sizeof port.profile->nodeName, port.profile->portName,
                sizeof port.profile->portName);
    char serial[sizeof record.serial] = {};
    PutQualifiedName(serial, "EMU", device.portName);
    CopyPadded(record.serial, serial);
    CopyPadded(record.model, "Emulated NVMe subsystem");
    CopyPadded(record.firmware, "1.00");
}

DriverStatus NvmeTargetInfo(Exchange& exchange) {
    DESTINATIONADDRESS request;
    const TargetProfile* device;
    if (const DriverStatus status = FindController(exchange, request, device);
        status != DriverStatus::Success) {
        return status;
    }
    if (request.lun != 0) {
        return DriverStatus::DeviceNotFound;
    }
    exchange.StartReply(sizeof(HX_NVME_TARGET));
    if (!exchange.Fits()) {
        return DriverStatus::BufferTooSmall;
    }
    // Filled where it lies: too large for a kernel stack.
    FillController(exchange.GetPort(), *device,
                   *reinterpret_cast<HX_NVME_TARGET*>(exchange.Bytes()));
    return DriverStatus::Success;
}

HX_NVME_NAMESPACE DescribeNamespace(const TargetProfile& device, const LunProfile& lun) {
    HX_NVME_NAMESPACE record = {};
    record.id = lun.number + 1u;
    record.blockSize = lun.blockSize;
    record.blocks = lun.blocks;
    record.capacity = lun.blocks;
    record.used = lun.blocks / 2;
    std::memcpy(record.nguid, device.portName, sizeof device.portName);
    record.nguid[14] = static_cast<uint8_t>(record.id >> 8);
    record.nguid[15] = static_cast<uint8_t>(record.id);
    record.anaGroup = kGroup;
    record.anaState = HX_ANA_OPTIMIZED;
    record.flags = HX_NAMESPACE_SHARED;
    return record;
}

DriverStatus NvmeNamespaceInfo(Exchange& exchange) {
    using Page = statistics::NvmeNamespaceReply;
    DESTINATIONADDRESS request;
    const TargetProfile* device;
    if (const DriverStatus status = FindController(exchange, request, device);
        status != DriverStatus::Success) {
        return status;
    }
    if ((request.lun & 0xFF) != 0) {
        return DriverStatus::DeviceNotFound;
    }
    constexpr uint32_t kEntry = sizeof(HX_NVME_NAMESPACE);
    const Port& port = exchange.GetPort();
    const uint32_t first = statistics::kNamespacesOnPage * (request.lun >> 8);
    const uint32_t total = CountNamespaces(port, *device);
    const uint32_t count =
        first < total ? std::min(total - first, statistics::kNamespacesOnPage) : 0;
    exchange.StartReply(offsetof(Page, entries) + count * kEntry);
    const statistics::ListHead head = {statistics::kListVersion, total, first, count};
    exchange.Put(0, &head, sizeof head);
    uint32_t index = 0;
    for (const LunProfile* lun = LunFrom(port, *device, 0); lun != nullptr && index < first + count;
         lun = LunFrom(port, *device, lun->number + 1u), ++index) {
        if (index >= first) {
            const HX_NVME_NAMESPACE record = DescribeNamespace(*device, *lun);
            exchange.Put(offsetof(Page, entries) + (index - first) * kEntry, &record,
                         sizeof record);
        }
    }
    return DriverStatus::Success;
}

constexpr ExtendedRow kNvmeRequests[] = {
    {.command = command::NvmeInfo, .handle = NvmeInfo, .flags = WithinPort},
    {.command = command::NvmeTargetInfo, .handle = NvmeTargetInfo, .flags = WithinPort},
    {.command = command::NvmeNamespaceInfo, .handle = NvmeNamespaceInfo, .flags = WithinPort},
};

}  // namespace

RequestRows NvmeRequests() {
    return {.extended = kNvmeRequests};
}

}  // namespace vxemu
