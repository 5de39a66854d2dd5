#include "flash/nvram_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>

namespace flash {
namespace {

using ConstBlock = std::span<const uint8_t, kClassicBlock>;

// What stands in front of a signature that was written here.
constexpr std::string_view kSignatureLead =
    "id                                      [\"4 characters\"] = \"";
constexpr size_t kSignatureEnd = kSignatureLead.size() + sizeof kNvramSignature;

size_t FormatSignatureLine(ConstBlock block, VariableLine& line) {
    const bool none = block[0] == 0;
    char* end = std::copy(kSignatureLead.begin(), kSignatureLead.end(), line);
    end = none ? std::copy(std::begin(kNvramSignature), std::end(kNvramSignature), end)
               : std::copy_n(block.begin(), sizeof kNvramSignature, end);
    *end++ = '"';
    *end++ = '\n';
    return static_cast<size_t>(end - line);
}

// The decimal number that a text begins with; nothing without a digit.
std::optional<uint32_t> Number(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end == text.data() || error != std::errc{}) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(negative ? 0 - number : number);
}

uint32_t WordOf(std::span<const char, sizeof kNvramSignature> text) {
    uint32_t number = 0;
    std::memcpy(&number, text.data(), sizeof number);
    return number;
}

// The signature behind an '=': a blank and a quotation mark, then four characters.
uint32_t SignatureOf(std::string_view value) {
    constexpr size_t kLead = 2;
    std::array<char, sizeof kNvramSignature> text{};
    if (value.size() < text.size()) {
        std::copy(std::begin(kNvramSignature), std::end(kNvramSignature), text.begin());
    } else {
        value = value.substr(std::min(kLead, value.size()), text.size());
        std::copy(value.begin(), value.end(), text.begin());
    }
    return WordOf(text);
}

}  // namespace

size_t FormatVariableLine(ConstBlock block, uint32_t index, VariableLine& line) {
    if (index == kSignatureVariable) {
        return FormatSignatureLine(block, line);
    }
    const Variable& variable = kVariableTable[index];
    char range[24];
    std::snprintf(range, sizeof range, "[0-%lu]",
                  static_cast<unsigned long>(MaskOf(variable.width)));
    return static_cast<size_t>(std::snprintf(
        line, sizeof line, "%-40s%s = %d\n", variable.name != nullptr ? variable.name : "", range,
        static_cast<int>(GetVariable(block, BlockKind::Classic, index))));
}

std::optional<std::string_view> LineReader::Take(char character) {
    const bool isSignature = SoFar().starts_with(kSignatureLead) && size_ <= kSignatureEnd;
    if (character != '\n' || (isSignature && size_ < kSignatureEnd)) {
        text_[size_++] = character;
        return size_ == kLongestLine ? std::optional(Rest()) : std::nullopt;
    }
    if (SoFar().ends_with('\r') && !isSignature) {
        --size_;
    }
    return Rest();
}

std::string_view LineReader::Rest() {
    const std::string_view line = SoFar();
    size_ = 0;
    return line;
}

VariableReader::VariableReader(std::span<uint8_t, kClassicBlock> block, bool clear, bool keep)
    : block_(block) {
    std::array<uint8_t, kClassicBlock> before;
    std::copy(block.begin(), block.end(), before.begin());
    if (clear) {
        std::fill(block.begin(), block.end(), uint8_t{0});
    }
    if (keep) {
        return;
    }
    for (uint32_t index = 0; index < kVariables; ++index) {
        if (IsReadOnly(before, index)) {
            done_.set(index);
            SetVariable(block, BlockKind::Classic, index,
                        GetVariable(before, BlockKind::Classic, index));
        }
    }
}

void VariableReader::TakeLine(std::string_view line) {
    if (line.empty() || line.front() == ';') {
        return;
    }
    for (uint32_t index = 0; index < kVariables; ++index) {
        const char* const name = kVariableTable[index].name;
        if (!done_[index] && name != nullptr && line.starts_with(name)) {
            done_[index] = Take(index, line);
            return;
        }
    }
}

bool VariableReader::Take(uint32_t index, std::string_view line) {
    std::optional<uint32_t> number;
    if (index == kSignatureVariable && line.starts_with(kSignatureLead) &&
        line.size() >= kSignatureEnd) {
        // Any of the four may be an '='.
        number =
            WordOf(std::span<const char>(line).subspan<kSignatureLead.size(), sizeof *number>());
    } else if (const size_t equals = line.rfind('='); equals != std::string_view::npos) {
        const std::string_view value = line.substr(equals + 1);
        number = index == kSignatureVariable ? SignatureOf(value) : Number(value);
    }
    if (!number) {
        return false;
    }
    SetVariable(block_, BlockKind::Classic, index, *number);
    return true;
}

}  // namespace flash
