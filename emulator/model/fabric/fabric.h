// What the ports of all emulated adapters are connected to: targets with their LUNs, and other
// hosts. The devices are the fabric's; under which address and with which LUNs a port sees one is
// the port's own.
#pragma once

#include <cstdint>

#include "model/port.h"
#include "model/profile/profile.h"
#include "model/storage/block_store.h"
#include "passthru/scsi_records.h"

namespace vxemu {

struct Fabric {
    Host host;
    Profile* profile;    // the model's own
    Port* const* ports;  // kMaxPorts of them; null where none is
    BlockStore store;
};

template <typename Visit>
void ForEachHostPort(const Fabric& fabric, Visit visit) {
    for (uint32_t place = 0; place < kMaxPorts; ++place) {
        if (fabric.ports[place] != nullptr) {
            visit(*fabric.ports[place]);
        }
    }
}

// Whether the device shows itself to the port; whether the port reaches it now: both are there, and
// the port's link is up; and whether it sees it, as it does unless its driver withholds it.
bool MaySee(const Port& port, const TargetProfile& device);
bool Reaches(const Port& port, const TargetProfile& device);
bool Sees(const Port& port, const TargetProfile& device);

inline bool IsTarget(const TargetProfile& device) {
    return device.role != DeviceRole::Initiator;
}

enum class DeviceKind { Any, Target };

// The index-th device that the port sees, or null; and how many there are.
TargetProfile* NthDevice(const Port& port, DeviceKind kind, uint32_t index);
uint32_t CountDevices(const Port& port, DeviceKind kind);

// The device that an address names for the port, or null. The address is a name, a port
// identifier, or two 16-bit numbers: bus and target.
TargetProfile* FindDevice(const Port& port, passthru::DriverAddress type,
                          const uint8_t (&address)[8]);
// The same, were it gone or the link down.
TargetProfile* FindEvenIfGone(const Port& port, passthru::DriverAddress type,
                              const uint8_t (&address)[8]);
TargetProfile* FindByPortName(const Port& port, const uint8_t (&portName)[8]);
TargetProfile* FindByLoopId(const Port& port, uint16_t loopId);

// Index of a device in the profile.
uint32_t IndexOf(const Fabric& fabric, const TargetProfile& device);

Attachment& AttachmentOf(const Port& port, const TargetProfile& device);
Peer& PeerOf(const Port& port, const TargetProfile& device);

// How long the port has seen the device, in seconds; 0 when it does not.
uint32_t SecondsOnline(const Port& port, const TargetProfile& device);

// Loop identifiers are odd while the device is there (bit 0 is the valid flag of a legacy driver's
// list), even once it is gone.
uint16_t LoopIdOf(const Port& port, const TargetProfile& device);

// The LUN of a target, null when there is none or the port's mask hides it.
LunProfile* FindLun(const Fabric& fabric, const TargetProfile& device, uint32_t number);
const LunProfile* VisibleLun(const Port& port, const TargetProfile& device, uint32_t number);
uint32_t CountLuns(const Port& port, const TargetProfile& device);
DiskKey DiskOf(const Fabric& fabric, const LunProfile& lun);

// A port's attachments as at the start: the profile's addresses, and everything is visible but the
// LUNs that the profile masks.
void StartAttachments(const Port& port);

// Gives a device another address at the port, which withholds it no longer; false when another
// device has it.
bool Attach(const Port& port, const TargetProfile& device, const Attachment& at);

// Changes of the fabric. What they say is what ValidateTargets would object to; the fabric is then
// as it was.
ProfileError AddDevice(Fabric& fabric, const TargetProfile& device);
void RemoveDevice(Fabric& fabric, TargetProfile& device);
// A change of the address or flags counts for every port, whatever it had bound.
ProfileError ReplaceDevice(Fabric& fabric, TargetProfile& device, const TargetProfile& with);
ProfileError AddLun(Fabric& fabric, const LunProfile& lun);
void RemoveLun(Fabric& fabric, LunProfile& lun);
ProfileError ReplaceLun(Fabric& fabric, LunProfile& lun, const LunProfile& with);

}  // namespace vxemu
