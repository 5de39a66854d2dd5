// Firmware: two segments of big-endian words, each adding up to 0, then erased flash.
#include "formats/firmware_image.h"
#include "model/storage/flash_content.h"

namespace vxemu {
namespace {

constexpr uint8_t kErased = 0xFF;
constexpr uint32_t kWord = sizeof(uint32_t);

// One segment, by the index of its first word in the region.
class Segment {
  public:
    Segment(const FirmwareSpec& spec, uint32_t first, uint32_t words)
        : spec_(spec), first_(first), words_(words) {}

    uint32_t Word(uint32_t index) const {
        return index + 1 == words_ ? Checksum() : PlainWord(index);
    }

  private:
    uint32_t PlainWord(uint32_t index) const {
        if (index == formats::kSegmentLengthWord) {
            return words_;
        }
        if (first_ == 0) {
            switch (index) {
                case formats::kVersionWord:
                case formats::kVersionWord + 1:
                case formats::kVersionWord + 2:
                    return spec_.version.parts[index - formats::kVersionWord];
                case formats::kBuildWord:
                    return spec_.version.parts[3];
                case formats::kDeviceWord:
                    return spec_.deviceId;
                case formats::kAttributesWord:
                    return spec_.attributes;
                default:
                    break;
            }
        }
        return PatternWord(first_ + index, spec_.version.parts[1] * 256 + spec_.version.parts[2]);
    }
    uint32_t Checksum() const {
        uint32_t sum = 0;
        for (uint32_t index = 0; index + 1 < words_; ++index) {
            sum += PlainWord(index);
        }
        return 0 - sum;
    }

    const FirmwareSpec& spec_;
    uint32_t first_;
    uint32_t words_;
};

}  // namespace

void PutFirmware(const FirmwareSpec& spec, uint32_t regionBytes, ByteWindow window) {
    const uint32_t firstWords = regionBytes / kWord / 2;
    const uint32_t secondWords = firstWords / 2;
    const Segment first(spec, 0, firstWords);
    const Segment second(spec, firstWords, secondWords);
    const uint32_t words = firstWords + secondWords;
    window.Fill(words * kWord, regionBytes - words * kWord, kErased);
    const ByteWindow part = window.Part(0, words * kWord);
    for (uint32_t at = part.Begin() / kWord; at * kWord < part.End(); ++at) {
        const uint32_t word = at < firstWords ? first.Word(at) : second.Word(at - firstWords);
        uint8_t bytes[kWord];
        formats::PutBigEndian(word, bytes);
        window.Put(at * kWord, bytes, sizeof bytes);
    }
}

}  // namespace vxemu
