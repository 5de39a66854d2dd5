// The device list of a driver below 7.05.03.
#pragma once

#include <algorithm>
#include <memory>
#include <new>
#include <span>

#include "hxmgtapi.h"
#include "properties/driver_replies.h"
#include "transport/requests.h"

namespace properties {

class LegacyTargets {
  public:
    HX_STATUS Fetch(uint32_t handle) {
        reply_.reset(new (std::nothrow) LegacyTargetListReply{});
        return reply_ != nullptr ? transport::AskLegacy(handle, LegacySelector::TargetList, *reply_)
                                 : HX_STATUS{HXMGT_OUT_OF_MEMORY};
    }

    // What the driver lists, valid or not; never more than the reply holds.
    std::span<const LegacyTargetEntry> Entries() const {
        return std::span(reply_->entries)
            .first(std::min<size_t>(reply_->count, kLegacyTargetEntries));
    }

  private:
    std::unique_ptr<LegacyTargetListReply> reply_;
};

inline bool IsValid(const LegacyTargetEntry& entry) {
    return (entry.loopId & kLegacyTargetValid) != 0;
}

}  // namespace properties
