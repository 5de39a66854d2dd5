#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>

#include "text.h"

namespace tools {
namespace {

constexpr const char* kModeNames[] = {"text", "table", "csv", "json", "jsonl"};

constexpr Argument kCommonOptions[] = {
    {"-o,--output", ArgumentKind::Text, "MODE", "form of the result", false, false, kModeNames},
    {"--json", ArgumentKind::Flag, "", "the same as -o json"},
    {"--out", ArgumentKind::Text, "FILE", "write the result to a file (- is stdout)"},
    {"-q,--quiet", ArgumentKind::Flag, "", "no progress and no notes on stderr"},
    {"-v,--verbose", ArgumentKind::Flag, "", "more notes on stderr"},
    {"--dry-run", ArgumentKind::Flag, "", "say what would be done, change nothing"},
    {"-y,--yes", ArgumentKind::Flag, "", "answer the question with yes"},
    {"--confirm", ArgumentKind::Text, "SERIAL",
     "with --yes: the serial number of the adapter meant, for commands of risk 3"},
    {"--timeout",
     ArgumentKind::Number,
     "S",
     "give up an answer, and the command, after S seconds (exit 7)",
     false,
     false,
     {},
     1,
     86400},
    {"--no-color", ArgumentKind::Flag, "", "no colours (also with NO_COLOR, and off a console)"},
    {"--detailed-exitcode", ArgumentKind::Flag, "",
     "30 when nothing changed, 31 when a reset is pending"},
    {"--redact", ArgumentKind::Flag, "", "mask world wide names and serial numbers"},
};

std::optional<OutputMode> ModeOf(std::string_view name) {
    for (size_t i = 0; i < std::size(kModeNames); ++i) {
        if (name == kModeNames[i]) {
            return static_cast<OutputMode>(i);
        }
    }
    return std::nullopt;
}

// The value of an option among words that need not make sense.
std::optional<std::string> ValueAmong(const std::vector<std::string>& words,
                                      std::string_view shortName, std::string_view longName) {
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == longName || (!shortName.empty() && word == shortName)) {
            if (i + 1 < words.size()) {
                return words[i + 1];
            }
        } else if (word.starts_with(std::string(longName) + "=")) {
            return word.substr(longName.size() + 1);
        } else if (!shortName.empty() && !word.starts_with("--") && word.starts_with(shortName)) {
            return word.substr(shortName.size());
        }
    }
    return std::nullopt;
}

void GuessOutput(const std::vector<std::string>& words, CommandLine& line) {
    if (const auto mode = ValueAmong(words, "-o", "--output")) {
        line.mode = ModeOf(*mode).value_or(OutputMode::Text);
    }
    if (std::find(words.begin(), words.end(), "--json") != words.end()) {
        line.mode = OutputMode::Json;
    }
    line.out = ValueAmong(words, "", "--out").value_or("");
}

// The parser of one tool: CLI11 fills the values, which are then checked and handed over.
class Parser {
  public:
    explicit Parser(const Tool& tool) : app_(tool.summary, tool.name), tool_(tool) {
        // A leading '/' is part of a value on every system.
        app_.allow_windows_style_options(false);
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.get_formatter()->column_width(34);
        app_.set_version_flag("--version", std::string(tool.name) + " " + tool.version);
        AddAll(app_, CommonOptions(), nullptr);
        AddAll(app_, tool.options, nullptr);
        for (const Command& command : tool.commands) {
            CLI::App* app = AppOf(command.path);
            app->description(command.help);
            app->group(command.hidden ? "" : "Commands");
            AddAll(*app, command.arguments, &command);
            commands_.emplace_back(app, &command);
        }
    }

    void Parse(std::vector<std::string> words, CommandLine& line) {
        std::reverse(words.begin(), words.end());
        try {
            app_.parse(words);
        } catch (const CLI::CallForHelp&) {
            line.help = app_.help();
            return;
        } catch (const CLI::CallForVersion& version) {
            line.help = version.what() + std::string("\n");
            return;
        } catch (const CLI::ParseError& error) {
            line.command = Chosen();
            line.error = line.command == nullptr ? MissingCommand(error) : error.what();
            line.hint = "see `" + DeepestPath() + " --help`";
            return;
        }
        line.command = Chosen();
        Collect(line);
    }

  private:
    struct Slot {
        const Argument* argument;
        const Command* owner;  // null: every command has it
        CLI::Option* option;
        std::vector<std::string> values;
        bool flag = false;
    };

    // The parser of a path; missing groups on the way are made.
    CLI::App* AppOf(const std::string& path) {
        CLI::App* app = &app_;
        std::string sofar;
        for (const std::string& word : Split(path, ' ')) {
            const bool needsNext = !IsCommand(sofar);
            sofar += (sofar.empty() ? "" : " ") + word;
            CLI::App*& next = apps_[sofar];
            if (next == nullptr) {
                next = app->add_subcommand(word, GroupHelp(sofar));
                next->group("Commands");
            }
            if (app != &app_ && needsNext) {
                app->require_subcommand(1);
            }
            app = next;
        }
        return app;
    }

    // A command may have others below it: "stats" and "stats clear".
    bool IsCommand(std::string_view path) const {
        return std::any_of(tool_.commands.begin(), tool_.commands.end(),
                           [path](const Command& command) { return path == command.path; });
    }

    std::string GroupHelp(std::string_view path) const {
        for (const CommandGroup& group : tool_.groups) {
            if (path == group.path) {
                return group.help;
            }
        }
        return {};
    }

    void AddAll(CLI::App& app, std::span<const Argument> arguments, const Command* owner) {
        for (const Argument& argument : arguments) {
            Slot& slot = slots_.emplace_back();
            slot.argument = &argument;
            slot.owner = owner;
            if (argument.kind == ArgumentKind::Flag) {
                slot.option = app.add_flag(argument.name, slot.flag, argument.help);
                continue;
            }
            slot.option = app.add_option(argument.name, slot.values, argument.help);
            slot.option->required(argument.required)->allow_extra_args(argument.repeated);
            slot.option->type_name(argument.valueName);
            if (argument.repeated && argument.IsPositional()) {
                slot.option->expected(1, 64);
            } else {
                slot.option->expected(1);
                slot.option->multi_option_policy(argument.repeated ? CLI::MultiOptionPolicy::TakeAll
                                                                   : CLI::MultiOptionPolicy::Throw);
                slot.option->allow_extra_args(false);
            }
        }
    }

    const Command* Chosen() const {
        for (const auto& [app, command] : commands_) {
            if (app->parsed() && app->get_subcommands().empty()) {
                return command;
            }
        }
        return nullptr;
    }

    std::string DeepestPath() const {
        std::string path = tool_.name;
        const CLI::App* app = &app_;
        while (!app->get_subcommands().empty()) {
            app = app->get_subcommands().front();
            path += " " + app->get_name();
        }
        return path;
    }

    // The parser only says that a command is missing; a mistyped one is among the words left over.
    std::string MissingCommand(const CLI::ParseError& error) const {
        for (const std::string& word : app_.remaining(true)) {
            if (!word.starts_with('-')) {
                return "no command \"" + DeepestPath() + " " + word + "\"";
            }
        }
        return error.get_name() == "RequiredError" ? "a command is missing" : error.what();
    }

    static std::string Complaint(const Argument& argument, const std::string& value) {
        if (argument.kind == ArgumentKind::Number) {
            const auto number = ParseNumber(value);
            if (!number || *number < argument.least || *number > argument.most) {
                return "a number from " + std::to_string(argument.least) + " to " +
                       std::to_string(argument.most);
            }
        }
        if (!argument.choices.empty() && std::find(argument.choices.begin(), argument.choices.end(),
                                                   value) == argument.choices.end()) {
            std::string choices;
            for (const char* choice : argument.choices) {
                choices += (choices.empty() ? "" : ", ") + std::string(choice);
            }
            return "one of " + choices;
        }
        return {};
    }

    void Collect(CommandLine& line) {
        for (const Slot& slot : slots_) {
            if (slot.option->count() == 0) {
                continue;
            }
            if (slot.owner != nullptr && slot.owner != line.command) {
                line.error = NameOf(*slot.argument) + " belongs to \"" + slot.owner->path + "\"";
                line.hint = "see `" + DeepestPath() + " --help`";
                return;
            }
            for (const std::string& value : slot.values) {
                const std::string wanted = Complaint(*slot.argument, value);
                if (!wanted.empty()) {
                    line.error = NameOf(*slot.argument) + ": \"" + value + "\" is not " + wanted;
                    line.hint = "see `" + DeepestPath() + " --help`";
                    return;
                }
            }
            line.options.Set(NameOf(*slot.argument), slot.values);
        }
        const std::string mode = line.options.Text("output");
        if (line.options.Has("json") && !mode.empty() && mode != "json") {
            line.error = "--json and -o " + mode + " exclude each other";
            line.hint = "give one of them";
        }
    }

    CLI::App app_;
    const Tool& tool_;
    std::map<std::string, CLI::App*> apps_;
    std::deque<Slot> slots_;
    std::vector<std::pair<CLI::App*, const Command*>> commands_;
};

}  // namespace

std::span<const Argument> CommonOptions() {
    return kCommonOptions;
}

std::string Options::Text(std::string_view name, std::string otherwise) const {
    const auto found = values_.find(name);
    return found == values_.end() || found->second.empty() ? otherwise : found->second.front();
}

std::optional<uint64_t> Options::Number(std::string_view name) const {
    return ParseNumber(Text(name));
}

std::vector<std::string> Options::All(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::vector<std::string>() : found->second;
}

void Options::Set(const std::string& name, std::vector<std::string> values) {
    values_[name] = std::move(values);
}

CommandLine ParseCommandLine(const Tool& tool, const std::vector<std::string>& words) {
    CommandLine line;
    GuessOutput(words, line);
    Parser(tool).Parse(words, line);
    return line;
}

std::string NameOf(const Argument& argument) {
    std::string name(argument.name);
    name = name.substr(name.rfind(',') + 1);
    return name.substr(std::min(name.find_first_not_of('-'), name.size()));
}

}  // namespace tools
