#include "mapping/os_devices.h"

#include <windows.h>
#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <tuple>

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
    static constexpr DWORD kFirstNameRoom = 64 * 1024;
    static constexpr DWORD kMostNameRoom = 16 * 1024 * 1024;

    frame::Bytes names_;
    DWORD length_ = 0;
};

constexpr uint32_t kEveryScsiPort = 0xFFFFFFFF;

// Behind which SCSI port disks were seen last, by their numbers: 0 or one more than the port's.
// Only the order of asking goes by it, so that it may be wrong, old, or that of another disk.
constexpr uint32_t kRemembered = 1024;
std::atomic<uint8_t> lastSeen[kRemembered];

void Remember(const DeviceName& name, uint8_t seen) {
    if (name.type == HX_OS_DEVICE_DISK && name.number < kRemembered) {
        lastSeen[name.number].store(seen, std::memory_order_relaxed);
    }
}

bool WasSeen(uint32_t disk, uint32_t scsiPort) {
    const uint8_t seen = lastSeen[disk].load(std::memory_order_relaxed);
    return seen != 0 && seen - 1u == scsiPort;
}

// Where in the order a device is asked.
enum class Turn : uint8_t { SeenBehindPort, NeverSeen, SeenElsewhere };

Turn TurnOf(const DeviceName& name, uint32_t scsiPort) {
    if (name.type != HX_OS_DEVICE_DISK || name.number >= kRemembered ||
        lastSeen[name.number].load(std::memory_order_relaxed) == 0) {
        return Turn::NeverSeen;
    }
    return WasSeen(name.number, scsiPort) ? Turn::SeenBehindPort : Turn::SeenElsewhere;
}

// A device that may be asked for its address.
struct Candidate {
    std::string_view name;
    DeviceName parsed;
    Turn turn;
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
    const bool tells = opened.Valid() && Ask(opened.Get(), IOCTL_SCSI_GET_ADDRESS, address);
    Remember(parsed, static_cast<uint8_t>(tells ? address.PortNumber + 1 : 0));
    if (!tells) {
        return false;
    }
    if (scsiPort != kEveryScsiPort && address.PortNumber != scsiPort) {
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

auto OrderOf(const HX_OS_DEVICE& device) {
    // By value: a reference to a packed field is none that every platform can follow.
    return std::tuple<uint16_t, uint16_t, uint16_t, uint16_t, uint32_t, uint32_t>(
        device.scsiPort, device.bus, device.target, device.lun, device.type, device.number);
}

}  // namespace

HX_STATUS OsDevices::FetchAll() {
    return FetchNamed(kEveryScsiPort, nullptr);
}

HX_STATUS OsDevices::FetchBehind(uint32_t handle, uint32_t scsiPort) {
    return FetchOf(handle, scsiPort, nullptr);
}

HX_STATUS OsDevices::FetchAt(uint32_t handle, uint32_t scsiPort, uint32_t bus, uint32_t target) {
    const BusAndTarget only = {static_cast<uint16_t>(bus), static_cast<uint16_t>(target)};
    return FetchOf(handle, scsiPort, &only);
}

// Opening and asking a device costs far more than anything else here, and a machine may have
// hundreds: once the devices of all units have been found that the port lists, those of other ports
// are left alone. The port tells its units anew for each call, and each device its address, so
// nothing that comes, goes or moves is missed.
HX_STATUS OsDevices::FetchOf(uint32_t handle, uint32_t scsiPort, const BusAndTarget* only) {
    PortUnits units;
    const auto tells = [&] {
        const bool told = units.Fetch(handle);
        if (told && only != nullptr) {
            units.KeepAt(only->bus, only->target);
        }
        return told;
    };
    if (tells() && FetchSeen(scsiPort, units)) {
        return HXMGT_SUCCESS;
    }
    return FetchNamed(scsiPort, tells() ? &units : nullptr);
}

bool OsDevices::FetchSeen(uint32_t scsiPort, PortUnits& wanted) {
    frame::RecordList<uint32_t> seen;  // other threads remember disks meanwhile
    if (!seen.Reserve(kRemembered)) {
        return false;
    }
    for (uint32_t number = 0; number < kRemembered; ++number) {
        if (WasSeen(number, scsiPort)) {
            seen.Add(number);
        }
    }
    if (!devices_.Reserve(seen.Records().size())) {
        return false;
    }
    for (const uint32_t number : seen.Records()) {
        DiskNameText name;
        HX_OS_DEVICE device;
        WriteDiskName(number, name);
        if (!wanted.Empty() && Describe(name, {HX_OS_DEVICE_DISK, number}, scsiPort, device)) {
            devices_.Add(device);
            wanted.Found(device.bus, device.target, device.lun);
        }
    }
    Sort();
    return wanted.Empty();
}

HX_STATUS OsDevices::FetchNamed(uint32_t scsiPort, PortUnits* wanted) {
    DeviceNames names;
    if (const HX_STATUS status = names.Fetch(); status != HXMGT_SUCCESS) {
        return status;
    }
    size_t count = 0;
    names.ForEachDevice([&](std::string_view, const DeviceName&) { ++count; });
    frame::RecordList<Candidate> candidates;
    if (!candidates.Reserve(count) || !devices_.Reserve(count)) {
        return HXMGT_OUT_OF_MEMORY;
    }
    names.ForEachDevice([&](std::string_view name, const DeviceName& parsed) {
        candidates.Add({name, parsed, TurnOf(parsed, scsiPort)});
    });
    for (const Turn turn : {Turn::SeenBehindPort, Turn::NeverSeen, Turn::SeenElsewhere}) {
        for (const Candidate& candidate : candidates.Records()) {
            HX_OS_DEVICE device;
            if (candidate.turn == turn && (wanted == nullptr || !wanted->Empty()) &&
                Describe(candidate.name, candidate.parsed, scsiPort, device)) {
                devices_.Add(device);
                if (wanted != nullptr) {
                    wanted->Found(device.bus, device.target, device.lun);
                }
            }
        }
    }
    Sort();
    return HXMGT_SUCCESS;
}

void OsDevices::Sort() {
    const std::span<HX_OS_DEVICE> found = devices_.Records();
    std::sort(found.begin(), found.end(),
              [](const HX_OS_DEVICE& a, const HX_OS_DEVICE& b) { return OrderOf(a) < OrderOf(b); });
    // A name may be listed for the session and for the machine.
    const auto end =
        std::unique(found.begin(), found.end(), [](const HX_OS_DEVICE& a, const HX_OS_DEVICE& b) {
            return std::strcmp(a.name, b.name) == 0;
        });
    devices_.Shorten(static_cast<size_t>(end - found.begin()));
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
