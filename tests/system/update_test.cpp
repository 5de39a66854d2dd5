// vxmgr's whole updates of the running driver's adapters: the plan, what is kept, what an update
// that ended in the middle leaves, and how it is brought back or finished.
#include "update_fixture.h"

namespace system_test {
namespace {

class SystemUpdate : public UpdateFixture {
  protected:
    static inline const Updated kAdapter = {"scsi:3", "EMU7740A0001", {7, 1}};
    static constexpr const char* kBoot = "007-boot.bin";
    static constexpr const char* kCode = "001-firmware.bin";

    void SetUp() override {
        UpdateFixture::SetUp();
        Forget(kAdapter.serial);
        files_ = Files(kAdapter, "9.20.00", "3.99");
        before_ = AllRegions("before");
    }
    void TearDown() override {
        UpdateFixture::TearDown();
        Forget(kAdapter.serial);
    }

    json Update(const std::string& what, const Updated& adapter = kAdapter) {
        return Document("fw update " + what + adapter.Sure());
    }
    json Restore(const std::string& from, const Updated& adapter = kAdapter) {
        return Document("fw restore " + from + adapter.Sure());
    }

    // What the regions hold now.
    Regions Now() { return AllRegions("now-" + std::to_string(++looks_)); }

    // Lets the power fail during a command, and come back.
    void Cut(const std::string& command, uint32_t bytes) {
        ASSERT_EQ(0u, Vxemu("flash power-fail scsi:3 --after-bytes " + std::to_string(bytes)).exit);
        EXPECT_EQ(1, Document(command + kAdapter.Sure())["exit"]);
        ASSERT_EQ(0u, Vxemu("reset scsi:3").exit);
    }

    fs::path Kept(const std::string& name) { return Journals(kAdapter.serial).back() / name; }

    // Replaces a text of the journal.
    void Edit(const std::string& from, const std::string& to) {
        std::string text = support::TextOfFile(Kept("journal.json").string());
        ASSERT_NE(std::string::npos, text.find(from)) << text;
        text.replace(text.find(from), from.size(), to);
        WriteFile(Kept("journal.json"), Data(text.begin(), text.end()));
    }

    std::string files_;
    Regions before_;
    int looks_ = 0;
};

TEST_F(SystemUpdate, PlanIsWhatIsDoneThen) {
    // Boot code goes first, however the files are given.
    const std::string files =
        files_.substr(files_.find(" \"", 3)) + files_.substr(0, files_.find(" \"", 3));
    json planned = Update(files + " --dry-run");
    EXPECT_EQ(0, planned["exit"]);
    EXPECT_EQ(false, planned["changed"]);
    const json plan = Only(planned);
    EXPECT_EQ("planned", plan["outcome"]);
    ASSERT_EQ(2u, plan["regions"].size());
    EXPECT_EQ(7, plan["regions"][0]["region"]);
    for (const json& region : plan["regions"]) {
        EXPECT_EQ("planned", region["outcome"]);
        EXPECT_EQ("ports", region["reset"]);
        EXPECT_EQ(false, region["power_fail_safe"]);
        EXPECT_TRUE(region["unsafe_because"].is_string());
    }
    EXPECT_EQ("9.12.01", plan["regions"][1]["running_version"]);
    EXPECT_EQ("9.20.00", plan["regions"][1]["image_version"]);
    EXPECT_TRUE(plan["estimated_seconds"].is_number());
    EXPECT_TRUE(support::Has(
        Only(Update(files + " --backup C:\\kept --allow-older --dry-run"))["command"].text(),
        " --allow-older --backup C:\\kept -a "));
    EXPECT_TRUE(Journals(kAdapter.serial).empty());
    EXPECT_TRUE(before_ == Now());

    // The command of the plan, with the consent that it leaves out.
    const std::string command = plan["command"].text();
    ASSERT_TRUE(command.starts_with("vxmgr fw update ")) << command;
    const support::Ended done = Vxmgr(command.substr(6) + " --yes --confirm EMU7740A0001 -o jsonl");
    EXPECT_EQ(0u, done.exit) << done.err;
    std::istringstream lines(done.out);
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    int64_t percent = 0;
    for (std::string line; std::getline(lines, line);) {
        const json row = json::Parse(line);
        if (!row.contains("row")) {
            continue;
        }
        for (const std::string& error : schemas.CheckRow(row)) {
            ADD_FAILURE() << line << ": " << error;
        }
        if (row["schema"] == "vxmgr.progress") {
            EXPECT_LE(percent, row["row"]["percent"].number()) << done.out;
            percent = row["row"]["percent"].number();
        }
    }
    EXPECT_EQ(100, percent);
    EXPECT_EQ("9.20.00", Code(kBanked, 1)["running"]);
    EXPECT_EQ("3.99", Code(kBanked, 7)["running"]);
    for (const int code : kAdapter.codes) {
        const std::string file = Image(kAdapter.port, code, code == kFirmware ? "9.20.00" : "3.99");
        EXPECT_EQ(0, ExitOf("fw verify \"" + file + "\"" + kBanked));
        EXPECT_EQ(1, ExitOf("fw verify" +
                            Quoted("before/" + std::string(code == kFirmware ? kCode : kBoot)) +
                            kBanked));
    }
    Regions now = Now();
    now[kBoot] = before_[kBoot];
    now[kCode] = before_[kCode];
    EXPECT_TRUE(before_ == now) << "other regions changed";

    const json again = Update(files + " --detailed-exitcode");
    EXPECT_EQ(30, again["exit"]);
    EXPECT_EQ("nothing_to_do", Only(again)["outcome"]);
    const std::string firmware = "\"" + Image(kAdapter.port, 1, "9.20.00") + "\"";
    EXPECT_EQ("nothing_to_do", Only(Update(firmware + " --allow-same"))["outcome"]) << "same bytes";
    EXPECT_EQ(1u, Journals(kAdapter.serial).size());
    const json history = Document("fw history" + kBanked);
    ASSERT_EQ(1u, history["result"]["updates"].size());
    EXPECT_EQ("done", history["result"]["updates"][0]["phase"]);
    EXPECT_EQ(false, history["result"]["updates"][0]["interrupted"]);

    // An older version takes its own word, and is undone like any other.
    const std::string older = "\"" + Image(kAdapter.port, 1, "9.14.00") + "\"";
    EXPECT_EQ(8, Update(older)["exit"]);
    EXPECT_EQ("9.14.00", Only(Update(older + " --allow-older"))["running_after"]);
    EXPECT_EQ("9.20.00", Only(Restore("latest"))["running_after"]);
}

TEST_F(SystemUpdate, BadInputWritesNothing) {
    const std::string good = Image(kAdapter.port, 1, "9.20.00");
    Data bytes = BytesOf(good);
    WriteFile(File("half.img"), Data(bytes.begin(), bytes.begin() + std::ssize(bytes) / 2));
    WriteFile(File("empty.img"), {});
    bytes[5000] ^= 1;
    WriteFile(File("damaged.img"), bytes);
    const struct {
        std::string what;
        int exit;
    } kRows[] = {
        {Quoted("half.img"), 8},
        {Quoted("empty.img"), 8},
        {Quoted("damaged.img"), 8},
        {Quoted("missing.img"), 3},
        {"\"" + Image("scsi:6", 1, "9.20.00") + "\"", 8},  // of another chip
        {files_ + Quoted("damaged.img"), 8},
        {files_ + " \"" + Image(kAdapter.port, 1, "9.21.00") + "\"", 8},  // two for one region
        {"", 2},
        {files_ + " --resume", 2},
    };
    for (const auto& row : kRows) {
        const json document = Update(row.what);
        EXPECT_EQ(row.exit, document["exit"]) << row.what;
        EXPECT_EQ(false, document["changed"]) << row.what;
    }
    EXPECT_EQ(2, ExitOf("fw update" + files_ + kBanked + " --yes"));
    EXPECT_EQ(8, ExitOf("fw update" + files_ + kBanked + " --yes --confirm EMU7404A0002"));
    ASSERT_EQ(0u, Vxemu("lockdown scsi:4 on").exit);
    EXPECT_EQ(8, Update(files_)["exit"]);
    ASSERT_EQ(0u, Vxemu("lockdown scsi:4 off").exit);
    EXPECT_EQ(3, Restore("latest")["exit"]);
    EXPECT_EQ(8, Restore("\"" + File("before") + "\"")["exit"]) << "no backup of vxmgr's";
    EXPECT_EQ("nothing_to_do", Only(Update("--resume"))["outcome"]);
    ASSERT_EQ(0u, Vxemu("bfs scsi:3 on").exit);
    EXPECT_EQ(8, Update(files_)["exit"]);
    EXPECT_TRUE(Journals(kAdapter.serial).empty());
    EXPECT_TRUE(before_ == Now());

    const json allowed = Update(files_ + " --allow-boot-from-san --detailed-exitcode");
    EXPECT_EQ(31, allowed["exit"]);
    EXPECT_EQ("pending", Only(allowed)["outcome"]);
    EXPECT_EQ("9.12.01", Code(kBanked, 1)["running"]);
    EXPECT_EQ(8, Restore("latest")["exit"]);
    EXPECT_EQ(0, Restore("latest --allow-boot-from-san")["exit"]);
    EXPECT_TRUE(before_ == Now());
}

TEST_F(SystemUpdate, PowerCutIsFoundBroughtBackAndFinished) {
    // In the boot code, which goes first; then in the way back.
    Cut("fw update" + files_, 100000);
    const auto found = [](const json& document) {
        return document["messages"].dump().find("fw update --resume") != std::string::npos;
    };
    const json shown = Document("fw show" + kBanked);
    EXPECT_TRUE(found(shown)) << shown.dump();
    EXPECT_EQ(65536, Code(kBanked, 7)["interrupted_at"]);
    EXPECT_EQ(nullptr, Code(kBanked, 1)["interrupted_at"]);
    EXPECT_TRUE(found(Document("port list -p scsi:4"))) << "a port of the adapter";
    EXPECT_FALSE(found(Document("port list -p scsi:6")));
    const json refused = Update(files_);
    EXPECT_EQ(8, refused["exit"]);
    EXPECT_TRUE(found(refused));
    EXPECT_EQ(true, Document("fw history")["result"]["updates"].back()["interrupted"]);
    EXPECT_EQ(0, Restore("latest --dry-run")["exit"]);
    Cut("fw restore latest", 70000);
    EXPECT_TRUE(found(Document("flash layout" + kBanked)));
    EXPECT_EQ("done", Only(Restore("latest"))["outcome"]);
    EXPECT_TRUE(before_ == Now());
    EXPECT_EQ("9.12.01", Code(kBanked, 1)["running"]);
    for (const json& nothing : {Restore("latest"), Update("--resume")}) {
        EXPECT_EQ(0, nothing["exit"]);
        EXPECT_EQ("nothing_to_do", Only(nothing)["outcome"]);
    }
    EXPECT_FALSE(found(Document("fw show" + kBanked)));

    // In the firmware; then in what should finish it.
    Cut("fw update" + files_, 300000);
    Cut("fw update --resume", 200000);
    const json finished = Update("--resume");
    EXPECT_EQ("done", Only(finished)["outcome"]);
    EXPECT_EQ(false, Only(finished)["regions"][1]["power_fail_safe"]);
    EXPECT_EQ("9.20.00", Only(finished)["running_after"]);
    EXPECT_EQ("nothing_to_do", Only(Update("--resume"))["outcome"]);
    Regions now = Now();
    EXPECT_TRUE(now[kCode] == BytesOf(Image(kAdapter.port, 1, "9.20.00")));
    EXPECT_TRUE(now[kBoot] == BytesOf(Image(kAdapter.port, 7, "3.99")));
    EXPECT_EQ("9.12.01", Only(Restore("latest"))["running_after"]);
    EXPECT_TRUE(before_ == Now());
}

TEST_F(SystemUpdate, WhatWasChangedByHandIsNotBelieved) {
    Cut("fw update" + files_, 300000);
    const Regions cut = Now();
    const Data journal = BytesOf(Kept("journal.json"));
    const auto revert = [&] { WriteFile(Kept("journal.json"), journal); };
    for (const char* file : {"region-7.old", "region-1.old", "region-1.new"}) {
        const Data good = BytesOf(Kept(file));
        Data bad = good;
        bad[123] ^= 1;
        for (const Data& changed : {bad, Data(good.begin(), good.end() - 1), Data()}) {
            WriteFile(Kept(file), changed);
            const bool old = std::string(file).ends_with("old");
            EXPECT_EQ(8, (old ? Restore("latest") : Update("--resume"))["exit"]) << file;
        }
        fs::remove(Kept(file));
        EXPECT_EQ(8, (std::string(file).ends_with("old") ? Restore("latest")
                                                         : Update("--resume"))["exit"]);
        WriteFile(Kept(file), good);
    }
    const struct {
        const char* from;
        const char* to;
    } kEdits[] = {
        {"\"EMU7740A0001\"", "\"EMU7404A0002\""},  // of another adapter
        {"\"writing\"", "\"rewriting\""},
        {"\"vxmgr.update\"", "\"vxmgr.other\""},
        {"\"region\": 7", "\"region\": 1"},    // twice
        {"\"region\": 7", "\"region\": 9"},    // of another size
        {"\"region\": 7", "\"region\": 600"},  // not there
        {"\"size\": 262144", "\"size\": 1"},
        {"\"size\": 262144", "\"size\": -1"},
        {"\"old_sha256\": \"", "\"old_sha256\": \"0"},
        {"\"chip\": \"0x7740\"", "\"chip\": \"0x7742\""},
    };
    for (const auto& edit : kEdits) {
        SCOPED_TRACE(edit.to);
        Edit(edit.from, edit.to);
        for (const json& document : {Restore("latest"), Update("--resume")}) {
            EXPECT_EQ(8, document["exit"]) << document.dump();
            EXPECT_EQ(false, document["changed"]);
        }
        revert();
    }
    WriteFile(Kept("journal.json"), Data(journal.begin(), journal.begin() + 100));
    EXPECT_EQ(8, Restore("latest")["exit"]);
    revert();
    EXPECT_TRUE(cut == Now()) << "something was written";
    // A region is looked at, whatever the journal says of it.
    for (int i = 0; i < 2; ++i) {
        std::string text = support::TextOfFile(Kept("journal.json").string());
        if (text.find("\"step\": \"writing\"") != std::string::npos) {
            Edit("\"step\": \"writing\"", "\"step\": \"verified\"");
        }
    }
    EXPECT_EQ(0, Update("--resume")["exit"]);
    EXPECT_EQ(0, Restore("latest")["exit"]);
    EXPECT_TRUE(before_ == Now());
}

TEST_F(SystemUpdate, SecondProgramIsKeptOutAndALostLockIsNoticed) {
    Fault("scsi:3 --code FlashWrite --after 1 --times 1 --do hang 8000");
    support::Program first("vxmgr.exe", "fw update" + files_ + kAdapter.Sure());
    const int pid = WaitForOwner();
    ASSERT_NE(0, pid);
    EXPECT_EQ(6, Update(files_)["exit"]);
    EXPECT_EQ(6, Restore("latest")["exit"]);
    EXPECT_EQ(6, Update("--resume")["exit"]);
    ASSERT_TRUE(first.Running()) << "too slow a machine to tell";
    EXPECT_EQ(static_cast<uint32_t>(pid), SetOwner(kAdapter.serial, GetCurrentProcessId()));
    const support::Ended ended = first.Wait();
    EXPECT_EQ(6u, ended.exit) << ended.err;
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    EXPECT_EQ("writing", JournalOf(kAdapter.serial)["phase"]);
    EXPECT_EQ(true, Document("fw history")["result"]["updates"].back()["interrupted"]);
    EXPECT_EQ(0, Update("--resume")["exit"]);
    EXPECT_EQ("9.20.00", Code(kBanked, 1)["running"]);
}

TEST_F(SystemUpdate, WhatAnotherProgramWroteMeanwhileIsNotWrittenOver) {
    // The first look at the firmware is the plan's, of eight pieces; the second is held up.
    Fault("scsi:3 --code FlashRead --sub 1 --after 8 --times 1 --do hang 9000");
    support::Program first(
        "vxmgr.exe", "fw update \"" + Image(kAdapter.port, 1, "9.20.00") + "\"" + kAdapter.Sure());
    const auto hasActed = [] {
        return VxemuDocument("fault list")["result"]["faults"][0]["acted"] == 1;
    };
    for (int i = 0; i < 50 && !hasActed(); ++i) {
        Sleep(100);
    }
    // As a program does that knows neither this one nor its locks.
    ASSERT_EQ(0u, Vxemu("flash corrupt scsi:3 1 0x70000").exit);
    ASSERT_TRUE(first.Running()) << "too slow a machine to tell";
    const support::Ended ended = first.Wait();
    EXPECT_EQ(8u, ended.exit) << ended.err;
    ASSERT_EQ(0u, Vxemu("flash corrupt scsi:3 1 0x70000").exit);
    EXPECT_TRUE(before_ == Now());
    EXPECT_EQ("nothing_to_do", Only(Update("--resume"))["outcome"]);
}

TEST_F(SystemUpdate, ContentsAreKeptElsewhereOrNotAtAll) {
    const std::string elsewhere = File("kept elsewhere");
    Cut("fw update" + files_ + " --backup \"" + elsewhere + "\"", 70000);
    EXPECT_FALSE(fs::exists(Kept("region-7.old")));
    EXPECT_EQ(0, Restore("latest")["exit"]);
    EXPECT_TRUE(before_ == Now());

    // The journal is found from anywhere, and so is what it names.
    const std::string relative = folder_.filename().string() + "-kept";
    Cut("fw update" + files_ + " --backup " + relative, 70000);
    EXPECT_TRUE(fs::path(JournalOf(kAdapter.serial)["backup"].text()).is_absolute());
    EXPECT_EQ(0, Restore("latest")["exit"]);
    fs::remove_all(relative);

    Cut("fw update" + files_ + " --skip-backup", 70000);
    EXPECT_EQ(8, Restore("latest")["exit"]);
    EXPECT_EQ(0, Update("--resume")["exit"]);
    EXPECT_EQ("9.20.00", Code(kBanked, 1)["running"]);
}

TEST_F(SystemUpdate, BackupBringsAllCodeBack) {
    const std::string folder = "\"" + File("kept") + "\"";
    const json kept = Document("fw backup " + folder + kBanked);
    EXPECT_EQ(0, kept["exit"]);
    EXPECT_EQ(5u, kept["result"]["regions"].size());
    EXPECT_NE(0, Document("fw backup " + folder + kBanked)["exit"]) << "is not written over";
    Fault("scsi:3 --code FlashRead --sub 1 --after 3 --times 1 --do corrupt");
    EXPECT_EQ(1, ExitOf("fw backup" + Quoted("wrong") + kBanked)) << "one read that lies";
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    EXPECT_FALSE(fs::exists(fs::path(File("wrong")) / "journal.json"));
    EXPECT_EQ("nothing_to_do", Only(Restore(folder))["outcome"]);
    EXPECT_EQ(0, Update(files_)["exit"]);
    EXPECT_EQ(8, ExitOf("fw restore " + folder + kLargeRom + " --yes --confirm EMU7404A0002"));
    const fs::path file = fs::path(File("kept")) / "region-1.old";
    Data bytes = BytesOf(file);
    bytes[0] ^= 1;
    WriteFile(file, bytes);
    EXPECT_EQ(8, Restore(folder)["exit"]);
    bytes[0] ^= 1;
    WriteFile(file, bytes);
    // Cut off, and brought back to what the update had left; then all the way.
    const Regions updated = Now();
    Cut("fw restore " + folder, 300000);
    EXPECT_EQ(0, Restore("latest")["exit"]);
    EXPECT_TRUE(updated == Now());
    EXPECT_EQ("9.12.01", Only(Restore(folder))["running_after"]);
    EXPECT_TRUE(before_ == Now());
}

TEST_F(SystemUpdate, OneAdapterAfterTheOther) {
    const std::string all = "\"" + Image(kAdapter.port, 1, "9.20.00") +
                            "\" -a all --yes --confirm EMU7740A0001,EMU7404A0002,E00003";
    const json stopped = Document("fw update " + all);
    EXPECT_EQ(11, stopped["exit"]);
    ASSERT_EQ(2u, stopped["result"]["updates"].size());
    EXPECT_EQ("done", Only(stopped)["outcome"]);
    EXPECT_EQ("refused", stopped["result"]["updates"][1]["outcome"]);
    const json on = Document("fw update " + all + " --keep-going");
    EXPECT_EQ(11, on["exit"]);
    ASSERT_EQ(3u, on["result"]["updates"].size());
    EXPECT_EQ("nothing_to_do", Only(on)["outcome"]);
    EXPECT_EQ(2, ExitOf("fw update \"" + Image(kAdapter.port, 1, "9.20.00") + "\" --yes"))
        << "of which adapter?";
}

TEST_F(SystemUpdate, FailuresOfTheDeviceAreTold) {
    // Behind four looks of four pieces each the read-back lies.
    Fault("scsi:3 --code FlashRead --sub 7 --after 16 --do corrupt");
    EXPECT_EQ(1, Update(files_)["exit"]);
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    EXPECT_EQ(0, Restore("latest")["exit"]);
    EXPECT_TRUE(before_ == Now());

    // A chunk that is not taken: the piece before it is there.
    Fault("scsi:3 --code FlashWrite --sub 1 --after 3 --times 1 --do status 11");
    const json failed = Update(files_);
    EXPECT_EQ(1, failed["exit"]);
    EXPECT_EQ("failed", Only(failed)["outcome"]);
    EXPECT_EQ(0, Update("--resume")["exit"]);

    // Nothing of it was taken: there is nothing to finish.
    Fault("scsi:3 --code FlashWrite --times 1 --do status 11");
    EXPECT_EQ(1, Update("\"" + Image(kAdapter.port, 7, "4.01") + "\"")["exit"]);
    EXPECT_EQ("nothing_to_do", Only(Update("--resume"))["outcome"]);

    // What cannot be read cannot be kept.
    Fault("scsi:3 --code FlashRead --sub 7 --do status 11");
    const std::string boot = " \"" + Image(kAdapter.port, 7, "3.98") + "\" --allow-older";
    EXPECT_EQ(8, Update(boot)["exit"]);
    EXPECT_EQ("9.20.00", Code(kBanked, 1)["running"]);
    ASSERT_EQ(0u, Vxemu("fault clear").exit);
    EXPECT_EQ(0, Restore("latest")["exit"]);
    EXPECT_TRUE(before_ == Now());
}

TEST_F(SystemUpdate, StartsThatGoWrongAreTold) {
    const struct {
        const char* fault;
        int exit;
        bool written;
    } kRows[] = {
        {"RestartFirmware --do old-version", 9, true},
        {"RestartFirmware --do no-return", 3, true},
        {"SecureFlashVerify --do bad-signature", 8, false},
    };
    ASSERT_EQ(0u, Vxemu("adapter set scsi:3 secure_updates=yes").exit);
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.fault);
        Fault("all --code " + std::string(row.fault));
        const json document = Update("\"" + Image(kAdapter.port, 1, "9.20.00") + "\"");
        EXPECT_EQ(row.exit, document["exit"]) << document.dump();
        EXPECT_EQ("failed", Only(document)["outcome"]);
        ASSERT_EQ(0u, Vxemu("fault clear").exit);
        ASSERT_EQ(0u, Vxemu("reset scsi:3").exit);
        EXPECT_EQ(row.written, Now()[kCode] != before_[kCode]);
        Restore("latest");
        EXPECT_TRUE(before_ == Now());
        EXPECT_EQ("9.12.01", Code(kBanked, 1)["running"]);
    }
}

}  // namespace
}  // namespace system_test
