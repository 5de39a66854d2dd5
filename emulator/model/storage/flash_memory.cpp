#include "model/storage/flash_memory.h"

#include <algorithm>
#include <cstring>

namespace vxemu {
namespace {

// Calls visit(page, offset in the page, offset in the range, length) for each part of a range that
// lies in one page, until it returns false.
template <typename Visit>
bool ForEachPage(uint32_t offset, uint32_t length, Visit visit) {
    for (uint32_t done = 0; done < length;) {
        const uint32_t inPage = (offset + done) % kFlashPageBytes;
        const uint32_t part = std::min(length - done, kFlashPageBytes - inPage);
        if (!visit((offset + done) / kFlashPageBytes, inPage, done, part)) {
            return false;
        }
        done += part;
    }
    return true;
}

}  // namespace

void FlashMemory::Start(const FlashOrigin& origin) {
    origin_ = origin;
    regions_ = RegionsOf(properties::ChipOf(origin.Adapter().deviceId));
    bytes_ = regions_.Bytes();
}

void FlashMemory::Clear(const Host& host) {
    if (pages_ == nullptr) {
        return;
    }
    for (uint32_t index = 0; index < PageCount(); ++index) {
        if (pages_[index] != nullptr) {
            host.release(host.context, pages_[index]);
        }
    }
    host.release(host.context, pages_);
    pages_ = nullptr;
}

void FlashMemory::Read(uint32_t offset, uint8_t* bytes, uint32_t length) const {
    if (pages_ == nullptr) {
        PutFlash(origin_, regions_, ByteWindow(offset, bytes, length));
        return;
    }
    ForEachPage(offset, length, [&](uint32_t page, uint32_t inPage, uint32_t done, uint32_t part) {
        if (const uint8_t* kept = PageAt(page); kept != nullptr) {
            std::memcpy(bytes + done, kept + inPage, part);
        } else {
            PutFlash(origin_, regions_, ByteWindow(offset + done, bytes + done, part));
        }
        return true;
    });
}

bool FlashMemory::AddPage(const Host& host, uint32_t index) {
    if (pages_ == nullptr) {
        pages_ =
            static_cast<uint8_t**>(host.allocate(host.context, PageCount() * sizeof(uint8_t*)));
    }
    if (pages_ == nullptr) {
        return false;
    }
    auto* page = static_cast<uint8_t*>(host.allocate(host.context, kFlashPageBytes));
    if (page == nullptr) {
        return false;
    }
    const uint32_t offset = index * kFlashPageBytes;
    PutFlash(origin_, regions_, ByteWindow(offset, page, BytesAt(offset)));
    pages_[index] = page;
    return true;
}

bool FlashMemory::Write(const Host& host, uint32_t offset, const uint8_t* bytes, uint32_t length) {
    const bool room = ForEachPage(offset, length, [&](uint32_t page, uint32_t, uint32_t, uint32_t) {
        return PageAt(page) != nullptr || AddPage(host, page);
    });
    return room && ForEachPage(offset, length,
                               [&](uint32_t page, uint32_t inPage, uint32_t done, uint32_t part) {
                                   std::memcpy(PageAt(page) + inPage, bytes + done, part);
                                   return true;
                               });
}

bool FlashMemory::WasWritten(uint32_t offset, uint32_t length) const {
    return !ForEachPage(offset, length, [&](uint32_t page, uint32_t, uint32_t, uint32_t) {
        return PageAt(page) == nullptr;
    });
}

FlashCopy::FlashCopy(const Host& host, const FlashMemory& memory, const PlacedRegion& placed)
    : host_(host),
      bytes_(static_cast<uint8_t*>(host.allocate(host.context, placed.region->size))),
      length_(bytes_ != nullptr ? placed.region->size : 0) {
    if (bytes_ != nullptr) {
        memory.Read(placed.start, bytes_, length_);
    }
}

FlashCopy::~FlashCopy() {
    if (bytes_ != nullptr) {
        host_.release(host_.context, bytes_);
    }
}

}  // namespace vxemu
