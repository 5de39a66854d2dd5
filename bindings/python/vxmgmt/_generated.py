"""Records, constants and prototypes of VXMGMT.DLL. Made from its headers by describe.py; not edited.

Importing this needs neither the library nor Windows.
"""
# fmt: off
# ruff: noqa
from __future__ import annotations

import ctypes as _c
import typing as _t

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
STATUS_NAMES: _t.Dict[int, str] = {
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


class HBA_WWN(_c.Structure):
    """8 bytes."""
    wwn: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("wwn", _c.c_uint8 * 8),
    ]


class HBA_ADAPTERATTRIBUTES(_c.Structure):
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
        ("Manufacturer", _c.c_char * 64),
        ("SerialNumber", _c.c_char * 64),
        ("Model", _c.c_char * 256),
        ("ModelDescription", _c.c_char * 256),
        ("NodeWWN", HBA_WWN),
        ("NodeSymbolicName", _c.c_char * 256),
        ("HardwareVersion", _c.c_char * 256),
        ("DriverVersion", _c.c_char * 256),
        ("OptionROMVersion", _c.c_char * 256),
        ("FirmwareVersion", _c.c_char * 256),
        ("VendorSpecificID", _c.c_uint32),
        ("NumberOfPorts", _c.c_uint32),
        ("DriverName", _c.c_char * 256),
    ]


class HBA_FC4TYPES(_c.Structure):
    """32 bytes."""
    bits: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("bits", _c.c_uint8 * 32),
    ]


class HBA_PORTATTRIBUTES(_c.Structure):
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
        ("PortFcId", _c.c_uint32),
        ("PortType", _c.c_uint32),
        ("PortState", _c.c_uint32),
        ("PortSupportedClassofService", _c.c_uint32),
        ("PortSupportedFc4Types", HBA_FC4TYPES),
        ("PortActiveFc4Types", HBA_FC4TYPES),
        ("PortSymbolicName", _c.c_char * 256),
        ("OSDeviceName", _c.c_char * 256),
        ("PortSupportedSpeed", _c.c_uint32),
        ("PortSpeed", _c.c_uint32),
        ("PortMaxFrameSize", _c.c_uint32),
        ("FabricName", HBA_WWN),
        ("NumberofDiscoveredPorts", _c.c_uint32),
    ]


class HBA_PORTSTATISTICS(_c.Structure):
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
        ("SecondsSinceLastReset", _c.c_int64),
        ("TxFrames", _c.c_int64),
        ("TxWords", _c.c_int64),
        ("RxFrames", _c.c_int64),
        ("RxWords", _c.c_int64),
        ("LIPCount", _c.c_int64),
        ("NOSCount", _c.c_int64),
        ("ErrorFrames", _c.c_int64),
        ("DumpedFrames", _c.c_int64),
        ("LinkFailureCount", _c.c_int64),
        ("LossOfSyncCount", _c.c_int64),
        ("LossOfSignalCount", _c.c_int64),
        ("PrimitiveSeqProtocolErrCount", _c.c_int64),
        ("InvalidTxWordCount", _c.c_int64),
        ("InvalidCRCCount", _c.c_int64),
    ]


class HBA_SCSIID(_c.Structure):
    """268 bytes."""
    OSDeviceName: bytes
    ScsiBusNumber: int
    ScsiTargetNumber: int
    ScsiOSLun: int
    _fields_ = [
        ("OSDeviceName", _c.c_char * 256),
        ("ScsiBusNumber", _c.c_uint32),
        ("ScsiTargetNumber", _c.c_uint32),
        ("ScsiOSLun", _c.c_uint32),
    ]


class HBA_FCPID(_c.Structure):
    """32 bytes."""
    FcId: int
    NodeWWN: HBA_WWN
    PortWWN: HBA_WWN
    FcpLun: int
    _fields_ = [
        ("FcId", _c.c_uint32),
        ("NodeWWN", HBA_WWN),
        ("PortWWN", HBA_WWN),
        ("FcpLun", _c.c_uint64),
    ]


class HBA_FCPSCSIENTRY(_c.Structure):
    """304 bytes."""
    ScsiId: HBA_SCSIID
    FcpId: HBA_FCPID
    _fields_ = [
        ("ScsiId", HBA_SCSIID),
        ("FcpId", HBA_FCPID),
    ]


class HBA_FCPTARGETMAPPING(_c.Structure):
    """312 bytes."""
    NumberOfEntries: int
    entry: _c.Array[_t.Any]
    _fields_ = [
        ("NumberOfEntries", _c.c_uint32),
        ("entry", HBA_FCPSCSIENTRY * 1),
    ]


class HBA_FCPBINDINGENTRY(_c.Structure):
    """312 bytes."""
    type: int
    ScsiId: HBA_SCSIID
    FcpId: HBA_FCPID
    FcId: int
    _fields_ = [
        ("type", _c.c_uint32),
        ("ScsiId", HBA_SCSIID),
        ("FcpId", HBA_FCPID),
        ("FcId", _c.c_uint32),
    ]


class HBA_FCPBINDING(_c.Structure):
    """320 bytes."""
    NumberOfEntries: int
    entry: _c.Array[_t.Any]
    _fields_ = [
        ("NumberOfEntries", _c.c_uint32),
        ("entry", HBA_FCPBINDINGENTRY * 1),
    ]


class HBA_MGMTINFO(_c.Structure):
    """44 bytes."""
    wwn: HBA_WWN
    unittype: int
    PortId: int
    NumberOfAttachedNodes: int
    IPVersion: int
    UDPPort: int
    IPAddress: _c.Array[_t.Any]
    reserved: int
    TopologyDiscoveryFlags: int
    _fields_ = [
        ("wwn", HBA_WWN),
        ("unittype", _c.c_uint32),
        ("PortId", _c.c_uint32),
        ("NumberOfAttachedNodes", _c.c_uint32),
        ("IPVersion", _c.c_uint16),
        ("UDPPort", _c.c_uint16),
        ("IPAddress", _c.c_uint8 * 16),
        ("reserved", _c.c_uint16),
        ("TopologyDiscoveryFlags", _c.c_uint16),
    ]


class HBA_LINK_EVENTINFO(_c.Structure):
    """16 bytes."""
    PortFcId: int
    Reserved: _c.Array[_t.Any]
    _fields_ = [
        ("PortFcId", _c.c_uint32),
        ("Reserved", _c.c_uint32 * 3),
    ]


class HBA_RSCN_EVENTINFO(_c.Structure):
    """16 bytes."""
    PortFcId: int
    NPortPage: int
    Reserved: _c.Array[_t.Any]
    _fields_ = [
        ("PortFcId", _c.c_uint32),
        ("NPortPage", _c.c_uint32),
        ("Reserved", _c.c_uint32 * 2),
    ]


class HBA_PTY_EVENTINFO(_c.Structure):
    """16 bytes."""
    PtyData: _c.Array[_t.Any]
    _fields_ = [
        ("PtyData", _c.c_uint32 * 4),
    ]


class HBA_EVENTINFO_Event(_c.Union):
    """16 bytes."""
    Link_EventInfo: HBA_LINK_EVENTINFO
    RSCN_EventInfo: HBA_RSCN_EVENTINFO
    Pty_EventInfo: HBA_PTY_EVENTINFO
    _fields_ = [
        ("Link_EventInfo", HBA_LINK_EVENTINFO),
        ("RSCN_EventInfo", HBA_RSCN_EVENTINFO),
        ("Pty_EventInfo", HBA_PTY_EVENTINFO),
    ]


class HBA_EVENTINFO(_c.Structure):
    """20 bytes."""
    EventCode: int
    Event: HBA_EVENTINFO_Event
    _fields_ = [
        ("EventCode", _c.c_uint32),
        ("Event", HBA_EVENTINFO_Event),
    ]


class HBA_ENTRYPOINTS(_c.Structure):
    """192 bytes."""
    GetVersionHandler: _t.Any
    LoadLibraryHandler: _t.Any
    FreeLibraryHandler: _t.Any
    GetNumberOfAdaptersHandler: _t.Any
    GetAdapterNameHandler: _t.Any
    OpenAdapterHandler: _t.Any
    CloseAdapterHandler: _t.Any
    GetAdapterAttributesHandler: _t.Any
    GetAdapterPortAttributesHandler: _t.Any
    GetPortStatisticsHandler: _t.Any
    GetDiscoveredPortAttributesHandler: _t.Any
    GetPortAttributesByWWNHandler: _t.Any
    SendCTPassThruHandler: _t.Any
    RefreshInformationHandler: _t.Any
    ResetStatisticsHandler: _t.Any
    GetFcpTargetMappingHandler: _t.Any
    GetFcpPersistentBindingHandler: _t.Any
    GetEventBufferHandler: _t.Any
    SetRNIDMgmtInfoHandler: _t.Any
    GetRNIDMgmtInfoHandler: _t.Any
    SendRNIDHandler: _t.Any
    ScsiInquiryHandler: _t.Any
    ReportLUNsHandler: _t.Any
    ReadCapacityHandler: _t.Any
    _fields_ = [
        ("GetVersionHandler", _c.CFUNCTYPE(_c.c_uint32)),
        ("LoadLibraryHandler", _c.CFUNCTYPE(_c.c_uint32)),
        ("FreeLibraryHandler", _c.CFUNCTYPE(_c.c_uint32)),
        ("GetNumberOfAdaptersHandler", _c.CFUNCTYPE(_c.c_uint32)),
        ("GetAdapterNameHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(_c.c_char))),
        ("OpenAdapterHandler", _c.CFUNCTYPE(_c.c_uint32, _c.POINTER(_c.c_char))),
        ("CloseAdapterHandler", _c.CFUNCTYPE(None, _c.c_uint32)),
        ("GetAdapterAttributesHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(HBA_ADAPTERATTRIBUTES))),
        ("GetAdapterPortAttributesHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.c_uint32, _c.POINTER(HBA_PORTATTRIBUTES))),
        ("GetPortStatisticsHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.c_uint32, _c.POINTER(HBA_PORTSTATISTICS))),
        ("GetDiscoveredPortAttributesHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.c_uint32, _c.c_uint32, _c.POINTER(HBA_PORTATTRIBUTES))),
        ("GetPortAttributesByWWNHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, HBA_WWN, _c.POINTER(HBA_PORTATTRIBUTES))),
        ("SendCTPassThruHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32)),
        ("RefreshInformationHandler", _c.CFUNCTYPE(None, _c.c_uint32)),
        ("ResetStatisticsHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.c_uint32)),
        ("GetFcpTargetMappingHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(HBA_FCPTARGETMAPPING))),
        ("GetFcpPersistentBindingHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(HBA_FCPBINDING))),
        ("GetEventBufferHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(HBA_EVENTINFO), _c.POINTER(_c.c_uint32))),
        ("SetRNIDMgmtInfoHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(HBA_MGMTINFO))),
        ("GetRNIDMgmtInfoHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, _c.POINTER(HBA_MGMTINFO))),
        ("SendRNIDHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, HBA_WWN, _c.c_int32, _c.c_void_p, _c.POINTER(_c.c_uint32))),
        ("ScsiInquiryHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, HBA_WWN, _c.c_uint64, _c.c_uint8, _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32)),
        ("ReportLUNsHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, HBA_WWN, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32)),
        ("ReadCapacityHandler", _c.CFUNCTYPE(_c.c_uint32, _c.c_uint32, HBA_WWN, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32)),
    ]


class HXMGT_API_HANDLE(_c.Structure):
    """120 bytes."""
    hDevice: _t.Any
    szModel: bytes
    pTraceFile: _t.Any
    dwTraceLevel: int
    szDeviceName: bytes
    dwDriverVersion: int
    dwAdapterIndex: int
    dwScsiPort: int
    dwActivationTimeout: int
    qwExpectedFirmwareAttributes: int
    qwFlashUpdateCapabilities: int
    _fields_ = [
        ("hDevice", _c.c_void_p),
        ("szModel", _c.c_char * 32),
        ("pTraceFile", _c.c_void_p),
        ("dwTraceLevel", _c.c_uint32),
        ("szDeviceName", _c.c_char * 32),
        ("dwDriverVersion", _c.c_uint32),
        ("dwAdapterIndex", _c.c_uint32),
        ("dwScsiPort", _c.c_uint32),
        ("dwActivationTimeout", _c.c_uint32),
        ("qwExpectedFirmwareAttributes", _c.c_uint64),
        ("qwFlashUpdateCapabilities", _c.c_uint64),
    ]


class HX_NODE_PROPERTY(_c.Structure):
    """388 bytes."""
    nodeName: _c.Array[_t.Any]
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
    serialBytes: _c.Array[_t.Any]
    reserved: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("nodeName", _c.c_uint8 * 8),
        ("manufacturer", _c.c_char * 80),
        ("model", _c.c_char * 16),
        ("modelDescription", _c.c_char * 16),
        ("serialPresent", _c.c_uint8),
        ("serialNumber", _c.c_char * 31),
        ("driverVersion", _c.c_char * 32),
        ("firmwareVersion", _c.c_char * 32),
        ("optionRomVersion", _c.c_char * 32),
        ("numberOfPorts", _c.c_uint16),
        ("adapterGeneration", _c.c_uint16),
        ("vendorSpecificId", _c.c_uint32),
        ("firmwareAttributes", _c.c_uint32),
        ("flags", _c.c_uint32),
        ("serialBytes", _c.c_uint8 * 3),
        ("reserved", _c.c_uint8 * 121),
    ]


class HX_PORT_PROPERTY(_c.Structure):
    """112 bytes."""
    portName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
    role: int
    state: int
    topology: int
    discoveredDevices: int
    discoveredTargets: int
    deviceName: bytes
    currentSpeed: int
    reserved51: _c.Array[_t.Any]
    maxFrameSize: int
    bbCredits: int
    npivMaximum: int
    npivInUse: int
    supportedSpeeds: int
    reserved63: _c.Array[_t.Any]
    maxTargets: int
    maxLunsPerTarget: int
    executionThrottle: int
    reserved88: int
    loginTimeout: int
    linkDownTimeout: int
    portDownRetry: int
    reserved96: int
    transceiverType: _c.Array[_t.Any]
    fecActive: int
    trunkState: int
    featureMask: int
    nvmeEnabled: int
    fcpEnabled: int
    diagnosticState: int
    reserved109: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("portName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("role", _c.c_uint8),
        ("state", _c.c_uint8),
        ("topology", _c.c_uint8),
        ("discoveredDevices", _c.c_uint16),
        ("discoveredTargets", _c.c_uint16),
        ("deviceName", _c.c_char * 32),
        ("currentSpeed", _c.c_uint8),
        ("reserved51", _c.c_uint8 * 3),
        ("maxFrameSize", _c.c_uint16),
        ("bbCredits", _c.c_uint16),
        ("npivMaximum", _c.c_uint16),
        ("npivInUse", _c.c_uint16),
        ("supportedSpeeds", _c.c_uint8),
        ("reserved63", _c.c_uint8 * 19),
        ("maxTargets", _c.c_uint16),
        ("maxLunsPerTarget", _c.c_uint16),
        ("executionThrottle", _c.c_uint16),
        ("reserved88", _c.c_uint16),
        ("loginTimeout", _c.c_uint16),
        ("linkDownTimeout", _c.c_uint16),
        ("portDownRetry", _c.c_uint16),
        ("reserved96", _c.c_uint16),
        ("transceiverType", _c.c_uint8 * 2),
        ("fecActive", _c.c_uint8),
        ("trunkState", _c.c_uint8),
        ("featureMask", _c.c_uint32),
        ("nvmeEnabled", _c.c_uint8),
        ("fcpEnabled", _c.c_uint8),
        ("diagnosticState", _c.c_uint8),
        ("reserved109", _c.c_uint8 * 3),
    ]


class HX_CHIP_PROPERTY(_c.Structure):
    """80 bytes."""
    vendorId: int
    deviceId: int
    subsystemVendorId: int
    subsystemDeviceId: int
    revision: int
    classWord: int
    baseAddresses: _c.Array[_t.Any]
    pciCommand: int
    pciStatus: int
    reserved32: _c.Array[_t.Any]
    linkCapabilities: int
    linkStatus: int
    busLocation: int
    functionBits: int
    flashRegionFlag: int
    flashRegionCode: int
    reserved59: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("vendorId", _c.c_uint16),
        ("deviceId", _c.c_uint16),
        ("subsystemVendorId", _c.c_uint16),
        ("subsystemDeviceId", _c.c_uint16),
        ("revision", _c.c_uint16),
        ("classWord", _c.c_uint16),
        ("baseAddresses", _c.c_uint32 * 4),
        ("pciCommand", _c.c_uint16),
        ("pciStatus", _c.c_uint16),
        ("reserved32", _c.c_uint8 * 16),
        ("linkCapabilities", _c.c_uint16),
        ("linkStatus", _c.c_uint16),
        ("busLocation", _c.c_uint32),
        ("functionBits", _c.c_uint8),
        ("flashRegionFlag", _c.c_uint8),
        ("flashRegionCode", _c.c_uint8),
        ("reserved59", _c.c_uint8 * 21),
    ]


class HX_DRIVER_PROPERTY(_c.Structure):
    """74 bytes."""
    version: bytes
    driverModel: int
    driverModelRevision: int
    maxScatterGather: int
    maxTransferLength: int
    maxQueueDepth: int
    interruptMode: int
    numberOfPorts: int
    buildText: _c.Array[_t.Any]
    buildNumber: int
    _pack_ = 1
    _fields_ = [
        ("version", _c.c_char * 32),
        ("driverModel", _c.c_uint16),
        ("driverModelRevision", _c.c_uint16),
        ("maxScatterGather", _c.c_uint16),
        ("maxTransferLength", _c.c_uint64),
        ("maxQueueDepth", _c.c_uint16),
        ("interruptMode", _c.c_uint16),
        ("numberOfPorts", _c.c_uint32),
        ("buildText", _c.c_uint8 * 16),
        ("buildNumber", _c.c_uint32),
    ]


class HX_FIRMWARE_PROPERTY(_c.Structure):
    """40 bytes."""
    version: bytes
    attributes: int
    activationAttributes: int
    _pack_ = 1
    _fields_ = [
        ("version", _c.c_char * 32),
        ("attributes", _c.c_uint32),
        ("activationAttributes", _c.c_uint32),
    ]


class HX_SCSI_PORT(_c.Structure):
    """264 bytes."""
    scsiPort: int
    familyDriver: int
    driver: bytes
    _pack_ = 1
    _fields_ = [
        ("scsiPort", _c.c_uint32),
        ("familyDriver", _c.c_uint32),
        ("driver", _c.c_char * 256),
    ]


class HX_EVENT(_c.Structure):
    """16 bytes."""
    type: int
    data: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("type", _c.c_uint32),
        ("data", _c.c_uint32 * 3),
    ]


class HX_SCSI_ADDRESS(_c.Structure):
    """12 bytes."""
    type: int
    address: _c.Array[_t.Any]
    lun: int
    _pack_ = 1
    _fields_ = [
        ("type", _c.c_uint16),
        ("address", _c.c_uint8 * 8),
        ("lun", _c.c_uint16),
    ]


class HX_LOOPBACK_RESULT(_c.Structure):
    """48 bytes."""
    completion: int
    firmware: _c.Array[_t.Any]
    value32: int
    reserved: _c.Array[_t.Any]
    value40: int
    _pack_ = 1
    _fields_ = [
        ("completion", _c.c_uint16),
        ("firmware", _c.c_uint8 * 30),
        ("value32", _c.c_uint32),
        ("reserved", _c.c_uint8 * 4),
        ("value40", _c.c_uint64),
    ]


class HX_LOOPBACK_EX_RESULT(_c.Structure):
    """12 bytes."""
    completion: int
    counters: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("completion", _c.c_uint16),
        ("counters", _c.c_uint16 * 5),
    ]


class HX_DPORT_RESULT(_c.Structure):
    """72 bytes."""
    bytes: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("bytes", _c.c_uint8 * 72),
    ]


class HX_DPORT_RESULT_EX2(_c.Structure):
    """1088 bytes."""
    bytes: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("bytes", _c.c_uint8 * 1088),
    ]


class HX_TARGET_ENTRY(_c.Structure):
    """32 bytes."""
    targetNumber: int
    bus: int
    target: int
    reserved4: _c.Array[_t.Any]
    bindingFlags: int
    reserved9: int
    lunBase: int
    portId: _c.Array[_t.Any]
    reserved15: int
    nodeName: _c.Array[_t.Any]
    portName: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("targetNumber", _c.c_uint16),
        ("bus", _c.c_uint8),
        ("target", _c.c_uint8),
        ("reserved4", _c.c_uint8 * 4),
        ("bindingFlags", _c.c_uint8),
        ("reserved9", _c.c_uint8),
        ("lunBase", _c.c_uint16),
        ("portId", _c.c_uint8 * 3),
        ("reserved15", _c.c_uint8),
        ("nodeName", _c.c_uint8 * 8),
        ("portName", _c.c_uint8 * 8),
    ]


class HX_TARGET_DATA(_c.Structure):
    """8224 bytes."""
    header: int
    count: int
    reserved4: _c.Array[_t.Any]
    entries: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("header", _c.c_uint16),
        ("count", _c.c_uint16),
        ("reserved4", _c.c_uint8 * 28),
        ("entries", HX_TARGET_ENTRY * 256),
    ]


class HX_LUN_RECORD(_c.Structure):
    """2080 bytes."""
    nodeName: _c.Array[_t.Any]
    portName: _c.Array[_t.Any]
    reserved16: _c.Array[_t.Any]
    luns: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("nodeName", _c.c_uint8 * 8),
        ("portName", _c.c_uint8 * 8),
        ("reserved16", _c.c_uint8 * 16),
        ("luns", _c.c_uint8 * 2048),
    ]


class HX_LUN_DATA(_c.Structure):
    """532512 bytes."""
    version: int
    count: int
    reserved4: _c.Array[_t.Any]
    records: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("version", _c.c_uint16),
        ("count", _c.c_uint16),
        ("reserved4", _c.c_uint8 * 28),
        ("records", HX_LUN_RECORD * 256),
    ]


class HX_WWN_LIST(_c.Structure):
    """2048 bytes."""
    names: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("names", _c.c_uint8 * 8 * 256),
    ]


class HX_BUS_TARGET_LUN(_c.Structure):
    """6 bytes."""
    bus: int
    target: int
    lun: int
    _pack_ = 1
    _fields_ = [
        ("bus", _c.c_uint16),
        ("target", _c.c_uint16),
        ("lun", _c.c_uint16),
    ]


class HX_DEVICE_RECORD(_c.Structure):
    """290 bytes."""
    nodeName: _c.Array[_t.Any]
    portName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
    bindingFlags: int
    bus: int
    target: int
    lun: int
    symbolicName: _c.Array[_t.Any]
    roleAndState: int
    targetNumber: int
    portFlags: int
    reserved162: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("nodeName", _c.c_uint8 * 8),
        ("portName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("bindingFlags", _c.c_uint8),
        ("bus", _c.c_uint16),
        ("target", _c.c_uint16),
        ("lun", _c.c_uint16),
        ("symbolicName", _c.c_uint8 * 128),
        ("roleAndState", _c.c_uint32),
        ("targetNumber", _c.c_uint16),
        ("portFlags", _c.c_uint16),
        ("reserved162", _c.c_uint8 * 128),
    ]


class HX_PORT_DATABASE(_c.Structure):
    """8 bytes."""
    type: int
    count: int
    reserved6: int
    _pack_ = 1
    _fields_ = [
        ("type", _c.c_uint32),
        ("count", _c.c_uint16),
        ("reserved6", _c.c_uint16),
    ]


class HX_DISCOVERED_DEVICE(_c.Structure):
    """26 bytes."""
    nodeName: _c.Array[_t.Any]
    portName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
    bindingFlags: int
    bus: int
    target: int
    lun: int
    _pack_ = 1
    _fields_ = [
        ("nodeName", _c.c_uint8 * 8),
        ("portName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("bindingFlags", _c.c_uint8),
        ("bus", _c.c_uint16),
        ("target", _c.c_uint16),
        ("lun", _c.c_uint16),
    ]


class HX_DISCOVERED_PORT(_c.Structure):
    """60 bytes."""
    device: HX_DISCOVERED_DEVICE
    reserved26: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("device", HX_DISCOVERED_DEVICE),
        ("reserved26", _c.c_uint8 * 34),
    ]


class HX_DISCOVERED_TARGET(_c.Structure):
    """64 bytes."""
    device: HX_DISCOVERED_DEVICE
    reserved26: _c.Array[_t.Any]
    numberOfLuns: int
    reserved32: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("device", HX_DISCOVERED_DEVICE),
        ("reserved26", _c.c_uint8 * 2),
        ("numberOfLuns", _c.c_uint32),
        ("reserved32", _c.c_uint8 * 32),
    ]


class HX_STATISTICS(_c.Structure):
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
    reserved: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("secondsSinceReset", _c.c_uint32),
        ("txFrames", _c.c_uint32),
        ("rxFrames", _c.c_uint32),
        ("txWords", _c.c_uint32),
        ("rxWords", _c.c_uint32),
        ("lipCount", _c.c_uint32),
        ("linkFailures", _c.c_uint32),
        ("lossesOfSync", _c.c_uint32),
        ("lossesOfSignal", _c.c_uint32),
        ("primitiveSequenceErrors", _c.c_uint32),
        ("invalidTransmissionWords", _c.c_uint32),
        ("invalidCrcs", _c.c_uint32),
        ("reserved", _c.c_uint32 * 16),
    ]


class HX_MGMT_ADDRESS(_c.Structure):
    """52 bytes."""
    portName: _c.Array[_t.Any]
    reserved8: _c.Array[_t.Any]
    unitType: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
    attachedNodes: _c.Array[_t.Any]
    ipVersion: _c.Array[_t.Any]
    udpPort: _c.Array[_t.Any]
    ipAddress: _c.Array[_t.Any]
    reserved48: _c.Array[_t.Any]
    topologyDiscoveryFlags: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("portName", _c.c_uint8 * 8),
        ("reserved8", _c.c_uint8 * 8),
        ("unitType", _c.c_uint8 * 4),
        ("portId", _c.c_uint8 * 4),
        ("attachedNodes", _c.c_uint8 * 4),
        ("ipVersion", _c.c_uint8 * 2),
        ("udpPort", _c.c_uint8 * 2),
        ("ipAddress", _c.c_uint8 * 16),
        ("reserved48", _c.c_uint8 * 2),
        ("topologyDiscoveryFlags", _c.c_uint8 * 2),
    ]


class HX_MGMT_ADDRESS_SETTING(_c.Structure):
    """20 bytes."""
    ipVersion: _c.Array[_t.Any]
    udpPort: _c.Array[_t.Any]
    ipAddress: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("ipVersion", _c.c_uint8 * 2),
        ("udpPort", _c.c_uint8 * 2),
        ("ipAddress", _c.c_uint8 * 16),
    ]


class HX_PORT_STATISTICS(_c.Structure):
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
        ("secondsSinceReset", _c.c_uint64),
        ("txFrames", _c.c_uint64),
        ("txWords", _c.c_uint64),
        ("rxFrames", _c.c_uint64),
        ("rxWords", _c.c_uint64),
        ("lipCount", _c.c_uint64),
        ("nosCount", _c.c_uint64),
        ("errorFrames", _c.c_uint64),
        ("dumpedFrames", _c.c_uint64),
        ("linkFailures", _c.c_uint64),
        ("lossesOfSync", _c.c_uint64),
        ("lossesOfSignal", _c.c_uint64),
        ("primitiveSequenceErrors", _c.c_uint64),
        ("invalidTransmissionWords", _c.c_uint64),
        ("invalidCrcs", _c.c_uint64),
        ("correctedFecBlocks", _c.c_uint64),
        ("uncorrectableFecBlocks", _c.c_uint64),
    ]


class HX_PROTOCOL_STATISTICS(_c.Structure):
    """40 bytes."""
    inputRequests: int
    outputRequests: int
    controlRequests: int
    inputBytes: int
    outputBytes: int
    _pack_ = 1
    _fields_ = [
        ("inputRequests", _c.c_uint64),
        ("outputRequests", _c.c_uint64),
        ("controlRequests", _c.c_uint64),
        ("inputBytes", _c.c_uint64),
        ("outputBytes", _c.c_uint64),
    ]


class HX_PORT_STATISTICS_V2(_c.Structure):
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
    reserved376: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("port", HX_PORT_STATISTICS),
        ("fcp", HX_PROTOCOL_STATISTICS),
        ("nvme", HX_PROTOCOL_STATISTICS),
        ("txCreditZero", _c.c_uint64),
        ("txCreditZeroTime", _c.c_uint64),
        ("linkResetsSent", _c.c_uint64),
        ("linkResetsReceived", _c.c_uint64),
        ("txCreditsRecovered", _c.c_uint64),
        ("rxCreditsRecovered", _c.c_uint64),
        ("rxBufferFull", _c.c_uint64),
        ("framesTimedOut", _c.c_uint64),
        ("abtsSent", _c.c_uint64),
        ("abtsReceived", _c.c_uint64),
        ("exchangesTimedOut", _c.c_uint64),
        ("exchangesRetried", _c.c_uint64),
        ("taskSetFull", _c.c_uint64),
        ("logoutsReceived", _c.c_uint64),
        ("lsRejects", _c.c_uint64),
        ("busyReplies", _c.c_uint64),
        ("rscnsReceived", _c.c_uint64),
        ("fpinsReceived", _c.c_uint64),
        ("flogis", _c.c_uint64),
        ("plogis", _c.c_uint64),
        ("reserved376", _c.c_uint8 * 120),
    ]


class HX_FPIN_COUNTERS(_c.Structure):
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
        ("linkFailure", _c.c_uint64),
        ("lossOfSync", _c.c_uint64),
        ("lossOfSignal", _c.c_uint64),
        ("primitiveSequenceError", _c.c_uint64),
        ("invalidTransmissionWord", _c.c_uint64),
        ("invalidCrc", _c.c_uint64),
        ("linkOther", _c.c_uint64),
        ("deliveryTimeout", _c.c_uint64),
        ("deliveryUnableToRoute", _c.c_uint64),
        ("deliveryOther", _c.c_uint64),
        ("congestionCleared", _c.c_uint64),
        ("lostCredit", _c.c_uint64),
        ("creditStall", _c.c_uint64),
        ("oversubscription", _c.c_uint64),
        ("congestionOther", _c.c_uint64),
    ]


class HX_PORT_SCM_STATISTICS(_c.Structure):
    """136 bytes."""
    mark: int
    state: int
    fpins: HX_FPIN_COUNTERS
    lastEvent: int
    _pack_ = 1
    _fields_ = [
        ("mark", _c.c_uint32),
        ("state", _c.c_uint32),
        ("fpins", HX_FPIN_COUNTERS),
        ("lastEvent", _c.c_uint64),
    ]


class HX_LINK_ERRORS(_c.Structure):
    """24 bytes."""
    linkFailures: int
    lossesOfSync: int
    lossesOfSignal: int
    primitiveSequenceErrors: int
    invalidTransmissionWords: int
    invalidCrcs: int
    _pack_ = 1
    _fields_ = [
        ("linkFailures", _c.c_uint32),
        ("lossesOfSync", _c.c_uint32),
        ("lossesOfSignal", _c.c_uint32),
        ("primitiveSequenceErrors", _c.c_uint32),
        ("invalidTransmissionWords", _c.c_uint32),
        ("invalidCrcs", _c.c_uint32),
    ]


class HX_SCM_STATISTICS(_c.Structure):
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
    reserved336: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("version", _c.c_uint32),
        ("state", _c.c_uint32),
        ("secondsSinceReset", _c.c_uint64),
        ("fpins", HX_FPIN_COUNTERS),
        ("peerFpins", HX_FPIN_COUNTERS),
        ("warningSignals", _c.c_uint64),
        ("alarmSignals", _c.c_uint64),
        ("throttledSeconds", _c.c_uint64),
        ("throttledRequests", _c.c_uint64),
        ("warningInterval", _c.c_uint32),
        ("alarmInterval", _c.c_uint32),
        ("severity", _c.c_uint16),
        ("allowedPercent", _c.c_uint16),
        ("fpinsReceived", _c.c_uint32),
        ("lastEvent", _c.c_uint64),
        ("linkErrors", HX_LINK_ERRORS),
        ("reserved336", _c.c_uint8 * 176),
    ]


class HX_PRIVATE_STATISTICS(_c.Structure):
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
    reserved168: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("options", _c.c_uint32),
        ("counters", _c.c_uint32),
        ("secondsSinceReset", _c.c_uint64),
        ("commandsStarted", _c.c_uint64),
        ("commandsCompleted", _c.c_uint64),
        ("commandsFailed", _c.c_uint64),
        ("commandsAborted", _c.c_uint64),
        ("commandsTimedOut", _c.c_uint64),
        ("commandsOutstanding", _c.c_uint64),
        ("commandsOutstandingMost", _c.c_uint64),
        ("queueFull", _c.c_uint64),
        ("busyRetries", _c.c_uint64),
        ("underruns", _c.c_uint64),
        ("overruns", _c.c_uint64),
        ("lunResets", _c.c_uint64),
        ("targetResets", _c.c_uint64),
        ("loginRetries", _c.c_uint64),
        ("interrupts", _c.c_uint64),
        ("mailboxCommands", _c.c_uint64),
        ("mailboxFailures", _c.c_uint64),
        ("firmwareResets", _c.c_uint64),
        ("linkDowns", _c.c_uint64),
        ("reserved168", _c.c_uint8 * 344),
    ]


class HX_PRIVATE_STATISTICS_EX(_c.Structure):
    """512 bytes."""
    options: int
    buckets: int
    secondsSinceReset: int
    reads: _c.Array[_t.Any]
    writes: _c.Array[_t.Any]
    readTime: int
    writeTime: int
    longestRead: int
    longestWrite: int
    reserved432: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("options", _c.c_uint32),
        ("buckets", _c.c_uint32),
        ("secondsSinceReset", _c.c_uint64),
        ("reads", _c.c_uint64 * 24),
        ("writes", _c.c_uint64 * 24),
        ("readTime", _c.c_uint64),
        ("writeTime", _c.c_uint64),
        ("longestRead", _c.c_uint64),
        ("longestWrite", _c.c_uint64),
        ("reserved432", _c.c_uint8 * 80),
    ]


class HX_POSITIONAL_MAP(_c.Structure):
    """128 bytes."""
    count: int
    alPa: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("count", _c.c_uint8),
        ("alPa", _c.c_uint8 * 127),
    ]


class HX_REMOTE_PORT(_c.Structure):
    """128 bytes."""
    nodeName: _c.Array[_t.Any]
    portName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
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
    reserved38: _c.Array[_t.Any]
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
        ("nodeName", _c.c_uint8 * 8),
        ("portName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("state", _c.c_uint8),
        ("roles", _c.c_uint16),
        ("flags", _c.c_uint16),
        ("bus", _c.c_uint16),
        ("target", _c.c_uint16),
        ("loopId", _c.c_uint16),
        ("maxFrameSize", _c.c_uint16),
        ("bbCredits", _c.c_uint16),
        ("sequences", _c.c_uint16),
        ("speed", _c.c_uint8),
        ("highestSpeed", _c.c_uint8),
        ("reserved38", _c.c_uint8 * 2),
        ("temperature", _c.c_int16),
        ("voltage", _c.c_uint16),
        ("bias", _c.c_uint16),
        ("txPower", _c.c_uint16),
        ("rxPower", _c.c_uint16),
        ("transceiverFlags", _c.c_uint16),
        ("errors", HX_LINK_ERRORS),
        ("correctedFecBlocks", _c.c_uint32),
        ("uncorrectableFecBlocks", _c.c_uint32),
        ("secondsOnline", _c.c_uint32),
        ("symbolicName", _c.c_char * 40),
    ]


class HX_SECURE_PORT(_c.Structure):
    """72 bytes."""
    portName: _c.Array[_t.Any]
    nodeName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
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
    reserved64: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("portName", _c.c_uint8 * 8),
        ("nodeName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("state", _c.c_uint8),
        ("authentication", _c.c_uint8),
        ("encryption", _c.c_uint8),
        ("directions", _c.c_uint8),
        ("rejectReason", _c.c_uint8),
        ("txSpi", _c.c_uint32),
        ("rxSpi", _c.c_uint32),
        ("txBytes", _c.c_uint64),
        ("rxBytes", _c.c_uint64),
        ("rekeys", _c.c_uint32),
        ("secondsSinceRekey", _c.c_uint32),
        ("failures", _c.c_uint32),
        ("framesRefused", _c.c_uint32),
        ("reserved64", _c.c_uint8 * 8),
    ]


class HX_TARGET_LINK_SPEED(_c.Structure):
    """8 bytes."""
    speed: int
    portSpeed: int
    highest: int
    flags: int
    _pack_ = 1
    _fields_ = [
        ("speed", _c.c_uint16),
        ("portSpeed", _c.c_uint16),
        ("highest", _c.c_uint16),
        ("flags", _c.c_uint16),
    ]


class HX_LUN_QOS(_c.Structure):
    """256 bytes."""
    levels: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("levels", _c.c_uint8 * 256),
    ]


class HX_NPIV_ATTRIBUTES(_c.Structure):
    """56 bytes."""
    maximum: int
    inUse: int
    flags: int
    count: int
    first: int
    version: int
    portName: _c.Array[_t.Any]
    nodeName: _c.Array[_t.Any]
    fabricName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
    reserved43: int
    fdiscs: int
    fdiscRejects: int
    reserved52: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("maximum", _c.c_uint16),
        ("inUse", _c.c_uint16),
        ("flags", _c.c_uint16),
        ("count", _c.c_uint16),
        ("first", _c.c_uint32),
        ("version", _c.c_uint32),
        ("portName", _c.c_uint8 * 8),
        ("nodeName", _c.c_uint8 * 8),
        ("fabricName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("reserved43", _c.c_uint8),
        ("fdiscs", _c.c_uint32),
        ("fdiscRejects", _c.c_uint32),
        ("reserved52", _c.c_uint8 * 4),
    ]


class HX_VIRTUAL_PORT(_c.Structure):
    """56 bytes."""
    portName: _c.Array[_t.Any]
    nodeName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
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
        ("portName", _c.c_uint8 * 8),
        ("nodeName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("state", _c.c_uint8),
        ("index", _c.c_uint16),
        ("level", _c.c_uint16),
        ("targets", _c.c_uint16),
        ("rejectReason", _c.c_uint8),
        ("rejectExplanation", _c.c_uint8),
        ("secondsOnline", _c.c_uint32),
        ("symbolicName", _c.c_char * 24),
    ]


class HX_NVME_PORT(_c.Structure):
    """64 bytes."""
    portName: _c.Array[_t.Any]
    nodeName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
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
        ("portName", _c.c_uint8 * 8),
        ("nodeName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("roles", _c.c_uint8),
        ("state", _c.c_uint8),
        ("reserved21", _c.c_uint8),
        ("controllers", _c.c_uint16),
        ("namespaces", _c.c_uint32),
        ("secondsOnline", _c.c_uint32),
        ("readRequests", _c.c_uint64),
        ("writeRequests", _c.c_uint64),
        ("lsRequests", _c.c_uint64),
        ("lsErrors", _c.c_uint64),
    ]


class HX_NVME_TARGET(_c.Structure):
    """1024 bytes."""
    portName: _c.Array[_t.Any]
    nodeName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
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
    hostId: _c.Array[_t.Any]
    serial: bytes
    model: bytes
    firmware: bytes
    reserved660: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("portName", _c.c_uint8 * 8),
        ("nodeName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("kind", _c.c_uint8),
        ("index", _c.c_uint16),
        ("controllers", _c.c_uint16),
        ("controllerId", _c.c_uint16),
        ("state", _c.c_uint8),
        ("flags", _c.c_uint8),
        ("namespaces", _c.c_uint32),
        ("version", _c.c_uint32),
        ("maxTransfer", _c.c_uint32),
        ("ioQueues", _c.c_uint16),
        ("queueDepth", _c.c_uint16),
        ("keepAlive", _c.c_uint32),
        ("lossTimeout", _c.c_uint32),
        ("reconnects", _c.c_uint32),
        ("associationId", _c.c_uint64),
        ("subsystemNqn", _c.c_char * 256),
        ("hostNqn", _c.c_char * 256),
        ("hostId", _c.c_uint8 * 16),
        ("serial", _c.c_char * 20),
        ("model", _c.c_char * 40),
        ("firmware", _c.c_char * 8),
        ("reserved660", _c.c_uint8 * 364),
    ]


class HX_NVME_NAMESPACE(_c.Structure):
    """64 bytes."""
    id: int
    blockSize: int
    blocks: int
    capacity: int
    used: int
    eui64: _c.Array[_t.Any]
    nguid: _c.Array[_t.Any]
    anaGroup: int
    anaState: int
    flags: int
    metadata: int
    _pack_ = 1
    _fields_ = [
        ("id", _c.c_uint32),
        ("blockSize", _c.c_uint32),
        ("blocks", _c.c_uint64),
        ("capacity", _c.c_uint64),
        ("used", _c.c_uint64),
        ("eui64", _c.c_uint8 * 8),
        ("nguid", _c.c_uint8 * 16),
        ("anaGroup", _c.c_uint32),
        ("anaState", _c.c_uint8),
        ("flags", _c.c_uint8),
        ("metadata", _c.c_uint16),
    ]


class HX_FLASH_REGION(_c.Structure):
    """8 bytes."""
    code: int
    size: int
    _pack_ = 1
    _fields_ = [
        ("code", _c.c_uint32),
        ("size", _c.c_uint32),
    ]


class HX_FLASH_LAYOUT(_c.Structure):
    """2048 bytes."""
    size: int
    count: int
    regions: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("size", _c.c_uint32),
        ("count", _c.c_uint32),
        ("regions", HX_FLASH_REGION * 255),
    ]


class HX_FLASH_REGION_EX(_c.Structure):
    """16 bytes."""
    code: int
    flags: int
    reserved3: int
    size: int
    start: int
    end: int
    _pack_ = 1
    _fields_ = [
        ("code", _c.c_uint16),
        ("flags", _c.c_uint8),
        ("reserved3", _c.c_uint8),
        ("size", _c.c_uint32),
        ("start", _c.c_uint32),
        ("end", _c.c_uint32),
    ]


class HX_FLASH_LAYOUT_EX(_c.Structure):
    """4088 bytes."""
    size: int
    count: int
    regions: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("size", _c.c_uint32),
        ("count", _c.c_uint32),
        ("regions", HX_FLASH_REGION_EX * 255),
    ]


class HX_COMPANION_REQUEST(_c.Structure):
    """16 bytes."""
    flags: int
    totalSize: int
    version: int
    capacity: int
    _pack_ = 1
    _fields_ = [
        ("flags", _c.c_uint32),
        ("totalSize", _c.c_uint32),
        ("version", _c.c_uint32),
        ("capacity", _c.c_uint32),
    ]


class HX_VARIABLE_FIELD(_c.Structure):
    """4 bytes."""
    firstBit: int
    width: int
    _pack_ = 1
    _fields_ = [
        ("firstBit", _c.c_uint16),
        ("width", _c.c_uint16),
    ]


class HX_BBCR_DATA(_c.Structure):
    """64 bytes."""
    state: int
    reason: int
    configured: int
    attached: int
    negotiated: int
    reserved5: int
    attachedCredit: int
    ownCredit: int
    reserved10: _c.Array[_t.Any]
    scsSent: int
    scrSent: int
    scsReceived: int
    scrReceived: int
    creditsRecovered: int
    framesLost: int
    _pack_ = 1
    _fields_ = [
        ("state", _c.c_uint8),
        ("reason", _c.c_uint8),
        ("configured", _c.c_uint8),
        ("attached", _c.c_uint8),
        ("negotiated", _c.c_uint8),
        ("reserved5", _c.c_uint8),
        ("attachedCredit", _c.c_uint16),
        ("ownCredit", _c.c_uint16),
        ("reserved10", _c.c_uint8 * 6),
        ("scsSent", _c.c_uint64),
        ("scrSent", _c.c_uint64),
        ("scsReceived", _c.c_uint64),
        ("scrReceived", _c.c_uint64),
        ("creditsRecovered", _c.c_uint64),
        ("framesLost", _c.c_uint64),
    ]


class HX_BOARD_TEMPERATURE(_c.Structure):
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
        ("now", _c.c_int16),
        ("warning", _c.c_int16),
        ("critical", _c.c_int16),
        ("shutdown", _c.c_int16),
        ("highest", _c.c_int16),
        ("state", _c.c_uint16),
        ("secondsAbove", _c.c_uint32),
    ]


class HX_BEACON(_c.Structure):
    """16 bytes."""
    on: int
    seconds: int
    leds: int
    supported: int
    _pack_ = 1
    _fields_ = [
        ("on", _c.c_uint32),
        ("seconds", _c.c_uint32),
        ("leds", _c.c_uint32),
        ("supported", _c.c_uint32),
    ]


class HX_SERDES_LANE(_c.Structure):
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
    dfe: _c.Array[_t.Any]
    reserved24: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("lane", _c.c_uint8),
        ("speed", _c.c_uint8),
        ("locked", _c.c_uint8),
        ("modulation", _c.c_uint8),
        ("txPre", _c.c_int8),
        ("txMain", _c.c_int8),
        ("txPost", _c.c_int8),
        ("reserved7", _c.c_uint8),
        ("txAmplitude", _c.c_uint16),
        ("eyeHeight", _c.c_uint16),
        ("eyeWidth", _c.c_uint16),
        ("ctle", _c.c_int16),
        ("dfe", _c.c_int16 * 4),
        ("reserved24", _c.c_uint8 * 8),
    ]


class HX_OS_DEVICE(_c.Structure):
    """72 bytes."""
    name: bytes
    type: int
    number: int
    scsiPort: int
    bus: int
    target: int
    lun: int
    nodeName: _c.Array[_t.Any]
    portName: _c.Array[_t.Any]
    portId: _c.Array[_t.Any]
    discovered: int
    reserved: _c.Array[_t.Any]
    _pack_ = 1
    _fields_ = [
        ("name", _c.c_char * 32),
        ("type", _c.c_uint32),
        ("number", _c.c_uint32),
        ("scsiPort", _c.c_uint16),
        ("bus", _c.c_uint16),
        ("target", _c.c_uint16),
        ("lun", _c.c_uint16),
        ("nodeName", _c.c_uint8 * 8),
        ("portName", _c.c_uint8 * 8),
        ("portId", _c.c_uint8 * 3),
        ("discovered", _c.c_uint8),
        ("reserved", _c.c_uint8 * 4),
    ]


class HX_VOLUME(_c.Structure):
    """344 bytes."""
    name: bytes
    path: bytes
    extents: int
    extentsOnDisk: int
    reserved: int
    bytesOnDisk: int
    _pack_ = 1
    _fields_ = [
        ("name", _c.c_char * 64),
        ("path", _c.c_char * 260),
        ("extents", _c.c_uint32),
        ("extentsOnDisk", _c.c_uint32),
        ("reserved", _c.c_uint32),
        ("bytesOnDisk", _c.c_uint64),
    ]


class HX_DISK_EXTENT(_c.Structure):
    """24 bytes."""
    disk: int
    reserved: int
    offset: int
    length: int
    _pack_ = 1
    _fields_ = [
        ("disk", _c.c_uint32),
        ("reserved", _c.c_uint32),
        ("offset", _c.c_uint64),
        ("length", _c.c_uint64),
    ]


class HX_DISK_VOLUME(_c.Structure):
    """352 bytes."""
    disk: int
    reserved: int
    volume: HX_VOLUME
    _pack_ = 1
    _fields_ = [
        ("disk", _c.c_uint32),
        ("reserved", _c.c_uint32),
        ("volume", HX_VOLUME),
    ]


HBA_REGISTERLIBRARY = _c.CFUNCTYPE(_c.c_uint32, _c.POINTER(HBA_ENTRYPOINTS))
HX_FLASH_PROGRESS = _c.CFUNCTYPE(_c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_uint32, _c.c_uint32)


class Functions:
    """The exports of a loaded library, each with its prototype from its first use on."""

    GetDriverType: _t.Callable[..., int]
    HBA_RegisterLibrary: _t.Callable[..., int]
    HXAddTargetDevice: _t.Callable[..., int]
    HXCloseDevice: _t.Callable[..., int]
    HXDeletePersistentDeviceEntry: _t.Callable[..., int]
    HXDeletePersistentTargetEntry: _t.Callable[..., int]
    HXDisableAen: _t.Callable[..., int]
    HXDisableSmartSANFC: _t.Callable[..., int]
    HXEnableAen: _t.Callable[..., int]
    HXEnableDebugTrace: _t.Callable[..., int]
    HXEnableSmartSANFC: _t.Callable[..., int]
    HXEndFlashUpdate: _t.Callable[..., int]
    HXForceFcMctpDump: _t.Callable[..., int]
    HXForceFwDump: _t.Callable[..., int]
    HXForceZetaAEN: _t.Callable[..., int]
    HXGetActiveRegions: _t.Callable[..., int]
    HXGetAdapterLockdownState: _t.Callable[..., int]
    HXGetAen: _t.Callable[..., int]
    HXGetBBCRData: _t.Callable[..., int]
    HXGetBFSInfo: _t.Callable[..., int]
    HXGetBeaconControl: _t.Callable[..., int]
    HXGetBoardTemp: _t.Callable[..., int]
    HXGetDeviceNumber: _t.Callable[..., int]
    HXGetDiscPortProperty: _t.Callable[..., int]
    HXGetDiscTargetProperty: _t.Callable[..., int]
    HXGetDiskExtents: _t.Callable[..., int]
    HXGetDriverParameter: _t.Callable[..., int]
    HXGetErrorString: _t.Callable[..., _t.Any]
    HXGetFCSerDesRegister: _t.Callable[..., int]
    HXGetFCSerDesRegisterEx: _t.Callable[..., int]
    HXGetFcDump: _t.Callable[..., int]
    HXGetFcDumpRaw: _t.Callable[..., int]
    HXGetFcMctpDump: _t.Callable[..., int]
    HXGetFlashUpdateCapabilities: _t.Callable[..., int]
    HXGetGlobalDevice: _t.Callable[..., _t.Any]
    HXGetHbaDeviceChipProperty: _t.Callable[..., int]
    HXGetHbaDeviceDriverProperty: _t.Callable[..., int]
    HXGetHbaDeviceFirmwareProperty: _t.Callable[..., int]
    HXGetHbaDeviceNodeProperty: _t.Callable[..., int]
    HXGetHbaDeviceNodePropertyResync: _t.Callable[..., int]
    HXGetHbaDevicePortProperty: _t.Callable[..., int]
    HXGetHbaDevicePortPropertyV1: _t.Callable[..., int]
    HXGetHbaDevicePortPropertyV2: _t.Callable[..., int]
    HXGetHbaPortDisableInfo: _t.Callable[..., int]
    HXGetHbaTargetLunMask: _t.Callable[..., int]
    HXGetHbaTargetLunMaskFC: _t.Callable[..., int]
    HXGetLunData: _t.Callable[..., int]
    HXGetLunQos: _t.Callable[..., int]
    HXGetLunQosEnable: _t.Callable[..., int]
    HXGetMgmtAddress: _t.Callable[..., int]
    HXGetMiniDump: _t.Callable[..., int]
    HXGetMpiDumpRaw: _t.Callable[..., int]
    HXGetNPIVAttributes: _t.Callable[..., int]
    HXGetNVMeNSInfo: _t.Callable[..., int]
    HXGetNVMeTargetInfo: _t.Callable[..., int]
    HXGetNVRam: _t.Callable[..., int]
    HXGetOptionRom: _t.Callable[..., int]
    HXGetOptionRomEx: _t.Callable[..., int]
    HXGetOptionRomLayout: _t.Callable[..., int]
    HXGetOptionRomLayoutEx: _t.Callable[..., int]
    HXGetOptionRomOffset: _t.Callable[..., int]
    HXGetPersistentDeviceEntryList: _t.Callable[..., int]
    HXGetPersistentTargetEntryList: _t.Callable[..., int]
    HXGetPortDatabase: _t.Callable[..., int]
    HXGetPortSCMStatsFC: _t.Callable[..., int]
    HXGetPortStatisticsFC: _t.Callable[..., int]
    HXGetPortStatisticsFCV1: _t.Callable[..., int]
    HXGetPortStatisticsFCV2: _t.Callable[..., int]
    HXGetPositionalMap: _t.Callable[..., int]
    HXGetPrivStats: _t.Callable[..., int]
    HXGetPrivStatsEx: _t.Callable[..., int]
    HXGetQuarnI2CRegister: _t.Callable[..., int]
    HXGetRemotePortInfo: _t.Callable[..., int]
    HXGetSCMStatistics: _t.Callable[..., int]
    HXGetSFPData: _t.Callable[..., int]
    HXGetSecurePortInfo: _t.Callable[..., int]
    HXGetSmartSANStatusFC: _t.Callable[..., int]
    HXGetStatistics: _t.Callable[..., int]
    HXGetTargetData: _t.Callable[..., int]
    HXGetTargetIDMALinkSpeed: _t.Callable[..., int]
    HXGetVariableDescription: _t.Callable[..., _t.Any]
    HXGetVariableFields: _t.Callable[..., int]
    HXGetVariableValue: _t.Callable[..., int]
    HXGetVersion: _t.Callable[..., int]
    HXGetVpd: _t.Callable[..., int]
    HXIsVariableReadOnly: _t.Callable[..., int]
    HXListDiskVolumes: _t.Callable[..., int]
    HXListOsDevices: _t.Callable[..., int]
    HXListScsiPorts: _t.Callable[..., int]
    HXLoadSFPFirmware: _t.Callable[..., int]
    HXMailboxPassthru: _t.Callable[..., int]
    HXMapScsiTargetToVolumes: _t.Callable[..., int]
    HXMapVolumeToScsiTarget: _t.Callable[..., int]
    HXOnlineActivateFlashUpdate: _t.Callable[..., int]
    HXOpenDevice: _t.Callable[..., int]
    HXOpenScsiPort: _t.Callable[..., int]
    HXOrvoMgt: _t.Callable[..., int]
    HXRGetNVMeInfo: _t.Callable[..., int]
    HXReadSFPData: _t.Callable[..., int]
    HXReadSerdesParams: _t.Callable[..., int]
    HXReloadNvramAndInitFw: _t.Callable[..., int]
    HXRemoveDevice: _t.Callable[..., int]
    HXResetStatistics: _t.Callable[..., int]
    HXRunDiagLoopback: _t.Callable[..., int]
    HXRunDiagLoopbackEx: _t.Callable[..., int]
    HXRunDportDiag: _t.Callable[..., int]
    HXRunDportDiagEx: _t.Callable[..., int]
    HXRunDportDiagEx2: _t.Callable[..., int]
    HXSendCTPassThru: _t.Callable[..., int]
    HXSendElsEcho: _t.Callable[..., int]
    HXSendElsPassThru: _t.Callable[..., int]
    HXSendElsPassThruEx: _t.Callable[..., int]
    HXSendElsRnid: _t.Callable[..., int]
    HXSendFlashUpdateFWAttributes: _t.Callable[..., int]
    HXSendSCMMgmt: _t.Callable[..., int]
    HXSendScsiInquiryCmd: _t.Callable[..., int]
    HXSendScsiInquiryCmdFC: _t.Callable[..., int]
    HXSendScsiPassThru: _t.Callable[..., int]
    HXSendScsiPassThruFC: _t.Callable[..., int]
    HXSendScsiReadCapacityCmd: _t.Callable[..., int]
    HXSendScsiReadCapacityCmdFC: _t.Callable[..., int]
    HXSendScsiReportLunsCmd: _t.Callable[..., int]
    HXSendScsiReportLunsCmdFC: _t.Callable[..., int]
    HXSetDriverParameter: _t.Callable[..., int]
    HXSetFCSerDesRegister: _t.Callable[..., int]
    HXSetFCSerDesRegisterEx: _t.Callable[..., int]
    HXSetFlashProgress: _t.Callable[..., int]
    HXSetLunData: _t.Callable[..., int]
    HXSetLunQos: _t.Callable[..., int]
    HXSetMgmtAddress: _t.Callable[..., int]
    HXSetQuarnI2CRegister: _t.Callable[..., int]
    HXSetTargetData: _t.Callable[..., int]
    HXSetTargetIDMALinkSpeed: _t.Callable[..., int]
    HXSetVariableValue: _t.Callable[..., int]
    HXStartFlashUpdate: _t.Callable[..., int]
    HXSwapTargetDevice: _t.Callable[..., int]
    HXUpdateBeaconControl: _t.Callable[..., int]
    HXUpdateHbaTargetLunMask: _t.Callable[..., int]
    HXUpdateHbaTargetLunMaskFC: _t.Callable[..., int]
    HXUpdateNVRam: _t.Callable[..., int]
    HXUpdateOptionRom: _t.Callable[..., int]
    HXUpdateOptionRomEx: _t.Callable[..., int]
    HXUpdateOptionRomEx2: _t.Callable[..., int]
    HXUpdateOptionRomEx3: _t.Callable[..., int]
    HXUpdateOptionRomOffset: _t.Callable[..., int]
    HXUpdateSecureOptionRomEx: _t.Callable[..., int]
    HXUpdateVpd: _t.Callable[..., int]
    HXVerifyHbaNVRam: _t.Callable[..., int]
    HXVerifyHbaState: _t.Callable[..., int]
    HXWriteSFPData: _t.Callable[..., int]
    HXfprintf: _t.Callable[..., int]
    IHXFoDeletePersistentDeviceEntry: _t.Callable[..., int]
    IHXFoDeletePersistentTargetEntry: _t.Callable[..., int]
    IHXFoGetLunData: _t.Callable[..., int]
    IHXFoGetPersistentDeviceEntryList: _t.Callable[..., int]
    IHXFoGetPersistentTargetEntryList: _t.Callable[..., int]
    IHXFoGetTargetData: _t.Callable[..., int]
    IHXFoSetLunData: _t.Callable[..., int]
    IHXFoSetTargetData: _t.Callable[..., int]
    IsKorvexAdapter: _t.Callable[..., _t.Any]
    ReadNVRamFile: _t.Callable[..., int]
    SRBWithHeaderDeviceIoControl: _t.Callable[..., int]
    SendMiniPortControl: _t.Callable[..., int]
    VXUpdateAdapterModelInBios: _t.Callable[..., int]
    WriteNVRamFile: _t.Callable[..., int]

    def __init__(self, library: _t.Any) -> None:
        self._library = library

    def __getattr__(self, name: str) -> _t.Any:
        if name not in PROTOTYPES:
            raise AttributeError(f"{name} is no export of the library")
        function = getattr(self._library, name)
        function.restype, function.argtypes = PROTOTYPES[name]
        setattr(self, name, function)
        return function


# Of a function with further arguments, those before them.
PROTOTYPES: _t.Dict[str, _t.Any] = {
    "GetDriverType": (_c.c_uint8, [_c.c_uint32]),
    "HBA_RegisterLibrary": (_c.c_uint32, [_c.POINTER(HBA_ENTRYPOINTS)]),
    "HXAddTargetDevice": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_DEVICE_RECORD)]),
    "HXCloseDevice": (_c.c_uint32, [_c.c_int32]),
    "HXDeletePersistentDeviceEntry": (_c.c_uint32, [_c.POINTER(_c.c_uint8)]),
    "HXDeletePersistentTargetEntry": (_c.c_uint32, [_c.POINTER(_c.c_uint8)]),
    "HXDisableAen": (_c.c_uint32, [_c.c_uint32]),
    "HXDisableSmartSANFC": (_c.c_uint32, [_c.c_uint32]),
    "HXEnableAen": (_c.c_uint32, [_c.c_uint32]),
    "HXEnableDebugTrace": (_c.c_uint32, [_c.POINTER(_c.c_uint32), _c.c_char_p, _c.c_uint32]),
    "HXEnableSmartSANFC": (_c.c_uint32, [_c.c_uint32]),
    "HXEndFlashUpdate": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint32]),
    "HXForceFcMctpDump": (_c.c_uint32, []),
    "HXForceFwDump": (_c.c_uint32, [_c.c_uint32]),
    "HXForceZetaAEN": (_c.c_uint32, [_c.c_int32]),
    "HXGetActiveRegions": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(_c.c_uint8)]),
    "HXGetAdapterLockdownState": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(_c.c_uint8)]),
    "HXGetAen": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32, _c.POINTER(_c.c_uint32)]),
    "HXGetBBCRData": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_BBCR_DATA)]),
    "HXGetBFSInfo": (_c.c_uint32, [_c.c_uint32]),
    "HXGetBeaconControl": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_BEACON)]),
    "HXGetBoardTemp": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_BOARD_TEMPERATURE)]),
    "HXGetDeviceNumber": (_c.c_uint32, [_c.c_char_p, _c.c_void_p, _c.c_uint32]),
    "HXGetDiscPortProperty": (_c.c_uint32, [_c.c_uint32, _c.c_uint32, _c.c_uint32, _c.c_uint32, _c.POINTER(HX_DISCOVERED_PORT)]),
    "HXGetDiscTargetProperty": (_c.c_uint32, [_c.c_uint32, _c.c_uint32, _c.c_uint32, _c.c_uint32, _c.POINTER(HX_DISCOVERED_TARGET)]),
    "HXGetDiskExtents": (_c.c_uint32, [_c.c_char_p, _c.POINTER(HX_DISK_EXTENT), _c.POINTER(_c.c_uint32)]),
    "HXGetDriverParameter": (_c.c_uint32, [_c.c_uint32, _c.c_char_p, _c.POINTER(_c.c_char), _c.c_uint32]),
    "HXGetErrorString": (_c.c_char_p, [_c.c_uint32]),
    "HXGetFCSerDesRegister": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.POINTER(_c.c_uint16)]),
    "HXGetFCSerDesRegisterEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.c_uint32, _c.POINTER(_c.c_uint32)]),
    "HXGetFcDump": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.c_char_p]),
    "HXGetFcDumpRaw": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p]),
    "HXGetFcMctpDump": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.POINTER(_c.c_uint32)]),
    "HXGetFlashUpdateCapabilities": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(_c.c_uint64)]),
    "HXGetGlobalDevice": (_c.POINTER(HXMGT_API_HANDLE), []),
    "HXGetHbaDeviceChipProperty": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_CHIP_PROPERTY)]),
    "HXGetHbaDeviceDriverProperty": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_DRIVER_PROPERTY)]),
    "HXGetHbaDeviceFirmwareProperty": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_FIRMWARE_PROPERTY)]),
    "HXGetHbaDeviceNodeProperty": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_NODE_PROPERTY)]),
    "HXGetHbaDeviceNodePropertyResync": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_NODE_PROPERTY)]),
    "HXGetHbaDevicePortProperty": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_PORT_PROPERTY)]),
    "HXGetHbaDevicePortPropertyV1": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.POINTER(HX_PORT_PROPERTY)]),
    "HXGetHbaDevicePortPropertyV2": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_PORT_PROPERTY)]),
    "HXGetHbaPortDisableInfo": (_c.c_uint32, [_c.c_uint32]),
    "HXGetHbaTargetLunMask": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_BUS_TARGET_LUN), _c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXGetHbaTargetLunMaskFC": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_SCSI_ADDRESS), _c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXGetLunData": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.POINTER(HX_LUN_DATA), _c.c_uint16]),
    "HXGetLunQos": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_LUN_QOS)]),
    "HXGetLunQosEnable": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint8)]),
    "HXGetMgmtAddress": (_c.c_uint32, [_c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "HXGetMiniDump": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.POINTER(_c.c_uint32)]),
    "HXGetMpiDumpRaw": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p]),
    "HXGetNPIVAttributes": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_NPIV_ATTRIBUTES), _c.POINTER(HX_VIRTUAL_PORT), _c.POINTER(_c.c_uint32)]),
    "HXGetNVMeNSInfo": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_NVME_NAMESPACE), _c.POINTER(_c.c_uint32)]),
    "HXGetNVMeTargetInfo": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_NVME_TARGET)]),
    "HXGetNVRam": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "HXGetOptionRom": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32]),
    "HXGetOptionRomEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXGetOptionRomLayout": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_FLASH_LAYOUT)]),
    "HXGetOptionRomLayoutEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_FLASH_LAYOUT_EX)]),
    "HXGetOptionRomOffset": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXGetPersistentDeviceEntryList": (_c.c_uint32, [_c.POINTER(HX_WWN_LIST)]),
    "HXGetPersistentTargetEntryList": (_c.c_uint32, [_c.POINTER(HX_WWN_LIST)]),
    "HXGetPortDatabase": (_c.c_uint32, [_c.c_uint32, _c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "HXGetPortSCMStatsFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_PORT_SCM_STATISTICS)]),
    "HXGetPortStatisticsFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_PORT_STATISTICS)]),
    "HXGetPortStatisticsFCV1": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_PORT_STATISTICS)]),
    "HXGetPortStatisticsFCV2": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_PORT_STATISTICS_V2)]),
    "HXGetPositionalMap": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_POSITIONAL_MAP)]),
    "HXGetPrivStats": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_PRIVATE_STATISTICS)]),
    "HXGetPrivStatsEx": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_PRIVATE_STATISTICS_EX)]),
    "HXGetQuarnI2CRegister": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.c_uint16, _c.POINTER(_c.c_uint16)]),
    "HXGetRemotePortInfo": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_REMOTE_PORT), _c.POINTER(_c.c_uint32)]),
    "HXGetSCMStatistics": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCM_STATISTICS)]),
    "HXGetSFPData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.POINTER(_c.c_uint32)]),
    "HXGetSecurePortInfo": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SECURE_PORT), _c.POINTER(_c.c_uint32)]),
    "HXGetSmartSANStatusFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint8)]),
    "HXGetStatistics": (_c.c_uint32, [_c.c_uint32, _c.c_uint32, _c.POINTER(HX_STATISTICS)]),
    "HXGetTargetData": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.POINTER(HX_TARGET_DATA), _c.c_uint16]),
    "HXGetTargetIDMALinkSpeed": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_TARGET_LINK_SPEED)]),
    "HXGetVariableDescription": (_c.c_char_p, [_c.c_uint32, _c.c_uint32]),
    "HXGetVariableFields": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_VARIABLE_FIELD), _c.POINTER(_c.c_uint32)]),
    "HXGetVariableValue": (_c.c_uint32, [_c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "HXGetVersion": (_c.c_uint32, [_c.POINTER(_c.c_char), _c.c_uint32]),
    "HXGetVpd": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.POINTER(_c.c_uint32)]),
    "HXIsVariableReadOnly": (_c.c_uint32, [_c.c_void_p, _c.c_uint32]),
    "HXListDiskVolumes": (_c.c_uint32, [_c.POINTER(HX_DISK_VOLUME), _c.POINTER(_c.c_uint32)]),
    "HXListOsDevices": (_c.c_uint32, [_c.POINTER(HX_OS_DEVICE), _c.POINTER(_c.c_uint32)]),
    "HXListScsiPorts": (_c.c_uint32, [_c.POINTER(HX_SCSI_PORT), _c.POINTER(_c.c_uint32)]),
    "HXLoadSFPFirmware": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32]),
    "HXMailboxPassthru": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(_c.c_uint16), _c.c_int16, _c.POINTER(_c.c_uint16), _c.c_int16]),
    "HXMapScsiTargetToVolumes": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_OS_DEVICE), _c.POINTER(HX_VOLUME), _c.POINTER(_c.c_uint32)]),
    "HXMapVolumeToScsiTarget": (_c.c_uint32, [_c.c_uint32, _c.c_char_p, _c.POINTER(HX_OS_DEVICE), _c.POINTER(_c.c_uint32)]),
    "HXOnlineActivateFlashUpdate": (_c.c_uint32, [_c.c_uint32]),
    "HXOpenDevice": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint32)]),
    "HXOpenScsiPort": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint32)]),
    "HXOrvoMgt": (_c.c_uint32, [_c.c_uint32, _c.c_uint32, _c.c_void_p]),
    "HXRGetNVMeInfo": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_NVME_PORT), _c.POINTER(_c.c_uint32)]),
    "HXReadSFPData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint16, _c.c_void_p, _c.c_uint16, _c.c_uint16, _c.c_uint16, _c.POINTER(_c.c_uint16)]),
    "HXReadSerdesParams": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SERDES_LANE), _c.POINTER(_c.c_uint32)]),
    "HXReloadNvramAndInitFw": (_c.c_uint32, [_c.c_uint32]),
    "HXRemoveDevice": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_char_p, _c.c_int32]),
    "HXResetStatistics": (_c.c_uint32, [_c.c_uint32]),
    "HXRunDiagLoopback": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint16, _c.c_void_p, _c.c_uint16, _c.c_void_p, _c.c_uint16, _c.c_uint16, _c.POINTER(HX_LOOPBACK_RESULT)]),
    "HXRunDiagLoopbackEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint16, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_uint32, _c.POINTER(HX_LOOPBACK_EX_RESULT)]),
    "HXRunDportDiag": (_c.c_uint32, []),
    "HXRunDportDiagEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_DPORT_RESULT)]),
    "HXRunDportDiagEx2": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_DPORT_RESULT_EX2)]),
    "HXSendCTPassThru": (_c.c_uint32, [_c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "HXSendElsEcho": (_c.c_uint32, []),
    "HXSendElsPassThru": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_SCSI_ADDRESS), _c.c_void_p, _c.c_int32, _c.c_void_p, _c.POINTER(_c.c_uint32), _c.c_uint8]),
    "HXSendElsPassThruEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_SCSI_ADDRESS), _c.c_void_p, _c.c_int32, _c.c_void_p, _c.POINTER(_c.c_uint32), _c.c_uint8]),
    "HXSendElsRnid": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.c_uint8, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXSendFlashUpdateFWAttributes": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint64, _c.c_uint32]),
    "HXSendSCMMgmt": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(_c.c_uint8)]),
    "HXSendScsiInquiryCmd": (_c.c_uint32, []),
    "HXSendScsiInquiryCmdFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.c_void_p, _c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXSendScsiPassThru": (_c.c_uint32, []),
    "HXSendScsiPassThruFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(_c.c_uint8), _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXSendScsiReadCapacityCmd": (_c.c_uint32, []),
    "HXSendScsiReadCapacityCmdFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.c_void_p, _c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXSendScsiReportLunsCmd": (_c.c_uint32, []),
    "HXSendScsiReportLunsCmdFC": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.c_void_p, _c.c_uint32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXSetDriverParameter": (_c.c_uint32, [_c.c_uint32, _c.c_char_p, _c.c_char_p]),
    "HXSetFCSerDesRegister": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.c_uint16]),
    "HXSetFCSerDesRegisterEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.c_uint32, _c.c_uint32]),
    "HXSetFlashProgress": (_c.c_uint32, [_c.c_uint32, HX_FLASH_PROGRESS, _c.c_void_p]),
    "HXSetLunData": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.POINTER(HX_LUN_DATA), _c.c_uint16]),
    "HXSetLunQos": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.POINTER(HX_LUN_QOS)]),
    "HXSetMgmtAddress": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_MGMT_ADDRESS_SETTING)]),
    "HXSetQuarnI2CRegister": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.c_uint16, _c.c_uint16]),
    "HXSetTargetData": (_c.c_uint32, [_c.c_uint32, _c.c_uint16, _c.POINTER(HX_TARGET_DATA), _c.c_uint16]),
    "HXSetTargetIDMALinkSpeed": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_SCSI_ADDRESS), _c.c_uint16]),
    "HXSetVariableValue": (_c.c_uint32, [_c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXStartFlashUpdate": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(_c.c_uint32)]),
    "HXSwapTargetDevice": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_DEVICE_RECORD), _c.POINTER(HX_DEVICE_RECORD)]),
    "HXUpdateBeaconControl": (_c.c_uint32, [_c.c_uint32, _c.POINTER(HX_BEACON)]),
    "HXUpdateHbaTargetLunMask": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_BUS_TARGET_LUN), _c.c_int32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXUpdateHbaTargetLunMaskFC": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.POINTER(HX_SCSI_ADDRESS), _c.c_int32, _c.POINTER(_c.c_uint8), _c.c_uint32]),
    "HXUpdateNVRam": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "HXUpdateOptionRom": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32]),
    "HXUpdateOptionRomEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXUpdateOptionRomEx2": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXUpdateOptionRomEx3": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXUpdateOptionRomOffset": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXUpdateSecureOptionRomEx": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32, _c.c_uint32]),
    "HXUpdateVpd": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_void_p, _c.c_uint32]),
    "HXVerifyHbaNVRam": (_c.c_uint32, [_c.c_uint32, _c.c_uint64]),
    "HXVerifyHbaState": (_c.c_uint32, [_c.c_uint32]),
    "HXWriteSFPData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint16, _c.c_void_p, _c.c_uint16, _c.c_uint16, _c.c_uint16, _c.POINTER(_c.c_uint16)]),
    "HXfprintf": (_c.c_int32, [_c.c_char_p, _c.c_uint32, _c.c_void_p, _c.c_char_p]),
    "IHXFoDeletePersistentDeviceEntry": (_c.c_uint32, [_c.POINTER(_c.c_uint8)]),
    "IHXFoDeletePersistentTargetEntry": (_c.c_uint32, [_c.POINTER(_c.c_uint8)]),
    "IHXFoGetLunData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint64, _c.POINTER(HX_LUN_DATA), _c.c_uint16]),
    "IHXFoGetPersistentDeviceEntryList": (_c.c_uint32, [_c.POINTER(HX_WWN_LIST)]),
    "IHXFoGetPersistentTargetEntryList": (_c.c_uint32, [_c.POINTER(HX_WWN_LIST)]),
    "IHXFoGetTargetData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint64, _c.POINTER(HX_TARGET_DATA), _c.c_uint16]),
    "IHXFoSetLunData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint64, _c.POINTER(HX_LUN_DATA), _c.c_uint16]),
    "IHXFoSetTargetData": (_c.c_uint32, [_c.c_uint32, _c.c_uint64, _c.c_uint64, _c.POINTER(HX_TARGET_DATA), _c.c_uint16]),
    "IsKorvexAdapter": (_c.c_char_p, [_c.c_uint32, _c.c_uint32]),
    "ReadNVRamFile": (_c.c_int32, [_c.c_char_p, _c.c_void_p, _c.c_uint32, _c.c_int32]),
    "SRBWithHeaderDeviceIoControl": (_c.c_uint32, [_c.c_uint32, _c.c_uint32, _c.c_uint16, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.POINTER(_c.c_uint32)]),
    "SendMiniPortControl": (_c.c_uint32, [_c.c_int32, _c.c_uint32, _c.c_void_p, _c.c_uint32, _c.c_void_p, _c.c_uint32]),
    "VXUpdateAdapterModelInBios": (_c.c_uint32, [_c.c_uint32, _c.POINTER(_c.c_uint8)]),
    "WriteNVRamFile": (_c.c_int32, [_c.c_void_p, _c.c_char_p]),
}
