#include "vxmgr/update/update_lock.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Severity;

}  // namespace

HX_STATUS UpdateLock::Held::Release() {
    return held.exchange(false) ? HXEndFlashUpdate(handle, 0, key) : HX_STATUS{HXMGT_SUCCESS};
}

std::shared_ptr<UpdateLock::Held> UpdateLock::Take(tools::Invocation& invocation, uint32_t handle,
                                                   const std::string& object) {
    auto lock = std::make_shared<Held>();
    lock->handle = handle;
    const HX_STATUS status = HXStartFlashUpdate(handle, 0, &lock->key);
    if (status == HXMGT_SESSION_IN_PROGRESS) {
        throw tools::CommandError{
            ExitCode::Busy,
            {Severity::Error, "another program is updating this adapter, nothing was written",
             "`flash lock show` tells which process holds the lock", object, status}};
    }
    if (status == HXMGT_OUT_OF_MEMORY) {
        throw tools::CommandError{
            ExitCode::Failed,
            {Severity::Error, "there is no update lock for this adapter, nothing was written",
             "its serial number cannot be read, or 256 adapters have one", object, status}};
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the update lock cannot be taken", object);
    }
    return lock;
}

UpdateLock::UpdateLock(tools::Invocation& invocation, uint32_t handle, const Port& port)
    : invocation_(invocation),
      object_(port.Object()),
      guard_(invocation, port),
      lock_(Take(invocation, handle, object_)),
      hook_(invocation.Hooks(), [lock = lock_] { lock->Release(); }) {}

UpdateLock::~UpdateLock() {
    if (const HX_STATUS status = lock_->Release(); status != HXMGT_SUCCESS) {
        invocation_.Add(
            {Severity::Warning,
             "the update lock could not be given back: the adapter does not answer, or the "
             "lock's time is over",
             "it is given back when this program ends", object_,
             invocation_.CauseOf(status, object_)});
    }
}

}  // namespace vxmgr
