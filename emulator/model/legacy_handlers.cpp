// Plain requests of a legacy driver.
#include <cstring>

#include "model/bytes.h"
#include "model/handlers.h"
#include "model/pci_header.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"

namespace vxemu {
namespace {

using properties::LegacySelector;

constexpr uint16_t kLinkUpValue = 0x8000;

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
    reply.linkValue = exchange.GetPort().LinkUp() ? kLinkUpValue : 0;
    exchange.Reply(reply);
}

// A device's names follow from the port's own and the device's place in the list. Loop
// identifiers are odd while the device is there (bit 0 is the valid flag), even once it is gone.
properties::LegacyTargetEntry ListedDevice(const PortProfile& profile, uint32_t place,
                                           bool present) {
    properties::LegacyTargetEntry entry = {};
    entry.loopId = static_cast<uint16_t>(2 * place + (present ? 1 : 0));
    entry.target = static_cast<uint8_t>(place);
    entry.portId[0] = profile.portId[0];
    entry.portId[1] = profile.portId[1];
    entry.portId[2] = static_cast<uint8_t>(0x10 + place);
    std::memcpy(entry.nodeName, profile.nodeName, sizeof entry.nodeName);
    std::memcpy(entry.portName, profile.portName, sizeof entry.portName);
    entry.nodeName[7] = static_cast<uint8_t>(place + 1);
    entry.portName[7] = static_cast<uint8_t>(place + 1);
    return entry;
}

void TargetList(Exchange& exchange, const transport::SelectorRecord& selector) {
    const Port& port = exchange.GetPort();
    const PortProfile& profile = *port.profile;
    const uint32_t present = port.LinkUp() ? profile.discoveredDevices : 0u;
    const uint32_t stale = port.LinkUp() ? profile.staleDevices : 0u;
    const auto count = static_cast<uint16_t>(present + stale);

    using List = properties::LegacyTargetListReply;
    exchange.StartReply(sizeof(List));
    exchange.Put(offsetof(List, selector), &selector, sizeof selector);
    exchange.Put(offsetof(List, count), &count, sizeof count);
    for (uint32_t place = 0; place < count; ++place) {
        const properties::LegacyTargetEntry entry = ListedDevice(profile, place, place < present);
        exchange.Put(offsetof(List, entries) + place * static_cast<uint32_t>(sizeof entry), &entry,
                     sizeof entry);
    }
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

struct SelectorRow {
    LegacySelector selector;
    void (*answer)(Exchange& exchange, const transport::SelectorRecord& selector);
};
constexpr SelectorRow kSelectors[] = {
    {LegacySelector::AdapterInformation, AdapterInformation},
    {LegacySelector::LinkValue, LinkValue},
    {LegacySelector::TargetList, TargetList},
    {LegacySelector::ChipIdentity, ChipIdentity},
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

}  // namespace

bool LegacyQuery(Exchange& exchange) {
    transport::SelectorRecord selector;
    if (!exchange.Read(selector)) {
        return false;
    }
    for (const SelectorRow& row : kSelectors) {
        if (selector.selector == static_cast<uint32_t>(row.selector)) {
            row.answer(exchange, selector);
            return true;
        }
    }
    return false;
}

bool LegacyPortAndNode(Exchange& exchange) {
    const PortProfile& profile = *exchange.GetPort().profile;
    properties::LegacyPortAndNodeReply reply = {};
    std::memcpy(reply.worldWideName, profile.portName, sizeof reply.worldWideName);
    reply.portType = static_cast<uint8_t>(PortType(profile.topology) << 4);
    exchange.Reply(reply);
    return true;
}

}  // namespace vxemu
