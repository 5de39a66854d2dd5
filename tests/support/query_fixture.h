// Calls of the queries with arguments that they accept, and what must reach the driver.
#pragma once

#include <array>

#include "support/byte_fields.h"
#include "support/library_fixture.h"

namespace support {

inline void Put64(Bytes& bytes, size_t offset, uint64_t value) {
    memcpy(&bytes[offset], &value, sizeof value);
}

class QueryTest : public OneAdapterTest {
  protected:
    static constexpr DESTINATIONADDRESS kTarget = {
        HX_ADDRESS_BUS_TARGET, {1, 0, 2, 0, 5, 6, 7, 8}, 0x0203};
    // The block that stands for it in a request: four bytes of the address, type 5.
    static Bytes BlockOfTarget() { return {1, 0, 2, 0, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0}; }

    template <typename Record>
    static Bytes Seen(Guarded<Record>& record) {
        return Bytes(record.Raw().Data(), record.Raw().Data() + sizeof(Record));
    }
    // A failed call leaves the caller's record alone.
    template <typename Call>
    void Fails(HX_STATUS expected, transport::Command command, Reply reply, Call call) {
        port->On(command, reply);
        using Record = std::remove_pointer_t<decltype(RecordOf(call))>;
        Guarded<Record> record;
        EXPECT_EQ(expected, call(record.Get()));
        EXPECT_TRUE(record.Raw().Holds(0xEE));
    }
    template <typename Call, typename Record>
    static Record* ArgumentOf(HX_STATUS (Call::*)(Record*) const);
    template <typename Call>
    static auto RecordOf(Call) -> decltype(ArgumentOf(&Call::operator()));
};

}  // namespace support
