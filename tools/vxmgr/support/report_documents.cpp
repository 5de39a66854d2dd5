#include "vxmgr/support/report_documents.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace vxmgr {
namespace {

const ReportJson kNothing;
const ReportJson kNoList = ReportJson::array();

std::string WithThousands(std::string digits) {
    for (size_t place = digits.size(); place > 3; place -= 3) {
        digits.insert(place - 3, "\u202F");  // a narrow space that keeps a number in one line
    }
    return digits;
}

}  // namespace

void ReportDocuments::Add(const std::string& command, const std::string& text) {
    ReportJson envelope = ReportJson::parse(text, nullptr, false);
    if (envelope.is_object()) {
        all_.push_back({command, std::move(envelope)});
    }
}

const ReportJson& ReportDocuments::Result(const std::string& command) const {
    const auto found = std::ranges::find(all_, command, &Entry::command);
    return found == all_.end() ? kNothing : ValueAt(found->envelope, "result");
}

const ReportJson& ReportDocuments::List(const std::string& command, const char* key) const {
    const ReportJson& list = ValueAt(Result(command), key);
    return list.is_array() ? list : kNoList;
}

const ReportJson& ValueAt(const ReportJson& record, std::string_view path) {
    const ReportJson* value = &record;
    while (!path.empty()) {
        const std::string key(path.substr(0, path.find('.')));
        path.remove_prefix(std::min(key.size() + 1, path.size()));
        if (!value->is_object()) {
            return kNothing;
        }
        const auto found = value->find(key);
        if (found == value->end()) {
            return kNothing;
        }
        value = &*found;
    }
    return *value;
}

std::string ShownValue(const ReportJson& value) {
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    if (value.is_number_unsigned()) {
        return WithThousands(std::to_string(value.get<uint64_t>()));
    }
    if (value.is_number()) {
        return ShownNumber(value.get<double>(), 2);
    }
    if (value.is_string()) {
        return value.get<std::string>();
    }
    std::string joined;
    if (value.is_array()) {
        for (const ReportJson& element : value) {
            joined += (joined.empty() ? "" : ", ") + ShownValue(element);
        }
    }
    return joined;
}

std::string ShownAt(const ReportJson& record, std::string_view path) {
    return ShownValue(ValueAt(record, path));
}

std::string ShownAt(const ReportJson& record, std::string_view path, std::string_view unit) {
    const std::string shown = ShownAt(record, path);
    return shown.empty() ? shown : shown + " " + std::string(unit);
}

std::optional<double> NumberAt(const ReportJson& record, std::string_view path) {
    const ReportJson& value = ValueAt(record, path);
    if (value.is_number()) {
        return value.get<double>();
    }
    if (value.is_string()) {
        // Numbers with a point are texts.
        const std::string text = value.get<std::string>();
        char* end = nullptr;
        const double number = std::strtod(text.c_str(), &end);
        if (!text.empty() && *end == '\0' && std::isfinite(number)) {
            return number;
        }
    }
    return std::nullopt;
}

bool FlagAt(const ReportJson& record, std::string_view path) {
    const ReportJson& value = ValueAt(record, path);
    return value.is_boolean() && value.get<bool>();
}

std::string ShownWwn(const ReportJson& record, std::string_view path) {
    const std::string name = ShownAt(record, path);
    if (name.size() != 16 || name.find_first_not_of("0123456789abcdef") != std::string::npos) {
        return name;
    }
    std::string shown;
    for (size_t i = 0; i < name.size(); i += 2) {
        shown += (i == 0 ? "" : ":") + name.substr(i, 2);
    }
    return shown;
}

std::string LabelOf(std::string_view key) {
    std::string label(key);
    std::ranges::replace(label, '_', ' ');
    if (!label.empty() && label.front() >= 'a' && label.front() <= 'z') {
        label.front() = static_cast<char>(label.front() - 'a' + 'A');
    }
    return label;
}

std::optional<int64_t> TimeAt(const ReportJson& record, std::string_view path) {
    const std::string text = ShownAt(record, path);
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    if (std::sscanf(text.c_str(), "%4d-%2u-%2uT%2d:%2d:%2d.%3dZ", &year, &month, &day, &hour,
                    &minute, &second, &millisecond) != 7) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                           std::chrono::day(day)};
    if (!date.ok()) {
        return std::nullopt;
    }
    const int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    return (((days * 24 + hour) * 60 + minute) * 60 + second) * 1000 + millisecond;
}

std::string ClockText(int64_t milliseconds) {
    const auto seconds = static_cast<int>(milliseconds / 1000 % 86400);
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
    return text;
}

std::string ShownNumber(double number, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number);
    std::string shown = text;
    if (shown.find('.') != std::string::npos) {
        shown.erase(shown.find_last_not_of('0') + 1);
        if (shown.back() == '.') {
            shown.pop_back();
        }
    }
    return shown == "-0" ? "0" : shown;
}

std::optional<int64_t> PortNumber(const ReportJson& row) {
    for (const char* key : {"port", "index"}) {
        const ReportJson& value = ValueAt(row, key);
        if (value.is_number_integer()) {
            return value.get<int64_t>();
        }
    }
    return std::nullopt;
}

std::string PortTitle(const ReportJson& row) {
    const auto number = PortNumber(row);
    const std::string scsi = ShownAt(row, "scsi_port");
    return number ? "Port " + std::to_string(*number) + (scsi.empty() ? "" : " (scsi:" + scsi + ")")
                  : "";
}

}  // namespace vxmgr
