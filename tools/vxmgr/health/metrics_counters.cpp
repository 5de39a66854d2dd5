#include <algorithm>
#include <cmath>
#include <cstring>

#include "vxmgr/app/getters.h"
#include "vxmgr/health/metrics_table.h"

namespace vxmgr {
namespace {

using GetMetric = void (*)(const MetricPort& port, MetricSamples& samples);

template <auto member>
constexpr GetMetric kLinkCounter = [](const MetricPort& port, MetricSamples& samples) {
    if (const HX_PORT_STATISTICS* const counters = LinkCountersOf(port.reading->counters)) {
        samples.Count(Packed<member>(*counters));
    }
};

template <auto member>
constexpr GetMetric kTrafficCounter = [](const MetricPort& port, MetricSamples& samples) {
    if (port.reading->counters.traffic) {
        samples.Count(Packed<member>(*port.reading->counters.traffic));
    }
};

template <auto protocol, auto member>
constexpr GetMetric kProtocolCounter = [](const MetricPort& port, MetricSamples& samples) {
    if (port.reading->counters.traffic) {
        samples.Count(Packed<member>((*port.reading->counters.traffic).*protocol));
    }
};

template <auto member>
constexpr GetMetric kScmCounter = [](const MetricPort& port, MetricSamples& samples) {
    if (port.reading->counters.scm) {
        samples.Count(Packed<member>(port.reading->counters.scm->record));
    }
};

template <auto member>
constexpr GetMetric kDriverCounter = [](const MetricPort& port, MetricSamples& samples) {
    if (port.reading->counters.driver) {
        samples.Count(Packed<member>(*port.reading->counters.driver));
    }
};

template <auto member>
constexpr GetMetric kRecoveryCounter = [](const MetricPort& port, MetricSamples& samples) {
    const auto& recovery = port.reading->creditRecovery;
    if (recovery && recovery->state != HX_BBCR_NOT_SUPPORTED) {
        samples.Add(Packed<member>(*recovery));
    }
};

template <auto member>
constexpr GetMetric kNpivCounter = [](const MetricPort& port, MetricSamples& samples) {
    if (Knows(port, HealthQuestion::VirtualPorts)) {
        samples.Add(Packed<member>(port.reading->npiv));
    }
};

constexpr double kPerMicrosecond = 1e-6;

// Bucket b has the commands up to 2^(b+1) microseconds, the last one all others.
template <auto counts, auto time>
constexpr GetMetric kLatency = [](const MetricPort& port, MetricSamples& samples) {
    const auto& latency = port.reading->counters.latency;
    if (!latency) {
        return;
    }
    std::remove_cvref_t<decltype((*latency).*counts)> all;
    std::memcpy(all, &((*latency).*counts), sizeof all);
    const size_t buckets = std::min<size_t>(latency->buckets, std::size(all));
    uint64_t sum = 0;
    for (size_t i = 0; i + 1 < buckets; ++i) {
        sum += all[i];
        samples.Add(sum,
                    {{"le", MetricNumber(std::ldexp(kPerMicrosecond, static_cast<int>(i) + 1))}},
                    "_bucket");
    }
    sum += buckets != 0 ? all[buckets - 1] : 0;
    samples.Add(sum, {{"le", "+Inf"}}, "_bucket");
    samples.Add(static_cast<double>(Packed<time>(*latency)) * kPerMicrosecond, {}, "_sum");
    samples.Add(sum, {}, "_count");
};

void GetCreditZeroTime(const MetricPort& port, MetricSamples& samples) {
    const auto& traffic = port.reading->counters.traffic;
    if (traffic && traffic->txCreditZeroTime != HX_NOT_COUNTED) {
        samples.Add(static_cast<double>(traffic->txCreditZeroTime) * kPerMicrosecond);
    }
}

void GetFpins(const MetricPort& port, MetricSamples& samples) {
    if (!port.reading->counters.scm) {
        return;
    }
    const HX_SCM_STATISTICS& record = port.reading->counters.scm->record;
    for (const auto& [about, fpins] :
         {std::pair("port", record.fpins), std::pair("peers", record.peerFpins)}) {
        for (const Counter<HX_FPIN_COUNTERS>& counter : FpinCounters()) {
            samples.Count(CounterOf(fpins, counter), {{"about", about}, {"event", counter.key}});
        }
    }
}

void GetSeverity(const MetricPort& port, MetricSamples& samples) {
    if (port.reading->counters.scm) {
        samples.Add(port.reading->counters.scm->record.severity);
    }
}

void GetAllowed(const MetricPort& port, MetricSamples& samples) {
    constexpr double kPercent = 100;
    if (port.reading->counters.scm) {
        samples.Add(port.reading->counters.scm->record.allowedPercent / kPercent);
    }
}

void GetOutstanding(const MetricPort& port, MetricSamples& samples) {
    if (port.reading->counters.driver) {
        samples.Count(port.reading->counters.driver->commandsOutstanding);
    }
}

void GetRecoveryOn(const MetricPort& port, MetricSamples& samples) {
    const auto& recovery = port.reading->creditRecovery;
    if (recovery && recovery->state != HX_BBCR_NOT_SUPPORTED) {
        samples.Add(recovery->state == HX_BBCR_ON);
    }
}

// Where node_exporter knows the same counter, it has its name.
constexpr Metric kCounterMetrics[] = {
    {{"seconds_since_last_reset", MetricType::Counter, "",
      "Seconds since the counters of the port were reset."},
     kLinkCounter<&HX_PORT_STATISTICS::secondsSinceReset>},
    {{"tx_frames", MetricType::Counter, "", "Frames sent."},
     kLinkCounter<&HX_PORT_STATISTICS::txFrames>},
    {{"rx_frames", MetricType::Counter, "", "Frames received."},
     kLinkCounter<&HX_PORT_STATISTICS::rxFrames>},
    {{"tx_words", MetricType::Counter, "", "Words of 4 bytes sent."},
     kLinkCounter<&HX_PORT_STATISTICS::txWords>},
    {{"rx_words", MetricType::Counter, "", "Words of 4 bytes received."},
     kLinkCounter<&HX_PORT_STATISTICS::rxWords>},
    {{"error_frames", MetricType::Counter, "", "Frames received with errors."},
     kLinkCounter<&HX_PORT_STATISTICS::errorFrames>},
    {{"dumped_frames", MetricType::Counter, "",
      "Frames lost because there was no buffer for them."},
     kLinkCounter<&HX_PORT_STATISTICS::dumpedFrames>},
    {{"link_failure", MetricType::Counter, "", "Failures of the link."},
     kLinkCounter<&HX_PORT_STATISTICS::linkFailures>},
    {{"loss_of_sync", MetricType::Counter, "", "Losses of synchronisation."},
     kLinkCounter<&HX_PORT_STATISTICS::lossesOfSync>},
    {{"loss_of_signal", MetricType::Counter, "", "Losses of signal."},
     kLinkCounter<&HX_PORT_STATISTICS::lossesOfSignal>},
    {{"nos", MetricType::Counter, "", "NOS primitives received."},
     kLinkCounter<&HX_PORT_STATISTICS::nosCount>},
    {{"lip", MetricType::Counter, "", "Loop initialisations."},
     kLinkCounter<&HX_PORT_STATISTICS::lipCount>},
    {{"primitive_sequence_errors", MetricType::Counter, "", "Primitive sequence errors."},
     kLinkCounter<&HX_PORT_STATISTICS::primitiveSequenceErrors>},
    {{"invalid_tx_words", MetricType::Counter, "", "Invalid transmission words received."},
     kLinkCounter<&HX_PORT_STATISTICS::invalidTransmissionWords>},
    {{"invalid_crc", MetricType::Counter, "", "Frames received with a wrong CRC."},
     kLinkCounter<&HX_PORT_STATISTICS::invalidCrcs>},
    {{"fec_corrected_blocks", MetricType::Counter, "",
      "Blocks that forward error correction repaired."},
     kLinkCounter<&HX_PORT_STATISTICS::correctedFecBlocks>},
    {{"fec_uncorrectable_blocks", MetricType::Counter, "", "Blocks that it could not repair."},
     kLinkCounter<&HX_PORT_STATISTICS::uncorrectableFecBlocks>},
    {{"fcp_input_requests", MetricType::Counter, "", "Reading requests of FCP."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::fcp, &HX_PROTOCOL_STATISTICS::inputRequests>},
    {{"fcp_output_requests", MetricType::Counter, "", "Writing requests of FCP."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::fcp, &HX_PROTOCOL_STATISTICS::outputRequests>},
    {{"fcp_control_requests", MetricType::Counter, "", "Requests without data of FCP."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::fcp, &HX_PROTOCOL_STATISTICS::controlRequests>},
    {{"fcp_input_bytes", MetricType::Counter, "bytes", "Bytes read with FCP."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::fcp, &HX_PROTOCOL_STATISTICS::inputBytes>},
    {{"fcp_output_bytes", MetricType::Counter, "bytes", "Bytes written with FCP."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::fcp, &HX_PROTOCOL_STATISTICS::outputBytes>},
    {{"nvme_input_requests", MetricType::Counter, "", "Reading requests of NVMe."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::nvme, &HX_PROTOCOL_STATISTICS::inputRequests>},
    {{"nvme_output_requests", MetricType::Counter, "", "Writing requests of NVMe."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::nvme, &HX_PROTOCOL_STATISTICS::outputRequests>},
    {{"nvme_control_requests", MetricType::Counter, "", "Requests without data of NVMe."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::nvme, &HX_PROTOCOL_STATISTICS::controlRequests>},
    {{"nvme_input_bytes", MetricType::Counter, "bytes", "Bytes read with NVMe."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::nvme, &HX_PROTOCOL_STATISTICS::inputBytes>},
    {{"nvme_output_bytes", MetricType::Counter, "bytes", "Bytes written with NVMe."},
     kProtocolCounter<&HX_PORT_STATISTICS_V2::nvme, &HX_PROTOCOL_STATISTICS::outputBytes>},
    {{"tx_credit_zero", MetricType::Counter, "", "Times without transmit credit."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::txCreditZero>},
    {{"tx_credit_zero_seconds", MetricType::Counter, "seconds", "Time without transmit credit."},
     GetCreditZeroTime},
    {{"link_resets_sent", MetricType::Counter, "", "Link resets sent."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::linkResetsSent>},
    {{"link_resets_received", MetricType::Counter, "", "Link resets received."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::linkResetsReceived>},
    {{"tx_credits_recovered", MetricType::Counter, "",
      "Transmit credits that were lost and recovered."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::txCreditsRecovered>},
    {{"rx_credits_recovered", MetricType::Counter, "",
      "Receive credits that were lost and recovered."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::rxCreditsRecovered>},
    {{"rx_buffer_full", MetricType::Counter, "", "Times when all receive buffers were full."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::rxBufferFull>},
    {{"frames_timed_out", MetricType::Counter, "", "Frames that timed out."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::framesTimedOut>},
    {{"fcp_packet_aborts", MetricType::Counter, "", "Exchanges aborted by the port (ABTS sent)."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::abtsSent>},
    {{"aborts_received", MetricType::Counter, "", "Exchanges aborted by others (ABTS received)."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::abtsReceived>},
    {{"exchanges_timed_out", MetricType::Counter, "", "Exchanges that timed out."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::exchangesTimedOut>},
    {{"exchanges_retried", MetricType::Counter, "", "Exchanges that were tried again."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::exchangesRetried>},
    {{"task_set_full", MetricType::Counter, "", "Answers TASK SET FULL."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::taskSetFull>},
    {{"logouts_received", MetricType::Counter, "", "Logouts received."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::logoutsReceived>},
    {{"ls_rejects", MetricType::Counter, "", "Link services rejected."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::lsRejects>},
    {{"busy_replies", MetricType::Counter, "", "F_BSY and P_BSY received."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::busyReplies>},
    {{"rscns_received", MetricType::Counter, "", "Changes of the fabric notified (RSCN)."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::rscnsReceived>},
    {{"flogis", MetricType::Counter, "", "Logins to the fabric."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::flogis>},
    {{"plogis", MetricType::Counter, "", "Logins to ports."},
     kTrafficCounter<&HX_PORT_STATISTICS_V2::plogis>},
    {{"fpins", MetricType::Counter, "",
      "Performance impacts that the fabric notified (FPIN), by event."},
     GetFpins},
    {{"congestion_severity", MetricType::Gauge, "",
      "Congestion as the fabric tells: 0 none, 1 warning, 2 alarm."},
     GetSeverity},
    {{"allowed_bandwidth_ratio", MetricType::Gauge, "",
      "Part of the bandwidth that the port uses because of congestion."},
     GetAllowed},
    {{"congestion_warning_signals", MetricType::Counter, "",
      "Congestion warning signals received."},
     kScmCounter<&HX_SCM_STATISTICS::warningSignals>},
    {{"congestion_alarm_signals", MetricType::Counter, "", "Congestion alarm signals received."},
     kScmCounter<&HX_SCM_STATISTICS::alarmSignals>},
    {{"throttled_seconds", MetricType::Counter, "seconds",
      "Time with less bandwidth because of congestion."},
     kScmCounter<&HX_SCM_STATISTICS::throttledSeconds>},
    {{"throttled_requests", MetricType::Counter, "", "Requests held back because of congestion."},
     kScmCounter<&HX_SCM_STATISTICS::throttledRequests>},
    {{"commands_started", MetricType::Counter, "", "Commands that the driver started."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::commandsStarted>},
    {{"commands_completed", MetricType::Counter, "", "Commands that completed."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::commandsCompleted>},
    {{"commands_failed", MetricType::Counter, "", "Commands that failed."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::commandsFailed>},
    {{"commands_aborted", MetricType::Counter, "", "Commands that were aborted."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::commandsAborted>},
    {{"commands_timed_out", MetricType::Counter, "", "Commands that timed out."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::commandsTimedOut>},
    {{"queue_full", MetricType::Counter, "", "Times when the queue was full."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::queueFull>},
    {{"busy_retries", MetricType::Counter, "", "Commands tried again because something was busy."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::busyRetries>},
    {{"lun_resets", MetricType::Counter, "", "Resets of logical units."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::lunResets>},
    {{"target_resets", MetricType::Counter, "", "Resets of targets."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::targetResets>},
    {{"login_retries", MetricType::Counter, "", "Logins tried again."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::loginRetries>},
    {{"interrupts", MetricType::Counter, "", "Interrupts."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::interrupts>},
    {{"mailbox_commands", MetricType::Counter, "", "Mailbox commands to the firmware."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::mailboxCommands>},
    {{"mailbox_failures", MetricType::Counter, "", "Mailbox commands that failed."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::mailboxFailures>},
    {{"firmware_resets", MetricType::Counter, "", "Restarts of the firmware."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::firmwareResets>},
    {{"link_downs", MetricType::Counter, "", "Times when the link went down."},
     kDriverCounter<&HX_PRIVATE_STATISTICS::linkDowns>},
    {{"commands_outstanding", MetricType::Gauge, "", "Commands under way."}, GetOutstanding},
    {{"read_latency_seconds", MetricType::Histogram, "seconds", "How long reading commands took."},
     kLatency<&HX_PRIVATE_STATISTICS_EX::reads, &HX_PRIVATE_STATISTICS_EX::readTime>},
    {{"write_latency_seconds", MetricType::Histogram, "seconds", "How long writing commands took."},
     kLatency<&HX_PRIVATE_STATISTICS_EX::writes, &HX_PRIVATE_STATISTICS_EX::writeTime>},
    {{"fdiscs", MetricType::Counter, "", "Logins of virtual ports (FDISC)."},
     kNpivCounter<&HX_NPIV_ATTRIBUTES::fdiscs>},
    {{"fdisc_rejects", MetricType::Counter, "",
      "Logins of virtual ports that the fabric rejected."},
     kNpivCounter<&HX_NPIV_ATTRIBUTES::fdiscRejects>},
    {{"credit_recovery_on", MetricType::Gauge, "",
      "Whether lost buffer credits are recovered on the link."},
     GetRecoveryOn},
    {{"credits_lost", MetricType::Counter, "", "Buffer credits that recovery found lost."},
     kRecoveryCounter<&HX_BBCR_DATA::creditsRecovered>},
    {{"frames_lost", MetricType::Counter, "", "Frames that recovery found lost."},
     kRecoveryCounter<&HX_BBCR_DATA::framesLost>},
};

}  // namespace

std::span<const Metric> CounterMetrics() {
    return kCounterMetrics;
}

}  // namespace vxmgr
