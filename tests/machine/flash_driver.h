// A scripted driver with flash regions, and what was asked of it.
#pragma once

#include <map>
#include <set>

#include "flash/flash_records.h"
#include "support/library_fixture.h"

namespace support {

struct RegionSpec {
    uint16_t code;
    uint32_t size;
    uint8_t flags = 0;
};

// The reply to a layout request: these regions, and a count that may lie.
inline Bytes LayoutReply(const std::vector<RegionSpec>& regions, uint32_t bufferSize,
                         std::optional<uint32_t> count = {}) {
    const flash::LayoutHead head = {bufferSize,
                                    count.value_or(static_cast<uint32_t>(regions.size()))};
    Bytes reply = BytesOf(head);
    for (const RegionSpec& region : regions) {
        const flash::DriverRegion entry = {region.code, region.flags,       0x99,
                                           region.size, region.code * 256u, 0xE0E0E0E0};
        Append(reply, BytesOf(entry));
    }
    return reply;
}

// One flash request as the driver sees it.
struct FlashAccess {
    uint16_t subCode;
    uint32_t parameter, requestLen;
    uint32_t inputSize;   // data behind the envelope
    uint32_t outputSize;  // room behind the envelope
    bool operator==(const FlashAccess&) const = default;
};
inline void PrintTo(const FlashAccess& access, std::ostream* out) {
    *out << "{sub-code " << access.subCode << ", parameter " << access.parameter << ", request "
         << access.requestLen << ", in " << access.inputSize << ", out " << access.outputSize
         << "}";
}
inline FlashAccess AccessOf(const SentRequest& request) {
    const transport::ExtIoctl ext = request.Envelope().ext;
    return {ext.subCode, ext.parameter, ext.requestLen,
            request.inputSize - transport::kEnvelopeLength,
            request.outputSize - transport::kEnvelopeLength};
}
constexpr uint32_t Chunk(uint32_t kib, uint32_t index) {
    return kib << 16 | index;
}

class FlashTest : public OneAdapterTest {
  protected:
    // An adapter with these regions; reads of a region answer with its pattern.
    void StartWith(uint16_t deviceId, const std::vector<RegionSpec>& regions,
                   std::string_view driverVersion = "9.04.02") {
        if (handle != 0) {
            Reopen(driverVersion, deviceId);
        }
        port->On(transport::command::FlashLayout,
                 Reply{.data = LayoutReply(regions, sizeof(flash::LayoutTable))});
        for (const RegionSpec& region : regions) {
            AnswerRegion(region.code);
        }
        port->On(transport::command::PortDisableInfo, Reply{.data = {0}});
        SetActiveBank(0);
        port->Forget();
    }
    void AnswerRegion(uint16_t code) {
        port->On({transport::command::FlashRead.code, code}, [](const SentRequest& request) {
            const FlashAccess access = AccessOf(request);
            const uint32_t index = access.parameter & 0xFFFF;
            return Reply{.data = Counting(access.outputSize, static_cast<uint8_t>(index + 1))};
        });
        port->On({transport::command::FlashWrite.code, code}, Reply{});
    }
    void SetActiveBank(uint8_t bank) {
        Bytes active(37, 0);
        active[2] = bank;
        port->On(transport::command::ActiveRegions, Reply{.data = active});
    }
    // The requests of a code, whatever their sub-code.
    std::vector<SentRequest> Sent(transport::Command command) const {
        std::vector<SentRequest> requests = port->Requests();
        std::erase_if(requests,
                      [&](const SentRequest& request) { return request.Code() != command.code; });
        return requests;
    }
    std::vector<FlashAccess> Accesses(transport::Command command) const {
        std::vector<FlashAccess> accesses;
        for (const SentRequest& request : Sent(command)) {
            accesses.push_back(AccessOf(request));
        }
        return accesses;
    }
    std::vector<FlashAccess> Reads() const { return Accesses(transport::command::FlashRead); }
    std::vector<FlashAccess> Writes() const { return Accesses(transport::command::FlashWrite); }
    Bytes Written() const {
        Bytes all;
        for (const SentRequest& request : Sent(transport::command::FlashWrite)) {
            Append(all, request.Data());
        }
        return all;
    }
};

}  // namespace support
