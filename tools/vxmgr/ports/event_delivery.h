// The event delivery of ports, switched off behind whoever switched it on.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "vxmgr/app/library.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

inline constexpr size_t kEventsPerRead = 32;
// The library's queue keeps 31 events and drops the oldest without a word: a read that brings as
// many may have come too late for others.
inline constexpr size_t kFullRead = 31;
// The library itself waits for another program that fetches events of the adapter.
inline constexpr std::chrono::seconds kFetchTime{40};
inline constexpr char kEventsLost[] = "events may be lost: more came at once than the queue keeps";

// The event delivery of a port. It is switched off once, by whoever comes first: the end of the
// command, or its clean-up when the command hangs.
class Delivery {
  public:
    // The device may have other users; the library has no more handles than ports, or few.
    explicit Delivery(std::shared_ptr<Device> device) : device_(std::move(device)) {}
    ~Delivery() { Disable(); }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    HX_STATUS Enable();
    void Disable();
    HX_STATUS Read(HX_EVENT (&events)[kEventsPerRead], uint32_t* count);

  private:
    const std::shared_ptr<Device> device_;
    std::atomic<bool> enabled_{false};
};

// What is wrong when that fails.
const char* FailedFetch(HX_STATUS status);

// Every delivery that was switched on, whichever thread did it: for the clean-up.
class AllDeliveries {
  public:
    void Add(const std::shared_ptr<Delivery>& delivery);
    void Disable();

  private:
    std::mutex lock_;
    std::vector<std::weak_ptr<Delivery>> deliveries_;
};

}  // namespace vxmgr
