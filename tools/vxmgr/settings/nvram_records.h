// NVRAM in the results of commands.
#pragma once

#include <optional>
#include <string>

#include "common/fields.h"
#include "vxmgr/settings/nvram_fields.h"

namespace vxmgr {

// A variable's value as people read it.
std::string ShownValue(const NvramVariable& variable, uint32_t value);

struct VariableRow {
    const NvramVariable* variable;
    uint32_t value;
};
const tools::Fields<VariableRow>& VariableFields();

// The name that eight variables make ("Port Name Byte"); nothing when the chip does not have them.
std::optional<tools::Wwn> NameInBlock(const NvramMap& map, Bytes block, const char* description);

// List "changes" with columns for both sides, and how many bytes differ beside the variables.
const tools::Fields<NvramDifference>& ChangeFields();    // "before", "after"
const tools::Fields<NvramDifference>& FileDiffFields();  // "adapter", "file"

}  // namespace vxmgr
