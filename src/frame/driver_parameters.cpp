#include "frame/driver_parameters.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frame/discovery.h"
#include "frame/driver_parameter_text.h"
#include "frame/handle_table.h"
#include "frame/owned.h"
#include "frame/registry.h"

namespace frame {
namespace {

constexpr char kValueName[] = "DriverParameter";
constexpr size_t kWsprintfRoom = 1025;  // wsprintfA writes at most 1024 characters
constexpr size_t kLongestString = 32768;

using KeyPath = char[kWsprintfRoom];

// A service file name with its extension becomes the bare service name.
void WriteKeyPath(const char* driverName, KeyPath& path) {
    char service[kDiscoveryTextSize];
    const size_t length = std::min(std::strcspn(driverName, "."), sizeof service - 1);
    std::memcpy(service, driverName, length);
    service[length] = 0;
    wsprintfA(path, "SYSTEM\\CurrentControlSet\\Services\\%s\\Parameters\\Device", service);
}

// Reads the whole string for a change: nothing of it may get lost. An absent key or value is the
// empty string.
bool ReadWhole(const KeyPath& path, std::span<char> text) {
    const DWORD error = ReadRegistryText(path, kValueName, text);
    return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND;
}

bool WriteString(const KeyPath& path, const char* text, size_t length) {
    OwnedKey key;
    return RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                           key.Receive(), nullptr) == ERROR_SUCCESS &&
           RegSetValueExA(key.Get(), kValueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                          static_cast<DWORD>(length + 1)) == ERROR_SUCCESS;
}

}  // namespace

const char* DriverParameter(const char* driverName, const char* name) {
    thread_local char value[kDiscoveryTextSize];
    KeyPath path;
    WriteKeyPath(driverName, path);
    const std::span<char> text = DiscoveryText();
    static_cast<void>(ReadRegistryText(path, kValueName, text));
    const std::optional<std::string_view> found = FindParameter(text.data(), name);
    if (!found.has_value()) {
        return nullptr;
    }
    value[found->copy(value, sizeof value - 1)] = 0;
    return value;
}

int32_t DriverParameterNumber(const char* driverName, const char* name) {
    const char* const value = DriverParameter(driverName, name);
    return value != nullptr ? static_cast<int32_t>(std::strtol(value, nullptr, 10)) : -1;
}

HX_STATUS SetDriverParameter(const char* driverName, const char* name, const char* value) {
    if (!IsParameterName(name) || (value != nullptr && !IsParameterValue(value))) {
        return HXMGT_INVALID_PARAMETER;
    }
    const size_t added = std::strlen(name) + (value != nullptr ? std::strlen(value) : 0) + 3;
    const Bytes before = ZeroedBytes(kLongestString);
    const Bytes after = ZeroedBytes(kLongestString + added);
    if (before == nullptr || after == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    char* const oldText = reinterpret_cast<char*>(before.get());
    char* const newText = reinterpret_cast<char*>(after.get());
    KeyPath path;
    WriteKeyPath(driverName, path);
    if (!ReadWhole(path, {oldText, kLongestString})) {
        return HXMGT_REGISTRY_INVALID;
    }
    const std::optional<std::string_view> newValue =
        value != nullptr ? std::optional<std::string_view>(value) : std::nullopt;
    const std::optional<size_t> length =
        EditParameters(oldText, name, newValue, {newText, kLongestString + added - 1});
    if (!length.has_value()) {
        return HXMGT_REGISTRY_INVALID;
    }
    const bool changed = std::string_view(newText, *length) != oldText;
    return !changed || WriteString(path, newText, *length) ? HXMGT_SUCCESS : HXMGT_REGISTRY_INVALID;
}

HX_STATUS GetDriverParameter(uint32_t handle, const char* name, char* value, uint32_t valueSize) {
    const HXMGT_API_HANDLE* const record = OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (name == nullptr || value == nullptr || valueSize == 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    char driverName[kDiscoveryTextSize];
    std::strcpy(driverName, DriverNameOfPort(record->dwScsiPort));
    const char* const found = DriverParameter(driverName, name);
    if (found == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    if (std::strlen(found) >= valueSize) {
        return HXMGT_BUFFER_TOO_SMALL;
    }
    std::strcpy(value, found);
    return HXMGT_SUCCESS;
}

HX_STATUS SetDriverParameter(uint32_t handle, const char* name, const char* value) {
    const HXMGT_API_HANDLE* const record = OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (name == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    char driverName[kDiscoveryTextSize];
    std::strcpy(driverName, DriverNameOfPort(record->dwScsiPort));
    return driverName[0] != 0 ? SetDriverParameter(driverName, name, value)
                              : HXMGT_DEVICE_NOT_FOUND;
}

}  // namespace frame
