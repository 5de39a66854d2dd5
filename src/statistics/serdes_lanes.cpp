// Settings and eyes of a port's SerDes lanes.
#include "frame/record_list.h"
#include "statistics/health.h"
#include "statistics/health_records.h"
#include "statistics/paged_list.h"
#include "statistics/query.h"

namespace statistics {

HX_STATUS GetSerdesLanes(uint32_t handle, HX_SERDES_LANE* lanes, uint32_t* count) {
    if (const HX_STATUS status =
            Check(handle, needs::kSerdes, frame::CallerList<HX_SERDES_LANE>::Accepts(lanes, count));
        status != HXMGT_SUCCESS) {
        return status;
    }
    SerdesReply reply;
    size_t carried = 0;
    if (const HX_STATUS status =
            FetchPage(handle, transport::command::SerdesParameters, {}, reply, carried);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (reply.count > carried) {
        return HXMGT_DATA_UNDERRUN;  // there is one page
    }
    PagedList<HX_SERDES_LANE> out(lanes, count);
    out.Add(std::span(reply.entries).first(reply.count));
    return out.Close(reply.count);
}

}  // namespace statistics
