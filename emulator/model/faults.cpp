#include "model/faults.h"

#include "model/profile/profile.h"

namespace vxemu {
namespace {

bool Matches(const FaultRule& rule, uint32_t scsiPort, uint32_t code, uint32_t subCode) {
    return (rule.port == kAnyPort || rule.port == scsiPort) &&
           (rule.code == kAnyCode || rule.code == code) &&
           (rule.subCode == kAnySubCode || rule.subCode == subCode);
}

}  // namespace

const BoundFault* FindBound(FaultKind kind) {
    for (const BoundFault& row : kBoundFaults) {
        if (row.kind == kind) {
            return &row;
        }
    }
    return nullptr;
}

bool FaultRuleValid(const FaultRule& rule) {
    if (rule.port != kAnyPort && rule.port > kMaxScsiPort) {
        return false;
    }
    switch (rule.kind) {
        case FaultKind::Busy:
        case FaultKind::LieLength:
        case FaultKind::Corrupt:
        case FaultKind::Forget:
        case FaultKind::Status:
        case FaultKind::Short:
        case FaultKind::Long:
        case FaultKind::CorruptByte:
            return true;
        case FaultKind::BadSignature:
        case FaultKind::OldVersion:
        case FaultKind::WrongBank:
        case FaultKind::NoReturn:
            return rule.code == FindBound(rule.kind)->command.code;
        case FaultKind::Detail:
            return rule.status == static_cast<uint32_t>(transport::DriverStatus::MailboxFailed) ||
                   rule.status == static_cast<uint32_t>(transport::DriverStatus::ScsiStatus);
        case FaultKind::Hang:
            return rule.value <= kMaxHangMilliseconds;
        case FaultKind::None:
            break;
    }
    return false;
}

uint32_t FaultList::Add(const FaultRule& rule) {
    if (count_ == kMaxFaults || !FaultRuleValid(rule)) {
        return 0;
    }
    ++lastId_;
    entries_[count_++] = {lastId_, rule, 0, 0};
    return lastId_;
}

uint32_t FaultList::Clear(uint32_t id) {
    uint32_t kept = 0;
    for (uint32_t at = 0; at < count_; ++at) {
        if (id != 0 && entries_[at].id != id) {
            entries_[kept++] = entries_[at];
        }
    }
    const uint32_t removed = count_ - kept;
    count_ = kept;
    return removed;
}

FaultAction FaultList::Match(uint32_t scsiPort, uint32_t code, uint32_t subCode) {
    FaultEntry* due = nullptr;
    for (uint32_t at = 0; at < count_; ++at) {
        FaultEntry& entry = entries_[at];
        if (!Matches(entry.rule, scsiPort, code, subCode)) {
            continue;
        }
        const bool passed = entry.matched >= entry.rule.after;
        if (entry.matched != 0xFFFFFFFF) {
            ++entry.matched;
        }
        const bool left = entry.rule.times == 0 || entry.acted < entry.rule.times;
        if (due == nullptr && passed && left) {
            due = &entry;
        }
    }
    if (due == nullptr) {
        return {};
    }
    ++due->acted;
    return {due->rule.kind, due->rule.value, due->rule.status};
}

}  // namespace vxemu
