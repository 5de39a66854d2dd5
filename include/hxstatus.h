/*
 * hxstatus.h - the status codes of the VXMGMT management library and their texts.
 *
 * One table makes both: HX_STATUS_TABLE(ROW) expands ROW(name, code, text) for every code that has
 * a text, HX_STATUS_WITHOUT_TEXT(ROW) expands ROW(name, code) for the codes that HXGetErrorString
 * prints as unknown. The constants below are made from both; an application may expand the tables
 * for its own purposes.
 *
 * A status is an unsigned 32-bit number: 0 is success, a number with bit 29 clear is a Windows
 * system error code passed through unchanged, a number with bit 29 set is one of these.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXSTATUS_H
#define HXSTATUS_H

#include <stdint.h>

/* clang-format off */
#define HX_STATUS_TABLE(ROW) \
    ROW(SUCCESS,                                   0x00000000, "None") \
    ROW(INVALID_COMMAND_CODE,                      0x20000002, "Invalid command code") \
    ROW(INVALID_VERSION_LEVEL,                     0x20000003, "Invalid version level") \
    ROW(LOGICAL_ERROR,                             0x20000004, "Logical error") \
    ROW(INVALID_IU_SIZE,                           0x20000005, "Invalid IU size") \
    ROW(LOGICAL_BUSY,                              0x20000006, "Logical busy") \
    ROW(PROTOCOL_ERROR,                            0x20000007, "Protocol error") \
    ROW(NO_ADDITIONAL_EXPLANATION,                 0x20000008, "(09h) No Additional Explanation") \
    ROW(IE_LIST_NOT_AVAILABLE,                     0x20000009, "IE List Not Available") \
    ROW(IE_TYPE_NOT_AVAILABLE,                     0x2000000A, "IE Type Not Available") \
    ROW(DOMAIN_ID_NOT_AVAILABLE,                   0x2000000B, "Domain ID Not Available") \
    ROW(IN_BAND_MANAGEMENT_ADDRESS_NOT_AVAILABLE,  0x2000000C, "In-Band Management Address Not Available") \
    ROW(FABRIC_NAME_NOT_AVAILABLE,                 0x2000000D, "Fabric Name Not Available") \
    ROW(LOGICAL_IE_NAME_NOT_AVAILABLE,             0x2000000E, "Logical IE Name Not Available") \
    ROW(MANAGEMENT_ADDRESS_LIST_NOT_AVAILABLE,     0x2000000F, "Management Address List Not Available") \
    ROW(IE_ATTRIBUTES_LIST_NOT_AVAILABLE,          0x20000010, "IE Attributes List Not Available") \
    ROW(PORT_LIST_NOT_AVAILABLE,                   0x20000011, "Port List Not Available") \
    ROW(PORT_TYPE_NOT_AVAILABLE,                   0x20000012, "Port Type Not Available") \
    ROW(PHYSICAL_PORT_ID_NOT_AVAILABLE,            0x20000013, "Physical Port ID Not Available") \
    ROW(LOGICAL_PORT_NAME_NOT_AVAILABLE,           0x20000014, "Logical Port Name Not Available") \
    ROW(ATTACHED_PORT_NAME_LIST_NOT_AVAILABLE,     0x20000015, "Attached Port Name List Not Available") \
    ROW(PORT_ATTRIBUTES_LIST_NOT_AVAILABLE,        0x20000016, "Port Attributes List Not Available") \
    ROW(PORT_STATE_NOT_AVAILABLE,                  0x20000017, "Port State Not Available") \
    ROW(LOGICAL_IE_NAME_NOT_SET,                   0x20000018, "Unable to Set Logical IE Name") \
    ROW(LOGICAL_PORT_NAME_NOT_SET,                 0x20000019, "Unable to Set Logical Port Name") \
    ROW(AUTHENTICATION_EXCEPTION,                  0x2000001A, "Authentication Exception") \
    ROW(RESERVED_CODE,                             0x2000001B, "Error: Reserved code") \
    ROW(MS_COMMAND_NOT_SUPPORTED,                  0x2000001C, "Command not supported") \
    ROW(VENDOR_UNIQUE_ERROR,                       0x2000001D, "Vendor unique error") \
    ROW(MS_RESERVED_ERROR,                         0x2000001E, "Management Server reserved error") \
    ROW(CALLER_BUFFER_TOO_SMALL,                   0x2000001F, "Specified buffer is not big enough to hold all the data") \
    ROW(PORT_IDENTIFIER_NOT_REGISTERED,            0x20000020, "Port Identifier not registered") \
    ROW(PORT_NAME_NOT_REGISTERED,                  0x20000021, "Port Name not registered") \
    ROW(NODE_NAME_NOT_REGISTERED,                  0x20000022, "Node Name not registered") \
    ROW(CLASS_OF_SERVICE_NOT_REGISTERED,           0x20000023, "Class of Service not registered") \
    ROW(NODE_IP_ADDRESS_NOT_REGISTERED,            0x20000024, "IP Address (Node) not registered") \
    ROW(INITIAL_PROCESS_ASSOCIATOR_NOT_REGISTERED, 0x20000025, "Initial Process Associator not registered") \
    ROW(FC_4_TYPES_NOT_REGISTERED,                 0x20000026, "FC-4 Types not registered") \
    ROW(SYMBOLIC_PORT_NAME_NOT_REGISTERED,         0x20000027, "Symbolic Port Name not registered") \
    ROW(SYMBOLIC_NODE_NAME_NOT_REGISTERED,         0x20000028, "Symbolic Node Name not registered") \
    ROW(PORT_TYPE_NOT_REGISTERED,                  0x20000029, "Port Type not registered") \
    ROW(PORT_IP_ADDRESS_NOT_REGISTERED,            0x2000002A, "IP Address (Port) not registered") \
    ROW(FABRIC_PORT_NAME_NOT_REGISTERED,           0x2000002B, "Fabric Port Name not registered") \
    ROW(HARD_ADDRESS_NOT_REGISTERED,               0x2000002C, "Hard Address not registered") \
    ROW(ACCESS_DENIED,                             0x2000002D, "Access Denied") \
    ROW(UNACCEPTABLE_PORT_IDENTIFIER,              0x2000002E, "Unacceptable Port Identifier") \
    ROW(DATABASE_EMPTY,                            0x2000002F, "Database Empty") \
    ROW(NO_OBJECT_IN_SCOPE,                        0x20000030, "No object registered in the specified scope") \
    ROW(INVALID_WWN,                               0x20000031, "Invalid WWN (IE or Port)") \
    ROW(PLATFORM_NAME_UNKNOWN,                     0x20000032, "Platform Name does not exist") \
    ROW(PLATFORM_NAME_EXISTS,                      0x20000033, "Platform Name already exists") \
    ROW(PLATFORM_NODE_NAME_UNKNOWN,                0x20000034, "Platform Node Name does not exist") \
    ROW(PLATFORM_NODE_NAME_EXISTS,                 0x20000035, "Platform Node Name already exists") \
    ROW(AUTHORIZATION_EXCEPTION,                   0x20000036, "Authorization Exception") \
    ROW(MS_NO_RESPONSE,                            0x20000037, "No Response from Management Server/Fabric doesn't support MS") \
    ROW(SCSI_CHECK_CONDITION,                      0x20000040, "SCSI check condition") \
    ROW(SCSI_CONDITION_MET,                        0x20000041, "SCSI condition Met") \
    ROW(SCSI_BUSY,                                 0x20000042, "SCSI busy") \
    ROW(SCSI_INTERMEDIATE,                         0x20000043, "SCSI intermediate") \
    ROW(SCSI_INTERMEDIATE_CONDITION_MET,           0x20000044, "SCSI intermediate condition met") \
    ROW(SCSI_RESERVATION_CONFLICT,                 0x20000045, "SCSI reservation conflict") \
    ROW(SCSI_COMMAND_TERMINATED,                   0x20000046, "SCSI command terminated") \
    ROW(SCSI_QUEUE_FULL,                           0x20000047, "SCSI queue full") \
    ROW(ZONES_NOT_SUPPORTED,                       0x20000050, "Zones not supported") \
    ROW(ZONE_SET_NAME_UNKNOWN,                     0x20000051, "Zone set name unknown") \
    ROW(NO_ZONE_SET_ACTIVE,                        0x20000052, "No zone set active") \
    ROW(ZONE_NAME_UNKNOWN,                         0x20000053, "Zone name unknown") \
    ROW(ZONE_STATE_UNKNOWN,                        0x20000054, "Zone state unknown") \
    ROW(INCORRECT_PAYLOAD_LENGTH,                  0x20000055, "Incorrect payload length") \
    ROW(ZONE_SET_TOO_LARGE,                        0x20000056, "Zone Set to be activated too large") \
    ROW(DEACTIVATE_ZONE_SET_FAILED,                0x20000057, "Deactivate Zone Set failed") \
    ROW(REQUEST_NOT_SUPPORTED,                     0x20000058, "Request not supported") \
    ROW(CAPABILITY_NOT_SUPPORTED,                  0x20000059, "Capability not supported") \
    ROW(ZONE_MEMBER_TYPE_NOT_SUPPORTED,            0x20000060, "Zone Member Identifier Type not supported") \
    ROW(INVALID_ZONE_SET_DEFINITION,               0x20000061, "Invalid Zone Set definition") \
    ROW(INVALID_PARAMETER,                         0x20000064, "Invalid parameter") \
    ROW(INVALID_HANDLE,                            0x20000065, "Handle to HBA device is invalid") \
    ROW(NOT_SUPPORTED,                             0x20000066, "Command not supported") \
    ROW(DEVICE_BUSY,                               0x20000067, "Device is busy") \
    ROW(REQUEST_PENDING,                           0x20000068, "Request pending") \
    ROW(REQUEST_SUSPENDED,                         0x20000069, "Request suspended") \
    ROW(REQUEST_RETRY_PENDING,                     0x2000006A, "Request retry pending") \
    ROW(DATA_OVERRUN,                              0x2000006B, "Data overrun") \
    ROW(DATA_UNDERRUN,                             0x2000006C, "Data underrun") \
    ROW(DEVICE_NOT_FOUND,                          0x2000006D, "Device not found") \
    ROW(COPY_FAILED,                               0x2000006E, "Copy memory failed") \
    ROW(MAILBOX_FAILED,                            0x2000006F, "Firmware mailbox failed") \
    ROW(INVALID_SUBCODE,                           0x20000070, "Invalid command sub-code") \
    ROW(INCOMPATIBLE_VERSION,                      0x20000071, "Incompatible version found between application and driver") \
    ROW(BUFFER_TOO_SMALL,                          0x20000072, "Specified response buffer is too small") \
    ROW(INVALID_REQUEST,                           0x20000073, "Invalid request, unsupported IOCTL") \
    ROW(OUT_OF_MEMORY,                             0x20000074, "Driver is out of memory to support this call") \
    ROW(UNKNOWN_ERROR,                             0x20000075, "Driver returns an unknown error") \
    ROW(REGISTRY_INVALID,                          0x20000076, "Registry contains invalid information") \
    ROW(BUILT_BY_API,                              0x20000077, "Data returned has been built by the API") \
    ROW(PERSISTENT_STORAGE_ERROR,                  0x20000078, "An error has been detected while updating persistent storage") \
    ROW(DEVICE_NOT_READY,                          0x20000079, "Device not ready") \
    ROW(DEVICE_OFFLINE,                            0x2000007A, "Device has been marked off-line") \
    ROW(HBA_IS_NOT_READY,                          0x2000007B, "HBA is not ready") \
    ROW(HBA_QUEUE_IS_FULL,                         0x2000007C, "HBA queue is full") \
    ROW(NVRAM_CHECKSUM_INVALID,                    0x2000007D, "NVRam CheckSum is not valid") \
    ROW(FIRMWARE_STATE_INVALID,                    0x2000007E, "FirmWare State is not valid") \
    ROW(MUTEX_NOT_RESERVED,                        0x2000007F, "Cannot reserve Mutex") \
    ROW(OPTION_ROM_CHECKSUM_ERROR,                 0x20000082, "OptionRom checksum error") \
    ROW(OPTION_ROM_EMPTY,                          0x20000083, "OptionRom empty") \
    ROW(OPTION_ROM_SIZE_TOO_BIG,                   0x20000084, "OptionRom size too big") \
    ROW(OPTION_ROM_VERSION_MISMATCH,               0x20000085, "OptionRom version mismatch") \
    ROW(OPTION_ROM_ATTRIBUTE_MISMATCH,             0x20000086, "OptionRom attribute mismatch") \
    ROW(OPTION_ROM_INCOMPATIBLE_FIRMWARE,          0x20000087, "OptionRom incompatible firmware") \
    ROW(OPTION_ROM_INVALID_FIRMWARE,               0x20000088, "OptionRom invalid firmware") \
    ROW(OPTION_ROM_READ_ERROR,                     0x2000008A, "OptionRom read error") \
    ROW(OPTION_ROM_WRITE_ERROR,                    0x2000008B, "OptionRom write error") \
    ROW(DMA_ERROR,                                 0x20000090, "DMA error occurred") \
    ROW(TIMED_OUT,                                 0x20000091, "Timed out") \
    ROW(UNEXPECTED_RESET,                          0x20000092, "Unexpected reset occurred") \
    ROW(SFP_DATA_UNAVAILABLE,                      0x200000A1, "Unable to get SFP data") \
    ROW(SFP_TRANSFER_ERROR,                        0x200000A2, "Error in transfering SFP data") \
    ROW(NO_FIRMWARE_DUMP,                          0x200000A8, "No firmware dump") \
    ROW(SESSION_IN_PROGRESS,                       0x200000C0, "Session in progress") \
    ROW(SESSION_EXPIRED,                           0x200000C1, "Session expired") \
    ROW(NO_FLASH_UPDATE_TOKEN,                     0x200000C2, "No flash update token") \
    ROW(FLASH_UPDATE_NOT_ACTIVATED,                0x20000100, "Flash Update not activated") \
    ROW(OPTION_ROM_VPD_INVALID,                    0x20000107, "OptionRom VPD invalid") \
    ROW(OPTION_ROM_REGION_INVALID,                 0x20000109, "OptionRom region invalid") \
    ROW(FEATURE_NOT_SUPPORTED_BY_DRIVER,           0x20000111, "Driver does not support this feature") \
    ROW(FIRMWARE_LOCKDOWN,                         0x20000113, "Adapter in fw lock down mode") \
    ROW(SFP_FIRMWARE_INCOMPATIBLE,                 0x20000118, "The SFP firmware is incompatible") \
    ROW(SFP_FIRMWARE_UPDATE_ERROR,                 0x20000119, "Error updating SFP firmware") \
    ROW(PORT_ENABLE_FAILED,                        0x2000011A, "Failed to enable port")

/* Codes that the library returns and that have no text of their own. */
#define HX_STATUS_WITHOUT_TEXT(ROW) \
    ROW(ACTIVATION_TIMED_OUT,     0x20000063) \
    ROW(DRIVER_STATUS_26,         0x200000A3) \
    ROW(DRIVER_STATUS_27,         0x200000A4) \
    ROW(DRIVER_STATUS_28,         0x200000A5) \
    ROW(DRIVER_STATUS_29,         0x200000A6) \
    ROW(DRIVER_STATUS_34,         0x200000A7) \
    ROW(DRIVER_STATUS_36,         0x200000A9) \
    ROW(DRIVER_STATUS_37,         0x200000AA) \
    ROW(DUMP_FILE_NOT_OPENED,     0x200000AB) \
    ROW(DRIVER_STATUS_38,         0x200000AE) \
    ROW(ELS_REJECTED,             0x200000B0) \
    ROW(BOOT_FROM_SAN_UNKNOWN,    0x20000112) \
    ROW(PORT_DISABLED,            0x20000114) \
    ROW(DIAGNOSTIC_TEST_RUNNING,  0x20000115)
/* clang-format on */

#ifdef __cplusplus
#define HX_STATUS_CONSTANT(name, code, text) static const uint32_t HXMGT_##name = code;
#define HX_STATUS_CONSTANT_ONLY(name, code) static const uint32_t HXMGT_##name = code;
HX_STATUS_TABLE(HX_STATUS_CONSTANT)
HX_STATUS_WITHOUT_TEXT(HX_STATUS_CONSTANT_ONLY)
#else
#define HX_STATUS_CONSTANT(name, code, text) HXMGT_##name = code,
#define HX_STATUS_CONSTANT_ONLY(name, code) HXMGT_##name = code,
enum HX_STATUS_CODE {
    HX_STATUS_TABLE(HX_STATUS_CONSTANT) HX_STATUS_WITHOUT_TEXT(HX_STATUS_CONSTANT_ONLY)
};
#endif
#undef HX_STATUS_CONSTANT
#undef HX_STATUS_CONSTANT_ONLY

#endif /* HXSTATUS_H */
