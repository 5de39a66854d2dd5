// Link counters: differences over wraps and resets, and what counts as an error.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "records/csv.h"
#include "records/redaction.h"
#include "records/render.h"
#include "support/has.h"
#include "vxmgr/ports/stats_fields.h"

namespace {

using namespace vxmgr;

HX_STATISTICS Statistics(uint32_t seconds, uint32_t txFrames, uint32_t linkFailures = 0) {
    HX_STATISTICS statistics{};
    statistics.secondsSinceReset = seconds;
    statistics.txFrames = txFrames;
    statistics.linkFailures = linkFailures;
    return statistics;
}

PortCounters LinkOf(const HX_STATISTICS& statistics) {
    PortCounters counters;
    counters.link = Widened(statistics);
    return counters;
}

TEST(ToolsStats, DifferencesWrapAndBeginAnewWithAReset) {
    const PortCounters before = LinkOf(Statistics(100, 0xFFFFFFF0, 7));
    const PortCounters wrapped = CountedBetween(before, LinkOf(Statistics(105, 0x10, 8)));
    EXPECT_EQ(wrapped.link->secondsSinceReset, 5u);
    EXPECT_EQ(wrapped.link->txFrames, 0x20u);
    EXPECT_EQ(wrapped.link->linkFailures, 1u);
    EXPECT_EQ(wrapped.link->nosCount, HX_NOT_COUNTED) << "the older record has none";
    EXPECT_FALSE(WasReset(before, LinkOf(Statistics(100, 0))));

    const PortCounters last = LinkOf(Statistics(99, 3, 2));
    const PortCounters anew = CountedBetween(before, last);
    EXPECT_TRUE(WasReset(before, last));
    EXPECT_EQ(anew.link->secondsSinceReset, 99u);
    EXPECT_EQ(anew.link->txFrames, 3u);
    EXPECT_EQ(anew.link->linkFailures, 2u);

    PortCounters wide = LinkOf(Statistics(1, 0));
    PortCounters wider = LinkOf(Statistics(2, 0));
    wide.link->txFrames = 0x1FFFFFFFF;
    wider.link->txFrames = 0x300000000;
    EXPECT_EQ(CountedBetween(wide, wider).link->txFrames, 0x100000001u);
}

// Each group begins anew by itself; what is a state, or a maximum, is no difference.
TEST(ToolsStats, GroupsAreCountedEachForItself) {
    PortCounters before, after;
    before.driver.emplace().secondsSinceReset = 50;
    before.driver->commandsStarted = 90;
    before.driver->commandsOutstanding = 7;
    after.driver.emplace().secondsSinceReset = 60;
    after.driver->commandsStarted = 95;
    after.driver->commandsOutstanding = 3;
    before.latency.emplace().secondsSinceReset = 50;
    after.latency.emplace().secondsSinceReset = 4;
    after.latency->buckets = HX_LATENCY_BUCKETS;
    before.latency->reads[6] = 900;
    after.latency->reads[6] = 8;
    after.latency->readTime = 1000;
    HX_PORT_SCM_STATISTICS remote{};
    remote.fpins.creditStall = 5;
    before.scm = ScmOfRemotePort(remote);
    remote.fpins.creditStall = 6;
    after.scm = ScmOfRemotePort(remote);
    const PortCounters between = CountedBetween(before, after);
    EXPECT_TRUE(WasReset(before, after));
    EXPECT_EQ(between.driver->commandsStarted, 5u);
    EXPECT_EQ(between.driver->commandsOutstanding, 3u);
    EXPECT_EQ(between.latency->reads[6], 8u);
    EXPECT_EQ(between.scm->record.fpins.creditStall, 1u);
    EXPECT_TRUE(WasReset(after, before)) << "what concerns a remote port only grows";

    // Without a reset every part is a difference.
    PortCounters first, second;
    for (PortCounters* counters : {&first, &second}) {
        const uint64_t value = counters == &first ? 10 : 13;
        HX_PORT_STATISTICS_V2& traffic = counters->traffic.emplace();
        traffic.fcp.inputRequests = traffic.nvme.outputBytes = value;
        traffic.abtsSent = traffic.port.rxWords = value;
        HX_PRIVATE_STATISTICS_EX& latency = counters->latency.emplace();
        latency.reads[0] = latency.reads[23] = latency.writes[23] = latency.writeTime = value;
        HX_SCM_STATISTICS& scm = counters->scm.emplace().record;
        scm.fpins.linkFailure = scm.peerFpins.linkFailure = scm.alarmSignals = value;
    }
    const PortCounters grown = CountedBetween(first, second);
    EXPECT_FALSE(WasReset(first, second));
    for (const uint64_t value :
         {grown.traffic->fcp.inputRequests, grown.traffic->nvme.outputBytes,
          grown.traffic->abtsSent, grown.traffic->port.rxWords, grown.latency->reads[0],
          grown.latency->reads[23], grown.latency->writes[23], grown.latency->writeTime,
          grown.scm->record.fpins.linkFailure, grown.scm->record.peerFpins.linkFailure,
          grown.scm->record.alarmSignals}) {
        EXPECT_EQ(3u, value);
    }

    const tools::Record record = CounterFields(kLatencyKind | kScmKind).Make(between);
    tools::Redactor redactor(false);
    const std::string text = tools::RenderText(record, {false, &redactor});
    for (const char* part : {"Average read", "125 us", "READS FROM", "64 us  128 us      8\n",
                             "Severity                     -\n"}) {
        EXPECT_TRUE(support::Has(text, part)) << part << "\n" << text;
    }
    EXPECT_FALSE(support::Has(text, "Commands started")) << "not asked for";
}

TEST(ToolsStats, EveryCounterHasItsKeyAndItsPlace) {
    HX_STATISTICS statistics{};
    uint32_t words[sizeof statistics / 4];
    for (uint32_t i = 0; i < std::size(words); ++i) {
        words[i] = 1000 + i;
    }
    std::memcpy(&statistics, words, sizeof statistics);
    const HX_PORT_STATISTICS wide = Widened(statistics);
    std::set<uint64_t> values;
    std::set<std::string> keys;
    for (const auto& counter : LinkCounters()) {
        values.insert(CounterOf(wide, counter));
        keys.insert(counter.key);
    }
    EXPECT_EQ(*values.begin(), 1000u);
    EXPECT_EQ(*values.rbegin(), 1011u);
    EXPECT_EQ(values.size(), 12u);
    EXPECT_EQ(keys.size(), 12u);

    const tools::Record record = CounterFields(kLinkKind).Make(LinkOf(statistics));
    tools::Redactor redactor(false);
    const std::string text = tools::RenderText(record, {false, &redactor});
    EXPECT_TRUE(support::Has(text, "1000 s")) << text;
    EXPECT_TRUE(support::Has(text, "CRC errors                  1011\n")) << text;

    // Groups that are not there are null, and in a line of CSV as wide as those that are.
    const tools::Record none = CounterFields(kAllKinds).Make({});
    for (const tools::Field& field : none.Fields()) {
        EXPECT_TRUE(field.value.IsNull()) << field.key;
    }
    PortCounters all = LinkOf(statistics);
    all.traffic.emplace();
    all.scm.emplace();
    all.driver.emplace();
    all.latency.emplace();
    const auto commas = [&](const std::string& line) { return std::ranges::count(line, ','); };
    EXPECT_EQ(commas(tools::CsvLine(none, redactor)),
              commas(tools::CsvLine(CounterFields(kAllKinds).Make(all), redactor)));
}

TEST(ToolsStats, OnlyErrorsAreErrors) {
    HX_STATISTICS statistics = Statistics(100, 5000);
    statistics.lipCount = 3;
    EXPECT_EQ(LinkErrorsText(Widened(statistics)), "");
    statistics.linkFailures = 1;
    statistics.lossesOfSync = 2;
    statistics.invalidCrcs = 0xFFFFFFFF;
    EXPECT_EQ(LinkErrorsText(Widened(statistics)),
              "1 link failure, 2 losses of synchronisation, 4294967295 CRC errors");
    statistics.reserved[0] = 9;
    statistics.primitiveSequenceErrors = 1;
    EXPECT_TRUE(support::Has(LinkErrorsText(Widened(statistics)), "1 primitive sequence error,"));
}

}  // namespace
