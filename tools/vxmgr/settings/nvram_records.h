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
extern const Fields<VariableRow> kVariableFields;

// The name that eight variables make ("Port Name Byte"); nothing when the chip does not have them.
std::optional<Wwn> NameInBlock(const NvramMap& map, Bytes block, const char* description);

// List "changes" with columns for both sides, and how many bytes differ beside the variables.
extern const Fields<NvramDifference> kChangeFields;    // "before", "after"
extern const Fields<NvramDifference> kFileDiffFields;  // "adapter", "file"

}  // namespace vxmgr
