// Volumes of the operating system and the disks they live on.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "frame/record_list.h"
#include "hxmapping.h"

namespace mapping {

// "\\?\Volume{...}\" with its terminator; the field of HX_VOLUME.
using VolumeName = char[64];

// The name of the volume that a drive, mounted folder or volume name stands for.
HX_STATUS NameVolume(const char* text, VolumeName& name);

// Where the volume is mounted first; empty when nowhere or too long for path.
void PathOfVolume(const VolumeName& name, std::span<char> path);

class VolumeExtents {
  public:
    HX_STATUS Fetch(const VolumeName& name);
    std::span<const HX_DISK_EXTENT> Records() const { return extents_.Records(); }

  private:
    frame::RecordList<HX_DISK_EXTENT> extents_;
};

// All volumes, one after another.
class VolumeSearch {
  public:
    VolumeSearch() = default;
    VolumeSearch(const VolumeSearch&) = delete;
    VolumeSearch& operator=(const VolumeSearch&) = delete;
    ~VolumeSearch();

    // False at the end.
    bool Next(VolumeName& name);

  private:
    bool Step(std::span<char> name);

    HANDLE search_ = INVALID_HANDLE_VALUE;
    uint32_t steps_ = 0;
};

}  // namespace mapping
