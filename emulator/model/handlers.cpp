#include "model/handlers.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;

constexpr ExtendedRow kExtendedRows[] = {
    // command, legacy driver too, bare, handler, any sub-code
    {command::NodeProperties, true, false, NodeProperties},
    {command::PortProperties, false, false, PortProperties},
    {command::DriverProperties, true, true, DriverProperties},
    {command::FirmwareProperties, false, false, FirmwareProperties},
    {command::ChipProperties, true, false, ChipProperties},
    {command::PortPropertiesV2, false, false, PortPropertiesV2},
    {command::EventDelivery, false, false, EventDelivery},
    {command::FetchEvents, false, false, FetchEvents},
    {command::ForceEvent, false, false, ForceEvent},
    {command::PortDisableInfo, false, false, PortDisableInfo},
    {command::DiscoveredPort, false, false, DiscoveredPort},
    {command::DiscoveredTarget, false, false, DiscoveredTarget},
    {command::PortDatabase, false, false, PortDatabase},
    {command::TargetLunMask, false, false, TargetLunMask},
    {command::SetTargetLunMask, false, false, SetTargetLunMask},
    {command::TargetLunMaskFc, false, false, TargetLunMaskFc},
    {command::SetTargetLunMaskFc, false, false, SetTargetLunMaskFc},
    {command::AddTargetOld, false, false, AddTarget},
    {command::AddTarget, false, false, AddTarget},
    {command::SwapTargetsOld, false, false, SwapTargets},
    {command::SwapTargets, false, false, SwapTargets},
    {command::ScsiPassThrough, false, false, ScsiPassThrough},
    {command::CtPassThrough, false, false, CtPassThrough},
    {command::ElsPassThrough, false, false, ElsPassThrough},
    {command::ElsRnid, false, false, ElsRnid},
    {command::ScmManagement, false, false, ScmManagement},
    {command::LinkStatistics, false, false, LinkStatistics},
    {command::ResetStatistics, false, false, ResetStatistics},
    {command::ManagementAddress, false, false, ManagementAddress},
    {command::SetManagementAddress, false, false, SetManagementAddress},
    {command::Loopback, false, false, Loopback},
    {command::DportDiagnostic, false, false, DportDiagnostic},
    {command::DportResults, false, false, DportResults},
    {command::Mailbox, false, false, Mailbox},
    {command::ForceDump, false, false, ForceDump},
    {command::RawFirmwareDump, false, false, RawFirmwareDump},
    {command::RawMpiDump, false, false, RawMpiDump},
    {command::MctpDump, false, false, MctpDump},
    {command::MiniDump, false, false, MiniDump},
    {command::FirmwareDump, false, false, FirmwareDump},
    {command::FlashLayout, false, false, FlashLayout},
    {command::FlashLayoutEx, false, false, FlashLayout},
    {command::FlashRead, false, false, FlashRead, true},
    {command::FlashWrite, false, false, FlashWrite, true},
    {command::OptionRomReadOld, false, false, OptionRomReadOld},
    {command::OptionRomWriteOld, false, false, OptionRomWriteOld},
    {command::ActiveRegions, false, false, ActiveRegions},
    {command::LockdownState, false, false, LockdownState},
    {command::BootFromSan, false, false, BootFromSan},
    {command::RestartFirmware, false, false, RestartFirmware},
    {command::SecureFlashState, false, false, SecureFlashState},
    {command::SecureFlashBegin, false, false, SecureFlashBegin},
    {command::SecureFlashHeader, false, false, SecureFlashHeader},
    {command::SecureFlashVerify, false, false, SecureFlashVerify},
    {command::SecureFlashStatus, false, false, SecureFlashStatus},
    {command::SecureFlashCommit, false, false, SecureFlashCommit},
    {command::SecureFlashAbort, false, false, SecureFlashAbort},
    {command::NvramRead, false, false, NvramRead, true},
    {command::NvramWrite, false, false, NvramWrite, true},
    {command::VpdRead, false, false, VpdRead},
    {command::VpdWrite, false, false, VpdWrite},
    {command::SfpRead, false, false, SfpRead},
    {command::I2cRead, false, false, I2cRead},
    {command::I2cWrite, false, false, I2cWrite},
    {command::LoadSfpFirmware, false, false, LoadSfpFirmware},
    {command::AuxiliaryFirmware, false, false, AuxiliaryFirmware, true},
};

constexpr PlainRow kPlainRows[] = {
    {command::LegacyQuery, DriverGeneration::Legacy, LegacyQuery},
    {command::LegacyPortAndNode, DriverGeneration::Legacy, LegacyPortAndNode},
    {command::LegacyResetStatistics, DriverGeneration::Legacy, LegacyResetStatistics},
    {command::LegacyResetStatistics2, DriverGeneration::Legacy, LegacyResetStatistics},
    {command::LegacySetTarget, DriverGeneration::Legacy, LegacySetTarget},
    // Applying target data takes these two of a current driver as well.
    {command::LegacyQuery, DriverGeneration::Extended, LegacyTargetQuery},
    {command::LegacySetTarget, DriverGeneration::Extended, LegacySetTarget},
    {command::LegacyAddTarget, DriverGeneration::Legacy, LegacyAddTarget},
    {command::LegacySwapTargets, DriverGeneration::Legacy, LegacySwapTargets},
    {command::LegacyScsiPassThrough, DriverGeneration::Legacy, LegacyScsiPassThrough},
    {command::LegacyCtPassThrough, DriverGeneration::Legacy, LegacyCtPassThrough},
    // Drivers of both generations take the first form of the loopback.
    {command::LegacyLoopback, DriverGeneration::Legacy, LegacyLoopback},
    {command::LegacyLoopback, DriverGeneration::Extended, LegacyLoopback},
    {command::LegacyNvramRead, DriverGeneration::Legacy, LegacyNvramRead},
    {command::LegacyNvramWrite, DriverGeneration::Legacy, LegacyNvramWrite},
    {command::LegacyNvramWrite64, DriverGeneration::Legacy, LegacyNvramWrite64},
    {command::LegacyNvramWrite16, DriverGeneration::Legacy, LegacyNvramWrite16},
};

}  // namespace

ExtendedLookup FindExtended(DriverGeneration generation, uint32_t code, uint16_t subCode) {
    bool codeKnown = false;
    for (const ExtendedRow& row : kExtendedRows) {
        if (row.command.code != code ||
            (generation == DriverGeneration::Legacy && !row.legacyToo)) {
            continue;
        }
        if (row.anySubCode || row.command.subCode == subCode) {
            return {&row, DriverStatus::Success};
        }
        codeKnown = true;
    }
    // A legacy driver has no notion of sub-codes beyond the probes.
    const bool legacy = generation == DriverGeneration::Legacy;
    return {nullptr,
            codeKnown && !legacy ? DriverStatus::UnsupportedSubCode : DriverStatus::InvalidRequest};
}

const PlainRow* FindPlain(DriverGeneration generation, uint32_t code) {
    for (const PlainRow& row : kPlainRows) {
        if (row.code == code && row.generation == generation) {
            return &row;
        }
    }
    return nullptr;
}

bool IsPlainCode(uint32_t code) {
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        if (row.code == code) {
            return true;
        }
    }
    return false;
}

}  // namespace vxemu
