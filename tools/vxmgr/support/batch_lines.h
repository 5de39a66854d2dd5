// The lines of a batch file as words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vxmgr {

struct BatchLine {
    size_t number = 0;  // in the file, from 1
    std::vector<std::string> words;
    std::string error;  // why it has none
};

// Blanks separate words. "..." and '...' keep blanks, also in the middle of a word; \" stands for a
// quote, within "..." and without, and any other backslash for itself, as paths have it. A '#'
// where a word would begin makes the rest a comment. Lines without words are left out.
std::vector<BatchLine> SplitBatch(std::string_view text);

}  // namespace vxmgr
