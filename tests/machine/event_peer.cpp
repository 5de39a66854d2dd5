#include "machine/event_peer.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <sstream>
#include <utility>

#include "machine/flash_peer.h"
#include "machine/private_library.h"

namespace support {

EventDriver::EventDriver() {
    port.On(command::EventDelivery, [this](const SentRequest& request) {
        properties::EventDeliveryRequest sent = {};
        const Bytes data = request.Data();
        memcpy(&sent, data.data(), std::min(data.size(), sizeof sent));
        const std::lock_guard hold(lock_);
        masks_.push_back(sent.mask);
        return Reply{};
    });
    HandOutRaised();
}

void EventDriver::HandOutRaised() {
    port.On(command::FetchEvents, [this](const SentRequest& request) {
        const std::lock_guard hold(lock_);
        Reply reply;
        while (!events_.empty() && reply.data.size() + 16 <= request.Envelope().ext.responseLen) {
            Append(reply.data, BytesOf(events_.front()));
            events_.pop_front();
        }
        return reply;
    });
}

void EventDriver::Raise(uint32_t code, uint32_t first, uint32_t count) {
    const std::lock_guard hold(lock_);
    for (uint32_t i = 0; i < count; ++i) {
        events_.push_back({code, {first + i, 0xB0B1B2B3, ~(first + i)}});
    }
}

std::vector<uint32_t> EventDriver::TakeMasks() {
    const std::lock_guard hold(lock_);
    return std::exchange(masks_, {});
}

std::string Fetched::Text() const {
    std::string text;
    for (const HX_EVENT& event : events) {
        const bool whole = event.data[1] == 0xB0B1B2B3 && event.data[2] == ~event.data[0];
        text.append(text.empty() ? "" : " ").append(std::to_string(event.type)).append(":");
        text.append(whole ? std::to_string(event.data[0]) : "damaged");
    }
    return text;
}

Fetched Fetch(uint32_t handle, uint32_t room) {
    Fetched result;
    result.events.resize(room);
    uint32_t count = 0xCCCCCCCC;
    result.status = HXGetAen(handle, reinterpret_cast<uint8_t*>(result.events.data()),
                             room * static_cast<uint32_t>(sizeof(HX_EVENT)), &count);
    result.events.resize(std::min(count, room));
    return result;
}

namespace {

std::string Hex(uint32_t value) {
    char text[16];
    snprintf(text, sizeof text, "%x", value);
    return text;
}

}  // namespace

std::string EventDriver::Follow(uint32_t last, uint32_t handle) {
    SharedView<uint32_t> number(kNumberName);
    std::minstd_rand random(GetCurrentProcessId());
    uint32_t fresh = 0;
    bool over = false;
    // The library asks under the adapter's event mutex: nobody else takes numbers meanwhile.
    port.On(command::FetchEvents, [&](const SentRequest&) {
        uint32_t& taken = *number.operator->();
        over = taken == last;
        fresh = std::min<uint32_t>(random() % 12, last - taken);
        Reply reply;
        for (uint32_t i = 0; i < fresh; ++i) {
            Append(reply.data, BytesOf(properties::DriverEvent{0x8011, {++taken, 0, 0}}));
        }
        return reply;
    });
    uint32_t previous = 0;
    uint32_t seen = 0;
    uint32_t lost = 0;
    std::string wrong;
    while (!over && wrong.empty()) {
        const Fetched fetched = Fetch(handle, 2 * frame::kRingCapacity);
        if (fetched.status != 0) {
            wrong = "status 0x" + Hex(fetched.status);
        }
        // What was queued, then what is fresh: only before the first may some be missing.
        const size_t queued = fetched.events.size() - fresh;
        for (const HX_EVENT& event : fetched.events) {
            const uint32_t missed = event.data[0] - previous - 1;
            const bool first = &event == fetched.events.data();
            if (missed != 0 && (!first || queued != frame::kRingCapacity - 1)) {
                wrong = std::to_string(event.data[0]) + " after " + std::to_string(previous) +
                        ", queued " + std::to_string(queued);
            }
            ++seen;
            lost += missed;
            previous = event.data[0];
        }
        port.Forget();
    }
    HandOutRaised();
    return wrong.empty() ? std::to_string(seen) + " " + std::to_string(lost) : wrong;
}

namespace {

constexpr DWORD kLongEnough = 10000;

// What a peer keeps from line to line. Never taken down: the process may end with a watchdog still
// asleep, and an unloaded library's imports must not be put back.
struct PeerState {
    FakeSystem* system = nullptr;
    UpdateClock* clock = nullptr;
    EventDriver driver;
    uint32_t handle = 0;
    HMODULE library = LibraryModule();
    std::string path;  // of a library that was loaded besides
    HANDLE watchdog = nullptr;
    const DWORD self = GetCurrentThreadId();
    const HANDLE inside = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE answer = CreateEventA(nullptr, TRUE, FALSE, nullptr);

    template <typename Function>
    Function* Call(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    }
    std::string Open(const std::string& serial) {
        system = new FakeSystem;
        clock = new UpdateClock;
        if (!serial.empty()) {
            SetSerial(driver.port, serial);
        }
        system->AttachScsiPort(3, &driver.port);
        return Hex(Call<decltype(HXOpenDevice)>("HXOpenDevice")(0, &handle));
    }
    std::string Copy(const std::string& serial) {
        SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        char original[MAX_PATH];
        GetModuleFileNameA(library, original, sizeof original);
        const std::string copy =
            std::string(folder) + "vxmgmt-" + std::to_string(GetCurrentProcessId()) + ".dll";
        CopyFileA(original, copy.c_str(), FALSE);
        Load(copy);
        UseLibrary(library);
        return Open(serial);
    }
    std::string Load(const std::string& file) {
        path = file;
        library = LoadLibraryA(file.c_str());
        return library != nullptr ? "loaded" : "error " + std::to_string(GetLastError());
    }
    std::string Unload() {
        FreeLibrary(library);
        return Presence();
    }
    std::string Start() {
        uint32_t key = 0xEEEEEEEE;
        const HX_STATUS status =
            Call<decltype(HXStartFlashUpdate)>("HXStartFlashUpdate")(handle, 0, &key);
        return Hex(status) + " " + Hex(key);
    }
    std::string Guard(bool hang) {
        if (hang) {
            driver.port.On(command::NodeProperties, [this](const SentRequest&) {
                if (GetCurrentThreadId() != self) {
                    SetEvent(inside);
                    WaitForSingleObject(answer, INFINITE);
                }
                return Reply{.data = BytesOf(driver.port.node)};
            });
        }
        const std::string started = Start();
        const bool there = hang ? WaitForSingleObject(inside, kLongEnough) == WAIT_OBJECT_0
                                : UpdateClock::AwaitSleeper();
        SharedView<frame::FlashLockArea> area(kFlashLockAreaName);
        for (const frame::FlashLock& lock : area->locks) {
            if (lock.owner == GetCurrentProcessId()) {
                DuplicateHandle(GetCurrentProcess(),
                                reinterpret_cast<HANDLE>(static_cast<uintptr_t>(lock.watchdog)),
                                GetCurrentProcess(), &watchdog, 0, FALSE, DUPLICATE_SAME_ACCESS);
            }
        }
        return there && watchdog != nullptr ? started : "no watchdog";
    }
    std::string Presence() const {
        return GetModuleHandleA(path.c_str()) == nullptr ? "gone" : "loaded";
    }
    // The last reference may be given back by another thread.
    std::string AwaitUnload() const {
        for (DWORD waited = 0; waited < kLongEnough && Presence() != "gone"; waited += 10) {
            Sleep(10);
        }
        return Presence() + " ";
    }
    std::string Watchdog() {
        const bool ended = WaitForSingleObject(watchdog, kLongEnough) == WAIT_OBJECT_0;
        DeleteFileA(path.c_str());
        return ended ? "ended" : "alive";
    }
};
PeerState* peer = nullptr;

using Words = std::vector<std::string>;
uint32_t Number(const std::string& word) {
    return static_cast<uint32_t>(std::stoul(word));
}

const std::map<std::string, std::string (*)(const Words&)> kVerbs = {
    {"open", [](const Words& w) { return peer->Open(w[1]); }},
    {"copy", [](const Words& w) { return peer->Copy(w[1]); }},
    {"enable", [](const Words&) { return Hex(HXEnableAen(peer->handle)); }},
    {"disable", [](const Words&) { return Hex(HXDisableAen(peer->handle)); }},
    {"raise",
     [](const Words& w) {
         peer->driver.Raise(Number(w[1]), Number(w[2]), Number(w[3]));
         return std::string("raised");
     }},
    {"fetch",
     [](const Words& w) {
         const Fetched fetched = Fetch(peer->handle, Number(w[1]));
         return fetched.status == 0 ? fetched.Text() : "status 0x" + Hex(fetched.status);
     }},
    {"masks",
     [](const Words&) {
         std::string text;
         for (const uint32_t mask : peer->driver.TakeMasks()) {
             text += Hex(mask) + " ";
         }
         return text;
     }},
    {"lock",
     [](const Words& w) {
         SharedView<frame::FlashLockArea> area(kFlashLockAreaName);
         area->locks[Number(w[1])].owner = GetCurrentProcessId();
         area->locks[Number(w[1])].watchdog = 0x1234;
         return std::string("locked");
     }},
    {"follow", [](const Words& w) { return peer->driver.Follow(Number(w[1]), peer->handle); }},
    {"start", [](const Words&) { return peer->Start(); }},
    {"end", [](const Words& w) { return Hex(HXEndFlashUpdate(peer->handle, 0, Number(w[1]))); }},
    {"rounds",
     [](const Words& w) {
         for (uint32_t left = Number(w[1]); left > 0; --left) {
             peer->Start();
             HXEndFlashUpdate(peer->handle, 0, GetCurrentProcessId());
         }
         return std::string("done");
     }},
    {"process", [](const Words&) { return Hex(GetCurrentProcessId()); }},
    {"handles",
     [](const Words&) {
         DWORD count = 0;
         GetProcessHandleCount(GetCurrentProcess(), &count);
         return Hex(count);
     }},
    {"load", [](const Words& w) { return peer->Load(w[1]); }},
    {"load-at-gate",
     [](const Words& w) {
         LoadGate::Wait();
         return peer->Load(w[1]);
     }},
    {"unload", [](const Words&) { return peer->Unload(); }},
    {"guard", [](const Words&) { return peer->Guard(false); }},
    {"hang", [](const Words&) { return peer->Guard(true); }},
    {"wake",
     [](const Words&) {
         const std::string presence = peer->AwaitUnload();
         UpdateClock::WakeSleepers();
         return presence + peer->Watchdog();
     }},
    {"answer",
     [](const Words&) {
         SetEvent(peer->answer);
         const std::string presence = peer->AwaitUnload();
         return presence + peer->Watchdog();
     }},
};

// A path is all that follows the verb.
std::string AnswerPeer(const std::string& line) {
    std::istringstream text(line);
    Words words(4);
    text >> words[0];
    if (words[0].starts_with("load")) {
        std::getline(text >> std::ws, words[1]);
    } else {
        text >> words[1] >> words[2] >> words[3];
    }
    const auto verb = kVerbs.find(words[0]);
    return verb == kVerbs.end() ? "what?" : verb->second(words);
}

int RunPeer() {
    peer = new PeerState;
    return AnswerLines(&AnswerPeer);
}

const RoleEntry kPeer("peer", &RunPeer);

}  // namespace

}  // namespace support
