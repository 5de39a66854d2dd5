// --store: what the driver reads at its next start, what it works with now, or both.
#pragma once

#include "common/invocation.h"

namespace vxmgr {

inline constexpr const char* kStoreNames[] = {"registry", "live", "both"};
inline constexpr tools::Argument kStoreArgument = {
    .name = "--store",
    .valueName = "STORE",
    .help = "registry (read at the driver's next start), live (the driver now) or both (both)",
    .choices = kStoreNames};

struct StoreChoice {
    bool registry;
    bool live;
};

inline StoreChoice GivenStores(tools::Invocation& invocation, const char* otherwise = "both") {
    const std::string given = invocation.Given().Text("store", otherwise);
    return {given != "live", given != "registry"};
}

}  // namespace vxmgr
