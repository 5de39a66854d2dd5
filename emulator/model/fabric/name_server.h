// The fabric's directory service (FC-GS name server): it knows the emulated ports whose link is up
// and the devices.
#pragma once

#include <cstdint>

#include "model/fabric/fabric.h"

namespace vxemu {

// Of the switch, by which the fabric goes as well.
inline constexpr uint8_t kSwitchName[8] = {0x2C, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x00, 0x01};

// A port as the fabric knows it.
// What a port belongs to, as RNID tells it (FC-LS).
enum class UnitType : uint32_t { Switch = 0x04, Host = 0x0A, StorageSubsystem = 0x0B };

struct FabricPort {
    UnitType unitType;
    const uint8_t* portId;
    const uint8_t* portName;
    const uint8_t* nodeName;
    const char* symbolicName;
};

// The port with that name or identifier; false when the fabric has none.
bool FindByName(const Fabric& fabric, const uint8_t* portName, FabricPort& found);
bool FindByNodeName(const Fabric& fabric, const uint8_t* nodeName, FabricPort& found);
bool FindById(const Fabric& fabric, const uint8_t* portId, FabricPort& found);

// Answers a Common Transport request. Both may lie in the same place. Returns the length of the
// response, 0 when the request is not one or a response of that length would not hold its header.
uint32_t AnswerCt(const Fabric& fabric, const uint8_t* request, uint32_t requestLength,
                  uint8_t* response, uint32_t room);

}  // namespace vxemu
