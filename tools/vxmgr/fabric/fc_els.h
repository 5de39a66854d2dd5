// Extended link services (FC-LS): requests, and what comes back.
#pragma once

#include "formats/link_services.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

inline constexpr size_t kLongestEls = 252;
inline constexpr size_t kElsWord = 4;  // the command code and three more bytes

std::string ElsName(uint8_t command);  // "ECHO"; "service 0x.." without a name

// ECHO with a pattern behind its first word; length is that of the whole request.
std::vector<uint8_t> EchoRequest(size_t length, uint8_t seed);
// True when the answer is an accept that holds the request's data.
bool IsEchoOf(Bytes request, Bytes answer);

std::vector<uint8_t> LinkErrorsRequest(uint32_t portId);

// The link error status block of an accepted RLS.
struct LinkErrors {
    uint64_t linkFailures = 0;
    uint64_t lossesOfSync = 0;
    uint64_t lossesOfSignal = 0;
    uint64_t protocolErrors = 0;
    uint64_t invalidWords = 0;
    uint64_t crcErrors = 0;
};
std::optional<LinkErrors> DecodeLinkErrors(Bytes answer);
extern const Fields<LinkErrors> kLinkErrorsFields;

// The two codes of an LS_RJT in words, and as numbers.
std::string ElsReasonText(uint8_t reason, uint8_t explanation);

// The reason of an LS_RJT in words; nothing for any other answer.
std::optional<std::string> ElsRejectText(Bytes answer);

// An accepted RNID; what the answer has not is zero, or nothing.
struct NodeIdentification {
    uint8_t format = 0;
    Wwn portName;
    Wwn nodeName;
    std::optional<formats::NodeIdTopology> topology;
};
NodeIdentification DecodeNodeIdentification(Bytes answer);
extern const Fields<NodeIdentification> kNodeIdentificationFields;

}  // namespace vxmgr
