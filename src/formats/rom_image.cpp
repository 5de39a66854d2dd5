#include "formats/rom_image.h"

#include "formats/sums.h"

namespace formats {

bool BeginsRom(Bytes bytes) {
    return Padded<uint16_t>(bytes) == kRomSignature;
}

std::optional<RomImage> ImageAt(Bytes flash, size_t start) {
    const Bytes bytes = Part(flash, start);
    const auto head = Padded<RomHeader>(bytes);
    const auto data = Padded<RomData>(Part(bytes, head.dataOffset));
    if (!BeginsRom(bytes) || bytes.size() < kShortestRom ||
        !Holds<RomData>(bytes, head.dataOffset) ||
        std::memcmp(data.mark, kRomDataMark, sizeof kRomDataMark) != 0 || data.length == 0) {
        return std::nullopt;
    }
    return RomImage{
        start,         size_t{data.length} * kRomUnit,    data.majorRevision, data.revision,
        data.codeType, (data.indicator & kLastImage) != 0};
}

std::optional<RomImage> NextImage(Bytes flash, const RomImage& image) {
    return image.last ? std::nullopt : ImageAt(flash, image.start + image.length);
}

std::optional<RomImage> FindImage(Bytes flash, RomCode code) {
    std::optional<RomImage> image = ImageAt(flash, 0);
    for (uint32_t seen = 1; image && image->codeType != static_cast<uint8_t>(code); ++seen) {
        image = seen < kLongestChain ? NextImage(flash, *image) : std::nullopt;
    }
    return image;
}

bool UpdateChecksum(std::span<uint8_t> image) {
    constexpr size_t kLengthByte = offsetof(RomHeader, length);
    const size_t length = image.size() > kLengthByte ? image[kLengthByte] * size_t{kRomUnit} : 0;
    if (length == 0 || length > image.size()) {
        return false;
    }
    // The byte before the checksum is left out of the sum: intended.
    image[length - 1] = static_cast<uint8_t>(-ByteSum(image.first(length - 2)));
    return true;
}

}  // namespace formats
