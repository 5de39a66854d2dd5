// fw show
#include "common/status_codes.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/flash_image_check.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/commands.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Tone;
using tools::Value;

struct StateTone {
    CodeState state;
    Tone tone;
};
constexpr StateTone kTones[] = {
    {CodeState::Running, Tone::Good},
    {CodeState::Pending, Tone::Warning},
    {CodeState::Damaged, Tone::Bad},
};

Value StateValue(CodeState state) {
    for (const StateTone& row : kTones) {
        if (row.state == state) {
            return Value::Text(StateName(state)).In(row.tone);
        }
    }
    return Value::Text(StateName(state));
}

Record CodeRow(const Adapter& adapter, uint32_t region, const std::string& running,
               const StoredCode& code, CodeState state) {
    Record row;
    row.Add("adapter", "Adapter", Value::Number(adapter.index), "ADAPTER");
    row.Add("serial", "Serial",
            adapter.ports.empty() ? Value() : Value::Serial(adapter.First().Serial()), "SERIAL");
    row.Add("region", "Region", Value::Number(region), "REGION");
    row.Add("name", "Code", Value::Text(RegionName(region)), "CODE");
    row.Add("running", "Running", Value::TextOrNull(running), "RUNNING");
    row.Add("stored", "Stored", Value::TextOrNull(code.image.version), "STORED");
    row.Add("state", "State", StateValue(state), "STATE");
    row.Add("problem", "Problem", Value::TextOrNull(code.image.problem));
    row.Add("status", "Status", StatusValue(code.status));
    return row;
}

// Whole regions are read at once.
constexpr std::chrono::seconds kRegionTime{60};

HX_STATUS AskStoredCode(PortVisit& visit, std::vector<StoredCode>* stored) {
    visit.query = "the flash cannot be read";
    FlashLayout layout;
    const HX_STATUS status = QueryFlashLayout(visit.Handle(), &layout);
    if (status == HXMGT_SUCCESS) {
        *stored =
            ReadStoredCode(visit.Handle(), layout, [&visit] { visit.task.Answered(kRegionTime); });
    }
    return status;
}

class Shower {
  public:
    explicit Shower(tools::Invocation& invocation) : invocation_(invocation) {}

    void Show(const Adapter& adapter, const PortAnswer<std::vector<StoredCode>>& stored) {
        if (stored.status != HXMGT_SUCCESS) {
            AddUnreadable(adapter, stored);
            return;
        }
        for (const StoredCode& code : stored.answer) {
            const std::string running = RunningVersion(adapter.First(), code.region.code);
            const CodeState state = StateOf(code, running);
            rows_.push_back(CodeRow(adapter, code.region.code, running, code, state));
            Report(adapter, code, state, DamageOf(code, running));
        }
    }

    ExitCode Finish(size_t adapters) {
        invocation_.Result().AddList("code", "Firmware and boot code", tools::ListLayout::Table,
                                     CodeRow({}, 0, {}, {}, CodeState::Unknown), "No adapters.",
                                     std::move(rows_));
        if (damaged_) {
            return ExitCode::Failed;
        }
        return failures_ != 0 && failures_ < adapters ? ExitCode::Partial : first_;
    }

  private:
    // The running versions alone: the driver gives no access to the flash, or it failed.
    void AddUnreadable(const Adapter& adapter, const PortAnswer<std::vector<StoredCode>>& stored) {
        const HX_STATUS status = stored.status;
        const StoredCode none{{}, status, {}};
        for (const uint32_t region :
             {uint32_t{HX_REGION_FIRMWARE}, uint32_t{HX_REGION_BOOT_CODE}}) {
            rows_.push_back(CodeRow(adapter, region, RunningVersion(adapter.First(), region), none,
                                    CodeState::Unknown));
        }
        if (tools::ExitCodeOf(status) == ExitCode::NotSupported) {
            invocation_.Note("adapter " + std::to_string(adapter.index) +
                             ": its driver gives no access to the flash, stored versions are not "
                             "known");
            return;
        }
        const ExitCode exit = invocation_.Report(status, stored.query, stored.port->Object());
        first_ = failures_++ == 0 ? exit : first_;
    }

    void Report(const Adapter& adapter, const StoredCode& code, CodeState state,
                const std::string& damage) {
        const std::string object = adapter.First().Object();
        const std::string name = RegionName(code.region.code);
        if (state == CodeState::Pending) {
            invocation_.Add({tools::Severity::Info,
                             name + " " + code.image.version + " is stored and starts next",
                             "see `fw activate`",
                             object,
                             {}});
        } else if (!damage.empty()) {
            damaged_ = true;
            invocation_.Add({tools::Severity::Error,
                             damage,
                             "write it again with `flash write` before the adapter is restarted",
                             object,
                             {}});
        } else if (code.status != HXMGT_SUCCESS) {
            const ExitCode exit = invocation_.Report(code.status, name + " cannot be read", object);
            first_ = failures_++ == 0 ? exit : first_;
        }
    }

    tools::Invocation& invocation_;
    std::vector<Record> rows_;
    size_t failures_ = 0;  // adapters and regions that cannot be read
    bool damaged_ = false;
    ExitCode first_ = ExitCode::Done;
};

ExitCode FirmwareShow(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    std::vector<Port*> speakers;
    for (const Adapter* adapter : selected) {
        speakers.push_back(&ports[static_cast<size_t>(&adapter->Speaker() - ports.data())]);
    }
    Shower shower(invocation);
    const auto stored = ForEachPort<std::vector<StoredCode>>(invocation, speakers, AskStoredCode);
    for (size_t i = 0; i < selected.size(); ++i) {
        shower.Show(*selected[i], stored[i]);
    }
    return shower.Finish(selected.size());
}

}  // namespace

tools::CommandRows FwShowCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "fw show",
            .risk = tools::Risk::Reads,
            .help = "which firmware and boot code run, are stored, and start next",
            .schema = "fw.show",
            .run = FirmwareShow,
            .example = "fw show",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
