// Which requests run side by side, and the locks that see to it.
//
// Most requests stay within their port: they change what belongs to the port alone (its events,
// attachments and masks, statistics, EEPROM) and at most read what several ports share (targets and
// LUNs, the flash of their adapter, names and states of other ports). The others run alone: they
// change something shared, such as the flash, blocks of a disk or the list of targets, or ports
// besides their own. Control requests run alone, too. A request runs alone unless its row
// (handlers.h) says that it stays within its port.
//
// Three kinds of locks, always taken in this order, each held for the length of one request and
// never while somebody waits for time to pass:
//
//   1. the model's: shared by requests within a port, exclusive for those that run alone;
//   2. the port's, by requests within it: so a port answers one after another, and none waits for
//      another port's;
//   3. the common lock: around the few instructions in which requests within ports change something
//      shared all the same, the counters of fault rules (Host::enter).
//
// A request that runs alone needs no port's lock: no other holds one then. In the kernel the first
// is an executive resource and the others are fast mutexes: requests come at PASSIVE_LEVEL, run at
// APC_LEVEL and touch memory that is never paged out. Those that run alone stay at PASSIVE_LEVEL,
// as the files need in which the flash lasts.
#pragma once

#include <cstdint>

#include "model/profile/profile.h"

namespace vxemu {

enum class Reach : uint8_t { Port, Model };

// By the codes in the request's envelope; whatever is no request reaches no further than its port.
Reach ReachOf(const uint8_t* buffer, uint32_t inputLength);

// SharedLock and Lock are named as the standard library's mutexes are.
template <typename SharedLock, typename Lock>
class AccessLocks {
  public:
    // For locks that do not start and end by themselves.
    void Initialize() {
        model_.Initialize();
        for (Lock& port : ports_) {
            port.Initialize();
        }
        common_.Initialize();
    }
    void Delete() { model_.Delete(); }

    template <typename Action>
    void WithinPort(uint32_t port, Action action) {
        model_.lock_shared();
        ports_[port].lock();
        action();
        ports_[port].unlock();
        model_.unlock_shared();
    }

    template <typename Action>
    void Alone(Action action) {
        model_.lock();
        action();
        model_.unlock();
    }

    template <typename Action>
    void As(Reach reach, uint32_t port, Action action) {
        if (reach == Reach::Port) {
            WithinPort(port, action);
        } else {
            Alone(action);
        }
    }

    Lock& Common() { return common_; }

  private:
    SharedLock model_;
    Lock ports_[kMaxPorts];
    Lock common_;
};

}  // namespace vxemu
