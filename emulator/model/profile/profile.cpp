#include "model/profile/profile.h"

#include <cstring>

#include "model/bytes/bytes.h"
#include "model/node_flags.h"
#include "model/profile/profile_fields.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"

namespace vxemu {
namespace {

// The node reply holds both texts, the separator and a terminator.
static_assert(sizeof(AdapterProfile::manufacturer) + sizeof(AdapterProfile::serial) <=
              sizeof(properties::NodeReply::manufacturerAndSerial));

ProfileFault CheckFields(FieldScope scope, FaultScope place, const void* record, uint32_t index) {
    const Field* bad = FindBadField(scope, record);
    return bad == nullptr ? ProfileFault{}
                          : ProfileFault{ProfileError::Field, place, index, bad->name};
}

ProfileFault CheckAdapter(const Profile& profile, uint32_t index) {
    const AdapterProfile& adapter = profile.adapters[index];
    const ProfileFault fault =
        CheckFields(FieldScope::Adapter, FaultScope::Adapter, &adapter, index);
    if (fault.error != ProfileError::None) {
        return fault;
    }
    if (!StartsWith(adapter.serial, kEmulatedSerialPrefix)) {
        return {ProfileError::Serial, FaultScope::Adapter, index, "serial"};
    }
    if (!Contains(adapter.description, kEmulatedMark)) {
        return {ProfileError::Description, FaultScope::Adapter, index, "description"};
    }
    for (uint32_t at = 0; at < profile.portCount; ++at) {
        if (profile.ports[at].adapter == index) {
            return {};
        }
    }
    return {ProfileError::AdapterHasNoPort, FaultScope::Adapter, index, nullptr};
}

ProfileFault CheckPort(const Profile& profile, uint32_t index) {
    const PortProfile& port = profile.ports[index];
    const ProfileFault fault = CheckFields(FieldScope::Port, FaultScope::Port, &port, index);
    if (fault.error != ProfileError::None) {
        return fault;
    }
    if (port.adapter >= profile.adapterCount) {
        return {ProfileError::AdapterIndex, FaultScope::Port, index, nullptr};
    }
    constexpr uint8_t kNoName[sizeof port.portName] = {};
    if (std::memcmp(port.portName, kNoName, sizeof kNoName) == 0) {
        return {ProfileError::NoPortName, FaultScope::Port, index, "port_name"};
    }
    for (uint32_t at = 0; at < index; ++at) {
        if (profile.ports[at].scsiPort == port.scsiPort) {
            return {ProfileError::DuplicateScsiPort, FaultScope::Port, index, "scsi_port"};
        }
        if (std::memcmp(profile.ports[at].portName, port.portName, sizeof port.portName) == 0) {
            return {ProfileError::DuplicatePortName, FaultScope::Port, index, "port_name"};
        }
    }
    return {};
}

}  // namespace

ProfileFault ValidateProfile(const void* bytes, size_t size) {
    if (size != sizeof(Profile)) {
        return {ProfileError::Size};
    }
    const auto& profile = *static_cast<const Profile*>(bytes);
    if (profile.magic != kProfileMagic) {
        return {ProfileError::Magic};
    }
    if (profile.version != kProfileVersion) {
        return {ProfileError::Version};
    }
    if (profile.size != sizeof(Profile)) {
        return {ProfileError::Size};
    }
    if (profile.adapterCount == 0 || profile.adapterCount > kMaxAdapters) {
        return {ProfileError::AdapterCount};
    }
    if (profile.portCount == 0 || profile.portCount > kMaxPorts) {
        return {ProfileError::PortCount};
    }
    if (!IsText(profile.name, sizeof profile.name)) {
        return {ProfileError::Name, FaultScope::Profile, 0, "name"};
    }
    for (uint32_t index = 0; index < profile.portCount; ++index) {
        const ProfileFault fault = CheckPort(profile, index);
        if (fault.error != ProfileError::None) {
            return fault;
        }
    }
    for (uint32_t index = 0; index < profile.adapterCount; ++index) {
        const ProfileFault fault = CheckAdapter(profile, index);
        if (fault.error != ProfileError::None) {
            return fault;
        }
    }
    return ValidateTargets(profile);
}

ProfileError AppendAdapter(Profile& profile, const AdapterRecord& added) {
    if (profile.adapterCount == kMaxAdapters) {
        return ProfileError::AdapterCount;
    }
    if (added.portCount > kMaxAdapterPorts || added.portCount > kMaxPorts - profile.portCount) {
        return ProfileError::PortCount;
    }
    for (uint32_t at = 0; at < profile.adapterCount; ++at) {
        if (std::memcmp(profile.adapters[at].serial, added.adapter.serial,
                        sizeof added.adapter.serial) == 0) {
            return ProfileError::DuplicateSerial;
        }
    }
    const uint32_t firstPort = profile.portCount;
    const uint32_t adapter = profile.adapterCount++;
    profile.adapters[adapter] = added.adapter;
    for (uint32_t at = 0; at < added.portCount; ++at) {
        PortProfile& port = profile.ports[profile.portCount++];
        port = added.ports[at];
        port.adapter = static_cast<uint8_t>(adapter);
    }
    const ProfileError error = ValidateProfile(&profile, sizeof profile).error;
    while (error != ProfileError::None && profile.portCount > firstPort) {
        profile.ports[--profile.portCount] = {};
    }
    if (error != ProfileError::None) {
        profile.adapters[--profile.adapterCount] = {};
    }
    return error;
}

const char* ProfileErrorText(ProfileError error) {
    switch (error) {
        case ProfileError::None:
            return "no error";
        case ProfileError::Size:
            return "the record has the wrong size";
        case ProfileError::Magic:
            return "not a profile";
        case ProfileError::Version:
            return "a profile of another version";
        case ProfileError::AdapterCount:
            return "the number of adapters must be 1 to 64";
        case ProfileError::PortCount:
            return "the number of ports must be 1 to 64";
        case ProfileError::Name:
            return "the profile's name is not a text";
        case ProfileError::Field:
            return "the value is out of range or not a terminated text";
        case ProfileError::Serial:
            return "the serial number of an emulated adapter must begin with EMU";
        case ProfileError::Description:
            return "the description of an emulated adapter must contain Emulated";
        case ProfileError::AdapterIndex:
            return "the port's adapter does not exist";
        case ProfileError::AdapterHasNoPort:
            return "the adapter has no port";
        case ProfileError::DuplicateScsiPort:
            return "the SCSI port number is used twice";
        case ProfileError::DuplicatePortName:
            return "the port name is used twice";
        case ProfileError::NoPortName:
            return "the port name must not be zero";
        case ProfileError::DuplicateSerial:
            return "another adapter has this serial number";
        case ProfileError::TargetCount:
            return "the number of targets must be at most 32";
        case ProfileError::LunCount:
            return "the number of LUNs must be at most 256";
        case ProfileError::DuplicateTargetAddress:
            return "another target has this address";
        case ProfileError::TargetIndex:
            return "the LUN's target does not exist or is an initiator";
        case ProfileError::DuplicateLun:
            return "the target has this LUN already";
    }
    return "unknown error";
}

void InitializeProfile(Profile& profile, const char* name) {
    std::memset(&profile, 0, sizeof profile);
    profile.magic = kProfileMagic;
    profile.version = kProfileVersion;
    profile.size = sizeof profile;
    CopyText(profile.name, name);
}

AdapterProfile DefaultAdapter(uint16_t deviceId, DriverGeneration generation) {
    AdapterProfile adapter;
    std::memset(&adapter, 0, sizeof adapter);
    const bool legacy = generation == DriverGeneration::Legacy;
    adapter.deviceId = deviceId;
    adapter.subsystemVendorId = properties::kVendorId;
    adapter.subsystemDeviceId = 0x0100;
    adapter.revision = 1;
    adapter.generation = generation;
    adapter.pciBus = 1;
    CopyText(adapter.manufacturer, "Tarnel, Inc.");
    CopyText(adapter.model, "EMU0000");
    for (uint32_t digit = 0; digit < 4; ++digit) {
        adapter.model[3 + digit] = "0123456789ABCDEF"[(deviceId >> (12 - 4 * digit)) & 0xF];
    }
    CopyText(adapter.description, "Emulated HBA");
    CopyText(adapter.driverName, legacy ? "vxfc1" : "vxfc2");
    CopyText(adapter.driverVersion, legacy ? "7.04.11" : "9.04.02.20");
    CopyText(adapter.driverBuild, "emulated");
    CopyText(adapter.firmwareVersion, legacy ? "3.3.25" : "9.12.01");
    CopyText(adapter.optionRomVersion, legacy ? "1.54" : "3.61");
    adapter.driverBuildNumber = legacy ? 0 : 20;
    adapter.dumpWords = 4096;
    adapter.dumpTraceWords = 256;
    adapter.dumpFceWords = 256;
    adapter.dumpQueues = 2;
    adapter.rawDumpBytes = 200'000;
    adapter.mpiDumpBytes = 65'536;
    adapter.mctpDumpBytes = 32'769;
    adapter.miniDumpBytes[0] = 32'768;
    adapter.miniDumpBytes[1] = 1'000;
    adapter.temperature = 55;
    adapter.temperatureWarning = 85;
    adapter.temperatureCritical = 95;
    if (properties::ChipOf(deviceId).Has(properties::ChipTrait::Newer)) {
        adapter.nodeFlags = kNodeFlagTextSerial;
        adapter.firmwareAttributes = 0x0000C0DE;
        adapter.activationAttributes = 0x0000C0DE;
    }
    return adapter;
}

void SetNumericSerial(AdapterProfile& adapter, uint32_t number) {
    const uint32_t value = 400'000 + number % 100'000;
    adapter.serialBytes[0] = static_cast<uint8_t>(value >> 16);
    adapter.serialBytes[1] = static_cast<uint8_t>(value);
    adapter.serialBytes[2] = static_cast<uint8_t>(value >> 8);
}

PortProfile DefaultPort(const AdapterProfile& adapter) {
    PortProfile port;
    std::memset(&port, 0, sizeof port);
    const properties::Chip chip = properties::ChipOf(adapter.deviceId);
    const bool newest = chip.Has(properties::ChipTrait::Newest);
    const bool newer = chip.Has(properties::ChipTrait::Newer);
    port.role = 1;
    port.topology = newer ? Topology::Fabric : Topology::PrivateLoop;
    port.supportedFc4 = 0x01;
    port.activeFc4 = 0x01;
    port.supportedSpeeds = newest ? 50 : newer ? 8 : 2;
    port.currentSpeed = newest ? 50 : newer ? 8 : 2;
    port.maxFrameSize = 2048;
    port.bbCredits = newer ? 80 : 3;
    port.npivMaximum = newest ? 254 : newer ? 126 : 0;
    port.maxTargets = newest ? 2048 : 512;
    port.maxLunsPerTarget = 256;
    port.executionThrottle = 65535;
    port.loginTimeout = 4;
    port.linkDownTimeout = 30;
    port.portDownRetry = 30;
    port.transceiverType[0] = 0x03;  // SFF-8472: SFP, connector LC
    port.transceiverType[1] = 0x07;
    port.featureMask = newest ? 0x0000000F : 0;
    port.fecActive = newest ? 1 : 0;
    port.protocolFlags = newest ? 0x06 : 0x02;  // FCP, the newest also NVMe
    port.knowsSubCode10 = newest ? 1 : 0;
    port.bbcr = newest ? 4 : 0;
    port.qosEnabled = newest ? 1 : 0;
    port.scm = newest ? 1 : 0;
    port.beaconSupported = newer ? 1 : 0;
    return port;
}

}  // namespace vxemu
