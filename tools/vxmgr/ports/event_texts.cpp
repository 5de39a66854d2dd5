#include "vxmgr/ports/event_texts.h"

#include "common/text.h"

namespace vxmgr {
namespace {

struct EventRow {
    uint32_t type;
    const char* name;
    const char* meaning;
};
constexpr EventRow kEvents[] = {
    {HX_EVENT_LIP, kEventKindNames[0], "the loop was initialised"},
    {HX_EVENT_LINK_UP, kEventKindNames[1], "the link came up"},
    {HX_EVENT_LINK_DOWN, kEventKindNames[2], "the link went down"},
    {HX_EVENT_LIP_RESET, kEventKindNames[3], "the loop was reset"},
    {HX_EVENT_RSCN, kEventKindNames[4], "the fabric reports a state change"},
    {HX_EVENT_PORT_UPDATE, kEventKindNames[5], "the list of discovered ports changed"},
    {HX_EVENT_TEST, kEventKindNames[6], "test event"},
};
static_assert(std::size(kEventKindNames) == std::size(kEvents));

const EventRow* FindEvent(uint32_t type) {
    for (const EventRow& row : kEvents) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

// Affected N_Port page of an RSCN: address format in the top byte's low bits, then the address.
std::string AffectedPage(uint32_t page) {
    constexpr const char* kFormats[] = {"port", "area", "domain", "fabric"};
    return std::string(": ") + kFormats[(page >> 24) & 3] + " " + tools::Hex(page & 0xFFFFFF, 6);
}

}  // namespace

std::string EventKindName(uint32_t type) {
    const EventRow* row = FindEvent(type);
    return row == nullptr ? "type-" + std::to_string(type) : row->name;
}

std::string EventMeaning(const HX_EVENT& event) {
    const EventRow* row = FindEvent(event.type);
    std::string meaning = row == nullptr ? "an event without a known meaning" : row->meaning;
    if (event.type == HX_EVENT_RSCN) {
        meaning += AffectedPage(event.data[0]);
    }
    return meaning;
}

}  // namespace vxmgr
