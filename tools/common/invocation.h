// One run of a command: its options, and what it has to report. A command's function fills the
// result, adds messages and returns (or throws) its exit code; the frame prints.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "command.h"
#include "command_line.h"
#include "message.h"
#include "output.h"
#include "records/record.h"
#include "records/redaction.h"
#include "records/render.h"
#include "stop.h"

namespace tools {

struct Answers;

// What a command asks before it goes on. Every line tells the user something to weigh.
struct Question {
    std::vector<std::string> lines;
    std::string serial;  // of the adapter concerned; must not be empty for risk 3
    // More lines, which take a while to find out: called only when somebody is really asked.
    std::function<std::vector<std::string>()> whenAsked = nullptr;
};

class Invocation {
  public:
    Invocation(const Tool& tool, const CommandLine& line, Output& output, StopControl& stop,
               AbandonHooks& hooks, Redactor& names);
    // Of a command inside another one, of which it shares everything.
    Invocation(Invocation& outer, const CommandLine& line);

    const Tool& OwnTool() const { return tool_; }
    const Command& OwnCommand() const { return *line_.command; }
    const CommandLine& GivenLine() const { return line_; }
    const Options& Given() const { return line_.options; }
    OutputMode Mode() const { return line_.mode; }
    // Whether the result goes to stdout as text, so that a console may be drawn on instead.
    bool HasScreen() const { return Mode() == OutputMode::Text && output_.IsStdout(); }
    bool DryRun() const { return Given().Has("dry-run"); }
    bool Quiet() const { return Given().Has("quiet"); }
    bool Verbose() const { return Given().Has("verbose"); }

    Record& Result() { return result_; }

    // Messages: to stderr as they come in the modes for people, else into the envelope.
    void Add(Message message);
    void Note(const std::string& text, const std::string& hint = {});
    void Warn(const std::string& text, const std::string& hint = {});
    // The same, as all that there is to say behind a command: its exit code.
    ExitCode DoneWith(const std::string& note, const std::string& hint = {});
    void Detail(const std::string& text, const std::string& object);  // with --verbose alone
    // For what a command does or says once however often it gets there: false from the second time.
    bool IsFirst(const std::string& what) { return done_.insert(what).second; }
    // The status to show for one that a request about the object ended with: a driver that has gone
    // away makes requests fail in ways that say something else.
    uint32_t CauseOf(uint32_t status, const std::string& object) const;
    // A status as a message of its own ("text: status text"); returns the exit code it leads to.
    ExitCode Report(uint32_t status, const std::string& text, const std::string& object);
    [[noreturn]] void Fail(uint32_t status, const std::string& text,
                           const std::string& object = {}) const;
    [[noreturn]] void Fail(ExitCode exit, const std::string& text,
                           const std::string& hint = {}) const;

    // Fails unless the status is success.
    void Require(uint32_t status, const std::string& text, const std::string& object = {}) const;

    // A line that is out of date a moment later: stderr, unless quiet or JSON.
    void Progress(const std::string& text);
    // Likewise, each written over the one before: on a console alone. An empty one ends them.
    void ProgressLine(const std::string& text);
    bool ShowsProgressLine() const;
    // The same for programs: a line of its own in jsonl, with the schema "progress" of the tool.
    void ProgressRow(const Record& row);

    // Text for the result, as it is: for commands that print what others made. Ends the command
    // when it cannot be written.
    void Print(const std::string& text);

    void Changed();
    void AddPending(Pending pending);

    // Ends the command when there is a --confirm and one of the selected adapters is another.
    void CheckConfirmed(const std::vector<std::string>& serials) const;

    // Asks what the command's risk demands, from --yes and --confirm or from the user. Returns only
    // when the answer is yes; a dry run must not ask.
    void Confirm(const Question& question);

    // Lists whose rows appear while the command runs. All rows have the prototype's fields.
    void BeginStream(std::string key, std::string label, Record prototype, std::string emptyText);
    void Stream(Record row);
    // The heading once more, behind an empty line; in the modes for people alone.
    void RepeatHeading();

    // Between steps: throws Stopped when the user or the time limit ends the command.
    void CheckStop();
    // Sleeps; then as CheckStop.
    void Sleep(std::chrono::milliseconds time);
    StopControl& Stop() { return stop_; }
    AbandonHooks& Hooks() { return hooks_; }

    Redactor& Names() { return redactor_; }

    // For the frame: what has been said so far. Safe while the command still runs.
    std::vector<Message> Messages();
    std::vector<Pending> PendingActions();
    bool HasChanged();
    size_t RowsSent();
    RenderStyle Style() { return {color_, &redactor_, width_, lines_}; }

  private:
    Answers GivenAnswers() const;
    void Tell(const Message& message);
    void EndLine();
    bool TellsNow() const { return !IsJson(line_.mode); }

    const Tool& tool_;
    const CommandLine& line_;
    Output& output_;
    StopControl& stop_;
    AbandonHooks& hooks_;
    Redactor& redactor_;
    Invocation* const outer_ = nullptr;  // of the command that this one runs inside
    bool color_ = false;
    bool colorErrors_ = false;
    size_t width_ = 0;
    bool lines_ = false;
    Record result_;
    std::set<std::string> done_;

    std::mutex lock_;  // guards what follows: the frame reads it when it gives the command up
    std::vector<Message> messages_;
    std::vector<Pending> pending_;
    bool changed_ = false;
    size_t rowsSent_ = 0;
    size_t lineWidth_ = 0;  // of the progress line that stands on the console
};

// The message as people read it on stderr, lines ended.
std::string MessageText(const Tool& tool, const Message& message, Redactor& redactor, bool color);

}  // namespace tools
