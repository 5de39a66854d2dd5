// Registry texts under HKEY_LOCAL_MACHINE.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

namespace frame {

// Reads a text value into out: terminated, cut where it is too long (then ERROR_MORE_DATA), empty
// after every other failure. A value that is not a text gives ERROR_UNSUPPORTED_TYPE; one without a
// terminator is read whole. Returns the Windows error, 0 for success.
DWORD ReadRegistryText(const char* keyPath, const char* valueName, std::span<char> out);

}  // namespace frame
