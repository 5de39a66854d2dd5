// What the page of a report says about documents: read without its elements, and measured where it
// draws.
#include <gtest/gtest.h>

#include <regex>

#include "support/has.h"
#include "vxmgr/support/report_page.h"

namespace {

using namespace vxmgr;
using support::Has;

using Results = std::vector<std::pair<const char*, const char*>>;  // by their commands

std::string PageOf(const Results& results) {
    ReportDocuments documents;
    for (const auto& [command, result] : results) {
        documents.Add(command,
                      std::string("{\"result\":") + result + ",\"messages\":[],\"exit\":0}");
    }
    return ReportPage({"a-host", "2026-01-31T23:59:59.000Z", "1.0.0", "1.28", ""}, documents);
}

// From one text to the next one of the other, as it reads: a badge as "{critical} what it says",
// other elements as bars.
std::string Reads(const std::string& page, const std::string& from, const std::string& to) {
    const size_t begin = page.find(from);
    EXPECT_NE(std::string::npos, begin) << from;
    std::string part = page.substr(begin, page.find(to, begin) - begin);
    const std::pair<const char*, const char*> kSteps[] = {
        {"<span class=\"sign\"[^>]*>[^<]*</span>", ""},
        {"<span class=\"badge ([a-z]+)\">([^<]*)</span>", "{$1} $2"},
        {"<[^>]*>", "|"},
        {" *\\|[| ]*", "|"},
    };
    for (const auto& [pattern, text] : kSteps) {
        part = std::regex_replace(part, std::regex(pattern), text);
    }
    return part;
}

constexpr char kShownPort[] = R"({"ports":[{"index":2,"scsi_port":6,"answers":true,
    "port_wwn":"210002454d000200","adapter_serial":"EMU2","status":null,
    "identity":{"model":"EMU7404","model_description":"Emulated 7404",
                "node_wwn":"200002454d000200"},
    "versions":{"firmware":"8.01.02","driver":"8.02.03"},
    "link":{"state":"online","speed_gbit":8,"max_speed_gbit":8,"topology":"fabric",
            "port_id":"0x010200","disabled":false},
    "fibre_channel":{"discovered_targets":3,"bb_credits":1234567,"fec":false}}]})";

TEST(SupportReport, ACardHasWhatIsKnownOfThePort) {
    const std::string page = PageOf({{"port show", kShownPort}});
    EXPECT_EQ(
        "|Port 2 (scsi:6)|{good} Online|Emulated 7404|Port name|21:00:02:45:4d:00:02:00|"
        "Node name|20:00:02:45:4d:00:02:00|Adapter|EMU2|Model|EMU7404|Firmware|8.01.02|Driver|"
        "8.02.03|Link|Speed|8 Gbit/s|Highest speed|8 Gbit/s|Topology|fabric|Port ID|0x010200|"
        "Targets|3|Credits|1\u202F234\u202F567|FEC|no|",
        Reads(page, "<article", "</article>"));
    // One port needs no table to compare it with; the contents have what there is.
    EXPECT_EQ("|Ports|Sources|", Reads(page, "<nav", "</nav>"));
    EXPECT_EQ("|0|adapters|1 of 1|ports online|3|paths to targets|", Reads(page, "<ul", "</ul>"));
    EXPECT_EQ(std::string::npos, page.find("at a glance"));
    EXPECT_TRUE(Has(page, "<div class=\"long\"><dt>Port name"));
    EXPECT_TRUE(
        Has(PageOf({{"port show", R"({"ports":[{"index":0},{"index":1}]})"}}), "at a glance"));
}

TEST(SupportReport, PortsAreComparedAndTheirStatesJudged) {
    const std::string page =
        PageOf({{"port show", R"({"ports":[{"index":0,"answers":false,"link":{"state":"online"}},
              {"index":1,"link":{"state":"online","disabled":true}},
              {"index":2,"link":{"state":"link_down","speed_gbit":16},"versions":{"firmware":"9"}},
              {"index":3,"link":{"state":"odd"}}]})"},
                {"adapter list", R"({"adapters":[{}]})"},
                {"health", R"({"state":"warning","checks":[{"state":"warning"}]})"},
                {"sfp show", R"({"transceivers":[{"port":2,"readings":[
              {"quantity":"temperature","value":"41.5","unit":"C"}]}]})"}});
    EXPECT_EQ(
        "|The ports at a glance|Port|State|Adapter|Port name|Speed|Transceiver|Firmware|"
        "Port 0|{critical} Not answering|\u2013|\u2013|\u2013|\u2013|\u2013|"
        "Port 1|{critical} Disabled|\u2013|\u2013|\u2013|\u2013|\u2013|"
        "Port 2|{warning} Link down|\u2013|\u2013|16 Gbit/s|41.5 C|9|"
        "Port 3|{unknown} Odd|\u2013|\u2013|\u2013|\u2013|\u2013|",
        Reads(page, "<caption>The ports", "</table>"));
    EXPECT_TRUE(Has(page, "<th scope=\"row\" class=\"\"><a href=\"#port-2\">"));
    EXPECT_TRUE(Has(page, "<td class=\"number\">16 Gbit/s</td><td class=\"number\">41.5 C</td>"));
    EXPECT_EQ("|Warning|health|1|adapter|2 of 4|ports online|0|paths to targets|1|finding|",
              Reads(page, "<ul", "</ul>"));
    EXPECT_TRUE(Has(page, "<li class=\"tile warning\"><strong>2 of 4"));
}

// Limits from 0 to 80 are drawn with an eighth more on both sides: 100 degrees on 240 units.
TEST(SupportReport, AReadingLiesBetweenItsLimits) {
    const auto card = [](const std::string& readings) {
        const std::string transceivers =
            R"({"transceivers":[{"port":2,"trouble":"faulty","identity":{"vendor":"V","part":"P"},)"
            "\"readings\":[" +
            readings + "]}]}";
        return PageOf({{"port show", kShownPort}, {"sfp show", transceivers.c_str()}});
    };
    const std::string page = card(
        R"({"quantity":"temperature","state":"high_warning","value":"75","unit":"C",
            "low_alarm":"0","low_warning":"10","high_warning":"70","high_alarm":"80"},
           {"quantity":"rx_power","state":"normal","value":"0.5","unit":"mW","dbm":"-3"})");
    EXPECT_EQ(
        "Transceiver|{critical} faulty|Module|V P|Temperature|75 C|{warning} High warning|"
        "Rx power|0.5 mW (-3 dBm)|",
        Reads(page, "Transceiver</h4>", "</article>"));
    EXPECT_TRUE(Has(page,
                    "aria-label=\"Temperature 75 C, high_warning; good from 10 to 70; "
                    "no alarm from 0 to 80\""));
    const char* const kZones[] = {
        R"(<rect class="zone-critical" x="0" y="4" width="24" height="6">)",
        R"(<rect class="zone-warning" x="24" y="4" width="24" height="6">)",
        R"(<rect class="zone-good" x="48" y="4" width="144" height="6">)",
        R"(<rect class="zone-warning" x="192" y="4" width="24" height="6">)",
        R"(<rect class="zone-critical" x="216" y="4" width="24" height="6">)",
        R"(<rect class="mark" x="202.5" y="0" width="3" height="14">)",
    };
    size_t place = 0;
    for (const char* zone : kZones) {
        place = page.find(zone, place);
        EXPECT_NE(std::string::npos, place) << zone;
    }
    // Far outside, the bar grows; without alarms there is none, without warnings all between is
    // good.
    EXPECT_TRUE(
        Has(card(R"({"state":"high_alarm","value":"110","low_alarm":"0","high_alarm":"80"})"),
            R"(<rect class="zone-good" x="20" y="4" width="160" height="6">)"));
    for (const char* none : {R"({"state":"normal","value":"1","low_alarm":"0"})",
                             R"({"state":"normal","value":"1","low_alarm":"3","high_alarm":"3"})",
                             R"({"state":"normal","low_alarm":"0","high_alarm":"3"})"}) {
        EXPECT_EQ(std::string::npos, card(none).find("class=\"zone-")) << none;
    }
}

TEST(SupportReport, CountersAreErrorsOrNot) {
    const auto card = [](const char* reading) {
        return PageOf({{"port show", kShownPort},
                       {"port stats",
                        (std::string(R"({"readings":[{"port":2,"scsi_port":6,)") + reading + "}]}")
                            .c_str()}});
    };
    EXPECT_EQ(
        "Counters|{warning} Losses of sync: 2 {warning} Frames timed out: 1|"
        "All 4 counters|Everything counted|Counter|Count|Tx frames|9|Losses of sync|2|"
        "Traffic: Frames timed out|1|Traffic: Rx|0|",
        Reads(card(R"("tx_frames":9,"losses_of_sync":2,"invalid_crcs":null,
                            "traffic":{"frames_timed_out":1,"rx":0})"),
              "Counters</h4>", "</article>"));
    EXPECT_TRUE(Has(card(R"("tx_frames":9)"), "<details class=\"wide\">")) << "of a few ports";
    EXPECT_EQ("Counters|{good} No errors counted|All 2 counters|",
              Reads(card(R"("tx_frames":9,"link_failures":0)"), "Counters</h4>", "<div"));
    EXPECT_EQ(std::string::npos,
              card(R"("tx_frames":null,"link_failures":3)").find("Counters</h4>"));
}

// Two seconds with 2,000,000 words are 4 MB/s.
TEST(SupportReport, ChartsShowRates) {
    const std::string page = PageOf({{"samples", R"({"readings":[
        {"port":1,"time":"2026-01-31T23:59:50.000Z","seconds":1,"tx_frames":10,"rx_frames":40,
         "tx_words":500000,"rx_words":0,"invalid_crcs":1,"link_failures":2},
        {"port":2,"time":"2026-01-31T23:59:51.000Z","tx_frames":0},
        {"port":1,"time":"2026-01-31T23:59:52.500Z","tx_frames":0,"rx_frames":100,
         "tx_words":2500000,"rx_words":1000},
        {"port":1,"time":"2026-01-31T23:59:53.500Z","tx_frames":5,"rx_frames":0,"tx_words":1250000},
        {"port":3,"time":"2026-01-31T23:59:56.000Z","tx_frames":0},
        {"port":3,"time":"2026-01-31T23:59:57.000Z","tx_frames":0},
        {"port":1,"time":"now","tx_frames":3},{"port":1,"time":"2026-01-31T23:59:54.000Z"}]})"}});
    EXPECT_EQ(
        "|Port 1: the samples|Time (UTC)|Sent MB/s|Received MB/s|Sent frames/s|Received frames/s|"
        "Errors|23:59:50|2|0|10|40|3|23:59:52|4|0.002|0|40|0|23:59:53|5|0|5|0|0|",
        Reads(page, "<caption>Port 1", "</table>"));
    EXPECT_TRUE(Has(page,
                    "aria-label=\"Port 1: traffic in MB/s. sent: from 2 to 5, last 5. "
                    "received: from 0 to 0, last 0.\""));
    // From 52 to 368 for 3.5 s, and from 138 up to 12 for 5 MB/s.
    EXPECT_TRUE(Has(page, "<polyline class=\"line first\" points=\"52,87.6 277.7,37.2 368,12 \">"));
    EXPECT_TRUE(Has(page,
                    "<circle class=\"dot first\" cx=\"277.7\" cy=\"37.2\" r=\"2.5\"><title>"
                    "sent 23:59:52: 4 MB/s</title>"));
    EXPECT_EQ("|0|2.5|5|23:59:50|23:59:53|", Reads(page, "<line class=\"axis\"", "<polyline"));
    EXPECT_TRUE(Has(page, "<td class=\"number\">0.002</td>"));
    EXPECT_TRUE(Has(page, "Port 1: errors"));
    EXPECT_TRUE(
        Has(Reads(page, "Port 3: frames</figcaption>", "<polyline"), "|23:59:56|23:59:57|"));
    EXPECT_EQ("|{good} No errors while it was sampled|The numbers|",
              Reads(page.substr(page.find("Port 2: frames")), "</figure>", "<div"));
    // A single sample stands in the middle.
    EXPECT_TRUE(Has(page, "points=\"210,138 \""));
}

TEST(SupportReport, TheOtherSections) {
    const std::string page = PageOf(
        {{"health", R"({"state":"critical","checks":[
              {"port":1,"check":"a","state":"normal","value":"1"},
              {"port":1,"check":"b","state":"warning","value":"71","unit":"C","warning":"70"},
              {"port":2,"check":"c","state":"critical","detail":"why"}]})"},
         {"tree", R"({"adapters":[{"adapter_serial":"S","model":"M","ports":[
              {"port":1,"scsi_port":4,"port_wwn":"210002454d000100","speed_gbit":32,
               "state":"online","targets":[
                 {"target_wwn":"2b0002454d000100","symbolic_name":"T","port_id":"0x1",
                  "present":false,"luns":[{"lun":3,"disk":7,"volumes":[
                    {"volume":"V1","mount_points":["C:"]},{"volume":"V2","mount_points":[]}]},
                   {"lun":4,"device_type":"tape","device":"Tape0"}]}]}]}]})"},
         {"samples",
          R"({"readings":[{"port":1,"time":"2026-01-31T00:00:00.000Z","tx_frames":0}]})"},
         {"event watch", R"({"events":[
              {"port":1,"time":"2026-01-31T00:00:05.000Z","kind":"link-down","meaning":"down"},
              {"port":1,"time":"2026-01-31T00:00:10.000Z","kind":"rscn","meaning":"changed"}]})"},
         {"fw show", R"({"code":[{"name":"firmware","serial":"S","running":"9","stored":"10",
                                  "state":"pending"}]})"},
         {"nvram verify", R"({"ports":[{"port":1,"kind":"classic","signature_good":true,
                                        "checksum_good":false,"other_bank_good":null}]})"},
         {"driver show", R"({"drivers":[{"service":"vxfc2","version":"9","scsi_ports":[3,4]}]})"},
         {"dump list", R"({"dumps":[{"port":1,"what":"firmware","state":"present","size":1000},
                                    {"port":1,"what":"mini","state":"none"}]})"},
         {"fw history", R"({"updates":[{"started":"then","adapter_serial":"S","kind":"update",
                                        "versions":"9 to 10","phase":"done"}]})"}});
    EXPECT_EQ(
        "Health|What was found, worst first|Check|State|Port|Value|Warning at|Critical at|Detail|"
        "c|{critical} critical|Port 2|\u2013|\u2013|\u2013|why|"
        "b|{warning} warning|Port 1|71 C|70 C|\u2013|\u2013|1 other checks|"
        "Checks that found nothing|Check|State|Port|Value|Warning at|Critical at|Detail|"
        "a|{good} normal|Port 1|1|\u2013|\u2013|\u2013|",
        Reads(page, "Health</h2>", "</section>"));
    EXPECT_EQ(
        "What hangs on what|Adapter|S|M|Port 1 (scsi:4)|21:00:02:45:4d:00:01:00 \u00B7 32 Gbit/s|"
        "{good} Online|Target|2b:00:02:45:4d:00:01:00|T \u00B7 0x1|{warning} Away|LUN|3|disk 7|"
        "Volume|C:|V1|Volume|V2|LUN|4|tape \u00B7 Tape0|",
        Reads(page, "What hangs on what</h2>", "</section>"));
    // Open down to the targets.
    EXPECT_TRUE(Has(page,
                    "<details open=\"\"><summary><span class=\"kind\"></span> "
                    "<strong>Port 1"));
    EXPECT_TRUE(Has(page, "<details><summary><span class=\"kind\">Target"));
    EXPECT_EQ(
        "Events|00:00:05|{critical} link-down Port 1: down|00:00:10|{warning} rscn "
        "Port 1: changed|",
        Reads(page, "Events</h2>", "</section>"));
    EXPECT_TRUE(Has(page, R"(<rect class="event bad" x="497" y="4" width="6" height="20">)"));
    EXPECT_TRUE(Has(page, R"(<rect class="event first" x="994" y="4" width="6" height="20">)"));
    EXPECT_EQ(
        "Firmware and settings|Firmware and boot code|Region|Adapter|Running|Stored|State|Problem|"
        "firmware|S|9|10|{warning} pending|\u2013|Settings (NVRAM)|Port|Kind|Signature|Checksum|"
        "Other bank|Status|Port 1|classic|{good} good|{critical} damaged|\u2013|\u2013|Drivers|"
        "Service|Version|SCSI ports|Interrupts|Queue depth|vxfc2|9|3, 4|\u2013|\u2013|"
        "Firmware dumps that wait|Kind|Port|State|Bytes|firmware|Port 1|{warning} present|"
        "1\u202F000|Updates of this machine|Started|Adapter|Kind|Versions|Phase|Outcome|then|S|"
        "update|9 to 10|{good} done|\u2013|",
        Reads(page, "Firmware and settings</h2>", "</section>"));
    EXPECT_TRUE(Has(page, "<meta charset=\"utf-8\">"));
    EXPECT_TRUE(Has(page, "<a class=\"skip\" href=\"#main\">"));
    const std::string quiet = PageOf(
        {{"health", R"({"state":"normal","checks":[]})"}, {"event watch", R"({"events":[]})"}});
    EXPECT_EQ(
        "Health|{good} Nothing found All checks that the adapters can answer are as they "
        "should be.|",
        Reads(quiet, "Health</h2>", "</section>"));
    EXPECT_TRUE(Has(quiet, "No event came while"));
    EXPECT_EQ("|Health|Events|Sources|", Reads(quiet, "<nav", "</nav>"));
}

}  // namespace
