// The remote ports that a port knows.
#include "frame/record_list.h"
#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/paged_list.h"
#include "statistics/query.h"

namespace statistics {
namespace {

struct RemotePorts : ListTraits<RemotePortReply> {
    static constexpr transport::Command kCommand = transport::command::RemotePortInfo;
    static RemotePortRequest RequestFrom(uint32_t first) { return {{kListVersion, first, {}}, {}}; }
    static void Settle(HX_REMOTE_PORT& port) { Terminate(port.symbolicName); }
};

}  // namespace

HX_STATUS GetRemotePorts(uint32_t handle, HX_REMOTE_PORT* ports, uint32_t* count) {
    const HX_STATUS status = Check(handle, needs::kRemotePorts,
                                   frame::CallerList<HX_REMOTE_PORT>::Accepts(ports, count));
    return status == HXMGT_SUCCESS
               ? FetchList(handle, RemotePorts{}, ports, count, NewPage<RemotePortReply>().get())
               : status;
}

}  // namespace statistics
