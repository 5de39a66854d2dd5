#include "vxmgr/app/library.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <mutex>

#include "common/console.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {
namespace {

// A program that was killed while it opened an adapter leaves the library's mutex abandoned, which
// costs the next open of anybody a failure, once.
HX_STATUS OpenOnceMore(uint32_t scsiPort, uint32_t* handle) {
    const HX_STATUS status = HXOpenScsiPort(scsiPort, handle);
    return status == HXMGT_MUTEX_NOT_RESERVED ? HXOpenScsiPort(scsiPort, handle) : status;
}

// The ports that this process has had open, by their names in messages.
class OpenedPorts {
  public:
    void Add(const std::string& object, uint32_t scsiPort, uint32_t handle) {
        const std::lock_guard guard(lock_);
        ports_[object] = {scsiPort, handle};
    }

    void Close(uint32_t handle) {
        const std::lock_guard guard(lock_);
        for (auto& [object, port] : ports_) {
            port.handle = port.handle == handle ? 0 : port.handle;
        }
    }

    bool AnyHasGone(uint32_t status, const std::string& object) {
        const std::lock_guard guard(lock_);
        return std::any_of(ports_.begin(), ports_.end(), [&](const auto& port) {
            return (object.empty() || object == port.first) &&
                   (HasGone(port.second.scsiPort) ||
                    (status == ERROR_ACCESS_DENIED && IsStale(port.second.handle)));
        });
    }

  private:
    struct Opened {
        uint32_t scsiPort;
        uint32_t handle;  // 0: closed again
    };

    // Access was granted when the port was opened: a handle that is refused is one of a driver that
    // has ended, although another one serves the port by now.
    static bool IsStale(uint32_t handle) {
        HX_DRIVER_PROPERTY driver{};
        return handle != 0 && HXGetHbaDeviceDriverProperty(handle, &driver) == ERROR_ACCESS_DENIED;
    }

    static bool HasGone(uint32_t scsiPort) {
        const std::string path = "\\\\.\\Scsi" + std::to_string(scsiPort) + ":";
        const HANDLE device =
            CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
        if (device == INVALID_HANDLE_VALUE) {
            return GetLastError() != ERROR_ACCESS_DENIED;
        }
        CloseHandle(device);
        return false;
    }

    std::mutex lock_;
    std::map<std::string, Opened> ports_;
};

OpenedPorts& Ports() {
    static OpenedPorts opened;
    return opened;
}

}  // namespace

uint32_t CauseOf(uint32_t status, const std::string& object) {
    static_assert(kWentAway == ERROR_DEVICE_NOT_CONNECTED);
    return Ports().AnyHasGone(status, object) ? kWentAway : status;
}

std::string LibraryVersion() {
    char text[64] = {};
    HXGetVersion(text, sizeof text);
    return Split(text, ' ').front();
}

std::string StatusMessage(uint32_t status) {
    // The library's text of a code that the system does not know is that of an earlier call.
    std::string text = KindOf(status) == StatusKind::Windows ? console::SystemErrorText(status)
                                                             : HXGetErrorString(status);
    text = FieldText(text.c_str(), text.size());
    while (!text.empty() && (text.back() == '?' || text.back() == '.' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

Device& Device::operator=(Device&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::exchange(other.handle_, 0);
    }
    return *this;
}

HX_STATUS Device::Open(uint32_t scsiPort, const std::string& object, const std::string& tracePath) {
    Close();
    uint32_t handle = 0;
    HX_STATUS status = OpenOnceMore(scsiPort, &handle);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    handle_ = handle;
    Ports().Add(object, scsiPort, handle);
    if (!tracePath.empty()) {
        status = HXEnableDebugTrace(&handle, tracePath.c_str(), 1);
    }
    return status;
}

void Device::Close() {
    if (handle_ != 0) {
        Ports().Close(handle_);
        HXCloseDevice(static_cast<int32_t>(std::exchange(handle_, 0)));
    }
}

}  // namespace vxmgr
