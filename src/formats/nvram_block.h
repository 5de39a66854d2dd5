// An NVRAM block as a whole: its kind, signature and checksum.
#pragma once

#include "formats/bytes.h"

namespace formats {

inline constexpr size_t kClassicBlock = 256;   // 16-bit words
inline constexpr size_t kExtendedBlock = 512;  // 32-bit words
inline constexpr char kNvramSignature[4] = {'K', 'P', 'U', ' '};

enum class BlockKind : uint8_t { Classic, Extended };
constexpr size_t BlockBytes(BlockKind kind) {
    return kind == BlockKind::Classic ? kClassicBlock : kExtendedBlock;
}

// A block may be longer than its kind: a region's rest, which no checksum covers.
bool HasSignature(Bytes block);
// Classic: all bytes add up to 0, the last one makes it so. Extended: the same with 32-bit words.
// False for a block that is too short.
bool ChecksumHolds(BlockKind kind, Bytes block);
// Does nothing to a block that is too short.
void MakeChecksum(BlockKind kind, std::span<uint8_t> block);

}  // namespace formats
