#include "formats/nvram_block.h"

#include "formats/sums.h"

namespace formats {

bool HasSignature(Bytes block) {
    return block.size() >= sizeof kNvramSignature &&
           std::memcmp(block.data(), kNvramSignature, sizeof kNvramSignature) == 0;
}

bool ChecksumHolds(BlockKind kind, Bytes block) {
    if (block.size() < BlockBytes(kind)) {
        return false;
    }
    const Bytes summed = block.first(BlockBytes(kind));
    return kind == BlockKind::Classic ? ByteSum(summed) == 0 : LittleEndianWordSum(summed) == 0;
}

void MakeChecksum(BlockKind kind, std::span<uint8_t> block) {
    if (block.size() < BlockBytes(kind)) {
        return;
    }
    const std::span<uint8_t> summed = block.first(BlockBytes(kind));
    if (kind == BlockKind::Classic) {
        summed.back() = static_cast<uint8_t>(summed.back() - ByteSum(summed));
        return;
    }
    const std::span<uint8_t> place = summed.last(sizeof(uint32_t));
    std::fill(place.begin(), place.end(), uint8_t{0});
    const uint32_t checksum = 0 - LittleEndianWordSum(summed);
    for (size_t i = 0; i < place.size(); ++i) {
        place[i] = static_cast<uint8_t>(checksum >> 8 * i);
    }
}

}  // namespace formats
