// The driver service of the emulated adapters.
#pragma once

#include <chrono>

#include "frame/owned.h"
#include "model/profile/profile.h"
#include "vocabulary.h"

namespace vxemu {

enum class ServiceState : uint8_t { NotInstalled, Stopped, Starting, Running, Stopping };

const char* NameOf(ServiceState state);
extern const Fields<ServiceState> kServiceFields;

// Functions return a Windows error code, 0 for success.
class DriverService {
  public:
    // Opens the service manager; with rights to change something, or only to ask.
    uint32_t Connect(bool change);

    uint32_t State(ServiceState* state);

    // Creates the service for the driver file beside this program, or points an existing one to
    // it. *changed tells whether anything was done.
    uint32_t Install(bool* changed);
    uint32_t Uninstall();

    // Leaves the profile where the driver reads it at its start.
    uint32_t StoreProfile(const Profile& profile);

    // Names the folder of MakeFlashFolder to the driver; an empty one is none.
    uint32_t StoreFlashFolder(const std::wstring& folder);

    uint32_t Start();
    uint32_t Stop();

    // Waits for a state; the state reached in *state.
    uint32_t WaitFor(ServiceState wanted, std::chrono::milliseconds atMost, ServiceState* state);

    static std::string DriverPath();

  private:
    uint32_t Open();

    struct ServiceTraits {
        using Value = SC_HANDLE;
        static Value Empty() { return nullptr; }
        static void Close(Value value) { CloseServiceHandle(value); }
    };
    frame::Owned<ServiceTraits> manager_;
    frame::Owned<ServiceTraits> service_;
    bool change_ = false;
};

}  // namespace vxemu
