#include "vxmgr/update/update_lock.h"

#include <windows.h>

#include <sddl.h>

#include <atomic>
#include <cctype>

#include "common/console.h"
#include "frame/owned.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

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

std::shared_ptr<void> TakeGuard(tools::Invocation& invocation, const Port& port) {
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

// The system's handlers have no context.
std::atomic<uint32_t> interrupts = 0;
std::atomic<const char*> toTell = nullptr;  // null: nothing is said

// Handlers are asked the youngest first; the frame's own comes behind this one.
BOOL WINAPI HandleControl(DWORD event) {
    const bool interrupt = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    if (!interrupt || interrupts.fetch_add(1) != 0) {
        return FALSE;
    }
    if (const char* what = toTell) {
        tools::console::Write(
            stderr, std::string(what) + " is finished first; once more gives it up half done\n");
    }
    return TRUE;
}

}  // namespace

struct UpdateLock::Held {
    uint32_t handle = 0;
    uint32_t key = 0;
    std::atomic<bool> held{true};

    HX_STATUS Release() {
        return held.exchange(false) ? HXEndFlashUpdate(handle, 0, key) : HX_STATUS{HXMGT_SUCCESS};
    }

    static std::shared_ptr<Held> Take(tools::Invocation& invocation, uint32_t handle,
                                      const std::string& object) {
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
        if (status != HXMGT_SUCCESS) {
            invocation.Fail(status, "the update lock cannot be taken", object);
        }
        return lock;
    }
};

UpdateLock::UpdateLock(tools::Invocation& invocation, uint32_t handle, const Port& port)
    : invocation_(invocation),
      object_(port.Object()),
      guard_(TakeGuard(invocation, port)),
      lock_(Held::Take(invocation, handle, object_)),
      hook_(invocation.Hooks(), [lock = lock_] { lock->Release(); }) {}

UpdateLock::~UpdateLock() {
    if (const HX_STATUS status = lock_->Release(); status != HXMGT_SUCCESS) {
        WarnAbout(invocation_, object_,
                  "the update lock could not be given back: the adapter does not answer, or the "
                  "lock's time is over",
                  invocation_.CauseOf(status, object_), "it is given back when this program ends");
    }
}

FinishFirst::FinishFirst(const tools::Invocation& invocation, const char* what) {
    interrupts = 0;
    const bool tells = !IsJson(invocation.Mode()) && !invocation.Quiet();
    toTell = tells ? what : nullptr;
    SetConsoleCtrlHandler(HandleControl, TRUE);
}

FinishFirst::~FinishFirst() {
    SetConsoleCtrlHandler(HandleControl, FALSE);
}

bool FinishFirst::Interrupted() const {
    return interrupts != 0;
}

}  // namespace vxmgr
