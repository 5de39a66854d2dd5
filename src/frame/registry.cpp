#include "frame/registry.h"

#include <algorithm>
#include <cstring>

#include "frame/owned.h"

namespace frame {
namespace {

// A value may grow between the query for its size and the read.
constexpr int kReadAttempts = 4;

}  // namespace

DWORD ReadRegistryText(const char* keyPath, const char* valueName, std::span<char> out) {
    out[0] = 0;
    OwnedKey key;
    if (const LSTATUS error =
            RegOpenKeyExA(HKEY_LOCAL_MACHINE, keyPath, 0, KEY_QUERY_VALUE, key.Receive());
        error != ERROR_SUCCESS) {
        return static_cast<DWORD>(error);
    }
    for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
        DWORD type = 0;
        DWORD size = 0;
        LSTATUS error = RegQueryValueExA(key.Get(), valueName, nullptr, &type, nullptr, &size);
        if (error != ERROR_SUCCESS) {
            return static_cast<DWORD>(error);
        }
        if (type != REG_SZ && type != REG_EXPAND_SZ) {
            return ERROR_UNSUPPORTED_TYPE;
        }
        const Bytes text = ZeroedBytes(size_t{size} + 1);
        if (text == nullptr) {
            return ERROR_OUTOFMEMORY;
        }
        error = RegQueryValueExA(key.Get(), valueName, nullptr, nullptr, text.get(), &size);
        if (error == ERROR_MORE_DATA) {
            continue;
        }
        if (error != ERROR_SUCCESS) {
            return static_cast<DWORD>(error);
        }
        const char* const source = reinterpret_cast<const char*>(text.get());
        const size_t length = std::strlen(source);
        const size_t kept = std::min(length, out.size() - 1);
        std::memcpy(out.data(), source, kept);
        out[kept] = 0;
        return kept < length ? ERROR_MORE_DATA : ERROR_SUCCESS;
    }
    return ERROR_MORE_DATA;
}

}  // namespace frame
