// A window of a sequence of bytes that is made rather than kept: takes pieces at any place and
// keeps what lies inside.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "model/bytes/pattern.h"

namespace vxemu {

class ByteWindow {
  public:
    ByteWindow(uint32_t offset, uint8_t* bytes, uint32_t length)
        : offset_(offset), bytes_(bytes), length_(length) {}

    // Bytes of the sequence that the window shows: Begin() up to, but not, End().
    uint32_t Begin() const { return offset_; }
    uint32_t End() const { return offset_ + length_; }
    bool Empty() const { return length_ == 0; }

    // The part of the window that lies within length bytes from at, as a window of these alone.
    ByteWindow Part(uint32_t at, uint32_t length) const {
        const uint32_t begin = std::max(at, Begin());
        const uint32_t end = std::min(at + length, End());
        return begin < end ? ByteWindow(begin - at, bytes_ + (begin - offset_), end - begin)
                           : ByteWindow(0, bytes_, 0);
    }

    void Put(uint32_t at, const void* bytes, uint32_t length) {
        const ByteWindow part = Part(at, length);
        if (!part.Empty()) {
            std::memcpy(part.bytes_, static_cast<const uint8_t*>(bytes) + part.offset_,
                        part.length_);
        }
    }
    template <typename Record>
    void PutRecord(uint32_t at, const Record& record) {
        Put(at, &record, sizeof record);
    }
    void Fill(uint32_t at, uint32_t length, uint8_t value) {
        const ByteWindow part = Part(at, length);
        std::memset(part.bytes_, value, part.length_);
    }
    void Pattern(uint32_t at, uint32_t length, uint32_t seed) {
        const ByteWindow part = Part(at, length);
        FillPattern(seed, part.offset_, part.bytes_, part.length_);
    }

  private:
    uint32_t offset_;
    uint8_t* bytes_;
    uint32_t length_;
};

// Calls visit(bytes, length) for consecutive pieces of the first length bytes of a sequence that
// put(window) makes.
template <typename Make, typename Visit>
void ForEachPiece(uint32_t length, Make make, Visit visit) {
    uint8_t piece[256];
    for (uint32_t done = 0; done < length;) {
        const uint32_t part = std::min(length - done, static_cast<uint32_t>(sizeof piece));
        make(ByteWindow(done, piece, part));
        visit(piece, part);
        done += part;
    }
}

}  // namespace vxemu
