// Dumps of the emulated adapters: sizes, pieces, and what hostile headers meet.
#include "emulator/emulator_model_fixture.h"

#include "dumps/dump_format.h"
#include "dumps/dump_records.h"
#include "properties/chip_families.h"
#include "support/has.h"

namespace {

using namespace emulator_test;

class EmulatorDump : public ModelFixture {
  protected:
    template <typename Header>
    Answer Fetch(Command command, Header header, uint32_t room, uint32_t port = kNewest) {
        return Ask(port, command, sizeof header + room, BytesOf(header));
    }

    // The whole dump, fetched in pieces of that size; the size query comes first.
    template <typename Header>
    Bytes Whole(Command command, Header header, uint32_t pieceSize, uint32_t port = kNewest) {
        header.length = 0;
        const Answer query = Fetch(command, header, 1, port);
        EXPECT_EQ(query.Status(), Success);
        std::memcpy(&header, query.data.data(), sizeof header);
        Bytes dump;
        const uint32_t size = header.length;
        while (dump.size() < size) {
            header.length = pieceSize;
            header.offset = static_cast<uint32_t>(dump.size());
            const Answer piece = Fetch(command, header, pieceSize, port);
            if (piece.Status() != Success || piece.data.size() <= sizeof header) {
                ADD_FAILURE() << "at " << dump.size();
                break;
            }
            std::memcpy(&header, piece.data.data(), sizeof header);
            EXPECT_EQ(piece.data.size(), sizeof header + header.length);
            dump.insert(dump.end(), piece.data.begin() + sizeof header,
                        piece.data.begin() + sizeof header + header.length);
        }
        EXPECT_EQ(dump.size(), size);
        return dump;
    }

    static dumps::MiniHeader Mini(uint8_t part) {
        dumps::MiniHeader header = {};
        header.part = part;
        return header;
    }

    void Force(uint32_t port = kNewest) { EXPECT_EQ(Ask(port, ForceDump, 0).Status(), Success); }
};

TEST_F(EmulatorDump, NoneBeforeOneIsForced) {
    const dumps::RawHeader raw = {};
    EXPECT_EQ(Fetch(RawFirmwareDump, raw, 1).Status(), NoDump);
    EXPECT_EQ(Fetch(RawMpiDump, raw, 1).Status(), NoDump);
    EXPECT_EQ(Fetch(MctpDump, dumps::MctpHeader{}, 1).Status(), NoDump);
    EXPECT_EQ(Fetch(MiniDump, Mini(1), 1).Status(), NoDump);
    EXPECT_EQ(Fetch(FirmwareDump, dumps::TextHeader{}, 4).Status(), NoDump);
    Force();
    EXPECT_EQ(Fetch(RawFirmwareDump, raw, 1).Status(), Success);
    EXPECT_EQ(Fetch(RawFirmwareDump, raw, 1, 1).Status(), NoDump)
        << "the other port of the adapter has none";
    Set(3, "raw_dump_bytes", 0, 4);
    EXPECT_EQ(Fetch(RawFirmwareDump, raw, 1).Status(), NoDump);
    Set(6, "dump_present", 1);
    EXPECT_EQ(Fetch(MctpDump, dumps::MctpHeader{}, 1, kLargeRom).Status(), Success);
}

TEST_F(EmulatorDump, PiecesMakeTheSameDumpWhateverTheirSize) {
    Force();
    for (uint32_t size : {32767u, 32768u, 32769u, 1u}) {
        Set(3, "raw_dump_bytes", size, 4);
        const Bytes whole = Whole(RawFirmwareDump, dumps::RawHeader{}, 32768);
        EXPECT_EQ(whole.size(), size);
        EXPECT_EQ(Whole(RawFirmwareDump, dumps::RawHeader{}, 1001), whole);
    }
    const Bytes part1 = Whole(MiniDump, Mini(1), 32768);
    const Bytes part2 = Whole(MiniDump, Mini(2), 32768);
    EXPECT_EQ(part1.size(), 32768u);
    EXPECT_EQ(part2.size(), 1000u);
    EXPECT_NE(Bytes(part1.begin(), part1.begin() + 1000), part2);
    EXPECT_EQ(Whole(MctpDump, dumps::MctpHeader{}, 32768).size(), 32769u);
    EXPECT_EQ(Whole(RawMpiDump, dumps::RawHeader{}, 32768).size(), 65536u);
    // Another dump holds something else.
    const Bytes before = Whole(RawMpiDump, dumps::RawHeader{}, 32768);
    Force();
    EXPECT_NE(Whole(RawMpiDump, dumps::RawHeader{}, 32768), before);
}

TEST_F(EmulatorDump, HeadersThatLie) {
    Force();
    Set(3, "raw_dump_bytes", 100, 4);
    auto fetch = [&](uint32_t length, uint32_t offset, uint32_t room) {
        dumps::RawHeader header = {};
        header.length = length;
        header.offset = offset;
        const Answer answer = Fetch(RawFirmwareDump, header, room);
        if (answer.data.size() >= sizeof header) {
            std::memcpy(&header, answer.data.data(), sizeof header);
        }
        return std::pair{answer.Status(), uint32_t{header.length}};
    };
    EXPECT_EQ(fetch(32768, 99, 32768), (std::pair{Success, 1u}));
    EXPECT_EQ(fetch(32768, 100, 32768), (std::pair{Success, 0u}));
    EXPECT_EQ(fetch(32768, 101, 32768).first, InvalidParameter);
    EXPECT_EQ(fetch(32768, 0xFFFFFFFF, 32768).first, InvalidParameter);
    EXPECT_EQ(fetch(0xFFFFFFFF, 1, 50), (std::pair{Success, 50u}));
    EXPECT_EQ(fetch(0, 0, 0), (std::pair{Success, 100u}));
    for (uint8_t part : {0, 3, 255}) {
        EXPECT_EQ(Fetch(MiniDump, Mini(part), 1).Status(), InvalidParameter);
    }
    EXPECT_EQ(Ask(kNewest, RawFirmwareDump, 71, Bytes(72)).Status(), InvalidParameter);
    EXPECT_EQ(Ask(kNewest, RawFirmwareDump, 72, Bytes(71)).Status(), InvalidParameter);
}

// Every chip that has a layout: the record is as long as its sections say, and its marker stands
// at the start alone.
TEST_F(EmulatorDump, TextRecordsOfEveryLayout) {
    Start("full");
    uint32_t layouts = 0;
    for (uint32_t port = 0; port < 26; ++port) {
        const auto chip = Ask(port, ChipProperties, 80).As<properties::ChipReply>();
        const properties::Chip row = properties::ChipOf(chip.deviceId);
        if (!row.Has(properties::ChipTrait::Newer)) {
            continue;
        }
        SCOPED_TRACE(chip.deviceId);
        Force(port);
        const uint8_t layout = row.Has(properties::ChipTrait::Newest) ? 200 : row.dumpLayout;
        if (layout == 0) {
            EXPECT_EQ(Fetch(FirmwareDump, dumps::TextHeader{}, 4, port).Status(), InvalidRequest);
            continue;
        }
        ++layouts;
        const Bytes dump = Whole(FirmwareDump, dumps::TextHeader{}, 32768, port);
        EXPECT_EQ(dump.size(),
                  dumps::RecordBytes(dumps::ColumnOfLayout(layout), {4096, 256, 256, 2}));
        std::vector<uint32_t> words(dump.size() / 4);
        std::memcpy(words.data(), dump.data(), dump.size());
        EXPECT_EQ(words[0], dumps::kRecordMarker);
        EXPECT_EQ(std::count(words.begin(), words.end(), dumps::kRecordMarker), 1);
        EXPECT_EQ(words[1], chip.deviceId);
    }
    EXPECT_EQ(layouts, 20u);
}

TEST_F(EmulatorDump, TextRecordFollowsItsSizes) {
    Set(3, "dump_words", 8, 4);
    Set(3, "dump_trace_words", 0, 4);
    Set(3, "dump_fce_words", 16, 4);
    Set(3, "dump_queues", 0, 4);
    Force();
    const Answer query = Fetch(FirmwareDump, dumps::TextHeader{}, 4);
    dumps::TextHeader header;
    std::memcpy(&header, query.data.data(), sizeof header);
    EXPECT_EQ(+header.externalMemoryWords, 8u);
    EXPECT_EQ(+header.fceWords, 16u);
    EXPECT_EQ(header.formatVersion, 3);
    const uint32_t column = dumps::ColumnOfLayout(dumps::kNewestLayout);
    EXPECT_EQ(+header.length, dumps::RecordBytes(column, {8, 0, 16, 0}));
    // Pieces at odd places.
    const Bytes whole = Whole(FirmwareDump, dumps::TextHeader{}, 32768);
    EXPECT_EQ(Whole(FirmwareDump, dumps::TextHeader{}, 97), whole);
    Force();
    EXPECT_NE(Whole(FirmwareDump, dumps::TextHeader{}, 32768), whole);
}

}  // namespace
