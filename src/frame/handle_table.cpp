#include "frame/handle_table.h"

#include <aclapi.h>

#include "frame/discovery.h"
#include "frame/driver_version.h"
#include "frame/library_state.h"
#include "frame/owned.h"
#include "properties/driver_replies.h"
#include "transport/requests.h"

namespace frame {
namespace {

constexpr char kEventMutexPrefix[] = "HXMGT_GetAENMutex";

// Every record is free before any code runs: constant data, no start-up code.
#define VX_FREE_RECORD \
    { INVALID_HANDLE_VALUE, {0}, nullptr, 0, {0}, 0, 0, 0, 0, 0, 0 }
#define VX_8_FREE_RECORDS                                                           \
    VX_FREE_RECORD, VX_FREE_RECORD, VX_FREE_RECORD, VX_FREE_RECORD, VX_FREE_RECORD, \
        VX_FREE_RECORD, VX_FREE_RECORD, VX_FREE_RECORD
HXMGT_API_HANDLE devices[] = {VX_8_FREE_RECORDS, VX_8_FREE_RECORDS, VX_8_FREE_RECORDS,
                              VX_8_FREE_RECORDS, VX_8_FREE_RECORDS, VX_8_FREE_RECORDS,
                              VX_8_FREE_RECORDS, VX_8_FREE_RECORDS, VX_FREE_RECORD};
#undef VX_8_FREE_RECORDS
#undef VX_FREE_RECORD
static_assert(sizeof devices / sizeof devices[0] == kHandleRecords);
static_assert(kHandleRecords == HX_MAX_HANDLE_RECORDS);
static_assert(sizeof(HXMGT_API_HANDLE) == 120);
static_assert(offsetof(HXMGT_API_HANDLE, szModel) == 8);
static_assert(offsetof(HXMGT_API_HANDLE, pTraceFile) == 40);
static_assert(offsetof(HXMGT_API_HANDLE, szDeviceName) == 52);
static_assert(offsetof(HXMGT_API_HANDLE, dwDriverVersion) == 84);
static_assert(offsetof(HXMGT_API_HANDLE, dwActivationTimeout) == 96);
static_assert(offsetof(HXMGT_API_HANDLE, qwExpectedFirmwareAttributes) == 104);

HANDLE eventMutexes[kHandleRecords];

// What a record owns changes under this lock.
SRWLOCK tableLock = SRWLOCK_INIT;

bool IsFree(const HXMGT_API_HANDLE& record) {
    return record.hDevice == INVALID_HANDLE_VALUE;
}

// SCSI port of the adapter with this index, or -1.
int FindPort(uint32_t adapterIndex) {
    uint32_t found = 0;
    for (uint32_t port = 0; port < HX_MAX_SCSI_PORTS; ++port) {
        if (FamilyDriverName(port) != nullptr) {
            if (found == adapterIndex) {
                return static_cast<int>(port);
            }
            ++found;
        }
    }
    return -1;
}

// Index of the adapter at this SCSI port, or -1 when the port is not of the family.
int AdapterIndexOf(uint32_t scsiPort) {
    if (FamilyDriverName(scsiPort) == nullptr) {
        return -1;
    }
    int index = 0;
    for (uint32_t port = 0; port < scsiPort; ++port) {
        index += FamilyDriverName(port) != nullptr ? 1 : 0;
    }
    return index;
}

uint32_t FindFreeRecord() {
    uint32_t handle = 1;
    while (handle <= kHighestHandle && !IsFree(devices[handle])) {
        ++handle;
    }
    return handle;
}

// Chooses a record and opens the port on it, under the machine-wide open mutex.
HX_STATUS ClaimRecord(uint32_t port, uint32_t* outHandle, uint32_t* claimed) {
    char path[32];
    wsprintfA(path, kScsiPortPath, port);
    const bool waited = WaitForSingleObject(OpenMutex(), INFINITE) == WAIT_OBJECT_0;
    const MutexHold hold(OpenMutex());  // released even when the wait failed: intended
    if (!waited) {
        return HXMGT_MUTEX_NOT_RESERVED;
    }
    const uint32_t handle = FindFreeRecord();
    if (handle > kHighestOpenHandle) {
        return HXMGT_INVALID_HANDLE;
    }
    HXMGT_API_HANDLE& record = devices[handle];
    // The flash update fields keep what the record's last holder left: intended.
    record.pTraceFile = nullptr;
    record.dwTraceLevel = 0;
    record.hDevice =
        CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (IsFree(record)) {
        const DWORD error = GetLastError();
        *outHandle = 0;
        return error;
    }
    *claimed = handle;
    return HXMGT_SUCCESS;
}

// What both ways to open begin with: a record with the port's device and names.
HX_STATUS ClaimPort(uint32_t port, uint32_t adapterIndex, uint32_t* outHandle, uint32_t* claimed) {
    if (const HX_STATUS status = ClaimRecord(port, outHandle, claimed); status != HXMGT_SUCCESS) {
        return status;
    }
    HXMGT_API_HANDLE& record = devices[*claimed];
    wsprintfA(record.szDeviceName, "\\Device\\ScsiPort%d", port);
    record.dwAdapterIndex = adapterIndex;
    record.dwScsiPort = port;
    eventMutexes[*claimed] = nullptr;  // what a failed open left behind stays open: intended
    return HXMGT_SUCCESS;
}

HX_STATUS GiveBack(HXMGT_API_HANDLE& record, uint32_t* outHandle, HX_STATUS status) {
    CloseHandle(record.hDevice);
    record.hDevice = INVALID_HANDLE_VALUE;
    *outHandle = 0;
    return status;
}

// A digit above 9 is written as two decimal digits: intended, model texts are compared this way.
void WriteModel(uint16_t deviceId, char* text) {
    wsprintfA(text, "%d%d%d%d", deviceId >> 12, (deviceId >> 8) & 0xF, (deviceId >> 4) & 0xF,
              deviceId & 0xF);
}

OwnedObject CreateEventMutex(uint32_t adapterIndex, SECURITY_ATTRIBUTES* attributes) {
    char name[sizeof kEventMutexPrefix + 10];
    wsprintfA(name, "%s%d", kEventMutexPrefix, adapterIndex);
    // Fails harmlessly while the mutex does not exist yet.
    SetNamedSecurityInfoA(name, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                          nullptr, nullptr);
    return OwnedObject(CreateMutexA(attributes, FALSE, name));
}

// What both ways to open end with: the driver's answers in the record, the handle to the caller.
HX_STATUS Identify(uint32_t handle, uint32_t* outHandle) {
    HXMGT_API_HANDLE& record = devices[handle];
    properties::NodeReply node{};
    properties::ChipReply chip{};
    if (transport::Ask(handle, transport::command::NodeProperties, node) != HXMGT_SUCCESS ||
        transport::Ask(handle, transport::command::ChipProperties, chip) != HXMGT_SUCCESS) {
        // The event mutex stays open: intended.
        return GiveBack(record, outHandle, HXMGT_INCOMPATIBLE_VERSION);
    }
    WriteModel(chip.deviceId, record.szModel);
    record.dwDriverVersion = ParseDriverVersion(node.driverVersion);
    *outHandle = handle;
    return HXMGT_SUCCESS;
}

}  // namespace

HXMGT_API_HANDLE* FirstRecord() {
    return devices;
}

HXMGT_API_HANDLE* AnyRecord(uint32_t handle) {
    return handle <= kHighestHandle ? &devices[handle] : nullptr;
}

HXMGT_API_HANDLE* OpenRecord(uint32_t handle) {
    return handle >= 1 && handle <= kHighestHandle && !IsFree(devices[handle]) ? &devices[handle]
                                                                               : nullptr;
}

FILE* TraceOf(uint32_t handle) {
    const HXMGT_API_HANDLE* const record = OpenRecord(handle);
    return record != nullptr ? record->pTraceFile : nullptr;
}

HANDLE EventMutex(uint32_t handle) {
    return handle < kHandleRecords ? eventMutexes[handle] : nullptr;
}

HX_STATUS OpenDevice(uint32_t adapterIndex, uint32_t* outHandle) {
    if (outHandle == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    const int port = FindPort(adapterIndex);
    if (port < 0) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    uint32_t handle = 0;
    if (const HX_STATUS status =
            ClaimPort(static_cast<uint32_t>(port), adapterIndex, outHandle, &handle);
        status != HXMGT_SUCCESS) {
        return status;
    }
    OpenToAll everyone;
    SECURITY_ATTRIBUTES* const attributes = everyone.Attributes();
    if (attributes == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;  // the record stays claimed: intended
    }
    eventMutexes[handle] = CreateEventMutex(adapterIndex, attributes).Release();
    if (eventMutexes[handle] == nullptr) {
        return GiveBack(devices[handle], outHandle, HXMGT_DEVICE_NOT_FOUND);
    }
    return Identify(handle, outHandle);
}

HX_STATUS OpenScsiPort(uint32_t scsiPort, uint32_t* outHandle) {
    if (outHandle == nullptr || scsiPort >= HX_MAX_SCSI_PORTS) {
        return HXMGT_INVALID_PARAMETER;
    }
    uint32_t handle = 0;
    const HX_STATUS status = ClaimPort(scsiPort, HX_ADAPTER_NOT_COUNTED, outHandle, &handle);
    return status == HXMGT_SUCCESS ? Identify(handle, outHandle) : status;
}

HX_STATUS CountAdapter(uint32_t handle, uint32_t& adapterIndex) {
    const HXMGT_API_HANDLE* const record = OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    adapterIndex = record->dwAdapterIndex;
    if (adapterIndex != HX_ADAPTER_NOT_COUNTED) {
        return HXMGT_SUCCESS;
    }
    const uint32_t port = record->dwScsiPort;
    const int index = AdapterIndexOf(port);
    OpenToAll everyone;
    SECURITY_ATTRIBUTES* const attributes = everyone.Attributes();
    if (index < 0 || attributes == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    OwnedObject mutex = CreateEventMutex(static_cast<uint32_t>(index), attributes);
    if (!mutex.Valid()) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    const ExclusiveHold hold(tableLock);
    // The ports were asked meanwhile, and other threads may have been here.
    HXMGT_API_HANDLE* const now = OpenRecord(handle);
    if (now == nullptr || now->dwScsiPort != port) {
        return HXMGT_INVALID_HANDLE;
    }
    if (now->dwAdapterIndex == HX_ADAPTER_NOT_COUNTED) {
        eventMutexes[handle] = mutex.Release();
        now->dwAdapterIndex = static_cast<uint32_t>(index);
    }
    adapterIndex = now->dwAdapterIndex;
    return HXMGT_SUCCESS;
}

HX_STATUS CloseDevice(uint32_t handle) {
    HXMGT_API_HANDLE* const record = OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    CloseHandle(record->hDevice);
    record->hDevice = INVALID_HANDLE_VALUE;
    if (eventMutexes[handle] != nullptr) {
        CloseHandle(eventMutexes[handle]);
        eventMutexes[handle] = nullptr;
    }
    if (record->pTraceFile != nullptr) {
        std::fclose(record->pTraceFile);
        record->pTraceFile = nullptr;  // dwTraceLevel is left as it is: intended
    }
    return HXMGT_SUCCESS;
}

}  // namespace frame
