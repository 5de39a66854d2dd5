#include "formats/firmware_image.h"

#include <iterator>

#include "formats/sums.h"

namespace formats {
namespace {

constexpr size_t kWord = sizeof(uint32_t);

}  // namespace

uint32_t FirmwareWord(Bytes image, size_t index) {
    return index < image.size() / kWord
               ? static_cast<uint32_t>(BigEndian(image.data() + index * kWord, kWord))
               : 0;
}

VersionNumbers FirmwareVersion(Bytes image) {
    static_assert(kVersionWord + 3 == kBuildWord);
    VersionNumbers version{};
    for (uint32_t i = 0; i < std::size(version.parts); ++i) {
        version.parts[i] = FirmwareWord(image, kVersionWord + i);
    }
    return version;
}

FirmwareCheck CheckFirmware(Bytes image, size_t regionBytes) {
    const size_t words = std::min(image.size(), regionBytes) / kWord;
    const size_t first = FirmwareWord(image, kSegmentLengthWord);
    if (first == 0 || first >= words) {
        return FirmwareCheck::BadSegments;
    }
    const size_t second = FirmwareWord(image, first + kSegmentLengthWord);
    if (second == 0 || second > words - first) {
        return FirmwareCheck::BadSegments;
    }
    const bool good = BigEndianWordSum(Part(image, 0, first * kWord)) == 0 &&
                      BigEndianWordSum(Part(image, first * kWord, second * kWord)) == 0;
    return good ? FirmwareCheck::Good : FirmwareCheck::BadChecksum;
}

}  // namespace formats
