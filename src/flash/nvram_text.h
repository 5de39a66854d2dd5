// The NVRAM text file: one line for each variable of a classic block. Free of platform headers.
#pragma once

#include <bitset>
#include <cstdint>
#include <span>
#include <string_view>

#include "flash/nvram_variables.h"

namespace flash {

inline constexpr size_t kLongestLine = 256;  // characters; longer ones count as several lines

// The line of a variable, with its end.
using VariableLine = char[128];
void FormatVariableLine(std::span<const uint8_t, kClassicBlock> block, uint32_t index,
                        VariableLine& line);

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
