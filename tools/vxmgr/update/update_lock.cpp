#include "vxmgr/update/update_lock.h"

#include <windows.h>

#include <sddl.h>

#include <atomic>
#include <cctype>

#include "frame/owned.h"
#include "vxmgr/flash/flash_lock_view.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

// Whoever may write to an adapter: the system and administrators.
constexpr char kSecurity[] = "D:(A;;GA;;;SY)(A;;GA;;;BA)";

// The name that all programs of the machine know the guard by.
std::string GuardName(const std::string& serial) {
    std::string name = "Global\\VXMGR_Update_";
    for (const char c : serial) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

HANDLE MakeMutex(const std::string& name) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorA(kSecurity, SDDL_REVISION_1,
                                                              &descriptor, nullptr)) {
        return nullptr;
    }
    const std::unique_ptr<void, decltype(&LocalFree)> owner(descriptor, LocalFree);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor, FALSE};
    return CreateMutexA(&attributes, FALSE, name.c_str());
}

std::shared_ptr<void> TakeGuard(Invocation& invocation, const Port& port) {
    const std::string serial = port.Serial();
    if (serial.empty()) {
        return nullptr;
    }
    frame::OwnedObject mutex(MakeMutex(GuardName(serial)));
    if (!mutex.Valid()) {
        invocation.Fail(GetLastError(),
                        "other programs that write to the adapter cannot be kept out",
                        port.Object());
    }
    const DWORD waited = WaitForSingleObject(mutex.Get(), 0);
    if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED) {
        FailAt(port.Object(), ExitCode::Busy,
               "another vxmgr is writing to this adapter, nothing was written",
               "wait for its end, then try again; `flash lock show` tells which process it is");
    }
    return {mutex.Release(), [](HANDLE held) {
                ReleaseMutex(held);
                CloseHandle(held);
            }};
}

}  // namespace

UpdateGuard::UpdateGuard(Invocation& invocation, const Port& port)
    : mutex_(TakeGuard(invocation, port)) {}

struct UpdateLock::Held {
    uint32_t handle = 0;
    uint32_t key = 0;
    std::string serial;
    std::optional<uint32_t> startTick;  // tells this hold from a later one of the same process
    std::atomic<bool> held{true};

    HX_STATUS Release() {
        return held.exchange(false) ? HXEndFlashUpdate(handle, 0, key) : HX_STATUS{HXMGT_SUCCESS};
    }

    // The lock as all programs see it; null when it cannot be looked at.
    std::optional<FlashLock> Shared() const {
        const auto table = CopyLockTable();
        const FlashLock* const found = table != nullptr ? FindLock(*table, serial) : nullptr;
        return found != nullptr ? std::optional(*found) : std::nullopt;
    }

    static std::shared_ptr<Held> Take(Invocation& invocation, uint32_t handle, const Port& port) {
        const std::string object = port.Object();
        auto lock = std::make_shared<Held>();
        lock->handle = handle;
        const HX_STATUS status = HXStartFlashUpdate(handle, 0, &lock->key);
        if (status == HXMGT_SESSION_IN_PROGRESS) {
            FailAt(object, ExitCode::Busy,
                   "another program is updating this adapter, nothing was written",
                   "`flash lock show` tells which process holds the lock", status);
        }
        if (status == HXMGT_OUT_OF_MEMORY) {
            FailAt(object, ExitCode::Failed,
                   "there is no update lock for this adapter, nothing was written",
                   "its serial number cannot be read, or 256 adapters have one", status);
        }
        invocation.Require(status, "the update lock cannot be taken", object);
        lock->serial = port.Serial();
        if (const auto shared = lock->Shared()) {
            lock->startTick = shared->startTick;
        }
        return lock;
    }
};

UpdateLock::UpdateLock(Invocation& invocation, uint32_t handle, const Port& port)
    : invocation_(invocation),
      object_(port.Object()),
      guard_(invocation, port),
      lock_(Held::Take(invocation, handle, port)),
      hook_(invocation.Hooks(), [lock = lock_] { lock->Release(); }) {}

bool UpdateLock::StillHeld() const {
    const auto shared = lock_->Shared();
    return !shared || !lock_->startTick ||
           (shared->owner == lock_->key && shared->startTick == *lock_->startTick);
}

UpdateLock::~UpdateLock() {
    if (const HX_STATUS status = lock_->Release(); status != HXMGT_SUCCESS) {
        WarnAbout(invocation_, object_,
                  "the update lock could not be given back: the adapter does not answer, or the "
                  "lock's time is over",
                  invocation_.CauseOf(status, object_), "it is given back when this program ends");
    }
}

}  // namespace vxmgr
