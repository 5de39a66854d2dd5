// flash layout
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {
namespace {

using Region = FlashRegion;

Value LastByte(const Region& region) {
    return region.start && region.size != 0 ? HexValue(uint64_t{*region.start} + region.size - 1, 8)
                                            : Value();
}

const Fields<Region> kRegionFields = {
    {"code", "Code", "CODE", kInteger, &Region::code},
    {"key", "Key", "KEY", kText, &Region::Key},
    {"name", "Name", "HOLDS", kText, &Region::Name},
    {"start", "Start", "START", Hexadecimal(8).OrNull(), &Region::start, "first byte in the flash"},
    {"end", "End", "END", kText.OrNull(), LastByte, "last byte"},
    {"size", "Size", "SIZE", kInteger, SizeOf<&Region::size>},
    {"flags", "Flags", "FLAGS", kText,
     [](const Region& one) {
         const bool secure = (one.flags & HX_REGION_FLAG_SECURE) != 0;
         return HexValue(one.flags, 2).Shown(secure ? "secure" : "-");
     },
     "bit 0: secure updates go through this region"},
};

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

const Fields<ShownLayout> kLayoutFields = {
    {kSessionFields, &ShownLayout::session},
    {"has_regions", "Has regions", kFlag,
     [](const ShownLayout& shown) { return !shown.layout.whole; },
     "false: one region stands for the whole flash"},
    {"size", "Size of all regions", kInteger, SizeOf<&ShownLayout::Bytes>, "bytes of all regions"},
    {"regions", "Regions", kRegionFields,
     [](const ShownLayout& shown) { return shown.layout.regions; }, "no regions"},
};

ExitCode FlashLayoutShow(Invocation& invocation) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    invocation.Result() = kLayoutFields.Make(
        {&session, ReadFlashLayout(invocation, session.First(), session.Handle())});
    return ExitCode::Done;
}

}  // namespace

CommandRows FlashLayoutCommands() {
    static const Command kCommands[] = {
        {.path = "flash layout",
         .help = "list the regions of an adapter's flash",
         .run = FlashLayoutShow,
         .example = "flash layout -a serial:EMU7740A0001",
         .result = ShapeOf<kLayoutFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
