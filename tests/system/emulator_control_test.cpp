// vxemu on the running driver, as vxmgr and other processes see it: adapters that come and go,
// counters that are raised, traces.
#include <map>
#include <sstream>

#include "emulated_driver.h"
#include "frame/owned.h"
#include "transport/ext_ioctl.h"

namespace system_test {
namespace {

class SystemEmulatorControl : public FreshDriver {
  protected:
    static void Expect(const std::string& arguments, int exit, const char* place = "",
                       const json& value = nullptr) {
        const json document = VxemuDocument(arguments);
        EXPECT_EQ(exit, document["exit"]) << arguments << document["messages"];
        if (*place != '\0') {
            EXPECT_EQ(value, document["result"].at(place)) << arguments << document["result"];
        }
    }
    static frame::OwnedFile OpenPort(const std::string& name) {
        return frame::OwnedFile(
            CreateFileA(("\\\\.\\" + name).c_str(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    }
    // How a request without an envelope fails.
    static DWORD ErrorOf(const frame::OwnedFile& port) {
        DWORD returned = 0;
        const BOOL sent = DeviceIoControl(port.Get(), transport::kIoctlScsiMiniport, nullptr, 0,
                                          nullptr, 0, &returned, nullptr);
        return sent != FALSE ? DWORD{ERROR_SUCCESS} : GetLastError();
    }
    // The driver's "no such device" arrives as either, depending on the system.
    static bool IsMissing(const frame::OwnedFile& port) {
        constexpr DWORD kNoSuchDevice = 433;
        const DWORD error = ErrorOf(port);
        return error == ERROR_FILE_NOT_FOUND || error == kNoSuchDevice;
    }
    static std::string ScsiPorts() {
        std::string found;
        const json document = Document("port list");
        EXPECT_EQ(0, document["exit"]) << document["messages"];
        for (const json& port : document["result"]["ports"]) {
            found += " " + std::to_string(port["scsi_port"].number());
        }
        return found;
    }
};

TEST_F(SystemEmulatorControl, AdaptersComeAndGo) {
    support::Program stays("vxmgr.exe", "event watch --count 2 -p scsi:3");
    support::Program loses("vxmgr.exe", "event watch -p scsi:6");
    ASSERT_TRUE(PortReaches("scsi:3", "event_delivery", true));
    ASSERT_TRUE(PortReaches("scsi:6", "event_delivery", true));
    const frame::OwnedFile old = OpenPort("scsi6:");
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, ErrorOf(old)) << "an empty request";

    Expect("adapter add 0x7742 --ports 2 --dry-run", 0, "/serial", "EMU7742A0004");
    EXPECT_EQ(" 3 4 6 9", ScsiPorts());
    Expect("adapter add 0x7742 --ports 2 firmware_version=9.10.00", 0, "/ports/1/port", "scsi:11");
    EXPECT_EQ(" 3 4 6 9 10 11", ScsiPorts());
    const json shown = Document("adapter show -a EMU7742A0004")["result"];
    EXPECT_EQ("9.10.00", shown.at("/adapters/0/firmware")) << shown;
    EXPECT_EQ(3u, Document("target list -p scsi:11")["result"]["targets"].size());
    const json disk = Document("map target 0:0 -p scsi:11");
    EXPECT_EQ(0, disk["exit"]) << disk["messages"];
    EXPECT_TRUE(support::Has(disk["result"].dump(), "PhysicalDrive")) << disk["result"];

    // A card that is pulled while somebody has its port open.
    Expect("adapter remove EMU7404A0002", 0, "/ports/0/port", "scsi:6");
    EXPECT_EQ(" 3 4 9 10 11", ScsiPorts());
    EXPECT_EQ(3, ExitOf("port show -p scsi:6"));
    Expect("adapter remove scsi:6", 3);
    Expect("reset scsi:6", 3);
    EXPECT_TRUE(IsMissing(old));
    support::Ended ended = loses.Wait();
    EXPECT_EQ(3u, ended.exit) << ended.out << ended.err;
    EXPECT_TRUE(support::Has(ended.err, "the adapter went away")) << ended.err;
    // It comes back under its number, and is nothing to who has the old one open.
    Expect("adapter add 7404 --scsi-port 6 --serial EMU7404A0002", 0, "/adapter", 3);
    EXPECT_EQ(" 3 4 6 9 10 11", ScsiPorts());
    EXPECT_EQ(0, PortStatus("scsi:6")["open_handles"]);
    EXPECT_EQ(false, PortStatus("scsi:6")["event_delivery"]);
    EXPECT_EQ(0, ExitOf("map target 0:0 -p scsi:6"));
    EXPECT_TRUE(IsMissing(old));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, ErrorOf(OpenPort("scsi6:")));

    ASSERT_EQ(0u, Vxemu("link 3 down").exit);
    ASSERT_EQ(0u, Vxemu("link 3 up").exit);
    ended = stays.Wait();
    EXPECT_EQ(0u, ended.exit) << ended.out << ended.err;
    EXPECT_EQ(0, PortStatus("scsi:3")["open_handles"]);
    EXPECT_EQ(0, PortStatus("scsi:6")["open_handles"]);

    const std::string taken = "adapter add 0x7404 --serial EMU7742A0004";
    Expect(taken, 8);
    Expect("adapter add 0x7404 --scsi-port 9", 8);
    Expect("adapter add 0x7404 --serial REAL7404", 8);
    Expect("adapter add 0x7999", 2);
    Expect("adapter add 0x7404 --ports 9", 2);
    Expect("adapter add 0x7404 serial=EMU1", 2);
    for (const char* adapter : {"EMU7404A0002", "scsi:10", "9"}) {
        Expect(std::string("adapter remove ") + adapter, 0);
    }
    Expect("adapter remove scsi:4", 8);
    EXPECT_EQ(" 3 4", ScsiPorts());
}

TEST_F(SystemEmulatorControl, RaisedCountersAreRead) {
    const std::string array = " -t 2b:00:02:45:4d:00:01:00";
    const auto reading = [](const std::string& kind) {
        const json document = Document("port stats -p scsi:3 --kind " + kind);
        EXPECT_EQ(0, document["exit"]) << document["messages"];
        return document["result"].at("/readings/0");
    };
    const int64_t before = reading("link" + array)["invalid_crcs"].number();
    Expect("stats bump scsi:3 invalid_crcs 5", 0, "/by", 5);
    Expect("stats bump 3 invalid_crcs 4" + array, 0);
    Expect("stats bump scsi:3 fcp.input_bytes 5000000000", 0);
    EXPECT_EQ(5, reading("link")["invalid_crcs"]);
    EXPECT_EQ(before + 4, reading("link" + array)["invalid_crcs"].number());
    EXPECT_EQ(5000000000, reading("traffic").at("/traffic/fcp/input_bytes").number());
    Expect("stats bump scsi:3 no_such_counter 1", 2);
    Expect("stats bump scsi:3 interrupts 1" + array, 2);
    Expect("stats bump scsi:5 invalid_crcs 1", 3);

    EXPECT_EQ("none", reading("scm").at("/scm/severity"));
    Expect("scm scsi:3 credit_stall 2", 0);
    Expect("scm scsi:3 warning_signals 7", 0);
    Expect("scm scsi:3 link_failure" + array, 0);
    json scm = reading("scm")["scm"];
    EXPECT_EQ("warning", scm["severity"]);
    EXPECT_EQ(2, scm.at("/fpin/credit_stall"));
    EXPECT_EQ(7, scm["warning_signals"]);
    EXPECT_EQ(1, scm.at("/peers/link_failure"));
    EXPECT_TRUE(scm["last_event_s"].is_number()) << scm;
    EXPECT_EQ(1, reading("scm" + array).at("/scm/fpin/link_failure"));
    Expect("scm scsi:3 alarm_signals", 0);
    EXPECT_EQ("alarm", reading("scm").at("/scm/severity"));
    Expect("scm scsi:3 congestion_cleared", 0);
    EXPECT_EQ("none", reading("scm").at("/scm/severity"));
    EXPECT_EQ(0, ExitOf("port stats clear -p scsi:3"));
    EXPECT_EQ(0, reading("scm").at("/scm/fpin/credit_stall"));
    Expect("scm scsi:3 invalid_crcs", 2);
}

TEST_F(SystemEmulatorControl, TracesHaveEveryRequest) {
    const auto served = [](const char* port) { return PortStatus(port)["requests"].number(); };
    Expect("trace stop", 3);
    std::map<std::string, int64_t> asked = {{"scsi:3", -served("scsi:3")},
                                            {"scsi:9", -served("scsi:9")}};
    Expect("trace start" + Quoted("requests.jsonl"), 0);
    Expect("trace start" + Quoted("other.jsonl"), 1);
    EXPECT_EQ(0, ExitOf("port show -p scsi:3"));
    EXPECT_EQ(0, ExitOf("target list -p scsi:9"));
    for (auto& [port, count] : asked) {
        count += served(port.c_str());
        EXPECT_GT(count, 5);
    }
    const json shown = VxemuDocument("trace show")["result"];
    EXPECT_EQ(true, shown["running"]);
    EXPECT_GE(shown["requests"].size(), static_cast<size_t>(asked["scsi:3"] + asked["scsi:9"]));
    Expect("trace stop --dry-run", 0);
    Expect("trace stop", 0, "/lost", 0);

    std::istringstream lines(support::TextOfFile(File("requests.jsonl")));
    bool version2 = false;
    bool plain = false;
    for (std::string text; std::getline(lines, text);) {
        const json line = json::Parse(text);
        const std::string port = line["port"].text();
        if (asked.count(port) != 0) {
            --asked[port];
        }
        EXPECT_EQ("done", line["completion"]) << line;
        version2 |= port == "scsi:3" && line["request"] == "PortPropertiesV2";
        plain |= port == "scsi:9" && line["request"] == "LegacyQuery" && line["status"] == nullptr;
    }
    EXPECT_EQ(0, asked["scsi:3"]);
    EXPECT_EQ(0, asked["scsi:9"]);
    EXPECT_TRUE(version2);
    EXPECT_TRUE(plain);

    // What cannot be written is kept until it can.
    Expect("trace start" + Quoted("missing\\requests.jsonl"), 0);
    EXPECT_EQ(0, ExitOf("port show -p scsi:3"));
    Expect("trace stop", 1);
    Expect("trace show", 0, "/running", false);
    Expect("trace start" + Quoted("other.jsonl"), 1);
    std::filesystem::create_directory(folder_ / "missing");
    EXPECT_EQ(0, ExitOf("port show -p scsi:3"));
    const int64_t kept =
        static_cast<int64_t>(VxemuDocument("trace show")["result"]["requests"].size());
    Expect("trace stop", 0, "/requests", kept);
    Expect("trace stop", 3);
}

}  // namespace
}  // namespace system_test
