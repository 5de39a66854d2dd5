// vxmgr on what the running driver knows of its fabric and of the signals of its ports: targets'
// speeds and priorities, virtual ports, NVMe controllers, SerDes lanes, registers, D-port.
#include "emulated_driver.h"

namespace system_test {
namespace {

const std::string kFirst = " -p scsi:3";
const std::string kOlderChip = " -p scsi:6";
const std::string kOlderDriver = " -p scsi:9";
const std::string kArray = " -t 2b:00:02:45:4d:00:01:00";

class SystemFabricSettings : public EmulatedDriver {
  protected:
    // A command, how it ends, and what stands at a place of its result.
    struct Step {
        std::string arguments;
        int exit;
        const char* place = "";
        json value = nullptr;
    };
    static void Expect(std::initializer_list<Step> steps) {
        for (const Step& step : steps) {
            const json document = Document(step.arguments);
            EXPECT_EQ(step.exit, document["exit"]) << step.arguments << document["messages"];
            if (*step.place != '\0') {
                EXPECT_EQ(step.value, document["result"].at(step.place))
                    << step.arguments << step.place << document["result"];
            }
        }
    }
    static void SetPort(const std::string& assignment) {
        ASSERT_EQ(0u, Vxemu("port set scsi:3 " + assignment).exit) << assignment;
    }
};

TEST_F(SystemFabricSettings, SpeedsAndPrioritiesOfATarget) {
    const std::string speed = "target speed get" + kFirst + kArray;
    const std::string setSpeed = "target speed set --detailed-exitcode" + kFirst + kArray;
    Expect({
        {speed, 0, "/speeds/0/speed_gbit", 32},
        {speed, 0, "/speeds/0/set", false},
        {setSpeed + " 16 --dry-run", 30, "/speeds/0/speed_gbit", 32},
        {setSpeed + " 16", 0, "/speeds/0/previous_gbit", 32},
        {setSpeed + " 16", 30, "/speeds/0/speed_gbit", 16},
        {setSpeed + " 64", 1, "/speeds/0/status", "0x20000064"},
        {speed, 0, "/speeds/0/speed_gbit", 16},
        {"target speed get -p scsi:4" + kArray, 0, "/speeds/0/set", false},
        {setSpeed + " AUTO", 0, "/speeds/0/set", false},
        {speed, 0, "/speeds/0/speed_gbit", 32},
        {"target speed get" + kFirst + " -t 2b:00:02:45:4d:00:77:00", 3},
        {"target speed get" + kOlderDriver, 4},
    });

    const std::string get = "qos get" + kFirst + kArray;
    const std::string set = "qos set --detailed-exitcode" + kFirst + kArray;
    Expect({
        {get, 0, "/levels/0/luns", "0-255"},
        {set + " high --luns 0-1 --dry-run", 30, "/levels/0/level", "none"},
        {set + " high --luns 0-1", 0, "/levels/0/previous", "none"},
        {set + " 3 --luns 0,1", 30, "/levels/0/level", "high"},
        {set + " low --luns 1,255", 0, "/levels/1/previous", "high"},
        {get, 0, "/levels/1/level", "low"},
        {get, 0, "/levels/2/luns", "2-254"},
        {get, 0, "/levels/3/in_force", true},
        {"qos get -p scsi:4" + kArray, 0, "/levels/0/luns", "0-255"},
        {"qos get" + kOlderChip, 4},
    });
    SetPort("qos_enabled=0");
    const json off = Document(get);
    EXPECT_EQ(false, off["result"]["enabled"]);
    EXPECT_EQ("high", off["result"].at("/levels/0/level"));
    EXPECT_EQ("warning", off.at("/messages/0/severity")) << off["messages"];
    SetPort("qos_enabled=1");
    // Ports that cannot tell do not spoil the list.
    Expect({{"qos get", 0, "/enabled", true}, {set + " none", 0, "/levels/2/luns", "2-254"}});

    // A refusal changes nothing, and what is only said to be set is not taken for set.
    Fault("scsi:3 --code SetLunQos --do status 6 --times 1");
    Expect({{set + " high", 1}, {get, 0, "/levels/0/level", "none"}});
    Fault("scsi:3 --code SetLunQos --do forget");
    Fault("scsi:3 --code SetTargetLinkSpeed --do forget");
    Expect({{set + " high", 9, "/levels/0/level", "none"},
            {setSpeed + " 8", 9, "/speeds/0/speed_gbit", 32}});
}

TEST_F(SystemFabricSettings, VirtualPortsAndControllers) {
    const std::string npiv = "npiv list" + kFirst;
    Expect({
        {npiv, 0, "/ports/0/in_use", 2},
        {npiv, 0, "/ports/0/virtual_ports/1/port_wwn", "2e0002454d000102"},
        {npiv, 0, "/ports/0/virtual_ports/1/port_id", "0x100102"},
        {"npiv list", 0, "/ports/3/supported", nullptr},
        {"npiv list" + kOlderDriver, 4},
    });
    EXPECT_TRUE(support::Has(Vxmgr(npiv).out,
                             "PORT  INDEX  PORT NAME                PORT ID   STATE   LEVEL  "
                             "TARGETS  NAME"));
    SetPort("npiv_state=rejected");
    const json rejected = Document(npiv)["result"].at("/ports/0/virtual_ports/0");
    EXPECT_EQ("rejected", rejected["state"]);
    EXPECT_TRUE(support::Has(rejected["reject"].dump(), "(0x09/0x29)")) << rejected;
    EXPECT_EQ(nullptr, rejected["port_id"]);
    SetPort("npiv_state=follows-link");

    const std::string nvme = "nvme list" + kFirst;
    Expect({
        {nvme, 0, "/controllers/0/subsystem_nqn", "nqn.2026-01.test.emulated:2b0002454d000100"},
        {nvme, 0, "/controllers/0/state", "live"},
        {nvme, 0, "/controllers/0/nvme_version", "1.4"},
        {nvme, 0, "/controllers/0/namespaces/0/ana_state", "optimized"},
        {"nvme list" + kOlderChip, 4},
    });
    const json one = Document(nvme)["result"].at("/controllers/0");
    ASSERT_NE(0u, one["namespaces"].size());
    EXPECT_EQ(one["namespaces"].size(), static_cast<size_t>(one["namespace_count"].number()));
    int64_t sum = 0;
    for (const json& space : one["namespaces"]) {
        sum += space["capacity_bytes"].number();
        EXPECT_EQ(space["capacity_bytes"].number(),
                  space["blocks"].number() * space["block_size"].number());
        EXPECT_TRUE(support::Has(Vxmgr(nvme + " --namespaces").out, space["nguid"].text()));
    }
    EXPECT_EQ(one["capacity_bytes"], sum);
    // The names of its ports stand within those of the subsystem and the host.
    const std::string masked = Vxmgr(nvme + " --json --redact").out;
    EXPECT_FALSE(support::Has(masked, "2b0002454d000100")) << masked;
    EXPECT_FALSE(support::Has(masked, "210002454d000100")) << masked;

    // What is known of a controller stays when its namespaces cannot be asked for.
    Fault("scsi:3 --code NvmeNamespaceInfo --times 3 --do status 23");
    Expect({{nvme, 1, "/controllers/0/state", "live"},
            {nvme, 1, "/controllers/0/namespaces", json::Parse("[]")},
            {nvme, 1, "/controllers/0/status", "0x2000007b"}});
    for (const char* code : {"NpivAttributes", "NvmeTargetInfo", "NvmeNamespaceInfo"}) {
        Fault(std::string("scsi:3 --do corrupt --code ") + code);
    }
    for (const std::string& command : {npiv, nvme, nvme + " --namespaces"}) {
        EXPECT_LE(Vxmgr(command).exit, 4u) << command;
    }
    ASSERT_EQ(0u, Vxemu("fault clear").exit);

    ASSERT_EQ(0u, Vxemu("link scsi:3 down").exit);
    Expect({{npiv, 0, "/ports/0/virtual_ports/0/state", "link_down"},
            {nvme, 0, "/controllers/0/state", "reconnecting"}});
    ASSERT_EQ(0u, Vxemu("link scsi:3 up").exit);
}

TEST_F(SystemFabricSettings, SignalsRegistersAndTheLinkTest) {
    const std::string serdes = "sfp serdes" + kFirst;
    const std::string read = "diag register read" + kFirst;
    const std::string write = "diag register write --yes --confirm EMU7740A0001" + kFirst;
    Expect({
        {serdes, 0, "/lanes/3/lane", 3},
        {serdes, 0, "/lanes/0/tx_amplitude_mv", 800},
        {write + " serdes:0 0x22=0xfffd", 0, "/previous", "0x00000000"},
        {serdes, 0, "/lanes/0/dfe/1", "-3"},
        {"sfp serdes" + kOlderChip, 4},
        {read + " serdes 0x10", 0, "/value", "0x0320"},
        {write + " serdes:1 0x10=600 --dry-run", 0, "/previous", "0x00000320"},
        {write + " serdes:1 0x10=600", 0, "/value", "0x00000258"},
        {read + " serdes:1 16", 0, "/value", "0x00000258"},
        {read + " serdes:0 16", 0, "/value", "0x00000320"},
        {serdes, 0, "/lanes/1/tx_amplitude_mv", 600},
        {write + " serdes 0=1", 1, "/value", "0x7740"},
        {read + " serdes 0x40", 1},
        {read + " serdes:4 0", 1},
        {read + " retimer 0", 0, "/value", "0x45"},
        {write + " retimer 0x20=0xA5", 0, "/previous", "0x00"},
        {read + " retimer:0x18 0x20", 0, "/value", "0xa5"},
        {read + " retimer:0x19 0x20", 3},
        {read + kOlderChip, 2},
    });
    // Nobody is asked in a script without --yes.
    EXPECT_EQ(2, ExitOf("diag register write serdes 0x10=1" + kFirst));
    ASSERT_EQ(0u, Vxemu("reset scsi:3").exit);
    Expect({{serdes, 0, "/lanes/1/tx_amplitude_mv", 800},
            {"diag dport --yes" + kFirst, 0, "/verdict", "passed"}});
    SetPort("loopback_errors=2");
    Expect({{"diag dport --yes" + kFirst, 1, "/verdict", "failed"},
            {"diag dport --yes" + kFirst, 1, "/failed/1/place", 1}});
    SetPort("loopback_errors=0");
}

}  // namespace
}  // namespace system_test
