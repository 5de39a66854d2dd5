// The profiles that need no file.
#include "model/bytes/bytes.h"
#include "model/profile/profile.h"
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

// What goes with chips of an age.
struct DriverRow {
    DriverGeneration generation;
    const char* driverVersion;
    const char* firmwareVersion;
};
constexpr DriverRow kNewestDriver = {DriverGeneration::Extended, "9.04.02.20", "9.12.01"};
constexpr DriverRow kNewerDriver = {DriverGeneration::Extended, "8.02.03 build 2", "8.01.02"};
constexpr DriverRow kOldDriver = {DriverGeneration::Legacy, "7.04.11", "3.3.25"};

const DriverRow& DriverOf(const properties::Chip& chip) {
    if (chip.Has(properties::ChipTrait::Newest)) {
        return kNewestDriver;
    }
    return chip.Has(properties::ChipTrait::Newer) ? kNewerDriver : kOldDriver;
}

struct AdapterRow {
    uint16_t deviceId;
    uint8_t firstScsiPort;
    uint8_t ports;
};

// The number's base-16 digits, most significant first.
void AppendDigits(char* text, uint32_t number, uint32_t digits) {
    for (uint32_t at = 0; at < digits; ++at) {
        text[at] = "0123456789ABCDEF"[(number >> (4 * (digits - 1 - at))) & 0xF];
    }
}

// Serial numbers are "EMU", the device ID, 'A' and a running number.
void SetSerial(AdapterProfile& adapter, uint32_t number) {
    char text[] = "EMU0000A0000";
    AppendDigits(text + 3, adapter.deviceId, 4);
    for (uint32_t at = 0, rest = number; at < 4; ++at, rest /= 10) {
        text[11 - at] = static_cast<char>('0' + rest % 10);
    }
    CopyText(adapter.serial, text);
    SetNumericSerial(adapter, number);
}

void AddAdapter(Profile& profile, const AdapterRow& row) {
    const uint32_t index = profile.adapterCount++;
    const std::span<PortProfile> ports(profile.ports + profile.portCount, row.ports);
    FillAdapter(row.deviceId, index + 1, profile.adapters[index], ports);
    for (PortProfile& port : ports) {
        port.adapter = static_cast<uint8_t>(index);
        port.scsiPort = static_cast<uint8_t>(row.firstScsiPort + port.pciFunction);
    }
    profile.portCount += row.ports;
}

struct LunRow {
    uint16_t number;
    uint64_t blocks;
    uint32_t blockSize;
};
struct DeviceRow {
    const char* symbolicName;
    DeviceRole role;
    bool present;
    bool refusesReportLuns;
    LunRow luns[4];  // ends with 0 blocks
};

// Two disk arrays, an old one, another host and a device that has gone.
constexpr DeviceRow kDevices[] = {
    {"Emulated array A",
     DeviceRole::Target,
     true,
     false,
     {{0, 2'097'152, 512}, {1, 4'194'304, 512}, {2, 262'144, 4096}, {3, 8'589'934'592, 512}}},
    {"Emulated array B",
     DeviceRole::Target,
     true,
     false,
     {{0, 2'097'152, 512}, {1, 1'000'000, 512}, {256, 2'097'152, 512}}},
    {"Emulated old array", DeviceRole::Target, true, true, {{0, 204'800, 512}, {3, 204'800, 512}}},
    {"Emulated other host", DeviceRole::Initiator, true, false, {}},
    {"Emulated lost array", DeviceRole::Target, false, false, {}},
};

constexpr uint8_t kDeviceNodeKind = 0x2A;
constexpr uint8_t kDevicePortKind = 0x2B;

void AddDevices(Profile& profile) {
    for (const DeviceRow& row : kDevices) {
        TargetProfile target = DefaultTarget(profile);
        const uint32_t index = profile.targetCount;
        MakeName(target.nodeName, kDeviceNodeKind, 0, index + 1);
        MakeName(target.portName, kDevicePortKind, 0, index + 1);
        target.role = row.role;
        target.roleAndState = static_cast<uint32_t>(row.role);
        target.present = row.present ? 1 : 0;
        target.refusesReportLuns = row.refusesReportLuns ? 1 : 0;
        CopyText(target.symbolicName, row.symbolicName);
        profile.targets[profile.targetCount++] = target;
        for (const LunRow& disk : row.luns) {
            if (disk.blocks != 0) {
                LunProfile lun = DefaultLun(static_cast<uint8_t>(index), disk.number);
                lun.blocks = disk.blocks;
                lun.blockSize = disk.blockSize;
                profile.luns[profile.lunCount++] = lun;
            }
        }
    }
}

void FillLab(Profile& profile) {
    constexpr AdapterRow kRows[] = {
        {0x7740, 3, 2},
        {0x7404, 6, 1},
        {0x7200, 9, 1},
    };
    InitializeProfile(profile, "lab");
    for (const AdapterRow& row : kRows) {
        AddAdapter(profile, row);
    }
    AddDevices(profile);
    profile.ports[0].npivInUse = 2;
    profile.targets[0].secured = Security::Secured;
    profile.targets[0].nvme = 1;
}

// Every SCSI port number but the last, with every chip of the family in turn.
void FillFull(Profile& profile) {
    InitializeProfile(profile, "full");
    uint32_t turn = 0;
    for (uint8_t scsiPort = 0; scsiPort < kMaxScsiPort; ++scsiPort, ++turn) {
        const properties::Chip& chip =
            properties::kChips[turn % (sizeof properties::kChips / sizeof properties::kChips[0])];
        AddAdapter(profile, {chip.deviceId, scsiPort, 1});
    }
    AddDevices(profile);
}

}  // namespace

void FillAdapter(uint16_t deviceId, uint32_t number, AdapterProfile& adapter,
                 std::span<PortProfile> ports) {
    const DriverRow& driver = DriverOf(properties::ChipOf(deviceId));
    adapter = DefaultAdapter(deviceId, driver.generation);
    adapter.pciBus = static_cast<uint8_t>(number);
    CopyText(adapter.driverVersion, driver.driverVersion);
    CopyText(adapter.firmwareVersion, driver.firmwareVersion);
    CopyText(adapter.description, "Emulated ");
    AppendDigits(adapter.description + 9, deviceId, 4);
    SetSerial(adapter, number);
    uint8_t function = 0;
    for (PortProfile& port : ports) {
        port = DefaultPort(adapter);
        port.pciFunction = function;
        MakeName(port.nodeName, 0x20, function, number);
        MakeName(port.portName, 0x21, function, number);
        port.portId[0] = 0x01;
        port.portId[1] = static_cast<uint8_t>(number);
        port.portId[2] = function++;
    }
}

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
