// The code that an adapter's flash holds, beside the versions that run.
#pragma once

#include <functional>

#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {

struct StoredCode {
    FlashRegion region;
    HX_STATUS status = HXMGT_SUCCESS;  // of reading it
    ImageInfo image;
};

// The region that is started as the adapter's firmware or boot code.
constexpr uint32_t BootRegionOf(const FlashLayout& layout) {
    return layout.whole ? kWholeFlash : uint32_t{HX_REGION_BOOT_CODE};
}

StoredCode ReadStored(uint32_t handle, const FlashLayout& layout, const FlashRegion& region);

// All regions with firmware or boot code; beforeEach is called before each is read. The status: of
// the flash's layout.
HX_STATUS ReadStoredCode(const Port& port, uint32_t handle, const std::function<void()>& beforeEach,
                         std::vector<StoredCode>* stored);

// The version that runs of what a region holds; empty: nothing is started from there.
std::string RunningVersion(const Port& port, uint32_t region);

enum class CodeState : uint8_t { Stored, Running, Pending, Damaged, Unknown };
inline constexpr const char* kCodeStates[] = {"stored", "running", "pending", "damaged", "unknown"};
CodeState StateOf(const StoredCode& code, const std::string& running);

// What is wrong with the code of a region, for people: "firmware is damaged: ...". Empty: nothing,
// or the region is erased and nothing is started from there.
std::string DamageOf(const StoredCode& code, const std::string& running);

}  // namespace vxmgr
