// help, explain, schema, completion, version.
#include "builtin_commands.h"

#include "completion.h"
#include "help.h"
#include "invocation.h"
#include "records/fields.h"
#include "records/text.h"
#include "schema_command.h"
#include "status_codes.h"

namespace tools {
namespace {

constexpr const char* kShells[] = {"powershell", "bash"};

constexpr Argument kHelpArguments[] = {
    {.name = "TOPIC", .help = "a command, a group of commands or a topic", .repeated = true},
    FlagOption("--markdown", "the reference of all commands, in Markdown"),
};
constexpr Argument kExplainArguments[] = {
    {.name = "CODE",
     .help = "a status (0x20000067, 170, DEVICE_BUSY), or: exit [N]",
     .required = true,
     .repeated = true},
};
constexpr Argument kCompletionArguments[] = {
    {.name = "SHELL", .help = "powershell or bash", .required = true, .choices = kShells},
};

const Fields<std::string> kHelpFields = {
    FieldRow<std::string>::Raw("help", kText, [](const std::string& text) { return text; }),
};

ExitCode RunHelp(Invocation& invocation) {
    const Tool& tool = invocation.OwnTool();
    if (invocation.Given().Has("markdown")) {
        // What the manual shows is what a reader tries.
        for (const std::string& wrong : WrongExamples(tool)) {
            invocation.Fail(ExitCode::Internal, "the example of " + wrong);
        }
        invocation.Result() = kHelpFields.Make(MarkdownReference(tool));
        return ExitCode::Done;
    }
    std::string topic;
    std::string known;
    for (const std::string& word : invocation.Given().All("TOPIC")) {
        known = topic;
        topic += (topic.empty() ? "" : " ") + word;
        if (!HelpText(tool, topic)) {
            std::string meant = DidYouMean(tool, known, word);
            if (const std::string near = Nearest(word, TopicNames(tool)); meant.empty()) {
                meant = near.empty() ? "" : "did you mean `help " + near + "`?";
            }
            invocation.Fail(ExitCode::Usage, "no command or topic \"" + topic + "\"",
                            meant.empty() ? "`help` lists them" : meant);
        }
    }
    invocation.Result() = kHelpFields.Make(HelpText(tool, topic).value_or(""));
    return ExitCode::Done;
}

struct Version {
    const char* name;
    const char* tool;
    std::string library;  // empty: the tool uses none
};

const Fields<Version>& VersionFields(bool withLibrary) {
    const auto make = [](const char* label) {
        return Fields<Version>{
            {"name", "Tool", kText, &Version::name},
            {"tool", "Version", kText, &Version::tool},
            {"library", label, kText.OrNull(), &Version::library},
        };
    };
    static const Fields<Version> kWithLibrary = make("Library");
    static const Fields<Version> kWithout = make("");
    return withLibrary ? kWithLibrary : kWithout;
}

ExitCode RunVersion(Invocation& invocation) {
    const Tool& tool = invocation.OwnTool();
    const bool withLibrary = tool.libraryVersion != nullptr;
    invocation.Result() =
        VersionFields(withLibrary)
            .Make({tool.name, tool.version, withLibrary ? tool.libraryVersion() : std::string()});
    return ExitCode::Done;
}

struct StatusMeaning {
    uint32_t code;
    std::string text;

    const char* Origin() const;
};

constexpr const char* kOrigins[] = {"success", "windows", "library"};

const char* StatusMeaning::Origin() const {
    return kOrigins[static_cast<size_t>(KindOf(code))];
}

const Fields<StatusMeaning> kStatusFields = {
    {"code", "Status", kText, [](const StatusMeaning& s) { return StatusText(s.code); }},
    {"name", "Name", kText, [](const StatusMeaning& s) { return StatusName(s.code); }},
    {"text", "Text", kText, &StatusMeaning::text},
    {"origin", "Origin", Choice(kOrigins), &StatusMeaning::Origin},
    {"hint", "Hint", kText.OrNull(), [](const StatusMeaning& s) { return HintOf(s.code); }},
};

const Fields<ExitCodeRow> kExitCodeFields = {
    {"code", "Exit code", "CODE", kInteger,
     [](const ExitCodeRow& row) { return Number(row.code); }},
    {"name", "Name", "NAME", kText, &ExitCodeRow::name},
    {"meaning", "Meaning", "MEANING", kText, &ExitCodeRow::meaning},
    {"advice", "What to do", "WHAT TO DO", kText.OrNull(), &ExitCodeRow::advice},
};

struct Explanation {
    std::optional<StatusMeaning> status;
    std::vector<const ExitCodeRow*> exits;

    const StatusMeaning* Status() const { return status ? &*status : nullptr; }
};

const Fields<Explanation>& ExplanationFields(ListLayout layout) {
    const auto make = [](ListLayout exits) {
        return Fields<Explanation>{
            {"status", "Status", kStatusFields, &Explanation::Status, "", kGroup.OrNull()},
            {"exit_codes", "Exit codes", kExitCodeFields, &Explanation::exits, exits},
        };
    };
    static const Fields<Explanation> kTable = make(ListLayout::Table);
    static const Fields<Explanation> kSections = make(ListLayout::Sections);
    return layout == ListLayout::Table ? kTable : kSections;
}

Explanation ExplainExit(Invocation& invocation, const std::vector<std::string>& words) {
    Explanation explanation;
    if (words.size() == 1) {
        for (const ExitCodeRow& row : ExitCodes()) {
            explanation.exits.push_back(&row);
        }
        return explanation;
    }
    const auto number = ParseNumber(words[1]);
    const ExitCodeRow* row =
        number && *number <= 255 ? FindExitCode(static_cast<int>(*number)) : nullptr;
    if (row == nullptr) {
        invocation.Fail(ExitCode::NotFound, "no exit code \"" + words[1] + "\"",
                        "`explain exit` lists them all");
    }
    explanation.exits.push_back(row);
    return explanation;
}

Explanation ExplainStatus(Invocation& invocation, const std::string& word) {
    uint32_t status = 0;
    const auto number = ParseNumber(word);
    if (number && *number <= UINT32_MAX) {
        status = static_cast<uint32_t>(*number);
    } else if (number || !FindStatus(word, &status)) {
        invocation.Fail(ExitCode::NotFound, "no status \"" + word + "\"",
                        "a status is a 32-bit number or a name such as DEVICE_BUSY");
    }
    return {StatusMeaning{status, invocation.OwnTool().statusText(status)},
            {FindExitCode(Number(ExitCodeOf(status)))}};
}

ExitCode RunExplain(Invocation& invocation) {
    const std::vector<std::string> words = invocation.Given().All("CODE");
    const bool exit = EqualIgnoringCase(words.front(), "exit");
    if (words.size() > (exit ? 2u : 1u)) {
        invocation.Fail(ExitCode::Usage, "one code at a time", "explain CODE | explain exit [N]");
    }
    const Explanation explanation =
        exit ? ExplainExit(invocation, words) : ExplainStatus(invocation, words.front());
    const bool several = explanation.exits.size() > 1;
    invocation.Result() =
        ExplanationFields(several ? ListLayout::Table : ListLayout::Sections).Make(explanation);
    return ExitCode::Done;
}

struct Completion {
    std::string shell;
    std::string script;
};

const Fields<Completion> kCompletionFields = {
    {"shell", "", Choice(kShells), &Completion::shell},
    FieldRow<Completion>::Raw("script", kText, &Completion::script),
};

ExitCode RunCompletion(Invocation& invocation) {
    const Tool& tool = invocation.OwnTool();
    const std::string shell = invocation.Given().Text("SHELL");
    invocation.Result() = kCompletionFields.Make(
        {shell, shell == "bash" ? BashCompletion(tool) : PowerShellCompletion(tool)});
    return ExitCode::Done;
}

const Command kCommands[] = {
    {.path = "explain",
     .help = "explain a status, or the exit codes",
     .arguments = kExplainArguments,
     .run = RunExplain,
     .example = "explain 0x20000067",
     .result = [] { return ExplanationFields(ListLayout::Table).ShapeOfAll(); }},
    {.path = "schema",
     .help = "print the JSON Schemas of the documents",
     .arguments = SchemaArguments(),
     .run = RunSchema,
     .example = "schema envelope",
     .result = SchemaShape},
    {.path = "help",
     .help = "describe a command or a topic",
     .arguments = kHelpArguments,
     .run = RunHelp,
     .example = "help exit",
     .result = ShapeOf<kHelpFields>},
    {.path = "completion",
     .help = "print a completion script for a shell",
     .arguments = kCompletionArguments,
     .run = RunCompletion,
     .example = "completion powershell",
     .result = ShapeOf<kCompletionFields>},
    {.path = "version",
     .help = "print the versions of the tool and its library",
     .run = RunVersion,
     .example = "version --json",
     .result = [] { return VersionFields(true).ShapeOfAll(); }},
};

}  // namespace

std::span<const Command> BuiltinCommands() {
    return kCommands;
}

}  // namespace tools
