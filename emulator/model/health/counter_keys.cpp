#include "model/health/counter_keys.h"

#include <cstring>

#include "model/fabric/fabric.h"
#include "model/health/scm.h"

namespace vxemu {
namespace {

#define LINK(member) CounterGroup::Link, offsetof(HX_PORT_STATISTICS_V2, member)
#define FPIN(member) CounterGroup::Fpin, offsetof(HX_FPIN_COUNTERS, member)
#define SIGNALS(member) CounterGroup::Signals, offsetof(CongestionState, member)
#define PRIVATE(member) CounterGroup::Private, offsetof(HX_PRIVATE_STATISTICS, member)
#define CREDIT(member) CounterGroup::CreditRecovery, offsetof(CreditRecoveryCounts, member)

// clang-format off
constexpr CounterKey kCounterKeys[] = {
    {"tx_frames",                  LINK(port.txFrames), true},
    {"rx_frames",                  LINK(port.rxFrames), true},
    {"tx_words",                   LINK(port.txWords), true},
    {"rx_words",                   LINK(port.rxWords), true},
    {"lips",                       LINK(port.lipCount), false},
    {"link_failures",              LINK(port.linkFailures), true},
    {"losses_of_sync",             LINK(port.lossesOfSync), true},
    {"losses_of_signal",           LINK(port.lossesOfSignal), true},
    {"sequence_errors",            LINK(port.primitiveSequenceErrors), true},
    {"invalid_words",              LINK(port.invalidTransmissionWords), true},
    {"invalid_crcs",               LINK(port.invalidCrcs), true},
    {"nos",                        LINK(port.nosCount), false},
    {"error_frames",               LINK(port.errorFrames), false},
    {"dumped_frames",              LINK(port.dumpedFrames), false},
    {"fec_corrected",              LINK(port.correctedFecBlocks), false},
    {"fec_uncorrectable",          LINK(port.uncorrectableFecBlocks), false},
    {"fcp.input_requests",         LINK(fcp.inputRequests), true},
    {"fcp.output_requests",        LINK(fcp.outputRequests), true},
    {"fcp.control_requests",       LINK(fcp.controlRequests), true},
    {"fcp.input_bytes",            LINK(fcp.inputBytes), true},
    {"fcp.output_bytes",           LINK(fcp.outputBytes), true},
    {"nvme.input_requests",        LINK(nvme.inputRequests), false},
    {"nvme.output_requests",       LINK(nvme.outputRequests), false},
    {"nvme.control_requests",      LINK(nvme.controlRequests), false},
    {"nvme.input_bytes",           LINK(nvme.inputBytes), false},
    {"nvme.output_bytes",          LINK(nvme.outputBytes), false},
    {"tx_credit_zero",             LINK(txCreditZero), false},
    {"tx_credit_zero_us",          LINK(txCreditZeroTime), false},
    {"link_resets_sent",           LINK(linkResetsSent), false},
    {"link_resets_received",       LINK(linkResetsReceived), false},
    {"tx_credits_recovered",       LINK(txCreditsRecovered), false},
    {"rx_credits_recovered",       LINK(rxCreditsRecovered), false},
    {"rx_buffer_full",             LINK(rxBufferFull), false},
    {"frames_timed_out",           LINK(framesTimedOut), false},
    {"abts_sent",                  LINK(abtsSent), false},
    {"abts_received",              LINK(abtsReceived), false},
    {"exchanges_timed_out",        LINK(exchangesTimedOut), false},
    {"exchanges_retried",          LINK(exchangesRetried), false},
    {"task_set_full",              LINK(taskSetFull), false},
    {"logouts_received",           LINK(logoutsReceived), false},
    {"ls_rejects",                 LINK(lsRejects), false},
    {"busy_replies",               LINK(busyReplies), false},
    {"rscns_received",             LINK(rscnsReceived), false},
    {"flogis",                     LINK(flogis), false},
    {"plogis",                     LINK(plogis), false},
    {"link_failure",               FPIN(linkFailure), true},
    {"loss_of_sync",               FPIN(lossOfSync), true},
    {"loss_of_signal",             FPIN(lossOfSignal), true},
    {"primitive_sequence_error",   FPIN(primitiveSequenceError), true},
    {"invalid_transmission_word",  FPIN(invalidTransmissionWord), true},
    {"invalid_crc",                FPIN(invalidCrc), true},
    {"link_other",                 FPIN(linkOther), true},
    {"delivery_timeout",           FPIN(deliveryTimeout), true},
    {"delivery_unable_to_route",   FPIN(deliveryUnableToRoute), true},
    {"delivery_other",             FPIN(deliveryOther), true},
    {"congestion_cleared",         FPIN(congestionCleared), true},
    {"lost_credit",                FPIN(lostCredit), true},
    {"credit_stall",               FPIN(creditStall), true},
    {"oversubscription",           FPIN(oversubscription), true},
    {"congestion_other",           FPIN(congestionOther), true},
    {"warning_signals",            SIGNALS(warningSignals), false},
    {"alarm_signals",              SIGNALS(alarmSignals), false},
    {"commands_started",           PRIVATE(commandsStarted), false},
    {"commands_completed",         PRIVATE(commandsCompleted), false},
    {"commands_failed",            PRIVATE(commandsFailed), false},
    {"commands_aborted",           PRIVATE(commandsAborted), false},
    {"commands_timed_out",         PRIVATE(commandsTimedOut), false},
    {"commands_outstanding",       PRIVATE(commandsOutstanding), false},
    {"commands_outstanding_most",  PRIVATE(commandsOutstandingMost), false},
    {"queue_full",                 PRIVATE(queueFull), false},
    {"busy_retries",               PRIVATE(busyRetries), false},
    {"underruns",                  PRIVATE(underruns), false},
    {"overruns",                   PRIVATE(overruns), false},
    {"lun_resets",                 PRIVATE(lunResets), false},
    {"target_resets",              PRIVATE(targetResets), false},
    {"login_retries",              PRIVATE(loginRetries), false},
    {"interrupts",                 PRIVATE(interrupts), false},
    {"mailbox_commands",           PRIVATE(mailboxCommands), false},
    {"mailbox_failures",           PRIVATE(mailboxFailures), false},
    {"firmware_resets",            PRIVATE(firmwareResets), false},
    {"link_downs",                 PRIVATE(linkDowns), false},
    {"credits_recovered",          CREDIT(creditsRecovered), false},
    {"frames_lost",                CREDIT(framesLost), false},
};
// clang-format on

#undef LINK
#undef FPIN
#undef SIGNALS
#undef PRIVATE
#undef CREDIT

// These records are packed: what stands in them is raised by copies.
void RaiseAt(void* record, uint32_t offset, uint64_t n) {
    uint64_t value;
    auto* const place = static_cast<uint8_t*>(record) + offset;
    std::memcpy(&value, place, sizeof value);
    value += n;
    std::memcpy(place, &value, sizeof value);
}

}  // namespace

std::span<const CounterKey> CounterKeys() {
    return kCounterKeys;
}

const CounterKey* FindCounter(const char* key, size_t length) {
    for (const CounterKey& row : kCounterKeys) {
        const size_t own = std::strlen(row.key);
        if (own < length && std::memcmp(row.key, key, own + 1) == 0) {
            return &row;
        }
    }
    return nullptr;
}

bool RaiseCounter(Port& port, const TargetProfile* device, const CounterKey& counter, uint64_t n) {
    if (device != nullptr && !counter.remote) {
        return false;
    }
    switch (counter.group) {
        case CounterGroup::Link:
            RaiseAt(device != nullptr ? &PeerOf(port, *device).counted : &port.counted,
                    counter.offset, n);
            return true;
        case CounterGroup::Fpin:
            TakeFpins(port, device, counter.offset, n);
            return true;
        case CounterGroup::Signals:
            TakeSignals(port, counter.offset, n);
            return true;
        case CounterGroup::Private:
            RaiseAt(&port.privateCounts.counted, counter.offset, n);
            return true;
        case CounterGroup::CreditRecovery:
            RaiseAt(&port.creditRecovery, counter.offset, n);
            return true;
    }
    return false;
}

}  // namespace vxemu
