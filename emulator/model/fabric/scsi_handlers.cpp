// SCSI pass-through, both driver generations.
#include <cstring>

#include "model/fabric/scsi_task.h"
#include "model/handlers.h"
#include "model/statistics.h"
#include "passthru/scsi_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;

// What the data phase of a command has moved.
ScsiTraffic TrafficOf(const ScsiTask& task) {
    return {task.dataOutLength != 0, task.status != ScsiStatus::Good ? 0
                                     : task.dataOutLength != 0       ? task.dataOutLength
                                                                     : task.returned};
}

DriverStatus ScsiPassThrough(Exchange& exchange) {
    using passthru::ScsiDirection;
    using passthru::ScsiRequest;
    // Worked on where it lies: data in and sense data go back in it.
    auto& request = *reinterpret_cast<ScsiRequest*>(exchange.Bytes());
    const uint32_t input = exchange.InputLength();
    const uint32_t room = exchange.Room();
    if (input < sizeof request || room < sizeof request || request.cdbLength > sizeof request.cdb ||
        request.cdbLength == 0 || request.direction > static_cast<uint8_t>(ScsiDirection::Out)) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    const TargetProfile* target = FindDevice(
        port, static_cast<passthru::DriverAddress>(request.addressType), request.address);
    if (target == nullptr || !IsTarget(*target)) {
        return DriverStatus::DeviceNotFound;
    }
    uint8_t* data = exchange.Bytes() + sizeof request;
    ScsiTask task = {};
    task.port = &port;
    task.target = target;
    std::memcpy(task.cdb, request.cdb,
                request.cdbLength < kLongestCdb ? request.cdbLength : kLongestCdb);
    if (request.direction == static_cast<uint8_t>(ScsiDirection::Out)) {
        task.dataOut = data;
        task.dataOutLength = input - static_cast<uint32_t>(sizeof request);
    } else if (request.direction == static_cast<uint8_t>(ScsiDirection::In)) {
        task.dataIn = data;
        task.dataInRoom = room - static_cast<uint32_t>(sizeof request);
    }
    RunScsi(task, request.lun);
    CountScsi(port, *target, TrafficOf(task));

    std::memset(request.sense, 0, sizeof request.sense);
    exchange.KeepReply(static_cast<uint32_t>(sizeof request) + task.returned);
    if (task.status != ScsiStatus::Good) {
        const SenseData sense = SenseDataOf(task.sense);
        std::memcpy(request.sense, &sense, sizeof sense);
        exchange.SetDetail(static_cast<uint32_t>(task.status));
        return DriverStatus::ScsiStatus;
    }
    return task.overrun ? DriverStatus::DataOverrun : DriverStatus::Success;
}

bool LegacyScsiPassThrough(Exchange& exchange) {
    using passthru::LegacyScsiRequest;
    auto& request = *reinterpret_cast<LegacyScsiRequest*>(exchange.Bytes());
    if (exchange.InputLength() < sizeof request || exchange.Room() < sizeof request ||
        request.cdbLength == 0 || request.cdbLength > sizeof request.cdb) {
        return false;
    }
    Port& port = exchange.GetPort();
    const TargetProfile* target = FindByLoopId(port, request.loopId);
    if (target == nullptr || !IsTarget(*target)) {
        return false;
    }
    ScsiTask task = {};
    task.port = &port;
    task.target = target;
    std::memcpy(task.cdb, request.cdb, request.cdbLength);
    const bool out = request.flags == passthru::kLegacyFlagsOut;
    task.dataOut = request.data;
    task.dataOutLength = out ? sizeof request.data : 0;
    task.dataIn = request.data;
    task.dataInRoom = out ? 0 : sizeof request.data;
    RunScsi(task, request.lun);
    CountScsi(port, *target, TrafficOf(task));
    if (task.overrun) {
        return false;
    }
    request.scsiStatus = static_cast<uint8_t>(task.status);
    request.senseKey = task.sense.key;
    request.additionalSense[0] = task.sense.code;
    request.additionalSense[1] = task.sense.qualifier;
    exchange.KeepReply(sizeof request);
    return true;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::ScsiPassThrough, .handle = ScsiPassThrough},
};

constexpr PlainRow kPlainRequests[] = {
    {.code = command::LegacyScsiPassThrough, .handle = LegacyScsiPassThrough},
};

}  // namespace

RequestRows ScsiRequests() {
    return {.extended = kRequests, .plain = kPlainRequests};
}

}  // namespace vxemu
