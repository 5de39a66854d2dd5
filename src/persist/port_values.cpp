#include "persist/port_values.h"

#include <cstring>

#include "frame/owned.h"

namespace persist {
namespace {

constexpr REGSAM kWriteAccess = KEY_SET_VALUE | KEY_CREATE_SUB_KEY;

}  // namespace

PortValues PortValues::InSubkey(const char* service, const char* port) {
    PortValues values;
    wsprintfA(values.path_, "SYSTEM\\CurrentControlSet\\Services\\%s\\Parameters\\%s", service,
              port);
    return values;
}

PortValues PortValues::InValueNames(const char* service, const char* leaf, const char* port) {
    PortValues values = InSubkey(service, leaf);
    values.layout_ = Layout::ValueNames;
    std::memcpy(values.prefix_, port, kWwnTextLength);
    values.prefix_[kWwnTextLength] = '\\';
    return values;
}

void PortValues::WriteName(const char* name, ValueName& text) const {
    wsprintfA(text, "%s%s", prefix_, name);
}

bool PortValues::IsAbsent(const char* name) const {
    frame::OwnedKey key;
    ValueName text;
    WriteName(name, text);
    return RegOpenKeyExA(HKEY_LOCAL_MACHINE, path_, 0, KEY_QUERY_VALUE, key.Receive()) !=
               ERROR_SUCCESS ||
           RegQueryValueExA(key.Get(), text, nullptr, nullptr, nullptr, nullptr) ==
               ERROR_FILE_NOT_FOUND;
}

uint32_t PortValues::ReadNumber(const char* name) const {
    frame::OwnedKey key;
    ValueName text;
    WriteName(name, text);
    DWORD type = 0;
    uint32_t number = 0;
    DWORD size = sizeof number;
    const bool read = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path_, 0, KEY_QUERY_VALUE, key.Receive()) ==
                          ERROR_SUCCESS &&
                      RegQueryValueExA(key.Get(), text, nullptr, &type,
                                       reinterpret_cast<BYTE*>(&number), &size) == ERROR_SUCCESS &&
                      type == REG_DWORD && size == sizeof number;
    return read ? number : 0;
}

bool PortValues::ReadBytes(const char* name, std::span<uint8_t> out) const {
    frame::OwnedKey key;
    ValueName text;
    WriteName(name, text);
    DWORD type = 0;
    DWORD size = static_cast<DWORD>(out.size());
    return RegOpenKeyExA(HKEY_LOCAL_MACHINE, path_, 0, KEY_QUERY_VALUE, key.Receive()) ==
               ERROR_SUCCESS &&
           RegQueryValueExA(key.Get(), text, nullptr, &type, out.data(), &size) == ERROR_SUCCESS &&
           type == REG_BINARY && size == out.size();
}

bool PortValues::Write(const char* name, DWORD type, std::span<const uint8_t> bytes) const {
    frame::OwnedKey key;
    ValueName text;
    WriteName(name, text);
    char noClass[] = "";
    return RegCreateKeyExA(HKEY_LOCAL_MACHINE, path_, 0, noClass, 0, kWriteAccess, nullptr,
                           key.Receive(), nullptr) == ERROR_SUCCESS &&
           RegSetValueExA(key.Get(), text, 0, type, bytes.data(),
                          static_cast<DWORD>(bytes.size())) == ERROR_SUCCESS;
}

bool PortValues::WriteBytes(const char* name, std::span<const uint8_t> bytes) const {
    return Write(name, REG_BINARY, bytes);
}

bool PortValues::WriteNumber(const char* name, uint32_t number) const {
    return Write(name, REG_DWORD, {reinterpret_cast<const uint8_t*>(&number), sizeof number});
}

bool PortValues::Delete(const char* name) const {
    frame::OwnedKey key;
    ValueName text;
    WriteName(name, text);
    return RegOpenKeyExA(HKEY_LOCAL_MACHINE, path_, 0, KEY_SET_VALUE, key.Receive()) ==
               ERROR_SUCCESS &&
           RegDeleteValueA(key.Get(), text) == ERROR_SUCCESS;
}

bool PortValues::DeleteKey() const {
    return RegDeleteKeyA(HKEY_LOCAL_MACHINE, path_) == ERROR_SUCCESS;
}

}  // namespace persist
