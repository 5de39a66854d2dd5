#include "help.h"

#include <algorithm>

#include "command_line.h"
#include "records/text.h"

namespace tools {
namespace {

constexpr size_t kWidth = 80;
constexpr size_t kLeft = 24;  // cells of a name before what it means

struct RiskRow {
    const char* name;
    const char* meaning;
};
constexpr RiskRow kRisks[] = {
    {"reads", "reads only, changes nothing"},
    {"reversible", "changes what can be changed back; asks nothing"},
    {"interrupts I/O", "can interrupt I/O; asks y/N, or takes --yes"},
    {"irrecoverable",
     "can leave the adapter unusable; asks for the last four characters of its serial number, or "
     "takes --yes --confirm SERIAL"},
};

const RiskRow& RowOf(Risk risk) {
    return kRisks[static_cast<size_t>(risk)];
}

std::string NumberOf(Risk risk) {
    return std::to_string(static_cast<int>(risk));
}

// "  name        what it means", the meaning in lines of its own behind a long name.
std::string Entry(const std::string& name, const std::string& meaning) {
    std::string line = "  " + name;
    line += line.size() + 2 > kLeft ? "\n" + std::string(kLeft, ' ')
                                    : std::string(kLeft - line.size(), ' ');
    return line + Wrapped(meaning, kWidth - kLeft, kLeft) + "\n";
}

std::string RiskText() {
    std::string text = "How much a command can break:\n\n";
    for (size_t i = 0; i < std::size(kRisks); ++i) {
        text += Entry(std::to_string(i) + "  " + kRisks[i].name, kRisks[i].meaning);
    }
    return text +
           "\nWhere nobody can be asked (input that is no console, or a JSON mode) a command that\n"
           "has to ask ends with exit code 2. --dry-run asks nothing and changes nothing.\n"
           "--confirm with the serial number of another adapter than the one selected is\n"
           "refused at any risk.\n";
}

std::string ExitText() {
    std::string text = "Every command ends with one of these exit codes:\n\n";
    for (const ExitCodeRow& row : ExitCodes()) {
        text += Entry(std::to_string(Number(row.code)), row.meaning);
    }
    return text + "\n`explain exit N` says what to do, `explain CODE` what a status leads to.\n";
}

std::string OutputText() {
    return "stdout carries the result alone; notes, questions and errors go to stderr.\n\n" +
           Entry("-o text", "for people: tables for lists, sections for details (the default)") +
           Entry("-o table", "tables alone, a row for each object") +
           Entry("-o csv",
                 "RFC 4180: a header, even when there is nothing to list, and a line for each "
                 "object; the values beside a list are repeated on each line") +
           Entry("-o json", "one document (--json for short)") +
           Entry("-o jsonl",
                 "one line {\"schema\":...,\"row\":{...}} for each object, with \"header\" for the "
                 "values beside the list, then the document without the rows") +
           "\nOn a console, tables shorten their widest columns to its width; --wide and output "
           "that\nis redirected show all. Every end of a command in a JSON mode is one document, "
           "a wrong\ncommand line too; `schema` prints what the documents are made of.\n";
}

constexpr HelpTopic kTopics[] = {
    {"exit", "the exit codes", ExitText},
    {"output", "forms of the result", OutputText},
    {"risk", "how much a command can break, and what it asks", RiskText},
};

// "--count N", "FILE", "up|down".
std::string Spelled(const Argument& argument) {
    if (!argument.IsPositional()) {
        std::string name = Split(argument.name, ',').back();
        return argument.kind == ArgumentKind::Flag ? name : name + " " + argument.valueName;
    }
    const std::string choices = TextsJoined(argument.choices, "|");
    return choices.empty() ? argument.name : choices;
}

// "-p, --port SEL"
std::string Heading(const Argument& argument) {
    std::string text = argument.IsPositional() ? argument.name : Spelled(argument);
    const std::vector<std::string> names = Split(argument.name, ',');
    return names.size() > 1 ? names.front() + ", " + text : text;
}

std::string Usage(const Tool& tool, const Command& command) {
    std::string usage = std::string(tool.name) + " " + command.path;
    for (const Argument& argument : command.arguments) {
        const std::string word = Spelled(argument);
        usage += argument.required ? " " + word : " [" + word + "]";
        usage += argument.repeated ? "..." : "";
    }
    return usage;
}

std::string Meaning(const Argument& argument) {
    std::string text = argument.help;
    if (!argument.IsPositional() && !argument.choices.empty()) {
        text += (text.empty() ? "" : ": ") + TextsJoined(argument.choices, ", ");
    }
    const Argument any{argument.name};
    if (argument.kind == ArgumentKind::Number &&
        (argument.least != any.least || argument.most != any.most)) {
        text += argument.most == any.most ? "; " + std::to_string(argument.least) + " or more"
                                          : "; " + std::to_string(argument.least) + " to " +
                                                std::to_string(argument.most);
    }
    return text;
}

std::string Entries(std::span<const Argument> arguments) {
    std::string text;
    for (const Argument& argument : arguments) {
        text += Entry(Heading(argument), Meaning(argument));
    }
    return text;
}

std::string CommandEntries(const Tool& tool, const std::string& path) {
    std::string text;
    for (const std::string& word : WordsBelow(tool, path)) {
        const std::string below = (path.empty() ? "" : path + " ") + word;
        text += Entry(path.empty() ? word : below, AboutPath(tool, below));
    }
    return text;
}

std::string GlobalOptions(const Tool& tool) {
    return "\nOptions of every command:\n" + Entries(tool.options) + Entries(CommonOptions()) +
           Entry("-h, --help", "what the command does");
}

std::string ToolHelp(const Tool& tool) {
    std::string text = std::string(tool.summary) + "\n\nUsage: " + tool.name +
                       " [options] command [arguments]\n\nCommands and groups of commands:\n" +
                       CommandEntries(tool, "") + "\nMore under `" + tool.name +
                       " help TOPIC`, a command, a group or one of these:\n";
    for (const auto& topics : {std::span<const HelpTopic>(kTopics), tool.topics}) {
        for (const HelpTopic& topic : topics) {
            text += Entry(topic.name, topic.about);
        }
    }
    return text + GlobalOptions(tool) + Entry("--version", "the version of the tool");
}

std::string CommandHelp(const Tool& tool, const Command& command) {
    std::string text = std::string(tool.name) + " " + command.path + ": " + command.help +
                       "\n\nUsage: " + Wrapped(Usage(tool, command), kWidth - 7, 7) + "\n";
    if (!command.arguments.empty()) {
        text += "\n" + Entries(command.arguments);
    }
    if (command.notes != nullptr) {
        text += "\n" + Wrapped(command.notes(), kWidth, 0) + "\n";
    }
    text += "\nRisk " + NumberOf(command.risk) + ": " +
            Wrapped(RowOf(command.risk).meaning, kWidth - 8, 8) + ".\n";
    if (*command.example != '\0') {
        text += std::string("Example: ") + tool.name + " " + command.example + "\n";
    }
    if (const std::string below = CommandEntries(tool, command.path); !below.empty()) {
        text += "\nCommands below it:\n" + below;
    }
    return text + GlobalOptions(tool);
}

std::string GroupHelp(const Tool& tool, const std::string& path) {
    return std::string(tool.name) + " " + path + ": " + AboutPath(tool, path) + "\n\nCommands:\n" +
           CommandEntries(tool, path) + "\n`" + tool.name + " help " + path +
           " COMMAND` describes each.\n";
}

// Text of a table's cell.
std::string Cell(std::string text) {
    for (size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) {
        text.insert(at, "\\");
    }
    return text;
}

std::string Row(const std::string& left, const std::string& right) {
    return "| " + Cell(left) + " | " + Cell(right) + " |\n";
}

std::string Head(const char* left, const char* right) {
    return std::string("| ") + left + " | " + right + " |\n|---|---|\n";
}

std::string Sentence(const std::string& text) {
    if (text.empty()) {
        return text;
    }
    return Uppercase(text.substr(0, 1)) + text.substr(1) + (text.ends_with('?') ? "" : ".");
}

std::string MarkdownOf(const Tool& tool, const Command& command) {
    std::string text = "\n#### `" + std::string(command.path) + "`\n\n" + Sentence(command.help) +
                       " Risk " + NumberOf(command.risk) + ".\n\n    " +
                       Wrapped(Usage(tool, command), 92, 8) + "\n";
    if (!command.arguments.empty()) {
        text += "\n" + Head("Argument", "Meaning");
        for (const Argument& argument : command.arguments) {
            text += Row("`" + Heading(argument) + "`", Meaning(argument));
        }
    }
    if (command.notes != nullptr) {
        text += "\n" + Wrapped(command.notes(), 100, 0) + "\n";
    }
    if (*command.example != '\0') {
        text += std::string("\nExample: `") + tool.name + " " + command.example + "`\n";
    }
    return text;
}

}  // namespace

std::optional<std::string> HelpText(const Tool& tool, std::string_view topic) {
    if (topic.empty()) {
        return ToolHelp(tool);
    }
    if (const Command* const command = FindCommand(tool, topic)) {
        return CommandHelp(tool, *command);
    }
    if (!WordsBelow(tool, topic).empty()) {
        return GroupHelp(tool, std::string(topic));
    }
    for (const auto& topics : {std::span<const HelpTopic>(kTopics), tool.topics}) {
        for (const HelpTopic& row : topics) {
            if (topic == row.name) {
                return row.text();
            }
        }
    }
    return std::nullopt;
}

std::vector<std::string> TopicNames(const Tool& tool) {
    std::vector<std::string> names;
    for (const auto& topics : {std::span<const HelpTopic>(kTopics), tool.topics}) {
        for (const HelpTopic& topic : topics) {
            names.push_back(topic.name);
        }
    }
    return names;
}

std::string MarkdownReference(const Tool& tool) {
    std::string text = "### Exit codes\n\n" + Head("Code", "Meaning");
    for (const ExitCodeRow& row : ExitCodes()) {
        text += Row(std::to_string(Number(row.code)), row.meaning);
    }
    text += "\n### Risk\n\n" + Head("Risk", "A command of this risk");
    for (size_t i = 0; i < std::size(kRisks); ++i) {
        text += Row(std::to_string(i), kRisks[i].meaning);
    }
    text += "\n### Options of every command\n\n" + Head("Option", "Meaning");
    for (const auto& options : {tool.options, CommonOptions()}) {
        for (const Argument& option : options) {
            text += Row("`" + Heading(option) + "`", Meaning(option));
        }
    }
    for (const std::string& word : WordsBelow(tool, "")) {
        const bool isGroup = FindCommand(tool, word) == nullptr;
        text += "\n### " + word + (isGroup ? "\n\n" + Sentence(AboutPath(tool, word)) : "") + "\n";
        for (const Command& command : tool.commands) {
            if (!command.hidden && Split(command.path, ' ').front() == word) {
                text += MarkdownOf(tool, command);
            }
        }
    }
    return text;
}

std::vector<std::string> WrongExamples(const Tool& tool) {
    std::vector<std::string> wrong;
    for (const Command& command : tool.commands) {
        const CommandLine line = ParseCommandLine(tool, Split(command.example, ' '));
        if (!command.hidden && (!line.error.empty() || line.command != &command)) {
            wrong.push_back(std::string(command.path) + ": `" + command.example + "`" +
                            (line.error.empty() ? "" : ": " + line.error));
        }
    }
    return wrong;
}

}  // namespace tools
