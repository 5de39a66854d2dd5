#include "vxmgr/ports/event_kinds.h"

#include <algorithm>

namespace vxmgr {
namespace {

struct EventKind {
    uint32_t type;
    const char* name;
    const char* meaning;
};
constexpr EventKind kEventKinds[] = {
    {HX_EVENT_LIP, kEventNames[0], "the loop was initialised"},
    {HX_EVENT_LINK_UP, kEventNames[1], "the link came up"},
    {HX_EVENT_LINK_DOWN, kEventNames[2], "the link went down"},
    {HX_EVENT_LIP_RESET, kEventNames[3], "the loop was reset"},
    {HX_EVENT_RSCN, kEventNames[4], "the fabric reports a state change"},
    {HX_EVENT_PORT_UPDATE, kEventNames[5], "the list of discovered ports changed"},
    {HX_EVENT_TEST, kEventNames[6], "test event"},
};
static_assert(std::size(kEventNames) == std::size(kEventKinds));

const EventKind* KindOf(uint32_t type) {
    const auto found = std::ranges::find(kEventKinds, type, &EventKind::type);
    return found != std::end(kEventKinds) ? &*found : nullptr;
}

}  // namespace

std::string EventName(const HX_EVENT& event) {
    const EventKind* const kind = KindOf(event.type);
    return kind != nullptr ? kind->name : "type-" + std::to_string(event.type);
}

std::string EventMeaning(const HX_EVENT& event) {
    const EventKind* const kind = KindOf(event.type);
    std::string meaning = kind != nullptr ? kind->meaning : "an event without a known meaning";
    if (event.type == HX_EVENT_RSCN) {
        // Affected N_Port page: address format in the top byte's low bits, then the address.
        constexpr const char* kFormats[] = {"port", "area", "domain", "fabric"};
        const uint32_t page = event.data[0];
        meaning += std::string(": ") + kFormats[(page >> 24) & 3] + " " + Hex(page & 0xFFFFFF, 6);
    }
    return meaning;
}

}  // namespace vxmgr
