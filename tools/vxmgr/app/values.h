// Codes of the library's records as people and programs read them.
#pragma once

#include "vxmgr/app/inventory.h"

namespace vxmgr {

Value FieldValue(const char* field, size_t size);  // null when empty
Value HexValue(uint64_t value, int digits);
Value SizeValue(uint64_t bytes);  // "2.20 TB (2.00 TiB)" for people

// The size that a member of a row gives.
template <auto member>
inline constexpr auto SizeOf = [](const auto& row) { return SizeValue(std::invoke(member, row)); };

// What the values with names can be.
inline constexpr const char* kPortStates[] = {"online", "offline", "link_down", "disabled"};
inline constexpr const char* kTopologies[] = {"fabric", "point_to_point", "loop"};
inline constexpr const char* kPortRoles[] = {"initiator", "other"};
inline constexpr const char* kInterruptModes[] = {"line", "msi", "msi_x"};

Value StatusValue(HX_STATUS status);  // null for success
Value StateValue(const Port& port);
Value PortIdValue(const Port& port);
Value TopologyValue(const Port& port);
Value RoleValue(const Port& port);
Value SpeedValue(uint16_t code);  // gigabits per second; null for codes without meaning
std::optional<uint8_t> SpeedCodeOf(uint64_t gigabits);
std::string SpeedsText();  // "1, 2, 4": all that have a code
Value SmartSanValue(const Port& port);
Value OnOffValue(bool on);
Value InterruptModeValue(uint16_t mode);

// "01:00.1": bus, device, function.
Value PciLocationValue(const HX_CHIP_PROPERTY& chip);

// Generation and width of a PCI Express link word (capabilities or status).
struct PcieLink {
    uint32_t generation;
    uint32_t width;
};
PcieLink LinkOf(uint16_t word);
Value LinkText(PcieLink link);  // "PCIe 4.0 x8"

}  // namespace vxmgr
