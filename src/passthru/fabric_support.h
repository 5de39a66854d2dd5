// Which adapters take part in fabric services.
#pragma once

#include "hxmgtapi.h"
#include "properties/adapter_texts.h"
#include "properties/chip_families.h"

namespace passthru {

// The oldest chip, told by its model text, has neither CT nor RNID.
inline bool IsOldestChip(const HXMGT_API_HANDLE& device) {
    return properties::ChipOfModelText(properties::TextOf(device.szModel))
        .Has(properties::ChipTrait::NoCtNoRnid);
}

}  // namespace passthru
