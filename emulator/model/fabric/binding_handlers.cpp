// LUN masks and target bindings, both driver generations.
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "persist/driver_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

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

// A device by its name, and the address and flags that it is to have.
struct Wanted {
    uint8_t portName[8];
    Attachment at;
};

// A device by its port name, also one that the port does not see now. A name that nobody has stays
// without a device: what a driver binds does not come to be.
const TargetProfile* FindKnown(const Fabric& fabric, const Wanted& wanted) {
    for (uint32_t at = 0; at < fabric.profile->targetCount; ++at) {
        const TargetProfile& device = fabric.profile->targets[at];
        if (std::memcmp(device.portName, wanted.portName, sizeof wanted.portName) == 0) {
            return &device;
        }
    }
    return nullptr;
}

// What a caller says about a device. Extended and legacy drivers take the same members in different
// places.
template <typename Record>
Wanted WantedBy(const Record& record) {
    Wanted wanted = {};
    std::memcpy(wanted.portName, record.portName, sizeof wanted.portName);
    wanted.at.bindingFlags = record.bindingFlags;
    wanted.at.bus = static_cast<uint8_t>(record.bus);
    wanted.at.target = record.target;
    wanted.at.loopId = record.targetNumber;
    return wanted;
}

// The device takes the new address and flags at this port and keeps its LUNs; where it stands in
// the fabric does not change.
DriverStatus Add(const Port& port, const Wanted& wanted) {
    const TargetProfile* device = FindKnown(*port.fabric, wanted);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    return Attach(port, *device, wanted.at) ? DriverStatus::Success
                                            : DriverStatus::InvalidParameter;
}

// The two devices exchange their places: bus, target, loop identifier.
DriverStatus Swap(const Port& port, const Wanted& oldDevice, const Wanted& newDevice) {
    const TargetProfile* before = FindKnown(*port.fabric, oldDevice);
    const TargetProfile* after = FindKnown(*port.fabric, newDevice);
    if (before == nullptr || after == nullptr) {
        return DriverStatus::DeviceNotFound;
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
    return Add(exchange.GetPort(), WantedBy(entry));
}

DriverStatus SwapTargets(Exchange& exchange) {
    persist::SwapRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    return Swap(port, WantedBy(request.oldDevice), WantedBy(request.newDevice));
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
    return Add(port, WantedBy(added)) == DriverStatus::Success;
}

bool LegacySwapTargets(Exchange& exchange) {
    persist::LegacySwapRequest request;
    if (!exchange.Read(request)) {
        return false;
    }
    const Port& port = exchange.GetPort();
    return Swap(port, WantedBy(request.oldDevice), WantedBy(request.newDevice)) ==
           DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::TargetLunMask, .handle = TargetLunMask, .flags = WithinPort},
    {.command = command::SetTargetLunMask, .handle = SetTargetLunMask, .flags = WithinPort},
    {.command = command::TargetLunMaskFc, .handle = TargetLunMaskFc, .flags = WithinPort},
    {.command = command::SetTargetLunMaskFc, .handle = SetTargetLunMaskFc, .flags = WithinPort},
    {.command = command::AddTargetOld, .handle = AddTarget},
    {.command = command::AddTarget, .handle = AddTarget},
    {.command = command::SwapTargetsOld, .handle = SwapTargets},
    {.command = command::SwapTargets, .handle = SwapTargets},
};

constexpr PlainRow kPlainRequests[] = {
    {.code = command::LegacySetTarget, .handle = LegacySetTarget},
    // Applying target data takes this one of a current driver as well.
    {.code = command::LegacySetTarget,
     .handle = LegacySetTarget,
     .generation = DriverGeneration::Extended},
    {.code = command::LegacyAddTarget, .handle = LegacyAddTarget},
    {.code = command::LegacySwapTargets, .handle = LegacySwapTargets},
};

}  // namespace

RequestRows BindingRequests() {
    return {.extended = kRequests, .plain = kPlainRequests};
}

}  // namespace vxemu
