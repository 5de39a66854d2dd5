// A record of the requests that the ports have served, for whoever wants to see what a program
// asks. While it is off it costs a look at a pointer.
#pragma once

#include <cstdint>

#include "model/host.h"

namespace vxemu {

inline constexpr uint32_t kTraceEntries = 8192;  // the oldest give way
inline constexpr uint32_t kPlainRequest = 0xFFFFFFFF;

#pragma pack(push, 1)
struct TraceEntry {
    uint64_t time;  // of the host's clock, milliseconds
    uint32_t scsiPort;
    uint32_t process;  // that asked; 0 = the host does not know
    uint32_t code;
    uint32_t subCode;  // kPlainRequest: the request has none
    uint32_t inputLength;
    uint32_t outputLength;
    uint32_t returned;    // bytes handed back
    uint32_t completion;  // Completion
    uint32_t status;      // of the driver, where an extended request was completed
    uint32_t detail;
};
static_assert(sizeof(TraceEntry) == 48);

// Where the entries are to go in the end: kept for the tool.
struct TraceName {
    char file[520];
};
#pragma pack(pop)

// Zero is the trace that is off.
class Trace {
  public:
    // While it runs it takes requests; once it has ended it keeps them until they are dropped.
    bool Running() const { return entries_ != nullptr && !ended_; }
    bool Kept() const { return entries_ != nullptr; }

    // False when one is kept already, or there is no memory.
    bool Start(const Host& host);
    void End() { ended_ = true; }
    void Drop(const Host& host);

    void Add(const Host& host, const TraceEntry& entry);

    // Entries are numbered from 0 on: those kept are First() up to, but not, Next().
    uint64_t Next() const { return next_; }
    uint64_t First() const { return next_ > kTraceEntries ? next_ - kTraceEntries : 0; }
    const TraceEntry& At(uint64_t number) const { return entries_[number % kTraceEntries]; }

  private:
    TraceEntry* entries_;
    uint64_t next_;
    bool ended_;
};

}  // namespace vxemu
