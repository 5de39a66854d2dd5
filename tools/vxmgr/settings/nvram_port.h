// The NVRAM of an open port: its variables as the library knows them, and its block.
#pragma once

#include <optional>
#include <vector>

#include "vxmgr/app/port_session.h"
#include "vxmgr/settings/nvram_fields.h"
#include "vxmgr/settings/settings_bank.h"
#include "vxmgr/settings/settings_store.h"

namespace vxmgr {

// Which variables the port's chip has and where they stand. Ends the command when the chip does
// not tell.
NvramMap LearnVariables(tools::Invocation& invocation, const PortSession& session);

struct PortNvram {
    NvramMap map;
    std::vector<uint8_t> block;
    std::optional<OtherBank> bank;  // of chips with two banks
    bool fromOther = false;         // the block is that of the other bank
};

// The block of the bank in use, or of the other one. Ends the command when it cannot be read.
PortNvram ReadNvram(tools::Invocation& invocation, const PortSession& session, bool otherBank);
HX_STATUS ReadBlock(const PortSession& session, NvramKind kind, std::vector<uint8_t>* block);

// "first", "second", or null on chips with one bank.
tools::Value BankValue(const PortNvram& nvram);

}  // namespace vxmgr
