// The exported entry points of the management API: each forwards to its subsystem.
#include "hxmgtapi.h"

#include <cstdarg>

#include "dumps/dumps.h"
#include "events/events.h"
#include "flash/flash.h"
#include "flash/transfer_progress.h"
#include "frame/discovery.h"
#include "frame/driver_parameters.h"
#include "frame/error_strings.h"
#include "frame/handle_table.h"
#include "frame/names.h"
#include "frame/trace.h"
#include "hbaapi/handlers.h"
#include "mapping/mapping.h"
#include "passthru/passthru.h"
#include "persist/persist.h"
#include "properties/port_database.h"
#include "properties/properties.h"
#include "statistics/fabric.h"
#include "statistics/health.h"
#include "statistics/statistics.h"
#include "transport/requests.h"

HX_STATUS HXOpenDevice(uint32_t adapterIndex, uint32_t* outHandle) {
    return frame::OpenDevice(adapterIndex, outHandle);
}

HX_STATUS HXListScsiPorts(HX_SCSI_PORT* ports, uint32_t* count) {
    return frame::ListScsiPorts(ports, count);
}

HX_STATUS HXOpenScsiPort(uint32_t scsiPort, uint32_t* outHandle) {
    return frame::OpenScsiPort(scsiPort, outHandle);
}

HX_STATUS HXCloseDevice(int32_t handle) {
    flash::ForgetProgress(static_cast<uint32_t>(handle));
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

HX_STATUS HXSendScsiPassThruFC(uint32_t handle, const HX_SCSI_ADDRESS* target, const uint8_t* cdb,
                               uint32_t cdbLength, const void* dataOut, uint32_t dataOutLength,
                               void* dataIn, uint32_t dataInLength, uint8_t* sense,
                               uint32_t senseLength) {
    return passthru::SendScsi(handle, target, cdb, cdbLength, dataOut, dataOutLength, dataIn,
                              dataInLength, sense, senseLength);
}

HX_STATUS HXSendScsiInquiryCmdFC(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                                 uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    return passthru::Inquiry(handle, target, dataIn, dataInLength, sense, senseLength);
}

HX_STATUS HXSendScsiReadCapacityCmdFC(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                                      uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    return passthru::ReadCapacity(handle, target, dataIn, dataInLength, sense, senseLength);
}

HX_STATUS HXSendScsiReportLunsCmdFC(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                                    uint32_t dataInLength, uint8_t* sense, uint32_t senseLength) {
    return passthru::ReportLuns(handle, target, dataIn, dataInLength, sense, senseLength);
}

// Older callers link against these; they do nothing.
HX_STATUS HXSendScsiPassThru() {
    return HXMGT_NOT_SUPPORTED;
}
HX_STATUS HXSendScsiInquiryCmd() {
    return HXMGT_NOT_SUPPORTED;
}
HX_STATUS HXSendScsiReadCapacityCmd() {
    return HXMGT_NOT_SUPPORTED;
}
HX_STATUS HXSendScsiReportLunsCmd() {
    return HXMGT_NOT_SUPPORTED;
}
HX_STATUS HXSendElsEcho() {
    return HXMGT_NOT_SUPPORTED;
}
HX_STATUS HXRunDportDiag() {
    return HXMGT_NOT_SUPPORTED;
}
HX_STATUS HXForceFcMctpDump() {
    return HXMGT_NOT_SUPPORTED;
}

HX_STATUS HXSendCTPassThru(uint32_t handle, const void* request, uint32_t requestSize,
                           void* response, uint32_t responseSize) {
    return passthru::SendCt(handle, request, requestSize, response, responseSize);
}

HX_STATUS HXSendElsPassThru(uint32_t handle, uint64_t, const HX_SCSI_ADDRESS* destination,
                            const void* payload, int32_t payloadSize, void* response,
                            const uint32_t* responseSize, uint8_t option) {
    return passthru::SendEls(handle, destination, payload, payloadSize, response, responseSize,
                             option);
}

HX_STATUS HXSendElsPassThruEx(uint32_t handle, uint64_t, const HX_SCSI_ADDRESS* destination,
                              const void* payload, int32_t payloadSize, void* response,
                              uint32_t* responseSize, uint8_t option) {
    return passthru::SendElsEx(handle, destination, payload, payloadSize, response, responseSize,
                               option);
}

HX_STATUS HXSendElsRnid(uint32_t handle, const HX_SCSI_ADDRESS* destination, uint8_t format,
                        uint8_t* response, uint32_t responseSize) {
    return passthru::SendRnid(handle, destination, format, response, responseSize);
}

HX_STATUS HXSendSCMMgmt(uint32_t handle, uint64_t, uint8_t* settings) {
    return passthru::ManageScm(handle, settings);
}

HX_STATUS HXRunDiagLoopback(uint32_t handle, uint64_t, uint16_t options, void* sendData,
                            uint16_t sendLength, void* receiveData, uint16_t receiveLength,
                            uint16_t iterations, HX_LOOPBACK_RESULT* result) {
    return passthru::RunLoopback(handle, options, sendData, sendLength, receiveData, receiveLength,
                                 iterations, result);
}

HX_STATUS HXRunDiagLoopbackEx(uint32_t handle, uint64_t, uint16_t options, const void* sendData,
                              uint32_t length, void* receiveData, uint32_t receiveLength,
                              uint32_t iterations, HX_LOOPBACK_EX_RESULT* result) {
    return passthru::RunLoopbackEx(handle, options, sendData, length, receiveData, receiveLength,
                                   iterations, result);
}

HX_STATUS HXRunDportDiagEx(uint32_t handle, uint64_t, HX_DPORT_RESULT* result) {
    return passthru::RunDportEx(handle, result);
}

HX_STATUS HXRunDportDiagEx2(uint32_t handle, uint64_t, HX_DPORT_RESULT_EX2* result) {
    return passthru::RunDportEx2(handle, result);
}

HX_STATUS HXMailboxPassthru(uint32_t handle, uint64_t, const uint16_t* inRegisters, int16_t inCount,
                            uint16_t* outRegisters, int16_t outCount) {
    return passthru::SendMailbox(handle, inRegisters, inCount, outRegisters, outCount);
}

HX_STATUS HXForceFwDump(uint32_t handle) {
    return dumps::ForceFirmwareDump(handle);
}

HX_STATUS HXGetFcDumpRaw(uint32_t handle, uint64_t, void* buffer) {
    return dumps::GetRawFirmwareDump(handle, buffer);
}

HX_STATUS HXGetMpiDumpRaw(uint32_t handle, uint64_t, void* buffer) {
    return dumps::GetRawMpiDump(handle, buffer);
}

HX_STATUS HXGetFcMctpDump(uint32_t handle, uint64_t, void* buffer, uint32_t* size) {
    return dumps::GetMctpDump(handle, buffer, size);
}

HX_STATUS HXGetMiniDump(uint32_t handle, uint64_t, void* buffer, uint32_t* size) {
    return dumps::GetMiniDump(handle, buffer, size);
}

HX_STATUS HXGetFcDump(uint32_t handle, uint16_t, const char* fileName) {
    return dumps::WriteFirmwareDumpText(handle, fileName);
}

HX_STATUS HXGetPortDatabase(uint32_t handle, uint32_t type, void* buffer, uint32_t size) {
    return properties::GetPortDatabase(handle, type, buffer, size);
}

HX_STATUS HXGetDiscPortProperty(uint32_t handle, uint32_t, uint32_t discoveredIndex, uint32_t,
                                HX_DISCOVERED_PORT* record) {
    return properties::GetDiscoveredPort(handle, discoveredIndex, record);
}

HX_STATUS HXGetDiscTargetProperty(uint32_t handle, uint32_t, uint32_t discoveredIndex, uint32_t,
                                  HX_DISCOVERED_TARGET* record) {
    return properties::GetDiscoveredTarget(handle, discoveredIndex, record);
}

HX_STATUS HXGetTargetData(uint32_t handle, uint16_t, HX_TARGET_DATA* block, uint16_t fromRegistry) {
    return persist::GetTargetData(handle, block, fromRegistry != 0);
}

HX_STATUS HXSetTargetData(uint32_t handle, uint16_t, HX_TARGET_DATA* block, uint16_t toRegistry) {
    return persist::SetTargetData(handle, block, toRegistry != 0);
}

HX_STATUS HXGetPersistentDeviceEntryList(HX_WWN_LIST* list) {
    return persist::GetDeviceList(list);
}

HX_STATUS HXGetPersistentTargetEntryList(HX_WWN_LIST* list) {
    return persist::GetTargetList(list);
}

HX_STATUS HXDeletePersistentDeviceEntry(const uint8_t* portName) {
    return persist::DeleteDeviceEntry(portName);
}

HX_STATUS HXDeletePersistentTargetEntry(const uint8_t* targetName) {
    return persist::DeleteTargetEntry(targetName);
}

HX_STATUS HXAddTargetDevice(uint32_t handle, const HX_DEVICE_RECORD* device) {
    return persist::AddTarget(handle, device);
}

HX_STATUS HXSwapTargetDevice(uint32_t handle, const HX_DEVICE_RECORD* oldDevice,
                             const HX_DEVICE_RECORD* newDevice) {
    return persist::SwapTargets(handle, oldDevice, newDevice);
}

HX_STATUS HXGetHbaTargetLunMask(uint32_t handle, uint64_t, const HX_BUS_TARGET_LUN* address,
                                uint32_t fromRegistry, uint8_t* mask, uint32_t maskSize) {
    return persist::GetLunMask(handle, address, fromRegistry != 0, mask, maskSize);
}

HX_STATUS HXGetHbaTargetLunMaskFC(uint32_t handle, uint64_t, const DESTINATIONADDRESS* address,
                                  uint32_t fromRegistry, uint8_t* mask, uint32_t maskSize) {
    return persist::GetLunMaskFc(handle, address, fromRegistry != 0, mask, maskSize);
}

HX_STATUS HXUpdateHbaTargetLunMask(uint32_t handle, uint64_t, const HX_BUS_TARGET_LUN* address,
                                   int32_t toRegistry, const uint8_t* mask, uint32_t maskSize) {
    return persist::UpdateLunMask(handle, address, toRegistry != 0, mask, maskSize);
}

HX_STATUS HXUpdateHbaTargetLunMaskFC(uint32_t handle, uint64_t, const DESTINATIONADDRESS* address,
                                     int32_t toRegistry, const uint8_t* mask, uint32_t maskSize) {
    return persist::UpdateLunMaskFc(handle, address, toRegistry != 0, mask, maskSize);
}

HX_STATUS HXGetLunData(uint32_t handle, uint16_t, HX_LUN_DATA* block, uint16_t fromRegistry) {
    return persist::GetLunData(handle, block, fromRegistry != 0);
}

HX_STATUS HXSetLunData(uint32_t handle, uint16_t, HX_LUN_DATA* block, uint16_t toRegistry) {
    return persist::SetLunData(handle, block, toRegistry != 0);
}

HX_STATUS IHXFoGetTargetData(uint32_t handle, uint64_t, uint64_t, HX_TARGET_DATA* block,
                             uint16_t fromRegistry) {
    return HXGetTargetData(handle, 0, block, fromRegistry);
}

HX_STATUS IHXFoSetTargetData(uint32_t handle, uint64_t, uint64_t, HX_TARGET_DATA* block,
                             uint16_t toRegistry) {
    return HXSetTargetData(handle, 0, block, toRegistry);
}

HX_STATUS IHXFoGetLunData(uint32_t handle, uint64_t, uint64_t, HX_LUN_DATA* block,
                          uint16_t fromRegistry) {
    return HXGetLunData(handle, 0, block, fromRegistry);
}

HX_STATUS IHXFoSetLunData(uint32_t handle, uint64_t, uint64_t, HX_LUN_DATA* block,
                          uint16_t toRegistry) {
    return HXSetLunData(handle, 0, block, toRegistry);
}

HX_STATUS IHXFoGetPersistentTargetEntryList(HX_WWN_LIST* list) {
    return HXGetPersistentTargetEntryList(list);
}

HX_STATUS IHXFoGetPersistentDeviceEntryList(HX_WWN_LIST* list) {
    return HXGetPersistentDeviceEntryList(list);
}

HX_STATUS IHXFoDeletePersistentTargetEntry(const uint8_t* targetName) {
    return HXDeletePersistentTargetEntry(targetName);
}

HX_STATUS IHXFoDeletePersistentDeviceEntry(const uint8_t* portName) {
    return HXDeletePersistentDeviceEntry(portName);
}

HX_STATUS HXStartFlashUpdate(uint32_t handle, uint64_t, uint32_t* lockKey) {
    return flash::StartUpdate(handle, lockKey);
}

HX_STATUS HXEndFlashUpdate(uint32_t handle, uint64_t, uint32_t lockKey) {
    return flash::EndUpdate(handle, lockKey);
}

HX_STATUS HXGetFlashUpdateCapabilities(uint32_t handle, uint64_t, uint64_t* capabilities) {
    return flash::GetCapabilities(handle, capabilities);
}

HX_STATUS HXGetActiveRegions(uint32_t handle, uint64_t, uint8_t* regions) {
    return flash::GetActiveRegions(handle, regions);
}

HX_STATUS HXGetAdapterLockdownState(uint32_t handle, uint64_t, uint8_t* state) {
    return flash::GetLockdownState(handle, state);
}

HX_STATUS HXSendFlashUpdateFWAttributes(uint32_t handle, uint64_t, uint64_t firmwareAttributes,
                                        uint32_t timeoutSeconds) {
    return flash::NoteActivation(handle, firmwareAttributes, timeoutSeconds);
}

HX_STATUS HXOnlineActivateFlashUpdate(uint32_t handle) {
    return flash::ActivateOnline(handle);
}

HX_STATUS HXReloadNvramAndInitFw(uint32_t handle) {
    return flash::ReloadNvram(handle);
}

HX_STATUS HXGetOptionRomLayout(uint32_t handle, uint64_t, HX_FLASH_LAYOUT* layout) {
    return flash::GetLayout(handle, layout);
}

HX_STATUS HXGetOptionRomLayoutEx(uint32_t handle, uint64_t, HX_FLASH_LAYOUT_EX* layout) {
    return flash::GetLayoutEx(handle, layout);
}

HX_STATUS HXGetOptionRom(uint32_t handle, uint64_t, void* buffer, uint32_t bufferSize) {
    return flash::GetOptionRom(handle, buffer, bufferSize);
}

HX_STATUS HXGetOptionRomEx(uint32_t handle, uint64_t, void* buffer, uint32_t bufferSize,
                           uint32_t regionCode) {
    return flash::GetRegion(handle, buffer, bufferSize, regionCode);
}

HX_STATUS HXGetOptionRomOffset(uint32_t handle, uint64_t, void* buffer, uint32_t length,
                               uint32_t flashOffset) {
    return flash::GetAtOffset(handle, buffer, length, flashOffset);
}

HX_STATUS HXUpdateOptionRomOffset(uint32_t handle, uint64_t, const void* data, uint32_t length,
                                  uint32_t flashOffset) {
    return flash::UpdateAtOffset(handle, data, length, flashOffset);
}

HX_STATUS HXUpdateOptionRom(uint32_t handle, uint64_t, void* image, uint32_t imageSize) {
    return flash::UpdateOptionRom(handle, image, imageSize);
}

HX_STATUS HXUpdateOptionRomEx(uint32_t handle, uint64_t, void* image, uint32_t imageSize,
                              uint32_t regionCode) {
    return flash::UpdateRegion(handle, image, imageSize, regionCode);
}

HX_STATUS HXUpdateOptionRomEx2(uint32_t handle, uint64_t, void* image, uint32_t imageSize,
                               uint32_t regionCode) {
    return flash::UpdateRegionOfLayout(handle, image, imageSize, regionCode);
}

HX_STATUS HXUpdateOptionRomEx3(uint32_t, uint64_t, void*, uint32_t, uint32_t) {
    return HXMGT_INVALID_REQUEST;
}

HX_STATUS HXUpdateSecureOptionRomEx(uint32_t handle, uint64_t, const void* image,
                                    uint32_t imageSize, uint32_t regionCode) {
    return flash::UpdateSecureRegion(handle, image, imageSize, regionCode);
}

HX_STATUS HXSetFlashProgress(uint32_t handle, HX_FLASH_PROGRESS progress, void* context) {
    return flash::SetProgress(handle, progress, context);
}

HX_STATUS HXGetNVRam(uint32_t handle, uint64_t, uint32_t mode, void* buffer, uint32_t size) {
    return flash::GetNvram(handle, mode, buffer, size);
}

HX_STATUS HXUpdateNVRam(uint32_t handle, uint64_t, uint32_t mode, void* buffer, uint32_t size) {
    return flash::UpdateNvram(handle, mode, buffer, size);
}

HX_STATUS HXVerifyHbaNVRam(uint32_t handle, uint64_t) {
    return flash::VerifyNvram(handle);
}

uint32_t HXGetVariableValue(uint32_t handle, const void* block, uint32_t variable) {
    return flash::GetVariable(handle, block, variable);
}

uint32_t HXSetVariableValue(uint32_t handle, void* block, uint32_t variable, uint32_t value) {
    return flash::SetVariable(handle, block, variable, value);
}

HX_STATUS HXGetVariableFields(uint32_t handle, HX_VARIABLE_FIELD* fields, uint32_t* count) {
    return flash::GetVariableFields(handle, fields, count);
}

const char* HXGetVariableDescription(uint32_t, uint32_t variable) {
    return flash::DescribeVariable(variable);
}

uint32_t HXIsVariableReadOnly(const void* block, uint32_t variable) {
    return flash::IsReadOnlyVariable(block, variable) ? 1 : 0;
}

int32_t WriteNVRamFile(const void* block, const char* path) {
    return flash::WriteNvramFile(block, path) ? 1 : 0;
}

int32_t ReadNVRamFile(const char* path, void* block, uint32_t mode, int32_t keepFlag) {
    return flash::ReadNvramFile(path, block, mode, keepFlag != 0) ? 1 : 0;
}

HX_STATUS HXGetVpd(uint32_t handle, uint64_t, void* buffer, uint32_t* size) {
    return flash::GetVpd(handle, buffer, size);
}

HX_STATUS HXUpdateVpd(uint32_t handle, uint64_t, void* buffer, uint32_t size) {
    return flash::UpdateVpd(handle, buffer, size);
}

HX_STATUS HXReadSFPData(uint32_t handle, uint64_t, uint16_t device, void* buffer, uint16_t length,
                        uint16_t offset, uint16_t options, uint16_t* deviceStatus) {
    return flash::ReadTwoWire(handle, device, buffer, length, offset, options, deviceStatus);
}

HX_STATUS HXWriteSFPData(uint32_t handle, uint64_t, uint16_t device, const void* data,
                         uint16_t length, uint16_t offset, uint16_t options,
                         uint16_t* deviceStatus) {
    return flash::WriteTwoWire(handle, device, data, length, offset, options, deviceStatus);
}

HX_STATUS HXGetSFPData(uint32_t handle, uint64_t, void* buffer, uint32_t* size) {
    return flash::ReadTransceiver(handle, buffer, size);
}

HX_STATUS HXLoadSFPFirmware(uint32_t handle, uint64_t, const void* image, uint32_t imageSize) {
    return flash::LoadTransceiverFirmware(handle, image, imageSize);
}

HX_STATUS HXGetBFSInfo(uint32_t handle) {
    return flash::GetBootFromSan(handle);
}

HX_STATUS HXOrvoMgt(uint32_t handle, uint32_t operation, void* request) {
    return flash::ManageCompanion(handle, operation, request);
}

// Statistics and management address.

HX_STATUS HXGetStatistics(uint32_t handle, uint32_t, HX_STATISTICS* record) {
    return statistics::GetStatistics(handle, record);
}

HX_STATUS HXResetStatistics(uint32_t handle) {
    return statistics::ResetStatistics(handle);
}

HX_STATUS HXGetMgmtAddress(uint32_t handle, void* record, uint32_t size) {
    return statistics::GetManagementAddress(handle, record, size);
}

HX_STATUS HXSetMgmtAddress(uint32_t handle, const HX_MGMT_ADDRESS_SETTING* record) {
    return statistics::SetManagementAddress(handle, record);
}

HX_STATUS HXGetPortStatisticsFC(uint32_t handle, const DESTINATIONADDRESS* destination,
                                HX_PORT_STATISTICS* record) {
    return statistics::GetPortStatistics(handle, destination, record);
}

HX_STATUS HXGetPortStatisticsFCV1(uint32_t handle, const DESTINATIONADDRESS* destination,
                                  HX_PORT_STATISTICS* record) {
    return statistics::GetPortStatisticsV1(handle, destination, record);
}

HX_STATUS HXGetPortStatisticsFCV2(uint32_t handle, const DESTINATIONADDRESS* destination,
                                  HX_PORT_STATISTICS_V2* record) {
    return statistics::GetPortStatisticsV2(handle, destination, record);
}

HX_STATUS HXGetPortSCMStatsFC(uint32_t handle, const DESTINATIONADDRESS* destination,
                              HX_PORT_SCM_STATISTICS* record) {
    return statistics::GetPortScmStatistics(handle, destination, record);
}

HX_STATUS HXGetSCMStatistics(uint32_t handle, HX_SCM_STATISTICS* record) {
    return statistics::GetScmStatistics(handle, record);
}

HX_STATUS HXGetPrivStats(uint32_t handle, HX_PRIVATE_STATISTICS* record) {
    return statistics::GetPrivateStatistics(handle, record);
}

HX_STATUS HXGetPrivStatsEx(uint32_t handle, HX_PRIVATE_STATISTICS_EX* record) {
    return statistics::GetPrivateStatisticsEx(handle, record);
}

HX_STATUS HXGetBBCRData(uint32_t handle, HX_BBCR_DATA* record) {
    return statistics::GetCreditRecovery(handle, record);
}

HX_STATUS HXGetBoardTemp(uint32_t handle, HX_BOARD_TEMPERATURE* record) {
    return statistics::GetBoardTemperature(handle, record);
}

HX_STATUS HXGetBeaconControl(uint32_t handle, HX_BEACON* beacon) {
    return statistics::GetBeacon(handle, beacon);
}

HX_STATUS HXUpdateBeaconControl(uint32_t handle, const HX_BEACON* beacon) {
    return statistics::SetBeacon(handle, beacon);
}

HX_STATUS HXGetFCSerDesRegister(uint32_t handle, uint16_t address, uint16_t* value) {
    return statistics::GetSerdesRegister(handle, address, value);
}

HX_STATUS HXSetFCSerDesRegister(uint32_t handle, uint16_t address, uint16_t value) {
    return statistics::SetSerdesRegister(handle, address, value);
}

HX_STATUS HXGetFCSerDesRegisterEx(uint32_t handle, uint16_t lane, uint32_t address,
                                  uint32_t* value) {
    return statistics::GetLaneRegister(handle, lane, address, value);
}

HX_STATUS HXSetFCSerDesRegisterEx(uint32_t handle, uint16_t lane, uint32_t address,
                                  uint32_t value) {
    return statistics::SetLaneRegister(handle, lane, address, value);
}

HX_STATUS HXReadSerdesParams(uint32_t handle, HX_SERDES_LANE* lanes, uint32_t* count) {
    return statistics::GetSerdesLanes(handle, lanes, count);
}

HX_STATUS HXGetQuarnI2CRegister(uint32_t handle, uint16_t device, uint16_t address,
                                uint16_t* value) {
    return statistics::GetI2cRegister(handle, device, address, value);
}

HX_STATUS HXSetQuarnI2CRegister(uint32_t handle, uint16_t device, uint16_t address,
                                uint16_t value) {
    return statistics::SetI2cRegister(handle, device, address, value);
}

HX_STATUS HXGetPositionalMap(uint32_t handle, HX_POSITIONAL_MAP* map) {
    return statistics::GetPositionalMap(handle, map);
}

HX_STATUS HXGetRemotePortInfo(uint32_t handle, HX_REMOTE_PORT* ports, uint32_t* count) {
    return statistics::GetRemotePorts(handle, ports, count);
}

HX_STATUS HXGetSecurePortInfo(uint32_t handle, HX_SECURE_PORT* ports, uint32_t* count) {
    return statistics::GetSecurePorts(handle, ports, count);
}

HX_STATUS HXGetTargetIDMALinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target,
                                   HX_TARGET_LINK_SPEED* record) {
    return statistics::GetTargetLinkSpeed(handle, target, record);
}

HX_STATUS HXSetTargetIDMALinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target,
                                   uint16_t speed) {
    return statistics::SetTargetLinkSpeed(handle, target, speed);
}

HX_STATUS HXGetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos) {
    return statistics::GetLunQos(handle, target, qos);
}

HX_STATUS HXGetLunQosEnable(uint32_t handle, uint8_t* enabled) {
    return statistics::GetLunQosEnable(handle, enabled);
}

HX_STATUS HXSetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos) {
    return statistics::SetLunQos(handle, target, qos);
}

HX_STATUS HXGetNPIVAttributes(uint32_t handle, HX_NPIV_ATTRIBUTES* attributes,
                              HX_VIRTUAL_PORT* ports, uint32_t* count) {
    return statistics::GetVirtualPorts(handle, attributes, ports, count);
}

HX_STATUS HXRGetNVMeInfo(uint32_t handle, HX_NVME_PORT* ports, uint32_t* count) {
    return statistics::GetNvmePorts(handle, ports, count);
}

HX_STATUS HXGetNVMeTargetInfo(uint32_t handle, const DESTINATIONADDRESS* target,
                              HX_NVME_TARGET* record) {
    return statistics::GetNvmeTarget(handle, target, record);
}

HX_STATUS HXGetNVMeNSInfo(uint32_t handle, const DESTINATIONADDRESS* target,
                          HX_NVME_NAMESPACE* namespaces, uint32_t* count) {
    return statistics::GetNvmeNamespaces(handle, target, namespaces, count);
}

// Operating system devices and volumes.

HX_STATUS HXMapScsiTargetToVolumes(uint32_t handle, const HX_SCSI_ADDRESS* target,
                                   HX_OS_DEVICE* device, HX_VOLUME* volumes, uint32_t* count) {
    return mapping::MapTargetToVolumes(handle, target, device, volumes, count);
}

HX_STATUS HXMapVolumeToScsiTarget(uint32_t handle, const char* volume, HX_OS_DEVICE* devices,
                                  uint32_t* count) {
    return mapping::MapVolumeToTargets(handle, volume, devices, count);
}

HX_STATUS HXGetDiskExtents(const char* volume, HX_DISK_EXTENT* extents, uint32_t* count) {
    return mapping::GetDiskExtents(volume, extents, count);
}

HX_STATUS HXListOsDevices(HX_OS_DEVICE* devices, uint32_t* count) {
    return mapping::ListOsDevices(devices, count);
}

HX_STATUS HXListDiskVolumes(HX_DISK_VOLUME* volumes, uint32_t* count) {
    return mapping::ListDiskVolumes(volumes, count);
}

// The standard API: everything but this is called through the table it fills.

HBA_STATUS HBA_RegisterLibrary(HBA_ENTRYPOINTS* entryPoints) {
    return hbaapi::RegisterLibrary(entryPoints);
}
