// Adapters that come and go: all of the profile's at the start, later one at a time.
#include "model/bytes/bytes.h"
#include "model/health/serdes.h"
#include "model/model.h"
#include "model/port_block.h"
#include "model/statistics.h"

namespace vxemu {
namespace {

void DropPortsOf(Profile& profile, uint32_t adapter) {
    for (uint32_t at = profile.portCount; at-- > 0;) {
        if (profile.ports[at].adapter == adapter) {
            CloseGap(profile.ports, profile.portCount, at);
        }
    }
}

}  // namespace

bool Model::MakePort(uint32_t index, uint32_t slot) {
    auto* block = static_cast<PortBlock*>(host_.allocate(host_.context, sizeof(PortBlock)));
    if (block == nullptr) {
        return false;
    }
    Port& port = block->port;
    port.profile = &profile_->ports[index];
    port.adapter = &profile_->adapters[port.profile->adapter];
    port.flash = &flashes_[slot];
    port.board = &boards_[slot];
    port.initialState = port.profile->state;
    port.fabric = &fabric_;
    port.attachments = block->attachments;
    port.peers = block->peers;
    uint32_t place = 0;
    while (ports_[place] != nullptr) {
        ++place;  // the profile has no more ports than there are places
    }
    ports_[place] = &port;
    return true;
}

void Model::StartAdapter(uint32_t slot) {
    Flash& flash = flashes_[slot];
    StartKeeping(fabric_, flash);
    ForEachHostPort(fabric_, [&](Port& port) {
        if (port.flash == &flash) {
            StartCounters(port);
            StartSignals(port);
            NoteLink(port);
            StartAttachments(port);
        }
    });
}

// Those behind it in the profile move up.
void Model::DropPort(const PortProfile* gone) {
    for (Port*& port : ports_) {
        if (port == nullptr) {
            continue;
        }
        if (port->profile == gone) {
            if (port->eeprom != nullptr) {
                host_.release(host_.context, port->eeprom);
            }
            host_.release(host_.context, port);
            port = nullptr;
        } else if (port->profile > gone) {
            --port->profile;
        }
    }
    CloseGap(profile_->ports, profile_->portCount, static_cast<uint32_t>(gone - profile_->ports));
}

void Model::DropAdapter(uint32_t adapter, uint32_t slot) {
    Profile& profile = *profile_;
    for (uint32_t at = profile.portCount; at-- > 0;) {
        PortProfile& port = profile.ports[at];
        if (port.adapter == adapter) {
            DropPort(&port);
        } else if (port.adapter > adapter) {
            --port.adapter;
        }
    }
    CloseGap(profile.adapters, profile.adapterCount, adapter);
    ForEachHostPort(fabric_,
                    [&](Port& port) { port.adapter = &profile.adapters[port.profile->adapter]; });
    DropPortsOf(*origin_, slot);
    ReleaseFlash(host_, flashes_[slot]);
    flashes_[slot] = {};
    boards_[slot] = {};
}

void Model::DropAdapter(const Port& port) {
    DropAdapter(port.profile->adapter, static_cast<uint32_t>(port.flash - flashes_));
}

void Model::RemoveAdapter(uint32_t port) {
    if (HasPort(port)) {
        DropAdapter(*ports_[port]);
    }
}

uint32_t Model::FreeSlot() const {
    uint32_t slot = 0;
    for (uint32_t place = 0; place < kMaxPorts;) {
        const bool taken = ports_[place] != nullptr && ports_[place]->flash == &flashes_[slot];
        slot += taken ? 1 : 0;
        place = taken ? 0 : place + 1;
    }
    return slot;
}

Completion Model::AddAdapter(const AdapterRecord& added, ProfileError* error) {
    Profile& profile = *profile_;
    *error = AppendAdapter(profile, added);
    if (*error != ProfileError::None) {
        return Completion::Done;
    }
    const uint32_t adapter = profile.adapterCount - 1;
    const uint32_t slot = FreeSlot();
    Profile& origin = *origin_;
    origin.adapters[slot] = added.adapter;
    for (uint32_t at = profile.portCount - added.portCount; at < profile.portCount; ++at) {
        PortProfile& port = origin.ports[origin.portCount++];
        port = profile.ports[at];
        port.adapter = static_cast<uint8_t>(slot);
    }
    flashes_[slot].memory.Start({origin_, slot});
    for (uint32_t at = profile.portCount - added.portCount; at < profile.portCount; ++at) {
        if (!MakePort(at, slot)) {
            DropAdapter(adapter, slot);
            return Completion::Busy;
        }
    }
    StartAdapter(slot);
    return Completion::Done;
}

}  // namespace vxemu
