#include <chrono>

#include "vxmgr/app/files.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/fc_els.h"
#include "vxmgr/fabric/fc_services.h"
#include "vxmgr/fabric/scsi_unit.h"

namespace vxmgr {
namespace {

constexpr size_t kLongestCt = 65536;
constexpr size_t kLongestCtAnswer = size_t{1} << 20;
constexpr uint8_t kTopologyFormat = 0xDF;

constexpr Argument kNodeArguments[] = {
    TextOption("-t,--target", "TARGET",
               "remote port: wwn:NAME; without it the port that this one is attached to"),
};
constexpr Argument kRemoteArguments[] = {kTargetArgument};
constexpr Argument kEchoArguments[] = {
    kTargetArgument,
    NumberOption("--size", "N", "bytes of each request (128)", 5, kLongestEls),
    NumberOption("--count", "N", "how many to send (4)", 1, 100000),
};
constexpr Argument kCtArguments[] = {
    {.name = "FILE", .help = "the request, binary, its 16-byte header first", .required = true},
    NumberOption("--room", "N", "bytes of the longest response (4096)", sizeof(CtHeader),
                 kLongestCtAnswer),
    TextOption("--out-file", "FILE", "where the response goes"),
};
constexpr Argument kElsArguments[] = {
    {.name = "FILE", .help = "the request, binary, its command code first", .required = true},
    kTargetArgument,
    TextOption("--out-file", "FILE", "where the response goes"),
};

// Link services go by port name or identifier.
HX_SCSI_ADDRESS GivenRemotePort(Invocation& invocation) {
    const HX_SCSI_ADDRESS address = GivenTarget(invocation);
    if (address.type == HX_ADDRESS_BUS_TARGET) {
        invocation.Fail(ExitCode::Usage, "link services go to a name or an identifier",
                        "wwn:NAME or id:0xDDAAPP; `fc names` shows them");
    }
    return address;
}

struct FabricNameRow : NamedPort {
    bool own = false;
};

struct FabricNamesResult {
    const Port* port;
    std::vector<FabricNameRow> names;
};

const Fields<FabricNameRow> kFabricNameFields = {
    {"port_id", "Port ID", "PORT ID", Hexadecimal(6), &FabricNameRow::portId},
    {"port_wwn", "Port name", "PORT NAME", kWwn.OrNull(), &FabricNameRow::portName},
    {"node_wwn", "Node name", "NODE NAME", kWwn.OrNull(), &FabricNameRow::nodeName},
    {"type", "Type", "TYPE", kText,
     [](const FabricNameRow& row) { return PortTypeName(row.type); }},
    {"protocols", "Protocols", "PROTOCOLS", kText.OrNull(), &FabricNameRow::protocols},
    {"own", "This port", "THIS PORT", kFlag, &FabricNameRow::own},
    {"symbolic_port", "Symbolic port name", "SYMBOLIC NAME", kText.OrNull(),
     &FabricNameRow::symbolicPort},
    {"symbolic_node", "Symbolic node name", kText.OrNull(), &FabricNameRow::symbolicNode},
};
const Fields<FabricNamesResult> kFabricNamesFields = {
    {PortKeys(kNoPortKey), &FabricNamesResult::port},
    {"ports", "Ports", kFabricNameFields, &FabricNamesResult::names,
     "the name server knows no ports"},
};

// port_wwn is here that of the port that answered.
struct FabricNodeResult {
    const Port* port;
    NodeIdentification node;
};

const Fields<FabricNodeResult> kFabricNodeFields = {
    {"port", "", kInteger, [](const FabricNodeResult& result) { return result.port->index; }},
    {"scsi_port", "", kInteger.OrNull(),
     [](const FabricNodeResult& result) { return result.port->scsiPort; }},
    {"adapter_serial", "", kSerial.OrNull(),
     [](const FabricNodeResult& result) { return result.port->Serial(); }},
    {kNodeIdentificationFields, &FabricNodeResult::node},
};

struct RemoteErrorsResult {
    const Port* port;
    uint32_t portId;
    std::optional<LinkErrors> errors;
};

const Fields<RemoteErrorsResult> kRemoteErrorsFields = {
    {PortKeys(kNoPortKey), &RemoteErrorsResult::port},
    {"port_id", "Port ID", Hexadecimal(6), &RemoteErrorsResult::portId,
     "of the port that answered"},
    {"errors", "Link errors", kLinkErrorsFields, &RemoteErrorsResult::errors, "", kGroup},
};

struct EchoResult {
    const Port* port;
    uint64_t count;
    size_t size;
    uint64_t good = 0;
    uint64_t least = UINT64_MAX;
    uint64_t most = 0;
    uint64_t sum = 0;

    void Add(uint64_t time) {
        least = std::min(least, time);
        most = std::max(most, time);
        sum += time;
    }
    uint64_t Mean() const { return sum / count; }
};

const Fields<EchoResult> kEchoFields = {
    {PortKeys(kNoPortKey), &EchoResult::port},
    {"sent", "Sent", kInteger, &EchoResult::count},
    {"good", "Came back unchanged", kInteger, &EchoResult::good},
    {"size", "Size", Integer("bytes").OrNull(), &EchoResult::size},
    {"least_us", "Shortest", Integer("us"), &EchoResult::least},
    {"mean_us", "Mean", Integer("us"), &EchoResult::Mean},
    {"most_us", "Longest", Integer("us"), &EchoResult::most},
};

// What came back, saved or shown.
struct FabricResponse {
    std::string file;
    std::optional<std::vector<HexRow>> data;
};

const Fields<FabricResponse> kFabricResponseFields = {
    {"file", "File", kText.OrAbsent(), &FabricResponse::file},
    {"data", "Response", kHexRowFields, &FabricResponse::data, "no data"},
};

FabricResponse TakeResponse(Invocation& invocation, Bytes response) {
    const std::string path = invocation.Given().Text("out-file");
    if (path.empty()) {
        return {{}, DataRows(invocation, response)};
    }
    SaveFile(invocation, path, response);
    return {path, {}};
}

struct CtResult {
    const Port* port;
    CtHeader header;
    size_t sent;
    std::optional<CtResponse> answer;
    FabricResponse response;
};

const Fields<CtResponse> kCtResponseFields = {
    {"accepted", "Accepted", kFlag, &CtResponse::accepted},
    {"response", "Response code", Hexadecimal(4), &CtResponse::code},
    {"reason", "Reason", kText.OrNull(),
     [](const CtResponse& answer) { return answer.accepted ? "" : CtRejectText(answer); }},
};

const Fields<CtResult> kCtResultFields = {
    {PortKeys(kNoPortKey), &CtResult::port},
    {"service", "Service", kText,
     [](const CtResult& result) {
         return CtServiceName(result.header.gsType, result.header.gsSubtype);
     }},
    {"command", "Command", Hexadecimal(4),
     [](const CtResult& result) { return BigEndian(result.header.command); }},
    {"sent", "Sent", Integer("bytes"), &CtResult::sent},
    {kCtResponseFields, &CtResult::answer},
    {kFabricResponseFields, &CtResult::response},
};

struct ElsResult {
    const Port* port;
    uint8_t request;
    size_t sent;
    std::string answer;
    FabricResponse response;
};

const Fields<ElsResult> kElsResultFields = {
    {PortKeys(kNoPortKey), &ElsResult::port},
    {"request", "Request", kText, [](const ElsResult& result) { return ElsName(result.request); }},
    {"sent", "Sent", Integer("bytes"), &ElsResult::sent},
    {"response", "Response", kText.OrAbsent(), &ElsResult::answer},
    {kFabricResponseFields, &ElsResult::response},
};

// Walks the name server from the lowest identifier until it starts over.
std::vector<NamedPort> WalkNames(Invocation& invocation, const PortSession& session) {
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
ExitCode LinkServiceFailed(Invocation& invocation, const PortSession& session, HX_STATUS status,
                           const std::string& what, Bytes answer) {
    if (const auto text = ElsRejectText(answer)) {
        invocation.Fail(ExitCode::Failed, what + ": the remote port rejects it: " + *text);
    }
    if (status != HXMGT_ELS_REJECTED) {
        throw RemoteFailure(session, status, what);
    }
    invocation.Add({Severity::Error, what + ": the remote port rejects it",
                    "the driver does not hand on why", session.port.Object(), status});
    return ExitCodeOf(status);
}

ExitCode FabricNames(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const uint32_t own = session.port.port ? PortIdOf(session.port.port->portId) : 0;
    FabricNamesResult result{&session.port, {}};
    for (const NamedPort& port : WalkNames(invocation, session)) {
        result.names.push_back({port, own == port.portId});
    }
    invocation.Result() = kFabricNamesFields.Make(result);
    return ExitCode::Done;
}

ExitCode FabricNode(Invocation& invocation) {
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
    invocation.Result() = kFabricNodeFields.Make({&session.port, DecodeNodeIdentification(answer)});
    return ExitCode::Done;
}

ExitCode FabricLinkErrors(Invocation& invocation) {
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
    invocation.Result() = kRemoteErrorsFields.Make({&session.port, portId, errors});
    return ExitCode::Done;
}

ExitCode FabricEcho(Invocation& invocation) {
    using Clock = std::chrono::steady_clock;
    const HX_SCSI_ADDRESS address = GivenRemotePort(invocation);
    const size_t size = static_cast<size_t>(invocation.Given().Number("size").value_or(128));
    const uint64_t count = invocation.Given().Number("count").value_or(4);
    const PortSession session = OpenSelectedPort(invocation);
    EchoResult result{&session.port, count, size};
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
        result.good += IsEchoOf(request, answer) ? 1 : 0;
        result.Add(static_cast<uint64_t>(time.count()));
    }
    invocation.Result() = kEchoFields.Make(result);
    if (result.good != count) {
        invocation.Fail(ExitCode::Failed, std::to_string(count - result.good) +
                                              " answers did not hold the data that was sent");
    }
    return ExitCode::Done;
}

ExitCode FabricCt(Invocation& invocation) {
    const std::vector<uint8_t> request =
        LoadFile(invocation, invocation.Given().Text("FILE"), kLongestCt);
    if (request.size() < sizeof(CtHeader)) {
        invocation.Fail(ExitCode::Usage, "the request is shorter than its 16-byte header");
    }
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<CtResult> result(
        invocation.Result(), kCtResultFields,
        {&session.port, Padded<CtHeader>(request), request.size(), {}, {}});
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: the request would be sent");
    }
    std::vector<uint8_t> response(
        static_cast<size_t>(invocation.Given().Number("room").value_or(4096)));
    const HX_STATUS status = SendCt(session.Handle(), request, &response);
    if (status != HXMGT_SUCCESS) {
        throw RemoteFailure(session, status, "the request");
    }
    invocation.Changed();
    result.answer = DecodeCtResponse(response).value_or(CtResponse{});
    result.response = TakeResponse(invocation, response);
    if (!result.answer->accepted) {
        invocation.Fail(ExitCode::Failed,
                        "the service rejects the request: " + CtRejectText(*result.answer));
    }
    return ExitCode::Done;
}

ExitCode FabricEls(Invocation& invocation) {
    const HX_SCSI_ADDRESS address = GivenRemotePort(invocation);
    const std::vector<uint8_t> request =
        LoadFile(invocation, invocation.Given().Text("FILE"), kLongestEls);
    if (request.empty()) {
        invocation.Fail(ExitCode::Usage, "the request is empty");
    }
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<ElsResult> result(invocation.Result(), kElsResultFields,
                                    {&session.port, request[0], request.size(), {}, {}});
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: the request would be sent");
    }
    std::vector<uint8_t> answer;
    const HX_STATUS status = SendLinkService(session.Handle(), address, request, &answer);
    if (status == HXMGT_SUCCESS || !answer.empty()) {
        invocation.Changed();
        result.answer = answer.empty() ? "" : ElsName(answer[0]);
        result.response = TakeResponse(invocation, answer);
    }
    if (status != HXMGT_SUCCESS || ElsRejectText(answer)) {
        return LinkServiceFailed(invocation, session, status, ElsName(request[0]), answer);
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows FcCommands() {
    static const Command kCommands[] = {
        {.path = "fc names",
         .help = "list what the fabric's name server knows",
         .run = FabricNames,
         .example = "fc names -p scsi:3",
         .result = ShapeOf<kFabricNamesFields>},
        {.path = "fc rnid",
         .help = "ask a remote port, or the switch, what it is",
         .arguments = kNodeArguments,
         .run = FabricNode,
         .example = "fc rnid -t id:0x020000 -p scsi:3",
         .result = ShapeOf<kFabricNodeFields>},
        {.path = "fc rls",
         .help = "ask a remote port for its link errors",
         .arguments = kRemoteArguments,
         .run = FabricLinkErrors,
         .example = "fc rls -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
         .result = ShapeOf<kRemoteErrorsFields>},
        {.path = "fc echo",
         .help = "send data to a remote port and back",
         .arguments = kEchoArguments,
         .run = FabricEcho,
         .example = "fc echo -t id:0x020000 --count 10 -p scsi:3",
         .result = ShapeOf<kEchoFields>},
        {.path = "fc ct",
         .risk = Risk::Reversible,
         .help = "send a Common Transport request",
         .arguments = kCtArguments,
         .run = FabricCt,
         .example = "fc ct request.bin --out-file reply.bin -p scsi:3",
         .result = ShapeOf<kCtResultFields>},
        {.path = "fc els",
         .risk = Risk::Reversible,
         .help = "send an extended link service request",
         .arguments = kElsArguments,
         .run = FabricEls,
         .example = "fc els request.bin -t id:0x020000 -p scsi:3",
         .result = ShapeOf<kElsResultFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
