#include "profile_json.h"

#include <cstring>
#include <nlohmann/json.hpp>

#include "field_text.h"
#include "model/bytes/bytes.h"

namespace vxemu {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kAdapters = "adapters";
constexpr const char* kPorts = "ports";
constexpr const char* kTargets = "targets";
constexpr const char* kLuns = "luns";
constexpr const char* kName = "name";
constexpr const char* kResult = "result";  // of the tool's own document

// What is wrong, and where.
struct JsonError {
    std::string text;
};

[[noreturn]] void Fail(const std::string& path, const std::string& text) {
    throw JsonError{(path.empty() ? "/" : path) + ": " + text};
}

Json FieldToJson(const Field& field, const uint8_t* bytes) {
    switch (field.kind) {
        case FieldKind::Number:
            return FieldNumber(field, bytes);
        case FieldKind::Flag:
            return FieldNumber(field, bytes) != 0;
        default:
            return FormatField(field, bytes);
    }
}

Json RecordToJson(FieldScope scope, const void* record) {
    Json object = Json::object();
    for (const Field& field : ProfileFields()) {
        if (field.scope == scope) {
            object[field.name] =
                FieldToJson(field, static_cast<const uint8_t*>(record) + field.offset);
        }
    }
    return object;
}

// A value as the text that it would be on the command line.
std::string ScalarText(const Field& field, const Json& value, const std::string& path) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    const bool number = field.kind == FieldKind::Number || field.kind == FieldKind::Code ||
                        field.kind == FieldKind::Choice;
    if ((number && value.is_number_unsigned()) ||
        (field.kind == FieldKind::Flag && value.is_boolean())) {
        return value.dump();
    }
    std::string wanted;
    uint8_t unused[128];
    ParseField(field, "\x01", unused, &wanted);
    Fail(path, "must be " + wanted);
}

// Sets the values that the object gives; every other member must be the known one.
void ReadRecord(FieldScope scope, const Json& object, const std::string& path,
                const char* otherMember, void* record) {
    for (const auto& [key, value] : object.items()) {
        const std::string place = path + "/" + key;
        if (otherMember != nullptr && key == otherMember) {
            continue;
        }
        const Field* field = FindField(scope, key.c_str(), key.size() + 1);
        if (field == nullptr) {
            Fail(place, "no such value");
        }
        std::string wanted;
        if (!ParseField(*field, ScalarText(*field, value, place),
                        static_cast<uint8_t*>(record) + field->offset, &wanted)) {
            Fail(place, "must be " + wanted);
        }
    }
}

void RequireObject(const Json& value, const std::string& path) {
    if (!value.is_object()) {
        Fail(path, "must be an object");
    }
}

void RequireMember(const Json& object, const char* name, const std::string& path) {
    if (!object.contains(name)) {
        Fail(path + "/" + name, "is missing");
    }
}

const Json& RequireList(const Json& object, const char* name, const std::string& path,
                        size_t most) {
    RequireMember(object, name, path);
    const Json& list = object[name];
    if (!list.is_array() || list.empty() || list.size() > most) {
        Fail(path + "/" + name, "must be a list of 1 to " + std::to_string(most) + " objects");
    }
    return list;
}

// As RequireList, but the list may be left out or empty.
Json OptionalList(const Json& object, const char* name, const std::string& path, size_t most) {
    if (!object.contains(name)) {
        return Json::array();
    }
    const Json& list = object[name];
    if (!list.is_array() || list.size() > most) {
        Fail(path + "/" + name, "must be a list of at most " + std::to_string(most) + " objects");
    }
    return list;
}

// An adapter whose serial number is made from its bytes has to differ from others as well, so they
// follow from the text: 'E' and five digits (FNV-1a).
void DeriveSerialBytes(AdapterProfile& adapter) {
    uint32_t hash = 2166136261u;
    for (const char* at = adapter.serial; *at != 0; ++at) {
        hash = (hash ^ static_cast<uint8_t>(*at)) * 16777619u;
    }
    SetNumericSerial(adapter, hash % 100'000);
}

void ReadPort(const Json& object, const std::string& path, const AdapterProfile& adapter,
              uint32_t adapterIndex, PortProfile& port) {
    RequireObject(object, path);
    RequireMember(object, "scsi_port", path);
    RequireMember(object, "port_name", path);
    port = DefaultPort(adapter);
    port.adapter = static_cast<uint8_t>(adapterIndex);
    ReadRecord(FieldScope::Port, object, path, nullptr, &port);
    if (!object.contains("node_name")) {
        DeriveNodeName(port);
    }
}

void ReadAdapter(const Json& object, const std::string& path, uint32_t index, Profile& profile) {
    RequireObject(object, path);
    RequireMember(object, "device_id", path);
    RequireMember(object, "serial", path);
    // Chip and driver decide what everything else is by default, so they are read first.
    AdapterProfile kind = DefaultAdapter(0, DriverGeneration::Extended);
    Json identity = Json::object();
    for (const char* name : {"device_id", "driver_generation"}) {
        if (object.contains(name)) {
            identity[name] = object[name];
        }
    }
    ReadRecord(FieldScope::Adapter, identity, path, nullptr, &kind);
    AdapterProfile& adapter = profile.adapters[index];
    adapter = DefaultAdapter(kind.deviceId, kind.generation);
    ReadRecord(FieldScope::Adapter, object, path, kPorts, &adapter);
    if (!object.contains("serial_bytes")) {
        DeriveSerialBytes(adapter);
    }

    const Json& ports = RequireList(object, kPorts, path, kMaxPorts);
    for (size_t at = 0; at < ports.size(); ++at) {
        const std::string place = path + "/" + kPorts + "/" + std::to_string(at);
        if (profile.portCount == kMaxPorts) {
            Fail(place, "more than " + std::to_string(kMaxPorts) + " ports");
        }
        ReadPort(ports[at], place, adapter, index, profile.ports[profile.portCount++]);
    }
}

void ReadLun(const Json& object, const std::string& path, uint32_t target, Profile& profile) {
    if (profile.lunCount == kMaxLuns) {
        Fail(path, "more than " + std::to_string(kMaxLuns) + " LUNs");
    }
    RequireObject(object, path);
    RequireMember(object, "number", path);
    LunProfile lun = {};
    ReadRecord(FieldScope::Lun, object, path, nullptr, &lun);
    LunProfile& slot = profile.luns[profile.lunCount++];
    slot = DefaultLun(static_cast<uint8_t>(target), lun.number);
    ReadRecord(FieldScope::Lun, object, path, nullptr, &slot);
}

void ReadTarget(const Json& object, const std::string& path, Profile& profile) {
    RequireObject(object, path);
    RequireMember(object, "port_name", path);
    TargetProfile target = DefaultTarget(profile);
    ReadRecord(FieldScope::Target, object, path, kLuns, &target);
    if (!object.contains("node_name")) {
        DeriveNodeName(target);
    }
    const uint32_t index = profile.targetCount++;
    profile.targets[index] = target;
    const Json luns = OptionalList(object, kLuns, path, kMaxLuns);
    for (size_t at = 0; at < luns.size(); ++at) {
        ReadLun(luns[at], path + "/" + kLuns + "/" + std::to_string(at), index, profile);
    }
}

std::string PathOfLun(const Profile& profile, uint32_t index) {
    const uint32_t target = profile.luns[index].target;
    uint32_t place = 0;
    for (uint32_t at = 0; at < index; ++at) {
        place += profile.luns[at].target == target ? 1 : 0;
    }
    return std::string("/") + kTargets + "/" + std::to_string(target) + "/" + kLuns + "/" +
           std::to_string(place);
}

std::string PathOfPort(const Profile& profile, uint32_t index) {
    const uint32_t adapter = profile.ports[index].adapter;
    uint32_t place = 0;
    for (uint32_t at = 0; at < index; ++at) {
        place += profile.ports[at].adapter == adapter ? 1 : 0;
    }
    return std::string("/") + kAdapters + "/" + std::to_string(adapter) + "/" + kPorts + "/" +
           std::to_string(place);
}

// The path of what the validation found: ports are numbered within their adapter there, and LUNs
// within their target.
std::string PathOf(const Profile& profile, const ProfileFault& fault) {
    const std::string index = std::to_string(fault.index);
    const std::string member = fault.field == nullptr ? "" : std::string("/") + fault.field;
    switch (fault.scope) {
        case FaultScope::Adapter:
            return std::string("/") + kAdapters + "/" + index + member;
        case FaultScope::Port:
            return PathOfPort(profile, fault.index) + member;
        case FaultScope::Target:
            return std::string("/") + kTargets + "/" + index + member;
        case FaultScope::Lun:
            return PathOfLun(profile, fault.index) + member;
        case FaultScope::Profile:
            break;
    }
    return member;
}

void ReadProfile(const Json& document, Profile& profile) {
    RequireObject(document, "");
    RequireMember(document, kName, "");
    const Json& name = document[kName];
    if (!name.is_string() || name.get<std::string>().size() >= sizeof profile.name) {
        Fail(std::string("/") + kName, "must be a text of at most " +
                                           std::to_string(sizeof profile.name - 1) + " characters");
    }
    InitializeProfile(profile, name.get<std::string>().c_str());
    for (const auto& [key, value] : document.items()) {
        if (key != kName && key != kAdapters && key != kTargets) {
            Fail("/" + key, "no such value");
        }
    }
    const Json& adapters = RequireList(document, kAdapters, "", kMaxAdapters);
    for (size_t at = 0; at < adapters.size(); ++at) {
        const std::string path = std::string("/") + kAdapters + "/" + std::to_string(at);
        ReadAdapter(adapters[at], path, profile.adapterCount++, profile);
    }
    const Json targets = OptionalList(document, kTargets, "", kMaxTargets);
    for (size_t at = 0; at < targets.size(); ++at) {
        ReadTarget(targets[at], std::string("/") + kTargets + "/" + std::to_string(at), profile);
    }
    const ProfileFault fault = ValidateProfile(&profile, sizeof profile);
    if (fault.error != ProfileError::None) {
        Fail(PathOf(profile, fault), ProfileErrorText(fault.error));
    }
}

}  // namespace

std::string ProfileToJson(const Profile& profile) {
    Json document = Json::object();
    document[kName] = profile.name;
    Json adapters = Json::array();
    for (uint32_t index = 0; index < profile.adapterCount; ++index) {
        Json adapter = RecordToJson(FieldScope::Adapter, &profile.adapters[index]);
        Json ports = Json::array();
        for (uint32_t at = 0; at < profile.portCount; ++at) {
            if (profile.ports[at].adapter == index) {
                ports.push_back(RecordToJson(FieldScope::Port, &profile.ports[at]));
            }
        }
        adapter[kPorts] = std::move(ports);
        adapters.push_back(std::move(adapter));
    }
    document[kAdapters] = std::move(adapters);
    Json targets = Json::array();
    for (uint32_t index = 0; index < profile.targetCount; ++index) {
        Json target = RecordToJson(FieldScope::Target, &profile.targets[index]);
        Json luns = Json::array();
        for (uint32_t at = 0; at < profile.lunCount; ++at) {
            if (profile.luns[at].target == index) {
                luns.push_back(RecordToJson(FieldScope::Lun, &profile.luns[at]));
            }
        }
        target[kLuns] = std::move(luns);
        targets.push_back(std::move(target));
    }
    document[kTargets] = std::move(targets);
    return document.dump(2) + "\n";
}

bool ProfileFromJson(const std::string& text, Profile* profile, std::string* error) {
    try {
        const Json document = Json::parse(text);
        const bool wrapped = document.is_object() && document.contains(kResult);
        ReadProfile(wrapped ? document[kResult] : document, *profile);
        return true;
    } catch (const JsonError& failure) {
        *error = failure.text;
    } catch (const nlohmann::json::exception& failure) {
        const std::string what = failure.what();
        const size_t end = what.find("] ");
        *error = "not JSON: " + (end == std::string::npos ? what : what.substr(end + 2));
    }
    return false;
}

}  // namespace vxemu
