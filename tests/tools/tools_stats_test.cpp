// Link counters: differences over wraps and resets, and what counts as an error.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "common/redaction.h"
#include "common/render.h"
#include "support/has.h"
#include "vxmgr/ports/stats_counters.h"

namespace {

using namespace vxmgr;

HX_STATISTICS Statistics(uint32_t seconds, uint32_t txFrames, uint32_t linkFailures = 0) {
    HX_STATISTICS statistics{};
    statistics.secondsSinceReset = seconds;
    statistics.txFrames = txFrames;
    statistics.linkFailures = linkFailures;
    return statistics;
}

TEST(ToolsStats, DifferencesWrapAndBeginAnewWithAReset) {
    const HX_STATISTICS before = Statistics(100, 0xFFFFFFF0, 7);
    const HX_STATISTICS wrapped = CountedBetween(before, Statistics(105, 0x10, 8));
    EXPECT_EQ(wrapped.secondsSinceReset, 5u);
    EXPECT_EQ(wrapped.txFrames, 0x20u);
    EXPECT_EQ(wrapped.linkFailures, 1u);
    EXPECT_FALSE(WasReset(before, Statistics(100, 0)));

    const HX_STATISTICS anew = CountedBetween(before, Statistics(99, 3, 2));
    EXPECT_TRUE(WasReset(before, Statistics(99, 3, 2)));
    EXPECT_EQ(anew.secondsSinceReset, 99u);
    EXPECT_EQ(anew.txFrames, 3u);
    EXPECT_EQ(anew.linkFailures, 2u);
}

TEST(ToolsStats, EveryWordWithAMeaningHasItsCounter) {
    HX_STATISTICS statistics{};
    uint32_t words[sizeof statistics / 4];
    for (uint32_t i = 0; i < std::size(words); ++i) {
        words[i] = 1000 + i;
    }
    std::memcpy(&statistics, words, sizeof statistics);
    std::set<uint32_t> values;
    std::set<std::string> keys;
    for (const StatsCounter& counter : StatsCounters()) {
        values.insert(CounterOf(statistics, counter));
        keys.insert(counter.key);
    }
    EXPECT_EQ(*values.begin(), 1000u);
    EXPECT_EQ(*values.rbegin(), 1011u);
    EXPECT_EQ(values.size(), 12u);
    EXPECT_EQ(keys.size(), 12u);

    const tools::Record record = CounterFields().Make(statistics);
    tools::Redactor redactor(false);
    const std::string text = tools::RenderText(record, {false, &redactor});
    EXPECT_TRUE(support::Has(text, "1000 s")) << text;
    EXPECT_TRUE(support::Has(text, "CRC errors                  1011\n")) << text;
    const tools::Record none = CounterFields().Make(std::nullopt);
    for (const tools::Field& field : none.Fields()) {
        EXPECT_TRUE(field.value.IsNull()) << field.key;
    }
}

TEST(ToolsStats, OnlyErrorsAreErrors) {
    HX_STATISTICS statistics = Statistics(100, 5000);
    statistics.lipCount = 3;
    EXPECT_EQ(LinkErrorsText(statistics), "");
    statistics.linkFailures = 1;
    statistics.lossesOfSync = 2;
    statistics.invalidCrcs = 0xFFFFFFFF;
    EXPECT_EQ(LinkErrorsText(statistics),
              "1 link failure, 2 losses of synchronisation, 4294967295 CRC errors");
    statistics.reserved[0] = 9;
    statistics.primitiveSequenceErrors = 1;
    EXPECT_TRUE(support::Has(LinkErrorsText(statistics), "1 primitive sequence error,"));
}

}  // namespace
