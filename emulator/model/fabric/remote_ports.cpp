// Remote ports with their link diagnostics (FC-LS RDP), and those that are secured (FC-SP-2).
#include <cstring>

#include "formats/bytes.h"
#include "model/bytes/bytes.h"
#include "model/bytes/pattern.h"
#include "model/fabric/device_page.h"
#include "model/fabric/link_speed.h"
#include "model/fabric/loop_map.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/statistics.h"
#include "model/storage/sfp_content.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint16_t kFrameSize = 2048;
constexpr uint16_t kRemoteCredits = 40;
constexpr uint16_t kRemoteSequences = 255;
constexpr uint16_t kNoLoopId = 0xFFFF;

uint16_t RolesOf(const TargetProfile& device) {
    const bool initiator = device.role != DeviceRole::Target;
    return static_cast<uint16_t>((IsTarget(device) ? HX_ROLE_FCP_TARGET : 0) |
                                 (initiator ? HX_ROLE_FCP_INITIATOR : 0) |
                                 (device.nvme != 0 ? HX_ROLE_NVME_SUBSYSTEM : 0));
}

uint16_t Quantity(const formats::SfpDiagnostics& page, uint32_t at) {
    return static_cast<uint16_t>(formats::BigEndian(page.values[at]));
}

// What the remote port answers about its own link and transceiver.
void AddDiagnostics(const Port& port, const TargetProfile& device, HX_REMOTE_PORT& record) {
    formats::SfpDiagnostics page = {};
    Measure(static_cast<uint32_t>(port.requests) + IndexOf(*port.fabric, device), {}, page);
    record.flags |= HX_REMOTE_PORT_DIAGNOSED;
    record.temperature = static_cast<int16_t>(Quantity(page, 0));
    record.voltage = Quantity(page, 1);
    record.bias = Quantity(page, 2);
    record.txPower = Quantity(page, 3);
    record.rxPower = Quantity(page, 4);
    uint32_t errors[kLinkErrorCounters] = {};
    static_assert(sizeof errors == sizeof record.errors);
    for (uint32_t counter = 0; counter < kLinkErrorCounters; ++counter) {
        errors[counter] = static_cast<uint32_t>(RemoteLinkErrors(port, device, counter));
    }
    std::memcpy(&record.errors, errors, sizeof errors);
}

bool IsSecured(const Port& port, const TargetProfile& device) {
    return ChipOf(port).Has(properties::ChipTrait::Newest) && device.secured == Security::Secured;
}

HX_REMOTE_PORT Describe(const Port& port, const TargetProfile& device) {
    const bool online = Sees(port, device);
    const Attachment& attachment = AttachmentOf(port, device);
    HX_REMOTE_PORT record = {};
    std::memcpy(record.nodeName, device.nodeName, sizeof record.nodeName);
    std::memcpy(record.portName, device.portName, sizeof record.portName);
    std::memcpy(record.portId, device.portId, sizeof record.portId);
    record.state = online                  ? HX_REMOTE_PORT_ONLINE
                   : Reaches(port, device) ? HX_REMOTE_PORT_NOT_LOGGED_IN
                                           : HX_REMOTE_PORT_LOST;
    record.roles = RolesOf(device);
    record.bus = attachment.bus;
    record.target = attachment.target;
    record.loopId = IsOnLoop(port) ? attachment.loopId / 2 : kNoLoopId;
    record.maxFrameSize = kFrameSize;
    record.bbCredits = kRemoteCredits;
    record.sequences = kRemoteSequences;
    record.highestSpeed = device.highestSpeed;
    record.secondsOnline = SecondsOnline(port, device);
    CopyText(record.symbolicName, device.symbolicName);
    if (online) {
        record.speed = static_cast<uint8_t>(SpeedTo(port, device));
        record.flags = IsSecured(port, device) ? HX_REMOTE_PORT_SECURED : 0;
        AddDiagnostics(port, device, record);
    }
    return record;
}

DriverStatus RemotePortInfo(Exchange& exchange) {
    statistics::RemotePortRequest request;
    if (!exchange.Read(request) || request.list.version != statistics::kListVersion) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    ReplyDevicePage<statistics::RemotePortReply>(
        exchange, request.list.first,
        [&](const TargetProfile& device) { return MaySee(port, device); },
        [&](const TargetProfile& device) { return Describe(port, device); });
    return DriverStatus::Success;
}

// Authentication takes place when a device comes, and keys are changed every hour.
constexpr uint32_t kRekeySeconds = 3600;
constexpr uint32_t kWordBytes = 4;
constexpr uint8_t kAuthenticationFailed = 0x01;  // AUTH_Reject

HX_SECURE_PORT DescribeSecurity(const Port& port, const TargetProfile& device) {
    HX_SECURE_PORT record = {};
    std::memcpy(record.portName, device.portName, sizeof record.portName);
    std::memcpy(record.nodeName, device.nodeName, sizeof record.nodeName);
    std::memcpy(record.portId, device.portId, sizeof record.portId);
    record.authentication = HX_AUTHENTICATION_DH_CHAP;
    if (device.secured == Security::Failed) {
        record.state = HX_SECURE_FAILED;
        record.rejectReason = kAuthenticationFailed;
        record.failures = 1;
        return record;
    }
    const HX_PORT_STATISTICS& counted = PeerOf(port, device).counted.port;
    const uint32_t seconds = SecondsOnline(port, device);
    const auto link =
        formats::BigEndian(port.profile->portName) ^ formats::BigEndian(device.portName) << 1;
    record.state = HX_SECURE_SECURED;
    record.encryption = HX_ENCRYPTION_AES_GCM_256;
    record.directions = HX_SECURE_TX | HX_SECURE_RX;
    record.rekeys = seconds / kRekeySeconds;
    record.secondsSinceRekey = seconds % kRekeySeconds;
    record.txSpi = PatternWord(link, record.rekeys);
    record.rxSpi = PatternWord(link + 1, record.rekeys);
    record.txBytes = counted.txWords * kWordBytes;
    record.rxBytes = counted.rxWords * kWordBytes;
    return record;
}

// The place behind a port in the list of devices; behind one that has gone nothing comes any more.
uint32_t PlaceBehind(const Profile& profile, const uint8_t (&portName)[8]) {
    uint32_t at = 0;
    while (at < profile.targetCount &&
           std::memcmp(profile.targets[at].portName, portName, sizeof portName) != 0) {
        ++at;
    }
    return at + 1;
}

DriverStatus SecurePortInfo(Exchange& exchange) {
    using statistics::SecurePortOperation;
    using Page = statistics::SecurePortReply;
    constexpr uint32_t kEntry = sizeof(HX_SECURE_PORT);
    constexpr uint32_t kRoom = sizeof(Page::entries) / kEntry;
    const Port& port = exchange.GetPort();
    if (!ChipOf(port).Has(properties::ChipTrait::Newest)) {
        return DriverStatus::UnsupportedSubCode;
    }
    statistics::SecurePortRequest request;
    if (!exchange.Read(request) ||
        request.operation > static_cast<uint8_t>(SecurePortOperation::Behind)) {
        return DriverStatus::InvalidParameter;
    }
    const Profile& profile = *port.fabric->profile;
    const bool behind = request.operation == static_cast<uint8_t>(SecurePortOperation::Behind);
    const uint32_t first = behind ? PlaceBehind(profile, request.last.portName) : 0;
    static_assert(kMaxTargets <= kRoom);
    exchange.StartReply(sizeof(Page));
    uint8_t count = 0;
    for (uint32_t at = first; at < profile.targetCount; ++at) {
        const TargetProfile& device = profile.targets[at];
        if (Sees(port, device) && device.secured != Security::Plain) {
            const HX_SECURE_PORT record = DescribeSecurity(port, device);
            exchange.Put(offsetof(Page, entries) + count++ * kEntry, &record, sizeof record);
        }
    }
    exchange.Put(0, &count, sizeof count);
    exchange.KeepReply(offsetof(Page, entries) + count * kEntry);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRemotePortRequests[] = {
    {.command = command::RemotePortInfo, .handle = RemotePortInfo, .flags = WithinPort},
    {.command = command::SecurePortInfo, .handle = SecurePortInfo, .flags = WithinPort},
};

}  // namespace

RequestRows RemotePortRequests() {
    return {.extended = kRemotePortRequests};
}

}  // namespace vxemu
