// NVRAM blocks of the emulated ports: made from the profile, verified, taken over.
#pragma once

#include <cstdint>
#include <span>

#include "flash/nvram_variables.h"
#include "model/profile/profile.h"
#include "properties/chip_families.h"

namespace vxemu {

// Variables that an emulated port knows the meaning of, by their index in flash::kVariableTable.
namespace nvram_variable {
inline constexpr uint32_t kAdapterVersion = 1;
inline constexpr uint32_t kBlockVersion = 2;
inline constexpr uint32_t kFullLoginAfterLip = 16;
inline constexpr uint32_t kFramePayloadSize = 19;
inline constexpr uint32_t kMaxIocbs = 20;
inline constexpr uint32_t kExecutionThrottle = 21;
inline constexpr uint32_t kRetryCount = 22;
inline constexpr uint32_t kPortName = 24;  // and the seven behind it
inline constexpr uint32_t kLoginTimeout = 34;
inline constexpr uint32_t kNodeName = 35;
inline constexpr uint32_t kInitialMode = 44;
inline constexpr uint32_t kTape = 48;
inline constexpr uint32_t kDataRate = 57;
inline constexpr uint32_t kDisableBios = 58;
inline constexpr uint32_t kLipFullLogin = 67;
inline constexpr uint32_t kTargetReset = 68;
inline constexpr uint32_t kResetDelay = 81;
inline constexpr uint32_t kPortDownRetry = 82;
inline constexpr uint32_t kMaxLuns = 83;
inline constexpr uint32_t kNvme = 103;
inline constexpr uint32_t kLinkDownTimeout = 104;
inline constexpr uint32_t kSubsystemVendor = 133;
inline constexpr uint32_t kSubsystemDevice = 134;
}  // namespace nvram_variable

flash::BlockKind NvramKindOf(const properties::Chip& chip);

// Makes a block of BlockBytes(kind) with its checksum.
void FillNvram(const AdapterProfile& adapter, const PortProfile& port, flash::BlockKind kind,
               uint8_t* block);

// Signature and checksum of a block of one of the two sizes.
bool NvramHolds(std::span<const uint8_t> block);

// Gives the port the settings of a block: what the firmware does when it reads it.
void ApplyNvram(std::span<const uint8_t> block, PortProfile& port);

// Gives the port the settings of another, as far as a block would.
void CopySettings(const PortProfile& from, PortProfile& port);

}  // namespace vxemu
