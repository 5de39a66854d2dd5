#include "vxmgr/targets/map_behind.h"

#include "vxmgr/targets/map_units.h"

namespace vxmgr {

std::vector<std::string> DescribeVolumes(const Port& port) {
    SystemDevices devices;
    if (!port.scsiPort || devices.Read() != HXMGT_SUCCESS) {
        return {};
    }
    const std::string text = VolumesText(devices.UnitsBehind(*port.scsiPort));
    return text.empty() ? std::vector<std::string>()
                        : std::vector{"  behind port " + std::to_string(port.index) + ": " + text};
}

}  // namespace vxmgr
