// The counters of a port, group by group: one table of each for reading, comparing and showing
// them.
#pragma once

#include <cstring>
#include <span>

#include "hxstatistics.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

template <class Record>
struct Counter {
    const char* key;
    const char* label;
    const char* column;
    size_t width;  // of the column where rows are printed as they come
    uint64_t Record::*member;
    const char* unit = "";
    bool isLevel = false;       // as it is now, or at most: not counted up
    const char* one = nullptr;  // an error in running text; null: the counter is none
    const char* many = nullptr;
};

template <class Record>
uint64_t CounterOf(const Record& record, const Counter<Record>& counter) {
    uint64_t count;
    std::memcpy(&count, &(record.*counter.member), sizeof count);
    return count;
}

// The seconds since the last reset come first.
std::span<const Counter<HX_PORT_STATISTICS>> LinkCounters();
std::span<const Counter<HX_PORT_STATISTICS>> FrameCounters();
std::span<const Counter<HX_PORT_STATISTICS_V2>> TrafficCounters();
std::span<const Counter<HX_PROTOCOL_STATISTICS>> ProtocolCounters();
std::span<const Counter<HX_FPIN_COUNTERS>> FpinCounters();
std::span<const Counter<HX_SCM_STATISTICS>> ScmCounters();
std::span<const Counter<HX_PRIVATE_STATISTICS>> PrivateCounters();
std::span<const Counter<HX_PRIVATE_STATISTICS_EX>> LatencyCounters();

// The older record, of 32-bit counters.
HX_PORT_STATISTICS Widened(const HX_STATISTICS& statistics);
// What is not in the record is not available.
HX_PORT_STATISTICS_V2 Widened(const HX_PORT_STATISTICS& statistics);

// SCM of the port itself or, with less to tell, as it concerns a remote port.
struct ScmReading {
    HX_SCM_STATISTICS record{};
    bool ofRemotePort = false;
};
ScmReading ScmOfRemotePort(const HX_PORT_SCM_STATISTICS& statistics);

// The groups that were asked for and that chip and driver can tell.
struct PortCounters {
    std::optional<HX_PORT_STATISTICS> link;
    std::optional<HX_PORT_STATISTICS_V2> traffic;
    std::optional<ScmReading> scm;
    std::optional<HX_PRIVATE_STATISTICS> driver;
    std::optional<HX_PRIVATE_STATISTICS_EX> latency;
};

// Somebody set counters to zero between two readings.
bool WasReset(const PortCounters& before, const PortCounters& after);

// What was counted between two readings, as far as the later one knows: counters of 32 bits wrap,
// and all begin anew with a reset.
PortCounters CountedBetween(const PortCounters& before, const PortCounters& after);

// "2 link failures, 1 CRC error"; empty when nothing went wrong.
std::string LinkErrorsText(const HX_PORT_STATISTICS& statistics);

}  // namespace vxmgr
