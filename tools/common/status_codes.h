// What a status of the library, or a Windows error code, means to a tool: its name, the exit code
// it leads to and what to do about it. One table.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "exit_codes.h"

namespace tools {

enum class StatusKind { Success, Windows, Library };

StatusKind KindOf(uint32_t status);

// The constant's name without its prefix ("DEVICE_BUSY"), "WINDOWS_170", or "UNKNOWN".
std::string StatusName(uint32_t status);

// The status of a constant's name, with or without prefix, in any letter case; false when unknown.
bool FindStatus(std::string_view name, uint32_t* status);

// "0x20000067" for library codes, as for every status.
std::string StatusText(uint32_t status);

ExitCode ExitCodeOf(uint32_t status);

// Text of a Windows error code for which the system has none of its own.
std::string WindowsText(uint32_t code);

// What the user can do about a status; empty when there is nothing special to say.
const char* HintOf(uint32_t status);

}  // namespace tools
