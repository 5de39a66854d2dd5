// Requests through the two exported executors, on one adapter whose driver is scripted.
#pragma once

#include <array>
#include <utility>

#include "support/library_fixture.h"

namespace support {

class ExecutorTest : public OneAdapterTest {
  protected:
    HX_STATUS Send(uint32_t code, uint16_t subCode, const Bytes& input, uint32_t outputLength) {
        output.assign(outputLength, 0xEE);
        returned = 0xCCCCCCCC;
        return Extended(handle, code, subCode, input.empty() ? nullptr : input.data(),
                        static_cast<uint32_t>(input.size()),
                        output.empty() ? nullptr : output.data(), outputLength, &returned);
    }
    // Sends with data in the output buffer, as a flash write does.
    HX_STATUS SendWithRecord(uint32_t code, uint16_t subCode, const Bytes& input, Bytes record) {
        output = std::move(record);
        returned = 0;
        return Extended(handle, code, subCode, input.data(), static_cast<uint32_t>(input.size()),
                        output.data(), static_cast<uint32_t>(output.size()), &returned);
    }
    transport::ExtIoctl SentBody() { return port->Last().Envelope().ext; }

    static Bytes Words16(uint16_t a, uint16_t b) { return BytesOf(std::array<uint16_t, 2>{a, b}); }
    static Bytes Words32(uint32_t a, uint32_t b) { return BytesOf(std::array<uint32_t, 2>{a, b}); }

    Bytes output;
    uint32_t returned = 0;
};

}  // namespace support
