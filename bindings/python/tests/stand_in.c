/* Stands in for the library where it cannot run: the same prototypes, compiled from the same
   headers, over one adapter that is made up. It tells what came in by what goes out. */
#include <hxmgtapi.h>
#include <string.h>

static uint32_t open_handles;
static HX_FLASH_PROGRESS progress;
static void* progress_context;

HX_STATUS HXOpenDevice(uint32_t index, uint32_t* handle) {
    if (index > 1) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    *handle = index + 1;
    ++open_handles;
    return HXMGT_SUCCESS;
}

HX_STATUS HXOpenScsiPort(uint32_t scsiPort, uint32_t* handle) {
    *handle = 0;
    return scsiPort == 40 ? 2u : HXOpenDevice(scsiPort, handle);
}

HX_STATUS HXCloseDevice(int32_t handle) {
    --open_handles;
    return handle > 0 ? HXMGT_SUCCESS : HXMGT_INVALID_HANDLE;
}

uint32_t HXGetVersion(char* buffer, uint32_t length) {
    (void)buffer;
    return length == 0 ? open_handles : HX_VERSION_PACKED;
}

const char* HXGetErrorString(HX_STATUS status) {
    return status == HXMGT_DEVICE_NOT_FOUND ? "Device not found" : "File not found.\r\n";
}

HX_STATUS HXGetHbaDeviceNodeProperty(uint32_t handle, HX_NODE_PROPERTY* record) {
    memset(record, 0, sizeof *record);
    memcpy(record->model, "sixteen letters!", 16);
    strcpy(record->serialNumber, handle == 1 ? "ONE" : "TWO");
    record->flags = 0x12345678;
    record->reserved[120] = 0x5A;
    return HXMGT_SUCCESS;
}

HX_STATUS HXGetHbaDevicePortProperty(uint32_t handle, uint64_t port, HX_PORT_PROPERTY* record) {
    (void)handle;
    record->portName[0] = 0x21;
    record->portName[7] = record->state; /* what the caller put there */
    record->discoveredDevices = 2;
    return port == 0 ? HXMGT_SUCCESS : HXMGT_INVALID_PARAMETER;
}

HX_STATUS HXGetDiscPortProperty(uint32_t handle, uint32_t port, uint32_t index, uint32_t reserved,
                                HX_DISCOVERED_PORT* record) {
    (void)handle;
    record->device.target = (uint16_t)(index + port + reserved + 7);
    return HXMGT_SUCCESS;
}

HX_STATUS HXListScsiPorts(HX_SCSI_PORT* ports, uint32_t* count) {
    const uint32_t room = *count;
    *count = 2;
    if (room < 2) {
        return HXMGT_BUFFER_TOO_SMALL;
    }
    memset(ports, 0, 2 * sizeof *ports);
    ports[0].scsiPort = 3;
    strcpy(ports[1].driver, "vxfc2");
    return HXMGT_SUCCESS;
}

HX_STATUS HXGetAen(uint32_t handle, uint8_t* buffer, uint32_t bufferBytes, uint32_t* count) {
    const HX_EVENT events[2] = {{HX_EVENT_LINK_UP, {0, 0, 0}},
                                {HX_EVENT_RSCN, {0x010203, 0, handle}}};
    if (bufferBytes != 512) {
        return HXMGT_INVALID_PARAMETER;
    }
    memcpy(buffer, events, sizeof events);
    *count = 2;
    return HXMGT_SUCCESS;
}

HX_STATUS HXSetFlashProgress(uint32_t handle, HX_FLASH_PROGRESS function, void* context) {
    (void)handle;
    progress = function;
    progress_context = context;
    return HXMGT_SUCCESS;
}

HX_STATUS HXGetOptionRomEx(uint32_t handle, uint64_t reserved, void* buffer, uint32_t bufferSize,
                           uint32_t regionCode) {
    (void)handle;
    (void)reserved;
    memset(buffer, 0x55, bufferSize);
    return progress ? progress(progress_context, regionCode, bufferSize, 0xFFFFFFFFu)
                    : HXMGT_SUCCESS;
}
