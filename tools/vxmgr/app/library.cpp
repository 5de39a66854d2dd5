#include "vxmgr/app/library.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>

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

// Handles that an OpenPortsMemory keeps; each is used by one at a time.
class IdleHandles {
  public:
    struct Kept {
        uint32_t handle;
        std::string tracePath;
    };

    void Begin(const std::string& traceFolder) {
        const std::lock_guard guard(lock_);
        active_ = true;
        traceFolder_ = traceFolder;
    }
    void End() {
        {
            const std::lock_guard guard(lock_);
            active_ = false;
            traceFolder_.clear();
        }
        Drop();
    }
    // The trace of a port that was given none.
    std::string TraceOf(uint32_t scsiPort) {
        const std::lock_guard guard(lock_);
        return traceFolder_.empty() ? std::string()
                                    : traceFolder_ + "\\scsi-" + std::to_string(scsiPort) + ".txt";
    }
    std::optional<Kept> Take(uint32_t scsiPort) {
        const std::lock_guard guard(lock_);
        auto found = handles_.extract(scsiPort);
        return found.empty() ? std::nullopt : std::optional(std::move(found.mapped()));
    }
    bool Keep(uint32_t scsiPort, Kept kept) {
        const std::lock_guard guard(lock_);
        return active_ && handles_.emplace(scsiPort, std::move(kept)).second;
    }
    // Makes room in the library's table of handles; false when there was nothing to close.
    bool Drop() {
        std::map<uint32_t, Kept> handles;
        {
            const std::lock_guard guard(lock_);
            handles.swap(handles_);
        }
        for (const auto& [scsiPort, kept] : handles) {
            HXCloseDevice(static_cast<int32_t>(kept.handle));
        }
        return !handles.empty();
    }

  private:
    std::mutex lock_;
    bool active_ = false;
    std::string traceFolder_;
    std::map<uint32_t, Kept> handles_;
};

IdleHandles& Idle() {
    static IdleHandles idle;
    return idle;
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
        scsiPort_ = other.scsiPort_;
        tracePath_ = std::move(other.tracePath_);
    }
    return *this;
}

HX_STATUS Device::Open(uint32_t scsiPort, const std::string& object, const std::string& tracePath) {
    Close();
    scsiPort_ = scsiPort;
    tracePath_ = tracePath.empty() ? Idle().TraceOf(scsiPort) : tracePath;
    std::string traced;
    HX_STATUS status = HXMGT_SUCCESS;
    uint32_t handle = 0;
    if (auto kept = Idle().Take(scsiPort)) {
        handle = kept->handle;
        traced = std::move(kept->tracePath);
    } else {
        status = OpenOnceMore(scsiPort, &handle);
        if (status == HXMGT_INVALID_HANDLE && Idle().Drop()) {
            status = OpenOnceMore(scsiPort, &handle);
        }
    }
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    handle_ = handle;
    Ports().Add(object, scsiPort, handle);
    if (traced != tracePath_) {
        const bool ends = tracePath_.empty();
        status = HXEnableDebugTrace(&handle, ends ? nullptr : tracePath_.c_str(), ends ? 0 : 1);
    }
    return status;
}

void Device::Close() {
    if (handle_ == 0) {
        return;
    }
    Ports().Close(handle_);
    const uint32_t handle = std::exchange(handle_, 0);
    if (!Idle().Keep(scsiPort_, {handle, std::move(tracePath_)})) {
        HXCloseDevice(static_cast<int32_t>(handle));
    }
}

OpenPortsMemory::OpenPortsMemory(const std::string& traceFolder) {
    Idle().Begin(traceFolder);
}

OpenPortsMemory::~OpenPortsMemory() {
    Idle().End();
}

}  // namespace vxmgr
