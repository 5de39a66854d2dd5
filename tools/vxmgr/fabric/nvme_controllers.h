// The NVMe controllers behind a port.
#pragma once

#include "hxfabric.h"
#include "vxmgr/app/port_walk.h"

namespace vxmgr {

// A controller; of one that the driver does not tell about nothing but its place and the status.
struct FoundController {
    Wwn remotePort{};
    uint16_t place = 0;
    HX_STATUS status = HXMGT_SUCCESS;
    std::optional<HX_NVME_TARGET> record = std::nullopt;
    std::vector<HX_NVME_NAMESPACE> namespaces{};
};

enum class Namespaces : uint8_t { No, Too };

// The first failure, with the controllers that there are.
HX_STATUS FindControllers(PortVisit& visit, Namespaces namespaces,
                          std::vector<FoundController>* controllers);

}  // namespace vxmgr
