// Ports that do not answer: they keep their rows, and hold up nobody else.
#include <chrono>
#include <set>

#include "emulated_driver.h"

namespace system_test {
namespace {

using std::chrono::steady_clock;

// A port in the registry that a driver of the family is said to serve, while no device is there.
class MissingDevice {
  public:
    MissingDevice() {
        const LSTATUS status =
            RegCreateKeyExA(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, REG_OPTION_VOLATILE,
                            KEY_SET_VALUE, nullptr, &key_, nullptr);
        EXPECT_EQ(ERROR_SUCCESS, status);
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetValueExA(key_, "Driver", 0, REG_SZ, reinterpret_cast<const BYTE*>("vxfc2"),
                                 sizeof "vxfc2"));
    }
    ~MissingDevice() {
        RegCloseKey(key_);
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, kPath);
    }

  private:
    static constexpr const char* kPath = "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 5";
    HKEY key_ = nullptr;
};

class SystemSilentPorts : public EmulatedDriver {
  protected:
    // The rows of the ports, which are all there; the one at this index does not answer.
    json PortsWithout(const std::string& command, size_t silent, const std::string& status,
                      int exit) {
        const json document = Document(command);
        EXPECT_EQ(exit, document["exit"]) << command;
        const json ports = document["result"]["ports"];
        for (size_t i = 0; i < ports.size(); ++i) {
            EXPECT_EQ(i, ports[i]["index"]) << command;
            EXPECT_EQ(i != silent, ports[i]["answers"]) << command;
            EXPECT_EQ(i == silent ? json(status) : json(), ports[i]["status"]) << command;
        }
        return ports;
    }
};

TEST_F(SystemSilentPorts, KeepTheirIndexAndHoldUpNobodyElse) {
    Fault("scsi:4 --do hang 12000");
    const auto start = steady_clock::now();
    EXPECT_EQ(4u, PortsWithout("port list", 1, "0x20000091", 11).size());
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(12));

    // --timeout sets how long. People see who is waited for, and what became of it.
    const support::Ended shown = Vxmgr("--timeout 2 port list");
    EXPECT_EQ(11u, shown.exit);
    EXPECT_NE(std::string::npos, shown.out.find("not answering"));
    EXPECT_NE(std::string::npos, shown.err.find("waiting for port 1 (scsi:4)\n")) << shown.err;
    EXPECT_NE(std::string::npos, shown.err.find("port 1 (scsi:4) is not answering after 2 s"));

    // Named by its place, a port is asked alone; the silent one gives the exit code then.
    EXPECT_EQ(0, Document("port show -p scsi:6")["exit"]);
    EXPECT_EQ(0, Document("port stats -p index:3")["exit"]);
    EXPECT_EQ(0u, PortStatus("scsi:3")["open_handles"]);
    EXPECT_EQ(7, Document("--timeout 1 port list -p index:1")["exit"]);
    EXPECT_EQ(7, Document("--timeout 1 nvram show -p scsi:4")["exit"]);
    const json missed = Document("--timeout 1 port show -p 21:01:02:45:4d:00:01:00");
    EXPECT_EQ(3, missed["exit"]);
    EXPECT_NE(std::string::npos, missed["messages"].dump().find("index:1 does not answer"));

    // Every command over several ports goes on without it; they wait for it side by side.
    std::map<std::string, support::Program> commands;
    for (const char* command : {"port stats", "target list", "sfp show", "fw show", "dump list",
                                "nvram verify", "map target 0:0", "adapter show"}) {
        commands.try_emplace(command, "vxmgr.exe", std::string("--json --timeout 3 ") + command);
    }
    for (auto& [command, program] : commands) {
        EXPECT_EQ(11, DocumentOf(command, program.Wait())["exit"]) << command;
    }
    EXPECT_EQ(1, Document("--timeout 2 diag run")["exit"]);
    // The standard API would wait for it at each of its own counts.
    EXPECT_EQ(7, Document("--timeout 2 hbaapi list")["exit"]);
}

// A port that answers at first, and not when it is asked about one of its targets.
TEST_F(SystemSilentPorts, FallSilentInTheMiddleOfAList) {
    struct Case {
        const char* request;
        const char* command;
        const char* rows;
    };
    for (const Case& one : {Case{"TargetLunMaskFc", "target list", "targets"},
                            Case{"TargetLunMaskFc", "lunmask show", "masks"},
                            Case{"ScsiPassThrough", "target luns", "luns"}}) {
        Fault(std::string("scsi:4 --do hang 4000 --times 1 --code ") + one.request);
        const json document = Document(std::string("--timeout 2 ") + one.command);
        EXPECT_EQ(11, document["exit"]) << one.command;
        std::set<std::string> silent;
        std::set<int> others;
        for (const json& row : document["result"][one.rows]) {
            const int index = row["port"].number();
            if (index == 1) {
                silent.insert(row["status"].text());
            } else {
                others.insert(index);
            }
        }
        EXPECT_EQ(std::set<std::string>{"0x20000091"}, silent) << one.command;
        EXPECT_EQ((std::set<int>{0, 2, 3}), others) << one.command;
    }
}

// The silent port has no serial number, so it counts as an adapter of its own: a number behind it
// is another adapter's than usual.
TEST_F(SystemSilentPorts, DoNotShiftTheAdapterThatACommandMeets) {
    Fault("scsi:4 --code NodeProperties --do busy");
    EXPECT_EQ(0, Document("--timeout 1 fw activate -a index:0 --dry-run")["exit"]);
    const json refused = Document("--timeout 1 fw activate -a index:2 --dry-run");
    EXPECT_EQ(8, refused["exit"]);
    EXPECT_EQ(false, refused["changed"]);
    EXPECT_EQ(11, Document("--timeout 1 adapter list")["exit"]);
    EXPECT_NE(
        std::string::npos,
        Document("--timeout 1 adapter show -a index:2")["messages"].dump().find("not certain"));
    EXPECT_EQ(0, Document("--timeout 1 adapter show -a EMU7404A0002")["exit"]);
}

TEST_F(SystemSilentPorts, ADeviceThatIsMissingKeepsItsRow) {
    const MissingDevice missing;
    const json ports = PortsWithout("port list", 2, "0x00000002", 11);
    ASSERT_EQ(5u, ports.size());
    EXPECT_EQ(5, ports[2]["scsi_port"]);
    EXPECT_EQ(3, Document("port show -p scsi:5")["exit"]);
    EXPECT_EQ(0, Document("port show -p index:3")["exit"]);
}

// Two readings, an event that never comes: the driver stops in the middle, or starts anew.
TEST_F(SystemSilentPorts, ADriverThatGoesAwayIsSaidTo) {
    struct Case {
        const char* watch;
        bool again;  // the driver starts anew at once
    };
    for (const Case& one :
         {Case{"event watch -p scsi:3", false}, Case{"sfp watch -p scsi:3 --interval 1", false},
          Case{"port stats -p scsi:3 --interval 1", true}}) {
        support::Program watcher("vxmgr.exe", one.watch);
        for (int i = 0; i < 100 && watcher.Out().find("TIME") == std::string::npos; ++i) {
            Sleep(100);
        }
        StopDriver();
        if (one.again) {
            StartDriver();
        }
        const support::Ended ended = watcher.Wait();
        EXPECT_EQ(3u, ended.exit) << one.watch << ended.err;
        EXPECT_NE(std::string::npos, ended.err.find("the driver was stopped")) << ended.err;
        EXPECT_EQ(std::string::npos, ended.err.find("elevated")) << ended.err;
        if (!one.again) {
            StartDriver();
        }
    }
    Fault("scsi:6 --code FlashWrite --do hang 1500");
    support::Program writer("vxmgr.exe",
                            "nvram set login_timeout=91 -p scsi:6 --yes --confirm EMU7404A0002");
    for (int i = 0; i < 100 && PortStatus("scsi:6")["faults"] == 0; ++i) {
        Sleep(50);
    }
    StopDriver();
    const support::Ended ended = writer.Wait();
    StartDriver();
    EXPECT_EQ(3u, ended.exit) << ended.err;
    EXPECT_NE(std::string::npos, ended.err.find("The device is not connected")) << ended.err;
}

TEST_F(SystemSilentPorts, WindowsErrorCodesHaveTheirTexts) {
    for (const int code : {1, 2, 5, 32, 121, 170, 433, 995, 1053, 1062, 1167, 1223, 1314, 1460}) {
        const json status = Document("explain " + std::to_string(code))["result"]["status"];
        const std::string text = status["text"].text();
        EXPECT_FALSE(text.empty()) << code;
        EXPECT_EQ(std::string::npos, text.find("Windows error")) << code;
    }
}

}  // namespace
}  // namespace system_test
