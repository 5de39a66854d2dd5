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

// True for a driver that takes extended requests. The handle is open.
inline bool TakesExtendedRequests(uint32_t handle) {
    return frame::OpenRecord(handle)->dwDriverVersion >= frame::kExtendedRequestsVersion;
}

}  // namespace properties
