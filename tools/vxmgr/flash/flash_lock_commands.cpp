// flash lock show|release
#include <algorithm>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/inventory.h"
#include "vxmgr/commands.h"
#include "vxmgr/flash/flash_lock_view.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

constexpr Argument kReleaseArguments[] = {
    {.name = "--owner-pid",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "process that held the lock when it ended",
     .required = true,
     .least = 1},
};

// One lock of the list: of an adapter of this machine, or of one that has gone.
struct LockRow {
    const Adapter* adapter = nullptr;
    std::string serial;
    LockState state{};
    bool released = false;

    // Null for a lock that nobody holds.
    Value WhenHeld(Value value) const { return state.held ? std::move(value) : Value(); }
};

const Fields<LockRow> kLockFields = {
    {"adapter", "Adapter", "ADAPTER", kInteger.OrNull(), Of(&LockRow::adapter, &Adapter::index),
     "null: the adapter is not there"},
    {"adapter_serial", "", kSerial.OrNull(), &LockRow::serial},
    {"serial", "Serial", "SERIAL", kSerial.OrNull(), &LockRow::serial},
    {"held", "Lock", "LOCK", kFlag,
     [](const LockRow& row) {
         return Value::Flag(row.state.held)
             .Shown(row.state.held ? "held" : "free")
             .In(row.state.held ? Tone::Warning : Tone::Plain);
     }},
    {"owner_pid", "Owner", "OWNER", kInteger.OrNull(),
     [](const LockRow& row) { return row.WhenHeld(Value::Number(row.state.owner)); }},
    {"owner_lives", "Owner lives", "LIVES", kFlag.OrNull(),
     [](const LockRow& row) {
         return row.WhenHeld(
             Value::Flag(row.state.ownerLives).In(row.state.ownerLives ? Tone::Plain : Tone::Bad));
     }},
    {"held_seconds", "Held for", "HELD FOR", kInteger.OrNull(),
     [](const LockRow& row) { return row.WhenHeld(Value::Number(row.state.heldSeconds, "s")); }},
    {"expired", "Time over", "TIME OVER", kFlag.OrNull(),
     [](const LockRow& row) { return row.WhenHeld(Value::Flag(row.state.expired)); },
     "held for so long that anybody may take it over"},
};

const auto kLockShowFields = ListOf("locks", "Update locks", kLockFields, "No adapters.");

const Fields<LockRow> kLockReleaseFields = {
    {"serial", "Adapter", kSerial.OrNull(), &LockRow::serial},
    {"adapter_serial", "", kSerial.OrNull(), &LockRow::serial},
    {"owner_pid", "Owner", kInteger, [](const LockRow& row) { return row.state.owner; }},
    {"held_seconds", "Held for", Integer("s"),
     [](const LockRow& row) { return row.state.heldSeconds; }},
    {"released", "Released", kFlag, &LockRow::released},
};

using LockRows = std::vector<LockRow>;

LockRows LocksOf(const FlashLockArea& table, const std::vector<const Adapter*>& adapters) {
    LockRows rows;
    for (const Adapter* adapter : adapters) {
        LockRow row{adapter, adapter->First().Serial()};
        if (const FlashLock* record = FindLock(table, row.serial)) {
            row.state = StateOf(*record);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

// Held locks of adapters that are not there: nobody but their owner can give them back.
void AddGone(const FlashLockArea& table, const std::vector<Adapter>& adapters, LockRows& rows) {
    for (const FlashLock& record : table.locks) {
        const std::string serial = SerialOf(record);
        const bool known = std::ranges::any_of(
            adapters, [&](const Adapter& one) { return one.First().Serial() == serial; });
        if (!serial.empty() && record.owner != 0 && !known) {
            rows.push_back({nullptr, serial, StateOf(record)});
        }
    }
}

// The lock that the process left behind on a selected adapter.
LockRow LeftBehind(Invocation& invocation, uint32_t owner, const std::vector<Adapter>& adapters) {
    const auto table = ReadLockTable(invocation);
    for (const LockRow& row : LocksOf(*table, SelectAdapters(invocation, adapters))) {
        if (!row.state.held || row.state.owner != owner) {
            continue;
        }
        if (row.state.ownerLives) {
            FailAt(row.adapter->First().Object(), ExitCode::Busy,
                   "process " + std::to_string(owner) + " lives and may be updating the adapter",
                   "end it first; a lock is free for all after 15 minutes at the latest");
        }
        return row;
    }
    invocation.Fail(ExitCode::NotFound,
                    "process " + std::to_string(owner) + " holds no lock of a selected adapter",
                    "`flash lock show` lists the locks and their owners");
}

uint32_t GivenOwner(Invocation& invocation) {
    return static_cast<uint32_t>(invocation.Given().Number("owner-pid").value_or(0));
}

void ShowRelease(Invocation& invocation, LockRow& lock, bool released) {
    lock.released = released;
    invocation.Result() = kLockReleaseFields.Make(lock);
}

ExitCode FlashLockShow(Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    const auto table = ReadLockTable(invocation);
    LockRows locks = LocksOf(*table, selected);
    if (!invocation.Given().Has("adapter") && !invocation.Given().Has("port")) {
        AddGone(*table, adapters, locks);
    }
    for (const LockRow& lock : locks) {
        if (lock.state.held && !lock.state.ownerLives) {
            invocation.Warn("process " + std::to_string(lock.state.owner) +
                                " ended without giving its lock back",
                            "`flash lock release --owner-pid " + std::to_string(lock.state.owner) +
                                "` frees it");
        }
    }
    invocation.Result() = kLockShowFields.Make(locks);
    return ExitCode::Done;
}

ExitCode FlashLockRelease(Invocation& invocation) {
    const uint32_t owner = GivenOwner(invocation);
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    LockRow lock = LeftBehind(invocation, owner, adapters);
    if (invocation.DryRun()) {
        ShowRelease(invocation, lock, false);
        return invocation.DoneWith("dry run: the lock would be released");
    }
    const ExitCode ended = EndLockInChild(invocation, lock.adapter->First().index, owner);
    const auto table = ReadLockTable(invocation);
    const FlashLock* now = FindLock(*table, lock.serial);
    const bool released = now == nullptr || now->owner != owner;
    ShowRelease(invocation, lock, released);
    if (!released) {
        Complain(
            invocation, lock.adapter->First().Object(),
            "the lock is still held: the process that was to release it ended with exit code " +
                std::to_string(Number(ended)),
            "a lock is free for all after 15 minutes at the latest");
        return ended == ExitCode::Done ? ExitCode::Failed : ended;
    }
    invocation.Changed();
    return ExitCode::Done;
}

ExitCode FlashLockEnd(Invocation& invocation) {
    const uint32_t owner = GivenOwner(invocation);
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    LockRow lock = LeftBehind(invocation, owner, adapters);
    Device device;
    HX_STATUS status = lock.adapter->Speaker().Open(TracePath(invocation), &device);
    if (status == HXMGT_SUCCESS) {
        // Also ends the thread that the record names, whatever that number means in this process:
        // nothing may follow here.
        status = HXEndFlashUpdate(device.Handle(), 0, owner);
    }
    ShowRelease(invocation, lock, status == HXMGT_SUCCESS);
    invocation.Require(status, "the lock cannot be released", lock.adapter->First().Object());
    return ExitCode::Done;
}

}  // namespace

CommandRows FlashLockCommands() {
    static const Command kCommands[] = {
        {.path = "flash lock show",
         .help = "which processes hold update locks",
         .run = FlashLockShow,
         .example = "flash lock show",
         .result = ShapeOf<kLockShowFields>},
        {.path = "flash lock release",
         .risk = Risk::Reversible,
         .help = "give back the lock of a process that has ended",
         .arguments = kReleaseArguments,
         .run = FlashLockRelease,
         .example = "flash lock release --owner-pid 1424",
         .result = ShapeOf<kLockReleaseFields>},
        {.path = kLockEndCommand,
         .risk = Risk::Reversible,
         .help = "what `flash lock release` starts",
         .schema = "flash.lock.release",
         .arguments = kReleaseArguments,
         .run = FlashLockEnd,
         .hidden = true},
    };
    return kCommands;
}

}  // namespace vxmgr
