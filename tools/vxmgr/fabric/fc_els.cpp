#include "vxmgr/fabric/fc_els.h"

#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"

namespace vxmgr {
namespace {

using namespace formats;

constexpr CodeText kElsServices[] = {
    {0x01, "LS_RJT"}, {0x02, "LS_ACC"}, {0x03, "PLOGI"}, {0x04, "FLOGI"}, {0x05, "LOGO"},
    {0x0D, "RES"},    {0x0E, "RSS"},    {0x0F, "RLS"},   {0x10, "ECHO"},  {0x11, "TEST"},
    {0x12, "RRQ"},    {0x20, "PRLI"},   {0x21, "PRLO"},  {0x24, "TPRLO"}, {0x50, "PDISC"},
    {0x51, "FDISC"},  {0x52, "ADISC"},  {0x56, "RPS"},   {0x57, "RPL"},   {0x60, "FAN"},
    {0x61, "RSCN"},   {0x62, "SCR"},    {0x78, "RNID"},  {0x7A, "LIRR"},
};
constexpr CodeText kElsReasons[] = {
    {0x01, "invalid command code"},
    {0x03, "logical error"},
    {0x05, "logical busy"},
    {0x07, "protocol error"},
    {0x09, "unable to perform the request"},
    {0x0B, "command not supported"},
    {0x0E, "command already in progress"},
    {0xFF, "vendor specific error"},
};
constexpr CodeText kElsExplanations[] = {
    {0x00, "no explanation"},
    {0x01, "service parameter error, options"},
    {0x03, "service parameter error, initiator control"},
    {0x05, "service parameter error, recipient control"},
    {0x07, "service parameter error, receive data field size"},
    {0x0D, "invalid port or node name"},
    {0x0F, "invalid common service parameters"},
    {0x15, "invalid port identifier"},
    {0x17, "invalid exchange identifier"},
    {0x19, "command already in progress"},
    {0x1E, "port login required"},
    {0x1F, "invalid port identifier"},
    {0x29, "insufficient resources to support the login"},
    {0x2A, "unable to supply the requested data"},
    {0x2C, "request not supported"},
    {0x2D, "invalid payload length"},
};
constexpr CodeText kUnitTypes[] = {
    {0x01, "unknown"}, {0x02, "other"},     {0x03, "hub"},  {0x04, "switch"},
    {0x05, "gateway"}, {0x06, "converter"}, {0x0A, "host"}, {0x0B, "storage subsystem"},
    {0x0E, "module"},
};

std::optional<Wwn> NameUnlessZero(const Wwn& name) {
    return name.IsZero() ? std::nullopt : std::optional(name);
}

}  // namespace

std::string ElsName(uint8_t command) {
    return TextOrNumber(kElsServices, command, "service");
}

std::vector<uint8_t> EchoRequest(size_t length, uint8_t seed) {
    std::vector<uint8_t> request(std::max(length, kElsWord));
    request[0] = kEcho;
    for (size_t i = kElsWord; i < request.size(); ++i) {
        request[i] = static_cast<uint8_t>(seed + i);
    }
    return request;
}

bool IsEchoOf(Bytes request, Bytes answer) {
    const Bytes sent = Part(request, kElsWord);
    const Bytes back = Part(answer, kElsWord, sent.size());
    return !answer.empty() && answer[0] == kElsAccept &&
           std::equal(sent.begin(), sent.end(), back.begin(), back.end());
}

std::vector<uint8_t> LinkErrorsRequest(uint32_t portId) {
    LinkErrorsCall call{};
    call.head.command = kReadLinkErrors;
    PutBigEndian(portId, call.portId);
    const Bytes bytes = BytesOf(call);
    return {bytes.begin(), bytes.end()};
}

std::optional<LinkErrors> DecodeLinkErrors(Bytes answer) {
    if (answer.size() < sizeof(LinkErrorsAnswer) || answer[0] != kElsAccept) {
        return std::nullopt;
    }
    const auto reply = Padded<LinkErrorsAnswer>(answer);
    const auto counter = [&](size_t index) { return BigEndian(reply.counters[index]); };
    return LinkErrors{counter(0), counter(1), counter(2), counter(3), counter(4), counter(5)};
}

const Fields<LinkErrors> kLinkErrorsFields = {
    {"link_failures", "Link failures", kInteger, &LinkErrors::linkFailures},
    {"losses_of_sync", "Losses of sync", kInteger, &LinkErrors::lossesOfSync},
    {"losses_of_signal", "Losses of signal", kInteger, &LinkErrors::lossesOfSignal},
    {"protocol_errors", "Primitive sequence errors", kInteger, &LinkErrors::protocolErrors},
    {"invalid_words", "Invalid transmission words", kInteger, &LinkErrors::invalidWords},
    {"crc_errors", "CRC errors", kInteger, &LinkErrors::crcErrors},
};

std::string ElsReasonText(uint8_t reason, uint8_t explanation) {
    return TextOrNumber(kElsReasons, reason, "reason") + ": " +
           TextOrNumber(kElsExplanations, explanation, "explanation") + " (" + Hex(reason, 2) +
           "/" + Hex(explanation, 2) + ")";
}

std::optional<std::string> ElsRejectText(Bytes answer) {
    if (answer.size() < sizeof(RejectAnswer) || answer[0] != kElsReject) {
        return std::nullopt;
    }
    const auto reject = Padded<RejectAnswer>(answer);
    return ElsReasonText(reject.reason, reject.explanation);
}

NodeIdentification DecodeNodeIdentification(Bytes answer) {
    const auto head = Padded<NodeIdHead>(answer);
    const Bytes specific = Part(answer, sizeof head + head.commonLength, head.specificLength);
    const auto names = Padded<NodeIdNames>(Part(answer, sizeof head, head.commonLength));
    NodeIdentification node{head.format, Wwn::Of(names.portName), Wwn::Of(names.nodeName), {}};
    if (specific.size() >= offsetof(NodeIdTopology, rest)) {
        node.topology = Padded<NodeIdTopology>(specific);
    }
    return node;
}

const Fields<NodeIdentification> kNodeIdentificationFields = {
    {"format", "Format", Hexadecimal(2), &NodeIdentification::format},
    {"port_wwn", "Port name", kWwn.OrNull(),
     [](const NodeIdentification& node) { return NameUnlessZero(node.portName); },
     "of the port that answered"},
    {"node_wwn", "Node name", kWwn.OrNull(),
     [](const NodeIdentification& node) { return NameUnlessZero(node.nodeName); }},
    {"unit_type", "Unit type", kText.OrNull(),
     Of(&NodeIdentification::topology,
        [](const NodeIdTopology& topology) {
            const auto type = static_cast<uint32_t>(BigEndian(topology.unitType));
            return TextOrNumber(kUnitTypes, type, "type");
        })},
    {"port_number", "Port number", kText.OrNull(),
     Of(&NodeIdentification::topology,
        [](const NodeIdTopology& topology) { return Hex(BigEndian(topology.portNumber), 6); })},
    {"attached_nodes", "Attached nodes", kInteger.OrNull(),
     Of(&NodeIdentification::topology,
        [](const NodeIdTopology& topology) { return BigEndian(topology.attachedNodes); })},
};

}  // namespace vxmgr
