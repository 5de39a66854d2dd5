// Remote ports that speak NVMe, their controllers and namespaces.
#include "frame/record_list.h"
#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/paged_list.h"
#include "statistics/query.h"

namespace statistics {
namespace {

struct NvmePorts : ListTraits<NvmePortReply> {
    static constexpr transport::Command kCommand = transport::command::NvmeInfo;
    static ListRequest RequestFrom(uint32_t first) { return {kListVersion, first, {}}; }
};

// Namespaces of a controller, by the number of their page.
struct Namespaces
    : ListTraits<NvmeNamespaceReply, kNamespacesOnPage * kNamespacePages, kNamespacesOnPage> {
    static constexpr transport::Command kCommand = transport::command::NvmeNamespaceInfo;

    DESTINATIONADDRESS controller;

    DESTINATIONADDRESS RequestFrom(uint32_t first) const {
        DESTINATIONADDRESS request = controller;
        request.lun = static_cast<uint16_t>(request.lun | first / kNamespacesOnPage << 8);
        return request;
    }
};

}  // namespace

HX_STATUS GetNvmePorts(uint32_t handle, HX_NVME_PORT* ports, uint32_t* count) {
    const HX_STATUS status =
        Check(handle, needs::kNvme, frame::CallerList<HX_NVME_PORT>::Accepts(ports, count));
    return status == HXMGT_SUCCESS
               ? FetchList(handle, NvmePorts{}, ports, count, NewPage<NvmePortReply>().get())
               : status;
}

HX_STATUS GetNvmeTarget(uint32_t handle, const DESTINATIONADDRESS* target, HX_NVME_TARGET* record) {
    if (const HX_STATUS status =
            Check(handle, needs::kNvme, target != nullptr && record != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    DESTINATIONADDRESS request;
    if (const HX_STATUS status = PutNumbered(*target, request); status != HXMGT_SUCCESS) {
        return status;
    }
    const HX_STATUS status = Fetch(handle, transport::command::NvmeTargetInfo, request, *record);
    if (status == HXMGT_SUCCESS) {
        Terminate(record->subsystemNqn);
        Terminate(record->hostNqn);
    }
    return status;
}

HX_STATUS GetNvmeNamespaces(uint32_t handle, const DESTINATIONADDRESS* target,
                            HX_NVME_NAMESPACE* namespaces, uint32_t* count) {
    const bool given =
        target != nullptr && frame::CallerList<HX_NVME_NAMESPACE>::Accepts(namespaces, count);
    if (const HX_STATUS status = Check(handle, needs::kNvme, given); status != HXMGT_SUCCESS) {
        return status;
    }
    Namespaces list;
    if (const HX_STATUS status = PutNumbered(*target, list.controller); status != HXMGT_SUCCESS) {
        return status;
    }
    return list.controller.lun <= HX_NVME_MOST_CONTROLLER
               ? FetchList(handle, list, namespaces, count, NewPage<NvmeNamespaceReply>().get())
               : HXMGT_INVALID_PARAMETER;
}

}  // namespace statistics
