// Pass-through of SCSI commands, fabric and link services, and diagnostics inside the firmware.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace passthru {

HX_STATUS SendScsi(uint32_t handle, const HX_SCSI_ADDRESS* target, const uint8_t* cdb,
                   uint32_t cdbLength, const void* dataOut, uint32_t dataOutLength, void* dataIn,
                   uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);
HX_STATUS Inquiry(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                  uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);
HX_STATUS ReadCapacity(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                       uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);
HX_STATUS ReportLuns(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                     uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);

HX_STATUS SendCt(uint32_t handle, const void* request, uint32_t requestSize, void* response,
                 uint32_t responseSize);
HX_STATUS SendEls(uint32_t handle, const HX_SCSI_ADDRESS* destination, const void* payload,
                  int32_t payloadSize, void* response, const uint32_t* responseSize,
                  uint8_t option);
HX_STATUS SendElsEx(uint32_t handle, const HX_SCSI_ADDRESS* destination, const void* payload,
                    int32_t payloadSize, void* response, uint32_t* responseSize, uint8_t option);
HX_STATUS SendRnid(uint32_t handle, const HX_SCSI_ADDRESS* destination, uint8_t format,
                   uint8_t* response, uint32_t responseSize);
HX_STATUS ManageScm(uint32_t handle, uint8_t* settings);

HX_STATUS RunLoopback(uint32_t handle, uint16_t options, void* sendData, uint16_t sendLength,
                      void* receiveData, uint16_t receiveLength, uint16_t iterations,
                      HX_LOOPBACK_RESULT* result);
HX_STATUS RunLoopbackEx(uint32_t handle, uint16_t options, const void* sendData, uint32_t length,
                        void* receiveData, uint32_t receiveLength, uint32_t iterations,
                        HX_LOOPBACK_EX_RESULT* result);
HX_STATUS RunDportEx(uint32_t handle, HX_DPORT_RESULT* result);
HX_STATUS RunDportEx2(uint32_t handle, HX_DPORT_RESULT_EX2* result);
HX_STATUS SendMailbox(uint32_t handle, const uint16_t* inRegisters, int16_t inCount,
                      uint16_t* outRegisters, int16_t outCount);

}  // namespace passthru
