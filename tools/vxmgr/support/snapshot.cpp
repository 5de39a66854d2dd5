#include "vxmgr/support/snapshot.h"

#include <algorithm>
#include <set>
#include <thread>

#include "vxmgr/app/host_name.h"

namespace vxmgr {
namespace {

struct SnapshotRow {
    const char* command;
    const char* options = "";  // behind it
    bool ofEachPort = false;   // it is about one port: run for each
    bool inReport = false;
};

constexpr SnapshotRow kRows[] = {
    {.command = "version"},
    {.command = "health", .inReport = true},
    {.command = "tree", .inReport = true},
    {.command = "adapter list", .inReport = true},
    {.command = "adapter show"},
    {.command = "adapter locate show"},
    {.command = "port list"},
    {.command = "port show", .inReport = true},
    {.command = "port stats", .options = "--kind all", .inReport = true},
    {.command = "port database"},
    {.command = "port lockdown"},
    {.command = "sfp show", .inReport = true},
    {.command = "sfp serdes"},
    {.command = "target show"},
    {.command = "target luns"},
    {.command = "target speed get"},
    {.command = "qos get"},
    {.command = "map target", .options = "all"},
    {.command = "bind list"},
    {.command = "bind stores"},
    {.command = "lunmask show"},
    {.command = "fw show", .inReport = true},
    {.command = "fw history", .inReport = true},
    {.command = "flash lock show"},
    {.command = "nvram verify", .inReport = true},
    {.command = "driver show", .inReport = true},
    {.command = "driver param list"},
    {.command = "smartsan get"},
    {.command = "npiv list"},
    {.command = "nvme list", .options = "--namespaces"},
    {.command = "dump list", .inReport = true},
    {.command = "nvram show", .ofEachPort = true},
    {.command = "vpd show", .ofEachPort = true},
    {.command = "flash layout", .ofEachPort = true},
};

std::vector<std::string> WordsOf(const SnapshotRow& row) {
    std::vector<std::string> words = Split(row.command, ' ');
    if (*row.options != '\0') {
        for (std::string& word : Split(row.options, ' ')) {
            words.push_back(std::move(word));
        }
    }
    return words;
}

// The -a and -p of the outer command.
std::vector<std::string> SelectionOf(Invocation& invocation) {
    std::vector<std::string> words;
    for (const char* option : {"adapter", "port"}) {
        if (invocation.Given().Has(option)) {
            words.push_back(std::string("--") + option + "=" + invocation.Given().Text(option));
        }
    }
    return words;
}

std::string MemberName(const char* command) {
    std::string name = command;
    std::ranges::replace(name, ' ', '_');
    return name;
}

// Those that this program has.
std::vector<SnapshotRow> KnownRows(Invocation& invocation, bool forReport) {
    std::vector<SnapshotRow> rows;
    for (const SnapshotRow& row : kRows) {
        if (FindCommand(invocation.OwnTool(), row.command) != nullptr &&
            (row.inReport || !forReport)) {
            rows.push_back(row);
        }
    }
    return rows;
}

bool IsGoodEnding(ExitCode exit) {
    constexpr ExitCode kGood[] = {ExitCode::Done, ExitCode::NotSupported, ExitCode::HealthWarning,
                                  ExitCode::HealthCritical};
    return std::ranges::find(kGood, exit) != std::end(kGood);
}

TakenDocument Taken(Invocation& invocation, const SnapshotRow& row, std::string member,
                    NestedCommand& nested) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    NestedRun run = nested.Run();
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    return {row.command,
            std::move(member),
            invocation.Names().Clean(TextsJoined(nested.Words(), " ")),
            run.exit,
            std::move(run.document),
            static_cast<uint64_t>(time.count()),
            IsGoodEnding(run.exit)};
}

// Those of the selected ports that have not fallen silent by now.
std::vector<Port> StillAnswering(Invocation& invocation, const std::vector<Port*>& selected) {
    if (selected.empty()) {
        return {};  // that there are none was said when they were read
    }
    std::set<uint32_t> indexes;
    for (const Port* port : selected) {
        indexes.insert(port->index);
    }
    std::vector<Port> ports = ReadPorts(invocation);
    std::erase_if(ports,
                  [&](const Port& port) { return !port.answers || !indexes.contains(port.index); });
    return ports;
}

}  // namespace

std::vector<TakenDocument> TakeSnapshot(Invocation& invocation, const SnapshotPlan& plan) {
    const OpenPortsMemory open(plan.traceFolder);
    std::vector<Port> ports = ReadPorts(invocation);
    std::vector<TakenDocument> documents;
    const auto take = [&](const SnapshotRow& row, const std::string& member,
                          const std::vector<std::string>& selection) {
        std::vector<std::string> words = WordsOf(row);
        words.insert(words.end(), selection.begin(), selection.end());
        NestedCommand nested(invocation, std::move(words));
        documents.push_back(Taken(invocation, row, member, nested));
        invocation.CheckStop();
    };
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    for (const SnapshotRow& row : KnownRows(invocation, plan.forReport)) {
        invocation.ProgressLine("taking " + std::string(row.command));
        if (!row.ofEachPort) {
            take(row, MemberName(row.command), SelectionOf(invocation));
            continue;
        }
        for (const Port& port : StillAnswering(invocation, selected)) {
            take(row, MemberName(row.command) + "/port-" + std::to_string(port.index),
                 {"-p", port.Object()});
        }
    }
    invocation.ProgressLine("");
    for (TakenDocument& document : documents) {
        document.good |= ports.empty() && document.exit == ExitCode::NotFound;
    }
    return documents;
}

std::optional<Sampling> GivenSampling(Invocation& invocation) {
    const auto interval = invocation.Given().Number("interval");
    const auto count = invocation.Given().Number("count");
    if (!interval && !count) {
        return std::nullopt;
    }
    return Sampling{interval.value_or(2), count.value_or(10)};
}

std::vector<TakenDocument> TakeSamples(Invocation& invocation, const Sampling& sampling) {
    const std::vector<std::string> selection = SelectionOf(invocation);
    const auto take = [&](const char* command, std::vector<std::string> words) {
        words.insert(words.end(), selection.begin(), selection.end());
        words.push_back("--quiet");
        NestedCommand nested(invocation, std::move(words));
        return Taken(invocation, {.command = command}, MemberName(command), nested);
    };
    const std::string interval = std::to_string(sampling.interval);
    const std::string count = std::to_string(sampling.count);
    invocation.Progress("sampling the counters " + count + " times, every " + interval + " s");
    std::vector<TakenDocument> documents(1);
    std::thread events;
    const std::vector<Port> ports = ReadPorts(invocation);
    if (const auto silent = std::ranges::find(ports, false, &Port::answers);
        silent != ports.end()) {
        invocation.Note("events are not watched: the library would wait for " + silent->Name() +
                        " before it listens to others");
    } else {
        documents.emplace_back();
        events = std::thread([&, seconds = sampling.interval * sampling.count + 1] {
            documents[1] =
                take("event watch", {"event", "watch", "--for", std::to_string(seconds)});
        });
    }
    documents[0] =
        take("samples", {"port", "stats", "--delta", "--interval", interval, "--count", count});
    if (events.joinable()) {
        events.join();
    }
    invocation.CheckStop();
    return documents;
}

std::string ShownHostName(Invocation& invocation) {
    return invocation.Names().Mask(Secret::Host, HostName());
}

std::string ReportOf(Invocation& invocation, const std::vector<TakenDocument>& documents,
                     const std::optional<Sampling>& sampling, const std::string& time) {
    ReportDocuments shown;
    for (const TakenDocument& document : documents) {
        shown.Add(document.command, document.text);
    }
    const std::string sampled = sampling ? std::to_string(sampling->count) + " times, every " +
                                               std::to_string(sampling->interval) + " s"
                                         : "";
    return ReportPage(
        {ShownHostName(invocation), time, invocation.OwnTool().version, LibraryVersion(), sampled},
        shown);
}

}  // namespace vxmgr
