#include "model/fabric/name_server.h"

#include <cstring>

#include "formats/common_transport.h"
#include "model/bytes/byte_writer.h"

namespace vxemu {
namespace {

using namespace formats;

constexpr uint32_t kSymbolicLength = sizeof SymbolicName::text;
constexpr uint8_t kFcp = 0x08;    // FC-4 type
constexpr uint8_t kNPort = 0x01;  // port type

#pragma pack(push, 1)
// The longest request known carries a name.
struct CtRequest {
    CtHeader header;
    uint8_t payload[8];
};
#pragma pack(pop)

struct Rejection {
    uint8_t reason;
    uint8_t explanation;
};
constexpr Rejection kAccepted = {0, 0};
constexpr Rejection kInvalidCommand = {0x01, 0};
constexpr Rejection kInvalidVersion = {0x02, 0};
constexpr Rejection kLogicalError = {0x03, 0};
constexpr Rejection kInvalidSize = {0x04, 0};
constexpr Rejection kNoSuchPortId = {0x09, 0x01};
constexpr Rejection kNoSuchPortName = {0x09, 0x02};
constexpr Rejection kNoSuchFc4Type = {0x09, 0x07};
constexpr Rejection kNoSuchPortType = {0x09, 0x0A};

template <typename Visit>
void ForEachPort(const Fabric& fabric, Visit visit) {
    const Profile& profile = *fabric.profile;
    for (uint32_t at = 0; at < profile.portCount; ++at) {
        const PortProfile& port = profile.ports[at];
        if (port.state == PortState::Online) {
            visit(FabricPort{UnitType::Host, port.portId, port.portName, port.nodeName,
                             profile.adapters[port.adapter].description});
        }
    }
    for (uint32_t at = 0; at < profile.targetCount; ++at) {
        const TargetProfile& device = profile.targets[at];
        if (device.present != 0) {
            const UnitType unit = IsTarget(device) ? UnitType::StorageSubsystem : UnitType::Host;
            visit(FabricPort{unit, device.portId, device.portName, device.nodeName,
                             device.symbolicName});
        }
    }
}

template <typename Matches>
bool FindFirst(const Fabric& fabric, FabricPort& found, Matches matches) {
    bool any = false;
    ForEachPort(fabric, [&](const FabricPort& port) {
        if (!any && matches(port)) {
            found = port;
            any = true;
        }
    });
    return any;
}

uint32_t IdOf(const uint8_t* portId) {
    return static_cast<uint32_t>(BigEndian(portId, 3));
}

// The port with the lowest identifier that is at least this one.
bool FindFrom(const Fabric& fabric, uint32_t lowest, FabricPort& found) {
    bool any = false;
    ForEachPort(fabric, [&](const FabricPort& port) {
        if (IdOf(port.portId) >= lowest && (!any || IdOf(port.portId) < IdOf(found.portId))) {
            found = port;
            any = true;
        }
    });
    return any;
}

void PutSymbolicName(ByteWriter& out, const char* name) {
    const auto length = static_cast<uint32_t>(std::strlen(name));
    out.Put8(static_cast<uint8_t>(length));
    out.Put(name, length);
    out.Zeros(kSymbolicLength - length);
}

void PutFc4Types(ByteWriter& out) {
    for (uint32_t word = 0; word < 8; ++word) {
        out.Put32(word == 0 ? 1u << kFcp : 0);
    }
}

struct Query {
    const Fabric& fabric;
    const CtRequest& request;
    ByteWriter& out;
};

Rejection GetAllNext(const Query& query) {
    FabricPort port;
    if (!FindFrom(query.fabric, IdOf(query.request.payload + 1) + 1, port) &&
        !FindFrom(query.fabric, 0, port)) {
        return kNoSuchPortId;
    }
    query.out.Put8(kNPort);
    query.out.Put(port.portId, 3);
    query.out.Put(port.portName, 8);
    PutSymbolicName(query.out, port.symbolicName);
    query.out.Put(port.nodeName, 8);
    PutSymbolicName(query.out, "");
    query.out.Zeros(8);        // initial process associator
    query.out.Zeros(16);       // node IP address
    query.out.Put32(1u << 3);  // class 3
    PutFc4Types(query.out);
    query.out.Zeros(16);  // port IP address
    query.out.Zeros(8);   // fabric port name
    query.out.Zeros(4);   // hard address
    return kAccepted;
}

// What is asked of one port, by its identifier.
template <void (*put)(ByteWriter& out, const FabricPort& port)>
Rejection GetById(const Query& query) {
    FabricPort port;
    if (!FindById(query.fabric, query.request.payload + 1, port)) {
        return kNoSuchPortId;
    }
    put(query.out, port);
    return kAccepted;
}

void PutPortName(ByteWriter& out, const FabricPort& port) {
    out.Put(port.portName, 8);
}
void PutNodeName(ByteWriter& out, const FabricPort& port) {
    out.Put(port.nodeName, 8);
}
void PutFc4TypesOf(ByteWriter& out, const FabricPort&) {
    PutFc4Types(out);
}
void PutSymbolicPortName(ByteWriter& out, const FabricPort& port) {
    PutSymbolicName(out, port.symbolicName);
}
void PutPortType(ByteWriter& out, const FabricPort&) {
    out.Put8(kNPort);
    out.Zeros(3);
}

Rejection GetIdOfPortName(const Query& query) {
    FabricPort port;
    if (!FindByName(query.fabric, query.request.payload, port)) {
        return kNoSuchPortName;
    }
    query.out.Put8(0);
    query.out.Put(port.portId, 3);
    return kAccepted;
}

// Identifiers of all ports within a domain and area; zero stands for any.
Rejection ListPorts(const Query& query, uint8_t domain, uint8_t area, const Rejection& none) {
    auto within = [&](const FabricPort& port) {
        return (domain == 0 || port.portId[0] == domain) && (area == 0 || port.portId[1] == area);
    };
    FabricPort port;
    const uint8_t* pending = nullptr;
    for (uint32_t from = 0; FindFrom(query.fabric, from, port); from = IdOf(port.portId) + 1) {
        if (!within(port)) {
            continue;
        }
        if (pending != nullptr) {
            query.out.Put8(0);
            query.out.Put(pending, 3);
        }
        pending = port.portId;
    }
    if (pending == nullptr) {
        return none;
    }
    query.out.Put8(kLastPortId);
    query.out.Put(pending, 3);
    return kAccepted;
}

Rejection GetIdsOfFc4Type(const Query& query) {
    const uint8_t* payload = query.request.payload;
    return payload[3] == kFcp ? ListPorts(query, payload[1], payload[2], kNoSuchFc4Type)
                              : kNoSuchFc4Type;
}

Rejection GetIdsOfPortType(const Query& query) {
    const uint8_t* payload = query.request.payload;
    return payload[0] == kNPort ? ListPorts(query, payload[1], payload[2], kNoSuchPortType)
                                : kNoSuchPortType;
}

struct QueryRow {
    uint16_t command;
    uint8_t payloadLength;
    Rejection (*answer)(const Query& query);
};
constexpr QueryRow kQueries[] = {
    {kGetAllNext, 4, GetAllNext},
    {kGetPortName, 4, GetById<PutPortName>},
    {kGetNodeName, 4, GetById<PutNodeName>},
    {kGetFc4Types, 4, GetById<PutFc4TypesOf>},
    {kGetSymbolicPortName, 4, GetById<PutSymbolicPortName>},
    {kGetPortType, 4, GetById<PutPortType>},
    {kGetIdOfPortName, 8, GetIdOfPortName},
    {kGetIdsOfFc4Type, 4, GetIdsOfFc4Type},
    {kGetIdsOfPortType, 4, GetIdsOfPortType},
};

Rejection Answer(const Query& query, uint32_t payloadLength) {
    const CtHeader& header = query.request.header;
    if (header.revision == 0 || header.revision > 3) {
        return kInvalidVersion;
    }
    if (header.gsType != kDirectoryService || header.gsSubtype != kNameServer) {
        return kLogicalError;
    }
    const uint64_t command = BigEndian(header.command);
    for (const QueryRow& row : kQueries) {
        if (row.command == command) {
            return payloadLength < row.payloadLength ? kInvalidSize : row.answer(query);
        }
    }
    return kInvalidCommand;
}

bool SameName(const uint8_t* left, const uint8_t* right) {
    return std::memcmp(left, right, 8) == 0;
}

}  // namespace

bool FindByName(const Fabric& fabric, const uint8_t* portName, FabricPort& found) {
    return FindFirst(fabric, found,
                     [&](const FabricPort& port) { return SameName(port.portName, portName); });
}

bool FindByNodeName(const Fabric& fabric, const uint8_t* nodeName, FabricPort& found) {
    return FindFirst(fabric, found,
                     [&](const FabricPort& port) { return SameName(port.nodeName, nodeName); });
}

bool FindById(const Fabric& fabric, const uint8_t* portId, FabricPort& found) {
    return FindFirst(fabric, found,
                     [&](const FabricPort& port) { return IdOf(port.portId) == IdOf(portId); });
}

uint32_t AnswerCt(const Fabric& fabric, const uint8_t* bytes, uint32_t length, uint8_t* response,
                  uint32_t room) {
    CtRequest request = {};
    if (length < sizeof request.header || room < sizeof request.header) {
        return 0;
    }
    const uint32_t taken = length < sizeof request ? length : sizeof request;
    std::memcpy(&request, bytes, taken);
    std::memset(response, 0, room);
    constexpr uint32_t kHeader = sizeof(CtHeader);
    ByteWriter out(response + kHeader, room - kHeader);
    const Rejection rejection = Answer({fabric, request, out}, taken - kHeader);
    const bool accepted = rejection.reason == 0;

    CtHeader header = request.header;
    const uint32_t whole = accepted ? out.Length() : 0;
    const uint32_t fitting = whole < room - kHeader ? whole : room - kHeader;
    PutBigEndian(accepted ? kCtAccept : kCtReject, header.command);
    PutBigEndian((whole - fitting + 3) / 4, header.residual);
    header.reserved12 = 0;
    header.reason = rejection.reason;
    header.explanation = rejection.explanation;
    header.vendor = 0;
    std::memcpy(response, &header, kHeader);
    return kHeader + fitting;
}

}  // namespace vxemu
