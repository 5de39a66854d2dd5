#include "vxmgr/settings/settings_bank.h"

#include "common/status_codes.h"
#include "vxmgr/flash/flash_regions.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

constexpr size_t kActiveRegionBytes = 6;
constexpr size_t kSettingsBank = 2;  // of those bytes
constexpr uint8_t kSecondBank = 2;

constexpr tools::Argument kBankArguments[] = {
    {.name = "--bank",
     .valueName = "BANK",
     .help =
         "in-use or other: the bank that the firmware uses, or the one that writes go to (in-use)",
     .choices = kBankChoices},
};

const FlashRegion* FindRegion(const FlashLayout& layout, const std::string& key) {
    for (const FlashRegion& region : layout.regions) {
        if (RegionKey(region.code) == key) {
            return &region;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<OtherBank> FindOtherBank(tools::Invocation& invocation, const PortSession& session,
                                       Settings settings) {
    const Port& port = session.port;
    const bool nvram = settings == Settings::Nvram;
    // A port with an NVRAM region of its own has no second one.
    if (!port.IsCurrentGeneration() || !port.chip || (nvram && port.chip->flashRegionFlag != 0)) {
        return std::nullopt;
    }
    OtherBank bank;
    if (QueryFlashLayout(session.Handle(), &bank.layout) != HXMGT_SUCCESS) {
        return std::nullopt;
    }
    const int function = port.chip->functionBits >> 5;
    const std::string first = (nvram ? "nvram-" : "vpd-") + std::to_string(function);
    const FlashRegion* const firstRegion = FindRegion(bank.layout, first);
    const FlashRegion* const secondRegion = FindRegion(bank.layout, first + "-bank-2");
    if (firstRegion == nullptr || secondRegion == nullptr) {
        return std::nullopt;
    }
    uint8_t active[kActiveRegionBytes] = {};
    const HX_STATUS status = HXGetActiveRegions(session.Handle(), 0, active);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "which bank is in use cannot be told", port.Object());
    }
    bank.second = active[kSettingsBank] != kSecondBank;
    bank.region = bank.second ? *secondRegion : *firstRegion;
    return bank;
}

HX_STATUS ReadBank(const PortSession& session, const OtherBank& bank, std::vector<uint8_t>* bytes) {
    return ReadRegion(session.Handle(), bank.layout, bank.region, bytes);
}

std::span<const tools::Argument> BankArguments() {
    return kBankArguments;
}

bool WantsOtherBank(tools::Invocation& invocation) {
    return invocation.Given().Text("bank") == kBankChoices[1];
}

OtherBank RequireOtherBank(tools::Invocation& invocation, const PortSession& session,
                           Settings settings) {
    const auto bank = FindOtherBank(invocation, session, settings);
    if (!bank) {
        invocation.Fail(ExitCode::NotSupported, "this chip has one bank only",
                        "leave out --bank other");
    }
    return *bank;
}

}  // namespace vxmgr
