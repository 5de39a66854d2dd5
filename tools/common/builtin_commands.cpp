#include "builtin_commands.h"

#include "completion.h"
#include "invocation.h"
#include "status_codes.h"
#include "text.h"

namespace tools {
namespace {

constexpr const char* kShells[] = {"powershell", "bash"};

constexpr Argument kExplainArguments[] = {
    {"CODE", ArgumentKind::Text, "", "a status (0x20000067, 170, DEVICE_BUSY), or: exit [N]", true,
     true},
};

constexpr Argument kCompletionArguments[] = {
    {"SHELL", ArgumentKind::Text, "", "powershell or bash", true, false, kShells},
};

Record ExitRow(const ExitCodeRow& row) {
    Record record;
    record.Add("code", "Exit code", Value::Number(static_cast<uint64_t>(Number(row.code))), "CODE");
    record.Add("name", "Name", Value::Text(row.name), "NAME");
    record.Add("meaning", "Meaning", Value::Text(row.meaning), "MEANING");
    record.Add("advice", "What to do", Value::TextOrNull(row.advice));
    return record;
}

void AddExitCodes(Record& result, std::vector<Record> rows, ListLayout layout) {
    result.AddList("exit_codes", "Exit codes", layout, ExitRow(ExitCodes().front()), "",
                   std::move(rows));
}

ExitCode ExplainExit(Invocation& invocation, const std::vector<std::string>& words) {
    std::vector<Record> rows;
    if (words.size() == 1) {
        for (const ExitCodeRow& row : ExitCodes()) {
            rows.push_back(ExitRow(row));
        }
    } else {
        const auto number = ParseNumber(words[1]);
        const ExitCodeRow* row =
            number && *number <= 255 ? FindExitCode(static_cast<int>(*number)) : nullptr;
        if (row == nullptr) {
            invocation.Fail(ExitCode::NotFound, "no exit code \"" + words[1] + "\"",
                            "`explain exit` lists them all");
        }
        rows.push_back(ExitRow(*row));
    }
    invocation.Result().Add("status", "", Value());
    const ListLayout layout = rows.size() == 1 ? ListLayout::Sections : ListLayout::Table;
    AddExitCodes(invocation.Result(), std::move(rows), layout);
    return ExitCode::Done;
}

ExitCode ExplainStatus(Invocation& invocation, const std::string& word) {
    constexpr const char* kOrigins[] = {"success", "windows", "library"};
    uint32_t status = 0;
    const auto number = ParseNumber(word);
    if (number && *number <= UINT32_MAX) {
        status = static_cast<uint32_t>(*number);
    } else if (number || !FindStatus(word, &status)) {
        invocation.Fail(ExitCode::NotFound, "no status \"" + word + "\"",
                        "a status is a 32-bit number or a name such as DEVICE_BUSY");
    }
    Record record;
    record.Add("code", "Status", Value::Text(StatusText(status)));
    record.Add("name", "Name", Value::Text(StatusName(status)));
    record.Add("text", "Text", Value::Text(invocation.OwnTool().statusText(status)));
    record.Add("origin", "Origin", Value::Text(kOrigins[static_cast<int>(KindOf(status))]));
    record.Add("hint", "Hint", Value::TextOrNull(HintOf(status)));
    invocation.Result().AddGroup("status", "Status", std::move(record));
    AddExitCodes(invocation.Result(), {ExitRow(*FindExitCode(Number(ExitCodeOf(status))))},
                 ListLayout::Sections);
    return ExitCode::Done;
}

}  // namespace

ExitCode RunVersion(Invocation& invocation) {
    const Tool& tool = invocation.OwnTool();
    Record& result = invocation.Result();
    result.Add("name", "Tool", Value::Text(tool.name));
    result.Add("tool", "Version", Value::Text(tool.version));
    result.Add("library", tool.libraryVersion == nullptr ? "" : "Library",
               tool.libraryVersion == nullptr ? Value() : Value::Text(tool.libraryVersion()));
    return ExitCode::Done;
}

std::span<const Argument> ExplainArguments() {
    return kExplainArguments;
}

ExitCode RunExplain(Invocation& invocation) {
    const std::vector<std::string> words = invocation.Given().All("CODE");
    const bool exit = EqualIgnoringCase(words.front(), "exit");
    if (words.size() > (exit ? 2u : 1u)) {
        invocation.Fail(ExitCode::Usage, "one code at a time", "explain CODE | explain exit [N]");
    }
    return exit ? ExplainExit(invocation, words) : ExplainStatus(invocation, words.front());
}

std::span<const Argument> CompletionArguments() {
    return kCompletionArguments;
}

ExitCode RunCompletion(Invocation& invocation) {
    const std::string shell = invocation.Given().Text("SHELL");
    Record& result = invocation.Result();
    result.Add("shell", "", Value::Text(shell));
    result.AddRaw("script", shell == "bash" ? BashCompletion(invocation.OwnTool())
                                            : PowerShellCompletion(invocation.OwnTool()));
    return ExitCode::Done;
}

}  // namespace tools
