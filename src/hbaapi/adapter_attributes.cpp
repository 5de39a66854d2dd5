#include <windows.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "flash/flash.h"
#include "frame/discovery.h"
#include "frame/handle_table.h"
#include "frame/trace.h"
#include "hbaapi/handlers.h"
#include "hbaapi/status.h"
#include "properties/adapter_texts.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace hbaapi {
namespace {

using properties::NodeReply;
using properties::PutText;
using properties::TextOf;
using transport::command::NodeProperties;

// Values of VendorSpecificID on entry that make a call a query of the driver's own.
constexpr uint32_t kVendorQueries[] = {0x1ED0017, 0x1ED00FF, 0x1ED0000};
constexpr uint32_t kAnsweredVendorQuery = 0x1ED0000;

// From this driver on, the node record's model text is the board's name.
constexpr uint32_t kNamesBoards = 80203;

struct BoardRow {
    uint16_t subsystemDeviceId;
    std::string_view model;
};
constexpr BoardRow kBoards[] = {{0x0100, "KVA410"}, {0x0101, "KVA412"}};
constexpr std::string_view kOtherBoard = "KVA400";

constexpr char kBoardDescription[] = "Korvex %s Fibre Channel Adapter";
constexpr char kChipDescription[] = "Korvex KVA%s PCI Fibre Channel Adapter";

constexpr size_t kModelBytes = 32;

// The NVRAM block as far as it is read: the text of the hardware version.
#pragma pack(push, 1)
struct NvramIdentity {
    uint8_t reserved0[112];
    char hardwareVersion[16];
    uint8_t reserved128[128];
};
#pragma pack(pop)
static_assert(sizeof(NvramIdentity) == HX_NVRAM_CLASSIC_BYTES);

bool IsVendorQuery(uint32_t id) {
    for (const uint32_t query : kVendorQueries) {
        if (query == id) {
            return true;
        }
    }
    return false;
}

// Returns the driver request's status as it is.
HX_STATUS AskVendor(uint32_t handle, uint32_t& id) {
    const uint32_t query = id;
    VX_TRACE(handle, "Vendor SpecificID %x passed to DriverAttr %x \n", query, query);
    NodeReply node{};
    node.vendorSpecificId = query;
    const HX_STATUS status = transport::Exchange(handle, NodeProperties, node, node);
    if (status == HXMGT_SUCCESS && query == kAnsweredVendorQuery) {
        id = node.vendorSpecificId;
    }
    return status;
}

// A field never takes the last byte of its terminator.
template <size_t Size>
void PutTerminated(std::string_view text, char (&field)[Size]) {
    PutText(text.substr(0, Size - 1), field);
}

void PutMaker(const NodeReply& info, const HX_NODE_PROPERTY& node, const properties::Chip& chip,
              HBA_ADAPTERATTRIBUTES& out) {
    if (!chip.Has(properties::ChipTrait::Newer) || (info.flags & HX_NODE_FLAG_TEXT_SERIAL) == 0) {
        PutText(TextOf(node.manufacturer), out.Manufacturer);
        properties::NumericSerial serial;
        properties::FormatNumericSerial(node.serialBytes, serial);
        PutTerminated(serial, out.SerialNumber);
        return;
    }
    const std::string_view text = TextOf(info.manufacturerAndSerial);
    const std::string_view manufacturer = properties::SplitManufacturerAndSerial(text).manufacturer;
    // A long manufacturer fills its field without a terminator: intended.
    PutText(manufacturer, out.Manufacturer);
    // The serial number is what follows the first separator, also where the text begins with it.
    const size_t separator = text.find(properties::kSerialSeparator);
    const bool hasSerial = !manufacturer.empty() && separator != std::string_view::npos;
    PutTerminated(hasSerial ? text.substr(separator + 1) : std::string_view{}, out.SerialNumber);
}

// All of the record's field, also what follows the end of its text, and a terminator.
template <size_t Size, size_t FieldSize>
void PutWhole(const char (&text)[Size], char (&field)[FieldSize]) {
    static_assert(Size < FieldSize);
    PutText({}, field);
    std::memcpy(field, text, Size);
}

std::string_view BoardOf(uint16_t subsystemDeviceId) {
    for (const BoardRow& row : kBoards) {
        if (row.subsystemDeviceId == subsystemDeviceId) {
            return row.model;
        }
    }
    return kOtherBoard;
}

// The model text runs on into the description block when it fills its own 16 bytes.
std::string_view ModelText(const HX_NODE_PROPERTY& node, char (&text)[kModelBytes]) {
    static_assert(offsetof(HX_NODE_PROPERTY, model) + kModelBytes <= sizeof node);
    std::memcpy(text, reinterpret_cast<const char*>(&node) + offsetof(HX_NODE_PROPERTY, model),
                sizeof text);
    return TextOf(text);
}

void PutModel(uint32_t driverVersion, const HX_NODE_PROPERTY& node, const HX_CHIP_PROPERTY& pci,
              const properties::Chip& chip, HBA_ADAPTERATTRIBUTES& out) {
    const bool namesBoards = driverVersion >= kNamesBoards;
    const bool boardById = !namesBoards && chip.Has(properties::ChipTrait::FamilyA);
    char text[kModelBytes];
    PutTerminated(boardById ? BoardOf(pci.subsystemDeviceId) : ModelText(node, text), out.Model);
    std::memset(out.ModelDescription, 0, sizeof out.ModelDescription);
    std::snprintf(out.ModelDescription, sizeof out.ModelDescription,
                  namesBoards || boardById ? kBoardDescription : kChipDescription, out.Model);
}

void PutDriverName(uint32_t scsiPort, HBA_ADAPTERATTRIBUTES& out) {
    const char* const driver = frame::DriverNameOfPort(scsiPort);
    std::memset(out.DriverName, 0, sizeof out.DriverName);
    if (driver[0] != 0) {
        std::snprintf(out.DriverName, sizeof out.DriverName, "%s.sys", driver);
    }
}

// Left empty when the block cannot be read: intended.
void PutHardwareVersion(uint32_t handle, HBA_ADAPTERATTRIBUTES& out) {
    NvramIdentity block{};
    const bool known =
        flash::GetNvram(handle, HX_NVRAM_VERIFIED, &block, sizeof block) == HXMGT_SUCCESS;
    PutTerminated(known ? TextOf(block.hardwareVersion) : std::string_view{}, out.HardwareVersion);
}

}  // namespace

HBA_STATUS GetAdapterAttributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES* attributes) {
    if (attributes != nullptr && IsVendorQuery(attributes->VendorSpecificID)) {
        return AskVendor(handle, attributes->VendorSpecificID);  // not mapped: intended
    }
    HXMGT_API_HANDLE device;
    if (const HX_STATUS status = properties::CheckQuery(handle, attributes, device);
        status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    HBA_ADAPTERATTRIBUTES& out = *attributes;
    VX_TRACE(handle, "Regular HBAGetAdapterAttributes: VendorSpecificID - %x \n",
             out.VendorSpecificID);
    HX_NODE_PROPERTY node{};
    HX_CHIP_PROPERTY pci{};
    if (const HX_STATUS status = properties::GetNodeProperty(handle, &node);
        status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    if (const HX_STATUS status = properties::GetChipProperty(handle, &pci);
        status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    NodeReply info{};
    if (const HX_STATUS status = transport::Ask(handle, NodeProperties, info);
        status != HXMGT_SUCCESS) {
        return status;  // not mapped: intended
    }
    const properties::Chip chip = properties::ChipOf(pci.deviceId);
    PutMaker(info, node, chip, out);
    PutModel(device.dwDriverVersion, node, pci, chip, out);
    std::memcpy(out.NodeWWN.wwn, node.nodeName, sizeof out.NodeWWN.wwn);
    PutText({}, out.NodeSymbolicName);
    PutWhole(node.driverVersion, out.DriverVersion);
    PutWhole(node.optionRomVersion, out.OptionROMVersion);
    PutTerminated(TextOf(node.firmwareVersion), out.FirmwareVersion);
    out.VendorSpecificID = node.vendorSpecificId;
    out.NumberOfPorts = node.numberOfPorts;
    PutDriverName(device.dwScsiPort, out);
    PutHardwareVersion(handle, out);
    return HBA_STATUS_OK;
}

}  // namespace hbaapi
