// The ports of the running driver as records of a result.
#pragma once

#include <span>

#include "model/control.h"
#include "vocabulary.h"

namespace vxemu {

extern const Fields<PortStatus> kPortFields;

// The ports that the status tells of; none without one.
std::span<const PortStatus> PortsOf(const StatusReply* status);

// What becomes of what is written to a port's flash.
const char* FlashFileState(FlashKeep keep);
inline constexpr const char* kFlashFileStates[] = {"none",      "kept",    "foreign",
                                                   "truncated", "damaged", "failed"};

// Warns of adapters whose flash was to last and does not.
void WarnOfFlash(Invocation& invocation, const StatusReply& status);

// "port", first in the result of nearly every command: the SCSI port number.
extern const Fields<uint32_t> kPortNameFields;

}  // namespace vxemu
