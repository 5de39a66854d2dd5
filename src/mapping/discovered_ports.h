// The ports that a handle's port has discovered.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "hxpersist.h"

namespace mapping {

class DiscoveredPorts {
  public:
    static constexpr uint32_t kRoom = 1024;  // what the driver's list holds at most

    HX_STATUS Fetch(uint32_t handle);

    // In the driver's order: the position is the discovered index.
    std::span<const HX_DEVICE_RECORD> Records() const;
    // Position of the first port with this port name.
    std::optional<uint32_t> Find(const uint8_t* portName) const;
    // The first port at this bus and target, or null.
    const HX_DEVICE_RECORD* At(uint32_t bus, uint32_t target) const;

  private:
#pragma pack(push, 1)
    struct List {
        HX_PORT_DATABASE head;
        HX_DEVICE_RECORD ports[kRoom];
    };
#pragma pack(pop)

    std::unique_ptr<List> list_;
};

}  // namespace mapping
