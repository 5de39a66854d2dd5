#include "vxmgr/fabric/fc_els.h"

#include "common/text.h"
#include "common/wwn.h"
#include "formats/link_services.h"
#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

using namespace formats;
using tools::Record;
using tools::Value;

constexpr CodeText kServices[] = {
    {0x01, "LS_RJT"}, {0x02, "LS_ACC"}, {0x03, "PLOGI"}, {0x04, "FLOGI"}, {0x05, "LOGO"},
    {0x0D, "RES"},    {0x0E, "RSS"},    {0x0F, "RLS"},   {0x10, "ECHO"},  {0x11, "TEST"},
    {0x12, "RRQ"},    {0x20, "PRLI"},   {0x21, "PRLO"},  {0x24, "TPRLO"}, {0x50, "PDISC"},
    {0x51, "FDISC"},  {0x52, "ADISC"},  {0x56, "RPS"},   {0x57, "RPL"},   {0x60, "FAN"},
    {0x61, "RSCN"},   {0x62, "SCR"},    {0x78, "RNID"},  {0x7A, "LIRR"},
};
constexpr CodeText kReasons[] = {
    {0x01, "invalid command code"},
    {0x03, "logical error"},
    {0x05, "logical busy"},
    {0x07, "protocol error"},
    {0x09, "unable to perform the request"},
    {0x0B, "command not supported"},
    {0x0E, "command already in progress"},
    {0xFF, "vendor specific error"},
};
constexpr CodeText kExplanations[] = {
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

Value NameOrNull(const uint8_t (&name)[8]) {
    const auto wwn = tools::Wwn::Of(name);
    return wwn.IsZero() ? Value() : Value::Name(wwn);
}

}  // namespace

std::string ElsName(uint8_t command) {
    return TextOrNumber(kServices, command, "service");
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

Record LinkErrorsRecord(const LinkErrors& errors) {
    Record record;
    record.Add("link_failures", "Link failures", Value::Number(errors.linkFailures));
    record.Add("losses_of_sync", "Losses of sync", Value::Number(errors.lossesOfSync));
    record.Add("losses_of_signal", "Losses of signal", Value::Number(errors.lossesOfSignal));
    record.Add("protocol_errors", "Primitive sequence errors",
               Value::Number(errors.protocolErrors));
    record.Add("invalid_words", "Invalid transmission words", Value::Number(errors.invalidWords));
    record.Add("crc_errors", "CRC errors", Value::Number(errors.crcErrors));
    return record;
}

std::optional<std::string> ElsRejectText(Bytes answer) {
    if (answer.size() < sizeof(RejectAnswer) || answer[0] != kElsReject) {
        return std::nullopt;
    }
    const auto reject = Padded<RejectAnswer>(answer);
    return TextOrNumber(kReasons, reject.reason, "reason") + ": " +
           TextOrNumber(kExplanations, reject.explanation, "explanation") + " (" +
           tools::Hex(reject.reason, 2) + "/" + tools::Hex(reject.explanation, 2) + ")";
}

Record NodeIdentificationRecord(Bytes answer) {
    const auto head = Padded<NodeIdHead>(answer);
    const Bytes common = Part(answer, sizeof head, head.commonLength);
    const Bytes specific = Part(answer, sizeof head + head.commonLength, head.specificLength);
    const auto names = Padded<NodeIdNames>(common);
    const auto topology = Padded<NodeIdTopology>(specific);
    const bool hasNodes = specific.size() >= offsetof(NodeIdTopology, rest);
    const auto unit = static_cast<uint32_t>(BigEndian(topology.unitType));
    Record record;
    record.Add("format", "Format", Value::Text(tools::Hex(head.format, 2)));
    record.Add("port_wwn", "Port name", NameOrNull(names.portName));
    record.Add("node_wwn", "Node name", NameOrNull(names.nodeName));
    record.Add("unit_type", "Unit type",
               hasNodes ? Value::Text(TextOrNumber(kUnitTypes, unit, "type")) : Value());
    record.Add("port_number", "Port number",
               hasNodes ? Value::Text(tools::Hex(BigEndian(topology.portNumber), 6)) : Value());
    record.Add("attached_nodes", "Attached nodes",
               hasNodes ? Value::Number(BigEndian(topology.attachedNodes)) : Value());
    return record;
}

}  // namespace vxmgr
