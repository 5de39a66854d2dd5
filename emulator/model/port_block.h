// A port with what it keeps about the devices of the fabric, in one piece of memory.
#pragma once

#include <cstddef>
#include <cstring>

#include "model/host.h"
#include "model/port.h"

namespace vxemu {

struct PortBlock {
    Port port;
    Attachment attachments[kMaxTargets];
    Peer peers[kMaxTargets];
};
static_assert(offsetof(PortBlock, port) == 0);  // so that it is found, and released, by its port

// Does something, behind which all that the port keeps of its own is as it was. False when there is
// no memory, and nothing is done then. What the adapter's ports share, such as its flash, changes.
template <typename Action>
bool AndForget(const Host& host, Port& port, Action action) {
    struct Kept {
        PortBlock block;
        PortProfile profile;
    };
    auto* kept = static_cast<Kept*>(host.allocate(host.context, sizeof(Kept)));
    if (kept == nullptr) {
        return false;
    }
    std::memcpy(static_cast<void*>(&kept->block), &port, sizeof kept->block);
    kept->profile = *port.profile;
    action();
    kept->block.port.eeprom = port.eeprom;  // may have been made meanwhile
    std::memcpy(static_cast<void*>(&port), &kept->block, sizeof kept->block);
    *port.profile = kept->profile;
    host.release(host.context, kept);
    return true;
}

}  // namespace vxemu
