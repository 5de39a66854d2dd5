// The ports of the running driver as records of a result.
#pragma once

#include <span>

#include "model/control.h"
#include "vocabulary.h"

namespace vxemu {

extern const Fields<PortStatus> kPortFields;

// The ports that the status tells of; none without one.
std::span<const PortStatus> PortsOf(const StatusReply* status);

// "port", first in the result of nearly every command: the SCSI port number.
extern const Fields<uint32_t> kPortNameFields;

}  // namespace vxemu
