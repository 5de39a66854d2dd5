// What hangs on what: adapters, their ports, the targets behind those, and so on, as records.
#pragma once

#include "vxmgr/app/inventory.h"
#include "vxmgr/targets/map_rows.h"
#include "vxmgr/targets/target_known.h"

namespace vxmgr {

struct TreeTarget {
    KnownTarget known;
    HX_STATUS status = HXMGT_SUCCESS;  // why it does not report its logical units
    std::vector<MappedUnit> units{};
};

struct TreePort {
    const Port* port = nullptr;
    std::vector<TreeTarget> targets{};
};

struct TreeAdapter {
    const Port* speaker = nullptr;  // knows what the adapter is
    std::vector<TreePort> ports{};
};

extern const Fields<std::vector<TreeAdapter>> kTreeFields;

}  // namespace vxmgr
