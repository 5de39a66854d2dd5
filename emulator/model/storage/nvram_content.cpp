#include "model/storage/nvram_content.h"

#include <cstring>

#include "flash/region_rules.h"

namespace vxemu {
namespace {

using flash::BlockKind;
namespace variable = nvram_variable;

struct UsualRow {
    uint32_t variable;
    uint32_t value;
};
constexpr UsualRow kUsual[] = {
    {variable::kAdapterVersion, 1}, {variable::kBlockVersion, 1}, {variable::kFullLoginAfterLip, 1},
    {variable::kMaxIocbs, 256},     {variable::kRetryCount, 8},   {variable::kInitialMode, 2},
    {variable::kTape, 1},           {variable::kDataRate, 2},     {variable::kDisableBios, 1},
    {variable::kLipFullLogin, 1},   {variable::kTargetReset, 1},  {variable::kResetDelay, 5},
};

// A setting that stands both in NVRAM and in the port's properties.
struct SettingRow {
    uint32_t variable;
    uint16_t PortProfile::*member;
};
constexpr SettingRow kSettings[] = {
    {variable::kFramePayloadSize, &PortProfile::maxFrameSize},
    {variable::kExecutionThrottle, &PortProfile::executionThrottle},
    {variable::kLoginTimeout, &PortProfile::loginTimeout},
    {variable::kPortDownRetry, &PortProfile::portDownRetry},
    {variable::kMaxLuns, &PortProfile::maxLunsPerTarget},
    {variable::kLinkDownTimeout, &PortProfile::linkDownTimeout},
};

constexpr uint8_t kProtocolNvme = 0x04;

// Families of a classic block, by the chip's letter.
uint32_t FamilyNumber(const properties::Chip& chip) {
    switch (chip.family) {
        case 'P':
            return 1;
        case 'Q':
            return 2;
        default:
            return 9;
    }
}

BlockKind KindOf(std::span<const uint8_t> block) {
    return block.size() == flash::kExtendedBlock ? BlockKind::Extended : BlockKind::Classic;
}

}  // namespace

BlockKind NvramKindOf(const properties::Chip& chip) {
    return flash::HasPortRegions(chip) ? BlockKind::Extended : BlockKind::Classic;
}

void FillNvram(const AdapterProfile& adapter, const PortProfile& port, BlockKind kind,
               uint8_t* bytes) {
    const std::span<uint8_t> block(bytes, flash::BlockBytes(kind));
    std::memset(bytes, 0, block.size());
    const auto set = [&](uint32_t variable, uint32_t value) {
        flash::SetVariable(block, kind, variable, value);
    };
    uint32_t signature;
    std::memcpy(&signature, formats::kNvramSignature, sizeof signature);
    set(flash::kSignatureVariable, signature);
    for (const UsualRow& row : kUsual) {
        set(row.variable, row.value);
    }
    for (const SettingRow& row : kSettings) {
        set(row.variable, port.*row.member);
    }
    for (uint32_t at = 0; at < sizeof port.portName; ++at) {
        set(variable::kPortName + at, port.portName[at]);
        set(variable::kNodeName + at, port.nodeName[at]);
    }
    set(variable::kNvme, (port.protocolFlags & kProtocolNvme) != 0 ? 1 : 0);
    set(variable::kSubsystemVendor, adapter.subsystemVendorId);
    set(variable::kSubsystemDevice, adapter.subsystemDeviceId);
    if (kind == BlockKind::Classic) {
        set(flash::kFamilyVariable, FamilyNumber(properties::ChipOf(adapter.deviceId)));
    }
    formats::MakeChecksum(kind, block);
}

bool NvramHolds(std::span<const uint8_t> block) {
    return formats::HasSignature(block) && formats::ChecksumHolds(KindOf(block), block);
}

void ApplyNvram(std::span<const uint8_t> block, PortProfile& port) {
    for (const SettingRow& row : kSettings) {
        port.*row.member =
            static_cast<uint16_t>(flash::GetVariable(block, KindOf(block), row.variable));
    }
}

void CopySettings(const PortProfile& from, PortProfile& port) {
    for (const SettingRow& row : kSettings) {
        port.*row.member = from.*row.member;
    }
}

}  // namespace vxemu
