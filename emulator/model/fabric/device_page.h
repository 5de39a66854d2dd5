// One page of a list about devices of the fabric.
#pragma once

#include <algorithm>
#include <iterator>

#include "model/exchange.h"
#include "model/fabric/fabric.h"
#include "statistics/fabric_records.h"

namespace vxemu {

// Of the devices that match, those from the first-th on, as many as the page has room for; make
// gives a device's entry.
template <typename Page, typename Matches, typename Make>
void ReplyDevicePage(Exchange& exchange, uint32_t first, Matches matches, Make make) {
    using Entry = std::remove_all_extents_t<decltype(Page::entries)>;
    constexpr uint32_t kRoom = sizeof(Page::entries) / sizeof(Entry);
    const Profile& profile = *exchange.GetPort().fabric->profile;
    const auto forEach = [&](auto visit) {
        for (uint32_t at = 0, index = 0; at < profile.targetCount; ++at) {
            if (matches(profile.targets[at])) {
                visit(index++, profile.targets[at]);
            }
        }
    };
    uint32_t total = 0;
    forEach([&](uint32_t, const TargetProfile&) { ++total; });
    const uint32_t count = first < total ? std::min(total - first, kRoom) : 0;
    exchange.StartReply(offsetof(Page, entries) + count * uint32_t{sizeof(Entry)});
    const statistics::ListHead head = {statistics::kListVersion, total, first, count};
    exchange.Put(0, &head, sizeof head);
    forEach([&](uint32_t index, const TargetProfile& device) {
        if (index >= first && index - first < count) {
            const Entry entry = make(device);
            exchange.Put(offsetof(Page, entries) + (index - first) * uint32_t{sizeof entry}, &entry,
                         sizeof entry);
        }
    });
}

}  // namespace vxemu
