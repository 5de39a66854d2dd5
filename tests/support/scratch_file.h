// A path in the temporary folder whose file is deleted at the end.
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>

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
        std::string text;
        // Shared for writing: the library may still have the file open.
        FILE* file = fopen(path_.c_str(), "rb");
        if (file != nullptr) {
            char block[4096];
            for (size_t count; (count = fread(block, 1, sizeof block, file)) > 0;) {
                text.append(block, count);
            }
            fclose(file);
        }
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
