// Bindings and LUN masks over a restart of the driver, and the bytes of the store.
#include <set>
#include <vector>

#include "emulated_driver.h"

namespace system_test {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr char kPort0[] = "21-00-02-45-4d-00-01-00";
constexpr char kNobody[] = "21-00-02-45-4d-00-ff-ff";

std::string KeyOf(const std::string& service, const std::string& port) {
    return "SYSTEM\\CurrentControlSet\\Services\\" + service + "\\Parameters\\" + port;
}

Bytes StoredBytes(const std::string& port, const char* value) {
    Bytes bytes(600000);
    DWORD size = static_cast<DWORD>(bytes.size());
    const LSTATUS status = RegGetValueA(HKEY_LOCAL_MACHINE, KeyOf("vxfc2", port).c_str(), value,
                                        RRF_RT_ANY, nullptr, bytes.data(), &size);
    bytes.resize(status == ERROR_SUCCESS ? size : 0);
    return bytes;
}

void Wipe() {
    for (const char* service : {"vxfc1", "vxfc2"}) {
        for (const std::string port : {kPort0, kNobody, "21-01-02-45-4d-00-01-00",
                                       "21-00-02-45-4d-00-02-00", "21-00-02-45-4d-00-03-00"}) {
            RegDeleteKeyA(HKEY_LOCAL_MACHINE, KeyOf(service, port).c_str());
        }
    }
}

class SystemPersist : public EmulatedDriver {
  protected:
    static inline const std::string kArrayA = "2b:00:02:45:4d:00:01:00";
    static inline const std::string kArrayB = "2b:00:02:45:4d:00:02:00";

    void SetUp() override {
        Wipe();
        Restart();
    }
    void TearDown() override {
        EmulatedDriver::TearDown();
        Wipe();
    }

    static void Restart() {
        StopDriver();
        StartDriver();
    }

    std::set<int64_t> LunsOf(const std::string& port, const std::string& target) {
        std::set<int64_t> luns;
        const json result = Document("scsi luns -p " + port + " -t " + target)["result"];
        for (const json& row : result["luns"]) {
            luns.insert(row["lun"].number());
        }
        return luns;
    }

    // The target's row of `target show`.
    json Target(const std::string& port, const std::string& target) {
        const json rows = Document("target show -p " + port + " -t " + target)["result"]["targets"];
        return rows.size() == 1 ? rows[0] : json();
    }

    // Runs a command, and expects of its document this exit code and these outcomes.
    json Expect(const std::string& arguments, int exit, const std::string& outcomes = {}) {
        const json document = Document(arguments);
        EXPECT_EQ(exit, document["exit"]) << arguments << "\n" << document["messages"].dump();
        std::string found;
        if (document["result"].is_object() && document["result"].contains("steps")) {
            for (const json& step : document["result"]["steps"]) {
                found += (found.empty() ? "" : " ") + step["outcome"].text();
            }
        }
        if (!outcomes.empty()) {
            EXPECT_EQ(outcomes, found) << arguments;
        }
        return document;
    }
};

TEST_F(SystemPersist, BindingsAndMasksSurviveARestart) {
    // The current driver, and one below 7.05.03 that stores in the older form.
    for (const std::string port : {"scsi:3", "scsi:9"}) {
        const std::string on = " -t " + kArrayA + " -p " + port;
        const bool current = port == "scsi:3";
        Expect("bind add --id 9" + on, 0, current ? "done done" : "done pending");
        EXPECT_EQ(json(current ? 9 : 0), Target(port, kArrayA)["target"]);
        const json denied = Expect("lunmask deny 1,3 --yes" + on, 0, "done done");
        EXPECT_EQ(true, denied["changed"]);
        EXPECT_EQ((std::set<int64_t>{0, 2}), LunsOf(port, kArrayA));
        Expect("lunmask deny 1,3 --yes" + on, 0, "unchanged unchanged");
    }
    Restart();
    for (const std::string port : {"scsi:3", "scsi:9"}) {
        EXPECT_EQ((std::set<int64_t>{0, 2}), LunsOf(port, kArrayA));
        EXPECT_EQ(4u, LunsOf("scsi:4", kArrayA).size()) << "a port that nobody masked";
        const json target = Target(port, kArrayA);
        EXPECT_EQ(9, target["target"]) << port;
        EXPECT_EQ("1,3", target["masked_live"]) << port;
        EXPECT_EQ("1,3", target["masked_stored"]) << port;
        EXPECT_EQ(true, target["bound_stored"]) << port;
        EXPECT_EQ(port == "scsi:3" ? json(true) : json(), target["bound_live"]) << port;
        // Both ways out: a mask at once, a binding with the next start.
        const std::string on = " -t " + kArrayA + " -p " + port;
        Expect("lunmask allow all" + on, 0, "done done");
        EXPECT_EQ(4u, LunsOf(port, kArrayA).size());
        const json removed = Expect("bind remove" + on, 0, "done pending");
        EXPECT_EQ(1u, removed["pending"].size());
    }
    Restart();
    EXPECT_EQ(0, Target("scsi:3", kArrayA)["target"]);
    EXPECT_EQ(false, Target("scsi:3", kArrayA)["bound_live"]);
}

TEST_F(SystemPersist, ParametersOfTheDriverSayWhatBindingsAreFor) {
    const auto targets = [](const std::string& port) {
        std::string found;
        const json rows = Document("target list -p " + port)["result"]["targets"];
        for (const json& row : rows) {
            found += " " + std::to_string(row["target"].number());
        }
        return found;
    };
    const auto start = [](const std::string& parameter) {
        EXPECT_EQ(0u, Vxmgr("driver param set " + parameter + " --yes -p scsi:3").exit);
        Restart();
    };
    const std::string all = targets("scsi:3");
    const std::string legacy = targets("scsi:9");
    Expect("bind add --id 9 -p scsi:3 -t " + kArrayA, 0, "done done");
    start("configrequired=1");
    EXPECT_EQ(" 9", targets("scsi:3"));
    EXPECT_EQ("", targets("scsi:4")) << "nothing is stored for its targets";
    EXPECT_EQ(legacy, targets("scsi:9")) << "another driver";
    Expect("bind add --id 5 -p scsi:3 -t wwn:" + kArrayB + " --node 2a:00:02:45:4d:00:02:00", 0,
           "done done");
    EXPECT_EQ(5, Target("scsi:3", kArrayB)["target"]) << "bound, so presented at once";
    start("configrequired=");
    start("bind=0");
    EXPECT_EQ(all, targets("scsi:3"));
    start("bind=");
    EXPECT_EQ(9, Target("scsi:3", kArrayA)["target"]);
}

TEST_F(SystemPersist, OneStoreLeavesTheOtherAlone) {
    const std::string on = " -p scsi:3 -t " + kArrayA;
    const json stored = Expect("lunmask deny 1 --yes --store registry" + on, 0, "done");
    EXPECT_EQ(1u, stored["pending"].size());
    EXPECT_EQ(4u, LunsOf("scsi:3", kArrayA).size());
    const Bytes bytes = StoredBytes(kPort0, "LunData");
    Expect("lunmask deny 2 --yes --store live" + on, 0, "done");
    EXPECT_EQ(bytes, StoredBytes(kPort0, "LunData"));
    EXPECT_EQ((std::set<int64_t>{0, 1, 3}), LunsOf("scsi:3", kArrayA));
    // What is stored comes live on demand.
    Expect("bind add --store registry" + on, 0, "done");
    EXPECT_EQ(false, Target("scsi:3", kArrayA)["bound_live"]);
    Expect("bind apply --masks --yes -p scsi:3", 0, "done done");
    EXPECT_EQ(true, Target("scsi:3", kArrayA)["bound_live"]);
    EXPECT_EQ((std::set<int64_t>{0, 2, 3}), LunsOf("scsi:3", kArrayA));
    EXPECT_EQ(4u, LunsOf("scsi:4", kArrayA).size());
    Expect("bind remove --store live" + on, 4);
}

TEST_F(SystemPersist, DryRunsChangeNothing) {
    const std::string on = " -p scsi:3 --dry-run -t " + kArrayA;
    Expect("bind add --id 9" + on, 0, "planned planned");
    Expect("lunmask deny 0-7" + on, 0, "planned planned");
    Expect("bind swap --with " + kArrayB + on, 0, "unchanged planned");
    EXPECT_EQ(Bytes(), StoredBytes(kPort0, "Data"));
    EXPECT_EQ(Bytes(), StoredBytes(kPort0, "LunData"));
    EXPECT_EQ(0, Target("scsi:3", kArrayA)["target"]);
    EXPECT_EQ(4u, LunsOf("scsi:3", kArrayA).size());
}

TEST_F(SystemPersist, SwapExchangesPlaces) {
    Expect("bind add --id 9 -p scsi:3 -t " + kArrayA, 0, "done done");
    const std::string swap = "bind swap --yes -p scsi:3 -t " + kArrayA + " --with " + kArrayB;
    EXPECT_EQ(0, Expect(swap, 0)["exit"]);
    for (int start = 0; start < 2; ++start) {
        EXPECT_EQ(9, Target("scsi:3", kArrayB)["target"]) << start;
        EXPECT_EQ(true, Target("scsi:3", kArrayB)["bound_live"]) << start;
        EXPECT_NE(9, Target("scsi:3", kArrayA)["target"]) << start;
        Restart();
    }
    Expect("bind swap --yes -p scsi:3 -t 0:77 --with " + kArrayB, 3);
    Expect("bind swap --yes -p scsi:3 -t " + kArrayB + " --with " + kArrayB, 2);
}

// Store and driver agree after a swap, whichever of the two targets was bound before, and where.
TEST_F(SystemPersist, SwapKeepsStoreAndDriverTheSame) {
    const std::string a = std::string(" -p scsi:3 -t ") + kArrayA;
    const std::string b = std::string(" -p scsi:3 -t ") + kArrayB;
    const std::string swap = "bind swap --yes" + a + " --with " + kArrayB;
    const struct {
        std::vector<std::string> before;
        const char* outcomes;
    } kCases[] = {
        {{}, "unchanged done"},
        {{"bind add --id 9" + a}, "done done done"},
        {{"bind add --id 9" + b}, "done done done"},
        {{"bind add --id 9 --store live" + a}, "done done done"},
        {{"bind add --id 9 --store registry" + a}, "done done done done"},
        {{"bind add --id 9" + a, "bind add --id 8 --flags 3" + b}, "done done"},
        {{"bind add --id 9 --store registry" + a, "bind add --id 8 --store live" + b},
         "done done done"},
    };
    for (const auto& one : kCases) {
        SCOPED_TRACE(testing::PrintToString(one.before));
        Wipe();
        Restart();
        for (const std::string& command : one.before) {
            Expect(command, 0);
        }
        const json wasA = Target("scsi:3", kArrayA)["target"];
        const json wasB = Target("scsi:3", kArrayB)["target"];
        Expect(swap, 0, one.outcomes);
        const json listed = Document("bind list -p scsi:3")["result"]["bindings"];
        EXPECT_EQ(one.before.empty() ? 0u : 2u, listed.size()) << listed.dump();
        for (const json& row : listed) {
            EXPECT_EQ(row["stored_target"], row["live_target"]) << row.dump();
            EXPECT_EQ(row["stored_flags"], row["live_flags"]) << row.dump();
        }
        for (int start = 0; start < (one.before.empty() ? 1 : 2); ++start) {
            EXPECT_EQ(wasA, Target("scsi:3", kArrayB)["target"]) << start;
            EXPECT_EQ(wasB, Target("scsi:3", kArrayA)["target"]) << start;
            Restart();
        }
    }
    // What the driver refuses leaves the store as it was.
    const Bytes stored = StoredBytes(kPort0, "Data");
    Fault("scsi:3 --code SwapTargets --do status 23");
    Expect(swap, 11, "unchanged failed");
    EXPECT_EQ(stored, StoredBytes(kPort0, "Data"));
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    Expect(swap + " --dry-run", 0, "planned planned");
    EXPECT_EQ(stored, StoredBytes(kPort0, "Data"));
    // A new target that nobody has cannot have the place; one that is there takes that of a lost
    // one.
    Expect("bind swap --yes" + a + " --with 5000000000000001 --node 5100000000000001", 11,
           "unchanged failed");
    EXPECT_EQ(stored, StoredBytes(kPort0, "Data"));
    const json place = Target("scsi:3", kArrayA)["target"];
    ASSERT_EQ(0u, Vxemu(std::string("target set ") + kArrayA + " present=no").exit);
    Expect(swap, 0, "done done");
    EXPECT_EQ(place, Target("scsi:3", kArrayB)["target"]);
    Restart();  // no driver has ever heard of the name that is stored now
    Expect(
        "bind add --id 40 --store registry -p scsi:3 -t 5000000000000001 --node 5100000000000001",
        0);
    Expect("bind swap --yes -p scsi:3 -t 0:40 --with " + std::string(kArrayA), 0, "done done");
    EXPECT_EQ(40, Target("scsi:3", kArrayA)["target"]);
}

TEST_F(SystemPersist, AddressesAreTheDriversFirst) {
    const auto told = [](const json& document, const char* text) {
        return document["messages"].dump().find(text) != std::string::npos;
    };
    Expect(std::string("bind add --id 9 --store registry -p scsi:3 -t ") + kArrayA, 0);
    json document = Expect("lunmask deny 1 --dry-run --store registry -p scsi:3 -t 0:9", 0);
    EXPECT_TRUE(told(document, "0:9 is target 2b:00:02:45:4d:00:01:00, as stored"));
    Expect(std::string("bind add --id 1 --store registry -p scsi:3 -t ") + kArrayA, 0);
    document = Expect("lunmask deny 1 --dry-run --store registry -p scsi:3 -t 0:1", 0);
    EXPECT_TRUE(told(document,
                     "0:1 is target 2b:00:02:45:4d:00:02:00, as the driver has it now; "
                     "in the store it is 2b:00:02:45:4d:00:01:00"));
    EXPECT_EQ("2b0002454d000200", document["result"]["steps"][0]["target_wwn"]);

    ASSERT_EQ(0u, Vxemu("link scsi:3 down").exit);
    for (const char* command : {"scsi inquiry -t 0:0", "fc echo -t id:0x020100", "bind add -t 0:0",
                                "lunmask deny 1 --yes --store live -t 0:1"}) {
        document = Document(std::string(command) + " -p scsi:3");
        EXPECT_EQ(3, document["exit"]) << command;
        EXPECT_TRUE(told(document, "the link is down")) << document["messages"].dump();
    }
    EXPECT_TRUE(told(Document("target list -p scsi:3"), "the link is down"));
    EXPECT_TRUE(told(Document("fc names -p scsi:3"), "the link is down"));
    ASSERT_EQ(0u, Vxemu("link scsi:3 up").exit);
}

TEST_F(SystemPersist, UnknownTargetIsAddedByItsNames) {
    for (const std::string port : {"scsi:6", "scsi:9"}) {
        Restart();  // the emulated fabric has each address once, whichever port added it
        const std::string suffix = port == "scsi:6" ? "6" : "9";
        const std::string target = "500000000000000" + suffix;
        const std::string add = "bind add -p " + port + " -t " + target;
        Expect(add, 3);
        Expect(add + " --node 510000000000000" + suffix, 2);  // no target ID
        // Nobody has the name: the binding waits in the store, and no target comes to be.
        const std::string named = add + " --id 60 --node 510000000000000" + suffix;
        Expect(named + " --store live", 3, "failed");
        Expect(named, 0, "done pending");
        EXPECT_EQ(json(), Target(port, target)) << port;
        Expect(std::string("bind add --id 60 -p ") + port + " -t " + kArrayA, 8);
        ASSERT_EQ(0u, Vxemu("target add " + target).exit);
        Expect("bind apply --yes -p " + port, 0, port == "scsi:6" ? "done" : "pending");
        EXPECT_EQ(port == "scsi:6" ? json(60) : json(5), Target(port, target)["target"]) << port;
    }
}

TEST_F(SystemPersist, ExportWipeImportGivesTheSameBytes) {
    Expect("bind add --id 9 --lun-base 3 -p scsi:3 -t " + kArrayA, 0);
    Expect(
        "bind add --id 40 --store registry --node 5000000000000002 -p scsi:3 -t "
        "wwn:5000000000000001",
        0, "done");
    Expect("bind remove -t 0:9 -p scsi:3", 0);  // leaves a hole
    Expect("lunmask deny 2,256-300 --yes -p scsi:3 -t " + kArrayB, 0);
    const Bytes data = StoredBytes(kPort0, "Data");
    const Bytes luns = StoredBytes(kPort0, "LunData");
    ASSERT_EQ(8224u, data.size());
    ASSERT_EQ(32u + 2080, luns.size());

    const std::string bindings = support::ScratchPath(".bindings.json");
    const std::string masks = support::ScratchPath(".masks.json");
    Expect("bind export -p scsi:3 \"" + bindings + "\"", 0);
    Expect("lunmask export -p scsi:3 \"" + masks + "\"", 0);
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    for (const auto& [path, schema] :
         {std::pair{bindings, "vxmgr.bindings.json"}, {masks, "vxmgr.lun_masks.json"}}) {
        const json document = json::Parse(support::TextOfFile(path));
        EXPECT_EQ(std::vector<std::string>(), schemas.Check(document, schema));
    }

    Wipe();
    Restart();
    Expect("bind import -p scsi:4 \"" + bindings + "\"", 8);
    Expect("bind import -p scsi:3 \"" + masks + "\"", 8);
    Expect("lunmask import --yes -p scsi:9 --as-port \"" + masks + "\"", 8);  // LUN 256
    EXPECT_EQ(Bytes(), StoredBytes(kPort0, "Data"));
    const json planned = Expect("bind import --dry-run -p scsi:3 \"" + bindings + "\"", 0);
    EXPECT_EQ(1u, planned["result"]["differences"].size());
    EXPECT_EQ(Bytes(), StoredBytes(kPort0, "Data"));

    Expect("bind import -p scsi:3 \"" + bindings + "\"", 0, "pending");
    Expect("lunmask import --yes -p scsi:3 \"" + masks + "\"", 0, "done");
    EXPECT_EQ(data, StoredBytes(kPort0, "Data"));
    EXPECT_EQ(luns, StoredBytes(kPort0, "LunData"));
    const json again = Expect("bind import -p scsi:3 --store registry \"" + bindings + "\"", 0);
    EXPECT_EQ(false, again["changed"]);
    DeleteFileA(bindings.c_str());
    DeleteFileA(masks.c_str());
}

TEST_F(SystemPersist, DamagedStoreIsToldAndMended) {
    Expect("bind add -p scsi:3 -t " + kArrayA, 0);
    const DWORD wrong = 1;
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_LOCAL_MACHINE, KeyOf("vxfc2", kPort0).c_str(),
                                             "Checksum", REG_DWORD, &wrong, sizeof wrong));
    const json listed = Expect("bind list -p scsi:3 --store registry", 0);
    EXPECT_TRUE(listed["result"]["bindings"].empty());
    EXPECT_TRUE(support::Has(listed["messages"].dump(), "damaged"));
    Expect("bind export -p scsi:3 nowhere.json", 3);
    Expect("bind add -p scsi:3 --store registry -t " + kArrayB, 0, "done");
    EXPECT_EQ(1u, Document("bind list -p scsi:3 --store registry")["result"]["bindings"].size());
}

TEST_F(SystemPersist, CleanTakesAbsentPortsAlone) {
    Expect("bind add -p scsi:3 -t " + kArrayA, 0);
    const std::string absent = KeyOf("vxfc2", kNobody);
    const Bytes data = StoredBytes(kPort0, "Data");
    const DWORD length = static_cast<DWORD>(data.size());
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_LOCAL_MACHINE, absent.c_str(), "Data", REG_BINARY,
                                             data.data(), length));
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_LOCAL_MACHINE, absent.c_str(), "Length",
                                             REG_DWORD, &length, sizeof length));
    EXPECT_EQ(2u, Document("bind stores")["result"]["ports"].size());
    Expect("bind clean", 2);  // asks
    Expect("bind clean --dry-run", 0);
    Expect("bind clean --yes 21:00:02:45:4d:00:01:00", 8);
    // A port whose name cannot be read could be the absent one.
    Fault("scsi:4 --code PortPropertiesV2 --do status 23");
    Expect("bind clean --yes", 8);
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    EXPECT_EQ(data, StoredBytes(kNobody, "Data"));

    const json cleaned = Expect("bind clean --yes", 0)["result"]["ports"];
    ASSERT_EQ(1u, cleaned.size());
    EXPECT_EQ("210002454d00ffff", cleaned[0]["port_wwn"]);
    EXPECT_EQ(Bytes(), StoredBytes(kNobody, "Data"));
    EXPECT_EQ(data, StoredBytes(kPort0, "Data"));
    EXPECT_EQ(false, Expect("bind clean --yes", 0)["changed"]);
}

TEST_F(SystemPersist, FailingRequestsAreTold) {
    const std::string on = " -p scsi:3 -t " + kArrayA;
    Fault("scsi:3 --code SetTargetLunMaskFc --do status 23");
    const json failed = Expect("lunmask deny 1 --yes" + on, 11, "done failed");
    EXPECT_EQ(true, failed["changed"]);
    Fault("scsi:3 --code PortDatabase --do status 23");
    const json listed = Expect("target list", 11);
    int failures = 0;
    for (const json& row : listed["result"]["targets"]) {
        failures += row["status"].is_null() ? 0 : 1;
    }
    EXPECT_EQ(1, failures);
    EXPECT_LT(3u, listed["result"]["targets"].size());
}

}  // namespace
}  // namespace system_test
