/* A program of Visual Studio's conventions without its runtime: its exit code is the number of
   ports whose properties it could read, or 100 and more for a fault of its own. */
#include <hbaapi.h>
#include <hxmgtapi.h>

int start(void) {
    static HX_NODE_PROPERTY node;
    static HBA_ENTRYPOINTS api;
    uint32_t handle = 0;
    int ports = 0;

    if (sizeof node != 388 || sizeof(HXMGT_API_HANDLE) != 120 ||
        HXGetVersion(0, 0) != HX_VERSION_PACKED || HBA_RegisterLibrary(&api) != HBA_STATUS_OK) {
        return 100;
    }
    while (ports < HX_MAX_SCSI_PORTS && HXOpenDevice((uint32_t)ports, &handle) == HXMGT_SUCCESS) {
        if (HXGetHbaDeviceNodeProperty(handle, &node) != HXMGT_SUCCESS || node.serialPresent != 1) {
            return 101;
        }
        HXCloseDevice((int32_t)handle);
        ++ports;
    }
    return api.GetNumberOfAdaptersHandler() == (HBA_UINT32)ports ? ports : 102;
}
