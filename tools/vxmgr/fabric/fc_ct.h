// Common Transport (FC-GS): requests to the name server, and what comes back.
#pragma once

#include <array>

#include "formats/common_transport.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

using formats::CtHeader;
using formats::kGetAllNext;
using formats::kGetIdOfPortName;

std::vector<uint8_t> NameServerRequest(uint16_t command, Bytes payload, size_t answerLength);

// What a response says of itself.
struct CtResponse {
    bool accepted = false;
    uint16_t code = 0;  // 0x8001 reject, 0x8002 accept
    uint8_t reason = 0;
    uint8_t explanation = 0;
    uint8_t vendor = 0;
};
// Nothing when there is less than a header.
std::optional<CtResponse> DecodeCtResponse(Bytes response);

// "unable to perform the request: port identifier not registered (0x09/0x01)". The explanation's
// words are the name server's.
std::string CtRejectText(const CtResponse& response);

std::string CtServiceName(uint8_t gsType, uint8_t gsSubtype);

// The answer to kGetAllNext, whole.
inline constexpr size_t kGetAllNextLength = sizeof(formats::AllNext);
struct NamedPort {
    uint32_t portId = 0;
    uint8_t type = 0;
    Wwn portName;
    Wwn nodeName;
    std::string symbolicPort;
    std::string symbolicNode;
    std::string protocols;  // FC-4 types: "FCP NVMe"
};
std::optional<NamedPort> DecodeNamedPort(Bytes payload);

std::string PortTypeName(uint8_t type);  // "N_Port"

}  // namespace vxmgr
