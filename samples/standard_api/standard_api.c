/* Lists adapters, ports and target disks through the standard HBA API alone. */
#include <hbaapi.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

static void print_name(const char* title, HBA_WWN name) {
    printf("  %-10s %02x%02x%02x%02x%02x%02x%02x%02x\n", title, name.wwn[0], name.wwn[1],
           name.wwn[2], name.wwn[3], name.wwn[4], name.wwn[5], name.wwn[6], name.wwn[7]);
}

static void print_discovered(const HBA_ENTRYPOINTS* api, HBA_HANDLE handle, HBA_UINT32 count) {
    HBA_UINT32 index;
    for (index = 0; index < count; ++index) {
        HBA_PORTATTRIBUTES remote;
        if (api->GetDiscoveredPortAttributesHandler(handle, 0, index, &remote) == HBA_STATUS_OK) {
            print_name("sees", remote.PortWWN);
        }
    }
}

/* The number of entries is not known beforehand: ask with little room, then with enough. More may
   have come meanwhile, so the answer is looked at again. */
static void print_targets(const HBA_ENTRYPOINTS* api, HBA_HANDLE handle) {
    HBA_UINT32 room = 1;
    for (;;) {
        HBA_FCPTARGETMAPPING* mapping;
        HBA_STATUS status;
        mapping = calloc(1, sizeof *mapping + (room - 1) * sizeof mapping->entry[0]);
        if (mapping == NULL) {
            return;
        }
        mapping->NumberOfEntries = room;
        status = api->GetFcpTargetMappingHandler(handle, mapping);
        if (status == HBA_STATUS_ERROR_MORE_DATA && mapping->NumberOfEntries > room) {
            room = mapping->NumberOfEntries;
            free(mapping);
            continue;
        }
        if (status == HBA_STATUS_OK) {
            HBA_UINT32 i;
            for (i = 0; i < mapping->NumberOfEntries; ++i) {
                const HBA_SCSIID* id = &mapping->entry[i].ScsiId;
                printf("  %-10s %s (bus %u, target %u, lun %u)\n", "device", id->OSDeviceName,
                       id->ScsiBusNumber, id->ScsiTargetNumber, id->ScsiOSLun);
            }
        }
        free(mapping);
        return;
    }
}

static int print_adapter(const HBA_ENTRYPOINTS* api, char* name) {
    HBA_ADAPTERATTRIBUTES adapter;
    HBA_PORTATTRIBUTES port;
    int ok;
    const HBA_HANDLE handle = api->OpenAdapterHandler(name);
    if (handle == 0) {
        return 0;
    }
    memset(&adapter, 0, sizeof adapter); /* VendorSpecificID is looked at */
    ok = api->GetAdapterAttributesHandler(handle, &adapter) == HBA_STATUS_OK &&
         api->GetAdapterPortAttributesHandler(handle, 0, &port) == HBA_STATUS_OK;
    if (ok) {
        printf("  %-10s %.64s\n", "maker", adapter.Manufacturer);
        printf("  %-10s %s\n", "model", adapter.Model);
        printf("  %-10s %s\n", "serial", adapter.SerialNumber);
        printf("  %-10s %s\n", "driver", adapter.DriverVersion);
        printf("  %-10s %s\n", "firmware", adapter.FirmwareVersion);
        print_name("port name", port.PortWWN);
        printf("  %-10s %s\n", "state",
               port.PortState == HBA_PORTSTATE_ONLINE ? "online" : "not online");
        print_discovered(api, handle, port.NumberofDiscoveredPorts);
        print_targets(api, handle);
    }
    api->CloseAdapterHandler(handle);
    return ok;
}

int main(void) {
    HBA_ENTRYPOINTS api;
    HBA_REGISTERLIBRARY registerLibrary;
    HBA_UINT32 count;
    HBA_UINT32 index;
    int failures = 0;
    const HMODULE library = LoadLibraryA("VXMGMT.DLL");
    if (library == NULL) {
        fprintf(stderr, "VXMGMT.DLL cannot be loaded (%lu)\n", GetLastError());
        return 1;
    }
    registerLibrary =
        (HBA_REGISTERLIBRARY)(void (*)(void))GetProcAddress(library, "HBA_RegisterLibrary");
    if (registerLibrary == NULL || registerLibrary(&api) != HBA_STATUS_OK) {
        fprintf(stderr, "VXMGMT.DLL does not offer the standard API\n");
        return 1;
    }
    count = api.GetNumberOfAdaptersHandler();
    for (index = 0; index < count; ++index) {
        char name[256];
        if (api.GetAdapterNameHandler(index, name) != HBA_STATUS_OK) {
            break; /* gone since the count */
        }
        printf("%s\n", name);
        if (!print_adapter(&api, name)) {
            fprintf(stderr, "%s does not answer\n", name);
            ++failures;
        }
    }
    printf("%u adapters\n", count);
    api.FreeLibraryHandler();
    FreeLibrary(library);
    return failures == 0 ? 0 : 1;
}
