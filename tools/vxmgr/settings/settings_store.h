// Writing a port's NVRAM or product data: read back, and told what stands there afterwards.
#pragma once

#include "vxmgr/settings/settings_bank.h"

namespace vxmgr {

// What the place that a write goes to holds, where that is not what was read already; empty: it is,
// or it cannot be read.
std::vector<uint8_t> ReadReplaced(const PortSettings& settings);

struct SettingsWrite {
    const char* what;               // "the NVRAM"; a text that stays
    const PortSettings& base;       // what the image was made from: it must still stand there
    std::vector<uint8_t> replaced;  // what the user was told of
    HX_STATUS (*write)(uint32_t handle, std::vector<uint8_t>& image);
};

// Returns when the image was written and reads back: true when Ctrl-C came meanwhile, so that
// nothing more may be started. Ends the command otherwise, saying what stands there. The library
// may change the image.
bool WriteSettings(Invocation& invocation, const SettingsWrite& given, std::vector<uint8_t>& image);

// "in the second bank, which the firmware uses from the port's next reset on"; for questions.
std::string WhereItGoes(const std::optional<OtherBank>& bank);

}  // namespace vxmgr
