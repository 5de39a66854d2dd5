"""Records, constants and prototypes of VXMGMT.DLL. Made from its headers by describe.py; not edited.

Importing this needs neither the library nor Windows.
"""
# fmt: off
# ruff: noqa
from __future__ import annotations

import ctypes
from ctypes import (CFUNCTYPE, POINTER, Structure, Union, c_char, c_char_p, c_int8, c_int16,
                    c_int32, c_int64, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p)
from typing import Any, Callable, Dict

HBA_CLASS_OF_SERVICE_3 = 8
HBA_EVENT_LINK_DOWN = 3
HBA_EVENT_LINK_UP = 2
HBA_EVENT_LIP_OCCURRED = 1
HBA_EVENT_LIP_RESET_OCCURRED = 4
HBA_EVENT_PROPRIETARY = 0xffff
HBA_EVENT_RSCN = 5
HBA_PORTSPEED_10GBIT = 4
HBA_PORTSPEED_16GBIT = 32
HBA_PORTSPEED_1GBIT = 1
HBA_PORTSPEED_2GBIT = 2
HBA_PORTSPEED_32GBIT = 64
HBA_PORTSPEED_4GBIT = 8
HBA_PORTSPEED_64GBIT = 128
HBA_PORTSPEED_8GBIT = 16
HBA_PORTSPEED_NOT_REPORTED = 0xffffffff
HBA_PORTSPEED_UNKNOWN = 0
HBA_PORTSTATE_LINKDOWN = 6
HBA_PORTSTATE_OFFLINE = 3
HBA_PORTSTATE_ONLINE = 2
HBA_PORTSTATE_UNKNOWN = 1
HBA_PORTTYPE_LPORT = 20
HBA_PORTTYPE_NLPORT = 6
HBA_PORTTYPE_NPORT = 5
HBA_PORTTYPE_PTP = 21
HBA_PORTTYPE_UNKNOWN = 1
HBA_STATUS_ERROR = 1
HBA_STATUS_ERROR_ARG = 4
HBA_STATUS_ERROR_ILLEGAL_INDEX = 6
HBA_STATUS_ERROR_ILLEGAL_WWN = 5
HBA_STATUS_ERROR_INVALID_HANDLE = 3
HBA_STATUS_ERROR_MORE_DATA = 7
HBA_STATUS_ERROR_NOT_SUPPORTED = 2
HBA_STATUS_OK = 0
HBA_VERSION = 1
HX_ADAPTER_NOT_COUNTED = 0xffffffff
HX_BEACON_MOST_SECONDS = 0x15180
HX_LATENCY_BUCKETS = 24
HX_LINK_SPEED_SET = 1
HX_LUN_MASKED = 128
HX_LUN_MASK_SIZE = 256
HX_MAX_FLASH_REGIONS = 255
HX_MAX_HANDLE_RECORDS = 65
HX_MAX_LUNS = 2048
HX_MAX_SCSI_PORTS = 64
HX_MAX_SERDES_LANES = 16
HX_MAX_TARGETS = 256
HX_NODE_FLAGS_CARRIED = 127
HX_NODE_FLAG_TEXT_SERIAL = 16
HX_NOT_COUNTED = 0xffffffffffffffff
HX_NVME_FLAG_ANA = 1
HX_NVME_MOST_CONTROLLER = 255
HX_NVME_NQN_SIZE = 256
HX_NVRAM_CLASSIC_BYTES = 256
HX_NVRAM_EXTENDED_BYTES = 512
HX_NVRAM_VARIABLES = 188
HX_PRIVATE_RESTART = 1
HX_QOS_LUNS = 256
HX_REGION_FLAG_SECURE = 1
HX_RETIMER_DEVICE = 24
HX_SCM_MARK = 0x314d4353
HX_VERSION_PACKED = 0x11c00c5
NODE_WWN = 0
PORT_WWN = 1
HXMGT_SUCCESS = 0
HXMGT_INVALID_COMMAND_CODE = 0x20000002
HXMGT_INVALID_VERSION_LEVEL = 0x20000003
HXMGT_LOGICAL_ERROR = 0x20000004
HXMGT_INVALID_IU_SIZE = 0x20000005
HXMGT_LOGICAL_BUSY = 0x20000006
HXMGT_PROTOCOL_ERROR = 0x20000007
HXMGT_NO_ADDITIONAL_EXPLANATION = 0x20000008
HXMGT_IE_LIST_NOT_AVAILABLE = 0x20000009
HXMGT_IE_TYPE_NOT_AVAILABLE = 0x2000000a
HXMGT_DOMAIN_ID_NOT_AVAILABLE = 0x2000000b
HXMGT_IN_BAND_MANAGEMENT_ADDRESS_NOT_AVAILABLE = 0x2000000c
HXMGT_FABRIC_NAME_NOT_AVAILABLE = 0x2000000d
HXMGT_LOGICAL_IE_NAME_NOT_AVAILABLE = 0x2000000e
HXMGT_MANAGEMENT_ADDRESS_LIST_NOT_AVAILABLE = 0x2000000f
HXMGT_IE_ATTRIBUTES_LIST_NOT_AVAILABLE = 0x20000010
HXMGT_PORT_LIST_NOT_AVAILABLE = 0x20000011
HXMGT_PORT_TYPE_NOT_AVAILABLE = 0x20000012
HXMGT_PHYSICAL_PORT_ID_NOT_AVAILABLE = 0x20000013
HXMGT_LOGICAL_PORT_NAME_NOT_AVAILABLE = 0x20000014
HXMGT_ATTACHED_PORT_NAME_LIST_NOT_AVAILABLE = 0x20000015
HXMGT_PORT_ATTRIBUTES_LIST_NOT_AVAILABLE = 0x20000016
HXMGT_PORT_STATE_NOT_AVAILABLE = 0x20000017
HXMGT_LOGICAL_IE_NAME_NOT_SET = 0x20000018
HXMGT_LOGICAL_PORT_NAME_NOT_SET = 0x20000019
HXMGT_AUTHENTICATION_EXCEPTION = 0x2000001a
HXMGT_RESERVED_CODE = 0x2000001b
HXMGT_MS_COMMAND_NOT_SUPPORTED = 0x2000001c
HXMGT_VENDOR_UNIQUE_ERROR = 0x2000001d
HXMGT_MS_RESERVED_ERROR = 0x2000001e
HXMGT_CALLER_BUFFER_TOO_SMALL = 0x2000001f
HXMGT_PORT_IDENTIFIER_NOT_REGISTERED = 0x20000020
HXMGT_PORT_NAME_NOT_REGISTERED = 0x20000021
HXMGT_NODE_NAME_NOT_REGISTERED = 0x20000022
HXMGT_CLASS_OF_SERVICE_NOT_REGISTERED = 0x20000023
HXMGT_NODE_IP_ADDRESS_NOT_REGISTERED = 0x20000024
HXMGT_INITIAL_PROCESS_ASSOCIATOR_NOT_REGISTERED = 0x20000025
HXMGT_FC_4_TYPES_NOT_REGISTERED = 0x20000026
HXMGT_SYMBOLIC_PORT_NAME_NOT_REGISTERED = 0x20000027
HXMGT_SYMBOLIC_NODE_NAME_NOT_REGISTERED = 0x20000028
HXMGT_PORT_TYPE_NOT_REGISTERED = 0x20000029
HXMGT_PORT_IP_ADDRESS_NOT_REGISTERED = 0x2000002a
HXMGT_FABRIC_PORT_NAME_NOT_REGISTERED = 0x2000002b
HXMGT_HARD_ADDRESS_NOT_REGISTERED = 0x2000002c
HXMGT_ACCESS_DENIED = 0x2000002d
HXMGT_UNACCEPTABLE_PORT_IDENTIFIER = 0x2000002e
HXMGT_DATABASE_EMPTY = 0x2000002f
HXMGT_NO_OBJECT_IN_SCOPE = 0x20000030
HXMGT_INVALID_WWN = 0x20000031
HXMGT_PLATFORM_NAME_UNKNOWN = 0x20000032
HXMGT_PLATFORM_NAME_EXISTS = 0x20000033
HXMGT_PLATFORM_NODE_NAME_UNKNOWN = 0x20000034
HXMGT_PLATFORM_NODE_NAME_EXISTS = 0x20000035
HXMGT_AUTHORIZATION_EXCEPTION = 0x20000036
HXMGT_MS_NO_RESPONSE = 0x20000037
HXMGT_SCSI_CHECK_CONDITION = 0x20000040
HXMGT_SCSI_CONDITION_MET = 0x20000041
HXMGT_SCSI_BUSY = 0x20000042
HXMGT_SCSI_INTERMEDIATE = 0x20000043
HXMGT_SCSI_INTERMEDIATE_CONDITION_MET = 0x20000044
HXMGT_SCSI_RESERVATION_CONFLICT = 0x20000045
HXMGT_SCSI_COMMAND_TERMINATED = 0x20000046
HXMGT_SCSI_QUEUE_FULL = 0x20000047
HXMGT_ZONES_NOT_SUPPORTED = 0x20000050
HXMGT_ZONE_SET_NAME_UNKNOWN = 0x20000051
HXMGT_NO_ZONE_SET_ACTIVE = 0x20000052
HXMGT_ZONE_NAME_UNKNOWN = 0x20000053
HXMGT_ZONE_STATE_UNKNOWN = 0x20000054
HXMGT_INCORRECT_PAYLOAD_LENGTH = 0x20000055
HXMGT_ZONE_SET_TOO_LARGE = 0x20000056
HXMGT_DEACTIVATE_ZONE_SET_FAILED = 0x20000057
HXMGT_REQUEST_NOT_SUPPORTED = 0x20000058
HXMGT_CAPABILITY_NOT_SUPPORTED = 0x20000059
HXMGT_ZONE_MEMBER_TYPE_NOT_SUPPORTED = 0x20000060
HXMGT_INVALID_ZONE_SET_DEFINITION = 0x20000061
HXMGT_INVALID_PARAMETER = 0x20000064
HXMGT_INVALID_HANDLE = 0x20000065
HXMGT_NOT_SUPPORTED = 0x20000066
HXMGT_DEVICE_BUSY = 0x20000067
HXMGT_REQUEST_PENDING = 0x20000068
HXMGT_REQUEST_SUSPENDED = 0x20000069
HXMGT_REQUEST_RETRY_PENDING = 0x2000006a
HXMGT_DATA_OVERRUN = 0x2000006b
HXMGT_DATA_UNDERRUN = 0x2000006c
HXMGT_DEVICE_NOT_FOUND = 0x2000006d
HXMGT_COPY_FAILED = 0x2000006e
HXMGT_MAILBOX_FAILED = 0x2000006f
HXMGT_INVALID_SUBCODE = 0x20000070
HXMGT_INCOMPATIBLE_VERSION = 0x20000071
HXMGT_BUFFER_TOO_SMALL = 0x20000072
HXMGT_INVALID_REQUEST = 0x20000073
HXMGT_OUT_OF_MEMORY = 0x20000074
HXMGT_UNKNOWN_ERROR = 0x20000075
HXMGT_REGISTRY_INVALID = 0x20000076
HXMGT_BUILT_BY_API = 0x20000077
HXMGT_PERSISTENT_STORAGE_ERROR = 0x20000078
HXMGT_DEVICE_NOT_READY = 0x20000079
HXMGT_DEVICE_OFFLINE = 0x2000007a
HXMGT_HBA_IS_NOT_READY = 0x2000007b
HXMGT_HBA_QUEUE_IS_FULL = 0x2000007c
HXMGT_NVRAM_CHECKSUM_INVALID = 0x2000007d
HXMGT_FIRMWARE_STATE_INVALID = 0x2000007e
HXMGT_MUTEX_NOT_RESERVED = 0x2000007f
HXMGT_OPTION_ROM_CHECKSUM_ERROR = 0x20000082
HXMGT_OPTION_ROM_EMPTY = 0x20000083
HXMGT_OPTION_ROM_SIZE_TOO_BIG = 0x20000084
HXMGT_OPTION_ROM_VERSION_MISMATCH = 0x20000085
HXMGT_OPTION_ROM_ATTRIBUTE_MISMATCH = 0x20000086
HXMGT_OPTION_ROM_INCOMPATIBLE_FIRMWARE = 0x20000087
HXMGT_OPTION_ROM_INVALID_FIRMWARE = 0x20000088
HXMGT_OPTION_ROM_READ_ERROR = 0x2000008a
HXMGT_OPTION_ROM_WRITE_ERROR = 0x2000008b
HXMGT_DMA_ERROR = 0x20000090
HXMGT_TIMED_OUT = 0x20000091
HXMGT_UNEXPECTED_RESET = 0x20000092
HXMGT_SFP_DATA_UNAVAILABLE = 0x200000a1
HXMGT_SFP_TRANSFER_ERROR = 0x200000a2
HXMGT_NO_FIRMWARE_DUMP = 0x200000a8
HXMGT_SESSION_IN_PROGRESS = 0x200000c0
HXMGT_SESSION_EXPIRED = 0x200000c1
HXMGT_NO_FLASH_UPDATE_TOKEN = 0x200000c2
HXMGT_FLASH_UPDATE_NOT_ACTIVATED = 0x20000100
HXMGT_OPTION_ROM_VPD_INVALID = 0x20000107
HXMGT_OPTION_ROM_REGION_INVALID = 0x20000109
HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER = 0x20000111
HXMGT_FIRMWARE_LOCKDOWN = 0x20000113
HXMGT_SFP_FIRMWARE_INCOMPATIBLE = 0x20000118
HXMGT_SFP_FIRMWARE_UPDATE_ERROR = 0x20000119
HXMGT_PORT_ENABLE_FAILED = 0x2000011a
HXMGT_ACTIVATION_TIMED_OUT = 0x20000063
HXMGT_DRIVER_STATUS_26 = 0x200000a3
HXMGT_DRIVER_STATUS_27 = 0x200000a4
HXMGT_DRIVER_STATUS_28 = 0x200000a5
HXMGT_DRIVER_STATUS_29 = 0x200000a6
HXMGT_DRIVER_STATUS_34 = 0x200000a7
HXMGT_DRIVER_STATUS_36 = 0x200000a9
HXMGT_DRIVER_STATUS_37 = 0x200000aa
HXMGT_DUMP_FILE_NOT_OPENED = 0x200000ab
HXMGT_DRIVER_STATUS_38 = 0x200000ae
HXMGT_ELS_REJECTED = 0x200000b0
HXMGT_BOOT_FROM_SAN_UNKNOWN = 0x20000112
HXMGT_PORT_DISABLED = 0x20000114
HXMGT_DIAGNOSTIC_TEST_RUNNING = 0x20000115
HX_PORT_STATE_ONLINE = 1
HX_PORT_STATE_OFFLINE = 2
HX_PORT_STATE_LINK_DOWN = 3
HX_SPEED_UNKNOWN = 0
HX_SPEED_1GBIT = 1
HX_SPEED_2GBIT = 2
HX_SPEED_4GBIT = 4
HX_SPEED_8GBIT = 8
HX_SPEED_10GBIT = 16
HX_SPEED_16GBIT = 22
HX_SPEED_32GBIT = 50
HX_SPEED_64GBIT = 100
HX_EVENT_LIP = 1
HX_EVENT_LINK_UP = 2
HX_EVENT_LINK_DOWN = 3
HX_EVENT_LIP_RESET = 4
HX_EVENT_RSCN = 5
HX_EVENT_PORT_UPDATE = 6
HX_EVENT_TEST = 8
HX_ADDRESS_NODE_NAME = 1
HX_ADDRESS_PORT_NAME = 2
HX_ADDRESS_PORT_ID = 3
HX_ADDRESS_BUS_TARGET = 4
HX_LOOPBACK_COMPLETE = 1
HX_LOOPBACK_BAD_PARAMETER = 2
HX_LOOPBACK_COMMAND_ERROR = 3
HX_LOOPBACK_OTHER = 4
HX_SCM_FPINS_REGISTERED = 1
HX_SCM_SIGNALS_AGREED = 2
HX_SCM_THROTTLING = 4
HX_SCM_ENABLED = 8
HX_SCM_SEVERITY_NONE = 0
HX_SCM_SEVERITY_WARNING = 1
HX_SCM_SEVERITY_ALARM = 2
HX_REMOTE_PORT_ONLINE = 1
HX_REMOTE_PORT_LOST = 2
HX_REMOTE_PORT_NOT_LOGGED_IN = 3
HX_ROLE_FCP_TARGET = 1
HX_ROLE_FCP_INITIATOR = 2
HX_ROLE_NVME_SUBSYSTEM = 4
HX_ROLE_NVME_HOST = 8
HX_ROLE_NVME_DISCOVERY = 16
HX_REMOTE_PORT_DIAGNOSED = 1
HX_REMOTE_PORT_SECURED = 2
HX_SECURE_PLAIN = 0
HX_SECURE_AUTHENTICATING = 1
HX_SECURE_SECURED = 2
HX_SECURE_FAILED = 3
HX_AUTHENTICATION_NONE = 0
HX_AUTHENTICATION_DH_CHAP = 1
HX_AUTHENTICATION_FCAP = 2
HX_AUTHENTICATION_FCPAP = 3
HX_AUTHENTICATION_IKEV2 = 4
HX_ENCRYPTION_NONE = 0
HX_ENCRYPTION_AES_GCM_128 = 1
HX_ENCRYPTION_AES_GCM_256 = 2
HX_SECURE_TX = 1
HX_SECURE_RX = 2
HX_QOS_NONE = 0
HX_QOS_LOW = 1
HX_QOS_MEDIUM = 2
HX_QOS_HIGH = 3
HX_NPIV_FIRMWARE = 1
HX_NPIV_FABRIC = 2
HX_NPIV_ENABLED = 4
HX_VIRTUAL_PORT_ONLINE = 1
HX_VIRTUAL_PORT_OFFLINE = 2
HX_VIRTUAL_PORT_REJECTED = 3
HX_VIRTUAL_PORT_LINK_DOWN = 4
HX_NVME_SUBSYSTEM = 1
HX_NVME_DISCOVERY = 2
HX_NVME_HOST = 4
HX_NVME_PORT_ONLINE = 1
HX_NVME_PORT_LOST = 2
HX_NVME_KIND_DISCOVERY = 1
HX_NVME_KIND_NVM = 2
HX_NVME_NOT_CONNECTED = 0
HX_NVME_CONNECTING = 1
HX_NVME_LIVE = 2
HX_NVME_RECONNECTING = 3
HX_ANA_OPTIMIZED = 1
HX_ANA_NON_OPTIMIZED = 2
HX_ANA_INACCESSIBLE = 3
HX_ANA_LOST = 4
HX_ANA_CHANGING = 15
HX_NAMESPACE_SHARED = 1
HX_NAMESPACE_WRITE_PROTECTED = 2
HX_REGION_FIRMWARE = 1
HX_REGION_BOOT_CODE = 7
HX_REGION_BOOT_CODE_SECOND = 17
HX_REGION_VPD_0 = 20
HX_REGION_NVRAM_0 = 21
HX_REGION_VPD_1 = 22
HX_REGION_NVRAM_1 = 23
HX_REGION_VPD_2 = 212
HX_REGION_NVRAM_2 = 213
HX_REGION_VPD_3 = 214
HX_REGION_NVRAM_3 = 215
HX_COMPANION_RESET = 1
HX_COMPANION_VERSION = 2
HX_COMPANION_UPDATE = 3
HX_COMPANION_INFORMATION = 4
HX_NVRAM_BLOCK = 1
HX_NVRAM_VERIFIED = 2
HX_NVRAM_RESTART = 3
HX_BBCR_ON = 1
HX_BBCR_OFF = 2
HX_BBCR_NOT_SUPPORTED = 3
HX_BBCR_REASON_NONE = 0
HX_BBCR_LINK_DOWN = 1
HX_BBCR_LOOP = 2
HX_BBCR_NOT_CONFIGURED = 3
HX_BBCR_REFUSED = 4
HX_TEMPERATURE_NORMAL = 0
HX_TEMPERATURE_WARNING = 1
HX_TEMPERATURE_CRITICAL = 2
HX_BEACON_GREEN = 1
HX_BEACON_AMBER = 2
HX_MODULATION_NRZ = 0
HX_MODULATION_PAM4 = 1
HX_OS_DEVICE_DISK = 1
HX_OS_DEVICE_TAPE = 2
HX_OS_DEVICE_CHANGER = 3

# The names of the statuses.
STATUS_NAMES: Dict[int, str] = {
    0x00000000: "HXMGT_SUCCESS",
    0x20000002: "HXMGT_INVALID_COMMAND_CODE",
    0x20000003: "HXMGT_INVALID_VERSION_LEVEL",
    0x20000004: "HXMGT_LOGICAL_ERROR",
    0x20000005: "HXMGT_INVALID_IU_SIZE",
    0x20000006: "HXMGT_LOGICAL_BUSY",
    0x20000007: "HXMGT_PROTOCOL_ERROR",
    0x20000008: "HXMGT_NO_ADDITIONAL_EXPLANATION",
    0x20000009: "HXMGT_IE_LIST_NOT_AVAILABLE",
    0x2000000a: "HXMGT_IE_TYPE_NOT_AVAILABLE",
    0x2000000b: "HXMGT_DOMAIN_ID_NOT_AVAILABLE",
    0x2000000c: "HXMGT_IN_BAND_MANAGEMENT_ADDRESS_NOT_AVAILABLE",
    0x2000000d: "HXMGT_FABRIC_NAME_NOT_AVAILABLE",
    0x2000000e: "HXMGT_LOGICAL_IE_NAME_NOT_AVAILABLE",
    0x2000000f: "HXMGT_MANAGEMENT_ADDRESS_LIST_NOT_AVAILABLE",
    0x20000010: "HXMGT_IE_ATTRIBUTES_LIST_NOT_AVAILABLE",
    0x20000011: "HXMGT_PORT_LIST_NOT_AVAILABLE",
    0x20000012: "HXMGT_PORT_TYPE_NOT_AVAILABLE",
    0x20000013: "HXMGT_PHYSICAL_PORT_ID_NOT_AVAILABLE",
    0x20000014: "HXMGT_LOGICAL_PORT_NAME_NOT_AVAILABLE",
    0x20000015: "HXMGT_ATTACHED_PORT_NAME_LIST_NOT_AVAILABLE",
    0x20000016: "HXMGT_PORT_ATTRIBUTES_LIST_NOT_AVAILABLE",
    0x20000017: "HXMGT_PORT_STATE_NOT_AVAILABLE",
    0x20000018: "HXMGT_LOGICAL_IE_NAME_NOT_SET",
    0x20000019: "HXMGT_LOGICAL_PORT_NAME_NOT_SET",
    0x2000001a: "HXMGT_AUTHENTICATION_EXCEPTION",
    0x2000001b: "HXMGT_RESERVED_CODE",
    0x2000001c: "HXMGT_MS_COMMAND_NOT_SUPPORTED",
    0x2000001d: "HXMGT_VENDOR_UNIQUE_ERROR",
    0x2000001e: "HXMGT_MS_RESERVED_ERROR",
    0x2000001f: "HXMGT_CALLER_BUFFER_TOO_SMALL",
    0x20000020: "HXMGT_PORT_IDENTIFIER_NOT_REGISTERED",
    0x20000021: "HXMGT_PORT_NAME_NOT_REGISTERED",
    0x20000022: "HXMGT_NODE_NAME_NOT_REGISTERED",
    0x20000023: "HXMGT_CLASS_OF_SERVICE_NOT_REGISTERED",
    0x20000024: "HXMGT_NODE_IP_ADDRESS_NOT_REGISTERED",
    0x20000025: "HXMGT_INITIAL_PROCESS_ASSOCIATOR_NOT_REGISTERED",
    0x20000026: "HXMGT_FC_4_TYPES_NOT_REGISTERED",
    0x20000027: "HXMGT_SYMBOLIC_PORT_NAME_NOT_REGISTERED",
    0x20000028: "HXMGT_SYMBOLIC_NODE_NAME_NOT_REGISTERED",
    0x20000029: "HXMGT_PORT_TYPE_NOT_REGISTERED",
    0x2000002a: "HXMGT_PORT_IP_ADDRESS_NOT_REGISTERED",
    0x2000002b: "HXMGT_FABRIC_PORT_NAME_NOT_REGISTERED",
    0x2000002c: "HXMGT_HARD_ADDRESS_NOT_REGISTERED",
    0x2000002d: "HXMGT_ACCESS_DENIED",
    0x2000002e: "HXMGT_UNACCEPTABLE_PORT_IDENTIFIER",
    0x2000002f: "HXMGT_DATABASE_EMPTY",
    0x20000030: "HXMGT_NO_OBJECT_IN_SCOPE",
    0x20000031: "HXMGT_INVALID_WWN",
    0x20000032: "HXMGT_PLATFORM_NAME_UNKNOWN",
    0x20000033: "HXMGT_PLATFORM_NAME_EXISTS",
    0x20000034: "HXMGT_PLATFORM_NODE_NAME_UNKNOWN",
    0x20000035: "HXMGT_PLATFORM_NODE_NAME_EXISTS",
    0x20000036: "HXMGT_AUTHORIZATION_EXCEPTION",
    0x20000037: "HXMGT_MS_NO_RESPONSE",
    0x20000040: "HXMGT_SCSI_CHECK_CONDITION",
    0x20000041: "HXMGT_SCSI_CONDITION_MET",
    0x20000042: "HXMGT_SCSI_BUSY",
    0x20000043: "HXMGT_SCSI_INTERMEDIATE",
    0x20000044: "HXMGT_SCSI_INTERMEDIATE_CONDITION_MET",
    0x20000045: "HXMGT_SCSI_RESERVATION_CONFLICT",
    0x20000046: "HXMGT_SCSI_COMMAND_TERMINATED",
    0x20000047: "HXMGT_SCSI_QUEUE_FULL",
    0x20000050: "HXMGT_ZONES_NOT_SUPPORTED",
    0x20000051: "HXMGT_ZONE_SET_NAME_UNKNOWN",
    0x20000052: "HXMGT_NO_ZONE_SET_ACTIVE",
    0x20000053: "HXMGT_ZONE_NAME_UNKNOWN",
    0x20000054: "HXMGT_ZONE_STATE_UNKNOWN",
    0x20000055: "HXMGT_INCORRECT_PAYLOAD_LENGTH",
    0x20000056: "HXMGT_ZONE_SET_TOO_LARGE",
    0x20000057: "HXMGT_DEACTIVATE_ZONE_SET_FAILED",
    0x20000058: "HXMGT_REQUEST_NOT_SUPPORTED",
    0x20000059: "HXMGT_CAPABILITY_NOT_SUPPORTED",
    0x20000060: "HXMGT_ZONE_MEMBER_TYPE_NOT_SUPPORTED",
    0x20000061: "HXMGT_INVALID_ZONE_SET_DEFINITION",
    0x20000064: "HXMGT_INVALID_PARAMETER",
    0x20000065: "HXMGT_INVALID_HANDLE",
    0x20000066: "HXMGT_NOT_SUPPORTED",
    0x20000067: "HXMGT_DEVICE_BUSY",
    0x20000068: "HXMGT_REQUEST_PENDING",
    0x20000069: "HXMGT_REQUEST_SUSPENDED",
    0x2000006a: "HXMGT_REQUEST_RETRY_PENDING",
    0x2000006b: "HXMGT_DATA_OVERRUN",
    0x2000006c: "HXMGT_DATA_UNDERRUN",
    0x2000006d: "HXMGT_DEVICE_NOT_FOUND",
    0x2000006e: "HXMGT_COPY_FAILED",
    0x2000006f: "HXMGT_MAILBOX_FAILED",
    0x20000070: "HXMGT_INVALID_SUBCODE",
    0x20000071: "HXMGT_INCOMPATIBLE_VERSION",
    0x20000072: "HXMGT_BUFFER_TOO_SMALL",
    0x20000073: "HXMGT_INVALID_REQUEST",
    0x20000074: "HXMGT_OUT_OF_MEMORY",
    0x20000075: "HXMGT_UNKNOWN_ERROR",
    0x20000076: "HXMGT_REGISTRY_INVALID",
    0x20000077: "HXMGT_BUILT_BY_API",
    0x20000078: "HXMGT_PERSISTENT_STORAGE_ERROR",
    0x20000079: "HXMGT_DEVICE_NOT_READY",
    0x2000007a: "HXMGT_DEVICE_OFFLINE",
    0x2000007b: "HXMGT_HBA_IS_NOT_READY",
    0x2000007c: "HXMGT_HBA_QUEUE_IS_FULL",
    0x2000007d: "HXMGT_NVRAM_CHECKSUM_INVALID",
    0x2000007e: "HXMGT_FIRMWARE_STATE_INVALID",
    0x2000007f: "HXMGT_MUTEX_NOT_RESERVED",
    0x20000082: "HXMGT_OPTION_ROM_CHECKSUM_ERROR",
    0x20000083: "HXMGT_OPTION_ROM_EMPTY",
    0x20000084: "HXMGT_OPTION_ROM_SIZE_TOO_BIG",
    0x20000085: "HXMGT_OPTION_ROM_VERSION_MISMATCH",
    0x20000086: "HXMGT_OPTION_ROM_ATTRIBUTE_MISMATCH",
    0x20000087: "HXMGT_OPTION_ROM_INCOMPATIBLE_FIRMWARE",
    0x20000088: "HXMGT_OPTION_ROM_INVALID_FIRMWARE",
    0x2000008a: "HXMGT_OPTION_ROM_READ_ERROR",
    0x2000008b: "HXMGT_OPTION_ROM_WRITE_ERROR",
    0x20000090: "HXMGT_DMA_ERROR",
    0x20000091: "HXMGT_TIMED_OUT",
    0x20000092: "HXMGT_UNEXPECTED_RESET",
    0x200000a1: "HXMGT_SFP_DATA_UNAVAILABLE",
    0x200000a2: "HXMGT_SFP_TRANSFER_ERROR",
    0x200000a8: "HXMGT_NO_FIRMWARE_DUMP",
    0x200000c0: "HXMGT_SESSION_IN_PROGRESS",
    0x200000c1: "HXMGT_SESSION_EXPIRED",
    0x200000c2: "HXMGT_NO_FLASH_UPDATE_TOKEN",
    0x20000100: "HXMGT_FLASH_UPDATE_NOT_ACTIVATED",
    0x20000107: "HXMGT_OPTION_ROM_VPD_INVALID",
    0x20000109: "HXMGT_OPTION_ROM_REGION_INVALID",
    0x20000111: "HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER",
    0x20000113: "HXMGT_FIRMWARE_LOCKDOWN",
    0x20000118: "HXMGT_SFP_FIRMWARE_INCOMPATIBLE",
    0x20000119: "HXMGT_SFP_FIRMWARE_UPDATE_ERROR",
    0x2000011a: "HXMGT_PORT_ENABLE_FAILED",
    0x20000063: "HXMGT_ACTIVATION_TIMED_OUT",
    0x200000a3: "HXMGT_DRIVER_STATUS_26",
    0x200000a4: "HXMGT_DRIVER_STATUS_27",
    0x200000a5: "HXMGT_DRIVER_STATUS_28",
    0x200000a6: "HXMGT_DRIVER_STATUS_29",
    0x200000a7: "HXMGT_DRIVER_STATUS_34",
    0x200000a9: "HXMGT_DRIVER_STATUS_36",
    0x200000aa: "HXMGT_DRIVER_STATUS_37",
    0x200000ab: "HXMGT_DUMP_FILE_NOT_OPENED",
    0x200000ae: "HXMGT_DRIVER_STATUS_38",
    0x200000b0: "HXMGT_ELS_REJECTED",
    0x20000112: "HXMGT_BOOT_FROM_SAN_UNKNOWN",
    0x20000114: "HXMGT_PORT_DISABLED",
    0x20000115: "HXMGT_DIAGNOSTIC_TEST_RUNNING",
}


HX_FLASH_PROGRESS = CFUNCTYPE(c_uint32, c_void_p, c_uint32, c_uint32, c_uint32)


class HBA_WWN(Structure):
    """8 bytes."""
    wwn: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("wwn", c_uint8 * 8),
    ]


class HBA_ADAPTERATTRIBUTES(Structure):
    """2192 bytes."""
    Manufacturer: bytes
    SerialNumber: bytes
    Model: bytes
    ModelDescription: bytes
    NodeWWN: HBA_WWN
    NodeSymbolicName: bytes
    HardwareVersion: bytes
    DriverVersion: bytes
    OptionROMVersion: bytes
    FirmwareVersion: bytes
    VendorSpecificID: int
    NumberOfPorts: int
    DriverName: bytes
    _fields_ = [
        ("Manufacturer", c_char * 64),
        ("SerialNumber", c_char * 64),
        ("Model", c_char * 256),
        ("ModelDescription", c_char * 256),
        ("NodeWWN", HBA_WWN),
        ("NodeSymbolicName", c_char * 256),
        ("HardwareVersion", c_char * 256),
        ("DriverVersion", c_char * 256),
        ("OptionROMVersion", c_char * 256),
        ("FirmwareVersion", c_char * 256),
        ("VendorSpecificID", c_uint32),
        ("NumberOfPorts", c_uint32),
        ("DriverName", c_char * 256),
    ]


class HBA_FC4TYPES(Structure):
    """32 bytes."""
    bits: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("bits", c_uint8 * 32),
    ]


class HBA_PORTATTRIBUTES(Structure):
    """632 bytes."""
    NodeWWN: HBA_WWN
    PortWWN: HBA_WWN
    PortFcId: int
    PortType: int
    PortState: int
    PortSupportedClassofService: int
    PortSupportedFc4Types: HBA_FC4TYPES
    PortActiveFc4Types: HBA_FC4TYPES
    PortSymbolicName: bytes
    OSDeviceName: bytes
    PortSupportedSpeed: int
    PortSpeed: int
    PortMaxFrameSize: int
    FabricName: HBA_WWN
    NumberofDiscoveredPorts: int
    _fields_ = [
        ("NodeWWN", HBA_WWN),
        ("PortWWN", HBA_WWN),
        ("PortFcId", c_uint32),
        ("PortType", c_uint32),
        ("PortState", c_uint32),
        ("PortSupportedClassofService", c_uint32),
        ("PortSupportedFc4Types", HBA_FC4TYPES),
        ("PortActiveFc4Types", HBA_FC4TYPES),
        ("PortSymbolicName", c_char * 256),
        ("OSDeviceName", c_char * 256),
        ("PortSupportedSpeed", c_uint32),
        ("PortSpeed", c_uint32),
        ("PortMaxFrameSize", c_uint32),
        ("FabricName", HBA_WWN),
        ("NumberofDiscoveredPorts", c_uint32),
    ]


class HBA_PORTSTATISTICS(Structure):
    """120 bytes."""
    SecondsSinceLastReset: int
    TxFrames: int
    TxWords: int
    RxFrames: int
    RxWords: int
    LIPCount: int
    NOSCount: int
    ErrorFrames: int
    DumpedFrames: int
    LinkFailureCount: int
    LossOfSyncCount: int
    LossOfSignalCount: int
    PrimitiveSeqProtocolErrCount: int
    InvalidTxWordCount: int
    InvalidCRCCount: int
    _fields_ = [
        ("SecondsSinceLastReset", c_int64),
        ("TxFrames", c_int64),
        ("TxWords", c_int64),
        ("RxFrames", c_int64),
        ("RxWords", c_int64),
        ("LIPCount", c_int64),
        ("NOSCount", c_int64),
        ("ErrorFrames", c_int64),
        ("DumpedFrames", c_int64),
        ("LinkFailureCount", c_int64),
        ("LossOfSyncCount", c_int64),
        ("LossOfSignalCount", c_int64),
        ("PrimitiveSeqProtocolErrCount", c_int64),
        ("InvalidTxWordCount", c_int64),
        ("InvalidCRCCount", c_int64),
    ]


class HBA_SCSIID(Structure):
    """268 bytes."""
    OSDeviceName: bytes
    ScsiBusNumber: int
    ScsiTargetNumber: int
    ScsiOSLun: int
    _fields_ = [
        ("OSDeviceName", c_char * 256),
        ("ScsiBusNumber", c_uint32),
        ("ScsiTargetNumber", c_uint32),
        ("ScsiOSLun", c_uint32),
    ]


class HBA_FCPID(Structure):
    """32 bytes."""
    FcId: int
    NodeWWN: HBA_WWN
    PortWWN: HBA_WWN
    FcpLun: int
    _fields_ = [
        ("FcId", c_uint32),
        ("NodeWWN", HBA_WWN),
        ("PortWWN", HBA_WWN),
        ("FcpLun", c_uint64),
    ]


class HBA_FCPSCSIENTRY(Structure):
    """304 bytes."""
    ScsiId: HBA_SCSIID
    FcpId: HBA_FCPID
    _fields_ = [
        ("ScsiId", HBA_SCSIID),
        ("FcpId", HBA_FCPID),
    ]


class HBA_FCPTARGETMAPPING(Structure):
    """312 bytes."""
    NumberOfEntries: int
    entry: ctypes.Array[Any]
    _fields_ = [
        ("NumberOfEntries", c_uint32),
        ("entry", HBA_FCPSCSIENTRY * 1),
    ]


class HBA_FCPBINDINGENTRY(Structure):
    """312 bytes."""
    type: int
    ScsiId: HBA_SCSIID
    FcpId: HBA_FCPID
    FcId: int
    _fields_ = [
        ("type", c_uint32),
        ("ScsiId", HBA_SCSIID),
        ("FcpId", HBA_FCPID),
        ("FcId", c_uint32),
    ]


class HBA_FCPBINDING(Structure):
    """320 bytes."""
    NumberOfEntries: int
    entry: ctypes.Array[Any]
    _fields_ = [
        ("NumberOfEntries", c_uint32),
        ("entry", HBA_FCPBINDINGENTRY * 1),
    ]


class HBA_MGMTINFO(Structure):
    """44 bytes."""
    wwn: HBA_WWN
    unittype: int
    PortId: int
    NumberOfAttachedNodes: int
    IPVersion: int
    UDPPort: int
    IPAddress: ctypes.Array[Any]
    reserved: int
    TopologyDiscoveryFlags: int
    _fields_ = [
        ("wwn", HBA_WWN),
        ("unittype", c_uint32),
        ("PortId", c_uint32),
        ("NumberOfAttachedNodes", c_uint32),
        ("IPVersion", c_uint16),
        ("UDPPort", c_uint16),
        ("IPAddress", c_uint8 * 16),
        ("reserved", c_uint16),
        ("TopologyDiscoveryFlags", c_uint16),
    ]


class HBA_LINK_EVENTINFO(Structure):
    """16 bytes."""
    PortFcId: int
    Reserved: ctypes.Array[Any]
    _fields_ = [
        ("PortFcId", c_uint32),
        ("Reserved", c_uint32 * 3),
    ]


class HBA_RSCN_EVENTINFO(Structure):
    """16 bytes."""
    PortFcId: int
    NPortPage: int
    Reserved: ctypes.Array[Any]
    _fields_ = [
        ("PortFcId", c_uint32),
        ("NPortPage", c_uint32),
        ("Reserved", c_uint32 * 2),
    ]


class HBA_PTY_EVENTINFO(Structure):
    """16 bytes."""
    PtyData: ctypes.Array[Any]
    _fields_ = [
        ("PtyData", c_uint32 * 4),
    ]


class HBA_EVENTINFO_Event(Union):
    """16 bytes."""
    Link_EventInfo: HBA_LINK_EVENTINFO
    RSCN_EventInfo: HBA_RSCN_EVENTINFO
    Pty_EventInfo: HBA_PTY_EVENTINFO
    _fields_ = [
        ("Link_EventInfo", HBA_LINK_EVENTINFO),
        ("RSCN_EventInfo", HBA_RSCN_EVENTINFO),
        ("Pty_EventInfo", HBA_PTY_EVENTINFO),
    ]


class HBA_EVENTINFO(Structure):
    """20 bytes."""
    EventCode: int
    Event: HBA_EVENTINFO_Event
    _fields_ = [
        ("EventCode", c_uint32),
        ("Event", HBA_EVENTINFO_Event),
    ]


class HBA_ENTRYPOINTS(Structure):
    """192 bytes."""
    GetVersionHandler: Any
    LoadLibraryHandler: Any
    FreeLibraryHandler: Any
    GetNumberOfAdaptersHandler: Any
    GetAdapterNameHandler: Any
    OpenAdapterHandler: Any
    CloseAdapterHandler: Any
    GetAdapterAttributesHandler: Any
    GetAdapterPortAttributesHandler: Any
    GetPortStatisticsHandler: Any
    GetDiscoveredPortAttributesHandler: Any
    GetPortAttributesByWWNHandler: Any
    SendCTPassThruHandler: Any
    RefreshInformationHandler: Any
    ResetStatisticsHandler: Any
    GetFcpTargetMappingHandler: Any
    GetFcpPersistentBindingHandler: Any
    GetEventBufferHandler: Any
    SetRNIDMgmtInfoHandler: Any
    GetRNIDMgmtInfoHandler: Any
    SendRNIDHandler: Any
    ScsiInquiryHandler: Any
    ReportLUNsHandler: Any
    ReadCapacityHandler: Any
    _fields_ = [
        ("GetVersionHandler", CFUNCTYPE(c_uint32)),
        ("LoadLibraryHandler", CFUNCTYPE(c_uint32)),
        ("FreeLibraryHandler", CFUNCTYPE(c_uint32)),
        ("GetNumberOfAdaptersHandler", CFUNCTYPE(c_uint32)),
        ("GetAdapterNameHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(c_char))),
        ("OpenAdapterHandler", CFUNCTYPE(c_uint32, POINTER(c_char))),
        ("CloseAdapterHandler", CFUNCTYPE(None, c_uint32)),
        ("GetAdapterAttributesHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(HBA_ADAPTERATTRIBUTES))),
        ("GetAdapterPortAttributesHandler", CFUNCTYPE(c_uint32, c_uint32, c_uint32, POINTER(HBA_PORTATTRIBUTES))),
        ("GetPortStatisticsHandler", CFUNCTYPE(c_uint32, c_uint32, c_uint32, POINTER(HBA_PORTSTATISTICS))),
        ("GetDiscoveredPortAttributesHandler", CFUNCTYPE(c_uint32, c_uint32, c_uint32, c_uint32, POINTER(HBA_PORTATTRIBUTES))),
        ("GetPortAttributesByWWNHandler", CFUNCTYPE(c_uint32, c_uint32, HBA_WWN, POINTER(HBA_PORTATTRIBUTES))),
        ("SendCTPassThruHandler", CFUNCTYPE(c_uint32, c_uint32, c_void_p, c_uint32, c_void_p, c_uint32)),
        ("RefreshInformationHandler", CFUNCTYPE(None, c_uint32)),
        ("ResetStatisticsHandler", CFUNCTYPE(c_uint32, c_uint32, c_uint32)),
        ("GetFcpTargetMappingHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(HBA_FCPTARGETMAPPING))),
        ("GetFcpPersistentBindingHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(HBA_FCPBINDING))),
        ("GetEventBufferHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(HBA_EVENTINFO), POINTER(c_uint32))),
        ("SetRNIDMgmtInfoHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(HBA_MGMTINFO))),
        ("GetRNIDMgmtInfoHandler", CFUNCTYPE(c_uint32, c_uint32, POINTER(HBA_MGMTINFO))),
        ("SendRNIDHandler", CFUNCTYPE(c_uint32, c_uint32, HBA_WWN, c_int32, c_void_p, POINTER(c_uint32))),
        ("ScsiInquiryHandler", CFUNCTYPE(c_uint32, c_uint32, HBA_WWN, c_uint64, c_uint8, c_uint32, c_void_p, c_uint32, c_void_p, c_uint32)),
        ("ReportLUNsHandler", CFUNCTYPE(c_uint32, c_uint32, HBA_WWN, c_void_p, c_uint32, c_void_p, c_uint32)),
        ("ReadCapacityHandler", CFUNCTYPE(c_uint32, c_uint32, HBA_WWN, c_uint64, c_void_p, c_uint32, c_void_p, c_uint32)),
    ]


class HXMGT_API_HANDLE(Structure):
    """120 bytes."""
    hDevice: Any
    szModel: bytes
    pTraceFile: Any
    dwTraceLevel: int
    szDeviceName: bytes
    dwDriverVersion: int
    dwAdapterIndex: int
    dwScsiPort: int
    dwActivationTimeout: int
    qwExpectedFirmwareAttributes: int
    qwFlashUpdateCapabilities: int
    _fields_ = [
        ("hDevice", c_void_p),
        ("szModel", c_char * 32),
        ("pTraceFile", c_void_p),
        ("dwTraceLevel", c_uint32),
        ("szDeviceName", c_char * 32),
        ("dwDriverVersion", c_uint32),
        ("dwAdapterIndex", c_uint32),
        ("dwScsiPort", c_uint32),
        ("dwActivationTimeout", c_uint32),
        ("qwExpectedFirmwareAttributes", c_uint64),
        ("qwFlashUpdateCapabilities", c_uint64),
    ]


class HX_NODE_PROPERTY(Structure):
    """388 bytes."""
    nodeName: ctypes.Array[Any]
    manufacturer: bytes
    model: bytes
    modelDescription: bytes
    serialPresent: int
    serialNumber: bytes
    driverVersion: bytes
    firmwareVersion: bytes
    optionRomVersion: bytes
    numberOfPorts: int
    adapterGeneration: int
    vendorSpecificId: int
    firmwareAttributes: int
    flags: int
    serialBytes: ctypes.Array[Any]
    reserved: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("nodeName", c_uint8 * 8),
        ("manufacturer", c_char * 80),
        ("model", c_char * 16),
        ("modelDescription", c_char * 16),
        ("serialPresent", c_uint8),
        ("serialNumber", c_char * 31),
        ("driverVersion", c_char * 32),
        ("firmwareVersion", c_char * 32),
        ("optionRomVersion", c_char * 32),
        ("numberOfPorts", c_uint16),
        ("adapterGeneration", c_uint16),
        ("vendorSpecificId", c_uint32),
        ("firmwareAttributes", c_uint32),
        ("flags", c_uint32),
        ("serialBytes", c_uint8 * 3),
        ("reserved", c_uint8 * 121),
    ]


class HX_PORT_PROPERTY(Structure):
    """112 bytes."""
    portName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    role: int
    state: int
    topology: int
    discoveredDevices: int
    discoveredTargets: int
    deviceName: bytes
    currentSpeed: int
    reserved51: ctypes.Array[Any]
    maxFrameSize: int
    bbCredits: int
    npivMaximum: int
    npivInUse: int
    supportedSpeeds: int
    reserved63: ctypes.Array[Any]
    maxTargets: int
    maxLunsPerTarget: int
    executionThrottle: int
    reserved88: int
    loginTimeout: int
    linkDownTimeout: int
    portDownRetry: int
    reserved96: int
    transceiverType: ctypes.Array[Any]
    fecActive: int
    trunkState: int
    featureMask: int
    nvmeEnabled: int
    fcpEnabled: int
    diagnosticState: int
    reserved109: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("portName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("role", c_uint8),
        ("state", c_uint8),
        ("topology", c_uint8),
        ("discoveredDevices", c_uint16),
        ("discoveredTargets", c_uint16),
        ("deviceName", c_char * 32),
        ("currentSpeed", c_uint8),
        ("reserved51", c_uint8 * 3),
        ("maxFrameSize", c_uint16),
        ("bbCredits", c_uint16),
        ("npivMaximum", c_uint16),
        ("npivInUse", c_uint16),
        ("supportedSpeeds", c_uint8),
        ("reserved63", c_uint8 * 19),
        ("maxTargets", c_uint16),
        ("maxLunsPerTarget", c_uint16),
        ("executionThrottle", c_uint16),
        ("reserved88", c_uint16),
        ("loginTimeout", c_uint16),
        ("linkDownTimeout", c_uint16),
        ("portDownRetry", c_uint16),
        ("reserved96", c_uint16),
        ("transceiverType", c_uint8 * 2),
        ("fecActive", c_uint8),
        ("trunkState", c_uint8),
        ("featureMask", c_uint32),
        ("nvmeEnabled", c_uint8),
        ("fcpEnabled", c_uint8),
        ("diagnosticState", c_uint8),
        ("reserved109", c_uint8 * 3),
    ]


class HX_CHIP_PROPERTY(Structure):
    """80 bytes."""
    vendorId: int
    deviceId: int
    subsystemVendorId: int
    subsystemDeviceId: int
    revision: int
    classWord: int
    baseAddresses: ctypes.Array[Any]
    pciCommand: int
    pciStatus: int
    reserved32: ctypes.Array[Any]
    linkCapabilities: int
    linkStatus: int
    busLocation: int
    functionBits: int
    flashRegionFlag: int
    flashRegionCode: int
    reserved59: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("vendorId", c_uint16),
        ("deviceId", c_uint16),
        ("subsystemVendorId", c_uint16),
        ("subsystemDeviceId", c_uint16),
        ("revision", c_uint16),
        ("classWord", c_uint16),
        ("baseAddresses", c_uint32 * 4),
        ("pciCommand", c_uint16),
        ("pciStatus", c_uint16),
        ("reserved32", c_uint8 * 16),
        ("linkCapabilities", c_uint16),
        ("linkStatus", c_uint16),
        ("busLocation", c_uint32),
        ("functionBits", c_uint8),
        ("flashRegionFlag", c_uint8),
        ("flashRegionCode", c_uint8),
        ("reserved59", c_uint8 * 21),
    ]


class HX_DRIVER_PROPERTY(Structure):
    """74 bytes."""
    version: bytes
    driverModel: int
    driverModelRevision: int
    maxScatterGather: int
    maxTransferLength: int
    maxQueueDepth: int
    interruptMode: int
    numberOfPorts: int
    buildText: ctypes.Array[Any]
    buildNumber: int
    _pack_ = 1
    _fields_ = [
        ("version", c_char * 32),
        ("driverModel", c_uint16),
        ("driverModelRevision", c_uint16),
        ("maxScatterGather", c_uint16),
        ("maxTransferLength", c_uint64),
        ("maxQueueDepth", c_uint16),
        ("interruptMode", c_uint16),
        ("numberOfPorts", c_uint32),
        ("buildText", c_uint8 * 16),
        ("buildNumber", c_uint32),
    ]


class HX_FIRMWARE_PROPERTY(Structure):
    """40 bytes."""
    version: bytes
    attributes: int
    activationAttributes: int
    _pack_ = 1
    _fields_ = [
        ("version", c_char * 32),
        ("attributes", c_uint32),
        ("activationAttributes", c_uint32),
    ]


class HX_SCSI_PORT(Structure):
    """264 bytes."""
    scsiPort: int
    familyDriver: int
    driver: bytes
    _pack_ = 1
    _fields_ = [
        ("scsiPort", c_uint32),
        ("familyDriver", c_uint32),
        ("driver", c_char * 256),
    ]


class HX_EVENT(Structure):
    """16 bytes."""
    type: int
    data: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("type", c_uint32),
        ("data", c_uint32 * 3),
    ]


class HX_SCSI_ADDRESS(Structure):
    """12 bytes."""
    type: int
    address: ctypes.Array[Any]
    lun: int
    _pack_ = 1
    _fields_ = [
        ("type", c_uint16),
        ("address", c_uint8 * 8),
        ("lun", c_uint16),
    ]


class HX_LOOPBACK_RESULT(Structure):
    """48 bytes."""
    completion: int
    firmware: ctypes.Array[Any]
    value32: int
    reserved: ctypes.Array[Any]
    value40: int
    _pack_ = 1
    _fields_ = [
        ("completion", c_uint16),
        ("firmware", c_uint8 * 30),
        ("value32", c_uint32),
        ("reserved", c_uint8 * 4),
        ("value40", c_uint64),
    ]


class HX_LOOPBACK_EX_RESULT(Structure):
    """12 bytes."""
    completion: int
    counters: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("completion", c_uint16),
        ("counters", c_uint16 * 5),
    ]


class HX_DPORT_RESULT(Structure):
    """72 bytes."""
    bytes: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("bytes", c_uint8 * 72),
    ]


class HX_DPORT_RESULT_EX2(Structure):
    """1088 bytes."""
    bytes: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("bytes", c_uint8 * 1088),
    ]


class HX_TARGET_ENTRY(Structure):
    """32 bytes."""
    targetNumber: int
    bus: int
    target: int
    reserved4: ctypes.Array[Any]
    bindingFlags: int
    reserved9: int
    lunBase: int
    portId: ctypes.Array[Any]
    reserved15: int
    nodeName: ctypes.Array[Any]
    portName: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("targetNumber", c_uint16),
        ("bus", c_uint8),
        ("target", c_uint8),
        ("reserved4", c_uint8 * 4),
        ("bindingFlags", c_uint8),
        ("reserved9", c_uint8),
        ("lunBase", c_uint16),
        ("portId", c_uint8 * 3),
        ("reserved15", c_uint8),
        ("nodeName", c_uint8 * 8),
        ("portName", c_uint8 * 8),
    ]


class HX_TARGET_DATA(Structure):
    """8224 bytes."""
    header: int
    count: int
    reserved4: ctypes.Array[Any]
    entries: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("header", c_uint16),
        ("count", c_uint16),
        ("reserved4", c_uint8 * 28),
        ("entries", HX_TARGET_ENTRY * 256),
    ]


class HX_LUN_RECORD(Structure):
    """2080 bytes."""
    nodeName: ctypes.Array[Any]
    portName: ctypes.Array[Any]
    reserved16: ctypes.Array[Any]
    luns: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("nodeName", c_uint8 * 8),
        ("portName", c_uint8 * 8),
        ("reserved16", c_uint8 * 16),
        ("luns", c_uint8 * 2048),
    ]


class HX_LUN_DATA(Structure):
    """532512 bytes."""
    version: int
    count: int
    reserved4: ctypes.Array[Any]
    records: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("version", c_uint16),
        ("count", c_uint16),
        ("reserved4", c_uint8 * 28),
        ("records", HX_LUN_RECORD * 256),
    ]


class HX_WWN_LIST(Structure):
    """2048 bytes."""
    names: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("names", c_uint8 * 8 * 256),
    ]


class HX_BUS_TARGET_LUN(Structure):
    """6 bytes."""
    bus: int
    target: int
    lun: int
    _pack_ = 1
    _fields_ = [
        ("bus", c_uint16),
        ("target", c_uint16),
        ("lun", c_uint16),
    ]


class HX_DEVICE_RECORD(Structure):
    """290 bytes."""
    nodeName: ctypes.Array[Any]
    portName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    bindingFlags: int
    bus: int
    target: int
    lun: int
    symbolicName: ctypes.Array[Any]
    roleAndState: int
    targetNumber: int
    portFlags: int
    reserved162: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("nodeName", c_uint8 * 8),
        ("portName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("bindingFlags", c_uint8),
        ("bus", c_uint16),
        ("target", c_uint16),
        ("lun", c_uint16),
        ("symbolicName", c_uint8 * 128),
        ("roleAndState", c_uint32),
        ("targetNumber", c_uint16),
        ("portFlags", c_uint16),
        ("reserved162", c_uint8 * 128),
    ]


class HX_PORT_DATABASE(Structure):
    """8 bytes."""
    type: int
    count: int
    reserved6: int
    _pack_ = 1
    _fields_ = [
        ("type", c_uint32),
        ("count", c_uint16),
        ("reserved6", c_uint16),
    ]


class HX_DISCOVERED_DEVICE(Structure):
    """26 bytes."""
    nodeName: ctypes.Array[Any]
    portName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    bindingFlags: int
    bus: int
    target: int
    lun: int
    _pack_ = 1
    _fields_ = [
        ("nodeName", c_uint8 * 8),
        ("portName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("bindingFlags", c_uint8),
        ("bus", c_uint16),
        ("target", c_uint16),
        ("lun", c_uint16),
    ]


class HX_DISCOVERED_PORT(Structure):
    """60 bytes."""
    device: HX_DISCOVERED_DEVICE
    reserved26: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("device", HX_DISCOVERED_DEVICE),
        ("reserved26", c_uint8 * 34),
    ]


class HX_DISCOVERED_TARGET(Structure):
    """64 bytes."""
    device: HX_DISCOVERED_DEVICE
    reserved26: ctypes.Array[Any]
    numberOfLuns: int
    reserved32: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("device", HX_DISCOVERED_DEVICE),
        ("reserved26", c_uint8 * 2),
        ("numberOfLuns", c_uint32),
        ("reserved32", c_uint8 * 32),
    ]


class HX_STATISTICS(Structure):
    """112 bytes."""
    secondsSinceReset: int
    txFrames: int
    rxFrames: int
    txWords: int
    rxWords: int
    lipCount: int
    linkFailures: int
    lossesOfSync: int
    lossesOfSignal: int
    primitiveSequenceErrors: int
    invalidTransmissionWords: int
    invalidCrcs: int
    reserved: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("secondsSinceReset", c_uint32),
        ("txFrames", c_uint32),
        ("rxFrames", c_uint32),
        ("txWords", c_uint32),
        ("rxWords", c_uint32),
        ("lipCount", c_uint32),
        ("linkFailures", c_uint32),
        ("lossesOfSync", c_uint32),
        ("lossesOfSignal", c_uint32),
        ("primitiveSequenceErrors", c_uint32),
        ("invalidTransmissionWords", c_uint32),
        ("invalidCrcs", c_uint32),
        ("reserved", c_uint32 * 16),
    ]


class HX_MGMT_ADDRESS(Structure):
    """52 bytes."""
    portName: ctypes.Array[Any]
    reserved8: ctypes.Array[Any]
    unitType: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    attachedNodes: ctypes.Array[Any]
    ipVersion: ctypes.Array[Any]
    udpPort: ctypes.Array[Any]
    ipAddress: ctypes.Array[Any]
    reserved48: ctypes.Array[Any]
    topologyDiscoveryFlags: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("portName", c_uint8 * 8),
        ("reserved8", c_uint8 * 8),
        ("unitType", c_uint8 * 4),
        ("portId", c_uint8 * 4),
        ("attachedNodes", c_uint8 * 4),
        ("ipVersion", c_uint8 * 2),
        ("udpPort", c_uint8 * 2),
        ("ipAddress", c_uint8 * 16),
        ("reserved48", c_uint8 * 2),
        ("topologyDiscoveryFlags", c_uint8 * 2),
    ]


class HX_MGMT_ADDRESS_SETTING(Structure):
    """20 bytes."""
    ipVersion: ctypes.Array[Any]
    udpPort: ctypes.Array[Any]
    ipAddress: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("ipVersion", c_uint8 * 2),
        ("udpPort", c_uint8 * 2),
        ("ipAddress", c_uint8 * 16),
    ]


class HX_PORT_STATISTICS(Structure):
    """136 bytes."""
    secondsSinceReset: int
    txFrames: int
    txWords: int
    rxFrames: int
    rxWords: int
    lipCount: int
    nosCount: int
    errorFrames: int
    dumpedFrames: int
    linkFailures: int
    lossesOfSync: int
    lossesOfSignal: int
    primitiveSequenceErrors: int
    invalidTransmissionWords: int
    invalidCrcs: int
    correctedFecBlocks: int
    uncorrectableFecBlocks: int
    _pack_ = 1
    _fields_ = [
        ("secondsSinceReset", c_uint64),
        ("txFrames", c_uint64),
        ("txWords", c_uint64),
        ("rxFrames", c_uint64),
        ("rxWords", c_uint64),
        ("lipCount", c_uint64),
        ("nosCount", c_uint64),
        ("errorFrames", c_uint64),
        ("dumpedFrames", c_uint64),
        ("linkFailures", c_uint64),
        ("lossesOfSync", c_uint64),
        ("lossesOfSignal", c_uint64),
        ("primitiveSequenceErrors", c_uint64),
        ("invalidTransmissionWords", c_uint64),
        ("invalidCrcs", c_uint64),
        ("correctedFecBlocks", c_uint64),
        ("uncorrectableFecBlocks", c_uint64),
    ]


class HX_PROTOCOL_STATISTICS(Structure):
    """40 bytes."""
    inputRequests: int
    outputRequests: int
    controlRequests: int
    inputBytes: int
    outputBytes: int
    _pack_ = 1
    _fields_ = [
        ("inputRequests", c_uint64),
        ("outputRequests", c_uint64),
        ("controlRequests", c_uint64),
        ("inputBytes", c_uint64),
        ("outputBytes", c_uint64),
    ]


class HX_PORT_STATISTICS_V2(Structure):
    """496 bytes."""
    port: HX_PORT_STATISTICS
    fcp: HX_PROTOCOL_STATISTICS
    nvme: HX_PROTOCOL_STATISTICS
    txCreditZero: int
    txCreditZeroTime: int
    linkResetsSent: int
    linkResetsReceived: int
    txCreditsRecovered: int
    rxCreditsRecovered: int
    rxBufferFull: int
    framesTimedOut: int
    abtsSent: int
    abtsReceived: int
    exchangesTimedOut: int
    exchangesRetried: int
    taskSetFull: int
    logoutsReceived: int
    lsRejects: int
    busyReplies: int
    rscnsReceived: int
    fpinsReceived: int
    flogis: int
    plogis: int
    reserved376: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("port", HX_PORT_STATISTICS),
        ("fcp", HX_PROTOCOL_STATISTICS),
        ("nvme", HX_PROTOCOL_STATISTICS),
        ("txCreditZero", c_uint64),
        ("txCreditZeroTime", c_uint64),
        ("linkResetsSent", c_uint64),
        ("linkResetsReceived", c_uint64),
        ("txCreditsRecovered", c_uint64),
        ("rxCreditsRecovered", c_uint64),
        ("rxBufferFull", c_uint64),
        ("framesTimedOut", c_uint64),
        ("abtsSent", c_uint64),
        ("abtsReceived", c_uint64),
        ("exchangesTimedOut", c_uint64),
        ("exchangesRetried", c_uint64),
        ("taskSetFull", c_uint64),
        ("logoutsReceived", c_uint64),
        ("lsRejects", c_uint64),
        ("busyReplies", c_uint64),
        ("rscnsReceived", c_uint64),
        ("fpinsReceived", c_uint64),
        ("flogis", c_uint64),
        ("plogis", c_uint64),
        ("reserved376", c_uint8 * 120),
    ]


class HX_FPIN_COUNTERS(Structure):
    """120 bytes."""
    linkFailure: int
    lossOfSync: int
    lossOfSignal: int
    primitiveSequenceError: int
    invalidTransmissionWord: int
    invalidCrc: int
    linkOther: int
    deliveryTimeout: int
    deliveryUnableToRoute: int
    deliveryOther: int
    congestionCleared: int
    lostCredit: int
    creditStall: int
    oversubscription: int
    congestionOther: int
    _pack_ = 1
    _fields_ = [
        ("linkFailure", c_uint64),
        ("lossOfSync", c_uint64),
        ("lossOfSignal", c_uint64),
        ("primitiveSequenceError", c_uint64),
        ("invalidTransmissionWord", c_uint64),
        ("invalidCrc", c_uint64),
        ("linkOther", c_uint64),
        ("deliveryTimeout", c_uint64),
        ("deliveryUnableToRoute", c_uint64),
        ("deliveryOther", c_uint64),
        ("congestionCleared", c_uint64),
        ("lostCredit", c_uint64),
        ("creditStall", c_uint64),
        ("oversubscription", c_uint64),
        ("congestionOther", c_uint64),
    ]


class HX_PORT_SCM_STATISTICS(Structure):
    """136 bytes."""
    mark: int
    state: int
    fpins: HX_FPIN_COUNTERS
    lastEvent: int
    _pack_ = 1
    _fields_ = [
        ("mark", c_uint32),
        ("state", c_uint32),
        ("fpins", HX_FPIN_COUNTERS),
        ("lastEvent", c_uint64),
    ]


class HX_LINK_ERRORS(Structure):
    """24 bytes."""
    linkFailures: int
    lossesOfSync: int
    lossesOfSignal: int
    primitiveSequenceErrors: int
    invalidTransmissionWords: int
    invalidCrcs: int
    _pack_ = 1
    _fields_ = [
        ("linkFailures", c_uint32),
        ("lossesOfSync", c_uint32),
        ("lossesOfSignal", c_uint32),
        ("primitiveSequenceErrors", c_uint32),
        ("invalidTransmissionWords", c_uint32),
        ("invalidCrcs", c_uint32),
    ]


class HX_SCM_STATISTICS(Structure):
    """512 bytes."""
    version: int
    state: int
    secondsSinceReset: int
    fpins: HX_FPIN_COUNTERS
    peerFpins: HX_FPIN_COUNTERS
    warningSignals: int
    alarmSignals: int
    throttledSeconds: int
    throttledRequests: int
    warningInterval: int
    alarmInterval: int
    severity: int
    allowedPercent: int
    fpinsReceived: int
    lastEvent: int
    linkErrors: HX_LINK_ERRORS
    reserved336: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("version", c_uint32),
        ("state", c_uint32),
        ("secondsSinceReset", c_uint64),
        ("fpins", HX_FPIN_COUNTERS),
        ("peerFpins", HX_FPIN_COUNTERS),
        ("warningSignals", c_uint64),
        ("alarmSignals", c_uint64),
        ("throttledSeconds", c_uint64),
        ("throttledRequests", c_uint64),
        ("warningInterval", c_uint32),
        ("alarmInterval", c_uint32),
        ("severity", c_uint16),
        ("allowedPercent", c_uint16),
        ("fpinsReceived", c_uint32),
        ("lastEvent", c_uint64),
        ("linkErrors", HX_LINK_ERRORS),
        ("reserved336", c_uint8 * 176),
    ]


class HX_PRIVATE_STATISTICS(Structure):
    """512 bytes."""
    options: int
    counters: int
    secondsSinceReset: int
    commandsStarted: int
    commandsCompleted: int
    commandsFailed: int
    commandsAborted: int
    commandsTimedOut: int
    commandsOutstanding: int
    commandsOutstandingMost: int
    queueFull: int
    busyRetries: int
    underruns: int
    overruns: int
    lunResets: int
    targetResets: int
    loginRetries: int
    interrupts: int
    mailboxCommands: int
    mailboxFailures: int
    firmwareResets: int
    linkDowns: int
    reserved168: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("options", c_uint32),
        ("counters", c_uint32),
        ("secondsSinceReset", c_uint64),
        ("commandsStarted", c_uint64),
        ("commandsCompleted", c_uint64),
        ("commandsFailed", c_uint64),
        ("commandsAborted", c_uint64),
        ("commandsTimedOut", c_uint64),
        ("commandsOutstanding", c_uint64),
        ("commandsOutstandingMost", c_uint64),
        ("queueFull", c_uint64),
        ("busyRetries", c_uint64),
        ("underruns", c_uint64),
        ("overruns", c_uint64),
        ("lunResets", c_uint64),
        ("targetResets", c_uint64),
        ("loginRetries", c_uint64),
        ("interrupts", c_uint64),
        ("mailboxCommands", c_uint64),
        ("mailboxFailures", c_uint64),
        ("firmwareResets", c_uint64),
        ("linkDowns", c_uint64),
        ("reserved168", c_uint8 * 344),
    ]


class HX_PRIVATE_STATISTICS_EX(Structure):
    """512 bytes."""
    options: int
    buckets: int
    secondsSinceReset: int
    reads: ctypes.Array[Any]
    writes: ctypes.Array[Any]
    readTime: int
    writeTime: int
    longestRead: int
    longestWrite: int
    reserved432: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("options", c_uint32),
        ("buckets", c_uint32),
        ("secondsSinceReset", c_uint64),
        ("reads", c_uint64 * 24),
        ("writes", c_uint64 * 24),
        ("readTime", c_uint64),
        ("writeTime", c_uint64),
        ("longestRead", c_uint64),
        ("longestWrite", c_uint64),
        ("reserved432", c_uint8 * 80),
    ]


class HX_POSITIONAL_MAP(Structure):
    """128 bytes."""
    count: int
    alPa: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("count", c_uint8),
        ("alPa", c_uint8 * 127),
    ]


class HX_REMOTE_PORT(Structure):
    """128 bytes."""
    nodeName: ctypes.Array[Any]
    portName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    state: int
    roles: int
    flags: int
    bus: int
    target: int
    loopId: int
    maxFrameSize: int
    bbCredits: int
    sequences: int
    speed: int
    highestSpeed: int
    reserved38: ctypes.Array[Any]
    temperature: int
    voltage: int
    bias: int
    txPower: int
    rxPower: int
    transceiverFlags: int
    errors: HX_LINK_ERRORS
    correctedFecBlocks: int
    uncorrectableFecBlocks: int
    secondsOnline: int
    symbolicName: bytes
    _pack_ = 1
    _fields_ = [
        ("nodeName", c_uint8 * 8),
        ("portName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("state", c_uint8),
        ("roles", c_uint16),
        ("flags", c_uint16),
        ("bus", c_uint16),
        ("target", c_uint16),
        ("loopId", c_uint16),
        ("maxFrameSize", c_uint16),
        ("bbCredits", c_uint16),
        ("sequences", c_uint16),
        ("speed", c_uint8),
        ("highestSpeed", c_uint8),
        ("reserved38", c_uint8 * 2),
        ("temperature", c_int16),
        ("voltage", c_uint16),
        ("bias", c_uint16),
        ("txPower", c_uint16),
        ("rxPower", c_uint16),
        ("transceiverFlags", c_uint16),
        ("errors", HX_LINK_ERRORS),
        ("correctedFecBlocks", c_uint32),
        ("uncorrectableFecBlocks", c_uint32),
        ("secondsOnline", c_uint32),
        ("symbolicName", c_char * 40),
    ]


class HX_SECURE_PORT(Structure):
    """72 bytes."""
    portName: ctypes.Array[Any]
    nodeName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    state: int
    authentication: int
    encryption: int
    directions: int
    rejectReason: int
    txSpi: int
    rxSpi: int
    txBytes: int
    rxBytes: int
    rekeys: int
    secondsSinceRekey: int
    failures: int
    framesRefused: int
    reserved64: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("portName", c_uint8 * 8),
        ("nodeName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("state", c_uint8),
        ("authentication", c_uint8),
        ("encryption", c_uint8),
        ("directions", c_uint8),
        ("rejectReason", c_uint8),
        ("txSpi", c_uint32),
        ("rxSpi", c_uint32),
        ("txBytes", c_uint64),
        ("rxBytes", c_uint64),
        ("rekeys", c_uint32),
        ("secondsSinceRekey", c_uint32),
        ("failures", c_uint32),
        ("framesRefused", c_uint32),
        ("reserved64", c_uint8 * 8),
    ]


class HX_TARGET_LINK_SPEED(Structure):
    """8 bytes."""
    speed: int
    portSpeed: int
    highest: int
    flags: int
    _pack_ = 1
    _fields_ = [
        ("speed", c_uint16),
        ("portSpeed", c_uint16),
        ("highest", c_uint16),
        ("flags", c_uint16),
    ]


class HX_LUN_QOS(Structure):
    """256 bytes."""
    levels: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("levels", c_uint8 * 256),
    ]


class HX_NPIV_ATTRIBUTES(Structure):
    """56 bytes."""
    maximum: int
    inUse: int
    flags: int
    count: int
    first: int
    version: int
    portName: ctypes.Array[Any]
    nodeName: ctypes.Array[Any]
    fabricName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    reserved43: int
    fdiscs: int
    fdiscRejects: int
    reserved52: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("maximum", c_uint16),
        ("inUse", c_uint16),
        ("flags", c_uint16),
        ("count", c_uint16),
        ("first", c_uint32),
        ("version", c_uint32),
        ("portName", c_uint8 * 8),
        ("nodeName", c_uint8 * 8),
        ("fabricName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("reserved43", c_uint8),
        ("fdiscs", c_uint32),
        ("fdiscRejects", c_uint32),
        ("reserved52", c_uint8 * 4),
    ]


class HX_VIRTUAL_PORT(Structure):
    """56 bytes."""
    portName: ctypes.Array[Any]
    nodeName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    state: int
    index: int
    level: int
    targets: int
    rejectReason: int
    rejectExplanation: int
    secondsOnline: int
    symbolicName: bytes
    _pack_ = 1
    _fields_ = [
        ("portName", c_uint8 * 8),
        ("nodeName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("state", c_uint8),
        ("index", c_uint16),
        ("level", c_uint16),
        ("targets", c_uint16),
        ("rejectReason", c_uint8),
        ("rejectExplanation", c_uint8),
        ("secondsOnline", c_uint32),
        ("symbolicName", c_char * 24),
    ]


class HX_NVME_PORT(Structure):
    """64 bytes."""
    portName: ctypes.Array[Any]
    nodeName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    roles: int
    state: int
    reserved21: int
    controllers: int
    namespaces: int
    secondsOnline: int
    readRequests: int
    writeRequests: int
    lsRequests: int
    lsErrors: int
    _pack_ = 1
    _fields_ = [
        ("portName", c_uint8 * 8),
        ("nodeName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("roles", c_uint8),
        ("state", c_uint8),
        ("reserved21", c_uint8),
        ("controllers", c_uint16),
        ("namespaces", c_uint32),
        ("secondsOnline", c_uint32),
        ("readRequests", c_uint64),
        ("writeRequests", c_uint64),
        ("lsRequests", c_uint64),
        ("lsErrors", c_uint64),
    ]


class HX_NVME_TARGET(Structure):
    """1024 bytes."""
    portName: ctypes.Array[Any]
    nodeName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    kind: int
    index: int
    controllers: int
    controllerId: int
    state: int
    flags: int
    namespaces: int
    version: int
    maxTransfer: int
    ioQueues: int
    queueDepth: int
    keepAlive: int
    lossTimeout: int
    reconnects: int
    associationId: int
    subsystemNqn: bytes
    hostNqn: bytes
    hostId: ctypes.Array[Any]
    serial: bytes
    model: bytes
    firmware: bytes
    reserved660: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("portName", c_uint8 * 8),
        ("nodeName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("kind", c_uint8),
        ("index", c_uint16),
        ("controllers", c_uint16),
        ("controllerId", c_uint16),
        ("state", c_uint8),
        ("flags", c_uint8),
        ("namespaces", c_uint32),
        ("version", c_uint32),
        ("maxTransfer", c_uint32),
        ("ioQueues", c_uint16),
        ("queueDepth", c_uint16),
        ("keepAlive", c_uint32),
        ("lossTimeout", c_uint32),
        ("reconnects", c_uint32),
        ("associationId", c_uint64),
        ("subsystemNqn", c_char * 256),
        ("hostNqn", c_char * 256),
        ("hostId", c_uint8 * 16),
        ("serial", c_char * 20),
        ("model", c_char * 40),
        ("firmware", c_char * 8),
        ("reserved660", c_uint8 * 364),
    ]


class HX_NVME_NAMESPACE(Structure):
    """64 bytes."""
    id: int
    blockSize: int
    blocks: int
    capacity: int
    used: int
    eui64: ctypes.Array[Any]
    nguid: ctypes.Array[Any]
    anaGroup: int
    anaState: int
    flags: int
    metadata: int
    _pack_ = 1
    _fields_ = [
        ("id", c_uint32),
        ("blockSize", c_uint32),
        ("blocks", c_uint64),
        ("capacity", c_uint64),
        ("used", c_uint64),
        ("eui64", c_uint8 * 8),
        ("nguid", c_uint8 * 16),
        ("anaGroup", c_uint32),
        ("anaState", c_uint8),
        ("flags", c_uint8),
        ("metadata", c_uint16),
    ]


class HX_FLASH_REGION(Structure):
    """8 bytes."""
    code: int
    size: int
    _pack_ = 1
    _fields_ = [
        ("code", c_uint32),
        ("size", c_uint32),
    ]


class HX_FLASH_LAYOUT(Structure):
    """2048 bytes."""
    size: int
    count: int
    regions: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("size", c_uint32),
        ("count", c_uint32),
        ("regions", HX_FLASH_REGION * 255),
    ]


class HX_FLASH_REGION_EX(Structure):
    """16 bytes."""
    code: int
    flags: int
    reserved3: int
    size: int
    start: int
    end: int
    _pack_ = 1
    _fields_ = [
        ("code", c_uint16),
        ("flags", c_uint8),
        ("reserved3", c_uint8),
        ("size", c_uint32),
        ("start", c_uint32),
        ("end", c_uint32),
    ]


class HX_FLASH_LAYOUT_EX(Structure):
    """4088 bytes."""
    size: int
    count: int
    regions: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("size", c_uint32),
        ("count", c_uint32),
        ("regions", HX_FLASH_REGION_EX * 255),
    ]


class HX_COMPANION_REQUEST(Structure):
    """16 bytes."""
    flags: int
    totalSize: int
    version: int
    capacity: int
    _pack_ = 1
    _fields_ = [
        ("flags", c_uint32),
        ("totalSize", c_uint32),
        ("version", c_uint32),
        ("capacity", c_uint32),
    ]


class HX_VARIABLE_FIELD(Structure):
    """4 bytes."""
    firstBit: int
    width: int
    _pack_ = 1
    _fields_ = [
        ("firstBit", c_uint16),
        ("width", c_uint16),
    ]


class HX_BBCR_DATA(Structure):
    """64 bytes."""
    state: int
    reason: int
    configured: int
    attached: int
    negotiated: int
    reserved5: int
    attachedCredit: int
    ownCredit: int
    reserved10: ctypes.Array[Any]
    scsSent: int
    scrSent: int
    scsReceived: int
    scrReceived: int
    creditsRecovered: int
    framesLost: int
    _pack_ = 1
    _fields_ = [
        ("state", c_uint8),
        ("reason", c_uint8),
        ("configured", c_uint8),
        ("attached", c_uint8),
        ("negotiated", c_uint8),
        ("reserved5", c_uint8),
        ("attachedCredit", c_uint16),
        ("ownCredit", c_uint16),
        ("reserved10", c_uint8 * 6),
        ("scsSent", c_uint64),
        ("scrSent", c_uint64),
        ("scsReceived", c_uint64),
        ("scrReceived", c_uint64),
        ("creditsRecovered", c_uint64),
        ("framesLost", c_uint64),
    ]


class HX_BOARD_TEMPERATURE(Structure):
    """16 bytes."""
    now: int
    warning: int
    critical: int
    shutdown: int
    highest: int
    state: int
    secondsAbove: int
    _pack_ = 1
    _fields_ = [
        ("now", c_int16),
        ("warning", c_int16),
        ("critical", c_int16),
        ("shutdown", c_int16),
        ("highest", c_int16),
        ("state", c_uint16),
        ("secondsAbove", c_uint32),
    ]


class HX_BEACON(Structure):
    """16 bytes."""
    on: int
    seconds: int
    leds: int
    supported: int
    _pack_ = 1
    _fields_ = [
        ("on", c_uint32),
        ("seconds", c_uint32),
        ("leds", c_uint32),
        ("supported", c_uint32),
    ]


class HX_SERDES_LANE(Structure):
    """32 bytes."""
    lane: int
    speed: int
    locked: int
    modulation: int
    txPre: int
    txMain: int
    txPost: int
    reserved7: int
    txAmplitude: int
    eyeHeight: int
    eyeWidth: int
    ctle: int
    dfe: ctypes.Array[Any]
    reserved24: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("lane", c_uint8),
        ("speed", c_uint8),
        ("locked", c_uint8),
        ("modulation", c_uint8),
        ("txPre", c_int8),
        ("txMain", c_int8),
        ("txPost", c_int8),
        ("reserved7", c_uint8),
        ("txAmplitude", c_uint16),
        ("eyeHeight", c_uint16),
        ("eyeWidth", c_uint16),
        ("ctle", c_int16),
        ("dfe", c_int16 * 4),
        ("reserved24", c_uint8 * 8),
    ]


class HX_OS_DEVICE(Structure):
    """72 bytes."""
    name: bytes
    type: int
    number: int
    scsiPort: int
    bus: int
    target: int
    lun: int
    nodeName: ctypes.Array[Any]
    portName: ctypes.Array[Any]
    portId: ctypes.Array[Any]
    discovered: int
    reserved: ctypes.Array[Any]
    _pack_ = 1
    _fields_ = [
        ("name", c_char * 32),
        ("type", c_uint32),
        ("number", c_uint32),
        ("scsiPort", c_uint16),
        ("bus", c_uint16),
        ("target", c_uint16),
        ("lun", c_uint16),
        ("nodeName", c_uint8 * 8),
        ("portName", c_uint8 * 8),
        ("portId", c_uint8 * 3),
        ("discovered", c_uint8),
        ("reserved", c_uint8 * 4),
    ]


class HX_VOLUME(Structure):
    """344 bytes."""
    name: bytes
    path: bytes
    extents: int
    extentsOnDisk: int
    reserved: int
    bytesOnDisk: int
    _pack_ = 1
    _fields_ = [
        ("name", c_char * 64),
        ("path", c_char * 260),
        ("extents", c_uint32),
        ("extentsOnDisk", c_uint32),
        ("reserved", c_uint32),
        ("bytesOnDisk", c_uint64),
    ]


class HX_DISK_EXTENT(Structure):
    """24 bytes."""
    disk: int
    reserved: int
    offset: int
    length: int
    _pack_ = 1
    _fields_ = [
        ("disk", c_uint32),
        ("reserved", c_uint32),
        ("offset", c_uint64),
        ("length", c_uint64),
    ]


class HX_DISK_VOLUME(Structure):
    """352 bytes."""
    disk: int
    reserved: int
    volume: HX_VOLUME
    _pack_ = 1
    _fields_ = [
        ("disk", c_uint32),
        ("reserved", c_uint32),
        ("volume", HX_VOLUME),
    ]


HBA_REGISTERLIBRARY = CFUNCTYPE(c_uint32, POINTER(HBA_ENTRYPOINTS))


class Functions:
    """The exports of a loaded library, each with its prototype from its first use on."""

    GetDriverType: Callable[..., int]
    HBA_RegisterLibrary: Callable[..., int]
    HXAddTargetDevice: Callable[..., int]
    HXCloseDevice: Callable[..., int]
    HXDeletePersistentDeviceEntry: Callable[..., int]
    HXDeletePersistentTargetEntry: Callable[..., int]
    HXDisableAen: Callable[..., int]
    HXDisableSmartSANFC: Callable[..., int]
    HXEnableAen: Callable[..., int]
    HXEnableDebugTrace: Callable[..., int]
    HXEnableSmartSANFC: Callable[..., int]
    HXEndFlashUpdate: Callable[..., int]
    HXForceFcMctpDump: Callable[..., int]
    HXForceFwDump: Callable[..., int]
    HXForceZetaAEN: Callable[..., int]
    HXGetActiveRegions: Callable[..., int]
    HXGetAdapterLockdownState: Callable[..., int]
    HXGetAen: Callable[..., int]
    HXGetBBCRData: Callable[..., int]
    HXGetBFSInfo: Callable[..., int]
    HXGetBeaconControl: Callable[..., int]
    HXGetBoardTemp: Callable[..., int]
    HXGetDeviceNumber: Callable[..., int]
    HXGetDiscPortProperty: Callable[..., int]
    HXGetDiscTargetProperty: Callable[..., int]
    HXGetDiskExtents: Callable[..., int]
    HXGetDriverParameter: Callable[..., int]
    HXGetErrorString: Callable[..., Any]
    HXGetFCSerDesRegister: Callable[..., int]
    HXGetFCSerDesRegisterEx: Callable[..., int]
    HXGetFcDump: Callable[..., int]
    HXGetFcDumpRaw: Callable[..., int]
    HXGetFcMctpDump: Callable[..., int]
    HXGetFlashUpdateCapabilities: Callable[..., int]
    HXGetGlobalDevice: Callable[..., Any]
    HXGetHbaDeviceChipProperty: Callable[..., int]
    HXGetHbaDeviceDriverProperty: Callable[..., int]
    HXGetHbaDeviceFirmwareProperty: Callable[..., int]
    HXGetHbaDeviceNodeProperty: Callable[..., int]
    HXGetHbaDeviceNodePropertyResync: Callable[..., int]
    HXGetHbaDevicePortProperty: Callable[..., int]
    HXGetHbaDevicePortPropertyV1: Callable[..., int]
    HXGetHbaDevicePortPropertyV2: Callable[..., int]
    HXGetHbaPortDisableInfo: Callable[..., int]
    HXGetHbaTargetLunMask: Callable[..., int]
    HXGetHbaTargetLunMaskFC: Callable[..., int]
    HXGetLunData: Callable[..., int]
    HXGetLunQos: Callable[..., int]
    HXGetLunQosEnable: Callable[..., int]
    HXGetMgmtAddress: Callable[..., int]
    HXGetMiniDump: Callable[..., int]
    HXGetMpiDumpRaw: Callable[..., int]
    HXGetNPIVAttributes: Callable[..., int]
    HXGetNVMeNSInfo: Callable[..., int]
    HXGetNVMeTargetInfo: Callable[..., int]
    HXGetNVRam: Callable[..., int]
    HXGetOptionRom: Callable[..., int]
    HXGetOptionRomEx: Callable[..., int]
    HXGetOptionRomLayout: Callable[..., int]
    HXGetOptionRomLayoutEx: Callable[..., int]
    HXGetOptionRomOffset: Callable[..., int]
    HXGetPersistentDeviceEntryList: Callable[..., int]
    HXGetPersistentTargetEntryList: Callable[..., int]
    HXGetPortDatabase: Callable[..., int]
    HXGetPortSCMStatsFC: Callable[..., int]
    HXGetPortStatisticsFC: Callable[..., int]
    HXGetPortStatisticsFCV1: Callable[..., int]
    HXGetPortStatisticsFCV2: Callable[..., int]
    HXGetPositionalMap: Callable[..., int]
    HXGetPrivStats: Callable[..., int]
    HXGetPrivStatsEx: Callable[..., int]
    HXGetQuarnI2CRegister: Callable[..., int]
    HXGetRemotePortInfo: Callable[..., int]
    HXGetSCMStatistics: Callable[..., int]
    HXGetSFPData: Callable[..., int]
    HXGetSecurePortInfo: Callable[..., int]
    HXGetSmartSANStatusFC: Callable[..., int]
    HXGetStatistics: Callable[..., int]
    HXGetTargetData: Callable[..., int]
    HXGetTargetIDMALinkSpeed: Callable[..., int]
    HXGetVariableDescription: Callable[..., Any]
    HXGetVariableFields: Callable[..., int]
    HXGetVariableValue: Callable[..., int]
    HXGetVersion: Callable[..., int]
    HXGetVpd: Callable[..., int]
    HXIsVariableReadOnly: Callable[..., int]
    HXListDiskVolumes: Callable[..., int]
    HXListOsDevices: Callable[..., int]
    HXListScsiPorts: Callable[..., int]
    HXLoadSFPFirmware: Callable[..., int]
    HXMailboxPassthru: Callable[..., int]
    HXMapScsiTargetToVolumes: Callable[..., int]
    HXMapVolumeToScsiTarget: Callable[..., int]
    HXOnlineActivateFlashUpdate: Callable[..., int]
    HXOpenDevice: Callable[..., int]
    HXOpenScsiPort: Callable[..., int]
    HXOrvoMgt: Callable[..., int]
    HXRGetNVMeInfo: Callable[..., int]
    HXReadSFPData: Callable[..., int]
    HXReadSerdesParams: Callable[..., int]
    HXReloadNvramAndInitFw: Callable[..., int]
    HXRemoveDevice: Callable[..., int]
    HXResetStatistics: Callable[..., int]
    HXRunDiagLoopback: Callable[..., int]
    HXRunDiagLoopbackEx: Callable[..., int]
    HXRunDportDiag: Callable[..., int]
    HXRunDportDiagEx: Callable[..., int]
    HXRunDportDiagEx2: Callable[..., int]
    HXSendCTPassThru: Callable[..., int]
    HXSendElsEcho: Callable[..., int]
    HXSendElsPassThru: Callable[..., int]
    HXSendElsPassThruEx: Callable[..., int]
    HXSendElsRnid: Callable[..., int]
    HXSendFlashUpdateFWAttributes: Callable[..., int]
    HXSendSCMMgmt: Callable[..., int]
    HXSendScsiInquiryCmd: Callable[..., int]
    HXSendScsiInquiryCmdFC: Callable[..., int]
    HXSendScsiPassThru: Callable[..., int]
    HXSendScsiPassThruFC: Callable[..., int]
    HXSendScsiReadCapacityCmd: Callable[..., int]
    HXSendScsiReadCapacityCmdFC: Callable[..., int]
    HXSendScsiReportLunsCmd: Callable[..., int]
    HXSendScsiReportLunsCmdFC: Callable[..., int]
    HXSetDriverParameter: Callable[..., int]
    HXSetFCSerDesRegister: Callable[..., int]
    HXSetFCSerDesRegisterEx: Callable[..., int]
    HXSetFlashProgress: Callable[..., int]
    HXSetLunData: Callable[..., int]
    HXSetLunQos: Callable[..., int]
    HXSetMgmtAddress: Callable[..., int]
    HXSetQuarnI2CRegister: Callable[..., int]
    HXSetTargetData: Callable[..., int]
    HXSetTargetIDMALinkSpeed: Callable[..., int]
    HXSetVariableValue: Callable[..., int]
    HXStartFlashUpdate: Callable[..., int]
    HXSwapTargetDevice: Callable[..., int]
    HXUpdateBeaconControl: Callable[..., int]
    HXUpdateHbaTargetLunMask: Callable[..., int]
    HXUpdateHbaTargetLunMaskFC: Callable[..., int]
    HXUpdateNVRam: Callable[..., int]
    HXUpdateOptionRom: Callable[..., int]
    HXUpdateOptionRomEx: Callable[..., int]
    HXUpdateOptionRomEx2: Callable[..., int]
    HXUpdateOptionRomEx3: Callable[..., int]
    HXUpdateOptionRomOffset: Callable[..., int]
    HXUpdateSecureOptionRomEx: Callable[..., int]
    HXUpdateVpd: Callable[..., int]
    HXVerifyHbaNVRam: Callable[..., int]
    HXVerifyHbaState: Callable[..., int]
    HXWriteSFPData: Callable[..., int]
    HXfprintf: Callable[..., int]
    IHXFoDeletePersistentDeviceEntry: Callable[..., int]
    IHXFoDeletePersistentTargetEntry: Callable[..., int]
    IHXFoGetLunData: Callable[..., int]
    IHXFoGetPersistentDeviceEntryList: Callable[..., int]
    IHXFoGetPersistentTargetEntryList: Callable[..., int]
    IHXFoGetTargetData: Callable[..., int]
    IHXFoSetLunData: Callable[..., int]
    IHXFoSetTargetData: Callable[..., int]
    IsKorvexAdapter: Callable[..., Any]
    ReadNVRamFile: Callable[..., int]
    SRBWithHeaderDeviceIoControl: Callable[..., int]
    SendMiniPortControl: Callable[..., int]
    VXUpdateAdapterModelInBios: Callable[..., int]
    WriteNVRamFile: Callable[..., int]

    def __init__(self, library: Any) -> None:
        self._library = library

    def __getattr__(self, name: str) -> Any:
        if name not in PROTOTYPES:
            raise AttributeError(f"{name} is no export of the library")
        function = getattr(self._library, name)
        function.restype, function.argtypes = PROTOTYPES[name]
        setattr(self, name, function)
        return function


# Of a function with further arguments, those before them.
PROTOTYPES: Dict[str, Any] = {
    "GetDriverType": (c_uint8, [c_uint32]),
    "HBA_RegisterLibrary": (c_uint32, [POINTER(HBA_ENTRYPOINTS)]),
    "HXAddTargetDevice": (c_uint32, [c_uint32, POINTER(HX_DEVICE_RECORD)]),
    "HXCloseDevice": (c_uint32, [c_int32]),
    "HXDeletePersistentDeviceEntry": (c_uint32, [POINTER(c_uint8)]),
    "HXDeletePersistentTargetEntry": (c_uint32, [POINTER(c_uint8)]),
    "HXDisableAen": (c_uint32, [c_uint32]),
    "HXDisableSmartSANFC": (c_uint32, [c_uint32]),
    "HXEnableAen": (c_uint32, [c_uint32]),
    "HXEnableDebugTrace": (c_uint32, [POINTER(c_uint32), c_char_p, c_uint32]),
    "HXEnableSmartSANFC": (c_uint32, [c_uint32]),
    "HXEndFlashUpdate": (c_uint32, [c_uint32, c_uint64, c_uint32]),
    "HXForceFcMctpDump": (c_uint32, []),
    "HXForceFwDump": (c_uint32, [c_uint32]),
    "HXForceZetaAEN": (c_uint32, [c_int32]),
    "HXGetActiveRegions": (c_uint32, [c_uint32, c_uint64, POINTER(c_uint8)]),
    "HXGetAdapterLockdownState": (c_uint32, [c_uint32, c_uint64, POINTER(c_uint8)]),
    "HXGetAen": (c_uint32, [c_uint32, POINTER(c_uint8), c_uint32, POINTER(c_uint32)]),
    "HXGetBBCRData": (c_uint32, [c_uint32, POINTER(HX_BBCR_DATA)]),
    "HXGetBFSInfo": (c_uint32, [c_uint32]),
    "HXGetBeaconControl": (c_uint32, [c_uint32, POINTER(HX_BEACON)]),
    "HXGetBoardTemp": (c_uint32, [c_uint32, POINTER(HX_BOARD_TEMPERATURE)]),
    "HXGetDeviceNumber": (c_uint32, [c_char_p, c_void_p, c_uint32]),
    "HXGetDiscPortProperty": (c_uint32, [c_uint32, c_uint32, c_uint32, c_uint32, POINTER(HX_DISCOVERED_PORT)]),
    "HXGetDiscTargetProperty": (c_uint32, [c_uint32, c_uint32, c_uint32, c_uint32, POINTER(HX_DISCOVERED_TARGET)]),
    "HXGetDiskExtents": (c_uint32, [c_char_p, POINTER(HX_DISK_EXTENT), POINTER(c_uint32)]),
    "HXGetDriverParameter": (c_uint32, [c_uint32, c_char_p, POINTER(c_char), c_uint32]),
    "HXGetErrorString": (c_char_p, [c_uint32]),
    "HXGetFCSerDesRegister": (c_uint32, [c_uint32, c_uint16, POINTER(c_uint16)]),
    "HXGetFCSerDesRegisterEx": (c_uint32, [c_uint32, c_uint16, c_uint32, POINTER(c_uint32)]),
    "HXGetFcDump": (c_uint32, [c_uint32, c_uint16, c_char_p]),
    "HXGetFcDumpRaw": (c_uint32, [c_uint32, c_uint64, c_void_p]),
    "HXGetFcMctpDump": (c_uint32, [c_uint32, c_uint64, c_void_p, POINTER(c_uint32)]),
    "HXGetFlashUpdateCapabilities": (c_uint32, [c_uint32, c_uint64, POINTER(c_uint64)]),
    "HXGetGlobalDevice": (POINTER(HXMGT_API_HANDLE), []),
    "HXGetHbaDeviceChipProperty": (c_uint32, [c_uint32, POINTER(HX_CHIP_PROPERTY)]),
    "HXGetHbaDeviceDriverProperty": (c_uint32, [c_uint32, POINTER(HX_DRIVER_PROPERTY)]),
    "HXGetHbaDeviceFirmwareProperty": (c_uint32, [c_uint32, POINTER(HX_FIRMWARE_PROPERTY)]),
    "HXGetHbaDeviceNodeProperty": (c_uint32, [c_uint32, POINTER(HX_NODE_PROPERTY)]),
    "HXGetHbaDeviceNodePropertyResync": (c_uint32, [c_uint32, POINTER(HX_NODE_PROPERTY)]),
    "HXGetHbaDevicePortProperty": (c_uint32, [c_uint32, c_uint64, POINTER(HX_PORT_PROPERTY)]),
    "HXGetHbaDevicePortPropertyV1": (c_uint32, [c_uint32, c_uint16, POINTER(HX_PORT_PROPERTY)]),
    "HXGetHbaDevicePortPropertyV2": (c_uint32, [c_uint32, c_uint64, POINTER(HX_PORT_PROPERTY)]),
    "HXGetHbaPortDisableInfo": (c_uint32, [c_uint32]),
    "HXGetHbaTargetLunMask": (c_uint32, [c_uint32, c_uint64, POINTER(HX_BUS_TARGET_LUN), c_uint32, POINTER(c_uint8), c_uint32]),
    "HXGetHbaTargetLunMaskFC": (c_uint32, [c_uint32, c_uint64, POINTER(HX_SCSI_ADDRESS), c_uint32, POINTER(c_uint8), c_uint32]),
    "HXGetLunData": (c_uint32, [c_uint32, c_uint16, POINTER(HX_LUN_DATA), c_uint16]),
    "HXGetLunQos": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_LUN_QOS)]),
    "HXGetLunQosEnable": (c_uint32, [c_uint32, POINTER(c_uint8)]),
    "HXGetMgmtAddress": (c_uint32, [c_uint32, c_void_p, c_uint32]),
    "HXGetMiniDump": (c_uint32, [c_uint32, c_uint64, c_void_p, POINTER(c_uint32)]),
    "HXGetMpiDumpRaw": (c_uint32, [c_uint32, c_uint64, c_void_p]),
    "HXGetNPIVAttributes": (c_uint32, [c_uint32, POINTER(HX_NPIV_ATTRIBUTES), POINTER(HX_VIRTUAL_PORT), POINTER(c_uint32)]),
    "HXGetNVMeNSInfo": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_NVME_NAMESPACE), POINTER(c_uint32)]),
    "HXGetNVMeTargetInfo": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_NVME_TARGET)]),
    "HXGetNVRam": (c_uint32, [c_uint32, c_uint64, c_uint32, c_void_p, c_uint32]),
    "HXGetOptionRom": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32]),
    "HXGetOptionRomEx": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXGetOptionRomLayout": (c_uint32, [c_uint32, c_uint64, POINTER(HX_FLASH_LAYOUT)]),
    "HXGetOptionRomLayoutEx": (c_uint32, [c_uint32, c_uint64, POINTER(HX_FLASH_LAYOUT_EX)]),
    "HXGetOptionRomOffset": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXGetPersistentDeviceEntryList": (c_uint32, [POINTER(HX_WWN_LIST)]),
    "HXGetPersistentTargetEntryList": (c_uint32, [POINTER(HX_WWN_LIST)]),
    "HXGetPortDatabase": (c_uint32, [c_uint32, c_uint32, c_void_p, c_uint32]),
    "HXGetPortSCMStatsFC": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_PORT_SCM_STATISTICS)]),
    "HXGetPortStatisticsFC": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_PORT_STATISTICS)]),
    "HXGetPortStatisticsFCV1": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_PORT_STATISTICS)]),
    "HXGetPortStatisticsFCV2": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_PORT_STATISTICS_V2)]),
    "HXGetPositionalMap": (c_uint32, [c_uint32, POINTER(HX_POSITIONAL_MAP)]),
    "HXGetPrivStats": (c_uint32, [c_uint32, POINTER(HX_PRIVATE_STATISTICS)]),
    "HXGetPrivStatsEx": (c_uint32, [c_uint32, POINTER(HX_PRIVATE_STATISTICS_EX)]),
    "HXGetQuarnI2CRegister": (c_uint32, [c_uint32, c_uint16, c_uint16, POINTER(c_uint16)]),
    "HXGetRemotePortInfo": (c_uint32, [c_uint32, POINTER(HX_REMOTE_PORT), POINTER(c_uint32)]),
    "HXGetSCMStatistics": (c_uint32, [c_uint32, POINTER(HX_SCM_STATISTICS)]),
    "HXGetSFPData": (c_uint32, [c_uint32, c_uint64, c_void_p, POINTER(c_uint32)]),
    "HXGetSecurePortInfo": (c_uint32, [c_uint32, POINTER(HX_SECURE_PORT), POINTER(c_uint32)]),
    "HXGetSmartSANStatusFC": (c_uint32, [c_uint32, POINTER(c_uint8)]),
    "HXGetStatistics": (c_uint32, [c_uint32, c_uint32, POINTER(HX_STATISTICS)]),
    "HXGetTargetData": (c_uint32, [c_uint32, c_uint16, POINTER(HX_TARGET_DATA), c_uint16]),
    "HXGetTargetIDMALinkSpeed": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_TARGET_LINK_SPEED)]),
    "HXGetVariableDescription": (c_char_p, [c_uint32, c_uint32]),
    "HXGetVariableFields": (c_uint32, [c_uint32, POINTER(HX_VARIABLE_FIELD), POINTER(c_uint32)]),
    "HXGetVariableValue": (c_uint32, [c_uint32, c_void_p, c_uint32]),
    "HXGetVersion": (c_uint32, [POINTER(c_char), c_uint32]),
    "HXGetVpd": (c_uint32, [c_uint32, c_uint64, c_void_p, POINTER(c_uint32)]),
    "HXIsVariableReadOnly": (c_uint32, [c_void_p, c_uint32]),
    "HXListDiskVolumes": (c_uint32, [POINTER(HX_DISK_VOLUME), POINTER(c_uint32)]),
    "HXListOsDevices": (c_uint32, [POINTER(HX_OS_DEVICE), POINTER(c_uint32)]),
    "HXListScsiPorts": (c_uint32, [POINTER(HX_SCSI_PORT), POINTER(c_uint32)]),
    "HXLoadSFPFirmware": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32]),
    "HXMailboxPassthru": (c_uint32, [c_uint32, c_uint64, POINTER(c_uint16), c_int16, POINTER(c_uint16), c_int16]),
    "HXMapScsiTargetToVolumes": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_OS_DEVICE), POINTER(HX_VOLUME), POINTER(c_uint32)]),
    "HXMapVolumeToScsiTarget": (c_uint32, [c_uint32, c_char_p, POINTER(HX_OS_DEVICE), POINTER(c_uint32)]),
    "HXOnlineActivateFlashUpdate": (c_uint32, [c_uint32]),
    "HXOpenDevice": (c_uint32, [c_uint32, POINTER(c_uint32)]),
    "HXOpenScsiPort": (c_uint32, [c_uint32, POINTER(c_uint32)]),
    "HXOrvoMgt": (c_uint32, [c_uint32, c_uint32, c_void_p]),
    "HXRGetNVMeInfo": (c_uint32, [c_uint32, POINTER(HX_NVME_PORT), POINTER(c_uint32)]),
    "HXReadSFPData": (c_uint32, [c_uint32, c_uint64, c_uint16, c_void_p, c_uint16, c_uint16, c_uint16, POINTER(c_uint16)]),
    "HXReadSerdesParams": (c_uint32, [c_uint32, POINTER(HX_SERDES_LANE), POINTER(c_uint32)]),
    "HXReloadNvramAndInitFw": (c_uint32, [c_uint32]),
    "HXRemoveDevice": (c_uint32, [c_uint32, POINTER(c_uint8), c_char_p, c_int32]),
    "HXResetStatistics": (c_uint32, [c_uint32]),
    "HXRunDiagLoopback": (c_uint32, [c_uint32, c_uint64, c_uint16, c_void_p, c_uint16, c_void_p, c_uint16, c_uint16, POINTER(HX_LOOPBACK_RESULT)]),
    "HXRunDiagLoopbackEx": (c_uint32, [c_uint32, c_uint64, c_uint16, c_void_p, c_uint32, c_void_p, c_uint32, c_uint32, POINTER(HX_LOOPBACK_EX_RESULT)]),
    "HXRunDportDiag": (c_uint32, []),
    "HXRunDportDiagEx": (c_uint32, [c_uint32, c_uint64, POINTER(HX_DPORT_RESULT)]),
    "HXRunDportDiagEx2": (c_uint32, [c_uint32, c_uint64, POINTER(HX_DPORT_RESULT_EX2)]),
    "HXSendCTPassThru": (c_uint32, [c_uint32, c_void_p, c_uint32, c_void_p, c_uint32]),
    "HXSendElsEcho": (c_uint32, []),
    "HXSendElsPassThru": (c_uint32, [c_uint32, c_uint64, POINTER(HX_SCSI_ADDRESS), c_void_p, c_int32, c_void_p, POINTER(c_uint32), c_uint8]),
    "HXSendElsPassThruEx": (c_uint32, [c_uint32, c_uint64, POINTER(HX_SCSI_ADDRESS), c_void_p, c_int32, c_void_p, POINTER(c_uint32), c_uint8]),
    "HXSendElsRnid": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), c_uint8, POINTER(c_uint8), c_uint32]),
    "HXSendFlashUpdateFWAttributes": (c_uint32, [c_uint32, c_uint64, c_uint64, c_uint32]),
    "HXSendSCMMgmt": (c_uint32, [c_uint32, c_uint64, POINTER(c_uint8)]),
    "HXSendScsiInquiryCmd": (c_uint32, []),
    "HXSendScsiInquiryCmdFC": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), c_void_p, c_uint32, POINTER(c_uint8), c_uint32]),
    "HXSendScsiPassThru": (c_uint32, []),
    "HXSendScsiPassThruFC": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(c_uint8), c_uint32, c_void_p, c_uint32, c_void_p, c_uint32, POINTER(c_uint8), c_uint32]),
    "HXSendScsiReadCapacityCmd": (c_uint32, []),
    "HXSendScsiReadCapacityCmdFC": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), c_void_p, c_uint32, POINTER(c_uint8), c_uint32]),
    "HXSendScsiReportLunsCmd": (c_uint32, []),
    "HXSendScsiReportLunsCmdFC": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), c_void_p, c_uint32, POINTER(c_uint8), c_uint32]),
    "HXSetDriverParameter": (c_uint32, [c_uint32, c_char_p, c_char_p]),
    "HXSetFCSerDesRegister": (c_uint32, [c_uint32, c_uint16, c_uint16]),
    "HXSetFCSerDesRegisterEx": (c_uint32, [c_uint32, c_uint16, c_uint32, c_uint32]),
    "HXSetFlashProgress": (c_uint32, [c_uint32, HX_FLASH_PROGRESS, c_void_p]),
    "HXSetLunData": (c_uint32, [c_uint32, c_uint16, POINTER(HX_LUN_DATA), c_uint16]),
    "HXSetLunQos": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), POINTER(HX_LUN_QOS)]),
    "HXSetMgmtAddress": (c_uint32, [c_uint32, POINTER(HX_MGMT_ADDRESS_SETTING)]),
    "HXSetQuarnI2CRegister": (c_uint32, [c_uint32, c_uint16, c_uint16, c_uint16]),
    "HXSetTargetData": (c_uint32, [c_uint32, c_uint16, POINTER(HX_TARGET_DATA), c_uint16]),
    "HXSetTargetIDMALinkSpeed": (c_uint32, [c_uint32, POINTER(HX_SCSI_ADDRESS), c_uint16]),
    "HXSetVariableValue": (c_uint32, [c_uint32, c_void_p, c_uint32, c_uint32]),
    "HXStartFlashUpdate": (c_uint32, [c_uint32, c_uint64, POINTER(c_uint32)]),
    "HXSwapTargetDevice": (c_uint32, [c_uint32, POINTER(HX_DEVICE_RECORD), POINTER(HX_DEVICE_RECORD)]),
    "HXUpdateBeaconControl": (c_uint32, [c_uint32, POINTER(HX_BEACON)]),
    "HXUpdateHbaTargetLunMask": (c_uint32, [c_uint32, c_uint64, POINTER(HX_BUS_TARGET_LUN), c_int32, POINTER(c_uint8), c_uint32]),
    "HXUpdateHbaTargetLunMaskFC": (c_uint32, [c_uint32, c_uint64, POINTER(HX_SCSI_ADDRESS), c_int32, POINTER(c_uint8), c_uint32]),
    "HXUpdateNVRam": (c_uint32, [c_uint32, c_uint64, c_uint32, c_void_p, c_uint32]),
    "HXUpdateOptionRom": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32]),
    "HXUpdateOptionRomEx": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXUpdateOptionRomEx2": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXUpdateOptionRomEx3": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXUpdateOptionRomOffset": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXUpdateSecureOptionRomEx": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32, c_uint32]),
    "HXUpdateVpd": (c_uint32, [c_uint32, c_uint64, c_void_p, c_uint32]),
    "HXVerifyHbaNVRam": (c_uint32, [c_uint32, c_uint64]),
    "HXVerifyHbaState": (c_uint32, [c_uint32]),
    "HXWriteSFPData": (c_uint32, [c_uint32, c_uint64, c_uint16, c_void_p, c_uint16, c_uint16, c_uint16, POINTER(c_uint16)]),
    "HXfprintf": (c_int32, [c_char_p, c_uint32, c_void_p, c_char_p]),
    "IHXFoDeletePersistentDeviceEntry": (c_uint32, [POINTER(c_uint8)]),
    "IHXFoDeletePersistentTargetEntry": (c_uint32, [POINTER(c_uint8)]),
    "IHXFoGetLunData": (c_uint32, [c_uint32, c_uint64, c_uint64, POINTER(HX_LUN_DATA), c_uint16]),
    "IHXFoGetPersistentDeviceEntryList": (c_uint32, [POINTER(HX_WWN_LIST)]),
    "IHXFoGetPersistentTargetEntryList": (c_uint32, [POINTER(HX_WWN_LIST)]),
    "IHXFoGetTargetData": (c_uint32, [c_uint32, c_uint64, c_uint64, POINTER(HX_TARGET_DATA), c_uint16]),
    "IHXFoSetLunData": (c_uint32, [c_uint32, c_uint64, c_uint64, POINTER(HX_LUN_DATA), c_uint16]),
    "IHXFoSetTargetData": (c_uint32, [c_uint32, c_uint64, c_uint64, POINTER(HX_TARGET_DATA), c_uint16]),
    "IsKorvexAdapter": (c_char_p, [c_uint32, c_uint32]),
    "ReadNVRamFile": (c_int32, [c_char_p, c_void_p, c_uint32, c_int32]),
    "SRBWithHeaderDeviceIoControl": (c_uint32, [c_uint32, c_uint32, c_uint16, c_void_p, c_uint32, c_void_p, c_uint32, POINTER(c_uint32)]),
    "SendMiniPortControl": (c_uint32, [c_int32, c_uint32, c_void_p, c_uint32, c_void_p, c_uint32]),
    "VXUpdateAdapterModelInBios": (c_uint32, [c_uint32, POINTER(c_uint8)]),
    "WriteNVRamFile": (c_int32, [c_void_p, c_char_p]),
}
