// A handle that is closed while a call on it is inside the driver, and closes that meet opens.
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "frame/handle_table.h"
#include "hbaapi.h"
#include "support/emulated_adapters.h"
#include "support/event_peer.h"
#include "support/library_fixture.h"
#include "support/scratch_file.h"

namespace {

using namespace support;
namespace command = transport::command;

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

// Room for whatever a call reads or writes.
class Room {
  public:
    template <typename Record>
    operator Record*() const {
        return reinterpret_cast<Record*>(bytes_->data());
    }

  private:
    std::shared_ptr<Bytes> bytes_ = std::make_shared<Bytes>(2 << 20);
};

const HX_SCSI_ADDRESS kTarget = {HX_ADDRESS_BUS_TARGET, {}, 0};
const HX_SCSI_ADDRESS kPort = {HX_ADDRESS_PORT_ID, {0xFF, 0xFF, 0xFC}, 0};
const HX_BUS_TARGET_LUN kLun = {};
const uint8_t kCdb[6] = {};
constexpr uint32_t kSome = 4096;

struct Call {
    const char* name;
    uint32_t (*run)(uint32_t handle, const Room& room, const Room& more);
};

HBA_ENTRYPOINTS api;
const HBA_WWN kNobody = {};

// A second room has its length in front where the call takes one by address.
uint32_t* Length(const Room& more, uint32_t length = kSome) {
    uint32_t* const field = more;
    *field = length;
    return field;
}

#define VX_CALL(name, ...)                                                                     \
    {                                                                                          \
#name, [](uint32_t h, [[maybe_unused]] const Room& a,                                  \
                  [[maybe_unused]] const Room& b) -> uint32_t { return name(h, __VA_ARGS__); } \
    }
#define VX_CALL_ALONE(name)                                                             \
    {                                                                                   \
#name, [](uint32_t h, const Room&, const Room&) -> uint32_t { return name(h); } \
    }
const Call kCalls[] = {
    VX_CALL_ALONE(HXVerifyHbaState),
    VX_CALL_ALONE(GetDriverType),
    VX_CALL(VXUpdateAdapterModelInBios, a),
    VX_CALL(HXGetDriverParameter, "x", a, kSome),
    VX_CALL(SRBWithHeaderDeviceIoControl, 0xF0001001, 1, nullptr, 0, a, 696, nullptr),
    VX_CALL(SendMiniPortControl, 0xF0000017, nullptr, 0, a, 64),
    VX_CALL(HXGetHbaDeviceNodeProperty, a),
    VX_CALL(HXGetHbaDeviceNodePropertyResync, a),
    VX_CALL(HXGetHbaDevicePortProperty, 0, a),
    VX_CALL(HXGetHbaDevicePortPropertyV1, 0, a),
    VX_CALL(HXGetHbaDevicePortPropertyV2, 0, a),
    VX_CALL(HXGetHbaDeviceChipProperty, a),
    VX_CALL(HXGetHbaDeviceDriverProperty, a),
    VX_CALL(HXGetHbaDeviceFirmwareProperty, a),
    VX_CALL_ALONE(HXGetHbaPortDisableInfo),
    VX_CALL_ALONE(HXEnableSmartSANFC),
    VX_CALL_ALONE(HXDisableSmartSANFC),
    VX_CALL_ALONE(HXEnableAen),
    VX_CALL(HXGetAen, a, kSome, b),
    VX_CALL_ALONE(HXDisableAen),
    VX_CALL_ALONE(HXForceZetaAEN),
    VX_CALL(HXSendScsiPassThruFC, &kTarget, kCdb, 6, a, 512, a, 512, b, 256),
    VX_CALL(HXSendScsiInquiryCmdFC, &kTarget, a, 255, b, 256),
    VX_CALL(HXSendScsiReadCapacityCmdFC, &kTarget, a, 8, b, 256),
    VX_CALL(HXSendScsiReportLunsCmdFC, &kTarget, a, kSome, b, 256),
    VX_CALL(HXSendCTPassThru, a, 64, b, kSome),
    VX_CALL(HXSendElsPassThru, 0, &kPort, a, 16, b, Length(a, 64), 0),
    VX_CALL(HXSendElsPassThruEx, 0, &kPort, a, 16, b, Length(a, 64), 0),
    VX_CALL(HXSendElsRnid, &kPort, 0xDF, a, kSome),
    VX_CALL(HXSendSCMMgmt, 0, a),
    VX_CALL(HXRunDiagLoopback, 0, 0, a, 64, a, 64, 1, b),
    VX_CALL(HXRunDiagLoopbackEx, 0, 0, a, 0x18000, a, 0x18000, 1, b),
    VX_CALL(HXRunDportDiagEx, 0, a),
    VX_CALL(HXRunDportDiagEx2, 0, a),
    VX_CALL(HXMailboxPassthru, 0, a, 32, b, 32),
    VX_CALL_ALONE(HXForceFwDump),
    VX_CALL(HXGetFcDumpRaw, 0, Length(a, 1 << 20)),
    VX_CALL(HXGetMpiDumpRaw, 0, Length(a, 1 << 20)),
    VX_CALL(HXGetFcMctpDump, 0, a, Length(b, 1 << 20)),
    VX_CALL(HXGetMiniDump, 0, a, Length(b, 1 << 20)),
    VX_CALL(HXGetPortDatabase, 1, a, 1 << 20),
    VX_CALL(HXGetDiscPortProperty, 0, 0, 0, a),
    VX_CALL(HXGetDiscTargetProperty, 0, 0, 0, a),
    VX_CALL(HXGetTargetData, 0, a, 0),
    VX_CALL(HXGetTargetData, 0, a, 1),
    VX_CALL(HXSetTargetData, 0, a, 0),
    VX_CALL(HXSetTargetData, 0, a, 1),
    VX_CALL(HXAddTargetDevice, a),
    VX_CALL(HXSwapTargetDevice, a, b),
    VX_CALL(HXGetHbaTargetLunMask, 0, &kLun, 0, a, 256),
    VX_CALL(HXGetHbaTargetLunMask, 0, &kLun, 1, a, 256),
    VX_CALL(HXGetHbaTargetLunMaskFC, 0, &kTarget, 0, a, 256),
    VX_CALL(HXGetHbaTargetLunMaskFC, 0, &kTarget, 1, a, 256),
    VX_CALL(HXUpdateHbaTargetLunMask, 0, &kLun, 0, a, 256),
    VX_CALL(HXUpdateHbaTargetLunMask, 0, &kLun, 1, a, 256),
    VX_CALL(HXUpdateHbaTargetLunMaskFC, 0, &kTarget, 0, a, 256),
    VX_CALL(HXUpdateHbaTargetLunMaskFC, 0, &kTarget, 1, a, 256),
    VX_CALL(HXGetLunData, 0, a, 0),
    VX_CALL(HXGetLunData, 0, a, 1),
    VX_CALL(HXSetLunData, 0, a, 0),
    VX_CALL(HXSetLunData, 0, a, 1),
    VX_CALL(HXGetFlashUpdateCapabilities, 0, a),
    VX_CALL(HXEndFlashUpdate, 0, 1),
    VX_CALL(HXGetActiveRegions, 0, a),
    VX_CALL(HXGetAdapterLockdownState, 0, a),
    VX_CALL_ALONE(HXOnlineActivateFlashUpdate),
    VX_CALL_ALONE(HXReloadNvramAndInitFw),
    VX_CALL(HXGetOptionRomLayout, 0, a),
    VX_CALL(HXGetOptionRomLayoutEx, 0, a),
    VX_CALL(HXGetOptionRom, 0, a, 1 << 20),
    VX_CALL(HXGetOptionRomEx, 0, a, 1 << 20, 1),
    VX_CALL(HXGetOptionRomOffset, 0, a, 0x20000, 0),
    VX_CALL(HXUpdateOptionRomOffset, 0, a, 0x20000, 0),
    VX_CALL(HXUpdateOptionRom, 0, a, 0x20000),
    VX_CALL(HXUpdateOptionRomEx, 0, a, 0x10000, 7),
    VX_CALL(HXUpdateOptionRomEx2, 0, a, 0x10000, 7),
    VX_CALL(HXUpdateSecureOptionRomEx, 0, a, 0x10000, 7),
    VX_CALL(HXGetNVRam, 0, 2, a, kSome),
    VX_CALL(HXUpdateNVRam, 0, 3, a, 256),
    VX_CALL(HXVerifyHbaNVRam, 0),
    VX_CALL(HXGetVpd, 0, a, Length(b)),
    VX_CALL(HXUpdateVpd, 0, a, kSome),
    VX_CALL(HXReadSFPData, 0, 0xA0, a, 64, 0, 0, b),
    VX_CALL(HXWriteSFPData, 0, 0xA0, a, 64, 0, 0, b),
    VX_CALL(HXGetSFPData, 0, a, Length(b)),
    VX_CALL(HXLoadSFPFirmware, 0, a, 0x10000),
    VX_CALL_ALONE(HXGetBFSInfo),
    VX_CALL(HXOrvoMgt, HX_COMPANION_VERSION, a),
    VX_CALL(HXGetStatistics, 0, a),
    VX_CALL_ALONE(HXResetStatistics),
    VX_CALL(HXGetMgmtAddress, a, kSome),
    VX_CALL(HXSetMgmtAddress, a),
    VX_CALL(HXMapScsiTargetToVolumes, &kTarget, a, b, Length(a, 8)),
    VX_CALL(HXMapVolumeToScsiTarget, "C:", a, Length(b, 8)),
    VX_CALL(api.GetAdapterAttributesHandler, a),
    VX_CALL(api.GetAdapterPortAttributesHandler, 0, a),
    VX_CALL(api.GetPortStatisticsHandler, 0, a),
    VX_CALL(api.GetDiscoveredPortAttributesHandler, 0, 0, a),
    VX_CALL(api.GetPortAttributesByWWNHandler, kNobody, a),
    VX_CALL(api.GetFcpTargetMappingHandler, a),
    VX_CALL(api.GetEventBufferHandler, a, b),
    VX_CALL(api.GetRNIDMgmtInfoHandler, a),
    VX_CALL(api.SetRNIDMgmtInfoHandler, a),
    VX_CALL(api.ScsiInquiryHandler, kNobody, 0, 0, 0, a, 36, b, 256),
    VX_CALL(api.ReportLUNsHandler, kNobody, a, 36, b, 256),
    VX_CALL(api.ReadCapacityHandler, kNobody, 0, a, 8, b, 256),
};
#undef VX_CALL
#undef VX_CALL_ALONE

class ClosedHandleTest : public LibraryTest {};

TEST_F(ClosedHandleTest, InsideTheDriver) {
    HBA_RegisterLibrary(&api);
    const auto profile = std::make_unique<vxemu::Profile>();
    ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
    EmulatedAdapters adapters(system, *profile);
    closing = {0, 0, ImportedBy<decltype(DeviceIoControl)>("DeviceIoControl")};
    const auto control = RedirectLibrary("DeviceIoControl", &ControlAndClose);
    constexpr uint32_t kMostRequests = 12;  // of one call; what comes later is more of the same
    uint32_t closed = 0;
    // Drivers of three generations.
    for (const uint32_t scsiPort : {3u, 6u, 9u}) {
        registry.SetText("HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + std::to_string(scsiPort),
                         "Driver", "vxfc2");
        for (const Call& call : kCalls) {
            for (uint32_t behind = 1; behind <= kMostRequests; ++behind) {
                SCOPED_TRACE(std::string(call.name) + " on port " + std::to_string(scsiPort) +
                             ", closed behind request " + std::to_string(behind));
                uint32_t handle = 0;
                ASSERT_EQ(0u, HXOpenScsiPort(scsiPort, &handle));
                const Room first;
                const Room second;
                closing.handle = handle;
                closing.requests = behind;
                call.run(handle, first, second);
                const bool reached = closing.requests == 0;
                closing.requests = 0;
                EXPECT_EQ(reached ? HXMGT_INVALID_HANDLE : HXMGT_SUCCESS,
                          HXCloseDevice(static_cast<int32_t>(handle)));
                closed += reached ? 1 : 0;
                if (!reached) {
                    break;
                }
            }
        }
    }
    EXPECT_GE(closed, 400u) << "calls no longer get as far as they did";
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
            if (handle != 0 && HXCloseDevice(static_cast<int32_t>(handle)) == 0) {
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
        HXCloseDevice(static_cast<int32_t>(handle));
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
