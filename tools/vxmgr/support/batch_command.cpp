// batch: commands from a file, one a line, in one process.
#include <cstdio>

#include "common/ending.h"
#include "common/nested.h"
#include "vxmgr/app/files.h"
#include "vxmgr/commands.h"
#include "vxmgr/support/batch_lines.h"

namespace vxmgr {
namespace {

constexpr size_t kMostBytes = size_t{1} << 20;

constexpr Argument kBatchArguments[] = {
    {.name = "FILE", .help = "the commands, one a line; - is standard input", .required = true},
    FlagOption("--keep-going", "go on behind a command that fails"),
};

// A line of the file, parsed, and how it ended.
struct BatchRow {
    size_t line;
    std::string command;
    Risk risk;
    std::optional<int> exit{};
    std::optional<Value> document{};
};

struct BatchCounts {
    size_t total = 0;
    size_t succeeded = 0;
    size_t failed = 0;

    size_t NotRun() const { return total - succeeded - failed; }
};

struct BatchResult {
    std::vector<BatchRow> commands;
    BatchCounts counts;
};

const Fields<BatchRow> kBatchRowFields = {
    {"line", "Line", "LINE", kInteger, &BatchRow::line},
    {"command", "Command", "COMMAND", kText, &BatchRow::command},
    {"risk", "Risk", "RISK", kInteger,
     [](const BatchRow& row) { return static_cast<int>(row.risk); }},
    {"exit", "Exit code", "EXIT", kInteger.OrNull(), &BatchRow::exit, "null: it was not run"},
    {"document", "Document", kGroup.OrAbsent(), &BatchRow::document,
     "the command's own document: an envelope"},
};
const Fields<BatchCounts> kBatchCountFields = {
    {"total", "", kInteger, &BatchCounts::total, "commands in the file"},
    {"succeeded", "", kInteger, &BatchCounts::succeeded},
    {"failed", "", kInteger, &BatchCounts::failed},
    {"not_run", "", kInteger, &BatchCounts::NotRun},
};
const Fields<BatchResult> kBatchFields = {
    {"commands", "Commands", kBatchRowFields, &BatchResult::commands,
     "There is no command in the file."},
    {kBatchCountFields, &BatchResult::counts},
};

std::string TextOfInput() {
    std::string text(kMostBytes + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), stdin));
    return text;
}

std::vector<BatchLine> ReadLines(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    if (path == "-") {
        const std::string text = TextOfInput();
        if (text.size() > kMostBytes) {
            invocation.Fail(ExitCode::Usage, "standard input is longer than a megabyte");
        }
        return SplitBatch(text);
    }
    const std::vector<uint8_t> bytes = LoadFile(invocation, path, kMostBytes);
    return SplitBatch({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

struct Refusal {
    std::string text;
    std::string hint;
};

// What is wrong with a line before anything runs; empty: nothing.
Refusal RefusalOf(const NestedCommand& nested) {
    const CommandLine& line = nested.Line();
    if (!line.error.empty()) {
        return {line.error, line.hint};
    }
    if (line.command == nullptr) {
        return {};  // asks for help
    }
    if (std::string_view(line.command->path) == "batch") {
        return {"a batch cannot run a batch", {}};
    }
    for (const char* option : {"output", "json", "out"}) {
        if (line.options.Has(option)) {
            return {"the form of all results is the batch's",
                    "give -o, --json and --out to `batch`"};
        }
    }
    const bool dry = line.options.Has("dry-run");
    if (!dry && line.command->risk >= Risk::InterruptsIo && !line.options.Has("yes")) {
        return {"the command asks a question, and nobody answers inside a batch",
                line.command->risk == Risk::Irrecoverable ? "add --yes --confirm SERIAL to the line"
                                                          : "add --yes to the line"};
    }
    return {};
}

class Batch {
  public:
    explicit Batch(Invocation& invocation) : invocation_(invocation) {}

    // Parses all lines; ends the command when one is wrong.
    void Prepare() {
        size_t wrong = 0;
        for (BatchLine& line : ReadLines(invocation_)) {
            if (!line.words.empty() && line.words.front() == invocation_.OwnTool().name) {
                line.words.erase(line.words.begin());
            }
            NestedCommand& nested = commands_.emplace_back(invocation_, std::move(line.words));
            const Refusal refusal =
                line.error.empty() ? RefusalOf(nested) : Refusal{line.error, {}};
            if (!refusal.text.empty()) {
                ++wrong;
                invocation_.Add({Severity::Error,
                                 refusal.text,
                                 refusal.hint,
                                 "line " + std::to_string(line.number),
                                 {}});
            }
            const Command* const command = nested.Line().command;
            result_.commands.push_back(
                {line.number, Shown(nested), command != nullptr ? command->risk : Risk::Reads});
        }
        result_.counts.total = commands_.size();
        if (wrong != 0) {
            invocation_.Fail(ExitCode::Usage,
                             std::to_string(wrong) + " of " + std::to_string(commands_.size()) +
                                 (wrong == 1 ? " lines is wrong" : " lines are wrong") +
                                 "; nothing was run");
        }
    }

    ExitCode Preview() {
        invocation_.Result() = kBatchFields.Make(result_);
        invocation_.Note("dry run: every line is a command; nothing was run");
        return ExitCode::Done;
    }

    ExitCode Run() {
        const bool documents = IsJson(invocation_.Mode());
        if (documents) {
            const FieldShape list = kBatchFields.ShapeOfAll().front();
            invocation_.BeginStream(list.key, list.label, PrototypeOf(list.children), "");
        }
        ExitCode first = ExitCode::Done;
        for (size_t i = 0; i < commands_.size(); ++i) {
            const ExitCode exit = documents ? RunIntoRow(i) : RunPrinting(i);
            const bool good = exit == ExitCode::Done || exit == ExitCode::NothingChanged ||
                              exit == ExitCode::ResetPending;
            ++(good ? result_.counts.succeeded : result_.counts.failed);
            if (!good) {
                first = first == ExitCode::Done ? exit : first;
                if (!invocation_.Given().Has("keep-going")) {
                    break;
                }
            }
            invocation_.CheckStop();
        }
        if (documents) {
            kBatchCountFields.AddTo(result_.counts, invocation_.Result());
        }
        Tell();
        const BatchCounts& counts = result_.counts;
        return counts.failed != 0 && counts.succeeded != 0 && counts.NotRun() == 0 &&
                       invocation_.Given().Has("keep-going")
                   ? ExitCode::Partial
                   : first;
    }

  private:
    // The words of a line, as they may be shown.
    std::string Shown(const NestedCommand& nested) {
        return TextsJoined(MaskedWords(nested.Words(), nested.Line(), invocation_.Names()), " ");
    }

    void Take(const NestedRun& run) {
        if (run.changed) {
            invocation_.Changed();
        }
        for (const Pending& pending : run.pending) {
            invocation_.AddPending(pending);
        }
    }

    ExitCode RunIntoRow(size_t place) {
        BatchRow& row = result_.commands[place];
        NestedRun run = commands_[place].Run();
        Take(run);
        row.exit = Number(run.exit);
        row.document = Value::Document(std::move(run.document));
        invocation_.Stream(kBatchRowFields.Make(row));
        row.document.reset();
        return run.exit;
    }

    ExitCode RunPrinting(size_t place) {
        const std::string gap = place == 0 ? "" : "\n";
        invocation_.Print(
            invocation_.Mode() == OutputMode::Csv
                ? gap
                : gap + "> " + invocation_.Names().Clean(result_.commands[place].command) + "\n");
        const NestedRun run = commands_[place].RunPrinting();
        if (run.changed) {
            invocation_.Changed();
        }
        return run.exit;
    }

    void Tell() {
        const BatchCounts& counts = result_.counts;
        std::string text = std::to_string(counts.total) +
                           (counts.total == 1 ? " command" : " commands") + ": " +
                           std::to_string(counts.succeeded) + " succeeded";
        if (counts.failed != 0) {
            text += ", " + std::to_string(counts.failed) + " failed";
        }
        if (counts.NotRun() != 0) {
            text += ", " + std::to_string(counts.NotRun()) + " not run";
        }
        invocation_.Note(text, counts.NotRun() != 0 ? "--keep-going goes on behind a failure" : "");
    }

    Invocation& invocation_;
    std::vector<NestedCommand> commands_;
    BatchResult result_;
};

ExitCode RunBatch(Invocation& invocation) {
    Batch batch(invocation);
    batch.Prepare();
    return invocation.DryRun() ? batch.Preview() : batch.Run();
}

std::string BatchNotes() {
    return "One command a line, as it is typed, with or without the tool's name in front. Blanks "
           "separate words; \"...\" and '...' keep them. \\\" stands for a quote, any other "
           "backslash for itself. A # where a word would begin starts a comment. All lines are "
           "checked before the first one runs; --dry-run checks alone. "
           "Commands that ask need --yes, or --yes --confirm SERIAL, on their own lines. --redact, "
           "--trace, --timeout, -q and -v of the batch hold for all. With -o jsonl each command is "
           "a line as soon as it is done, with its own document in `document`; the last line is "
           "the batch's own. "
           "The exit code is that of the first command that failed; with --keep-going it is 11 "
           "when others did not.";
}

}  // namespace

CommandRows BatchCommands() {
    static const Command kCommands[] = {
        {.path = "batch",
         .risk = Risk::Reversible,
         .help = "run commands from a file, in one process",
         .arguments = kBatchArguments,
         .run = RunBatch,
         .example = "batch nightly.txt -o jsonl",
         .result = ShapeOf<kBatchFields>,
         .notes = BatchNotes},
    };
    return kCommands;
}

}  // namespace vxmgr
