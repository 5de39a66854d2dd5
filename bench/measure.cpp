#include "measure.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

constexpr double kSampleNanoseconds = 1e6;

double Now() {
    LARGE_INTEGER frequency;
    LARGE_INTEGER ticks;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&ticks);
    return static_cast<double>(ticks.QuadPart) * 1e9 / static_cast<double>(frequency.QuadPart);
}

double TimePerCall(const std::function<void()>& call, uint32_t calls) {
    const double start = Now();
    for (uint32_t i = 0; i < calls; ++i) {
        call();
    }
    return (Now() - start) / calls;
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Calls that take about a sample's time; the search warms everything up as well.
uint32_t CallsPerSample(const std::function<void()>& call) {
    uint32_t calls = 1;
    while (calls < 1u << 20 && TimePerCall(call, calls) * calls < kSampleNanoseconds) {
        calls *= 2;
    }
    return calls;
}

}  // namespace

Result Measure(const Comparison& comparison, uint32_t samples) {
    const uint32_t calls = CallsPerSample(comparison.library);
    TimePerCall(comparison.bare, calls);
    std::vector<double> library;
    std::vector<double> bare;
    std::vector<double> ratios;
    for (uint32_t sample = 0; sample < samples; ++sample) {
        // Whoever goes first changes from sample to sample.
        if (sample % 2 == 0) {
            library.push_back(TimePerCall(comparison.library, calls));
            bare.push_back(TimePerCall(comparison.bare, calls));
        } else {
            bare.push_back(TimePerCall(comparison.bare, calls));
            library.push_back(TimePerCall(comparison.library, calls));
        }
        ratios.push_back(library.back() / bare.back());
    }
    return {comparison.name, Median(library), Median(bare), Median(ratios)};
}

void Print(const char* title, const std::vector<Result>& results) {
    printf("\n%s\n\n", title);
    printf("| Call | Library ns | Bare ns | Difference ns | Ratio |\n");
    printf("|---|---:|---:|---:|---:|\n");
    for (const Result& row : results) {
        printf("| %s | %.0f | %.0f | %.0f | %.3f |\n", row.name.c_str(), row.libraryNanoseconds,
               row.bareNanoseconds, row.libraryNanoseconds - row.bareNanoseconds, row.ratio);
    }
    fflush(stdout);
}

}  // namespace bench
