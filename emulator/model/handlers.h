// What the emulated ports answer: one row per request. A capability is added with its row and its
// handler.
#pragma once

#include <cstdint>

#include "model/exchange.h"
#include "model/profile/profile.h"
#include "transport/ext_ioctl.h"

namespace vxemu {

using ExtendedHandler = transport::DriverStatus (*)(Exchange& exchange);

struct ExtendedRow {
    transport::Command command;
    bool legacyToo;  // answered by a legacy driver as well
    bool bare;       // answered without signature and version of the EXT_IOCTL
    ExtendedHandler handle;
    bool anySubCode = false;  // the sub-code selects something, e.g. a flash region
};

// A plain request has no status: false makes the transfer fail.
using PlainHandler = bool (*)(Exchange& exchange);

struct PlainRow {
    uint32_t code;
    DriverGeneration generation;
    PlainHandler handle;
};

// What the tables say about a request: a row, or why there is none.
struct ExtendedLookup {
    const ExtendedRow* row;
    transport::DriverStatus status;
};
ExtendedLookup FindExtended(DriverGeneration generation, uint32_t code, uint16_t subCode);

// Null when the driver does not know the request.
const PlainRow* FindPlain(DriverGeneration generation, uint32_t code);

// Whether requests with this code come in the plain form.
bool IsPlainCode(uint32_t code);

transport::DriverStatus NodeProperties(Exchange& exchange);
transport::DriverStatus PortProperties(Exchange& exchange);
transport::DriverStatus PortPropertiesV2(Exchange& exchange);
transport::DriverStatus DriverProperties(Exchange& exchange);
transport::DriverStatus FirmwareProperties(Exchange& exchange);
transport::DriverStatus ChipProperties(Exchange& exchange);
transport::DriverStatus PortDisableInfo(Exchange& exchange);
transport::DriverStatus EventDelivery(Exchange& exchange);
transport::DriverStatus FetchEvents(Exchange& exchange);
transport::DriverStatus ForceEvent(Exchange& exchange);
transport::DriverStatus DiscoveredPort(Exchange& exchange);
transport::DriverStatus DiscoveredTarget(Exchange& exchange);
transport::DriverStatus PortDatabase(Exchange& exchange);
transport::DriverStatus TargetLunMask(Exchange& exchange);
transport::DriverStatus SetTargetLunMask(Exchange& exchange);
transport::DriverStatus TargetLunMaskFc(Exchange& exchange);
transport::DriverStatus SetTargetLunMaskFc(Exchange& exchange);
transport::DriverStatus AddTarget(Exchange& exchange);
transport::DriverStatus SwapTargets(Exchange& exchange);
transport::DriverStatus ScsiPassThrough(Exchange& exchange);
transport::DriverStatus CtPassThrough(Exchange& exchange);
transport::DriverStatus ElsPassThrough(Exchange& exchange);
transport::DriverStatus ElsRnid(Exchange& exchange);
transport::DriverStatus ScmManagement(Exchange& exchange);
transport::DriverStatus LinkStatistics(Exchange& exchange);
transport::DriverStatus ResetStatistics(Exchange& exchange);
transport::DriverStatus ManagementAddress(Exchange& exchange);
transport::DriverStatus SetManagementAddress(Exchange& exchange);
transport::DriverStatus Loopback(Exchange& exchange);
transport::DriverStatus DportDiagnostic(Exchange& exchange);
transport::DriverStatus DportResults(Exchange& exchange);
transport::DriverStatus Mailbox(Exchange& exchange);
transport::DriverStatus ForceDump(Exchange& exchange);
transport::DriverStatus RawFirmwareDump(Exchange& exchange);
transport::DriverStatus RawMpiDump(Exchange& exchange);
transport::DriverStatus MctpDump(Exchange& exchange);
transport::DriverStatus MiniDump(Exchange& exchange);
transport::DriverStatus FirmwareDump(Exchange& exchange);
transport::DriverStatus FlashLayout(Exchange& exchange);
transport::DriverStatus FlashRead(Exchange& exchange);
transport::DriverStatus FlashWrite(Exchange& exchange);
transport::DriverStatus OptionRomReadOld(Exchange& exchange);
transport::DriverStatus OptionRomWriteOld(Exchange& exchange);
transport::DriverStatus ActiveRegions(Exchange& exchange);
transport::DriverStatus LockdownState(Exchange& exchange);
transport::DriverStatus BootFromSan(Exchange& exchange);
transport::DriverStatus RestartFirmware(Exchange& exchange);
transport::DriverStatus SecureFlashState(Exchange& exchange);
transport::DriverStatus SecureFlashBegin(Exchange& exchange);
transport::DriverStatus SecureFlashHeader(Exchange& exchange);
transport::DriverStatus SecureFlashVerify(Exchange& exchange);
transport::DriverStatus SecureFlashStatus(Exchange& exchange);
transport::DriverStatus SecureFlashCommit(Exchange& exchange);
transport::DriverStatus SecureFlashAbort(Exchange& exchange);
transport::DriverStatus NvramRead(Exchange& exchange);
transport::DriverStatus NvramWrite(Exchange& exchange);
transport::DriverStatus VpdRead(Exchange& exchange);
transport::DriverStatus VpdWrite(Exchange& exchange);
transport::DriverStatus SfpRead(Exchange& exchange);
transport::DriverStatus I2cRead(Exchange& exchange);
transport::DriverStatus I2cWrite(Exchange& exchange);
transport::DriverStatus LoadSfpFirmware(Exchange& exchange);
transport::DriverStatus AuxiliaryFirmware(Exchange& exchange);

bool LegacyQuery(Exchange& exchange);
bool LegacyTargetQuery(Exchange& exchange);
bool LegacyPortAndNode(Exchange& exchange);
bool LegacyResetStatistics(Exchange& exchange);
bool LegacySetTarget(Exchange& exchange);
bool LegacyAddTarget(Exchange& exchange);
bool LegacySwapTargets(Exchange& exchange);
bool LegacyScsiPassThrough(Exchange& exchange);
bool LegacyCtPassThrough(Exchange& exchange);
bool LegacyLoopback(Exchange& exchange);
bool LegacyNvramRead(Exchange& exchange);
bool LegacyNvramWrite(Exchange& exchange);
bool LegacyNvramWrite64(Exchange& exchange);
bool LegacyNvramWrite16(Exchange& exchange);

// Items of the legacy query.
void LegacyNvramSettings(Exchange& exchange, const transport::SelectorRecord& selector);
void LegacyNvramTail(Exchange& exchange, const transport::SelectorRecord& selector);

}  // namespace vxemu
