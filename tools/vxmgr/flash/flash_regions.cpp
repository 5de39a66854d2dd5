#include "vxmgr/flash/flash_regions.h"

#include <algorithm>
#include <iterator>

namespace vxmgr {
namespace {

using Kind = RegionKind;

// No chip has two regions of one key: those that share one are the same thing on different chips.
constexpr RegionRow kRegions[] = {
    {1, "firmware", "firmware", Kind::Firmware, true},
    {2, "recovery-boot", "boot code for recovery", Kind::BootCode, true},
    {7, "boot", "boot code", Kind::BootCode, true},
    {8, "recovery-firmware", "firmware for recovery", Kind::Firmware},
    {9, "auxiliary-firmware", "firmware of the management processor", Kind::Firmware, true},
    {17, "boot-copy", "copy of the boot code", Kind::BootCode},
    {20, "vpd-0", "product data of function 0", Kind::Vpd},
    {21, "nvram-0", "settings of function 0", Kind::Nvram},
    {22, "vpd-1", "product data of function 1", Kind::Vpd},
    {23, "nvram-1", "settings of function 1", Kind::Nvram},
    {102, "parameters-0", "signed parameters", Kind::Data},
    {103, "parameters-1", "signed parameters, second set", Kind::Data},
    {129, "vpd", "product data of all functions", Kind::Vpd},
    {170, "nvram-0", "settings of function 0", Kind::Nvram},
    {172, "nvram-1", "settings of function 1", Kind::Nvram},
    {212, "vpd-2", "product data of function 2", Kind::Vpd},
    {213, "nvram-2", "settings of function 2", Kind::Nvram},
    {214, "vpd-3", "product data of function 3", Kind::Vpd},
    {215, "nvram-3", "settings of function 3", Kind::Nvram},
    {252, "spare-1", "not used", Kind::Data},
    {253, "spare-2", "not used", Kind::Data},
    {254, "spare", "not used", Kind::Data},
    {kWholeFlash, "whole", "whole flash", Kind::BootCode},
    {268, "vpd-0-bank-2", "product data of function 0, second bank", Kind::Vpd},
    {269, "nvram-0-bank-2", "settings of function 0, second bank", Kind::Nvram},
    {270, "vpd-1-bank-2", "product data of function 1, second bank", Kind::Vpd},
    {271, "nvram-1-bank-2", "settings of function 1, second bank", Kind::Nvram},
    {272, "vpd-2-bank-2", "product data of function 2, second bank", Kind::Vpd},
    {273, "nvram-2-bank-2", "settings of function 2, second bank", Kind::Nvram},
    {274, "vpd-3-bank-2", "product data of function 3, second bank", Kind::Vpd},
    {275, "nvram-3-bank-2", "settings of function 3, second bank", Kind::Nvram},
};

const RegionRow* FindRow(uint32_t code) {
    const auto* const row = std::ranges::find(kRegions, code, &RegionRow::code);
    return row == std::end(kRegions) ? nullptr : row;
}

}  // namespace

RegionKind RegionKindOf(uint32_t code) {
    const RegionRow* row = FindRow(code);
    return row == nullptr ? Kind::Data : row->kind;
}

std::string RegionKey(uint32_t code) {
    const RegionRow* row = FindRow(code);
    return row == nullptr ? "region-" + std::to_string(code) : row->key;
}

std::string RegionName(uint32_t code) {
    const RegionRow* row = FindRow(code);
    return row == nullptr ? "region " + std::to_string(code) : row->name;
}

bool RestartsPorts(uint32_t code) {
    const RegionRow* row = FindRow(code);
    return row != nullptr && row->restarts;
}

bool MeansRegion(std::string_view text, uint32_t code) {
    if (const auto number = ParseNumber(text)) {
        return *number == code;
    }
    return EqualIgnoringCase(text, RegionKey(code));
}

}  // namespace vxmgr
