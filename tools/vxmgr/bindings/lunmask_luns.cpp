#include "vxmgr/bindings/lunmask_luns.h"

#include <algorithm>
#include <cstring>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {
namespace {

std::optional<uint32_t> ParseLun(std::string_view text) {
    const auto number = ParseNumber(text);
    return number && *number < HX_MAX_LUNS ? std::optional(static_cast<uint32_t>(*number))
                                           : std::nullopt;
}

std::optional<LunRange> ParseRange(std::string_view text) {
    const size_t dash = text.find('-');
    const auto first = ParseLun(text.substr(0, dash));
    const auto last = dash == text.npos ? first : ParseLun(text.substr(dash + 1));
    if (!first || !last || *first > *last) {
        return std::nullopt;
    }
    return LunRange{*first, *last};
}

}  // namespace

std::vector<LunRange> RangesOf(const LunSet& luns) {
    std::vector<LunRange> ranges;
    for (uint32_t lun = 0; lun < luns.size(); ++lun) {
        if (!luns[lun]) {
            continue;
        }
        if (!ranges.empty() && ranges.back().last + 1 == lun) {
            ranges.back().last = lun;
        } else {
            ranges.push_back({lun, lun});
        }
    }
    return ranges;
}

std::string RangeText(LunRange range) {
    const std::string first = std::to_string(range.first);
    return range.first == range.last ? first : first + "-" + std::to_string(range.last);
}

bool ParseLuns(std::string_view text, LunSet* luns, std::string* error) {
    luns->reset();
    if (EqualIgnoringCase(text, "all")) {
        luns->set();
        return true;
    }
    for (const std::string& part : Split(text, ',')) {
        const auto range = ParseRange(part);
        if (!range) {
            *error = "\"" + part + "\" is no LUN from 0 to " + std::to_string(HX_MAX_LUNS - 1) +
                     " and no range of them";
            return false;
        }
        for (uint32_t lun = range->first; lun <= range->last; ++lun) {
            if (luns->test(lun)) {
                *error = "LUN " + std::to_string(lun) + " is named twice";
                return false;
            }
            luns->set(lun);
        }
    }
    return true;
}

std::string LunsText(const LunSet& luns) {
    return TextsJoined(RangesOf(luns), ",", RangeText);
}

LunSet FirstLuns(uint32_t count) {
    LunSet luns;
    for (uint32_t lun = 0; lun < std::min<uint32_t>(count, HX_MAX_LUNS); ++lun) {
        luns.set(lun);
    }
    return luns;
}

LunSet MaskedOf(const uint8_t (&mask)[HX_LUN_MASK_SIZE]) {
    LunSet masked;
    for (uint32_t lun = 0; lun < HX_MAX_LUNS; ++lun) {
        masked[lun] = (mask[lun / 8] >> (lun % 8) & 1) == 0;
    }
    return masked;
}

LunSet MaskedOf(const HX_LUN_RECORD& record) {
    LunSet masked;
    for (uint32_t lun = 0; lun < HX_MAX_LUNS; ++lun) {
        masked[lun] = (record.luns[lun] & HX_LUN_MASKED) != 0;
    }
    return masked;
}

void SetMasked(const LunSet& masked, uint8_t (&mask)[HX_LUN_MASK_SIZE]) {
    std::memset(mask, 0, sizeof mask);
    for (uint32_t lun = 0; lun < HX_MAX_LUNS; ++lun) {
        mask[lun / 8] |= static_cast<uint8_t>((masked[lun] ? 0u : 1u) << (lun % 8));
    }
}

void SetMasked(const LunSet& masked, HX_LUN_RECORD& record) {
    for (uint32_t lun = 0; lun < HX_MAX_LUNS; ++lun) {
        const uint32_t others = record.luns[lun] & ~HX_LUN_MASKED;
        record.luns[lun] = static_cast<uint8_t>(others | (masked[lun] ? HX_LUN_MASKED : 0u));
    }
}

}  // namespace vxmgr
