// The counters of a port's link: one table for reading, comparing and showing them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "common/fields.h"
#include "hxstatistics.h"

namespace vxmgr {

struct StatsCounter {
    const char* key;
    const char* label;
    const char* column;
    size_t width;     // of the column where rows are printed as they come
    const char* one;  // a link error in running text; null: the counter is none
    const char* many;
    size_t offset;  // in HX_STATISTICS
};

// The seconds since the last reset come first.
std::span<const StatsCounter> StatsCounters();
uint32_t CounterOf(const HX_STATISTICS& statistics, const StatsCounter& counter);

// Somebody set the counters to zero between two readings.
bool WasReset(const HX_STATISTICS& before, const HX_STATISTICS& after);

// What was counted between two readings, as far as the later one knows: counters wrap at 32 bits,
// and begin anew with a reset.
HX_STATISTICS CountedBetween(const HX_STATISTICS& before, const HX_STATISTICS& after);

// "2 link failures, 1 CRC error"; empty when nothing went wrong.
std::string LinkErrorsText(const HX_STATISTICS& statistics);

// A field per counter, without a value where there are no statistics.
using GivenStatistics = std::optional<HX_STATISTICS>;
const tools::Fields<GivenStatistics>& CounterFields();

}  // namespace vxmgr
