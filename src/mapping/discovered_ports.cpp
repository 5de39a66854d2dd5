#include "mapping/discovered_ports.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "properties/port_database.h"

namespace mapping {
namespace {

constexpr uint32_t kDiscoveredDevices = 1;  // database type

}  // namespace

HX_STATUS DiscoveredPorts::Fetch(uint32_t handle) {
    static_assert(sizeof(List) == HX_PORT_DATABASE_SIZE(kRoom));
    list_.reset(new (std::nothrow) List{});
    return list_ != nullptr
               ? properties::GetPortDatabase(handle, kDiscoveredDevices, list_.get(), sizeof *list_)
               : HX_STATUS{HXMGT_OUT_OF_MEMORY};
}

std::span<const HX_DEVICE_RECORD> DiscoveredPorts::Records() const {
    return std::span(list_->ports).first(std::min<size_t>(list_->head.count, kRoom));
}

std::optional<uint32_t> DiscoveredPorts::Find(const uint8_t* portName) const {
    uint32_t index = 0;
    for (const HX_DEVICE_RECORD& port : Records()) {
        if (std::memcmp(port.portName, portName, sizeof port.portName) == 0) {
            return index;
        }
        ++index;
    }
    return std::nullopt;
}

const HX_DEVICE_RECORD* DiscoveredPorts::At(uint32_t bus, uint32_t target) const {
    for (const HX_DEVICE_RECORD& port : Records()) {
        if (port.bus == bus && port.target == target) {
            return &port;
        }
    }
    return nullptr;
}

}  // namespace mapping
