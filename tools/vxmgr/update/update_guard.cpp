#include "vxmgr/update/update_guard.h"

#include <windows.h>

#include <sddl.h>

#include <cctype>

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Severity;

// Whoever may write to an adapter: the system and administrators.
constexpr char kSecurity[] = "D:(A;;GA;;;SY)(A;;GA;;;BA)";

struct LocalFreeDeleter {
    void operator()(void* block) const { LocalFree(block); }
};

HANDLE MakeMutex(const std::string& name) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorA(kSecurity, SDDL_REVISION_1,
                                                              &descriptor, nullptr)) {
        return nullptr;
    }
    const std::unique_ptr<void, LocalFreeDeleter> owner(descriptor);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor, FALSE};
    return CreateMutexA(&attributes, FALSE, name.c_str());
}

}  // namespace

std::string GuardName(const std::string& serial) {
    std::string name = "Global\\VXMGR_Update_";
    for (const char c : serial) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

void UpdateGuard::Closer::operator()(void* mutex) const {
    CloseHandle(mutex);
}

UpdateGuard::UpdateGuard(tools::Invocation& invocation, const Port& port) {
    const std::string serial = port.Serial();
    if (serial.empty()) {
        return;
    }
    mutex_.reset(MakeMutex(GuardName(serial)));
    if (mutex_ == nullptr) {
        invocation.Fail(GetLastError(),
                        "other programs that write to the adapter cannot be kept out",
                        port.Object());
    }
    const DWORD waited = WaitForSingleObject(mutex_.get(), 0);
    if (waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED) {
        return;
    }
    mutex_.reset();
    throw tools::CommandError{
        ExitCode::Busy,
        {Severity::Error,
         "another vxmgr is writing to this adapter, nothing was written",
         "wait for its end, then try again; `flash lock show` tells which process it is",
         port.Object(),
         {}}};
}

UpdateGuard::~UpdateGuard() {
    if (mutex_ != nullptr) {
        ReleaseMutex(mutex_.get());
    }
}

}  // namespace vxmgr
