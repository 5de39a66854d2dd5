// HKEY_LOCAL_MACHINE of this process, led to an empty key of the test.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace support {

class ScratchRegistry {
  public:
    ScratchRegistry();
    ~ScratchRegistry();
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;

    struct Value {
        bool exists = false;
        DWORD type = 0;
        std::vector<uint8_t> bytes;
        // The text without its terminator.
        std::string Text() const;
    };

    // Paths are below HKEY_LOCAL_MACHINE; a missing key is made.
    void SetText(const std::string& key, const char* name, std::string_view text);
    void SetRaw(const std::string& key, const char* name, DWORD type, const void* bytes,
                uint32_t length);
    void MakeKey(const std::string& key);
    Value Read(const std::string& key, const char* name) const;
    bool HasKey(const std::string& key) const;

  private:
    std::string path_;
    HKEY root_ = nullptr;
};

}  // namespace support
