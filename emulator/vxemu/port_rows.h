// The ports of the running driver as records of a result.
#pragma once

#include <span>

#include "common/fields.h"
#include "model/control.h"

namespace vxemu {

const tools::Fields<PortStatus>& PortFields();

// The ports that the status tells of; none without one.
std::span<const PortStatus> PortsOf(const StatusReply* status);

// "port", first in the result of nearly every command: the SCSI port number.
const tools::Fields<uint32_t>& PortNameFields();

}  // namespace vxemu
