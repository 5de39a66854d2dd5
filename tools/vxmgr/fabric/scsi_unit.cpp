#include "vxmgr/fabric/scsi_unit.h"

#include "vxmgr/fabric/scsi_target.h"

namespace vxmgr {
namespace {

constexpr uint32_t kSenseRoom = 256;

// A driver below 7.05.03 fills in fixed sense data but leaves the response code to the caller.
constexpr uint8_t kFixedFormat = 0x70;

}  // namespace

HX_SCSI_ADDRESS GivenTarget(Invocation& invocation) {
    const std::string text = invocation.Given().Text("target");
    HX_SCSI_ADDRESS address{};
    std::string error;
    if (!ParseTarget(text, &address, &error)) {
        invocation.Fail(ExitCode::Usage, "--target " + text + ": " + error,
                        "`fc names` shows the remote ports");
    }
    address.lun = static_cast<uint16_t>(invocation.Given().Number("lun").value_or(0));
    return address;
}

ScsiUnit::ScsiUnit(Invocation& invocation)
    : invocation_(invocation),
      address_(GivenTarget(invocation)),
      session_(OpenSelectedPort(invocation)) {}

ScsiReply ScsiUnit::ReplyOf(HX_STATUS status, std::vector<uint8_t> data, Bytes sense) {
    ScsiReply reply{status, std::move(data), std::nullopt};
    if (status == HXMGT_SCSI_CHECK_CONDITION) {
        reply.sense = DecodeSense(sense);
    }
    return reply;
}

ScsiReply ScsiUnit::Send(Bytes cdb, size_t room, Bytes dataOut) {
    std::vector<uint8_t> data(room);
    uint8_t sense[kSenseRoom] = {kFixedFormat};
    const HX_STATUS status = HXSendScsiPassThruFC(
        session_.Handle(), &address_, cdb.data(), static_cast<uint32_t>(cdb.size()),
        dataOut.empty() ? nullptr : dataOut.data(), static_cast<uint32_t>(dataOut.size()),
        data.empty() ? nullptr : data.data(), static_cast<uint32_t>(data.size()), sense,
        sizeof sense);
    return ReplyOf(status, std::move(data), sense);
}

ScsiReply ScsiUnit::ReportLuns(size_t room) {
    std::vector<uint8_t> data(room);
    uint8_t sense[kSenseRoom] = {kFixedFormat};
    const HX_STATUS status =
        HXSendScsiReportLunsCmdFC(session_.Handle(), &address_, data.data(),
                                  static_cast<uint32_t>(data.size()), sense, sizeof sense);
    return ReplyOf(status, std::move(data), sense);
}

ExitCode ScsiUnit::Fails(const ScsiReply& reply, const std::string& text, UnitResult& result) {
    result.sense = reply.sense;
    const CommandError error = RemoteFailure(
        session_, reply.status, reply.sense ? text + ": " + SenseText(*reply.sense) : text);
    invocation_.Add(error.message);
    return error.exit;
}

}  // namespace vxmgr
