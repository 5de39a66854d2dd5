// sfp show, sfp dump.
#include "vxmgr/sfp/commands.h"

#include "vxmgr/app/port_fields.h"
#include "vxmgr/sfp/sfp_port.h"

namespace vxmgr {
namespace {

constexpr const char* kPageChoices[] = {kSfpPages[0].name, kSfpPages[1].name, "all"};
constexpr Argument kDumpArguments[] = {
    TextOption("--page", "PAGE", "a0 (identity), a2 (diagnostics) or all (all)", kPageChoices),
};

// The transceiver of a port, and what it measures.
struct ShownModule {
    const Port* port;
    SfpModule module;
    std::optional<SfpReadings> readings{};  // empty: no diagnostics

    std::vector<SfpReadingRow> Rows() const {
        return readings ? ReadingRows(*readings) : std::vector<SfpReadingRow>();
    }
};

Value ModuleTrouble(const ShownModule& shown) {
    const std::string trouble = shown.readings ? TroubleText(*shown.readings) : std::string();
    return shown.readings ? Value::Text(trouble).Shown(trouble.empty() ? "none" : trouble)
                          : Value();
}

// Null without diagnostics.
const Fields<ShownModule>& ModuleFlagFields() {
    const auto flag = [](bool SfpReadings::*field, bool good) {
        return [field, good](const ShownModule& shown) {
            if (!shown.readings) {
                return Value();
            }
            const bool set = (*shown.readings).*field;
            return Value(Value::Flag(set).In(set == good ? Tone::Plain : Tone::Bad));
        };
    };
    constexpr FieldType kKnownFlag = kFlag.OrNull();
    static const Fields<ShownModule> kFields = {
        {"tx_disabled", "Transmitter off", kKnownFlag, flag(&SfpReadings::transmitDisabled, false)},
        {"tx_fault", "Transmitter fault", kKnownFlag, flag(&SfpReadings::transmitFault, false)},
        {"rx_lost", "Signal lost", kKnownFlag, flag(&SfpReadings::signalLost, false)},
        {"ready", "Ready", kKnownFlag, flag(&SfpReadings::ready, true)},
        {"checksum_good", "Good checksum", kKnownFlag, flag(&SfpReadings::checksumHolds, true)},
    };
    return kFields;
}

std::string ModuleTitle(const ShownModule& shown) {
    return "Transceiver of port " + std::to_string(shown.port->index);
}

const Fields<ShownModule> kModuleFields(
    ModuleTitle, {
                     {PortKeys(kPortIndex | kAdapterSerial), &ShownModule::port},
                     {"identity", "Identity", SfpIdentityFields(),
                      [](const ShownModule& shown) { return &shown.module.identity; }, "", kGroup},
                     {"trouble", "Trouble", "TROUBLE", kText.OrNull(), ModuleTrouble,
                      "empty when all is well; null without diagnostics"},
                     {"flags", "State", ModuleFlagFields()},
                     {"readings", "Readings", ReadingFields(), &ShownModule::Rows, "no diagnostics",
                      "", "quantity"},
                 });

using ShownModules = std::vector<ShownModule>;

const auto kSfpShowFields =
    ListOf("transceivers", "Transceivers", kModuleFields, ListLayout::Sections, "no transceivers");

ExitCode SfpShow(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    ShownModules shown;
    const ExitCode exit = ForEachSfpModule(
        invocation, ports,
        [&](const Port& port, Device&, const SfpModule& module, std::string* failedQuery) {
            shown.push_back({&port, module});
            if (module.diagnostics) {
                shown.back().readings = ReadDiagnostics(module.identity, *module.diagnostics);
            }
            *failedQuery = "the diagnostics cannot be read";
            return module.diagnosticsStatus;
        });
    invocation.Result() = kSfpShowFields.Make(shown);
    return exit;
}

// The pages that were asked for; none with --redact.
struct SfpMemory {
    const Port* port;
    std::optional<std::vector<HexRow>> pages[std::size(kSfpPages)]{};
};

const Fields<SfpMemory> kSfpDumpFields = {
    {PortKeys(), &SfpMemory::port},
    {kSfpPages[0].name, "Page a0", HexRowFields(),
     [](const SfpMemory& memory) { return memory.pages[0]; }, "no data"},
    {kSfpPages[1].name, "Page a2", HexRowFields(),
     [](const SfpMemory& memory) { return memory.pages[1]; }, "no data"},
};

ExitCode SfpDump(Invocation& invocation) {
    const std::string wanted = invocation.Given().Text("page", "all");
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult memory(invocation.Result(), kSfpDumpFields, {&session.port});
    for (size_t i = 0; i < std::size(kSfpPages); ++i) {
        const SfpPage& page = kSfpPages[i];
        if (wanted != "all" && wanted != page.name) {
            continue;
        }
        uint8_t bytes[kSfpPageBytes] = {};
        uint16_t deviceStatus = 0;
        const HX_STATUS status = ReadSfp(session.Handle(), page, 0, bytes, &deviceStatus);
        invocation.Require(status,
                           std::string("page ") + page.name + " cannot be read (device status " +
                               std::to_string(deviceStatus) + ")",
                           session.port.Object());
        if (invocation.Names().Enabled()) {
            invocation.Note("with --redact the data is left out");
        } else {
            memory.pages[i] = HexRowsOf(bytes);
        }
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows SfpCommands() {
    static const Command kCommands[] = {
        {.path = "sfp show",
         .help = "show transceivers: identity and measured values",
         .run = SfpShow,
         .example = "sfp show -p scsi:3",
         .result = ShapeOf<kSfpShowFields>},
        {.path = "sfp dump",
         .help = "print the memory of a transceiver",
         .arguments = kDumpArguments,
         .run = SfpDump,
         .example = "sfp dump --page a0 -p scsi:3",
         .result = ShapeOf<kSfpDumpFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
