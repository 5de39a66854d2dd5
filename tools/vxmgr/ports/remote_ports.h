// The remote ports that a port's driver knows.
#pragma once

#include "hxfabric.h"
#include "vxmgr/app/port_walk.h"

namespace vxmgr {

inline constexpr uint16_t kNoLoopId = 0xFFFF;

struct RemotePort {
    HX_REMOTE_PORT record{};
    bool brief = false;  // from the port database of an older driver: names and addresses alone
    std::optional<HX_SECURE_PORT> security = std::nullopt;
    std::optional<uint32_t> loopPosition = std::nullopt;  // places behind the port's own
};

// What came before a failure is kept.
HX_STATUS ReadRemotePorts(PortVisit& visit, std::vector<RemotePort>* ports);

// Those whose traffic is authenticated, or should be.
HX_STATUS ReadSecuredPorts(uint32_t handle, std::vector<HX_SECURE_PORT>* secured);

}  // namespace vxmgr
