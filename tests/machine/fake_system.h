// The operating system's device functions as the library under test sees them: device names lead
// to devices of the test, waiting costs no time, and every open is counted.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "machine/import_redirection.h"

namespace support {

// What stands behind a device name. Returns the Windows error of the transfer, 0 for success.
class Device {
  public:
    virtual ~Device() = default;
    virtual uint32_t Control(uint32_t code, const void* input, uint32_t inputSize, void* output,
                             uint32_t outputSize, uint32_t* returned) = 0;
};

struct OpenCall {
    std::string name;
    DWORD access, sharing, disposition, flags;
};

// One at a time may exist. Names without a device do not exist for the library.
class FakeSystem {
  public:
    FakeSystem();
    ~FakeSystem();
    FakeSystem(const FakeSystem&) = delete;
    FakeSystem& operator=(const FakeSystem&) = delete;

    void Attach(const std::string& name, Device* device);
    void AttachScsiPort(uint32_t port, Device* device);
    void DetachScsiPort(uint32_t port);
    // From the given open of the port on (0 = the next), opens fail with this Windows error.
    void FailOpen(uint32_t port, uint32_t error, uint32_t after = 0);

    std::vector<OpenCall> opens;
    std::vector<DWORD> sleeps;
    uint32_t OpenHandles() const;
    // Every handle value must be closed once; a second close is counted here.
    uint32_t badCloses = 0;

  private:
    struct OpenFailure {
        uint32_t error, after;
    };

    static HANDLE WINAPI CreateFileHook(LPCSTR name, DWORD access, DWORD sharing,
                                        LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                        DWORD flags, HANDLE pattern);
    static BOOL WINAPI DeviceIoControlHook(HANDLE handle, DWORD code, LPVOID input, DWORD inputSize,
                                           LPVOID output, DWORD outputSize, LPDWORD returned,
                                           LPOVERLAPPED overlapped);
    static BOOL WINAPI CloseHandleHook(HANDLE handle);
    static void WINAPI SleepHook(DWORD milliseconds);

    static FakeSystem* current_;
    mutable std::mutex lock_;
    std::map<std::string, Device*> devices_;
    std::map<std::string, OpenFailure> failures_;
    std::map<HANDLE, Device*> handles_;
    uintptr_t nextHandle_;
    std::vector<std::unique_ptr<ImportRedirection>> redirections_;
};

std::string ScsiPortName(uint32_t port);

}  // namespace support
