#include "vxmgr/diag/dump_kinds.h"

#include <cstring>

namespace vxmgr {
namespace {

#pragma pack(push, 1)
// In front of a raw dump.
struct RawHead {
    uint32_t size;  // the room on entry
    uint8_t rest[68];
};
#pragma pack(pop)
static_assert(sizeof(RawHead) == 72);

using RawQuery = HX_STATUS(uint32_t handle, uint64_t reserved, void* buffer);
using SizedQuery = HX_STATUS(uint32_t handle, uint64_t reserved, void* buffer, uint32_t* size);

// A query with no room fails for want of it and so tells the size.
HX_STATUS WithoutRoom(HX_STATUS status) {
    return status == HXMGT_BUFFER_TOO_SMALL ? HXMGT_SUCCESS : status;
}

// A dump may grow between the query and the fetch: what did not fit is a failure then.
template <RawQuery* query>
HX_STATUS RawSize(uint32_t handle, uint32_t* size) {
    RawHead head{};
    const HX_STATUS status = WithoutRoom(query(handle, 0, &head));
    *size = status == HXMGT_SUCCESS ? head.size : 0;
    return status;
}

template <RawQuery* query>
HX_STATUS FetchRaw(uint32_t handle, uint32_t size, std::vector<uint8_t>* bytes) {
    std::vector<uint8_t> buffer(sizeof(RawHead) + size_t{size});
    std::memcpy(buffer.data(), &size, sizeof size);
    const HX_STATUS status = query(handle, 0, buffer.data());
    if (status == HXMGT_SUCCESS) {
        bytes->assign(buffer.begin() + sizeof(RawHead), buffer.end());
    }
    return status;
}

template <SizedQuery* query>
HX_STATUS SizeOf(uint32_t handle, uint32_t* size) {
    *size = 0;
    uint8_t none = 0;
    return WithoutRoom(query(handle, 0, &none, size));
}

template <SizedQuery* query>
HX_STATUS FetchSized(uint32_t handle, uint32_t size, std::vector<uint8_t>* bytes) {
    std::vector<uint8_t> buffer(size);
    uint32_t filled = size;
    const HX_STATUS status = query(handle, 0, buffer.data(), &filled);
    if (status == HXMGT_SUCCESS) {
        buffer.resize(filled < size ? filled : size);
        *bytes = std::move(buffer);
    }
    return status;
}

constexpr DumpKind kKinds[] = {
    {"fc", "Fibre Channel firmware", RawSize<HXGetFcDumpRaw>, FetchRaw<HXGetFcDumpRaw>},
    {"mpi", "management processor", RawSize<HXGetMpiDumpRaw>, FetchRaw<HXGetMpiDumpRaw>},
    {"mctp", "management transport", SizeOf<HXGetFcMctpDump>, FetchSized<HXGetFcMctpDump>},
    {"mini", "minimal dump", SizeOf<HXGetMiniDump>, FetchSized<HXGetMiniDump>},
};
static_assert(std::size(kKinds) == std::size(kDumpNames));

}  // namespace

std::span<const DumpKind> DumpKinds() {
    return kKinds;
}

const DumpKind& DumpKindOf(const std::string& name) {
    for (const DumpKind& kind : kKinds) {
        if (name == kind.name) {
            return kind;
        }
    }
    return kKinds[0];
}

HX_STATUS AskDumpSizes(PortVisit& visit, std::vector<DumpSize>* sizes) {
    HX_STATUS failure = HXMGT_SUCCESS;
    for (const DumpKind& kind : DumpKinds()) {
        sizes->push_back({&kind, HXMGT_SUCCESS, 0});
        DumpSize& size = sizes->back();
        size.status = kind.size(visit.Handle(), &size.bytes);
        if (size.status != HXMGT_SUCCESS && !HasNoDump(size.status) && failure == HXMGT_SUCCESS) {
            failure = size.status;
            visit.query = std::string("size of the ") + kind.name + " dump";
        }
        visit.task.Answered();
    }
    return failure;
}

}  // namespace vxmgr
