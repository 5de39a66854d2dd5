// One process that takes part in event delivery: an adapter whose driver holds events, and the
// library calls on it. The test process is one; further ones run in processes of their own.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "frame/shared_area.h"
#include "hxmgtapi.h"
#include "machine/fake_system.h"
#include "machine/scripted_port.h"
#include "support/program.h"

namespace support {

// A driver that hands each of its events out once.
class EventDriver {
  public:
    EventDriver();
    // Events numbered from first on: code, then the number in data[0].
    void Raise(uint32_t code, uint32_t first, uint32_t count = 1);
    // The masks that were sent since the last call.
    std::vector<uint32_t> TakeMasks();
    // Numbers its events together with the drivers of other processes and fetches on the handle
    // until the last has come. "SEEN LOST", or what should not be: out of order, twice, or lost
    // though the queue had room. The number taken last stands in shared memory that the caller has
    // made.
    std::string Follow(uint32_t last, uint32_t handle);
    static constexpr char kNumberName[] = "vxt-event-number";

    ScriptedPort port;

  private:
    void HandOutRaised();

    std::mutex lock_;
    std::deque<properties::DriverEvent> events_;
    std::vector<uint32_t> masks_;
};

struct Fetched {
    HX_STATUS status;
    std::vector<HX_EVENT> events;
    // "type:number type:number"
    std::string Text() const;
};
Fetched Fetch(uint32_t handle, uint32_t room);

// A mapping that the library shares, seen from the test.
template <typename Area>
class SharedView {
  public:
    explicit SharedView(const char* name)
        : mapping_(OpenFileMappingA(FILE_MAP_WRITE, FALSE, name)),
          view_(static_cast<Area*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(Area)))) {}
    ~SharedView() {
        UnmapViewOfFile(view_);
        CloseHandle(mapping_);
    }
    SharedView(const SharedView&) = delete;
    SharedView& operator=(const SharedView&) = delete;
    Area* operator->() { return view_; }

  private:
    HANDLE mapping_;
    Area* view_;
};
inline constexpr char kEventAreaName[] = "Global\\HXMGT_GetAENMapFile";
inline constexpr char kFlashLockAreaName[] = "Global\\HXMGT_FlashUpdateLocksMapFile";

// A process of its own with the library: what it is told in a line, it does and answers.
//     open [SERIAL]      opens adapter 0 of its own driver
//     enable, disable    events
//     raise CODE FIRST COUNT, fetch ROOM, masks, follow LAST
//     lock RECORD        as if it updated
//     start, end KEY, rounds COUNT
//     process, handles   its own numbers
//     load PATH, load-at-gate PATH, unload     a library besides
//     copy [SERIAL]      as open, in a copy of the library: unload answers "gone" or "loaded"
//     guard, hang        start, until the watchdog sleeps or is inside its request
//     wake, answer       ends that; "gone" or "loaded", then "ended" or "alive" for the watchdog
// Statuses and keys are hexadecimal.
class Peer : public ChildProcess {
  public:
    explicit Peer(const std::string& first = "open") : ChildProcess("peer") { Ask(first); }
    uint32_t Number(const std::string& line) {
        return static_cast<uint32_t>(std::stoul("0" + Ask(line), nullptr, 16));
    }
};

}  // namespace support
