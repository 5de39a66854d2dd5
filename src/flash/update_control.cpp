// Queries and commands around an update: capabilities, active regions, activation.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "flash/adapter_serial.h"
#include "flash/firmware_version.h"
#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/restart.h"
#include "properties/chip_families.h"
#include "properties/generation.h"
#include "transport/requests.h"

namespace flash {
namespace {

constexpr uint64_t kActivatesOnline = 4;  // the one capability
constexpr uint32_t kFirstOnlineFirmware[] = {9, 1, 16, 20};

HX_STATUS CheckSecureFlash(uint32_t handle) {
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return properties::ChipOf(chip.deviceId).Has(properties::ChipTrait::SecureFlash)
               ? HXMGT_SUCCESS
               : HXMGT_NOT_SUPPORTED;
}

}  // namespace

HX_STATUS GetCapabilities(uint32_t handle, uint64_t* capabilities) {
    if (const HX_STATUS status = properties::CheckQuery(handle, capabilities);
        status != HXMGT_SUCCESS) {
        return status;
    }
    *capabilities = 0;
    if (const HX_STATUS status = CheckSecureFlash(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    HX_NODE_PROPERTY node{};
    if (properties::GetNodeProperty(handle, &node) != HXMGT_SUCCESS ||
        !IsAtLeast(properties::TextOf(node.firmwareVersion), kFirstOnlineFirmware)) {
        return HXMGT_NOT_SUPPORTED;
    }
    *capabilities = kActivatesOnline;
    if (HXMGT_API_HANDLE* const record = frame::OpenRecord(handle)) {
        record->qwFlashUpdateCapabilities = kActivatesOnline;
    }
    return HXMGT_SUCCESS;
}

HX_STATUS GetActiveRegions(uint32_t handle, uint8_t* regions) {
    if (const HX_STATUS status = properties::CheckQuery(handle, regions); status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = CheckSecureFlash(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    // The state is asked twice in a row: intended.
    const HX_STATUS first = properties::GetPortDisableInfo(handle);
    const HX_STATUS second = properties::GetPortDisableInfo(handle);
    if (first == HXMGT_PORT_DISABLED || second == HXMGT_PORT_DISABLED) {
        return HXMGT_PORT_DISABLED;
    }
    ActiveRegionsRecord request;
    std::fill(std::begin(request.bytes), std::end(request.bytes), kActiveRegionsFill);
    ActiveRegionsRecord reply{};
    const HX_STATUS status =
        transport::Exchange(handle, transport::command::ActiveRegions, request, reply);
    std::memcpy(regions, reply.bytes, kActiveRegionsReturned);
    return status;
}

HX_STATUS GetLockdownState(uint32_t handle, uint8_t* state) {
    if (const HX_STATUS status = properties::CheckQuery(handle, state); status != HXMGT_SUCCESS) {
        return status;
    }
    const LockdownRecord request{};
    LockdownRecord reply{};
    const HX_STATUS status =
        transport::Exchange(handle, transport::command::LockdownState, request, reply);
    if (status != HXMGT_SUCCESS && status != HXMGT_FIRMWARE_LOCKDOWN) {
        return HXMGT_NOT_SUPPORTED;
    }
    std::memcpy(state, reply.bytes, sizeof reply.bytes);
    return status;
}

HX_STATUS NoteActivation(uint32_t handle, uint64_t firmwareAttributes, uint32_t timeoutSeconds) {
    if (HXMGT_API_HANDLE* const record = frame::AnyRecord(handle)) {
        record->dwActivationTimeout = timeoutSeconds;
        record->qwExpectedFirmwareAttributes = firmwareAttributes;
    }
    return HXMGT_SUCCESS;
}

HX_STATUS RestartPort(uint32_t handle, Restart kind) {
    return transport::Tell(handle, transport::command::RestartFirmware, kind);
}

HX_STATUS ResetAdapterPorts(uint32_t handle) {
    return ForEachOpenPort(handle,
                           [](uint32_t port) { return RestartPort(port, Restart::Activate); });
}

HX_STATUS ActivateOnline(uint32_t handle) {
    HX_FIRMWARE_PROPERTY firmware{};
    if (const HX_STATUS status = properties::GetFirmwareProperty(handle, &firmware);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const HXMGT_API_HANDLE* const record = frame::OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (firmware.activationAttributes != record->qwExpectedFirmwareAttributes) {
        return HXMGT_FLASH_UPDATE_NOT_ACTIVATED;
    }
    return ForEachOpenPort(handle, [](uint32_t port) -> HX_STATUS {
        const uint32_t start = GetTickCount();
        RestartPort(port, Restart::Activate);  // its status does not count: intended
        const uint32_t seconds = (GetTickCount() - start) / 1000;
        const HXMGT_API_HANDLE* const device = frame::OpenRecord(port);
        const uint32_t allowed = device != nullptr ? device->dwActivationTimeout : 0;
        return allowed != 0 && seconds > allowed ? HXMGT_ACTIVATION_TIMED_OUT : HXMGT_SUCCESS;
    });
}

HX_STATUS ReloadNvram(uint32_t handle) {
    return RestartPort(handle, Restart::ReloadNvram);
}

}  // namespace flash
