#include "vxmgr/fabric/fc_services.h"

#include "vxmgr/fabric/fc_els.h"

namespace vxmgr {

using formats::PortIdAnswer;

HX_STATUS SendCt(uint32_t handle, Bytes request, std::vector<uint8_t>* response) {
    return HXSendCTPassThru(handle, request.data(), static_cast<uint32_t>(request.size()),
                            response->data(), static_cast<uint32_t>(response->size()));
}

std::optional<std::vector<uint8_t>> AskNameServer(Invocation& invocation,
                                                  const PortSession& session, uint16_t command,
                                                  Bytes payload, size_t answerLength,
                                                  std::optional<uint8_t> expected) {
    const std::vector<uint8_t> request = NameServerRequest(command, payload, answerLength);
    std::vector<uint8_t> response(sizeof(CtHeader) + answerLength);
    const HX_STATUS status = SendCt(session.Handle(), request, &response);
    if (status != HXMGT_SUCCESS) {
        throw RemoteFailure(session, status, "the name server");
    }
    const auto answer = DecodeCtResponse(response);
    if (answer && !answer->accepted && expected && answer->explanation == *expected) {
        return std::nullopt;
    }
    if (!answer || !answer->accepted) {
        invocation.Fail(ExitCode::Failed, "the name server rejects the request: " +
                                              CtRejectText(answer.value_or(CtResponse{})));
    }
    response.erase(response.begin(), response.begin() + sizeof(CtHeader));
    return response;
}

uint32_t PortIdOf(Invocation& invocation, const PortSession& session,
                  const HX_SCSI_ADDRESS& address) {
    constexpr uint8_t kNotRegistered = 0x02;
    if (address.type == HX_ADDRESS_PORT_ID) {
        return static_cast<uint32_t>(BigEndian(address.address, 3));
    }
    const auto answer = AskNameServer(invocation, session, kGetIdOfPortName, address.address,
                                      sizeof(PortIdAnswer), kNotRegistered);
    if (!answer) {
        invocation.Fail(ExitCode::NotFound, "the name server does not know this port",
                        "`fc names` shows those that it knows");
    }
    return static_cast<uint32_t>(BigEndian(Padded<PortIdAnswer>(*answer).portId));
}

HX_STATUS SendLinkService(uint32_t handle, const HX_SCSI_ADDRESS& address, Bytes request,
                          std::vector<uint8_t>* answer) {
    answer->assign(kLongestEls + kElsWord, 0);
    auto length = static_cast<uint32_t>(answer->size());
    const HX_STATUS status =
        HXSendElsPassThruEx(handle, 0, &address, request.data(),
                            static_cast<int32_t>(request.size()), answer->data(), &length, 0);
    answer->resize(status == HXMGT_SUCCESS || status == HXMGT_ELS_REJECTED ? length : 0);
    return status;
}

}  // namespace vxmgr
