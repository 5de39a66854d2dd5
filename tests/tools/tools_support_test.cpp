// What support is sent, and what runs in a batch: lines to words, zip files, pages that hostile
// names do nothing in, and names that are masked everywhere.
#include <gtest/gtest.h>

#include "records/redaction.h"
#include "support/has.h"
#include "vxmgr/support/batch_lines.h"
#include "vxmgr/support/html.h"
#include "vxmgr/support/report_page.h"
#include "vxmgr/support/trace_text.h"
#include "vxmgr/support/zip.h"

namespace {

using namespace vxmgr;
using support::Has;

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += "[" + word + "]";
    }
    return text;
}

TEST(SupportBatch, LinesBecomeWords) {
    const struct {
        const char* line;
        const char* words;
    } kRows[] = {
        {"port list -p scsi:3", "[port][list][-p][scsi:3]"},
        {"  a\t b  # a comment", "[a][b]"},
        {"a#b '#' \"#\"", "[a#b][#][#]"},
        {"--out=\"a b\"'c d' e", "[--out=a bc d][e]"},
        {"C:\\dir\\x \"\\\\host\\a b\"", "[C:\\dir\\x][\\\\host\\a b]"},
        {"say \\\"x\\\" '\\\"' \"a\\\"b\"", "[say][\"x\"][\\\"][a\"b]"},
        {"'' \"\"", "[][]"},
    };
    for (const auto& row : kRows) {
        const std::vector<BatchLine> lines = SplitBatch(row.line);
        ASSERT_EQ(1u, lines.size()) << row.line;
        EXPECT_EQ(row.words, Joined(lines.front().words)) << row.line;
        EXPECT_EQ("", lines.front().error) << row.line;
    }
    const std::vector<BatchLine> lines =
        SplitBatch("\xEF\xBB\xBFone\r\n\n  # nothing\n\"two\nthree' x\nfour");
    ASSERT_EQ(4u, lines.size());
    EXPECT_EQ("[one]", Joined(lines[0].words));
    EXPECT_EQ(4u, lines[1].number);
    EXPECT_TRUE(Has(lines[1].error, "(\") is not closed"));
    EXPECT_TRUE(Has(lines[2].error, "(') is not closed"));
    EXPECT_EQ(6u, lines[3].number);
    EXPECT_TRUE(SplitBatch("").empty());
    EXPECT_TRUE(Has(SplitBatch(std::string_view("p\0o\0", 4)).front().error, "UTF-8"));
}

TEST(SupportZip, BytesAreThoseOfTheFormat) {
    std::string file;
    ZipWriter zip({2026, 3, 4, 5, 6, 8}, [&](std::span<const uint8_t> bytes) {
        file.append(bytes.begin(), bytes.end());
        return true;
    });
    const uint8_t content[] = {'a'};
    ASSERT_EQ(ZipOutcome::Good, zip.Add("\xC3\xA4", content));
    ASSERT_EQ(ZipOutcome::Good, zip.Finish());
    // Common to both headers: version 2.0, UTF-8 names, deflated, time, date, CRC-32, 3 bytes of 1.
    const std::string shared(
        "\x14\0\0\x08\x08\0\xC4\x28\x64\x5C\x43\xBE\xB7\xE8\x03\0\0\0\x01\0\0\0"
        "\x02\0\0\0",
        26);
    const std::string expected = std::string("PK\x03\x04") + shared + "\xC3\xA4" +
                                 std::string("K\x04\0", 3) + std::string("PK\x01\x02\x14\0", 6) +
                                 shared + std::string(14, '\0') + "\xC3\xA4" +
                                 std::string(
                                     "PK\x05\x06\0\0\0\0\x01\0\x01\0\x30\0\0\0\x23\0\0\0"
                                     "\0\0",
                                     22);
    EXPECT_EQ(expected, file);
    EXPECT_EQ(expected.size(), zip.Size());

    std::string two;
    ZipWriter pair({}, [&](std::span<const uint8_t> bytes) {
        two.append(bytes.begin(), bytes.end());
        return true;
    });
    ASSERT_EQ(ZipOutcome::Good, pair.Add("a", content));
    const size_t second = two.size();
    ASSERT_EQ(ZipOutcome::Good, pair.Add("b", content));
    ASSERT_EQ(ZipOutcome::Good, pair.Finish());
    EXPECT_EQ("PK\x03\x04", two.substr(second, 4));
    EXPECT_EQ(std::string({static_cast<char>(second), '\0', '\0', '\0', 'b'}),
              two.substr(two.rfind("PK\x01\x02") + 42, 5));

    ZipWriter full({}, [](std::span<const uint8_t>) { return false; });
    EXPECT_EQ(ZipOutcome::NotWritten, full.Add("a", content));
    EXPECT_EQ(ZipOutcome::TooLarge, zip.Add(std::string(0x10000, 'n'), content));
}

TEST(SupportReport, NamesDoNothingInAPage) {
    EXPECT_EQ("&lt;a b=&quot;&#39;&amp;&gt;\xEF\xBF\xBD", HtmlEscaped("<a b=\"'&>\x1b"));
    const std::string hostile = R"(<script>alert(1)</script>\"onload='x' =cmd|' /C calc'!A0)";
    ReportDocuments documents;
    const auto add = [&](const char* command, const std::string& result) {
        documents.Add(command, "{\"result\":" + result +
                                   ",\"messages\":[{\"severity\":\"error\","
                                   "\"object\":\"" +
                                   hostile + "\",\"text\":\"" + hostile + "\"}],\"exit\":11}");
    };
    const std::string port = "\"port\":0,\"scsi_port\":3,\"adapter_serial\":\"" + hostile + "\"";
    add("health", "{\"state\":\"critical\",\"checks\":[{" + port +
                      ",\"check\":\"link\",\"state\":"
                      "\"normal\"},{" +
                      port + ",\"check\":\"" + hostile + "\",\"state\":\"critical\",\"detail\":\"" +
                      hostile + "\"}]}");
    add("tree", "{\"adapters\":[{\"adapter_serial\":\"" + hostile +
                    "\",\"ports\":[{\"port\":0,\"answers\":"
                    "false,\"targets\":[{\"target_wwn\":\"2b\",\"symbolic_name\":\"" +
                    hostile + "\",\"luns\":[]}]}]}]}");
    add("port show", "{\"ports\":[{" + port +
                         ",\"port_wwn\":\"210002454d000100\",\"answers\":true,"
                         "\"link\":{\"state\":\"" +
                         hostile + "\"}}]}");
    add("sfp show", "{\"transceivers\":[{" + port + ",\"readings\":[{\"quantity\":\"" + hostile +
                        "\",\"value\":\"80\",\"state\":\"high_alarm\",\"low_alarm\":\"-5\","
                        "\"high_alarm\":\"75\"}]}]}");
    add("samples", "{\"readings\":[{" + port +
                       ",\"time\":\"2026-01-31T23:59:58.000Z\","
                       "\"seconds\":1,\"tx_frames\":3,\"tx_words\":250000},{" +
                       port +
                       ",\"time\":\"2026-01-31T23:59:59.000Z\",\"seconds\":1,\"tx_frames\":1,"
                       "\"tx_words\":500000,\"invalid_crcs\":2}]}");
    add("event watch", "{\"events\":[{" + port +
                           ",\"time\":\"2026-01-31T23:59:59.000Z\",\"kind\":\"" + hostile +
                           "\"}]}");
    add("fw show", "{\"code\":[{\"serial\":\"" + hostile + "\",\"problem\":\"" + hostile + "\"}]}");
    const std::string page = ReportPage({hostile, hostile, "1", "2", hostile}, documents);

    // Every '<' begins an element of our own, and none of those runs anything.
    for (const char* none : {"<script", "onload='", "onload=\"", "<a b", "javascript:"}) {
        EXPECT_EQ(std::string::npos, page.find(none)) << none;
    }
    for (const char* shown :
         {"&lt;script&gt;alert(1)", "id=\"health\"", "id=\"tree\"", "id=\"port-0\"",
          "Not answering",
          "aria-label=\"Port 0 (scsi:3): traffic in MB/s. sent: from 1 to 2, last 2.",
          "21:00:02:45:4d:00:01:00", "23:59:58", "Exit"}) {
        EXPECT_TRUE(Has(page, shown).operator bool()) << shown;
    }
    // The critical finding comes first, and a value outside all limits stays inside its bar.
    EXPECT_LT(page.find("What was found"), page.find("Checks that found nothing"));
    EXPECT_EQ(std::string::npos, page.find("x=\"-"));

    // Without any document, or with none that is one, there is still a page.
    ReportDocuments none;
    none.Add("port show", "{\"result\":");
    none.Add("health", R"({"result":{"checks":17,"state":[]}})");
    none.Add("samples", R"({"result":{"readings":[{"time":"now","tx_frames":1},3,null]}})");
    EXPECT_TRUE(Has(ReportPage({}, none), "</html>"));
}

TEST(SupportRedaction, NamesHaveOneMaskEach) {
    tools::Redactor names(true);
    EXPECT_EQ("host-1", names.Mask(tools::Secret::Host, "storage-host"));
    EXPECT_EQ("on host-1: \"nqn-1\", wwn-1; nqn-1",
              names.Clean("on STORAGE-HOST: \"nqn.2014-08.org.nvm:uuid:1b\", "
                          "21:00:02:45:4d:00:01:00; NQN.2014-08.org.nvm:uuid:1b"));
    const std::string trace =
        "executor.cpp(0172): Output of 21:00:02:45:4d:00:01:00\r\n"
        "Length Showing = 256\r\n"
        "  0000 :  20 00 02 45 4d 00 01 00  :   ..EM...\r\n"
        "  01f0 :  45 4d 55 37              :  EMU7\r\n"
        "Code 0xf0001001\r\n";
    EXPECT_EQ(
        "executor.cpp(0172): Output of wwn-1\nLength Showing = 256\n"
        "  ... bytes left out\nCode 0xf0001001\n",
        CleanTrace(trace, [&](const std::string& line) { return names.Clean(line); }));
}

}  // namespace
