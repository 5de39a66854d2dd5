// The flash of one adapter: as delivered until it is written to, then kept page by page.
#pragma once

#include <cstdint>
#include <span>

#include "model/host.h"
#include "model/storage/flash_content.h"

namespace vxemu {

inline constexpr uint32_t kFlashPageBytes = 4096;

class FlashMemory {
  public:
    void Start(const FlashOrigin& origin);
    void Clear(const Host& host);

    const FlashOrigin& Origin() const { return origin_; }
    const FlashRegions& Regions() const { return regions_; }
    uint32_t Bytes() const { return bytes_; }

    // Ranges lie within the flash.
    void Read(uint32_t offset, uint8_t* bytes, uint32_t length) const;
    // False when there is no memory for it; nothing is written then.
    bool Write(const Host& host, uint32_t offset, const uint8_t* bytes, uint32_t length);

    // Whether the range holds anything that was written.
    bool WasWritten(uint32_t offset, uint32_t length) const;

    // Calls visit(offset, bytes, length) for each page that was written to, until it returns false.
    template <typename Visit>
    bool ForEachWritten(Visit visit) const {
        for (uint32_t index = 0; pages_ != nullptr && index < PageCount(); ++index) {
            const uint32_t offset = index * kFlashPageBytes;
            if (pages_[index] != nullptr &&
                !visit(offset, static_cast<const uint8_t*>(pages_[index]), BytesAt(offset))) {
                return false;
            }
        }
        return true;
    }

  private:
    uint8_t* PageAt(uint32_t index) const { return pages_ != nullptr ? pages_[index] : nullptr; }
    uint32_t PageCount() const { return (bytes_ + kFlashPageBytes - 1) / kFlashPageBytes; }
    uint32_t BytesAt(uint32_t offset) const {
        return bytes_ - offset < kFlashPageBytes ? bytes_ - offset : kFlashPageBytes;
    }
    bool AddPage(const Host& host, uint32_t index);

    FlashOrigin origin_;
    FlashRegions regions_;
    uint32_t bytes_;
    uint8_t** pages_;  // null until the first write
};

// A copy of part of a flash in one piece, for checks over all of it.
class FlashCopy {
  public:
    FlashCopy(const Host& host, const FlashMemory& memory, const PlacedRegion& placed);
    ~FlashCopy();
    FlashCopy(const FlashCopy&) = delete;
    FlashCopy& operator=(const FlashCopy&) = delete;

    bool Valid() const { return bytes_ != nullptr; }  // false: no memory
    std::span<uint8_t> Bytes() const { return {bytes_, length_}; }

  private:
    const Host& host_;
    uint8_t* bytes_;
    uint32_t length_;
};

}  // namespace vxemu
