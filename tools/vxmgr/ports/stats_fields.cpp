#include "vxmgr/ports/stats_fields.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <numeric>

#include "vxmgr/app/getters.h"

namespace vxmgr {
namespace {

Value CountValue(uint64_t count, const char* unit = "") {
    return count != HX_NOT_COUNTED ? Value::Number(count, unit) : Value();
}

// Rows of the counters of a record, which recordOf gives, or null for none.
template <class Source, class Record, class RecordOf>
void AddCounters(std::span<const Counter<Record>> counters, RecordOf recordOf, bool shown,
                 std::vector<FieldRow<Source>>* rows) {
    for (const Counter<Record>& counter : counters) {
        const auto value = [&counter, recordOf](const Source& source) {
            const Record* record = recordOf(source);
            if (record == nullptr) {
                return Value();
            }
            const uint64_t count = CounterOf(*record, counter);
            return CountValue(count, counter.unit)
                .In(counter.one != nullptr && count != 0 ? Tone::Warning : Tone::Plain);
        };
        rows->push_back({counter.key, shown ? counter.label : "", shown ? counter.column : "",
                         kCounter.OrNull(), value, counter.label, counter.width});
    }
}

template <class Record>
const Record* Itself(const Record& record) {
    return &record;
}

const Fields<HX_PROTOCOL_STATISTICS>& ProtocolFields(const char* const (&columns)[2]) {
    static std::map<const char*, Fields<HX_PROTOCOL_STATISTICS>> made;
    std::vector<FieldRow<HX_PROTOCOL_STATISTICS>> rows;
    for (const Counter<HX_PROTOCOL_STATISTICS>& counter : ProtocolCounters()) {
        const bool isInput = counter.member == &HX_PROTOCOL_STATISTICS::inputRequests;
        const bool isOutput = counter.member == &HX_PROTOCOL_STATISTICS::outputRequests;
        rows.push_back({counter.key, counter.label,
                        isInput    ? columns[0]
                        : isOutput ? columns[1]
                                   : "",
                        kCounter.OrNull(),
                        [&counter](const HX_PROTOCOL_STATISTICS& record) {
                            return CountValue(CounterOf(record, counter));
                        },
                        counter.label, counter.width});
    }
    return made.try_emplace(columns[0], std::move(rows)).first->second;
}

constexpr const char* kFcpColumns[] = {"FCP IN", "FCP OUT"};
constexpr const char* kNvmeColumns[] = {"NVME IN", "NVME OUT"};
const Fields<HX_PORT_STATISTICS_V2> kTrafficFields([] {
    std::vector<FieldRow<HX_PORT_STATISTICS_V2>> rows;
    AddCounters(
        FrameCounters(), [](const HX_PORT_STATISTICS_V2& traffic) { return &traffic.port; }, true,
        &rows);
    AddCounters(TrafficCounters(), Itself<HX_PORT_STATISTICS_V2>, true, &rows);
    rows.push_back({"fcp", "FCP", ProtocolFields(kFcpColumns),
                    [](const HX_PORT_STATISTICS_V2& traffic) { return &traffic.fcp; }, "", kGroup});
    rows.push_back({"nvme", "NVMe", ProtocolFields(kNvmeColumns),
                    [](const HX_PORT_STATISTICS_V2& traffic) { return &traffic.nvme; }, "",
                    kGroup});
    return rows;
}());

const Fields<HX_FPIN_COUNTERS> kFpinFields([] {
    std::vector<FieldRow<HX_FPIN_COUNTERS>> rows;
    AddCounters(FpinCounters(), Itself<HX_FPIN_COUNTERS>, true, &rows);
    return rows;
}());

constexpr const char* kSeverities[] = {"none", "warning", "alarm"};

template <uint32_t bit>
bool HasState(const ScmReading& reading) {
    return (reading.record.state & bit) != 0;
}

// What concerns a remote port has no throttling of its own.
template <auto member>
Value OwnNumber(const ScmReading& reading) {
    return reading.ofRemotePort ? Value() : Value::Number(Packed<member>(reading.record));
}

Value SeverityValue(const ScmReading& reading) {
    constexpr Tone kTones[] = {Tone::Good, Tone::Warning, Tone::Bad};
    const size_t severity = reading.record.severity;
    return severity < std::size(kSeverities)
               ? Value::Text(kSeverities[severity]).In(kTones[severity])
               : Value();
}

// The sum of those counters of FPINs whose keys begin so, or of all.
uint64_t FpinSum(const HX_FPIN_COUNTERS& fpins, size_t first, size_t end) {
    const auto counters = FpinCounters().subspan(first, end - first);
    return std::accumulate(counters.begin(), counters.end(), uint64_t{0},
                           [&](uint64_t sum, const Counter<HX_FPIN_COUNTERS>& counter) {
                               return sum + CounterOf(fpins, counter);
                           });
}

// The places of the three kinds of notifications among the counters.
constexpr size_t kFirstDelivery = 7;
constexpr size_t kFirstCongestion = 10;
constexpr size_t kAllFpins = 15;

template <size_t first, size_t end>
uint64_t OwnFpins(const ScmReading& reading) {
    return FpinSum(reading.record.fpins, first, end);
}

const HX_FPIN_COUNTERS* PeersOf(const ScmReading& reading) {
    return reading.ofRemotePort ? nullptr : &reading.record.peerFpins;
}

const Fields<ScmReading> kScmFields([] {
    std::vector<FieldRow<ScmReading>> rows = {
        {"registered", "FPINs registered", kFlag, HasState<HX_SCM_FPINS_REGISTERED>},
        {"signals_agreed", "Congestion signals agreed", kFlag, HasState<HX_SCM_SIGNALS_AGREED>},
        {"enabled", "Enabled", kFlag, HasState<HX_SCM_ENABLED>, "the setting is on"},
        {"throttling", "Throttling", kFlag, HasState<HX_SCM_THROTTLING>,
         "requests are held back now"},
        {"severity", "Severity", "SEVERITY", Choice(kSeverities).OrNull(), SeverityValue,
         "of the congestion now", 8},
        {"link_fpins", "Link FPINs", "LINK", kCounter, OwnFpins<0, kFirstDelivery>,
         "notifications of the link's integrity", 5},
        {"delivery_fpins", "Delivery FPINs", "DELIVERY", kCounter,
         OwnFpins<kFirstDelivery, kFirstCongestion>, "notifications of frames not delivered", 8},
        {"congestion_fpins", "Congestion FPINs", "CONGESTION", kCounter,
         OwnFpins<kFirstCongestion, kAllFpins>, "notifications of congestion", 10},
        {"peer_fpins", "FPINs about peers", "PEERS", kCounter.OrNull(),
         [](const ScmReading& reading) {
             const HX_FPIN_COUNTERS* peers = PeersOf(reading);
             return peers != nullptr ? Value::Number(FpinSum(*peers, 0, kAllFpins)) : Value();
         },
         "notifications about ports that this one has to do with", 5},
    };
    AddCounters(
        ScmCounters(), [](const ScmReading& reading) { return &reading.record; }, true, &rows);
    rows.insert(rows.end(),
                {
                    {"allowed_percent", "Bandwidth allowed", "ALLOWED", Integer("%").OrNull(),
                     [](const ScmReading& reading) {
                         return reading.ofRemotePort
                                    ? Value()
                                    : Value::Number(reading.record.allowedPercent, "%");
                     },
                     "of the bandwidth, now", 7},
                    {"warning_interval_ms", "Interval of warning signals", Integer("ms").OrNull(),
                     OwnNumber<&HX_SCM_STATISTICS::warningInterval>,
                     "agreed with the attached port; 0: none"},
                    {"alarm_interval_ms", "Interval of alarm signals", Integer("ms").OrNull(),
                     OwnNumber<&HX_SCM_STATISTICS::alarmInterval>,
                     "agreed with the attached port; 0: none"},
                    {"fpin", "FPINs about this port", kFpinFields,
                     [](const ScmReading& reading) { return &reading.record.fpins; }, "", kGroup},
                    {"peers", "FPINs about peers", kFpinFields, PeersOf, "", kGroup.OrNull()},
                });
    return rows;
}());

struct Bucket {
    size_t number;
    size_t last;  // the last bucket's number: it has the longer ones, too
    uint64_t count;

    uint64_t From() const { return number == 0 ? 0 : uint64_t{1} << number; }
    std::optional<uint64_t> To() const {
        return number < last ? std::optional(uint64_t{2} << number) : std::nullopt;
    }
};

using Latency = HX_PRIVATE_STATISTICS_EX;
using LatencyBuckets = uint64_t (Latency::*)[HX_LATENCY_BUCKETS];

size_t BucketsOf(const Latency& latency) {
    return std::min<size_t>(latency.buckets, HX_LATENCY_BUCKETS);
}

template <LatencyBuckets counts>
std::vector<Bucket> FilledBuckets(const Latency& latency) {
    uint64_t all[HX_LATENCY_BUCKETS];
    std::memcpy(all, &(latency.*counts), sizeof all);
    std::vector<Bucket> buckets;
    for (size_t i = 0; i < BucketsOf(latency); ++i) {
        const uint64_t count = all[i];
        if (count != 0 && count != HX_NOT_COUNTED) {
            buckets.push_back({i, HX_LATENCY_BUCKETS - 1, count});
        }
    }
    return buckets;
}

template <LatencyBuckets counts>
uint64_t CommandsOf(const Latency& latency) {
    uint64_t sum = 0;
    for (const Bucket& bucket : FilledBuckets<counts>(latency)) {
        sum += bucket.count;
    }
    return sum;
}

template <LatencyBuckets counts, uint64_t Latency::*time>
Value AverageOf(const Latency& latency) {
    const uint64_t commands = CommandsOf<counts>(latency);
    const uint64_t whole = Packed<time>(latency);
    return commands == 0 || whole == HX_NOT_COUNTED ? Value()
                                                    : Value::Number(whole / commands, "us");
}

template <bool isRead>
const Fields<Bucket>& BucketFields() {
    static const Fields<Bucket> kFields = {
        {"from_us", "From", isRead ? "READS FROM" : "WRITES FROM", Integer("us"), &Bucket::From},
        {"to_us", "To", "BELOW", Integer("us").OrNull(), &Bucket::To, "null: and longer ones"},
        {"count", "Commands", "COUNT", kCounter, &Bucket::count},
    };
    return kFields;
}

constexpr char kBucketsAbout[] = "by the time that they took; times without commands are left out";

// A group that may not be there; one that nobody asked for takes no columns.
template <class Group>
FieldRow<PortCounters> GroupRow(const char* key, const char* label, const char* about,
                                const Fields<Group>& fields,
                                std::optional<Group> PortCounters::*group, bool shown) {
    if (!shown) {
        return {key, "", kGroup.OrNull(), [](const PortCounters&) { return Value(); }, about};
    }
    return {key, label, fields, group, about, kGroup.OrNull()};
}

Fields<PortCounters> FieldsWith(unsigned shown) {
    std::vector<FieldRow<PortCounters>> rows;
    AddCounters(
        LinkCounters(),
        [](const PortCounters& counters) { return counters.link ? &*counters.link : nullptr; },
        (shown & kLinkKind) != 0, &rows);
    rows.push_back(GroupRow("traffic", "Traffic", "frames, requests, credits and exchanges",
                            kTrafficFields, &PortCounters::traffic, (shown & kTrafficKind) != 0));
    rows.push_back(GroupRow("scm", "SAN congestion management", "SAN congestion management",
                            kScmFields, &PortCounters::scm, (shown & kScmKind) != 0));
    rows.push_back(GroupRow("private", "Driver's own counters", "what the driver counted by itself",
                            kPrivateFields, &PortCounters::driver, (shown & kPrivateKind) != 0));
    rows.push_back(GroupRow("latency", "Latency", "how long commands took", kLatencyFields,
                            &PortCounters::latency, (shown & kLatencyKind) != 0));
    return rows;
}

}  // namespace

const Fields<HX_PORT_STATISTICS> kLinkFields([] {
    std::vector<FieldRow<HX_PORT_STATISTICS>> rows;
    AddCounters(LinkCounters(), Itself<HX_PORT_STATISTICS>, true, &rows);
    return rows;
}());

// A driver may know fewer counters than there are today.
const Fields<HX_PRIVATE_STATISTICS> kPrivateFields([] {
    std::vector<FieldRow<HX_PRIVATE_STATISTICS>> rows;
    for (size_t i = 0; i < PrivateCounters().size(); ++i) {
        const Counter<HX_PRIVATE_STATISTICS>& counter = PrivateCounters()[i];
        const auto value = [i, &counter](const HX_PRIVATE_STATISTICS& record) {
            return i <= record.counters ? CountValue(CounterOf(record, counter), counter.unit)
                                        : Value();
        };
        rows.push_back({counter.key, counter.label, counter.column, kCounter.OrNull(), value,
                        counter.label, counter.width});
    }
    return rows;
}());

const Fields<Latency> kLatencyFields([] {
    std::vector<FieldRow<Latency>> rows;
    AddCounters(LatencyCounters(), Itself<Latency>, true, &rows);
    rows.insert(
        rows.end(),
        {
            {"read_count", "Reads", "READS", kCounter, CommandsOf<&Latency::reads>, "", 10},
            {"write_count", "Writes", "WRITES", kCounter, CommandsOf<&Latency::writes>, "", 10},
            {"read_average_us", "Average read", "AVERAGE READ", kInteger.OrNull(),
             AverageOf<&Latency::reads, &Latency::readTime>, "", 12},
            {"write_average_us", "Average write", "AVERAGE WRITE", kInteger.OrNull(),
             AverageOf<&Latency::writes, &Latency::writeTime>, "", 13},
            {"reads", "Reads by time", BucketFields<true>(), FilledBuckets<&Latency::reads>, "",
             kBucketsAbout},
            {"writes", "Writes by time", BucketFields<false>(), FilledBuckets<&Latency::writes>, "",
             kBucketsAbout},
        });
    return rows;
}());

const Fields<PortCounters>& CounterFields(unsigned shown) {
    static std::mutex lock;  // rows are also made on the threads of ports
    static std::map<unsigned, Fields<PortCounters>> made;
    const std::lock_guard guard(lock);
    const auto found = made.find(shown);
    return found != made.end() ? found->second
                               : made.emplace(shown, FieldsWith(shown)).first->second;
}

}  // namespace vxmgr
