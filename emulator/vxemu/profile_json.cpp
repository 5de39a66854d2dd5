#include "profile_json.h"

#include <cstring>
#include <nlohmann/json.hpp>

#include "field_text.h"
#include "model/bytes.h"

namespace vxemu {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kAdapters = "adapters";
constexpr const char* kPorts = "ports";
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
    const bool number = field.kind == FieldKind::Number || field.kind == FieldKind::Code;
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

void ReadPort(const Json& object, const std::string& path, const AdapterProfile& adapter,
              uint32_t adapterIndex, PortProfile& port) {
    RequireObject(object, path);
    RequireMember(object, "scsi_port", path);
    RequireMember(object, "port_name", path);
    port = DefaultPort(adapter);
    port.adapter = static_cast<uint8_t>(adapterIndex);
    ReadRecord(FieldScope::Port, object, path, nullptr, &port);
    if (!object.contains("node_name")) {
        std::memcpy(port.nodeName, port.portName, sizeof port.nodeName);
        port.nodeName[0] = 0x20;
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

    const Json& ports = RequireList(object, kPorts, path, kMaxPorts);
    for (size_t at = 0; at < ports.size(); ++at) {
        const std::string place = path + "/" + kPorts + "/" + std::to_string(at);
        if (profile.portCount == kMaxPorts) {
            Fail(place, "more than " + std::to_string(kMaxPorts) + " ports");
        }
        ReadPort(ports[at], place, adapter, index, profile.ports[profile.portCount++]);
    }
}

// The path of what the validation found: ports are numbered within their adapter there.
std::string PathOf(const Profile& profile, const ProfileFault& fault) {
    const bool port = fault.scope == FaultScope::Port;
    if (fault.scope == FaultScope::Profile) {
        return fault.field == nullptr ? "" : std::string("/") + fault.field;
    }
    const uint32_t adapter = port ? profile.ports[fault.index].adapter : fault.index;
    std::string path = std::string("/") + kAdapters + "/" + std::to_string(adapter);
    if (port) {
        uint32_t place = 0;
        for (uint32_t at = 0; at < fault.index; ++at) {
            place += profile.ports[at].adapter == adapter ? 1 : 0;
        }
        path += std::string("/") + kPorts + "/" + std::to_string(place);
    }
    return fault.field == nullptr ? path : path + "/" + fault.field;
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
        if (key != kName && key != kAdapters) {
            Fail("/" + key, "no such value");
        }
    }
    const Json& adapters = RequireList(document, kAdapters, "", kMaxAdapters);
    for (size_t at = 0; at < adapters.size(); ++at) {
        const std::string path = std::string("/") + kAdapters + "/" + std::to_string(at);
        ReadAdapter(adapters[at], path, profile.adapterCount++, profile);
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
