#include "frame/handle_table.h"

#include <aclapi.h>

#include <utility>

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

// What a record owns, and whether it is free, changes under this lock. Nothing is opened, closed or
// sent meanwhile.
SRWLOCK tableLock = SRWLOCK_INIT;

bool IsFree(const HXMGT_API_HANDLE& record) {
    return record.hDevice == INVALID_HANDLE_VALUE;
}

// SCSI port of the adapter with this index, or -1.
int FindPort(uint32_t adapterIndex) {
    uint32_t found = 0;
    for (uint32_t port = 0; port < HX_MAX_SCSI_PORTS; ++port) {
        if (IsFamilyPort(port)) {
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
    if (!IsFamilyPort(scsiPort)) {
        return -1;
    }
    int index = 0;
    for (uint32_t port = 0; port < scsiPort; ++port) {
        index += IsFamilyPort(port) ? 1 : 0;
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

// What both ways to open begin with: chooses a record and opens the port on it, under the
// machine-wide open mutex.
HX_STATUS ClaimRecord(uint32_t port, uint32_t adapterIndex, uint32_t* outHandle,
                      uint32_t* claimed) {
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
    // Nobody but the one open under the mutex touches a free record.
    HXMGT_API_HANDLE& record = devices[handle];
    record.pTraceFile = nullptr;
    record.dwTraceLevel = 0;
    OwnedFile device(CreateFileA(path, GENERIC_READ | GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!device.Valid()) {
        const DWORD error = GetLastError();
        *outHandle = 0;
        return error;
    }
    const ExclusiveHold alone(tableLock);
    // The flash update fields keep what the record's last holder left: intended.
    wsprintfA(record.szDeviceName, "\\Device\\ScsiPort%d", port);
    record.dwAdapterIndex = adapterIndex;
    record.dwScsiPort = port;
    eventMutexes[handle] = nullptr;  // what a failed open left behind stays open: intended
    record.hDevice = device.Release();
    *claimed = handle;
    return HXMGT_SUCCESS;
}

// Frees a record: last, after all else that it owns was taken out of it.
OwnedFile TakeDevice(HXMGT_API_HANDLE& record) {
    return OwnedFile(std::exchange(record.hDevice, INVALID_HANDLE_VALUE));
}

HX_STATUS GiveBack(uint32_t handle, uint32_t* outHandle, HX_STATUS status) {
    OwnedFile device;
    {
        const ExclusiveHold alone(tableLock);
        device = TakeDevice(devices[handle]);
    }
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
    properties::NodeReply node{};
    properties::ChipReply chip{};
    if (transport::Ask(handle, transport::command::NodeProperties, node) != HXMGT_SUCCESS ||
        transport::Ask(handle, transport::command::ChipProperties, chip) != HXMGT_SUCCESS) {
        // The event mutex stays open: intended.
        return GiveBack(handle, outHandle, HXMGT_INCOMPATIBLE_VERSION);
    }
    const ExclusiveHold alone(tableLock);
    WriteModel(chip.deviceId, devices[handle].szModel);
    devices[handle].dwDriverVersion = ParseDriverVersion(node.driverVersion);
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

std::optional<HXMGT_API_HANDLE> CopyOfRecord(uint32_t handle) {
    const SharedHold hold(tableLock);
    const HXMGT_API_HANDLE* const record = OpenRecord(handle);
    return record != nullptr ? std::optional(*record) : std::nullopt;
}

HANDLE DeviceOf(uint32_t handle) {
    return handle >= 1 && handle <= kHighestHandle ? devices[handle].hDevice : INVALID_HANDLE_VALUE;
}

OwnedObject EventMutex(uint32_t handle) {
    OwnedObject mutex;
    const SharedHold hold(tableLock);
    if (handle < kHandleRecords && eventMutexes[handle] != nullptr) {
        const HANDLE process = GetCurrentProcess();
        if (!DuplicateHandle(process, eventMutexes[handle], process, mutex.Receive(), 0, FALSE,
                             DUPLICATE_SAME_ACCESS)) {
            mutex.Release();
        }
    }
    return mutex;
}

bool IsTraced(uint32_t handle) {
    const HXMGT_API_HANDLE* const record = OpenRecord(handle);
    return record != nullptr && record->pTraceFile != nullptr;
}

TraceHold::TraceHold(uint32_t handle) {
    if (IsTraced(handle)) {
        AcquireSRWLockShared(&tableLock);
        held_ = true;
        stream_ = IsTraced(handle) ? devices[handle].pTraceFile : nullptr;
    }
}

TraceHold::~TraceHold() {
    if (held_) {
        ReleaseSRWLockShared(&tableLock);
    }
}

bool SetTrace(uint32_t handle, OwnedStream stream, uint32_t level) {
    OwnedStream before;
    const ExclusiveHold alone(tableLock);
    HXMGT_API_HANDLE* const record = OpenRecord(handle);
    if (record == nullptr) {
        return false;
    }
    before.Reset(std::exchange(record->pTraceFile, stream.Release()));
    record->dwTraceLevel = level;
    return true;
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
            ClaimRecord(static_cast<uint32_t>(port), adapterIndex, outHandle, &handle);
        status != HXMGT_SUCCESS) {
        return status;
    }
    OpenToAll everyone;
    SECURITY_ATTRIBUTES* const attributes = everyone.Attributes();
    if (attributes == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;  // the record stays claimed: intended
    }
    OwnedObject mutex = CreateEventMutex(adapterIndex, attributes);
    if (!mutex.Valid()) {
        return GiveBack(handle, outHandle, HXMGT_DEVICE_NOT_FOUND);
    }
    {
        const ExclusiveHold alone(tableLock);
        eventMutexes[handle] = mutex.Release();
    }
    return Identify(handle, outHandle);
}

HX_STATUS OpenScsiPort(uint32_t scsiPort, uint32_t* outHandle) {
    if (outHandle == nullptr || scsiPort >= HX_MAX_SCSI_PORTS) {
        return HXMGT_INVALID_PARAMETER;
    }
    uint32_t handle = 0;
    const HX_STATUS status = ClaimRecord(scsiPort, HX_ADAPTER_NOT_COUNTED, outHandle, &handle);
    return status == HXMGT_SUCCESS ? Identify(handle, outHandle) : status;
}

HX_STATUS CountAdapter(uint32_t handle, uint32_t& adapterIndex) {
    const std::optional<HXMGT_API_HANDLE> record = CopyOfRecord(handle);
    if (!record) {
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
    const ExclusiveHold alone(tableLock);
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
    // Closed when the record has been given up: the device first.
    OwnedStream trace;
    OwnedObject mutex;
    OwnedFile device;
    {
        const ExclusiveHold alone(tableLock);
        HXMGT_API_HANDLE* const record = OpenRecord(handle);
        if (record == nullptr) {
            return HXMGT_INVALID_HANDLE;
        }
        trace.Reset(std::exchange(record->pTraceFile, nullptr));  // its level stays: intended
        mutex.Reset(std::exchange(eventMutexes[handle], nullptr));
        device = TakeDevice(*record);
    }
    return HXMGT_SUCCESS;
}

}  // namespace frame
