#include "vxmgr/ports/stats_counters.h"

#include <cstring>

namespace vxmgr {
namespace {

using tools::Value;

#define FIELD(name) offsetof(HX_STATISTICS, name)
// clang-format off
constexpr StatsCounter kCounters[] = {
    {"seconds",             "Since the last reset",        "SECONDS",   8, nullptr, nullptr, FIELD(secondsSinceReset)},
    {"tx_frames",           "Frames sent",                 "TX FRAMES", 10, nullptr, nullptr, FIELD(txFrames)},
    {"rx_frames",           "Frames received",             "RX FRAMES", 10, nullptr, nullptr, FIELD(rxFrames)},
    {"tx_words",            "Words sent",                  "TX WORDS",  10, nullptr, nullptr, FIELD(txWords)},
    {"rx_words",            "Words received",              "RX WORDS",  10, nullptr, nullptr, FIELD(rxWords)},
    {"lips",                "Loop initialisations",        "LIP",       5, nullptr, nullptr, FIELD(lipCount)},
    {"link_failures",       "Link failures",               "LINK",      5, "link failure", "link failures", FIELD(linkFailures)},
    {"losses_of_sync",      "Losses of synchronisation",   "SYNC",      5, "loss of synchronisation", "losses of synchronisation", FIELD(lossesOfSync)},
    {"losses_of_signal",    "Losses of signal",            "SIGNAL",    6, "loss of signal", "losses of signal", FIELD(lossesOfSignal)},
    {"sequence_errors",     "Primitive sequence errors",   "SEQUENCE",  8, "primitive sequence error", "primitive sequence errors", FIELD(primitiveSequenceErrors)},
    {"invalid_words",       "Invalid transmission words",  "WORD",      5, "invalid transmission word", "invalid transmission words", FIELD(invalidTransmissionWords)},
    {"invalid_crcs",        "CRC errors",                  "CRC",       5, "CRC error", "CRC errors", FIELD(invalidCrcs)},
};
// clang-format on
#undef FIELD

constexpr size_t kTimeCounter = 0;

}  // namespace

std::span<const StatsCounter> StatsCounters() {
    return kCounters;
}

uint32_t CounterOf(const HX_STATISTICS& statistics, const StatsCounter& counter) {
    uint32_t value;
    std::memcpy(&value, reinterpret_cast<const uint8_t*>(&statistics) + counter.offset,
                sizeof value);
    return value;
}

bool WasReset(const HX_STATISTICS& before, const HX_STATISTICS& after) {
    return after.secondsSinceReset < before.secondsSinceReset;
}

HX_STATISTICS CountedBetween(const HX_STATISTICS& before, const HX_STATISTICS& after) {
    if (WasReset(before, after)) {
        return after;
    }
    HX_STATISTICS difference{};
    for (const StatsCounter& counter : kCounters) {
        const uint32_t counted = CounterOf(after, counter) - CounterOf(before, counter);
        std::memcpy(reinterpret_cast<uint8_t*>(&difference) + counter.offset, &counted,
                    sizeof counted);
    }
    return difference;
}

std::string LinkErrorsText(const HX_STATISTICS& statistics) {
    std::string text;
    for (const StatsCounter& counter : kCounters) {
        const uint32_t count = CounterOf(statistics, counter);
        if (counter.one != nullptr && count != 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " +
                    (count == 1 ? counter.one : counter.many);
        }
    }
    return text;
}

const tools::Fields<GivenStatistics>& CounterFields() {
    static const tools::Fields<GivenStatistics> kFields([] {
        std::vector<tools::FieldRow<GivenStatistics>> rows;
        for (const StatsCounter& counter : kCounters) {
            const bool isTime = &counter == &kCounters[kTimeCounter];
            const auto value = [&counter, isTime](const GivenStatistics& statistics) {
                if (!statistics) {
                    return Value();
                }
                const uint32_t count = CounterOf(*statistics, counter);
                const bool isError = counter.one != nullptr && count != 0;
                return Value::Number(count, isTime ? "s" : "")
                    .In(isError ? tools::Tone::Warning : tools::Tone::Plain);
            };
            rows.push_back({counter.key, counter.label, counter.column, tools::kInteger.OrNull(),
                            value, isTime ? "since the counters were last reset" : counter.label,
                            counter.width});
        }
        return rows;
    }());
    return kFields;
}

}  // namespace vxmgr
