#include "persist/target_requests.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/handle_table.h"
#include "persist/driver_records.h"
#include "persist/persist.h"
#include "properties/generation.h"
#include "transport/requests.h"

namespace persist {
namespace {

constexpr uint32_t kOwnTargetRequestsVersion = 80100;

enum class Generation { Legacy, Middle, Current };

Generation GenerationOf(const HXMGT_API_HANDLE& driver) {
    if (!properties::TakesExtendedRequests(driver)) {
        return Generation::Legacy;
    }
    return driver.dwDriverVersion < kOwnTargetRequestsVersion ? Generation::Middle
                                                              : Generation::Current;
}

// Of bus and target only the low byte travels, to drivers of every generation.
properties::PortDatabaseEntry PayloadOf(const HX_DEVICE_RECORD& device) {
    properties::PortDatabaseEntry payload{};
    std::memcpy(payload.nodeName, device.nodeName, sizeof payload.nodeName);
    std::memcpy(payload.portName, device.portName, sizeof payload.portName);
    std::memcpy(payload.portId, device.portId, sizeof payload.portId);
    payload.bindingFlags = device.bindingFlags;
    payload.bus = static_cast<uint8_t>(device.bus);
    payload.target = static_cast<uint8_t>(device.target);
    payload.roleAndState = device.roleAndState;
    payload.targetNumber = device.targetNumber;
    payload.portFlags = device.portFlags;
    return payload;
}

LegacyDevice LegacyPayloadOf(const HX_DEVICE_RECORD& device) {
    LegacyDevice payload{};
    payload.targetNumber = device.targetNumber;
    payload.bus = static_cast<uint8_t>(device.bus);
    payload.target = static_cast<uint8_t>(device.target);
    payload.roleAndState = device.roleAndState;
    payload.bindingFlags = device.bindingFlags;
    payload.portFlags = device.portFlags;
    std::memcpy(payload.portId, device.portId, sizeof payload.portId);
    std::memcpy(payload.nodeName, device.nodeName, sizeof payload.nodeName);
    std::memcpy(payload.portName, device.portName, sizeof payload.portName);
    return payload;
}

}  // namespace

HX_STATUS SendTargetAndMask(uint32_t handle, uint32_t code, const HX_TARGET_ENTRY& entry,
                            std::span<const uint8_t> mask) {
    TargetAndMaskRequest request{};
    request.entry = entry;
    std::memcpy(request.nodeName, entry.nodeName, sizeof request.nodeName);
    std::memcpy(request.portName, entry.portName, sizeof request.portName);
    std::copy_n(mask.begin(), std::min(mask.size(), sizeof request.visible), request.visible);
    return transport::SendPlain(handle, code, &request, sizeof request, nullptr, 0);
}

HX_STATUS AddTarget(uint32_t handle, const HX_DEVICE_RECORD* device) {
    HXMGT_API_HANDLE driver;
    if (const HX_STATUS status = properties::CheckQuery(handle, device, driver);
        status != HXMGT_SUCCESS) {
        return status;
    }
    switch (GenerationOf(driver)) {
        case Generation::Legacy:
            return SendTargetAndMask(handle, transport::command::LegacyAddTarget,
                                     std::bit_cast<HX_TARGET_ENTRY>(LegacyPayloadOf(*device)), {});
        case Generation::Middle:
            return transport::Tell(handle, transport::command::AddTargetOld, PayloadOf(*device));
        default:
            return transport::Tell(handle, transport::command::AddTarget, PayloadOf(*device));
    }
}

HX_STATUS SwapTargets(uint32_t handle, const HX_DEVICE_RECORD* oldDevice,
                      const HX_DEVICE_RECORD* newDevice) {
    HXMGT_API_HANDLE driver;
    if (const HX_STATUS status = properties::CheckQuery(handle, oldDevice, driver);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (newDevice == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    const Generation generation = GenerationOf(driver);
    if (generation == Generation::Legacy) {
        const LegacySwapRequest request{
            {}, LegacyPayloadOf(*oldDevice), LegacyPayloadOf(*newDevice)};
        return transport::SendPlain(handle, transport::command::LegacySwapTargets, &request,
                                    sizeof request, nullptr, 0);
    }
    const SwapRequest request{PayloadOf(*oldDevice), PayloadOf(*newDevice)};
    return transport::Tell(handle,
                           generation == Generation::Middle ? transport::command::SwapTargetsOld
                                                            : transport::command::SwapTargets,
                           request);
}

}  // namespace persist
