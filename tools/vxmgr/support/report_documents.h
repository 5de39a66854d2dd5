// The documents that a report is made from, and their values as people read them.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vxmgr {

using ReportJson = nlohmann::ordered_json;

class ReportDocuments {
  public:
    // command: "port show"; text: its envelope.
    void Add(const std::string& command, const std::string& text);

    // Null where there is no such document, or none with a result.
    const ReportJson& Result(const std::string& command) const;
    // A list of the result; empty likewise.
    const ReportJson& List(const std::string& command, const char* key) const;

    struct Entry {
        std::string command;
        ReportJson envelope;
    };
    const std::vector<Entry>& All() const { return all_; }

  private:
    std::vector<Entry> all_;
};

// The value at a path ("link.speed_gbit"); null where it does not lead to one.
const ReportJson& ValueAt(const ReportJson& record, std::string_view path);

// As people read it: yes, no, a text, a number with its thousands apart; empty for null.
std::string ShownValue(const ReportJson& value);
std::string ShownAt(const ReportJson& record, std::string_view path);
// With a unit behind it, where there is a value.
std::string ShownAt(const ReportJson& record, std::string_view path, std::string_view unit);

std::optional<double> NumberAt(const ReportJson& record, std::string_view path);
bool FlagAt(const ReportJson& record, std::string_view path);

// "210002454d000100" as people write it, with colons.
std::string ShownWwn(const ReportJson& record, std::string_view path);

// "losses_of_sync" as a label: "Losses of sync".
std::string LabelOf(std::string_view key);

// Milliseconds since 1970 of "2026-01-31T23:59:59.123Z"; none for anything else.
std::optional<int64_t> TimeAt(const ReportJson& record, std::string_view path);
// "23:59:59"
std::string ClockText(int64_t milliseconds);

// A number with at most `digits` behind its point.
std::string ShownNumber(double number, int digits);

// Who a row is about: "Port 3", with its SCSI port where it has one.
std::string PortTitle(const ReportJson& row);
// The number of the port that a row is about, whatever the document calls it.
std::optional<int64_t> PortNumber(const ReportJson& row);

}  // namespace vxmgr
