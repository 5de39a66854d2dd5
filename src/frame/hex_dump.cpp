#include "frame/hex_dump.h"

#include <string_view>

namespace frame {
namespace {

bool IsPrintable(uint8_t byte) {
    return byte >= 0x20 && byte < 0x7F;
}

class RowWriter {
  public:
    explicit RowWriter(char* out) : out_(out) {}

    void Text(std::string_view text) {
        for (const char c : text) {
            *out_++ = c;
        }
    }
    void Hex(size_t number, int digits) {
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
            *out_++ = "0123456789abcdef"[(number >> shift) & 0xF];
        }
    }
    void Character(char c) { *out_++ = c; }

  private:
    char* out_;
};

// "  %04x : ", 16 x " %02x", "  :  ", 16 characters, newline and terminator.
static_assert(kDumpRowText >= 9 + 3 * kDumpRowBytes + 5 + kDumpRowBytes + 2);

}  // namespace

void FormatDumpRow(std::span<const uint8_t> data, size_t offset, DumpRowText& text) {
    RowWriter row(text);
    row.Text("  ");
    row.Hex(offset, 4);
    row.Text(" : ");
    for (size_t i = offset; i < offset + kDumpRowBytes; ++i) {
        if (i < data.size()) {
            row.Text(" ");
            row.Hex(data[i], 2);
        } else {
            row.Text("   ");
        }
    }
    row.Text("  :  ");
    for (size_t i = offset; i < offset + kDumpRowBytes; ++i) {
        if (i >= data.size()) {
            row.Character(' ');
        } else {
            row.Character(IsPrintable(data[i]) ? static_cast<char>(data[i]) : '.');
        }
    }
    row.Text(std::string_view("\n\0", 2));
}

}  // namespace frame
