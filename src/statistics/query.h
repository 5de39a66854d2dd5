// What the queries of this folder have in common: who may ask, and how a reply reaches the caller.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"
#include "properties/chip_families.h"
#include "properties/target_address.h"
#include "transport/requests.h"

namespace statistics {

// What a call needs: a driver of that version, and a chip with that trait unless it is None.
struct Needs {
    uint32_t driver;
    properties::ChipTrait chips;
};

inline constexpr uint32_t kAnyDriver = 0;
inline constexpr uint32_t kExtended = 70503;       // the first with extended requests
inline constexpr uint32_t kPagedCounters = 80100;  // counters by page
inline constexpr uint32_t kWideCounters = 90100;   // counters that do not wrap, NVMe, security

namespace needs {
using enum properties::ChipTrait;
inline constexpr Needs kPortStatistics{kExtended, None};
inline constexpr Needs kPortStatisticsV1{kPagedCounters, None};
inline constexpr Needs kPortStatisticsV2{kWideCounters, None};
inline constexpr Needs kPortScmStatistics{kPagedCounters, None};
inline constexpr Needs kScmStatistics{kExtended, None};
inline constexpr Needs kPrivateStatistics{kExtended, None};
inline constexpr Needs kCreditRecovery{kExtended, None};
inline constexpr Needs kBoardTemperature{kExtended, Newer};
inline constexpr Needs kSerdes{kExtended, Newest};
inline constexpr Needs kRetimer{kExtended, Newest};
inline constexpr Needs kBeacon{kExtended, None};
inline constexpr Needs kPositionalMap{kAnyDriver, None};
inline constexpr Needs kRemotePorts{kExtended, None};
inline constexpr Needs kSecurePorts{kWideCounters, Newest};
inline constexpr Needs kLinkSpeed{kExtended, None};
inline constexpr Needs kLunQos{kExtended, None};
inline constexpr Needs kVirtualPorts{kExtended, None};
inline constexpr Needs kNvme{kWideCounters, None};
}  // namespace needs

// The checks of every call but those of its values, in their order: handle, pointers, driver, chip.
// pointersGiven: none of those that the call needs is null. driver takes the driver's version.
HX_STATUS Check(uint32_t handle, const Needs& needs, bool pointersGiven,
                uint32_t* driver = nullptr);

// The block that names a remote port; the port itself when destination is null.
HX_STATUS PutTarget(const DESTINATIONADDRESS* destination, properties::AddressBlock& block);

// An address as requests take it whole: with its type as the driver numbers it.
HX_STATUS PutNumbered(const DESTINATIONADDRESS& target, DESTINATIONADDRESS& numbered);

// Asks for a record of the caller's: written whole, and only after success; what comes short reads
// as zero behind its end.
template <class Request, class Record>
HX_STATUS Fetch(uint32_t handle, transport::Command command, const Request& request,
                Record& record) {
    Record reply{};
    const HX_STATUS status = transport::Exchange(handle, command, request, reply);
    if (status == HXMGT_SUCCESS) {
        record = reply;
    }
    return status;
}
template <class Record>
HX_STATUS Fetch(uint32_t handle, transport::Command command, Record& record) {
    Record reply{};
    const HX_STATUS status = transport::Ask(handle, command, reply);
    if (status == HXMGT_SUCCESS) {
        record = reply;
    }
    return status;
}

// The driver may forget the end of a text that its record promises.
template <size_t Size>
void Terminate(char (&text)[Size]) {
    text[Size - 1] = '\0';
}

}  // namespace statistics
