#include "mapping/volumes.h"

#include <winioctl.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "frame/owned.h"
#include "mapping/device_names.h"
#include "mapping/system_query.h"

namespace mapping {
namespace {

// The system's records of extents are the public ones.
static_assert(sizeof(HX_DISK_EXTENT) == sizeof(DISK_EXTENT));
static_assert(offsetof(HX_DISK_EXTENT, disk) == offsetof(DISK_EXTENT, DiskNumber));
static_assert(offsetof(HX_DISK_EXTENT, offset) == offsetof(DISK_EXTENT, StartingOffset));
static_assert(offsetof(HX_DISK_EXTENT, length) == offsetof(DISK_EXTENT, ExtentLength));
static_assert(sizeof(HX_VOLUME) == 344);
static_assert(offsetof(HX_VOLUME, path) == 64);
static_assert(offsetof(HX_VOLUME, extents) == 324);
static_assert(offsetof(HX_VOLUME, bytesOnDisk) == 336);
static_assert(sizeof(HX_DISK_VOLUME) == 352);
static_assert(offsetof(HX_DISK_VOLUME, volume) == 8);

constexpr size_t kLongestText = 259;
constexpr uint32_t kFirstExtents = 16;
constexpr uint32_t kMostExtents = 4096;
constexpr DWORD kFirstPathRoom = 1024;
constexpr DWORD kMostPathRoom = 64 * 1024;
constexpr uint32_t kMostVolumes = 65536;  // ends a search that the system would not end

constexpr size_t kExtentsOffset = offsetof(VOLUME_DISK_EXTENTS, Extents);

}  // namespace

HX_STATUS NameVolume(const char* text, VolumeName& name) {
    const size_t length = text != nullptr ? std::strlen(text) : 0;
    if (length == 0 || length > kLongestText) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (IsVolumeName({text, length})) {
        return EndWithBackslash({text, length}, name) ? HXMGT_SUCCESS : HXMGT_INVALID_PARAMETER;
    }
    char mountPoint[kLongestText + 2];
    EndWithBackslash({text, length}, mountPoint);
    if (!GetVolumeNameForVolumeMountPointA(mountPoint, name, sizeof name)) {
        return LastError();
    }
    return HXMGT_SUCCESS;
}

void PathOfVolume(const VolumeName& name, std::span<char> path) {
    path[0] = 0;
    DWORD room = kFirstPathRoom;
    while (room <= kMostPathRoom) {
        const frame::Bytes list = frame::ZeroedBytes(room);
        if (list == nullptr) {
            return;
        }
        auto* const text = reinterpret_cast<char*>(list.get());
        DWORD needed = 0;
        if (GetVolumePathNamesForVolumeNameA(name, text, room, &needed)) {
            JoinText(FirstOf({text, room}), {}, path);
            return;
        }
        if (GetLastError() != ERROR_MORE_DATA) {
            return;
        }
        room = std::max(needed, room * 2);
    }
}

HX_STATUS VolumeExtents::Fetch(const VolumeName& name) {
    VolumeName device;
    std::memcpy(device, name, sizeof device);
    // With its last backslash the name would be that of the root folder.
    if (const size_t length = std::strlen(device); length != 0) {
        device[length - 1] = 0;
    }
    const frame::OwnedFile opened = OpenForQueries(device);
    if (!opened.Valid()) {
        return LastError();
    }
    for (uint32_t room = kFirstExtents; room <= kMostExtents; room *= 4) {
        const DWORD size = static_cast<DWORD>(kExtentsOffset + room * sizeof(DISK_EXTENT));
        const frame::Bytes reply = frame::ZeroedBytes(size);
        if (reply == nullptr || !extents_.Reserve(room)) {
            return HXMGT_OUT_OF_MEMORY;
        }
        DWORD returned = 0;
        if (DeviceIoControl(opened.Get(), IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0,
                            reply.get(), size, &returned, nullptr)) {
            const auto& list = *reinterpret_cast<const VOLUME_DISK_EXTENTS*>(reply.get());
            // No more than came back, whatever the count says.
            const size_t carried =
                returned > kExtentsOffset ? (returned - kExtentsOffset) / sizeof(DISK_EXTENT) : 0;
            const size_t count = std::min<size_t>(list.NumberOfDiskExtents, carried);
            const uint8_t* from = reply.get() + kExtentsOffset;
            for (size_t i = 0; i < count; ++i, from += sizeof(DISK_EXTENT)) {
                HX_DISK_EXTENT extent;
                std::memcpy(&extent, from, sizeof extent);
                extent.reserved = 0;
                extents_.Add(extent);
            }
            return HXMGT_SUCCESS;
        }
        if (const HX_STATUS error = LastError(); error != ERROR_MORE_DATA) {
            return error;
        }
    }
    return ERROR_MORE_DATA;
}

VolumeSearch::~VolumeSearch() {
    if (search_ != INVALID_HANDLE_VALUE) {
        FindVolumeClose(search_);
    }
}

bool VolumeSearch::Step(std::span<char> name) {
    const DWORD room = static_cast<DWORD>(name.size());
    if (search_ == INVALID_HANDLE_VALUE) {
        search_ = FindFirstVolumeA(name.data(), room);
        return search_ != INVALID_HANDLE_VALUE;
    }
    return FindNextVolumeA(search_, name.data(), room) != 0;
}

bool VolumeSearch::Next(VolumeName& name) {
    char found[MAX_PATH];
    while (steps_ < kMostVolumes && Step(found)) {
        ++steps_;
        // Whatever has another form of name could not be opened by it.
        if (JoinText(FirstOf(found), {}, name) && IsVolumeName(name)) {
            return true;
        }
    }
    return false;
}

}  // namespace mapping
