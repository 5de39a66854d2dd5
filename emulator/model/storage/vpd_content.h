// Vital product data of the emulated adapters, as PCI Local Bus has it.
#pragma once

#include <cstdint>
#include <span>

#include "model/profile/profile.h"

namespace vxemu {

// Identifier string, read-only keywords with their checksum, end tag; zeros up to the end. The
// room is at least 256 bytes.
void FillVpd(const AdapterProfile& adapter, uint8_t* bytes, uint32_t length);

// Whether the tags lie within the bytes, end with the end tag, and the checksum holds.
bool VpdHolds(std::span<const uint8_t> bytes);

}  // namespace vxemu
