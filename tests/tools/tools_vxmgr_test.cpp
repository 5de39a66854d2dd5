// vxmgr.exe as a user runs it. What is tested here holds on any machine, with adapters or without:
// every end of a command is one valid document, with the exit code that it names.
#ifdef _WIN32  // the native build of the tests has no vxmgr.exe
#include <gtest/gtest.h>
#include <windows.h>

#include "support/has.h"
#include "support/json_schema.h"
#include "support/program.h"

namespace {

using json = support::Document;

using support::Ended;

Ended RunVxmgr(const std::string& arguments) {
    return support::Run("vxmgr.exe", arguments);
}

class VxmgrTest : public testing::Test {
  protected:
    // The one document on stdout, checked against the schemas and the process's exit code.
    json Document(const std::string& arguments, const Ended& ended) {
        const json document = json::Parse(ended.out);
        EXPECT_TRUE(document.is_object()) << arguments << "\n" << ended.out;
        EXPECT_EQ(ended.err, "") << arguments;
        if (!document.is_object()) {
            return {};
        }
        for (const std::string& error : schemas_.CheckEnvelope(document)) {
            ADD_FAILURE() << arguments << ": " << error;
        }
        EXPECT_EQ(document["exit"], ended.exit) << arguments;
        return document;
    }

    json Document(const std::string& arguments) { return Document(arguments, RunVxmgr(arguments)); }

    support::JsonSchemas schemas_{VXMGMT_SOURCE_FOLDER "/docs/schemas/"};
};

TEST_F(VxmgrTest, EveryEndIsOneDocument) {
    // No machine has an adapter of this serial number.
    const char* const kNone = " -p serial:NO-SUCH-SERIAL";
    const struct {
        std::string arguments;
        const char* schema;
        int exit;
    } kRows[] = {
        {"--json", "vxmgr.usage", 2},
        {"nonsense --json", "vxmgr.usage", 2},
        {"port list --bogus -o json", "vxmgr.port.list", 2},
        {"port list --json -o table", "vxmgr.port.list", 2},
        {"--help --json", "vxmgr.help", 0},
        {"driver param set --help --json", "vxmgr.help", 0},
        {"version --json", "vxmgr.version", 0},
        {"version --json --timeout 30", "vxmgr.version", 0},
        {"explain 0x20000067 --json", "vxmgr.explain", 0},
        {"explain device_busy --json", "vxmgr.explain", 0},
        {"explain 170 --json", "vxmgr.explain", 0},
        {"explain exit --json", "vxmgr.explain", 0},
        {"explain exit 12 --json", "vxmgr.explain", 3},
        {"explain 4294967296 --json", "vxmgr.explain", 3},
        {"explain exit 1 2 --json", "vxmgr.explain", 2},
        {"help --json", "vxmgr.help", 0},
        {"help port stats --json", "vxmgr.help", 0},
        {"help --markdown --json", "vxmgr.help", 0},
        {"help port stts --json", "vxmgr.help", 2},
        {"schema vxmgr.explain --json", "vxmgr.schema", 0},
        {"schema vxmgr.nothing --json", "vxmgr.schema", 3},
        {"schema envelope --folder x --json", "vxmgr.schema", 2},
        {"completion bash --json", "vxmgr.completion", 0},
        {"completion csh --json", "vxmgr.completion", 2},
        {"port list --json -p wwn:21:00", "vxmgr.port.list", 2},
        {"port show --json -p index:64", "vxmgr.port.show", 3},
        {std::string("adapter show --json") + kNone, "vxmgr.adapter.show", 3},
        {std::string("event watch --json") + kNone, "vxmgr.event.watch", 3},
        {std::string("event test --json") + kNone, "vxmgr.event.test", 3},
        {std::string("smartsan get --json") + kNone, "vxmgr.smartsan.get", 3},
        {std::string("driver param get X --json") + kNone, "vxmgr.driver.param.get", 3},
        {std::string("driver param set X=1 --json") + kNone, "vxmgr.driver.param.set", 3},
        {"driver param set =1 --json", "vxmgr.driver.param.set", 2},
        {std::string("scsi inquiry -t 0:0 --json") + kNone, "vxmgr.scsi.inquiry", 3},
        {std::string("scsi inquiry --json") + kNone, "vxmgr.scsi.inquiry", 2},
        {"scsi inquiry -t 0:0 --page 256 --json", "vxmgr.scsi.inquiry", 2},
        {"scsi capacity -t id:0x1000000 --json", "vxmgr.scsi.capacity", 2},
        {"scsi luns -t 0 --json", "vxmgr.scsi.luns", 2},
        {"scsi raw 12 0 -t 0:0 --json", "vxmgr.scsi.raw", 2},
        {"scsi raw 12 -t 0:0 --out-file x --json", "vxmgr.scsi.raw", 2},
        {"scsi raw 2a -t 0:0 --data-file no-such-file --json", "vxmgr.scsi.raw", 3},
        {std::string("fc names --json") + kNone, "vxmgr.fc.names", 3},
        {std::string("fc rnid --json") + kNone, "vxmgr.fc.rnid", 3},
        {"fc rnid -t id:1 --json", "vxmgr.fc.rnid", 2},
        {"fc rls -t 0:0 --json", "vxmgr.fc.rls", 2},
        {"fc echo -t id:1 --size 253 --json", "vxmgr.fc.echo", 2},
        {"fc ct no-such-file --json", "vxmgr.fc.ct", 3},
        {"fc els no-such-file -t id:1 --json", "vxmgr.fc.els", 3},
        {std::string("target list --json") + kNone, "vxmgr.target.list", 3},
        {"target show -t id: --json", "vxmgr.target.show", 2},
        {std::string("target luns --json") + kNone, "vxmgr.target.luns", 3},
        {std::string("target speed get --json") + kNone, "vxmgr.target.speed", 3},
        {"target speed set 16 --json", "vxmgr.target.speed", 2},
        {"target speed set 3 -t 0:0 --json", "vxmgr.target.speed", 2},
        {std::string("qos get --json") + kNone, "vxmgr.qos", 3},
        {"qos set highest -t 0:0 --json", "vxmgr.qos", 2},
        {"qos set high --luns 0-256 -t 0:0 --json", "vxmgr.qos", 4},
        {std::string("npiv list --json") + kNone, "vxmgr.npiv.list", 3},
        {std::string("nvme list --json") + kNone, "vxmgr.nvme.list", 3},
        {std::string("sfp serdes --json") + kNone, "vxmgr.sfp.serdes", 3},
        {std::string("diag register read serdes 1 --json") + kNone, "vxmgr.diag.register", 3},
        {"diag register read retimer:128 1 --json", "vxmgr.diag.register", 2},
        {"diag register write serdes 1 --json", "vxmgr.diag.register", 2},
        {std::string("port stats --json") + kNone, "vxmgr.port.stats", 3},
        {std::string("port stats --delta --json") + kNone, "vxmgr.port.stats", 3},
        {std::string("port stats clear --json") + kNone, "vxmgr.port.stats.clear", 3},
        {"port stats clear --count 1 --json", "vxmgr.port.stats.clear", 2},
        {"port stats --interval 0 --json", "vxmgr.port.stats", 2},
        {std::string("map target all --json") + kNone, "vxmgr.map", 3},
        {"map target --json", "vxmgr.map", 2},
        {"map target 0 --json", "vxmgr.map", 2},
        {"map disk C: --json", "vxmgr.map", 2},
        {"map volume \\\\?\\Volume{00000000-0000-0000-0000-000000000000}\\ --json", "vxmgr.map", 3},
        {std::string("hbaapi list --json") + kNone, "vxmgr.hbaapi.list", 3},
        {std::string("hbaapi show --json") + kNone, "vxmgr.hbaapi.show", 3},
        {std::string("bind list --json") + kNone, "vxmgr.bind.list", 3},
        {"bind list --store disk --json", "vxmgr.bind.list", 2},
        {"bind add -t 0:0 --id 256 --json", "vxmgr.bind.change", 2},
        {std::string("bind add -t 0:0 --json") + kNone, "vxmgr.bind.change", 3},
        {"bind remove -t 0:0 --store live --json", "vxmgr.bind.change", 4},
        {"bind swap -t 0:0 --json", "vxmgr.bind.change", 2},
        {std::string("bind apply --json") + kNone, "vxmgr.bind.change", 3},
        {std::string("bind export FILE --json") + kNone, "vxmgr.bind.export", 3},
        {"bind export FILE --store both --json", "vxmgr.bind.export", 2},
        {"bind import no-such-file --json", "vxmgr.bind.import", 3},
        {"bind clean 21:00 --json", "vxmgr.bind.clean", 2},
        {std::string("lunmask show --json") + kNone, "vxmgr.lunmask.show", 3},
        {"lunmask allow 2048 -t 0:0 --json", "vxmgr.lunmask.change", 2},
        {"lunmask deny 3-1 -t 0:0 --json", "vxmgr.lunmask.change", 2},
        {std::string("lunmask deny 0 -t 0:0 --json") + kNone, "vxmgr.lunmask.change", 3},
        {std::string("lunmask export FILE --json") + kNone, "vxmgr.lunmask.export", 3},
        {"lunmask import no-such-file --json", "vxmgr.lunmask.import", 3},
        {std::string("dump list --json") + kNone, "vxmgr.dump.list", 3},
        {std::string("dump take --json") + kNone, "vxmgr.dump.take", 3},
        {"dump save all FILE --json", "vxmgr.dump.save", 2},
        {"dump save mpi FILE --text --json", "vxmgr.dump.save", 2},
        {std::string("dump save fc FILE --json") + kNone, "vxmgr.dump.save", 3},
        {std::string("diag run --json") + kNone, "vxmgr.diag.run", 3},
        {"diag run -t id: --json", "vxmgr.diag.run", 2},
        {std::string("diag loopback --json") + kNone, "vxmgr.diag.loopback", 3},
        {std::string("diag dport --json") + kNone, "vxmgr.diag.dport", 3},
        {std::string("diag mailbox 1 --json") + kNone, "vxmgr.diag.mailbox", 3},
        {"diag mailbox 0x10000 --json", "vxmgr.diag.mailbox", 2},
    };
    for (const auto& row : kRows) {
        const json document = Document(row.arguments);
        EXPECT_EQ(document["schema"], row.schema) << row.arguments;
        EXPECT_EQ(document["exit"], row.exit) << row.arguments;
        EXPECT_EQ(document["messages"].empty(), row.exit == 0) << row.arguments;
        EXPECT_EQ(document["library"], "1.28.0.197") << row.arguments;
    }
}

TEST_F(VxmgrTest, ListsAreDocumentsWhateverTheMachineHas) {
    for (const char* arguments :
         {"adapter list",   "adapter show", "port list",    "port show",
          "driver show",    "target list",  "target show",  "target luns",
          "bind list",      "bind stores",  "lunmask show", "port stats",
          "map target all", "hbaapi list",  "hbaapi show",  "target speed get",
          "qos get",        "npiv list",    "nvme list",    "nvme list --namespaces",
          "sfp serdes"}) {
        const json document = Document(std::string(arguments) + " --json");
        EXPECT_TRUE(document["result"].is_object()) << arguments;

        const Ended lines = RunVxmgr(std::string(arguments) + " -o jsonl");
        std::istringstream stream(lines.out);
        std::vector<json> parsed;
        for (std::string line; std::getline(stream, line);) {
            parsed.push_back(json::Parse(line));
        }
        ASSERT_FALSE(parsed.empty()) << arguments;
        const json last = parsed.back();
        EXPECT_EQ(last["rows"], parsed.size() - 1) << arguments;
        for (const std::string& error : schemas_.CheckEnvelope(last)) {
            ADD_FAILURE() << arguments << ": " << error;
        }
        parsed.pop_back();
        for (const json& row : parsed) {
            for (const std::string& error : schemas_.CheckRow(row)) {
                ADD_FAILURE() << arguments << ": " << error;
            }
        }
        const Ended csv = RunVxmgr(std::string(arguments) + " -o csv");
        EXPECT_TRUE(support::Has(csv.out, "\r\n")) << "no header: " << arguments;
    }
}

TEST_F(VxmgrTest, ResultAndDiagnosticsTakeTheirOwnWays) {
    const Ended text = RunVxmgr("version --no-color");
    EXPECT_EQ(text.exit, 0u);
    EXPECT_EQ(text.out, "Tool     vxmgr\nVersion  1.0.0\nLibrary  1.28.0.197\n");
    EXPECT_EQ(text.err, "");
    const Ended wrong = RunVxmgr("nonsense");
    EXPECT_EQ(wrong.exit, 2u);
    EXPECT_EQ(wrong.out, "");
    EXPECT_TRUE(support::Has(wrong.err, "nonsense"));

    const std::string file = support::ScratchPath(".json");
    const Ended filed = RunVxmgr("version --json --out \"" + file + "\"");
    EXPECT_EQ(filed.exit, 0u);
    EXPECT_EQ(filed.out, "");
    EXPECT_EQ(Document("version --out", {0, support::TextOfFile(file), filed.err})["schema"],
              "vxmgr.version");
    DeleteFileA(file.c_str());

    // The result has no place to go: said on stdout, before the command did anything.
    const json lost = Document("version --json --out C:\\no\\such\\folder\\file");
    EXPECT_EQ(lost["schema"], "vxmgr.error");
    EXPECT_EQ(lost["exit"], 3);
}

TEST_F(VxmgrTest, BothToolsDescribeThemselves) {
    for (const std::string program : {"vxmgr.exe", "vxemu.exe"}) {
        // Fails when an example does not parse.
        const Ended reference = support::Run(program, "help --markdown");
        EXPECT_EQ(reference.exit, 0u) << reference.err;
        EXPECT_NE(reference.out.find("Example: `"), std::string::npos);
        EXPECT_EQ(support::Run(program, "schema envelope").out,
                  support::TextOfFile(VXMGMT_SOURCE_FOLDER "/docs/schemas/envelope.json"));
        const Ended mistyped = support::Run(program, "exlpain 5");
        EXPECT_EQ(mistyped.exit, 2u);
        EXPECT_NE(mistyped.err.find("did you mean `explain`?"), std::string::npos) << mistyped.err;
    }
}

TEST_F(VxmgrTest, RedactedErrorsNameNobody) {
    for (const char* arguments : {"port list --redact --json -p serial:EMU7740A0001X",
                                  "port list --redact --json -p EMU7740A0001X",
                                  "port list --redact --json --port=EMU7740A0001X",
                                  "port list --redact --json --bogus -pEMU7740A0001X",
                                  "port list --redact --json --confirm EMU7740A0001X -p 63"}) {
        const Ended ended = RunVxmgr(arguments);
        EXPECT_EQ(ended.out.find("0001X"), std::string::npos) << arguments << "\n" << ended.out;
        Document(arguments, ended);
    }
}

}  // namespace
#endif  // _WIN32
