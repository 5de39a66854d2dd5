#include "output.h"

#include "console.h"

namespace tools {

Output::~Output() {
    if (file_ != nullptr) {
        std::fclose(file_);
    }
}

uint32_t Output::Open(const std::string& path) {
    if (path.empty() || path == "-") {
        return 0;
    }
    uint32_t error = 0;
    file_ = console::CreateForWriting(path, &error);
    return file_ == nullptr ? error : 0;
}

bool Output::Write(const std::string& text) {
    const std::lock_guard guard(lock_);
    return !closed_ && WriteLocked(text);
}

bool Output::Close(const std::string& last) {
    const std::lock_guard guard(lock_);
    if (!closed_) {
        WriteLocked(last);
        closed_ = true;
        if (file_ != nullptr) {
            failed_ = std::fclose(file_) != 0 || failed_;
            file_ = nullptr;
        }
    }
    return !failed_;
}

bool Output::WriteLocked(const std::string& text) {
    if (!text.empty() && !console::Write(file_ == nullptr ? stdout : file_, text)) {
        failed_ = true;
    }
    return !failed_;
}

}  // namespace tools
