// Words of the PCI configuration header that all emulated chips share.
#pragma once

#include <cstdint>

namespace vxemu {

inline constexpr uint16_t kFibreChannelClass = 0x0C04;  // serial bus, Fibre Channel
inline constexpr uint16_t kPciCommand = 0x0547;         // I/O, memory, bus master, parity, SERR
inline constexpr uint16_t kPciStatus = 0x0010;          // capability list

}  // namespace vxemu
