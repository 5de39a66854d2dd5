// Byte layouts of the driver's replies about an adapter and its port, both driver generations. The
// library reads them, the emulated adapters fill them. Free of platform headers; little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

#include "transport/ext_ioctl.h"

namespace properties {

#pragma pack(push, 1)

// NodeProperties: the open probe, node record, beacon and vendor attribute queries.
struct NodeReply {
    uint8_t nodeName[8];
    char manufacturerAndSerial[128];  // manufacturer, '-', serial number; kFlagTextSerial
    char model[16];
    char modelDescription[16];
    uint8_t serialBytes[3];
    uint8_t reserved171[97];
    char driverVersion[32];
    char firmwareVersion[32];
    char optionRomVersion[32];
    uint16_t numberOfPorts;
    uint16_t adapterGeneration;
    uint8_t reserved368[288];
    uint32_t vendorSpecificId;
    uint32_t firmwareAttributes;
    uint32_t flags;
    uint8_t reserved668[28];
};
static_assert(sizeof(NodeReply) == 696);
static_assert(offsetof(NodeReply, manufacturerAndSerial) == 8);
static_assert(offsetof(NodeReply, model) == 136);
static_assert(offsetof(NodeReply, modelDescription) == 152);
static_assert(offsetof(NodeReply, serialBytes) == 168);
static_assert(offsetof(NodeReply, driverVersion) == 268);
static_assert(offsetof(NodeReply, firmwareVersion) == 300);
static_assert(offsetof(NodeReply, optionRomVersion) == 332);
static_assert(offsetof(NodeReply, numberOfPorts) == 364);
static_assert(offsetof(NodeReply, adapterGeneration) == 366);
static_assert(offsetof(NodeReply, vendorSpecificId) == 656);
static_assert(offsetof(NodeReply, firmwareAttributes) == 660);
static_assert(offsetof(NodeReply, flags) == 664);

// Separates manufacturer and serial number in NodeReply.
inline constexpr char kSerialSeparator = '-';

// ChipProperties.
struct ChipReply {
    uint16_t vendorId;
    uint16_t deviceId;
    uint16_t subsystemVendorId;
    uint16_t subsystemDeviceId;
    uint16_t revision;
    uint16_t classWord;
    uint32_t baseAddresses[4];
    uint16_t pciCommand;
    uint16_t pciStatus;
    uint8_t reserved32[18];
    uint16_t linkCapabilities;
    uint16_t linkStatus;
    uint8_t reserved54[2];
    uint32_t busLocation;
    uint8_t functionBits;  // PCI function number in the top three bits
    uint8_t flashRegionFlag;
    uint8_t flashRegionCode;
    uint8_t reserved63[17];
};
static_assert(sizeof(ChipReply) == 80);
static_assert(offsetof(ChipReply, deviceId) == 2);
static_assert(offsetof(ChipReply, baseAddresses) == 12);
static_assert(offsetof(ChipReply, pciCommand) == 28);
static_assert(offsetof(ChipReply, pciStatus) == 30);
static_assert(offsetof(ChipReply, linkCapabilities) == 50);
static_assert(offsetof(ChipReply, linkStatus) == 52);
static_assert(offsetof(ChipReply, busLocation) == 56);
static_assert(offsetof(ChipReply, functionBits) == 60);
static_assert(offsetof(ChipReply, flashRegionCode) == 62);

// What PortProperties and PortPropertiesV2 have in common: the first 52 bytes of both.
struct PortReplyBase {
    uint8_t portName[8];
    uint8_t portId[3];  // domain, area, port
    uint8_t reserved11;
    uint16_t role;      // 1 = initiator
    uint16_t state;     // 0 online, 1 offline, 2 link down
    uint16_t topology;  // 0 unknown, 1 and 4 point to point or fabric, 2 private loop, 3 loop
    uint16_t discoveredDevices;
    uint16_t reserved20;
    uint16_t discoveredTargets;
    uint8_t reserved24[6];
    uint8_t supportedFc4;  // bit 0 = FCP, bit 1 = IP
    uint8_t activeFc4;
    uint8_t reserved32[8];
    uint8_t supportedSpeeds;  // the highest speed's code
    uint8_t currentSpeed;
    uint16_t maxFrameSize;
    uint16_t bbCredits;
    uint16_t speedFlags;  // bit 0: the lowest speed of the set is not supported
    uint16_t npivMaximum;
    uint16_t npivInUse;
};
static_assert(sizeof(PortReplyBase) == 52);
static_assert(offsetof(PortReplyBase, portId) == 8);
static_assert(offsetof(PortReplyBase, role) == 12);
static_assert(offsetof(PortReplyBase, state) == 14);
static_assert(offsetof(PortReplyBase, topology) == 16);
static_assert(offsetof(PortReplyBase, discoveredDevices) == 18);
static_assert(offsetof(PortReplyBase, discoveredTargets) == 22);
static_assert(offsetof(PortReplyBase, supportedFc4) == 30);
static_assert(offsetof(PortReplyBase, supportedSpeeds) == 40);
static_assert(offsetof(PortReplyBase, currentSpeed) == 41);
static_assert(offsetof(PortReplyBase, maxFrameSize) == 42);
static_assert(offsetof(PortReplyBase, bbCredits) == 44);
static_assert(offsetof(PortReplyBase, speedFlags) == 46);
static_assert(offsetof(PortReplyBase, npivMaximum) == 48);
static_assert(offsetof(PortReplyBase, npivInUse) == 50);

struct PortReply {
    PortReplyBase base;
    uint8_t reserved52[4];
};
static_assert(sizeof(PortReply) == 56);

struct PortReplyV2 {
    PortReplyBase base;
    uint16_t maxTargets;
    uint16_t maxLunsPerTarget;
    uint16_t executionThrottle;
    uint16_t reserved58;
    uint16_t loginTimeout;
    uint16_t linkDownTimeout;
    uint16_t portDownRetry;
    uint16_t reserved66;
    uint8_t transceiverType[2];
    uint8_t reserved70[2];
    uint32_t featureMask;
    uint8_t fecActive;
    uint8_t protocolFlags;  // bit 2: NVMe, bit 1: FCP
    uint8_t trunkState;
    uint8_t diagnosticState;
    uint8_t reserved80[28];
};
static_assert(sizeof(PortReplyV2) == 108);
static_assert(offsetof(PortReplyV2, maxTargets) == 52);
static_assert(offsetof(PortReplyV2, loginTimeout) == 60);
static_assert(offsetof(PortReplyV2, transceiverType) == 68);
static_assert(offsetof(PortReplyV2, featureMask) == 72);
static_assert(offsetof(PortReplyV2, fecActive) == 76);
static_assert(offsetof(PortReplyV2, protocolFlags) == 77);
static_assert(offsetof(PortReplyV2, trunkState) == 78);
static_assert(offsetof(PortReplyV2, diagnosticState) == 79);

// DriverProperties: also the discovery probe, which looks at the envelope's status alone.
struct DriverReply {
    char version[128];  // the first 32 bytes are handed on
    uint16_t driverModel;
    uint16_t driverModelRevision;
    uint16_t maxScatterGather;
    uint8_t reserved134[2];
    uint64_t maxTransferLength;
    uint16_t maxQueueDepth;
    uint16_t interruptMode;
    uint32_t numberOfPorts;
    uint8_t buildText[16];
    uint32_t buildNumber;
    uint8_t reserved172[28];
};
static_assert(sizeof(DriverReply) == 200);
static_assert(offsetof(DriverReply, driverModel) == 128);
static_assert(offsetof(DriverReply, maxScatterGather) == 132);
static_assert(offsetof(DriverReply, maxTransferLength) == 136);
static_assert(offsetof(DriverReply, maxQueueDepth) == 144);
static_assert(offsetof(DriverReply, numberOfPorts) == 148);
static_assert(offsetof(DriverReply, buildText) == 152);
static_assert(offsetof(DriverReply, buildNumber) == 168);

// FirmwareProperties.
struct FirmwareReply {
    char version[128];  // the first 32 bytes are handed on
    uint32_t attributes;
    uint8_t reserved132[4];
    uint32_t activationAttributes;
    uint8_t reserved140[60];
};
static_assert(sizeof(FirmwareReply) == 200);
static_assert(offsetof(FirmwareReply, attributes) == 128);
static_assert(offsetof(FirmwareReply, activationAttributes) == 136);

// Legacy queries: the reply begins with the selector record that asked for it.
enum class LegacySelector : uint32_t {
    AdapterInformation = 5,
    LinkValue = 8,
    TargetList = 11,
    ChipIdentity = 16,
};

struct LegacyAdapterReply {  // AdapterInformation, 36 bytes
    transport::SelectorRecord selector;
    uint8_t portId[3];  // domain, area, port
    uint8_t reserved15;
    uint8_t firmwareVersion[3];  // major, minor, patch
    uint8_t reserved19;
    uint8_t optionRomVersion[4];  // version byte and three more
    uint8_t serialBytes[3];
    uint8_t reserved27[9];
};
static_assert(sizeof(LegacyAdapterReply) == 36);
static_assert(offsetof(LegacyAdapterReply, portId) == 12);

struct LegacyLinkReply {  // LinkValue, 16 bytes
    transport::SelectorRecord selector;
    uint16_t linkValue;  // kLegacyLinkUp and above: link up
    uint16_t reserved14;
};
static_assert(sizeof(LegacyLinkReply) == 16);
inline constexpr uint16_t kLegacyLinkUp = 0x8000;

struct LegacyTargetEntry {  // 32 bytes
    uint16_t loopId;        // 0xFFFF = none; its low byte is the flag byte: bit 0 = valid
    uint8_t bus;
    uint8_t target;
    uint8_t reserved4[8];
    uint8_t portId[3];  // domain, area, port
    uint8_t reserved15;
    uint8_t nodeName[8];
    uint8_t portName[8];
};
static_assert(sizeof(LegacyTargetEntry) == 32);
static_assert(offsetof(LegacyTargetEntry, portId) == 12);
static_assert(offsetof(LegacyTargetEntry, nodeName) == 16);
static_assert(offsetof(LegacyTargetEntry, portName) == 24);

inline constexpr uint32_t kLegacyTargetEntries = 1024;

struct LegacyTargetListReply {  // TargetList, 32812 bytes
    transport::SelectorRecord selector;
    uint16_t reserved12;
    uint16_t count;
    uint8_t reserved16[28];
    LegacyTargetEntry entries[kLegacyTargetEntries];
};
static_assert(sizeof(LegacyTargetListReply) == 32812);
static_assert(offsetof(LegacyTargetListReply, count) == 14);
static_assert(offsetof(LegacyTargetListReply, entries) == 44);

inline constexpr uint8_t kLegacyTargetValid = 0x01;

struct LegacyChipReply {  // ChipIdentity, 416 bytes: the PCI configuration header from byte 12
    transport::SelectorRecord selector;
    uint16_t vendorId;
    uint16_t deviceId;
    uint16_t pciCommand;
    uint16_t pciStatus;
    uint8_t revision;
    uint8_t programmingInterface;
    uint16_t classWord;
    uint8_t reserved24[32];
    uint16_t subsystemVendorId;
    uint16_t subsystemDeviceId;
    uint8_t reserved60[356];
};
static_assert(sizeof(LegacyChipReply) == 416);
static_assert(offsetof(LegacyChipReply, vendorId) == 12);
static_assert(offsetof(LegacyChipReply, revision) == 20);
static_assert(offsetof(LegacyChipReply, classWord) == 22);
static_assert(offsetof(LegacyChipReply, subsystemVendorId) == 56);

struct LegacyPortAndNodeReply {  // LegacyPortAndNode, 64 bytes
    uint8_t reserved0[12];
    uint8_t worldWideName[8];  // serves as node and as port name
    uint8_t portType;          // bits 4..6: 1 = point to point or fabric, 2 = loop
    uint8_t reserved21[43];
};
static_assert(sizeof(LegacyPortAndNodeReply) == 64);
static_assert(offsetof(LegacyPortAndNodeReply, worldWideName) == 12);

// EventDelivery.
struct EventDeliveryRequest {
    uint32_t mask;  // kAllEvents or 0
    uint32_t reserved4;
};
static_assert(sizeof(EventDeliveryRequest) == 8);

inline constexpr uint32_t kAllEvents = 0xFFFFFFFF;

// FetchEvents: the reply is an array of these.
struct DriverEvent {
    uint32_t code;
    uint32_t data[3];
};
static_assert(sizeof(DriverEvent) == 16);

#pragma pack(pop)

}  // namespace properties
