#include "vxmgr/settings/nvram_block.h"

#include <algorithm>

namespace vxmgr {
const char* NameOf(NvramKind kind) {
    return kind == NvramKind::Classic ? "classic" : "extended";
}

bool IsBlank(Bytes block) {
    constexpr uint8_t kErased = 0xFF;
    const auto holdsOnly = [&](uint8_t value) {
        return std::all_of(block.begin(), block.end(),
                           [value](uint8_t byte) { return byte == value; });
    };
    return holdsOnly(kErased) || holdsOnly(0);
}

}  // namespace vxmgr
