#include "properties/port_database.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/legacy_targets.h"
#include "properties/port_database_records.h"
#include "transport/requests.h"

namespace properties {
namespace {

static_assert(sizeof(HX_DEVICE_RECORD) == 290);
static_assert(offsetof(HX_DEVICE_RECORD, portId) == 16);
static_assert(offsetof(HX_DEVICE_RECORD, bindingFlags) == 19);
static_assert(offsetof(HX_DEVICE_RECORD, bus) == 20);
static_assert(offsetof(HX_DEVICE_RECORD, lun) == 24);
static_assert(offsetof(HX_DEVICE_RECORD, symbolicName) == 26);
static_assert(offsetof(HX_DEVICE_RECORD, roleAndState) == 154);
static_assert(offsetof(HX_DEVICE_RECORD, targetNumber) == 158);
static_assert(offsetof(HX_DEVICE_RECORD, portFlags) == 160);
static_assert(sizeof(HX_PORT_DATABASE) == 8);
static_assert(offsetof(HX_PORT_DATABASE, count) == 4);
static_assert(sizeof(HX_DISCOVERED_DEVICE) == 26);
static_assert(sizeof(HX_DISCOVERED_PORT) == 60);
static_assert(sizeof(HX_DISCOVERED_TARGET) == 64);
static_assert(offsetof(HX_DISCOVERED_TARGET, numberOfLuns) == 28);

template <size_t Size>
void CopyField(uint8_t (&to)[Size], const uint8_t (&from)[Size]) {
    std::memcpy(to, from, Size);
}

HX_DEVICE_RECORD RecordOf(const PortDatabaseEntry& entry) {
    HX_DEVICE_RECORD record{};
    CopyField(record.nodeName, entry.nodeName);
    CopyField(record.portName, entry.portName);
    CopyField(record.portId, entry.portId);
    record.bindingFlags = entry.bindingFlags;
    record.bus = entry.bus;
    record.target = entry.target;
    record.lun = entry.lun;
    std::memcpy(record.symbolicName, entry.symbolicName, sizeof record.symbolicName);
    record.roleAndState = entry.roleAndState;
    record.targetNumber = entry.targetNumber;
    record.portFlags = entry.portFlags;
    return record;
}

// A device of an older driver as far as its list tells.
template <class Device>
void PutListed(const LegacyTargetEntry& entry, Device& device) {
    CopyField(device.nodeName, entry.nodeName);
    CopyField(device.portName, entry.portName);
    CopyField(device.portId, entry.portId);
    device.bus = entry.bus;
    device.target = entry.target;
}

HX_DEVICE_RECORD RecordOf(const LegacyTargetEntry& entry) {
    HX_DEVICE_RECORD record{};
    PutListed(entry, record);
    record.targetNumber = entry.loopId;
    return record;
}

// Takes records into the caller's buffer for as long as they fit.
class DatabaseBuffer {
  public:
    DatabaseBuffer(void* buffer, uint32_t size)
        : head_(static_cast<HX_PORT_DATABASE*>(buffer)),
          records_(reinterpret_cast<HX_DEVICE_RECORD*>(head_ + 1)),
          room_(size < sizeof *head_ ? 0 : (size - sizeof *head_) / sizeof *records_),
          holdsHead_(size >= sizeof *head_) {}

    void Add(const HX_DEVICE_RECORD& record) {
        if (used_ < room_) {
            records_[used_] = record;
        }
        ++used_;
    }
    // total: of all devices, also those that were not added.
    HX_STATUS Close(uint32_t type, uint32_t total) {
        if (holdsHead_) {
            *head_ = {type, static_cast<uint16_t>(std::min<uint32_t>(total, UINT16_MAX)), 0};
        }
        return holdsHead_ && total <= room_ ? HXMGT_SUCCESS : HXMGT_BUFFER_TOO_SMALL;
    }

  private:
    HX_PORT_DATABASE* head_;
    HX_DEVICE_RECORD* records_;
    size_t room_;
    bool holdsHead_;
    size_t used_ = 0;
};

HX_STATUS GetListed(uint32_t handle, uint32_t type, DatabaseBuffer& out) {
    LegacyTargets targets;
    if (const HX_STATUS status = targets.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    uint32_t count = 0;
    for (const LegacyTargetEntry& entry : targets.Entries()) {
        if (IsValid(entry)) {
            out.Add(RecordOf(entry));
            ++count;
        }
    }
    return out.Close(type, count);
}

HX_STATUS GetDatabase(uint32_t handle, uint32_t type, DatabaseBuffer& out) {
    const std::unique_ptr<PortDatabaseReply> reply(new (std::nothrow) PortDatabaseReply{});
    if (reply == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const transport::Command command = transport::command::PortDatabase;
    const PortDatabaseRequest request{type};
    uint32_t returned = 0;
    const HX_STATUS status =
        transport::SendExtended(handle, command.code, command.subCode, &request, sizeof request,
                                reply.get(), sizeof *reply, &returned);
    const bool more = status == HXMGT_BUFFER_TOO_SMALL;
    if (status != HXMGT_SUCCESS && !more) {
        return status;
    }
    if (returned < sizeof reply->header) {
        return HXMGT_UNKNOWN_ERROR;
    }
    // Only entries that came back; the count may say more.
    const size_t carried = (returned - sizeof reply->header) / sizeof reply->entries[0];
    const size_t count = std::min<size_t>(reply->header.count, carried);
    for (const PortDatabaseEntry& entry : std::span(reply->entries).first(count)) {
        out.Add(RecordOf(entry));
    }
    const HX_STATUS fits =
        out.Close(reply->header.type, more ? reply->header.count : static_cast<uint32_t>(count));
    return more ? status : fits;
}

// Asks for one discovered device; a reply that is too short is filled up with zeros.
template <class Record>
HX_STATUS AskDiscovered(uint32_t handle, transport::Command command, uint32_t index,
                        Record& record) {
    const DiscoveredRequest request{index, {}};
    Record reply{};
    const HX_STATUS status = transport::Exchange(handle, command, request, reply);
    if (status == HXMGT_SUCCESS) {
        record = reply;
    }
    return status;
}

HX_STATUS GetListedPort(uint32_t handle, uint32_t index, HX_DISCOVERED_PORT& record) {
    LegacyTargets targets;
    if (const HX_STATUS status = targets.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    for (const LegacyTargetEntry& entry : targets.Entries()) {
        if (IsValid(entry) && index-- == 0) {
            record = {};
            PutListed(entry, record.device);
            return HXMGT_SUCCESS;
        }
    }
    return HXMGT_DEVICE_NOT_FOUND;
}

}  // namespace

HX_STATUS GetPortDatabase(uint32_t handle, uint32_t type, void* buffer, uint32_t size) {
    if (const HX_STATUS status = CheckQuery(handle, buffer); status != HXMGT_SUCCESS) {
        return status;
    }
    DatabaseBuffer out(buffer, size);
    return TakesExtendedRequests(handle) ? GetDatabase(handle, type, out)
                                         : GetListed(handle, type, out);
}

HX_STATUS GetDiscoveredPort(uint32_t handle, uint32_t index, HX_DISCOVERED_PORT* record) {
    if (const HX_STATUS status = CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return TakesExtendedRequests(handle)
               ? AskDiscovered(handle, transport::command::DiscoveredPort, index, *record)
               : GetListedPort(handle, index, *record);
}

HX_STATUS GetDiscoveredTarget(uint32_t handle, uint32_t index, HX_DISCOVERED_TARGET* record) {
    if (const HX_STATUS status = CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return TakesExtendedRequests(handle)
               ? AskDiscovered(handle, transport::command::DiscoveredTarget, index, *record)
               : HXMGT_NOT_SUPPORTED;
}

HX_STATUS KnownDevices::Fetch(uint32_t handle) {
    database_.reset(new (std::nothrow) Database{});
    return database_ != nullptr
               ? GetPortDatabase(handle, kEveryDevice, database_.get(), sizeof *database_)
               : HX_STATUS{HXMGT_OUT_OF_MEMORY};
}

std::span<const HX_DEVICE_RECORD> KnownDevices::Records() const {
    return std::span(database_->devices).first(std::min<size_t>(database_->head.count, kRoom));
}

}  // namespace properties
