#include "machine/scratch_registry.h"

#include <cstdio>

namespace support {

ScratchRegistry::ScratchRegistry()
    : path_("Software\\vxmgmt tests\\" + std::to_string(GetCurrentProcessId())) {
    if (RegCreateKeyExA(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &root_, nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, root_) != ERROR_SUCCESS) {
        fprintf(stderr, "no scratch registry\n");
        ExitProcess(3);
    }
}

ScratchRegistry::~ScratchRegistry() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(root_);
    RegDeleteTreeA(HKEY_CURRENT_USER, path_.c_str());
}

std::string ScratchRegistry::Value::Text() const {
    std::string text(bytes.begin(), bytes.end());
    if (!text.empty() && text.back() == '\0') {
        text.pop_back();
    }
    return text;
}

void ScratchRegistry::SetText(const std::string& key, const char* name, std::string_view text) {
    const std::string terminated(text);
    SetRaw(key, name, REG_SZ, terminated.c_str(), static_cast<uint32_t>(terminated.size() + 1));
}

void ScratchRegistry::SetRaw(const std::string& key, const char* name, DWORD type,
                             const void* bytes, uint32_t length) {
    HKEY handle = nullptr;
    RegCreateKeyExA(root_, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                    nullptr, &handle, nullptr);
    if (name != nullptr) {
        RegSetValueExA(handle, name, 0, type, static_cast<const BYTE*>(bytes), length);
    }
    RegCloseKey(handle);
}

void ScratchRegistry::MakeKey(const std::string& key) {
    SetRaw(key, nullptr, 0, nullptr, 0);
}

ScratchRegistry::Value ScratchRegistry::Read(const std::string& key, const char* name) const {
    Value value;
    DWORD length = 0;
    if (RegGetValueA(root_, key.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &value.type, nullptr,
                     &length) != ERROR_SUCCESS) {
        return value;
    }
    value.exists = true;
    HKEY handle = nullptr;
    RegOpenKeyExA(root_, key.c_str(), 0, KEY_READ, &handle);
    value.bytes.resize(length + 16);
    length = static_cast<DWORD>(value.bytes.size());
    RegQueryValueExA(handle, name, nullptr, &value.type, value.bytes.data(), &length);
    RegCloseKey(handle);
    value.bytes.resize(length);
    return value;
}

bool ScratchRegistry::HasKey(const std::string& key) const {
    HKEY handle = nullptr;
    if (RegOpenKeyExA(root_, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(handle);
    return true;
}

}  // namespace support
