#include "vxmgr/settings/nvram_block.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace vxmgr {
namespace {

constexpr uint8_t kSignature[] = {'K', 'P', 'U', ' '};

uint8_t SumOfBytes(Bytes block) {
    return static_cast<uint8_t>(std::accumulate(block.begin(), block.end(), 0u));
}

// Words are little-endian.
uint32_t SumOfWords(Bytes block) {
    uint32_t sum = 0;
    for (size_t i = 0; i < block.size(); ++i) {
        sum += static_cast<uint32_t>(block[i]) << 8 * (i % sizeof sum);
    }
    return sum;
}

}  // namespace

const char* NameOf(NvramKind kind) {
    return kind == NvramKind::Classic ? "classic" : "extended";
}

bool HasSignature(Bytes block) {
    return block.size() >= sizeof kSignature &&
           std::equal(std::begin(kSignature), std::end(kSignature), block.begin());
}

bool IsBlank(Bytes block) {
    constexpr uint8_t kErased = 0xFF;
    const auto holdsOnly = [&](uint8_t value) {
        return std::all_of(block.begin(), block.end(),
                           [value](uint8_t byte) { return byte == value; });
    };
    return holdsOnly(kErased) || holdsOnly(0);
}

bool ChecksumHolds(NvramKind kind, Bytes block) {
    if (block.size() < BlockBytes(kind)) {
        return false;
    }
    const Bytes summed = block.first(BlockBytes(kind));
    return kind == NvramKind::Classic ? SumOfBytes(summed) == 0 : SumOfWords(summed) == 0;
}

void MakeChecksum(NvramKind kind, std::span<uint8_t> block) {
    if (block.size() < BlockBytes(kind)) {
        return;
    }
    const std::span<uint8_t> summed = block.first(BlockBytes(kind));
    if (kind == NvramKind::Classic) {
        summed.back() = static_cast<uint8_t>(summed.back() - SumOfBytes(summed));
        return;
    }
    const std::span<uint8_t> place = summed.last(sizeof(uint32_t));
    std::fill(place.begin(), place.end(), uint8_t{0});
    const uint32_t checksum = 0 - SumOfWords(summed);
    for (size_t i = 0; i < place.size(); ++i) {
        place[i] = static_cast<uint8_t>(checksum >> 8 * i);
    }
}

}  // namespace vxmgr
