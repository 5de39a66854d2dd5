// The folder of the machine in which the flash of the adapters lasts.
#pragma once

#include <cstdint>
#include <string>

namespace vxemu {

// Makes it, for administrators and the system alone: the driver writes there with the rights of the
// kernel, so that nobody else may put anything in its way. An existing one has to belong to one of
// these, or to whoever runs this program. A Windows error code, 0 for success with the path in
// *folder.
uint32_t MakeFlashFolder(std::wstring* folder);

}  // namespace vxemu
