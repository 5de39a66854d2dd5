// The devices that a port knows: the port database, discovered ports and targets.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <span>

#include "hxmgtapi.h"
#include "hxpersist.h"

namespace properties {

HX_STATUS GetPortDatabase(uint32_t handle, uint32_t type, void* buffer, uint32_t size);
HX_STATUS GetDiscoveredPort(uint32_t handle, uint32_t index, HX_DISCOVERED_PORT* record);
HX_STATUS GetDiscoveredTarget(uint32_t handle, uint32_t index, HX_DISCOVERED_TARGET* record);

inline constexpr uint32_t kEveryDevice = 7;  // database type

// Every device of a port. A port that knows more than fit is refused with HXMGT_BUFFER_TOO_SMALL.
class KnownDevices {
  public:
    static constexpr uint32_t kRoom = HX_MAX_TARGETS + 1;

    HX_STATUS Fetch(uint32_t handle);
    std::span<const HX_DEVICE_RECORD> Records() const;

  private:
#pragma pack(push, 1)
    struct Database {
        HX_PORT_DATABASE head;
        HX_DEVICE_RECORD devices[kRoom];
    };
#pragma pack(pop)
    static_assert(sizeof(Database) == 74538);

    std::unique_ptr<Database> database_;
};

}  // namespace properties
