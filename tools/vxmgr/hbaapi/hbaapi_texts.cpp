#include "vxmgr/hbaapi/hbaapi_texts.h"

#include <cstdio>
#include <cstring>

#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

#define ROW(prefix, name) \
    { prefix##name, #name }
#define STATUS_ROW(name) \
    { name, #name }
constexpr CodeText kStatuses[] = {
    STATUS_ROW(HBA_STATUS_OK),
    STATUS_ROW(HBA_STATUS_ERROR),
    STATUS_ROW(HBA_STATUS_ERROR_NOT_SUPPORTED),
    STATUS_ROW(HBA_STATUS_ERROR_INVALID_HANDLE),
    STATUS_ROW(HBA_STATUS_ERROR_ARG),
    STATUS_ROW(HBA_STATUS_ERROR_ILLEGAL_WWN),
    STATUS_ROW(HBA_STATUS_ERROR_ILLEGAL_INDEX),
    STATUS_ROW(HBA_STATUS_ERROR_MORE_DATA),
};
constexpr CodeText kTypes[] = {
    ROW(HBA_PORTTYPE_, UNKNOWN), ROW(HBA_PORTTYPE_, NPORT), ROW(HBA_PORTTYPE_, NLPORT),
    ROW(HBA_PORTTYPE_, LPORT),   ROW(HBA_PORTTYPE_, PTP),
};
constexpr CodeText kStates[] = {
    ROW(HBA_PORTSTATE_, UNKNOWN),
    ROW(HBA_PORTSTATE_, ONLINE),
    ROW(HBA_PORTSTATE_, OFFLINE),
    ROW(HBA_PORTSTATE_, LINKDOWN),
};
#undef ROW
#undef STATUS_ROW

constexpr CodeText kSpeeds[] = {
    {HBA_PORTSPEED_1GBIT, "1 Gbit/s"},   {HBA_PORTSPEED_2GBIT, "2 Gbit/s"},
    {HBA_PORTSPEED_4GBIT, "4 Gbit/s"},   {HBA_PORTSPEED_8GBIT, "8 Gbit/s"},
    {HBA_PORTSPEED_10GBIT, "10 Gbit/s"}, {HBA_PORTSPEED_16GBIT, "16 Gbit/s"},
    {HBA_PORTSPEED_32GBIT, "32 Gbit/s"}, {HBA_PORTSPEED_64GBIT, "64 Gbit/s"},
};

// FC-4 types (FC-GS): bit type%8 of byte type/8.
constexpr CodeText kFc4Types[] = {{0x05, "IP"}, {0x08, "FCP"}, {0x20, "CT"}, {0x28, "NVMe"}};
constexpr uint32_t kFc4Count = 256;

void Append(std::string& list, const std::string& text) {
    list += (list.empty() ? "" : ", ") + text;
}

// Address methods of the first LUN level (SAM), in the top two bits of its two bytes.
constexpr uint8_t kMethodMask = 0xC0;
constexpr uint8_t kFlat = 0x40;

}  // namespace

std::string HbaStatusText(HBA_STATUS status) {
    return TextOfCode(kStatuses, status, Hex(status, 8));
}

std::string HbaPortTypeText(HBA_PORTTYPE type) {
    return TextOfCode(kTypes, type, std::to_string(type));
}

std::string HbaPortStateText(HBA_PORTSTATE state) {
    return TextOfCode(kStates, state, std::to_string(state));
}

std::string HbaSpeedsText(HBA_PORTSPEED speeds) {
    std::string text;
    if (speeds == HBA_PORTSPEED_NOT_REPORTED) {
        return text;
    }
    for (const CodeText& row : kSpeeds) {
        if ((speeds & row.code) != 0) {
            Append(text, row.text);
        }
    }
    return text;
}

std::string HbaFc4TypesText(const HBA_FC4TYPES& types) {
    std::string text;
    for (uint32_t type = 0; type < kFc4Count; ++type) {
        if ((types.bits[type / 8] >> (type % 8) & 1) != 0) {
            Append(text, TextOfCode(kFc4Types, type, Hex(type, 2)));
        }
    }
    return text;
}

std::string HbaFcpLunText(HBA_UINT64 lun) {
    uint8_t bytes[sizeof lun];
    std::memcpy(bytes, &lun, sizeof bytes);
    bool oneLevel = true;
    for (size_t i = 2; i < sizeof bytes; ++i) {
        oneLevel = oneLevel && bytes[i] == 0;
    }
    const uint8_t method = bytes[0] & kMethodMask;
    const bool byNumber = method == kFlat || bytes[0] == 0;
    if (oneLevel && byNumber) {
        return std::to_string((bytes[0] & ~kMethodMask) << 8 | bytes[1]);
    }
    std::string text;
    for (const uint8_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

std::string HbaAddressText(HBA_UINT16 version, const HBA_UINT8 (&address)[16]) {
    constexpr HBA_UINT16 kIpV4 = 1;
    constexpr HBA_UINT16 kIpV6 = 2;
    std::string text;
    if (version == kIpV4) {
        // In the last four bytes (FC-LS).
        for (size_t i = 12; i < sizeof address; ++i) {
            text += (text.empty() ? "" : ".") + std::to_string(address[i]);
        }
    } else if (version == kIpV6) {
        for (size_t i = 0; i < sizeof address; i += 2) {
            char group[8];
            std::snprintf(group, sizeof group, "%s%x", i == 0 ? "" : ":",
                          static_cast<unsigned>(address[i] << 8 | address[i + 1]));
            text += group;
        }
    }
    return text;
}

}  // namespace vxmgr
