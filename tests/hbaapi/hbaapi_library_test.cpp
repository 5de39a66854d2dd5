// Registration, adapter names, opening and closing, trace of the standard API; bad handles.
#include <algorithm>

#include "machine/event_peer.h"
#include "support/hbaapi_fixture.h"

extern "C" HBA_UINT32 StandardVersionSeenFromC();
extern "C" HBA_UINT32 HandlersSeenFromC();

namespace {

using namespace support;

constexpr char kSettings[] = "SOFTWARE\\SNIA\\HBA\\VXCORE";

class HbaApiLibraryTest : public LibraryTest {
  protected:
    ScriptedPort& AddAdapter(uint32_t scsiPort, const std::string& driver) {
        registry.SetText("HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + std::to_string(scsiPort),
                         "Driver", driver);
        return AddPort(scsiPort);
    }
    HBA_HANDLE OpenByName(std::string name) { return api.OpenAdapterHandler(name.data()); }
    std::string NameOf(uint32_t index) {
        GuardedBuffer name(256);
        EXPECT_EQ(0u, api.GetAdapterNameHandler(index, reinterpret_cast<char*>(name.Data())));
        return reinterpret_cast<const char*>(name.Data());
    }

    HBA_ENTRYPOINTS api = RegisteredHandlers();
};

TEST_F(HbaApiLibraryTest, EveryHandlerIsThere) {
    HBA_ENTRYPOINTS table = {};
    ASSERT_EQ(0u, HBA_RegisterLibrary(&table));
    void* handlers[24];
    static_assert(sizeof handlers == sizeof table);
    memcpy(handlers, &table, sizeof table);
    std::sort(std::begin(handlers), std::end(handlers));
    EXPECT_NE(nullptr, handlers[0]);
    EXPECT_EQ(std::end(handlers), std::adjacent_find(std::begin(handlers), std::end(handlers)))
        << "no handler stands in two slots";
    EXPECT_EQ(1u, api.GetVersionHandler());
    EXPECT_EQ(0u, api.FreeLibraryHandler());
    EXPECT_EQ(1u, StandardVersionSeenFromC());
    EXPECT_EQ(24u, HandlersSeenFromC());
}

TEST_F(HbaApiLibraryTest, NamesOfAdapters) {
    GuardedBuffer room(256);
    char* const name = reinterpret_cast<char*>(room.Data());
    EXPECT_EQ(0u, api.GetNumberOfAdaptersHandler());
    EXPECT_EQ(6u, api.GetAdapterNameHandler(0, name));
    EXPECT_EQ(0, name[0]);
    EXPECT_TRUE(room.Holds(0xEE, 1, 256));

    AddAdapter(9, "vxfc2");
    AddAdapter(3, "vxold");
    AddAdapter(63, std::string(255, 'd'));
    EXPECT_EQ(3u, api.GetNumberOfAdaptersHandler());
    EXPECT_EQ("Korvex-vxold-1", NameOf(0));
    EXPECT_EQ("Korvex-vxfc2-2", NameOf(1));
    EXPECT_EQ("Korvex-" + std::string(240, 'd') + "-3", NameOf(2)) << "cut, the number is whole";
    EXPECT_EQ(6u, api.GetAdapterNameHandler(3, name));
    EXPECT_EQ(0, name[0]);
    EXPECT_EQ(6u, api.GetAdapterNameHandler(UINT32_MAX, name));
    EXPECT_EQ(4u, api.GetAdapterNameHandler(0, nullptr));
}

TEST_F(HbaApiLibraryTest, OpeningByName) {
    AddAdapter(3, "vxfc2");
    AddAdapter(9, "vxfc2");
    for (const char* name :
         {"", "Korvex", "Korvex-vxfc2-0", "Korvex-vxfc2-3", "Korvex-vxfc2-", "Korvex-vxfc2-one",
          "Korvex-2-", "Korvex-vxfc2-4294967297", "Korvex-vxfc2-99999999999999999999"}) {
        EXPECT_EQ(0u, OpenByName(name)) << name;
    }
    EXPECT_EQ(0u, api.OpenAdapterHandler(nullptr));

    const HBA_HANDLE second = OpenByName(NameOf(1));
    ASSERT_NE(0u, second);
    EXPECT_EQ(9u, Record(second).dwScsiPort);
    const HBA_HANDLE first = OpenByName("any-name-1");
    ASSERT_NE(0u, first);
    EXPECT_EQ(3u, Record(first).dwScsiPort) << "the number alone decides";
    EXPECT_EQ(nullptr, Record(first).pTraceFile);
    api.CloseAdapterHandler(first);
    api.CloseAdapterHandler(second);
    EXPECT_TRUE(IsFree(first));
}

TEST_F(HbaApiLibraryTest, OpenAdaptersAreRegisteredForEvents) {
    ScriptedPort& port = AddAdapter(3, "vxfc2");
    port.On(command::EventDelivery, Reply{});
    SharedView<frame::EventArea> area(kEventAreaName);
    const uint32_t before = area->registrations[0];
    const HBA_HANDLE one = OpenByName("Korvex-vxfc2-1");
    const HBA_HANDLE two = OpenByName("Korvex-vxfc2-1");
    EXPECT_EQ(before + 2, area->registrations[0]);
    api.CloseAdapterHandler(one);
    EXPECT_EQ(before + 1, area->registrations[0]);
    for (const HBA_HANDLE never : {0u, 65u, UINT32_MAX}) {
        api.CloseAdapterHandler(never);
        EXPECT_EQ(before + 1, area->registrations[0]);
    }
    // Events are disabled first, whatever the state of the handle.
    api.CloseAdapterHandler(one);
    EXPECT_EQ(before, area->registrations[0]);
    area->registrations[0] = before + 1;
    api.CloseAdapterHandler(two);
    EXPECT_EQ(before, area->registrations[0]);
}

// Runs in a folder of its own.
class HbaApiTraceTest : public HbaApiLibraryTest {
  protected:
    void SetUp() override {
        AddAdapter(3, "vxfc2");
        AddAdapter(4, "vxfc2");
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        GetCurrentDirectoryA(sizeof before_, before_);
        folder_ = std::string(folder) + "vxmgmt standard api " + Process();
        ASSERT_TRUE(CreateDirectoryA(folder_.c_str(), nullptr));
        ASSERT_TRUE(SetCurrentDirectoryA(folder_.c_str()));
    }
    void TearDown() override {
        HbaApiLibraryTest::TearDown();
        for (const std::string& file : Files()) {
            EXPECT_TRUE(DeleteFileA(file.c_str())) << file;
        }
        SetCurrentDirectoryA(before_);
        RemoveDirectoryA(folder_.c_str());
    }
    static std::string Process() { return std::to_string(GetCurrentProcessId()); }
    static std::vector<std::string> Files() {
        std::vector<std::string> files;
        WIN32_FIND_DATAA found;
        const HANDLE search = FindFirstFileA("*", &found);
        do {
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                files.push_back(found.cFileName);
            }
        } while (FindNextFileA(search, &found));
        FindClose(search);
        std::sort(files.begin(), files.end());
        return files;
    }
    // Opens with this registry value and returns the one file that it made.
    std::string TraceOf(const std::string& value, const std::string& adapter) {
        registry.SetText(kSettings, "DebugFile", value);
        handle_ = OpenByName(adapter);
        EXPECT_NE(0u, handle_);
        const std::vector<std::string> files = Files();
        traced_ = Record(handle_).pTraceFile != nullptr;
        EXPECT_EQ(traced_ ? 0xFFFFFFFFu : 0u, Record(handle_).dwTraceLevel);
        api.CloseAdapterHandler(handle_);
        for (const std::string& file : files) {
            DeleteFileA(file.c_str());
        }
        return files.size() == 1 ? files[0] : std::to_string(files.size()) + " files";
    }
    std::string Tail() { return "_Handle" + std::to_string(handle_) + "_ID" + Process(); }

    HBA_HANDLE handle_ = 0;
    bool traced_ = false;

  private:
    char before_[MAX_PATH];
    std::string folder_;
};

TEST_F(HbaApiTraceTest, FileNames) {
    const std::string named = TraceOf("trace.log", "Korvex-vxfc2-2");
    EXPECT_EQ("trace_Index2" + Tail() + ".log", named) << "adapter, handle and process";
    EXPECT_TRUE(traced_);
    EXPECT_EQ("trace2", TraceOf("trace", "Korvex-vxfc2-2"));
    EXPECT_EQ("trace02", TraceOf("trace", "Korvex-vxfc2-02 and more")) << "the digits as they are";
    EXPECT_TRUE(traced_);
    const std::string cut = TraceOf("a.b.c", "Korvex-vxfc2-1");
    EXPECT_EQ("a_Index1" + Tail() + ".b.c", cut) << "at the first dot";
    EXPECT_EQ("0 files", TraceOf("", "Korvex-vxfc2-1"));
    EXPECT_EQ("0 files", TraceOf(std::string(300, 'x'), "Korvex-vxfc2-1"))
        << "no path of that size";
    EXPECT_FALSE(traced_);
}

TEST_F(HbaApiTraceTest, OldTracesAreEmptied) {
    const std::pair<const char*, DWORD> traces[] = {
        {"ApiTrace1.txt", 0}, {"ApiTrace32.txt", 0}, {"ApiTrace0.txt", 4}, {"ApiTrace33.txt", 4}};
    for (const auto& [name, left] : traces) {
        FILE* stream = fopen(name, "w");
        fputs("text", stream);
        fclose(stream);
    }
    EXPECT_EQ(0u, api.LoadLibraryHandler());
    for (const auto& [name, left] : traces) {
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        EXPECT_TRUE(GetFileAttributesExA(name, GetFileExInfoStandard, &data));
        EXPECT_EQ(left, data.nFileSizeLow) << name;
    }
    EXPECT_EQ(std::size(traces), Files().size()) << "none is made";
    _fcloseall();  // the library leaves its streams open
}

TEST_F(HbaApiLibraryTest, WhatIsNotSupportedLooksAtNoHandle) {
    for (const HBA_HANDLE handle : {0u, 64u, UINT32_MAX}) {
        EXPECT_EQ(2u, api.GetFcpPersistentBindingHandler(handle, nullptr));
        api.RefreshInformationHandler(handle);
    }
}

}  // namespace
