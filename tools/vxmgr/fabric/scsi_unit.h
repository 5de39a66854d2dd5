// A logical unit behind a selected port, and commands sent to it.
#pragma once

#include "vxmgr/app/port_session.h"
#include "vxmgr/fabric/scsi_sense.h"

namespace vxmgr {

inline constexpr Argument kTargetArgument = {
    .name = "-t,--target",
    .valueName = "TARGET",
    .help = "remote port: wwn:NAME, id:0xDDAAPP or BUS:TARGET",
    .required = true};
inline constexpr Argument kLunArgument =
    NumberOption("--lun", "N", "logical unit number (0)", 0, UINT16_MAX);

// The address that -t and --lun give; ends the command when they are wrong.
HX_SCSI_ADDRESS GivenTarget(Invocation& invocation);

struct ScsiReply {
    HX_STATUS status = HXMGT_SUCCESS;
    std::vector<uint8_t> data;   // as long as the room was; zero behind what came
    std::optional<Sense> sense;  // with HXMGT_SCSI_CHECK_CONDITION
};

// What every command to a unit reports: through which port, and what the unit says of a command
// that it refused.
struct UnitResult {
    const Port* port = nullptr;
    std::optional<Sense> sense;
};

class ScsiUnit {
  public:
    explicit ScsiUnit(Invocation& invocation);

    const PortSession& Session() const { return session_; }
    bool IsLegacy() const { return !session_.port.IsCurrentGeneration(); }

    ScsiReply Send(Bytes cdb, size_t room, Bytes dataOut = {});
    ScsiReply ReportLuns(size_t room);

    // Puts the sense data into the result and reports the status; the command's exit code.
    ExitCode Fails(const ScsiReply& reply, const std::string& text, UnitResult& result);

  private:
    static ScsiReply ReplyOf(HX_STATUS status, std::vector<uint8_t> data, Bytes sense);

    Invocation& invocation_;
    const HX_SCSI_ADDRESS address_;
    const PortSession session_;
};

}  // namespace vxmgr
