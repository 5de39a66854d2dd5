// Sets of LUNs: as people write them ("0-7,12"), as drivers take them and as they are stored.
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hxmgtapi.h"

namespace vxmgr {

using LunSet = std::bitset<HX_MAX_LUNS>;

// Masks of a driver below 7.05.03 end there.
inline constexpr uint32_t kLegacyLuns = 256;

struct LunRange {
    uint32_t first;
    uint32_t last;
};
std::vector<LunRange> RangesOf(const LunSet& luns);
std::string RangeText(LunRange range);  // "3" or "0-7"

// LUNs and ranges of them joined with ',', or "all". False with a sentence in *error when the text
// is neither, or names a LUN twice.
bool ParseLuns(std::string_view text, LunSet* luns, std::string* error);
std::string LunsText(const LunSet& luns);  // in ascending order; empty for none

LunSet FirstLuns(uint32_t count);

// The masked ones of a driver's mask, where a set bit is a visible LUN, and of a stored record.
LunSet MaskedOf(const uint8_t (&mask)[HX_LUN_MASK_SIZE]);
LunSet MaskedOf(const HX_LUN_RECORD& record);
void SetMasked(const LunSet& masked, uint8_t (&mask)[HX_LUN_MASK_SIZE]);
void SetMasked(const LunSet& masked, HX_LUN_RECORD& record);  // other bits of the LUN bytes stay

}  // namespace vxmgr
