// vxmgr on NVRAM, product data and transceivers of the running driver's adapters: what is written
// where, what is refused before the first byte, and what is said when a write does not succeed.
#include <fstream>

#include "emulated_driver.h"
#include "formats/crc32.h"

namespace system_test {
namespace {

void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// An image for the transceivers of the first adapter, longer than one request carries.
std::string TransceiverImage(const char (&revision)[5]) {
    const std::string code(40000, 'f');
    const uint32_t crc =
        formats::Crc32({reinterpret_cast<const uint8_t*>(code.data()), code.size()});
    std::string image = "EMUSFPFW\x03\x07" + std::string(revision) + std::string(2, '\0');
    for (int shift = 0; shift < 32; shift += 8) {
        image += static_cast<char>(crc >> shift);
    }
    return image + std::string(12, '\0') + code;
}

class SystemNvram : public FreshDriver {
  protected:
    static inline const std::string kBanked = " -p scsi:3";
    static inline const std::string kLargeRom = " -p scsi:6";
    static inline const std::string kLegacy = " -p scsi:9";
    static inline const std::string kYes = " -p scsi:3 --yes --confirm EMU7740A0001";
    static inline const std::string kYesLargeRom = " -p scsi:6 --yes --confirm EMU7404A0002";
    static inline const std::string kYesLegacy = " -p scsi:9 --yes --confirm E00003";

    json Value(const std::string& name, const std::string& rest) {
        return Document("nvram get " + name + rest)["result"]["value"];
    }
    // The first message of the highest severity.
    static std::string Error(const json& document) {
        for (const json& message : document["messages"]) {
            if (message["severity"] == "error") {
                return message["text"].text();
            }
        }
        return "";
    }
    bool LockIsFree() {
        const json result = Document("flash lock show")["result"];
        for (const json& row : result["locks"]) {
            if (row["held"] != false) {
                return false;
            }
        }
        return result["locks"].size() == 3;
    }
};

TEST_F(SystemNvram, BankedSettingsWaitForTheReset) {
    const json before = Value("login_timeout", kBanked);
    json document = Document("nvram set login_timeout=77 reset_delay=9" + kYes);
    EXPECT_EQ(0, document["exit"]);
    EXPECT_EQ(true, document["changed"]);
    EXPECT_EQ("second", document["result"]["bank"]);
    EXPECT_EQ(true, document["result"]["stored"]);
    EXPECT_EQ(false, document["result"]["active"]);
    ASSERT_EQ(1u, document["pending"].size());
    EXPECT_EQ("port_reset", document["pending"][0]["action"]);
    EXPECT_EQ(before, Value("login_timeout", kBanked));
    EXPECT_EQ(77, Value("login_timeout", kBanked + " --bank other"));
    // The other port of the adapter has its own.
    EXPECT_EQ(before, Value("login_timeout", " -p scsi:4 --bank other"));

    // A further change starts from the waiting settings when it is told to.
    document = Document("nvram set execution_throttle=55 --bank other" + kYes);
    EXPECT_EQ(0, document["exit"]);
    document = Document("nvram activate --yes" + kBanked);
    EXPECT_EQ(0, document["exit"]);
    EXPECT_EQ("second", document["result"]["bank"]);
    EXPECT_EQ(77, Value("login_timeout", kBanked));
    EXPECT_EQ(9, Value("reset_delay", kBanked));
    EXPECT_EQ(55, Value("execution_throttle", kBanked));
    EXPECT_EQ(0, ExitOf("nvram verify"));
    EXPECT_EQ(30, ExitOf("nvram set login_timeout=77 --detailed-exitcode" + kYes));
    EXPECT_TRUE(LockIsFree());
}

TEST_F(SystemNvram, OtherChipsAreWrittenInPlace) {
    json document = Document("nvram set login_timeout=6 --activate" + kYesLargeRom);
    EXPECT_EQ(0, document["exit"]);
    EXPECT_EQ(nullptr, document["result"]["bank"]);
    EXPECT_EQ(true, document["result"]["active"]);
    EXPECT_TRUE(document["pending"].empty());
    EXPECT_EQ(6, Value("login_timeout", kLargeRom));
    EXPECT_EQ(4, ExitOf("nvram show --bank other" + kLargeRom));

    // The classic block of an old driver gets its checksum from the tool.
    EXPECT_EQ(0, ExitOf("nvram set login_timeout=6" + kYesLegacy));
    const json verified = Document("nvram verify" + kLegacy)["result"]["ports"][0];
    EXPECT_EQ("classic", verified["kind"]);
    EXPECT_EQ(true, verified["checksum_good"]);
    EXPECT_EQ(true, verified["verified"]);
    // It cannot restart its firmware: written all the same, and said so.
    document = Document("nvram set login_timeout=7 --activate" + kYesLegacy);
    EXPECT_EQ(4, document["exit"]);
    EXPECT_EQ(true, document["result"]["stored"]);
    EXPECT_EQ(1u, document["pending"].size());
    EXPECT_EQ(8, ExitOf("nvram set adapter_family=2" + kYesLegacy));
}

TEST_F(SystemNvram, WrongSettingsAreRefusedBeforeAnythingIsWritten) {
    const auto exitOf = [&](const std::string& settings, const std::string& rest) {
        return ExitOf("nvram set " + settings + rest);
    };
    EXPECT_EQ(2, exitOf("login_timeout=256", kYes));
    EXPECT_EQ(2, exitOf("login_timeout=1 34=2", kYes));
    EXPECT_EQ(2, exitOf("login_timeout=1 nothing=2", kYes));
    EXPECT_EQ(4, exitOf("retry_count=1", kYes));
    EXPECT_EQ(8, exitOf("checksum=1", kYes));
    EXPECT_EQ(2, exitOf("login_timeout=1", kBanked));
    EXPECT_EQ(8, exitOf("login_timeout=1", " -p scsi:3 --yes --confirm EMU7404A0002"));
    EXPECT_EQ(0, exitOf("login_timeout=1", " -p scsi:3 --dry-run"));
    ASSERT_EQ(0u, Vxemu("lockdown scsi:3 on").exit);
    EXPECT_EQ(8, exitOf("login_timeout=1", kYes));
    ASSERT_EQ(0u, Vxemu("lockdown scsi:3 off").exit);
    // No requests that write have reached the driver.
    EXPECT_EQ(0, ExitOf("nvram export" + Quoted("a.json") + kBanked));
    EXPECT_EQ(true,
              Document("nvram diff --bank other" + Quoted("a.json") + kBanked)["result"]["equal"]);
    // A damaged block is not made to look whole.
    ASSERT_EQ(0u, Vxemu("flash corrupt scsi:3 21 100").exit);
    EXPECT_EQ(1, ExitOf("nvram verify" + kBanked));
    EXPECT_EQ(8, exitOf("login_timeout=1", kYes));
    EXPECT_EQ(0, ExitOf("nvram import" + Quoted("a.json") + " --activate" + kYes));
    EXPECT_EQ(true, Document("nvram show" + kBanked)["result"]["sound"]);
}

TEST_F(SystemNvram, ExportsComeBackByteForByte) {
    ASSERT_EQ(0, ExitOf("nvram export" + Quoted("old.json") + kBanked));
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    for (const std::string& error :
         schemas.Check(json::Parse(support::TextOfFile(File("old.json"))), "vxmgr.nvram.json")) {
        ADD_FAILURE() << error;
    }
    EXPECT_EQ(0, ExitOf("nvram set login_timeout=70 --activate" + kYes));
    EXPECT_EQ(0, ExitOf("nvram set login_timeout=71 --backup" + Quoted("backup.json") + kYes));
    const json difference = Document("nvram diff" + Quoted("old.json") + kBanked)["result"];
    ASSERT_EQ(1u, difference["changes"].size());
    EXPECT_EQ(70, difference["changes"][0]["adapter"]);
    EXPECT_EQ(0, difference["other_bytes"]);
    EXPECT_EQ(true, Document("nvram diff" + Quoted("backup.json") + kBanked)["result"]["equal"]);
    EXPECT_EQ(0, ExitOf("nvram import --activate" + Quoted("old.json") + kYes));
    ASSERT_EQ(0, ExitOf("nvram export" + Quoted("new.json") + kBanked));
    EXPECT_EQ(support::TextOfFile(File("old.json")), support::TextOfFile(File("new.json")));

    // Of another chip, of another port, damaged.
    EXPECT_EQ(8, ExitOf("nvram import" + Quoted("old.json") + kYesLargeRom));
    const std::string second = " -p scsi:4 --yes --confirm EMU7740A0001";
    EXPECT_EQ(8, ExitOf("nvram import" + Quoted("old.json") + second));
    std::string text = support::TextOfFile(File("backup.json"));
    text[text.rfind("\"block\"") + 80] ^= 1;
    Write(File("damaged.json"), text);
    EXPECT_EQ(8, ExitOf("nvram import" + Quoted("damaged.json") + kYes));
    // The names of a port stay its own.
    const json before = Document("nvram show -p scsi:4")["result"];
    EXPECT_EQ(0, ExitOf("nvram import --as-port --activate" + Quoted("backup.json") + second));
    const json after = Document("nvram show -p scsi:4")["result"];
    EXPECT_EQ(before["port_wwn"], after["port_wwn"]);
    EXPECT_EQ(before["node_wwn"], after["node_wwn"]);
    EXPECT_EQ(70, Value("login_timeout", " -p scsi:4"));
}

TEST_F(SystemNvram, TheTextFormOfClassicBlocksIsCheckedLineByLine) {
    EXPECT_EQ(4, ExitOf("nvram export --text" + Quoted("a.txt") + kBanked));
    ASSERT_EQ(0, ExitOf("nvram export --text" + Quoted("a.txt") + kLegacy));
    EXPECT_EQ(true, Document("nvram diff" + Quoted("a.txt") + kLegacy)["result"]["equal"]);
    Write(File("b.txt"), "; a change\nlogin timeout [0-255] = 44\n");
    EXPECT_EQ(0, ExitOf("nvram import" + Quoted("b.txt") + kYesLegacy));
    EXPECT_EQ(44, Value("login_timeout", kLegacy));
    Write(File("c.txt"), "login timeout [0-255] = 45\nlogin timeout [0-255] = 46\n");
    json document = Document("nvram import" + Quoted("c.txt") + kYesLegacy);
    EXPECT_EQ(8, document["exit"]);
    EXPECT_TRUE(support::Has(Error(document), "line 2"));
    Write(File("d.txt"), "login timeout = 300\n");
    EXPECT_EQ(8, ExitOf("nvram import" + Quoted("d.txt") + kYesLegacy));
    EXPECT_EQ(8, ExitOf("nvram import" + Quoted("b.txt") + kYes));
    EXPECT_EQ(44, Value("login_timeout", kLegacy));
    EXPECT_EQ(0, ExitOf("nvram import" + Quoted("a.txt") + kYesLegacy));
    EXPECT_EQ(true, Document("nvram diff" + Quoted("a.txt") + kLegacy)["result"]["equal"]);
}

TEST_F(SystemNvram, AFailedWriteSaysWhatStandsThere) {
    const std::string set = "nvram set login_timeout=90" + kYes;
    Fault("scsi:3 --code FlashWrite --do status 11");
    json document = Document(set);
    EXPECT_EQ(1, document["exit"]);
    EXPECT_EQ(false, document["changed"]);
    EXPECT_TRUE(support::Has(Error(document), "was not written"));
    ASSERT_EQ(0u, Vxemu("fault clear").exit);

    // Cut off in the middle: the bank in use is whole, the other one is not, nothing takes it over.
    const json before = Value("login_timeout", kBanked);
    ASSERT_EQ(0u, Vxemu("flash power-fail scsi:3 --after-bytes 200").exit);
    document = Document(set);
    EXPECT_NE(0, document["exit"]);
    EXPECT_TRUE(support::Has(document["messages"].back()["hint"].text(), "bank, which is in use"));
    ASSERT_EQ(0u, Vxemu("reset scsi:3").exit);
    EXPECT_EQ(before, Value("login_timeout", kBanked));
    EXPECT_TRUE(LockIsFree());

    // Written, but the driver cannot show it any more: not proven.
    EXPECT_EQ(0, ExitOf(set));
    EXPECT_EQ(0, ExitOf("nvram activate --yes" + kBanked));
    EXPECT_EQ(90, Value("login_timeout", kBanked));
    Fault("scsi:6 --code FlashRead --after 2 --do status 11");
    document = Document("nvram set login_timeout=91" + kYesLargeRom);
    EXPECT_EQ(9, document["exit"]);
    EXPECT_EQ(true, document["changed"]);
}

TEST_F(SystemNvram, AWriteThatTakesLongIsFinishedFirst) {
    Fault("scsi:3 --code FlashWrite --times 1 --do hang 6000");
    const json document = Document("--timeout 2 nvram set login_timeout=90" + kYes);
    EXPECT_EQ(7, document["exit"]);
    EXPECT_TRUE(support::Has(document["messages"].dump(), "was written and reads back"));
    EXPECT_TRUE(LockIsFree());
}

TEST_F(SystemNvram, ProductDataIsCheckedAndGoesToTheOtherBank) {
    ASSERT_EQ(0, ExitOf("vpd read" + Quoted("a.bin") + kBanked));
    const json shown = Document("vpd show" + kBanked)["result"];
    EXPECT_EQ(true, shown["checksum_good"]);
    EXPECT_EQ("Emulated 7740", shown["items"][0]["value"]);
    const std::string good = support::TextOfFile(File("a.bin"));
    const size_t level = good.find("EC\x02") + 4;
    const size_t checksum = good.find("RV\x01") + 3;

    const auto exitOf = [&](const std::string& bytes, const std::string& rest) {
        Write(File("b.bin"), bytes);
        return ExitOf("vpd write" + Quoted("b.bin") + rest);
    };
    std::string image = good;
    image[level] = '7';
    EXPECT_EQ(8, exitOf(image, kYes));  // the checksum of before
    image[checksum] = static_cast<char>(good[checksum] - ('7' - good[level]));
    EXPECT_EQ(8, exitOf(image.substr(1), kYes));
    EXPECT_EQ(8, exitOf(image + '\0', kYes));
    EXPECT_EQ(8, exitOf(std::string(good.size(), '\xFF'), kYes));
    EXPECT_EQ(8, exitOf(image, kYesLargeRom));  // of another adapter
    EXPECT_EQ(3, ExitOf("vpd write" + Quoted("none.bin") + kYes));
    EXPECT_EQ(0, exitOf(good, kYes));
    EXPECT_EQ(false, Document("vpd write" + Quoted("a.bin") + kYes)["changed"]);

    EXPECT_EQ(0, exitOf(image, kYes));
    const auto shownLevel = [&](const std::string& rest) {
        return Document("vpd show" + rest)["result"]["items"][2]["value"];
    };
    EXPECT_EQ("E1", shownLevel(kBanked));
    EXPECT_EQ("E7", shownLevel(kBanked + " --bank other"));
    EXPECT_EQ(0, ExitOf("nvram activate --yes" + kBanked));
    EXPECT_EQ("E7", shownLevel(kBanked));
    EXPECT_EQ(4, ExitOf("vpd show" + kLegacy));
}

TEST_F(SystemNvram, TransceiversAreShownWatchedAndWritten) {
    const json document = Document("sfp show");
    EXPECT_EQ(0, document["exit"]);
    const json modules = document["result"]["transceivers"];
    ASSERT_EQ(3u, modules.size());  // the old driver has none to show
    EXPECT_EQ(5u, modules[0]["readings"].size());
    EXPECT_EQ("EMULATED OPTICS", modules[0]["identity"]["vendor"]);
    EXPECT_EQ(true, modules[0]["identity"]["extended_checksum_good"]);
    EXPECT_EQ(4, ExitOf("sfp show" + kLegacy));
    EXPECT_EQ(2u,
              Document("sfp watch --count 2 --interval 1" + kBanked)["result"]["readings"].size());
    ASSERT_EQ(0u, Vxemu("link scsi:3 down").exit);
    EXPECT_TRUE(support::Has(Document("sfp show" + kBanked)["result"].dump(),
                             "received power low alarm, signal lost"));

    const auto exitOf = [&](const std::string& arguments) {
        return ExitOf("sfp write " + arguments + kYes);
    };
    EXPECT_EQ(0, exitOf("a2 128 0102 03"));
    EXPECT_TRUE(support::Has(Document("sfp dump --page a2" + kBanked).dump(), "01 02 03 00"));
    EXPECT_EQ(0, exitOf("a2 255 00"));
    EXPECT_EQ(2, exitOf("a2 255 0001"));
    EXPECT_EQ(2, exitOf("a2 256 00"));
    EXPECT_EQ(2, exitOf("a2 0 0x1"));
    json refused = Document("sfp write a0 20 58" + kYes);  // protected by the module
    EXPECT_EQ(1, refused["exit"]);
    EXPECT_EQ(false, refused["changed"]);
    EXPECT_TRUE(LockIsFree());
}

TEST_F(SystemNvram, TransceiverFirmwareIsTheTransceiversToJudge) {
    const std::string good = TransceiverImage("2.40");
    Write(File("good.bin"), good);
    Write(File("damaged.bin"), good.substr(0, good.size() - 1) + 'x');
    Write(File("wrong.bin"), std::string(64, 'x'));
    Write(File("empty.bin"), "");
    EXPECT_EQ(8, ExitOf("sfp load" + Quoted("wrong.bin") + kYes));
    EXPECT_EQ(8, ExitOf("sfp load" + Quoted("empty.bin") + kYes));
    EXPECT_EQ(2, ExitOf("sfp load" + Quoted("good.bin") + kBanked));
    const json loaded = Document("sfp load" + Quoted("good.bin") + kYes);
    EXPECT_EQ(0, loaded["exit"]);
    EXPECT_EQ("1.00", loaded["result"]["revision_before"]);
    EXPECT_EQ("2.40", loaded["result"]["revision"]);
    const json damaged = Document("sfp load" + Quoted("damaged.bin") + kYes);
    EXPECT_EQ(1, damaged["exit"]);
    EXPECT_TRUE(support::Has(Error(damaged), "revision 2.40"));
    Fault("scsi:3 --code LoadSfpFirmware --after 1 --do status 44");
    const json stopped = Document("sfp load" + Quoted("good.bin") + kYes);
    EXPECT_EQ(1, stopped["exit"]);
    EXPECT_TRUE(support::Has(Error(stopped), "it answers as"));
    EXPECT_TRUE(LockIsFree());
}

}  // namespace
}  // namespace system_test
