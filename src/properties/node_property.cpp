#include <windows.h>

#include <cstddef>
#include <cstring>

#include "properties/adapter_texts.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace properties {
namespace {

static_assert(sizeof(HX_NODE_PROPERTY) == 388);
static_assert(offsetof(HX_NODE_PROPERTY, manufacturer) == 8);
static_assert(offsetof(HX_NODE_PROPERTY, model) == 88);
static_assert(offsetof(HX_NODE_PROPERTY, modelDescription) == 104);
static_assert(offsetof(HX_NODE_PROPERTY, serialPresent) == 120);
static_assert(offsetof(HX_NODE_PROPERTY, serialNumber) == 121);
static_assert(offsetof(HX_NODE_PROPERTY, driverVersion) == 152);
static_assert(offsetof(HX_NODE_PROPERTY, firmwareVersion) == 184);
static_assert(offsetof(HX_NODE_PROPERTY, optionRomVersion) == 216);
static_assert(offsetof(HX_NODE_PROPERTY, numberOfPorts) == 248);
static_assert(offsetof(HX_NODE_PROPERTY, adapterGeneration) == 250);
static_assert(offsetof(HX_NODE_PROPERTY, vendorSpecificId) == 252);
static_assert(offsetof(HX_NODE_PROPERTY, firmwareAttributes) == 256);
static_assert(offsetof(HX_NODE_PROPERTY, flags) == 260);
static_assert(offsetof(HX_NODE_PROPERTY, serialBytes) == 264);

// Generations of adapters, as drivers without extended requests are told apart.
constexpr uint16_t kOldestGeneration = 2;
constexpr uint16_t kLaterGeneration = 1;

// The serial field is marked as present only when it holds a text.
void PutSerial(std::string_view serial, HX_NODE_PROPERTY& record) {
    PutText(serial.substr(0, sizeof record.serialNumber - 1), record.serialNumber);
    record.serialPresent = serial.empty() ? 0 : 1;
}

void PutNumericSerial(const uint8_t (&serialBytes)[3], HX_NODE_PROPERTY& record) {
    PutText(kManufacturer, record.manufacturer);
    NumericSerial serial;
    FormatNumericSerial(serialBytes, serial);
    PutSerial(serial, record);
}

void PutTextSerial(const NodeReply& reply, HX_NODE_PROPERTY& record) {
    const ManufacturerAndSerial split =
        SplitManufacturerAndSerial(TextOf(reply.manufacturerAndSerial));
    if (split.manufacturer.empty()) {
        std::memset(record.manufacturer, 0, sizeof(uint32_t));
        record.serialPresent = 0;
        return;
    }
    PutText(split.manufacturer, record.manufacturer);
    PutSerial(split.serial, record);
}

HX_STATUS GetExtended(uint32_t handle, transport::Command command, HX_NODE_PROPERTY& record) {
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = GetChipProperty(handle, &chip); status != HXMGT_SUCCESS) {
        return status;
    }
    NodeReply reply{};
    if (const HX_STATUS status = transport::Ask(handle, command, reply); status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(record.nodeName, reply.nodeName, sizeof record.nodeName);
    std::memcpy(record.model, reply.model, sizeof record.model);
    std::memcpy(record.modelDescription, reply.modelDescription, sizeof record.modelDescription);
    std::memcpy(record.driverVersion, reply.driverVersion, sizeof record.driverVersion);
    std::memcpy(record.firmwareVersion, reply.firmwareVersion, sizeof record.firmwareVersion);
    std::memcpy(record.optionRomVersion, reply.optionRomVersion, sizeof record.optionRomVersion);
    record.numberOfPorts = reply.numberOfPorts;
    record.adapterGeneration = reply.adapterGeneration;
    record.vendorSpecificId = reply.vendorSpecificId;
    record.firmwareAttributes = reply.firmwareAttributes;
    record.flags = reply.flags & HX_NODE_FLAGS_CARRIED;
    std::memcpy(record.serialBytes, reply.serialBytes, sizeof record.serialBytes);
    if (ChipOf(chip.deviceId).Has(ChipTrait::Newer) &&
        (reply.flags & HX_NODE_FLAG_TEXT_SERIAL) != 0) {
        PutTextSerial(reply, record);
    } else {
        PutNumericSerial(reply.serialBytes, record);
    }
    return HXMGT_SUCCESS;
}

uint16_t GenerationOf(std::string_view model) {
    if (BeginsAsModelOf(ChipTrait::SecondOldest, model)) {
        return kLaterGeneration;
    }
    return BeginsAsModelOf(ChipTrait::NoCtNoRnid, model) ? kOldestGeneration : kLaterGeneration;
}

HX_STATUS GetLegacy(uint32_t handle, const HXMGT_API_HANDLE& device, HX_NODE_PROPERTY& record) {
    LegacyPortAndNodeReply names{};
    if (const HX_STATUS status =
            transport::AskPlain(handle, transport::command::LegacyPortAndNode, names);
        status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(record.nodeName, names.worldWideName, sizeof record.nodeName);

    LegacyAdapterReply adapter{};
    if (const HX_STATUS status =
            transport::AskLegacy(handle, LegacySelector::AdapterInformation, adapter);
        status != HXMGT_SUCCESS) {
        return status;
    }
    char text[32];
    PutText(TextOf(device.szModel), record.model);
    wsprintfA(text, "%d.%02d.%02d", device.dwDriverVersion / 10000,
              device.dwDriverVersion / 100 % 100, device.dwDriverVersion % 100);
    PutText(text, record.driverVersion);
    wsprintfA(text, "%d.%d.%d", adapter.firmwareVersion[0], adapter.firmwareVersion[1],
              adapter.firmwareVersion[2]);
    PutText(text, record.firmwareVersion);
    static_assert(sizeof adapter.optionRomVersion == 4);
    std::memcpy(record.optionRomVersion, adapter.optionRomVersion, sizeof adapter.optionRomVersion);
    record.optionRomVersion[sizeof adapter.optionRomVersion] = 0;
    record.numberOfPorts = 1;
    record.adapterGeneration = GenerationOf(TextOf(device.szModel));
    record.vendorSpecificId = 0;
    record.firmwareAttributes = 0;
    std::memcpy(record.serialBytes, adapter.serialBytes, sizeof record.serialBytes);
    PutNumericSerial(adapter.serialBytes, record);
    return HXMGT_SUCCESS;
}

HX_STATUS Get(uint32_t handle, transport::Command command, HX_NODE_PROPERTY* record) {
    HXMGT_API_HANDLE device;
    if (const HX_STATUS status = CheckQuery(handle, record, device); status != HXMGT_SUCCESS) {
        return status;
    }
    return TakesExtendedRequests(device) ? GetExtended(handle, command, *record)
                                         : GetLegacy(handle, device, *record);
}

}  // namespace

HX_STATUS GetNodeProperty(uint32_t handle, HX_NODE_PROPERTY* record) {
    return Get(handle, transport::command::NodeProperties, record);
}

HX_STATUS GetNodePropertyResync(uint32_t handle, HX_NODE_PROPERTY* record) {
    return Get(handle, transport::command::NodePropertiesResync, record);
}

HX_STATUS UpdateAdapterModelInBios(uint32_t handle, uint8_t* record) {
    constexpr size_t kModelOffset = 68;  // of the caller's boot-code record
    constexpr size_t kExamined = 12;

    HX_NODE_PROPERTY node{};
    if (const HX_STATUS status = GetNodeProperty(handle, &node); status != HXMGT_SUCCESS) {
        return status;
    }
    if (record == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    // Twelve bytes without a blank are copied without a terminator: intended.
    for (size_t i = 0; i < kExamined; ++i) {
        record[kModelOffset + i] = static_cast<uint8_t>(node.model[i]);
        if (node.model[i] == ' ') {
            record[kModelOffset + i + 1] = 0;
            break;
        }
    }
    return HXMGT_SUCCESS;
}

}  // namespace properties
