// What the counters of a port make over time. Free of platform headers.
#pragma once

#include <chrono>
#include <deque>

#include "vxmgr/ports/stats_counters.h"

namespace vxmgr {

// Each way, in a second; nothing where it is not counted.
struct PortRates {
    std::optional<uint64_t> txFrames, rxFrames, txBytes, rxBytes;
};

class PortTrend {
  public:
    static constexpr size_t kHistory = 60;  // readings

    // A reading, and when it was taken; the first gives no rates yet.
    void Take(const PortCounters& counters, std::chrono::milliseconds time);
    // Rates begin anew behind a gap; errors are kept.
    void Break();

    const PortRates& Rates() const { return rates_; }
    uint64_t Errors() const { return errors_; }        // since the first reading
    uint64_t NewErrors() const { return newErrors_; }  // between the last two

    // Of the readings, the oldest first.
    const std::deque<uint64_t>& BytesBefore() const { return bytesBefore_; }  // both ways, a second
    const std::deque<uint64_t>& ErrorsBefore() const { return errorsBefore_; }

  private:
    std::optional<PortCounters> last_;
    std::chrono::milliseconds lastTime_{};
    PortRates rates_;
    uint64_t errors_ = 0;
    uint64_t newErrors_ = 0;
    std::deque<uint64_t> bytesBefore_;
    std::deque<uint64_t> errorsBefore_;
};

}  // namespace vxmgr
