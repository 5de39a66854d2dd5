// trace start, stop, show.
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "fault_text.h"
#include "model/bytes/bytes.h"
#include "model/model.h"
#include "port_rows.h"
#include "running_driver.h"

namespace vxemu {
namespace {

// An entry with the time of the calendar.
struct TracedRequest {
    TraceEntry entry;
    std::chrono::system_clock::time_point time;
};

struct TraceContent {
    bool running = false;
    bool kept = false;  // running or ended
    std::string file;
    uint64_t lost = 0;
    std::vector<TracedRequest> requests;
};

std::string RequestName(const TraceEntry& entry) {
    FaultRule rule = {};
    rule.code = entry.code;
    rule.subCode = entry.subCode == kPlainRequest ? kAnySubCode : entry.subCode;
    const std::string name = FormatFaultCode(rule);
    if (!name.starts_with("0x")) {
        return name;
    }
    // The sub-code may select something, such as a region.
    rule.subCode = kAnySubCode;
    return FormatFaultCode(rule);
}

const char* CompletionName(const TraceEntry& entry) {
    switch (static_cast<Completion>(entry.completion)) {
        case Completion::Done:
            return "done";
        case Completion::Busy:
            return "busy";
        case Completion::Invalid:
            return "invalid";
        case Completion::ShortBuffer:
            return "short-buffer";
        case Completion::NoDevice:
            break;
    }
    return "no-device";
}

constexpr const char* kCompletions[] = {"done", "busy", "invalid", "short-buffer", "no-device"};

// Only a request that was completed has a status of the driver.
std::optional<uint32_t> StatusOf(const TraceEntry& entry) {
    return entry.subCode != kPlainRequest &&
                   entry.completion == static_cast<uint32_t>(Completion::Done)
               ? std::optional<uint32_t>(entry.status)
               : std::nullopt;
}

std::optional<uint32_t> SubCodeOf(const TraceEntry& entry) {
    return entry.subCode != kPlainRequest ? std::optional<uint32_t>(entry.subCode) : std::nullopt;
}

const Fields<TracedRequest> kTracedFields = {
    {"time", "Time", "TIME", kText, [](const TracedRequest& t) { return FormatUtc(t.time); }},
    {"port", "Port", "PORT", kText,
     [](const TracedRequest& t) { return PortName(t.entry.scsiPort); }},
    {"process", "Process", "PROCESS", kInteger,
     [](const TracedRequest& t) { return uint32_t{t.entry.process}; }},
    {"request", "Request", "REQUEST", kText,
     [](const TracedRequest& t) { return RequestName(t.entry); }},
    {"code", "Code", kText, [](const TracedRequest& t) { return Hex(t.entry.code, 8); }},
    {"sub_code", "Sub-code", "SUB", kInteger.OrNull(),
     [](const TracedRequest& t) { return SubCodeOf(t.entry); }},
    {"input_bytes", "Bytes in", "IN", kInteger,
     [](const TracedRequest& t) { return uint32_t{t.entry.inputLength}; }},
    {"output_bytes", "Room for bytes out", "ROOM", kInteger,
     [](const TracedRequest& t) { return uint32_t{t.entry.outputLength}; }},
    {"returned_bytes", "Bytes out", "OUT", kInteger,
     [](const TracedRequest& t) { return uint32_t{t.entry.returned}; }},
    {"completion", "Completion", "COMPLETION", Choice(kCompletions),
     [](const TracedRequest& t) { return std::string(CompletionName(t.entry)); }},
    {"status", "Driver status", "STATUS", kInteger.OrNull(),
     [](const TracedRequest& t) { return StatusOf(t.entry); }},
    {"detail", "Detail status", kInteger.OrNull(),
     [](const TracedRequest& t) {
         return StatusOf(t.entry) ? std::optional<uint32_t>(t.entry.detail) : std::nullopt;
     }},
};

const Fields<TraceContent> kTraceFields = {
    {"running", "Running", kFlag, &TraceContent::running},
    {"file", "File", kText.OrNull(),
     [](const TraceContent& c) { return c.kept ? std::optional(c.file) : std::nullopt; }},
    {"lost", "Requests lost", kCounter, &TraceContent::lost},
    {"requests", "Requests", kTracedFields,
     [](const TraceContent& c) { return std::span<const TracedRequest>(c.requests); },
     "No requests."},
};

struct TraceChange {
    std::string file;
    uint64_t requests = 0;
    uint64_t lost = 0;
};

const Fields<TraceChange> kTraceChangeFields = {
    {"file", "File", kText, &TraceChange::file},
    {"requests", "Requests written", kCounter, &TraceChange::requests},
    {"lost", "Requests lost", kCounter, &TraceChange::lost},
};

// Everything that the driver has kept up to now; what is asked meanwhile belongs to the next look.
TraceContent ReadTrace(RunningDriver& driver) {
    TraceContent content;
    std::optional<uint64_t> end;
    for (uint64_t from = 0; !end || from < *end;) {
        const auto piece =
            driver.Fetch<TracePiece>(control::kTraceRead, TraceSelector{from}, "trace");
        const auto now = std::chrono::system_clock::now();
        const uint32_t count = std::min<uint32_t>(piece->count, std::size(piece->entries));
        content.running = piece->running != 0;
        content.kept = piece->kept != 0;
        content.file =
            std::string(piece->name.file, strnlen(piece->name.file, sizeof piece->name.file));
        content.lost = piece->lost;
        end = end.value_or(piece->end);
        for (uint32_t at = 0; at < count; ++at) {
            const TraceEntry& entry = piece->entries[at];
            const auto ago = std::chrono::milliseconds(piece->now - entry.time);
            content.requests.push_back({entry, now - ago});
        }
        if (count == 0) {
            break;
        }
        from = piece->first + count;
    }
    return content;
}

std::filesystem::path TracePath(const std::string& text) {
    return {std::u8string(text.begin(), text.end())};
}

std::string LineOf(const TracedRequest& traced) {
    const TraceEntry& entry = traced.entry;
    nlohmann::ordered_json line = {
        {"time", FormatUtc(traced.time)},
        {"port", PortName(entry.scsiPort)},
        {"process", uint32_t{entry.process}},
        {"request", RequestName(entry)},
        {"code", Hex(entry.code, 8)},
        {"sub_code", nullptr},
        {"input_bytes", uint32_t{entry.inputLength}},
        {"output_bytes", uint32_t{entry.outputLength}},
        {"returned_bytes", uint32_t{entry.returned}},
        {"completion", CompletionName(entry)},
        {"status", nullptr},
        {"detail", nullptr},
    };
    if (const auto subCode = SubCodeOf(entry)) {
        line["sub_code"] = *subCode;
    }
    if (const auto status = StatusOf(entry)) {
        line["status"] = *status;
        line["detail"] = uint32_t{entry.detail};
    }
    return line.dump();
}

ExitCode RunTraceStart(Invocation& invocation) {
    const std::string given = invocation.Given().Text("FILE");
    std::error_code failure;
    const std::filesystem::path path = std::filesystem::absolute(TracePath(given), failure);
    const std::u8string whole = path.u8string();
    TraceName name = {};
    if (failure || whole.size() >= sizeof name.file) {
        invocation.Fail(ExitCode::Usage, given + ": not a file name that the trace can keep");
    }
    const std::string file(whole.begin(), whole.end());
    CopyText(name.file, file.c_str());
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        if (driver.SendForCount(control::kTraceStart, name, "trace start") == 0) {
            invocation.Fail(ExitCode::Failed,
                            "there is a trace already, or there is no memory for one",
                            "see `vxemu trace show`, write it with `vxemu trace stop`");
        }
        invocation.Changed();
    }
    invocation.Result() = kTraceChangeFields.Make({file, 0, 0});
    return ExitCode::Done;
}

ExitCode RunTraceStop(Invocation& invocation) {
    RunningDriver driver(invocation, true);
    // It ends first, so that what is read is all of it, and is dropped once the file has it.
    if (!invocation.DryRun()) {
        driver.SendForCount(control::kTraceStop, TraceStop{0}, "trace stop");
    }
    const TraceContent content = ReadTrace(driver);
    if (!content.kept) {
        invocation.Fail(ExitCode::NotFound, "no trace runs", "start one with `vxemu trace start`");
    }
    if (!invocation.DryRun()) {
        std::ofstream file(TracePath(content.file), std::ios::binary | std::ios::trunc);
        for (const TracedRequest& traced : content.requests) {
            file << LineOf(traced) << '\n';
        }
        file.close();
        if (!file) {
            invocation.Fail(
                ExitCode::Failed, content.file + ": cannot be written",
                "the driver keeps the requests: `vxemu trace show --json` prints them, and "
                "`vxemu trace stop` tries again");
        }
        driver.SendForCount(control::kTraceStop, TraceStop{1}, "trace stop");
        invocation.Changed();
    }
    invocation.Result() =
        kTraceChangeFields.Make({content.file, content.requests.size(), content.lost});
    return ExitCode::Done;
}

ExitCode RunTraceShow(Invocation& invocation) {
    RunningDriver driver(invocation, false);
    invocation.Result() = kTraceFields.Make(ReadTrace(driver));
    return ExitCode::Done;
}

constexpr Argument kTraceFile[] = {
    {.name = "FILE", .help = "takes the requests when the trace stops", .required = true}};

}  // namespace

CommandRows TraceCommands() {
    static const Command kCommands[] = {
        {.path = "trace start",
         .risk = Risk::Reversible,
         .help = "record every request of the ports, the last 8192 of them",
         .arguments = kTraceFile,
         .run = RunTraceStart,
         .example = "trace start requests.jsonl",
         .result = ShapeOf<kTraceChangeFields>},
        {.path = "trace stop",
         .risk = Risk::Reversible,
         .help = "end the record and write it as JSON lines",
         .run = RunTraceStop,
         .example = "trace stop",
         .result = ShapeOf<kTraceChangeFields>},
        {.path = "trace show",
         .help = "the requests that were recorded up to now",
         .run = RunTraceShow,
         .example = "trace show",
         .result = ShapeOf<kTraceFields>},
    };
    return kCommands;
}

}  // namespace vxemu
