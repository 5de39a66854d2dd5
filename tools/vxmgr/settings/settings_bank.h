// Chips with two banks of NVRAM and product data: reads come from the bank in use, writes go to the
// other one, which nothing but its flash region shows.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "vxmgr/app/port_session.h"
#include "vxmgr/flash/flash_layout.h"

namespace vxmgr {

enum class Settings : uint8_t { Nvram, Vpd };

struct OtherBank {
    bool second = false;  // the second bank is the other one
    FlashLayout layout;
    FlashRegion region;

    const char* Name() const { return second ? "second" : "first"; }
    const char* NameInUse() const { return second ? "first" : "second"; }
};

// The bank that is not in use; nothing on a chip with one bank. Ends the command when it cannot be
// told which one that is.
std::optional<OtherBank> FindOtherBank(tools::Invocation& invocation, const PortSession& session,
                                       Settings settings);
HX_STATUS ReadBank(const PortSession& session, const OtherBank& bank, std::vector<uint8_t>* bytes);

// "--bank in-use|other" of the commands that read.
std::span<const tools::Argument> BankArguments();
inline constexpr const char* kBankChoices[] = {"in-use", "other"};
bool WantsOtherBank(tools::Invocation& invocation);
// As above, and ends the command when there is only one.
OtherBank RequireOtherBank(tools::Invocation& invocation, const PortSession& session,
                           Settings settings);

}  // namespace vxmgr
