// Files of binary data, written so that a reader never sees half of one.
#pragma once

#include <functional>

#include "vxmgr/app/bytes.h"

namespace vxmgr {

// Has the file made under a temporary name beside its own, then renamed. When make throws, or the
// rename fails, the temporary file goes and an older file of that name stays.
void ReplaceFile(Invocation& invocation, const std::string& path,
                 const std::function<void(const std::string& temporary)>& make);

// The same with these bytes.
void SaveFile(Invocation& invocation, const std::string& path, Bytes bytes);

uint64_t FileSize(const std::string& path);  // 0 when there is none

// The whole file; ends the command when it cannot be read or is longer than most.
std::vector<uint8_t> LoadFile(Invocation& invocation, const std::string& path, size_t most);

}  // namespace vxmgr
