// What a driver finds about a port in the persistent store when it starts: bound targets and LUN
// masks, in the blocks and with the rules of the library that wrote them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "model/fabric/fabric.h"

namespace vxemu {

struct StoredConfig {
    std::string_view parameters;  // of the driver: name=value tokens
    bool hasChecks;  // "Version" and "Checksum" are stored; not in the layout of value names
    uint32_t length;
    uint32_t version;
    uint32_t checksum;
    std::span<const uint8_t> targets;  // an HX_TARGET_DATA
    uint32_t lunLength;
    std::span<const uint8_t> luns;  // an HX_LUN_DATA or persist::LunDataV1
};

// Takes over bindings and masks of the devices that the fabric has. Bound targets get their
// address; one that is not bound and would share it moves to the lowest free target number. A block
// that is not sound counts as none. Of the parameters, "bind" 0 leaves the addresses as they are,
// and "configrequired" 1 withholds the targets that have no entry among the bound ones.
void ApplyStore(Port& port, const StoredConfig& stored);

}  // namespace vxemu
