// Every call of the library that takes a handle, as rows: what is the same for all of them is
// tested over all of them.
#pragma once

#include <span>
#include <vector>

#include "hbaapi.h"
#include "hxmgtapi.h"

namespace support {

// Stands for whatever record or buffer a call wants in its place.
class Pointer {
  public:
    explicit Pointer(void* at = nullptr) : at_(at) {}
    template <typename Record>
    operator Record*() const {
        return static_cast<Record*>(at_);
    }

  private:
    void* at_;
};

// Two buffers, a length or small record by address, a destination and a command block.
struct Arguments {
    Pointer a, b, length, target, block;
};

// What the arguments point to.
class ArgumentMemory {
  public:
    // So many bytes in each of the buffers.
    explicit ArgumentMemory(size_t bytes, uint8_t fill = 0);
    Arguments All();
    // The one of the letter is null: a, b, l, t or c.
    Arguments Without(char letter);
    bool Holds(uint8_t fill) const;
    // All zero, as it was made.
    void Clear();

  private:
    std::vector<uint8_t> first_, second_;
    uint32_t length_[16] = {};
    HX_SCSI_ADDRESS target_ = {HX_ADDRESS_BUS_TARGET, {}, 0};
    uint8_t block_[16] = {};
};

struct ApiCall {
    static constexpr uint32_t kOwnRules = 0xFFFFFFFF;

    const char* name;
    uint32_t (*run)(uint32_t handle, const Arguments& arguments);
    const char* required;  // the arguments that may not be null, by their letters
    uint32_t badHandle;    // status of a handle that is not open, or kOwnRules
    uint32_t nullPointer;  // status of a required argument that is null
};
std::span<const ApiCall> ApiCalls();

}  // namespace support
