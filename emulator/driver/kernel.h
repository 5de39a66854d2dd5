// The kernel's own interface, and what every file of the driver needs of it.
#pragma once

// MinGW defines two functions both in intrin.h and in wdm.h, which C++ refuses; wdm.h's get
// another name.
#ifdef __MINGW32__
#include <intrin.h>
#define InterlockedBitTestAndSet WdmInterlockedBitTestAndSet
#define InterlockedBitTestAndReset WdmInterlockedBitTestAndReset
#endif
#include <ntifs.h>  // ntddk.h, and what files have beyond it
#ifdef __MINGW32__
#undef InterlockedBitTestAndSet
#undef InterlockedBitTestAndReset
#endif

#include <cstddef>
#include <cstdint>

namespace driver {

inline constexpr ULONG kPoolTag = 0x656D7876;  // "vxme"

// Before anything else: the word of the stack checks becomes one that nobody knows.
void SeedStackGuard();

// Zeroed memory that is never paged out, or null.
void* Allocate(size_t bytes);
void Release(void* block);

// A short wide text made of a prefix, a number and a suffix, for the names of objects and keys.
class ObjectName {
  public:
    explicit ObjectName(const wchar_t* prefix) { Append(prefix); }
    ObjectName(const wchar_t* prefix, uint32_t number, const wchar_t* suffix = L"") {
        Append(prefix);
        AppendNumber(number);
        Append(suffix);
    }
    // Plain ASCII behind the prefix.
    ObjectName(const wchar_t* prefix, const char* text, const char* suffix = "") {
        Append(prefix);
        Append(text);
        Append(suffix);
    }
    ObjectName(const ObjectName&) = delete;
    ObjectName& operator=(const ObjectName&) = delete;

    UNICODE_STRING* Get() {
        string_.Buffer = text_;
        string_.Length = static_cast<USHORT>(length_ * sizeof text_[0]);
        string_.MaximumLength = sizeof text_;
        return &string_;
    }

  private:
    template <typename Character>
    void Append(const Character* text) {
        for (; *text != 0 && length_ < kCapacity; ++text) {
            text_[length_++] = static_cast<wchar_t>(*text);
        }
    }
    void AppendNumber(uint32_t number) {
        wchar_t digits[11] = {};
        uint32_t at = 10;
        do {
            digits[--at] = static_cast<wchar_t>(L'0' + number % 10);
            number /= 10;
        } while (number != 0);
        Append(digits + at);
    }

    static constexpr uint32_t kCapacity = 80;
    wchar_t text_[kCapacity];
    uint32_t length_ = 0;
    UNICODE_STRING string_;
};

// An open registry key, closed at the end of its scope.
class Key {
  public:
    Key() = default;
    ~Key() {
        if (handle_ != nullptr) {
            ZwClose(handle_);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HANDLE Get() const { return handle_; }
    HANDLE* Receive() { return &handle_; }

  private:
    HANDLE handle_ = nullptr;
};

inline OBJECT_ATTRIBUTES AttributesOf(HANDLE parent, UNICODE_STRING* name) {
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, parent,
                               nullptr);
    return attributes;
}

}  // namespace driver
