// How a command ends, whether it has the process to itself or runs inside another one: what it
// returned or threw, and the envelope that says so.
#pragma once

#include <string>
#include <vector>

#include "command_line.h"
#include "invocation.h"
#include "json_document.h"

namespace tools {

struct Ending {
    ExitCode exit = ExitCode::Done;
    bool hasResult = false;
    std::vector<Message> messages;  // beyond those of the invocation
};

// Runs the invocation's command. Whatever it throws becomes an ending.
Ending Execute(Invocation& invocation);

// Of a command that was asked to stop; stuck: it did not, and was given up.
Ending StoppedEnding(StopReason reason, bool stuck);

// The exit code as --detailed-exitcode wants it.
ExitCode DetailedExit(ExitCode exit, Invocation& invocation);

// The words without the names and serial numbers that options gave, alone or behind "--port=".
std::vector<std::string> MaskedWords(std::vector<std::string> words, const CommandLine& line,
                                     Redactor& redactor);

// Of a command that ran. The result stays with the invocation, which has to live as long.
Envelope EnvelopeOf(Invocation& invocation, const std::vector<std::string>& words,
                    const Ending& ending);

// Of a command line that leads to no run: its error, or the help text that it asks for, which
// becomes *help and has to live as long.
Envelope EnvelopeOf(const Tool& tool, const std::vector<std::string>& words,
                    const CommandLine& line, ExitCode errorExit, Redactor& redactor, Record* help);

// The message of a command line's error.
Message ErrorMessage(const CommandLine& line);

// A result in the modes for people and spreadsheets.
std::string RenderResult(const Record& result, OutputMode mode, const RenderStyle& style);

}  // namespace tools
