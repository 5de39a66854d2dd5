// Move-only owners of platform resources: released on every path, no manual close.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace frame {

// Traits names the type, its empty value and how it is closed.
template <class Traits>
class Owned {
  public:
    using Value = typename Traits::Value;

    Owned() = default;
    explicit Owned(Value value) : value_(value) {}
    Owned(Owned&& other) noexcept : value_(other.Release()) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            Reset(other.Release());
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { Reset(Traits::Empty()); }

    Value Get() const { return value_; }
    bool Valid() const { return value_ != Traits::Empty(); }
    Value Release() { return std::exchange(value_, Traits::Empty()); }
    void Reset(Value value) {
        if (Valid()) {
            Traits::Close(value_);
        }
        value_ = value;
    }
    // For functions that store a new value through a pointer.
    Value* Receive() {
        Reset(Traits::Empty());
        return &value_;
    }

  private:
    Value value_ = Traits::Empty();
};

struct FileTraits {
    using Value = HANDLE;
    static Value Empty() { return INVALID_HANDLE_VALUE; }
    static void Close(Value value) { CloseHandle(value); }
};
using OwnedFile = Owned<FileTraits>;

struct ObjectTraits {
    using Value = HANDLE;
    static Value Empty() { return nullptr; }
    static void Close(Value value) { CloseHandle(value); }
};
using OwnedObject = Owned<ObjectTraits>;

struct KeyTraits {
    using Value = HKEY;
    static Value Empty() { return nullptr; }
    static void Close(Value value) { RegCloseKey(value); }
};
using OwnedKey = Owned<KeyTraits>;

struct StreamTraits {
    using Value = FILE*;
    static Value Empty() { return nullptr; }
    static void Close(Value value) { std::fclose(value); }
};
using OwnedStream = Owned<StreamTraits>;

// Holds a mutex that has been waited for, and gives it back.
class MutexHold {
  public:
    explicit MutexHold(HANDLE mutex) : mutex_(mutex) {}
    MutexHold(const MutexHold&) = delete;
    MutexHold& operator=(const MutexHold&) = delete;
    ~MutexHold() { ReleaseMutex(mutex_); }

  private:
    HANDLE mutex_;
};

// Holds a lock of this process, shared or alone.
class SharedHold {
  public:
    explicit SharedHold(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockShared(&lock_); }
    SharedHold(const SharedHold&) = delete;
    SharedHold& operator=(const SharedHold&) = delete;
    ~SharedHold() { ReleaseSRWLockShared(&lock_); }

  private:
    SRWLOCK& lock_;
};

class ExclusiveHold {
  public:
    explicit ExclusiveHold(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    ExclusiveHold(const ExclusiveHold&) = delete;
    ExclusiveHold& operator=(const ExclusiveHold&) = delete;
    ~ExclusiveHold() { ReleaseSRWLockExclusive(&lock_); }

  private:
    SRWLOCK& lock_;
};

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};
// Request buffers. An empty one means that memory ran out.
using Bytes = std::unique_ptr<uint8_t, FreeDeleter>;

inline Bytes UnclearedBytes(size_t size) {
    return Bytes(static_cast<uint8_t*>(std::malloc(size)));
}
inline Bytes ZeroedBytes(size_t size) {
    return Bytes(static_cast<uint8_t*>(std::calloc(size, 1)));
}

}  // namespace frame
