// What stands in a flash, looked at as whoever reads it would: versions, and whether checksums
// hold.
#pragma once

#include "model/control.h"
#include "model/port.h"
#include "model/storage/flash.h"

namespace vxemu {

// Describes one region. False when there is no memory to look at it.
bool DescribeRegion(const Port& port, const PlacedRegion& placed, FlashRegionStatus& status);

// The same for an image of a whole region.
void DescribeImage(const FlashRegion& region, uint16_t deviceId, std::span<uint8_t> image,
                   FlashRegionStatus& status);

}  // namespace vxemu
