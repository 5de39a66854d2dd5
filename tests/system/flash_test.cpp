// vxmgr on the flash of the running driver's adapters: what is written, what is refused, and what
// is left behind when a write does not come to its end.
#include "flash_fixture.h"

namespace system_test {
namespace {

class SystemFlash : public FlashFixture {
  protected:
    json Write(const std::string& region, const std::string& file, const std::string& rest = "") {
        return Document("flash write " + region + " \"" + file + "\"" + kBanked + kYes + rest);
    }

    Data Region(const std::string& region) {
        const std::string file = File("region.bin");
        EXPECT_EQ(0u, Vxmgr("flash read " + region + " \"" + file + "\"" + kBanked).exit);
        return BytesOf(file);
    }
};

TEST_F(SystemFlash, DamagedCodeIsAFailure) {
    EXPECT_EQ(0, Document("fw show")["exit"]);
    EXPECT_EQ(0, Document("diag run")["exit"]);
    ASSERT_EQ(0u, Vxemu("flash corrupt scsi:3 1 0x1000").exit);
    const json shown = Document("fw show");
    EXPECT_EQ(1, shown["exit"]);
    EXPECT_EQ("error", shown["messages"][0]["severity"]);
    EXPECT_EQ("damaged", Code(kBanked, 1)["state"]);
    const json checked = Document("diag run");
    EXPECT_EQ(1, checked["exit"]);
    std::string outcomes;
    for (const json& row : checked["result"]["checks"]) {
        if (row["check"] == "stored code") {
            outcomes += row["outcome"].text() + " ";
        }
    }
    EXPECT_EQ("failed skipped passed skipped ", outcomes) << "each adapter once";
    EXPECT_EQ(1, Document("diag run -p scsi:4")["exit"]) << "the same flash";
    EXPECT_EQ(0, Document("diag run -p scsi:6")["exit"]);
    ASSERT_EQ(0u, Vxemu("flash corrupt scsi:3 1 0x1000").exit);

    Fault("scsi:3 --code FlashRead --do status 23");
    EXPECT_NE(0, Document(std::string("fw show") + kBanked)["exit"]) << "what cannot be read";
}

TEST_F(SystemFlash, IsReadByRegionAndByOffset) {
    const json layout = Document("flash layout" + kBanked)["result"];
    const std::map<std::string, Data> regions = AllRegions("all");
    EXPECT_EQ(layout["regions"].size(), regions.size());
    uint64_t bytes = 0;
    for (const auto& [name, data] : regions) {
        bytes += data.size();
    }
    EXPECT_EQ(layout["size"], bytes);

    // Two pieces and a bit of the firmware, across the border of a piece.
    const std::string start = layout["regions"][1]["start"].text();
    const std::string file = File("range.bin");
    ASSERT_EQ("firmware", layout["regions"][1]["key"]);
    EXPECT_EQ(0, ExitOf("flash read \"" + file + "\" --length 131073 --offset " + start + kBanked));
    const Data& firmware = regions.at("001-firmware.bin");
    EXPECT_EQ(Data(firmware.begin(), firmware.begin() + 131073), BytesOf(file));
    EXPECT_EQ(firmware, Region("0x1"));

    // Nothing of a failed read is left behind, and an older file stays.
    const Data before = BytesOf(file);
    EXPECT_EQ(1, ExitOf("flash read \"" + file + "\" --length 16 --offset 255" + kBanked));
    EXPECT_EQ(1, ExitOf("flash read \"" + file + "\" --length 16 --offset 0x40000000" + kBanked));
    EXPECT_EQ(before, BytesOf(file));
    EXPECT_EQ(3, ExitOf("flash read nothing \"" + file + "\"" + kBanked));
    EXPECT_EQ(2, ExitOf("flash read 1" + kBanked));
    EXPECT_EQ(2, ExitOf("flash layout"));  // of which adapter?
    EXPECT_EQ(4, ExitOf("flash layout -p scsi:9"));
}

TEST_F(SystemFlash, OneRegionThatFailsLeavesTheOthers) {
    Fault("scsi:3 --code FlashRead --sub 9 --do status 11");
    const fs::path folder = folder_ / "all";
    const json document = Document("flash read all \"" + folder.string() + "\"" + kBanked);
    EXPECT_EQ(11, document["exit"]);
    EXPECT_FALSE(fs::exists(folder / "009-auxiliary-firmware.bin"));
    EXPECT_TRUE(fs::exists(folder / "254-spare.bin"));
}

TEST_F(SystemFlash, WrongImagesAreRefusedBeforeAnythingIsWritten) {
    const std::map<std::string, Data> before = AllRegions("before");
    const std::string good = Image("scsi:3", 1, "9.13.00");
    Data bytes = BytesOf(good);
    bytes[5000] ^= 1;
    const std::string damaged = File("damaged.img");
    std::ofstream(damaged, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    const std::string half = File("half.img");
    std::ofstream(half, std::ios::binary).write(bytes.data(), std::ssize(bytes) / 2);
    std::ofstream(File("empty.img"), std::ios::binary).flush();

    for (const std::string& file : {damaged, half, File("empty.img"), Image("scsi:6", 1, "9.13.00"),
                                    Image("scsi:3", 1, "9.11.00"), Image("scsi:3", 7, "3.62")}) {
        EXPECT_EQ(8, Write("firmware", file)["exit"]) << file;
        EXPECT_EQ(8, ExitOf("fw check \"" + file + "\" --region 1" + kBanked)) << file;
    }
    EXPECT_EQ(8, Write("firmware", half, " --pad")["exit"]);
    EXPECT_EQ(3, Write("firmware", File("missing.img"))["exit"]);
    EXPECT_EQ(8, ExitOf("fw inspect \"" + damaged + "\""));

    const std::string write = "flash write firmware \"" + good + "\" ";
    EXPECT_EQ(2, Document(write + kBanked)["exit"]);  // nobody can be asked
    EXPECT_EQ(2, Document(write + kBanked + " --yes")["exit"]);
    EXPECT_EQ(8, Document(write + kBanked + " --yes --confirm EMU7404A0002")["exit"]);
    EXPECT_EQ(2, Document(write + "-a 0 --yes --confirm EMU7740A0001")["exit"]);
    // Also where nothing is asked: of what reads, of what is reversible, in a dry run.
    for (const char* command : {"port list -a serial:EMU7740A0001", "port list", "fw show -a 0",
                                "port stats clear -p scsi:3", "smartsan on -p scsi:3",
                                "nvram activate --dry-run -p scsi:3"}) {
        EXPECT_EQ(8, Document(std::string(command) + " --confirm EMU7404A0002")["exit"]) << command;
    }
    EXPECT_EQ(0, Document("port list -p scsi:6 --confirm emu7404a0002")["exit"]);
    EXPECT_EQ(0, Document(write + kBanked + " --dry-run")["exit"]);
    ASSERT_EQ(0u, Vxemu("lockdown scsi:4 on").exit);
    EXPECT_EQ(8, Write("firmware", good)["exit"]);
    ASSERT_EQ(0u, Vxemu("lockdown scsi:4 off").exit);
    EXPECT_EQ(before, AllRegions("after"));
}

TEST_F(SystemFlash, GoodImageIsWrittenProvenAndStarted) {
    const std::string image = Image("scsi:3", 1, "9.13.00");
    EXPECT_EQ(true, Document("fw check \"" + image + "\"" + kBanked)["result"]["accepted"]);
    const json written = Write("firmware", image);
    EXPECT_EQ(0, written["exit"]);
    EXPECT_EQ(true, written["changed"]);
    EXPECT_EQ(true, written["result"]["verified"]);
    EXPECT_EQ("9.13.00", written["result"]["running_after"]);
    EXPECT_EQ(BytesOf(image), Region("firmware"));
    EXPECT_EQ(false, Lock("EMU7740A0001")["held"]);

    const json again = Write("firmware", image, " --detailed-exitcode");
    EXPECT_EQ(30, again["exit"]);
    EXPECT_EQ(false, again["changed"]);
    EXPECT_EQ("9.12.01", Write("firmware", Image("scsi:3", 1, "9.12.01"),
                               " --allow-older")["result"]["running_after"]);
}

TEST_F(SystemFlash, ChipWithoutOnlineStartKeepsTheImagePending) {
    for (const int region : {1, 7}) {
        const std::string image = Image("scsi:6", region, region == 1 ? "8.02.00" : "3.70");
        const json document =
            Document("flash write " + std::to_string(region) + " \"" + image + "\"" + kLargeRom +
                     " --yes --confirm EMU7404A0002 --detailed-exitcode");
        EXPECT_EQ(31, document["exit"]);
        EXPECT_EQ(1u, document["pending"].size());
        EXPECT_EQ("pending", Code(kLargeRom, region)["state"]);
    }
    EXPECT_EQ(4, ExitOf("fw activate --yes" + kLargeRom));
    ASSERT_EQ(0u, Vxemu("reset scsi:6").exit);
    EXPECT_EQ("8.02.00", Code(kLargeRom, 1)["running"]);
    EXPECT_EQ("running", Code(kLargeRom, 7)["state"]);
}

TEST_F(SystemFlash, SettingsOfTheOtherBankArePending) {
    const std::string file = File("nvram.bin");
    ASSERT_EQ(0u, Vxmgr("flash read nvram-0 \"" + file + "\"" + kBanked).exit);
    Data bytes = BytesOf(file);
    bytes[511] ^= 1;  // the checksum
    std::ofstream(File("bad.bin"), std::ios::binary).write(bytes.data(), std::ssize(bytes));
    EXPECT_EQ(8, Write("nvram-0-bank-2", File("bad.bin"))["exit"]);
    // Two words that keep the sum: other settings, as good.
    std::swap_ranges(bytes.begin() + 400, bytes.begin() + 404, bytes.begin() + 404);
    bytes[400] = static_cast<char>(bytes[400] + 1);
    bytes[511] ^= 1;
    bytes[508] = static_cast<char>(bytes[508] - 1);
    std::ofstream(file, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    const json written = Write("nvram-0-bank-2", file);
    EXPECT_EQ(0, written["exit"]) << written.dump();
    EXPECT_EQ(1u, written["pending"].size());
    EXPECT_EQ(bytes, Region("nvram-0-bank-2"));
}

TEST_F(SystemFlash, FirmwareIsStartedLaterWhenThePortBootsTheHost) {
    ASSERT_EQ(0u, Vxemu("bfs scsi:3 on").exit);
    const json written = Write("firmware", Image("scsi:3", 1, "9.14.00"), " --detailed-exitcode");
    EXPECT_EQ(31, written["exit"]);
    EXPECT_EQ(true, written["result"]["verified"]);
    EXPECT_EQ("9.12.01", written["result"]["running_after"]);
    EXPECT_EQ("pending", Code(kBanked, 1)["state"]);
    EXPECT_EQ(4, ExitOf("fw activate --yes" + kBanked));
    EXPECT_EQ("9.12.01", Code(kBanked, 1)["running"]);

    ASSERT_EQ(0u, Vxemu("bfs scsi:3 off").exit);
    EXPECT_EQ(2, ExitOf("fw activate" + kBanked));
    const json started = Document("fw activate --yes" + kBanked);
    EXPECT_EQ(0, started["exit"]);
    EXPECT_EQ(true, started["result"]["activated"]);
    EXPECT_EQ("9.14.00", started["result"]["after"]);
    EXPECT_EQ(false, Document("fw activate --yes" + kBanked)["changed"]);
}

TEST_F(SystemFlash, PowerCutLeavesTheOtherRegions) {
    const std::map<std::string, Data> before = AllRegions("before");
    const std::string image = Image("scsi:3", 1, "9.13.00");
    const struct {
        uint32_t bytes;
        const char* state;  // null: what was cut off is none of the code
    } kCuts[] = {{0, "running"}, {65536, "damaged"}, {100000, "damaged"}, {524287, nullptr}};
    for (const auto& cut : kCuts) {
        SCOPED_TRACE(cut.bytes);
        ASSERT_EQ(0u,
                  Vxemu("flash power-fail scsi:4 --after-bytes " + std::to_string(cut.bytes)).exit);
        const json document = Write("firmware", image, " --allow-same");
        EXPECT_EQ(1, document["exit"]);
        EXPECT_EQ("unknown", document["result"]["state"]);
        EXPECT_EQ(nullptr, document["result"]["written"]);
        ASSERT_EQ(0u, Vxemu("reset scsi:3").exit);
        EXPECT_EQ(false, Lock("EMU7740A0001")["held"]);
        std::map<std::string, Data> after = AllRegions("after");
        Data cutOff = before.at("001-firmware.bin");
        const Data whole = BytesOf(image);
        std::copy_n(whole.begin(), cut.bytes, cutOff.begin());
        // The page under way was erased.
        std::fill_n(cutOff.begin() + cut.bytes, (4096 - cut.bytes % 4096) % 4096, '\xFF');
        EXPECT_TRUE(cutOff == after.at("001-firmware.bin"));
        after["001-firmware.bin"] = before.at("001-firmware.bin");
        EXPECT_TRUE(before == after);
        if (cut.state != nullptr) {
            EXPECT_EQ(cut.state, Code(kBanked, 1)["state"]);
        }
        EXPECT_EQ(0, ExitOf("flash write 1 \"" + File("before/001-firmware.bin") + "\"" + kBanked +
                            kYes + " --allow-older --allow-same"));
    }
}

TEST_F(SystemFlash, WhatWasWrittenOutlastsTheDriver) {
    const auto restart = [] {
        EXPECT_EQ(0u, Vxemu("stop").exit);
        return VxemuDocument("start --profile lab");
    };
    const std::string image = Image("scsi:6", 1, "8.02.00");
    EXPECT_EQ(
        0, ExitOf("flash write 1 \"" + image + "\"" + kLargeRom + " --yes --confirm EMU7404A0002"));
    EXPECT_EQ(0, ExitOf("nvram set login_timeout=77 -p scsi:3" + kYes));
    EXPECT_EQ("8.01.02", Code(kLargeRom, 1)["running"]);
    restart();
    EXPECT_EQ("8.02.00", Code(kLargeRom, 1)["running"]);
    EXPECT_EQ(77, Document("nvram get login_timeout -p scsi:3")["result"]["value"]);

    // A file that somebody has damaged meanwhile is told of and left alone.
    const fs::path file = fs::path(std::getenv("ProgramData")) / "vxemu" / "EMU7404A0002.flash";
    EXPECT_EQ(0u, Vxemu("stop").exit);
    {
        std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekg(5000);
        const int byte = stream.get();
        stream.seekp(5000).put(static_cast<char>(byte ^ 1));
    }
    const json started = restart();
    EXPECT_TRUE(
        support::Has(started["messages"].dump(), "scsi:6: the file of its flash is damaged"))
        << started;
    EXPECT_EQ("damaged", PortStatus("scsi:6")["flash_file"]);
    EXPECT_EQ("kept", PortStatus("scsi:3")["flash_file"]);
    EXPECT_EQ("8.01.02", Code(kLargeRom, 1)["running"]);
    EXPECT_EQ(0u, Vxemu("flash reset scsi:6").exit);
    EXPECT_EQ("kept", PortStatus("scsi:6")["flash_file"]);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(SystemFlash, WriteThatIsNotProvenIsToldSo) {
    // The read-back fails behind two looks of eight pieces each: before the question and behind it.
    Fault("scsi:3 --code FlashRead --sub 1 --after 16 --do status 11");
    json document = Write("firmware", Image("scsi:3", 1, "9.13.00"));
    EXPECT_EQ(9, document["exit"]);
    EXPECT_EQ(nullptr, document["result"]["verified"]);
    ASSERT_EQ(0u, Vxemu("fault clear").exit);

    Fault("scsi:3 --code FlashRead --sub 1 --after 16 --do corrupt");
    document = Write("firmware", Image("scsi:3", 1, "9.14.00"));
    EXPECT_EQ(1, document["exit"]);
    EXPECT_EQ("mixed", document["result"]["state"]);
    EXPECT_EQ(false, document["result"]["verified"]);
    ASSERT_EQ(0u, Vxemu("fault clear").exit);

    Fault("scsi:3 --code FlashWrite --do status 11");
    document = Write("firmware", Image("scsi:3", 1, "9.15.00"));
    EXPECT_EQ(1, document["exit"]);
    EXPECT_EQ("old", document["result"]["state"]);
    EXPECT_EQ(false, document["changed"]);
    EXPECT_EQ(false, Lock("EMU7740A0001")["held"]);
}

TEST_F(SystemFlash, WhatAnotherProgramWroteMeanwhileIsNotOverwritten) {
    // The first one's look at the region takes long enough for the second one's whole write.
    Fault("scsi:3 --code FlashRead --sub 1 --after 7 --times 1 --do hang 9000");
    const std::string late = Image("scsi:3", 1, "9.13.00");
    const std::string early = Image("scsi:3", 1, "9.14.00");
    support::Program first("vxmgr.exe", "flash write 1 \"" + late + "\"" + kBanked + kYes);
    const auto hasActed = [] {
        return VxemuDocument("fault list")["result"]["faults"][0]["acted"] == 1;
    };
    for (int i = 0; i < 50 && !hasActed(); ++i) {
        Sleep(100);
    }
    EXPECT_EQ(0, Write("1", early)["exit"]);
    ASSERT_TRUE(first.Running()) << "too slow a machine to tell";
    const support::Ended ended = first.Wait();
    EXPECT_EQ(8u, ended.exit) << ended.err;
    EXPECT_EQ(BytesOf(early), Region("1"));
}

TEST_F(SystemFlash, LockOfAnotherProgramIsRespectedAndThatOfADeadOneReleased) {
    // Keeps the locks alive: they go with the last program that uses the library.
    support::Program keeper("vxmgr.exe", "event watch -p scsi:6");
    ASSERT_TRUE(PortReaches("scsi:6", "event_delivery", true));
    Fault("scsi:3 --code FlashWrite --times 1 --do hang 8000");
    const std::string image = Image("scsi:3", 1, "9.13.00");
    support::Program owner("vxmgr.exe", "flash write 1 \"" + image + "\"" + kBanked + kYes);
    const int pid = WaitForOwner();
    ASSERT_NE(0, pid);
    const std::string release = "flash lock release --owner-pid " + std::to_string(pid);
    EXPECT_EQ(true, Lock("EMU7740A0001")["owner_lives"]);
    EXPECT_EQ(6, Write("firmware", image)["exit"]);
    // Another vxmgr is kept out even when the lock has gone to anybody.
    EXPECT_EQ(static_cast<uint32_t>(pid), SetOwner("EMU7740A0001", 0));
    EXPECT_EQ(false, Lock("EMU7740A0001")["held"]);
    const json refused = Write("firmware", image);
    EXPECT_EQ(6, refused["exit"]);
    EXPECT_NE(std::string::npos, refused["messages"].dump().find("another vxmgr is writing"));
    for (const char* change : {"nvram set reset_delay=9", "sfp write a0 96 5a", "nvram activate"}) {
        EXPECT_EQ(6, Document(std::string(change) + " -p scsi:4" + kYes)["exit"]) << change;
    }
    const HANDLE guard = OpenMutexA(SYNCHRONIZE, FALSE, "Global\\VXMGR_Update_EMU7740A0001");
    EXPECT_NE(nullptr, guard);  // keeps it from going away with its owner
    SetOwner("EMU7740A0001", static_cast<uint32_t>(pid));
    EXPECT_EQ(6, Document(release)["exit"]);
    EXPECT_EQ(3, Document("flash lock release --owner-pid 3")["exit"]);
    EXPECT_EQ(false, Lock("EMU7404A0002")["held"]);

    owner.Kill();
    const json left = Lock("EMU7740A0001");
    EXPECT_EQ(true, left["held"]);
    EXPECT_EQ(false, left["owner_lives"]);
    EXPECT_EQ(6, Write("firmware", image)["exit"]);
    EXPECT_EQ(3, ExitOf(release + kLargeRom));
    EXPECT_EQ(false, Document(release + " --dry-run")["result"]["released"]);
    EXPECT_EQ(true, Document(release)["result"]["released"]);
    EXPECT_EQ(false, Lock("EMU7740A0001")["held"]);
    EXPECT_EQ(3, ExitOf(release));
    EXPECT_TRUE(keeper.Running());
    EXPECT_EQ(0, Write("firmware", image)["exit"]) << "what a killed program held is taken over";
    CloseHandle(guard);
    keeper.Kill();
}

}  // namespace
}  // namespace system_test
