// The standard API through its table, on one adapter whose driver is scripted.
#pragma once

#include <string>
#include <vector>

#include "hbaapi.h"
#include "properties/port_database_records.h"
#include "support/library_fixture.h"

namespace support {

using properties::LegacySelector;

inline HBA_ENTRYPOINTS RegisteredHandlers() {
    HBA_ENTRYPOINTS api = {};
    EXPECT_EQ(0u, HBA_RegisterLibrary(&api));
    return api;
}

// A name that differs from all others in its last byte.
inline HBA_WWN WwnOf(uint8_t last, uint8_t first = 0x50) {
    return {{first, 1, 2, 3, 4, 5, 6, last}};
}

inline bool operator==(const HBA_WWN& a, const HBA_WWN& b) {
    return memcmp(a.wwn, b.wwn, sizeof a.wwn) == 0;
}

class HbaApiTest : public OneAdapterTest {
  protected:
    struct DiscoveredPort {
        uint8_t last;  // of its names; the node name begins with 0x20
        uint16_t bus, target;
    };

    // Fails the request from the given time on that it is sent (0 = the first).
    void FailFrom(transport::Command request, uint32_t successes, Reply success, Reply failure) {
        auto left = std::make_shared<uint32_t>(successes);
        port->On(request,
                 [=](const SentRequest&) { return *left == 0 ? failure : (--*left, success); });
    }

    // The list of discovered ports, and each of them by its index.
    void AnswerDiscovered(const std::vector<DiscoveredPort>& ports, uint32_t claimed = 0) {
        Bytes list = BytesOf(
            properties::PortDatabaseHeader{1, static_cast<uint32_t>(ports.size()) + claimed});
        for (const DiscoveredPort& row : ports) {
            properties::PortDatabaseEntry entry = {};
            memcpy(entry.nodeName, WwnOf(row.last, 0x20).wwn, 8);
            memcpy(entry.portName, WwnOf(row.last).wwn, 8);
            memcpy(entry.portId, "\x0A\x0B", 2);
            entry.portId[2] = row.last;
            entry.bus = row.bus;
            entry.target = row.target;
            Append(list, BytesOf(entry));
        }
        port->On(command::PortDatabase, Reply{.data = list});
        port->On(command::DiscoveredPort, [=](const SentRequest& request) {
            uint32_t index = 0;
            memcpy(&index, request.Data().data(), sizeof index);
            if (index >= ports.size()) {
                return Reply{.status = 9};
            }
            const auto* entry = list.data() + sizeof(properties::PortDatabaseHeader) +
                                index * sizeof(properties::PortDatabaseEntry);
            Bytes reply(entry, entry + 26);
            reply.resize(60);
            return Reply{.data = reply};
        });
    }

    // The same as an older driver lists them; entries without a valid bit stand between.
    void AnswerLegacyTargets(const std::vector<DiscoveredPort>& ports) {
        auto list = std::make_unique<properties::LegacyTargetListReply>();
        for (const DiscoveredPort& row : ports) {
            properties::LegacyTargetEntry& invalid = list->entries[list->count++];
            invalid.loopId = 0x0100;
            memcpy(invalid.portName, WwnOf(0xFF).wwn, 8);
            properties::LegacyTargetEntry& entry = list->entries[list->count++];
            entry.loopId = 0x0101;
            entry.bus = static_cast<uint8_t>(row.bus);
            entry.target = static_cast<uint8_t>(row.target);
            memcpy(entry.nodeName, WwnOf(row.last, 0x20).wwn, 8);
            memcpy(entry.portName, WwnOf(row.last).wwn, 8);
            memcpy(entry.portId, "\x0A\x0B", 2);
            entry.portId[2] = row.last;
        }
        port->OnSelector(LegacySelector::TargetList, {.data = BytesOf(*list)});
    }

    HBA_ENTRYPOINTS api = RegisteredHandlers();
};

}  // namespace support
