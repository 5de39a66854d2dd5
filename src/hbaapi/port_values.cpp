#include "hbaapi/port_values.h"

#include "hxmgtapi.h"

namespace hbaapi {
namespace {

constexpr uint32_t kFirstFabricId = 0x10000;

struct TypeRow {
    uint16_t topology;
    HBA_PORTTYPE withFabric;
    HBA_PORTTYPE withoutFabric;
};
constexpr TypeRow kTypes[] = {
    {0, HBA_PORTTYPE_UNKNOWN, HBA_PORTTYPE_UNKNOWN}, {1, HBA_PORTTYPE_NPORT, HBA_PORTTYPE_PTP},
    {2, HBA_PORTTYPE_LPORT, HBA_PORTTYPE_LPORT},     {3, HBA_PORTTYPE_NLPORT, HBA_PORTTYPE_NLPORT},
    {4, HBA_PORTTYPE_NPORT, HBA_PORTTYPE_PTP},
};

struct StateRow {
    uint16_t state;
    HBA_PORTSTATE mapped;
};
constexpr StateRow kStates[] = {
    {0, HBA_PORTSTATE_ONLINE},
    {1, HBA_PORTSTATE_OFFLINE},
    {2, HBA_PORTSTATE_LINKDOWN},
};

constexpr HBA_PORTSPEED k4To16 = HBA_PORTSPEED_4GBIT | HBA_PORTSPEED_8GBIT | HBA_PORTSPEED_16GBIT;

struct SpeedRow {
    uint8_t code;  // HX_SPEED_...
    HBA_PORTSPEED speed;
    HBA_PORTSPEED supported;  // by an adapter whose highest speed it is; 0 = no such adapter
    HBA_PORTSPEED lowest;     // of these, where the driver can exclude it
};
constexpr SpeedRow kSpeeds[] = {
    {HX_SPEED_1GBIT, HBA_PORTSPEED_1GBIT, 0, 0},
    {HX_SPEED_2GBIT, HBA_PORTSPEED_2GBIT, HBA_PORTSPEED_1GBIT | HBA_PORTSPEED_2GBIT, 0},
    {HX_SPEED_4GBIT, HBA_PORTSPEED_4GBIT,
     HBA_PORTSPEED_1GBIT | HBA_PORTSPEED_2GBIT | HBA_PORTSPEED_4GBIT, 0},
    {HX_SPEED_8GBIT, HBA_PORTSPEED_8GBIT,
     HBA_PORTSPEED_2GBIT | HBA_PORTSPEED_4GBIT | HBA_PORTSPEED_8GBIT, 0},
    {HX_SPEED_10GBIT, HBA_PORTSPEED_10GBIT, HBA_PORTSPEED_10GBIT, 0},
    {HX_SPEED_16GBIT, HBA_PORTSPEED_16GBIT, k4To16, HBA_PORTSPEED_4GBIT},
    {HX_SPEED_32GBIT, HBA_PORTSPEED_32GBIT, k4To16 | HBA_PORTSPEED_32GBIT, HBA_PORTSPEED_4GBIT},
    {HX_SPEED_64GBIT, HBA_PORTSPEED_64GBIT,
     HBA_PORTSPEED_16GBIT | HBA_PORTSPEED_32GBIT | HBA_PORTSPEED_64GBIT, 0},
};

const SpeedRow* RowOf(uint8_t code) {
    for (const SpeedRow& row : kSpeeds) {
        if (row.code == code) {
            return &row;
        }
    }
    return nullptr;
}

struct Fc4Row {
    uint8_t flag;
    uint8_t byte;
    uint8_t value;
};
constexpr Fc4Row kFc4Types[] = {
    {1u << 0, 1, 0x01},
    {1u << 1, 0, 0x20},
};

}  // namespace

HBA_PORTTYPE PortTypeOf(uint16_t topology, uint32_t portFcId) {
    for (const TypeRow& row : kTypes) {
        if (row.topology == topology) {
            return portFcId < kFirstFabricId ? row.withoutFabric : row.withFabric;
        }
    }
    return HBA_PORTTYPE_UNKNOWN;
}

HBA_PORTSTATE PortStateOf(uint16_t state) {
    for (const StateRow& row : kStates) {
        if (row.state == state) {
            return row.mapped;
        }
    }
    return HBA_PORTSTATE_UNKNOWN;
}

HBA_PORTSPEED SupportedSpeedsOf(uint8_t code, bool withoutLowest) {
    const SpeedRow* const row = RowOf(code);
    if (row == nullptr || row->supported == 0) {
        return HBA_PORTSPEED_NOT_REPORTED;
    }
    return withoutLowest ? row->supported & ~row->lowest : row->supported;
}

HBA_PORTSPEED SpeedOf(uint8_t code) {
    const SpeedRow* const row = RowOf(code);
    return row != nullptr ? row->speed : HBA_PORTSPEED_UNKNOWN;
}

HBA_FC4TYPES Fc4TypesOf(uint8_t flags) {
    HBA_FC4TYPES types{};
    for (const Fc4Row& row : kFc4Types) {
        if ((flags & row.flag) != 0) {
            types.bits[row.byte] = row.value;
        }
    }
    return types;
}

}  // namespace hbaapi
