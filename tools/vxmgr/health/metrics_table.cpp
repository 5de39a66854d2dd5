#include "vxmgr/health/metrics_table.h"

#include <algorithm>
#include <iterator>

namespace vxmgr {
namespace {

std::vector<MetricSample> SamplesOf(const Metric& metric, const std::vector<MetricPort>& ports) {
    std::vector<MetricSample> all;
    for (const MetricPort& port : ports) {
        MetricSamples samples(port);
        metric.get(port, samples);
        std::ranges::move(samples.Take(), std::back_inserter(all));
    }
    return all;
}

}  // namespace

std::string MakeMetrics(const MetricsSource& source, MetricsFormat format, Redactor& names) {
    MetricsText text(format, names);
    for (const auto& metrics : {StateMetrics(), CounterMetrics()}) {
        for (const Metric& metric : metrics) {
            text.Add(metric.family, SamplesOf(metric, source.ports));
        }
    }
    text.Add({"ports", MetricType::Gauge, "", "Ports that there are."},
             {{{}, MetricNumber(uint64_t{source.ports.size()})}});
    text.Add({"collection_timestamp_seconds", MetricType::Gauge, "seconds",
              "When the collection began, in Unix time."},
             {{{}, MetricNumber(source.begin)}});
    text.Add({"collection_duration_seconds", MetricType::Gauge, "seconds",
              "How long the collection took."},
             {{{}, MetricNumber(source.duration)}});
    text.Add({"collector", MetricType::Info, "", "Versions of the collector."},
             {{source.versions, MetricNumber(uint64_t{1})}});
    return std::move(text).End();
}

}  // namespace vxmgr
