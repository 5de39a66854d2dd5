#include "formats/firmware_image.h"

#include <algorithm>

namespace flash {
namespace {

uint32_t SumOfWords(std::span<const uint8_t> image, size_t first, size_t count) {
    uint32_t sum = 0;
    for (size_t i = first; i < first + count; ++i) {
        sum += FirmwareWord(image, i);
    }
    return sum;
}

}  // namespace

uint32_t FirmwareWord(std::span<const uint8_t> image, size_t index) {
    if (index >= image.size() / sizeof(uint32_t)) {
        return 0;
    }
    const uint8_t* const bytes = image.data() + index * sizeof(uint32_t);
    return bytes[0] * 0x1000000u + bytes[1] * 0x10000u + bytes[2] * 0x100u + bytes[3];
}

FirmwareCheck CheckFirmware(std::span<const uint8_t> image, size_t regionBytes) {
    const size_t words = std::min(image.size(), regionBytes) / sizeof(uint32_t);
    const size_t first = FirmwareWord(image, kSegmentLengthWord);
    if (first == 0 || first >= words) {
        return FirmwareCheck::BadSegments;
    }
    const size_t second = FirmwareWord(image, first + kSegmentLengthWord);
    if (second == 0 || second > words - first) {
        return FirmwareCheck::BadSegments;
    }
    const bool good = SumOfWords(image, 0, first) == 0 && SumOfWords(image, first, second) == 0;
    return good ? FirmwareCheck::Good : FirmwareCheck::BadChecksum;
}

}  // namespace flash
