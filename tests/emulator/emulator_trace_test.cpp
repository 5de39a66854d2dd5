// The record of what the emulated ports were asked.
#include "emulator/emulator_model_fixture.h"

namespace {

using namespace emulator_test;

class EmulatorTrace : public ModelFixture {
  protected:
    bool Start() {
        vxemu::TraceName name = {};
        std::strcpy(name.file, "C:\\requests.jsonl");
        uint32_t started = 0;
        EXPECT_EQ(Control(control::kTraceStart, name, &started), Done);
        return started != 0;
    }
    std::unique_ptr<vxemu::TracePiece> Read(uint64_t from = 0) {
        auto piece = std::make_unique<vxemu::TracePiece>();
        std::memcpy(piece.get(), &from, sizeof from);
        uint32_t returned = 0;
        EXPECT_EQ(model_->Control(control::kTraceRead, reinterpret_cast<uint8_t*>(piece.get()),
                                  sizeof from, sizeof *piece, &returned),
                  Done);
        EXPECT_EQ(returned, sizeof *piece);
        return piece;
    }
};

TEST_F(EmulatorTrace, RecordsRequestsOfEveryKindAndHowTheyEnded) {
    EXPECT_EQ(Read()->running, 0);
    host_.failAt = 0;
    EXPECT_FALSE(Start()) << "no memory";
    host_.failAt = -1;
    ASSERT_TRUE(Start());
    EXPECT_FALSE(Start()) << "runs already";
    AddFault({3, kAnyCode, kAnySubCode, 2, 1, FaultKind::Busy, 0, 0});
    Ask(kNewest, DportDiagnostic, 72);
    host_.clock += 7;
    Ask(kNewest, PortProperties, 1);
    Ask(kNewest, PortProperties, 256);
    AskPlain(kLegacy, LegacyPortAndNode, {}, 100);
    const auto piece = Read();
    ASSERT_EQ(piece->count, 4u);
    EXPECT_STREQ(piece->name.file, "C:\\requests.jsonl");
    const struct {
        uint32_t port, code, subCode, completion, status;
        uint64_t time;
    } expected[] = {
        {3, DportDiagnostic.code, DportDiagnostic.subCode, 0, 43, 1000},
        {3, PortProperties.code, PortProperties.subCode, 0, 16, 1007},
        {3, PortProperties.code, PortProperties.subCode, 1, 0, 1007},
        {9, LegacyPortAndNode, vxemu::kPlainRequest, 0, 0, 1007},
    };
    for (uint32_t at = 0; at < piece->count; ++at) {
        const vxemu::TraceEntry& entry = piece->entries[at];
        EXPECT_EQ(entry.scsiPort, expected[at].port) << at;
        EXPECT_EQ(entry.code, expected[at].code) << at;
        EXPECT_EQ(entry.subCode, expected[at].subCode) << at;
        EXPECT_EQ(entry.completion, expected[at].completion) << at;
        EXPECT_EQ(entry.status, expected[at].status) << at;
        EXPECT_EQ(entry.time, expected[at].time) << at;
    }
    EXPECT_EQ(piece->entries[1].outputLength, sizeof(ExtRequest) + 1);
    EXPECT_EQ(piece->entries[2].returned, 0u);

    // The oldest give way; a piece begins with what is left, and ends with its room.
    for (uint32_t request = 0; request < vxemu::kTraceEntries; ++request) {
        Ask(1, PortDisableInfo, 1, {0});
    }
    const auto later = Read();
    EXPECT_EQ(later->lost, 4u);
    EXPECT_EQ(later->first, 4u);
    EXPECT_EQ(later->count, std::size(later->entries));
    EXPECT_EQ(later->entries[0].scsiPort, 4u);
    EXPECT_EQ(Read(later->end - 1)->count, 1u);
    EXPECT_EQ(Read(later->end + 5)->count, 0u);

    // Ended: nothing comes any more, and what has come can still be read.
    const auto stop = [&](uint32_t drop) {
        uint32_t stopped = 9;
        EXPECT_EQ(Control(control::kTraceStop, vxemu::TraceStop{drop}, &stopped), Done);
        return stopped;
    };
    EXPECT_EQ(stop(0), 1u);
    Ask(kNewest, PortProperties, 256);
    const auto ended = Read(later->end - 1);
    EXPECT_EQ(ended->count, 1u);
    EXPECT_EQ(ended->running, 0);
    EXPECT_EQ(ended->kept, 1);
    EXPECT_FALSE(Start()) << "this one is not written yet";
    EXPECT_EQ(stop(1), 1u);
    EXPECT_EQ(stop(0), 0u);
    EXPECT_EQ(Read()->kept, 0);
    EXPECT_EQ(Read()->count, 0u);
    ASSERT_TRUE(Start()) << "and Destroy releases it";
    EXPECT_EQ(Read()->end, 0u);
}

}  // namespace
