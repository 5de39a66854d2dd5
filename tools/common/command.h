// A command is one row of its tool's table. Parsing, help, dispatch, completion and the manual all
// come from these rows.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "exit_codes.h"

namespace tools {

struct FieldShape;
using Shape = std::vector<FieldShape>;
class Invocation;

inline constexpr char kToolVersion[] = VXMGMT_TOOL_VERSION;

// How much a command can break, and what it asks before it starts.
enum class Risk : uint8_t {
    Reads = 0,          // changes nothing
    Reversible = 1,     // no question
    InterruptsIo = 2,   // y/N, or --yes
    Irrecoverable = 3,  // the serial's last four characters, or --yes --confirm SERIAL
};

enum class ArgumentKind : uint8_t { Flag, Text, Number };

// Whom the value of an option may name: --redact masks it.
enum class Naming : uint8_t {
    Nobody,
    Selection,  // an adapter or port, where it is no index, prefix or "all"
    Serial,
};

// Where a shell's completion finds the values of an option: it runs the command and puts the prefix
// before what stands in the column.
struct ValueSource {
    const char* command = nullptr;
    const char* column = "";
    const char* prefix = "";
};

// An option ("--count", "-p,--port") or, without a dash, a positional argument ("NAME").
struct Argument {
    const char* name;
    ArgumentKind kind = ArgumentKind::Text;
    const char* valueName = "";  // how help names the value; positional: unused
    const char* help = "";
    bool required = false;
    bool repeated = false;  // may be given several times
    std::span<const char* const> choices = {};
    uint64_t least = 0;  // Number: the values accepted
    uint64_t most = UINT32_MAX;
    Naming naming = Naming::Nobody;
    ValueSource source = {};  // what completion offers, beside the choices

    bool IsPositional() const { return name[0] != '-'; }
};

// The usual options: a switch, a text, and a number from least to most.
constexpr Argument FlagOption(const char* name, const char* help) {
    return {.name = name, .kind = ArgumentKind::Flag, .help = help};
}
constexpr Argument TextOption(const char* name, const char* valueName, const char* help,
                              std::span<const char* const> choices = {}) {
    return {.name = name, .valueName = valueName, .help = help, .choices = choices};
}
constexpr Argument NumberOption(const char* name, const char* valueName, const char* help,
                                uint64_t least = 0, uint64_t most = UINT32_MAX) {
    return {.name = name,
            .kind = ArgumentKind::Number,
            .valueName = valueName,
            .help = help,
            .least = least,
            .most = most};
}

struct Command {
    const char* path;  // words as they are typed: "driver param get"
    Risk risk = Risk::Reads;
    const char* help = "";
    const char* schema = nullptr;  // of the result, behind the tool's name; null: the path's words
    std::span<const Argument> arguments = {};
    ExitCode (*run)(Invocation&) = nullptr;
    const char* example = "";          // what may follow the tool's name: "port stats -p scsi:3"
    Shape (*result)() = nullptr;       // the fields of the result, for its schema
    std::string (*notes)() = nullptr;  // what its help says beside the options
    bool hidden = false;
    bool wholeFile = false;  // others read what --out writes: it appears at once, when all is there
};

// The commands of one file.
using CommandRows = std::span<const Command>;

// The table of a tool, file by file.
std::vector<Command> Joined(std::span<CommandRows (*const)()> files);

// A document that commands read and write beside their results.
struct Document {
    const char* schema;  // as of a command
    const char* title;
    Shape (*shape)();
};

// A matter that `help` explains beside the commands.
struct HelpTopic {
    const char* name;
    const char* about;
    std::string (*text)();
};

// What a group word ("driver param") is for.
struct CommandGroup {
    const char* path;
    const char* help;
};

struct Tool {
    const char* name;
    const char* version;
    const char* summary;
    std::span<const Command> commands;
    std::span<const CommandGroup> groups;
    std::span<const Argument> options = {};              // global options beside the common ones
    std::string (*libraryVersion)() = nullptr;           // null: the tool uses no library
    std::string (*statusText)(uint32_t code) = nullptr;  // text of a status or Windows error code
    std::span<const Document> documents = {};
    // The status to report for one that concerns the object: what stands behind it, where that is
    // known. Null: every status speaks for itself.
    uint32_t (*cause)(uint32_t status, const std::string& object) = nullptr;
    const char* dryRunNote =
        nullptr;  // said behind every dry run; null: the commands say it themselves
    std::span<const HelpTopic> topics = {};  // beside those that every tool has
};

// The global options that every tool has.
std::span<const Argument> CommonOptions();

// The option's long name without dashes, or the positional name.
std::string NameOf(const Argument& argument);

// The full name of a schema of the tool: "vxmgr.port.list".
std::string SchemaName(const Tool& tool, const char* schema);
std::string SchemaName(const Tool& tool, const Command& command);

// Null when the path is none, or only that of a group.
const Command* FindCommand(const Tool& tool, std::string_view path);

// What the path's group is for, or what its command does; empty when there is no such path.
std::string AboutPath(const Tool& tool, std::string_view path);

// The words that may follow a path: names of commands and groups, in the order of the table. The
// empty path is the tool itself.
std::vector<std::string> WordsBelow(const Tool& tool, std::string_view path);

// "did you mean `port`?", or empty when nothing is like the words behind the path.
std::string DidYouMean(const Tool& tool, std::string_view path, std::string_view word);

// Runs the tool with the process's own command line, its commands and those that every tool has;
// the result is the process's exit code.
int RunTool(const Tool& tool);

}  // namespace tools
