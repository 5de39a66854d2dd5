// Targets, the operating system's disks of them, and the counters of the links.
// clang-format off
#include <windows.h>
#include <winioctl.h>
#include <ntddscsi.h>
// clang-format on

#include <map>
#include <sstream>

#include "emulated_driver.h"

namespace system_test {
namespace {

class SystemMap : public EmulatedDriver {
  protected:
    static inline const std::string kArrayA = "wwn:2b:00:02:45:4d:00:01:00";

    json Units(const std::string& arguments, int exit = 0) {
        const json document = Document("map " + arguments);
        EXPECT_EQ(exit, document["exit"]) << arguments;
        return document["result"]["units"];
    }
};

TEST_F(SystemMap, EveryDiskIsFoundBothWays) {
    std::map<int64_t, json> disks;
    for (const json& row : Units("target all")) {
        EXPECT_EQ(row["lun"] == 256, row["device"].is_null()) << row.dump();
        if (row["disk"].is_number()) {
            EXPECT_TRUE(disks.emplace(row["disk"].number(), row).second) << row.dump();
        }
    }
    EXPECT_EQ(32u, disks.size());
    for (const auto& [number, row] : disks) {
        // What the system itself says of the disk.
        const std::string name = "\\\\.\\PhysicalDrive" + std::to_string(number);
        EXPECT_EQ(name, row["device"]);
        const HANDLE disk = CreateFileA(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, disk) << name;
        SCSI_ADDRESS address{};
        DWORD returned = 0;
        EXPECT_TRUE(DeviceIoControl(disk, IOCTL_SCSI_GET_ADDRESS, nullptr, 0, &address,
                                    sizeof address, &returned, nullptr));
        CloseHandle(disk);
        EXPECT_EQ(row["scsi_port"], address.PortNumber);
        EXPECT_EQ(row["bus"], address.PathId);
        EXPECT_EQ(row["target"], address.TargetId);
        EXPECT_EQ(row["lun"], address.Lun);
    }
    // The first, the last and one between: each is a walk over all ports.
    for (const int64_t number :
         {disks.begin()->first, std::next(disks.begin(), 9)->first, disks.rbegin()->first}) {
        const json found = Units("disk " + std::to_string(number));
        ASSERT_EQ(1u, found.size());
        EXPECT_EQ(disks[number], found[0]);
    }
    EXPECT_EQ(4u, Units("target " + kArrayA + " -p scsi:3").size());
    EXPECT_EQ(Units("target " + kArrayA + " -p scsi:3"), Units("target 0:0 -p scsi:3"));
}

TEST_F(SystemMap, WhatIsHiddenIsGone) {
    const std::string target = "target " + kArrayA + " -p scsi:6";
    const json before = Units(target);
    ASSERT_EQ(4u, before.size());
    const std::string disk = before[1]["disk"].dump();
    const std::string mask = " 1 -p scsi:6 --store live -t " + kArrayA;
    ASSERT_EQ(0u, Vxmgr("lunmask deny --yes" + mask).exit);
    EXPECT_EQ(3u, Units(target).size());
    Units("disk " + disk, 3);
    ASSERT_EQ(0u, Vxmgr("lunmask allow" + mask).exit);
    EXPECT_EQ(before, Units(target));

    ASSERT_EQ(0u, Vxemu("link 6 down").exit);
    EXPECT_EQ(0u, Units("target all -p scsi:6").size());
    ASSERT_EQ(0u, Vxemu("link 6 up").exit);
}

TEST_F(SystemMap, FailuresAreTold) {
    Units("target wwn:2b:00:02:45:4d:00:77:00", 3);
    Units("target nonsense", 2);
    Units("disk 9999", 3);
    Units("disk x", 2);
    Units("volume Q:", 3);
    Fault("scsi:4 --code PortDatabase --do status 23");
    int failed = 0;
    for (const json& row : Units("target all", 11)) {
        failed += row["status"].is_null() ? 0 : 1;
        EXPECT_EQ(row["status"].is_null(), row["lun"].is_number()) << row.dump();
    }
    EXPECT_EQ(1, failed);
}

class SystemStats : public EmulatedDriver {
  protected:
    json Reading(const std::string& port) {
        return Document("port stats -p " + port)["result"]["readings"][0];
    }
    std::string LinkErrorCheck(const std::string& port) {
        const json document = Document("diag run -p " + port);
        for (const json& row : document["result"]["checks"]) {
            if (row["check"] == "link errors") {
                return row["outcome"].text();
            }
        }
        return "none";
    }
};

TEST_F(SystemStats, BothGenerationsAreReadAndCleared) {
    EXPECT_EQ(4u, Document("port stats")["result"]["readings"].size());
    for (const std::string port : {"3", "9"}) {
        const std::string selector = "scsi:" + port;
        EXPECT_EQ("passed", LinkErrorCheck(selector));
        ASSERT_EQ(0u, Vxemu("link " + port + " down").exit);
        ASSERT_EQ(0u, Vxemu("link " + port + " up").exit);
        EXPECT_EQ(1, Reading(selector)["link_failures"]);
        EXPECT_EQ("warning", LinkErrorCheck(selector));

        EXPECT_EQ(false, Document("port stats clear --dry-run -p " + selector)["changed"]);
        EXPECT_EQ(1, Reading(selector)["link_failures"]);
        const json cleared = Document("port stats clear -p " + selector);
        EXPECT_EQ(0, cleared["exit"]);
        EXPECT_EQ(true, cleared["changed"]);
        EXPECT_EQ(1, cleared["result"]["before"]["link_failures"]);
        const json after = Reading(selector);
        EXPECT_EQ(0, after["link_failures"]);
        EXPECT_LT(after["tx_frames"].number(), cleared["result"]["before"]["tx_frames"].number());
        EXPECT_EQ("passed", LinkErrorCheck(selector));
    }
    EXPECT_EQ(2, ExitOf("port stats clear")) << "one port at a time";
}

TEST_F(SystemStats, ALinkThatIsDownIsAFailedCheck) {
    EXPECT_EQ(0, Document("diag run -p scsi:4")["exit"]);
    ASSERT_EQ(0u, Vxemu("link 4 down").exit);
    const json document = Document("diag run -p scsi:4");
    ASSERT_EQ(0u, Vxemu("link 4 up").exit);
    EXPECT_EQ(1, document["exit"]);
    const json said = document["messages"][0];
    EXPECT_EQ("link: link down", said["text"]) << said.dump();
    EXPECT_EQ("index:1", said["object"]);
    Vxmgr("port stats clear -p scsi:4");
}

TEST_F(SystemStats, RowsKeepComing) {
    const support::Ended ended =
        Vxmgr("port stats -p scsi:3 --interval 1 --count 2 --delta -o jsonl");
    EXPECT_EQ(0u, ended.exit) << ended.err;
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    std::istringstream stream(ended.out);
    std::vector<json> rows;
    for (std::string line; std::getline(stream, line);) {
        const json document = json::Parse(line);
        if (document.contains("row")) {
            EXPECT_EQ(std::vector<std::string>(), schemas.CheckRow(document));
            rows.push_back(document["row"]);
        }
    }
    ASSERT_EQ(2u, rows.size());
    for (const json& row : rows) {
        EXPECT_GE(row["seconds"].number(), 1) << row.dump();
        EXPECT_LE(row["seconds"].number(), 10) << "since the row before, not since the reset";
        EXPECT_EQ(false, row["reset"]);
        // One request between two rows: a second's idle frame each, and the request's own.
        EXPECT_EQ(row["seconds"].number() + 1, row["tx_frames"].number());
    }
    // At once, and when the time is over, however long the interval is.
    for (const char* command : {"port stats -p scsi:3", "sfp watch -p scsi:3"}) {
        const json timed = Document(std::string(command) + " --interval 86400 --for 1");
        EXPECT_EQ(0, timed["exit"]) << command;
        EXPECT_EQ(2u, timed["result"]["readings"].size()) << command;
    }
}

TEST_F(SystemStats, DriversWithoutCountersAreTold) {
    Fault("scsi:6 --code LinkStatistics --do status 12");
    EXPECT_EQ(4, ExitOf("port stats -p scsi:6"));
    EXPECT_EQ(4, ExitOf("port stats --count 1 -p scsi:6"));
    EXPECT_EQ(4, ExitOf("port stats clear -p scsi:6"));
    const json all = Document("port stats");
    EXPECT_EQ(11, all["exit"]);
    ASSERT_EQ(4u, all["result"]["readings"].size());
    EXPECT_TRUE(all["result"]["readings"][2]["seconds"].is_null());
    EXPECT_TRUE(all["result"]["readings"][2]["status"].is_string());
    EXPECT_TRUE(all["result"]["readings"][3]["seconds"].is_number());
    Fault("scsi:3 --code ResetStatistics --do status 23");
    const json failed = Document("port stats clear -p scsi:3");
    EXPECT_EQ(false, failed["changed"]);
    EXPECT_EQ(false, failed["result"]["cleared"]);
    EXPECT_NE(0, failed["exit"]);
}

}  // namespace
}  // namespace system_test
