// flash layout
#include "vxmgr/app/values.h"
#include "vxmgr/flash/commands.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::kText;
using Region = FlashRegion;

tools::Value LastByte(const Region& region) {
    return region.start && region.size != 0 ? HexValue(uint64_t{*region.start} + region.size - 1, 8)
                                            : tools::Value();
}

const tools::Fields<Region>& RegionFields() {
    static const tools::Fields<Region> kFields = {
        {"code", "Code", "CODE", tools::kInteger, &Region::code},
        {"key", "Key", "KEY", kText, &Region::Key},
        {"name", "Name", "HOLDS", kText, &Region::Name},
        {"start", "Start", "START", kText.OrNull(),
         [](const Region& one) { return one.start ? HexValue(*one.start, 8) : tools::Value(); },
         "first byte in the flash"},
        {"end", "End", "END", kText.OrNull(), LastByte, "last byte"},
        {"size", "Size", "SIZE", tools::kInteger,
         [](const Region& one) { return SizeValue(one.size); }},
        {"flags", "Flags", "FLAGS", kText,
         [](const Region& one) {
             const bool secure = (one.flags & HX_REGION_FLAG_SECURE) != 0;
             return HexValue(one.flags, 2).Shown(secure ? "secure" : "-");
         },
         "bit 0: secure updates go through this region"},
    };
    return kFields;
}

struct ShownLayout {
    const AdapterSession* session;
    FlashLayout layout;

    uint64_t Bytes() const {
        uint64_t bytes = 0;
        for (const Region& region : layout.regions) {
            bytes += region.size;
        }
        return bytes;
    }
};

const tools::Fields<ShownLayout>& LayoutFields() {
    static const tools::Fields<ShownLayout> kFields = {
        {SessionFields(), &ShownLayout::session},
        {"has_regions", "Has regions", tools::kFlag,
         [](const ShownLayout& shown) { return !shown.layout.whole; },
         "false: one region stands for the whole flash"},
        {"size", "Size of all regions", tools::kInteger,
         [](const ShownLayout& shown) { return SizeValue(shown.Bytes()); }, "bytes of all regions"},
        {"regions", "Regions", RegionFields(),
         [](const ShownLayout& shown) { return shown.layout.regions; }, tools::ListLayout::Table,
         "no regions"},
    };
    return kFields;
}

ExitCode FlashLayoutShow(tools::Invocation& invocation) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    invocation.Result() = LayoutFields().Make(
        {&session, ReadFlashLayout(invocation, session.First(), session.Handle())});
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
            .result = tools::ShapeOf<LayoutFields>,
        },
    };
    return kCommands;
}

}  // namespace vxmgr
