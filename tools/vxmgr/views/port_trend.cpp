#include "vxmgr/views/port_trend.h"

#include <algorithm>

namespace vxmgr {
namespace {

constexpr uint64_t kWord = 4;  // bytes

// Larger counters where the driver has them: those of 32 bits may turn over more than once between
// two readings.
uint64_t CountedTraffic(const PortCounters& counted, uint64_t HX_PORT_STATISTICS::*member) {
    for (const HX_PORT_STATISTICS* record : {counted.traffic ? &counted.traffic->port : nullptr,
                                             counted.link ? &*counted.link : nullptr}) {
        uint64_t count = HX_NOT_COUNTED;
        if (record != nullptr) {
            std::memcpy(&count, &(record->*member), sizeof count);
        }
        if (count != HX_NOT_COUNTED) {
            return count;
        }
    }
    return HX_NOT_COUNTED;
}

uint64_t ErrorsIn(const HX_PORT_STATISTICS& link) {
    uint64_t sum = 0;
    for (const Counter<HX_PORT_STATISTICS>& counter : LinkCounters()) {
        const uint64_t count = CounterOf(link, counter);
        sum += counter.one != nullptr && count != HX_NOT_COUNTED ? count : 0;
    }
    return sum;
}

void Remember(uint64_t value, std::deque<uint64_t>& values) {
    values.push_back(value);
    if (values.size() > PortTrend::kHistory) {
        values.pop_front();
    }
}

}  // namespace

void PortTrend::Take(const PortCounters& counters, std::chrono::milliseconds time) {
    if (last_ && time > lastTime_) {
        const PortCounters counted = CountedBetween(*last_, counters);
        const auto elapsed = static_cast<uint64_t>((time - lastTime_).count());
        const auto rate = [&](uint64_t HX_PORT_STATISTICS::*member,
                              uint64_t unit) -> std::optional<uint64_t> {
            const uint64_t count = CountedTraffic(counted, member);
            const bool told = count != HX_NOT_COUNTED && count <= UINT64_MAX / (unit * 1000);
            return told ? std::optional(count * unit * 1000 / elapsed) : std::nullopt;
        };
        rates_ = {rate(&HX_PORT_STATISTICS::txFrames, 1), rate(&HX_PORT_STATISTICS::rxFrames, 1),
                  rate(&HX_PORT_STATISTICS::txWords, kWord),
                  rate(&HX_PORT_STATISTICS::rxWords, kWord)};
        newErrors_ = counted.link ? ErrorsIn(*counted.link) : 0;
        errors_ += newErrors_;
        Remember(rates_.txBytes.value_or(0) + rates_.rxBytes.value_or(0), bytesBefore_);
        Remember(newErrors_, errorsBefore_);
    }
    last_ = counters;
    lastTime_ = time;
}

void PortTrend::Break() {
    last_.reset();
    rates_ = {};
    newErrors_ = 0;
}

}  // namespace vxmgr
