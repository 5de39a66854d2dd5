// The frame around every command: parse, run on a worker, end with exactly one report.
#include <exception>
#include <thread>

#include "builtin_commands.h"
#include "command_line.h"
#include "console.h"
#include "ending.h"
#include "invocation.h"
#include "json_document.h"
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

class Run {
  public:
    Run(const Tool& tool, std::vector<std::string> words)
        : tool_(tool),
          words_(std::move(words)),
          line_(ParseCommandLine(tool, words_)),
          names_(line_.options.Has("redact")) {}

    int Main() {
        OpenOutput();
        if (!line_.help.empty()) {
            return Number(PrintHelp());
        }
        if (!line_.error.empty()) {
            return Number(ReportWithoutCommand());
        }
        return Number(RunCommand());
    }

  private:
    // An output that cannot be opened becomes the line's error.
    void OpenOutput() {
        const bool whole = line_.command != nullptr && line_.command->wholeFile;
        const uint32_t error =
            output_.Open(line_.out, whole ? Output::Appears::AtOnce : Output::Appears::AsItComes);
        outputOpen_ = error == 0;
        if (outputOpen_) {
            return;
        }
        exit_ = ExitCodeOf(error);
        line_.help.clear();
        line_.error = "--out " + line_.out + ": " + console::SystemErrorText(error);
        line_.hint.clear();
    }

    // A help text is the result: on stdout, also in a document.
    ExitCode PrintHelp() {
        return IsJson(line_.mode) ? CloseWithoutCommand()
                                  : Written(output_.Close(line_.help), ExitCode::Done);
    }

    // Ends before any command ran, with line_.error.
    ExitCode ReportWithoutCommand() {
        if (IsJson(line_.mode)) {
            return CloseWithoutCommand();
        }
        console::Write(stderr, MessageText(tool_, ErrorMessage(line_), names_, false));
        output_.Close("");
        return exit_;
    }

    ExitCode CloseWithoutCommand() {
        Record help;
        Envelope envelope = EnvelopeOf(tool_, words_, line_, exit_, names_, &help);
        if (!outputOpen_) {
            envelope.schema = SchemaName(tool_, "error");
        }
        return Written(
            output_.Close(line_.mode == OutputMode::JsonLines ? EnvelopeLine(envelope, 0, names_)
                                                              : EnvelopeDocument(envelope, names_)),
            envelope.exit);
    }

    // A result that did not reach its reader is a failure, whatever the command did.
    ExitCode Written(bool written, ExitCode exit) {
        if (written) {
            return exit;
        }
        if (!line_.out.empty() && line_.out != "-") {
            const uint32_t error = output_.Error();
            const std::string why =
                error != 0 ? console::SystemErrorText(error) : "is the disk full?";
            const Message message = {
                Severity::Error, "--out " + line_.out + " was not written: " + why, "", {}, {}};
            console::Write(stderr, MessageText(tool_, message, names_, false));
        }
        return exit == ExitCode::Done ? ExitCode::Failed : exit;
    }

    ExitCode RunCommand() {
        Invocation invocation(tool_, line_, output_, stop_, hooks_, names_);
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
            ending = Execute(invocation);
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
        const ExitCode exit = Report(StoppedEnding(stop_.Reason(), true), invocation);
        // The worker still uses this frame: nothing may be destroyed.
        console::ExitNow(Number(exit));
    }

    ExitCode Report(Ending ending, Invocation& invocation) {
        const Record* result = ending.hasResult ? &invocation.Result() : nullptr;
        if (!IsJson(line_.mode)) {
            const std::string text = result == nullptr
                                         ? std::string()
                                         : RenderResult(*result, line_.mode, invocation.Style());
            const bool written = output_.Close(text);
            for (Message& message : ending.messages) {
                invocation.Add(std::move(message));
            }
            return Written(written, DetailedExit(ending.exit, invocation));
        }
        const Envelope envelope = EnvelopeOf(invocation, words_, ending);
        if (line_.mode == OutputMode::Json) {
            return Written(output_.Close(EnvelopeDocument(envelope, names_)), envelope.exit);
        }
        size_t rows = invocation.RowsSent();
        std::string text = PendingRows(envelope.schema, result, names_, &rows);
        text += EnvelopeLine(envelope, rows, names_);
        return Written(output_.Close(text), envelope.exit);
    }

    const Tool& tool_;
    const std::vector<std::string> words_;
    CommandLine line_;
    Redactor names_;
    ExitCode exit_ = ExitCode::Usage;  // of a line that is wrong
    bool outputOpen_ = false;
    Output output_;
    StopControl stop_;
    AbandonHooks hooks_;
};

}  // namespace

int RunTool(const Tool& own) {
    console::TrustOwnFoldersAlone();
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
