// The NVRAM of an open port: its variables as the library knows them, and its block.
#pragma once

#include "vxmgr/settings/nvram_fields.h"
#include "vxmgr/settings/settings_bank.h"

namespace vxmgr {

// Which variables the port's chip has and where they stand. Ends the command when the chip does
// not tell.
NvramMap LearnVariables(Invocation& invocation, const PortSession& session);

struct PortNvram : PortSettings {
    NvramMap map;

    bool IsWhole() const { return IsSound(map.kind, bytes); }
};

// The block of the bank in use, or of the other one. Ends the command when it cannot be read. The
// session has to live as long as the result.
PortNvram ReadNvram(Invocation& invocation, const PortSession& session, bool otherBank);
HX_STATUS ReadBlock(uint32_t handle, NvramKind kind, std::vector<uint8_t>* block);

// The kind of block that the chip has.
HX_STATUS AskNvramKind(uint32_t handle, NvramKind* kind);

}  // namespace vxmgr
