// Memory that ends where an inaccessible page begins: a write or read one byte too far faults.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace support {

class GuardedBuffer {
  public:
    explicit GuardedBuffer(size_t size, uint8_t fill = 0xEE) : size_(size) {
        SYSTEM_INFO system;
        GetSystemInfo(&system);
        const size_t page = system.dwPageSize;
        const size_t usable = (size + page - 1) / page * page;
        base_ = static_cast<uint8_t*>(
            VirtualAlloc(nullptr, usable + page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD protection;
        VirtualProtect(base_ + usable, page, PAGE_NOACCESS, &protection);
        data_ = base_ + usable - size;
        memset(data_, fill, size);
    }
    ~GuardedBuffer() { VirtualFree(base_, 0, MEM_RELEASE); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    uint8_t* Data() { return data_; }
    size_t Size() const { return size_; }
    uint8_t operator[](size_t index) const { return data_[index]; }
    std::vector<uint8_t> First(size_t count) const { return {data_, data_ + count}; }
    void Fill(uint8_t value) { memset(data_, value, size_); }
    // Whether bytes [from, to) all still have the value.
    bool Holds(uint8_t value, size_t from, size_t to) const {
        for (size_t i = from; i < to; ++i) {
            if (data_[i] != value) {
                return false;
            }
        }
        return true;
    }
    bool Holds(uint8_t value) const { return Holds(value, 0, size_); }
    // These bytes, and behind them what the buffer was filled with.
    testing::AssertionResult Is(std::vector<uint8_t> bytes, uint8_t fill = 0xEE) const {
        bytes.resize(size_, fill);
        return First(size_) == bytes ? testing::AssertionSuccess()
                                     : testing::AssertionFailure()
                                           << testing::PrintToString(First(size_)) << " is not "
                                           << testing::PrintToString(bytes);
    }

  private:
    size_t size_;
    uint8_t* base_;
    uint8_t* data_;
};

// A record that ends at an inaccessible page and is filled with 0xEE before the call.
template <typename Record>
class Guarded {
  public:
    explicit Guarded(uint8_t fill = 0xEE) : buffer_(sizeof(Record), fill) {}
    Record* Get() { return reinterpret_cast<Record*>(buffer_.Data()); }
    Record* operator->() { return Get(); }
    GuardedBuffer& Raw() { return buffer_; }

  private:
    GuardedBuffer buffer_;
};

}  // namespace support
