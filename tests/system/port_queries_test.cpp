// vxmgr on what the running driver tells of its ports: counters of every kind, locate LEDs, remote
// ports, lockdown, credit recovery, known driver parameters.
#include "emulated_driver.h"

namespace system_test {
namespace {

const std::string kArray = " -t 2b:00:02:45:4d:00:01:00";

class SystemPortQueries : public EmulatedDriver {
  protected:
    // A command, how it ends, and what stands at a place of its result.
    struct Step {
        std::string arguments;
        int exit;
        const char* place;
        json value;
    };
    static void Expect(std::initializer_list<Step> steps) {
        for (const Step& step : steps) {
            const json document = Document(step.arguments);
            EXPECT_EQ(step.exit, document["exit"]) << step.arguments << document["messages"];
            EXPECT_EQ(step.value, document["result"].at(step.place))
                << step.arguments << step.place << document["result"];
        }
    }
};

TEST_F(SystemPortQueries, LedsOfAllPortsOfAnAdapterBlink) {
    const std::string newest = " -a EMU7740A0001";
    Expect({
        {"adapter locate on --dry-run" + newest, 0, "/beacons/1/outcome", "planned"},
        {"adapter locate show", 0, "/beacons/1/on", false},
        {"adapter locate on --for 3600" + newest, 0, "/beacons/1/outcome", "done"},
        {"adapter locate on" + newest, 0, "/beacons/0/seconds_left", nullptr},
        {"adapter locate show -p scsi:4", 0, "/beacons/0/on", true},
        {"adapter locate off" + newest, 0, "/beacons/1/on", false},
        {"adapter locate off" + newest, 0, "/beacons/0/outcome", "unchanged"},
        {"adapter locate on -p scsi:9", 4, "/beacons/0/supported", false},
    });
    EXPECT_EQ(2, ExitOf("adapter locate on")) << "one adapter at a time";
    EXPECT_EQ(0, ExitOf("adapter locate show")) << "one that has none is told, not a failure";
    Fault("scsi:4 --code NodeProperties --do forget");
    Expect({{"adapter locate on" + newest, 9, "/beacons/1/on", false},
            {"adapter locate off" + newest, 0, "/beacons/0/on", false}});
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    ASSERT_EQ(0u, Vxemu("port set scsi:4 beacon_supported=0").exit);
    const json document = Document("adapter locate on" + newest);
    EXPECT_EQ(11, document["exit"]);
    EXPECT_EQ("done", document["result"]["beacons"][0]["outcome"]);
    EXPECT_EQ("not_supported", document["result"]["beacons"][1]["outcome"]);
    EXPECT_TRUE(document["result"]["beacons"][1]["status"].is_string());
}

TEST_F(SystemPortQueries, EveryKindOfCountersIsReadWhereItIsKnown) {
    const std::string stats = "port stats -p scsi:3 --kind ";
    Expect({
        {stats + "traffic", 0, "/readings/0/traffic/flogis", 1},
        {stats + "traffic", 0, "/readings/0/seconds", nullptr},
        {stats + "scm", 0, "/readings/0/scm/allowed_percent", 100},
        {stats + "private", 0, "/readings/0/private/commands_failed", 0},
        {stats + "latency", 0, "/readings/0/latency/reads/0/to_us", 128},
        {stats + "all", 0, "/readings/0/link_failures", 0},
        {stats + "all" + kArray, 0, "/readings/0/private", nullptr},
        {stats + "all" + kArray, 0, "/readings/0/scm/severity", nullptr},
        {stats + "link -t 0:0", 0, "/readings/0/target_wwn", "2b0002454d000100"},
        {stats + "link" + kArray, 0, "/readings/0/losses_of_sync", 2},
        {stats + "link -t 7:7", 3, "/readings/0/tx_frames", nullptr},
        // The first form of the counters, on an older chip; none at all of an older driver.
        {"port stats -p scsi:6 --kind traffic", 0, "/readings/0/traffic/abts_sent", nullptr},
        {"port stats -p scsi:6 --kind traffic", 0, "/readings/0/traffic/error_frames", 0},
        {"port stats -p scsi:6 --kind scm", 4, "/readings/0/scm", nullptr},
        {"port stats -p scsi:9 --kind all", 0, "/readings/0/link_failures", 0},
        {"port stats --kind scm", 0, "/readings/0/scm/registered", true},
    });
    EXPECT_EQ(2, ExitOf(stats + "private" + kArray));

    // Two requests that fail lead from one form of the counters to the next.
    Fault("scsi:3 --code DestinationStatisticsV2 --do status 12");
    Expect({{stats + "traffic", 0, "/readings/0/traffic/flogis", nullptr},
            {stats + "traffic", 0, "/readings/0/traffic/dumped_frames", 0}});
    Fault("scsi:3 --code ScmStatistics --do status 23");
    const json failed = Document(stats + "all");
    EXPECT_EQ(1, failed["exit"]);
    EXPECT_TRUE(failed["result"]["readings"][0]["status"].is_string());
}

TEST_F(SystemPortQueries, DifferencesAndClearingHoldForTheDriversOwnCounters) {
    const std::string commands = "port stats -p scsi:3 --kind private";
    const auto started = [&](const json& document) {
        return document["result"]["readings"][0]["private"]["commands_started"].number();
    };
    const int64_t all = started(Document(commands));
    const int64_t since = started(Document(commands + " --delta --interval 1 --count 1"));
    EXPECT_GE(since, 1);
    EXPECT_LT(since, 20) << "of " << all;

    const json dry = Document("port stats clear --private --dry-run -p scsi:3");
    EXPECT_EQ(false, dry["changed"]);
    const json cleared = Document("port stats clear --private -p scsi:3");
    EXPECT_EQ(0, cleared["exit"]) << cleared["messages"];
    EXPECT_EQ(nullptr, cleared["result"]["before"]) << "the link's are another matter";
    EXPECT_GT(cleared["result"]["private_before"]["commands_started"].number(), all);
    EXPECT_LT(started(Document(commands)), all);
    EXPECT_EQ(4, ExitOf("port stats clear --private -p scsi:9"));
}

TEST_F(SystemPortQueries, RemotePortsAreListedWithTheirLinks) {
    Expect({
        {"port database -p scsi:3", 0, "/remote_ports/0/target_wwn", "2b0002454d000100"},
        {"port database -p scsi:3", 0, "/remote_ports/0/roles/1", "nvme"},
        {"port database -p scsi:3", 0, "/remote_ports/0/errors/losses_of_sync", 2},
        {"port database -p scsi:3", 0, "/remote_ports/0/security/encryption", "aes_gcm_256"},
        {"port database -p scsi:3", 0, "/remote_ports/4/state", "lost"},
        {"port database -p scsi:3", 0, "/remote_ports/4/bus", nullptr},
        {"port database -p scsi:6", 0, "/remote_ports/0/security", nullptr},
        {"port database -p scsi:6", 0, "/remote_ports/0/speed_gbit", 8},
        {"port database -p scsi:9", 0, "/remote_ports/1/target", 1},
        {"port database -p scsi:9", 0, "/remote_ports/1/state", nullptr},
    });
    // The loop identifiers rise where the addresses fall; the port itself comes first.
    ASSERT_EQ(0u, Vxemu("port set scsi:4 topology=public-loop").exit);
    Expect({{"port database -p scsi:4", 0, "/remote_ports/0/loop_position", 4},
            {"port database -p scsi:4", 0, "/remote_ports/3/loop_position", 1},
            {"port database -p scsi:4", 0, "/remote_ports/4/loop_position", nullptr}});
    ASSERT_EQ(0u, Vxemu("port set scsi:4 topology=fabric").exit);
    Fault("scsi:4 --code RemotePortInfo --do status 23");
    EXPECT_EQ(11, ExitOf("port database"));
}

TEST_F(SystemPortQueries, LockdownRecoveryAndParametersAreShown) {
    ASSERT_EQ(0u, Vxemu("lockdown scsi:3 on").exit);
    Expect({{"port lockdown -p scsi:4", 0, "/lockdowns/0/locked_down", true},
            {"port lockdown -p scsi:4 --redact", 0, "/lockdowns/0/locked_down", true},
            {"port lockdown -p scsi:4 --redact", 0, "/lockdowns/0/state", nullptr}});
    ASSERT_EQ(0u, Vxemu("lockdown scsi:3 off").exit);
    Expect({
        {"port lockdown", 0, "/lockdowns/0/locked_down", false},
        {"port lockdown -p scsi:9", 4, "/lockdowns/0/locked_down", nullptr},
        {"port show -p scsi:3", 0, "/ports/0/credit_recovery/negotiated", 6},
        {"port show -p scsi:6", 0, "/ports/0/credit_recovery/state", "not_supported"},
        {"port show -p scsi:6", 0, "/ports/0/credit_recovery/negotiated", nullptr},
        {"port show -p scsi:9", 0, "/ports/0/credit_recovery", nullptr},
    });
    ASSERT_EQ(0u, Vxemu("link 3 down").exit);
    Expect({{"port show -p scsi:3", 0, "/ports/0/credit_recovery/reason", "link_down"}});
    ASSERT_EQ(0u, Vxemu("link 3 up").exit);

    ASSERT_EQ(0u, Vxmgr("driver param set bind=0 -y -p scsi:3").exit);
    Expect({{"driver param list -p scsi:3", 0, "/parameters/0/value", "0"},
            {"driver param list -p scsi:3", 0, "/parameters/0/default", "1"}});
    ASSERT_EQ(0u, Vxmgr("driver param set bind= -y -p scsi:3").exit);
    Expect({{"driver param list -p scsi:3", 0, "/parameters/0/value", nullptr}});
}

}  // namespace
}  // namespace system_test
