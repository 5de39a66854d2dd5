// The registry values of one port: where they are and how each is read and written.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "persist/store_names.h"

namespace persist {

// Two arrangements of the store; the driver behind an adapter decides.
enum class Layout {
    Subkeys,     // a key per port
    ValueNames,  // one key for all ports, each value's name beginning with the port's
};

namespace value {
inline constexpr char kData[] = "Data";
inline constexpr char kLength[] = "Length";
inline constexpr char kChecksum[] = "Checksum";
inline constexpr char kVersion[] = "Version";
inline constexpr char kLunData[] = "LunData";
inline constexpr char kLunLength[] = "LunLength";
inline constexpr char kLunVersion[] = "LunVersion";
}  // namespace value

inline constexpr size_t kPathRoom = 1025;  // wsprintfA writes at most 1024 characters

// Each value is read and written with a key of its own.
class PortValues {
  public:
    // The key of the port below its service's parameters, or the service's own key `leaf` and the
    // port as part of the values' names.
    static PortValues InSubkey(const char* service, const char* port);
    static PortValues InValueNames(const char* service, const char* leaf, const char* port);

    Layout KeyLayout() const { return layout_; }

    // Nothing is stored under that name.
    bool IsAbsent(const char* name) const;
    // 0 when there is no such number.
    uint32_t ReadNumber(const char* name) const;
    // Reads a block that must be exactly as long as out.
    bool ReadBytes(const char* name, std::span<uint8_t> out) const;

    bool WriteBytes(const char* name, std::span<const uint8_t> bytes) const;
    bool WriteNumber(const char* name, uint32_t number) const;

    bool Delete(const char* name) const;
    // The port's key as a whole.
    bool DeleteKey() const;

  private:
    using ValueName = char[64];
    void WriteName(const char* name, ValueName& text) const;
    bool Write(const char* name, DWORD type, std::span<const uint8_t> bytes) const;

    Layout layout_ = Layout::Subkeys;
    char path_[kPathRoom] = {};
    char prefix_[kWwnTextLength + 2] = {};  // of value names: the port and a backslash
};

}  // namespace persist
