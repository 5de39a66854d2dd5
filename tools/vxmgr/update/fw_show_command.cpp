// fw show
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_record.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

// What is known of one region with code.
struct CodeRow {
    const Adapter* adapter;
    StoredCode code;
    std::string running;
    CodeState state = StateOf(code, running);
    std::optional<uint64_t> interruptedAt{};

    std::string Serial() const { return adapter->First().Serial(); }
};

Value CodeStateValue(const CodeRow& row) {
    constexpr Tone kTones[] = {Tone::Plain, Tone::Good, Tone::Warning, Tone::Bad, Tone::Plain};
    const auto state = static_cast<size_t>(row.state);
    return Value::Text(kCodeStates[state]).In(kTones[state]);
}

const Fields<CodeRow> kCodeFields = {
    {"adapter", "Adapter", "ADAPTER", kInteger, Of(&CodeRow::adapter, &Adapter::index)},
    {"serial", "Serial", "SERIAL", kSerial.OrNull(), &CodeRow::Serial},
    {"adapter_serial", "", kSerial.OrNull(), &CodeRow::Serial},
    {"region", "Region", "REGION", kInteger,
     [](const CodeRow& row) { return row.code.region.code; }},
    {"name", "Code", "CODE", kText, [](const CodeRow& row) { return row.code.region.Name(); }},
    {"running", "Running", "RUNNING", kText.OrNull(), &CodeRow::running,
     "version that was started from the region; null: none is"},
    {"stored", "Stored", "STORED", kText.OrNull(),
     [](const CodeRow& row) { return row.code.image.version; }},
    {"state", "State", "STATE", Choice(kCodeStates), CodeStateValue},
    {"problem", "Problem", kText.OrNull(),
     [](const CodeRow& row) { return row.code.image.problem; }, "why it is damaged"},
    {"status", "Status", kText.OrNull(),
     [](const CodeRow& row) { return StatusValue(row.code.status); },
     "why the region could not be read"},
    {"interrupted_at", "Interrupted at", kInteger.OrNull(), &CodeRow::interruptedAt,
     "the byte at which an update of the region was interrupted"},
};

const auto kFwShowFields = ListOf("code", "Firmware and boot code", kCodeFields, "No adapters.");

// Whole regions are read at once.
constexpr std::chrono::seconds kRegionTime{60};

HX_STATUS AskStoredCode(PortVisit& visit, std::vector<StoredCode>* stored) {
    visit.query = "the flash cannot be read";
    return ReadStoredCode(
        visit.port, visit.Handle(), [&visit] { visit.task.Answered(kRegionTime); }, stored);
}

struct FoundCode {
    std::vector<CodeRow> rows;
    FailureTally failed;  // adapters and regions that cannot be read
    bool damaged = false;
};

// The running versions alone: the driver gives no access to the flash, or it failed.
void AddUnreadable(Invocation& invocation, const Adapter& adapter,
                   const PortAnswer<std::vector<StoredCode>>& stored, FoundCode& found) {
    for (const uint32_t region : {uint32_t{HX_REGION_FIRMWARE}, uint32_t{HX_REGION_BOOT_CODE}}) {
        const StoredCode none{{.code = region}, stored.status, {}};
        found.rows.push_back({&adapter, none, RunningVersion(adapter.First(), region)});
    }
    if (ExitCodeOf(stored.status) == ExitCode::NotSupported) {
        invocation.Note("adapter " + std::to_string(adapter.index) +
                        ": its driver gives no access to the flash, stored versions are not known");
        return;
    }
    found.failed.Add(invocation.Report(stored.status, stored.query, stored.port->Object()));
}

void AddCode(Invocation& invocation, const Adapter& adapter, const StoredCode& code,
             const std::optional<UpdateRecord>& record, FoundCode& found) {
    static const std::vector<JournalRegion> kNoRegions;
    CodeRow& row = found.rows.emplace_back(
        CodeRow{&adapter, code, RunningVersion(adapter.First(), code.region.code)});
    for (const JournalRegion& region : record ? record->journal.regions : kNoRegions) {
        if (region.code == code.region.code && region.step == RegionStep::Writing) {
            row.interruptedAt = region.reached;
        }
    }
    const std::string object = adapter.First().Object();
    const std::string name = code.region.Name();
    if (row.state == CodeState::Pending) {
        invocation.Add({Severity::Info,
                        name + " " + code.image.version + " is stored and starts next",
                        "see `fw activate`",
                        object,
                        {}});
    } else if (const std::string damage = DamageOf(code, row.running); !damage.empty()) {
        found.damaged = true;
        Complain(invocation, object, damage,
                 "write it again with `flash write` before the adapter is restarted");
    } else if (code.status != HXMGT_SUCCESS) {
        found.failed.Add(invocation.Report(code.status, name + " cannot be read", object));
    }
}

ExitCode FirmwareShow(Invocation& invocation) {
    std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    std::vector<Port*> speakers;
    for (const Adapter* adapter : selected) {
        speakers.push_back(&ports[static_cast<size_t>(&adapter->Speaker() - ports.data())]);
    }
    FoundCode found;
    const auto stored = ForEachPort<std::vector<StoredCode>>(invocation, speakers, AskStoredCode);
    for (size_t i = 0; i < selected.size(); ++i) {
        if (stored[i].status != HXMGT_SUCCESS) {
            AddUnreadable(invocation, *selected[i], stored[i], found);
            continue;
        }
        const auto record = InterruptedUpdate(invocation, selected[i]->First().Serial());
        for (const StoredCode& code : stored[i].answer) {
            AddCode(invocation, *selected[i], code, record, found);
        }
    }
    invocation.Result() = kFwShowFields.Make(found.rows);
    return found.damaged ? ExitCode::Failed : found.failed.Of(selected.size());
}

}  // namespace

CommandRows FwShowCommands() {
    static const Command kCommands[] = {
        {.path = "fw show",
         .help = "which firmware and boot code run, are stored, and start next",
         .run = FirmwareShow,
         .example = "fw show",
         .result = ShapeOf<kFwShowFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
