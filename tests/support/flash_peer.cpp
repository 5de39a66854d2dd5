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
    return "what?";
}

int RunFlashPeer() {
    // Never taken down: the process ends with its watchdog still asleep.
    peer = new PeerState;
    return AnswerLines(&AnswerPeer);
}

const RoleEntry kFlashPeer("flash-peer", &RunFlashPeer);

}  // namespace

}  // namespace support
