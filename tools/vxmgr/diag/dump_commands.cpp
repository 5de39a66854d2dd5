#include "vxmgr/diag/commands.h"

#include "common/console.h"
#include "common/status_codes.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/diag/dump_kinds.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr Argument kSaveArguments[] = {
    {.name = "KIND",
     .help = "which dump: fc, mpi, mctp or mini",
     .required = true,
     .choices = kDumpNames},
    {.name = "FILE", .help = "the file to write", .required = true},
    {"--text", ArgumentKind::Flag, "", "the firmware's registers and memory as text (fc alone)"},
};

// A dump that is not there, or that the chip does not make, is no failure of a list.
bool HasNone(HX_STATUS status) {
    return status == HXMGT_NO_FIRMWARE_DUMP || tools::ExitCodeOf(status) == ExitCode::NotSupported;
}

const char* StateOf(HX_STATUS status, uint32_t size) {
    if (status == HXMGT_NO_FIRMWARE_DUMP || (status == HXMGT_SUCCESS && size == 0)) {
        return "none";
    }
    if (status == HXMGT_SUCCESS) {
        return "present";
    }
    return HasNone(status) ? "not supported" : "failed";
}

Value SizeValue(uint64_t size) {
    return Value::Number(size, "bytes").Shown(SizeText(size));
}

struct DumpSize {
    const DumpKind* kind;
    HX_STATUS status;
    uint32_t bytes;
};

// The first failure among the sizes; they all are asked for.
HX_STATUS AskSizes(PortVisit& visit, std::vector<DumpSize>* sizes) {
    HX_STATUS failure = HXMGT_SUCCESS;
    for (const DumpKind& kind : DumpKinds()) {
        sizes->push_back({&kind, HXMGT_SUCCESS, 0});
        DumpSize& size = sizes->back();
        size.status = kind.size(visit.Handle(), &size.bytes);
        if (size.status != HXMGT_SUCCESS && !HasNone(size.status) && failure == HXMGT_SUCCESS) {
            failure = size.status;
            visit.query = std::string("size of the ") + kind.name + " dump";
        }
        visit.task.Answered();
    }
    return failure;
}

Record DumpRow(const Port& port, const DumpKind& kind, HX_STATUS status, uint32_t size) {
    const bool present = status == HXMGT_SUCCESS && size != 0;
    Record row;
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter", Value::Serial(port.Serial()), "ADAPTER");
    row.Add("kind", "Kind", Value::Text(kind.name), "KIND");
    row.Add("what", "Of", Value::Text(kind.what), "OF");
    row.Add(
        "state", "State",
        Value::Text(StateOf(status, size)).In(present ? tools::Tone::Warning : tools::Tone::Plain),
        "STATE");
    row.Add("size", "Size", present ? SizeValue(size) : Value(), "SIZE");
    row.Add("status", "Status", HasNone(status) ? Value() : StatusValue(status));
    return row;
}

void AddFile(Record& result, const PortSession& session, const std::string& kind,
             const std::string& path, uint64_t size) {
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("kind", "Kind", Value::Text(kind));
    result.Add("file", "File", Value::Text(path));
    result.Add("size", "Size", SizeValue(size));
}

void SaveText(tools::Invocation& invocation, const PortSession& session, const std::string& path) {
    uint64_t size = 0;
    ReplaceFile(invocation, path, [&](const std::string& temporary) {
        invocation.Progress("fetching the firmware dump");
        const std::string name = tools::console::ToSystemCodePage(temporary);
        const HX_STATUS status = HXGetFcDump(session.Handle(), 0, name.c_str());
        if (status == HXMGT_DATA_UNDERRUN) {
            invocation.Warn("the dump ends early: the text holds what there is of it");
        } else if (status != HXMGT_SUCCESS) {
            invocation.Fail(status, "the dump cannot be saved as text", session.port.Object());
        }
        size = FileSize(temporary);
    });
    AddFile(invocation.Result(), session, "fc", path, size);
}

void SaveBytes(tools::Invocation& invocation, const PortSession& session, const DumpKind& kind,
               const std::string& path) {
    const std::string name = std::string("the ") + kind.name + " dump";
    uint32_t size = 0;
    HX_STATUS status = kind.size(session.Handle(), &size);
    if (status == HXMGT_SUCCESS && size == 0) {
        status = HXMGT_NO_FIRMWARE_DUMP;
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, name, session.port.Object());
    }
    invocation.CheckStop();
    invocation.Progress("fetching " + name + ", " + SizeText(size));
    std::vector<uint8_t> bytes;
    if (status = kind.fetch(session.Handle(), size, &bytes); status != HXMGT_SUCCESS) {
        invocation.Fail(status, name, session.port.Object());
    }
    SaveFile(invocation, path, bytes);
    AddFile(invocation.Result(), session, kind.name, path, bytes.size());
}

ExitCode DumpTake(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    if (invocation.DryRun()) {
        result.Add("taken", "Dump taken", Value::Flag(false));
        invocation.Note("dry run: a firmware dump would be taken");
        return ExitCode::Done;
    }
    invocation.Confirm(QuestionAbout(
        session, "Take a firmware dump.",
        "The firmware stops and restarts: I/O through this adapter halts meanwhile. An older dump "
        "is replaced."));
    const HX_STATUS status = HXForceFwDump(session.Handle());
    result.Add("taken", "Dump taken", Value::Flag(status == HXMGT_SUCCESS));
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "the dump was not taken", session.port.Object());
    }
    invocation.Changed();
    invocation.Note("the dump was taken", "fetch it with `dump save fc FILE`");
    return ExitCode::Done;
}

ExitCode DumpSave(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const DumpKind& kind = DumpKindOf(invocation.Given().Text("KIND"));
    const bool asText = invocation.Given().Has("text");
    if (asText && &kind != &DumpKinds().front()) {
        invocation.Fail(ExitCode::Usage, std::string("the ") + kind.name + " dump has no text form",
                        "only fc has one");
    }
    const PortSession session = OpenSelectedPort(invocation);
    if (asText) {
        SaveText(invocation, session, path);
    } else {
        SaveBytes(invocation, session, kind, path);
    }
    return ExitCode::Done;
}

ExitCode DumpList(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> shown = SelectPorts(invocation, ports);
    std::vector<Record> rows;
    for (const auto& one : ForEachPort<std::vector<DumpSize>>(invocation, shown, AskSizes)) {
        Port& port = *one.port;
        if (one.status != HXMGT_SUCCESS && port.failure == HXMGT_SUCCESS) {
            port.failure = one.status;
            port.failedQuery = one.query;
        }
        for (const DumpSize& size : one.answer) {
            rows.push_back(DumpRow(port, *size.kind, size.status, size.bytes));
        }
    }
    invocation.Result().AddList("dumps", "Dumps", tools::ListLayout::Table,
                                DumpRow({}, DumpKinds().front(), HXMGT_SUCCESS, 0), "no ports",
                                std::move(rows));
    return ReportFailures(invocation, shown);
}

}  // namespace

tools::CommandRows DumpCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "dump list",
            .risk = tools::Risk::Reads,
            .help = "which dumps there are",
            .schema = "dump.list",
            .run = DumpList,
            .example = "dump list -p scsi:3",
        },
        {
            .path = "dump save",
            .risk = tools::Risk::Reads,
            .help = "fetch a dump into a file",
            .schema = "dump.save",
            .arguments = kSaveArguments,
            .run = DumpSave,
            .example = "dump save fc firmware.dmp -p scsi:3",
        },
        {
            .path = "dump take",
            .risk = tools::Risk::InterruptsIo,
            .help = "have the firmware make a dump now",
            .schema = "dump.take",
            .run = DumpTake,
            .example = "dump take -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
