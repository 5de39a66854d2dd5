#include "support/flash_peer.h"

#include <atomic>
#include <cstdio>
#include <sstream>

#include "support/fake_system.h"

namespace support {

namespace {

constexpr DWORD kWatchdogSleep = 900000;
std::atomic<uint32_t> tick{0};
std::atomic<int> sleepers{0};
HANDLE wake = nullptr;    // set: sleepers go on
HANDLE asleep = nullptr;  // counts the sleeps that began

}  // namespace

UpdateClock::UpdateClock() {
    wake = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    asleep = CreateSemaphoreA(nullptr, 0, 1000, nullptr);
    tick = 1000;
    sleep_ = RedirectLibrary("Sleep", &SleepHook);
    tick_ = RedirectLibrary("GetTickCount", &TickHook);
}

UpdateClock::~UpdateClock() {
    WakeSleepers();
}

void UpdateClock::Set(uint32_t value) {
    tick = value;
}

void UpdateClock::Advance(uint32_t milliseconds) {
    tick += milliseconds;
}

bool UpdateClock::AwaitSleeper() {
    return WaitForSingleObject(asleep, 5000) == WAIT_OBJECT_0;
}

void UpdateClock::WakeSleepers() {
    SetEvent(wake);
    // Terminated sleepers never count themselves out; the others take no time.
    for (int i = 0; sleepers != 0 && i < 20; ++i) {
        Sleep(5);
    }
    sleepers = 0;
    ResetEvent(wake);
}

void WINAPI UpdateClock::SleepHook(DWORD milliseconds) {
    if (milliseconds == kWatchdogSleep) {
        ++sleepers;
        ReleaseSemaphore(asleep, 1, nullptr);
        WaitForSingleObject(wake, INFINITE);
        --sleepers;
    }
}

DWORD WINAPI UpdateClock::TickHook() {
    return tick;
}

void SetSerial(ScriptedPort& port, const std::string& serial) {
    SetText(port.node.manufacturerAndSerial, "Tarnel, Inc.-" + serial);
    port.node.flags = 16;
    port.AnswerProbes();
}

namespace {

struct PeerState {
    FakeSystem system;
    UpdateClock clock;
    ScriptedPort port;
    uint32_t handle = 0;
};
PeerState* peer = nullptr;

std::string Hex(uint32_t value) {
    char text[16];
    snprintf(text, sizeof text, "%x", value);
    return text;
}

std::string AnswerPeer(const std::string& line) {
    std::istringstream words(line);
    std::string verb, argument;
    words >> verb >> argument;
    if (verb == "serial") {
        SetSerial(peer->port, argument);
        peer->system.AttachScsiPort(3, &peer->port);
        return Hex(HXOpenDevice(0, &peer->handle));
    }
    if (verb == "start") {
        uint32_t key = 0xEEEEEEEE;
        const HX_STATUS status = HXStartFlashUpdate(peer->handle, 0, &key);
        return Hex(status) + " " + Hex(key);
    }
    if (verb == "end") {
        return Hex(HXEndFlashUpdate(peer->handle, 0, static_cast<uint32_t>(std::stoul(argument))));
    }
    if (verb == "process") {
        return std::to_string(GetCurrentProcessId());
    }
    if (verb == "rounds") {
        for (int left = std::stoi(argument); left > 0; --left) {
            uint32_t key = 0;
            HXStartFlashUpdate(peer->handle, 0, &key);
            HXEndFlashUpdate(peer->handle, 0, GetCurrentProcessId());
        }
        return "done";
    }
    return "what?";
}

int RunFlashPeer() {
    // Never taken down: the process ends with its watchdog still asleep.
    peer = new PeerState;
    return AnswerLines(&AnswerPeer);
}

const RoleEntry kFlashPeer("flash-peer", &RunFlashPeer);

constexpr DWORD kLongEnough = 10000;

class Unloading {
  public:
    Unloading() {
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        name_ = "vxmgmt-" + std::to_string(GetCurrentProcessId()) + ".dll";
        path_ = folder + name_;
        char original[MAX_PATH];
        GetModuleFileNameA(LibraryModule(), original, sizeof original);
        CopyFileA(original, path_.c_str(), FALSE);
        module_ = LoadLibraryA(path_.c_str());
        UseLibrary(module_);
        system_ = new FakeSystem;
        clock_ = new UpdateClock;
        inside_ = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        answer_ = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    }
    ~Unloading() { DeleteFileA(path_.c_str()); }

    std::string Open(const std::string& serial) {
        SetSerial(port_, serial);
        system_->AttachScsiPort(3, &port_);
        return Hex(Call<decltype(HXOpenDevice)>("HXOpenDevice")(0, &handle_));
    }
    std::string Start(bool hang) {
        if (hang) {
            port_.On(transport::command::NodeProperties, [&](const SentRequest&) {
                if (GetCurrentThreadId() != self_) {
                    SetEvent(inside_);
                    WaitForSingleObject(answer_, INFINITE);
                }
                return Reply{.data = BytesOf(port_.node)};
            });
        }
        uint32_t key = 0;
        const HX_STATUS status =
            Call<decltype(HXStartFlashUpdate)>("HXStartFlashUpdate")(handle_, 0, &key);
        const bool there = hang ? WaitForSingleObject(inside_, kLongEnough) == WAIT_OBJECT_0
                                : UpdateClock::AwaitSleeper();
        SharedView<frame::FlashLockArea> area(kFlashLockAreaName);
        for (const frame::FlashLock& lock : area->locks) {
            if (lock.owner == GetCurrentProcessId()) {
                DuplicateHandle(GetCurrentProcess(),
                                reinterpret_cast<HANDLE>(static_cast<uintptr_t>(lock.watchdog)),
                                GetCurrentProcess(), &watchdog_, 0, FALSE, DUPLICATE_SAME_ACCESS);
            }
        }
        return there && watchdog_ != nullptr ? Hex(status) : "no watchdog";
    }
    std::string Unload() {
        FreeLibrary(module_);
        return Presence();
    }
    std::string Wake() {
        const std::string presence = AwaitUnload();
        UpdateClock::WakeSleepers();
        return presence + " " + Watchdog();
    }
    std::string AnswerRequest() {
        SetEvent(answer_);
        const std::string presence = AwaitUnload();
        return presence + " " + Watchdog();
    }

  private:
    template <typename Function>
    Function* Call(const char* name) {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }
    // The last reference may be given back by another thread.
    std::string AwaitUnload() {
        for (DWORD waited = 0; waited < kLongEnough && Presence() != "gone"; waited += 10) {
            Sleep(10);
        }
        return Presence();
    }
    std::string Watchdog() {
        return WaitForSingleObject(watchdog_, kLongEnough) == WAIT_OBJECT_0 ? "ended" : "alive";
    }
    std::string Presence() const {
        return GetModuleHandleA(name_.c_str()) == nullptr ? "gone" : "loaded";
    }

    const DWORD self_ = GetCurrentThreadId();
    std::string name_;
    std::string path_;
    HMODULE module_ = nullptr;
    FakeSystem* system_ = nullptr;  // never taken down: they would restore the unloaded library
    UpdateClock* clock_ = nullptr;
    ScriptedPort port_;
    uint32_t handle_ = 0;
    HANDLE watchdog_ = nullptr;
    HANDLE inside_ = nullptr;
    HANDLE answer_ = nullptr;
};
Unloading* unloading = nullptr;

std::string AnswerUnloading(const std::string& line) {
    std::istringstream words(line);
    std::string verb, argument;
    words >> verb >> argument;
    if (verb == "serial") {
        return unloading->Open(argument);
    }
    if (verb == "start" || verb == "hang") {
        return unloading->Start(verb == "hang");
    }
    if (verb == "process") {
        return std::to_string(GetCurrentProcessId());
    }
    if (verb == "unload") {
        return unloading->Unload();
    }
    if (verb == "wake") {
        return unloading->Wake();
    }
    return verb == "answer" ? unloading->AnswerRequest() : "what?";
}

int RunUnloadingPeer() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    Unloading state;
    unloading = &state;
    return AnswerLines(&AnswerUnloading);
}

const RoleEntry kUnloadingPeer("unloading-peer", &RunUnloadingPeer);

}  // namespace

}  // namespace support
