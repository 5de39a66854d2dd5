// NVRAM in the results of commands.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vxmgr/settings/nvram_port.h"

namespace vxmgr {

// A variable's value as people read it; null for a byte of a name that --redact keeps back.
tools::Value VariableValue(tools::Invocation& invocation, const NvramVariable& variable,
                           uint32_t value);
std::string ShownValue(const NvramVariable& variable, uint32_t value);

// The name that eight variables make ("Port Name Byte"); nothing when the chip does not have them.
std::optional<tools::Wwn> NameInBlock(const NvramMap& map, Bytes block, const char* description);

// Lists "changes" with columns for both sides, and how many bytes differ beside the variables.
struct DifferenceHeadings {
    const char* beforeKey;
    const char* afterKey;
    const char* before;
    const char* after;
};
void AddDifference(tools::Invocation& invocation, const NvramDifference& difference,
                   const DifferenceHeadings& headings, const char* emptyText);

}  // namespace vxmgr
