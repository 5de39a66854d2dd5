#include "machine/api_calls.h"

#include <algorithm>
#include <cstring>

namespace support {

ArgumentMemory::ArgumentMemory(size_t bytes, uint8_t fill)
    : first_(bytes, fill), second_(bytes, fill) {}

Arguments ArgumentMemory::All() {
    return {Pointer(first_.data()), Pointer(second_.data()), Pointer(length_), Pointer(&target_),
            Pointer(block_)};
}

Arguments ArgumentMemory::Without(char letter) {
    Arguments all = All();
    (letter == 'a'   ? all.a
     : letter == 'b' ? all.b
     : letter == 'l' ? all.length
     : letter == 't' ? all.target
                     : all.block) = Pointer();
    return all;
}

bool ArgumentMemory::Holds(uint8_t fill) const {
    const auto isFill = [fill](uint8_t byte) { return byte == fill; };
    return std::all_of(first_.begin(), first_.end(), isFill) &&
           std::all_of(second_.begin(), second_.end(), isFill);
}

void ArgumentMemory::Clear() {
    memset(first_.data(), 0, first_.size());
    memset(second_.data(), 0, second_.size());
    memset(length_, 0, sizeof length_);
    target_ = {HX_ADDRESS_BUS_TARGET, {}, 0};
    memset(block_, 0, sizeof block_);
}

namespace {

constexpr uint32_t kSome = 4096;
const HBA_WWN kNobody = {};

const HBA_ENTRYPOINTS& Api() {
    static const HBA_ENTRYPOINTS api = [] {
        HBA_ENTRYPOINTS table = {};
        HBA_RegisterLibrary(&table);
        return table;
    }();
    return api;
}

// The pointer, with a length where it leads unless something stands there.
Pointer Sized(const Pointer& pointer, uint32_t length = kSome) {
    if (uint32_t* const field = pointer; field != nullptr && *field == 0) {
        *field = length;
    }
    return pointer;
}

constexpr uint32_t kHandle = HXMGT_INVALID_HANDLE;
constexpr uint32_t kParameter = HXMGT_INVALID_PARAMETER;
// The record's driver version decides first.
constexpr uint32_t kByEvents = ApiCall::kOwnRules;

#define VX_API(name, required, badHandle, nullPointer, ...)                           \
    {                                                                                 \
#name,                                                                              \
     [](uint32_t h, [[maybe_unused]] const Arguments& x) -> uint32_t {                   \
         [[maybe_unused]] const auto& [a, b, l, t, c] = x;                               \
         return static_cast<uint32_t>(name(h __VA_OPT__(, ) __VA_ARGS__));               \
     },                                                                                  \
     required, badHandle, nullPointer \
    }
#define VX_CALL(required, name, ...) VX_API(name, required, kHandle, kParameter, __VA_ARGS__)
#define VX_HBA(required, name, ...) \
    VX_API(Api().name, required, HBA_STATUS_ERROR_INVALID_HANDLE, HBA_STATUS_ERROR_ARG, __VA_ARGS__)

const ApiCall kCalls[] = {
    VX_API(HXVerifyHbaState, "", HXMGT_FIRMWARE_STATE_INVALID, 0),
    VX_API(GetDriverType, "", 2, 0),
    VX_CALL("a", VXUpdateAdapterModelInBios, a),
    VX_CALL("a", HXGetDriverParameter, "x", a, kSome),
    VX_CALL("", SRBWithHeaderDeviceIoControl, 0xF0001001, 1, nullptr, 0, a, 696, nullptr),
    VX_CALL("", SendMiniPortControl, 0xF0000017, nullptr, 0, a, 64),
    VX_CALL("a", HXGetHbaDeviceNodeProperty, a),
    VX_CALL("a", HXGetHbaDeviceNodePropertyResync, a),
    VX_CALL("a", HXGetHbaDevicePortProperty, 0, a),
    VX_CALL("a", HXGetHbaDevicePortPropertyV1, 0, a),
    VX_CALL("a", HXGetHbaDevicePortPropertyV2, 0, a),
    VX_CALL("a", HXGetHbaDeviceChipProperty, a),
    VX_CALL("a", HXGetHbaDeviceDriverProperty, a),
    VX_CALL("a", HXGetHbaDeviceFirmwareProperty, a),
    VX_CALL("", HXGetHbaPortDisableInfo),
    VX_CALL("", HXEnableSmartSANFC),
    VX_CALL("", HXDisableSmartSANFC),
    VX_API(HXEnableAen, "", kByEvents, 0),
    VX_API(HXGetAen, "", kByEvents, 0, a, kSome, b),
    VX_API(HXDisableAen, "", kByEvents, 0),
    VX_CALL("", HXForceZetaAEN),
    VX_CALL("tc", HXSendScsiPassThruFC, t, c, 6, a, 512, a, 512, b, 256),
    VX_CALL("t", HXSendScsiInquiryCmdFC, t, a, 255, b, 256),
    VX_CALL("t", HXSendScsiReadCapacityCmdFC, t, a, 8, b, 256),
    VX_CALL("t", HXSendScsiReportLunsCmdFC, t, a, kSome, b, 256),
    VX_CALL("ab", HXSendCTPassThru, a, 64, b, kSome),
    VX_CALL("tabl", HXSendElsPassThru, 0, t, a, 16, b, Sized(l, 64), 0),
    VX_CALL("tabl", HXSendElsPassThruEx, 0, t, a, 16, b, Sized(l, 64), 0),
    VX_CALL("ta", HXSendElsRnid, t, 0xDF, a, kSome),
    VX_CALL("a", HXSendSCMMgmt, 0, a),
    VX_CALL("abl", HXRunDiagLoopback, 0, 0, a, 64, b, 64, 1, l),
    VX_CALL("abl", HXRunDiagLoopbackEx, 0, 0, a, 0x18000, b, 0x18000, 1, l),
    VX_CALL("a", HXRunDportDiagEx, 0, a),
    VX_CALL("a", HXRunDportDiagEx2, 0, a),
    VX_CALL("ab", HXMailboxPassthru, 0, a, 32, b, 32),
    VX_CALL("", HXForceFwDump),
    VX_CALL("a", HXGetFcDump, 0, a),
    VX_CALL("a", HXGetFcDumpRaw, 0, Sized(a, 1 << 20)),
    VX_CALL("a", HXGetMpiDumpRaw, 0, Sized(a, 1 << 20)),
    VX_CALL("al", HXGetFcMctpDump, 0, a, Sized(l, 1 << 20)),
    VX_CALL("al", HXGetMiniDump, 0, a, Sized(l, 1 << 20)),
    VX_CALL("a", HXGetPortDatabase, 1, a, 1 << 20),
    VX_CALL("a", HXGetDiscPortProperty, 0, 0, 0, a),
    VX_CALL("a", HXGetDiscTargetProperty, 0, 0, 0, a),
    VX_CALL("a", HXGetTargetData, 0, a, 0),
    VX_CALL("a", HXGetTargetData, 0, a, 1),
    VX_CALL("a", HXSetTargetData, 0, a, 0),
    VX_CALL("a", HXSetTargetData, 0, a, 1),
    VX_CALL("a", HXAddTargetDevice, a),
    VX_CALL("ab", HXSwapTargetDevice, a, b),
    VX_CALL("ta", HXGetHbaTargetLunMask, 0, t, 0, a, 256),
    VX_CALL("ta", HXGetHbaTargetLunMask, 0, t, 1, a, 256),
    VX_CALL("ta", HXGetHbaTargetLunMaskFC, 0, t, 0, a, 256),
    VX_CALL("ta", HXGetHbaTargetLunMaskFC, 0, t, 1, a, 256),
    VX_CALL("ta", HXUpdateHbaTargetLunMask, 0, t, 0, a, 256),
    VX_CALL("ta", HXUpdateHbaTargetLunMask, 0, t, 1, a, 256),
    VX_CALL("ta", HXUpdateHbaTargetLunMaskFC, 0, t, 0, a, 256),
    VX_CALL("ta", HXUpdateHbaTargetLunMaskFC, 0, t, 1, a, 256),
    VX_CALL("a", HXGetLunData, 0, a, 0),
    VX_CALL("a", HXGetLunData, 0, a, 1),
    VX_CALL("a", HXSetLunData, 0, a, 0),
    VX_CALL("a", HXSetLunData, 0, a, 1),
    VX_CALL("a", HXGetFlashUpdateCapabilities, 0, a),
    VX_CALL("a", HXStartFlashUpdate, 0, a),
    VX_CALL("", HXEndFlashUpdate, 0, 1),
    VX_CALL("a", HXGetActiveRegions, 0, a),
    VX_CALL("a", HXGetAdapterLockdownState, 0, a),
    VX_CALL("", HXOnlineActivateFlashUpdate),
    VX_CALL("", HXReloadNvramAndInitFw),
    VX_CALL("", HXGetOptionRomLayout, 0, a),
    VX_CALL("", HXGetOptionRomLayoutEx, 0, a),
    VX_CALL("a", HXGetOptionRom, 0, a, 1 << 20),
    VX_CALL("a", HXGetOptionRomEx, 0, a, 1 << 20, 1),
    VX_CALL("a", HXGetOptionRomOffset, 0, a, 0x20000, 0),
    VX_CALL("a", HXUpdateOptionRomOffset, 0, a, 0x20000, 0),
    VX_CALL("a", HXUpdateOptionRom, 0, a, 0x20000),
    VX_CALL("a", HXUpdateOptionRomEx, 0, a, 0x10000, 7),
    VX_CALL("a", HXUpdateOptionRomEx2, 0, a, 0x10000, 7),
    VX_CALL("a", HXUpdateSecureOptionRomEx, 0, a, 0x10000, 7),
    VX_CALL("a", HXGetNVRam, 0, 2, a, kSome),
    VX_CALL("a", HXUpdateNVRam, 0, 3, a, 256),
    VX_API(HXVerifyHbaNVRam, "", HXMGT_NVRAM_CHECKSUM_INVALID, 0, 0),
    VX_CALL("al", HXGetVpd, 0, a, Sized(l)),
    VX_CALL("a", HXUpdateVpd, 0, a, kSome),
    VX_CALL("a", HXReadSFPData, 0, 0xA0, a, 64, 0, 0, b),
    VX_CALL("a", HXWriteSFPData, 0, 0xA0, a, 64, 0, 0, b),
    VX_CALL("al", HXGetSFPData, 0, a, Sized(l)),
    VX_CALL("a", HXLoadSFPFirmware, 0, a, 0x10000),
    VX_CALL("", HXGetBFSInfo),
    VX_CALL("a", HXOrvoMgt, HX_COMPANION_VERSION, a),
    VX_API(HXGetVariableValue, "a", kHandle, 0, a, 1),
    VX_API(HXSetVariableValue, "a", kHandle, 0, a, 1, 1),
    VX_CALL("a", HXGetStatistics, 0, a),
    VX_CALL("", HXResetStatistics),
    VX_CALL("a", HXGetMgmtAddress, a, kSome),
    VX_CALL("a", HXSetMgmtAddress, a),
    VX_CALL("a", HXGetPortStatisticsFC, t, a),
    VX_CALL("a", HXGetPortStatisticsFCV1, nullptr, a),
    VX_CALL("a", HXGetPortStatisticsFCV2, t, a),
    VX_CALL("a", HXGetPortSCMStatsFC, t, a),
    VX_CALL("a", HXGetSCMStatistics, a),
    VX_CALL("a", HXGetPrivStats, a),
    VX_CALL("a", HXGetPrivStatsEx, a),
    VX_CALL("a", HXGetBBCRData, a),
    VX_CALL("a", HXGetBoardTemp, a),
    VX_CALL("a", HXGetBeaconControl, a),
    VX_CALL("a", HXUpdateBeaconControl, a),
    VX_CALL("a", HXGetFCSerDesRegister, 1, a),
    VX_CALL("", HXSetFCSerDesRegister, 0x10, 1),
    VX_CALL("a", HXGetFCSerDesRegisterEx, 1, 1, a),
    VX_CALL("", HXSetFCSerDesRegisterEx, 1, 0x10, 1),
    VX_CALL("al", HXReadSerdesParams, a, Sized(l, 8)),
    VX_CALL("a", HXGetQuarnI2CRegister, HX_RETIMER_DEVICE, 1, a),
    VX_CALL("", HXSetQuarnI2CRegister, HX_RETIMER_DEVICE, 0x10, 1),
    VX_CALL("a", HXGetPositionalMap, a),
    VX_CALL("al", HXGetRemotePortInfo, a, Sized(l, 8)),
    VX_CALL("al", HXGetSecurePortInfo, a, Sized(l, 8)),
    VX_CALL("ta", HXGetTargetIDMALinkSpeed, t, a),
    VX_CALL("t", HXSetTargetIDMALinkSpeed, t, 0),
    VX_CALL("ta", HXGetLunQos, t, a),
    VX_CALL("a", HXGetLunQosEnable, a),
    VX_CALL("ta", HXSetLunQos, t, a),
    VX_CALL("al", HXGetNPIVAttributes, b, a, Sized(l, 8)),
    VX_CALL("al", HXRGetNVMeInfo, a, Sized(l, 8)),
    VX_CALL("ta", HXGetNVMeTargetInfo, t, a),
    VX_CALL("tal", HXGetNVMeNSInfo, t, a, Sized(l, 8)),
    VX_CALL("tl", HXMapScsiTargetToVolumes, t, a, b, Sized(l, 8)),
    VX_CALL("al", HXMapVolumeToScsiTarget, "C:", a, Sized(l, 8)),
    VX_HBA("a", GetAdapterAttributesHandler, a),
    VX_HBA("a", GetAdapterPortAttributesHandler, 0, a),
    VX_HBA("a", GetPortStatisticsHandler, 0, a),
    VX_HBA("a", GetDiscoveredPortAttributesHandler, 0, 0, a),
    VX_HBA("a", GetPortAttributesByWWNHandler, kNobody, a),
    VX_HBA("a", GetFcpTargetMappingHandler, a),
    VX_HBA("ab", GetEventBufferHandler, a, b),
    VX_HBA("a", GetRNIDMgmtInfoHandler, a),
    VX_HBA("a", SetRNIDMgmtInfoHandler, a),
    VX_HBA("al", SendRNIDHandler, kNobody, PORT_WWN, a, Sized(l, 64)),
    VX_HBA("a", SendCTPassThruHandler, a, 16, b, 16),
    VX_HBA("", ScsiInquiryHandler, kNobody, 0, 0, 0, a, 36, b, 256),
    VX_HBA("", ReportLUNsHandler, kNobody, a, 36, b, 256),
    VX_HBA("", ReadCapacityHandler, kNobody, 0, a, 8, b, 256),
    VX_API(Api().ResetStatisticsHandler, "", HXMGT_INVALID_HANDLE, 0, 0),
};
#undef VX_HBA
#undef VX_CALL
#undef VX_ROW

}  // namespace

std::span<const ApiCall> ApiCalls() {
    return kCalls;
}

}  // namespace support
