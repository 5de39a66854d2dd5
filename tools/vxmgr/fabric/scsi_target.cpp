#include "vxmgr/fabric/scsi_target.h"

#include <cstring>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {
namespace {

bool ParseName(std::string_view text, HX_SCSI_ADDRESS* address) {
    const auto name = Wwn::Parse(text);
    if (name) {
        address->type = HX_ADDRESS_PORT_NAME;
        std::memcpy(address->address, name->bytes.data(), sizeof address->address);
    }
    return name.has_value();
}

bool ParseId(std::string_view text, HX_SCSI_ADDRESS* address) {
    constexpr uint64_t kHighest = 0xFFFFFF;
    const auto id = ParseNumber(text);
    if (!id || *id > kHighest) {
        return false;
    }
    address->type = HX_ADDRESS_PORT_ID;
    for (int byte = 0; byte < 3; ++byte) {
        address->address[byte] = static_cast<uint8_t>(*id >> (16 - 8 * byte));
    }
    return true;
}

bool ParseBusAndTarget(std::string_view text, HX_SCSI_ADDRESS* address) {
    const auto parts = Split(text, ':');
    if (parts.size() != 2) {
        return false;
    }
    uint16_t numbers[2];
    for (size_t i = 0; i < 2; ++i) {
        const auto number = ParseNumber(parts[i]);
        if (!number || *number > UINT16_MAX) {
            return false;
        }
        numbers[i] = static_cast<uint16_t>(*number);
    }
    address->type = HX_ADDRESS_BUS_TARGET;
    std::memcpy(address->address, numbers, sizeof numbers);
    return true;
}

}  // namespace

bool ParseTarget(std::string_view text, HX_SCSI_ADDRESS* address, std::string* error) {
    *address = {};
    const auto behind = [&](std::string_view prefix) { return text.substr(prefix.size()); };
    if (text.starts_with("wwn:")) {
        *error = "no world wide name of eight bytes";
        return ParseName(behind("wwn:"), address);
    }
    if (text.starts_with("id:")) {
        *error = "no port identifier from 0 to 0xffffff";
        return ParseId(behind("id:"), address);
    }
    *error = "neither wwn:NAME, id:0xDDAAPP nor BUS:TARGET";
    return ParseName(text, address) || ParseBusAndTarget(text, address);
}

}  // namespace vxmgr
