// The operating system's disks, tapes and changers behind a SCSI port.
#pragma once

#include <cstdint>
#include <span>

#include "frame/record_list.h"
#include "hxmapping.h"

namespace mapping {

class OsDevices {
  public:
    // Asks the system anew. A device that does not tell its address is passed over.
    HX_STATUS Fetch(uint32_t scsiPort);

    // Ascending by bus, target and LUN; nothing is said of discovered ports yet.
    std::span<HX_OS_DEVICE> Records() { return devices_.Records(); }
    std::span<const HX_OS_DEVICE> Records() const { return devices_.Records(); }
    // The device of the lowest LUN at this bus and target, or null.
    const HX_OS_DEVICE* At(uint32_t bus, uint32_t target) const;

  private:
    frame::RecordList<HX_OS_DEVICE> devices_;
};

}  // namespace mapping
