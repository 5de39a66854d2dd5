// Counters of a port, its own or a remote one's, as each generation of drivers counts them.
#include "statistics/query.h"
#include "statistics/statistics.h"
#include "statistics/statistics_records.h"

namespace statistics {
namespace {

namespace command = transport::command;

// From 9.01.00 on the same pages come with counters that do not wrap.
transport::Command PageCommand(uint32_t driver) {
    return driver < kWideCounters ? command::DestinationStatistics
                                  : command::DestinationStatisticsV1;
}

// What older drivers count, in the form of newer ones.
HX_PORT_STATISTICS Widened(const HX_STATISTICS& counted) {
    HX_PORT_STATISTICS record{};
    record.secondsSinceReset = counted.secondsSinceReset;
    record.txFrames = counted.txFrames;
    record.txWords = counted.txWords;
    record.rxFrames = counted.rxFrames;
    record.rxWords = counted.rxWords;
    record.lipCount = counted.lipCount;
    record.nosCount = HX_NOT_COUNTED;
    record.errorFrames = HX_NOT_COUNTED;
    record.dumpedFrames = HX_NOT_COUNTED;
    record.linkFailures = counted.linkFailures;
    record.lossesOfSync = counted.lossesOfSync;
    record.lossesOfSignal = counted.lossesOfSignal;
    record.primitiveSequenceErrors = counted.primitiveSequenceErrors;
    record.invalidTransmissionWords = counted.invalidTransmissionWords;
    record.invalidCrcs = counted.invalidCrcs;
    record.correctedFecBlocks = HX_NOT_COUNTED;
    record.uncorrectableFecBlocks = HX_NOT_COUNTED;
    return record;
}

// Checks a call and names its port.
HX_STATUS Begin(uint32_t handle, const Needs& needs, const DESTINATIONADDRESS* destination,
                const void* record, properties::AddressBlock& block, uint32_t& driver) {
    const HX_STATUS status = Check(handle, needs, record != nullptr, &driver);
    return status == HXMGT_SUCCESS ? PutTarget(destination, block) : status;
}

}  // namespace

HX_STATUS GetPortStatistics(uint32_t handle, const DESTINATIONADDRESS* destination,
                            HX_PORT_STATISTICS* record) {
    properties::AddressBlock block;
    uint32_t driver = 0;
    if (const HX_STATUS status =
            Begin(handle, needs::kPortStatistics, destination, record, block, driver);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (driver >= kPagedCounters) {
        return Fetch(handle, command::DestinationStatistics, block, *record);
    }
    HX_STATISTICS counted;
    const HX_STATUS status = Fetch(handle, command::PortStatistics, block, counted);
    if (status == HXMGT_SUCCESS) {
        *record = Widened(counted);
    }
    return status;
}

HX_STATUS GetPortStatisticsV1(uint32_t handle, const DESTINATIONADDRESS* destination,
                              HX_PORT_STATISTICS* record) {
    properties::AddressBlock block;
    uint32_t driver = 0;
    const HX_STATUS status =
        Begin(handle, needs::kPortStatisticsV1, destination, record, block, driver);
    return status == HXMGT_SUCCESS ? Fetch(handle, PageCommand(driver), block, *record) : status;
}

HX_STATUS GetPortStatisticsV2(uint32_t handle, const DESTINATIONADDRESS* destination,
                              HX_PORT_STATISTICS_V2* record) {
    properties::AddressBlock block;
    uint32_t driver = 0;
    const HX_STATUS status =
        Begin(handle, needs::kPortStatisticsV2, destination, record, block, driver);
    return status == HXMGT_SUCCESS ? Fetch(handle, command::DestinationStatisticsV2, block, *record)
                                   : status;
}

HX_STATUS GetPortScmStatistics(uint32_t handle, const DESTINATIONADDRESS* destination,
                               HX_PORT_SCM_STATISTICS* record) {
    properties::AddressBlock block;
    uint32_t driver = 0;
    if (const HX_STATUS status =
            Begin(handle, needs::kPortScmStatistics, destination, record, block, driver);
        status != HXMGT_SUCCESS) {
        return status;
    }
    block.page = static_cast<uint16_t>(StatisticsPage::Scm);
    HX_PORT_SCM_STATISTICS page;
    if (const HX_STATUS status = Fetch(handle, PageCommand(driver), block, page);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (page.mark != HX_SCM_MARK) {
        return HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER;  // it knows no pages: these are its counters
    }
    *record = page;
    return HXMGT_SUCCESS;
}

}  // namespace statistics
