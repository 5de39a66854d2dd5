#include "vxmgr/app/values.h"

#include <cstdio>

#include "vxmgr/app/size_text.h"

namespace vxmgr {
namespace {

struct SpeedRow {
    uint8_t code;
    uint32_t gigabits;
};
constexpr SpeedRow kSpeeds[] = {
    {HX_SPEED_1GBIT, 1},   {HX_SPEED_2GBIT, 2},   {HX_SPEED_4GBIT, 4},   {HX_SPEED_8GBIT, 8},
    {HX_SPEED_10GBIT, 10}, {HX_SPEED_16GBIT, 16}, {HX_SPEED_32GBIT, 32}, {HX_SPEED_64GBIT, 64},
};

struct StateRow {
    uint8_t state;
    const char* name;
    const char* shown;
    Tone tone;
};
constexpr StateRow kStates[] = {
    {HX_PORT_STATE_ONLINE, kPortStates[0], "online", Tone::Good},
    {HX_PORT_STATE_OFFLINE, kPortStates[1], "offline", Tone::Bad},
    {HX_PORT_STATE_LINK_DOWN, kPortStates[2], "link down", Tone::Bad},
};

// Null for a number without a name. first: the number of the first name.
template <size_t names>
Value Named(const char* const (&table)[names], uint32_t number, uint32_t first) {
    return number >= first && number - first < names ? Value::Text(table[number - first]) : Value();
}

}  // namespace

Value FieldValue(const char* field, size_t size) {
    return Value::TextOrNull(FieldText(field, size));
}

Value HexValue(uint64_t value, int digits) {
    return Value::Text(Hex(value, digits));
}

Value SizeValue(uint64_t bytes) {
    return Value::Number(bytes, "bytes").Shown(SizeText(bytes));
}

Value StatusValue(HX_STATUS status) {
    return status == HXMGT_SUCCESS ? Value() : Value::Text(StatusText(status));
}

Value StateValue(const Port& port) {
    if (!port.port) {
        return Value().Shown(port.answers ? "failed" : "not answering").In(Tone::Bad);
    }
    if (port.disabled.value_or(false)) {
        return Value::Text(kPortStates[3]).In(Tone::Warning);
    }
    for (const StateRow& row : kStates) {
        if (row.state == port.port->state) {
            return Value::Text(row.name).Shown(row.shown).In(row.tone);
        }
    }
    return {};
}

Value PortIdValue(const Port& port) {
    if (!port.port) {
        return {};
    }
    const uint8_t(&bytes)[3] = port.port->portId;
    const uint32_t id = uint32_t{bytes[0]} << 16 | uint32_t{bytes[1]} << 8 | bytes[2];
    return id == 0 ? Value() : HexValue(id, 6);  // 0: no identifier was assigned
}

Value TopologyValue(const Port& port) {
    constexpr uint8_t kPointToPoint = 1;
    constexpr uint8_t kLoop = 2;
    // An older driver gives its own port type there, which says nothing about the topology, and a
    // port without a link has none.
    if (!port.port || !port.IsCurrentGeneration() || port.port->state != HX_PORT_STATE_ONLINE) {
        return {};
    }
    if (port.port->topology == kLoop) {
        return Value::Text(kTopologies[2]);
    }
    if (port.port->topology != kPointToPoint) {
        return {};
    }
    // Only a fabric assigns an identifier with a domain.
    const bool hasDomain = port.port->portId[0] != 0;
    return hasDomain ? Value::Text(kTopologies[0])
                     : Value::Text(kTopologies[1]).Shown("point to point");
}

Value RoleValue(const Port& port) {
    return port.port ? Named(kPortRoles, port.port->role, 1) : Value();
}

Value SpeedValue(uint16_t code) {
    for (const SpeedRow& row : kSpeeds) {
        if (row.code == code) {
            return Value::Number(row.gigabits, "Gbit/s");
        }
    }
    return {};
}

std::optional<uint8_t> SpeedCodeOf(uint64_t gigabits) {
    for (const SpeedRow& row : kSpeeds) {
        if (row.gigabits == gigabits) {
            return row.code;
        }
    }
    return std::nullopt;
}

std::string SpeedsText() {
    return TextsJoined(kSpeeds, ", ",
                       [](const SpeedRow& row) { return std::to_string(row.gigabits); });
}

Value SmartSanValue(const Port& port) {
    // The switch is the current driver's.
    return port.smartSan && port.IsCurrentGeneration() ? OnOffValue(*port.smartSan) : Value();
}

Value OnOffValue(bool on) {
    return Value::Flag(on).Shown(on ? "on" : "off");
}

Value InterruptModeValue(uint16_t mode) {
    return Named(kInterruptModes, mode, 0);
}

Value PciLocationValue(const HX_CHIP_PROPERTY& chip) {
    char text[24];
    std::snprintf(text, sizeof text, "%02x:%02x.%u", static_cast<unsigned>(chip.busLocation >> 8),
                  static_cast<unsigned>(chip.busLocation & 0xFF),
                  static_cast<unsigned>(chip.functionBits >> 5));
    return Value::Text(text);
}

PcieLink LinkOf(uint16_t word) {
    return {static_cast<uint32_t>(word & 0xF), static_cast<uint32_t>((word >> 4) & 0x3F)};
}

Value LinkText(PcieLink link) {
    if (link.generation == 0 || link.width == 0) {
        return {};
    }
    return Value::Text("PCIe " + std::to_string(link.generation) + ".0 x" +
                       std::to_string(link.width));
}

}  // namespace vxmgr
