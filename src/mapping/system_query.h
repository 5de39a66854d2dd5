// Queries of operating system devices that need no right to read or write them.
#pragma once

#include <windows.h>

#include "frame/owned.h"
#include "hxtypes.h"

namespace mapping {

// Of the call that just failed; some fail without an error.
inline HX_STATUS LastError() {
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : HX_STATUS{HXMGT_DEVICE_NOT_FOUND};
}

inline frame::OwnedFile OpenForQueries(const char* name) {
    constexpr DWORD kNoAccess = 0;
    return frame::OwnedFile(CreateFileA(name, kNoAccess, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
}

// False unless the device answers the whole record.
template <typename Record>
bool Ask(HANDLE device, DWORD code, Record& record) {
    DWORD returned = 0;
    return DeviceIoControl(device, code, nullptr, 0, &record, sizeof record, &returned, nullptr) &&
           returned >= sizeof record;
}

}  // namespace mapping
