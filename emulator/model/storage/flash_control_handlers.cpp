// Requests around an update: active regions, lockdown, boot from SAN, restart of the firmware.
#include <cstring>

#include "flash/flash_records.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/storage/flash_start.h"

namespace vxemu {
namespace {

using properties::ChipTrait;
using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

// Firmware, boot code, settings: the bank of each that is in use.
constexpr uint8_t kFirstBank = 1;

bool HasSecureFlash(const Port& port) {
    return ChipOf(port).Has(ChipTrait::SecureFlash);
}

struct RestartRow {
    flash::Restart kind;
    DriverStatus (*run)(Port& port);
};
constexpr RestartRow kRestarts[] = {
    {flash::Restart::Activate, ActivateFirmware},
    {flash::Restart::ReloadNvram, TakeOverSettings},
};

// A restart, and what may go wrong with it.
DriverStatus Run(const Exchange& exchange, const RestartRow& row) {
    Port& port = exchange.GetPort();
    const AdapterProfile before = *port.adapter;
    const DriverStatus status = row.run(port);
    if (exchange.Meets(FaultKind::OldVersion)) {
        *port.adapter = before;
    }
    if (exchange.Meets(FaultKind::WrongBank)) {
        UseOtherBank(port);
    }
    if (exchange.Meets(FaultKind::NoReturn)) {
        port.flash->withoutPower = true;
    }
    return status;
}

DriverStatus ActiveRegions(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    if (!HasSecureFlash(port)) {
        return DriverStatus::UnsupportedSubCode;
    }
    flash::ActiveRegionsRecord record;
    if (!exchange.Read(record)) {
        return DriverStatus::InvalidParameter;
    }
    std::memset(record.bytes, 0, sizeof record.bytes);
    std::memset(record.bytes, kFirstBank, flash::kActiveBankByte);
    record.bytes[flash::kActiveBankByte] =
        ActiveBank(port) == flash::Bank::Second ? flash::kSecondBank : kFirstBank;
    exchange.Reply(record);
    return DriverStatus::Success;
}

DriverStatus LockdownState(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    flash::LockdownRecord record;
    if (!HasSecureFlash(port)) {
        return DriverStatus::InvalidRequest;
    }
    if (!exchange.Read(record)) {
        return DriverStatus::InvalidParameter;
    }
    record = {};
    record.bytes[0] = port.adapter->lockdown;
    exchange.Reply(record);
    return port.adapter->lockdown != 0 ? DriverStatus::Lockdown : DriverStatus::Success;
}

DriverStatus BootFromSan(Exchange& exchange) {
    uint8_t request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    exchange.Reply(exchange.GetPort().profile->bootsFromSan);
    return DriverStatus::Success;
}

DriverStatus RestartFirmware(Exchange& exchange) {
    flash::Restart kind;
    if (!exchange.Read(kind)) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    exchange.KeepReply(0);
    // Restarting it would take the boot disk away.
    if (port.profile->bootsFromSan != 0) {
        return DriverStatus::InvalidRequest;
    }
    for (const RestartRow& row : kRestarts) {
        if (row.kind == kind) {
            return Run(exchange, row);
        }
    }
    return DriverStatus::InvalidParameter;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::ActiveRegions, .handle = ActiveRegions, .flags = WithinPort},
    {.command = command::LockdownState, .handle = LockdownState, .flags = WithinPort},
    {.command = command::BootFromSan, .handle = BootFromSan, .flags = WithinPort},
    {.command = command::RestartFirmware, .handle = RestartFirmware},
};

}  // namespace

RequestRows FlashControlRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
