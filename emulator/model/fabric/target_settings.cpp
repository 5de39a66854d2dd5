// The rate at which frames go to a target, and the priorities of its LUNs: what is set holds for
// this port and target until the driver stops.
#include "model/fabric/link_speed.h"

#include <algorithm>
#include <iterator>

#include "model/handlers.h"
#include "model/port_settings.h"
#include "statistics/fabric_records.h"

namespace vxemu {
namespace {

using statistics::LinkSpeedRequest;
using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

TargetProfile* NamedDevice(const Port& port, const properties::AddressBlock& block) {
    return FindDevice(port, static_cast<properties::DriverAddress>(block.driverType),
                      block.address);
}

void ReplySpeed(Exchange& exchange, LinkSpeedRequest& record, const TargetProfile& device) {
    const Port& port = exchange.GetPort();
    record.record.speed = SpeedTo(port, device);
    record.record.portSpeed = port.profile->currentSpeed;
    record.record.highest = device.highestSpeed;
    record.record.flags = PeerOf(port, device).speed != HX_SPEED_UNKNOWN ? HX_LINK_SPEED_SET : 0;
    exchange.Reply(record);
}

DriverStatus TargetLinkSpeed(Exchange& exchange) {
    LinkSpeedRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const TargetProfile* device = NamedDevice(exchange.GetPort(), request.target);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    ReplySpeed(exchange, request, *device);
    return DriverStatus::Success;
}

DriverStatus SetTargetLinkSpeed(Exchange& exchange) {
    LinkSpeedRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    const TargetProfile* device = NamedDevice(port, request.target);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    const uint16_t speed = request.record.speed;
    if (speed != HX_SPEED_UNKNOWN &&
        (GigabitsOf(speed) == 0 || GigabitsOf(speed) > GigabitsOf(port.profile->currentSpeed))) {
        return DriverStatus::InvalidParameter;
    }
    PeerOf(port, *device).speed = speed;
    ReplySpeed(exchange, request, *device);
    return DriverStatus::Success;
}

bool KnowsPriorities(const Port& port) {
    return ChipOf(port).Has(properties::ChipTrait::Newest);
}

DriverStatus LunQos(Exchange& exchange) {
    properties::AddressBlock block;
    const Port& port = exchange.GetPort();
    if (!KnowsPriorities(port)) {
        return DriverStatus::UnsupportedSubCode;
    }
    if (!exchange.Read(block)) {
        return DriverStatus::InvalidParameter;
    }
    const TargetProfile* device = NamedDevice(port, block);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    exchange.Reply(PeerOf(port, *device).levels);
    return DriverStatus::Success;
}

DriverStatus SetLunQos(Exchange& exchange) {
    statistics::SetQosRequest request;
    const Port& port = exchange.GetPort();
    if (!KnowsPriorities(port)) {
        return DriverStatus::UnsupportedSubCode;
    }
    const auto isLevel = [](uint8_t level) { return level <= HX_QOS_HIGH; };
    if (!exchange.Read(request) ||
        !std::all_of(std::begin(request.qos.levels), std::end(request.qos.levels), isLevel)) {
        return DriverStatus::InvalidParameter;
    }
    const TargetProfile* device = NamedDevice(port, request.target);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    std::memcpy(PeerOf(port, *device).levels, request.qos.levels, sizeof request.qos.levels);
    exchange.Reply(request.qos);
    return DriverStatus::Success;
}

DriverStatus LunQosEnable(Exchange& exchange) {
    uint8_t request;
    const Port& port = exchange.GetPort();
    if (!KnowsPriorities(port)) {
        return DriverStatus::UnsupportedSubCode;
    }
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    exchange.Reply(port.profile->qosEnabled);
    return DriverStatus::Success;
}

constexpr ExtendedRow kTargetSettingRequests[] = {
    {.command = command::TargetLinkSpeed, .handle = TargetLinkSpeed, .flags = WithinPort},
    {.command = command::SetTargetLinkSpeed, .handle = SetTargetLinkSpeed, .flags = WithinPort},
    {.command = command::LunQos, .handle = LunQos, .flags = WithinPort},
    {.command = command::SetLunQos, .handle = SetLunQos, .flags = WithinPort},
    {.command = command::LunQosEnable, .handle = LunQosEnable, .flags = WithinPort},
};

}  // namespace

RequestRows TargetSettingRequests() {
    return {.extended = kTargetSettingRequests};
}

}  // namespace vxemu
