// sfp show, sfp dump.
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/commands.h"
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
template <auto field, bool good>
constexpr auto kModuleFlag = Of(&ShownModule::readings, [](const SfpReadings& readings) {
    const bool set = readings.*field;
    return Value(Value::Flag(set).In(set == good ? Tone::Plain : Tone::Bad));
});
constexpr FieldType kKnownFlag = kFlag.OrNull();
const Fields<ShownModule> kModuleFlagFields = {
    {"tx_disabled", "Transmitter off", kKnownFlag,
     kModuleFlag<&SfpReadings::transmitDisabled, false>},
    {"tx_fault", "Transmitter fault", kKnownFlag, kModuleFlag<&SfpReadings::transmitFault, false>},
    {"rx_lost", "Signal lost", kKnownFlag, kModuleFlag<&SfpReadings::signalLost, false>},
    {"ready", "Ready", kKnownFlag, kModuleFlag<&SfpReadings::ready, true>},
    {"checksum_good", "Good checksum", kKnownFlag, kModuleFlag<&SfpReadings::checksumHolds, true>},
};

std::string ModuleTitle(const ShownModule& shown) {
    return "Transceiver of port " + std::to_string(shown.port->index);
}

const Fields<ShownModule> kModuleFields(
    ModuleTitle, {
                     {PortKeys(kPortIndex | kAdapterSerial), &ShownModule::port},
                     {"identity", "Identity", kSfpIdentityFields,
                      [](const ShownModule& shown) { return &shown.module.identity; }, "", kGroup},
                     {"trouble", "Trouble", "TROUBLE", kText.OrNull(), ModuleTrouble,
                      "empty when all is well; null without diagnostics"},
                     {"flags", "State", kModuleFlagFields},
                     {"readings", "Readings", kReadingFields, &ShownModule::Rows, "no diagnostics",
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
    {kSfpPages[0].name, "Page a0", kHexRowFields,
     [](const SfpMemory& memory) { return memory.pages[0]; }, "no data"},
    {kSfpPages[1].name, "Page a2", kHexRowFields,
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
