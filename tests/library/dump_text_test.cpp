// Text of firmware dumps, read back line by line: every word of the dump stands in it once, in
// order, under the titles in their order and in the form of its section.
#include "dumps/dump_text.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/dump_text_reader.h"
#include "support/has.h"

namespace {

using dumps::DumpEnd;
using dumps::Extents;
using support::DumpTextReader;
using support::DumpWord;
using support::kDumpHeaderWords;
using support::kDumpSections;

constexpr uint64_t kFileTime = 0x01DC112233445566;

class TextSink final : public dumps::DumpSink {
  public:
    void Write(std::string_view part) override { text += part; }
    dumps::LocalTime ToLocal(uint64_t fileTime) override {
        EXPECT_EQ(kFileTime, fileTime);
        return {2026, 1, 2, 3, 4, 5, 6};
    }
    std::string text;
};

std::vector<uint8_t> AsBytes(const std::vector<uint32_t>& words) {
    std::vector<uint8_t> bytes(words.size() * sizeof(uint32_t));
    memcpy(bytes.data(), words.data(), bytes.size());
    return bytes;
}

// A record of a layout: a header as a driver makes it, then words by their index in the record.
std::vector<uint8_t> RecordOf(uint8_t layout, const Extents& extents) {
    const uint32_t column = dumps::ColumnOfLayout(layout);
    std::vector<uint32_t> words(dumps::RecordBytes(column, extents) / sizeof(uint32_t));
    for (size_t i = 0; i < words.size(); ++i) {
        words[i] = DumpWord(i);
    }
    const uint32_t header[kDumpHeaderWords] = {0x11335577,  // marker
                                               0x7740,      // device
                                               0x12345678,
                                               0xFFFF8880,
                                               0xABC,
                                               0,  // device extension
                                               0x34302E39,
                                               0x2E32302E,
                                               0x00003032,
                                               0,
                                               0,
                                               0,
                                               0,  // "9.04.02.20"
                                               0,
                                               0xC5,  // compress version
                                               static_cast<uint32_t>(kFileTime),
                                               static_cast<uint32_t>(kFileTime >> 32),
                                               0x8B240021,
                                               0x0F1E2DFF,  // port name 21:00:24:8b:ff:2d:1e:0f
                                               1,           // function
                                               9,
                                               8,
                                               5,
                                               0x1AF};
    std::copy(std::begin(header), std::end(header), words.begin());
    return AsBytes(words);
}

struct Rendered {
    DumpEnd end;
    std::string text;
};
Rendered Render(const std::vector<uint8_t>& dump, uint8_t layout, const Extents& extents) {
    // A copy of exactly its size: the sanitizers see a read beyond it.
    const std::vector<uint8_t> exact(dump);
    TextSink sink;
    const DumpEnd end = dumps::WriteDumpText(exact, dumps::ColumnOfLayout(layout), extents, sink);
    return {end, sink.text};
}

constexpr Extents kSmall = {17, 9, 12, 2};

TEST(DumpText, EveryLayoutFromEndToEnd) {
    for (const uint8_t layout : {36, 37, 128, 131, 200}) {
        SCOPED_TRACE(layout);
        const std::vector<uint8_t> dump = RecordOf(layout, kSmall);
        const Rendered rendered = Render(dump, layout, kSmall);
        EXPECT_EQ(DumpEnd::Complete, rendered.end);
        DumpTextReader reader(rendered.text, layout);
        const auto& lines = reader.Lines();
        ASSERT_GT(lines.size(), 10u);
        EXPECT_EQ("Firmware Dump [BEG]", lines[0]);
        EXPECT_EQ(
            "[==>BEG] KPU Debug Dump pDevExt FFFF888012345678:0000000000000ABC DeviceId 7740 "
            "DriverVersion 9.04.02.20 CompressVersion c5 TimeStamp 2026/01/02 03:04:05.6",
            lines[1]);
        EXPECT_EQ("PN 2100248bff2d1e0f", lines[2]);
        EXPECT_EQ("FunctionNumber 1", lines[3]);
        EXPECT_EQ("KPU FW Version 9.08.05 Attributes 01AF", lines[4]);
        const std::set<std::string> titles = reader.ReadSections(5, lines.size() - 2);
        EXPECT_EQ("[<==END] KPU Debug Dump", lines[lines.size() - 2]);
        EXPECT_EQ("Firmware Dump [END]", lines.back());
        EXPECT_EQ('\n', rendered.text.back());
        EXPECT_EQ(dump.size() / 4, reader.WordsRead());
        for (const char* title : {"HCCR Register", "Host Interface Registers", "Shadow registers",
                                  "Mailbox Registers", "RISC GP registers", "FB Hardware registers",
                                  "Code RAM", "External Memory", "FCE Trace Buffer"}) {
            EXPECT_TRUE(titles.contains(title)) << title;
        }
        if (layout >= 131) {
            EXPECT_EQ(std::size(kDumpSections), titles.size());
        }
    }
}

TEST(DumpText, SectionsWithoutDataAreLeftOut) {
    const Rendered rendered = Render(RecordOf(131, {}), 131, {});
    EXPECT_EQ(DumpEnd::Complete, rendered.end);
    DumpTextReader reader(rendered.text, 131);
    const std::set<std::string> titles = reader.ReadSections(5, reader.Lines().size() - 2);
    EXPECT_TRUE(titles.contains("Code RAM"));
    for (const char* title : {"External Memory", "Extended Trace Buffer", "FCE Trace Buffer",
                              "Request Queue", "Priority Queue", "Response Queue"}) {
        EXPECT_FALSE(titles.contains(title)) << title;
    }
}

TEST(DumpText, TextsAndNumbersOfTheHeader) {
    std::vector<uint8_t> dump = RecordOf(36, {});
    memset(&dump[24], 'v', 32);  // a version text that fills its field
    memset(&dump[56], 0xFF, 4);
    memset(&dump[76], 0xFF, 20);
    const std::string text = Render(dump, 36, {}).text;
    EXPECT_TRUE(support::Has(
        text, "DriverVersion " + std::string(32, 'v') + " CompressVersion ffffffff TimeStamp"));
    EXPECT_TRUE(support::Has(text,
                             "FunctionNumber -1\n"
                             "KPU FW Version -1.-1.-1 Attributes FFFFFFFF\n"));
}

TEST(DumpText, SeveralRecordsAndWhatFollowsThem) {
    const std::vector<uint8_t> record = RecordOf(37, kSmall);
    const std::string one = Render(record, 37, kSmall).text;
    std::vector<uint8_t> dump = record;
    dump.insert(dump.end(), record.begin(), record.end());
    const std::string body = one.substr(0, one.size() - strlen("Firmware Dump [END]\n"));
    const std::string both = body + body + "Firmware Dump [END]\n";
    for (const size_t filler : {0, 1, 3, 4, 500}) {
        dump.resize(2 * record.size());
        dump.resize(2 * record.size() + filler);
        const Rendered rendered = Render(dump, 37, kSmall);
        EXPECT_EQ(DumpEnd::Complete, rendered.end);
        EXPECT_TRUE(both == rendered.text) << filler;
    }
}

TEST(DumpText, DumpThatDoesNotBeginWithARecord) {
    std::vector<uint8_t> dump = RecordOf(36, {});
    dump[0] ^= 1;
    for (const size_t size : {dump.size(), size_t{4}, size_t{0}}) {
        dump.resize(size);
        const Rendered rendered = Render(dump, 36, {});
        EXPECT_EQ(DumpEnd::NoRecord, rendered.end);
        EXPECT_EQ("", rendered.text);
    }
    const std::vector<uint8_t> part = {0x77, 0x55, 0x33};
    EXPECT_EQ(DumpEnd::NoRecord, Render(part, 36, {}).end);
}

// Cut anywhere, the text is what it was up to there, in whole lines.
void ExpectCleanCut(const std::vector<uint8_t>& dump, size_t size, uint8_t layout,
                    const Extents& extents, const std::string& whole) {
    const Rendered cut =
        Render({dump.begin(), dump.begin() + static_cast<ptrdiff_t>(size)}, layout, extents);
    const std::string end = "Firmware Dump [END]\n";
    ASSERT_EQ(DumpEnd::CutShort, cut.end) << size;
    ASSERT_TRUE(cut.text.ends_with(end)) << size;
    const std::string before = cut.text.substr(0, cut.text.size() - end.size());
    if (!before.empty()) {
        ASSERT_EQ('\n', before.back()) << size;
        ASSERT_TRUE(whole.starts_with(before.substr(0, before.size() - 1))) << size;
        ASSERT_FALSE(before.ends_with(": \n")) << "a line that holds an address alone, at " << size;
    }
}

TEST(DumpText, DumpThatEndsEarly) {
    const std::vector<uint8_t> small = RecordOf(36, {3, 0, 2, 0});
    const std::string smallText = Render(small, 36, {3, 0, 2, 0}).text;
    for (size_t size = 4; size < small.size(); size += 11) {
        ExpectCleanCut(small, size, 36, {3, 0, 2, 0}, smallText);
    }
    // The sections behind the code RAM, of which only larger layouts have all.
    const std::vector<uint8_t> large = RecordOf(131, kSmall);
    const std::string largeText = Render(large, 131, kSmall).text;
    for (size_t size = large.size() - 4 * (64 * 6 + 60); size < large.size(); size += 5) {
        ExpectCleanCut(large, size, 131, kSmall, largeText);
    }
    ExpectCleanCut(large, large.size() - 1, 131, kSmall, largeText);
}

TEST(DumpText, HeaderThatClaimsMoreThanAnyDumpHolds) {
    const Extents most = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
    std::vector<uint8_t> dump = RecordOf(131, kSmall);
    for (const uint8_t layout : {36, 131}) {
        const Rendered rendered = Render(dump, layout, most);
        EXPECT_EQ(DumpEnd::CutShort, rendered.end);
        EXPECT_LT(rendered.text.size(), 4 * dump.size());
    }
    // Three word counts and three kinds of queues of 64 words each: no sum wraps around.
    EXPECT_LT(uint64_t{0xFFFFFFFF} * 4 * (3 + 3 * 64), dumps::RecordBytes(3, most));
    const Extents queues = {0, 0, 0, 0xFFFFFFFF};
    EXPECT_EQ(DumpEnd::CutShort, Render(dump, 131, queues).end);
}

}  // namespace
