// Requests to the fabric and to remote ports through a selected port.
#pragma once

#include "vxmgr/app/port_session.h"
#include "vxmgr/fabric/fc_ct.h"

namespace vxmgr {

// A Common Transport request; *response is as long as the longest one that is expected.
HX_STATUS SendCt(uint32_t handle, Bytes request, std::vector<uint8_t>* response);

// A name server request and the payload of its answer. Ends the command when the request fails, or
// is rejected with another explanation than `expected`; then the result is empty.
std::optional<std::vector<uint8_t>> AskNameServer(Invocation& invocation,
                                                  const PortSession& session, uint16_t command,
                                                  Bytes payload, size_t answerLength,
                                                  std::optional<uint8_t> expected = {});

// The identifier of the port that the address names; asks the name server about a name.
uint32_t PortIdOf(Invocation& invocation, const PortSession& session,
                  const HX_SCSI_ADDRESS& address);

// A link service request to a port, and its answer or LS_RJT, if there is one.
HX_STATUS SendLinkService(uint32_t handle, const HX_SCSI_ADDRESS& address, Bytes request,
                          std::vector<uint8_t>* answer);

}  // namespace vxmgr
