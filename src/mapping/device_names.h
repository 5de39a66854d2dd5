// Names of operating system devices and volumes. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace mapping {

inline constexpr std::string_view kDevicePrefix = "\\\\.\\";
inline constexpr std::string_view kVolumePrefix = "\\\\?\\Volume{";

struct DeviceName {
    uint32_t type;  // HX_OS_DEVICE_..., 0 = no device that a logical unit can be
    uint32_t number;
};

// A name as the system lists it, without the prefix: "PhysicalDrive12".
DeviceName ParseDeviceName(std::string_view name);

// "PhysicalDrive12", terminated.
using DiskNameText = char[24];
void WriteDiskName(uint32_t number, DiskNameText& out);

// Writes the names one after another, terminated. False when they do not fit; out is empty then.
bool JoinText(std::string_view first, std::string_view second, std::span<char> out);

bool IsVolumeName(std::string_view text);

// A volume name or mount point with exactly one backslash at its end. "\\.\E:" is the drive "E:".
// False when it does not fit.
bool EndWithBackslash(std::string_view text, std::span<char> out);

// The first text of a list whose texts end with a zero each; empty when it does not end within
// list.
std::string_view FirstOf(std::span<const char> list);

}  // namespace mapping
