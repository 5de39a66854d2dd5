#include "ending.h"

#include <exception>

#include "records/csv.h"

namespace tools {
namespace {

Message Error(const std::string& text, const std::string& hint) {
    return {Severity::Error, text, hint, {}, {}};
}

Envelope EmptyEnvelope(const Tool& tool, std::vector<std::string> words) {
    Envelope envelope;
    envelope.tool = tool.version;
    envelope.library = tool.libraryVersion == nullptr ? std::string() : tool.libraryVersion();
    envelope.argv = std::move(words);
    return envelope;
}

}  // namespace

Ending Execute(Invocation& invocation) {
    try {
        const ExitCode exit = invocation.OwnCommand().run(invocation);
        if (invocation.DryRun() && invocation.OwnTool().dryRunNote != nullptr) {
            invocation.Note(invocation.OwnTool().dryRunNote);
        }
        return {exit, true, {}};
    } catch (const CommandError& error) {
        return {error.exit, !invocation.Result().Empty(), {error.message}};
    } catch (const Stopped& stopped) {
        Ending ending = StoppedEnding(stopped.reason, false);
        ending.hasResult = !invocation.Result().Empty();
        return ending;
    } catch (const std::exception& error) {
        return {
            ExitCode::Internal, false, {Error(std::string("internal error: ") + error.what(), "")}};
    } catch (...) {
        return {ExitCode::Internal, false, {Error("internal error", "")}};
    }
}

Ending StoppedEnding(StopReason reason, bool stuck) {
    return {
        ExitCodeOf(reason),
        false,
        {Error(reason == StopReason::TimedOut ? "the time limit of --timeout is over" : "cancelled",
               stuck ? "a driver call did not return and was given up" : "")}};
}

ExitCode DetailedExit(ExitCode exit, Invocation& invocation) {
    if (exit != ExitCode::Done || invocation.OwnCommand().risk == Risk::Reads ||
        !invocation.Given().Has("detailed-exitcode")) {
        return exit;
    }
    if (!invocation.HasChanged()) {
        return ExitCode::NothingChanged;
    }
    return invocation.PendingActions().empty() ? exit : ExitCode::ResetPending;
}

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

Envelope EnvelopeOf(Invocation& invocation, const std::vector<std::string>& words,
                    const Ending& ending) {
    Envelope envelope = EmptyEnvelope(
        invocation.OwnTool(), MaskedWords(words, invocation.GivenLine(), invocation.Names()));
    envelope.schema = SchemaName(invocation.OwnTool(), invocation.OwnCommand());
    envelope.result = ending.hasResult ? &invocation.Result() : nullptr;
    envelope.messages = invocation.Messages();
    envelope.messages.insert(envelope.messages.end(), ending.messages.begin(),
                             ending.messages.end());
    envelope.changed = invocation.HasChanged();
    envelope.pending = invocation.PendingActions();
    envelope.exit = DetailedExit(ending.exit, invocation);
    return envelope;
}

Envelope EnvelopeOf(const Tool& tool, const std::vector<std::string>& words,
                    const CommandLine& line, ExitCode errorExit, Redactor& redactor, Record* help) {
    Envelope envelope = EmptyEnvelope(tool, MaskedWords(words, line, redactor));
    if (!line.help.empty()) {
        help->AddRaw("help", line.help);  // as `help` has it
        envelope.schema = SchemaName(tool, "help");
        envelope.result = help;
        return envelope;
    }
    envelope.schema =
        line.command == nullptr ? SchemaName(tool, "usage") : SchemaName(tool, *line.command);
    envelope.messages = {ErrorMessage(line)};
    envelope.exit = errorExit;
    return envelope;
}

Message ErrorMessage(const CommandLine& line) {
    return Error(line.error, line.hint);
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

}  // namespace tools
