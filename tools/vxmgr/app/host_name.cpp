#include "vxmgr/app/host_name.h"

#include <windows.h>

#include <iterator>

#include "common/console.h"

namespace vxmgr {

std::string HostName() {
    wchar_t name[256];
    DWORD size = std::size(name);
    return GetComputerNameExW(ComputerNameDnsHostname, name, &size) != FALSE
               ? tools::console::ToUtf8(std::wstring(name, size))
               : std::string("this host");
}

}  // namespace vxmgr
