// The metrics of ports: tables of names, types, units, what they mean and where they come from.
// Free of platform headers.
#pragma once

#include <span>

#include "vxmgr/health/health_checks.h"
#include "vxmgr/health/metrics_text.h"

namespace vxmgr {

// A port as its metrics see it.
struct MetricPort {
    std::optional<uint32_t> scsiPort;
    std::string serial;
    std::optional<Wwn> portName;
    std::vector<MetricLabel> identity;  // further names and versions
    const HealthReading* reading = nullptr;
    std::span<const HealthFinding> findings;
    const AdapterReading* adapter = nullptr;  // whichever of its ports was asked; null: none was
};

struct MetricsSource {
    std::vector<MetricPort> ports;
    double begin = 0;     // seconds of Unix time
    double duration = 0;  // seconds
    std::vector<MetricLabel> versions;
};

std::string MakeMetrics(const MetricsSource& source, MetricsFormat format, Redactor& names);

// The samples of one metric of one port.
class MetricSamples {
  public:
    explicit MetricSamples(const MetricPort& port)
        : own_({{"port_wwn", port.portName ? port.portName->Digits() : std::string(), Secret::Wwn},
                {"serial", port.serial, Secret::Serial},
                {"scsi_port", port.scsiPort ? std::to_string(*port.scsiPort) : std::string()}}) {}

    template <class Number>
    void Add(Number value, std::vector<MetricLabel> labels = {}, const char* suffix = nullptr) {
        labels.insert(labels.begin(), own_.begin(), own_.end());
        if constexpr (std::is_integral_v<Number>) {
            made_.push_back(
                {std::move(labels), MetricNumber(static_cast<uint64_t>(value)), suffix});
        } else {
            made_.push_back({std::move(labels), MetricNumber(value), suffix});
        }
    }
    // A counter that the driver may not have.
    void Count(uint64_t value, std::vector<MetricLabel> labels = {}) {
        if (value != HX_NOT_COUNTED) {
            Add(value, std::move(labels));
        }
    }

    std::vector<MetricSample> Take() { return std::move(made_); }

  private:
    const std::vector<MetricLabel> own_;
    std::vector<MetricSample> made_;
};

// What the port cannot tell gives no sample.
struct Metric {
    MetricFamily family;
    void (*get)(const MetricPort& port, MetricSamples& samples);
};

// Of states, names, versions and measured values; of counters.
std::span<const Metric> StateMetrics();
std::span<const Metric> CounterMetrics();

inline bool Knows(const MetricPort& port, HealthQuestion question) {
    return port.reading->StatusOf(question) == HXMGT_SUCCESS;
}

}  // namespace vxmgr
