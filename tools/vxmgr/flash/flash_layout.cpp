#include "vxmgr/flash/flash_layout.h"

#include <algorithm>
#include <memory>

#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

constexpr uint32_t kWholeBytes = 128 * 1024;  // flash of a chip without regions
constexpr uint32_t kKib = 1024;
constexpr uint32_t kMostRegionBytes = 256u << 20;  // more is no size, but a driver's mistake

bool IsUnknown(HX_STATUS status) {
    return ExitCodeOf(status) == ExitCode::NotSupported;
}

template <typename Table>
FlashRegion RegionOf(const Table& entry);

template <>
FlashRegion RegionOf(const HX_FLASH_REGION_EX& entry) {
    return {entry.code, entry.flags, entry.size, entry.start};
}

template <>
FlashRegion RegionOf(const HX_FLASH_REGION& entry) {
    return {entry.code & 0xFFFF, static_cast<uint8_t>(entry.code >> 16), entry.size, std::nullopt};
}

template <typename Table>
HX_STATUS Query(HX_STATUS (*function)(uint32_t, uint64_t, Table*), uint32_t handle,
                FlashLayout* layout) {
    const auto table = std::make_unique<Table>();
    table->count = HX_MAX_FLASH_REGIONS;
    const HX_STATUS status = function(handle, 0, table.get());
    if (status == HXMGT_SUCCESS) {
        const uint32_t count = std::min<uint32_t>(table->count, HX_MAX_FLASH_REGIONS);
        for (uint32_t i = 0; i < count; ++i) {
            layout->regions.push_back(RegionOf(table->regions[i]));
        }
    }
    return status;
}

// Chips without regions: nothing tells their flash's size but its reply.
HX_STATUS ProbeWholeFlash(uint32_t handle, FlashLayout* layout) {
    std::vector<uint8_t> bytes(kWholeBytes);
    const HX_STATUS status = HXGetOptionRom(handle, 0, bytes.data(), kWholeBytes);
    if (status == HXMGT_SUCCESS) {
        layout->regions = {{kWholeFlash, 0, kWholeBytes, 0}};
        layout->whole = true;
    }
    return status;
}

}  // namespace

const FlashRegion* FlashLayout::Find(uint32_t code) const {
    const auto found = std::ranges::find(regions, code, &FlashRegion::code);
    return found == regions.end() ? nullptr : &*found;
}

HX_STATUS QueryFlashLayout(uint32_t handle, FlashLayout* layout) {
    *layout = {};
    HX_STATUS status = Query(HXGetOptionRomLayoutEx, handle, layout);
    if (IsUnknown(status)) {
        status = Query(HXGetOptionRomLayout, handle, layout);
    }
    if (status != HXMGT_SUCCESS && !IsUnknown(status)) {
        return status;
    }
    const bool hasRegions = std::ranges::any_of(
        layout->regions, [](uint32_t code) { return code != kWholeFlash; }, &FlashRegion::code);
    return hasRegions ? HX_STATUS{HXMGT_SUCCESS} : ProbeWholeFlash(handle, layout);
}

FlashLayout ReadFlashLayout(Invocation& invocation, const Port& port, uint32_t handle) {
    FlashLayout layout;
    const HX_STATUS status = QueryFlashLayout(handle, &layout);
    if (IsUnknown(status)) {
        FailAt(port.Object(), ExitCode::NotSupported,
               "the driver gives no access to the flash of this adapter",
               "drivers from 7.05.03 on may: see `driver show`", status);
    }
    invocation.Require(status, "the layout of the flash cannot be read", port.Object());
    return layout;
}

const FlashRegion& GivenRegion(Invocation& invocation, const FlashLayout& layout,
                               const std::string& text) {
    for (const FlashRegion& region : layout.regions) {
        if (MeansRegion(text, region.code)) {
            return region;
        }
    }
    invocation.Fail(ExitCode::NotFound, "the flash has no region \"" + text + "\"",
                    "`flash layout` lists them, by code and name");
}

HX_STATUS ReadRegion(uint32_t handle, const FlashLayout& layout, const FlashRegion& region,
                     std::vector<uint8_t>* bytes) {
    if (region.size > kMostRegionBytes) {
        return HXMGT_OPTION_ROM_SIZE_TOO_BIG;
    }
    // The last piece of a large region comes in whole KiB.
    const uint32_t room = (region.size + kKib - 1) / kKib * kKib;
    bytes->assign(room, 0);
    const HX_STATUS status = layout.whole
                                 ? HXGetOptionRom(handle, 0, bytes->data(), room)
                                 : HXGetOptionRomEx(handle, 0, bytes->data(), room, region.code);
    bytes->resize(status == HXMGT_SUCCESS ? region.size : 0);
    return status;
}

HX_STATUS WriteRegion(uint32_t handle, const FlashLayout& layout, const FlashRegion& region,
                      std::vector<uint8_t>& image) {
    const auto size = static_cast<uint32_t>(image.size());
    return layout.whole ? HXUpdateOptionRom(handle, 0, image.data(), size)
                        : HXUpdateOptionRomEx(handle, 0, image.data(), size, region.code);
}

}  // namespace vxmgr
