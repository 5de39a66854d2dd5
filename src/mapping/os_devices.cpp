#include "mapping/os_devices.h"

#include <windows.h>
#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "frame/owned.h"
#include "mapping/device_names.h"
#include "mapping/system_query.h"

namespace mapping {
namespace {

static_assert(sizeof(HX_OS_DEVICE) == 72);
static_assert(offsetof(HX_OS_DEVICE, type) == 32);
static_assert(offsetof(HX_OS_DEVICE, scsiPort) == 40);
static_assert(offsetof(HX_OS_DEVICE, lun) == 46);
static_assert(offsetof(HX_OS_DEVICE, nodeName) == 48);
static_assert(offsetof(HX_OS_DEVICE, portId) == 64);
static_assert(offsetof(HX_OS_DEVICE, discovered) == 67);

constexpr DWORD kFirstNameRoom = 64 * 1024;
constexpr DWORD kMostNameRoom = 16 * 1024 * 1024;

// Names of everything that can be opened as a device, each with its zero.
class DeviceNames {
  public:
    HX_STATUS Fetch() {
        for (DWORD room = kFirstNameRoom; room <= kMostNameRoom; room *= 2) {
            names_ = frame::ZeroedBytes(room);
            if (names_ == nullptr) {
                return HXMGT_OUT_OF_MEMORY;
            }
            length_ = QueryDosDeviceA(nullptr, reinterpret_cast<char*>(names_.get()), room);
            if (length_ != 0) {
                length_ = std::min(length_, room);
                return HXMGT_SUCCESS;
            }
            if (const HX_STATUS error = LastError(); error != ERROR_INSUFFICIENT_BUFFER) {
                return error;
            }
        }
        return ERROR_INSUFFICIENT_BUFFER;
    }

    template <typename Visit>
    void ForEachDevice(Visit visit) const {
        std::span<const char> rest(reinterpret_cast<const char*>(names_.get()), length_);
        while (!rest.empty()) {
            const std::string_view name = FirstOf(rest);
            if (const DeviceName parsed = ParseDeviceName(name); parsed.type != 0) {
                visit(name, parsed);
            }
            rest = rest.subspan(std::min(name.size() + 1, rest.size()));
        }
    }

  private:
    frame::Bytes names_;
    DWORD length_ = 0;
};

// False for a device that is gone, has no SCSI address or stands behind another port.
bool Describe(std::string_view name, const DeviceName& parsed, uint32_t scsiPort,
              HX_OS_DEVICE& device) {
    device = {};
    if (!JoinText(kDevicePrefix, name, device.name)) {
        return false;
    }
    const frame::OwnedFile opened = OpenForQueries(device.name);
    SCSI_ADDRESS address{};
    if (!opened.Valid() || !Ask(opened.Get(), IOCTL_SCSI_GET_ADDRESS, address) ||
        address.PortNumber != scsiPort) {
        return false;
    }
    // The number that the extents of volumes speak of; it is that of the name wherever there is no
    // better answer.
    STORAGE_DEVICE_NUMBER number{};
    device.number = Ask(opened.Get(), IOCTL_STORAGE_GET_DEVICE_NUMBER, number) ? number.DeviceNumber
                                                                               : parsed.number;
    device.type = parsed.type;
    device.scsiPort = address.PortNumber;
    device.bus = address.PathId;
    device.target = address.TargetId;
    device.lun = address.Lun;
    return true;
}

uint64_t OrderOf(const HX_OS_DEVICE& device) {
    return uint64_t{device.bus} << 48 | uint64_t{device.target} << 32 | uint64_t{device.lun} << 16 |
           device.type;
}

}  // namespace

HX_STATUS OsDevices::Fetch(uint32_t scsiPort) {
    DeviceNames names;
    if (const HX_STATUS status = names.Fetch(); status != HXMGT_SUCCESS) {
        return status;
    }
    size_t candidates = 0;
    names.ForEachDevice([&](std::string_view, const DeviceName&) { ++candidates; });
    if (!devices_.Reserve(candidates)) {
        return HXMGT_OUT_OF_MEMORY;
    }
    names.ForEachDevice([&](std::string_view name, const DeviceName& parsed) {
        HX_OS_DEVICE device;
        if (Describe(name, parsed, scsiPort, device)) {
            devices_.Add(device);
        }
    });
    const std::span<HX_OS_DEVICE> found = devices_.Records();
    std::sort(found.begin(), found.end(), [](const HX_OS_DEVICE& a, const HX_OS_DEVICE& b) {
        return OrderOf(a) != OrderOf(b) ? OrderOf(a) < OrderOf(b) : a.number < b.number;
    });
    // A name may be listed for the session and for the machine.
    const auto end =
        std::unique(found.begin(), found.end(), [](const HX_OS_DEVICE& a, const HX_OS_DEVICE& b) {
            return std::strcmp(a.name, b.name) == 0;
        });
    devices_.Shorten(static_cast<size_t>(end - found.begin()));
    return HXMGT_SUCCESS;
}

const HX_OS_DEVICE* OsDevices::At(uint32_t bus, uint32_t target) const {
    for (const HX_OS_DEVICE& device : Records()) {
        if (device.bus == bus && device.target == target) {
            return &device;
        }
    }
    return nullptr;
}

}  // namespace mapping
