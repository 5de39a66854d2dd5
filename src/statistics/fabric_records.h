// Byte layouts of the requests about the fabric of a port. The library sends and reads them, the
// emulated adapters answer them. Free of platform headers; little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hxfabric.h"
#include "properties/target_address.h"
#include "transport/ext_ioctl.h"

namespace statistics {

// PositionalMap.
static_assert(sizeof(HX_POSITIONAL_MAP) == 128);
static_assert(offsetof(HX_POSITIONAL_MAP, alPa) == 1);
static_assert(sizeof(HX_REMOTE_PORT) == 128);
static_assert(offsetof(HX_REMOTE_PORT, state) == 19);
static_assert(offsetof(HX_REMOTE_PORT, roles) == 20);
static_assert(offsetof(HX_REMOTE_PORT, bus) == 24);
static_assert(offsetof(HX_REMOTE_PORT, maxFrameSize) == 30);
static_assert(offsetof(HX_REMOTE_PORT, speed) == 36);
static_assert(offsetof(HX_REMOTE_PORT, temperature) == 40);
static_assert(offsetof(HX_REMOTE_PORT, transceiverFlags) == 50);
static_assert(offsetof(HX_REMOTE_PORT, errors) == 52);
static_assert(offsetof(HX_REMOTE_PORT, correctedFecBlocks) == 76);
static_assert(offsetof(HX_REMOTE_PORT, secondsOnline) == 84);
static_assert(offsetof(HX_REMOTE_PORT, symbolicName) == 88);
static_assert(sizeof(HX_SECURE_PORT) == 72);
static_assert(offsetof(HX_SECURE_PORT, state) == 19);
static_assert(offsetof(HX_SECURE_PORT, rejectReason) == 23);
static_assert(offsetof(HX_SECURE_PORT, txSpi) == 24);
static_assert(offsetof(HX_SECURE_PORT, txBytes) == 32);
static_assert(offsetof(HX_SECURE_PORT, rekeys) == 48);
static_assert(offsetof(HX_SECURE_PORT, framesRefused) == 60);
static_assert(sizeof(HX_TARGET_LINK_SPEED) == 8);
static_assert(offsetof(HX_TARGET_LINK_SPEED, flags) == 6);
// LunQos: an AddressBlock in. LunQosEnable: a byte each way.
static_assert(sizeof(HX_LUN_QOS) == 256);
static_assert(sizeof(HX_NPIV_ATTRIBUTES) == 56);
static_assert(offsetof(HX_NPIV_ATTRIBUTES, count) == 6);
static_assert(offsetof(HX_NPIV_ATTRIBUTES, version) == 12);
static_assert(offsetof(HX_NPIV_ATTRIBUTES, portName) == 16);
static_assert(offsetof(HX_NPIV_ATTRIBUTES, fabricName) == 32);
static_assert(offsetof(HX_NPIV_ATTRIBUTES, portId) == 40);
static_assert(offsetof(HX_NPIV_ATTRIBUTES, fdiscs) == 44);
static_assert(sizeof(HX_VIRTUAL_PORT) == 56);
static_assert(offsetof(HX_VIRTUAL_PORT, state) == 19);
static_assert(offsetof(HX_VIRTUAL_PORT, index) == 20);
static_assert(offsetof(HX_VIRTUAL_PORT, targets) == 24);
static_assert(offsetof(HX_VIRTUAL_PORT, rejectReason) == 26);
static_assert(offsetof(HX_VIRTUAL_PORT, secondsOnline) == 28);
static_assert(offsetof(HX_VIRTUAL_PORT, symbolicName) == 32);
static_assert(sizeof(HX_NVME_PORT) == 64);
static_assert(offsetof(HX_NVME_PORT, roles) == 19);
static_assert(offsetof(HX_NVME_PORT, controllers) == 22);
static_assert(offsetof(HX_NVME_PORT, namespaces) == 24);
static_assert(offsetof(HX_NVME_PORT, readRequests) == 32);
static_assert(offsetof(HX_NVME_PORT, lsErrors) == 56);
// NvmeTargetInfo: a DESTINATIONADDRESS in, with its type as the driver numbers it.
static_assert(sizeof(HX_NVME_TARGET) == 1024);
static_assert(offsetof(HX_NVME_TARGET, kind) == 19);
static_assert(offsetof(HX_NVME_TARGET, controllerId) == 24);
static_assert(offsetof(HX_NVME_TARGET, state) == 26);
static_assert(offsetof(HX_NVME_TARGET, namespaces) == 28);
static_assert(offsetof(HX_NVME_TARGET, ioQueues) == 40);
static_assert(offsetof(HX_NVME_TARGET, keepAlive) == 44);
static_assert(offsetof(HX_NVME_TARGET, associationId) == 56);
static_assert(offsetof(HX_NVME_TARGET, subsystemNqn) == 64);
static_assert(offsetof(HX_NVME_TARGET, hostNqn) == 320);
static_assert(offsetof(HX_NVME_TARGET, hostId) == 576);
static_assert(offsetof(HX_NVME_TARGET, serial) == 592);
static_assert(offsetof(HX_NVME_TARGET, model) == 612);
static_assert(offsetof(HX_NVME_TARGET, firmware) == 652);
static_assert(sizeof(HX_NVME_NAMESPACE) == 64);
static_assert(offsetof(HX_NVME_NAMESPACE, blocks) == 8);
static_assert(offsetof(HX_NVME_NAMESPACE, eui64) == 32);
static_assert(offsetof(HX_NVME_NAMESPACE, nguid) == 40);
static_assert(offsetof(HX_NVME_NAMESPACE, anaGroup) == 56);
static_assert(offsetof(HX_NVME_NAMESPACE, anaState) == 60);
static_assert(offsetof(HX_NVME_NAMESPACE, metadata) == 62);

inline constexpr uint32_t kListVersion = 1;

#pragma pack(push, 1)

// LegacyQuery of the positional map.
enum class LegacyMapSelector : uint32_t { PositionalMap = 10 };
struct LegacyMapReply {
    transport::SelectorRecord selector;
    uint8_t reserved12[4];
    HX_POSITIONAL_MAP map;
};
static_assert(sizeof(LegacyMapReply) == 144);
static_assert(offsetof(LegacyMapReply, map) == 16);

// What lists begin with: the page begins with entry first, of total.
struct ListRequest {
    uint32_t version;
    uint32_t first;
    uint8_t reserved8[8];
};
static_assert(sizeof(ListRequest) == 16);
struct ListHead {
    uint32_t version;
    uint32_t total;
    uint32_t first;
    uint32_t count;
};
static_assert(sizeof(ListHead) == 16);
static_assert(offsetof(ListHead, count) == 12);

// RemotePortInfo.
struct RemotePortRequest {
    ListRequest list;
    uint8_t reserved16[16];
};
static_assert(sizeof(RemotePortRequest) == 32);
struct RemotePortReply {
    ListHead head;
    uint8_t reserved16[16];
    HX_REMOTE_PORT entries[256];
};
static_assert(sizeof(RemotePortReply) == 32800);
static_assert(offsetof(RemotePortReply, entries) == 32);

// SecurePortInfo: there is more behind a full page.
enum class SecurePortOperation : uint8_t { First = 0, Behind = 1 };
struct SecurePortRequest {
    uint8_t operation;    // SecurePortOperation
    HX_SECURE_PORT last;  // of the page before
};
static_assert(sizeof(SecurePortRequest) == 73);
struct SecurePortReply {
    uint8_t count;
    HX_SECURE_PORT entries[84];
};
static_assert(sizeof(SecurePortReply) == 6049);

// TargetLinkSpeed and SetTargetLinkSpeed, both ways; a set gives the speed alone.
struct LinkSpeedRequest {
    properties::AddressBlock target;
    HX_TARGET_LINK_SPEED record;
    uint8_t reserved24[10];
};
static_assert(sizeof(LinkSpeedRequest) == 34);
static_assert(offsetof(LinkSpeedRequest, record) == 16);

// SetLunQos; the levels in force come back.
struct SetQosRequest {
    properties::AddressBlock target;
    HX_LUN_QOS qos;
};
static_assert(sizeof(SetQosRequest) == 272);

// NpivAttributes, both ways; of the input version and first alone count. The total is inUse.
struct NpivPage {
    HX_NPIV_ATTRIBUTES head;
    HX_VIRTUAL_PORT entries[64];
};
static_assert(sizeof(NpivPage) == 3640);
static_assert(offsetof(NpivPage, entries) == 56);

// NvmeInfo: a ListRequest in.
struct NvmePortReply {
    ListHead head;
    HX_NVME_PORT entries[64];
};
static_assert(sizeof(NvmePortReply) == 4112);

// NvmeNamespaceInfo: a DESTINATIONADDRESS in, with its type as the driver numbers it; the LUN's low
// byte is the controller, its high byte the number of the page.
inline constexpr uint32_t kNamespacesOnPage = 63;
inline constexpr uint32_t kNamespacePages = 256;
struct NvmeNamespaceReply {
    ListHead head;
    uint8_t reserved16[48];
    HX_NVME_NAMESPACE entries[kNamespacesOnPage];
};
static_assert(sizeof(NvmeNamespaceReply) == 4096);
static_assert(offsetof(NvmeNamespaceReply, entries) == 64);

#pragma pack(pop)

}  // namespace statistics
