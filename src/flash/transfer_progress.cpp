#include "flash/transfer_progress.h"

#include <windows.h>

#include "frame/handle_table.h"
#include "frame/owned.h"

namespace flash {
namespace {

struct Listener {
    HX_FLASH_PROGRESS progress;
    void* context;
};

Listener listeners[frame::kHandleRecords];
SRWLOCK listenersLock = SRWLOCK_INIT;

void SetListener(uint32_t handle, const Listener& listener) {
    const frame::ExclusiveHold alone(listenersLock);
    listeners[handle] = listener;
}

// A copy: the function is called without the lock.
Listener ListenerOf(uint32_t handle) {
    const frame::SharedHold hold(listenersLock);
    return handle < frame::kHandleRecords ? listeners[handle] : Listener{};
}

}  // namespace

HX_STATUS SetProgress(uint32_t handle, HX_FLASH_PROGRESS progress, void* context) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    SetListener(handle, {progress, context});
    return HXMGT_SUCCESS;
}

void ForgetProgress(uint32_t handle) {
    if (handle < frame::kHandleRecords) {
        SetListener(handle, {});
    }
}

HX_STATUS TellProgress(uint32_t handle, uint32_t region, uint32_t done, uint32_t total) {
    const Listener listener = ListenerOf(handle);
    return listener.progress == nullptr ? HX_STATUS{HXMGT_SUCCESS}
                                        : listener.progress(listener.context, region, done, total);
}

}  // namespace flash
