// The keys by which every row about a port names it: port, scsi_port, port_wwn, adapter_serial.
#pragma once

#include "common/fields.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

// Which of them people see; the others are for programs.
enum PortKey : unsigned {
    kNoPortKey = 0,
    kPortIndex = 1,
    kScsiPort = 2,
    kPortName = 4,
    kAdapterSerial = 8,
};

// For a splice: {PortKeys(kPortIndex | kAdapterSerial), &Row::port}.
const tools::Fields<Port>& PortKeys(unsigned shown = kPortIndex);

// The whole of a result that a command gives about one port begins with them.
void AddPortKeys(tools::Record& record, const Port& port, unsigned shown = kPortIndex);

}  // namespace vxmgr
