#include "support/event_peer.h"

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <utility>

namespace support {

namespace command = transport::command;

EventDriver::EventDriver() {
    port.On(command::EventDelivery, [this](const SentRequest& request) {
        properties::EventDeliveryRequest sent = {};
        const Bytes data = request.Data();
        memcpy(&sent, data.data(), std::min(data.size(), sizeof sent));
        const std::lock_guard hold(lock_);
        masks_.push_back(sent.mask);
        return Reply{};
    });
    port.On(command::FetchEvents, [this](const SentRequest& request) {
        const std::lock_guard hold(lock_);
        Reply reply;
        while (!events_.empty() && reply.data.size() + 16 <= request.Envelope().ext.responseLen) {
            const Bytes event = BytesOf(events_.front());
            reply.data.insert(reply.data.end(), event.begin(), event.end());
            events_.pop_front();
        }
        return reply;
    });
}

void EventDriver::Raise(uint32_t code, uint32_t first, uint32_t count) {
    const std::lock_guard hold(lock_);
    for (uint32_t i = 0; i < count; ++i) {
        events_.push_back({code, {first + i, 0xB0B1B2B3, ~(first + i)}});
    }
}

std::vector<uint32_t> EventDriver::TakeMasks() {
    const std::lock_guard hold(lock_);
    return std::exchange(masks_, {});
}

std::string Fetched::Text() const {
    std::string text;
    for (const HX_EVENT& event : events) {
        const bool whole = event.data[1] == 0xB0B1B2B3 && event.data[2] == ~event.data[0];
        text.append(text.empty() ? "" : " ").append(std::to_string(event.type)).append(":");
        text.append(whole ? std::to_string(event.data[0]) : "damaged");
    }
    return text;
}

Fetched Fetch(uint32_t handle, uint32_t room) {
    Fetched result;
    result.events.resize(room);
    uint32_t count = 0xCCCCCCCC;
    result.status = HXGetAen(handle, reinterpret_cast<uint8_t*>(result.events.data()),
                             room * static_cast<uint32_t>(sizeof(HX_EVENT)), &count);
    result.events.resize(std::min(count, room));
    return result;
}

void EventPeer::Raise(uint32_t code, uint32_t first, uint32_t count) {
    child_.Ask("raise " + std::to_string(code) + " " + std::to_string(first) + " " +
               std::to_string(count));
}

namespace {

std::string Hex(uint32_t value) {
    char text[16];
    snprintf(text, sizeof text, "%x", value);
    return text;
}

struct ChildState {
    FakeSystem system;
    EventDriver driver;
    uint32_t handle = 0;
};
ChildState* child = nullptr;

std::string AnswerPeer(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    uint32_t a = 0;
    uint32_t b = 0;
    uint32_t c = 0;
    words >> verb >> a >> b >> c;
    if (verb == "enable") {
        return Hex(HXEnableAen(child->handle));
    }
    if (verb == "disable") {
        return Hex(HXDisableAen(child->handle));
    }
    if (verb == "raise") {
        child->driver.Raise(a, b, c);
        return "raised";
    }
    if (verb == "fetch") {
        const Fetched fetched = Fetch(child->handle, a);
        return fetched.status == 0 ? fetched.Text() : "status 0x" + Hex(fetched.status);
    }
    if (verb == "masks") {
        std::string text;
        for (const uint32_t mask : child->driver.TakeMasks()) {
            text += Hex(mask) + " ";
        }
        return text;
    }
    if (verb == "lock") {
        SharedView<frame::FlashLockArea> locks(kFlashLockAreaName);
        locks->locks[a].owner = GetCurrentProcessId();
        locks->locks[a].watchdog = 0x1234;
        return "locked";
    }
    return "what?";
}

int RunEventPeer() {
    ChildState state;
    child = &state;
    state.system.AttachScsiPort(3, &state.driver.port);
    if (HXOpenDevice(0, &state.handle) != 0) {
        return 5;
    }
    return AnswerLines(&AnswerPeer);
}

const RoleEntry kEventPeer("event-peer", &RunEventPeer);

}  // namespace

}  // namespace support
