/* Lists the adapters of this machine and what their ports see. */
#include <hxmgtapi.h>
#include <string.h>

static void print_name(const char* title, const uint8_t* name) {
    printf("  %-10s %02x%02x%02x%02x%02x%02x%02x%02x\n", title, name[0], name[1], name[2], name[3],
           name[4], name[5], name[6], name[7]);
}

/* Texts of a record need not be terminated when they fill their field. */
static void print_text(const char* title, const char* text, int size) {
    printf("  %-10s %.*s\n", title, size, text);
}

static const char* state_text(uint8_t state) {
    switch (state) {
        case HX_PORT_STATE_ONLINE:
            return "online";
        case HX_PORT_STATE_OFFLINE:
            return "offline";
        case HX_PORT_STATE_LINK_DOWN:
            return "link down";
        default:
            return "unknown";
    }
}

static HX_STATUS print_adapter(uint32_t handle) {
    HX_NODE_PROPERTY node;
    HX_PORT_PROPERTY port;
    HX_DISCOVERED_PORT remote;
    HX_STATUS status;
    uint32_t index;

    /* Not every driver fills every field: begin with zeros. An older driver writes the state only
       when the link is down. */
    memset(&node, 0, sizeof node);
    memset(&port, 0, sizeof port);
    port.state = HX_PORT_STATE_ONLINE;
    status = HXGetHbaDeviceNodeProperty(handle, &node);
    if (status == HXMGT_SUCCESS) {
        status = HXGetHbaDevicePortProperty(handle, 0, &port);
    }
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    print_text("model", node.model, sizeof node.model);
    print_text("serial", node.serialNumber, sizeof node.serialNumber);
    print_text("driver", node.driverVersion, sizeof node.driverVersion);
    print_text("firmware", node.firmwareVersion, sizeof node.firmwareVersion);
    print_name("port name", port.portName);
    printf("  %-10s %02x%02x%02x\n", "port id", port.portId[0], port.portId[1], port.portId[2]);
    printf("  %-10s %s\n", "state", state_text(port.state));
    for (index = 0; index < port.discoveredDevices; ++index) {
        if (HXGetDiscPortProperty(handle, 0, index, 0, &remote) == HXMGT_SUCCESS) {
            print_name("sees", remote.device.portName);
        }
    }
    return HXMGT_SUCCESS;
}

int main(void) {
    char version[64];
    uint32_t index;
    int failures = 0;

    HXGetVersion(version, sizeof version);
    printf("%s\n", version);
    for (index = 0; index < HX_MAX_SCSI_PORTS; ++index) {
        uint32_t handle = 0;
        HX_STATUS status = HXOpenDevice(index, &handle);
        if (status == HXMGT_DEVICE_NOT_FOUND) {
            break; /* beyond the last adapter */
        }
        printf("adapter %u\n", index);
        if (status == HXMGT_SUCCESS) {
            status = print_adapter(handle);
            HXCloseDevice((int32_t)handle);
        }
        if (status != HXMGT_SUCCESS) {
            fprintf(stderr, "adapter %u: %s (0x%x)\n", index, HXGetErrorString(status), status);
            ++failures;
        }
    }
    printf("%u adapters\n", index);
    return failures == 0 ? 0 : 1;
}
