// sfp show, sfp dump.
#include "vxmgr/sfp/commands.h"

#include "vxmgr/app/values.h"
#include "vxmgr/sfp/sfp_port.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Tone;
using tools::Value;

constexpr const char* kPageChoices[] = {kSfpPages[0].name, kSfpPages[1].name, "all"};
constexpr Argument kDumpArguments[] = {
    {.name = "--page",
     .valueName = "PAGE",
     .help = "a0 (identity), a2 (diagnostics) or all (all)",
     .choices = kPageChoices},
};

// Null without diagnostics.
Record StatusRecord(const std::optional<SfpReadings>& readings) {
    Record record;
    const auto add = [&](const char* key, const char* label, bool SfpReadings::*flag, bool good) {
        const bool set = readings && (*readings).*flag;
        record.Add(key, label,
                   readings ? Value::Flag(set).In(set == good ? Tone::Plain : Tone::Bad) : Value());
    };
    add("tx_disabled", "Transmitter off", &SfpReadings::transmitDisabled, false);
    add("tx_fault", "Transmitter fault", &SfpReadings::transmitFault, false);
    add("rx_lost", "Signal lost", &SfpReadings::signalLost, false);
    add("ready", "Ready", &SfpReadings::ready, true);
    add("checksum_good", "Good checksum", &SfpReadings::checksumHolds, true);
    return record;
}

Record ModuleRecord(const Port& port, const SfpModule& module) {
    Record record;
    record.title = "Transceiver of port " + std::to_string(port.index);
    record.Add("port", "Port", Value::Number(port.index), "PORT");
    record.Add("adapter_serial", "Adapter", Value::Serial(port.Serial()), "ADAPTER");
    const Record identity = SfpIdentityRecord(module.identity);
    record.AddGroup("identity", "Identity", identity);
    std::vector<Record> rows;
    std::optional<SfpReadings> readings;
    std::string trouble;
    if (module.diagnostics) {
        readings = ReadDiagnostics(module.identity, *module.diagnostics);
        rows = ReadingRows(*readings);
        trouble = TroubleText(*readings);
    }
    record.Add("trouble", "Trouble",
               readings ? Value::Text(trouble).Shown(trouble.empty() ? "none" : trouble) : Value(),
               "TROUBLE");
    record.AddGroup("flags", "State", StatusRecord(readings));
    tools::Field& list =
        record.AddList("readings", "Readings", ListLayout::Table,
                       ReadingRow(SfpQuantity::Temperature, {}), "no diagnostics", std::move(rows));
    list.spreadBy = "quantity";
    list.prototype = ReadingRows({});
    return record;
}

ExitCode SfpShow(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<Record> rows;
    const ExitCode exit = ForEachSfpModule(
        invocation, ports,
        [&](const Port& port, Device&, const SfpModule& module, std::string* failedQuery) {
            rows.push_back(ModuleRecord(port, module));
            *failedQuery = "the diagnostics cannot be read";
            return module.diagnosticsStatus;
        });
    invocation.Result().AddList("transceivers", "Transceivers", ListLayout::Sections,
                                ModuleRecord({}, {}), "no transceivers", std::move(rows));
    return exit;
}

ExitCode SfpDump(tools::Invocation& invocation) {
    const std::string wanted = invocation.Given().Text("page", "all");
    const PortSession session = OpenSelectedPort(invocation);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    for (const SfpPage& page : kSfpPages) {
        if (wanted != "all" && wanted != page.name) {
            continue;
        }
        uint8_t bytes[kSfpPageBytes] = {};
        uint16_t deviceStatus = 0;
        const HX_STATUS status = ReadSfp(session.Handle(), page, 0, bytes, &deviceStatus);
        if (status != HXMGT_SUCCESS) {
            invocation.Fail(status,
                            std::string("page ") + page.name + " cannot be read (device status " +
                                std::to_string(deviceStatus) + ")",
                            session.port.Object());
        }
        if (invocation.Names().Enabled()) {
            invocation.Note("with --redact the data is left out");
        } else {
            AddHexRows(result, page.name, std::string("Page ") + page.name, bytes);
        }
    }
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows SfpCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "sfp show",
            .risk = tools::Risk::Reads,
            .help = "show transceivers: identity and measured values",
            .schema = "sfp.show",
            .run = SfpShow,
            .example = "sfp show -p scsi:3",
        },
        {
            .path = "sfp dump",
            .risk = tools::Risk::Reads,
            .help = "print the memory of a transceiver",
            .schema = "sfp.dump",
            .arguments = kDumpArguments,
            .run = SfpDump,
            .example = "sfp dump --page a0 -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
