// Bringing a new block into a port's NVRAM: what set and import have in common.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "vxmgr/settings/nvram_port.h"

namespace vxmgr {

// Arguments of every change, behind those of the command itself.
inline constexpr tools::Argument kActivateArgument = {
    "--activate", tools::ArgumentKind::Flag, "",
    "have the firmware read it at once: restarts the port"};
inline constexpr tools::Argument kBackupArgument = {"--backup", tools::ArgumentKind::Text, "FILE",
                                                    "first write an export of the block as it is"};

// Shows the difference, asks, writes, proves, and activates where that was asked for. before: the
// block that `block` was made from; when they are equal, there is nothing to do.
tools::ExitCode ChangeNvram(tools::Invocation& invocation, const PortSession& session,
                            const PortNvram& before, std::vector<uint8_t> block,
                            const std::string& action);

// The document of the block, as `nvram export` writes it.
std::string DocumentOf(const PortSession& session, const PortNvram& nvram);

}  // namespace vxmgr
