// Secure updates: their image is kept aside until it is verified and committed.
#pragma once

#include "model/exchange.h"
#include "model/storage/flash.h"

namespace vxemu {

// Takes a piece of the announced image: offset in the region, bytes sent, and how many of them are
// the region's. Pieces come in their order.
transport::DriverStatus StagePiece(Exchange& exchange, uint32_t offset, uint32_t length,
                                   uint32_t inside);

}  // namespace vxemu
