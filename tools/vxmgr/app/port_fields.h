// The keys by which every row about a port names it: port, scsi_port, port_wwn, adapter_serial.
#pragma once

#include "vxmgr/app/inventory.h"

namespace vxmgr {

// Which of them people see, as a line of text mode and as a column; the others are for programs.
enum PortKey : unsigned {
    kNoPortKey = 0,
    kPortIndex = 0x11,
    kScsiPort = 0x22,
    kPortName = 0x44,
    kAdapterSerial = 0x88,
    kPortLabels = 0x0F,
    kPortColumns = 0xF0,
    kOldSerialKey = 0x100,  // the serial number's older key too, for programs
};

// For a splice: {PortKeys(kPortIndex | kAdapterSerial), &Row::port}.
const Fields<Port>& PortKeys(unsigned shown = kPortIndex);

// That older key: where documents had it before adapter_serial.
extern const Fields<Port> kPortSerialAlias;

// The status that the port failed with, null for none.
inline constexpr char kPortStatusAbout[] = "null, or the status that made the port fail";
extern const Fields<Port> kPortStatus;

std::optional<Wwn> PortNameOf(const Port& port);

}  // namespace vxmgr
