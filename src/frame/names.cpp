#include "frame/names.h"

#include <windows.h>
#include <winioctl.h>

#include <algorithm>
#include <cstring>

namespace frame {
namespace {

constexpr size_t kLongestDeviceName = 255;
constexpr char kDevicePrefix[] = "\\\\.\\";
static_assert(HX_VERSION_PACKED == VXMGMT_BUILD_VERSION,
              "the header and the build name one version");

constexpr size_t kWsprintfRoom = 1025;  // wsprintfA writes at most 1024 characters

}  // namespace

void WriteWwn(const uint8_t* wwn, WwnText& text) {
    wsprintfA(text, "%02x-%02x-%02x-%02x-%02x-%02x-%02x-%02x", wwn[0], wwn[1], wwn[2], wwn[3],
              wwn[4], wwn[5], wwn[6], wwn[7]);
}

uint32_t GetVersion(char* buffer, uint32_t length) {
    if (buffer != nullptr && length != 0) {
        char text[64];
        wsprintfA(text, "%d.%d.%d.%d VXMGMT.DLL", HX_VERSION_PACKED >> 24,
                  (HX_VERSION_PACKED >> 16) & 0xFF, (HX_VERSION_PACKED >> 8) & 0xFF,
                  HX_VERSION_PACKED & 0xFF);
        std::memcpy(buffer, text, std::min<size_t>(length, std::strlen(text) + 1));
        buffer[length - 1] = 0;
    }
    return HX_VERSION_PACKED;
}

HX_STATUS GetDeviceNumber(const char* name, void* out, uint32_t outLength) {
    const size_t length = name != nullptr ? std::strlen(name) : 0;
    if (length == 0 || length > kLongestDeviceName || (out == nullptr && outLength != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    char path[sizeof kDevicePrefix + kLongestDeviceName + 1];
    const bool prefixed = std::strncmp(name, kDevicePrefix, sizeof kDevicePrefix - 1) == 0;
    wsprintfA(path, "%s%s%s", prefixed ? "" : kDevicePrefix, name,
              name[length - 1] == ':' ? "" : ":");
    // The handle is never closed: intended.
    const HANDLE device =
        CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD returned = 0;
    if (device == INVALID_HANDLE_VALUE ||
        !DeviceIoControl(device, IOCTL_STORAGE_GET_DEVICE_NUMBER, nullptr, 0, out, outLength,
                         &returned, nullptr)) {
        return GetLastError();
    }
    return HXMGT_SUCCESS;
}

HX_STATUS RemoveDevice(const uint8_t* portName, const char* driverSuffix, int32_t confirm) {
    if (confirm == 0 || portName == nullptr || driverSuffix == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    WwnText wwn;
    WriteWwn(portName, wwn);
    char path[kWsprintfRoom];
    wsprintfA(path, "SYSTEM\\CurrentControlSet\\Services\\vx%s\\Parameters\\%s", driverSuffix, wwn);
    HKEY key = nullptr;  // never closed: intended
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    return RegDeleteKeyA(HKEY_LOCAL_MACHINE, path) == ERROR_SUCCESS ? HXMGT_SUCCESS
                                                                    : HXMGT_REGISTRY_INVALID;
}

}  // namespace frame
