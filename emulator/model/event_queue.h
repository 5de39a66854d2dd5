// The adapter events that a port holds until they are fetched.
#pragma once

#include <cstdint>

#include "properties/driver_replies.h"

namespace vxemu {

inline constexpr uint32_t kEventQueueLength = 64;

// Events are kept only while delivery is on, each is handed out once, and a full queue drops its
// oldest.
class EventQueue {
  public:
    void SetDelivery(bool on);
    bool Delivery() const { return delivery_ != 0; }

    // False when delivery is off and the event is gone.
    bool Add(const properties::DriverEvent& event);

    // Takes the oldest event; false when there is none.
    bool Take(properties::DriverEvent& event);

    uint32_t Count() const { return count_; }
    uint32_t Dropped() const { return dropped_; }

  private:
    properties::DriverEvent events_[kEventQueueLength];
    uint32_t first_;
    uint32_t count_;
    uint32_t dropped_;
    uint8_t delivery_;
};

}  // namespace vxemu
