// The standard API sends no SCSI command: for a port that is known the management API's entry
// points without an FC address answer, and these support nothing.
#include "hbaapi/handlers.h"
#include "hbaapi/status.h"
#include "mapping/discovered_ports.h"
#include "properties/generation.h"

namespace hbaapi {
namespace {

HBA_STATUS AnswerFor(HBA_HANDLE handle, const HBA_WWN& portWwn) {
    if (const HBA_STATUS status = CheckCall(handle, &portWwn); status != HBA_STATUS_OK) {
        return status;
    }
    mapping::DiscoveredPorts ports;
    if (const HX_STATUS status = ports.Fetch(handle); status != HXMGT_SUCCESS) {
        // A newer driver's list that cannot be had holds no such name, whatever the reason:
        // intended.
        return properties::TakesExtendedRequests(handle) ? HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_WWN}
                                                         : MapStatus(status);
    }
    return ports.Find(portWwn.wwn) ? MapStatus(HXMGT_NOT_SUPPORTED)
                                   : HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_WWN};
}

}  // namespace

HBA_STATUS ScsiInquiry(HBA_HANDLE handle, HBA_WWN portWwn, HBA_UINT64, HBA_UINT8, HBA_UINT32, void*,
                       HBA_UINT32, void*, HBA_UINT32) {
    return AnswerFor(handle, portWwn);
}

HBA_STATUS ReportLuns(HBA_HANDLE handle, HBA_WWN portWwn, void*, HBA_UINT32, void*, HBA_UINT32) {
    return AnswerFor(handle, portWwn);
}

HBA_STATUS ReadCapacity(HBA_HANDLE handle, HBA_WWN portWwn, HBA_UINT64, void*, HBA_UINT32, void*,
                        HBA_UINT32) {
    return AnswerFor(handle, portWwn);
}

}  // namespace hbaapi
