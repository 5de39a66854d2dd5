// Virtual ports of a port.
#include "frame/record_list.h"
#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/paged_list.h"
#include "statistics/query.h"

namespace statistics {
namespace {

struct VirtualPorts : ListTraits<NpivPage> {
    static constexpr transport::Command kCommand = transport::command::NpivAttributes;
    static NpivPage RequestFrom(uint32_t first) {
        NpivPage request{};
        request.head.version = kListVersion;
        request.head.first = first;
        return request;
    }
    static uint32_t Total(const NpivPage& page) { return page.head.inUse; }
};

}  // namespace

HX_STATUS GetVirtualPorts(uint32_t handle, HX_NPIV_ATTRIBUTES* attributes, HX_VIRTUAL_PORT* ports,
                          uint32_t* count) {
    if (const HX_STATUS status = Check(handle, needs::kVirtualPorts,
                                       frame::CallerList<HX_VIRTUAL_PORT>::Accepts(ports, count));
        status != HXMGT_SUCCESS) {
        return status;
    }
    const std::unique_ptr<NpivPage> page = NewPage<NpivPage>();
    const HX_STATUS status = FetchList(handle, VirtualPorts{}, ports, count, page.get());
    if (attributes != nullptr && (status == HXMGT_SUCCESS || status == HXMGT_BUFFER_TOO_SMALL)) {
        *attributes = page->head;
        attributes->first = 0;
        attributes->count = attributes->inUse;
    }
    return status;
}

}  // namespace statistics
