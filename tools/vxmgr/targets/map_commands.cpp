// map target|volume|disk: from the targets to what the operating system makes of them, and back.
#include "vxmgr/commands.h"

#include <algorithm>
#include <memory>

#include "common/console.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/fabric/scsi_target.h"
#include "vxmgr/targets/map_reading.h"
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

// What a port has of what is looked for.
struct Mapped {
    std::vector<MappedUnit> units;
    bool known = false;  // the port knows the target
};
using MapPort = AskPort<Mapped>;

// Collects the units of the selected ports, side by side; a port that fails has a row of its own.
class Mapper {
  public:
    explicit Mapper(Invocation& invocation)
        : invocation_(invocation), ports_(ReadSelectedPorts(invocation)) {}

    void Run(const MapPort& collect) {
        const MapPort map = [collect](PortVisit& visit, Mapped* mapped) {
            visit.query = "mapping";
            return collect(visit, mapped);
        };
        answers_ = ForEachPort(invocation_, SelectPorts(invocation_, ports_), map);
        for (const PortAnswer<Mapped>& one : answers_) {
            one.port->failure = one.status;
            one.port->failedQuery = one.query;
        }
    }

    ExitCode Finish() {
        std::vector<MapRow> rows;
        std::vector<const Port*> asked;
        for (const PortAnswer<Mapped>& one : answers_) {
            asked.push_back(one.port);
            for (const MappedUnit& unit : one.answer.units) {
                for (const MappedPlace& place : PlacesOf(unit)) {
                    rows.push_back({one.port, place});
                }
            }
            if (one.status != HXMGT_SUCCESS) {
                rows.push_back({one.port, {}});
            }
        }
        invocation_.Result() = kMapList.Make(rows);
        return ReportFailures(invocation_, asked);
    }

    bool Knows() const {
        return std::ranges::any_of(answers_, [](const auto& one) { return one.answer.known; });
    }
    bool Found() const {
        return std::ranges::any_of(answers_,
                                   [](const auto& one) { return !one.answer.units.empty(); });
    }
    bool LeadsTo(uint32_t disk) const {
        return std::ranges::any_of(answers_, [disk](const auto& one) {
            return std::ranges::any_of(one.answer.units,
                                       [disk](const auto& unit) { return unit.IsDisk(disk); });
        });
    }

  private:
    Invocation& invocation_;
    std::vector<Port> ports_;
    std::vector<PortAnswer<Mapped>> answers_;
};

SharedDevices ReadSystem(Invocation& invocation) {
    SharedDevices system;
    invocation.Require(ReadSystemDevices(&system), "the system's devices cannot be listed");
    return system;
}

// Those of the disks that are behind the port, as units of its targets. A port that has none of
// them is asked nothing.
HX_STATUS AddDisks(PortVisit& visit, const std::vector<uint32_t>& disks,
                   const SystemDevices& system, std::vector<MappedUnit>* units) {
    const Port& port = visit.port;
    for (const uint32_t disk : disks) {
        for (const HX_OS_DEVICE& device : port.scsiPort ? system.DisksBehind(*port.scsiPort, disk)
                                                        : std::vector<HX_OS_DEVICE>()) {
            units->emplace_back(UnitOf(device)).volumes = system.VolumesOn(device);
        }
    }
    std::vector<KnownTarget> targets;
    const HX_STATUS status = units->empty() ? HX_STATUS{HXMGT_SUCCESS}
                                            : ReadKnownTargets(port, visit.Handle(), &targets);
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

MapPort DisksAmong(std::vector<uint32_t> disks, SharedDevices system) {
    return
        [disks = std::move(disks), system = std::move(system)](PortVisit& visit, Mapped* mapped) {
            return AddDisks(visit, disks, *system, &mapped->units);
        };
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
    const auto wanted = all ? std::nullopt : std::optional(address);
    mapper.Run([wanted, system = ReadSystem(invocation)](PortVisit& visit, Mapped* mapped) {
        std::vector<KnownTarget> targets;
        const HX_STATUS status = ReadKnownTargets(visit.port, visit.Handle(), &targets);
        const KnownTarget* only = wanted ? FindKnown(targets, *wanted) : nullptr;
        for (const KnownTarget& target : targets) {
            if (!wanted || only == &target) {
                mapped->known = true;
                AddUnits(visit, target, *system, &mapped->units);
            }
        }
        return status;
    });
    const ExitCode exit = mapper.Finish();
    if (!all && !mapper.Knows() && exit == ExitCode::Done) {
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
    Mapper mapper(invocation);
    mapper.Run(DisksAmong(disks, ReadSystem(invocation)));
    std::vector<uint32_t> elsewhere = disks;
    std::erase_if(elsewhere, [&](uint32_t disk) { return mapper.LeadsTo(disk); });
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
    mapper.Run(DisksAmong({*disk}, ReadSystem(invocation)));
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
