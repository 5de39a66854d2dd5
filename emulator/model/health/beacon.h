// The locate LED, which travels with the node properties.
#pragma once

#include "hxhealth.h"
#include "model/exchange.h"

namespace vxemu {

// What a request has in the bytes that the node's reply reserves.
struct BeaconPart {
    uint32_t mark;
    uint32_t operation;
    HX_BEACON beacon;
};

// Takes the part out of a request; false when it has none.
bool ReadBeacon(const Exchange& exchange, BeaconPart& part);

// Answers it, which a set may fail.
transport::DriverStatus AnswerBeacon(Port& port, BeaconPart& part);

// Puts the answer into the reply.
void PutBeacon(Exchange& exchange, const BeaconPart& part);

}  // namespace vxemu
