// Who is where on the loop of a port.
#include <algorithm>
#include <iterator>

#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/query.h"

namespace statistics {
namespace {

HX_STATUS FetchLegacy(uint32_t handle, HX_POSITIONAL_MAP& map) {
    LegacyMapReply reply{};
    const HX_STATUS status = transport::AskLegacy(handle, LegacyMapSelector::PositionalMap, reply);
    map = reply.map;
    return status;
}

}  // namespace

HX_STATUS GetPositionalMap(uint32_t handle, HX_POSITIONAL_MAP* map) {
    uint32_t driver = 0;
    if (const HX_STATUS status = Check(handle, needs::kPositionalMap, map != nullptr, &driver);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_POSITIONAL_MAP reply;
    const HX_STATUS status = driver < kExtended
                                 ? FetchLegacy(handle, reply)
                                 : Fetch(handle, transport::command::PositionalMap, reply);
    if (status == HXMGT_SUCCESS) {
        reply.count = std::min<uint8_t>(reply.count, std::size(reply.alPa));
        *map = reply;
    }
    return status;
}

}  // namespace statistics
