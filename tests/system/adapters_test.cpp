// vxmgr over the library over the running driver: adapters, ports, faults.
#include <set>

#include "emulated_driver.h"

namespace system_test {
namespace {

class SystemAdapters : public EmulatedDriver {};

TEST_F(SystemAdapters, AreListedAndDescribed) {
    const json adapters = Document("adapter list")["result"]["adapters"];
    ASSERT_EQ(3u, adapters.size());
    EXPECT_EQ("EMU7740A0001", adapters[0]["serial"]);
    EXPECT_EQ("9.12.01", adapters[0]["firmware"]);

    const json ports = Document("port list")["result"]["ports"];
    ASSERT_EQ(4u, ports.size());
    std::set<int> scsiPorts;
    for (const json& port : ports) {
        scsiPorts.insert(port["scsi_port"].get<int>());
        EXPECT_EQ("online", port["state"]) << port.dump();
        EXPECT_EQ(nullptr, port["status"]) << port.dump();
        const std::string selector = port["port_wwn"].get<std::string>();
        const json shown = Document("port show -p wwn:" + selector)["result"];
        EXPECT_TRUE(support::Has(shown.dump(), selector));
    }
    EXPECT_EQ((std::set<int>{3, 4, 6, 9}), scsiPorts);
}

TEST_F(SystemAdapters, BusyDriverIsWaitedFor) {
    ASSERT_EQ(0u, Vxemu("fault add scsi:6 --code ChipProperties --times 2 --do busy").exit);
    const json ports = Document("port list -p scsi:6")["result"]["ports"];
    ASSERT_EQ(1u, ports.size());
    EXPECT_EQ(nullptr, ports[0]["status"]);
    EXPECT_EQ(2, PortStatus("scsi:6").value("faults", 0));
}

TEST_F(SystemAdapters, OnePortThatFailsLeavesTheOthers) {
    ASSERT_EQ(0u, Vxemu("fault add scsi:4 --code PortPropertiesV2 --do status 23").exit);
    const json document = Document("port list");
    EXPECT_EQ(11, document["exit"]);
    const json ports = document["result"]["ports"];
    ASSERT_EQ(4u, ports.size());
    for (const json& port : ports) {
        if (port["scsi_port"] == 4) {
            EXPECT_EQ("0x2000007b", port["status"]);
        } else {
            EXPECT_EQ(nullptr, port["status"]);
        }
    }
}

TEST_F(SystemAdapters, LyingRepliesAreSurvived) {
    for (const char* action : {"lie-length", "corrupt", "short 600", "long 4096"}) {
        ASSERT_EQ(0u, Vxemu(std::string("fault add all --do ") + action).exit);
        const support::Ended ended = Vxmgr("port list");
        EXPECT_LE(ended.exit, 11u) << action << ended.err;
        ASSERT_EQ(0u, Vxemu("fault clear").exit);
    }
    EXPECT_EQ(4u, Document("port list")["result"]["ports"].size());
}

TEST_F(SystemAdapters, TraceShowsTheRequests) {
    const std::string path = support::ScratchPath(".trace");
    EXPECT_EQ(0u, Vxmgr("--trace \"" + path + "\" port show -p scsi:3").exit);
    const std::string text = support::TextOfFile(path);
    DeleteFileA(path.c_str());
    EXPECT_TRUE(support::Has(text, "executor.cpp("));
    EXPECT_TRUE(support::Has(text, "Input buffer to DeviceIoControl"));
    EXPECT_TRUE(support::Has(text, "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0001001, Length "));
}

}  // namespace
}  // namespace system_test
