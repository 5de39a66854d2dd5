// Sense data (SPC) in words.
#pragma once

#include "vxmgr/app/bytes.h"

namespace vxmgr {

struct Sense {
    bool descriptorFormat = false;
    bool deferred = false;  // about an earlier command
    uint8_t key = 0;
    uint8_t code = 0;       // additional sense code
    uint8_t qualifier = 0;  // of the additional sense code
    std::optional<uint64_t> information;
};

// Fixed or descriptor format; nothing when the bytes are neither, or end before the sense key.
std::optional<Sense> DecodeSense(Bytes bytes);

std::string SenseKeyName(uint8_t key);  // "illegal request"

// "logical unit not ready: becoming ready"; the codes themselves when they are not known.
std::string AdditionalSenseText(uint8_t code, uint8_t qualifier);

// "illegal request: invalid field in CDB (5/24/00)"
std::string SenseText(const Sense& sense);

extern const Fields<Sense> kSenseFields;

}  // namespace vxmgr
