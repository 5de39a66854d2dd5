// A port that is read again and again, through every loss of its driver.
#pragma once

#include <functional>
#include <memory>

#include "vxmgr/app/inventory.h"
#include "vxmgr/ports/stats_counters.h"
#include "vxmgr/sfp/sfp_diagnostics.h"

namespace vxmgr {

// What a port says at one time.
struct TopReading {
    HX_STATUS status = HXMGT_SUCCESS;
    std::string query{};  // what failed
    Port port{};          // its state and speed are those of now
    PortCounters counters{};
    std::optional<SfpReading> temperature{};
    std::chrono::milliseconds time{};  // of the counters, on a clock that only goes forward
};

// For one thread.
class TopSession {
  public:
    TopSession(Port port, std::string tracePath);

    // answered: called between the requests. A port that was lost is opened again; what is there
    // must be the port that was there before.
    TopReading Read(const std::function<void()>& answered);

    // The open port, for others who use it beside this one; null while there is none.
    const std::shared_ptr<Device>& OpenDevice() const { return device_; }

  private:
    HX_STATUS ReadAll(const std::function<void()>& answered, TopReading& reading);
    HX_STATUS Open();
    void ReadTemperature(TopReading& reading);

    Port port_;
    const std::string tracePath_;
    std::shared_ptr<Device> device_;
    std::optional<SfpIdentity> transceiver_;
    bool hasDiagnostics_ = true;
    bool gone_ = false;  // the last time
};

}  // namespace vxmgr
