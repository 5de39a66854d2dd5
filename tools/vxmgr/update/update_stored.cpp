#include "vxmgr/update/update_stored.h"

#include "vxmgr/app/answer_memory.h"

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

struct CodeAnswer {
    HX_STATUS status = HXMGT_SUCCESS;
    std::vector<StoredCode> stored;
};

CodeAnswer AskStoredCode(uint32_t handle, const std::function<void()>& beforeEach) {
    FlashLayout layout;
    CodeAnswer answer;
    answer.status = QueryFlashLayout(handle, &layout);
    for (const FlashRegion& region : layout.regions) {
        if (answer.status == HXMGT_SUCCESS && IsCode(region.code)) {
            beforeEach();
            answer.stored.push_back(ReadStored(handle, layout, region));
        }
    }
    return answer;
}

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

HX_STATUS ReadStoredCode(const Port& port, uint32_t handle, const std::function<void()>& beforeEach,
                         std::vector<StoredCode>* stored) {
    static AnswerMemory<uint32_t, CodeAnswer> memory;
    CodeAnswer answer = memory.Get(port.index, [&] { return AskStoredCode(handle, beforeEach); });
    *stored = std::move(answer.stored);
    return answer.status;
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
