// flash layout
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/commands.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Value;

Record RegionRowOf(const FlashRegion& region) {
    const bool secure = (region.flags & HX_REGION_FLAG_SECURE) != 0;
    const bool placed = region.start.has_value();
    Record row;
    row.Add("code", "Code", Value::Number(region.code), "CODE");
    row.Add("key", "Key", Value::Text(RegionKey(region.code)), "KEY");
    row.Add("name", "Name", Value::Text(RegionName(region.code)), "HOLDS");
    row.Add("start", "Start", placed ? HexValue(*region.start, 8) : Value(), "START");
    row.Add("end", "End",
            placed && region.size != 0 ? HexValue(uint64_t{*region.start} + region.size - 1, 8)
                                       : Value(),
            "END");
    row.Add("size", "Size", Value::Number(region.size, "bytes").Shown(SizeText(region.size)),
            "SIZE");
    row.Add("flags", "Flags", HexValue(region.flags, 2).Shown(secure ? "secure" : "-"), "FLAGS");
    return row;
}

ExitCode FlashLayoutShow(tools::Invocation& invocation) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    const FlashLayout layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    uint64_t bytes = 0;
    std::vector<Record> rows;
    for (const FlashRegion& region : layout.regions) {
        bytes += region.size;
        rows.push_back(RegionRowOf(region));
    }
    Record& result = invocation.Result();
    result.Add("serial", "Adapter", Value::Serial(session.Serial()));
    result.Add("has_regions", "Has regions", Value::Flag(!layout.whole));
    result.Add("size", "Size of all regions", Value::Number(bytes, "bytes").Shown(SizeText(bytes)));
    result.AddList("regions", "Regions", tools::ListLayout::Table, RegionRowOf({}), "no regions",
                   std::move(rows));
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows FlashLayoutCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "flash layout",
            .risk = tools::Risk::Reads,
            .help = "list the regions of an adapter's flash",
            .schema = "flash.layout",
            .run = FlashLayoutShow,
            .example = "flash layout -a serial:EMU7740A0001",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
