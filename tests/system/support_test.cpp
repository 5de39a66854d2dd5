// Commands in a batch, reports and files for support, with ports that do not answer.
#include <algorithm>

#include "emulated_driver.h"

namespace system_test {
namespace {

class SystemSupport : public FreshDriver {
  protected:
    std::string Batch(const std::string& lines) {
        std::ofstream(File("batch.txt"), std::ios::binary) << lines;
        return "batch" + Quoted("batch.txt");
    }
};

TEST_F(SystemSupport, ABatchRunsItsLinesInOneProcess) {
    const std::string lines =
        "# a comment\r\nversion\r\nvxmgr port list -p \"scsi:3\"\nport show -p scsi:77\nadapter "
        "list\n";
    const json stopped = Document(Batch(lines));
    EXPECT_EQ(3, stopped["exit"]);
    ASSERT_EQ(3u, stopped["result"]["commands"].size());
    EXPECT_EQ(1, stopped["result"]["not_run"]);
    const json list = stopped["result"]["commands"][1];
    EXPECT_EQ(3, list["line"]);
    EXPECT_EQ("vxmgr.port.list", list["document"]["schema"].text());
    EXPECT_EQ(3, list["document"]["result"]["ports"][0]["scsi_port"]);

    const json all = Document(Batch(lines) + " --keep-going --redact");
    EXPECT_EQ(11, all["exit"]);
    const json commands = all["result"]["commands"];
    ASSERT_EQ(4u, commands.size());
    // The same name has the same mask in all documents, and another one another.
    const json adapters = commands[3]["document"]["result"]["adapters"];
    EXPECT_EQ(commands[1]["document"]["result"]["ports"][0]["adapter_serial"],
              adapters[0]["adapter_serial"]);
    EXPECT_FALSE(adapters[0]["adapter_serial"] == adapters[1]["adapter_serial"]);
    EXPECT_EQ(std::string::npos, all.dump().find("EMU7740A0001"));

    const support::Ended rows = Vxmgr(Batch(lines) + " --keep-going -o jsonl");
    EXPECT_EQ(5, std::ranges::count(rows.out, '\n'));
    const support::Ended text = Vxmgr(Batch("version\nport list -p scsi:3\n"));
    EXPECT_TRUE(support::Has(text.out, "> port list -p scsi:3\n"));
    EXPECT_TRUE(support::Has(text.err, "2 commands: 2 succeeded"));
}

TEST_F(SystemSupport, ABatchWithAWrongLineRunsNothing) {
    const json wrong = Document(
        Batch("adapter locate on -a EMU7740A0001 --for 60\nport lisst\nnvram set x=1 -p scsi:3\n"
              "port list -o csv\nbatch other.txt\nport list \"x\n"));
    EXPECT_EQ(2, wrong["exit"]);
    EXPECT_EQ(6u, wrong["messages"].size());
    for (const char* object : {"line 2", "line 3", "line 4", "line 5", "line 6"}) {
        EXPECT_TRUE(support::Has(wrong["messages"].dump(), object));
    }
    EXPECT_EQ(false, Document("adapter locate show")["result"]["beacons"][0]["on"]);
    EXPECT_EQ(0, ExitOf(Batch("port list\n") + " --dry-run"));
    // A change inside is one of the batch.
    const json changed = Document(Batch("adapter locate on -a EMU7740A0001 --for 60\n"));
    EXPECT_EQ(true, changed["changed"]);
    EXPECT_EQ(3, ExitOf("batch" + Quoted("none.txt")));
}

TEST_F(SystemSupport, AReportShowsThePorts) {
    const json made = Document("report --interval 1 --count 2" + Quoted("r.html"));
    EXPECT_EQ(0, made["exit"]);
    const std::string page = support::TextOfFile(File("r.html"));
    EXPECT_EQ(made["result"]["size"], page.size());
    for (const char* shown : {"21:01:02:45:4d:00:01:00", "EMU7404A0002", "id=\"samples\"",
                              "id=\"events\"", "id=\"code\"", "</html>"}) {
        EXPECT_NE(std::string::npos, page.find(shown)) << shown;
    }
    EXPECT_EQ(8, ExitOf("report" + Quoted("r.html")));
    EXPECT_EQ(page, support::TextOfFile(File("r.html")));
    EXPECT_EQ(0, ExitOf("report --redact --force" + Quoted("r.html")));
    EXPECT_EQ(std::string::npos, support::TextOfFile(File("r.html")).find("EMU7740A0001"));
    EXPECT_EQ(3, ExitOf("report" + Quoted("no/such/folder/r.html")));

    // A host without adapters has a page and a file, too.
    StopDriver();
    EXPECT_EQ(0, ExitOf("report --force" + Quoted("r.html")));
    EXPECT_EQ(0, ExitOf("collect" + Quoted("none.zip")));
    StartDriver();
}

TEST_F(SystemSupport, WhatDoesNotAnswerIsWaitedForOnce) {
    Fault("scsi:4 --do hang 12000");
    const ULONGLONG start = GetTickCount64();
    const json report = Document("--timeout 2 report" + Quoted("r.html"));
    EXPECT_EQ(11, report["exit"]);
    EXPECT_LT(GetTickCount64() - start, 12000u);
    EXPECT_NE(std::string::npos, support::TextOfFile(File("r.html")).find("Not answering"));
}

TEST_F(SystemSupport, ACollectionGoesOnWithoutAPort) {
    Fault("scsi:4 --do hang 12000");
    const json collected = Document("--timeout 2 collect" + Quoted("c.zip"));
    EXPECT_EQ(11, collected["exit"]);
    EXPECT_LT(30, collected["result"]["members"].number());
    EXPECT_TRUE(support::Has(collected["result"]["errors"].dump(), "is not answering"));
    EXPECT_EQ(collected["result"]["size"], std::filesystem::file_size(File("c.zip")));
    EXPECT_FALSE(std::filesystem::exists(File("c.zip.part")));
}

}  // namespace
}  // namespace system_test
