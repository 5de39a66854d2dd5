// Timing of two ways of doing the same thing, interleaved so that both see the same machine.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Comparison {
    std::string name;
    std::function<void()> library;
    std::function<void()> bare;
};

struct Result {
    std::string name;
    double libraryNanoseconds;  // medians of one call
    double bareNanoseconds;
    double ratio;  // median of the ratios of neighbouring samples
};

// Alternates samples of both sides; a sample is as many calls as take about a millisecond.
Result Measure(const Comparison& comparison, uint32_t samples);

// A markdown table.
void Print(const char* title, const std::vector<Result>& results);

}  // namespace bench
