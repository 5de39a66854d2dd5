// What a model needs from whoever runs it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxemu {

struct HostFiles;

struct Host {
    void* context;
    void* (*allocate)(void* context, size_t bytes);  // zeroed, or null
    void (*release)(void* context, void* block);
    uint64_t (*milliseconds)(void* context);  // a clock that never goes back

    // Around what requests change together that run side by side (access.h); null where the host
    // lets one run at a time.
    void (*enter)(void* context) = nullptr;
    void (*leave)(void* context) = nullptr;

    // The process that the request at hand comes from; null where the host does not know.
    uint32_t (*process)(void* context) = nullptr;

    // Where what the adapters store lasts; null where it goes with the model.
    const HostFiles* files = nullptr;

    uint32_t Process() const { return process != nullptr ? process(context) : 0; }
    uint64_t Now() const { return milliseconds(context); }

    template <typename Action>
    auto Together(Action action) const {
        if (enter == nullptr) {
            return action();
        }
        enter(context);
        const auto result = action();
        leave(context);
        return result;
    }
};

}  // namespace vxemu
