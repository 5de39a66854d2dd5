// Builds a short text in a field: what does not fit is cut, and the text is always terminated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace formats {

class TextWriter {
  public:
    template <size_t size>
    explicit TextWriter(char (&field)[size]) : field_(field), size_(size) {
        std::memset(field, 0, size);
    }

    TextWriter& Text(const char* text) {
        for (; *text != 0; ++text) {
            Put(*text);
        }
        return *this;
    }
    // Decimal, with leading zeros up to that many digits.
    TextWriter& Number(uint32_t number, uint32_t leastDigits = 1) {
        char digits[10];
        uint32_t count = 0;
        do {
            digits[count++] = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number != 0 || count < leastDigits);
        while (count != 0) {
            Put(digits[--count]);
        }
        return *this;
    }

  private:
    void Put(char character) {
        if (length_ + 1 < size_) {
            field_[length_++] = character;
        }
    }

    char* field_;
    size_t size_;
    size_t length_ = 0;
};

}  // namespace formats
