#include "vxmgr/support/batch_lines.h"

namespace vxmgr {
namespace {

class LineSplitter {
  public:
    explicit LineSplitter(std::string_view text) : text_(text) {}

    void Split(BatchLine* line) {
        SkipBlanks();
        while (!text_.empty() && text_.front() != '#') {
            line->words.push_back(TakeWord());
            if (unclosed_ != 0) {
                line->error =
                    unclosed_ == '"' ? "a quote (\") is not closed" : "a quote (') is not closed";
                return;
            }
            SkipBlanks();
        }
    }

  private:
    static bool IsBlank(char c) { return c == ' ' || c == '\t'; }

    void SkipBlanks() {
        while (!text_.empty() && IsBlank(text_.front())) {
            text_.remove_prefix(1);
        }
    }

    std::string TakeWord() {
        std::string word;
        while (!text_.empty() && (unclosed_ != 0 || !IsBlank(text_.front()))) {
            const char c = text_.front();
            if (unclosed_ != '\'' && text_.starts_with("\\\"")) {
                word += '"';
                text_.remove_prefix(2);
                continue;
            }
            text_.remove_prefix(1);
            if (unclosed_ == 0 && (c == '"' || c == '\'')) {
                unclosed_ = c;
            } else if (c == unclosed_) {
                unclosed_ = 0;
            } else {
                word += c;
            }
        }
        return word;
    }

    std::string_view text_;
    char unclosed_ = 0;
};

}  // namespace

std::vector<BatchLine> SplitBatch(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";  // some editors write it in front of UTF-8
    if (text.starts_with(kMark)) {
        text.remove_prefix(kMark.size());
    }
    std::vector<BatchLine> lines;
    for (size_t number = 1; !text.empty(); ++number) {
        std::string_view own = text.substr(0, text.find('\n'));
        text.remove_prefix(own.size() < text.size() ? own.size() + 1 : own.size());
        if (own.ends_with('\r')) {
            own.remove_suffix(1);
        }
        BatchLine line{number, {}, {}};
        if (own.find('\0') != std::string_view::npos) {
            line.error = "the file is no UTF-8 text: save it as UTF-8";
            return {line};
        }
        LineSplitter(own).Split(&line);
        if (!line.words.empty() || !line.error.empty()) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

}  // namespace vxmgr
