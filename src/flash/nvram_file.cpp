#include <cstdio>
#include <cstring>

#include "flash/flash.h"
#include "flash/nvram_text.h"
#include "frame/owned.h"

namespace flash {
namespace {

struct StreamTraits {
    using Value = FILE*;
    static Value Empty() { return nullptr; }
    static void Close(Value value) { std::fclose(value); }
};
using OwnedStream = frame::Owned<StreamTraits>;

}  // namespace

bool WriteNvramFile(const void* block, const char* path) {
    if (block == nullptr || path == nullptr) {
        return false;
    }
    OwnedStream file(std::fopen(path, "w"));
    if (!file.Valid()) {
        return false;
    }
    const std::span<const uint8_t, kClassicBlock> bytes(static_cast<const uint8_t*>(block),
                                                        kClassicBlock);
    bool written = true;
    for (uint32_t index = 0; index < kVariables; ++index) {
        VariableLine line;
        FormatVariableLine(bytes, index, line);
        written &= std::fputs(line, file.Get()) >= 0;
    }
    // Closing writes the rest; a full disk may show only here.
    return (std::fclose(file.Release()) == 0) && written;
}

bool ReadNvramFile(const char* path, void* block, uint32_t mode, bool keep) {
    constexpr uint32_t kClearFirst = 1;
    if (block == nullptr || path == nullptr) {
        return false;
    }
    const std::span<uint8_t, kClassicBlock> bytes(static_cast<uint8_t*>(block), kClassicBlock);
    // The block is prepared before the file is opened: intended.
    VariableReader reader(bytes, mode == kClearFirst, keep);
    const OwnedStream file(std::fopen(path, "r"));
    if (!file.Valid()) {
        return false;
    }
    char line[kLongestLine + 1];
    while (std::fgets(line, sizeof line, file.Get()) != nullptr) {
        std::string_view text(line);
        if (text.ends_with('\n')) {
            text.remove_suffix(1);
        }
        reader.TakeLine(text);
    }
    return true;
}

}  // namespace flash
