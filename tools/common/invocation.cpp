#include "invocation.h"

#include <utility>

#include "confirm.h"
#include "console.h"
#include "hxstatus.h"
#include "json_document.h"
#include "records/csv.h"
#include "records/text.h"
#include "status_codes.h"

namespace tools {
namespace {

// Cells of a line; 0: as many as it takes. A console without colours goes to the next line when the
// last cell of one is written.
size_t WidthOf(const CommandLine& line, const Output& output, bool color) {
    const size_t width =
        output.IsStdout() && !line.options.Has("wide") ? console::Width(stdout) : 0;
    return width > 1 && !color ? width - 1 : width;
}

// A console that shows colours has the characters that lines are drawn with, whatever its code
// page. What reads a file or a pipe may not: it gets nothing but what names are made of beside
// ASCII.
bool DrawsLines(const Output& output) {
    return output.IsStdout() && console::IsConsole(stdout) && console::EnableColor(stdout);
}

bool WantsColor(const CommandLine& line, std::FILE* stream) {
    return !line.options.Has("no-color") && !console::HasEnvironment("NO_COLOR") &&
           console::IsConsole(stream) && console::EnableColor(stream);
}

}  // namespace

std::string MessageText(const Tool& tool, const Message& message, Redactor& redactor, bool color) {
    constexpr const char* kColors[] = {"", "\x1b[33m", "\x1b[31m"};
    const int severity = static_cast<int>(message.severity);
    std::string text = std::string(tool.name) + ": ";
    if (message.severity != Severity::Info) {
        const std::string name = NameOf(message.severity);
        text += (color ? kColors[severity] + name + "\x1b[0m" : name) + ": ";
    }
    if (!message.object.empty()) {
        text += redactor.Clean(message.object) + ": ";
    }
    text += redactor.Clean(message.text);
    if (message.status) {
        text += " (" + StatusText(*message.status) + " " + StatusName(*message.status) + ")";
    }
    text += "\n";
    if (!message.hint.empty()) {
        text += std::string(tool.name) + ":   " + redactor.Clean(message.hint) + "\n";
    }
    return text;
}

Invocation::Invocation(const Tool& tool, const CommandLine& line, Output& output, StopControl& stop,
                       AbandonHooks& hooks, Redactor& names)
    : tool_(tool),
      line_(line),
      output_(output),
      stop_(stop),
      hooks_(hooks),
      redactor_(names),
      color_(output.IsStdout() && WantsColor(line, stdout)),
      colorErrors_(WantsColor(line, stderr)),
      width_(WidthOf(line, output, color_)),
      lines_(DrawsLines(output)) {}

Invocation::Invocation(Invocation& outer, const CommandLine& line)
    : tool_(outer.tool_),
      line_(line),
      output_(outer.output_),
      stop_(outer.stop_),
      hooks_(outer.hooks_),
      redactor_(outer.redactor_),
      outer_(&outer),
      color_(outer.color_),
      colorErrors_(outer.colorErrors_),
      width_(outer.width_) {}

void Invocation::Add(Message message) {
    const std::lock_guard guard(lock_);
    if (TellsNow()) {
        Tell(message);
    }
    messages_.push_back(std::move(message));
}

void Invocation::Tell(const Message& message) {
    if (message.severity == Severity::Info && Quiet()) {
        return;
    }
    EndLine();
    console::Write(stderr, MessageText(tool_, message, redactor_, colorErrors_));
}

void Invocation::EndLine() {
    if (lineWidth_ != 0) {
        console::Write(stderr, "\n");
        lineWidth_ = 0;
    }
}

void Invocation::Note(const std::string& text, const std::string& hint) {
    Add({Severity::Info, text, hint, {}, {}});
}

ExitCode Invocation::DoneWith(const std::string& note, const std::string& hint) {
    Note(note, hint);
    return ExitCode::Done;
}

void Invocation::Warn(const std::string& text, const std::string& hint) {
    Add({Severity::Warning, text, hint, {}, {}});
}

void Invocation::Detail(const std::string& text, const std::string& object) {
    if (Verbose()) {
        Add({Severity::Info, text, {}, object, {}});
    }
}

uint32_t Invocation::CauseOf(uint32_t status, const std::string& object) const {
    return status == 0 || tool_.cause == nullptr ? status : tool_.cause(status, object);
}

ExitCode Invocation::Report(uint32_t status, const std::string& text, const std::string& object) {
    status = CauseOf(status, object);
    Add({Severity::Error, text + ": " + tool_.statusText(status), HintOf(status), object, status});
    return ExitCodeOf(status);
}

void Invocation::Fail(uint32_t status, const std::string& text, const std::string& object) const {
    status = CauseOf(status, object);
    throw CommandError{
        ExitCodeOf(status),
        {Severity::Error, text + ": " + tool_.statusText(status), HintOf(status), object, status}};
}

void Invocation::Fail(ExitCode exit, const std::string& text, const std::string& hint) const {
    throw CommandError{exit, {Severity::Error, text, hint, {}, {}}};
}

void Invocation::Require(uint32_t status, const std::string& text,
                         const std::string& object) const {
    if (status != HXMGT_SUCCESS) {
        Fail(status, text, object);
    }
}

void Invocation::Progress(const std::string& text) {
    if (!TellsNow() && outer_ != nullptr && !Quiet()) {
        outer_->Progress(text);  // its user waits for this command as well
    } else if (TellsNow() && !Quiet()) {
        const std::lock_guard guard(lock_);
        EndLine();
        console::Write(stderr, redactor_.Clean(text) + "\n");
    }
}

bool Invocation::ShowsProgressLine() const {
    return TellsNow() && !Quiet() && console::IsConsole(stderr);
}

void Invocation::ProgressLine(const std::string& text) {
    if (ShowsProgressLine()) {
        const std::lock_guard guard(lock_);
        if (text.empty()) {
            EndLine();
            return;
        }
        std::string line = redactor_.Clean(text);
        const size_t width = DisplayWidth(line);
        line.append(lineWidth_ > width ? lineWidth_ - width : 0, ' ');
        console::Write(stderr, "\r" + line);
        lineWidth_ = width;
    }
}

void Invocation::ProgressRow(const Record& row) {
    if (line_.mode == OutputMode::JsonLines && !Quiet()) {
        output_.Write(RowLine(SchemaName(tool_, "progress"), row, {}, redactor_));
    }
}

void Invocation::Changed() {
    const std::lock_guard guard(lock_);
    changed_ = true;
}

void Invocation::AddPending(Pending pending) {
    {
        const std::lock_guard guard(lock_);
        pending_.push_back(pending);
    }
    if (TellsNow()) {
        Tell({Severity::Info, pending.text, {}, pending.object, {}});
    }
}

Answers Invocation::GivenAnswers() const {
    return {Given().Has("yes"), Given().Has("confirm"), Given().Text("confirm"),
            outer_ == nullptr && !IsJson(line_.mode) && console::IsConsole(stdin)};
}

void Invocation::CheckConfirmed(const std::vector<std::string>& serials) const {
    RequireConfirmed(GivenAnswers(), serials);
}

void Invocation::Confirm(const Question& question) {
    const auto ask = [](const std::string& prompt, std::string* answer) {
        return console::Write(stderr, prompt) && console::ReadLine(answer);
    };
    const auto clean = [this](std::vector<std::string> lines) {
        for (std::string& text : lines) {
            text = redactor_.Clean(text);
        }
        return lines;
    };
    Question shown = question;
    shown.lines = clean(question.lines);
    if (question.whenAsked) {
        shown.whenAsked = [&] { return clean(question.whenAsked()); };
    }
    RequireConsent(OwnCommand().risk, shown, GivenAnswers(), ask);
}

void Invocation::BeginStream(std::string key, std::string label, Record prototype,
                             std::string emptyText) {
    const bool streamed = line_.mode != OutputMode::Json;
    std::string header;
    if (line_.mode == OutputMode::Csv) {
        header = CsvHeader(prototype);
    } else if (!IsJson(line_.mode)) {
        header = StreamHeader(prototype, Style());
    }
    result_.AddList(std::move(key), std::move(label), ListLayout::Table, std::move(prototype),
                    std::move(emptyText), {});
    result_.MainList()->streamed = streamed;
    output_.Write(header);
}

void Invocation::Stream(Record row) {
    std::string text;
    switch (line_.mode) {
        case OutputMode::Json:
            result_.MainList()->records.push_back(std::move(row));
            break;
        case OutputMode::JsonLines:
            text = RowLine(SchemaName(tool_, OwnCommand()), row, result_, redactor_);
            break;
        case OutputMode::Csv:
            text = CsvLine(row, redactor_);
            break;
        default:
            text = StreamLine(row, Style());
            break;
    }
    {
        const std::lock_guard guard(lock_);
        ++rowsSent_;
    }
    Print(text);
}

void Invocation::Print(const std::string& text) {
    if (!output_.Write(text)) {
        CheckStop();
        Fail(ExitCode::Failed, "the result cannot be written: its reader is gone or the disk full");
    }
}

void Invocation::RepeatHeading() {
    if (!IsJson(line_.mode) && line_.mode != OutputMode::Csv) {
        output_.Write("\n" + StreamHeader(result_.MainList()->prototype.front(), Style()));
    }
}

void Invocation::CheckStop() {
    if (const StopReason reason = stop_.Reason(); reason != StopReason::None) {
        throw Stopped{reason};
    }
}

void Invocation::Sleep(std::chrono::milliseconds time) {
    stop_.WaitFor(time);
    CheckStop();
}

std::vector<Message> Invocation::Messages() {
    const std::lock_guard guard(lock_);
    return messages_;
}

std::vector<Pending> Invocation::PendingActions() {
    const std::lock_guard guard(lock_);
    return pending_;
}

bool Invocation::HasChanged() {
    const std::lock_guard guard(lock_);
    return changed_;
}

size_t Invocation::RowsSent() {
    const std::lock_guard guard(lock_);
    return rowsSent_;
}

}  // namespace tools
