// What a model needs from whoever runs it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxemu {

struct Host {
    void* context;
    void* (*allocate)(void* context, size_t bytes);  // zeroed, or null
    void (*release)(void* context, void* block);
    uint64_t (*milliseconds)(void* context);  // a clock that never goes back

    uint64_t Now() const { return milliseconds(context); }
};

}  // namespace vxemu
