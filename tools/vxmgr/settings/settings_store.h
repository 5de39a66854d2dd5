// Writing a port's NVRAM or product data: under the update lock, read back, and told what stands
// there afterwards.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vxmgr/app/port_session.h"
#include "vxmgr/settings/settings_bank.h"

namespace vxmgr {

using ReadBytes = std::function<HX_STATUS(std::vector<uint8_t>* bytes)>;

struct SettingsWrite {
    const char* what;  // "the NVRAM"; a text that stays
    const std::optional<OtherBank>& bank;
    std::vector<uint8_t> image;  // as it goes out
    // What the image was made from: it must still stand there.
    std::vector<uint8_t> base;
    ReadBytes readBase;
    // The place that the write goes to, and what it held when the user was asked: another bank may
    // have been written meanwhile. Empty: not known.
    ReadBytes readTarget;
    std::vector<uint8_t> replaced;
    std::function<HX_STATUS(std::vector<uint8_t>& image)> write;
};

// Returns when the image was written and reads back: true when Ctrl-C came meanwhile, so that
// nothing more may be started. Ends the command otherwise, saying what stands there.
bool WriteSettings(tools::Invocation& invocation, const PortSession& session, SettingsWrite& write);

// "in the second bank, which the firmware uses from the port's next reset on"; for questions.
std::string WhereItGoes(const std::optional<OtherBank>& bank);

}  // namespace vxmgr
