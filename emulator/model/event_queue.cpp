#include "model/event_queue.h"

namespace vxemu {

void EventQueue::SetDelivery(bool on) {
    delivery_ = on ? 1 : 0;
    if (!on) {
        first_ = 0;
        count_ = 0;
    }
}

bool EventQueue::Add(const properties::DriverEvent& event) {
    if (!Delivery()) {
        return false;
    }
    if (count_ == kEventQueueLength) {
        first_ = (first_ + 1) % kEventQueueLength;
        --count_;
        ++dropped_;
    }
    events_[(first_ + count_) % kEventQueueLength] = event;
    ++count_;
    return true;
}

bool EventQueue::Take(properties::DriverEvent& event) {
    if (count_ == 0) {
        return false;
    }
    event = events_[first_];
    first_ = (first_ + 1) % kEventQueueLength;
    --count_;
    return true;
}

}  // namespace vxemu
