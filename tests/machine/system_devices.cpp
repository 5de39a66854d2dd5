#include "machine/system_devices.h"

#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <cstring>

namespace support {

namespace {

BOOL FailWith(uint32_t error) {
    SetLastError(error);
    return FALSE;
}

// A reply as a driver gives it: whole, or cut to what it says it returned.
template <typename Record>
uint32_t Answer(const Record& record, uint32_t most, void* output, uint32_t outputSize,
                uint32_t* count) {
    if (outputSize < sizeof record) {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    *count = std::min<uint32_t>(sizeof record, most);
    memcpy(output, &record, *count);
    return 0;
}

bool Put(const std::string& text, LPSTR out, DWORD room) {
    if (text.size() >= room) {
        return false;
    }
    memcpy(out, text.c_str(), text.size() + 1);
    return true;
}

// Texts with a zero each, and one more.
std::string Joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += text + '\0';
    }
    return all + '\0';
}

constexpr uintptr_t kSearch = 0x5B0000;

}  // namespace

SystemDevices* SystemDevices::current_ = nullptr;

SystemDevices::SystemDevices(FakeSystem& system) : system_(system) {
    current_ = this;
    redirections_.push_back(RedirectLibrary("QueryDosDeviceA", &QueryDosDeviceHook));
    redirections_.push_back(RedirectLibrary("FindFirstVolumeA", &FindFirstVolumeHook));
    redirections_.push_back(RedirectLibrary("FindNextVolumeA", &FindNextVolumeHook));
    redirections_.push_back(RedirectLibrary("FindVolumeClose", &FindVolumeCloseHook));
    redirections_.push_back(RedirectLibrary("GetVolumePathNamesForVolumeNameA", &PathNamesHook));
    redirections_.push_back(RedirectLibrary("GetVolumeNameForVolumeMountPointA", &MountPointHook));
}

SystemDevices::~SystemDevices() {
    redirections_.clear();
    current_ = nullptr;
}

SystemDevices::Unit& SystemDevices::Add(const std::string& name, ScsiLocation at, uint32_t number) {
    units_.push_back(std::make_unique<Unit>());
    Unit& unit = *units_.back();
    unit.at = at;
    unit.number = number;
    List(name);
    system_.Attach("\\\\.\\" + name, &unit);
    return unit;
}

uint32_t SystemDevices::Unit::Control(uint32_t code, const void*, uint32_t, void* output,
                                      uint32_t outputSize, uint32_t* count) {
    if (code == IOCTL_SCSI_GET_ADDRESS && hasAddress) {
        const SCSI_ADDRESS address = {sizeof address, at.port, at.bus, at.target, at.lun};
        return Answer(address, returned, output, outputSize, count);
    }
    if (code == IOCTL_STORAGE_GET_DEVICE_NUMBER && hasNumber) {
        const STORAGE_DEVICE_NUMBER answer = {FILE_DEVICE_DISK, number, 0};
        return Answer(answer, returned, output, outputSize, count);
    }
    return ERROR_INVALID_FUNCTION;
}

SystemDevices::Volume& SystemDevices::AddVolume(const std::string& id,
                                                std::vector<HX_DISK_EXTENT> extents,
                                                std::vector<std::string> paths) {
    volumes_.push_back(std::make_unique<Volume>());
    Volume& volume = *volumes_.back();
    volume.name = VolumeName(id);
    volume.extents = std::move(extents);
    volume.paths = std::move(paths);
    system_.Attach(volume.name.substr(0, volume.name.size() - 1), &volume);
    return volume;
}

uint32_t SystemDevices::Volume::Control(uint32_t code, const void*, uint32_t, void* output,
                                        uint32_t outputSize, uint32_t* count) {
    if (code != IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS || error != 0) {
        return error != 0 ? error : ERROR_INVALID_FUNCTION;
    }
    constexpr uint32_t kHead = 8;
    const auto bytes = static_cast<uint32_t>(extents.size() * sizeof extents[0]);
    if (outputSize < kHead + bytes) {
        return ERROR_MORE_DATA;
    }
    // The four bytes between are whatever the system left there.
    const uint32_t head[2] = {static_cast<uint32_t>(extents.size()) + claimed, 0xEEEEEEEE};
    memcpy(output, head, kHead);
    memcpy(static_cast<uint8_t*>(output) + kHead, extents.data(), bytes);
    *count = kHead + bytes;
    return 0;
}

DWORD WINAPI SystemDevices::QueryDosDeviceHook(LPCSTR name, LPSTR target, DWORD room) {
    SystemDevices& self = *current_;
    self.listRooms.push_back(room);
    const std::string all = Joined(self.names_);
    if (name != nullptr || self.listError != 0 || all.size() > room) {
        return static_cast<DWORD>(
            FailWith(self.listError != 0 ? self.listError : ERROR_INSUFFICIENT_BUFFER));
    }
    memcpy(target, all.data(), all.size());
    return static_cast<DWORD>(all.size());
}

HANDLE WINAPI SystemDevices::FindFirstVolumeHook(LPSTR name, DWORD room) {
    SystemDevices& self = *current_;
    self.searched_ = 0;
    const HANDLE search = reinterpret_cast<HANDLE>(kSearch);
    if (!self.unnamedVolume.empty()) {
        Put(self.unnamedVolume, name, room);
    } else if (!FindNextVolumeHook(search, name, room)) {
        return INVALID_HANDLE_VALUE;
    }
    ++self.searchesOpen;
    return search;
}

BOOL WINAPI SystemDevices::FindNextVolumeHook(HANDLE search, LPSTR name, DWORD room) {
    SystemDevices& self = *current_;
    if (search != reinterpret_cast<HANDLE>(kSearch) || self.searched_ == self.volumes_.size()) {
        return FailWith(ERROR_NO_MORE_FILES);
    }
    return Put(self.volumes_[self.searched_++]->name, name, room)
               ? TRUE
               : FailWith(ERROR_FILENAME_EXCED_RANGE);
}

BOOL WINAPI SystemDevices::FindVolumeCloseHook(HANDLE) {
    --current_->searchesOpen;
    return TRUE;
}

BOOL WINAPI SystemDevices::PathNamesHook(LPCSTR volume, LPCH names, DWORD room, PDWORD needed) {
    for (const auto& known : current_->volumes_) {
        if (known->name == volume) {
            const std::string all = Joined(known->paths);
            *needed = static_cast<DWORD>(all.size());
            if (all.size() > room) {
                return FailWith(ERROR_MORE_DATA);
            }
            memcpy(names, all.data(), all.size());
            return TRUE;
        }
    }
    return FailWith(ERROR_FILE_NOT_FOUND);
}

BOOL WINAPI SystemDevices::MountPointHook(LPCSTR mountPoint, LPSTR volume, DWORD room) {
    for (const auto& known : current_->volumes_) {
        if (std::find(known->paths.begin(), known->paths.end(), mountPoint) != known->paths.end()) {
            return Put(known->name, volume, room) ? TRUE : FailWith(ERROR_FILENAME_EXCED_RANGE);
        }
    }
    return FailWith(ERROR_PATH_NOT_FOUND);
}

}  // namespace support
