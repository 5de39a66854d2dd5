// Flash of an adapter: update lock and activation, option ROM, NVRAM, VPD, transceiver, firmware of
// auxiliary chips.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace flash {

HX_STATUS StartUpdate(uint32_t handle, uint32_t* lockKey);
HX_STATUS EndUpdate(uint32_t handle, uint32_t lockKey);
HX_STATUS GetCapabilities(uint32_t handle, uint64_t* capabilities);
HX_STATUS GetActiveRegions(uint32_t handle, uint8_t* regions);
HX_STATUS GetLockdownState(uint32_t handle, uint8_t* state);
HX_STATUS NoteActivation(uint32_t handle, uint64_t firmwareAttributes, uint32_t timeoutSeconds);
HX_STATUS ActivateOnline(uint32_t handle);
HX_STATUS ReloadNvram(uint32_t handle);

HX_STATUS GetLayout(uint32_t handle, HX_FLASH_LAYOUT* layout);
HX_STATUS GetLayoutEx(uint32_t handle, HX_FLASH_LAYOUT_EX* layout);
HX_STATUS GetOptionRom(uint32_t handle, void* buffer, uint32_t bufferSize);
HX_STATUS GetRegion(uint32_t handle, void* buffer, uint32_t bufferSize, uint32_t regionCode);
HX_STATUS GetAtOffset(uint32_t handle, void* buffer, uint32_t length, uint32_t flashOffset);
HX_STATUS UpdateOptionRom(uint32_t handle, void* image, uint32_t imageSize);
HX_STATUS UpdateRegion(uint32_t handle, void* image, uint32_t imageSize, uint32_t regionCode);
HX_STATUS UpdateRegionOfLayout(uint32_t handle, const void* image, uint32_t imageSize,
                               uint32_t regionCode);
HX_STATUS UpdateSecureRegion(uint32_t handle, const void* image, uint32_t imageSize,
                             uint32_t regionCode);
HX_STATUS UpdateAtOffset(uint32_t handle, const void* data, uint32_t length, uint32_t flashOffset);

HX_STATUS GetNvram(uint32_t handle, uint32_t mode, void* buffer, uint32_t size);
HX_STATUS UpdateNvram(uint32_t handle, uint32_t mode, void* buffer, uint32_t size);
HX_STATUS VerifyNvram(uint32_t handle);
uint32_t GetVariable(uint32_t handle, const void* block, uint32_t variable);
uint32_t SetVariable(uint32_t handle, void* block, uint32_t variable, uint32_t value);
HX_STATUS GetVariableFields(uint32_t handle, HX_VARIABLE_FIELD* fields, uint32_t* count);
const char* DescribeVariable(uint32_t variable);
bool IsReadOnlyVariable(const void* block, uint32_t variable);
bool WriteNvramFile(const void* block, const char* path);
bool ReadNvramFile(const char* path, void* block, uint32_t mode, bool keep);

HX_STATUS GetVpd(uint32_t handle, void* buffer, uint32_t* size);
HX_STATUS UpdateVpd(uint32_t handle, const void* buffer, uint32_t size);

HX_STATUS ReadTwoWire(uint32_t handle, uint16_t device, void* buffer, uint16_t length,
                      uint16_t offset, uint16_t options, uint16_t* deviceStatus);
HX_STATUS WriteTwoWire(uint32_t handle, uint16_t device, const void* data, uint16_t length,
                       uint16_t offset, uint16_t options, uint16_t* deviceStatus);
HX_STATUS ReadTransceiver(uint32_t handle, void* buffer, uint32_t* size);
HX_STATUS LoadTransceiverFirmware(uint32_t handle, const void* image, uint32_t imageSize);
HX_STATUS GetBootFromSan(uint32_t handle);
HX_STATUS ManageCompanion(uint32_t handle, uint32_t operation, void* request);

}  // namespace flash
