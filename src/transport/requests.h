// How every request of the library reaches the driver.
#pragma once

#include <cstdint>
#include <type_traits>

#include "hxmgtapi.h"
#include "transport/ext_ioctl.h"

namespace transport {

// The two executors. Lengths are in bytes; the comments of hxmgtapi.h give statuses and rules.
HX_STATUS SendExtended(uint32_t handle, uint32_t code, uint16_t subCode, const void* input,
                       uint32_t inputLength, void* output, uint32_t outputLength,
                       uint32_t* returned);
HX_STATUS SendPlain(uint32_t handle, uint32_t code, const void* input, uint32_t inputLength,
                    void* output, uint32_t outputLength);

// One transfer as DeviceIoControl takes it.
struct Transfer {
    void* input;
    uint32_t inputSize;
    void* output;
    uint32_t outputSize;
};

// Sends a transfer, again after each second for as long as the driver is busy, at most 80 times.
// Returns the Windows error, 0 for success. Nothing of it is traced.
uint32_t SendToDevice(void* device, const Transfer& transfer, unsigned long* returned);

// Typed requests: the records give the lengths.
template <class Record>
inline constexpr bool kIsRecord =
    std::is_trivially_copyable_v<Record> && !std::is_pointer_v<Record>;

template <class Request, class Reply>
HX_STATUS Exchange(uint32_t handle, Command command, const Request& request, Reply& reply) {
    static_assert(kIsRecord<Request> && kIsRecord<Reply>);
    uint32_t returned = 0;
    return SendExtended(handle, command.code, command.subCode, &request, sizeof request, &reply,
                        sizeof reply, &returned);
}

template <class Reply>
HX_STATUS Ask(uint32_t handle, Command command, Reply& reply) {
    static_assert(kIsRecord<Reply>);
    uint32_t returned = 0;
    return SendExtended(handle, command.code, command.subCode, nullptr, 0, &reply, sizeof reply,
                        &returned);
}

template <class Request>
HX_STATUS Tell(uint32_t handle, Command command, const Request& request) {
    static_assert(kIsRecord<Request>);
    uint32_t returned = 0;
    return SendExtended(handle, command.code, command.subCode, &request, sizeof request, nullptr, 0,
                        &returned);
}

template <class Reply>
HX_STATUS AskPlain(uint32_t handle, uint32_t code, Reply& reply) {
    static_assert(kIsRecord<Reply>);
    return SendPlain(handle, code, nullptr, 0, &reply, sizeof reply);
}

// A legacy query: the selector names the item.
template <class Selector, class Reply>
HX_STATUS AskLegacy(uint32_t handle, Selector selector, Reply& reply) {
    static_assert(kIsRecord<Reply>);
    const SelectorRecord request{0, kSelectorOption, static_cast<uint32_t>(selector), 0};
    return SendPlain(handle, command::LegacyQuery, &request, sizeof request, &reply, sizeof reply);
}

}  // namespace transport
