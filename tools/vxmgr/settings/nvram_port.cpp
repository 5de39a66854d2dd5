#include "vxmgr/settings/nvram_port.h"

#include <algorithm>
#include <array>
#include <set>

namespace vxmgr {
namespace {

constexpr uint32_t kLargestRegion = 65536;

// The library tells that a region is larger than the room, not how large: one of the layout's sizes
// it is.
HX_STATUS ReadExtended(uint32_t handle, std::vector<uint8_t>* block) {
    block->assign(HX_NVRAM_EXTENDED_BYTES, 0);
    HX_STATUS status =
        HXGetNVRam(handle, 0, HX_NVRAM_BLOCK, block->data(), HX_NVRAM_EXTENDED_BYTES);
    FlashLayout layout;
    if (status != HXMGT_BUFFER_TOO_SMALL || QueryFlashLayout(handle, &layout) != HXMGT_SUCCESS) {
        return status;
    }
    std::set<uint32_t> sizes;
    for (const FlashRegion& region : layout.regions) {
        if (region.size > HX_NVRAM_EXTENDED_BYTES && region.size <= kLargestRegion) {
            sizes.insert(region.size);
        }
    }
    for (const uint32_t size : sizes) {
        block->assign(size, 0);
        status = HXGetNVRam(handle, 0, HX_NVRAM_BLOCK, block->data(), size);
        if (status != HXMGT_BUFFER_TOO_SMALL) {
            return status;
        }
    }
    return status;
}

using VariableFields = std::array<HX_VARIABLE_FIELD, HX_NVRAM_VARIABLES>;
HX_STATUS AskFields(uint32_t handle, VariableFields* fields) {
    uint32_t count = HX_NVRAM_VARIABLES;
    return HXGetVariableFields(handle, fields->data(), &count);
}

NvramKind KindOf(const VariableFields& fields) {
    const bool beyond = std::ranges::any_of(fields, [](const HX_VARIABLE_FIELD& field) {
        return field.width != 0 && field.firstBit / 8 >= HX_NVRAM_CLASSIC_BYTES;
    });
    return beyond ? NvramKind::Extended : NvramKind::Classic;
}

void MarkReadOnly(NvramMap& map, const std::vector<uint8_t>& block) {
    if (map.kind != NvramKind::Classic) {
        return;  // the families with read-only variables have classic blocks
    }
    for (NvramVariable& variable : map.variables) {
        variable.readOnly = HXIsVariableReadOnly(block.data(), variable.number) != 0;
    }
}

}  // namespace

NvramMap LearnVariables(Invocation& invocation, const PortSession& session) {
    NvramMap map;
    VariableFields fields{};
    invocation.Require(AskFields(session.Handle(), &fields),
                       "the chip does not tell which NVRAM variables it has",
                       session.port.Object());
    map.kind = KindOf(fields);
    for (uint32_t number = 0; number < fields.size(); ++number) {
        auto variable = DescribedVariable(number, HXGetVariableDescription(0, number));
        if (!variable) {
            continue;
        }
        variable->masked = invocation.Names().Enabled() &&
                           variable->description.find("Name Byte") != std::string::npos;
        const HX_VARIABLE_FIELD& field = fields[number];
        if (field.width != 0) {
            variable->field = BitField{field.firstBit, field.width};
        }
        map.variables.push_back(std::move(*variable));
    }
    return map;
}

HX_STATUS ReadBlock(uint32_t handle, NvramKind kind, std::vector<uint8_t>* block) {
    if (kind == NvramKind::Extended) {
        return ReadExtended(handle, block);
    }
    block->assign(HX_NVRAM_CLASSIC_BYTES, 0);
    return HXGetNVRam(handle, 0, HX_NVRAM_BLOCK, block->data(), HX_NVRAM_CLASSIC_BYTES);
}

HX_STATUS AskNvramKind(uint32_t handle, NvramKind* kind) {
    VariableFields fields{};
    const HX_STATUS status = AskFields(handle, &fields);
    *kind = KindOf(fields);
    return status;
}

PortNvram ReadNvram(Invocation& invocation, const PortSession& session, bool otherBank) {
    PortNvram nvram;
    nvram.map = LearnVariables(invocation, session);
    const auto readInUse = [&session, kind = nvram.map.kind](std::vector<uint8_t>* block) {
        return ReadBlock(session.Handle(), kind, block);
    };
    static_cast<PortSettings&>(nvram) =
        ReadSettings(invocation, session, Settings::Nvram, readInUse, otherBank);
    if (nvram.bytes.size() < BlockBytes(nvram.map.kind)) {
        invocation.Fail(ExitCode::NotSupported, "the NVRAM is smaller than a block of this chip");
    }
    MarkReadOnly(nvram.map, nvram.bytes);
    return nvram;
}

}  // namespace vxmgr
