#include "machine/fake_system.h"

namespace support {

namespace {

// Far from any handle the system gives; device handles of the test are multiples of 4 above it.
constexpr uintptr_t kFirstHandle = 0x5A000000;
constexpr const char kDevicePrefix[] = "\\\\.\\";
constexpr const char kVolumePrefix[] = "\\\\?\\";

HANDLE AsHandle(uintptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

bool IsOurs(HANDLE handle) {
    const auto value = reinterpret_cast<uintptr_t>(handle);
    return value >= kFirstHandle && value < kFirstHandle + 0x01000000;
}

BOOL Fail(uint32_t error) {
    SetLastError(error);
    return FALSE;
}

}  // namespace

std::string ScsiPortName(uint32_t port) {
    return kDevicePrefix + ("scsi" + std::to_string(port)) + ":";
}

FakeSystem* FakeSystem::current_ = nullptr;

FakeSystem::FakeSystem() : nextHandle_(kFirstHandle) {
    current_ = this;
    redirections_.push_back(RedirectLibrary("CreateFileA", &CreateFileHook));
    redirections_.push_back(RedirectLibrary("DeviceIoControl", &DeviceIoControlHook));
    redirections_.push_back(RedirectLibrary("CloseHandle", &CloseHandleHook));
    redirections_.push_back(RedirectLibrary("Sleep", &SleepHook));
}

FakeSystem::~FakeSystem() {
    redirections_.clear();
    current_ = nullptr;
}

void FakeSystem::Attach(const std::string& name, Device* device) {
    const std::lock_guard hold(lock_);
    devices_[name] = device;
}

void FakeSystem::AttachScsiPort(uint32_t port, Device* device) {
    Attach(ScsiPortName(port), device);
}

void FakeSystem::DetachScsiPort(uint32_t port) {
    const std::lock_guard hold(lock_);
    devices_.erase(ScsiPortName(port));
}

void FakeSystem::FailOpen(uint32_t port, uint32_t error, uint32_t after) {
    const std::lock_guard hold(lock_);
    failures_[ScsiPortName(port)] = {error, after};
}

uint32_t FakeSystem::OpenHandles() const {
    const std::lock_guard hold(lock_);
    return static_cast<uint32_t>(handles_.size());
}

HANDLE WINAPI FakeSystem::CreateFileHook(LPCSTR name, DWORD access, DWORD sharing,
                                         LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                         DWORD flags, HANDLE pattern) {
    const std::string text = name;
    if (!text.starts_with(kDevicePrefix) && !text.starts_with(kVolumePrefix)) {
        return CreateFileA(name, access, sharing, security, disposition, flags, pattern);
    }
    FakeSystem& self = *current_;
    const std::lock_guard hold(self.lock_);
    self.opens.push_back({text, access, sharing, disposition, flags});
    const auto device = self.devices_.find(text);
    if (device == self.devices_.end()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (const auto failure = self.failures_.find(text); failure != self.failures_.end()) {
        if (failure->second.after == 0) {
            SetLastError(failure->second.error);
            return INVALID_HANDLE_VALUE;
        }
        --failure->second.after;
    }
    self.nextHandle_ += 4;
    self.handles_[AsHandle(self.nextHandle_)] = device->second;
    return AsHandle(self.nextHandle_);
}

BOOL WINAPI FakeSystem::DeviceIoControlHook(HANDLE handle, DWORD code, LPVOID input,
                                            DWORD inputSize, LPVOID output, DWORD outputSize,
                                            LPDWORD returned, LPOVERLAPPED overlapped) {
    FakeSystem& self = *current_;
    Device* device = nullptr;
    {
        const std::lock_guard hold(self.lock_);
        const auto found = self.handles_.find(handle);
        device = found == self.handles_.end() ? nullptr : found->second;
    }
    if (device == nullptr) {
        return Fail(ERROR_INVALID_HANDLE);
    }
    // The system itself faults on a missing count when there is no overlapped record.
    if (returned == nullptr || overlapped != nullptr) {
        return Fail(ERROR_NOACCESS);
    }
    uint32_t count = 0;
    const uint32_t error = device->Control(code, input, inputSize, output, outputSize, &count);
    *returned = count;
    return error == 0 ? TRUE : Fail(error);
}

BOOL WINAPI FakeSystem::CloseHandleHook(HANDLE handle) {
    FakeSystem& self = *current_;
    if (!IsOurs(handle)) {
        return handle == INVALID_HANDLE_VALUE ? Fail(ERROR_INVALID_HANDLE) : CloseHandle(handle);
    }
    const std::lock_guard hold(self.lock_);
    if (self.handles_.erase(handle) == 0) {
        ++self.badCloses;
        return Fail(ERROR_INVALID_HANDLE);
    }
    return TRUE;
}

void WINAPI FakeSystem::SleepHook(DWORD milliseconds) {
    FakeSystem& self = *current_;
    const std::lock_guard hold(self.lock_);
    self.sleeps.push_back(milliseconds);
}

}  // namespace support
