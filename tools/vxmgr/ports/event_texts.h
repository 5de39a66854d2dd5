// Names and meanings of the events that adapters report.
#pragma once

#include <string>

#include "hxmgtapi.h"

namespace vxmgr {

// The names that --kind takes.
inline constexpr const char* kEventKindNames[] = {"lip",  "link-up",     "link-down", "lip-reset",
                                                  "rscn", "port-update", "test"};

std::string EventKindName(uint32_t type);  // "link-down"; "type-7" for one without a name

// What happened, for a person.
std::string EventMeaning(const HX_EVENT& event);

}  // namespace vxmgr
