#include "model/access.h"

#include <cstring>

#include "transport/ext_ioctl.h"

namespace vxemu {
namespace {

namespace command = transport::command;

// Requests that change nothing but what is their port's own.
constexpr transport::Command kWithinPort[] = {
    command::NodeProperties,
    command::PortProperties,
    command::PortPropertiesV2,
    command::DriverProperties,
    command::FirmwareProperties,
    command::ChipProperties,
    command::PortDisableInfo,
    command::EventDelivery,
    command::FetchEvents,
    command::ForceEvent,
    command::DiscoveredPort,
    command::DiscoveredTarget,
    command::PortDatabase,
    command::TargetLunMask,
    command::SetTargetLunMask,
    command::TargetLunMaskFc,
    command::SetTargetLunMaskFc,
    command::CtPassThrough,
    command::ElsPassThrough,
    command::ElsRnid,
    command::ScmManagement,
    command::LinkStatistics,
    command::ResetStatistics,
    command::ManagementAddress,
    command::SetManagementAddress,
    command::Loopback,
    command::DportDiagnostic,
    command::DportResults,
    command::Mailbox,
    command::RawFirmwareDump,
    command::RawMpiDump,
    command::MctpDump,
    command::MiniDump,
    command::FirmwareDump,
    command::FlashLayout,
    command::FlashLayoutEx,
    command::ActiveRegions,
    command::LockdownState,
    command::BootFromSan,
    command::VpdRead,
    command::SfpRead,
    command::I2cRead,
};

// The same, whatever the sub-code selects; and plain requests.
constexpr uint32_t kWithinPortCodes[] = {
    command::FlashRead.code,      command::NvramRead.code,        command::LegacyQuery,
    command::LegacyPortAndNode,   command::LegacyResetStatistics, command::LegacyResetStatistics2,
    command::LegacyCtPassThrough, command::LegacyLoopback,        command::LegacyNvramRead,
};

bool StaysWithinPort(uint32_t code, uint16_t subCode) {
    for (const uint32_t known : kWithinPortCodes) {
        if (known == code) {
            return true;
        }
    }
    for (const transport::Command& known : kWithinPort) {
        if (known.code == code && known.subCode == subCode) {
            return true;
        }
    }
    return false;
}

}  // namespace

Reach ReachOf(const uint8_t* buffer, uint32_t inputLength) {
    transport::SrbIoControl srb;
    if (inputLength < sizeof srb) {
        return Reach::Port;
    }
    std::memcpy(&srb, buffer, sizeof srb);
    transport::ExtRequest request = {};
    if (inputLength >= sizeof request) {
        std::memcpy(&request, buffer, sizeof request);
    }
    return StaysWithinPort(srb.controlCode, request.ext.subCode) ? Reach::Port : Reach::Model;
}

}  // namespace vxemu
