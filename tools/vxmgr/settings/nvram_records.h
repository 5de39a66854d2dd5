// NVRAM in the results of commands.
#pragma once

#include "vxmgr/settings/nvram_fields.h"

namespace vxmgr {

// A variable's value as people read it.
std::string ShownValue(const NvramVariable& variable, uint32_t value);

struct VariableRow {
    const NvramVariable* variable;
    uint32_t value;
};
const Fields<VariableRow>& VariableFields();

// The name that eight variables make ("Port Name Byte"); nothing when the chip does not have them.
std::optional<Wwn> NameInBlock(const NvramMap& map, Bytes block, const char* description);

// List "changes" with columns for both sides, and how many bytes differ beside the variables.
const Fields<NvramDifference>& ChangeFields();    // "before", "after"
const Fields<NvramDifference>& FileDiffFields();  // "adapter", "file"

}  // namespace vxmgr
