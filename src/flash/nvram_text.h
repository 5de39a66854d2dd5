// The NVRAM text file: one line for each variable of a classic block. Free of platform headers.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "flash/nvram_variables.h"

namespace flash {

inline constexpr size_t kLongestLine = 256;  // characters; longer ones count as several lines

// The line of a variable, with its end. Returns its length: the four characters of a signature are
// written as they are, and may be any.
using VariableLine = char[128];
size_t FormatVariableLine(std::span<const uint8_t, kClassicBlock> block, uint32_t index,
                          VariableLine& line);

// Makes lines of the characters of a file. Those of a signature count as they are, whatever they
// mean elsewhere.
class LineReader {
  public:
    // The line that the character ends, without its end; it stands until the next call.
    std::optional<std::string_view> Take(char character);
    // What there is of a line at the end of the file.
    std::string_view Rest();

  private:
    std::string_view SoFar() const { return {text_, size_}; }

    char text_[kLongestLine];
    size_t size_ = 0;
};

// Takes a file's lines into a block.
class VariableReader {
  public:
    // clear: the block is zeroed first; unless keep, read-only variables then get their old values
    // back and take none from lines.
    VariableReader(std::span<uint8_t, kClassicBlock> block, bool clear, bool keep);

    void TakeLine(std::string_view line);

  private:
    bool Take(uint32_t index, std::string_view line);

    std::span<uint8_t, kClassicBlock> block_;
    std::bitset<kVariables> done_;
};

}  // namespace flash
