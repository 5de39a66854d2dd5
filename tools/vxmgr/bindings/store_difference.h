// What an import changes: targets that come, go or become different.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

struct DifferenceRow {
    const char* action;  // "added", "removed", "changed"
    Wwn target;          // port name
    Wwn node;
    std::string what;  // "flags 0x00 -> 0x01, bus:target 0:3 -> 0:4"
};

std::vector<DifferenceRow> DifferencesOf(const HX_TARGET_DATA& before, const HX_TARGET_DATA& after);
std::vector<DifferenceRow> DifferencesOf(const HX_LUN_DATA& before, const HX_LUN_DATA& after);

extern const Fields<DifferenceRow> kDifferenceFields;

}  // namespace vxmgr
