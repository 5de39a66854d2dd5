// The serial field of an adapter: what its ports, and its update lock, are recognised by.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "frame/handle_table.h"
#include "properties/adapter_texts.h"
#include "properties/properties.h"

namespace flash {

// Bytes 120 to 151 of the node record: the mark of a serial number, then its text.
class AdapterSerial {
  public:
    HX_STATUS Read(uint32_t handle) {
        static_assert(offsetof(HX_NODE_PROPERTY, serialPresent) == 120);
        static_assert(offsetof(HX_NODE_PROPERTY, serialNumber) == 121);
        static_assert(sizeof(field_) == 1 + sizeof(HX_NODE_PROPERTY::serialNumber));
        HX_NODE_PROPERTY node{};
        const HX_STATUS status = properties::GetNodeProperty(handle, &node);
        if (status == HXMGT_SUCCESS) {
            field_[0] = static_cast<char>(node.serialPresent);
            std::memcpy(field_ + 1, node.serialNumber, sizeof node.serialNumber);
        }
        return status;
    }
    std::string_view Text() const { return properties::TextOf(field_); }

  private:
    char field_[32] = {};
};

// Calls visit(handle) for every open port of the adapter behind a handle. The first status other
// than success ends it.
template <class Visit>
HX_STATUS ForEachOpenPort(uint32_t handle, Visit visit) {
    AdapterSerial own;
    if (const HX_STATUS status = own.Read(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    for (uint32_t slot = 0; slot < HX_MAX_HANDLE_RECORDS; ++slot) {
        if (frame::OpenRecord(slot) == nullptr) {
            continue;
        }
        AdapterSerial serial;
        if (const HX_STATUS status = serial.Read(slot); status != HXMGT_SUCCESS) {
            return status;
        }
        // Adapters without a serial number are not one adapter.
        if (slot != handle && (own.Text().empty() || serial.Text() != own.Text())) {
            continue;
        }
        if (const HX_STATUS status = visit(slot); status != HXMGT_SUCCESS) {
            return status;
        }
    }
    return HXMGT_SUCCESS;
}

}  // namespace flash
