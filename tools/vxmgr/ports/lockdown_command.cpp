// port lockdown: does the firmware refuse changes?
#include "vxmgr/app/bytes.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

struct Lockdown {
    bool lockedDown;
    bool masked;  // nobody knows whom the bytes name, so they are left out where names are masked
    uint8_t state[64];
};

struct LockdownRow {
    const Port* port;
    std::optional<Lockdown> lockdown;
};

const Fields<LockdownRow> kLockdownRow = {
    {PortKeys(kPortIndex | kPortName | kAdapterSerial | kOldSerialKey), &LockdownRow::port},
    {"locked_down", "Locked down", "LOCKED DOWN", kFlag.OrNull(),
     Of(&LockdownRow::lockdown,
        [](const Lockdown& lockdown) {
            return Value::Flag(lockdown.lockedDown)
                .In(lockdown.lockedDown ? Tone::Warning : Tone::Plain);
        }),
     "the firmware refuses changes of flash and settings; null: it does not tell"},
    {"state", "State", kText.OrNull(),
     Of(&LockdownRow::lockdown,
        [](const Lockdown& lockdown) {
            return lockdown.masked ? std::string() : HexDigits(BytesOf(lockdown.state));
        }),
     "what the firmware says of it: bytes whose meaning is its own; null with --redact"},
    {kPortStatus, &LockdownRow::port},
};
const auto kLockdownList = ListOf("lockdowns", "Lockdowns", kLockdownRow, "No ports.");

HX_STATUS AskLockdown(PortVisit& visit, std::optional<Lockdown>* lockdown) {
    visit.query = "lockdown state";
    Lockdown answer{};
    const HX_STATUS status = HXGetAdapterLockdownState(visit.Handle(), 0, answer.state);
    answer.lockedDown = status == HXMGT_FIRMWARE_LOCKDOWN;
    if (!answer.lockedDown && status != HXMGT_SUCCESS) {
        return status;
    }
    *lockdown = answer;
    return HXMGT_SUCCESS;
}

ExitCode PortLockdown(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const auto answers = ForEachPort<std::optional<Lockdown>>(
        invocation, SelectPorts(invocation, ports), AskLockdown);
    const ExitCode exit = ReportAnswers(invocation, answers);
    std::vector<LockdownRow> rows;
    for (const auto& one : answers) {
        rows.push_back({one.port, one.answer});
        if (rows.back().lockdown) {
            rows.back().lockdown->masked = invocation.Names().Enabled();
        }
    }
    invocation.Result() = kLockdownList.Make(rows);
    return exit;
}

}  // namespace

CommandRows LockdownCommands() {
    static const Command kCommands[] = {
        {.path = "port lockdown",
         .help = "show whether the firmware is locked down against changes",
         .run = PortLockdown,
         .example = "port lockdown -p scsi:3",
         .result = ShapeOf<kLockdownList>},
    };
    return kCommands;
}

}  // namespace vxmgr
