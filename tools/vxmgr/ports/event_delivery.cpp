#include "vxmgr/ports/event_delivery.h"

namespace vxmgr {

HX_STATUS Delivery::Enable() {
    const HX_STATUS status = HXEnableAen(device_->Handle());
    enabled_ = status == HXMGT_SUCCESS;
    return status;
}

void Delivery::Disable() {
    if (enabled_.exchange(false)) {
        HXDisableAen(device_->Handle());
    }
}

HX_STATUS Delivery::Read(HX_EVENT (&events)[kEventsPerRead], uint32_t* count) {
    return HXGetAen(device_->Handle(), reinterpret_cast<uint8_t*>(events), sizeof events, count);
}

const char* FailedFetch(HX_STATUS status) {
    return status == HXMGT_DEVICE_BUSY ? "no event slot is free (eight processes share them)"
                                       : "events cannot be read";
}

void AllDeliveries::Add(const std::shared_ptr<Delivery>& delivery) {
    const std::lock_guard guard(lock_);
    std::erase_if(deliveries_, [](const auto& one) { return one.expired(); });
    deliveries_.push_back(delivery);
}

void AllDeliveries::Disable() {
    const std::lock_guard guard(lock_);
    for (const std::weak_ptr<Delivery>& one : deliveries_) {
        if (const auto delivery = one.lock()) {
            delivery->Disable();
        }
    }
}

}  // namespace vxmgr
