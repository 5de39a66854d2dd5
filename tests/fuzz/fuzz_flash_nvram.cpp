// NVRAM blocks that hold anything, and text files that say anything.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "flash/nvram_text.h"
#include "flash/nvram_variables.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace flash;
    if (size < 8) {
        return 0;
    }
    const uint32_t index = data[0];
    uint32_t value;
    std::memcpy(&value, data + 1, sizeof value);
    const bool clear = (data[5] & 1) != 0;
    const bool keep = (data[5] & 2) != 0;
    std::array<uint8_t, kClassicBlock> classic{};
    std::array<uint8_t, kExtendedBlock> extended{};
    for (size_t i = 0; i < extended.size(); ++i) {
        extended[i] = data[i % size];
        classic[i % kClassicBlock] = data[(i * 3 + 1) % size];
    }

    // A value that is stored is found again, cut to its width.
    const bool changed = SetVariable(extended, BlockKind::Extended, index, value);
    if (changed) {
        const uint32_t mask = MaskOf(kVariableTable[index].extendedWidth);
        Require(GetVariable(extended, BlockKind::Extended, index) == (value & mask));
    }
    formats::MakeChecksum(BlockKind::Extended, extended);

    // Lines of any kind leave read-only variables alone.
    const std::array<uint8_t, kClassicBlock> before = classic;
    VariableReader reader(classic, clear, keep);
    std::string_view text(reinterpret_cast<const char*>(data) + 6, size - 6);
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        reader.TakeLine(line);
        text.remove_prefix(std::min(text.size(), line.size() + 1));
    }
    for (uint32_t i = 0; i < kVariables; ++i) {
        if (!keep && IsReadOnly(before, i)) {
            Require(GetVariable(classic, BlockKind::Classic, i) ==
                    GetVariable(before, BlockKind::Classic, i));
        }
        VariableLine line;
        const size_t length = FormatVariableLine(classic, i, line);
        Require(length <= sizeof line && line[length - 1] == '\n');
    }
    return 0;
}
