#include <cstdio>
#include <cstring>

#include "flash/flash.h"
#include "flash/nvram_text.h"
#include "frame/owned.h"

namespace flash {

bool WriteNvramFile(const void* block, const char* path) {
    if (block == nullptr || path == nullptr) {
        return false;
    }
    // Lines get their ends here: in a text stream the characters of a signature would change.
    frame::OwnedStream file(std::fopen(path, "wb"));
    if (!file.Valid()) {
        return false;
    }
    const std::span<const uint8_t, kClassicBlock> bytes(static_cast<const uint8_t*>(block),
                                                        kClassicBlock);
    bool written = true;
    for (uint32_t index = 0; index < kVariables; ++index) {
        VariableLine line;
        const size_t length = FormatVariableLine(bytes, index, line) - 1;
        written &= std::fwrite(line, 1, length, file.Get()) == length;
        written &= std::fputs("\r\n", file.Get()) >= 0;
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
    const frame::OwnedStream file(std::fopen(path, "rb"));
    if (!file.Valid()) {
        return false;
    }
    LineReader lines;
    for (int character; (character = std::getc(file.Get())) != EOF;) {
        if (const auto line = lines.Take(static_cast<char>(character))) {
            reader.TakeLine(*line);
        }
    }
    reader.TakeLine(lines.Rest());
    return true;
}

}  // namespace flash
