// What a visit to a port has found out about its health. Free of platform headers.
#pragma once

#include <array>

#include "hxfabric.h"
#include "hxhealth.h"
#include "vxmgr/ports/stats_counters.h"
#include "vxmgr/sfp/sfp_diagnostics.h"

namespace vxmgr {

// What a port is asked, each on its own: what chip, driver or firmware do not know is left out, and
// a question that fails leaves the others.
enum class HealthQuestion : uint8_t {
    Properties,
    Temperature,
    Transceiver,
    Link,
    Traffic,
    Congestion,
    Commands,
    Latency,
    CreditRecovery,
    VirtualPorts,
    Nvme,
    Security,
    Dumps,
    Settings,
    ProductData,
    Code,
};
inline constexpr size_t kHealthQuestions = 16;
inline constexpr const char* kHealthQuestionNames[kHealthQuestions] = {
    "port properties",
    "board temperature",
    "transceiver",
    "statistics",
    "traffic statistics",
    "SCM statistics",
    "private statistics",
    "latency statistics",
    "credit recovery",
    "virtual ports",
    "NVMe controllers",
    "secured ports",
    "dumps",
    "settings",
    "product data",
    "stored code",
};

// A question that was not put.
inline constexpr HX_STATUS kNotAsked = HXMGT_NOT_SUPPORTED;

struct LinkReading {
    bool online = false;
    bool disabled = false;
    std::string state;                       // "link_down"
    std::string shown;                       // the same for people
    std::optional<uint8_t> diagnosticState;  // 0: none is on
    std::optional<uint64_t> gigabits;        // a second
};

struct TransceiverReading {
    bool present = false;
    std::optional<SfpReadings> readings;  // empty: it has no diagnostics
};

struct NvmeReading {
    Wwn remotePort;
    uint16_t controller = 0;  // its place at the port
    uint8_t state = 0;        // HX_NVME_STATE
};

// Code of a region of the flash.
struct CodeReading {
    std::string name;  // "firmware"
    std::string running;
    std::string stored;
    bool pending = false;  // what is stored starts next
    std::string damage;    // in words; empty: none
};

// What belongs to the adapter was asked of one of its ports alone.
struct AdapterReading {
    std::optional<HX_BOARD_TEMPERATURE> temperature;
    std::vector<CodeReading> code;
    std::string interrupted;  // an update or restore that ended in the middle, in words
    bool updating = false;    // one is at work: what the flash holds is not complete
};

struct HealthReading {
    bool answers = true;
    HX_STATUS failure = HXMGT_SUCCESS;  // of a port that does not answer
    std::string silence;                // the same in words
    std::array<HX_STATUS, kHealthQuestions> statuses = NothingAsked();

    std::optional<LinkReading> link;
    TransceiverReading transceiver;
    // As they stand, or what was counted in a sample.
    PortCounters counters;
    bool sampled = false;
    std::optional<HX_BBCR_DATA> creditRecovery;
    HX_NPIV_ATTRIBUTES npiv{};
    std::vector<HX_VIRTUAL_PORT> virtualPorts;
    std::vector<NvmeReading> nvme;
    std::vector<HX_SECURE_PORT> secured;
    std::vector<std::string> dumps;  // kinds of those that wait
    bool settingsSound = true;
    std::string productDataFaults;  // in words; empty: none
    // Of the adapter's first port that answers; empty: another one has it.
    std::optional<AdapterReading> adapter;

    HX_STATUS& StatusOf(HealthQuestion question) { return statuses[static_cast<size_t>(question)]; }
    HX_STATUS StatusOf(HealthQuestion question) const {
        return statuses[static_cast<size_t>(question)];
    }

  private:
    static constexpr std::array<HX_STATUS, kHealthQuestions> NothingAsked() {
        std::array<HX_STATUS, kHealthQuestions> statuses{};
        statuses.fill(kNotAsked);
        return statuses;
    }
};

// The question failed, and not because nothing there knows an answer.
inline bool HasFailed(HX_STATUS status) {
    return status != HXMGT_SUCCESS && ExitCodeOf(status) != ExitCode::NotSupported;
}

// The counters of the link, of 64 bits where the driver has such.
inline const HX_PORT_STATISTICS* LinkCountersOf(const PortCounters& counters) {
    return counters.traffic ? &counters.traffic->port : counters.link ? &*counters.link : nullptr;
}

// What another reading, some time later, has counted more.
void TakeSample(const HealthReading& before, HealthReading* reading);

}  // namespace vxmgr
