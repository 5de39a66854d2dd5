// The operating system's disks, tapes and changers behind a SCSI port.
#pragma once

#include <cstdint>
#include <span>

#include "frame/record_list.h"
#include "hxmapping.h"
#include "mapping/port_units.h"
#include "properties/target_address.h"

namespace mapping {

using properties::BusAndTarget;

class OsDevices {
  public:
    // Each asks the system anew, for the devices of every SCSI port, of that of a handle or at one
    // of its targets. A device that does not tell its address is passed over.
    HX_STATUS FetchAll();
    HX_STATUS FetchBehind(uint32_t handle, uint32_t scsiPort);
    HX_STATUS FetchAt(uint32_t handle, uint32_t scsiPort, uint32_t bus, uint32_t target);

    // Ascending by SCSI port, bus, target and LUN; nothing is said of discovered ports yet.
    std::span<HX_OS_DEVICE> Records() { return devices_.Records(); }
    std::span<const HX_OS_DEVICE> Records() const { return devices_.Records(); }
    // The device of the lowest LUN at this bus and target, or null.
    const HX_OS_DEVICE* At(uint32_t bus, uint32_t target) const;

  private:
    HX_STATUS FetchOf(uint32_t handle, uint32_t scsiPort, const BusAndTarget* only);
    // Looks for the wanted units where devices of the port were seen before. False when one of them
    // is not there.
    bool FetchSeen(uint32_t scsiPort, PortUnits& wanted);
    // Asks the devices of all names, or as many as it takes to find the wanted units.
    HX_STATUS FetchNamed(uint32_t scsiPort, PortUnits* wanted);
    void Sort();

    frame::RecordList<HX_OS_DEVICE> devices_;
};

}  // namespace mapping
