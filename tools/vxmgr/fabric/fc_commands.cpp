#include "vxmgr/fabric/commands.h"

#include <chrono>

#include "common/status_codes.h"
#include "common/text.h"
#include "vxmgr/app/files.h"
#include "vxmgr/fabric/fc_els.h"
#include "vxmgr/fabric/fc_services.h"
#include "vxmgr/fabric/scsi_unit.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Value;

constexpr size_t kLongestCt = 65536;
constexpr size_t kLongestCtAnswer = size_t{1} << 20;
constexpr uint8_t kTopologyFormat = 0xDF;

constexpr Argument kNodeArguments[] = {
    {"-t,--target", ArgumentKind::Text, "TARGET",
     "remote port: wwn:NAME; without it the port that this one is attached to"},
};
constexpr Argument kRemoteArguments[] = {kTargetArgument};
constexpr Argument kEchoArguments[] = {
    kTargetArgument,
    {.name = "--size",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "bytes of each request (128)",
     .least = 5,
     .most = kLongestEls},
    {.name = "--count",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "how many to send (4)",
     .least = 1,
     .most = 100000},
};
constexpr Argument kCtArguments[] = {
    {.name = "FILE", .help = "the request, binary, its 16-byte header first", .required = true},
    {.name = "--room",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "bytes of the longest response (4096)",
     .least = sizeof(CtHeader),
     .most = kLongestCtAnswer},
    {"--out-file", ArgumentKind::Text, "FILE", "where the response goes"},
};
constexpr Argument kElsArguments[] = {
    {.name = "FILE", .help = "the request, binary, its command code first", .required = true},
    kTargetArgument,
    {"--out-file", ArgumentKind::Text, "FILE", "where the response goes"},
};

// Link services go by port name or identifier.
HX_SCSI_ADDRESS GivenRemotePort(tools::Invocation& invocation) {
    const HX_SCSI_ADDRESS address = GivenTarget(invocation);
    if (address.type == HX_ADDRESS_BUS_TARGET) {
        invocation.Fail(ExitCode::Usage, "link services go to a name or an identifier",
                        "wwn:NAME or id:0xDDAAPP; `fc names` shows them");
    }
    return address;
}

Record NameRow(const NamedPort& port, uint32_t own) {
    Record row;
    row.Add("port_id", "Port ID", Value::Text(tools::Hex(port.portId, 6)), "PORT ID");
    row.Add("port_wwn", "Port name", Value::Name(port.portName), "PORT NAME");
    row.Add("node_wwn", "Node name", Value::Name(port.nodeName), "NODE NAME");
    row.Add("type", "Type", Value::Text(PortTypeName(port.type)), "TYPE");
    row.Add("protocols", "Protocols", Value::TextOrNull(port.protocols), "PROTOCOLS");
    row.Add("own", "This port", Value::Flag(own == port.portId), "THIS PORT");
    row.Add("symbolic_port", "Symbolic port name", Value::TextOrNull(port.symbolicPort),
            "SYMBOLIC NAME");
    row.Add("symbolic_node", "Symbolic node name", Value::TextOrNull(port.symbolicNode));
    return row;
}

uint32_t OwnPortId(const Port& port) {
    return port.port ? static_cast<uint32_t>(BigEndian(port.port->portId)) : 0;
}

// Walks the name server from the lowest identifier until it starts over.
std::vector<NamedPort> WalkNames(tools::Invocation& invocation, const PortSession& session) {
    constexpr size_t kMost = 65536;
    constexpr uint8_t kNoPort = 0x01;
    std::vector<NamedPort> ports;
    uint32_t last = 0;
    while (ports.size() < kMost) {
        invocation.CheckStop();
        uint8_t payload[4];
        PutBigEndian(last, payload);
        const auto answer =
            AskNameServer(invocation, session, kGetAllNext, payload, kGetAllNextLength, kNoPort);
        const auto port = answer ? DecodeNamedPort(*answer) : std::nullopt;
        if (!port || port->portId <= last) {
            break;
        }
        last = port->portId;
        ports.push_back(*port);
    }
    return ports;
}

// A rejected link service, in words if the driver hands them on.
ExitCode LinkServiceFailed(tools::Invocation& invocation, const PortSession& session,
                           HX_STATUS status, const std::string& what, Bytes answer) {
    if (const auto text = ElsRejectText(answer)) {
        invocation.Fail(ExitCode::Failed, what + ": the remote port rejects it: " + *text);
    }
    if (status != HXMGT_ELS_REJECTED) {
        throw RemoteFailure(session, status, what);
    }
    invocation.Add({tools::Severity::Error, what + ": the remote port rejects it",
                    "the driver does not hand on why", session.port.Object(), status});
    return tools::ExitCodeOf(status);
}

void AddResponse(tools::Invocation& invocation, Bytes response) {
    if (invocation.Given().Has("out-file")) {
        const std::string path = invocation.Given().Text("out-file");
        SaveFile(invocation, path, response);
        invocation.Result().Add("file", "File", Value::Text(path));
    } else {
        AddData(invocation, "Response", response);
    }
}

struct EchoTimes {
    uint64_t least = UINT64_MAX;
    uint64_t most = 0;
    uint64_t sum = 0;

    void Add(uint64_t time) {
        least = std::min(least, time);
        most = std::max(most, time);
        sum += time;
    }
};

ExitCode FabricNames(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const uint32_t own = OwnPortId(session.port);
    std::vector<Record> rows;
    for (const NamedPort& port : WalkNames(invocation, session)) {
        rows.push_back(NameRow(port, own));
    }
    invocation.Result().AddList("ports", "Ports", ListLayout::Table, NameRow({}, 0),
                                "the name server knows no ports", std::move(rows));
    return ExitCode::Done;
}

ExitCode FabricNode(tools::Invocation& invocation) {
    constexpr size_t kRoom = 256;
    HX_SCSI_ADDRESS address{};
    if (invocation.Given().Has("target")) {
        address = GivenRemotePort(invocation);
        if (address.type == HX_ADDRESS_PORT_ID) {
            invocation.Fail(ExitCode::Usage, "RNID goes to a name",
                            "wwn:NAME; `fc names` shows the names");
        }
    }
    const PortSession session = OpenSelectedPort(invocation);
    std::vector<uint8_t> answer(kRoom);
    const HX_STATUS status = HXSendElsRnid(session.Handle(), &address, kTopologyFormat,
                                           answer.data(), static_cast<uint32_t>(answer.size()));
    if (status != HXMGT_SUCCESS) {
        return LinkServiceFailed(invocation, session, status, "RNID", {});
    }
    invocation.Result() = NodeIdentificationRecord(answer);
    return ExitCode::Done;
}

ExitCode FabricLinkErrors(tools::Invocation& invocation) {
    const HX_SCSI_ADDRESS address = GivenRemotePort(invocation);
    const PortSession session = OpenSelectedPort(invocation);
    const uint32_t portId = PortIdOf(invocation, session, address);
    std::vector<uint8_t> answer;
    const HX_STATUS status =
        SendLinkService(session.Handle(), address, LinkErrorsRequest(portId), &answer);
    const auto errors = DecodeLinkErrors(answer);
    if (status != HXMGT_SUCCESS || !errors) {
        return LinkServiceFailed(invocation, session,
                                 status == HXMGT_SUCCESS ? HXMGT_ELS_REJECTED : status, "RLS",
                                 answer);
    }
    invocation.Result().Add("port_id", "Port ID", Value::Text(tools::Hex(portId, 6)));
    invocation.Result().AddGroup("errors", "Link errors", LinkErrorsRecord(*errors));
    return ExitCode::Done;
}

ExitCode FabricEcho(tools::Invocation& invocation) {
    using Clock = std::chrono::steady_clock;
    const HX_SCSI_ADDRESS address = GivenRemotePort(invocation);
    const size_t size = static_cast<size_t>(invocation.Given().Number("size").value_or(128));
    const uint64_t count = invocation.Given().Number("count").value_or(4);
    const PortSession session = OpenSelectedPort(invocation);
    uint64_t good = 0;
    EchoTimes times;
    for (uint64_t i = 0; i < count; ++i) {
        invocation.CheckStop();
        const std::vector<uint8_t> request = EchoRequest(size, static_cast<uint8_t>(i * 37));
        std::vector<uint8_t> answer;
        const auto start = Clock::now();
        const HX_STATUS status = SendLinkService(session.Handle(), address, request, &answer);
        const auto time =
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
        if (status != HXMGT_SUCCESS) {
            return LinkServiceFailed(invocation, session, status, "ECHO", answer);
        }
        good += IsEchoOf(request, answer) ? 1 : 0;
        times.Add(static_cast<uint64_t>(time.count()));
    }
    Record& result = invocation.Result();
    result.Add("sent", "Sent", Value::Number(count));
    result.Add("good", "Came back unchanged", Value::Number(good));
    result.Add("size", "Size", Value::Number(size, "bytes"));
    result.Add("least_us", "Shortest", Value::Number(times.least, "us"));
    result.Add("mean_us", "Mean", Value::Number(times.sum / count, "us"));
    result.Add("most_us", "Longest", Value::Number(times.most, "us"));
    if (good != count) {
        invocation.Fail(ExitCode::Failed, std::to_string(count - good) +
                                              " answers did not hold the data that was sent");
    }
    return ExitCode::Done;
}

ExitCode FabricCt(tools::Invocation& invocation) {
    const std::vector<uint8_t> request =
        LoadFile(invocation, invocation.Given().Text("FILE"), kLongestCt);
    if (request.size() < sizeof(CtHeader)) {
        invocation.Fail(ExitCode::Usage, "the request is shorter than its 16-byte header");
    }
    const auto header = Padded<CtHeader>(request);
    Record& result = invocation.Result();
    result.Add("service", "Service", Value::Text(CtServiceName(header.gsType, header.gsSubtype)));
    result.Add("command", "Command", Value::Text(tools::Hex(BigEndian(header.command), 4)));
    result.Add("sent", "Sent", Value::Number(request.size(), "bytes"));
    const PortSession session = OpenSelectedPort(invocation);
    if (invocation.DryRun()) {
        invocation.Note("dry run: the request would be sent");
        return ExitCode::Done;
    }
    std::vector<uint8_t> response(
        static_cast<size_t>(invocation.Given().Number("room").value_or(4096)));
    const HX_STATUS status =
        HXSendCTPassThru(session.Handle(), request.data(), static_cast<uint32_t>(request.size()),
                         response.data(), static_cast<uint32_t>(response.size()));
    if (status != HXMGT_SUCCESS) {
        throw RemoteFailure(session, status, "the request");
    }
    invocation.Changed();
    const CtResponse answer = DecodeCtResponse(response).value_or(CtResponse{});
    result.Add("accepted", "Accepted", Value::Flag(answer.accepted));
    result.Add("response", "Response code", Value::Text(tools::Hex(answer.code, 4)));
    result.Add("reason", "Reason", answer.accepted ? Value() : Value::Text(CtRejectText(answer)));
    AddResponse(invocation, response);
    if (!answer.accepted) {
        invocation.Fail(ExitCode::Failed,
                        "the service rejects the request: " + CtRejectText(answer));
    }
    return ExitCode::Done;
}

ExitCode FabricEls(tools::Invocation& invocation) {
    const HX_SCSI_ADDRESS address = GivenRemotePort(invocation);
    const std::vector<uint8_t> request =
        LoadFile(invocation, invocation.Given().Text("FILE"), kLongestEls);
    if (request.empty()) {
        invocation.Fail(ExitCode::Usage, "the request is empty");
    }
    Record& result = invocation.Result();
    result.Add("request", "Request", Value::Text(ElsName(request[0])));
    result.Add("sent", "Sent", Value::Number(request.size(), "bytes"));
    const PortSession session = OpenSelectedPort(invocation);
    if (invocation.DryRun()) {
        invocation.Note("dry run: the request would be sent");
        return ExitCode::Done;
    }
    std::vector<uint8_t> answer;
    const HX_STATUS status = SendLinkService(session.Handle(), address, request, &answer);
    if (status == HXMGT_SUCCESS || !answer.empty()) {
        invocation.Changed();
        result.Add("response", "Response",
                   answer.empty() ? Value() : Value::Text(ElsName(answer[0])));
        AddResponse(invocation, answer);
    }
    if (status != HXMGT_SUCCESS || ElsRejectText(answer)) {
        return LinkServiceFailed(invocation, session, status, ElsName(request[0]), answer);
    }
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows FcCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "fc names",
            .risk = tools::Risk::Reads,
            .help = "list what the fabric's name server knows",
            .schema = "fc.names",
            .run = FabricNames,
            .example = "fc names -p scsi:3",
        },
        {
            .path = "fc rnid",
            .risk = tools::Risk::Reads,
            .help = "ask a remote port, or the switch, what it is",
            .schema = "fc.rnid",
            .arguments = kNodeArguments,
            .run = FabricNode,
            .example = "fc rnid -t id:0x020000 -p scsi:3",
        },
        {
            .path = "fc rls",
            .risk = tools::Risk::Reads,
            .help = "ask a remote port for its link errors",
            .schema = "fc.rls",
            .arguments = kRemoteArguments,
            .run = FabricLinkErrors,
            .example = "fc rls -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
        },
        {
            .path = "fc echo",
            .risk = tools::Risk::Reads,
            .help = "send data to a remote port and back",
            .schema = "fc.echo",
            .arguments = kEchoArguments,
            .run = FabricEcho,
            .example = "fc echo -t id:0x020000 --count 10 -p scsi:3",
        },
        {
            .path = "fc ct",
            .risk = tools::Risk::Reversible,
            .help = "send a Common Transport request",
            .schema = "fc.ct",
            .arguments = kCtArguments,
            .run = FabricCt,
            .example = "fc ct request.bin --out-file reply.bin -p scsi:3",
        },
        {
            .path = "fc els",
            .risk = tools::Risk::Reversible,
            .help = "send an extended link service request",
            .schema = "fc.els",
            .arguments = kElsArguments,
            .run = FabricEls,
            .example = "fc els request.bin -t id:0x020000 -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
