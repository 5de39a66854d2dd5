// An NVRAM block as a whole: its kind, signature and checksum. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "hxflash.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

enum class NvramKind : uint8_t { Classic, Extended };

constexpr size_t BlockBytes(NvramKind kind) {
    return kind == NvramKind::Classic ? HX_NVRAM_CLASSIC_BYTES : HX_NVRAM_EXTENDED_BYTES;
}
const char* NameOf(NvramKind kind);  // "classic"

// A block may be longer than its kind: a region's rest, which no checksum covers.
bool HasSignature(Bytes block);
// Classic: all bytes add up to 0, the last one makes it so. Extended: the same with 32-bit words.
// False for a block that is too short.
bool ChecksumHolds(NvramKind kind, Bytes block);
void MakeChecksum(NvramKind kind, std::span<uint8_t> block);

bool IsBlank(Bytes block);  // never written: erased, or zeros

inline bool IsSound(NvramKind kind, Bytes block) {
    return HasSignature(block) && ChecksumHolds(kind, block);
}

}  // namespace vxmgr
