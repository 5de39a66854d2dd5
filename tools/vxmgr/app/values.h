// Codes of the library's records as people and programs read them.
#pragma once

#include <cstdint>
#include <string>

#include "common/record.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

tools::Value FieldValue(const char* field, size_t size);  // null when empty
tools::Value HexValue(uint64_t value, int digits);

// What the values with names can be.
inline constexpr const char* kPortStates[] = {"online", "offline", "link_down", "disabled"};
inline constexpr const char* kTopologies[] = {"fabric", "point_to_point", "loop"};
inline constexpr const char* kPortRoles[] = {"initiator", "other"};
inline constexpr const char* kInterruptModes[] = {"line", "msi", "msi_x"};

tools::Value StatusValue(HX_STATUS status);  // null for success
tools::Value StateValue(const Port& port);
tools::Value PortIdValue(const Port& port);
tools::Value TopologyValue(const Port& port);
tools::Value RoleValue(const Port& port);
tools::Value SpeedValue(uint16_t code);  // gigabits per second; null for codes without meaning
std::optional<uint8_t> SpeedCodeOf(uint64_t gigabits);
std::string SpeedsText();  // "1, 2, 4": all that have a code
tools::Value SmartSanValue(const Port& port);
tools::Value OnOffValue(bool on);
tools::Value InterruptModeValue(uint16_t mode);

// "01:00.1": bus, device, function.
tools::Value PciLocationValue(const HX_CHIP_PROPERTY& chip);

// Generation and width of a PCI Express link word (capabilities or status).
struct PcieLink {
    uint32_t generation;
    uint32_t width;
};
PcieLink LinkOf(uint16_t word);
tools::Value LinkText(PcieLink link);  // "PCIe 4.0 x8"

}  // namespace vxmgr
