// The journal of an update: what it holds comes back, and nothing else is taken for one.
#include <gtest/gtest.h>

#include "support/document.h"
#include "support/has.h"
#include "support/json_schema.h"
#include "vxmgr/app/document.h"
#include "vxmgr/update/update_journal.h"

namespace {

using namespace vxmgr;

UpdateJournal SomeJournal() {
    UpdateJournal journal;
    journal.phase = UpdatePhase::Writing;
    journal.serial = "EMU7740A0001";
    journal.model = "EMU7740";
    journal.chip = "0x7740";
    journal.started = journal.changed = "2026-01-31T23:59:59.123Z";
    journal.user = "J\xC3\xB6rg \"the admin\"";
    journal.process = UINT32_MAX;
    journal.processStart = "134398183141463310";
    journal.backup = "D:\\kept\\20260131";
    journal.writeRate = uint64_t{1} << 48;
    journal.regions = {
        {7, 262144, "boot.bin", "3.61", "3.70", std::string(64, 'a'), std::string(64, '0'),
         RegionStep::Verified, 262144},
        {17, 262144, "", "3.61", "", std::string(64, 'b'), "", RegionStep::Waiting, 0},
        {1, 524288, "firmware.bin", "", "9.13.00", "", std::string(64, 'c'), RegionStep::Writing,
         131072},
    };
    return journal;
}

std::string ErrorOf(const std::string& text) {
    try {
        ReadJournal(text);
        return {};
    } catch (const DocumentError& error) {
        return error.text;
    }
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(ToolsUpdateJournal, ComesBackWhole) {
    const UpdateJournal journal = SomeJournal();
    const std::string text = JournalDocument(journal);
    EXPECT_EQ(JournalDocument(ReadJournal(text)), text);
    const UpdateJournal read = ReadJournal(text);
    EXPECT_EQ(read.user, journal.user);
    EXPECT_EQ(read.phase, UpdatePhase::Writing);
    EXPECT_EQ(read.writeRate, journal.writeRate);
    ASSERT_EQ(read.regions.size(), 3u);
    EXPECT_TRUE(read.regions[1].IsCompanion());
    EXPECT_EQ(read.regions[2].step, RegionStep::Writing);
    EXPECT_EQ(read.regions[2].reached, 131072u);
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    EXPECT_EQ(schemas.Check(support::Document::Parse(text), "vxmgr/update.json"),
              support::JsonSchemas::Errors());
}

TEST(ToolsUpdateJournal, WhatWasEditedByHandIsNotTaken) {
    const std::string good = JournalDocument(SomeJournal());
    const struct {
        const char* from;
        const char* to;
        const char* why;
    } kRows[] = {
        {"vxmgr.update", "vxmgr.updates", "document"},
        {"\"version\": 1", "\"version\": 2", "version"},
        {"\"kind\": \"update\"", "\"kind\": \"downgrade\"", "kind"},
        {"\"phase\": \"writing\"", "\"phase\": \"\"", "phase"},
        {"\"step\": \"waiting\"", "\"step\": 1", "step"},
        {"\"region\": 17", "\"region\": 7", "stands twice"},
        {"\"region\": 17", "\"region\": 65536", "region"},
        {"\"size\": 524288", "\"size\": 268435457", "size"},
        {"\"reached\": 131072", "\"reached\": -1", "reached"},
        {"aaaaaaaa", "aaaaaaag", "SHA-256"},
        {"aaaaaaaa", "aaaaaaa", "SHA-256"},
        {"\"chip\": \"0x7740\",", "", "chip"},
        {"\"user\":", "\"uzer\":", "uzer"},
        {"\"step\": \"waiting\",", "\"step\": \"waiting\", \"note\": 1,", "note"},
    };
    for (const auto& row : kRows) {
        EXPECT_TRUE(support::Has(ErrorOf(Replaced(good, row.from, row.to)), row.why))
            << row.from << " -> " << row.to << ": " << ErrorOf(Replaced(good, row.from, row.to));
    }
    for (size_t length = 0; length + 2 < good.size(); ++length) {
        EXPECT_NE(ErrorOf(good.substr(0, length)), "") << "cut at " << length;
    }
}

}  // namespace
