// vxmgr over the library over the running driver: adapters, ports, faults.
#include <filesystem>
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
    std::set<int64_t> scsiPorts;
    for (const json& port : ports) {
        scsiPorts.insert(port["scsi_port"].number());
        EXPECT_EQ("online", port["state"]) << port.dump();
        EXPECT_EQ(nullptr, port["status"]) << port.dump();
        const std::string selector = port["port_wwn"].text();
        const json shown = Document("port show -p wwn:" + selector)["result"];
        EXPECT_TRUE(support::Has(shown.dump(), selector));
    }
    EXPECT_EQ((std::set<int64_t>{3, 4, 6, 9}), scsiPorts);
}

// Each result is held against its schema.
TEST_F(SystemAdapters, TheControlToolTellsWhatItDid) {
    const std::string file = (std::filesystem::temp_directory_path() / "vxemu-made.bin").string();
    const std::string target = " 2b:00:02:45:4d:00:aa:00";
    const struct {
        std::string arguments;
        const char* place;
        json value;
    } kRows[] = {
        {"start --profile lab --fresh", "/ports/0/flash_file", "kept"},
        {"install --dry-run", "/service", "running"},
        {"profile list", "/profiles/0/name", "lab"},
        {"profile show", "/adapters/0/ports/0/scsi_port", 3},
        {"fault add scsi:3 --code NodeProperties --do busy --times 2", "/times", 2},
        {"fault list", "/faults/0/request", "NodeProperties"},
        {"fault clear", "/removed", 1},
        {"event scsi:3 rscn", "/queued", false},
        {"link scsi:3 up", "/link", "up"},
        {"reset scsi:3", "/port", "scsi:3"},
        {"adapter set scsi:3 driver_build_number=7 --dry-run", "/driver_build_number", "7"},
        {"port set scsi:3 topology=public-loop --dry-run", "/topology", "public-loop"},
        {"target add" + target + " bus=1", "/bus", "1"},
        {"target set" + target + " bus=0", "/bus", "0"},
        {"lun add" + target + " 3", "/lun", 3},
        {"lun remove" + target + " 3", "/lun", 3},
        {"target remove" + target, "/target", target.substr(1)},
        {"flash show scsi:3", "/powered", true},
        {"flash dump scsi:3 1 \"" + file + "\"", "/region", 1},
        {"flash image scsi:3 1 \"" + file + "\" --as 9.13.00", "/version", "9.13.00"},
        {"flash corrupt scsi:3 1 0x100 --dry-run", "/at", 0x100},
        {"flash power-fail scsi:3 --after-bytes 9 --dry-run", "/after_bytes", 9},
        {"flash reset all", "/port", "all"},
        {"fault add scsi:3 --do wrong-bank --dry-run", "/request", "RestartFirmware"},
        {"lockdown scsi:3 off", "/lockdown", "off"},
        {"bfs scsi:3 off", "/boots_from_san", "off"},
        {"stop --dry-run", "/service", "running"},
    };
    for (const auto& row : kRows) {
        const json document = VxemuDocument(row.arguments);
        ASSERT_EQ(0, document["exit"]) << row.arguments << document["messages"];
        EXPECT_EQ(row.value, document["result"].at(row.place))
            << row.arguments << document["result"];
    }
    std::filesystem::remove(file);
}

TEST_F(SystemAdapters, BusyDriverIsWaitedFor) {
    Fault("scsi:6 --code ChipProperties --times 2 --do busy");
    const json ports = Document("port list -p scsi:6")["result"]["ports"];
    ASSERT_EQ(1u, ports.size());
    EXPECT_EQ(nullptr, ports[0]["status"]);
    EXPECT_EQ(2, PortStatus("scsi:6")["faults"]);
}

TEST_F(SystemAdapters, OnePortThatFailsLeavesTheOthers) {
    Fault("scsi:4 --code PortPropertiesV2 --do status 23");
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
