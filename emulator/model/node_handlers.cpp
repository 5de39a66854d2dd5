// Requests about the adapter: node, driver, firmware and chip.
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/bytes/pci_header.h"
#include "model/handlers.h"
#include "model/health/beacon.h"
#include "model/node_flags.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

// Every port has its own driver instance, which speaks for that port alone.
constexpr uint16_t kPortsPerInstance = 1;

uint16_t GenerationOf(uint16_t deviceId) {
    const bool oldest = properties::ChipOf(deviceId).Has(properties::ChipTrait::NoCtNoRnid);
    return oldest ? 2 : 1;
}

DriverStatus NodeProperties(Exchange& exchange) {
    Port& port = exchange.GetPort();
    const AdapterProfile& adapter = *port.adapter;
    BeaconPart beacon;
    const bool asksForBeacon =
        adapter.generation == DriverGeneration::Extended && ReadBeacon(exchange, beacon);
    if (asksForBeacon) {
        if (const DriverStatus status = AnswerBeacon(port, beacon);
            status != DriverStatus::Success) {
            return status;
        }
    }
    if (exchange.Ext().resyncFlag != 0) {
        ++port.resyncs;
    }
    properties::NodeReply reply = {};
    std::memcpy(reply.nodeName, port.profile->nodeName, sizeof reply.nodeName);
    if ((adapter.nodeFlags & kNodeFlagTextSerial) != 0) {
        char* text = reply.manufacturerAndSerial;
        const size_t length = std::strlen(adapter.manufacturer);
        std::memcpy(text, adapter.manufacturer, length);
        text[length] = properties::kSerialSeparator;
        CopyText(text + length + 1, sizeof reply.manufacturerAndSerial - length - 1,
                 adapter.serial);
    }
    CopyOpenText(reply.model, adapter.model);
    CopyOpenText(reply.modelDescription, adapter.description);
    std::memcpy(reply.serialBytes, adapter.serialBytes, sizeof reply.serialBytes);
    CopyText(reply.driverVersion, adapter.driverVersion);
    CopyText(reply.firmwareVersion, adapter.firmwareVersion);
    CopyText(reply.optionRomVersion, adapter.optionRomVersion);
    reply.numberOfPorts = kPortsPerInstance;
    reply.adapterGeneration = GenerationOf(adapter.deviceId);
    reply.vendorSpecificId = adapter.vendorSpecificId;
    reply.firmwareAttributes = adapter.firmwareAttributes;
    reply.flags = adapter.nodeFlags;
    exchange.Reply(reply);
    if (asksForBeacon) {
        PutBeacon(exchange, beacon);
    }
    return DriverStatus::Success;
}

DriverStatus DriverProperties(Exchange& exchange) {
    const AdapterProfile& adapter = *exchange.GetPort().adapter;
    properties::DriverReply reply = {};
    CopyText(reply.version, adapter.driverVersion);
    reply.driverModel = 1;
    reply.maxScatterGather = 1024;
    reply.maxTransferLength = 16u * 1024 * 1024;
    reply.maxQueueDepth = 2048;
    reply.interruptMode = 2;  // MSI-X
    reply.numberOfPorts = kPortsPerInstance;
    std::memcpy(reply.buildText, adapter.driverBuild, sizeof reply.buildText);
    reply.buildNumber = adapter.driverBuildNumber;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus FirmwareProperties(Exchange& exchange) {
    const AdapterProfile& adapter = *exchange.GetPort().adapter;
    properties::FirmwareReply reply = {};
    CopyText(reply.version, adapter.firmwareVersion);
    reply.attributes = adapter.firmwareAttributes;
    reply.activationAttributes = adapter.activationAttributes;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus ChipProperties(Exchange& exchange) {
    const AdapterProfile& adapter = *exchange.GetPort().adapter;
    const PortProfile& profile = *exchange.GetPort().profile;
    properties::ChipReply reply = {};
    reply.vendorId = properties::kVendorId;
    reply.deviceId = adapter.deviceId;
    reply.subsystemVendorId = adapter.subsystemVendorId;
    reply.subsystemDeviceId = adapter.subsystemDeviceId;
    reply.revision = adapter.revision;
    reply.classWord = kFibreChannelClass;
    reply.baseAddresses[0] = 0xF0000004u + 0x10000u * profile.pciFunction;  // 64-bit memory
    reply.pciCommand = kPciCommand;
    reply.pciStatus = kPciStatus;
    reply.linkCapabilities = 0x0083;  // 8 GT/s, 8 lanes
    reply.linkStatus = 0x0083;
    reply.busLocation = static_cast<uint32_t>(adapter.pciBus) * 256 + adapter.pciDevice;
    reply.functionBits = static_cast<uint8_t>(profile.pciFunction << 5);
    reply.flashRegionFlag = profile.flashRegionFlag;
    reply.flashRegionCode = profile.flashRegionCode;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::NodeProperties, .handle = NodeProperties, .flags = LegacyToo | WithinPort},
    {.command = command::DriverProperties,
     .handle = DriverProperties,
     .flags = LegacyToo | Bare | WithinPort},
    {.command = command::FirmwareProperties, .handle = FirmwareProperties, .flags = WithinPort},
    {.command = command::ChipProperties, .handle = ChipProperties, .flags = LegacyToo | WithinPort},
};

}  // namespace

RequestRows NodeRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
