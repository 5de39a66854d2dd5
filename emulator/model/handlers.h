// What the emulated ports answer: one row per request. A capability is added with its row and its
// handler, side by side in one file.
#pragma once

#include <cstdint>
#include <span>

#include "model/exchange.h"
#include "model/profile/profile.h"
#include "transport/ext_ioctl.h"

namespace vxemu {

enum class RequestFlags : uint8_t {
    LegacyToo = 1 << 0,   // a legacy driver answers an extended request as well
    Bare = 1 << 1,        // answered without signature and version of the EXT_IOCTL
    AnySubCode = 1 << 2,  // the sub-code selects something, e.g. a flash region
    WithinPort = 1 << 3,  // changes nothing but what is its port's own (access.h)
};

constexpr RequestFlags operator|(RequestFlags a, RequestFlags b) {
    return static_cast<RequestFlags>(static_cast<uint8_t>(a) | static_cast<uint8_t>(b));
}

constexpr bool Has(RequestFlags flags, RequestFlags flag) {
    return (static_cast<uint8_t>(flags) & static_cast<uint8_t>(flag)) != 0;
}

struct ExtendedRow {
    transport::Command command;
    transport::DriverStatus (*handle)(Exchange& exchange);
    RequestFlags flags = {};
};

struct PlainRow {
    uint32_t code;
    // A plain request has no status: false makes the transfer fail.
    bool (*handle)(Exchange& exchange);
    RequestFlags flags = {};
    DriverGeneration generation = DriverGeneration::Legacy;
};

// The rows of one file.
struct RequestRows {
    std::span<const ExtendedRow> extended = {};
    std::span<const PlainRow> plain = {};
};
RequestRows NodeRequests();
RequestRows PortRequests();
RequestRows EventRequests();
RequestRows DeviceRequests();
RequestRows BindingRequests();
RequestRows ScsiRequests();
RequestRows FabricRequests();
RequestRows StatisticsRequests();
RequestRows DestinationRequests();
RequestRows ScmRequests();
RequestRows PrivateRequests();
RequestRows CreditRecoveryRequests();
RequestRows SerdesRequests();
RequestRows LoopRequests();
RequestRows RemotePortRequests();
RequestRows TargetSettingRequests();
RequestRows VirtualPortRequests();
RequestRows NvmeRequests();
RequestRows ManagementRequests();
RequestRows DiagnosticRequests();
RequestRows DumpRequests();
RequestRows FlashRequests();
RequestRows FlashControlRequests();
RequestRows SecureFlashRequests();
RequestRows NvramRequests();
RequestRows SfpRequests();
RequestRows CompanionRequests();
RequestRows LegacyRequests();

// What the rows say about a request: one of them, or why there is none.
struct ExtendedLookup {
    const ExtendedRow* row;
    transport::DriverStatus status;
};
ExtendedLookup FindExtended(DriverGeneration generation, uint32_t code, uint16_t subCode);

// Null when the driver does not know the request.
const PlainRow* FindPlain(DriverGeneration generation, uint32_t code);

// Whether requests with this code come in the plain form.
bool IsPlainCode(uint32_t code);

// Whether a request in either form, to a driver of either generation, stays within its port.
bool StaysWithinPort(uint32_t code, uint16_t subCode);

// Items of the legacy query that stand with the loop, and with the NVRAM.
void LegacyPositionalMap(Exchange& exchange, const transport::SelectorRecord& selector);
void LegacyNvramSettings(Exchange& exchange, const transport::SelectorRecord& selector);
void LegacyNvramTail(Exchange& exchange, const transport::SelectorRecord& selector);

}  // namespace vxemu
