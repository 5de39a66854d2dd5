// flash lock show|release
#include <algorithm>

#include "vxmgr/app/inventory.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/commands.h"
#include "vxmgr/flash/flash_lock_child.h"
#include "vxmgr/flash/flash_lock_view.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Tone;
using tools::Value;

constexpr Argument kReleaseArguments[] = {
    {.name = "--owner-pid",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "process that held the lock when it ended",
     .required = true,
     .least = 1,
     .most = UINT32_MAX},
};

// One lock of the list: of an adapter of this machine, or of one that has gone.
struct LockRow {
    const Adapter* adapter = nullptr;
    std::string serial;
    LockState state;
};

Record RecordOf(const LockRow& row) {
    const LockState& state = row.state;
    const auto whenHeld = [&](Value value) { return state.held ? std::move(value) : Value(); };
    Record record;
    record.Add("adapter", "Adapter", row.adapter ? Value::Number(row.adapter->index) : Value(),
               "ADAPTER");
    record.Add("serial", "Serial", Value::Serial(row.serial), "SERIAL");
    record.Add("held", "Lock",
               Value::Flag(state.held)
                   .Shown(state.held ? "held" : "free")
                   .In(state.held ? Tone::Warning : Tone::Plain),
               "LOCK");
    record.Add("owner_pid", "Owner", whenHeld(Value::Number(state.owner)), "OWNER");
    record.Add("owner_lives", "Owner lives",
               whenHeld(Value::Flag(state.ownerLives)
                            .Shown(state.ownerLives ? "yes" : "no")
                            .In(state.ownerLives ? Tone::Plain : Tone::Bad)),
               "LIVES");
    record.Add("held_seconds", "Held for", whenHeld(Value::Number(state.heldSeconds, "s")),
               "HELD FOR");
    record.Add("expired", "Time over",
               whenHeld(Value::Flag(state.expired).Shown(state.expired ? "yes" : "no")),
               "TIME OVER");
    return record;
}

std::vector<LockRow> LocksOf(const FlashLockArea& table,
                             const std::vector<const Adapter*>& adapters) {
    std::vector<LockRow> rows;
    for (const Adapter* adapter : adapters) {
        LockRow row{adapter, adapter->First().Serial(), {}};
        if (const FlashLock* record = FindLock(table, row.serial)) {
            row.state = StateOf(*record);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

// Held locks of adapters that are not there: nobody but their owner can give them back.
void AddGone(const FlashLockArea& table, const std::vector<Adapter>& adapters,
             std::vector<LockRow>& rows) {
    for (const FlashLock& record : table.locks) {
        const std::string serial = SerialOf(record);
        const bool known = std::any_of(adapters.begin(), adapters.end(), [&](const Adapter& one) {
            return one.First().Serial() == serial;
        });
        if (!serial.empty() && record.owner != 0 && !known) {
            rows.push_back({nullptr, serial, StateOf(record)});
        }
    }
}

bool SelectsNothing(tools::Invocation& invocation) {
    return !invocation.Given().Has("adapter") && !invocation.Given().Has("port");
}

// The lock that the process left behind on a selected adapter.
LockRow LeftBehind(tools::Invocation& invocation, uint32_t owner,
                   const std::vector<Adapter>& adapters) {
    const auto table = ReadLockTable(invocation);
    for (const LockRow& row : LocksOf(*table, SelectAdapters(invocation, adapters))) {
        if (!row.state.held || row.state.owner != owner) {
            continue;
        }
        if (row.state.ownerLives) {
            throw tools::CommandError{
                ExitCode::Busy,
                {tools::Severity::Error,
                 "process " + std::to_string(owner) + " lives and may be updating the adapter",
                 "end it first; a lock is free for all after 15 minutes at the latest",
                 row.adapter->First().Object(),
                 {}}};
        }
        return row;
    }
    invocation.Fail(ExitCode::NotFound,
                    "process " + std::to_string(owner) + " holds no lock of a selected adapter",
                    "`flash lock show` lists the locks and their owners");
}

uint32_t GivenOwner(tools::Invocation& invocation) {
    return static_cast<uint32_t>(invocation.Given().Number("owner-pid").value_or(0));
}

void AddRelease(tools::Invocation& invocation, const LockRow& row, bool released) {
    Record& result = invocation.Result();
    result.Add("serial", "Adapter", Value::Serial(row.serial));
    result.Add("owner_pid", "Owner", Value::Number(row.state.owner));
    result.Add("held_seconds", "Held for", Value::Number(row.state.heldSeconds, "s"));
    result.Add("released", "Released", Value::Flag(released));
}

ExitCode FlashLockShow(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    const auto table = ReadLockTable(invocation);
    std::vector<LockRow> locks = LocksOf(*table, selected);
    if (SelectsNothing(invocation)) {
        AddGone(*table, adapters, locks);
    }
    std::vector<Record> rows;
    for (const LockRow& lock : locks) {
        rows.push_back(RecordOf(lock));
        if (lock.state.held && !lock.state.ownerLives) {
            invocation.Warn("process " + std::to_string(lock.state.owner) +
                                " ended without giving its lock back",
                            "`flash lock release --owner-pid " + std::to_string(lock.state.owner) +
                                "` frees it");
        }
    }
    invocation.Result().AddList("locks", "Update locks", tools::ListLayout::Table, RecordOf({}),
                                "No adapters.", std::move(rows));
    return ExitCode::Done;
}

ExitCode FlashLockRelease(tools::Invocation& invocation) {
    const uint32_t owner = GivenOwner(invocation);
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const LockRow lock = LeftBehind(invocation, owner, adapters);
    if (invocation.DryRun()) {
        AddRelease(invocation, lock, false);
        invocation.Note("dry run: the lock would be released");
        return ExitCode::Done;
    }
    const ExitCode ended = EndLockInChild(invocation, lock.adapter->First().index, owner);
    const auto table = ReadLockTable(invocation);
    const FlashLock* now = FindLock(*table, lock.serial);
    const bool released = now == nullptr || now->owner != owner;
    AddRelease(invocation, lock, released);
    if (!released) {
        invocation.Add({tools::Severity::Error,
                        "the lock is still held: the process that was to release it ended with "
                        "exit code " +
                            std::to_string(Number(ended)),
                        "a lock is free for all after 15 minutes at the latest",
                        lock.adapter->First().Object(),
                        {}});
        return ended == ExitCode::Done ? ExitCode::Failed : ended;
    }
    invocation.Changed();
    return ExitCode::Done;
}

ExitCode FlashLockEnd(tools::Invocation& invocation) {
    const uint32_t owner = GivenOwner(invocation);
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const LockRow lock = LeftBehind(invocation, owner, adapters);
    Device device;
    HX_STATUS status = lock.adapter->Speaker().Open(TracePath(invocation), &device);
    if (status == HXMGT_SUCCESS) {
        // Also ends the thread that the record names, whatever that number means in this process:
        // nothing may follow here.
        status = HXEndFlashUpdate(device.Handle(), 0, owner);
    }
    AddRelease(invocation, lock, status == HXMGT_SUCCESS);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the lock cannot be released", lock.adapter->First().Object());
    }
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows FlashLockCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "flash lock show",
            .risk = tools::Risk::Reads,
            .help = "which processes hold update locks",
            .schema = "flash.lock.show",
            .run = FlashLockShow,
            .example = "flash lock show",
        },
        {
            .path = "flash lock release",
            .risk = tools::Risk::Reversible,
            .help = "give back the lock of a process that has ended",
            .schema = "flash.lock.release",
            .arguments = kReleaseArguments,
            .run = FlashLockRelease,
            .example = "flash lock release --owner-pid 1424",
        },
        {
            .path = kLockEndCommand,
            .risk = tools::Risk::Reversible,
            .help = "what `flash lock release` starts",
            .schema = "flash.lock.release",
            .arguments = kReleaseArguments,
            .run = FlashLockEnd,
            .hidden = true,
        },
    };
    return kCommands;
}

}  // namespace vxmgr
