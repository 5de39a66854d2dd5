// vxmgr health and metrics over the running driver: a healthy one, and one fault after the other.
#include <fstream>

#include "update_fixture.h"

namespace system_test {
namespace {

using Findings = std::set<std::string>;

const std::string kArray = " 2b:00:02:45:4d:00:01:00";

class SystemHealth : public UpdateFixture {
  public:
    static void SetUpTestSuite() { StartDriver(); }
    static void TearDownTestSuite() { StopDriver(); }

  protected:
    void SetUp() override { std::filesystem::create_directories(folder_); }
    void TearDown() override {
        EmulatedDriver::TearDown();
        std::filesystem::remove_all(folder_);
    }

    // What is not normal: "port:check:state".
    static Findings NotNormal(const std::string& options = "") {
        const json document = Document("health -q" + options);
        Findings findings;
        int place = 3;
        for (const json& row : document["result"]["checks"]) {
            findings.insert(std::to_string(row["port"].number()) + ":" + row["id"].text() + ":" +
                            row["state"].text());
            const std::string order = " unknown warning critical";
            const int now = row["state"] == "critical" ? 2 : row["state"] == "warning" ? 1 : 0;
            EXPECT_LE(now, place) << "the worst first" << order << document["result"];
            place = now;
        }
        const json state = document["result"]["state"];
        EXPECT_EQ(state == "critical"  ? 21
                  : state == "warning" ? 20
                                       : 0,
                  document["exit"])
            << options;
        return findings;
    }

    static void Do(const std::string& commands) {
        std::istringstream lines(commands);
        for (std::string line; std::getline(lines, line, ';');) {
            const bool manager = line.starts_with("vxmgr ");
            const support::Ended ended = manager ? Vxmgr(line.substr(6)) : Vxemu(line);
            EXPECT_EQ(0u, ended.exit) << line << "\n" << ended.err;
        }
    }

    struct Fault {
        const char* name;
        std::string inject;  // commands of vxemu, or of vxmgr
        Findings found;
        std::string heal;
        std::string options = "";
    };
    static void Find(const std::vector<Fault>& faults) {
        for (const Fault& fault : faults) {
            SCOPED_TRACE(fault.name);
            Do(fault.inject);
            EXPECT_EQ(fault.found, NotNormal(fault.options));
            Do(fault.heal);
        }
        EXPECT_EQ(Findings{}, NotNormal());
    }
};

TEST_F(SystemHealth, FindsEachFaultOfPortsAndFabricAndNoOther) {
    EXPECT_EQ(Findings{}, NotNormal());
    const std::string clear = "vxmgr port stats clear -p scsi:3";
    Find({
        {"warm",
         "adapter set 3 temperature=90",
         {"0:board_temperature:warning"},
         "adapter set 3 temperature=55"},
        {"hot",
         "adapter set 3 temperature=105",
         {"0:board_temperature:critical"},
         "adapter set 3 temperature=55"},
        {"little light",
         "port set 3 received_power=50",
         {"0:received_power:warning"},
         "port set 3 received_power=0"},
        {"less light",
         "port set 4 received_power=30",
         {"1:received_power:critical"},
         "port set 4 received_power=0"},
        {"too much light",
         "port set 4 received_power=2000",
         {"1:received_power:critical"},
         "port set 4 received_power=0"},
        {"failing laser",
         "port set 3 transmit_fault=1",
         {"0:transceiver:critical"},
         "port set 3 transmit_fault=0"},
        {"empty cage",
         "port set 3 transceiver_type=00:00",
         {"0:transceiver:critical"},
         "port set 3 transceiver_type=03:07"},
        {"link down",
         "link 6 down",
         {"2:link:warning", "2:link_errors:warning", "2:received_power:critical"},
         "link 6 up;vxmgr port stats clear -p scsi:6"},
        {"disabled",
         "port set 4 port_disabled=1",
         {"1:link:critical"},
         "port set 4 port_disabled=0"},
        {"diagnostic state",
         "port set 3 diagnostic_state=2",
         {"0:link:warning"},
         "port set 3 diagnostic_state=0"},
        {"hanging driver",
         "fault add scsi:4 --do hang 6000",
         {"1:link:critical"},
         "fault clear",
         " --timeout 1"},
        {"failing question",
         "fault add scsi:3 --code SecurePortInfo --do status 23",
         {"0:driver:warning", "0:security:unknown"},
         "fault clear"},
        {"link errors", "stats bump 3 invalid_crcs 5", {"0:link_errors:warning"}, clear},
        {"lost blocks", "stats bump 3 fec_uncorrectable 1", {"0:fec:warning"}, clear},
        {"lost credits", "stats bump 3 tx_credits_recovered 2", {"0:credits:warning"}, clear},
        {"congestion",
         "scm 3 credit_stall 2",
         {"0:congestion:warning"},
         "scm 3 congestion_cleared"},
        {"severe congestion",
         "scm 3 lost_credit",
         {"0:congestion:critical"},
         "scm 3 congestion_cleared"},
        {"damaged link notified", "scm 3 invalid_crc", {"0:fpin:warning"}, clear},
        {"credit recovery refused",
         "port set 3 bbcr_reason=refused",
         {"0:credit_recovery:warning"},
         "port set 3 bbcr_reason=none"},
        {"virtual ports rejected",
         "port set 3 npiv_state=rejected",
         {"0:npiv:warning"},
         "port set 3 npiv_state=follows-link"},
        {"NVMe lost",
         "target set" + kArray + " present=0",
         {"0:nvme:warning", "1:nvme:warning"},
         "target set" + kArray + " present=1"},
        {"security failed",
         "target set" + kArray + " secured=failed",
         {"0:security:warning", "1:security:warning"},
         "target set" + kArray + " secured=1"},
        {"dump",
         "adapter set 6 dump_present=1",
         {"2:dump:warning"},
         "adapter set 6 dump_present=0"},
    });
    // What was counted before a sample is none of its business.
    Do("stats bump 3 invalid_crcs 5");
    EXPECT_EQ(Findings{}, NotNormal(" --sample 1 -p scsi:3"));
    EXPECT_EQ(Findings{"0:link_errors:warning"}, NotNormal(" -a EMU7740A0001"));
    EXPECT_EQ(Findings{}, NotNormal(" -p scsi:4"));
    Do(clear);
    // All that is looked at, and no secret.
    const json all = Document("health --redact -p scsi:3");
    EXPECT_EQ("normal", all["result"]["state"]);
    EXPECT_GE(all["result"]["checks"].size(), 20u);
    EXPECT_EQ(std::string::npos, all["result"].dump().find("EMU7740A0001"));
    EXPECT_EQ("received_power",
              Document("explain health received-power")["result"]["checks"][0]["id"]);
    EXPECT_EQ(3, ExitOf("explain health recieved_power"));
    EXPECT_EQ(2, ExitOf("explain"));
}

TEST_F(SystemHealth, FindsWhatIsWrongWithTheFlash) {
    Forget("EMU7740A0001");
    const std::string image = Image("scsi:3", kFirmware, "9.20.00");
    Find({
        {"settings", "flash corrupt 3 21 0x40", {"0:settings:critical"}, "flash corrupt 3 21 0x40"},
        {"product data",
         "flash corrupt 3 20 0x8",
         {"0:product_data:critical"},
         "flash corrupt 3 20 0x8"},
        {"firmware", "flash corrupt 3 1 0x1000", {"0:code:critical"}, "flash corrupt 3 1 0x1000"},
        {"boot code", "flash corrupt 6 7 0x100", {"2:code:critical"}, "flash corrupt 6 7 0x100"},
        // A host that starts through the adapter keeps what is written from being started.
        {"not active",
         "bfs 3 on;vxmgr flash write 1 \"" + image + "\"" + kBanked + kYes,
         {"0:pending:warning"},
         "bfs 3 off;flash reset 3"},
    });
    // The power fails in the middle of an update.
    Do("flash power-fail 3 --after-bytes 70000");
    EXPECT_EQ(1, ExitOf("fw update \"" + image + "\"" + kBanked + kYes));
    Do("reset 3");
    const Findings interrupted = NotNormal();
    EXPECT_TRUE(interrupted.contains("0:update:critical"));
    EXPECT_TRUE(interrupted.contains("0:code:critical"));
    // What was brought back was started, and the links went down with that.
    Do("vxmgr fw restore latest" + kBanked + kYes +
       ";vxmgr port stats clear -p scsi:3;vxmgr port stats clear -p scsi:4");
    EXPECT_EQ(Findings{}, NotNormal());
    Forget("EMU7740A0001");
}

TEST_F(SystemHealth, MetricsAppearAtOnceOrNotAtAll) {
    const std::string file = File("ports.prom");
    const std::string out = " --out \"" + file + "\"";
    ASSERT_EQ(0u, Vxmgr("metrics" + out).exit);
    const std::string first = support::TextOfFile(file);
    EXPECT_NE(std::string::npos, first.find("fibrechannel_up{port_wwn=\"210002454d000100\""))
        << first;
    EXPECT_TRUE(first.ends_with("\n# EOF\n"));

    // A command that fails, or is none, leaves the older file; so does one that is at work.
    EXPECT_EQ(2u, Vxmgr("metrics --format xml" + out).exit);
    EXPECT_EQ(3u, Vxmgr("metrics -p scsi:60" + out).exit);
    EXPECT_EQ(first, support::TextOfFile(file));
    EXPECT_EQ(5u, Vxmgr("metrics --out \"" + folder_.string() + "\"").exit);
    EmulatedDriver::Fault("scsi:4 --do hang 6000");
    support::Program slow("vxmgr.exe", "metrics --timeout 2" + out);
    for (int i = 0; slow.Running() && i < 1000; ++i) {
        EXPECT_TRUE(support::TextOfFile(file).ends_with("\n# EOF\n"));
        Sleep(20);
    }
    EXPECT_EQ(0u, slow.Wait().exit);
    const std::string second = support::TextOfFile(file);
    EXPECT_NE(std::string::npos,
              second.find("fibrechannel_up{port_wwn=\"\",serial=\"\",scsi_port=\"4\"} 0\n"));
    EXPECT_NE(std::string::npos, second.find(",scsi_port=\"4\",check=\"link\"} 2\n"));
    EXPECT_FALSE(std::filesystem::exists(file + ".part"));

    // A reader that lets nobody in is waited for, then told of.
    const HANDLE held =
        CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const support::Ended refused = Vxmgr("metrics -p scsi:3" + out);
    CloseHandle(held);
    EXPECT_EQ(1u, refused.exit);
    EXPECT_NE(std::string::npos, refused.err.find("was not written: ")) << refused.err;
    EXPECT_EQ(second, support::TextOfFile(file));
    EXPECT_FALSE(std::filesystem::exists(file + ".part"));

    // Whatever an adapter says of itself stays inside its label.
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    Do("adapter set 6 \"model=a\\b} 1{\"");
    EXPECT_NE(std::string::npos, Vxmgr("metrics -p scsi:6").out.find(",model=\"a\\\\b} 1{\","));
    Do("adapter set 6 model=EMU7404");
    const std::string redacted = Vxmgr("metrics --redact --json").out;
    EXPECT_EQ(std::string::npos, redacted.find("EMU7740A0001"));
    EXPECT_EQ(std::string::npos, redacted.find("210002454d000100"));
}

// Every chip of the family, with whatever its driver cannot tell.
TEST_F(SystemHealth, FindsNothingOnEveryHealthyChip) {
    StopDriver();
    StartDriver("full");
    const json document = Document("health");
    EXPECT_EQ("normal", document["result"]["state"]);
    std::set<int64_t> ports;
    for (const json& row : document["result"]["checks"]) {
        ports.insert(row["port"].number());
        EXPECT_EQ("normal", row["state"]) << row;
    }
    EXPECT_EQ(63u, ports.size());
}

}  // namespace
}  // namespace system_test
