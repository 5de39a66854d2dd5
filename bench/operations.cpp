#include "operations.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "dumps/dump_records.h"
#include "hbaapi.h"
#include "passthru/scsi_records.h"
#include "properties/driver_replies.h"
#include "statistics/fabric_records.h"
#include "statistics/statistics_records.h"

namespace bench {

namespace {

namespace command = transport::command;

constexpr uint32_t kInquiryBytes = 96;
constexpr transport::Command kVerifiedNvram = {command::NvramRead.code, 1};

bool Answers(const char* what, HX_STATUS status) {
    if (status != HXMGT_SUCCESS) {
        printf("\n%s: not measured, 0x%08x (%s)\n", what, status, HXGetErrorString(status));
    }
    return status == HXMGT_SUCCESS;
}

void MeasureInquiry(uint32_t handle, const Carrier& carrier, const HX_SCSI_ADDRESS& target,
                    uint32_t samples, std::vector<Result>& results) {
    uint8_t data[kInquiryBytes];
    const auto inquire = [&] {
        return HXSendScsiInquiryCmdFC(handle, &target, data, sizeof data, nullptr, 0);
    };
    if (!Answers("INQUIRY", inquire())) {
        return;
    }
    constexpr uint32_t size = sizeof(passthru::ScsiRequest) + kInquiryBytes;
    BareExtended bare(carrier, command::ScsiPassThrough, size, size);
    auto& request = *reinterpret_cast<passthru::ScsiRequest*>(bare.Input().data());
    memcpy(request.address, target.address, sizeof request.address);
    request.addressType = target.type;  // the driver has the same numbers for names
    request.lun = target.lun;
    request.direction = static_cast<uint8_t>(passthru::ScsiDirection::In);
    request.cdbLength = 6;
    request.cdb[0] = 0x12;
    request.cdb[4] = kInquiryBytes;
    results.push_back(Measure(
        {"HXSendScsiInquiryCmdFC, 96 bytes (1 request)", [&] { inquire(); }, [&] { bare.Send(); }},
        samples));
}

// The adapter's identity as the standard API asks for it: the chip once for each of node, chip and
// NVRAM, the node twice.
void MeasureAttributes(uint32_t handle, const Carrier& carrier, uint32_t samples,
                       std::vector<Result>& results) {
    HBA_ENTRYPOINTS api;
    HBA_RegisterLibrary(&api);
    HBA_ADAPTERATTRIBUTES attributes;
    const auto ask = [&] {
        attributes.VendorSpecificID = 0;
        return api.GetAdapterAttributesHandler(handle, &attributes);
    };
    if (!Answers("Adapter attributes", ask())) {
        return;
    }
    BareExtended chip(carrier, command::ChipProperties, 0, sizeof(properties::ChipReply));
    BareExtended node(carrier, command::NodeProperties, 0, sizeof(properties::NodeReply));
    BareExtended nvram(carrier, kVerifiedNvram, 0, HX_NVRAM_CLASSIC_BYTES);
    BareExtended* const requests[] = {&chip, &node, &chip, &node, &chip, &nvram};
    results.push_back(Measure({"GetAdapterAttributesHandler (6 requests)", [&] { ask(); },
                               [&] {
                                   for (BareExtended* request : requests) {
                                       request->Send();
                                   }
                               }},
                              samples));
}

// One fixed record, written to the caller after success alone.
void MeasureCounters(uint32_t handle, const Carrier& carrier, uint32_t samples,
                     std::vector<Result>& results) {
    HX_PORT_STATISTICS_V2 record;
    const auto ask = [&] { return HXGetPortStatisticsFCV2(handle, nullptr, &record); };
    if (!Answers("Port counters", ask())) {
        return;
    }
    BareExtended bare(carrier, command::DestinationStatisticsV2, sizeof(properties::AddressBlock),
                      sizeof record);
    results.push_back(Measure(
        {"HXGetPortStatisticsFCV2 (1 request)", [&] { ask(); }, [&] { bare.Send(); }}, samples));
}

// A list, of which the pages are as long as they can be whatever they hold.
void MeasureRemotePorts(uint32_t handle, const Carrier& carrier, uint32_t samples,
                        std::vector<Result>& results) {
    std::vector<HX_REMOTE_PORT> ports(1024);
    uint32_t count = 0;
    const auto ask = [&] {
        count = static_cast<uint32_t>(ports.size());
        return HXGetRemotePortInfo(handle, ports.data(), &count);
    };
    if (!Answers("Remote ports", ask())) {
        return;
    }
    constexpr uint32_t perPage = std::size(statistics::RemotePortReply{}.entries);
    const uint32_t pages = std::max(1u, (count + perPage - 1) / perPage);
    BareExtended bare(carrier, command::RemotePortInfo, sizeof(statistics::RemotePortRequest),
                      sizeof(statistics::RemotePortReply));
    auto& request = *reinterpret_cast<statistics::RemotePortRequest*>(bare.Input().data());
    request.list.version = statistics::kListVersion;
    const std::string name = "HXGetRemotePortInfo, " + std::to_string(count) + " ports (" +
                             std::to_string(pages) + (pages == 1 ? " request)" : " requests)");
    results.push_back(Measure({name, [&] { ask(); },
                               [&] {
                                   for (uint32_t page = 0; page < pages; ++page) {
                                       request.list.first = page * perPage;
                                       bare.Send();
                                   }
                               }},
                              samples));
}

void MeasureDump(uint32_t handle, const Carrier& carrier, uint32_t samples,
                 std::vector<Result>& results) {
    std::vector<uint8_t> buffer(sizeof(dumps::RawHeader));
    const auto fetch = [&] {
        const auto capacity = static_cast<uint32_t>(buffer.size() - sizeof(dumps::RawHeader));
        memcpy(buffer.data(), &capacity, sizeof capacity);
        return HXGetFcDumpRaw(handle, 0, buffer.data());
    };
    HX_STATUS status = fetch();
    if (status == HXMGT_NO_FIRMWARE_DUMP) {
        HXForceFwDump(handle);
        status = fetch();
    }
    if (status == HXMGT_BUFFER_TOO_SMALL) {
        uint32_t needed;
        memcpy(&needed, buffer.data(), sizeof needed);
        buffer.resize(sizeof(dumps::RawHeader) + needed);
        status = fetch();
    }
    if (!Answers("Firmware dump", status)) {
        return;
    }
    const auto size = static_cast<uint32_t>(buffer.size() - sizeof(dumps::RawHeader));
    const uint32_t pieces = (size + dumps::kPieceBytes - 1) / dumps::kPieceBytes;
    BareExtended query(carrier, command::RawFirmwareDump, sizeof(dumps::RawQuery),
                       sizeof(dumps::RawQuery));
    BareExtended piece(carrier, command::RawFirmwareDump, sizeof(dumps::RawPiece),
                       sizeof(dumps::RawPiece));
    std::vector<uint8_t> whole(size);
    const auto fetchBare = [&] {
        query.Send();
        auto& request = *reinterpret_cast<dumps::RawHeader*>(piece.Input().data());
        request.length = dumps::kPieceBytes;
        for (request.offset = 0; request.offset < size; request.offset += dumps::kPieceBytes) {
            piece.Send();
            memcpy(whole.data() + request.offset, piece.Output().data() + sizeof request,
                   std::min(dumps::kPieceBytes, size - request.offset));
        }
    };
    const std::string name = "HXGetFcDumpRaw, " + std::to_string(size >> 10) + " KiB (" +
                             std::to_string(1 + pieces) + " requests)";
    results.push_back(Measure({name, [&] { fetch(); }, fetchBare}, samples));
}

}  // namespace

std::vector<Result> MeasureOperations(uint32_t handle, const Carrier& carrier,
                                      const HX_SCSI_ADDRESS& target, uint32_t samples) {
    std::vector<Result> results;
    MeasureInquiry(handle, carrier, target, samples, results);
    MeasureAttributes(handle, carrier, samples, results);
    MeasureCounters(handle, carrier, samples, results);
    MeasureRemotePorts(handle, carrier, samples, results);
    MeasureDump(handle, carrier, std::max(1u, samples / 10), results);
    return results;
}

}  // namespace bench
