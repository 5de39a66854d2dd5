#include "vxmgr/health/metrics_text.h"

#include <charconv>
#include <cmath>

namespace vxmgr {
namespace {

struct MetricTypeRow {
    const char* openMetrics;
    const char* prometheus;
    const char* suffix;  // of its samples
};
constexpr MetricTypeRow kMetricTypes[] = {
    {"counter", "counter", "_total"},
    {"gauge", "gauge", ""},
    {"info", "gauge", "_info"},
    {"histogram", "histogram", ""},
};

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\n') {
            escaped += "\\n";
        } else {
            escaped += c == '\\' || c == '"' ? "\\" : "";
            escaped += c;
        }
    }
    return escaped;
}

}  // namespace

std::string MetricNumber(uint64_t number) {
    return std::to_string(number);
}

std::string MetricNumber(double number) {
    if (!std::isfinite(number)) {
        return "NaN";
    }
    constexpr int kDigits = 15;  // all that a decimal number keeps
    char text[32];
    const auto end = std::to_chars(std::begin(text), std::end(text), number,
                                   std::chars_format::general, kDigits);
    return {text, end.ptr};
}

void MetricsText::Add(const MetricFamily& family, const std::vector<MetricSample>& samples) {
    if (samples.empty()) {
        return;
    }
    const MetricTypeRow& type = kMetricTypes[static_cast<size_t>(family.type)];
    const std::string name =
        std::string("fibrechannel") + (*family.name != '\0' ? "_" : "") + family.name;
    const bool open = format_ == MetricsFormat::OpenMetrics;
    const std::string described = open ? name : name + type.suffix;
    text_ += "# HELP " + described + " " + Escaped(family.help) + "\n# TYPE " + described + " " +
             (open ? type.openMetrics : type.prometheus) + "\n";
    if (open && *family.unit != '\0') {
        text_ += "# UNIT " + described + " " + family.unit + "\n";
    }
    for (const MetricSample& sample : samples) {
        std::string labels;
        for (const MetricLabel& label : sample.labels) {
            labels += (labels.empty() ? "" : ",") + std::string(label.name) + "=\"" +
                      Escaped(names_.Mask(label.secret, label.value)) + "\"";
        }
        text_ += name + (sample.suffix != nullptr ? sample.suffix : type.suffix) +
                 (labels.empty() ? "" : "{" + labels + "}") + " " + sample.value + "\n";
    }
}

std::string MetricsText::End() && {
    return std::move(text_) + "# EOF\n";
}

}  // namespace vxmgr
