// The transceiver of an open port.
#pragma once

#include <functional>
#include <span>

#include "vxmgr/app/port_session.h"
#include "vxmgr/sfp/sfp_diagnostics.h"
#include "vxmgr/sfp/sfp_identity.h"

namespace vxmgr {

struct SfpPage {
    const char* name;  // as the command line has it
    uint16_t device;   // on the two-wire bus
};
inline constexpr SfpPage kSfpPages[] = {{"a0", 0xA0}, {"a2", 0xA2}};
inline constexpr const char* kSfpPageNames[] = {kSfpPages[0].name, kSfpPages[1].name};

inline constexpr uint16_t kNoSfpOptions = 0;  // of the calls that read and write pages

const SfpPage& SfpPageOf(const std::string& name);

// A page or a part of it. deviceStatus: what the transceiver said; may be null.
HX_STATUS ReadSfp(uint32_t handle, const SfpPage& page, size_t offset, std::span<uint8_t> bytes,
                  uint16_t* deviceStatus = nullptr);

struct SfpModule {
    SfpIdentity identity{};
    std::optional<SfpDiagnostics> diagnostics;  // empty: it has none, or none that can be reached
    HX_STATUS diagnosticsStatus = HXMGT_SUCCESS;

    bool Reachable() const { return identity.HasMonitoring() && !identity.NeedsAddressChange(); }
};
HX_STATUS ReadSfpModule(uint32_t handle, SfpModule* module);

// The transceivers of the selected ports, each handed to use. A port that fails is remembered and
// reported in the end; one whose driver knows no transceivers is left out unless it was chosen.
using UseSfpModule = std::function<HX_STATUS(const Port& port, Device& device,
                                             const SfpModule& module, std::string* failedQuery)>;
ExitCode ForEachSfpModule(Invocation& invocation, std::vector<Port>& ports,
                          const UseSfpModule& use);

}  // namespace vxmgr
