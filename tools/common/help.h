// What `help`, `--help` and the command references of the manuals say. All of it comes from the
// tables of commands, options, exit codes and topics.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command.h"

namespace tools {

// Of the tool (empty), a command, a group of commands or a topic; empty when there is no such
// thing.
std::optional<std::string> HelpText(const Tool& tool, std::string_view topic);

// The names of all topics that are no commands.
std::vector<std::string> TopicNames(const Tool& tool);

// The command reference, in Markdown.
std::string MarkdownReference(const Tool& tool);

// Examples that do not parse as the command that they stand with.
std::vector<std::string> WrongExamples(const Tool& tool);

}  // namespace tools
