// What emulated memory holds where nobody has written: words that follow from their position, so
// that any piece can be made on its own and a misplaced one is noticed.
#pragma once

#include <cstdint>
#include <cstring>

namespace vxemu {

constexpr uint32_t PatternWord(uint64_t position, uint32_t seed) {
    uint64_t mixed = (position + 1) * 0x9E3779B97F4A7C15u + seed;
    mixed = (mixed ^ (mixed >> 29)) * 0xBF58476D1CE4E5B9u;
    return static_cast<uint32_t>(mixed >> 32);
}

// A window of a sequence of 32-bit words: takes words at any place and keeps what lies inside.
class WordWindow {
  public:
    WordWindow(uint64_t offset, uint8_t* bytes, uint32_t length)
        : offset_(offset), bytes_(bytes), length_(length) {}

    // Words of the sequence that the window touches: First() up to, but not, End().
    uint64_t First() const { return offset_ / sizeof(uint32_t); }
    uint64_t End() const { return (offset_ + length_ + sizeof(uint32_t) - 1) / sizeof(uint32_t); }

    void Put(uint64_t index, uint32_t word) {
        uint8_t bytes[sizeof word];
        std::memcpy(bytes, &word, sizeof word);
        for (uint32_t at = 0; at < sizeof word; ++at) {
            const uint64_t place = index * sizeof word + at;
            if (place >= offset_ && place - offset_ < length_) {
                bytes_[place - offset_] = bytes[at];
            }
        }
    }

  private:
    uint64_t offset_;
    uint8_t* bytes_;
    uint32_t length_;
};

inline void FillPattern(uint32_t seed, uint64_t offset, uint8_t* bytes, uint32_t length) {
    WordWindow window(offset, bytes, length);
    for (uint64_t index = window.First(); index < window.End(); ++index) {
        window.Put(index, PatternWord(index, seed));
    }
}

}  // namespace vxemu
