// Metrics as text, in the form that Prometheus and its file collectors read, or as OpenMetrics has
// it. The two differ in the names that TYPE and HELP give: that of the samples, or that of their
// family, without "_total" or "_info". Free of platform headers.
#pragma once

#include "records/redaction.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

enum class MetricsFormat : uint8_t { Prometheus, OpenMetrics };
inline constexpr const char* kMetricsFormats[] = {"prometheus", "openmetrics"};

enum class MetricType : uint8_t { Counter, Gauge, Info, Histogram };

struct MetricFamily {
    const char* name;  // without what the type adds
    MetricType type;
    const char* unit;  // with which the name ends; empty: none
    const char* help;
};

struct MetricLabel {
    const char* name;
    std::string value;
    Secret secret = Secret::None;
};

// Numbers as exact as they are.
std::string MetricNumber(uint64_t number);
std::string MetricNumber(double number);

struct MetricSample {
    std::vector<MetricLabel> labels;
    std::string value;
    const char* suffix = nullptr;  // of a histogram; else as the type has it
};

class MetricsText {
  public:
    MetricsText(MetricsFormat format, Redactor& names) : format_(format), names_(names) {}

    // A family without samples is left out.
    void Add(const MetricFamily& family, const std::vector<MetricSample>& samples);
    std::string End() &&;  // with the mark that nothing is missing

  private:
    const MetricsFormat format_;
    Redactor& names_;
    std::string text_;
};

}  // namespace vxmgr
