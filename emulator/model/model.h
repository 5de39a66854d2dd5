// The emulated adapters: answers the requests of the driver interface for every port of a
// profile, and the control requests of control.h. Plain C++ for three hosts (the kernel driver, a
// test process on Windows, a native test): no platform call, no exception, no floating point, no
// global mutable state, and memory and files from the host alone. The same profile, the same
// files and the same requests give the same bytes.
//
// The host sees to it that calls do not meet that must not: access.h says which, and how. A host
// that lets one call run at a time has done enough.
#pragma once

#include <cstddef>
#include <cstdint>

#include "model/fabric/fabric.h"
#include "model/fabric/os_disks.h"
#include "model/fabric/stored_config.h"
#include "model/faults.h"
#include "model/host.h"
#include "model/port.h"
#include "model/profile/profile.h"
#include "model/storage/flash.h"
#include "model/trace.h"

namespace vxemu {

// How a request ends. Each stands for one way of completing it to the operating system.
enum class Completion : uint32_t {
    Done,
    Busy,         // error 170; also when memory is short
    Invalid,      // not a request of this device: error 1
    ShortBuffer,  // lengths that do not fit the buffer: error 87
    NoDevice,     // no such port
};

class Model {
  public:
    // The profile is validated; null when it is not valid or memory is missing.
    static Model* Create(const Host& host, const Profile& profile);
    static void Destroy(Model* model);

    uint32_t PortCount() const { return profile_->portCount; }

    // Ports have the numbers of the profile at the start. Where an adapter was removed, its ports'
    // numbers, below kMaxPorts, are free for those of another one.
    bool HasPort(uint32_t port) const { return port < kMaxPorts && ports_[port] != nullptr; }
    uint32_t ScsiPortNumber(uint32_t port) const;
    const char* DriverName(uint32_t port) const;

    // Where the port's bindings and masks are stored, and taking them over at the start.
    const uint8_t (&PortName(uint32_t port) const)[8] { return ports_[port]->profile->portName; }
    bool KeepsValueNames(uint32_t port) const {
        return ports_[port]->adapter->vendorSpecificId != 0;
    }
    void ApplyStore(uint32_t port, const StoredConfig& stored);

    // The disks of the targets as the operating system knows them.
    uint32_t DiskKeys() const { return CountDiskKeys(fabric_); }
    bool GetDiskKey(uint32_t port, uint32_t index, DiskKey& key) const {
        return HasPort(port) && vxemu::GetDiskKey(*ports_[port], index, key);
    }
    bool FindDisk(uint32_t port, const DiskKey& key, OsDisk& disk) const {
        return HasPort(port) && FindOsDisk(*ports_[port], key, disk);
    }

    // One IOCTL_SCSI_MINIPORT on a buffer of max(inputLength, outputLength) bytes that holds the
    // input and receives the output. *returned is the number of bytes to hand back, 0 unless Done.
    // *delay is the number of milliseconds to wait before completing (a fault asks for it).
    Completion Request(uint32_t port, uint8_t* buffer, uint32_t inputLength, uint32_t outputLength,
                       uint32_t* returned, uint32_t* delay = nullptr);

    // One request of the control device, on the same kind of buffer.
    Completion Control(uint32_t code, uint8_t* buffer, uint32_t inputLength, uint32_t outputLength,
                       uint32_t* returned);

    // The host tells of handles opened (+1) and closed (-1), for the status report.
    void CountHandle(uint32_t port, int32_t change);

    // Takes the adapter of a port away, as if its card were pulled. Control requests do so, too: a
    // host whose ports have devices looks at HasPort after each.
    void RemoveAdapter(uint32_t port);

  private:
    friend class ControlRequest;

    Completion Serve(uint32_t port, uint8_t* buffer, uint32_t inputLength, uint32_t outputLength,
                     uint32_t* returned, uint32_t* delay);
    Completion AnswerExtended(Port& port, uint8_t* buffer, uint32_t inputLength,
                              uint32_t outputLength, FaultAction fault, uint32_t* returned);
    Completion AnswerPlain(Port& port, uint8_t* buffer, uint32_t inputLength, uint32_t outputLength,
                           FaultAction fault, uint32_t* returned);

    // The adapter comes behind the others. *error is what is wrong with it, and nothing has changed
    // then; Busy when memory is short.
    Completion AddAdapter(const AdapterRecord& added, ProfileError* error);

    // Gives a port of the profile its state; false when memory is missing. slot: the adapter's.
    bool MakePort(uint32_t index, uint32_t slot);
    // What the adapter stores first, then its ports.
    void StartAdapter(uint32_t slot);
    void DropPort(const PortProfile* gone);
    void DropAdapter(const Port& port);
    void DropAdapter(uint32_t adapter, uint32_t slot);
    uint32_t FreeSlot() const;

    Host host_;
    Profile* profile_;
    Port* ports_[kMaxPorts];
    // What the ports of an adapter share has a slot, one of kMaxAdapters, for as long as the
    // adapter is there: at the start, its number in the profile.
    Board* boards_;
    Flash* flashes_;
    Profile* origin_;  // by slots; as it was given: what the flash holds until it is written to
    Fabric fabric_;
    FaultList faults_;
    uint64_t startTime_;
    Trace trace_;
    TraceName traceName_;
};

}  // namespace vxemu
