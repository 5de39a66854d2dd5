// The settings (NVRAM) and product data of a port. Chips with two banks of them: reads come from
// the bank in use, writes go to the other one, which nothing but its flash region shows.
#pragma once

#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_write.h"

namespace vxmgr {

enum class Settings : uint8_t { Nvram, Vpd };

inline constexpr const char* kBankNames[] = {"first", "second"};
inline constexpr FieldType kBank = Choice(kBankNames).OrNull();

struct OtherBank {
    bool second = false;  // the second bank is the other one
    FlashLayout layout;
    FlashRegion region;

    const char* Name() const { return kBankNames[second ? 1 : 0]; }
    const char* NameInUse() const { return kBankNames[second ? 0 : 1]; }
};

// The bank that is not in use; nothing on a chip with one bank. Ends the command when it cannot be
// told which one that is.
std::optional<OtherBank> FindOtherBank(Invocation& invocation, const PortSession& session,
                                       Settings settings);
HX_STATUS ReadBank(const PortSession& session, const OtherBank& bank, std::vector<uint8_t>* bytes);

// "--bank in-use|other" of the commands that read.
inline constexpr const char* kBankChoices[] = {"in-use", "other"};
inline constexpr Argument kBankArgument = TextOption(
    "--bank", "BANK",
    "in-use or other: the bank that the firmware uses, or the one that writes go to (in-use)",
    kBankChoices);
bool WantsOtherBank(Invocation& invocation);

// What one bank holds.
struct PortSettings {
    const PortSession* session = nullptr;
    std::vector<uint8_t> bytes;
    std::optional<OtherBank> bank;  // of chips with two banks
    bool fromOther = false;         // the bytes are those of the other bank
    ReadBytes readInUse;

    const Port& ItsPort() const { return session->port; }
    // Of the bank that was read, and of the one that writes go to; null on chips with one bank.
    const char* Bank() const;
    const char* Target() const { return bank ? bank->Name() : nullptr; }
};

// The keys of the port, and the bank that was read, or that a write goes to.
extern const Fields<PortSettings> kSettingsReadFields;
extern const Fields<PortSettings> kSettingsWrittenFields;

// Reads the bank in use, or the other one. Ends the command, with what cannot be read, when it
// cannot, or when the other one is wanted and there is none.
PortSettings ReadSettings(Invocation& invocation, const PortSession& session, Settings settings,
                          const ReadBytes& readInUse, bool otherBank);

}  // namespace vxmgr
