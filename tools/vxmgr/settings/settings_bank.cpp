#include "vxmgr/settings/settings_bank.h"

#include "vxmgr/update/update_checks.h"

namespace vxmgr {
namespace {

const FlashRegion* FindRegion(const FlashLayout& layout, const std::string& key) {
    for (const FlashRegion& region : layout.regions) {
        if (region.Key() == key) {
            return &region;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<OtherBank> FindOtherBank(Invocation& invocation, const PortSession& session,
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
    bool second = false;
    invocation.Require(AskSecondBank(session.Handle(), &second),
                       "which bank is in use cannot be told", port.Object());
    bank.second = !second;
    bank.region = bank.second ? *secondRegion : *firstRegion;
    return bank;
}

HX_STATUS ReadBank(const PortSession& session, const OtherBank& bank, std::vector<uint8_t>* bytes) {
    return ReadRegion(session.Handle(), bank.layout, bank.region, bytes);
}

bool WantsOtherBank(Invocation& invocation) {
    return invocation.Given().Text("bank") == kBankChoices[1];
}

const char* PortSettings::Bank() const {
    return !bank ? nullptr : fromOther ? bank->Name() : bank->NameInUse();
}

const Fields<PortSettings> kSettingsReadFields = {
    {PortKeys(), &PortSettings::ItsPort},
    {"bank", "Bank", kBank, &PortSettings::Bank, "null on chips with one bank"},
};

const Fields<PortSettings> kSettingsWrittenFields = {
    {PortKeys(), &PortSettings::ItsPort},
    {"bank", "Goes to bank", kBank, &PortSettings::Target, "null on chips with one bank"},
};

PortSettings ReadSettings(Invocation& invocation, const PortSession& session, Settings settings,
                          const ReadBytes& readInUse, bool otherBank) {
    PortSettings read{
        &session, {}, FindOtherBank(invocation, session, settings), otherBank, readInUse};
    if (otherBank && !read.bank) {
        invocation.Fail(ExitCode::NotSupported, "this chip has one bank only",
                        "leave out --bank other");
    }
    invocation.Require(
        otherBank ? ReadBank(session, *read.bank, &read.bytes) : readInUse(&read.bytes),
        settings == Settings::Nvram ? "the NVRAM cannot be read"
                                    : "the product data cannot be read",
        session.port.Object());
    return read;
}

}  // namespace vxmgr
