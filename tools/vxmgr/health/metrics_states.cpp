#include <algorithm>

#include "vxmgr/app/getters.h"
#include "vxmgr/health/metrics_table.h"

namespace vxmgr {
namespace {

using enum HealthQuestion;

using GetStateMetric = void (*)(const MetricPort& port, MetricSamples& samples);

constexpr double kPerDegreeStep = 1.0 / 256;

double BoardDegrees(int16_t steps) {
    return steps * kPerDegreeStep;
}

const HX_BOARD_TEMPERATURE* BoardOf(const MetricPort& port) {
    return port.adapter != nullptr && port.adapter->temperature ? &*port.adapter->temperature
                                                                : nullptr;
}

template <auto member>
constexpr GetStateMetric kBoard = [](const MetricPort& port, MetricSamples& samples) {
    if (const HX_BOARD_TEMPERATURE* const board = BoardOf(port)) {
        samples.Add(BoardDegrees(Packed<member>(*board)));
    }
};

void GetBoardLimits(const MetricPort& port, MetricSamples& samples) {
    const HX_BOARD_TEMPERATURE* const board = BoardOf(port);
    if (board == nullptr) {
        return;
    }
    const std::pair<const char*, int16_t> kLimits[] = {
        {"warning", Packed<&HX_BOARD_TEMPERATURE::warning>(*board)},
        {"critical", Packed<&HX_BOARD_TEMPERATURE::critical>(*board)},
        {"shutdown", Packed<&HX_BOARD_TEMPERATURE::shutdown>(*board)},
    };
    for (const auto& [name, limit] : kLimits) {
        if (limit != 0) {
            samples.Add(BoardDegrees(limit), {{"limit", name}});
        }
    }
}

// Milliamperes and milliwatts in the readings.
constexpr double UnitOf(SfpQuantity quantity) {
    return quantity == SfpQuantity::Temperature || quantity == SfpQuantity::Voltage ? 1 : 1000;
}

template <SfpQuantity quantity>
constexpr GetStateMetric kMeasured = [](const MetricPort& port, MetricSamples& samples) {
    const auto& readings = port.reading->transceiver.readings;
    if (readings && readings->Of(quantity).value) {
        samples.Add(*readings->Of(quantity).value / UnitOf(quantity));
    }
};

template <SfpQuantity quantity>
constexpr GetStateMetric kMeasuredLimits = [](const MetricPort& port, MetricSamples& samples) {
    const auto& readings = port.reading->transceiver.readings;
    if (!readings) {
        return;
    }
    const SfpReading& reading = readings->Of(quantity);
    const std::pair<const char*, const std::optional<double>*> kLimits[] = {
        {"low_alarm", &reading.lowAlarm},
        {"low_warning", &reading.lowWarning},
        {"high_warning", &reading.highWarning},
        {"high_alarm", &reading.highAlarm},
    };
    for (const auto& [name, limit] : kLimits) {
        if (*limit) {
            samples.Add(**limit / UnitOf(quantity), {{"limit", name}});
        }
    }
};

void GetUp(const MetricPort& port, MetricSamples& samples) {
    samples.Add(port.reading->answers);
}

void GetIdentity(const MetricPort& port, MetricSamples& samples) {
    if (port.reading->answers) {
        samples.Add(1, port.identity);
    }
}

void GetPortState(const MetricPort& port, MetricSamples& samples) {
    constexpr const char* kStateKeys[] = {"online", "offline", "link_down", "disabled"};
    if (!port.reading->link) {
        return;
    }
    for (const char* const state : kStateKeys) {
        samples.Add(port.reading->link->state == state, {{"state", state}});
    }
}

void GetSpeed(const MetricPort& port, MetricSamples& samples) {
    constexpr uint64_t kBytesOfGigabit = 1'000'000'000 / 8;
    if (port.reading->link && port.reading->link->gigabits) {
        samples.Add(*port.reading->link->gigabits * kBytesOfGigabit);
    }
}

// In the order of HealthState; what is not known has no number.
constexpr int kStateNumbers[] = {0, -1, 1, 2};

void GetHealth(const MetricPort& port, MetricSamples& samples) {
    const int number = kStateNumbers[static_cast<size_t>(WorstOf(port.findings))];
    samples.Add(std::max(number, 0));
}

void GetChecks(const MetricPort& port, MetricSamples& samples) {
    for (const HealthFinding& finding : port.findings) {
        const int number = kStateNumbers[static_cast<size_t>(finding.state)];
        if (number >= 0) {
            samples.Add(number, {{"check", finding.check->id}});
        }
    }
}

void GetFailed(const MetricPort& port, MetricSamples& samples) {
    samples.Add(std::ranges::count_if(port.reading->statuses, HasFailed));
}

void GetCode(const MetricPort& port, MetricSamples& samples) {
    for (const CodeReading& code :
         port.adapter != nullptr ? port.adapter->code : std::vector<CodeReading>()) {
        samples.Add(1, {{"region", code.name}, {"running", code.running}, {"stored", code.stored}});
    }
}

void GetPendingCode(const MetricPort& port, MetricSamples& samples) {
    if (port.adapter != nullptr && !port.adapter->code.empty() && !port.adapter->updating) {
        samples.Add(std::ranges::any_of(port.adapter->code, &CodeReading::pending));
    }
}

void GetInterrupted(const MetricPort& port, MetricSamples& samples) {
    if (port.adapter != nullptr) {
        samples.Add(!port.adapter->interrupted.empty());
    }
}

void GetDumps(const MetricPort& port, MetricSamples& samples) {
    if (Knows(port, Dumps)) {
        samples.Add(port.reading->dumps.size());
    }
}

void GetPresent(const MetricPort& port, MetricSamples& samples) {
    if (Knows(port, Transceiver)) {
        samples.Add(port.reading->transceiver.present);
    }
}

void GetFault(const MetricPort& port, MetricSamples& samples) {
    if (port.reading->transceiver.readings) {
        samples.Add(port.reading->transceiver.readings->transmitFault);
    }
}

// How many of a list are in each state; states: names by number, from first on.
template <class List, size_t states>
void AddStates(const List& list, const char* const (&names)[states], size_t first,
               MetricSamples& samples) {
    for (size_t i = 0; i < states; ++i) {
        samples.Add(
            std::ranges::count_if(list, [&](const auto& one) { return one.state == first + i; }),
            {{"state", names[i]}});
    }
}

void GetVirtualPorts(const MetricPort& port, MetricSamples& samples) {
    constexpr const char* kNames[] = {"online", "offline", "rejected", "link_down"};
    if (Knows(port, VirtualPorts)) {
        AddStates(port.reading->virtualPorts, kNames, HX_VIRTUAL_PORT_ONLINE, samples);
    }
}

void GetNvme(const MetricPort& port, MetricSamples& samples) {
    constexpr const char* kNames[] = {"not_connected", "connecting", "live", "reconnecting"};
    if (Knows(port, Nvme)) {
        AddStates(port.reading->nvme, kNames, HX_NVME_NOT_CONNECTED, samples);
    }
}

void GetSecurity(const MetricPort& port, MetricSamples& samples) {
    constexpr const char* kNames[] = {"plain", "authenticating", "secured", "failed"};
    if (Knows(port, Security)) {
        AddStates(port.reading->secured, kNames, HX_SECURE_PLAIN, samples);
    }
}

constexpr Metric kStateMetrics[] = {
    {{"up", MetricType::Gauge, "", "Whether the driver answers for the port."}, GetUp},
    {{"", MetricType::Info, "", "Names and versions of the port and its adapter."}, GetIdentity},
    {{"port_state", MetricType::Gauge, "", "1 for the state that the port is in."}, GetPortState},
    {{"speed_bytes", MetricType::Gauge, "bytes", "Speed of the link in bytes a second."}, GetSpeed},
    {{"health_state", MetricType::Gauge, "",
      "Worst finding of the port: 0 normal, 1 warning, 2 critical."},
     GetHealth},
    {{"health_check_state", MetricType::Gauge, "",
      "Finding of a check: 0 normal, 1 warning, 2 critical."},
     GetChecks},
    {{"failed_questions", MetricType::Gauge, "",
      "Questions about the port that failed in this collection."},
     GetFailed},
    {{"code", MetricType::Info, "",
      "Firmware and boot code of the adapter: what runs and what is stored."},
     GetCode},
    {{"update_pending", MetricType::Gauge, "", "Whether code was written that a restart starts."},
     GetPendingCode},
    {{"update_interrupted", MetricType::Gauge, "",
      "Whether an update of the adapter ended in the middle."},
     GetInterrupted},
    {{"dumps_waiting", MetricType::Gauge, "", "Dumps of the firmware that wait to be fetched."},
     GetDumps},
    {{"board_temperature_celsius", MetricType::Gauge, "celsius",
      "Temperature of the board of the adapter."},
     kBoard<&HX_BOARD_TEMPERATURE::now>},
    {{"board_temperature_highest_celsius", MetricType::Gauge, "celsius",
      "Highest temperature of the board since the adapter started."},
     kBoard<&HX_BOARD_TEMPERATURE::highest>},
    {{"board_temperature_limit_celsius", MetricType::Gauge, "celsius",
      "Limits of the temperature of the board."},
     GetBoardLimits},
    {{"transceiver_present", MetricType::Gauge, "", "Whether there is a transceiver."}, GetPresent},
    {{"transceiver_fault", MetricType::Gauge, "", "Whether the transmitter says that it fails."},
     GetFault},
    {{"transceiver_temperature_celsius", MetricType::Gauge, "celsius",
      "Temperature of the transceiver."},
     kMeasured<SfpQuantity::Temperature>},
    {{"transceiver_temperature_limit_celsius", MetricType::Gauge, "celsius",
      "Limits that the transceiver has for it."},
     kMeasuredLimits<SfpQuantity::Temperature>},
    {{"transceiver_voltage_volts", MetricType::Gauge, "volts",
      "Supply voltage of the transceiver."},
     kMeasured<SfpQuantity::Voltage>},
    {{"transceiver_voltage_limit_volts", MetricType::Gauge, "volts",
      "Limits that the transceiver has for it."},
     kMeasuredLimits<SfpQuantity::Voltage>},
    {{"transceiver_bias_amperes", MetricType::Gauge, "amperes",
      "Current through the laser of the transceiver."},
     kMeasured<SfpQuantity::Bias>},
    {{"transceiver_bias_limit_amperes", MetricType::Gauge, "amperes",
      "Limits that the transceiver has for it."},
     kMeasuredLimits<SfpQuantity::Bias>},
    {{"transceiver_sent_power_watts", MetricType::Gauge, "watts",
      "Light that the transceiver sends."},
     kMeasured<SfpQuantity::SentPower>},
    {{"transceiver_sent_power_limit_watts", MetricType::Gauge, "watts",
      "Limits that the transceiver has for it."},
     kMeasuredLimits<SfpQuantity::SentPower>},
    {{"transceiver_received_power_watts", MetricType::Gauge, "watts",
      "Light that reaches the transceiver."},
     kMeasured<SfpQuantity::ReceivedPower>},
    {{"transceiver_received_power_limit_watts", MetricType::Gauge, "watts",
      "Limits that the transceiver has for it."},
     kMeasuredLimits<SfpQuantity::ReceivedPower>},
    {{"virtual_ports", MetricType::Gauge, "", "Virtual ports by state."}, GetVirtualPorts},
    {{"nvme_controllers", MetricType::Gauge, "", "NVMe controllers by state."}, GetNvme},
    {{"secured_ports", MetricType::Gauge, "", "Remote ports by the state of their security."},
     GetSecurity},
};

}  // namespace

std::span<const Metric> StateMetrics() {
    return kStateMetrics;
}

}  // namespace vxmgr
