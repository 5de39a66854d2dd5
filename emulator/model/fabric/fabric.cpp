#include "model/fabric/fabric.h"

#include <algorithm>
#include <cstring>

#include "model/bytes/bytes.h"

namespace vxemu {
namespace {

template <typename Matches>
TargetProfile* First(const Port& port, Matches matches) {
    Profile& profile = *port.fabric->profile;
    for (uint32_t at = 0; at < profile.targetCount; ++at) {
        if (matches(profile.targets[at])) {
            return &profile.targets[at];
        }
    }
    return nullptr;
}

template <typename Matches>
TargetProfile* FirstSeen(const Port& port, Matches matches) {
    return First(
        port, [&](const TargetProfile& device) { return Sees(port, device) && matches(device); });
}

template <size_t size>
bool StartsAlike(const uint8_t (&field)[size], const uint8_t (&address)[8]) {
    return std::memcmp(field, address, size) == 0;
}

bool Names(const Port& port, const TargetProfile& device, passthru::DriverAddress type,
           const uint8_t (&address)[8]) {
    using passthru::DriverAddress;
    switch (type) {
        case DriverAddress::NodeName:
            return StartsAlike(device.nodeName, address);
        case DriverAddress::PortName:
            return StartsAlike(device.portName, address);
        case DriverAddress::PortId:
            return StartsAlike(device.portId, address);
        case DriverAddress::BusAndTarget: {
            uint16_t numbers[2];
            std::memcpy(numbers, address, sizeof numbers);
            const Attachment& at = AttachmentOf(port, device);
            return at.bus == numbers[0] && at.target == numbers[1];
        }
        case DriverAddress::None:
            break;
    }
    return false;
}

bool IsVisible(const LunMask& mask, uint32_t number) {
    return (mask.bytes[number / 8] >> (number % 8) & 1) != 0;
}

void SetVisible(LunMask& mask, uint32_t number, bool visible) {
    const auto bit = static_cast<uint8_t>(1u << (number % 8));
    uint8_t& byte = mask.bytes[number / 8];
    byte = static_cast<uint8_t>(visible ? byte | bit : byte & ~bit);
}

void StartAddress(const Port& port, const TargetProfile& device) {
    Attachment& attachment = AttachmentOf(port, device);
    attachment.bus = device.bus;
    attachment.target = device.target;
    attachment.loopId = device.loopId;
    attachment.bindingFlags = device.bindingFlags;
}

void Start(const Fabric& fabric, const Port& port, const TargetProfile& device) {
    StartAddress(port, device);
    AttachmentOf(port, device).withheld = port.configRequired && IsTarget(device);
    PeerOf(port, device).since = fabric.host.Now();
    LunMask& mask = AttachmentOf(port, device).mask;
    std::memset(mask.bytes, 0xFF, sizeof mask.bytes);
    const uint32_t index = IndexOf(fabric, device);
    for (uint32_t at = 0; at < fabric.profile->lunCount; ++at) {
        const LunProfile& lun = fabric.profile->luns[at];
        if (lun.target == index && lun.masked != 0) {
            SetVisible(mask, lun.number, false);
        }
    }
}

// Puts a record in place of another one when the profile stays valid with it.
template <typename Record>
ProfileError Replace(Fabric& fabric, Record& record, const Record& with) {
    const Record before = record;
    record = with;
    const ProfileError error = ValidateTargets(*fabric.profile).error;
    if (error != ProfileError::None) {
        record = before;
    }
    return error;
}

}  // namespace

bool MaySee(const Port& port, const TargetProfile& device) {
    return device.seenBy == kSeenByAllPorts || device.seenBy == port.profile->scsiPort;
}

bool Reaches(const Port& port, const TargetProfile& device) {
    return port.LinkUp() && device.present != 0 && MaySee(port, device);
}

bool Sees(const Port& port, const TargetProfile& device) {
    return Reaches(port, device) && !AttachmentOf(port, device).withheld;
}

TargetProfile* NthDevice(const Port& port, DeviceKind kind, uint32_t index) {
    return FirstSeen(port, [&](const TargetProfile& device) {
        return (kind == DeviceKind::Any || IsTarget(device)) && index-- == 0;
    });
}

uint32_t CountDevices(const Port& port, DeviceKind kind) {
    uint32_t count = 0;
    while (NthDevice(port, kind, count) != nullptr) {
        ++count;
    }
    return count;
}

TargetProfile* FindDevice(const Port& port, passthru::DriverAddress type,
                          const uint8_t (&address)[8]) {
    return FirstSeen(
        port, [&](const TargetProfile& device) { return Names(port, device, type, address); });
}

TargetProfile* FindEvenIfGone(const Port& port, passthru::DriverAddress type,
                              const uint8_t (&address)[8]) {
    return First(port, [&](const TargetProfile& device) {
        return MaySee(port, device) && Names(port, device, type, address);
    });
}

TargetProfile* FindByPortName(const Port& port, const uint8_t (&portName)[8]) {
    return FirstSeen(
        port, [&](const TargetProfile& device) { return StartsAlike(device.portName, portName); });
}

TargetProfile* FindByLoopId(const Port& port, uint16_t loopId) {
    return FirstSeen(port,
                     [&](const TargetProfile& device) { return LoopIdOf(port, device) == loopId; });
}

uint32_t IndexOf(const Fabric& fabric, const TargetProfile& device) {
    return static_cast<uint32_t>(&device - fabric.profile->targets);
}

Attachment& AttachmentOf(const Port& port, const TargetProfile& device) {
    return port.attachments[IndexOf(*port.fabric, device)];
}

Peer& PeerOf(const Port& port, const TargetProfile& device) {
    return port.peers[IndexOf(*port.fabric, device)];
}

uint32_t SecondsOnline(const Port& port, const TargetProfile& device) {
    const uint64_t since = std::max(port.linkSince, PeerOf(port, device).since);
    return Sees(port, device) ? static_cast<uint32_t>((port.fabric->host.Now() - since) / 1000) : 0;
}

uint16_t LoopIdOf(const Port& port, const TargetProfile& device) {
    const uint32_t loopId = AttachmentOf(port, device).loopId;
    return static_cast<uint16_t>((loopId & ~1u) | (device.present != 0 ? 1u : 0u));
}

LunProfile* FindLun(const Fabric& fabric, const TargetProfile& device, uint32_t number) {
    const uint32_t index = IndexOf(fabric, device);
    for (uint32_t at = 0; at < fabric.profile->lunCount; ++at) {
        LunProfile& lun = fabric.profile->luns[at];
        if (lun.target == index && lun.number == number) {
            return &lun;
        }
    }
    return nullptr;
}

const LunProfile* VisibleLun(const Port& port, const TargetProfile& device, uint32_t number) {
    return number <= kMaxLunNumber && IsVisible(AttachmentOf(port, device).mask, number)
               ? FindLun(*port.fabric, device, number)
               : nullptr;
}

uint32_t CountLuns(const Port& port, const TargetProfile& device) {
    uint32_t count = 0;
    for (uint32_t number = 0; number <= kMaxLunNumber; ++number) {
        count += VisibleLun(port, device, number) != nullptr ? 1 : 0;
    }
    return count;
}

DiskKey DiskOf(const Fabric& fabric, const LunProfile& lun) {
    DiskKey disk = {};
    std::memcpy(disk.portName, fabric.profile->targets[lun.target].portName, sizeof disk.portName);
    disk.lun = lun.number;
    return disk;
}

void StartAttachments(const Port& port) {
    for (const TargetProfile& device : port.fabric->profile->targets) {
        Start(*port.fabric, port, device);
    }
}

bool Attach(const Port& port, const TargetProfile& device, const Attachment& at) {
    const Profile& profile = *port.fabric->profile;
    for (uint32_t index = 0; index < profile.targetCount; ++index) {
        const Attachment& other = port.attachments[index];
        const bool same =
            (other.bus == at.bus && other.target == at.target) || other.loopId / 2 == at.loopId / 2;
        if (same && index != IndexOf(*port.fabric, device)) {
            return false;
        }
    }
    Attachment& attachment = AttachmentOf(port, device);
    attachment.bus = at.bus;
    attachment.target = at.target;
    attachment.loopId = at.loopId;
    attachment.bindingFlags = at.bindingFlags;
    attachment.withheld = false;
    return true;
}

ProfileError AddDevice(Fabric& fabric, const TargetProfile& device) {
    Profile& profile = *fabric.profile;
    if (profile.targetCount == kMaxTargets) {
        return ProfileError::TargetCount;
    }
    TargetProfile& slot = profile.targets[profile.targetCount++];
    const ProfileError error = Replace(fabric, slot, device);
    if (error != ProfileError::None) {
        --profile.targetCount;
        return error;
    }
    ForEachHostPort(fabric, [&](const Port& port) { Start(fabric, port, slot); });
    return error;
}

void RemoveDevice(Fabric& fabric, TargetProfile& device) {
    Profile& profile = *fabric.profile;
    const uint32_t index = IndexOf(fabric, device);
    for (uint32_t at = profile.lunCount; at-- > 0;) {
        LunProfile& lun = profile.luns[at];
        if (lun.target == index) {
            RemoveLun(fabric, lun);
        } else if (lun.target > index) {
            --lun.target;
        }
    }
    ForEachHostPort(fabric, [&](const Port& port) {
        uint32_t count = profile.targetCount;
        CloseGap(port.attachments, count, index);
        count = profile.targetCount;
        CloseGap(port.peers, count, index);
    });
    CloseGap(profile.targets, profile.targetCount, index);
}

ProfileError ReplaceDevice(Fabric& fabric, TargetProfile& device, const TargetProfile& with) {
    const TargetProfile before = device;
    const ProfileError error = Replace(fabric, device, with);
    const bool moves = before.bus != with.bus || before.target != with.target ||
                       before.loopId != with.loopId || before.bindingFlags != with.bindingFlags;
    if (error != ProfileError::None) {
        return error;
    }
    ForEachHostPort(fabric, [&](const Port& port) {
        if (moves) {
            StartAddress(port, device);
        }
        if (before.present != with.present) {
            PeerOf(port, device).since = fabric.host.Now();
        }
    });
    return error;
}

ProfileError AddLun(Fabric& fabric, const LunProfile& lun) {
    Profile& profile = *fabric.profile;
    if (profile.lunCount == kMaxLuns) {
        return ProfileError::LunCount;
    }
    LunProfile& slot = profile.luns[profile.lunCount++];
    const ProfileError error = Replace(fabric, slot, lun);
    if (error != ProfileError::None) {
        --profile.lunCount;
        return error;
    }
    ForEachHostPort(fabric, [&](const Port& port) {
        SetVisible(AttachmentOf(port, profile.targets[lun.target]).mask, lun.number,
                   lun.masked == 0);
    });
    return error;
}

void RemoveLun(Fabric& fabric, LunProfile& lun) {
    Profile& profile = *fabric.profile;
    fabric.store.Forget(fabric.host, DiskOf(fabric, lun));
    CloseGap(profile.luns, profile.lunCount, static_cast<uint32_t>(&lun - profile.luns));
}

ProfileError ReplaceLun(Fabric& fabric, LunProfile& lun, const LunProfile& with) {
    const bool maskChanges = lun.masked != with.masked;
    const ProfileError error = Replace(fabric, lun, with);
    if (error == ProfileError::None && maskChanges) {
        ForEachHostPort(fabric, [&](const Port& port) {
            SetVisible(AttachmentOf(port, fabric.profile->targets[lun.target]).mask, lun.number,
                       lun.masked == 0);
        });
    }
    return error;
}

}  // namespace vxemu
