// Writing a place of an adapter (a region of the flash, settings, a transceiver), reading it back
// and saying what stands there: under the update lock, and with Ctrl-C waiting for the end.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vxmgr/app/inventory.h"

namespace vxmgr {

// What reading a place back showed.
enum class PlaceState : uint8_t { Unknown, Old, New, Mixed };
inline constexpr const char* kPlaceStates[] = {"unknown", "old", "new", "mixed"};

enum class WriteStep : uint8_t { Checking, Writing, ReadingBack };

using ReadBytes = std::function<HX_STATUS(std::vector<uint8_t>* bytes)>;

// Whether the place must hold what it held when the user was asked.
enum class Recheck : uint8_t {
    None,          // its bytes change by themselves
    WhenReadable,  // one that cannot be read may be written all the same
    Required,
};

// What is said of a place that does not hold what was written, behind its name, and what to do.
struct WriteTrouble {
    std::string text;
    std::string hint;
};
struct WriteTroubles {
    WriteTrouble unknown, old, whole, mixed;
};

struct PlaceWrite {
    std::string what;             // the place: "the NVRAM"
    const char* finishes;         // as StopHold has it
    std::vector<uint8_t> image;   // as it goes out; the library may change it
    std::vector<uint8_t> before;  // what the place held when the user was asked; empty: not known
    std::string lookAgain;        // hint when another program changed it meanwhile
    Recheck recheck;
    ReadBytes read;
    std::function<HX_STATUS(std::vector<uint8_t>& image)> write;
    std::function<void()> check{};  // before the first byte, under the lock; may be empty
    // With the image as it goes out, before the first byte of it; may change it. Of writes to a
    // region alone, and the same for `moved`.
    std::function<void(std::vector<uint8_t>& image)> beforeFirst{};
    std::function<void(WriteStep step)> begins{};  // instead of a line to the user
    std::function<void(uint64_t done)> moved{};    // bytes in this step
    WriteTroubles failed;                          // the write reported a failure
    WriteTroubles accepted;                        // it did not; `whole` is no trouble then
    std::string mixedUpTo{};  // how to say up to which byte it is the image; empty: not said
    std::string detail{};     // what the device itself said of a failure
};

struct WriteOutcome {
    HX_STATUS status = HXMGT_SUCCESS;      // of the write
    HX_STATUS readStatus = HXMGT_SUCCESS;  // of reading it back
    PlaceState state = PlaceState::Unknown;
    bool lockLost = false;     // another program took the lock over: the write stopped there
    bool interrupted = false;  // the command is to end: nothing more may be started
    std::optional<tools::CommandError> trouble;  // empty: written, and proven

    // Written, although the library could not restart the ports behind it.
    bool NeedsRestart() const { return status == HXMGT_FLASH_UPDATE_NOT_ACTIVATED; }
};

// Ends the command only before the first byte: the lock is not to be had, another program has
// changed the place, or the user has cancelled.
WriteOutcome WritePlace(tools::Invocation& invocation, uint32_t handle, const Port& port,
                        PlaceWrite& write);

[[noreturn]] void FailChangedMeanwhile(const PlaceWrite& write, const Port& port);

}  // namespace vxmgr
