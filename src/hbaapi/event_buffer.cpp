#include <algorithm>

#include "events/events.h"
#include "hbaapi/handlers.h"
#include "hbaapi/status.h"

namespace hbaapi {
namespace {

static_assert(HX_EVENT_LIP == HBA_EVENT_LIP_OCCURRED);
static_assert(HX_EVENT_LINK_UP == HBA_EVENT_LINK_UP);
static_assert(HX_EVENT_LINK_DOWN == HBA_EVENT_LINK_DOWN);
static_assert(HX_EVENT_LIP_RESET == HBA_EVENT_LIP_RESET_OCCURRED);
static_assert(HX_EVENT_RSCN == HBA_EVENT_RSCN);

constexpr uint32_t kMostEvents = 32;

// Both interfaces number the standard events alike; the others are the maker's own.
HBA_EVENTINFO EventOf(const HX_EVENT& event) {
    HBA_EVENTINFO info{};
    const bool standard = event.type >= HX_EVENT_LIP && event.type <= HX_EVENT_RSCN;
    info.EventCode = standard ? event.type : HBA_EVENT_PROPRIETARY;
    if (event.type == HX_EVENT_RSCN) {
        info.Event.RSCN_EventInfo.NPortPage = event.data[0];
    }
    return info;
}

}  // namespace

HBA_STATUS GetEventBuffer(HBA_HANDLE handle, HBA_EVENTINFO* events, HBA_UINT32* count) {
    if (const HBA_STATUS status = CheckCall(handle, count); status != HBA_STATUS_OK) {
        return status;
    }
    if (events == nullptr && *count != 0) {
        return HBA_STATUS_ERROR_ARG;
    }
    HX_EVENT fetched[kMostEvents];
    uint32_t delivered = 0;
    const HX_STATUS status =
        events::GetAen(handle, reinterpret_cast<uint8_t*>(fetched), sizeof fetched, &delivered);
    if (status != HXMGT_SUCCESS) {
        return MapStatus(status);  // *count stays, also after a status that counts as success
    }
    *count = std::min(*count, std::min(delivered, kMostEvents));
    std::transform(fetched, fetched + *count, events, EventOf);
    return HBA_STATUS_OK;
}

}  // namespace hbaapi
