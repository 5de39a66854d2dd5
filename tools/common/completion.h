// Completion scripts for the shells, made from the tool's command table.
#pragma once

#include <map>
#include <set>
#include <string>

#include "command.h"

namespace tools {

// For every path that can be typed ("", "driver", "driver param", ...) the words that may follow.
std::map<std::string, std::set<std::string>> NextWords(const Tool& tool);

// What may follow the options that take a value, by option ("-p") or, of one command's own, by path
// and option ("event watch --kind").
struct OptionValues {
    struct Row {
        std::set<std::string> choices;
        ValueSource source;
    };
    std::map<std::string, Row> rows;
};
OptionValues ValuesOf(const Tool& tool);

std::string PowerShellCompletion(const Tool& tool);
std::string BashCompletion(const Tool& tool);

}  // namespace tools
