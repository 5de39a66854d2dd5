#include "vxmgr/flash/flash_firmware.h"

#include <algorithm>
#include <iterator>

#include "formats/sums.h"

namespace vxmgr {
namespace {

using formats::FirmwareHead;

constexpr size_t kWord = sizeof(uint32_t);
constexpr uint32_t kMostWords = 16u << 20;  // no flash is larger than 64 MiB

std::string VersionOf(Bytes bytes, bool withBuild) {
    formats::VersionNumbers version = formats::FirmwareVersion(bytes);
    if (!withBuild) {
        version.parts[3] = 0;
    }
    char text[48];
    formats::FormatFirmwareVersion(version, text);
    return text;
}

// The segment at offset as far as the bytes have it; false when they do not have all of it.
bool DecodeSegment(Bytes bytes, size_t offset, FirmwareSegment* segment) {
    const uint64_t words = BigEndian(Padded<FirmwareHead>(Part(bytes, offset)).length);
    segment->offset = offset;
    segment->length = static_cast<size_t>(std::min<uint64_t>(words, kMostWords)) * kWord;
    if (words == 0 || words > kMostWords || offset >= bytes.size() ||
        segment->length > bytes.size() - offset) {
        return false;
    }
    const uint32_t sum = formats::BigEndianWordSum(Part(bytes, offset, segment->length));
    segment->checksum = sum == 0 ? Sum::Good : Sum::Bad;
    return true;
}

}  // namespace

bool BeginsFirmware(Bytes bytes) {
    if (bytes.size() < sizeof(FirmwareHead)) {
        return false;
    }
    const auto head = Padded<FirmwareHead>(bytes);
    uint64_t highest = 0;
    for (const auto& number : head.version) {
        highest = std::max(highest, BigEndian(number));
    }
    const uint64_t words = BigEndian(head.length);
    return words != 0 && words <= kMostWords && highest != 0 && highest <= UINT8_MAX;
}

FirmwareImage DecodeFirmware(Bytes bytes) {
    FirmwareImage image;
    const auto head = Padded<FirmwareHead>(bytes);
    // Where the image is silent there is code, whose words are larger than any device ID.
    const uint64_t device = BigEndian(head.deviceId);
    const bool tellsDevice = device != 0 && device <= UINT16_MAX;
    if (tellsDevice) {
        image.deviceId = static_cast<uint16_t>(device);
    }
    image.version = VersionOf(bytes, tellsDevice && BigEndian(head.build) <= UINT16_MAX);
    size_t offset = 0;
    for (size_t i = 0; i < std::size(image.segments); ++i) {
        const std::string name = "segment " + std::to_string(i + 1);
        if (!DecodeSegment(bytes, offset, &image.segments[i])) {
            image.problem = name + " is longer than what there is";
            break;
        }
        if (image.segments[i].checksum != Sum::Good && image.problem.empty()) {
            image.problem = "the checksum of " + name + " is wrong";
        }
        offset += image.segments[i].length;
    }
    return image;
}

}  // namespace vxmgr
