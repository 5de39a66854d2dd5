#include "vxmgr/update/update_interrupt.h"

#include <windows.h>

#include <atomic>

#include "common/console.h"

namespace vxmgr {
namespace {

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
