// The frame around every command: parse, run on a worker, end with exactly one report.
#include <exception>
#include <thread>

#include "builtin_commands.h"
#include "command_line.h"
#include "console.h"
#include "csv.h"
#include "invocation.h"
#include "json_document.h"
#include "render.h"
#include "status_codes.h"

namespace tools {
namespace {

using std::chrono::milliseconds;

// How long a command may take to stop by itself, and its clean-up when it is given up. Together
// they stay below the five seconds that the system grants when a window is closed.
constexpr milliseconds kGrace{2500};
constexpr milliseconds kHookTime{1500};
constexpr milliseconds kClosing{4800};

// The handler of the console's keys has no context; a process runs one command.
StopControl* runningStop = nullptr;
bool tellsHold = false;

void NotifyInterrupt(bool closing) {
    const char* const held = runningStop->HeldBy();
    const bool first = runningStop->Reason() == StopReason::None;
    runningStop->Request(StopReason::Interrupted);
    if (closing) {
        // What is held has the grace to be finished, then it is given up half done.
        if (!runningStop->WaitForExit(kGrace)) {
            runningStop->Request(StopReason::Interrupted);
            runningStop->WaitForExit(kClosing - kGrace);
        }
    } else if (held != nullptr && first && tellsHold) {
        console::Write(stderr,
                       std::string(held) + " is finished first; once more gives it up half done\n");
    }
}

// How a command ended.
struct Ending {
    ExitCode exit = ExitCode::Done;
    bool hasResult = false;
    std::vector<Message> messages;  // beyond those of the invocation
};

Message ErrorMessage(const std::string& text, const std::string& hint) {
    return {Severity::Error, text, hint, {}, {}};
}

Message StopMessage(StopReason reason, bool stuck) {
    Message message = reason == StopReason::TimedOut
                          ? ErrorMessage("the time limit of --timeout is over", "")
                          : ErrorMessage("cancelled", "");
    if (stuck) {
        message.hint = "a driver call did not return and was given up";
    }
    return message;
}

Ending Execute(const Command& command, Invocation& invocation) {
    try {
        const ExitCode exit = command.run(invocation);
        if (invocation.DryRun() && invocation.OwnTool().dryRunNote != nullptr) {
            invocation.Note(invocation.OwnTool().dryRunNote);
        }
        return {exit, true, {}};
    } catch (const CommandError& error) {
        return {error.exit, !invocation.Result().Empty(), {error.message}};
    } catch (const Stopped& stopped) {
        return {ExitCodeOf(stopped.reason),
                !invocation.Result().Empty(),
                {StopMessage(stopped.reason, false)}};
    } catch (const std::exception& error) {
        return {ExitCode::Internal,
                false,
                {ErrorMessage(std::string("internal error: ") + error.what(), "")}};
    } catch (...) {
        return {ExitCode::Internal, false, {ErrorMessage("internal error", "")}};
    }
}

ExitCode Detailed(ExitCode exit, const Command& command, Invocation& invocation) {
    if (exit != ExitCode::Done || command.risk == Risk::Reads ||
        !invocation.Given().Has("detailed-exitcode")) {
        return exit;
    }
    if (!invocation.HasChanged()) {
        return ExitCode::NothingChanged;
    }
    return invocation.PendingActions().empty() ? exit : ExitCode::ResetPending;
}

std::string RenderResult(const Record& result, OutputMode mode, const RenderStyle& style) {
    switch (mode) {
        case OutputMode::Table:
            return RenderTable(result, style);
        case OutputMode::Csv:
            return RenderCsv(result, *style.redactor);
        default:
            return RenderText(result, style);
    }
}

// The rows of a list that did not go out while the command ran.
std::string PendingRows(const std::string& schema, const Record* result, Redactor& redactor,
                        size_t* rows) {
    std::string text;
    const Field* list = result == nullptr ? nullptr : result->MainList();
    if (list != nullptr && !list->streamed) {
        for (const Record& row : list->records) {
            text += RowLine(schema, row, *result, redactor);
            ++*rows;
        }
    }
    return text;
}

Envelope EmptyEnvelope(const Tool& tool, const std::vector<std::string>& words) {
    Envelope envelope;
    envelope.tool = tool.version;
    envelope.library = tool.libraryVersion == nullptr ? std::string() : tool.libraryVersion();
    envelope.argv = words;
    return envelope;
}

// The words without the names and serial numbers that options gave, alone or behind "--port=".
std::vector<std::string> MaskedWords(std::vector<std::string> words, const CommandLine& line,
                                     Redactor& redactor) {
    for (std::string& word : words) {
        for (const std::string& secret : line.secrets) {
            if (redactor.Enabled() && word.ends_with(secret)) {
                word.replace(word.size() - secret.size(), std::string::npos,
                             redactor.Mask(Secret::Serial, secret));
                break;
            }
        }
    }
    return words;
}

class Run {
  public:
    Run(const Tool& tool, std::vector<std::string> words)
        : tool_(tool), words_(std::move(words)), line_(ParseCommandLine(tool, words_)) {}

    int Main() {
        if (!OpenOutput()) {
            return Number(ReportWithoutCommand(SchemaName(tool_, "error")));
        }
        if (!line_.help.empty()) {
            return Number(PrintHelp());
        }
        if (!line_.error.empty()) {
            return Number(ReportWithoutCommand(line_.command == nullptr
                                                   ? SchemaName(tool_, "usage")
                                                   : SchemaName(tool_, *line_.command)));
        }
        return Number(RunCommand());
    }

  private:
    bool OpenOutput() {
        const bool whole = line_.command != nullptr && line_.command->wholeFile;
        const uint32_t error =
            output_.Open(line_.out, whole ? Output::Appears::AtOnce : Output::Appears::AsItComes);
        if (error == 0) {
            return true;
        }
        exit_ = ExitCodeOf(error);
        line_.error = "--out " + line_.out + ": " + console::SystemErrorText(error);
        line_.hint.clear();
        return false;
    }

    // A help text is the result: on stdout, also in a document.
    ExitCode PrintHelp() {
        Record result;
        result.AddRaw("help", line_.help);  // as `help` has it
        if (!IsJson(line_.mode)) {
            return Written(output_.Close(line_.help), ExitCode::Done);
        }
        Envelope envelope = EmptyEnvelope(tool_, words_);
        envelope.schema = SchemaName(tool_, "help");
        envelope.result = &result;
        return CloseWith(envelope, ExitCode::Done);
    }

    // Ends before any command ran, with line_.error.
    ExitCode ReportWithoutCommand(const std::string& schema) {
        const Message message = ErrorMessage(line_.error, line_.hint);
        Redactor redactor(line_.options.Has("redact"));
        if (!IsJson(line_.mode)) {
            console::Write(stderr, MessageText(tool_, message, redactor, false));
            output_.Close("");
            return exit_;
        }
        Envelope envelope = EmptyEnvelope(tool_, MaskedWords(words_, line_, redactor));
        envelope.schema = schema;
        envelope.messages = {message};
        return CloseWith(envelope, exit_, redactor);
    }

    ExitCode CloseWith(Envelope& envelope, ExitCode exit) {
        Redactor redactor(false);
        return CloseWith(envelope, exit, redactor);
    }

    ExitCode CloseWith(Envelope& envelope, ExitCode exit, Redactor& redactor) {
        envelope.exit = exit;
        return Written(output_.Close(line_.mode == OutputMode::JsonLines
                                         ? EnvelopeLine(envelope, 0, redactor)
                                         : EnvelopeDocument(envelope, redactor)),
                       exit);
    }

    // A result that did not reach its reader is a failure, whatever the command did.
    ExitCode Written(bool written, ExitCode exit) {
        if (written) {
            return exit;
        }
        if (!line_.out.empty() && line_.out != "-") {
            const uint32_t error = output_.Error();
            Redactor redactor(false);
            const Message message = ErrorMessage(
                "--out " + line_.out + " was not written: " +
                    (error != 0 ? console::SystemErrorText(error) : "is the disk full?"),
                "");
            console::Write(stderr, MessageText(tool_, message, redactor, false));
        }
        return exit == ExitCode::Done ? ExitCode::Failed : exit;
    }

    ExitCode RunCommand() {
        Invocation invocation(tool_, line_, output_, stop_, hooks_);
        Ending ending;
        runningStop = &stop_;
        tellsHold = !IsJson(line_.mode) && !invocation.Quiet();
        console::OnInterrupt(NotifyInterrupt);
        if (const auto timeout = line_.options.Number("timeout")) {
            stop_.SetLimit(std::chrono::seconds(*timeout));
        }
        // A driver call may take minutes: it happens on a worker, so that this thread can end the
        // program in the meantime.
        std::thread worker([&] {
            ending = Execute(*line_.command, invocation);
            stop_.Finish();
        });
        if (stop_.WaitForEnd(kGrace)) {
            worker.join();
            const ExitCode exit = Report(ending, invocation);
            stop_.AboutToExit();
            if (stop_.HasThreadsLeft()) {
                console::ExitNow(Number(exit));  // they still use this frame
            }
            return exit;
        }
        hooks_.Run(kHookTime);
        const StopReason reason = stop_.Reason();
        const ExitCode exit =
            Report({ExitCodeOf(reason), false, {StopMessage(reason, true)}}, invocation);
        // The worker still uses this frame: nothing may be destroyed.
        console::ExitNow(Number(exit));
    }

    ExitCode Report(Ending ending, Invocation& invocation) {
        const ExitCode exit = Detailed(ending.exit, *line_.command, invocation);
        const Record* result = ending.hasResult ? &invocation.Result() : nullptr;
        if (!IsJson(line_.mode)) {
            const std::string text = result == nullptr
                                         ? std::string()
                                         : RenderResult(*result, line_.mode, invocation.Style());
            const bool written = output_.Close(text);
            for (Message& message : ending.messages) {
                invocation.Add(std::move(message));
            }
            return Written(written, exit);
        }
        Redactor& redactor = invocation.Names();
        Envelope envelope = EmptyEnvelope(tool_, MaskedWords(words_, line_, redactor));
        envelope.schema = SchemaName(tool_, *line_.command);
        envelope.result = result;
        envelope.messages = invocation.Messages();
        envelope.messages.insert(envelope.messages.end(), ending.messages.begin(),
                                 ending.messages.end());
        envelope.changed = invocation.HasChanged();
        envelope.pending = invocation.PendingActions();
        envelope.exit = exit;
        if (line_.mode == OutputMode::Json) {
            return Written(output_.Close(EnvelopeDocument(envelope, redactor)), exit);
        }
        size_t rows = invocation.RowsSent();
        std::string text = PendingRows(envelope.schema, result, redactor, &rows);
        text += EnvelopeLine(envelope, rows, redactor);
        return Written(output_.Close(text), exit);
    }

    const Tool& tool_;
    const std::vector<std::string> words_;
    CommandLine line_;
    ExitCode exit_ = ExitCode::Usage;
    Output output_;
    StopControl stop_;
    AbandonHooks hooks_;
};

}  // namespace

int RunTool(const Tool& own) {
    std::vector<Command> commands(own.commands.begin(), own.commands.end());
    commands.insert(commands.end(), BuiltinCommands().begin(), BuiltinCommands().end());
    Tool tool = own;
    tool.commands = commands;
    std::vector<std::string> words = console::CommandLineWords();
    if (!words.empty()) {
        words.erase(words.begin());
    }
    try {
        return Run(tool, std::move(words)).Main();
    } catch (const std::exception& error) {
        console::Write(stderr, std::string(tool.name) + ": internal error: " + error.what() + "\n");
        return Number(ExitCode::Internal);
    }
}

}  // namespace tools
