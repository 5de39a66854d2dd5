// The dumps that an adapter may hold, and how each is fetched.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "hxmgtapi.h"

namespace vxmgr {

struct DumpKind {
    const char* name;  // as the command line has it
    const char* what;
    // First the size is asked for, then that much fetched; *bytes is then the dump alone.
    HX_STATUS (*size)(uint32_t handle, uint32_t* size);
    HX_STATUS (*fetch)(uint32_t handle, uint32_t size, std::vector<uint8_t>* bytes);
};

inline constexpr const char* kDumpNames[] = {"fc", "mpi", "mctp", "mini"};

std::span<const DumpKind> DumpKinds();  // in the order of the names

// The kind of one of the names.
const DumpKind& DumpKindOf(const std::string& name);

}  // namespace vxmgr
