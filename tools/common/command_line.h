// From the words of a command line to a command and its options.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command.h"

namespace tools {

enum class OutputMode : uint8_t { Text, Table, Csv, Json, JsonLines };

constexpr bool IsJson(OutputMode mode) {
    return mode == OutputMode::Json || mode == OutputMode::JsonLines;
}

// The options and arguments given, by long name without dashes ("count") or positional name.
class Options {
  public:
    bool Has(std::string_view name) const { return values_.contains(name); }
    std::string Text(std::string_view name, std::string otherwise = {}) const;
    std::optional<uint64_t> Number(std::string_view name) const;
    std::vector<std::string> All(std::string_view name) const;
    void Set(const std::string& name, std::vector<std::string> values);

  private:
    std::map<std::string, std::vector<std::string>, std::less<>> values_;
};

struct CommandLine {
    const Command* command = nullptr;  // null: help, or an error before a command was named
    Options options;                   // after an error: as far as they were understood
    OutputMode mode = OutputMode::Text;
    std::string out;                   // --out; empty or "-" is stdout
    std::vector<std::string> secrets;  // serial numbers and bare names among the words
    std::string help;                  // the text to print when help was asked for
    std::string error;
    std::string hint;  // what to try after an error
};

// words: the command line without the program's name. Mode and out are found even when the rest is
// wrong, so that an error is reported where the caller looks for the result.
CommandLine ParseCommandLine(const Tool& tool, const std::vector<std::string>& words);

}  // namespace tools
