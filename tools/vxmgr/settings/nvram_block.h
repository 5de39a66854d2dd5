// An NVRAM block as a whole: its kind, and whether it is sound. Free of platform headers.
#pragma once

#include <algorithm>

#include "formats/nvram_block.h"
#include "hxflash.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

using formats::BlockBytes;
using formats::ChecksumHolds;
using formats::HasSignature;
using formats::MakeChecksum;
using NvramKind = formats::BlockKind;

static_assert(BlockBytes(NvramKind::Classic) == HX_NVRAM_CLASSIC_BYTES);
static_assert(BlockBytes(NvramKind::Extended) == HX_NVRAM_EXTENDED_BYTES);

inline constexpr const char* kNvramKinds[] = {"classic", "extended"};
constexpr const char* NameOf(NvramKind kind) {
    return kNvramKinds[static_cast<size_t>(kind)];
}

// Never written: erased, or zeros.
inline bool IsBlank(Bytes block) {
    constexpr uint8_t kErased = 0xFF;
    const auto holdsOnly = [&](uint8_t value) {
        return std::ranges::all_of(block, [value](uint8_t byte) { return byte == value; });
    };
    return holdsOnly(kErased) || holdsOnly(0);
}

inline bool IsSound(NvramKind kind, Bytes block) {
    return HasSignature(block) && ChecksumHolds(kind, block);
}

}  // namespace vxmgr
