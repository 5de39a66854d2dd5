// LUN masks and target bindings, both driver generations.
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "persist/driver_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;

TargetProfile* AddressedTarget(const Port& port, const persist::BusAddressBlock& block) {
    const uint16_t numbers[4] = {block.address.bus, block.address.target, 0, 0};
    uint8_t address[8];
    std::memcpy(address, numbers, sizeof address);
    return FindDevice(port, passthru::DriverAddress::BusAndTarget, address);
}

TargetProfile* AddressedTarget(const Port& port, const persist::FcAddressBlock& block) {
    return FindDevice(port, static_cast<passthru::DriverAddress>(block.driverType), block.address);
}

// As much of the mask as there is room for.
template <typename AddressBlock>
DriverStatus ReadMask(Exchange& exchange) {
    AddressBlock block;
    if (!exchange.Read(block)) {
        return DriverStatus::InvalidParameter;
    }
    const TargetProfile* device = AddressedTarget(exchange.GetPort(), block);
    if (device == nullptr || !IsTarget(*device)) {
        return DriverStatus::DeviceNotFound;
    }
    const LunMask mask = AttachmentOf(exchange.GetPort(), *device).mask;
    const uint32_t length = exchange.Room() < sizeof mask ? exchange.Room() : sizeof mask;
    exchange.StartReply(length);
    exchange.Put(0, &mask, length);
    return DriverStatus::Success;
}

// LUNs that the request's mask does not cover keep their state.
template <typename AddressBlock>
DriverStatus WriteMask(Exchange& exchange) {
    AddressBlock block;
    if (!exchange.Read(block)) {
        return DriverStatus::InvalidParameter;
    }
    const TargetProfile* device = AddressedTarget(exchange.GetPort(), block);
    if (device == nullptr || !IsTarget(*device)) {
        return DriverStatus::DeviceNotFound;
    }
    LunMask& mask = AttachmentOf(exchange.GetPort(), *device).mask;
    const uint32_t given = exchange.InputLength() - static_cast<uint32_t>(sizeof block);
    std::memcpy(mask.bytes, exchange.Bytes() + sizeof block,
                given < sizeof mask.bytes ? given : sizeof mask.bytes);
    return DriverStatus::Success;
}

bool SameDevice(const TargetProfile& device, const TargetProfile& wanted) {
    return std::memcmp(device.portName, wanted.portName, sizeof wanted.portName) == 0;
}

// A device by its port name, also one that the port does not see now.
TargetProfile* FindKnown(const Fabric& fabric, const TargetProfile& wanted) {
    for (uint32_t at = 0; at < fabric.profile->targetCount; ++at) {
        if (SameDevice(fabric.profile->targets[at], wanted)) {
            return &fabric.profile->targets[at];
        }
    }
    return nullptr;
}

// What a caller says about a device, the rest as it commonly is. Extended and legacy drivers take
// the same members in different places.
template <typename Record>
TargetProfile DeviceOf(const Port& port, const Record& record) {
    TargetProfile device = DefaultTarget(*port.fabric->profile);
    std::memcpy(device.nodeName, record.nodeName, sizeof device.nodeName);
    std::memcpy(device.portName, record.portName, sizeof device.portName);
    std::memcpy(device.portId, record.portId, sizeof device.portId);
    device.bindingFlags = record.bindingFlags;
    device.bus = static_cast<uint8_t>(record.bus);
    device.target = record.target;
    device.loopId = record.targetNumber;
    device.portFlags = record.portFlags;
    device.roleAndState = record.roleAndState;
    device.seenBy = port.profile->scsiPort;
    CopyText(device.symbolicName, "Added target");
    return device;
}

DriverStatus StatusOf(ProfileError error) {
    switch (error) {
        case ProfileError::None:
            return DriverStatus::Success;
        case ProfileError::TargetCount:
            return DriverStatus::OutOfMemory;
        default:
            return DriverStatus::InvalidParameter;
    }
}

Attachment AttachmentOf(const TargetProfile& wanted) {
    Attachment at = {};
    at.bus = wanted.bus;
    at.bindingFlags = wanted.bindingFlags;
    at.target = wanted.target;
    at.loopId = wanted.loopId;
    return at;
}

// A device that is known already takes the new address and flags at this port and keeps its LUNs;
// where it stands in the fabric does not change.
DriverStatus Add(const Port& port, const TargetProfile& wanted) {
    Fabric& fabric = *port.fabric;
    TargetProfile* device = FindKnown(fabric, wanted);
    const bool isNew = device == nullptr;
    if (isNew) {
        if (const ProfileError error = AddDevice(fabric, wanted); error != ProfileError::None) {
            return StatusOf(error);
        }
        device = FindKnown(fabric, wanted);
    }
    if (Attach(port, *device, AttachmentOf(wanted))) {
        return DriverStatus::Success;
    }
    if (isNew) {
        RemoveDevice(fabric, *device);
    }
    return DriverStatus::InvalidParameter;
}

// The new device gets the place (bus, target, loop identifier) of the old one, and a new device
// that was known already gives the old one its own.
DriverStatus Swap(const Port& port, const TargetProfile& oldDevice,
                  const TargetProfile& newDevice) {
    Fabric& fabric = *port.fabric;
    TargetProfile* before = FindKnown(fabric, oldDevice);
    const TargetProfile* after = FindKnown(fabric, newDevice);
    if (before == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    if (after == nullptr) {
        TargetProfile replaced = *before;
        std::memcpy(replaced.nodeName, newDevice.nodeName, sizeof replaced.nodeName);
        std::memcpy(replaced.portName, newDevice.portName, sizeof replaced.portName);
        std::memcpy(replaced.portId, newDevice.portId, sizeof replaced.portId);
        AttachmentOf(port, *before).bindingFlags = newDevice.bindingFlags;
        return StatusOf(ReplaceDevice(fabric, *before, replaced));
    }
    Attachment& first = AttachmentOf(port, *before);
    Attachment& second = AttachmentOf(port, *after);
    const Attachment place = first;
    first.bus = second.bus;
    first.target = second.target;
    first.loopId = second.loopId;
    second.bus = place.bus;
    second.target = place.target;
    second.loopId = place.loopId;
    return DriverStatus::Success;
}

// A target with its mask, from a legacy driver's caller. The target's own entry comes back in the
// request, so its port name says which it is.
TargetProfile* NamedTarget(const Port& port, const persist::TargetAndMaskRequest& request) {
    return FindByPortName(port, request.portName);
}

void SetMask(const Port& port, const TargetProfile& device,
             const persist::TargetAndMaskRequest& request) {
    std::memcpy(AttachmentOf(port, device).mask.bytes, request.visible, persist::kVersion1Luns / 8);
}

}  // namespace

DriverStatus TargetLunMask(Exchange& exchange) {
    return ReadMask<persist::BusAddressBlock>(exchange);
}
DriverStatus SetTargetLunMask(Exchange& exchange) {
    return WriteMask<persist::BusAddressBlock>(exchange);
}
DriverStatus TargetLunMaskFc(Exchange& exchange) {
    return ReadMask<persist::FcAddressBlock>(exchange);
}
DriverStatus SetTargetLunMaskFc(Exchange& exchange) {
    return WriteMask<persist::FcAddressBlock>(exchange);
}

DriverStatus AddTarget(Exchange& exchange) {
    properties::PortDatabaseEntry entry;
    if (!exchange.Read(entry)) {
        return DriverStatus::InvalidParameter;
    }
    return Add(exchange.GetPort(), DeviceOf(exchange.GetPort(), entry));
}

DriverStatus SwapTargets(Exchange& exchange) {
    persist::SwapRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    return Swap(port, DeviceOf(port, request.oldDevice), DeviceOf(port, request.newDevice));
}

bool LegacySetTarget(Exchange& exchange) {
    persist::TargetAndMaskRequest request;
    if (!exchange.Read(request)) {
        return false;
    }
    TargetProfile* device = NamedTarget(exchange.GetPort(), request);
    if (device == nullptr) {
        return false;
    }
    AttachmentOf(exchange.GetPort(), *device).bindingFlags = request.entry.bindingFlags;
    SetMask(exchange.GetPort(), *device, request);
    return true;
}

bool LegacyAddTarget(Exchange& exchange) {
    persist::TargetAndMaskRequest request;
    if (!exchange.Read(request)) {
        return false;
    }
    const Port& port = exchange.GetPort();
    if (const TargetProfile* device = NamedTarget(port, request); device != nullptr) {
        SetMask(port, *device, request);
        return true;
    }
    persist::LegacyDevice added;
    std::memcpy(&added, &request.entry, sizeof added);
    return Add(port, DeviceOf(port, added)) == DriverStatus::Success;
}

bool LegacySwapTargets(Exchange& exchange) {
    persist::LegacySwapRequest request;
    if (!exchange.Read(request)) {
        return false;
    }
    const Port& port = exchange.GetPort();
    return Swap(port, DeviceOf(port, request.oldDevice), DeviceOf(port, request.newDevice)) ==
           DriverStatus::Success;
}

}  // namespace vxemu
