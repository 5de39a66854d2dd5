// A path in the temporary folder whose file is deleted at the end.
#pragma once

#include <string>

#include "support/program.h"

namespace support {

class ScratchFile {
  public:
    ScratchFile() {
        char folder[MAX_PATH];
        char name[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        GetTempFileNameA(folder, "vxt", 0, name);
        path_ = name;
    }
    ~ScratchFile() { DeleteFileA(path_.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& Path() const { return path_; }

    std::string Contents(bool asText = true) const {
        std::string text = TextOfFile(path_);
        // The text streams of the C runtime end lines with two characters.
        for (size_t at; asText && (at = text.find("\r\n")) != std::string::npos;) {
            text.erase(at, 1);
        }
        return text;
    }

  private:
    std::string path_;
};

}  // namespace support
