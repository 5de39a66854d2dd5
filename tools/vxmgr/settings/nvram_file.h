// Files that a port's NVRAM is exported to and imported from.
#pragma once

#include "vxmgr/settings/nvram_port.h"

namespace vxmgr {

enum class FileUse : uint8_t {
    Compare,  // whatever port it is of
    Write,    // only what may be written to this port, or another's settings with --as-port
};

// The block that FILE asks for, whole and checked. Ends the command for a file that does not fit.
std::vector<uint8_t> LoadNvramFile(Invocation& invocation, const PortNvram& nvram, FileUse use);

void SaveNvramDocument(Invocation& invocation, const PortNvram& nvram, const std::string& path);

// Writes the text form; of classic blocks alone.
void SaveNvramText(Invocation& invocation, const PortNvram& nvram, const std::string& path);

}  // namespace vxmgr
