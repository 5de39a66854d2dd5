// A handle that is closed while a call on it is inside the driver, and closes that meet opens.
#include <array>
#include <thread>

#include "frame/handle_table.h"
#include "machine/api_calls.h"
#include "machine/emulated_adapters.h"
#include "machine/event_peer.h"
#include "support/library_fixture.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

// What the library's import of a function leads to just now.
template <typename Function>
Function* ImportedBy(const char* function) {
    for (const Import& import : ImportsOf(LibraryModule())) {
        if (import.function == function) {
            return reinterpret_cast<Function*>(*import.slot);
        }
    }
    return nullptr;
}

// Closes a handle behind the given request from now on.
struct CloseBehind {
    uint32_t handle = 0;
    uint32_t requests = 0;  // 0: not any more
    decltype(DeviceIoControl)* control = nullptr;
};
CloseBehind closing;

BOOL WINAPI ControlAndClose(HANDLE device, DWORD code, LPVOID input, DWORD inputSize, LPVOID output,
                            DWORD outputSize, LPDWORD returned, LPOVERLAPPED overlapped) {
    const BOOL done =
        closing.control(device, code, input, inputSize, output, outputSize, returned, overlapped);
    const DWORD error = GetLastError();
    if (code == transport::kIoctlScsiMiniport && closing.requests != 0 && --closing.requests == 0) {
        EXPECT_EQ(0u, HXCloseDevice(static_cast<int32_t>(closing.handle)));
    }
    SetLastError(error);
    return done;
}

const HX_SCSI_ADDRESS kTarget = {HX_ADDRESS_BUS_TARGET, {}, 0};
constexpr size_t kMemory = 8192;

class ClosedHandleTest : public LibraryTest {};

TEST_F(ClosedHandleTest, InsideTheDriver) {
    const auto profile = std::make_unique<vxemu::Profile>();
    ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
    EmulatedAdapters adapters(system, *profile);
    closing = {0, 0, ImportedBy<decltype(DeviceIoControl)>("DeviceIoControl")};
    const auto control = RedirectLibrary("DeviceIoControl", &ControlAndClose);
    constexpr uint32_t kMostRequests = 12;  // of one call; what comes later is more of the same
    uint32_t closed = 0;
    ArgumentMemory memory(2 << 20);
    // Drivers of three generations.
    for (const uint32_t scsiPort : {3u, 6u, 9u}) {
        registry.SetText("HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + std::to_string(scsiPort),
                         "Driver", "vxfc2");
        for (const ApiCall& call : ApiCalls()) {
            for (uint32_t behind = 1; behind <= kMostRequests; ++behind) {
                SCOPED_TRACE(std::string(call.name) + " on port " + std::to_string(scsiPort) +
                             ", closed behind request " + std::to_string(behind));
                uint32_t handle = 0;
                ASSERT_EQ(0u, HXOpenScsiPort(scsiPort, &handle));
                memory.Clear();
                closing.handle = handle;
                closing.requests = behind;
                call.run(handle, memory.All());
                const bool reached = closing.requests == 0;
                closing.requests = 0;
                EXPECT_EQ(reached ? HXMGT_INVALID_HANDLE : HXMGT_SUCCESS, Close(handle));
                closed += reached ? 1 : 0;
                if (!reached) {
                    break;
                }
            }
        }
    }
    EXPECT_GE(closed, 400u) << "calls no longer get as far as they did";
    // A watchdog that found its handle closed has left its lock held.
    for (const uint32_t scsiPort : {3u, 6u, 9u}) {
        uint32_t handle = 0;
        ASSERT_EQ(0u, HXOpenScsiPort(scsiPort, &handle));
        HXEndFlashUpdate(handle, 0, GetCurrentProcessId());
    }
    SharedView<frame::EventArea> area(kEventAreaName);
    for (uint32_t adapter = 0; adapter < HX_MAX_SCSI_PORTS; ++adapter) {
        // Of handles that were closed before they could be disabled.
        while (area->registrations[adapter] != 0) {
            Record(1).dwAdapterIndex = adapter;
            Record(1).dwDriverVersion = frame::kExtendedRequestsVersion;
            HXDisableAen(1);
        }
    }
}

// Looked at before anything else, the handle first; nothing is sent, nothing written.
TEST_F(ClosedHandleTest, BadHandlesAndNullPointers) {
    ScriptedPort& port = AddPort(3);
    ASSERT_EQ(1u, Open(0));
    ASSERT_EQ(2u, Open(0));
    HXCloseDevice(2);
    port.Forget();
    for (const ApiCall& call : ApiCalls()) {
        SCOPED_TRACE(call.name);
        ArgumentMemory memory(kMemory, 0xEE);
        if (call.badHandle != ApiCall::kOwnRules) {
            for (const uint32_t handle : {0u, 2u, 63u, 64u, 65u, 0x80000001u, 0xFFFFFFFFu}) {
                EXPECT_EQ(call.badHandle, call.run(handle, memory.All())) << handle;
                EXPECT_EQ(call.badHandle, call.run(handle, Arguments())) << handle;
            }
            EXPECT_TRUE(port.Requests().empty());
        }
        for (const char* letter = call.required; *letter != 0; ++letter) {
            EXPECT_EQ(call.nullPointer, call.run(1, memory.Without(*letter))) << *letter;
        }
        EXPECT_TRUE(memory.Holds(0xEE));
        // The model is asked for before its place is looked at.
        const bool asks = call.name == std::string("VXUpdateAdapterModelInBios");
        EXPECT_EQ(asks, !port.Requests().empty());
        port.Forget();
    }
}

// Whoever opens a file next gets the stream that the close gave up.
TEST_F(ClosedHandleTest, TraceOfACallEndsWithIt) {
    using Run = std::function<void(uint32_t)>;
    Bytes buffer(4096);
    const Run calls[] = {
        [&](uint32_t h) {
            SRBWithHeaderDeviceIoControl(h, 0xF0001001, 1, nullptr, 0, buffer.data(), 696, nullptr);
        },
        [&](uint32_t h) {
            SendMiniPortControl(static_cast<int32_t>(h), 0xF0000017, nullptr, 0, buffer.data(), 64);
        },
        [&](uint32_t h) { HXSendCTPassThru(h, buffer.data(), 64, buffer.data(), 64); },
        [&](uint32_t h) { HXSendScsiInquiryCmdFC(h, &kTarget, buffer.data(), 64, nullptr, 0); },
    };
    const auto profile = std::make_unique<vxemu::Profile>();
    ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
    EmulatedAdapters adapters(system, *profile);
    static ScratchFile others;
    static FILE* other;
    static decltype(DeviceIoControl)* beneath;
    beneath = ImportedBy<decltype(DeviceIoControl)>("DeviceIoControl");
    static uint32_t handle;
    const auto control = RedirectLibrary(
        "DeviceIoControl",
        +[](HANDLE device, DWORD code, LPVOID input, DWORD inputSize, LPVOID output,
            DWORD outputSize, LPDWORD returned, LPOVERLAPPED overlapped) WINAPI -> BOOL {
            const BOOL done =
                beneath(device, code, input, inputSize, output, outputSize, returned, overlapped);
            if (handle != 0 && Close(handle) == 0) {
                other = fopen(others.Path().c_str(), "w");
            }
            return done;
        });
    for (const uint32_t scsiPort : {3u, 9u}) {
        for (const Run& run : calls) {
            const ScratchFile trace;
            uint32_t opened = 0;
            handle = 0;
            ASSERT_EQ(0u, HXOpenScsiPort(scsiPort, &opened));
            ASSERT_EQ(0u, HXEnableDebugTrace(&opened, trace.Path().c_str(), 1));
            FILE* const stream = Record(opened).pTraceFile;
            other = nullptr;
            handle = opened;
            run(opened);
            ASSERT_NE(nullptr, other);
            EXPECT_EQ(stream, other) << "the test needs the stream that was given up";
            fclose(other);
            EXPECT_EQ("", others.Contents());
            EXPECT_NE("", trace.Contents()) << "what came before the close";
        }
    }
    handle = 0;
}

// The first open that finds the record free runs inside the close, between any two of its steps.
struct Reopening {
    bool armed = false;
    uint32_t handle = 0;
    std::string trace;
    decltype(CloseHandle)* closeHandle = nullptr;
    decltype(fclose)* closeStream = nullptr;
};
Reopening reopening;

void Reopen() {
    if (!reopening.armed || HXGetGlobalDevice()[1].hDevice != INVALID_HANDLE_VALUE) {
        return;
    }
    reopening.armed = false;
    EXPECT_EQ(0u, HXOpenDevice(0, &reopening.handle));
    EXPECT_EQ(0u, HXEnableDebugTrace(&reopening.handle, reopening.trace.c_str(), 1));
}

BOOL WINAPI CloseHandleAndReopen(HANDLE handle) {
    const BOOL done = reopening.closeHandle(handle);
    Reopen();
    return done;
}

int CloseStreamAndReopen(FILE* stream) {
    const int result = reopening.closeStream(stream);
    Reopen();
    return result;
}

TEST_F(ClosedHandleTest, OpenThatMeetsAClose) {
    EventDriver driver;
    system.AttachScsiPort(3, &driver.port);
    ASSERT_EQ(1u, Open(0));
    const ScratchFile before;
    const ScratchFile after;
    const uint32_t first = 1;
    ASSERT_EQ(0u, HXEnableDebugTrace(&first, before.Path().c_str(), 1));
    {
        reopening = {true, 0, after.Path(), ImportedBy<decltype(CloseHandle)>("CloseHandle"),
                     ImportedBy<decltype(fclose)>("fclose")};
        const auto handles = RedirectLibrary("CloseHandle", &CloseHandleAndReopen);
        const auto streams = RedirectLibrary("fclose", &CloseStreamAndReopen);
        EXPECT_EQ(0u, HXCloseDevice(1));
    }
    ASSERT_EQ(1u, reopening.handle) << "the record was free before the close returned";
    EXPECT_FALSE(IsFree(1));
    EXPECT_NE(nullptr, Record(1).pTraceFile);
    driver.Raise(0x8011, 1);
    EXPECT_EQ("2:1", Fetch(1, 4).Text());
    EXPECT_EQ(0u, HXCloseDevice(1));
    EXPECT_NE("", after.Contents()) << "traced to the end";
    EXPECT_TRUE(DeleteFileA(before.Path().c_str())) << "the first stream is still open";
}

// The mutex is given back even if the handle's own reference to it is gone.
TEST_F(ClosedHandleTest, EventMutexOfAFetch) {
    EventDriver driver;
    system.AttachScsiPort(3, &driver.port);
    const uint32_t handle = Open(0);
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, "HXMGT_GetAENMutex0");
    driver.port.On(command::FetchEvents, [&](const SentRequest&) {
        Close(handle);
        return Reply{};
    });
    EXPECT_EQ(0u, Fetch(handle, 4).status);
    DWORD waited = WAIT_FAILED;
    std::thread([&] {
        waited = WaitForSingleObject(mutex, 0);
        ReleaseMutex(mutex);
    }).join();
    EXPECT_EQ(DWORD{WAIT_OBJECT_0}, waited);
    CloseHandle(mutex);
}

}  // namespace
