#include "output.h"

#include "console.h"

namespace tools {

Output::~Output() {
    failed_ = true;  // what was not closed is not whole
    CloseFile();
}

uint32_t Output::Open(const std::string& path, Appears appears) {
    if (path.empty() || path == "-") {
        return 0;
    }
    uint32_t error = 0;
    if (appears == Appears::AtOnce) {
        if (error = console::CanBeReplaced(path); error != 0) {
            return error;
        }
        path_ = path;
        temporary_ = path + ".part";
    }
    file_ = console::CreateForWriting(temporary_.empty() ? path : temporary_, &error);
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
        CloseFile();
    }
    return !failed_;
}

bool Output::WriteLocked(const std::string& text) {
    wrote_ = wrote_ || !text.empty();
    if (!text.empty() && !console::Write(file_ == nullptr ? stdout : file_, text)) {
        failed_ = true;
    }
    return !failed_;
}

void Output::CloseFile() {
    if (file_ == nullptr) {
        return;
    }
    failed_ = std::fclose(file_) != 0 || failed_;
    file_ = nullptr;
    if (temporary_.empty()) {
        return;
    }
    if (!failed_ && wrote_) {
        error_ = console::Replace(temporary_, path_);
        failed_ = error_ != 0;
    }
    if (failed_ || !wrote_) {
        console::Remove(temporary_);
    }
}

}  // namespace tools
