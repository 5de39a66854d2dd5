// collect: what support asks for first, in one file.
#include <process.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "common/console.h"
#include "common/json_document.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/sha256.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"
#include "vxmgr/support/collect_dumps.h"
#include "vxmgr/support/collect_manifest.h"
#include "vxmgr/support/new_file.h"
#include "vxmgr/support/snapshot.h"
#include "vxmgr/support/trace_text.h"
#include "vxmgr/support/zip.h"

namespace vxmgr {

namespace fs = std::filesystem;

const Fields<CollectedMember> kCollectedMemberFields = {
    {"name", "Name", "NAME", kText, &CollectedMember::name},
    {"size", "Size", "SIZE", kInteger, &CollectedMember::size, "bytes"},
    {"sha256", "SHA-256", kText, &CollectedMember::sha256},
    {"command", "Command", "COMMAND", kText.OrNull(), &CollectedMember::command},
    {"exit", "Exit code", "EXIT", kInteger.OrNull(), &CollectedMember::exit, "of the command"},
    {"milliseconds", "Milliseconds", kInteger.OrNull(), &CollectedMember::milliseconds,
     "that the command took"},
};
const Fields<CollectProblem> kCollectErrorFields = {
    {"what", "Not collected, or not whole", "NOT COLLECTED, OR NOT WHOLE", kText,
     &CollectProblem::what},
    {"exit", "Exit code", "EXIT", kInteger.OrNull(), &CollectProblem::exit, "of a command"},
    {"text", "Why", "WHY", kText, &CollectProblem::text},
};
const Fields<CollectProblem> kCollectLeftOutFields = {
    {"what", "Left out", "LEFT OUT", kText, &CollectProblem::what},
    {"text", "Why", "WHY", kText, &CollectProblem::text},
};
const Fields<CollectManifest> kCollectManifestFields = {
    {"tool", "", kText, &CollectManifest::tool},
    {"library", "", kText, &CollectManifest::library},
    {"host", "", kText, &CollectManifest::host},
    {"started", "", kText, &CollectManifest::started, "UTC"},
    {"ended", "", kText, &CollectManifest::ended, "UTC"},
    {"redacted", "", kFlag, &CollectManifest::redacted,
     "names and serial numbers are pseudonyms, the same throughout the file"},
    {"members", "", kCollectedMemberFields, &CollectManifest::members},
    {"errors", "", kCollectErrorFields, &CollectManifest::errors},
    {"left_out", "", kCollectLeftOutFields, &CollectManifest::leftOut},
};

Shape CollectManifestShape() {
    return kCollectManifestFields.ShapeOfAll();
}

namespace {

constexpr Argument kCollectArguments[] = {
    {.name = "FILE", .help = "the file to write (zip)", .required = true},
    FlagOption("--dump", "the firmware dumps that wait in adapters, too"),
    kForceArgument,
};

struct Collected {
    std::string file;
    std::optional<uint64_t> size;
    size_t members = 0;
    std::vector<CollectProblem> errors;
    std::vector<CollectProblem> leftOut;
};

const Fields<Collected> kCollectFields = {
    {"file", "File", kText, &Collected::file},
    {"size", "Size", kInteger.OrNull(), &Collected::size, "bytes; null: a dry run"},
    {"members", "Members", kInteger, &Collected::members},
    {"errors", "Errors", kCollectErrorFields, &Collected::errors, "Nothing failed."},
    {"left_out", "Left out", kCollectLeftOutFields, &Collected::leftOut},
};

std::span<const uint8_t> BytesOf(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

ZipTime LocalTime() {
    const std::time_t seconds = std::time(nullptr);
    const std::tm* const now = std::localtime(&seconds);
    return {now->tm_year + 1900, now->tm_mon + 1, now->tm_mday,
            now->tm_hour,        now->tm_min,     now->tm_sec};
}

// The library's trace of a collection: a file for each port in a folder of our own, or the end of
// the file that the user gave.
class Traces {
  public:
    explicit Traces(Invocation& invocation) : given_(invocation.Given().Text("trace")) {
        if (!given_.empty()) {
            begin_ = FileSize(given_);
            return;
        }
        std::error_code error;
        const fs::path folder =
            fs::temp_directory_path(error) / ("vxmgr-collect-" + std::to_string(_getpid()));
        // The library takes a name in the system's code page.
        const std::string name = console::ToSystemCodePage(console::ToUtf8(folder.wstring()));
        if (!error && name.find('?') == std::string::npos && fs::create_directory(folder, error)) {
            folder_ = folder;
            name_ = name;
        }
    }
    ~Traces() {
        std::error_code ignored;
        if (!folder_.empty()) {
            fs::remove_all(folder_, ignored);
        }
    }
    Traces(const Traces&) = delete;
    Traces& operator=(const Traces&) = delete;

    const std::string& Folder() const { return name_; }
    bool ArePossible() const { return !given_.empty() || !folder_.empty(); }

    // By the name of the member.
    std::vector<std::pair<std::string, std::string>> Texts() const {
        std::vector<std::pair<std::string, std::string>> texts;
        if (!given_.empty()) {
            texts.emplace_back("trace.txt", TextOf(given_, begin_));
            return texts;
        }
        std::error_code error;
        for (const fs::directory_entry& file : fs::directory_iterator(folder_, error)) {
            texts.emplace_back("trace/" + console::ToUtf8(file.path().filename().wstring()),
                               TextOf(console::ToUtf8(file.path().wstring()), 0));
        }
        std::ranges::sort(texts);
        return texts;
    }

  private:
    static std::string TextOf(const std::string& path, uint64_t begin) {
        constexpr uint64_t kMost = uint64_t{64} << 20;
        const uint64_t size = FileSize(path);
        if (size <= begin) {
            return {};
        }
        std::ifstream file(fs::path(console::ToWide(path)), std::ios::binary);
        file.seekg(static_cast<std::streamoff>(begin));
        std::string text(std::min(size - begin, kMost), '\0');
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<size_t>(file.gcount()));
        return text;
    }

    const std::string given_;
    uint64_t begin_ = 0;
    fs::path folder_;
    std::string name_;
};

class Collector {
  public:
    Collector(Invocation& invocation, NewFile& file)
        : invocation_(invocation),
          file_(file),
          zip_(LocalTime(), [&file](std::span<const uint8_t> bytes) { return file.Write(bytes); }) {
        manifest_.tool = invocation.OwnTool().version;
        manifest_.library = LibraryVersion();
        manifest_.host = ShownHostName(invocation);
        manifest_.started = TimeNow();
        manifest_.redacted = invocation.Names().Enabled();
    }

    void Run() {
        const Traces traces(invocation_);
        const std::vector<TakenDocument> documents =
            TakeSnapshot(invocation_, {.forReport = false, .traceFolder = traces.Folder()});
        for (const TakenDocument& document : documents) {
            AddMember("documents/" + document.member + ".json", BytesOf(document.text),
                      document.words, Number(document.exit), document.milliseconds);
            if (!document.good) {
                manifest_.errors.push_back(
                    {document.words, Number(document.exit), WhatItSaid(document.text)});
            }
        }
        AddText("report.html", ReportOf(invocation_, documents, std::nullopt, manifest_.started));
        AddTraces(traces);
        AddDumps();
        manifest_.ended = TimeNow();
        // The manifest cannot list itself.
        const std::string text = RecordDocument(kCollectManifestFields.Make(manifest_));
        Check(zip_.Add("MANIFEST.json", BytesOf(text)));
        Check(zip_.Finish());
    }

    const CollectManifest& Manifest() const { return manifest_; }
    uint64_t Size() const { return zip_.Size(); }

  private:
    // The errors among a document's messages: the first ones in full.
    static std::string WhatItSaid(const std::string& document) {
        constexpr size_t kMost = 3;
        const ReportJson envelope = ReportJson::parse(document, nullptr, false);
        std::vector<std::string> errors;
        for (const ReportJson& message : ValueAt(envelope, "messages")) {
            if (ShownAt(message, "severity") == "error") {
                const std::string object = ShownAt(message, "object");
                errors.push_back((object.empty() ? "" : object + ": ") + ShownAt(message, "text"));
            }
        }
        const size_t more = errors.size() - std::min(errors.size(), kMost);
        errors.resize(errors.size() - more);
        return TextsJoined(errors, "; ") +
               (more == 0 ? "" : "; and " + std::to_string(more) + " more");
    }

    void Check(ZipOutcome outcome) {
        if (outcome == ZipOutcome::TooLarge) {
            invocation_.Fail(ExitCode::Failed, "there is more to collect than a zip file can hold",
                             "select fewer ports, or leave the dumps out");
        }
        if (outcome == ZipOutcome::NotWritten) {
            file_.Fail();
        }
    }

    void AddMember(const std::string& name, std::span<const uint8_t> bytes,
                   const std::string& command = {}, std::optional<int> exit = {},
                   std::optional<uint64_t> milliseconds = {}) {
        Check(zip_.Add(name, bytes));
        manifest_.members.push_back(
            {name, bytes.size(), Sha256Of(bytes), command, exit, milliseconds});
        invocation_.CheckStop();
    }
    void AddText(const std::string& name, const std::string& text) {
        AddMember(name, BytesOf(text));
    }

    void AddTraces(const Traces& traces) {
        if (!traces.ArePossible()) {
            manifest_.leftOut.push_back({"trace",
                                         {},
                                         "the folder of temporary files has a name "
                                         "that the library's trace cannot take: give "
                                         "--trace FILE"});
            return;
        }
        const bool masked = invocation_.Names().Enabled();
        for (const auto& [name, text] : traces.Texts()) {
            AddText(name, !masked ? text : CleanTrace(text, [this](const std::string& line) {
                        return invocation_.Names().Clean(line);
                    }));
        }
        if (masked) {
            manifest_.leftOut.push_back(
                {"bytes in the trace", {}, "names in them cannot be told from the rest"});
        }
    }

    void AddDumps() {
        if (!invocation_.Given().Has("dump")) {
            manifest_.leftOut.push_back({"firmware dumps", {}, "--dump was not given"});
            return;
        }
        if (invocation_.Names().Enabled()) {
            manifest_.leftOut.push_back({"firmware dumps",
                                         {},
                                         "they hold names and serial numbers that --redact cannot "
                                         "find"});
            return;
        }
        std::vector<Port> ports = ReadPorts(invocation_);
        for (const CollectedDump& dump : FetchDumps(invocation_, SelectPorts(invocation_, ports))) {
            const std::string what = std::string(dump.kind) + " dump of " + dump.port->Name();
            if (dump.status != HXMGT_SUCCESS) {
                manifest_.errors.push_back(
                    {what, Number(ExitCodeOf(dump.status)), StatusMessage(dump.status)});
                continue;
            }
            AddMember("dumps/port-" + std::to_string(dump.port->index) + "-" + dump.kind + ".dmp",
                      dump.bytes);
        }
    }

    Invocation& invocation_;
    NewFile& file_;
    ZipWriter zip_;
    CollectManifest manifest_;
};

ExitCode Collect(Invocation& invocation) {
    const InventoryMemory memory;
    Collected collected{invocation.Given().Text("FILE"), {}, 0, {}, {}};
    if (invocation.DryRun()) {
        invocation.Result() = kCollectFields.Make(collected);
        return invocation.DoneWith("dry run: nothing was read, no file was written");
    }
    MakeNewFile(invocation, [&](NewFile& file) {
        Collector collector(invocation, file);
        collector.Run();
        collected.size = collector.Size();
        collected.members = collector.Manifest().members.size() + 1;
        collected.errors = collector.Manifest().errors;
        collected.leftOut = collector.Manifest().leftOut;
    });
    invocation.Result() = kCollectFields.Make(collected);
    if (!collected.errors.empty()) {
        invocation.Warn("some of it could not be collected; MANIFEST.json in the file tells what");
        return ExitCode::Partial;
    }
    return ExitCode::Done;
}

std::string CollectNotes() {
    return "The file has the documents of the commands that only read adapters, in `documents`; a "
           "report to look at; the library's trace of the collection; and a manifest with the "
           "SHA-256 of each member, and what could not be had. A port that does not answer is left "
           "behind (exit code 11). With --redact serial numbers, world wide names, NVMe names and "
           "the host's name are "
           "masked, each the same in all members; bytes in which names cannot be found are left "
           "out: those in the trace, and dumps.";
}

}  // namespace

CommandRows CollectCommands() {
    static const Command kCommands[] = {
        {.path = "collect",
         .help = "write what support asks for first into one file",
         .arguments = kCollectArguments,
         .run = Collect,
         .example = "collect support.zip --redact",
         .result = ShapeOf<kCollectFields>,
         .notes = CollectNotes},
    };
    return kCommands;
}

}  // namespace vxmgr
