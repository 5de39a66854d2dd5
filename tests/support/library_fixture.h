// The library between scripted ports: an empty registry, no devices but those of the test, and
// nothing left open behind it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string_view>
#include <vector>

#include "hxmgtapi.h"
#include "machine/fake_system.h"
#include "machine/scratch_registry.h"
#include "machine/scripted_port.h"
#include "support/guarded_buffer.h"
#include "support/has.h"

namespace support {

// The status of a call that a Windows error ended.
constexpr HX_STATUS Windows(DWORD error) {
    return static_cast<HX_STATUS>(error);
}
// The two executors.
inline constexpr auto Extended = [](auto... arguments) {
    return SRBWithHeaderDeviceIoControl(arguments...);
};
inline HX_STATUS Plain(uint32_t handle, uint32_t code, const void* input, uint32_t inputSize,
                       void* output, uint32_t outputSize) {
    return SendMiniPortControl(static_cast<int32_t>(handle), code, input, inputSize, output,
                               outputSize);
}
inline HX_STATUS Close(uint32_t handle) {
    return HXCloseDevice(static_cast<int32_t>(handle));
}

// While the result lives the library finds no cleared memory.
inline std::unique_ptr<ImportRedirection> NoClearedMemory() {
    return RedirectLibrary(
        "calloc", +[](size_t, size_t) -> void* { return nullptr; });
}

class LibraryTest : public testing::Test {
  protected:
    ScriptedPort& AddPort(uint32_t scsiPort, std::string_view driverVersion = "9.04.02.20",
                          uint16_t deviceId = 0x7740) {
        ports_.push_back(std::make_unique<ScriptedPort>(driverVersion, deviceId));
        system.AttachScsiPort(scsiPort, ports_.back().get());
        return *ports_.back();
    }

    // Opens an adapter that must open.
    uint32_t Open(uint32_t adapterIndex) {
        uint32_t handle = 0;
        EXPECT_EQ(0u, HXOpenDevice(adapterIndex, &handle));
        return handle;
    }

    static HXMGT_API_HANDLE& Record(uint32_t handle) { return HXGetGlobalDevice()[handle]; }
    static bool IsFree(uint32_t handle) { return Record(handle).hDevice == INVALID_HANDLE_VALUE; }

    void TearDown() override {
        for (uint32_t handle = 1; handle < HX_MAX_HANDLE_RECORDS; ++handle) {
            if (!IsFree(handle)) {
                Close(handle);
            }
        }
        EXPECT_EQ(0u, system.OpenHandles()) << "device handles left open";
        EXPECT_EQ(0u, system.badCloses) << "device handles closed twice";
    }

    FakeSystem system;
    ScratchRegistry registry;

  private:
    std::vector<std::unique_ptr<ScriptedPort>> ports_;
};

// One adapter at SCSI port 3, opened, its probes forgotten.
class OneAdapterTest : public LibraryTest {
  protected:
    void SetUp() override { Start("9.04.02.20", 0x7740); }

    void Start(std::string_view driverVersion, uint16_t deviceId) {
        port = &AddPort(3, driverVersion, deviceId);
        handle = Open(0);
        // A record keeps the capabilities of whoever had it before; tests start without any.
        HXGetGlobalDevice()[handle].qwFlashUpdateCapabilities = 0;
        port->Forget();
        system.sleeps.clear();
    }

    // The same adapter under another driver.
    void Reopen(std::string_view driverVersion, uint16_t deviceId = 0x7740) {
        Close(handle);
        Start(driverVersion, deviceId);
    }

    ScriptedPort* port = nullptr;
    uint32_t handle = 0;
};

}  // namespace support
