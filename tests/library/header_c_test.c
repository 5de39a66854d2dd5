/* The public header by itself, for a C compiler: records as an application compiled against them.
   Their sizes and last members; the library asserts the rest. */
#include "hxmgtapi.h"

#include <stddef.h>

#define SIZE(record, size) _Static_assert(sizeof(record) == (size), #record)
#define AT(record, field, offset) \
    _Static_assert(offsetof(record, field) == (offset), #record "." #field)

SIZE(HXMGT_API_HANDLE, 120);
AT(HXMGT_API_HANDLE, dwTraceLevel, 48);
AT(HXMGT_API_HANDLE, dwAdapterIndex, 88);
AT(HXMGT_API_HANDLE, dwScsiPort, 92);
AT(HXMGT_API_HANDLE, qwFlashUpdateCapabilities, 112);
SIZE(HX_NODE_PROPERTY, 388);
AT(HX_NODE_PROPERTY, serialBytes, 264);
SIZE(HX_PORT_PROPERTY, 112);
AT(HX_PORT_PROPERTY, diagnosticState, 108);
SIZE(HX_CHIP_PROPERTY, 80);
AT(HX_CHIP_PROPERTY, flashRegionCode, 58);
SIZE(HX_DRIVER_PROPERTY, 74);
AT(HX_DRIVER_PROPERTY, buildNumber, 70);
SIZE(HX_FIRMWARE_PROPERTY, 40);
AT(HX_FIRMWARE_PROPERTY, activationAttributes, 36);
SIZE(HX_EVENT, 16);

SIZE(HX_TARGET_ENTRY, 32);
SIZE(HX_TARGET_DATA, 8224);
SIZE(HX_LUN_RECORD, 2080);
SIZE(HX_LUN_DATA, 532512);
SIZE(HX_WWN_LIST, 2048);
SIZE(HX_DEVICE_RECORD, 290);
AT(HX_DEVICE_RECORD, roleAndState, 154);
SIZE(HX_DISCOVERED_PORT, 60);
SIZE(HX_DISCOVERED_TARGET, 64);
AT(HX_DISCOVERED_TARGET, numberOfLuns, 28);

SIZE(HX_PORT_STATISTICS_V2, 496);
AT(HX_PORT_STATISTICS_V2, plogis, 368);
SIZE(HX_SCM_STATISTICS, 512);
AT(HX_SCM_STATISTICS, linkErrors.invalidCrcs, 332);
SIZE(HX_BBCR_DATA, 64);
SIZE(HX_SERDES_LANE, 32);
SIZE(HX_REMOTE_PORT, 128);
SIZE(HX_SECURE_PORT, 72);
SIZE(HX_NPIV_ATTRIBUTES, 56);
SIZE(HX_VIRTUAL_PORT, 56);
SIZE(HX_NVME_TARGET, 1024);
AT(HX_NVME_TARGET, firmware, 652);
SIZE(HX_NVME_NAMESPACE, 64);
_Static_assert(HX_PORT_DATABASE_SIZE(257) == 74538, "HX_PORT_DATABASE_SIZE");

/* A C caller reaches the library under the names of the header. */
uint32_t VersionSeenFromC(void) {
    return HXGetVersion(NULL, 0);
}
const char* InvalidHandleTextSeenFromC(void) {
    return HXGetErrorString(HXMGT_INVALID_HANDLE);
}
