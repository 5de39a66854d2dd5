// Lists inside lists as trees and as rows, and the characters of names from outside.
#include <gtest/gtest.h>

#include "support/has.h"
#include "tools/records/csv.h"
#include "tools/records/fields.h"
#include "tools/records/redaction.h"
#include "tools/records/render.h"
#include "tools/records/table.h"
#include "tools/records/text.h"
#include "tools/records/unicode.h"

namespace {

using namespace tools;

struct Leaf {
    std::string name;
    uint32_t number;
};
struct Branch {
    std::string name;
    std::string status;
    std::vector<Leaf> leaves;
};
struct Root {
    std::string name;
    std::string status;
    std::vector<Branch> branches;
};

const Fields<Leaf> kLeaf = {
    {"leaf", "Leaf", "LEAF", kText, &Leaf::name},
    {"number", "Number", "NUMBER", kInteger, &Leaf::number},
    {"speed", "Speed", Integer("Gbit/s"), &Leaf::number},
};
const Fields<Branch> kBranch = {
    {"branch", "Branch", "BRANCH", kText, &Branch::name},
    {"hidden", "", kText, &Branch::name},
    {"status", "Status", kText.OrNull(), &Branch::status},
    {"leaves", "", kLeaf, &Branch::leaves, ListLayout::Tree},
};
const Fields<Root> kRoot = {
    {"root", "Root", "ROOT", kText, &Root::name},
    {"status", "Status", "STATUS", kText.OrNull(), &Root::status},
    {"branches", "", kBranch, &Root::branches, ListLayout::Tree},
};
const auto kRoots = ListOf("roots", "", kRoot, ListLayout::Tree, "nothing");

std::vector<Root> Forest() {
    return {{"r", "", {{"b1", "bad", {{"l1", 7}, {"l2", 8}}}, {"b2", "", {{"l3", 9}}}}},
            {"bare", "gone", {}}};
}

std::string TextOf(const std::vector<Root>& roots, size_t width, bool lines, bool color = false) {
    Redactor open(false);
    return RenderText(kRoots.Make(roots), {color, &open, width, lines});
}

TEST(ToolsTree, LinesTellWhatHangsOnWhat) {
    EXPECT_EQ(TextOf(Forest(), 0, false),
              "r\n"
              "|- b1  bad\n"
              "|  |- l1  Number 7  7 Gbit/s\n"
              "|  `- l2  Number 8  8 Gbit/s\n"
              "`- b2\n"
              "   `- l3  Number 9  9 Gbit/s\n"
              "bare  gone\n");
    EXPECT_TRUE(support::Has(TextOf(Forest(), 0, true), "├─ b1  bad\n│  ├─ l1  Number 7"));
    EXPECT_TRUE(support::Has(TextOf(Forest(), 0, true), "└─ b2\n   └─ l3"));
    EXPECT_EQ(TextOf({}, 0, true), "nothing\n");
    EXPECT_TRUE(support::Has(TextOf(Forest(), 0, false, true), "\x1b[1mr\x1b[0m\n"));
}

// Numbers are never cut, names are; a line tells that there is more.
TEST(ToolsTree, NarrowConsolesShortenLines) {
    const std::vector<Root> wide = {
        {"\u0416\u0443\u043a \u65e5\u672c\u8a9e a name without an end in sight, or nearly so",
         "",
         {{"branch", "", {{"a leaf of many words that goes on", 1234567}}}}}};
    for (size_t width = 20; width < 90; ++width) {
        const std::string text = TextOf(wide, width, true);
        for (const std::string& line : Split(text, '\n')) {
            EXPECT_LE(DisplayWidth(line), width) << line;
        }
        EXPECT_EQ(support::Has(text, "123456"), support::Has(text, "1234567")) << text;
        EXPECT_EQ(support::Has(text, "1234567 Gbit/s"), width >= 71) << width << "\n" << text;
    }
}

TEST(ToolsTree, TablesHaveARowForEachEndOfABranch) {
    Redactor open(false);
    const Record record = kRoots.Make(Forest());
    EXPECT_EQ(RenderCsv(record, open),
              "root,status,branch,hidden,leaf,number,speed\r\n"
              "r,bad,b1,b1,l1,7,7\r\n"
              "r,bad,b1,b1,l2,8,8\r\n"
              "r,,b2,b2,l3,9,9\r\n"
              "bare,gone,,,,,\r\n");
    EXPECT_EQ(RenderCsv(kRoots.Make({}), open), "root,status,branch,hidden,leaf,number,speed\r\n");
    EXPECT_EQ(RenderTable(record, {false, &open}),
              "ROOT  STATUS  BRANCH  LEAF  NUMBER\n"
              "r     bad     b1      l1         7\n"
              "r     bad     b1      l2         8\n"
              "r     -       b2      l3         9\n"
              "bare  gone    -       -     -\n");
}

// A spreadsheet takes what begins so for a formula; a number stays one.
TEST(ToolsTree, CellsOfCsvAreNoFormulas) {
    struct Cells {
        std::string name;
        std::string measured;
    };
    static const Fields<Cells> kCells = {{"name", "", kText, &Cells::name},
                                         {"measured", "", kText, &Cells::measured}};
    Redactor open(false);
    for (const char* hostile : {"=cmd|' /C calc'!A0", "@SUM(1)", "+1+1", "-1+1", "-", "\t=1"}) {
        EXPECT_TRUE(
            support::Has(CsvLine(kCells.Make({hostile, "x"}), open), std::string("'") + hostile))
            << hostile;
    }
    EXPECT_EQ(CsvLine(kCells.Make({"a=b", "-2.84"}), open), "a=b,-2.84\r\n");
    EXPECT_EQ(CsvLine(kCells.Make({"<script>", "+5"}), open), "<script>,+5\r\n");
}

TEST(ToolsText, NamesHaveLettersOfAnyScript) {
    const auto field = [](std::string_view text) { return FieldText(text.data(), text.size()); };
    for (const char* name : {"Gr\u00f6\u00dfe", "\u0416\u0443\u043a", "\u65e5\u672c\u8a9e",
                             "\u0e01\u0e33", "\U0001F4BE", "e\u0301", "<script>"}) {
        EXPECT_EQ(field(name), name);
    }
    // Controls of both kinds, turned text, an invisible letter, half a letter, one that is too
    // long for what it is, a surrogate, and what is above all letters.
    for (const char* bad : {"\x07", "\x1b", "\xc2\x9b", "\xe2\x80\xae", "\xe2\x80\x8b"}) {
        EXPECT_EQ(field(std::string("a") + bad + "z"), "a?z");
    }
    EXPECT_EQ(field("a\xe6\x97"), "a??");
    EXPECT_EQ(field("\xc0\xaf"), "??");
    EXPECT_EQ(field("\xed\xa0\x80"), "???");
    EXPECT_EQ(field("\xf4\x90\x80\x80"), "????");

    EXPECT_EQ(DisplayWidth("\u65e5\u672c"), 4u);
    EXPECT_EQ(DisplayWidth("e\u0301"), 1u);
    EXPECT_EQ(Shortened("\u65e5\u672c\u8a9e", 4), "\u65e5\u2026");  // half a letter has no place
    EXPECT_EQ(Shortened("\u65e5\u672c\u8a9e", 5), "\u65e5\u672c\u2026");
    EXPECT_EQ(Shortened("e\u0301e\u0301e\u0301", 2), "e\u0301\u2026");
    EXPECT_EQ(Shortened("abc", 3), "abc");
}

}  // namespace
