#include "nested.h"

#include <utility>

#include "ending.h"
#include "json_document.h"

namespace tools {
namespace {

constexpr const char* kInherited[] = {"redact",  "trace",    "timeout", "quiet",
                                      "verbose", "no-color", "wide"};

void Inherit(const Options& outer, Options* options) {
    for (const char* name : kInherited) {
        if (outer.Has(name) && !options->Has(name)) {
            options->Set(name, outer.All(name));
        }
    }
}

NestedRun DocumentOf(const Envelope& envelope, Redactor& redactor) {
    return {envelope.exit, EnvelopeLine(envelope, redactor), envelope.changed, envelope.pending};
}

}  // namespace

NestedCommand::NestedCommand(Invocation& outer, std::vector<std::string> words)
    : outer_(outer),
      words_(std::move(words)),
      line_(std::make_unique<CommandLine>(ParseCommandLine(outer.OwnTool(), words_))) {
    Inherit(outer.Given(), &line_->options);
}

NestedCommand::~NestedCommand() = default;
NestedCommand::NestedCommand(NestedCommand&&) noexcept = default;

NestedRun NestedCommand::Run() {
    line_->mode = OutputMode::Json;
    if (!line_->help.empty() || !line_->error.empty()) {
        Record help;
        return DocumentOf(
            EnvelopeOf(outer_.OwnTool(), words_, *line_, ExitCode::Usage, outer_.Names(), &help),
            outer_.Names());
    }
    Invocation invocation(outer_, *line_);
    const Ending ending = Execute(invocation);
    return DocumentOf(EnvelopeOf(invocation, words_, ending), outer_.Names());
}

NestedRun NestedCommand::RunPrinting() {
    line_->mode = outer_.Mode();
    if (!line_->error.empty()) {
        outer_.Add(ErrorMessage(*line_));
        return {ExitCode::Usage, {}, false, {}};
    }
    if (!line_->help.empty()) {
        outer_.Print(line_->help);
        return {};
    }
    Invocation invocation(outer_, *line_);
    Ending ending = Execute(invocation);
    if (ending.hasResult) {
        outer_.Print(RenderResult(invocation.Result(), line_->mode, invocation.Style()));
    }
    for (Message& message : ending.messages) {
        invocation.Add(std::move(message));
    }
    return {DetailedExit(ending.exit, invocation),
            {},
            invocation.HasChanged(),
            invocation.PendingActions()};
}

NestedRun RunNested(Invocation& outer, std::vector<std::string> words) {
    return NestedCommand(outer, std::move(words)).Run();
}

}  // namespace tools
