#include "vxmgr/targets/target_reported.h"

#include <vector>

#include "vxmgr/fabric/scsi_units.h"
#include "vxmgr/targets/target_known.h"

namespace vxmgr {

HX_STATUS ReadReportedLuns(const Port& port, uint32_t handle, const tools::Wwn& target,
                           LunSet* luns) {
    constexpr size_t kRoom = 4096;  // more an older driver does not move
    constexpr size_t kLargeRoom = 8 * (HX_MAX_LUNS + 1);
    const HX_SCSI_ADDRESS address = AddressByPortName(target);
    std::vector<uint8_t> list(port.IsCurrentGeneration() ? kLargeRoom : kRoom);
    uint8_t sense[256] = {};
    const HX_STATUS status = HXSendScsiReportLunsCmdFC(
        handle, &address, list.data(), static_cast<uint32_t>(list.size()), sense, sizeof sense);
    luns->reset();
    if (status == HXMGT_SUCCESS || status == HXMGT_BUILT_BY_API) {
        for (const LunEntry& entry : DecodeLuns(list)) {
            if (entry.lun && *entry.lun < luns->size()) {
                luns->set(static_cast<size_t>(*entry.lun));
            }
        }
    }
    return status;
}

std::optional<LunSet> ReportedLuns(tools::Invocation& invocation, const Port& port, uint32_t handle,
                                   const tools::Wwn& target) {
    LunSet luns;
    const HX_STATUS status = ReadReportedLuns(port, handle, target, &luns);
    const std::string object = port.Object() + " " + target.Colons();
    if (status != HXMGT_SUCCESS && status != HXMGT_BUILT_BY_API) {
        invocation.Warn(object + ": the target does not report its LUNs: " + StatusMessage(status));
        return std::nullopt;
    }
    if (status == HXMGT_BUILT_BY_API) {
        invocation.Note(object + ": the target refuses REPORT LUNS: LUNs 0 to 7 were asked",
                        "LUNs above 7 may be there and are not seen");
    }
    return luns;
}

}  // namespace vxmgr
