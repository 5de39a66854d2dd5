#include "vxmgr/health/health_visit.h"

#include <algorithm>

#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/values.h"
#include "vxmgr/diag/dump_kinds.h"
#include "vxmgr/fabric/nvme_controllers.h"
#include "vxmgr/fabric/virtual_ports.h"
#include "vxmgr/ports/remote_ports.h"
#include "vxmgr/ports/stats_reading.h"
#include "vxmgr/settings/nvram_port.h"
#include "vxmgr/settings/vpd_pci.h"
#include "vxmgr/settings/vpd_port.h"
#include "vxmgr/sfp/sfp_port.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

// Whole regions are read at once.
constexpr std::chrono::seconds kWholeRegion{60};

HX_STATUS AskTemperature(PortVisit& visit, HealthReading& reading) {
    HX_BOARD_TEMPERATURE record{};
    const HX_STATUS status = HXGetBoardTemp(visit.Handle(), &record);
    if (status == HXMGT_SUCCESS) {
        reading.adapter->temperature = record;
    }
    return status;
}

// Only the query for both pages tells an empty cage from a transfer that fails.
bool IsCageEmpty(uint32_t handle) {
    uint8_t pages[2 * kSfpPageBytes];
    uint32_t size = sizeof pages;
    return HXGetSFPData(handle, 0, pages, &size) == HXMGT_SFP_DATA_UNAVAILABLE;
}

HX_STATUS AskTransceiver(PortVisit& visit, HealthReading& reading) {
    SfpModule module;
    HX_STATUS status = ReadSfpModule(visit.Handle(), &module);
    if (status != HXMGT_SUCCESS) {
        return HasFailed(status) && IsCageEmpty(visit.Handle()) ? HX_STATUS{HXMGT_SUCCESS} : status;
    }
    reading.transceiver.present = true;
    if (module.diagnostics) {
        reading.transceiver.readings = ReadDiagnostics(module.identity, *module.diagnostics);
    }
    return module.diagnosticsStatus;
}

template <unsigned kind>
HX_STATUS AskCounters(PortVisit& visit, HealthReading& reading) {
    return ReadCounters(visit.Handle(), {kind, {}}, &reading.counters, &visit.query);
}

HX_STATUS AskRecovery(PortVisit& visit, HealthReading& reading) {
    HX_BBCR_DATA record{};
    const HX_STATUS status = HXGetBBCRData(visit.Handle(), &record);
    if (status == HXMGT_SUCCESS) {
        reading.creditRecovery = record;
    }
    return status;
}

HX_STATUS AskVirtual(PortVisit& visit, HealthReading& reading) {
    VirtualPorts known;
    const HX_STATUS status = ReadVirtualPorts(visit.Handle(), &known);
    reading.npiv = known.attributes;
    reading.virtualPorts = std::move(known.ports);
    return status;
}

HX_STATUS AskNvme(PortVisit& visit, HealthReading& reading) {
    std::vector<FoundController> controllers;
    const HX_STATUS status = FindControllers(visit, Namespaces::No, &controllers);
    for (const FoundController& one : controllers) {
        if (one.record) {
            reading.nvme.push_back({one.remotePort, one.place, one.record->state});
        }
    }
    return status;
}

HX_STATUS AskSecurity(PortVisit& visit, HealthReading& reading) {
    return ReadSecuredPorts(visit.Handle(), &reading.secured);
}

HX_STATUS AskDumps(PortVisit& visit, HealthReading& reading) {
    std::vector<DumpSize> sizes;
    const HX_STATUS status = AskDumpSizes(visit, &sizes);
    for (const DumpSize& size : sizes) {
        if (size.IsPresent()) {
            reading.dumps.push_back(size.kind->name);
        }
    }
    return status;
}

HX_STATUS AskSettings(PortVisit& visit, HealthReading& reading) {
    NvramKind kind{};
    HX_STATUS status = AskNvramKind(visit.Handle(), &kind);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    std::vector<uint8_t> block;
    status = ReadBlock(visit.Handle(), kind, &block);
    reading.settingsSound = status != HXMGT_SUCCESS || IsSound(kind, block);
    return status;
}

HX_STATUS AskProductData(PortVisit& visit, HealthReading& reading) {
    std::vector<uint8_t> bytes;
    const HX_STATUS status = ReadVpd(visit.Handle(), &bytes);
    // A port without a place for them has none.
    if (status == HXMGT_INVALID_REQUEST) {
        return kNotAsked;
    }
    if (status == HXMGT_SUCCESS) {
        reading.productDataFaults = TextsJoined(DecodeVpd(bytes).faults, "; ");
    }
    return status;
}

CodeReading ReadingOf(const Port& port, const StoredCode& code) {
    const std::string running = RunningVersion(port, code.region.code);
    return {code.region.Name(), running, code.image.version,
            StateOf(code, running) == CodeState::Pending, DamageOf(code, running)};
}

// The first region that cannot be read gives the status.
HX_STATUS AskCode(PortVisit& visit, HealthReading& reading) {
    std::vector<StoredCode> stored;
    HX_STATUS status = ReadStoredCode(
        visit.port, visit.Handle(), [&visit] { visit.task.Answered(kWholeRegion); }, &stored);
    for (const StoredCode& code : stored) {
        status = status == HXMGT_SUCCESS ? code.status : status;
        reading.adapter->code.push_back(ReadingOf(visit.port, code));
    }
    return status;
}

struct QuestionRow {
    HealthQuestion question;
    HX_STATUS (*ask)(PortVisit& visit, HealthReading& reading);
    bool ofAdapter = false;
    bool counts = false;  // a sample asks it again

    bool IsIn(const HealthVisit& what) const {
        return (counts || !what.countersAlone) && (what.adapter || !ofAdapter) &&
               (what.code || question != HealthQuestion::Code);
    }
};
constexpr QuestionRow kQuestions[] = {
    {HealthQuestion::Temperature, AskTemperature, true},
    {HealthQuestion::Transceiver, AskTransceiver},
    {HealthQuestion::Link, AskCounters<kLinkKind>, false, true},
    {HealthQuestion::Traffic, AskCounters<kTrafficKind>, false, true},
    {HealthQuestion::Congestion, AskCounters<kScmKind>, false, true},
    {HealthQuestion::Commands, AskCounters<kPrivateKind>},
    {HealthQuestion::Latency, AskCounters<kLatencyKind>},
    {HealthQuestion::CreditRecovery, AskRecovery, false, true},
    {HealthQuestion::VirtualPorts, AskVirtual},
    {HealthQuestion::Nvme, AskNvme},
    {HealthQuestion::Security, AskSecurity},
    {HealthQuestion::Dumps, AskDumps},
    {HealthQuestion::Settings, AskSettings},
    {HealthQuestion::ProductData, AskProductData},
    {HealthQuestion::Code, AskCode, true},
};

std::string KeyOf(const Value& value) {
    const std::string* const text = std::get_if<std::string>(&value.Content());
    return text != nullptr ? *text : "unknown";
}

}  // namespace

AskPort<HealthReading> AskHealth(const HealthVisit& what) {
    return [what](PortVisit& visit, HealthReading* reading) {
        if (what.adapter) {
            reading->adapter.emplace();
        }
        for (const QuestionRow& row : kQuestions) {
            if (!row.IsIn(what)) {
                continue;
            }
            visit.query = kHealthQuestionNames[static_cast<size_t>(row.question)];
            reading->StatusOf(row.question) = row.ask(visit, *reading);
            visit.task.Answered();
        }
        return HX_STATUS{HXMGT_SUCCESS};
    };
}

void AddInventory(const Port& port, HealthReading* reading) {
    reading->answers = port.answers;
    reading->failure = port.answers ? HX_STATUS{HXMGT_SUCCESS} : port.failure;
    reading->StatusOf(HealthQuestion::Properties) = port.failure;
    if (!port.answers) {
        reading->silence = port.failedQuery;
    }
    if (!port.answers || !port.port) {
        return;
    }
    LinkReading& link = reading->link.emplace();
    link.disabled = port.disabled.value_or(false);
    link.online = port.port->state == HX_PORT_STATE_ONLINE && !link.disabled;
    const Value state = StateValue(port);
    link.state = KeyOf(state);
    link.shown = state.Shown().empty() ? link.state : state.Shown();
    if (port.hasSecondVersion) {
        link.diagnosticState = port.port->diagnosticState;
    }
    const Value speed = SpeedValue(port.port->currentSpeed);
    if (link.online && speed.IsNumber()) {
        link.gigabits = std::get<uint64_t>(speed.Content());
    }
}

}  // namespace vxmgr
