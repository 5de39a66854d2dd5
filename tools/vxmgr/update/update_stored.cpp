#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

bool IsCode(uint32_t region) {
    const RegionKind kind = RegionKindOf(region);
    return kind == RegionKind::BootCode || kind == RegionKind::Firmware;
}

struct RunningRow {
    uint32_t region;
    std::string (*version)(const Port& port);
};
constexpr RunningRow kRunning[] = {
    {HX_REGION_FIRMWARE, RunningFirmware},
    {HX_REGION_BOOT_CODE, RunningBootCode},
    {kWholeFlash, RunningBootCode},
};

}  // namespace

StoredCode ReadStored(uint32_t handle, const FlashLayout& layout, const FlashRegion& region) {
    StoredCode code{region, HXMGT_SUCCESS, {}};
    std::vector<uint8_t> bytes;
    code.status = ReadRegion(handle, layout, region, &bytes);
    if (code.status == HXMGT_SUCCESS) {
        code.image = InspectImage(bytes);
    }
    return code;
}

std::vector<StoredCode> ReadStoredCode(uint32_t handle, const FlashLayout& layout,
                                       const std::function<void()>& beforeEach) {
    std::vector<StoredCode> found;
    for (const FlashRegion& region : layout.regions) {
        if (IsCode(region.code)) {
            beforeEach();
            found.push_back(ReadStored(handle, layout, region));
        }
    }
    return found;
}

std::string RunningVersion(const Port& port, uint32_t region) {
    for (const RunningRow& row : kRunning) {
        if (row.region == region) {
            return row.version(port);
        }
    }
    return {};
}

CodeState StateOf(const StoredCode& code, const std::string& running) {
    if (code.status != HXMGT_SUCCESS) {
        return CodeState::Unknown;
    }
    const ImageKind kind = code.image.kind;
    if (!code.image.problem.empty() ||
        (kind != ImageKind::BootCode && kind != ImageKind::Firmware)) {
        return CodeState::Damaged;
    }
    const auto order = CompareVersions(code.image.version, running);
    if (!order) {
        return CodeState::Stored;
    }
    return *order == 0 ? CodeState::Running : CodeState::Pending;
}

std::string DamageOf(const StoredCode& code, const std::string& running) {
    const bool unused = code.image.kind == ImageKind::Erased && running.empty();
    if (StateOf(code, running) != CodeState::Damaged || unused) {
        return {};
    }
    return code.region.Name() + " is damaged: " +
           (!code.image.problem.empty()
                ? code.image.problem
                : "the region holds " + std::string(KindName(code.image.kind)));
}

}  // namespace vxmgr
