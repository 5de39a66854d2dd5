#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "formats/scsi_data.h"
#include "frame/owned.h"
#include "frame/trace.h"
#include "passthru/passthru.h"
#include "passthru/scsi_records.h"
#include "properties/generation.h"
#include "properties/legacy_targets.h"
#include "properties/target_address.h"
#include "transport/driver_status.h"
#include "transport/requests.h"

namespace passthru {
namespace {

using namespace formats;
using properties::LegacyTargetEntry;

constexpr uint32_t kLongestCdb = 255;  // what the request's length byte can say
constexpr uint16_t kNoLoopId = 0xFFFF;

struct ScsiCall {
    const HX_SCSI_ADDRESS& target;
    const uint8_t* cdb;
    uint32_t cdbLength;
    const void* dataOut;
    uint32_t dataOutLength;
    void* dataIn;
    uint32_t dataInLength;
    uint8_t* sense;
    uint32_t senseLength;

    bool SendsData() const { return dataOut != nullptr && dataOutLength != 0; }
    bool TakesData() const { return dataIn != nullptr && dataInLength != 0; }
    bool TakesSense() const { return sense != nullptr; }
};

// Any other type goes out as no address at LUN 0, for the driver to decide: intended.
void PutAddress(const HX_SCSI_ADDRESS& target, ScsiRequest& request) {
    if (const properties::AddressKind* const kind = properties::KindOf(target)) {
        std::memcpy(request.address, target.address, kind->bytes);
        request.addressType = static_cast<uint16_t>(kind->driverType);
        request.lun = target.lun;
    }
}

ScsiDirection DirectionOf(const ScsiCall& call) {
    if (call.SendsData()) {
        return ScsiDirection::Out;
    }
    return call.TakesData() ? ScsiDirection::In : ScsiDirection::None;
}

HX_STATUS SendExtended(uint32_t handle, const ScsiCall& call) {
    const uint32_t dataRoom = std::max(call.dataInLength, call.dataOutLength);
    if (dataRoom > UINT32_MAX - sizeof(ScsiRequest)) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const uint32_t size = static_cast<uint32_t>(sizeof(ScsiRequest)) + dataRoom;
    const frame::Bytes buffer = frame::ZeroedBytes(size);
    if (buffer == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    ScsiRequest& request = *reinterpret_cast<ScsiRequest*>(buffer.get());
    uint8_t* const data = buffer.get() + sizeof request;
    PutAddress(call.target, request);
    request.direction = static_cast<uint8_t>(DirectionOf(call));
    request.cdbLength = static_cast<uint8_t>(call.cdbLength);
    // A command block longer than its field runs on into the sense area: intended.
    std::memcpy(buffer.get() + offsetof(ScsiRequest, cdb), call.cdb, call.cdbLength);
    if (call.SendsData()) {
        std::memcpy(data, call.dataOut, call.dataOutLength);
    }
    const transport::Command command = transport::command::ScsiPassThrough;
    uint32_t returned = 0;
    const HX_STATUS status = transport::SendExtended(
        handle, command.code, command.subCode, buffer.get(), size, buffer.get(), size, &returned);
    if (status != HXMGT_SUCCESS) {
        VX_TRACE(handle, "SRBWithHeaderDeviceIoControl() failed with status 0x%x\n", status);
    } else if (call.TakesData()) {
        std::memcpy(call.dataIn, data, call.dataInLength);
    }
    if (status == HXMGT_SCSI_CHECK_CONDITION && call.TakesSense()) {
        std::memcpy(call.sense, request.sense,
                    std::min<size_t>(call.senseLength, sizeof request.sense));
    }
    VX_TRACE(handle, "HXSendScsiPassThru() returned 0x%x\n", status);
    return status;
}

// Loop ID of the target in the driver's list.
HX_STATUS FindLoopId(uint32_t handle, const HX_SCSI_ADDRESS& target, uint16_t& loopId) {
    properties::LegacyTargets targets;
    if (const HX_STATUS status = targets.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const auto found = std::find_if(
        targets.Entries().begin(), targets.Entries().end(),
        [&](const LegacyTargetEntry& entry) { return properties::Names(target, entry); });
    if (found == targets.Entries().end() || found->loopId == kNoLoopId) {
        return HXMGT_INVALID_PARAMETER;
    }
    loopId = found->loopId;
    return HXMGT_SUCCESS;
}

// Whatever is no other SCSI status counts as a check condition.
HX_STATUS LegacyStatus(uint8_t scsiStatus) {
    const HX_STATUS status =
        transport::RuleOf(transport::DriverStatus::ScsiStatus, scsiStatus).status;
    return status == HXMGT_UNKNOWN_ERROR ? HXMGT_SCSI_CHECK_CONDITION : status;
}

HX_STATUS SendLegacy(uint32_t handle, const ScsiCall& call) {
    if (call.cdbLength > kLegacyCdbRoom) {
        return HXMGT_INVALID_PARAMETER;
    }
    uint16_t loopId = 0;
    if (const HX_STATUS status = FindLoopId(handle, call.target, loopId); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::unique_ptr<LegacyScsiRequest> request(new (std::nothrow) LegacyScsiRequest{});
    if (request == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    request->loopId = loopId;
    request->lun = static_cast<uint8_t>(call.target.lun);
    request->constantFf = 0xFF;
    request->flags = call.SendsData() ? kLegacyFlagsOut : kLegacyFlagsIn;
    request->cdbLength = call.cdbLength;
    std::memcpy(request->cdb, call.cdb, call.cdbLength);
    if (call.SendsData()) {
        std::memcpy(request->data, call.dataOut, std::min(call.dataOutLength, kLegacyDataRoom));
    }
    if (const HX_STATUS status =
            transport::SendPlain(handle, transport::command::LegacyScsiPassThrough, request.get(),
                                 sizeof *request, request.get(), sizeof *request);
        status != HXMGT_SUCCESS) {
        VX_TRACE(handle, "SendMiniPortControl() failed with status 0x%x\n", status);
        return status;
    }
    const HX_STATUS result = LegacyStatus(request->scsiStatus);
    if (result == HXMGT_SUCCESS && call.TakesData()) {
        std::memcpy(call.dataIn, request->data, std::min(call.dataInLength, kLegacyDataRoom));
    }
    if (result == HXMGT_SCSI_CHECK_CONDITION && call.TakesSense() &&
        call.senseLength >= sizeof(FixedSense)) {
        // The response code stays as the caller had it: intended.
        FixedSense& sense = *reinterpret_cast<FixedSense*>(call.sense);
        sense.key = request->senseKey;
        sense.additionalLength = 6;
        sense.code = request->additionalSense[0];
        sense.qualifier = request->additionalSense[1];
    }
    VX_TRACE(handle, "HXSendScsiPassThru(Old) returned 0x%x\n", result);
    return result;
}

constexpr uint16_t kProbedLuns = 8;

bool LunAnswers(uint32_t handle, const HX_SCSI_ADDRESS& target, uint16_t lun) {
    HX_SCSI_ADDRESS address = target;
    address.lun = lun;
    uint8_t data[256] = {};
    return Inquiry(handle, &address, data, sizeof data, nullptr, 0) == HXMGT_SUCCESS &&
           data[0] != kNoDevice;
}

// Makes a LUN list by asking each of the first LUNs, for targets that refuse REPORT LUNS.
HX_STATUS ProbeLuns(uint32_t handle, const HX_SCSI_ADDRESS& target, uint8_t* list,
                    uint32_t listLength, HX_STATUS reportLunsStatus) {
    uint32_t counted = 0;
    uint32_t written = 0;
    for (uint16_t lun = 0; lun < kProbedLuns; ++lun) {
        if (!LunAnswers(handle, target, lun)) {
            continue;
        }
        ++counted;
        const uint32_t position = sizeof(LunListHead) + written * sizeof(LunAddress);
        if (position + sizeof(LunAddress) <= listLength) {
            const LunAddress entry{{0, static_cast<uint8_t>(lun)}, {}};
            std::memcpy(list + position, &entry, sizeof entry);
            ++written;
        }
    }
    if (counted == 0) {
        return reportLunsStatus;
    }
    if (listLength >= sizeof LunListHead::length) {
        uint8_t length[4];
        PutBigEndian(written * sizeof(LunAddress), length);
        std::memcpy(list, length, sizeof length);
    }
    return written < counted ? HXMGT_BUFFER_TOO_SMALL : HXMGT_BUILT_BY_API;
}

}  // namespace

HX_STATUS SendScsi(uint32_t handle, const HX_SCSI_ADDRESS* target, const uint8_t* cdb,
                   uint32_t cdbLength, const void* dataOut, uint32_t dataOutLength, void* dataIn,
                   uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (target == nullptr || cdb == nullptr || cdbLength == 0 || cdbLength > kLongestCdb) {
        return HXMGT_INVALID_PARAMETER;
    }
    const ScsiCall call{*target, cdb,          cdbLength, dataOut,    dataOutLength,
                        dataIn,  dataInLength, sense,     senseLength};
    return properties::TakesExtendedRequests(handle) ? SendExtended(handle, call)
                                                     : SendLegacy(handle, call);
}

HX_STATUS Inquiry(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                  uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    const uint8_t cdb[6] = {
        kInquiry, 0, 0, 0, static_cast<uint8_t>(std::min<uint32_t>(dataInLength, 255)), 0};
    return SendScsi(handle, target, cdb, sizeof cdb, nullptr, 0, dataIn, dataInLength, sense,
                    senseLength);
}

HX_STATUS ReadCapacity(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                       uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    const uint8_t cdb[10] = {kReadCapacity10};
    return SendScsi(handle, target, cdb, sizeof cdb, nullptr, 0, dataIn, dataInLength, sense,
                    senseLength);
}

HX_STATUS ReportLuns(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                     uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    uint8_t allocation[4];
    PutBigEndian(dataInLength, allocation);
    uint8_t cdb[12] = {kReportLuns};
    std::memcpy(cdb + 6, allocation, sizeof allocation);
    const HX_STATUS status = SendScsi(handle, target, cdb, sizeof cdb, nullptr, 0, dataIn,
                                      dataInLength, sense, senseLength);
    if (status == HXMGT_SUCCESS || frame::OpenRecord(handle) == nullptr || target == nullptr) {
        return status;
    }
    const uint32_t room = dataIn != nullptr ? dataInLength : 0;
    return ProbeLuns(handle, *target, static_cast<uint8_t*>(dataIn), room, status);
}

}  // namespace passthru
