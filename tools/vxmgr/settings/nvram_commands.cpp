// nvram show, nvram get, nvram verify.
#include "vxmgr/settings/commands.h"

#include "common/status_codes.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/settings/nvram_port.h"
#include "vxmgr/settings/nvram_records.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Tone;
using tools::Value;

constexpr Argument kGetArguments[] = {
    {.name = "NAME",
     .help = "a variable: its number, its name, or the start of exactly one name",
     .required = true},
    {.name = "--bank",
     .valueName = "BANK",
     .help = "in-use or other (in-use)",
     .choices = kBankChoices},
};

Record VariableRow(tools::Invocation& invocation, const NvramVariable& variable, uint32_t value) {
    Record row;
    row.Add("number", "Number", Value::Number(variable.number), "NUMBER");
    row.Add("name", "Name", Value::Text(variable.name), "NAME");
    row.Add("value", "Value", VariableValue(invocation, variable, value), "VALUE");
    row.Add("highest", "Highest", Value::Number(variable.Most()), "HIGHEST");
    row.Add("read_only", "Read-only", Value::Flag(!variable.Settable()), "READ-ONLY");
    row.Add("description", "Description", Value::Text(variable.description), "DESCRIPTION");
    return row;
}

Value NameValue(const std::optional<tools::Wwn>& name) {
    return name ? Value::Name(*name) : Value();
}

Value SoundValue(bool sound) {
    return Value::Flag(sound).Shown(sound ? "good" : "wrong").In(sound ? Tone::Plain : Tone::Bad);
}

// What verifying one port found; empty fields could not be told.
struct Verified {
    HX_STATUS status = HXMGT_SUCCESS;  // of reading the block
    std::optional<NvramKind> kind;
    size_t size = 0;
    std::optional<bool> signature, checksum, byDriver;
    std::optional<bool> otherBank;  // the bank that is not in use holds a whole block
};

Record VerifyRow(const Port& port, const Verified& verified) {
    const auto sound = [](const std::optional<bool>& flag) {
        return flag ? SoundValue(*flag) : Value();
    };
    Record row;
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter", Value::Serial(port.Serial()), "ADAPTER");
    row.Add("kind", "Kind", verified.kind ? Value::Text(NameOf(*verified.kind)) : Value(), "KIND");
    row.Add("size", "Size", verified.size == 0 ? Value() : Value::Number(verified.size, "bytes"),
            "SIZE");
    row.Add("signature_good", "Signature", sound(verified.signature), "SIGNATURE");
    row.Add("checksum_good", "Checksum", sound(verified.checksum), "CHECKSUM");
    row.Add("verified", "Driver says", sound(verified.byDriver), "DRIVER SAYS");
    row.Add("other_bank_good", "Other bank", sound(verified.otherBank), "OTHER BANK");
    row.Add("status", "Status", StatusValue(verified.status));
    return row;
}

Verified Verify(tools::Invocation& invocation, const PortSession& session) {
    const NvramMap map = LearnVariables(invocation, session);
    Verified verified;
    verified.kind = map.kind;
    std::vector<uint8_t> block;
    verified.status = ReadBlock(session, map.kind, &block);
    if (verified.status != HXMGT_SUCCESS) {
        return verified;
    }
    verified.size = block.size();
    verified.signature = HasSignature(block);
    verified.checksum = ChecksumHolds(map.kind, block);
    verified.byDriver = HXVerifyHbaNVRam(session.Handle(), 0) == HXMGT_SUCCESS;
    if (const auto bank = FindOtherBank(invocation, session, Settings::Nvram)) {
        std::vector<uint8_t> other;
        verified.otherBank =
            ReadBank(session, *bank, &other) == HXMGT_SUCCESS && IsSound(map.kind, other);
    }
    return verified;
}

ExitCode NvramShow(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    const bool sound = IsSound(nvram.map.kind, nvram.block);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("serial", "Adapter", Value::Serial(session.port.Serial()));
    result.Add("kind", "Kind", Value::Text(NameOf(nvram.map.kind)));
    result.Add("size", "Size", Value::Number(nvram.block.size(), "bytes"));
    result.Add("bank", "Bank", BankValue(nvram));
    result.Add("sound", "Block", SoundValue(sound));
    result.Add("port_wwn", "Port name",
               NameValue(NameInBlock(nvram.map, nvram.block, "Port Name Byte")));
    result.Add("node_wwn", "Node name",
               NameValue(NameInBlock(nvram.map, nvram.block, "Node Name Byte")));
    std::vector<Record> rows;
    for (const NvramVariable& variable : nvram.map.variables) {
        if (variable.field) {
            rows.push_back(VariableRow(invocation, variable, ValueOf(nvram.block, variable)));
        }
    }
    result.AddList("variables", "Variables", ListLayout::Table, VariableRow(invocation, {}, 0),
                   "no variables", std::move(rows));
    if (!sound) {
        invocation.Warn("signature or checksum of the block are wrong",
                        "`nvram verify` tells which; `nvram import` writes an export again");
    }
    return ExitCode::Done;
}

ExitCode NvramGet(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    std::string error;
    const NvramVariable* variable =
        FindVariable(nvram.map, invocation.Given().Text("NAME"), &error);
    if (variable == nullptr) {
        invocation.Fail(ExitCode::Usage, error, "`nvram show` lists the variables");
    }
    if (!variable->field) {
        invocation.Fail(ExitCode::NotSupported, "this chip has no variable " + variable->name);
    }
    Record& result = invocation.Result();
    result = VariableRow(invocation, *variable, ValueOf(nvram.block, *variable));
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("bank", "Bank", BankValue(nvram));
    return ExitCode::Done;
}

ExitCode NvramVerify(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    std::vector<Record> rows;
    bool bad = false;
    const AskPort<Verified> verify = [&invocation](PortVisit& visit, Verified* verified) {
        if (visit.port.failure != HXMGT_SUCCESS) {
            visit.query = visit.port.failedQuery;
            return visit.port.failure;
        }
        visit.query = "the NVRAM cannot be read";
        const PortSession session{visit.port, std::move(visit.device), {}};
        *verified = Verify(invocation, session);
        return verified->status;
    };
    for (auto& one : ForEachPort<Verified>(invocation, selected, verify)) {
        Port& port = *one.port;
        Verified& verified = one.answer;
        verified.status = one.status;
        port.failure = one.status;
        port.failedQuery = one.query;
        bad = bad || !verified.signature.value_or(true) || !verified.checksum.value_or(true) ||
              !verified.byDriver.value_or(true);
        rows.push_back(VerifyRow(port, verified));
    }
    invocation.Result().AddList("ports", "Ports", ListLayout::Table, VerifyRow({}, {}), "no ports",
                                std::move(rows));
    const ExitCode exit = ReportFailures(invocation, selected);
    if (!bad) {
        return exit;
    }
    invocation.Add({tools::Severity::Error,
                    "the NVRAM of a port is damaged",
                    "do not reset the port before an export is imported with `nvram import`",
                    {},
                    HXMGT_NVRAM_CHECKSUM_INVALID});
    return ExitCode::Failed;
}

}  // namespace

tools::CommandRows NvramCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "nvram show",
            .risk = tools::Risk::Reads,
            .help = "show the settings of a port",
            .schema = "nvram.show",
            .arguments = BankArguments(),
            .run = NvramShow,
            .example = "nvram show -p scsi:3",
        },
        {
            .path = "nvram get",
            .risk = tools::Risk::Reads,
            .help = "print one setting",
            .schema = "nvram.get",
            .arguments = kGetArguments,
            .run = NvramGet,
            .example = "nvram get execution_throttle -p scsi:3",
        },
        {
            .path = "nvram verify",
            .risk = tools::Risk::Reads,
            .help = "are the settings whole?",
            .schema = "nvram.verify",
            .run = NvramVerify,
            .example = "nvram verify",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
