// Disks, tapes, changers and volumes as the operating system lists them to the library.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hxmapping.h"
#include "machine/fake_system.h"

namespace support {

struct ScsiLocation {
    uint8_t port, bus, target, lun;
};

// One at a time may exist, beside a FakeSystem.
class SystemDevices {
  public:
    explicit SystemDevices(FakeSystem& system);
    ~SystemDevices();
    SystemDevices(const SystemDevices&) = delete;
    SystemDevices& operator=(const SystemDevices&) = delete;

    // A device named without its prefix: "PhysicalDrive3".
    struct Unit : Device {
        ScsiLocation at = {};
        uint32_t number = 0;
        bool hasAddress = true;  // else the system knows no SCSI address of it
        bool hasNumber = true;
        uint32_t returned = UINT32_MAX;  // at most as many bytes of a reply come back
        uint32_t Control(uint32_t code, const void*, uint32_t, void* output, uint32_t outputSize,
                         uint32_t* count) override;
    };
    Unit& Add(const std::string& name, ScsiLocation at, uint32_t number);
    // A name in the system's list that leads nowhere, or somewhere else.
    void List(const std::string& name) { names_.push_back(name); }

    struct Volume : Device {
        std::string name;  // "\\?\Volume{...}\"
        std::vector<std::string> paths;
        std::vector<HX_DISK_EXTENT> extents;
        uint32_t claimed = 0;  // extents that the reply counts above those it has
        uint32_t error = 0;
        uint32_t Control(uint32_t code, const void*, uint32_t, void* output, uint32_t outputSize,
                         uint32_t* count) override;
    };
    Volume& AddVolume(const std::string& id, std::vector<HX_DISK_EXTENT> extents,
                      std::vector<std::string> paths = {});
    static std::string VolumeName(const std::string& id) { return "\\\\?\\Volume{" + id + "}\\"; }

    uint32_t listError = 0;     // of the list of device names
    std::string unnamedVolume;  // listed first, under a name that is no volume's
    uint32_t searchesOpen = 0;
    std::vector<uint32_t> listRooms;  // that the library offered

  private:
    static DWORD WINAPI QueryDosDeviceHook(LPCSTR name, LPSTR target, DWORD room);
    static HANDLE WINAPI FindFirstVolumeHook(LPSTR name, DWORD room);
    static BOOL WINAPI FindNextVolumeHook(HANDLE search, LPSTR name, DWORD room);
    static BOOL WINAPI FindVolumeCloseHook(HANDLE search);
    static BOOL WINAPI PathNamesHook(LPCSTR volume, LPCH names, DWORD room, PDWORD needed);
    static BOOL WINAPI MountPointHook(LPCSTR mountPoint, LPSTR volume, DWORD room);

    static SystemDevices* current_;
    FakeSystem& system_;
    std::vector<std::string> names_;
    std::vector<std::unique_ptr<Unit>> units_;
    std::vector<std::unique_ptr<Volume>> volumes_;
    size_t searched_ = 0;
    std::vector<std::unique_ptr<ImportRedirection>> redirections_;
};

}  // namespace support
