// report: a page to look at.
#include "common/json_document.h"
#include "vxmgr/app/values.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"
#include "vxmgr/support/new_file.h"
#include "vxmgr/support/snapshot.h"

namespace vxmgr {
namespace {

constexpr Argument kReportArguments[] = {
    {.name = "FILE", .help = "the page to write (HTML)", .required = true},
    kSampleIntervalArgument,
    kSampleCountArgument,
    kForceArgument,
};

struct Written {
    std::string file;
    std::optional<uint64_t> size;  // none: a dry run
    size_t documents = 0;
    size_t failed = 0;
};

const Fields<Written> kReportFields = {
    {"file", "File", kText, &Written::file},
    {"size", "Size", kInteger.OrNull(), &Written::size, "bytes; null: a dry run"},
    {"documents", "Documents", kInteger, &Written::documents, "that it was made from"},
    {"failed", "Failed", kInteger, &Written::failed, "commands that could not do all"},
};

ExitCode WriteReport(Invocation& invocation) {
    const InventoryMemory memory;
    const std::optional<Sampling> sampling = GivenSampling(invocation);
    Written result{invocation.Given().Text("FILE"), {}, 0, 0};
    if (invocation.DryRun()) {
        invocation.Result() = kReportFields.Make(result);
        return invocation.DoneWith("dry run: nothing was read, no file was written");
    }
    ShownHostName(invocation);  // the redactor knows it from the first document on
    MakeNewFile(invocation, [&](NewFile& file) {
        const std::string time = TimeNow();
        std::vector<TakenDocument> documents = TakeSnapshot(invocation, {.forReport = true});
        if (sampling) {
            for (TakenDocument& document : TakeSamples(invocation, *sampling)) {
                documents.push_back(std::move(document));
            }
        }
        for (const TakenDocument& document : documents) {
            result.documents += 1;
            result.failed += document.good ? 0 : 1;
        }
        const std::string page = ReportOf(invocation, documents, sampling, time);
        result.size = page.size();
        if (!file.Write({reinterpret_cast<const uint8_t*>(page.data()), page.size()})) {
            file.Fail();
        }
    });
    invocation.Result() = kReportFields.Make(result);
    if (result.failed != 0) {
        invocation.Warn("some of it could not be read; the end of the page tells what");
        return ExitCode::Partial;
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows ReportCommands() {
    static const Command kCommands[] = {
        {.path = "report",
         .help = "write a page about adapters, ports and what hangs on them",
         .arguments = kReportArguments,
         .run = WriteReport,
         .example = "report today.html --interval 2 --count 10",
         .result = ShapeOf<kReportFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
