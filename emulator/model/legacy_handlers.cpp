// Plain requests of a legacy driver.
#include <cstring>

#include "flash/flash_records.h"
#include "model/bytes/bytes.h"
#include "model/bytes/pci_header.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "model/statistics.h"
#include "persist/driver_records.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"
#include "statistics/fabric_records.h"
#include "statistics/statistics_records.h"

namespace vxemu {
namespace {

namespace command = transport::command;
using enum RequestFlags;
using properties::LegacySelector;

// Reads the decimal numbers of a dotted version into bytes.
void VersionBytes(const char* text, uint8_t (&bytes)[3]) {
    uint32_t part = 0;
    std::memset(bytes, 0, sizeof bytes);
    for (; *text != 0 && part < sizeof bytes; ++text) {
        if (*text >= '0' && *text <= '9') {
            bytes[part] = static_cast<uint8_t>(bytes[part] * 10 + (*text - '0'));
        } else {
            ++part;
        }
    }
}

void AdapterInformation(Exchange& exchange, const transport::SelectorRecord& selector) {
    const Port& port = exchange.GetPort();
    properties::LegacyAdapterReply reply = {};
    reply.selector = selector;
    if (port.LinkUp()) {
        std::memcpy(reply.portId, port.profile->portId, sizeof reply.portId);
    }
    VersionBytes(port.adapter->firmwareVersion, reply.firmwareVersion);
    std::memcpy(reply.optionRomVersion, port.adapter->optionRomVersion,
                sizeof reply.optionRomVersion);
    std::memcpy(reply.serialBytes, port.adapter->serialBytes, sizeof reply.serialBytes);
    exchange.Reply(reply);
}

void LinkValue(Exchange& exchange, const transport::SelectorRecord& selector) {
    properties::LegacyLinkReply reply = {};
    reply.selector = selector;
    reply.linkValue = exchange.GetPort().LinkUp() ? properties::kLegacyLinkUp : 0;
    exchange.Reply(reply);
}

properties::LegacyTargetEntry ListedDevice(const Port& port, const TargetProfile& device) {
    properties::LegacyTargetEntry entry = {};
    const Attachment& attachment = AttachmentOf(port, device);
    entry.loopId = LoopIdOf(port, device);
    entry.bus = attachment.bus;
    entry.target = static_cast<uint8_t>(attachment.target);
    std::memcpy(entry.portId, device.portId, sizeof entry.portId);
    std::memcpy(entry.nodeName, device.nodeName, sizeof entry.nodeName);
    std::memcpy(entry.portName, device.portName, sizeof entry.portName);
    return entry;
}

// A device that is gone may keep its place in the list, as an entry that is not valid.
bool IsListed(const Port& port, const TargetProfile& device) {
    return Sees(port, device) ||
           (port.adapter->listsLostTargets != 0 && device.present == 0 && port.LinkUp() &&
            MaySee(port, device) && !AttachmentOf(port, device).withheld);
}

void TargetList(Exchange& exchange, const transport::SelectorRecord& selector) {
    const Port& port = exchange.GetPort();
    const Profile& profile = *port.fabric->profile;
    using List = properties::LegacyTargetListReply;
    exchange.StartReply(sizeof(List));
    exchange.Put(offsetof(List, selector), &selector, sizeof selector);
    uint16_t count = 0;
    for (uint32_t at = 0; at < profile.targetCount; ++at) {
        if (IsListed(port, profile.targets[at])) {
            const properties::LegacyTargetEntry entry = ListedDevice(port, profile.targets[at]);
            exchange.Put(offsetof(List, entries) + count++ * static_cast<uint32_t>(sizeof entry),
                         &entry, sizeof entry);
        }
    }
    exchange.Put(offsetof(List, count), &count, sizeof count);
}

// The masks of LUNs 0 to 255 of every target, in the form in which they are stored.
void LunList(Exchange& exchange, const transport::SelectorRecord&) {
    const Port& port = exchange.GetPort();
    exchange.StartReply(sizeof(persist::LunDataV1));
    persist::BlockHead head = {};
    head.version = persist::kLunVersion1;
    while (const TargetProfile* device = NthDevice(port, DeviceKind::Target, head.count)) {
        persist::LunRecordV1 record = {};
        std::memcpy(record.nodeName, device->nodeName, sizeof record.nodeName);
        std::memcpy(record.portName, device->portName, sizeof record.portName);
        std::memcpy(record.visible, AttachmentOf(port, *device).mask.bytes,
                    persist::kVersion1Luns / 8);
        exchange.Put(persist::BlockLength<persist::LunRecordV1>(head.count++), &record,
                     sizeof record);
    }
    exchange.Put(0, &head, sizeof head);
}

void ChipIdentity(Exchange& exchange, const transport::SelectorRecord& selector) {
    const AdapterProfile& adapter = *exchange.GetPort().adapter;
    properties::LegacyChipReply reply = {};
    reply.selector = selector;
    reply.vendorId = properties::kVendorId;
    reply.deviceId = adapter.deviceId;
    reply.pciCommand = kPciCommand;
    reply.pciStatus = kPciStatus;
    reply.revision = static_cast<uint8_t>(adapter.revision);
    reply.classWord = kFibreChannelClass;
    reply.subsystemVendorId = adapter.subsystemVendorId;
    reply.subsystemDeviceId = adapter.subsystemDeviceId;
    exchange.Reply(reply);
}

void Statistics(Exchange& exchange, const transport::SelectorRecord& selector) {
    statistics::LegacyStatisticsReply reply = {};
    reply.selector = selector;
    reply.counters = CountersOf(exchange.GetPort());
    exchange.Reply(reply);
}

struct SelectorRow {
    uint32_t selector;
    void (*answer)(Exchange& exchange, const transport::SelectorRecord& selector);
};
constexpr SelectorRow kSelectors[] = {
    {static_cast<uint32_t>(LegacySelector::AdapterInformation), AdapterInformation},
    {static_cast<uint32_t>(LegacySelector::LinkValue), LinkValue},
    {static_cast<uint32_t>(LegacySelector::TargetList), TargetList},
    {static_cast<uint32_t>(persist::LunSelector::LunList), LunList},
    {static_cast<uint32_t>(flash::LegacyNvramSelector::Settings), LegacyNvramSettings},
    {static_cast<uint32_t>(flash::LegacyNvramSelector::Tail), LegacyNvramTail},
    {static_cast<uint32_t>(LegacySelector::ChipIdentity), ChipIdentity},
    {static_cast<uint32_t>(statistics::LegacyStatisticsSelector::Statistics), Statistics},
    {static_cast<uint32_t>(statistics::LegacyMapSelector::PositionalMap), LegacyPositionalMap},
};

uint8_t PortType(Topology topology) {
    switch (topology) {
        case Topology::PointToPoint:
        case Topology::Fabric:
            return 1;
        case Topology::PrivateLoop:
        case Topology::PublicLoop:
            return 2;
        case Topology::Unknown:
            break;
    }
    return 0;
}

bool LegacyQuery(Exchange& exchange) {
    transport::SelectorRecord selector;
    if (!exchange.Read(selector)) {
        return false;
    }
    for (const SelectorRow& row : kSelectors) {
        if (selector.selector == row.selector) {
            row.answer(exchange, selector);
            return true;
        }
    }
    return false;
}

// Of the queries a current driver answers the target list alone.
bool LegacyTargetQuery(Exchange& exchange) {
    transport::SelectorRecord selector;
    if (!exchange.Read(selector) ||
        selector.selector != static_cast<uint32_t>(LegacySelector::TargetList)) {
        return false;
    }
    TargetList(exchange, selector);
    return true;
}

bool LegacyPortAndNode(Exchange& exchange) {
    const PortProfile& profile = *exchange.GetPort().profile;
    properties::LegacyPortAndNodeReply reply = {};
    std::memcpy(reply.worldWideName, profile.portName, sizeof reply.worldWideName);
    reply.portType = static_cast<uint8_t>(PortType(profile.topology) << 4);
    exchange.Reply(reply);
    return true;
}

constexpr PlainRow kPlainRequests[] = {
    {.code = command::LegacyQuery, .handle = LegacyQuery, .flags = WithinPort},
    {.code = command::LegacyPortAndNode, .handle = LegacyPortAndNode, .flags = WithinPort},
    // Applying target data takes this one of a current driver as well.
    {.code = command::LegacyQuery,
     .handle = LegacyTargetQuery,
     .flags = WithinPort,
     .generation = DriverGeneration::Extended},
};

}  // namespace

RequestRows LegacyRequests() {
    return {.plain = kPlainRequests};
}

}  // namespace vxemu
