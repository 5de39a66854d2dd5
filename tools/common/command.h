// A command is one row of its tool's table. Parsing, help, dispatch, completion and the manual all
// come from these rows.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "exit_codes.h"

namespace tools {

struct FieldShape;
using Shape = std::vector<FieldShape>;
class Invocation;

// How much a command can break, and what it asks before it starts.
enum class Risk : uint8_t {
    Reads = 0,          // changes nothing
    Reversible = 1,     // no question
    InterruptsIo = 2,   // y/N, or --yes
    Irrecoverable = 3,  // the serial's last four characters, or --yes --confirm SERIAL
};

enum class ArgumentKind : uint8_t { Flag, Text, Number };

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

    bool IsPositional() const { return name[0] != '-'; }
};

struct Command {
    const char* path;  // words as they are typed: "driver param get"
    Risk risk;
    const char* help;
    const char* schema;  // name of the result's schema
    std::span<const Argument> arguments;
    ExitCode (*run)(Invocation&);
    bool hidden = false;
    const char* example = "";     // what may follow the tool's name: "port stats -p scsi:3"
    Shape (*result)() = nullptr;  // the fields of the result, for its schema
};

// A document that commands read and write beside their results.
struct Document {
    const char* schema;
    const char* title;
    Shape (*shape)();
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
    std::span<const Argument> options;         // global options beside the common ones
    std::string (*libraryVersion)();           // null: the tool uses no library
    std::string (*statusText)(uint32_t code);  // text of a status or Windows error code
    std::span<const Document> documents = {};
    // The status to report for one that concerns the object: what stands behind it, where that is
    // known. Null: every status speaks for itself.
    uint32_t (*cause)(uint32_t status, const std::string& object) = nullptr;
    const char* dryRunNote =
        nullptr;  // said behind every dry run; null: the commands say it themselves
};

// The global options that every tool has.
std::span<const Argument> CommonOptions();

// Runs the tool with the process's own command line; the result is the process's exit code.
int RunTool(const Tool& tool);

}  // namespace tools
