#include "control_device.h"

#include <string>

namespace vxemu {

uint32_t ControlDevice::Open(bool change) {
    const std::string path = std::string("\\\\.\\") + kControlDeviceName;
    const DWORD access = GENERIC_READ | (change ? GENERIC_WRITE : 0u);
    device_.Reset(CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, 0, nullptr));
    return device_.Valid() ? ERROR_SUCCESS : GetLastError();
}

uint32_t ControlDevice::Transfer(uint32_t code, const void* input, uint32_t inputLength,
                                 void* output, uint32_t outputLength) {
    DWORD returned = 0;
    if (!DeviceIoControl(device_.Get(), code, const_cast<void*>(input), inputLength, output,
                         outputLength, &returned, nullptr)) {
        return GetLastError();
    }
    return returned == outputLength ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}

}  // namespace vxemu
