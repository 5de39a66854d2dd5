// A command that runs inside another one. It shares what belongs to the whole process: the requests
// to stop, what has to be put back, and the pseudonyms of --redact, so that a name has one mask
// throughout. Several may run at a time, for documents. The outer command's --redact, --trace,
// --timeout, --quiet, --verbose, --no-color and
// --wide hold for it as well; it asks nobody a question.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "command_line.h"
#include "exit_codes.h"

namespace tools {

class Invocation;
struct Pending;

struct NestedRun {
    ExitCode exit = ExitCode::Done;
    std::string document;  // the envelope, on one line with a line end
    bool changed = false;
    std::vector<Pending> pending;
};

class NestedCommand {
  public:
    // words: as behind the tool's name.
    NestedCommand(Invocation& outer, std::vector<std::string> words);
    ~NestedCommand();
    NestedCommand(NestedCommand&&) noexcept;
    NestedCommand& operator=(NestedCommand&&) = delete;

    const std::vector<std::string>& Words() const { return words_; }
    const CommandLine& Line() const { return *line_; }

    // Runs it. An error in its words ends in a document like any other failure.
    NestedRun Run();

    // Runs it and prints as the outer command would: result and messages. For the modes for people;
    // the document stays empty.
    NestedRun RunPrinting();

  private:
    Invocation& outer_;
    std::vector<std::string> words_;
    std::unique_ptr<CommandLine> line_;  // invocations refer to it
};

NestedRun RunNested(Invocation& outer, std::vector<std::string> words);

}  // namespace tools
