// What code ends with: who it is for, and a hash that an update is accepted by. A rule of the
// emulated adapters, so that no image of theirs is ever taken for a real one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace vxemu {

#pragma pack(push, 1)

// The last bytes of a signed region.
struct CodeSignature {
    char mark[8];  // kSignatureMark
    uint16_t deviceId;
    uint16_t region;
    uint32_t hash;  // of everything before
};
static_assert(sizeof(CodeSignature) == 16);
static_assert(offsetof(CodeSignature, hash) == 12);

#pragma pack(pop)

inline constexpr char kSignatureMark[8] = {'E', 'M', 'U', 'S', 'I', 'G', 'N', '1'};
inline constexpr uint32_t kSignatureBytes = sizeof(CodeSignature);

// FNV-1a, begun with who the image is for.
class CodeHash {
  public:
    CodeHash(uint16_t deviceId, uint16_t region) {
        const uint8_t origin[] = {static_cast<uint8_t>(deviceId),
                                  static_cast<uint8_t>(deviceId >> 8), static_cast<uint8_t>(region),
                                  static_cast<uint8_t>(region >> 8)};
        Add(origin, sizeof origin);
    }
    void Add(const uint8_t* bytes, size_t length) {
        for (size_t at = 0; at < length; ++at) {
            value_ = (value_ ^ bytes[at]) * 16777619u;
        }
    }
    uint32_t Value() const { return value_; }

  private:
    uint32_t value_ = 2166136261u;
};

// Whether the image of a whole region is signed for that region of that chip.
inline bool SignatureHolds(std::span<const uint8_t> image, uint16_t deviceId, uint16_t region) {
    CodeSignature signature;
    if (image.size() < sizeof signature) {
        return false;
    }
    const size_t body = image.size() - sizeof signature;
    std::memcpy(&signature, image.data() + body, sizeof signature);
    CodeHash hash(deviceId, region);
    hash.Add(image.data(), body);
    return std::memcmp(signature.mark, kSignatureMark, sizeof kSignatureMark) == 0 &&
           signature.deviceId == deviceId && signature.region == region &&
           signature.hash == hash.Value();
}

}  // namespace vxemu
