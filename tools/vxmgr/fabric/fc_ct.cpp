#include "vxmgr/fabric/fc_ct.h"

#include <algorithm>

#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

using namespace formats;

constexpr CodeText kCtReasons[] = {
    {0x01, "invalid command code"},
    {0x02, "invalid version"},
    {0x03, "logical error"},
    {0x04, "invalid size of the request"},
    {0x05, "logical busy"},
    {0x07, "protocol error"},
    {0x09, "unable to perform the request"},
    {0x0B, "command not supported"},
    {0x0D, "the server is not available"},
    {0x0E, "the session could not be established"},
    {0xFF, "vendor specific error"},
};
constexpr CodeText kCtExplanations[] = {
    {0x00, "no explanation"},
    {0x01, "port identifier not registered"},
    {0x02, "port name not registered"},
    {0x03, "node name not registered"},
    {0x04, "class of service not registered"},
    {0x05, "node IP address not registered"},
    {0x06, "initial process associator not registered"},
    {0x07, "FC-4 types not registered"},
    {0x08, "symbolic port name not registered"},
    {0x09, "symbolic node name not registered"},
    {0x0A, "port type not registered"},
    {0x10, "access denied"},
    {0x11, "unacceptable port identifier"},
    {0x12, "database empty"},
    {0x13, "no object registered in the given scope"},
    {0x14, "domain not present"},
    {0x15, "port number not present"},
    {0x16, "no device attached"},
};
constexpr CodeText kPortTypes[] = {
    {0x00, "unidentified"}, {0x01, "N_Port"}, {0x02, "NL_Port"}, {0x03, "F/NL_Port"},
    {0x7F, "Nx_Port"},      {0x81, "F_Port"}, {0x82, "FL_Port"}, {0x84, "E_Port"},
};
constexpr CodeText kFc4Names[] = {{0x05, "IP"}, {0x08, "FCP"}, {0x20, "CT"}, {0x28, "NVMe"}};

std::string Symbolic(const SymbolicName& name) {
    return FieldText(name.text, name.length);
}

std::string Protocols(const AllNext& answer) {
    std::string text;
    for (size_t type = 0; type < kFc4Types; ++type) {
        if ((BigEndian(answer.fc4Types[type / 32]) >> type % 32 & 1) != 0) {
            text += (text.empty() ? "" : " ") +
                    TextOrNumber(kFc4Names, static_cast<uint8_t>(type), "type");
        }
    }
    return text;
}

}  // namespace

std::vector<uint8_t> NameServerRequest(uint16_t command, Bytes payload, size_t answerLength) {
    CtHeader header{};
    header.revision = 1;
    header.gsType = kDirectoryService;
    header.gsSubtype = kNameServer;
    PutBigEndian(command, header.command);
    PutBigEndian(answerLength / 4, header.residual);
    const Bytes head = BytesOf(header);
    std::vector<uint8_t> request(head.size() + payload.size());
    std::copy(payload.begin(), payload.end(), std::copy(head.begin(), head.end(), request.begin()));
    return request;
}

std::optional<CtResponse> DecodeCtResponse(Bytes response) {
    if (response.size() < sizeof(CtHeader)) {
        return std::nullopt;
    }
    const auto header = Padded<CtHeader>(response);
    const auto code = static_cast<uint16_t>(BigEndian(header.command));
    return CtResponse{code == kCtAccept, code, header.reason, header.explanation, header.vendor};
}

std::string CtRejectText(const CtResponse& response) {
    return TextOrNumber(kCtReasons, response.reason, "reason") + ": " +
           TextOrNumber(kCtExplanations, response.explanation, "explanation") + " (" +
           Hex(response.reason, 2) + "/" + Hex(response.explanation, 2) + ")";
}

std::string CtServiceName(uint8_t gsType, uint8_t gsSubtype) {
    if (gsType == kDirectoryService && gsSubtype == kNameServer) {
        return "name server";
    }
    constexpr CodeText kCtServices[] = {
        {0xF7, "key distribution service"}, {0xF8, "alias service"},
        {0xFA, "management service"},       {0xFB, "time service"},
        {0xFC, "directory service"},
    };
    return TextOrNumber(kCtServices, gsType, "service");
}

std::optional<NamedPort> DecodeNamedPort(Bytes payload) {
    if (payload.size() < sizeof(AllNext)) {
        return std::nullopt;
    }
    const auto answer = Padded<AllNext>(payload);
    NamedPort port;
    port.portId = static_cast<uint32_t>(BigEndian(answer.portId));
    port.type = answer.type;
    port.portName = Wwn::Of(answer.portName);
    port.nodeName = Wwn::Of(answer.nodeName);
    port.symbolicPort = Symbolic(answer.port);
    port.symbolicNode = Symbolic(answer.node);
    port.protocols = Protocols(answer);
    return port;
}

std::string PortTypeName(uint8_t type) {
    return TextOrNumber(kPortTypes, type, "type");
}

}  // namespace vxmgr
