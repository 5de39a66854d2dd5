// Fault rules: what an emulated port does instead of, or to, an ordinary answer. A rule counts the
// requests that match it, lets the first `after` of them pass, then acts `times` times (0 = from
// then on). Of several rules that are due, the oldest acts; the others have counted all the same.
#pragma once

#include <cstdint>

#include "transport/ext_ioctl.h"

namespace vxemu {

inline constexpr uint32_t kAnyPort = 0xFFFFFFFF;
inline constexpr uint32_t kAnyCode = 0;
inline constexpr uint32_t kAnySubCode = 0xFFFFFFFF;
inline constexpr uint32_t kMaxFaults = 32;
inline constexpr uint32_t kMaxHangMilliseconds = 180'000;

// Plain requests carry no status and no reply length: there Status and Detail make the request
// itself fail, and Short, Long and LieLength change the number of bytes handed back at most.
enum class FaultKind : uint32_t {
    None = 0,
    Busy = 1,       // the operating system's "busy"
    Status = 2,     // value = driver status; nothing is done
    Detail = 3,     // status = 11 or 15, value = detail status; nothing is done
    Short = 4,      // the reply length is reported `value` bytes too small
    Long = 5,       // ... or too large
    LieLength = 6,  // the reply length is reported as kLyingLength
    Corrupt = 7,    // every byte of the reply data is inverted
    Hang = 8,       // the answer comes `value` milliseconds late
    Forget = 9,     // answered as ever, but what the port keeps of its own stays as it was
    // One byte of the reply data is inverted: the one at `value`, or, of a piece of the flash or of
    // a region, the one that stands there at `value`.
    CorruptByte = 14,
    // What only certain requests can meet (kBoundFaults).
    BadSignature = 10,  // the image of a secure update does not count as signed
    OldVersion = 11,    // the firmware restarts, but it is the old one
    WrongBank = 12,     // the bank in use is the other one than it should be
    NoReturn = 13,      // no port of the adapter answers any more, until one is reset
};
inline constexpr uint32_t kLyingLength = 0x7FFFFFFF;

#pragma pack(push, 1)

struct FaultRule {
    uint32_t port;  // SCSI port number, or kAnyPort
    uint32_t code;
    uint32_t subCode;  // kAnySubCode also stands for the plain requests, which have none
    uint32_t after;
    uint32_t times;
    FaultKind kind;
    uint32_t value;
    uint32_t status;  // Detail only
};
static_assert(sizeof(FaultRule) == 32);

struct FaultEntry {
    uint32_t id;  // 0 = free
    FaultRule rule;
    uint32_t matched;
    uint32_t acted;
};
static_assert(sizeof(FaultEntry) == 44);

#pragma pack(pop)

// What a rule does to the request at hand.
struct FaultAction {
    FaultKind kind = FaultKind::None;
    uint32_t value = 0;
    uint32_t status = 0;
};

// A kind of fault that only a request with this code can meet.
struct BoundFault {
    FaultKind kind;
    transport::Command command;
};
inline constexpr BoundFault kBoundFaults[] = {
    {FaultKind::BadSignature, transport::command::SecureFlashVerify},
    {FaultKind::OldVersion, transport::command::RestartFirmware},
    {FaultKind::WrongBank, transport::command::RestartFirmware},
    {FaultKind::NoReturn, transport::command::RestartFirmware},
};

// The request that a kind of fault is bound to, or null.
const BoundFault* FindBound(FaultKind kind);

bool FaultRuleValid(const FaultRule& rule);

class FaultList {
  public:
    // The new rule's id, or 0 when the list is full or the rule is not valid.
    uint32_t Add(const FaultRule& rule);

    // Removes one rule (id) or all of them (0); returns how many went.
    uint32_t Clear(uint32_t id);

    uint32_t Count() const { return count_; }
    const FaultEntry& At(uint32_t index) const { return entries_[index]; }

    FaultAction Match(uint32_t scsiPort, uint32_t code, uint32_t subCode);

  private:
    FaultEntry entries_[kMaxFaults];
    uint32_t count_;
    uint32_t lastId_;
};

}  // namespace vxemu
