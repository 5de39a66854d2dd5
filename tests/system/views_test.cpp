// What people look at: the tree of what hangs on what, and the ports as they are watched.
#include <algorithm>
#include <chrono>
#include <sstream>

#include "emulated_driver.h"

namespace system_test {
namespace {

using std::chrono::steady_clock;
using support::Has;

class SystemTree : public EmulatedDriver {
  protected:
    static inline const std::string kArrayA = "2b:00:02:45:4d:00:01:00";

    json Adapters(const std::string& arguments, int exit = 0) {
        const json document = Document("tree " + arguments);
        EXPECT_EQ(exit, document["exit"]) << arguments;
        return document["result"]["adapters"];
    }
    // The ports of all adapters, in their order.
    static std::vector<json> PortsOf(const json& adapters) {
        std::vector<json> ports;
        for (const json& adapter : adapters) {
            for (const json& port : adapter["ports"]) {
                ports.push_back(port);
            }
        }
        return ports;
    }
    static size_t Lines(const std::string& text) {
        return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    }
};

// The same units as the map has, in every form.
TEST_F(SystemTree, HasEveryUnitOnce) {
    std::vector<json> units;
    const json adapters = Adapters("");
    ASSERT_EQ(3u, adapters.size());
    EXPECT_EQ(2u, adapters[0]["ports"].size());
    EXPECT_EQ("EMU7740A0001", adapters[0]["adapter_serial"]);
    size_t ends = 0;
    for (const json& port : PortsOf(adapters)) {
        EXPECT_EQ("online", port["state"]);
        EXPECT_TRUE(port["status"].is_null());
        for (const json& target : port["targets"]) {
            EXPECT_EQ(true, target["present"]);
            ends += target["luns"].size() == 0 ? 1 : 0;
            for (const json& unit : target["luns"]) {
                units.push_back(unit);
                EXPECT_EQ(unit["lun"] == 256, unit["disk"].is_null()) << unit.dump();
            }
        }
    }
    const json map = Document("map target all");
    const json rows = map["result"]["units"];
    ASSERT_EQ(rows.size(), units.size());
    for (size_t i = 0; i < units.size(); ++i) {
        EXPECT_EQ(rows[i]["lun"], units[i]["lun"]);
        EXPECT_EQ(rows[i]["device"], units[i]["device"]);
    }
    EXPECT_EQ(1u, ends) << "a target that reports no LUNs";
    EXPECT_EQ(units.size() + ends + 1, Lines(Vxmgr("-o csv tree").out));
    EXPECT_EQ(units.size() + ends + 1, Lines(Vxmgr("-o table tree").out));
    // To a file or another program it is ASCII.
    const std::string text = Vxmgr("tree").out;
    EXPECT_TRUE(Has(text, "|- Port 0  online  32 Gbit/s  scsi:3  21:00:02:45:4d:00:01:00\n|  |- " +
                              kArrayA + "  reached  Emulated array A\n|  |  |- LUN 0  Physical"))
        << text;

    EXPECT_EQ(1u, Adapters("-p scsi:4").size());
    EXPECT_EQ(1u, PortsOf(Adapters("-p scsi:4")).size());
    const json alone = Adapters("-a EMU7740A0001 -t " + kArrayA);
    ASSERT_EQ(2u, PortsOf(alone).size());
    EXPECT_EQ(1u, PortsOf(alone)[0]["targets"].size());
    // The old adapter alone knows this one.
    EXPECT_EQ(1u, Adapters("-t 2b:00:02:45:4d:00:04:00").size());
    Adapters("-t 2b:00:02:45:4d:00:77:00", 3);
    Adapters("-t nonsense", 2);
    EXPECT_FALSE(Has(Vxmgr("tree --redact").out, "EMU7740A0001"));
    EXPECT_FALSE(Has(Vxmgr("tree --redact --json").out, "210002454d000100"));
}

TEST_F(SystemTree, NamesOfTheFabricDoNothing) {
    struct Case {
        const char* name;
        const char* csv;
    };
    for (const Case& one : {Case{"=cmd|x", ",'=cmd|x,"}, Case{"<script>", ",<script>,"},
                            Case{"a,b", ",\"a,b\","}, Case{"@SUM(1)", ",'@SUM(1),"}}) {
        ASSERT_EQ(0u, Vxemu("target set " + kArrayA + " \"symbolic_name=" + one.name + "\"").exit);
        EXPECT_EQ(one.name, PortsOf(Adapters("-p scsi:3"))[0]["targets"][0]["symbolic_name"]);
        EXPECT_TRUE(Has(Vxmgr("-o csv tree -p scsi:3").out, one.csv)) << one.csv;
        EXPECT_TRUE(Has(Vxmgr("tree -p scsi:3").out, std::string("  reached  ") + one.name));
    }
    StopDriver();
    StartDriver();
}

TEST_F(SystemTree, PortsThatDoNotAnswerKeepTheirNode) {
    Fault("scsi:4 --do hang 12000");
    const auto start = steady_clock::now();
    const auto ports = PortsOf(Adapters("--timeout 1", 11));
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(12));
    ASSERT_EQ(4u, ports.size());
    for (const json& port : ports) {
        const bool silent = port["scsi_port"] == 4;
        EXPECT_EQ(silent ? json("0x20000091") : json(), port["status"]);
        EXPECT_EQ(!silent, port["answers"]);
        EXPECT_EQ(silent, port["targets"].size() == 0);
    }
    EXPECT_TRUE(Has(Vxmgr("--timeout 1 tree").out, "Port 1  not answering"));
}

// The adapter goes while its port is asked: the others stay, the command ends.
TEST_F(SystemTree, AnAdapterThatIsPulledIsToldOf) {
    Fault("scsi:6 --code PortDatabase --do hang 1500");
    support::Program tree("vxmgr.exe", "--json tree");
    EXPECT_TRUE(PortReaches("scsi:6", "faults", 1));
    EXPECT_EQ(0u, Vxemu("adapter remove EMU7404A0002").exit);
    const json document = DocumentOf("tree", tree.Wait());
    EXPECT_EQ(11, document["exit"]);
    const auto ports = PortsOf(document["result"]["adapters"]);
    ASSERT_EQ(4u, ports.size());
    EXPECT_FALSE(ports[2]["status"].is_null());
    EXPECT_EQ(3u, ports[0]["targets"].size());
    EXPECT_EQ(2u, Adapters("").size());
    StopDriver();
    StartDriver();
}

class SystemTop : public EmulatedDriver {
  protected:
    static std::vector<json> RowsIn(const support::Ended& ended) {
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
        return rows;
    }
};

TEST_F(SystemTop, RowsTellWhatHappensInAnInterval) {
    support::Program top("vxmgr.exe", "top -p scsi:3 --interval 1 --count 3 -o jsonl");
    for (int i = 0; i < 100 && top.Out().empty(); ++i) {
        Sleep(50);
    }
    ASSERT_EQ(0u, Vxemu("stats bump scsi:3 invalid_crcs 5").exit);
    const support::Ended ended = top.Wait();
    EXPECT_EQ(0u, ended.exit) << ended.err;
    const auto rows = RowsIn(ended);
    ASSERT_EQ(3u, rows.size());
    int64_t errors = 0;
    for (const json& row : rows) {
        EXPECT_EQ(3, row["scsi_port"]);
        EXPECT_TRUE(row["temperature_c"].is_string());
        EXPECT_GT(row["rx_frames_per_s"].number(), 0);
        EXPECT_GT(row["tx_bytes_per_s"].number(), 0);
        errors += row["new_errors"].number();
        EXPECT_EQ(errors, row["errors"]);
    }
    EXPECT_EQ(5, errors);
}

TEST_F(SystemTop, EveryIntervalIsATable) {
    const support::Ended ended = Vxmgr("top --interval 1 --count 2");
    EXPECT_EQ(0u, ended.exit) << ended.err;
    const size_t first = ended.out.find("TIME");
    const size_t second = ended.out.find("\n\nTIME", first);
    EXPECT_EQ(0u, first);
    ASSERT_NE(std::string::npos, second) << ended.out;
    for (const char* port : {"    0     3  ", "    3     9  "}) {
        EXPECT_LT(ended.out.find(port), second) << ended.out;
        EXPECT_GT(ended.out.rfind(port), second) << ended.out;
    }
    EXPECT_EQ(2, ExitOf("top --interval 0"));
    EXPECT_EQ(3, ExitOf("top -p scsi:77"));
}

TEST_F(SystemTop, PortsThatAreLostLeaveTheOthers) {
    Fault("scsi:4 --code LinkStatistics --do hang 9000");
    const support::Ended ended = Vxmgr("top --timeout 3 --interval 1 --count 1 -o jsonl");
    EXPECT_EQ(11u, ended.exit) << ended.err;
    EXPECT_EQ(3u, RowsIn(ended).size());

    support::Program top("vxmgr.exe", "top -p scsi:3 --interval 1 -o jsonl");
    for (int i = 0; i < 100 && top.Out().empty(); ++i) {
        Sleep(50);
    }
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    StopDriver();
    const support::Ended lost = top.Wait();
    EXPECT_EQ(3u, lost.exit) << lost.out;
    EXPECT_TRUE(Has(lost.out, "WINDOWS_1167")) << lost.out;
    StartDriver();
}

}  // namespace
}  // namespace system_test
