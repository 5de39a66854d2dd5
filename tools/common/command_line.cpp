#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>

#include "help.h"
#include "records/text.h"

namespace tools {
namespace {

constexpr const char* kModeNames[] = {"text", "table", "csv", "json", "jsonl"};

constexpr Argument kCommonOptions[] = {
    TextOption("-o,--output", "MODE", "form of the result (text)", kModeNames),
    FlagOption("--json", "the same as -o json"),
    TextOption("--out", "FILE", "write the result to a file (- is stdout)"),
    FlagOption("--wide", "tables as wide as they are, also on a console"),
    FlagOption("-q,--quiet", "no progress and no notes on stderr"),
    FlagOption("-v,--verbose", "more notes on stderr"),
    FlagOption("--dry-run", "say what would be done, change nothing, ask nothing"),
    FlagOption("-y,--yes", "answer the question with yes"),
    {.name = "--confirm",
     .valueName = "SERIAL",
     .help = "with --yes: the serial number of the adapter meant, for commands of risk 3",
     .naming = Naming::Serial},
    NumberOption(
        "--timeout", "S",
        "wait S seconds for every answer of a port (5), and end after S seconds with exit code 7, "
        "even when a driver call does not return",
        1, 86400),
    FlagOption("--no-color", "no colours (also with NO_COLOR, and off a console)"),
    FlagOption("--detailed-exitcode", "30 when nothing changed, 31 when a reset is pending"),
    FlagOption(
        "--redact",
        "world wide names and serial numbers become wwn-1, serial-1, ..., the same name the same "
        "throughout; bytes as they came are left out"),
};

bool IsSecret(Naming naming, const std::string& value) {
    const bool bare = value.find(':') == std::string::npos && value != "all" &&
                      value.find_first_not_of("0123456789") != std::string::npos;
    return naming == Naming::Serial ? !value.empty() : naming == Naming::Selection && bare;
}

// The parser of one tool: CLI11 fills the values, which are then checked and handed over.
class Parser {
  public:
    explicit Parser(const Tool& tool) : app_(tool.summary, tool.name), tool_(tool) {
        // A leading '/' is part of a value on every system.
        app_.allow_windows_style_options(false);
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.set_version_flag("--version", std::string(tool.name) + " " + tool.version);
        AddAll(app_, CommonOptions(), nullptr);
        AddAll(app_, tool.options, nullptr);
        for (const Command& command : tool.commands) {
            CLI::App* app = AppOf(command.path);
            AddAll(*app, command.arguments, &command);
            commands_.emplace_back(app, &command);
        }
    }

    void Parse(std::vector<std::string> words, CommandLine& line) {
        std::reverse(words.begin(), words.end());
        try {
            app_.parse(words);
            line.command = Chosen();
            Check(line);
        } catch (const CLI::CallForHelp&) {
            line.help = HelpText(tool_, DeepestPath()).value_or("");
        } catch (const CLI::CallForVersion& version) {
            line.help = version.what() + std::string("\n");
        } catch (const CLI::ParseError& error) {
            line.command = Chosen();
            Refuse(line, line.command == nullptr ? "a command is missing" : error.what());
            NameUnknownWord(line);
        }
        Take(line);
    }

  private:
    struct Slot {
        const Argument* argument;
        const Command* owner;  // null: every command has it
        CLI::Option* option;
        std::vector<std::string> values = {};
        bool flag = false;
    };

    // The parser of a path; missing groups on the way are made.
    CLI::App* AppOf(const std::string& path) {
        CLI::App* app = &app_;
        std::string sofar;
        for (const std::string& word : Split(path, ' ')) {
            const bool needsNext = FindCommand(tool_, sofar) == nullptr;
            sofar += (sofar.empty() ? "" : " ") + word;
            CLI::App*& next = apps_[sofar];
            if (next == nullptr) {
                next = app->add_subcommand(word);
            }
            if (app != &app_ && needsNext) {
                app->require_subcommand(1);
            }
            app = next;
        }
        return app;
    }

    void AddAll(CLI::App& app, std::span<const Argument> arguments, const Command* owner) {
        // The parser would take the name of a command below this one for the argument.
        const bool leaf = owner == nullptr || WordsBelow(tool_, owner->path).empty();
        for (const Argument& argument : arguments) {
            slots_.push_back({&argument, owner, nullptr});
            Slot& slot = slots_.back();
            if (argument.kind == ArgumentKind::Flag) {
                slot.option = app.add_flag(argument.name, slot.flag, argument.help);
                continue;
            }
            slot.option = app.add_option(argument.name, slot.values, argument.help);
            slot.option->required(argument.required && leaf)->allow_extra_args(argument.repeated);
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

    // The words of commands and groups that were understood.
    std::string DeepestPath() const {
        std::string path;
        const CLI::App* app = &app_;
        while (!app->get_subcommands().empty()) {
            app = app->get_subcommands().front();
            path += (path.empty() ? "" : " ") + app->get_name();
        }
        return path;
    }

    void Refuse(CommandLine& line, const std::string& error) const {
        const std::string path = DeepestPath();
        line.error = error;
        line.hint =
            "see `" + std::string(tool_.name) + " help" + (path.empty() ? "" : " ") + path + "`";
    }

    // A mistyped command or option is among the words that the parser leaves over.
    void NameUnknownWord(CommandLine& line) const {
        const std::string path = DeepestPath();
        for (const std::string& word : app_.remaining(true)) {
            std::string meant;
            if (!word.starts_with('-')) {
                if (line.command != nullptr) {
                    continue;
                }
                line.error = "no command \"" + path + (path.empty() ? "" : " ") + word + "\"";
                meant = DidYouMean(tool_, path, word);
            } else {
                std::vector<std::string> names;
                for (const Slot& slot : slots_) {
                    const bool own = slot.owner == nullptr || slot.owner == line.command;
                    if (own && !slot.argument->IsPositional()) {
                        names.push_back("--" + NameOf(*slot.argument));
                    }
                }
                const std::string nearest = Nearest(word.substr(0, word.find('=')), names);
                meant = nearest.empty() ? "" : "did you mean `" + nearest + "`?";
            }
            line.hint = meant.empty() ? line.hint : meant + " " + line.hint;
            return;
        }
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
            return "one of " + TextsJoined(argument.choices, ", ");
        }
        return {};
    }

    // What the parser does not know: whose options they are, and what their values may be.
    void Check(CommandLine& line) const {
        for (const Slot& slot : slots_) {
            if (slot.option->count() == 0) {
                if (slot.argument->required && slot.owner == line.command) {
                    Refuse(line, NameOf(*slot.argument) + " is required");
                    return;
                }
                continue;
            }
            if (slot.owner != nullptr && slot.owner != line.command) {
                Refuse(line, NameOf(*slot.argument) + " belongs to \"" + slot.owner->path + "\"");
                return;
            }
            for (const std::string& value : slot.values) {
                const std::string wanted = Complaint(*slot.argument, value);
                if (!wanted.empty()) {
                    Refuse(line, NameOf(*slot.argument) + ": \"" + value + "\" is not " + wanted);
                    return;
                }
            }
        }
    }

    // What was given, in whatever way the parsing ended: an error is reported where the caller
    // looks for the result, and names nobody with --redact.
    void Take(CommandLine& line) const {
        for (const Slot& slot : slots_) {
            if (slot.option->count() == 0) {
                continue;
            }
            const std::vector<std::string> values = slot.argument->kind == ArgumentKind::Flag
                                                        ? std::vector<std::string>()
                                                        : slot.option->results();
            line.options.Set(NameOf(*slot.argument), values);
            for (const std::string& value : values) {
                if (IsSecret(slot.argument->naming, value)) {
                    line.secrets.push_back(value);
                }
            }
        }
        const std::string mode = line.options.Text("output");
        const auto known = std::find(std::begin(kModeNames), std::end(kModeNames), mode);
        if (known != std::end(kModeNames)) {
            line.mode = static_cast<OutputMode>(known - std::begin(kModeNames));
        }
        if (line.options.Has("json")) {
            line.mode = OutputMode::Json;
            if (line.error.empty() && !mode.empty() && mode != "json") {
                line.error = "--json and -o " + mode + " exclude each other";
                line.hint = "give one of them";
            }
        }
        line.out = line.options.Text("out");
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
    Parser(tool).Parse(words, line);
    return line;
}

}  // namespace tools
