// Which generation of driver a query goes to.
#pragma once

#include "frame/handle_table.h"

namespace properties {

// Checks handle and record; the caller asks the driver only when this is HXMGT_SUCCESS.
inline HX_STATUS CheckQuery(uint32_t handle, const void* record) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    return record != nullptr ? HXMGT_SUCCESS : HXMGT_INVALID_PARAMETER;
}

// The same with a copy of the handle's record, for calls that look into it once they have asked the
// driver: the handle may be closed by then.
inline HX_STATUS CheckQuery(uint32_t handle, const void* record, HXMGT_API_HANDLE& device) {
    const std::optional<HXMGT_API_HANDLE> copy = frame::CopyOfRecord(handle);
    if (!copy) {
        return HXMGT_INVALID_HANDLE;
    }
    device = *copy;
    return record != nullptr ? HXMGT_SUCCESS : HXMGT_INVALID_PARAMETER;
}

// True for a driver that takes extended requests. A handle that was closed meanwhile counts as none
// of them: whatever is sent to it fails.
inline bool TakesExtendedRequests(const HXMGT_API_HANDLE& device) {
    return device.dwDriverVersion >= frame::kExtendedRequestsVersion;
}
inline bool TakesExtendedRequests(uint32_t handle) {
    const HXMGT_API_HANDLE* const device = frame::OpenRecord(handle);
    return device != nullptr && TakesExtendedRequests(*device);
}

}  // namespace properties
