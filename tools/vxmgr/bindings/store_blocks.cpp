#include "vxmgr/bindings/store_blocks.h"

#include "vxmgr/bindings/lunmask_luns.h"

namespace vxmgr {

std::unique_ptr<HX_LUN_DATA> AsStored(const HX_LUN_DATA& block) {
    auto stored = std::make_unique<HX_LUN_DATA>(block);
    const auto unused = SlotsOf(*stored).subspan(RowsOf(*stored).size());
    std::fill(unused.begin(), unused.end(), HX_LUN_RECORD{});
    return stored;
}

std::unique_ptr<HX_LUN_DATA> AsVersion1(const HX_LUN_DATA& block) {
    auto stored = std::make_unique<HX_LUN_DATA>();
    stored->version = 1;
    stored->count = static_cast<uint16_t>(RowsOf(block).size());
    for (size_t i = 0; i < stored->count; ++i) {
        const HX_LUN_RECORD& from = block.records[i];
        SetNames(stored->records[i], Wwn::Of(from.nodeName), Wwn::Of(from.portName));
        SetMasked(MaskedOf(from) & FirstLuns(kLegacyLuns), stored->records[i]);
    }
    return stored;
}

}  // namespace vxmgr
