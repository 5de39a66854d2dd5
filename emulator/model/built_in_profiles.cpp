// The profiles that need no file.
#include "model/bytes.h"
#include "model/profile.h"
#include "properties/chip_families.h"

namespace vxemu {
namespace {

// Locally administered, so that no emulated name is ever a real adapter's.
constexpr uint8_t kNameOui[3] = {0x02, 0x45, 0x4D};

void MakeName(uint8_t (&name)[8], uint8_t kind, uint8_t function, uint32_t adapter) {
    name[0] = kind;
    name[1] = function;
    std::memcpy(name + 2, kNameOui, sizeof kNameOui);
    name[5] = static_cast<uint8_t>(adapter >> 8);
    name[6] = static_cast<uint8_t>(adapter);
    name[7] = 0;
}

struct AdapterRow {
    uint16_t deviceId;
    DriverGeneration generation;
    const char* driverVersion;
    const char* firmwareVersion;
    uint8_t firstScsiPort;
    uint8_t ports;
};

// The number's base-16 digits, most significant first.
void AppendDigits(char* text, uint32_t number, uint32_t digits) {
    for (uint32_t at = 0; at < digits; ++at) {
        text[at] = "0123456789ABCDEF"[(number >> (4 * (digits - 1 - at))) & 0xF];
    }
}

// Serial numbers are "EMU", the device ID, 'A' and a running number; the numeric ones begin with
// 'E' as well ('A' + value / 100000).
void SetSerial(AdapterProfile& adapter, uint32_t number) {
    char text[] = "EMU0000A0000";
    AppendDigits(text + 3, adapter.deviceId, 4);
    for (uint32_t at = 0, rest = number; at < 4; ++at, rest /= 10) {
        text[11 - at] = static_cast<char>('0' + rest % 10);
    }
    CopyText(adapter.serial, text);
    const uint32_t value = 400'000 + number;
    adapter.serialBytes[0] = static_cast<uint8_t>(value >> 16);
    adapter.serialBytes[1] = static_cast<uint8_t>(value);
    adapter.serialBytes[2] = static_cast<uint8_t>(value >> 8);
}

void AddAdapter(Profile& profile, const AdapterRow& row) {
    const uint32_t index = profile.adapterCount++;
    const uint32_t number = index + 1;
    AdapterProfile& adapter = profile.adapters[index];
    adapter = DefaultAdapter(row.deviceId, row.generation);
    adapter.pciBus = static_cast<uint8_t>(number);
    CopyText(adapter.driverVersion, row.driverVersion);
    CopyText(adapter.firmwareVersion, row.firmwareVersion);
    CopyText(adapter.description, "Emulated ");
    AppendDigits(adapter.description + 9, row.deviceId, 4);
    SetSerial(adapter, number);

    for (uint8_t function = 0; function < row.ports; ++function) {
        PortProfile& port = profile.ports[profile.portCount++];
        port = DefaultPort(adapter);
        port.adapter = static_cast<uint8_t>(index);
        port.scsiPort = static_cast<uint8_t>(row.firstScsiPort + function);
        port.pciFunction = function;
        MakeName(port.nodeName, 0x20, function, number);
        MakeName(port.portName, 0x21, function, number);
        port.portId[0] = 0x01;
        port.portId[1] = static_cast<uint8_t>(number);
        port.portId[2] = function;
        port.discoveredDevices = 4;
        port.discoveredTargets = 3;
        port.staleDevices = row.generation == DriverGeneration::Legacy ? 1 : 0;
    }
}

void FillLab(Profile& profile) {
    constexpr AdapterRow kRows[] = {
        {0x7740, DriverGeneration::Extended, "9.04.02.20", "9.12.01", 3, 2},
        {0x7404, DriverGeneration::Extended, "8.02.03 build 2", "8.01.02", 6, 1},
        {0x7200, DriverGeneration::Legacy, "7.04.11", "3.3.25", 9, 1},
    };
    InitializeProfile(profile, "lab");
    for (const AdapterRow& row : kRows) {
        AddAdapter(profile, row);
    }
}

// Every SCSI port number but the last, with every chip of the family in turn.
void FillFull(Profile& profile) {
    InitializeProfile(profile, "full");
    uint32_t turn = 0;
    for (uint8_t scsiPort = 0; scsiPort < kMaxScsiPort; ++scsiPort, ++turn) {
        const properties::Chip& chip =
            properties::kChips[turn % (sizeof properties::kChips / sizeof properties::kChips[0])];
        const bool newest = chip.Has(properties::ChipTrait::Newest);
        const bool newer = chip.Has(properties::ChipTrait::Newer);
        const AdapterRow row = {
            chip.deviceId,
            newer ? DriverGeneration::Extended : DriverGeneration::Legacy,
            newest  ? "9.04.02.20"
            : newer ? "8.02.03 build 2"
                    : "7.04.11",
            newest  ? "9.12.01"
            : newer ? "8.01.02"
                    : "3.3.25",
            scsiPort,
            1,
        };
        AddAdapter(profile, row);
    }
}

}  // namespace

const BuiltInProfile kBuiltInProfileTable[kBuiltInProfiles] = {
    {"lab", "two ports of one newest adapter, one large-ROM adapter, one with a legacy driver",
     FillLab},
    {"full", "63 ports, every chip of the family", FillFull},
};

bool FillBuiltInProfile(const char* name, Profile& profile) {
    for (const BuiltInProfile& row : kBuiltInProfileTable) {
        if (SameText(row.name, name)) {
            row.fill(profile);
            return true;
        }
    }
    return false;
}

}  // namespace vxemu
