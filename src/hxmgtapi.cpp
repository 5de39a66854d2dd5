// The exported entry points of the management API: each forwards to its subsystem.
#include "hxmgtapi.h"

#include <cstdarg>

#include "events/events.h"
#include "frame/discovery.h"
#include "frame/driver_parameters.h"
#include "frame/error_strings.h"
#include "frame/handle_table.h"
#include "frame/names.h"
#include "frame/trace.h"
#include "properties/properties.h"
#include "transport/requests.h"

HX_STATUS HXOpenDevice(uint32_t adapterIndex, uint32_t* outHandle) {
    return frame::OpenDevice(adapterIndex, outHandle);
}

HX_STATUS HXCloseDevice(int32_t handle) {
    return frame::CloseDevice(static_cast<uint32_t>(handle));
}

HXMGT_API_HANDLE* HXGetGlobalDevice() {
    return frame::FirstRecord();
}

uint32_t HXGetVersion(char* buffer, uint32_t length) {
    return frame::GetVersion(buffer, length);
}

HX_STATUS HXGetDeviceNumber(const char* name, void* out, uint32_t outLength) {
    return frame::GetDeviceNumber(name, out, outLength);
}

HX_STATUS HXRemoveDevice(uint32_t, const uint8_t* portName, const char* driverSuffix,
                         int32_t confirm) {
    return frame::RemoveDevice(portName, driverSuffix, confirm);
}

const char* IsKorvexAdapter(uint32_t port, uint32_t) {
    return frame::FamilyDriverName(port);
}

uint8_t GetDriverType(uint32_t handle) {
    return frame::GetDriverType(handle);
}

const char* HXGetErrorString(HX_STATUS status) {
    return frame::GetErrorString(status);
}

HX_STATUS HXVerifyHbaState(uint32_t handle) {
    return properties::VerifyHbaState(handle);
}

HX_STATUS VXUpdateAdapterModelInBios(uint32_t handle, uint8_t* record) {
    return properties::UpdateAdapterModelInBios(handle, record);
}

HX_STATUS HXGetDriverParameter(uint32_t handle, const char* name, char* value, uint32_t valueSize) {
    return frame::GetDriverParameter(handle, name, value, valueSize);
}

HX_STATUS HXSetDriverParameter(uint32_t handle, const char* name, const char* value) {
    return frame::SetDriverParameter(handle, name, value);
}

HX_STATUS HXEnableDebugTrace(const uint32_t* handle, const char* path, uint32_t level) {
    return frame::EnableDebugTrace(handle, path, level);
}

int HXfprintf(const char* sourceFile, uint32_t line, FILE* stream, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int written = frame::TraceLineV(sourceFile, line, stream, format, arguments);
    va_end(arguments);
    return written;
}

HX_STATUS SRBWithHeaderDeviceIoControl(uint32_t handle, uint32_t code, uint16_t subCode,
                                       const void* input, uint32_t inputLength, void* output,
                                       uint32_t outputLength, uint32_t* returned) {
    return transport::SendExtended(handle, code, subCode, input, inputLength, output, outputLength,
                                   returned);
}

HX_STATUS SendMiniPortControl(int32_t handle, uint32_t code, const void* input,
                              uint32_t inputLength, void* output, uint32_t outputLength) {
    return transport::SendPlain(static_cast<uint32_t>(handle), code, input, inputLength, output,
                                outputLength);
}

HX_STATUS HXGetHbaDeviceNodeProperty(uint32_t handle, HX_NODE_PROPERTY* record) {
    return properties::GetNodeProperty(handle, record);
}

HX_STATUS HXGetHbaDeviceNodePropertyResync(uint32_t handle, HX_NODE_PROPERTY* record) {
    return properties::GetNodePropertyResync(handle, record);
}

HX_STATUS HXGetHbaDevicePortProperty(uint32_t handle, uint64_t, HX_PORT_PROPERTY* record) {
    return properties::GetPortProperty(handle, record);
}

HX_STATUS HXGetHbaDevicePortPropertyV1(uint32_t handle, uint16_t, HX_PORT_PROPERTY* record) {
    return properties::GetPortPropertyV1(handle, record);
}

HX_STATUS HXGetHbaDevicePortPropertyV2(uint32_t handle, uint64_t, HX_PORT_PROPERTY* record) {
    return properties::GetPortPropertyV2(handle, record);
}

HX_STATUS HXGetHbaDeviceChipProperty(uint32_t handle, HX_CHIP_PROPERTY* record) {
    return properties::GetChipProperty(handle, record);
}

HX_STATUS HXGetHbaDeviceDriverProperty(uint32_t handle, HX_DRIVER_PROPERTY* record) {
    return properties::GetDriverProperty(handle, record);
}

HX_STATUS HXGetHbaDeviceFirmwareProperty(uint32_t handle, HX_FIRMWARE_PROPERTY* record) {
    return properties::GetFirmwareProperty(handle, record);
}

HX_STATUS HXGetHbaPortDisableInfo(uint32_t handle) {
    return properties::GetPortDisableInfo(handle);
}

HX_STATUS HXGetSmartSANStatusFC(uint32_t, uint8_t* enabled) {
    return properties::GetSmartSanStatus(enabled);
}

HX_STATUS HXEnableSmartSANFC(uint32_t handle) {
    return properties::EnableSmartSan(handle);
}

HX_STATUS HXDisableSmartSANFC(uint32_t handle) {
    return properties::DisableSmartSan(handle);
}

HX_STATUS HXEnableAen(uint32_t handle) {
    return events::EnableAen(handle);
}

HX_STATUS HXDisableAen(uint32_t handle) {
    return events::DisableAen(handle);
}

HX_STATUS HXGetAen(uint32_t handle, uint8_t* buffer, uint32_t bufferBytes, uint32_t* count) {
    return events::GetAen(handle, buffer, bufferBytes, count);
}

HX_STATUS HXForceZetaAEN(int32_t handle) {
    return events::ForceEvent(static_cast<uint32_t>(handle));
}
