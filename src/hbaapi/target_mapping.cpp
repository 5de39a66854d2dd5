#include <cstring>

#include "frame/record_list.h"
#include "hbaapi/handlers.h"
#include "hbaapi/port_values.h"
#include "hbaapi/status.h"
#include "mapping/mapping.h"
#include "properties/adapter_texts.h"

namespace hbaapi {
namespace {

// The eight bytes of a LUN as FCP sends them (SAM): peripheral addressing below 256, flat above.
HBA_UINT64 FcpLunOf(uint16_t lun) {
    constexpr uint8_t kFlat = 0x40;
    const uint8_t high = static_cast<uint8_t>(lun >> 8);
    const uint8_t bytes[8] = {static_cast<uint8_t>(high != 0 ? kFlat | high : 0),
                              static_cast<uint8_t>(lun)};
    HBA_UINT64 value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

HBA_FCPSCSIENTRY EntryOf(const HX_OS_DEVICE& device) {
    HBA_FCPSCSIENTRY entry{};
    properties::PutText(properties::TextOf(device.name), entry.ScsiId.OSDeviceName);
    entry.ScsiId.ScsiBusNumber = device.bus;
    entry.ScsiId.ScsiTargetNumber = device.target;
    entry.ScsiId.ScsiOSLun = device.lun;
    entry.FcpId.FcId = FcIdOf(device.portId);
    std::memcpy(entry.FcpId.NodeWWN.wwn, device.nodeName, sizeof device.nodeName);
    std::memcpy(entry.FcpId.PortWWN.wwn, device.portName, sizeof device.portName);
    entry.FcpId.FcpLun = FcpLunOf(device.lun);
    return entry;
}

}  // namespace

HBA_STATUS GetFcpTargetMapping(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* targets) {
    if (const HBA_STATUS status = CheckCall(handle, targets); status != HBA_STATUS_OK) {
        return status;
    }
    mapping::PortDevices devices;
    frame::CallerList<HBA_FCPSCSIENTRY> out(targets->entry, &targets->NumberOfEntries);
    if (const HX_STATUS status = devices.Fetch(handle); status != HXMGT_SUCCESS) {
        return MapStatus(status);
    }
    for (const HX_OS_DEVICE& device : devices.Records()) {
        if (device.discovered != 0) {
            out.Add(EntryOf(device));
        }
    }
    return MapStatus(out.Close());
}

HBA_STATUS GetFcpPersistentBinding(HBA_HANDLE, HBA_FCPBINDING*) {
    return HBA_STATUS_ERROR_NOT_SUPPORTED;
}

}  // namespace hbaapi
