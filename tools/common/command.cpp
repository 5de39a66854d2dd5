// What stands in the table of commands: names, groups, what may follow a word.
#include "command.h"

#include <algorithm>

#include "records/text.h"

namespace tools {
namespace {

// The words of the command behind the path; empty when the command is not below it.
std::string Behind(const Command& command, std::string_view path) {
    const std::string_view whole = command.path;
    if (path.empty()) {
        return std::string(whole);
    }
    return whole.starts_with(path) && whole.substr(path.size()).starts_with(' ')
               ? std::string(whole.substr(path.size() + 1))
               : std::string();
}

}  // namespace

std::string NameOf(const Argument& argument) {
    std::string name(argument.name);
    name = name.substr(name.rfind(',') + 1);
    return name.substr(std::min(name.find_first_not_of('-'), name.size()));
}

std::string SchemaName(const Tool& tool, const char* schema) {
    return std::string(tool.name) + "." + schema;
}

std::string SchemaName(const Tool& tool, const Command& command) {
    std::string schema(command.schema != nullptr ? command.schema : command.path);
    std::replace(schema.begin(), schema.end(), ' ', '.');
    return SchemaName(tool, schema.c_str());
}

std::vector<Command> Joined(std::span<CommandRows (*const)()> files) {
    std::vector<Command> commands;
    for (const auto rows : files) {
        const CommandRows some = rows();
        commands.insert(commands.end(), some.begin(), some.end());
    }
    return commands;
}

const Command* FindCommand(const Tool& tool, std::string_view path) {
    const auto found = std::find_if(tool.commands.begin(), tool.commands.end(),
                                    [&](const Command& command) { return path == command.path; });
    return found == tool.commands.end() ? nullptr : &*found;
}

std::string AboutPath(const Tool& tool, std::string_view path) {
    if (const Command* const command = FindCommand(tool, path)) {
        return command->help;
    }
    for (const CommandGroup& group : tool.groups) {
        if (path == group.path) {
            return group.help;
        }
    }
    return {};
}

std::vector<std::string> WordsBelow(const Tool& tool, std::string_view path) {
    std::vector<std::string> words;
    for (const Command& command : tool.commands) {
        const std::string word = Split(Behind(command, path), ' ').front();
        if (!command.hidden && !word.empty() &&
            std::find(words.begin(), words.end(), word) == words.end()) {
            words.push_back(word);
        }
    }
    return words;
}

std::string DidYouMean(const Tool& tool, std::string_view path, std::string_view word) {
    const std::string front = path.empty() ? std::string() : std::string(path) + " ";
    if (const std::string nearest = Nearest(word, WordsBelow(tool, path)); !nearest.empty()) {
        return "did you mean `" + front + nearest + "`?";
    }
    // The last word of a command elsewhere: `inquiry` for `scsi inquiry`.
    for (const Command& command : tool.commands) {
        if (!command.hidden && EqualIgnoringCase(Split(command.path, ' ').back(), word)) {
            return "did you mean `" + std::string(command.path) + "`?";
        }
    }
    return {};
}

}  // namespace tools
