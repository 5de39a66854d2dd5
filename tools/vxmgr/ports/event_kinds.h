// What events are called and what they mean.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// The names that --kind takes.
inline constexpr const char* kEventNames[] = {"lip",  "link-up",     "link-down", "lip-reset",
                                              "rscn", "port-update", "test"};

std::string EventName(const HX_EVENT& event);     // "type-9" for one without a name
std::string EventMeaning(const HX_EVENT& event);  // "the link came up"

}  // namespace vxmgr
