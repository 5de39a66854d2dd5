// nvram show, nvram get, nvram verify.
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/settings/nvram_port.h"
#include "vxmgr/settings/nvram_records.h"

namespace vxmgr {
namespace {

constexpr Argument kGetArguments[] = {
    {.name = "NAME",
     .help = "a variable: its number, its name, or the start of exactly one name",
     .required = true},
    kBankArgument,
};

Value SoundValue(bool sound) {
    return Value::Flag(sound).Shown(sound ? "good" : "wrong").In(sound ? Tone::Plain : Tone::Bad);
}

const Fields<PortNvram> kNvramShowFields = {
    {"port", "Port", kInteger, [](const PortNvram& nvram) { return nvram.ItsPort().index; }},
    {"scsi_port", "", kInteger.OrNull(),
     [](const PortNvram& nvram) { return nvram.ItsPort().scsiPort; }},
    {"serial", "Adapter", kSerial.OrNull(),
     [](const PortNvram& nvram) { return nvram.ItsPort().Serial(); }},
    {"adapter_serial", "", kSerial.OrNull(),
     [](const PortNvram& nvram) { return nvram.ItsPort().Serial(); }},
    {"kind", "Kind", Choice(kNvramKinds),
     [](const PortNvram& nvram) { return NameOf(nvram.map.kind); }},
    {"size", "Size", Integer("bytes"), [](const PortNvram& nvram) { return nvram.bytes.size(); }},
    {"bank", "Bank", kBank, &PortNvram::Bank, "null on chips with one bank"},
    {"sound", "Block", kFlag, [](const PortNvram& nvram) { return SoundValue(nvram.IsWhole()); },
     "signature and checksum hold"},
    {"port_wwn", "Port name", kWwn.OrNull(),
     [](const PortNvram& nvram) { return NameInBlock(nvram.map, nvram.bytes, "Port Name Byte"); },
     "the name in the block"},
    {"node_wwn", "Node name", kWwn.OrNull(),
     [](const PortNvram& nvram) { return NameInBlock(nvram.map, nvram.bytes, "Node Name Byte"); }},
    {"variables", "Variables", kVariableFields,
     [](const PortNvram& nvram) {
         std::vector<VariableRow> rows;
         for (const NvramVariable& variable : nvram.map.variables) {
             if (variable.field) {
                 rows.push_back({&variable, ValueOf(nvram.bytes, variable)});
             }
         }
         return rows;
     },
     "no variables"},
};

struct ShownVariable {
    VariableRow row;
    const PortNvram* nvram;
};

const Fields<ShownVariable> kNvramGetFields = {
    {kVariableFields, &ShownVariable::row},
    {kSettingsReadFields, &ShownVariable::nvram},
};

// What verifying one port found; empty fields could not be told.
struct Verified {
    HX_STATUS status = HXMGT_SUCCESS;  // of reading the block
    const Port* port = nullptr;
    std::optional<NvramKind> kind{};
    size_t size = 0;
    std::optional<bool> signature{}, checksum{}, byDriver{};
    std::optional<bool> otherBank{};  // the bank that is not in use holds a whole block

    std::string Serial() const { return port->Serial(); }
    bool IsBad() const {
        return !signature.value_or(true) || !checksum.value_or(true) || !byDriver.value_or(true);
    }
};

const Fields<Verified> kVerifiedFields = {
    {PortKeys(), &Verified::port},
    {"serial", "Adapter", "ADAPTER", kSerial.OrNull(), &Verified::Serial},
    {"kind", "Kind", "KIND", Choice(kNvramKinds).OrNull(),
     [](const Verified& one) { return one.kind ? NameOf(*one.kind) : nullptr; }},
    {"size", "Size", "SIZE", kInteger.OrNull(),
     [](const Verified& one) {
         return one.size == 0 ? Value() : Value::Number(one.size, "bytes");
     }},
    {"signature_good", "Signature", "SIGNATURE", kFlag.OrNull(),
     Of(&Verified::signature, SoundValue)},
    {"checksum_good", "Checksum", "CHECKSUM", kFlag.OrNull(), Of(&Verified::checksum, SoundValue)},
    {"verified", "Driver says", "DRIVER SAYS", kFlag.OrNull(), Of(&Verified::byDriver, SoundValue),
     "what the driver says"},
    {"other_bank_good", "Other bank", "OTHER BANK", kFlag.OrNull(),
     Of(&Verified::otherBank, SoundValue), "null on chips with one bank"},
    {"status", "Status", kText.OrNull(),
     [](const Verified& one) { return StatusValue(one.status); }},
};
const auto kNvramVerifyFields = ListOf("ports", "Ports", kVerifiedFields, "no ports");

Verified Verify(Invocation& invocation, const PortSession& session) {
    const NvramMap map = LearnVariables(invocation, session);
    Verified verified;
    verified.kind = map.kind;
    std::vector<uint8_t> block;
    verified.status = ReadBlock(session.Handle(), map.kind, &block);
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

ExitCode NvramShow(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram nvram = ReadNvram(invocation, session, WantsOtherBank(invocation));
    invocation.Result() = kNvramShowFields.Make(nvram);
    if (!nvram.IsWhole()) {
        invocation.Warn("signature or checksum of the block are wrong",
                        "`nvram verify` tells which; `nvram import` writes an export again");
    }
    return ExitCode::Done;
}

ExitCode NvramGet(Invocation& invocation) {
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
    invocation.Result() =
        kNvramGetFields.Make({{variable, ValueOf(nvram.bytes, *variable)}, &nvram});
    return ExitCode::Done;
}

ExitCode NvramVerify(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    std::vector<Verified> verifiedPorts;
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
        one.answer.port = one.port;
        one.answer.status = one.port->failure = one.status;
        one.port->failedQuery = one.query;
        bad = bad || one.answer.IsBad();
        verifiedPorts.push_back(one.answer);
    }
    invocation.Result() = kNvramVerifyFields.Make(verifiedPorts);
    const ExitCode exit = ReportFailures(invocation, selected);
    if (!bad) {
        return exit;
    }
    invocation.Add({Severity::Error,
                    "the NVRAM of a port is damaged",
                    "do not reset the port before an export is imported with `nvram import`",
                    {},
                    HXMGT_NVRAM_CHECKSUM_INVALID});
    return ExitCode::Failed;
}

}  // namespace

CommandRows NvramCommands() {
    static const Command kCommands[] = {
        {.path = "nvram show",
         .help = "show the settings of a port",
         .arguments = {&kBankArgument, 1},
         .run = NvramShow,
         .example = "nvram show -p scsi:3",
         .result = ShapeOf<kNvramShowFields>},
        {.path = "nvram get",
         .help = "print one setting",
         .arguments = kGetArguments,
         .run = NvramGet,
         .example = "nvram get execution_throttle -p scsi:3",
         .result = ShapeOf<kNvramGetFields>},
        {.path = "nvram verify",
         .help = "are the settings whole?",
         .run = NvramVerify,
         .example = "nvram verify",
         .result = ShapeOf<kNvramVerifyFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
