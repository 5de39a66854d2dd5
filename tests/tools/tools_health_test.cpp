// The judgement of health, from both sides of every limit, and metrics as text.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "vxmgr/health/health_checks.h"
#include "vxmgr/health/metrics_table.h"

namespace {

using namespace vxmgr;
using enum HealthState;
using Q = HealthQuestion;

// A port that answered the questions given, and these alone.
HealthReading Answering(std::initializer_list<Q> questions) {
    HealthReading reading;
    reading.link = LinkReading{true, false, "online", "online", uint8_t{0}, uint64_t{32}};
    reading.adapter.emplace();
    reading.StatusOf(Q::Properties) = HXMGT_SUCCESS;
    for (const Q question : questions) {
        reading.StatusOf(question) = HXMGT_SUCCESS;
    }
    return reading;
}

// Of a check; one of no check, and in no state that a check has when all is well, when there is
// none.
HealthFinding Found(const HealthReading& reading, const std::string& id) {
    for (const HealthFinding& finding : JudgeHealth(reading)) {
        if (id == finding.check->id) {
            return finding;
        }
    }
    HealthFinding none;
    none.state = Unknown;
    return none;
}

HX_BOARD_TEMPERATURE Board(int now, int warning, int critical) {
    HX_BOARD_TEMPERATURE board{};
    board.now = static_cast<int16_t>(now);
    board.warning = static_cast<int16_t>(warning);
    board.critical = static_cast<int16_t>(critical);
    board.highest = board.now;
    return board;
}

HX_PORT_STATISTICS_V2 Traffic() {
    HX_PORT_STATISTICS_V2 traffic{};
    traffic.port.secondsSinceReset = 3600;
    return traffic;
}

constexpr int kHealthDegree = 256;

TEST(ToolsHealth, TemperatureCountsFromItsLimitsOn) {
    HealthReading reading = Answering({Q::Temperature});
    const auto state = [&](int now, int warning = 85 * kHealthDegree,
                           int critical = 95 * kHealthDegree) {
        reading.adapter->temperature = Board(now, warning, critical);
        return Found(reading, "board_temperature").state;
    };
    EXPECT_EQ(Normal, state(85 * kHealthDegree - 1));
    EXPECT_EQ(Warning, state(85 * kHealthDegree));
    EXPECT_EQ(Warning, state(95 * kHealthDegree - 1));
    EXPECT_EQ(Critical, state(95 * kHealthDegree));
    EXPECT_EQ(Normal, state(-40 * kHealthDegree));
    EXPECT_EQ(Normal, state(120 * kHealthDegree, 0, 0)) << "no limits";
    EXPECT_EQ(Critical, state(120 * kHealthDegree, 0, 95 * kHealthDegree));
    state(-40 * kHealthDegree);
    EXPECT_EQ("-40.0", Found(reading, "board_temperature").value);
    EXPECT_EQ("95.0", Found(reading, "board_temperature").critical);
    reading.adapter.reset();
    EXPECT_EQ(nullptr, Found(reading, "board_temperature").check) << "another port tells it";
}

TEST(ToolsHealth, LinkAnswersEnabledAndUp) {
    HealthReading reading = Answering({});
    const auto state = [&] { return Found(reading, "link").state; };
    EXPECT_EQ(Normal, state());
    reading.link->diagnosticState = 2;
    EXPECT_EQ(Warning, state());
    reading.link->online = false;
    EXPECT_EQ(Warning, state());
    reading.link->disabled = true;
    EXPECT_EQ(Critical, state());
    HealthReading silent;
    silent.answers = false;
    silent.failure = HXMGT_TIMED_OUT;
    const auto findings = JudgeHealth(silent);
    ASSERT_EQ(1u, findings.size()) << "nothing else is known";
    EXPECT_EQ(Critical, findings[0].state);
    EXPECT_EQ("no answer", findings[0].value);
    EXPECT_EQ(HX_STATUS{HXMGT_TIMED_OUT}, findings[0].status);
}

TEST(ToolsHealth, CountersWarnFromTheFirstOn) {
    HealthReading reading = Answering({Q::Link, Q::Traffic, Q::CreditRecovery});
    reading.counters.traffic = Traffic();
    auto& port = reading.counters.traffic->port;
    EXPECT_EQ(Normal, WorstOf(JudgeHealth(reading)));
    EXPECT_EQ("in 3600 s", Found(reading, "link_errors").detail);
    for (const auto member :
         {&HX_PORT_STATISTICS::linkFailures, &HX_PORT_STATISTICS::lossesOfSync,
          &HX_PORT_STATISTICS::lossesOfSignal, &HX_PORT_STATISTICS::primitiveSequenceErrors,
          &HX_PORT_STATISTICS::invalidTransmissionWords, &HX_PORT_STATISTICS::invalidCrcs}) {
        port.*member = 1;
        EXPECT_EQ(Warning, Found(reading, "link_errors").state);
        port.*member = 0;
    }
    port.nosCount = port.dumpedFrames = port.correctedFecBlocks = 9;
    EXPECT_EQ(Normal, WorstOf(JudgeHealth(reading))) << "these happen";
    port.uncorrectableFecBlocks = 1;
    EXPECT_EQ(Warning, Found(reading, "fec").state);
    port.uncorrectableFecBlocks = HX_NOT_COUNTED;
    EXPECT_EQ(nullptr, Found(reading, "fec").check);

    reading.counters.traffic->txCreditsRecovered = 2;
    reading.counters.traffic->rxCreditsRecovered = HX_NOT_COUNTED;
    reading.creditRecovery.emplace().creditsRecovered = 1;
    EXPECT_EQ("2", Found(reading, "credits").value) << "one loss, seen from two sides";
    reading.creditRecovery->framesLost = 4;
    EXPECT_EQ("5", Found(reading, "credits").value);
}

TEST(ToolsHealth, TransceiversHaveTheLimitsOfTheirSide) {
    HealthReading reading = Answering({Q::Transceiver});
    EXPECT_EQ(Critical, Found(reading, "transceiver").state);
    EXPECT_EQ("no module", Found(reading, "transceiver").value);
    EXPECT_EQ(nullptr, Found(reading, "received_power").check);
    reading.transceiver.present = true;
    EXPECT_EQ(Normal, Found(reading, "transceiver").state);
    EXPECT_EQ("it has no diagnostics", Found(reading, "transceiver").detail);
    SfpReadings& readings = reading.transceiver.readings.emplace();
    readings.ready = readings.checksumHolds = true;
    SfpReading& power = readings.quantities[static_cast<size_t>(SfpQuantity::ReceivedPower)];
    power = {0.0001, 1.58, 0.0398, 1.26, 0.0631, SfpState::LowAlarm};
    HealthFinding finding = Found(reading, "received_power");
    EXPECT_EQ(Critical, finding.state);
    EXPECT_EQ("-40.00", finding.value);
    EXPECT_EQ("-12.00", finding.warning);
    EXPECT_EQ("-14.00", finding.critical);
    power.state = SfpState::HighWarning;
    finding = Found(reading, "received_power");
    EXPECT_EQ(Warning, finding.state);
    EXPECT_EQ("1.00", finding.warning);
    readings.quantities[static_cast<size_t>(SfpQuantity::Voltage)] = {3.3, 3.6, 3.0,
                                                                      3.5, 3.1, SfpState::Normal};
    finding = Found(reading, "transceiver_voltage");
    EXPECT_EQ("3.30 of 3.50, 3.60",
              finding.value + " of " + finding.warning + ", " + finding.critical);
    power.value = 0;
    power.highWarning.reset();
    EXPECT_EQ("no light", Found(reading, "received_power").value);
    EXPECT_EQ("", Found(reading, "received_power").warning);
    readings.checksumHolds = false;
    EXPECT_EQ(Warning, Found(reading, "transceiver").state);
    readings.ready = false;
    EXPECT_EQ("not ready", Found(reading, "transceiver").value);
    readings.transmitDisabled = true;
    EXPECT_EQ("off", Found(reading, "transceiver").value);
    readings.transmitFault = true;
    EXPECT_EQ(Critical, Found(reading, "transceiver").state);
    EXPECT_EQ("fault", Found(reading, "transceiver").value);
}

TEST(ToolsHealth, FabricTellsOfCongestionAndOfWhatItRefuses) {
    HealthReading reading = Answering(
        {Q::Congestion, Q::CreditRecovery, Q::VirtualPorts, Q::Nvme, Q::Security, Q::Dumps});
    HX_SCM_STATISTICS& scm = reading.counters.scm.emplace().record;
    const HealthState severities[] = {Normal, Warning, Critical, Critical};
    for (uint16_t severity = 0; severity < std::size(severities); ++severity) {
        scm.severity = severity;
        EXPECT_EQ(severities[severity], Found(reading, "congestion").state) << severity;
    }
    scm.allowedPercent = 70;
    const HealthFinding congestion = Found(reading, "congestion");
    EXPECT_EQ("3 of 1, 2",
              congestion.value + " of " + congestion.warning + ", " + congestion.critical);
    EXPECT_EQ("70 % of the bandwidth allowed", congestion.detail);
    scm.fpins.creditStall = scm.fpins.deliveryTimeout = scm.peerFpins.invalidCrc = 9;
    EXPECT_EQ(Normal, Found(reading, "fpin").state) << "not about the integrity of its own link";
    scm.fpins.linkOther = 1;
    EXPECT_EQ(Warning, Found(reading, "fpin").state);
    scm.fpins.linkFailure = 2;
    EXPECT_EQ("3", Found(reading, "fpin").value);
    EXPECT_EQ("2 link_failure, 1 link_other", Found(reading, "fpin").detail);

    HX_BBCR_DATA& recovery = reading.creditRecovery.emplace();
    recovery.state = HX_BBCR_OFF;
    recovery.reason = HX_BBCR_NOT_CONFIGURED;
    EXPECT_EQ(Normal, Found(reading, "credit_recovery").state);
    EXPECT_EQ("off", Found(reading, "credit_recovery").value);
    recovery.reason = HX_BBCR_REFUSED;
    EXPECT_EQ(Warning, Found(reading, "credit_recovery").state);
    EXPECT_EQ("refused", Found(reading, "credit_recovery").value);
    recovery.state = HX_BBCR_ON;
    EXPECT_EQ("on", Found(reading, "credit_recovery").value);
    recovery.state = HX_BBCR_NOT_SUPPORTED;
    EXPECT_EQ(nullptr, Found(reading, "credit_recovery").check);

    reading.npiv.fdiscRejects = 3;
    EXPECT_EQ("3", Found(reading, "npiv").value);
    reading.sampled = true;
    EXPECT_EQ(Normal, Found(reading, "npiv").state) << "that was before";
    reading.virtualPorts.emplace_back().state = HX_VIRTUAL_PORT_REJECTED;
    EXPECT_EQ(Warning, Found(reading, "npiv").state);
    EXPECT_EQ("1 virtual port is rejected by the fabric", Found(reading, "npiv").detail);
    reading.virtualPorts.push_back(reading.virtualPorts.front());
    EXPECT_EQ("2 virtual ports are rejected by the fabric", Found(reading, "npiv").detail);

    reading.nvme = {{Wwn{}, 0, HX_NVME_LIVE}};
    reading.secured.emplace_back().state = HX_SECURE_SECURED;
    EXPECT_EQ(Normal, Found(reading, "nvme").state);
    EXPECT_EQ(Normal, Found(reading, "security").state);
    reading.nvme.push_back({*Wwn::Parse("2b:00:02:45:4d:00:01:00"), 7, HX_NVME_CONNECTING});
    reading.secured.emplace_back().state = HX_SECURE_FAILED;
    EXPECT_EQ("not live: controller 7 of 2b:00:02:45:4d:00:01:00", Found(reading, "nvme").detail);
    EXPECT_EQ(Warning, Found(reading, "security").state);
    reading.dumps = {"fc", "mini"};
    EXPECT_EQ("fc, mini", Found(reading, "dump").detail);
}

TEST(ToolsHealth, StoredCodeIsSoundActiveAndWhole) {
    HealthReading reading = Answering({Q::Code, Q::Settings, Q::ProductData});
    EXPECT_EQ(nullptr, Found(reading, "code").check) << "nothing was read";
    reading.adapter->code = {{"boot code", "3.61", "3.61", false, ""},
                             {"firmware", "9.12.01", "9.13.00", true, ""}};
    EXPECT_EQ("sound", Found(reading, "code").value);
    EXPECT_EQ(Warning, Found(reading, "pending").state);
    EXPECT_EQ("firmware 9.13.00 starts next, 9.12.01 runs", Found(reading, "pending").detail);
    reading.adapter->code[0].damage = "boot code is damaged: cut short";
    EXPECT_EQ(Critical, Found(reading, "code").state);
    reading.adapter->updating = true;
    EXPECT_EQ(nullptr, Found(reading, "code").check) << "what is being written says nothing";
    EXPECT_EQ("at work", Found(reading, "update").value);
    reading.adapter->updating = false;
    reading.adapter->interrupted = "an update was interrupted";
    EXPECT_EQ(Critical, Found(reading, "update").state);
    EXPECT_EQ(Normal, Found(reading, "settings").state);
    reading.settingsSound = false;
    reading.productDataFaults = "there is no end tag";
    EXPECT_EQ(Critical, Found(reading, "settings").state);
    EXPECT_EQ("there is no end tag", Found(reading, "product_data").detail);
}

TEST(ToolsHealth, OnePortTellsWhatIsTheAdapters) {
    std::set<std::string> ofAdapter;
    for (const HealthCheck& check : HealthChecks()) {
        if (check.ofAdapter) {
            ofAdapter.insert(check.id);
        }
    }
    EXPECT_EQ((std::set<std::string>{"board_temperature", "code", "pending", "update"}), ofAdapter);
    HealthReading reading = Answering({Q::Code});
    reading.adapter.reset();
    EXPECT_EQ(nullptr, Found(reading, "update").check);
    EXPECT_NE(nullptr, Found(reading, "link").check);
}

TEST(ToolsHealth, WhatCannotBeToldIsLeftOutAndWhatFailedIsNot) {
    HealthReading reading = Answering({});
    std::set<std::string> ids;
    for (const HealthFinding& finding : JudgeHealth(reading)) {
        ids.insert(finding.check->id);
    }
    EXPECT_EQ((std::set<std::string>{"link", "driver", "update"}), ids);
    reading.StatusOf(Q::Security) = HXMGT_TIMED_OUT;
    reading.StatusOf(Q::Nvme) = HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER;
    EXPECT_EQ(Unknown, Found(reading, "security").state);
    EXPECT_EQ(HX_STATUS{HXMGT_TIMED_OUT}, Found(reading, "security").status);
    EXPECT_EQ(nullptr, Found(reading, "nvme").check);
    EXPECT_EQ(Warning, Found(reading, "driver").state);
    EXPECT_EQ("not to be had: secured ports", Found(reading, "driver").detail);
    EXPECT_EQ(Warning, WorstOf(JudgeHealth(reading)));

    std::set<std::string> all;
    for (const HealthCheck& check : HealthChecks()) {
        EXPECT_TRUE(std::regex_match(check.id, std::regex("[a-z_]+"))) << check.id;
        EXPECT_TRUE(all.insert(check.id).second) << check.id;
        EXPECT_EQ(&check, FindHealthCheck(check.id));
        EXPECT_NE('\0', *check.meaning) << check.id;
        EXPECT_NE('\0', *check.advice) << check.id;
    }
    EXPECT_EQ(nullptr, FindHealthCheck("lin"));
}

TEST(ToolsHealth, ASampleHasWhatWasCountedInIt) {
    HealthReading before = Answering({Q::Link, Q::Traffic});
    before.counters.traffic = Traffic();
    before.counters.traffic->port.invalidCrcs = 5;
    before.creditRecovery.emplace().creditsRecovered = 3;
    HealthReading after = before;
    after.counters.traffic->port.secondsSinceReset += 10;
    HealthReading quiet = after;
    TakeSample(before, &quiet);
    EXPECT_EQ(Normal, WorstOf(JudgeHealth(quiet)));
    EXPECT_EQ("in 10 s", Found(quiet, "link_errors").detail);
    after.counters.traffic->port.invalidCrcs = 7;
    after.creditRecovery->creditsRecovered = 4;
    TakeSample(before, &after);
    EXPECT_EQ("2", Found(after, "link_errors").value);
    EXPECT_EQ("1", Found(after, "credits").value);
    HealthReading anew = before;
    anew.creditRecovery->creditsRecovered = 2;
    TakeSample(before, &anew);
    EXPECT_EQ("2", Found(anew, "credits").value) << "they began anew";
    HealthReading recovering = before;
    before.creditRecovery.reset();
    TakeSample(before, &recovering);
    EXPECT_EQ("3", Found(recovering, "credits").value) << "before, it could not tell";
}

constexpr MetricFamily kHostile = {"hostile", MetricType::Gauge, "", "a\\b\nc"};

std::string Text(const MetricFamily& family, const std::vector<MetricSample>& samples,
                 MetricsFormat format = MetricsFormat::Prometheus, bool redact = false) {
    Redactor names(redact);
    MetricsText text(format, names);
    text.Add(family, samples);
    return std::move(text).End();
}

TEST(ToolsMetrics, TextIsEscapedMaskedAndExact) {
    EXPECT_EQ(
        "# HELP fibrechannel_hostile a\\\\b\\nc\n# TYPE fibrechannel_hostile gauge\n"
        "fibrechannel_hostile{name=\"\\\"} 1\\nup \\\\\"} 7\n# EOF\n",
        Text(kHostile, {{{{"name", "\"} 1\nup \\"}}, "7"}}));
    EXPECT_EQ("# EOF\n", Text(kHostile, {}));
    const std::vector<MetricSample> secret = {
        {{{"port_wwn", "210002454d000100", Secret::Wwn}, {"serial", "S1", Secret::Serial}}, "1"}};
    EXPECT_NE(std::string::npos, Text(kHostile, secret, MetricsFormat::Prometheus, true)
                                     .find("{port_wwn=\"wwn-1\",serial=\"serial-1\"} 1\n"));
    EXPECT_EQ("18446744073709551615", MetricNumber(UINT64_MAX));
    EXPECT_EQ("0.00052", MetricNumber(0.52 / 1000));
    EXPECT_EQ("-2.5", MetricNumber(-2.5));
    EXPECT_EQ("NaN", MetricNumber(std::numeric_limits<double>::infinity()));

    // The same sample of a family that is named without, or with, what its type adds.
    const MetricFamily bytes = {"read_bytes", MetricType::Counter, "bytes", "Bytes."};
    EXPECT_EQ(
        "# HELP fibrechannel_read_bytes_total Bytes.\n"
        "# TYPE fibrechannel_read_bytes_total counter\nfibrechannel_read_bytes_total 1\n"
        "# EOF\n",
        Text(bytes, {{{}, "1"}}));
    EXPECT_EQ(
        "# HELP fibrechannel_read_bytes Bytes.\n# TYPE fibrechannel_read_bytes counter\n"
        "# UNIT fibrechannel_read_bytes bytes\nfibrechannel_read_bytes_total 1\n# EOF\n",
        Text(bytes, {{{}, "1"}}, MetricsFormat::OpenMetrics));
    EXPECT_EQ("# HELP fibrechannel I.\n# TYPE fibrechannel info\nfibrechannel_info 1\n# EOF\n",
              Text({"", MetricType::Info, "", "I."}, {{{}, "1"}}, MetricsFormat::OpenMetrics));
}

// The samples of a text, by name and labels. Every one stands behind the TYPE of its family, of
// which there is one.
std::map<std::string, std::string> SamplesIn(const std::string& text) {
    std::map<std::string, std::string> samples;
    std::set<std::string> families;
    std::string family;
    std::string type;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch parts;
        if (std::regex_match(line, parts, std::regex("# TYPE ([a-z_]+) ([a-z]+)"))) {
            family = parts[1];
            type = parts[2];
            EXPECT_TRUE(families.insert(family).second) << line;
        } else if (!line.starts_with('#')) {
            EXPECT_TRUE(std::regex_match(line, parts, std::regex("([a-z_]+)(\\{.*\\})? ([^ ]+)")))
                << line;
            const std::string name = parts[1];
            EXPECT_TRUE(name == family || (type == "histogram" && name.starts_with(family + "_")))
                << line;
            EXPECT_EQ(type == "counter", name.ends_with("_total")) << line;
            EXPECT_TRUE(samples.emplace(name + parts[2].str(), parts[3]).second) << line;
        }
    }
    return samples;
}

TEST(ToolsMetrics, EveryPortHasItsSamples) {
    HealthReading reading = Answering(
        {Q::VirtualPorts, Q::Temperature, Q::Latency, Q::Transceiver, Q::Security, Q::Dumps});
    reading.creditRecovery.emplace().state = HX_BBCR_ON;
    HX_SCM_STATISTICS& scm = reading.counters.scm.emplace().record;
    scm.severity = HX_SCM_SEVERITY_ALARM;
    scm.allowedPercent = 70;
    scm.fpins.invalidCrc = 3;
    scm.peerFpins.invalidCrc = 4;
    reading.link->state = "link_down";
    reading.secured.emplace_back().state = HX_SECURE_FAILED;
    reading.dumps = {"fc"};
    reading.transceiver.present = true;
    reading.transceiver.readings.emplace()
        .quantities[static_cast<size_t>(SfpQuantity::ReceivedPower)] = {0.5, 1.5,  {},
                                                                        1.0, 0.25, {}};
    reading.adapter->code = {{"firmware", "9.12.01", "9.13.00", true, ""}};
    reading.adapter->interrupted = "cut off";
    reading.counters.traffic = Traffic();
    reading.counters.traffic->port.rxFrames = uint64_t{1} << 40;
    reading.counters.traffic->port.dumpedFrames = HX_NOT_COUNTED;
    reading.counters.traffic->txCreditZeroTime = 1'500'000;
    HX_PRIVATE_STATISTICS_EX& latency = reading.counters.latency.emplace();
    latency.buckets = 3;
    latency.reads[0] = 1;
    latency.reads[1] = 2;
    latency.reads[2] = 4;
    latency.reads[3] = 99;  // not valid
    latency.readTime = 2'000'000;
    reading.adapter->temperature = Board(-256, 0, 95 * 256);
    const auto findings = JudgeHealth(reading);
    HealthReading silent;
    silent.answers = false;
    const auto lost = JudgeHealth(silent);
    MetricsSource source;
    source.ports = {{3,
                     "S1",
                     Wwn::Parse("210002454d000100"),
                     {{"model", "M"}},
                     &reading,
                     findings,
                     &*reading.adapter},
                    {4, "", std::nullopt, {}, &silent, lost, nullptr}};
    source.begin = 1800000000.25;
    Redactor names(false);
    const std::string text = MakeMetrics(source, MetricsFormat::Prometheus, names);
    EXPECT_TRUE(text.ends_with("\n# EOF\n"));
    const auto samples = SamplesIn(text);
    const auto of = [&](const std::string& name, const std::string& more = "") {
        const auto found = samples.find(
            "fibrechannel_" + name +
            "{port_wwn=\"210002454d000100\",serial=\"S1\",scsi_port=\"3\"" + more + "}");
        return found == samples.end() ? "none" : found->second;
    };
    EXPECT_EQ("1", of("up"));
    EXPECT_EQ("1", of("info", ",model=\"M\""));
    EXPECT_EQ("4000000000", of("speed_bytes"));
    EXPECT_EQ("1099511627776", of("rx_frames_total"));
    EXPECT_EQ("none", of("dumped_frames_total"));
    EXPECT_EQ("1.5", of("tx_credit_zero_seconds_total"));
    EXPECT_EQ("-1", of("board_temperature_celsius"));
    EXPECT_EQ("none", of("board_temperature_limit_celsius", ",limit=\"warning\""));
    EXPECT_EQ("95", of("board_temperature_limit_celsius", ",limit=\"critical\""));
    EXPECT_EQ("3", of("read_latency_seconds_bucket", ",le=\"4e-06\""));
    EXPECT_EQ("7", of("read_latency_seconds_bucket", ",le=\"+Inf\""));
    EXPECT_EQ("7", of("read_latency_seconds_count"));
    EXPECT_EQ("2", of("read_latency_seconds_sum"));
    EXPECT_EQ("0", of("virtual_ports", ",state=\"rejected\""));
    EXPECT_EQ("1", of("credit_recovery_on"));
    EXPECT_EQ("2", of("congestion_severity"));
    EXPECT_EQ("0.7", of("allowed_bandwidth_ratio"));
    EXPECT_EQ("3", of("fpins_total", ",about=\"port\",event=\"invalid_crc\""));
    EXPECT_EQ("4", of("fpins_total", ",about=\"peers\",event=\"invalid_crc\""));
    EXPECT_EQ("0", of("port_state", ",state=\"online\""));
    EXPECT_EQ("1", of("port_state", ",state=\"link_down\""));
    EXPECT_EQ("1", of("secured_ports", ",state=\"failed\""));
    EXPECT_EQ("0", of("secured_ports", ",state=\"plain\""));
    EXPECT_EQ("1", of("dumps_waiting"));
    EXPECT_EQ("1", of("transceiver_present"));
    EXPECT_EQ("0", of("transceiver_fault"));
    EXPECT_EQ("0.0005", of("transceiver_received_power_watts"));
    EXPECT_EQ("0.00025", of("transceiver_received_power_limit_watts", ",limit=\"low_warning\""));
    EXPECT_EQ("none", of("transceiver_received_power_limit_watts", ",limit=\"low_alarm\""));
    EXPECT_EQ("1", of("code_info", ",region=\"firmware\",running=\"9.12.01\",stored=\"9.13.00\""));
    EXPECT_EQ("1", of("update_pending"));
    EXPECT_EQ("1", of("update_interrupted"));
    EXPECT_EQ("2", of("health_state"));
    EXPECT_EQ("0", of("failed_questions"));
    EXPECT_EQ("none", of("nvme_controllers", ",state=\"live\""));
    EXPECT_EQ("1800000000.25", samples.at("fibrechannel_collection_timestamp_seconds"));
    EXPECT_EQ("2", samples.at("fibrechannel_ports"));
    const std::string other = "{port_wwn=\"\",serial=\"\",scsi_port=\"4\"";
    EXPECT_EQ("0", samples.at("fibrechannel_up" + other + "}"));
    EXPECT_EQ("2", samples.at("fibrechannel_health_check_state" + other + ",check=\"link\"}"));
    EXPECT_FALSE(samples.contains("fibrechannel_virtual_ports" + other + ",state=\"online\"}"));
}

}  // namespace
