// Common Transport, link services and SCM settings.
#include <cstring>

#include "formats/link_services.h"
#include "model/bytes/byte_writer.h"
#include "model/fabric/name_server.h"
#include "model/handlers.h"
#include "model/health/scm.h"
#include "model/statistics.h"
#include "passthru/fabric_records.h"

namespace vxemu {
namespace {

using namespace formats;
using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint32_t kLongestElsAnswer = 256;

void PutAccept(ByteWriter& out) {
    out.PutRecord(ElsHead{kElsAccept, {}});
}

// A remote port's link error block: what the emulated ones would have counted.
void PutLinkErrors(ByteWriter& out, const Port& port, const FabricPort& remote) {
    uint8_t name[8];
    std::memcpy(name, remote.portName, sizeof name);
    const TargetProfile* const device = FindByPortName(port, name);
    for (uint32_t counter = 0; counter < kLinkErrorCounters; ++counter) {
        out.Put32(static_cast<uint32_t>(device != nullptr
                                            ? RemoteLinkErrors(port, *device, counter)
                                            : RemoteLinkErrors(remote.portName, counter)));
    }
}

// The answer to a link service; false when the remote port rejects it.
bool AnswerEls(const Port& port, const FabricPort& remote, const uint8_t* payload, uint32_t length,
               ByteWriter& out) {
    switch (payload[0]) {
        case kEcho:
            PutAccept(out);
            if (length > 4) {
                out.Put(payload + 4, length - 4);
            }
            return true;
        case kReadLinkErrors:
            PutAccept(out);
            PutLinkErrors(out, port, remote);
            return true;
        case kReadPortStatus:
            PutAccept(out);
            out.Put32(0);
            PutLinkErrors(out, port, remote);
            return true;
        case kDiscoverAddress: {
            AddressAnswer address = {};
            address.head.command = kElsAccept;
            std::memcpy(address.portName, remote.portName, sizeof address.portName);
            std::memcpy(address.nodeName, remote.nodeName, sizeof address.nodeName);
            std::memcpy(address.portId, remote.portId, sizeof address.portId);
            out.PutRecord(address);
            return true;
        }
        default:
            // Command and request are not supported.
            out.PutRecord(RejectAnswer{{kElsReject, {}}, 0, 0x0B, 0x2C, 0});
            return false;
    }
}

bool FindDestination(const Fabric& fabric, const passthru::ElsRequest& request, FabricPort& found) {
    if ((request.addressFlags & passthru::kElsByPortName) != 0) {
        return FindByName(fabric, request.portName, found);
    }
    return (request.addressFlags & passthru::kElsByPortId) != 0 &&
           FindById(fabric, request.portId, found);
}

bool FindRnidDestination(const Port& port, const passthru::RnidRequest& request,
                         FabricPort& found) {
    constexpr uint16_t kByNodeName = 1;
    constexpr uint16_t kByPortName = 2;
    static constexpr uint8_t kSwitchId[3] = {0xFF, 0xFF, 0xFE};
    switch (request.destinationType) {
        case kByNodeName:
            return FindByNodeName(*port.fabric, request.name, found);
        case kByPortName:
            return FindByName(*port.fabric, request.name, found);
        case passthru::kRnidToAttachedPort:
            found = {UnitType::Switch, kSwitchId, kSwitchName, kSwitchName, "Emulated switch"};
            return true;
        default:
            return false;
    }
}

DriverStatus CtPassThrough(Exchange& exchange) {
    if (!exchange.GetPort().LinkUp()) {
        return DriverStatus::ManagementServerSilent;
    }
    const uint32_t length = AnswerCt(*exchange.GetPort().fabric, exchange.Bytes(),
                                     exchange.InputLength(), exchange.Bytes(), exchange.Room());
    exchange.KeepReply(length);
    return length != 0 ? DriverStatus::Success : DriverStatus::InvalidParameter;
}

bool LegacyCtPassThrough(Exchange& exchange) {
    // The two sizes that end the envelope are the first of the data here.
    constexpr uint32_t kSizes = sizeof(passthru::LegacyCtRequest) - sizeof(transport::SrbIoControl);
    uint32_t sizes[2];
    static_assert(sizeof sizes == kSizes);
    if (!exchange.Read(sizes) || !exchange.GetPort().LinkUp()) {
        return false;
    }
    const uint64_t whole = uint64_t{kSizes} + sizes[0] + sizes[1];
    if (sizes[0] > exchange.InputLength() - kSizes || whole > exchange.Room()) {
        return false;
    }
    uint8_t* request = exchange.Bytes() + kSizes;
    exchange.KeepReply(static_cast<uint32_t>(whole));
    return AnswerCt(*exchange.GetPort().fabric, request, sizes[0], request + sizes[0], sizes[1]) !=
           0;
}

DriverStatus ElsPassThrough(Exchange& exchange) {
    passthru::ElsRequest request;
    constexpr uint32_t kHead = sizeof request;
    if (!exchange.Read(request) || exchange.InputLength() == kHead || exchange.Room() < kHead) {
        return DriverStatus::InvalidParameter;
    }
    const uint32_t length = exchange.InputLength() - kHead;
    if (length > kLongestElsAnswer) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    FabricPort remote;
    if (!port.LinkUp() || !FindDestination(*port.fabric, request, remote)) {
        return DriverStatus::DeviceNotFound;
    }
    uint8_t payload[kLongestElsAnswer];
    std::memcpy(payload, exchange.Bytes() + kHead, length);
    uint8_t answer[kLongestElsAnswer];
    ByteWriter out(answer, sizeof answer);
    request.rejected = AnswerEls(port, remote, payload, length, out) ? 0 : 1;
    exchange.StartReply(kHead + out.Length());
    exchange.Put(0, &request, kHead);
    exchange.Put(kHead, answer, out.Length());
    return DriverStatus::Success;
}

// The accept without its first word, which the library puts in front again.
DriverStatus ElsRnid(Exchange& exchange) {
    passthru::RnidRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    FabricPort remote;
    if (!port.LinkUp() || !FindRnidDestination(port, request, remote)) {
        return DriverStatus::DeviceNotFound;
    }
    constexpr uint8_t kCommonLength = sizeof(NodeIdNames);
    constexpr uint8_t kTopologyLength = sizeof(NodeIdTopology);
    const bool topology = request.format == kTopologyFormat;
    uint8_t answer[4 + kCommonLength + kTopologyLength];
    ByteWriter out(answer, sizeof answer);
    out.Put8(request.format);
    out.Put8(kCommonLength);
    out.Put8(0);
    out.Put8(topology ? kTopologyLength : 0);
    out.Put(remote.portName, 8);
    out.Put(remote.nodeName, 8);
    if (topology) {
        out.Zeros(16);  // vendor specific
        out.Put32(static_cast<uint32_t>(remote.unitType));
        out.Put32(static_cast<uint32_t>(BigEndian(remote.portId, 3)));
        out.Put32(1);  // attached nodes
        out.Zeros(sizeof answer - out.Length());
    }
    exchange.StartReply(out.Length());
    exchange.Put(0, answer, out.Length());
    return DriverStatus::Success;
}

DriverStatus ScmManagement(Exchange& exchange) {
    passthru::ScmRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    if ((request.flags & passthru::kScmRead) == 0) {
        LookAtThrottle(port);
        port.scmSetting = request.values[0];
        LookAtThrottle(port);
        return DriverStatus::Success;
    }
    passthru::ScmRequest reply = {};
    reply.flags = request.flags;
    reply.values[0] = port.scmSetting;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::CtPassThrough, .handle = CtPassThrough, .flags = WithinPort},
    {.command = command::ElsPassThrough, .handle = ElsPassThrough, .flags = WithinPort},
    {.command = command::ElsRnid, .handle = ElsRnid, .flags = WithinPort},
    {.command = command::ScmManagement, .handle = ScmManagement, .flags = WithinPort},
};

constexpr PlainRow kPlainRequests[] = {
    {.code = command::LegacyCtPassThrough, .handle = LegacyCtPassThrough, .flags = WithinPort},
};

}  // namespace

RequestRows FabricRequests() {
    return {.extended = kRequests, .plain = kPlainRequests};
}

}  // namespace vxemu
