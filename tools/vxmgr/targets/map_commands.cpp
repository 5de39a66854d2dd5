// map target|volume|disk: from the targets to what the operating system makes of them, and back.
#include "vxmgr/commands.h"

#include <deque>
#include <functional>

#include "common/console.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/fabric/scsi_target.h"
#include "vxmgr/targets/map_units.h"
#include "vxmgr/targets/target_records.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {
namespace {

constexpr Argument kTargetArguments[] = {
    {.name = "TARGET", .help = "wwn:NAME, id:0xDDAAPP, BUS:TARGET, or all", .required = true},
};
constexpr Argument kVolumeArguments[] = {
    {.name = "VOLUME",
     .help = "a drive (E:), a folder that a volume is mounted at, or a volume's own name",
     .required = true},
};
constexpr Argument kDiskArguments[] = {
    {.name = "DISK", .help = "a disk: N or PhysicalDriveN", .required = true},
};

struct MapRow {
    const Port* port;
    MappedPlace place;
};

const Fields<MapRow> kMapRow = {
    {PortKeys(kPortIndex | kScsiPort | kOldSerialKey), &MapRow::port},
    {kPlaceFields, &MapRow::place},
    {kPortStatus, &MapRow::port},
};
const auto kMapList = ListOf("units", "Logical units", kMapRow, "no logical units",
                             "a row per volume; one for a logical unit without volumes");

// Collects the units of each selected port; a port that fails has a row of its own.
class Mapper {
  public:
    using Collect =
        std::function<HX_STATUS(const Port& port, uint32_t handle, std::vector<MappedUnit>* units)>;

    explicit Mapper(Invocation& invocation)
        : invocation_(invocation), ports_(ReadSelectedPorts(invocation)) {}

    void Run(const Collect& collect) {
        for (Port* port : SelectPorts(invocation_, ports_)) {
            invocation_.CheckStop();
            auto& units = units_.emplace_back();
            Device device;
            port->failure = port->Open(TracePath(invocation_), &device);
            if (port->failure == HXMGT_SUCCESS) {
                port->failure = collect(*port, device.Handle(), &units);
            }
            if (port->answers) {
                port->failedQuery = device.IsOpen() ? "mapping" : "open";
            }
            asked_.push_back(port);
            for (const MappedUnit& unit : units) {
                for (const MappedPlace& place : PlacesOf(unit)) {
                    rows_.push_back({port, place});
                }
            }
            found_ = found_ || !units.empty();
            if (port->failure != HXMGT_SUCCESS) {
                rows_.push_back({port, {}});
            }
        }
    }

    ExitCode Finish() {
        invocation_.Result() = kMapList.Make(rows_);
        return ReportFailures(invocation_, asked_);
    }

    bool Found() const { return found_; }

  private:
    Invocation& invocation_;
    std::vector<Port> ports_;
    std::vector<const Port*> asked_;
    std::deque<std::vector<MappedUnit>> units_;  // of each port; the rows are about them
    std::vector<MapRow> rows_;
    bool found_ = false;
};

SystemDevices ReadSystem(Invocation& invocation) {
    SystemDevices system;
    invocation.Require(system.Read(), "the system's devices cannot be listed");
    return system;
}

void TakeNames(const KnownTarget& target, MappedUnit* unit) {
    unit->portName = target.PortName();
    unit->nodeName = target.NodeName();
    unit->portId = PortIdOf(target.record.portId);
}

// The units that a target reports, in order of their LUNs.
void AddUnits(Invocation& invocation, const Port& port, uint32_t handle, const KnownTarget& target,
              const SystemDevices& system, std::vector<MappedUnit>* units) {
    if (!target.present) {
        return;
    }
    const LunSet luns =
        ReportedLuns(invocation, port, handle, target.PortName()).value_or(LunSet());
    for (uint16_t lun = 0; lun < luns.size(); ++lun) {
        if (!luns[lun]) {
            continue;
        }
        MappedUnit& unit = units->emplace_back();
        TakeNames(target, &unit);
        unit.bus = target.record.bus;
        unit.target = target.record.target;
        unit.lun = lun;
        if (port.scsiPort) {
            system.Complete(*port.scsiPort, &unit);
        }
    }
}

// Those of the disks that are behind the port, as units of its targets. A port that has none of
// them is asked nothing.
HX_STATUS AddDisks(const Port& port, uint32_t handle, const std::vector<uint32_t>& disks,
                   const SystemDevices& system, std::vector<MappedUnit>* units) {
    for (const uint32_t disk : disks) {
        for (const HX_OS_DEVICE& device : port.scsiPort ? system.DisksBehind(*port.scsiPort, disk)
                                                        : std::vector<HX_OS_DEVICE>()) {
            units->emplace_back(UnitOf(device)).volumes = system.VolumesOn(device);
        }
    }
    std::vector<KnownTarget> targets;
    const HX_STATUS status =
        units->empty() ? HX_STATUS{HXMGT_SUCCESS} : ReadKnownTargets(port, handle, &targets);
    for (MappedUnit& unit : *units) {
        for (const KnownTarget& target : targets) {
            if (target.present && target.record.bus == unit.bus &&
                target.record.target == unit.target) {
                TakeNames(target, &unit);
                break;
            }
        }
    }
    return status;
}

std::string DisksText(const std::vector<uint32_t>& disks) {
    std::string text;
    for (const uint32_t disk : disks) {
        text += (text.empty() ? "PhysicalDrive" : ", PhysicalDrive") + std::to_string(disk);
    }
    return text;
}

ExitCode MapTarget(Invocation& invocation) {
    const std::string text = invocation.Given().Text("TARGET");
    const bool all = text == "all";
    HX_SCSI_ADDRESS address{};
    std::string error;
    if (!all && !ParseTarget(text, &address, &error)) {
        invocation.Fail(ExitCode::Usage, text + ": " + error, "`target list` shows the targets");
    }
    Mapper mapper(invocation);
    const SystemDevices system = ReadSystem(invocation);
    bool known = false;
    mapper.Run([&](const Port& port, uint32_t handle, std::vector<MappedUnit>* units) {
        std::vector<KnownTarget> targets;
        const HX_STATUS status = ReadKnownTargets(port, handle, &targets);
        const KnownTarget* only = all ? nullptr : FindKnown(targets, address);
        for (const KnownTarget& target : targets) {
            if (all || only == &target) {
                invocation.CheckStop();
                known = true;
                AddUnits(invocation, port, handle, target, system, units);
            }
        }
        return status;
    });
    const ExitCode exit = mapper.Finish();
    if (!all && !known && exit == ExitCode::Done) {
        invocation.Fail(ExitCode::NotFound, "no selected port knows the target " + text,
                        "see `target list`");
    }
    return exit;
}

ExitCode MapVolume(Invocation& invocation) {
    const std::string shown = invocation.Given().Text("VOLUME");
    std::vector<uint32_t> disks;
    // Folders may have names beyond ASCII.
    const HX_STATUS told = ReadDisksOfVolume(console::ToSystemCodePage(shown), &disks);
    if (told != HXMGT_SUCCESS) {
        invocation.Fail(told, "the disks of " + shown + " are not known");
    }
    std::vector<uint32_t> elsewhere = disks;
    Mapper mapper(invocation);
    const SystemDevices system = ReadSystem(invocation);
    mapper.Run([&](const Port& port, uint32_t handle, std::vector<MappedUnit>* units) {
        const HX_STATUS status = AddDisks(port, handle, disks, system, units);
        for (const MappedUnit& unit : *units) {
            std::erase_if(elsewhere, [&](uint32_t disk) { return unit.IsDisk(disk); });
        }
        return status;
    });
    const ExitCode exit = mapper.Finish();
    if (!mapper.Found() && exit == ExitCode::Done) {
        invocation.Fail(ExitCode::NotFound, "no selected port leads to " + shown,
                        elsewhere.empty() ? "" : "it lives on " + DisksText(elsewhere));
    }
    if (mapper.Found() && !elsewhere.empty()) {
        invocation.Note("a part of " + shown +
                        " is behind no selected port: " + DisksText(elsewhere));
    }
    return exit;
}

ExitCode MapDisk(Invocation& invocation) {
    const std::string text = invocation.Given().Text("DISK");
    const auto disk = ParseDisk(text);
    if (!disk) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is no disk", "N or PhysicalDriveN");
    }
    Mapper mapper(invocation);
    const SystemDevices system = ReadSystem(invocation);
    mapper.Run([&](const Port& port, uint32_t handle, std::vector<MappedUnit>* units) {
        return AddDisks(port, handle, {*disk}, system, units);
    });
    const ExitCode exit = mapper.Finish();
    if (!mapper.Found() && exit == ExitCode::Done) {
        invocation.Fail(ExitCode::NotFound,
                        "no selected port leads to PhysicalDrive" + std::to_string(*disk),
                        "`map target all` shows the disks that are");
    }
    return exit;
}

}  // namespace

CommandRows MapCommands() {
    static const Command kCommands[] = {
        {.path = "map target",
         .help = "the devices and volumes on the logical units of targets",
         .schema = "map",
         .arguments = kTargetArguments,
         .run = MapTarget,
         .example = "map target all",
         .result = ShapeOf<kMapList>},
        {.path = "map volume",
         .help = "the logical units that a volume lives on",
         .schema = "map",
         .arguments = kVolumeArguments,
         .run = MapVolume,
         .example = "map volume E:",
         .result = ShapeOf<kMapList>},
        {.path = "map disk",
         .help = "the logical unit behind a disk",
         .schema = "map",
         .arguments = kDiskArguments,
         .run = MapDisk,
         .example = "map disk 41",
         .result = ShapeOf<kMapList>},
    };
    return kCommands;
}

}  // namespace vxmgr
