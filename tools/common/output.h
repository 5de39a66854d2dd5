// Where results go: stdout or a file, at once or as they come. A gate, so that a command that was
// given up can print nothing more once its last words are out.
#pragma once

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

namespace tools {

class Output {
  public:
    Output() = default;
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Sends the result to a file; "" and "-" mean stdout. Returns a Windows error code, or 0.
    // AtOnce: under a temporary name, which Close turns into the file's own: whoever reads the file
    // meets the whole result or the whole one before. Without a result the file stays as it was.
    enum class Appears : uint8_t { AsItComes, AtOnce };
    uint32_t Open(const std::string& path, Appears appears = Appears::AsItComes);

    bool IsStdout() const { return file_ == nullptr; }

    // False when the bytes did not go out (a closed pipe, a full disk), or after Close.
    bool Write(const std::string& text);

    // Lets this last text through and nothing after it. False when any write failed.
    bool Close(const std::string& last);

    // After that: why the file did not get its name. A Windows error code, or 0.
    uint32_t Error() const { return error_; }

  private:
    bool WriteLocked(const std::string& text);
    void CloseFile();

    std::mutex lock_;
    std::FILE* file_ = nullptr;
    std::string path_;       // of a file that appears at once
    std::string temporary_;  // its name until then
    bool wrote_ = false;
    uint32_t error_ = 0;
    bool closed_ = false;
    bool failed_ = false;
};

}  // namespace tools
