#include "vxmgr/fabric/nvme_controllers.h"

#include "vxmgr/app/getters.h"
#include "vxmgr/app/read_list.h"
#include "vxmgr/targets/target_known.h"

namespace vxmgr {
namespace {

void ReadController(uint32_t handle, Namespaces namespaces, FoundController& found) {
    HX_SCSI_ADDRESS address = AddressByPortName(found.remotePort);
    address.lun = found.place;
    HX_NVME_TARGET record{};
    found.status = HXGetNVMeTargetInfo(handle, &address, &record);
    if (found.status != HXMGT_SUCCESS) {
        return;
    }
    found.record = record;
    // A controller beyond these does not tell its namespaces.
    if (namespaces == Namespaces::Too && found.place <= HX_NVME_MOST_CONTROLLER) {
        found.status = ReadList(
            [&](HX_NVME_NAMESPACE* list, uint32_t* count) {
                return HXGetNVMeNSInfo(handle, &address, list, count);
            },
            &found.namespaces);
    }
}

}  // namespace

HX_STATUS FindControllers(PortVisit& visit, Namespaces namespaces,
                          std::vector<FoundController>* controllers) {
    visit.query = "remote ports that speak NVMe";
    std::vector<HX_NVME_PORT> remotePorts;
    HX_STATUS failure =
        ReadList([&](HX_NVME_PORT* ports,
                     uint32_t* count) { return HXRGetNVMeInfo(visit.Handle(), ports, count); },
                 &remotePorts);
    for (const HX_NVME_PORT& remote : remotePorts) {
        const auto count = Packed<&HX_NVME_PORT::controllers>(remote);
        for (uint16_t place = 0; place < count; ++place) {
            visit.task.Answered();
            FoundController& found = controllers->emplace_back();
            found.remotePort = Wwn::Of(remote.portName);
            found.place = place;
            ReadController(visit.Handle(), namespaces, found);
            if (found.status != HXMGT_SUCCESS && failure == HXMGT_SUCCESS) {
                failure = found.status;
                visit.query =
                    "controller " + std::to_string(place) + " of " + found.remotePort.Colons();
            }
        }
    }
    return failure;
}

}  // namespace vxmgr
