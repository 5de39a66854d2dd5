#include "vxmgr/hbaapi/hbaapi_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {
namespace {

constexpr size_t kNameRoom = 256;
constexpr HBA_UINT32 kMostDiscovered = 4096;  // ends a list that the library would not end
constexpr HBA_UINT32 kFirstEntries = 16;
constexpr HBA_UINT32 kMostEntries = 65536;

// The mapping may grow between the answer that says how long it is and the next question.
void ReadMapping(const HBA_ENTRYPOINTS& api, HBA_HANDLE handle, HbaAdapter& adapter) {
    HBA_UINT32 room = kFirstEntries;
    for (;;) {
        constexpr size_t kHead = offsetof(HBA_FCPTARGETMAPPING, entry);
        // The records hold 64-bit numbers: 64-bit units keep them aligned.
        std::vector<uint64_t> buffer(kHead / 8 + (room * sizeof(HBA_FCPSCSIENTRY) + 7) / 8);
        auto* const list = reinterpret_cast<HBA_FCPTARGETMAPPING*>(buffer.data());
        list->NumberOfEntries = room;
        adapter.mapping.status = api.GetFcpTargetMappingHandler(handle, list);
        const HBA_UINT32 count = list->NumberOfEntries;
        if (adapter.mapping.status == HBA_STATUS_ERROR_MORE_DATA && count > room &&
            count <= kMostEntries) {
            room = count;
            continue;
        }
        if (adapter.mapping.Holds()) {
            adapter.mapping.record.assign(list->entry, list->entry + std::min(count, room));
        }
        return;
    }
}

void ReadDiscovered(const HBA_ENTRYPOINTS& api, HBA_HANDLE handle, HbaAdapter& adapter) {
    const HBA_UINT32 count =
        adapter.port.Holds()
            ? std::min<HBA_UINT32>(adapter.port.record.NumberofDiscoveredPorts, kMostDiscovered)
            : 0;
    for (HBA_UINT32 index = 0; index < count; ++index) {
        HbaAnswer<HBA_PORTATTRIBUTES> remote;
        remote.status = api.GetDiscoveredPortAttributesHandler(handle, 0, index, &remote.record);
        // Ports may have gone since they were counted.
        if (remote.status == HBA_STATUS_ERROR_ILLEGAL_WWN ||
            remote.status == HBA_STATUS_ERROR_ILLEGAL_INDEX) {
            return;
        }
        if (!remote.Holds()) {
            adapter.discoveredEnd = remote.status;
            return;
        }
        adapter.discovered.push_back(remote);
    }
}

}  // namespace

std::optional<HBA_STATUS> HbaAdapter::Failure() const {
    if (named != HBA_STATUS_OK) {
        return named;
    }
    if (!opened) {
        return std::nullopt;
    }
    if (!attributes.Holds()) {
        return attributes.status;
    }
    return port.Holds() ? HBA_STATUS_OK : port.status;
}

HbaAdapter ReadHbaAdapter(const HBA_ENTRYPOINTS& api, HBA_UINT32 index, HbaDepth depth) {
    HbaAdapter adapter;
    adapter.index = index;
    char name[kNameRoom] = {};
    adapter.named = api.GetAdapterNameHandler(index, name);
    if (adapter.named != HBA_STATUS_OK) {
        return adapter;
    }
    name[sizeof name - 1] = 0;
    adapter.name = FieldText(name, sizeof name);
    const HBA_HANDLE handle = api.OpenAdapterHandler(name);
    if (handle == 0) {
        return adapter;
    }
    adapter.opened = true;
    adapter.attributes.status = api.GetAdapterAttributesHandler(handle, &adapter.attributes.record);
    adapter.port.status = api.GetAdapterPortAttributesHandler(handle, 0, &adapter.port.record);
    if (depth == HbaDepth::Everything) {
        adapter.statistics.status =
            api.GetPortStatisticsHandler(handle, 0, &adapter.statistics.record);
        adapter.management.status = api.GetRNIDMgmtInfoHandler(handle, &adapter.management.record);
        ReadDiscovered(api, handle, adapter);
        ReadMapping(api, handle, adapter);
    }
    api.CloseAdapterHandler(handle);
    return adapter;
}

std::optional<uint32_t> ScsiPortOfDevice(const char* name, size_t size) {
    constexpr std::string_view kPrefix = "\\\\.\\scsi";
    const std::string text = Lowercase(FieldText(name, size));
    if (!text.starts_with(kPrefix) || !text.ends_with(':')) {
        return std::nullopt;
    }
    const auto number = ParseNumber(
        std::string_view(text).substr(kPrefix.size(), text.size() - kPrefix.size() - 1));
    return number && *number <= UINT32_MAX ? std::optional(static_cast<uint32_t>(*number))
                                           : std::nullopt;
}

}  // namespace vxmgr
