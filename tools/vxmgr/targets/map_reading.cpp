#include "vxmgr/targets/map_reading.h"

#include "vxmgr/targets/target_records.h"

namespace vxmgr {

void TakeNames(const KnownTarget& target, MappedUnit* unit) {
    unit->portName = target.PortName();
    unit->nodeName = target.NodeName();
    unit->portId = PortIdOf(target.record.portId);
}

HX_STATUS AddUnits(PortVisit& visit, const KnownTarget& target, const SystemDevices& system,
                   std::vector<MappedUnit>* units) {
    if (!target.present) {
        return HXMGT_SUCCESS;
    }
    visit.task.Answered();
    LunSet luns;
    const HX_STATUS status =
        ReadReportedLuns([&](Message message) { visit.task.Tell(std::move(message)); }, visit.port,
                         visit.Handle(), target.PortName(), &luns);
    for (uint16_t lun = 0; lun < luns.size(); ++lun) {
        if (!luns[lun]) {
            continue;
        }
        MappedUnit& unit = units->emplace_back();
        TakeNames(target, &unit);
        unit.bus = target.record.bus;
        unit.target = target.record.target;
        unit.lun = lun;
        if (visit.port.scsiPort) {
            system.Complete(*visit.port.scsiPort, &unit);
        }
    }
    return status;
}

}  // namespace vxmgr
