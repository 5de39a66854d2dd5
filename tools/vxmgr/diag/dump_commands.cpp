#include "vxmgr/commands.h"

#include "common/console.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/diag/dump_kinds.h"

namespace vxmgr {
namespace {

constexpr Argument kSaveArguments[] = {
    {.name = "KIND",
     .help = "which dump: fc, mpi, mctp or mini",
     .required = true,
     .choices = kDumpNames},
    {.name = "FILE", .help = "the file to write", .required = true},
    FlagOption("--text", "the firmware's registers and memory as text (fc alone)"),
};

struct DumpRow : DumpSize {
    const Port* port = nullptr;

    std::string Serial() const { return port->Serial(); }
};

Value DumpStateValue(const DumpRow& row) {
    if (row.IsPresent()) {
        return Value::Text("present").In(Tone::Warning);
    }
    if (row.status == HXMGT_NO_FIRMWARE_DUMP || row.status == HXMGT_SUCCESS) {
        return Value::Text("none");
    }
    return Value::Text(HasNoDump(row.status) ? "not supported" : "failed");
}

constexpr const char* kDumpStates[] = {"present", "none", "not supported", "failed"};

const Fields<DumpRow> kDumpFields = {
    {PortKeys(), &DumpRow::port},
    {"serial", "Adapter", "ADAPTER", kSerial.OrNull(), &DumpRow::Serial},
    {"kind", "Kind", "KIND", Choice(kDumpNames), [](const DumpRow& row) { return row.kind->name; }},
    {"what", "Of", "OF", kText, [](const DumpRow& row) { return row.kind->what; }},
    {"state", "State", "STATE", Choice(kDumpStates), DumpStateValue},
    {"size", "Size", "SIZE", kInteger.OrNull(),
     [](const DumpRow& row) { return row.IsPresent() ? SizeValue(row.bytes) : Value(); }},
    {"status", "Status", kText.OrNull(),
     [](const DumpRow& row) { return HasNoDump(row.status) ? Value() : StatusValue(row.status); }},
};
const auto kDumpListFields = ListOf("dumps", "Dumps", kDumpFields, "no ports");

struct SavedDump {
    const Port* port;
    const DumpKind* kind;
    std::string file;
    uint64_t size;
};

const Fields<SavedDump> kSavedDumpFields = {
    {PortKeys(), &SavedDump::port},
    {"kind", "Kind", kText, [](const SavedDump& saved) { return saved.kind->name; }},
    {"file", "File", kText, &SavedDump::file},
    {"size", "Size", kInteger.OrNull(), SizeOf<&SavedDump::size>},
};

struct DumpTaken {
    const Port* port;
    std::optional<bool> taken;
};

const Fields<DumpTaken> kDumpTakenFields = {
    {PortKeys(), &DumpTaken::port},
    {"taken", "Dump taken", kFlag.OrAbsent(), &DumpTaken::taken},
};

// How long the text became.
uint64_t SaveText(Invocation& invocation, const PortSession& session, const std::string& path) {
    uint64_t size = 0;
    ReplaceFile(invocation, path, [&](const std::string& temporary) {
        invocation.Progress("fetching the firmware dump");
        const std::string name = console::ToSystemCodePage(temporary);
        const HX_STATUS status = HXGetFcDump(session.Handle(), 0, name.c_str());
        if (status == HXMGT_DATA_UNDERRUN) {
            invocation.Warn("the dump ends early: the text holds what there is of it");
        } else {
            invocation.Require(status, "the dump cannot be saved as text", session.port.Object());
        }
        size = FileSize(temporary);
    });
    return size;
}

uint64_t SaveBytes(Invocation& invocation, const PortSession& session, const DumpKind& kind,
                   const std::string& path) {
    const std::string name = std::string("the ") + kind.name + " dump";
    uint32_t size = 0;
    HX_STATUS status = kind.size(session.Handle(), &size);
    if (status == HXMGT_SUCCESS && size == 0) {
        status = HXMGT_NO_FIRMWARE_DUMP;
    }
    invocation.Require(status, name, session.port.Object());
    invocation.CheckStop();
    invocation.Progress("fetching " + name + ", " + SizeText(size));
    std::vector<uint8_t> bytes;
    if (status = kind.fetch(session.Handle(), size, &bytes); status != HXMGT_SUCCESS) {
        invocation.Fail(status, name, session.port.Object());
    }
    SaveFile(invocation, path, bytes);
    return bytes.size();
}

ExitCode DumpTake(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<DumpTaken> result(invocation.Result(), kDumpTakenFields, {&session.port, {}});
    if (invocation.DryRun()) {
        result.taken = false;
        return invocation.DoneWith("dry run: a firmware dump would be taken");
    }
    invocation.Confirm(QuestionAbout(
        session, "Take a firmware dump.",
        "The firmware stops and restarts: I/O through this adapter halts meanwhile. An older dump "
        "is replaced."));
    const HX_STATUS status = HXForceFwDump(session.Handle());
    result.taken = status == HXMGT_SUCCESS;
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "the dump was not taken", session.port.Object());
    }
    invocation.Changed();
    return invocation.DoneWith("the dump was taken", "fetch it with `dump save fc FILE`");
}

ExitCode DumpSave(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const DumpKind& kind = DumpKindOf(invocation.Given().Text("KIND"));
    const bool asText = invocation.Given().Has("text");
    if (asText && &kind != &DumpKinds().front()) {
        invocation.Fail(ExitCode::Usage, std::string("the ") + kind.name + " dump has no text form",
                        "only fc has one");
    }
    const PortSession session = OpenSelectedPort(invocation);
    const uint64_t size =
        asText ? SaveText(invocation, session, path) : SaveBytes(invocation, session, kind, path);
    invocation.Result() = kSavedDumpFields.Make({&session.port, &kind, path, size});
    return ExitCode::Done;
}

ExitCode DumpList(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> shown = SelectPorts(invocation, ports);
    std::vector<DumpRow> rows;
    for (const auto& one : ForEachPort<std::vector<DumpSize>>(invocation, shown, AskDumpSizes)) {
        Port& port = *one.port;
        if (one.status != HXMGT_SUCCESS && port.failure == HXMGT_SUCCESS) {
            port.failure = one.status;
            port.failedQuery = one.query;
        }
        for (const DumpSize& size : one.answer) {
            rows.push_back({size, &port});
        }
    }
    invocation.Result() = kDumpListFields.Make(rows);
    return ReportFailures(invocation, shown);
}

}  // namespace

CommandRows DumpCommands() {
    static const Command kCommands[] = {
        {.path = "dump list",
         .help = "which dumps there are",
         .run = DumpList,
         .example = "dump list -p scsi:3",
         .result = ShapeOf<kDumpListFields>},
        {.path = "dump save",
         .help = "fetch a dump into a file",
         .arguments = kSaveArguments,
         .run = DumpSave,
         .example = "dump save fc firmware.dmp -p scsi:3",
         .result = ShapeOf<kSavedDumpFields>},
        {.path = "dump take",
         .risk = Risk::InterruptsIo,
         .help = "have the firmware make a dump now",
         .run = DumpTake,
         .example = "dump take -p scsi:3",
         .result = ShapeOf<kDumpTakenFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
