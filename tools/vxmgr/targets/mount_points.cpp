#include "vxmgr/targets/mount_points.h"

#include <windows.h>

#include "common/console.h"
#include "vxmgr/app/getters.h"

namespace vxmgr {

std::vector<std::string> MountPointsOf(const HX_VOLUME& volume) {
    const std::wstring name = console::ToWide(TextOf<&HX_VOLUME::name>(volume));
    std::vector<std::string> places;
    DWORD length = 0;
    GetVolumePathNamesForVolumeNameW(name.c_str(), nullptr, 0, &length);
    std::wstring paths(length, L'\0');
    if (length == 0 ||
        !GetVolumePathNamesForVolumeNameW(name.c_str(), paths.data(), length, &length)) {
        const std::string first = TextOf<&HX_VOLUME::path>(volume);
        return first.empty() ? places : std::vector{first};
    }
    // Texts with their ends, and an empty one behind the last.
    for (const wchar_t* path = paths.c_str(); *path != L'\0'; path += wcslen(path) + 1) {
        const std::string place = console::ToUtf8(path);
        places.push_back(FieldText(place.c_str(), place.size()));
    }
    return places;
}

}  // namespace vxmgr
