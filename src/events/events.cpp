#include "events/events.h"

#include <windows.h>

#include <algorithm>

#include "events/event_ring.h"
#include "frame/handle_table.h"
#include "frame/library_state.h"
#include "frame/owned.h"
#include "properties/driver_replies.h"
#include "transport/requests.h"

namespace events {
namespace {

using frame::ReadOnce;
using frame::WriteOnce;
using properties::EventDeliveryRequest;

constexpr DWORD kMutexWaitMs = 30000;
constexpr uint32_t kMostFetched = frame::kRingCapacity;  // events of one driver request

// Registrations for an adapter: one count in the shared data section, one in the event area. Both
// are kept, with plain arithmetic: intended. Other processes write them too, at any moment.
class Registrations {
  public:
    explicit Registrations(uint32_t adapterIndex)
        : section_(frame::SharedRegistrations()[adapterIndex]),
          area_(frame::Events()->registrations[adapterIndex]) {}

    bool None() const { return ReadOnce(section_) == 0 && ReadOnce(area_) == 0; }
    void Add() {
        WriteOnce(section_, ReadOnce(section_) + 1);
        WriteOnce(area_, ReadOnce(area_) + 1);
    }
    // True when none is left.
    bool Remove() {
        const uint32_t leftInSection = Lower(section_);
        const uint32_t leftInArea = Lower(area_);
        return leftInSection == 0 && leftInArea == 0;
    }

  private:
    static uint32_t Lower(uint32_t& counter) {
        const uint32_t count = ReadOnce(counter);
        const uint32_t left = count != 0 ? count - 1 : 0;
        WriteOnce(counter, left);
        return left;
    }

    uint32_t& section_;
    uint32_t& area_;
};

HX_STATUS SwitchDelivery(uint32_t handle, uint32_t mask) {
    return transport::Tell(handle, transport::command::EventDelivery,
                           EventDeliveryRequest{mask, 0});
}

// The adapter index of a handle whose driver delivers events, or why there is none. That the handle
// is open is not looked at: intended.
HX_STATUS FindAdapter(uint32_t handle, uint32_t& adapterIndex) {
    const HXMGT_API_HANDLE* const record = frame::AnyRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    adapterIndex = record->dwAdapterIndex;
    return record->dwDriverVersion >= frame::kExtendedRequestsVersion ? HXMGT_SUCCESS
                                                                      : HXMGT_NOT_SUPPORTED;
}

// A process that died in the middle leaves its mutex behind as abandoned: it is ours then.
bool WaitFor(HANDLE mutex) {
    const DWORD result = WaitForSingleObject(mutex, kMutexWaitMs);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

}  // namespace

HX_STATUS EnableAen(uint32_t handle) {
    uint32_t adapterIndex = 0;
    if (const HX_STATUS status = FindAdapter(handle, adapterIndex); status != HXMGT_SUCCESS) {
        return status;
    }
    if (adapterIndex == HX_ADAPTER_NOT_COUNTED) {
        if (const HX_STATUS status = frame::CountAdapter(handle, adapterIndex);
            status != HXMGT_SUCCESS) {
            return status;
        }
    }
    Registrations registrations(adapterIndex);
    if (registrations.None()) {
        SwitchDelivery(handle, 0);
        if (const HX_STATUS status = SwitchDelivery(handle, properties::kAllEvents);
            status != HXMGT_SUCCESS) {
            return status;
        }
    }
    if (frame::EventSlot* const slot = frame::OwnEventSlot()) {
        EnableRing(*slot, handle, adapterIndex);
    }
    registrations.Add();
    return HXMGT_SUCCESS;
}

HX_STATUS DisableAen(uint32_t handle) {
    uint32_t adapterIndex = 0;
    if (const HX_STATUS status = FindAdapter(handle, adapterIndex); status != HXMGT_SUCCESS) {
        return status;
    }
    if (adapterIndex == HX_ADAPTER_NOT_COUNTED) {
        // Nothing was ever enabled on it.
        return frame::OpenRecord(handle) != nullptr ? HXMGT_SUCCESS : HXMGT_INVALID_HANDLE;
    }
    if (frame::EventSlot* const slot = frame::OwnEventSlot()) {
        DisableRing(*slot, handle);
    }
    const bool last = Registrations(adapterIndex).Remove();
    return last ? SwitchDelivery(handle, 0) : HXMGT_SUCCESS;
}

HX_STATUS GetAen(uint32_t handle, uint8_t* buffer, uint32_t bufferBytes, uint32_t* count) {
    if (count != nullptr) {
        *count = 0;
    }
    uint32_t adapterIndex = 0;
    if (const HX_STATUS status = FindAdapter(handle, adapterIndex); status != HXMGT_SUCCESS) {
        return status;
    }
    if (adapterIndex == HX_ADAPTER_NOT_COUNTED) {
        return HXMGT_INVALID_REQUEST;
    }
    if (count == nullptr || (buffer == nullptr && bufferBytes != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    frame::EventSlot* const slot = frame::OwnEventSlot();
    // Own, so that it can be given back whatever happens to the handle.
    const frame::OwnedObject mutex = frame::EventMutex(handle);
    if (slot == nullptr || !mutex.Valid() || !WaitFor(mutex.Get())) {
        return HXMGT_DEVICE_BUSY;
    }
    const frame::MutexHold hold(mutex.Get());
    Delivery delivery({reinterpret_cast<HX_EVENT*>(buffer), bufferBytes / sizeof(HX_EVENT)});
    DeliverQueued(*slot, handle, delivery);
    *count = delivery.Delivered();

    frame::EventRecord fetched[kMostFetched];
    uint32_t returned = 0;
    const transport::Command fetch = transport::command::FetchEvents;
    if (const HX_STATUS status =
            transport::SendExtended(handle, fetch.code, fetch.subCode, nullptr, 0, fetched,
                                    std::min<uint32_t>(bufferBytes, sizeof fetched), &returned);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const std::span<const frame::EventRecord> events(fetched,
                                                     returned / sizeof(frame::EventRecord));
    const uint32_t room = delivery.Room();
    for (const frame::EventRecord& event : events.first(std::min<size_t>(room, events.size()))) {
        delivery.Deliver(event);
    }
    *count = delivery.Delivered();
    FanOut(*frame::Events(), *slot, adapterIndex, events, room);
    return HXMGT_SUCCESS;
}

HX_STATUS ForceEvent(uint32_t handle) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    uint8_t state = 0;
    return transport::Exchange(handle, transport::command::ForceEvent, state, state);
}

}  // namespace events
