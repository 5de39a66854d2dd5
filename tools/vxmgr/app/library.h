// The management library as the commands use it: texts, and adapters that close themselves.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "hxmgtapi.h"

namespace vxmgr {

std::string LibraryVersion();                // "1.28.0.197"
std::string StatusMessage(uint32_t status);  // the library's text for any status

// kWentAway for a failure at a port (without an object: any that was open) whose driver has gone
// away since it was opened, or was started anew; else the status itself.
inline constexpr uint32_t kWentAway = 1167;  // ERROR_DEVICE_NOT_CONNECTED
uint32_t CauseOf(uint32_t status, const std::string& object);

// From this driver version on, drivers answer the requests of the current generation.
inline constexpr uint32_t kCurrentDriver = 70503;

// While it lives, a port that was open stays so, for the next one who opens it: for a command that
// runs many others inside it. One at a time.
class OpenPortsMemory {
  public:
    // traceFolder: what is opened without a trace file of its own has its trace in "scsi-3.txt" and
    // so on there, in the system's code page; empty: none. The files are whole when this is gone.
    explicit OpenPortsMemory(const std::string& traceFolder);
    ~OpenPortsMemory();
    OpenPortsMemory(const OpenPortsMemory&) = delete;
    OpenPortsMemory& operator=(const OpenPortsMemory&) = delete;
};

// An open port of an adapter.
class Device {
  public:
    Device() = default;
    Device(Device&& other) noexcept
        : handle_(std::exchange(other.handle_, 0)),
          scsiPort_(other.scsiPort_),
          tracePath_(std::move(other.tracePath_)) {}
    Device& operator=(Device&& other) noexcept;
    ~Device() { Close(); }

    // object: the port's name in messages. tracePath: the library's trace is appended to that file;
    // empty for none.
    HX_STATUS Open(uint32_t scsiPort, const std::string& object, const std::string& tracePath);
    void Close();

    bool IsOpen() const { return handle_ != 0; }
    uint32_t Handle() const { return handle_; }
    const HXMGT_API_HANDLE& Info() const { return HXGetGlobalDevice()[handle_]; }

  private:
    uint32_t handle_ = 0;
    uint32_t scsiPort_ = 0;
    std::string tracePath_;
};

}  // namespace vxmgr
