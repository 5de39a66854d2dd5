// What an update leaves of an adapter of every kind of flash when power, the program, the disk or
// the device fail it. Short wherever all tests run; scripts/reliability.sh runs the long form and
// makes a table of what it counted.
#include <functional>

#include "support/rounds.h"
#include "update_fixture.h"

namespace system_test {
namespace {

constexpr uint32_t kKib = 1024;
constexpr uint32_t kChunk = 64 * kKib;
constexpr int kBootCopy = 17;  // written along with boot code

struct FlashKind {
    const char* name;
    Updated adapter;
    uint32_t written;  // bytes that an update writes
    uint32_t used;     // bytes of the flash before what no adapter uses
};
const FlashKind kKinds[] = {
    {"classic", {"scsi:20", "E00001", {255}}, 128 * kKib, 128 * kKib},
    {"large ROM", {"scsi:21", "EMU7404F0002", {7, 1}}, 448 * kKib, 512 * kKib},
    {"large ROM, second", {"scsi:22", "EMU7502F0003", {7, 1}}, 640 * kKib, 768 * kKib},
    {"regions", {"scsi:23", "EMU7601F0004", {7, 1}}, 768 * kKib, 1024 * kKib},
    {"secure", {"scsi:24", "EMU7700F0005", {7, 1}}, 768 * kKib, 1280 * kKib},
    {"banked", {"scsi:25", "EMU7740F0006", {7, 1}}, 768 * kKib, 1280 * kKib},
    {"banked, staged", {"scsi:26", "EMU7740F0007", {7, 1}}, 768 * kKib, 1280 * kKib},
};

bool IsLong() {
    return support::NumberOfEnvironment("VXMGMT_RELIABILITY", 0) != 0;
}

int FailuresSoFar() {
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

// One row of the table: cases that are alike.
class Cases {
  public:
    Cases(const FlashKind& kind, const char* what) : kind_(kind.name), what_(what) {}
    ~Cases() {
        if (const char* const file = std::getenv("VXMGMT_RELIABILITY_ROWS")) {
            std::ofstream(file, std::ios::app)
                << kind_ << ";" << what_ << ";" << cases_ << ";" << failures_ << ";"
                << (milliseconds_ + 500) / 1000 << "\n";
        }
    }
    Cases(const Cases&) = delete;
    Cases& operator=(const Cases&) = delete;

    // False when the case failed.
    bool Run(const std::string& name, const std::function<void()>& run) {
        SCOPED_TRACE(kind_ + ", " + what_ + ", " + name);
        const int before = FailuresSoFar();
        const ULONGLONG begun = GetTickCount64();
        run();
        milliseconds_ += GetTickCount64() - begun;
        ++cases_;
        const bool failed = FailuresSoFar() != before;
        failures_ += failed ? 1 : 0;
        return !failed;
    }

  private:
    const std::string kind_;
    const std::string what_;
    ULONGLONG milliseconds_ = 0;
    int cases_ = 0;
    int failures_ = 0;
};

class SystemReliability : public UpdateFixture {
  protected:
    SystemReliability() { profile_ = "\"" VXMGMT_SOURCE_FOLDER "/tests/system/every_flash.json\""; }
    void SetUp() override {
        UpdateFixture::SetUp();
        ForgetAll();
    }
    void TearDown() override {
        UpdateFixture::TearDown();
        ForgetAll();
    }

    static void ForgetAll() {
        for (const FlashKind& kind : kKinds) {
            Forget(kind.adapter.serial);
        }
    }
    void StartAnew() {
        StopDriver();
        ForgetAll();
        StartDriver(profile_);
    }

    // Learns what an adapter holds before an update and after one.
    void Use(const FlashKind& kind) {
        kind_ = &kind;
        files_ = Files(kind.adapter, "9.20.00", "3.99");
        before_ = Look();
        EXPECT_EQ(0, Update());
        after_ = Look();
        EXPECT_FALSE(before_ == after_);
        EXPECT_EQ(0, Restore());
        EXPECT_TRUE(before_ == Look());
    }

    // A case that failed leaves nothing to those behind it.
    void Count(Cases& cases, const std::string& name, const std::function<void()>& run) {
        if (!cases.Run(name, run)) {
            StartAnew();
        }
    }

    static int Exit(const std::string& arguments) {
        return static_cast<int>(Document(arguments)["exit"].number());
    }
    int Update() { return Exit("fw update" + files_ + kind_->adapter.Sure()); }
    int Resume() { return Exit("fw update --resume" + kind_->adapter.Sure()); }
    int Restore() { return Exit("fw restore latest" + kind_->adapter.Sure()); }
    // All regions; in the short form in one piece, without the large ones that nothing uses.
    Regions Look() {
        fs::remove_all(File("look"));
        if (IsLong()) {
            return AllRegions("look", kind_->adapter.Selected());
        }
        EXPECT_EQ(0, Exit("flash read" + Quoted("look") + " --offset 0 --length " +
                          std::to_string(kind_->used) + kind_->adapter.Selected()));
        return {{"", BytesOf(File("look"))}};
    }
    // What it is with the regions of the update as they were before.
    Regions WithOldCode(Regions now) const {
        for (auto& [file, bytes] : now) {
            const int code = std::atoi(file.c_str());
            const std::vector<int>& codes = kind_->adapter.codes;
            if (code == kBootCopy || std::find(codes.begin(), codes.end(), code) != codes.end()) {
                bytes = before_.at(file);
            }
        }
        return now;
    }

    void Arm(uint32_t bytes) {
        EXPECT_EQ(0u, Vxemu("flash power-fail " + kind_->adapter.port + " --after-bytes " +
                            std::to_string(bytes))
                          .exit);
    }
    void Reset() { EXPECT_EQ(0u, Vxemu("reset " + kind_->adapter.port).exit); }
    void CutUpdate(uint32_t bytes) {
        Arm(bytes);
        EXPECT_EQ(1, Update());
        Reset();
    }

    void ExpectBefore() { EXPECT_TRUE(before_ == Look()) << "not what was there before"; }
    void ExpectAfter() { EXPECT_TRUE(after_ == Look()) << "not what the update writes"; }

    // Brings back what an update left, or finishes it and takes it back as any other.
    void BringBack() {
        EXPECT_EQ(0, Restore());
        ExpectBefore();
    }
    void Finish() {
        EXPECT_EQ(0, Resume());
        ExpectAfter();
        BringBack();
    }

    // Every chunk's start, and a place inside of each; in the short form a few of them.
    static std::vector<uint32_t> Cuts(const FlashKind& kind) {
        std::vector<uint32_t> cuts;
        for (uint32_t at = 0; at < kind.written; at += kChunk) {
            cuts.push_back(at);
            cuts.push_back(at + kChunk / 2 + 1);
        }
        return Some(cuts, 3);
    }
    template <class Element>
    static std::vector<Element> Some(const std::vector<Element>& all, size_t few) {
        if (IsLong() || all.size() <= few) {
            return all;
        }
        std::vector<Element> some;
        for (size_t i = 0; i < few; ++i) {
            some.push_back(all[(2 * i + 1) * all.size() / (2 * few)]);
        }
        return some;
    }

    // Kills `command` when the driver has got so many requests, which the last of them holds up.
    // False when it ended before.
    bool KillAt(const std::string& command, int request) {
        Fault(kind_->adapter.port + " --after " + std::to_string(request) +
              " --times 1 --do hang 5000");
        support::Program program("vxmgr.exe", command + kind_->adapter.Sure());
        const auto acted = [] {
            return VxemuDocument("fault list")["result"]["faults"][0]["acted"] == 1;
        };
        bool killed = false;
        while (!killed && program.Running()) {
            if (acted()) {
                program.Kill();
                killed = true;
            }
        }
        EXPECT_EQ(0u, Vxemu("fault clear").exit);
        return killed;
    }

    const FlashKind* kind_ = nullptr;
    std::string files_;
    Regions before_;
    Regions after_;
};

TEST_F(SystemReliability, PowerCutsAreUndoneAndFinished) {
    for (const FlashKind& kind : kKinds) {
        Use(kind);
        Cases undone(kind, "power cut, brought back");
        Cases finished(kind, "power cut, finished");
        bool other = false;
        for (const uint32_t cut : Cuts(kind)) {
            const std::string name = "cut after " + std::to_string(cut);
            other = !other;
            if (IsLong() || other) {
                Count(undone, name, [&] {
                    CutUpdate(cut);
                    if (IsLong()) {
                        EXPECT_TRUE(before_ == WithOldCode(Look())) << "other regions changed";
                    }
                    BringBack();
                });
            }
            if (IsLong() || !other) {
                Count(finished, name, [&] {
                    CutUpdate(cut);
                    Finish();
                });
            }
        }
    }
}

TEST_F(SystemReliability, CutsOfTheWayBackAreUndone) {
    for (const FlashKind& kind : Some(std::vector(std::begin(kKinds), std::end(kKinds)), 1)) {
        Use(kind);
        Cases cases(kind, "power cut of a restore");
        for (const uint32_t cut : Cuts(kind)) {
            Count(cases, "cut after " + std::to_string(cut), [&] {
                // Half of an update; the way back has that much to write.
                CutUpdate(kind.written - kChunk / 2);
                Arm(cut);
                const int exit = Restore();
                Reset();
                if (exit == 0) {
                    ExpectBefore();  // it had less to write
                } else {
                    EXPECT_EQ(1, exit);
                    BringBack();
                }
            });
        }
    }
}

TEST_F(SystemReliability, ChangedBackupsAreNotWritten) {
    for (const FlashKind& kind : Some(std::vector(std::begin(kKinds), std::end(kKinds)), 1)) {
        Use(kind);
        Cases cases(kind, "backup changed, then gone");
        for (const uint32_t cut : Cuts(kind)) {
            Count(cases, "cut after " + std::to_string(cut), [&] {
                CutUpdate(cut);
                const Regions left = Look();
                const fs::path file =
                    Journals(kind.adapter.serial).back() /
                    ("region-" + std::to_string(kind.adapter.codes.back()) + ".old");
                const Data good = BytesOf(file);
                Data bad = good;
                bad[cut % bad.size()] ^= 1;
                WriteFile(file, bad);
                EXPECT_EQ(8, Restore());
                fs::remove(file);
                EXPECT_EQ(8, Restore());
                EXPECT_TRUE(left == Look()) << "something was written";
                WriteFile(file, good);
                BringBack();
            });
        }
    }
}

// A killed program leaves what a power cut leaves, at any of its requests.
TEST_F(SystemReliability, KilledProgramsAreUndoneAndFinished) {
    const FlashKind* const kFew[] = {&kKinds[5], &kKinds[2], &kKinds[6]};
    for (const FlashKind* kind : Some(std::vector(std::begin(kFew), std::end(kFew)), 1)) {
        Use(*kind);
        std::set<std::string> phases;
        Cases cases(*kind, "killed at a request");
        const int step = !IsLong() ? 55 : kind == kFew[0] ? 1 : 4;
        bool alive = true;
        for (int request = 0; alive; request += step) {
            Count(cases, "request " + std::to_string(request), [&] {
                alive = KillAt("fw update" + files_, request);
                const json journal = JournalOf(kind->adapter.serial);
                const std::string phase = journal.is_null() ? "" : journal["phase"].text();
                phases.insert(phase);
                if (phase == "writing" || phase == "activating") {
                    request / step % 2 == 0 ? BringBack() : Finish();
                } else if (phase == "done") {
                    ExpectAfter();
                    BringBack();
                } else {
                    ExpectBefore();
                }
                Forget(kind->adapter.serial);
            });
        }
        for (const char* phase : {"", "planned", "writing", "activating", "done"}) {
            EXPECT_TRUE(!IsLong() || phases.contains(phase)) << "never killed while " << phase;
        }
    }
}

TEST_F(SystemReliability, KilledRestoresAreRepeated) {
    Use(kKinds[5]);
    Cases cases(kKinds[5], "restore killed at a request");
    bool alive = true;
    for (int request = 0; alive; request += IsLong() ? 3 : 50) {
        Count(cases, "request " + std::to_string(request), [&] {
            EXPECT_EQ(0, Update());
            alive = KillAt("fw restore latest", request);
            BringBack();
            Forget(kind_->adapter.serial);
        });
    }
}

// The device gives wrong bytes once, at any of the reads: in the plan, in what is kept, behind the
// write. Whatever becomes of the update, the way back leads to what was there.
TEST_F(SystemReliability, LyingReadsSpoilNoBackup) {
    const FlashKind* const kFew[] = {&kKinds[2], &kKinds[3], &kKinds[6]};
    for (const FlashKind* kind : Some(std::vector(std::begin(kFew), std::end(kFew)), 1)) {
        Use(*kind);
        Cases cases(*kind, "one read that lies");
        bool acted = true;
        for (int read = 0; acted; read += IsLong() ? 1 : 7) {
            Count(cases, "read " + std::to_string(read), [&] {
                Fault(kind->adapter.port + " --code FlashRead --after " + std::to_string(read) +
                      " --times 1 --do corrupt");
                const int exit = Update();
                acted = VxemuDocument("fault list")["result"]["faults"][0]["acted"] == 1;
                EXPECT_EQ(0u, Vxemu("fault clear").exit);
                if (exit == 0) {
                    ExpectAfter();
                }
                const json journal = JournalOf(kind->adapter.serial);
                const std::string phase = journal.is_null() ? "" : journal["phase"].text();
                if (phase == "writing" || phase == "activating" || phase == "done") {
                    EXPECT_EQ(0, Restore());
                }
                ExpectBefore();
                Forget(kind->adapter.serial);
            });
        }
    }
}

TEST_F(SystemReliability, OneOfTwoUpdatesIsMade) {
    Use(kKinds[5]);
    Cases cases(kKinds[5], "two updates at once");
    for (int i = 0; i < (IsLong() ? 25 : 1); ++i) {
        Count(cases, std::to_string(i), [&] {
            support::Program first("vxmgr.exe", "fw update" + files_ + kind_->adapter.Sure());
            Sleep(static_cast<DWORD>(i % 5) * 20);
            support::Program second("vxmgr.exe", "fw update" + files_ + kind_->adapter.Sure());
            const support::Ended ends[] = {first.Wait(), second.Wait()};
            // The one that is late is kept out, sees another's change, or has nothing to do.
            EXPECT_TRUE(ends[0].exit == 0 || ends[1].exit == 0) << ends[0].err << ends[1].err;
            for (const support::Ended& end : ends) {
                EXPECT_TRUE(end.exit == 0 || end.exit == 6 || end.exit == 8) << end.exit << end.err;
            }
            ExpectAfter();
            BringBack();
            Forget(kind_->adapter.serial);
        });
    }
}

}  // namespace
}  // namespace system_test
