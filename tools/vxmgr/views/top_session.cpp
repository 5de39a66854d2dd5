#include "vxmgr/views/top_session.h"

#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_reader.h"
#include "vxmgr/ports/stats_reading.h"
#include "vxmgr/sfp/sfp_port.h"

namespace vxmgr {

TopSession::TopSession(Port port, std::string tracePath)
    : port_(std::move(port)), tracePath_(std::move(tracePath)) {}

TopReading TopSession::Read(const std::function<void()>& answered) {
    TopReading reading;
    reading.status = ReadAll(answered, reading);
    if (reading.status != HXMGT_SUCCESS) {
        // What is there while a driver comes back fails in ways that say something else.
        const bool stillGone = gone_ && device_ == nullptr;
        reading.status = stillGone ? kWentAway : CauseOf(reading.status, port_.Object());
        reading.query = reading.status == kWentAway ? "the port cannot be read" : reading.query;
        device_.reset();  // closed when nobody uses it any more
    }
    gone_ = reading.status == kWentAway;
    port_.failure = reading.status;
    reading.port = port_;
    return reading;
}

HX_STATUS TopSession::ReadAll(const std::function<void()>& answered, TopReading& reading) {
    reading.query = "open";
    if (device_ == nullptr) {
        if (const HX_STATUS status = Open(); status != HXMGT_SUCCESS) {
            return status;
        }
        answered();
    }
    reading.query = "port properties";
    Port now = port_;
    HX_STATUS status = ReadPortProperty(device_->Handle(), now);
    if (status != HXMGT_SUCCESS && !CannotTell(status)) {
        return status;
    }
    if (port_.port && PortNameOf(now) != PortNameOf(port_)) {
        return kWentAway;  // another adapter has come in its place
    }
    port_ = now;
    answered();
    ReadPortDisabled(device_->Handle(), port_);
    answered();
    status = ReadCounters(device_->Handle(), {.kinds = kLinkKind | kTrafficKind, .remote = {}},
                          &reading.counters, &reading.query);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    reading.time = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    answered();
    ReadTemperature(reading);
    return HXMGT_SUCCESS;
}

HX_STATUS TopSession::Open() {
    port_.answers = true;  // whatever it did before
    const auto device = std::make_shared<Device>();
    const HX_STATUS status = port_.Open(tracePath_, device.get());
    if (status == HXMGT_SUCCESS) {
        device_ = device;
        port_.driverVersionCode = device->Info().dwDriverVersion;
        transceiver_.reset();  // it may have been exchanged
        hasDiagnostics_ = true;
    }
    return status;
}

// A port without a transceiver, or one whose transceiver measures nothing, has no temperature; that
// is no failure.
void TopSession::ReadTemperature(TopReading& reading) {
    if (!hasDiagnostics_) {
        return;
    }
    SfpDiagnostics page{};
    if (!transceiver_) {
        SfpModule module;
        const HX_STATUS status = ReadSfpModule(device_->Handle(), &module);
        if (status != HXMGT_SUCCESS || !module.diagnostics) {
            hasDiagnostics_ = status != HXMGT_SUCCESS && !CannotTell(status);
            return;
        }
        transceiver_ = module.identity;
        page = *module.diagnostics;
    } else if (ReadSfp(device_->Handle(), kSfpPages[1], 0,
                       {reinterpret_cast<uint8_t*>(&page), sizeof page}) != HXMGT_SUCCESS) {
        transceiver_.reset();
        return;
    }
    reading.temperature = ReadDiagnostics(*transceiver_, page).Of(SfpQuantity::Temperature);
}

}  // namespace vxmgr
