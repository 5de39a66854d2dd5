// Building the envelopes of requests. Free of platform headers.
#pragma once

#include <cstdint>

#include "transport/ext_ioctl.h"

namespace transport {

// An extended request as its caller gives it.
struct ExtendedCall {
    uint32_t code;
    uint16_t subCode;
    const void* input;
    uint32_t inputLength;
    const void* output;  // some requests travel in the output buffer
    uint32_t outputLength;
    bool nvramFlag;  // the caller's flag of an NVRAM write
};

// False when a request record that the command takes from a buffer is cut short.
bool CarriesItsRecord(const ExtendedCall& call);

// Fills the 116 bytes of an extended envelope, with the rewrites of its command. The call carries
// its record.
void BuildExtended(const ExtendedCall& call, ExtRequest& envelope);

// True for the one request that is sent again while the mailbox is busy: a transceiver write to
// the two-wire address 0xA0.
bool RetriesBusyMailbox(const ExtendedCall& call);

// Fills the header of a plain request.
void BuildPlain(uint32_t code, uint32_t dataLength, SrbIoControl& header);

}  // namespace transport
