// Byte layouts of flash requests. The library sends them, the emulated adapters answer them. Free
// of platform headers; little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

#include "transport/ext_ioctl.h"

namespace flash {

inline constexpr uint32_t kChunkBytes = 65536;  // most that one flash request moves

#pragma pack(push, 1)

// FlashLayout and FlashLayoutEx.
struct LayoutHead {
    uint32_t bufferSize;
    uint32_t count;  // in: kAskedRegions; out: regions of the flash
};
struct DriverRegion {
    uint16_t code;
    uint8_t flags;
    uint8_t reserved3;
    uint32_t size;   // bytes
    uint32_t start;  // first byte in the flash
    uint32_t end;    // last byte
};
static_assert(sizeof(DriverRegion) == 16);
static_assert(offsetof(DriverRegion, flags) == 2);
static_assert(offsetof(DriverRegion, size) == 4);

inline constexpr uint32_t kAskedRegions = 255;

struct LayoutTable {
    LayoutHead head;
    DriverRegion regions[256];
};
static_assert(sizeof(LayoutTable) == 4104);
struct LayoutTableEx {
    LayoutHead head;
    DriverRegion regions[383];
    uint8_t reserved[8];
};
static_assert(sizeof(LayoutTableEx) == 6144);

// FlashRead and FlashWrite with a region code: which piece of the region.
struct ChunkRequest {
    uint16_t kib;
    uint16_t index;
};
static_assert(sizeof(ChunkRequest) == 4);

// FlashRead and FlashWrite with kByOffset as sub-code: which bytes of the flash.
struct OffsetRequest {
    uint32_t length;
    uint32_t offset;
};
static_assert(sizeof(OffsetRequest) == 8);
inline constexpr uint16_t kByOffset = 0xFFFF;

// RestartFirmware.
enum class Restart : uint8_t {
    Activate = 3,     // start the written firmware
    ReloadNvram = 7,  // read NVRAM anew
};

// ActiveRegions: 37 bytes out and back.
inline constexpr uint8_t kActiveRegionsFill = '3';
inline constexpr uint32_t kActiveRegionsReturned = 6;
inline constexpr uint32_t kActiveBankByte = 2;
inline constexpr uint8_t kSecondBank = 2;
struct ActiveRegionsRecord {
    uint8_t bytes[37];
};

struct LockdownRecord {
    uint8_t bytes[64];
};

// SecureFlashState.
struct SecureStateRecord {
    uint8_t flags;  // bit 0: secure updates are in force
    uint8_t reserved[7];
};
static_assert(sizeof(SecureStateRecord) == 8);
inline constexpr uint8_t kSecureInForce = 1;

// SecureFlashHeader.
inline constexpr uint32_t kSecureImageHead = 512;
struct SecureHeaderRecord {
    uint32_t region;
    uint32_t imageSize;
    uint32_t crc;  // CRC-32 of the image
    uint8_t reserved12[2];
    uint8_t imageHead[kSecureImageHead];  // zero where the image is shorter
};
static_assert(sizeof(SecureHeaderRecord) == 526);
static_assert(offsetof(SecureHeaderRecord, imageHead) == 14);

// SecureFlashStatus.
struct SecureStatusRecord {
    uint32_t stage;
    uint32_t result;
    uint8_t reserved[32];
};
static_assert(sizeof(SecureStatusRecord) == 40);
enum class SecureResult : uint32_t { Accepted = 0, SignatureRefused = 1 };

// I2cRead and I2cWrite, out and back.
inline constexpr uint32_t kTwoWireData = 256;
inline constexpr uint16_t kTwoWireNoData = 1u << 0;  // option: no data phase
struct TwoWireRecord {
    uint16_t device;
    uint16_t length;
    uint16_t offset;
    uint16_t options;
    uint8_t data[kTwoWireData];
    uint16_t deviceStatus;
};
static_assert(sizeof(TwoWireRecord) == 266);
static_assert(offsetof(TwoWireRecord, data) == 8);
static_assert(offsetof(TwoWireRecord, deviceStatus) == 264);

// SfpRead: both pages of the transceiver (SFF-8472), or as much of them as is asked for.
struct TransceiverMemory {
    uint8_t identity[256];     // device 0xA0
    uint8_t diagnostics[256];  // device 0xA2
};
static_assert(sizeof(TransceiverMemory) == 512);

// LoadSfpFirmware: the record, then a piece of the image; its result comes back.
inline constexpr uint32_t kTransceiverPiece = 32768;
struct TransceiverLoadRecord {
    uint32_t flags;
    uint32_t imageSize;
    uint32_t length;  // of this piece
    uint32_t offset;
    uint8_t reserved16[16];
};
static_assert(sizeof(TransceiverLoadRecord) == 32);
struct TransceiverLoadReply {
    uint32_t result;
    uint8_t reserved4[28];
};
static_assert(sizeof(TransceiverLoadReply) == 32);
inline constexpr uint32_t kTransceiverFirst = 1u << 0;
inline constexpr uint32_t kTransceiverLast = 1u << 1;
enum class TransceiverResult : uint32_t { Accepted = 0, Incompatible = 1 };  // else: it stopped

// AuxiliaryFirmware, sub-code 3: the record, then a segment of the image; both come back.
inline constexpr uint32_t kCompanionSegment = 3952;
inline constexpr uint32_t kCompanionLastSegment = 0x4000;
struct CompanionSegmentRecord {
    uint32_t flags;
    uint32_t segmentCount;  // 1
    uint32_t firmwareVersion;
    uint32_t exchangeAddress;  // 0 in the first segment; then what the first reply said
    uint32_t totalSize;
    uint32_t segmentSize;
    uint32_t offset;
};
static_assert(sizeof(CompanionSegmentRecord) == 28);
static_assert(offsetof(CompanionSegmentRecord, exchangeAddress) == 12);

// Head of a companion chip's firmware image.
struct CompanionImageHead {
    uint8_t reserved[8];
    uint32_t version;
};
static_assert(sizeof(CompanionImageHead) == 12);

// AuxiliaryFirmware, sub-code 4: the record, then room for a piece of the information.
inline constexpr uint32_t kCompanionPiece = 32768;
struct CompanionInformationRecord {
    uint32_t flags;
    uint32_t total;  // room of the caller; back: size of the information
    uint32_t piece;
    uint32_t offset;
    uint32_t returned;  // back: bytes of this piece
};
static_assert(sizeof(CompanionInformationRecord) == 20);

// NVRAM of a driver below 7.05.03: the two parts that it writes and reads on their own.
inline constexpr uint32_t kLegacySettingsOffset = 6;
inline constexpr uint32_t kLegacySettingsBytes = 64;
inline constexpr uint32_t kLegacyTailOffset = 70;
inline constexpr uint32_t kLegacyTailBytes = 16;
inline constexpr uint32_t kLegacyPartsEnd = kLegacyTailOffset + kLegacyTailBytes;
static_assert(kLegacySettingsOffset + kLegacySettingsBytes == kLegacyTailOffset);

// The legacy query's items for them, numbered as their write codes.
enum class LegacyNvramSelector : uint32_t { Settings = 13, Tail = 14 };
struct LegacySettingsReply {
    transport::SelectorRecord selector;
    uint8_t bytes[kLegacySettingsBytes];
};
static_assert(sizeof(LegacySettingsReply) == 76);
struct LegacyTailReply {
    transport::SelectorRecord selector;
    uint8_t bytes[kLegacyTailBytes];
};
static_assert(sizeof(LegacyTailReply) == 28);

#pragma pack(pop)

}  // namespace flash
