#include "vxmgr/targets/map_behind.h"

#include <chrono>

#include "vxmgr/targets/map_units.h"
#include "vxmgr/targets/target_known.h"
#include "vxmgr/targets/target_reported.h"

namespace vxmgr {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience{2};

// The units that the operating system has a device of. False when that may not be all of them.
bool ReadUnits(const Port& port, uint32_t handle, std::vector<MappedUnit>* units) {
    const Clock::time_point deadline = Clock::now() + kPatience;
    std::vector<KnownTarget> targets;
    if (ReadKnownTargets(port, handle, &targets) != HXMGT_SUCCESS) {
        return false;
    }
    bool whole = true;
    for (const KnownTarget& target : targets) {
        LunSet luns;
        if (target.present) {
            whole =
                ReadReportedLuns(port, handle, target.PortName(), &luns) == HXMGT_SUCCESS && whole;
        }
        for (uint16_t lun = 0; lun < luns.size(); ++lun) {
            if (!luns[lun]) {
                continue;
            }
            if (Clock::now() >= deadline) {
                return false;
            }
            MappedUnit unit;
            HX_SCSI_ADDRESS address = AddressByPortName(target.PortName());
            address.lun = lun;
            whole = ReadDevice(handle, address, &unit) == HXMGT_SUCCESS && whole;
            if (unit.device) {
                units->push_back(std::move(unit));
            }
        }
    }
    return whole;
}

}  // namespace

std::vector<std::string> DescribeVolumes(const Port& port, uint32_t handle) {
    std::vector<MappedUnit> units;
    const bool whole = ReadUnits(port, handle, &units);
    const std::string text = VolumesText(std::move(units), whole);
    return text.empty() ? std::vector<std::string>()
                        : std::vector{"  behind port " + std::to_string(port.index) + ": " + text};
}

}  // namespace vxmgr
