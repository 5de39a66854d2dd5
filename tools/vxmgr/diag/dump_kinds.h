// The dumps that an adapter may hold, and how each is fetched.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "vxmgr/app/port_walk.h"

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

// A dump that is not there, or that the chip does not make, is no failure of a list.
inline bool HasNoDump(HX_STATUS status) {
    return status == HXMGT_NO_FIRMWARE_DUMP || ExitCodeOf(status) == ExitCode::NotSupported;
}

struct DumpSize {
    const DumpKind* kind = nullptr;
    HX_STATUS status = HXMGT_SUCCESS;
    uint32_t bytes = 0;

    bool IsPresent() const { return status == HXMGT_SUCCESS && bytes != 0; }
};

// The first failure among the sizes of all kinds; they all are asked for.
HX_STATUS AskDumpSizes(PortVisit& visit, std::vector<DumpSize>* sizes);

}  // namespace vxmgr
