#include <aclapi.h>
#include <winioctl.h>

#include <array>

#include "support/library_fixture.h"

namespace {

using namespace support;

class HandleTableTest : public LibraryTest {
  protected:
    // Version code that the library makes of a driver version text.
    uint32_t VersionOf(std::string_view text) {
        ScriptedPort& port = AddPort(3, text);
        SetText(port.node.driverVersion, text);
        port.AnswerProbes();
        const uint32_t handle = Open(0);
        const uint32_t version = Record(handle).dwDriverVersion;
        Close(handle);
        return version;
    }
};

TEST_F(HandleTableTest, OpenFillsTheRecord) {
    AddPort(3, "7.05.03", 0x7100);
    ScriptedPort& second = AddPort(41, "9.04.02.20", 0x7740);
    ASSERT_EQ(1u, Open(0));
    ASSERT_EQ(2u, Open(1));

    EXPECT_STREQ("7100", Record(1).szModel);
    EXPECT_STREQ("\\Device\\ScsiPort3", Record(1).szDeviceName);
    EXPECT_EQ(70503u, Record(1).dwDriverVersion);
    EXPECT_EQ(0u, Record(1).dwAdapterIndex);
    EXPECT_EQ(3u, Record(1).dwScsiPort);
    EXPECT_EQ(nullptr, Record(1).pTraceFile);
    EXPECT_STREQ("7740", Record(2).szModel);
    EXPECT_STREQ("\\Device\\ScsiPort41", Record(2).szDeviceName);
    EXPECT_EQ(90402u, Record(2).dwDriverVersion);
    EXPECT_EQ(1u, Record(2).dwAdapterIndex);
    EXPECT_EQ(41u, Record(2).dwScsiPort);

    const OpenCall& open = system.opens.back();
    EXPECT_EQ("\\\\.\\scsi41:", open.name);
    EXPECT_EQ(0xC0000000u, open.access);
    EXPECT_EQ(3u, open.sharing);
    EXPECT_EQ(3u, open.disposition);
    EXPECT_EQ(0x80u, open.flags);
    for (const auto& [probe, room] :
         {std::pair{command::NodeProperties, 696u}, {command::ChipProperties, 80u}}) {
        ASSERT_EQ(1u, second.Requests(probe).size());
        EXPECT_EQ(116u, second.Requests(probe)[0].inputSize) << "asked without input";
        EXPECT_EQ(116u + room, second.Requests(probe)[0].outputSize);
    }
    // Only the two handles are open: every probe closed its own.
    EXPECT_EQ(2u, system.OpenHandles());
}

TEST_F(HandleTableTest, AdaptersAreCountedAnewOnEachOpen) {
    uint32_t handle = 77;
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(0, &handle));
    EXPECT_EQ(77u, handle);

    AddPort(9);
    EXPECT_EQ(9u, Record(Open(0)).dwScsiPort);
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(1, &handle));
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(0xFFFFFFFF, &handle));
    EXPECT_EQ(77u, handle);
    AddPort(0);
    EXPECT_EQ(0u, Record(Open(0)).dwScsiPort);
    EXPECT_EQ(9u, Record(Open(1)).dwScsiPort);
    system.DetachScsiPort(0);
    EXPECT_EQ(9u, Record(Open(0)).dwScsiPort);
    AddPort(63);
    EXPECT_EQ(63u, Record(Open(1)).dwScsiPort);
    AddPort(64);  // beyond the ports that are searched
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(2, &handle));
}

TEST_F(HandleTableTest, PortOpenedWithoutCounting) {
    ScriptedPort& before = AddPort(3);
    AddPort(41, "9.04.02.20", 0x7780);
    before.NextBusy(1000);  // whoever asks it waits
    uint32_t handle = 0;
    ASSERT_EQ(0u, HXOpenScsiPort(41, &handle));
    EXPECT_EQ(1u, handle);
    EXPECT_STREQ("7780", Record(1).szModel);
    EXPECT_STREQ("\\Device\\ScsiPort41", Record(1).szDeviceName);
    EXPECT_EQ(90402u, Record(1).dwDriverVersion);
    EXPECT_EQ(41u, Record(1).dwScsiPort);
    EXPECT_EQ(HX_ADAPTER_NOT_COUNTED, Record(1).dwAdapterIndex);
    ASSERT_EQ(1u, system.opens.size()) << "no discovery probe either";
    EXPECT_EQ("\\\\.\\scsi41:", system.opens[0].name);
    EXPECT_TRUE(before.Requests().empty());
    EXPECT_TRUE(system.sleeps.empty());

    // Failures are those of the counted open.
    handle = 77;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXOpenScsiPort(41, nullptr));
    for (const uint32_t port : {64u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXOpenScsiPort(port, &handle));
    }
    EXPECT_EQ(77u, handle);
    EXPECT_EQ(Windows(ERROR_FILE_NOT_FOUND), HXOpenScsiPort(63, &handle));
    EXPECT_EQ(0u, handle);
    handle = 77;
    AddPort(4).On(command::ChipProperties, Reply{.status = 12});
    EXPECT_EQ(HXMGT_INCOMPATIBLE_VERSION, HXOpenScsiPort(4, &handle));
    EXPECT_EQ(0u, handle);
    EXPECT_TRUE(IsFree(2));
    while (HXOpenScsiPort(41, &handle) == 0) {
    }
    EXPECT_FALSE(IsFree(63));
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXOpenScsiPort(41, &handle));
}

TEST_F(HandleTableTest, SixtyThreeHandlesAndNoMore) {
    AddPort(5);
    for (uint32_t expected = 1; expected <= 63; ++expected) {
        ASSERT_EQ(expected, Open(0));
    }
    uint32_t handle = 77;
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXOpenDevice(0, &handle));
    EXPECT_TRUE(IsFree(0));
    EXPECT_TRUE(IsFree(64));
    EXPECT_EQ(63u, system.OpenHandles());

    // The lowest free record is taken again; the search mutex was given back.
    EXPECT_EQ(0u, HXCloseDevice(63));
    EXPECT_EQ(0u, HXCloseDevice(17));
    EXPECT_EQ(17u, Open(0));
    EXPECT_EQ(63u, Open(0));
}

TEST_F(HandleTableTest, InvalidHandles) {
    AddPort(3);
    ASSERT_EQ(1u, Open(0));
    for (const int32_t handle : {0, 2, 63, 64, 65, 66, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(HXMGT_INVALID_HANDLE, HXCloseDevice(handle)) << handle;
        const auto bad = static_cast<uint32_t>(handle);
        EXPECT_EQ(HXMGT_INVALID_HANDLE, HXEnableDebugTrace(&bad, nullptr, 0)) << handle;
    }
    EXPECT_EQ(0u, HXCloseDevice(1));
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXCloseDevice(1));
}

TEST_F(HandleTableTest, OpenFailures) {
    uint32_t handle = 77;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXOpenDevice(0, nullptr));

    // The probe opens the port once, the open itself opens it again.
    AddPort(3);
    system.FailOpen(3, ERROR_ACCESS_DENIED, 1);
    EXPECT_EQ(Windows(ERROR_ACCESS_DENIED), HXOpenDevice(0, &handle));
    EXPECT_EQ(0u, handle);
    EXPECT_TRUE(IsFree(1));
    system.DetachScsiPort(3);

    // Whatever way a probe fails, the answer is the same, and the handle number is free again.
    for (const transport::Command probe : {command::NodeProperties, command::ChipProperties}) {
        for (const Reply& refusal : {Reply{.status = 12}, Reply{.status = 16}, Reply{.error = 5}}) {
            ScriptedPort& port = AddPort(4);
            port.On(probe, refusal);
            handle = 77;
            EXPECT_EQ(HXMGT_INCOMPATIBLE_VERSION, HXOpenDevice(0, &handle));
            EXPECT_EQ(0u, handle);
            EXPECT_TRUE(IsFree(1));
            EXPECT_EQ(0u, system.OpenHandles());
            // The second probe is sent only after the first succeeded.
            EXPECT_EQ(probe.subCode == command::ChipProperties.subCode ? 1u : 0u,
                      port.Requests(command::ChipProperties).size());
            port.AnswerProbes();
            EXPECT_EQ(1u, Open(0));
            HXCloseDevice(1);
        }
    }
}

HANDLE WINAPI NoMutex(LPSECURITY_ATTRIBUTES, BOOL, LPCSTR) {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

BOOL WINAPI NoDescriptor(PSECURITY_DESCRIPTOR, DWORD) {
    return FALSE;
}

std::string waited;
DWORD WINAPI FailedWait(HANDLE, DWORD milliseconds) {
    waited += milliseconds == INFINITE ? "forever" : std::to_string(milliseconds);
    return WAIT_FAILED;
}

std::vector<HANDLE> released;
BOOL WINAPI RecordRelease(HANDLE mutex) {
    released.push_back(mutex);
    return ReleaseMutex(mutex);
}

TEST_F(HandleTableTest, OpenFailuresOfSystemObjects) {
    AddPort(3);
    uint32_t handle = 77;
    {
        const auto noMutex = RedirectLibrary("CreateMutexA", &NoMutex);
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(0, &handle));
        EXPECT_EQ(0u, handle);
        EXPECT_TRUE(IsFree(1));
        EXPECT_EQ(0u, system.OpenHandles());
    }
    {
        // The mutex is released even when it was not obtained.
        const auto noWait = RedirectLibrary("WaitForSingleObject", &FailedWait);
        const auto release = RedirectLibrary("ReleaseMutex", &RecordRelease);
        handle = 77;
        EXPECT_EQ(HXMGT_MUTEX_NOT_RESERVED, HXOpenDevice(0, &handle));
        EXPECT_EQ("forever", waited);
        EXPECT_EQ(1u, released.size());
        EXPECT_TRUE(IsFree(1));
    }
    {
        // Without a security descriptor the record stays claimed and the port open.
        const auto noDescriptor = RedirectLibrary("InitializeSecurityDescriptor", &NoDescriptor);
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(0, &handle));
        EXPECT_FALSE(IsFree(1));
        EXPECT_EQ(1u, system.OpenHandles());
    }
    EXPECT_EQ(2u, Open(0));
    EXPECT_EQ(0u, HXCloseDevice(1));
}

std::vector<std::string> mutexNames;
HANDLE WINAPI RecordMutex(LPSECURITY_ATTRIBUTES attributes, BOOL owned, LPCSTR name) {
    mutexNames.push_back(name);
    // Any account may use it: a descriptor whose access list is present and null.
    BOOL present = FALSE;
    BOOL defaulted = TRUE;
    PACL list = reinterpret_cast<PACL>(1);
    EXPECT_TRUE(
        GetSecurityDescriptorDacl(attributes->lpSecurityDescriptor, &present, &list, &defaulted));
    EXPECT_TRUE(present);
    EXPECT_EQ(nullptr, list);
    EXPECT_FALSE(defaulted);
    EXPECT_EQ(24u, attributes->nLength);
    EXPECT_FALSE(attributes->bInheritHandle);
    EXPECT_FALSE(owned);
    return CreateMutexA(attributes, owned, name);
}

TEST_F(HandleTableTest, EventMutexIsNamedAfterTheAdapterIndex) {
    AddPort(7);
    AddPort(30);
    {
        const auto record = RedirectLibrary("CreateMutexA", &RecordMutex);
        Open(1);
        Open(1);
        Open(0);
    }
    const std::vector<std::string> expected = {"HXMGT_GetAENMutex1", "HXMGT_GetAENMutex1",
                                               "HXMGT_GetAENMutex0"};
    EXPECT_EQ(expected, mutexNames);
    const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, "HXMGT_GetAENMutex1");
    EXPECT_NE(nullptr, mutex);
    CloseHandle(mutex);
    HXCloseDevice(1);
    HXCloseDevice(2);
    EXPECT_EQ(nullptr, OpenMutexA(SYNCHRONIZE, FALSE, "HXMGT_GetAENMutex1")) << "left open";
}

TEST_F(HandleTableTest, ReusedRecordKeepsTheFlashFields) {
    AddPort(3);
    AddPort(4, "7.04.11", 0x7200);
    Open(0);
    Record(1).dwActivationTimeout = 11;
    Record(1).qwExpectedFirmwareAttributes = 0x1122334455667788;
    Record(1).qwFlashUpdateCapabilities = 4;
    Record(1).dwTraceLevel = 9;
    HXCloseDevice(1);
    EXPECT_EQ(9u, Record(1).dwTraceLevel);  // a close leaves the level

    ASSERT_EQ(1u, Open(1));
    EXPECT_EQ(11u, Record(1).dwActivationTimeout);
    EXPECT_EQ(0x1122334455667788u, Record(1).qwExpectedFirmwareAttributes);
    EXPECT_EQ(4u, Record(1).qwFlashUpdateCapabilities);
    EXPECT_EQ(0u, Record(1).dwTraceLevel);
    EXPECT_STREQ("7200", Record(1).szModel);
    EXPECT_EQ(70411u, Record(1).dwDriverVersion);
}

TEST_F(HandleTableTest, ModelDigitsAboveNineAreTwoDecimalDigits) {
    const std::pair<uint16_t, const char*> rows[] = {
        {0x1234, "1234"}, {0x0000, "0000"}, {0x9A0F, "910015"}, {0xFFFF, "15151515"}};
    for (const auto& [deviceId, text] : rows) {
        AddPort(3, "9.04.02", deviceId);
        EXPECT_STREQ(text, Record(Open(0)).szModel);
    }
}

TEST_F(HandleTableTest, DriverVersionTexts) {
    const std::pair<std::string_view, uint32_t> rows[] = {
        {"7.05.03", 70503},
        {"8.02.03 build 2", 80203},
        {"9.4.2.20", 90402},
        {"10.12.99", 101299},
        {"7", 70000},
        {"7.5", 70500},
        {"..7..05\t\n03", 70503},
        {"", 0},
        {"none", 0},
        {"7.x.3", 70003},
        {"7.05.03-beta", 70503},
        {"8 02 03", 80203},
        {std::string_view("8.01\0.07", 8), 80100},
        // Only 31 characters count: the 32nd is cut away before the number is read.
        {"7.05.0000000000000000000000000345", 70503},
    };
    for (const auto& [text, version] : rows) {
        EXPECT_EQ(version, VersionOf(text)) << text;
    }
}

TEST_F(HandleTableTest, VersionText) {
    EXPECT_EQ(0x011C00C5u, HXGetVersion(nullptr, 100));
    GuardedBuffer six(6);
    EXPECT_EQ(0x011C00C5u, HXGetVersion(reinterpret_cast<char*>(six.Data()), 6));
    EXPECT_STREQ("1.28.", reinterpret_cast<char*>(six.Data()));
    GuardedBuffer exact(22);
    HXGetVersion(reinterpret_cast<char*>(exact.Data()), 22);
    EXPECT_STREQ("1.28.0.197 VXMGMT.DLL", reinterpret_cast<char*>(exact.Data()));
    GuardedBuffer large(40);
    HXGetVersion(reinterpret_cast<char*>(large.Data()), 40);
    EXPECT_STREQ("1.28.0.197 VXMGMT.DLL", reinterpret_cast<char*>(large.Data()));
    EXPECT_EQ(0, large[39]);
    GuardedBuffer one(1);
    HXGetVersion(reinterpret_cast<char*>(one.Data()), 1);
    EXPECT_EQ(0, one[0]);
    EXPECT_EQ(0x011C00C5u, HXGetVersion(reinterpret_cast<char*>(one.Data()), 0));
}

class DiskDevice : public Device {
  public:
    uint32_t Control(uint32_t code, const void* input, uint32_t inputSize, void* output,
                     uint32_t outputSize, uint32_t* returned) override {
        EXPECT_EQ(0x2D1080u, code);
        EXPECT_EQ(nullptr, input);
        EXPECT_EQ(0u, inputSize);
        const STORAGE_DEVICE_NUMBER number = {7, 2, 1};
        if (outputSize < sizeof number) {
            return ERROR_INSUFFICIENT_BUFFER;
        }
        memcpy(output, &number, sizeof number);
        *returned = sizeof number;
        return 0;
    }
};

TEST_F(HandleTableTest, DeviceNumber) {
    // The library leaves every device it asks open: look at the opens, not at the count.
    FakeSystem own;
    DiskDevice disk;
    own.Attach("\\\\.\\PhysicalDrive0:", &disk);
    own.Attach("\\\\.\\C:", &disk);
    GuardedBuffer number(12);
    const auto read = [&](const char* name, uint32_t length = 12) {
        return HXGetDeviceNumber(name, number.Data(), length);
    };
    EXPECT_EQ(0u, read("PhysicalDrive0"));
    EXPECT_EQ(7u, number[0]);
    EXPECT_EQ(2u, number[4]);
    EXPECT_EQ(0u, read("\\\\.\\C:"));
    EXPECT_EQ(0u, read("\\\\.\\PhysicalDrive0"));
    EXPECT_EQ("\\\\.\\PhysicalDrive0:", own.opens[0].name);
    EXPECT_EQ("\\\\.\\C:", own.opens[1].name);
    EXPECT_EQ("\\\\.\\PhysicalDrive0:", own.opens[2].name);
    EXPECT_EQ(3u, own.OpenHandles()) << "the opened handles stay open";

    EXPECT_EQ(Windows(ERROR_FILE_NOT_FOUND), read("PhysicalDrive9"));
    EXPECT_EQ(Windows(ERROR_INSUFFICIENT_BUFFER), read("PhysicalDrive0", 11));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, read(nullptr));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, read(""));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, read(std::string(256, 'x').c_str()));
    EXPECT_EQ(Windows(ERROR_FILE_NOT_FOUND), read(std::string(255, 'x').c_str()));
    EXPECT_EQ("\\\\.\\" + std::string(255, 'x') + ":", own.opens.back().name);
}

TEST_F(HandleTableTest, RemoveDeviceDeletesThePortKey) {
    const uint8_t name[8] = {0x21, 0x00, 0x00, 0x0A, 0xFF, 0xB0, 0x01, 0x9C};
    const std::string key =
        "SYSTEM\\CurrentControlSet\\Services\\vxfc2\\Parameters\\21-00-00-0a-ff-b0-01-9c";
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXRemoveDevice(0, name, "fc2", 1));
    registry.MakeKey(key);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXRemoveDevice(0, name, "fc2", 0));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXRemoveDevice(0, nullptr, "fc2", 1));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXRemoveDevice(0, name, nullptr, 1));
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXRemoveDevice(0, name, "fc1", 1));
    EXPECT_NE(0u, HXRemoveDevice(0, name, std::string(5000, 'f').c_str(), 1));
    EXPECT_TRUE(registry.HasKey(key));
    EXPECT_EQ(0u, HXRemoveDevice(0xFFFFFFFF, name, "fc2", 1));
    EXPECT_FALSE(registry.HasKey(key));

    registry.MakeKey(key + "\\below");
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, HXRemoveDevice(0, name, "fc2", -1));
    EXPECT_TRUE(registry.HasKey(key));
}

}  // namespace
