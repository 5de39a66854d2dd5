#include "formats/vpd_tags.h"

#include "formats/sums.h"

namespace formats {

std::optional<VpdPart> TagAt(Bytes bytes, size_t at) {
    const Bytes rest = Part(bytes, at);
    const auto tag = Padded<LargeTag>(rest);
    const bool large = (tag.tag & kLargeTag) != 0;
    const size_t head = large ? sizeof tag : sizeof tag.tag;
    const size_t length =
        large ? tag.length[0] | size_t{tag.length[1]} << 8 : tag.tag & kSmallLength;
    if (rest.size() < head || rest.size() - head < length) {
        return std::nullopt;
    }
    return VpdPart{at + head, length};
}

std::optional<VpdPart> KeywordAt(Bytes bytes, size_t at, size_t end) {
    const Bytes rest = Part(Part(bytes, 0, end), at);
    const auto head = Padded<KeywordHead>(rest);
    if (rest.size() < sizeof head || rest.size() - sizeof head < head.length) {
        return std::nullopt;
    }
    return VpdPart{at + sizeof head, head.length};
}

bool ChecksumHolds(Bytes bytes, const VpdPart& checksum) {
    return checksum.length != 0 && ByteSum(Part(bytes, 0, checksum.data + 1)) == 0;
}

}  // namespace formats
