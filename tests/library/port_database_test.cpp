#include "support/persist_fixture.h"

namespace {

using namespace support;
using properties::PortDatabaseEntry;

class PortDatabaseTest : public PersistTest {
  protected:
    // An entry of which every byte has a value of its own.
    static PortDatabaseEntry Patterned(uint8_t first) {
        PortDatabaseEntry entry;
        const Bytes bytes = Counting(sizeof entry, first);
        memcpy(&entry, bytes.data(), sizeof entry);
        return entry;
    }
    static Bytes DeviceOf(const Bytes& entry) {
        Bytes device(290);
        std::copy_n(entry.begin(), 26, device.begin());
        std::copy_n(entry.begin() + 36, 8, device.begin() + 154);
        std::copy_n(entry.begin() + 44, 128, device.begin() + 26);
        return device;
    }
    static Bytes Seen(GuardedBuffer& buffer, size_t from, size_t count) {
        return Bytes(buffer.Data() + from, buffer.Data() + from + count);
    }
};

TEST_F(PortDatabaseTest, Records) {
    AnswerDatabase({Patterned(1), Patterned(100)});
    GuardedBuffer buffer(8 + 2 * 290);
    ASSERT_EQ(0u, HXGetPortDatabase(handle, 5, buffer.Data(), 8 + 2 * 290));
    EXPECT_EQ((Bytes{7, 0, 0, 0, 2, 0, 0, 0}), Seen(buffer, 0, 8)) << "the type of the reply";
    EXPECT_EQ(DeviceOf(BytesOf(Patterned(1))), Seen(buffer, 8, 290));
    EXPECT_EQ(DeviceOf(BytesOf(Patterned(100))), Seen(buffer, 298, 290));

    const SentRequest request = port->Last();
    EXPECT_EQ((Bytes{5, 0, 0, 0}), request.Data());
    EXPECT_EQ(176224u, request.Envelope().srb.length);
    EXPECT_EQ(120u, request.inputSize);
    EXPECT_EQ(176252u, request.outputSize);
}

TEST_F(PortDatabaseTest, BuffersThatAreTooSmall) {
    AnswerDatabase({Patterned(1), Patterned(100)});
    for (const uint32_t size : {0u, 7u, 8u, 297u, 298u, 587u}) {
        GuardedBuffer buffer(size);
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetPortDatabase(handle, 7, buffer.Data(), size));
        if (size >= 8) {
            EXPECT_EQ((Bytes{7, 0, 0, 0, 2, 0, 0, 0}), Seen(buffer, 0, 8)) << "the true count";
        }
        const size_t records = size < 8 ? 0 : (size - 8) / 290;
        EXPECT_TRUE(buffer.Holds(0xEE, size < 8 ? 0 : 8 + records * 290, size)) << size;
    }
    // The driver itself has more than the largest request takes.
    properties::PortDatabaseReply reply = {{7, 1025}, {}};
    port->On(command::PortDatabase, Reply{.status = 16, .data = BytesOf(reply)});
    GuardedBuffer buffer(8 + 1024 * 290);
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetPortDatabase(handle, 7, buffer.Data(), 8 + 1024 * 290));
    EXPECT_EQ((Bytes{7, 0, 0, 0, 1, 4, 0, 0}), Seen(buffer, 0, 8));
    reply.header.count = 0x12345;
    port->On(command::PortDatabase, Reply{.status = 16, .data = BytesOf(reply)});
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetPortDatabase(handle, 7, buffer.Data(), 300));
    EXPECT_EQ((Bytes{7, 0, 0, 0, 0xFF, 0xFF, 0, 0}), Seen(buffer, 0, 8)) << "does not wrap";
}

TEST_F(PortDatabaseTest, RepliesThatPromiseTooMuch) {
    Bytes reply = BytesOf(properties::PortDatabaseHeader{7, 500});
    Append(reply, BytesOf(Patterned(1)));
    reply.resize(reply.size() + 171);
    port->On(command::PortDatabase, {.data = reply});
    GuardedBuffer buffer(8 + 500 * 290);
    ASSERT_EQ(0u, HXGetPortDatabase(handle, 7, buffer.Data(), 8 + 500 * 290));
    EXPECT_EQ((Bytes{7, 0, 0, 0, 1, 0, 0, 0}), Seen(buffer, 0, 8)) << "what came, no more";
    reply.resize(7);
    port->On(command::PortDatabase, {.data = reply});
    EXPECT_EQ(HXMGT_UNKNOWN_ERROR, HXGetPortDatabase(handle, 7, buffer.Data(), 298));
    port->On(command::PortDatabase, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetPortDatabase(handle, 7, buffer.Data(), 298));
}

TEST_F(PortDatabaseTest, OlderDriver) {
    ReopenWith("7.05.02");
    HX_TARGET_ENTRY entry;
    const Bytes bytes = Counting(sizeof entry, 0x41);
    memcpy(&entry, bytes.data(), sizeof entry);
    HX_TARGET_ENTRY invalid = entry;
    invalid.targetNumber = 0x8100;
    HX_TARGET_ENTRY last = {};
    last.targetNumber = 3;
    last.target = 9;
    AnswerTargetList({entry, invalid, last});
    GuardedBuffer buffer(8 + 2 * 290);
    ASSERT_EQ(0u, HXGetPortDatabase(handle, 5, buffer.Data(), 8 + 2 * 290));
    EXPECT_EQ((Bytes{5, 0, 0, 0, 2, 0, 0, 0}), Seen(buffer, 0, 8)) << "the invalid one is out";
    Bytes expected(290);
    std::copy_n(bytes.begin() + 16, 16, expected.begin());
    std::copy_n(bytes.begin() + 12, 3, expected.begin() + 16);
    expected[20] = bytes[2];
    expected[22] = bytes[3];
    std::copy_n(bytes.begin(), 2, expected.begin() + 158);
    EXPECT_EQ(expected, Seen(buffer, 8, 290));
    EXPECT_EQ(9, buffer[8 + 290 + 22]);
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetPortDatabase(handle, 5, buffer.Data(), 8 + 290));

    Guarded<HX_DISCOVERED_PORT> record;
    ASSERT_EQ(0u, HXGetDiscPortProperty(handle, 0, 1, 0, record.Get()));
    EXPECT_EQ(9, record->device.target) << "valid ones are counted";
    ASSERT_EQ(0u, HXGetDiscPortProperty(handle, 0, 0, 0, record.Get()));
    Bytes device(60);
    std::copy_n(expected.begin(), 26, device.begin());
    EXPECT_EQ(device, BytesOf(*record.Get()));
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXGetDiscPortProperty(handle, 0, 2, 0, record.Get()));
    EXPECT_EQ(device, BytesOf(*record.Get()));
    Guarded<HX_DISCOVERED_TARGET> target;
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXGetDiscTargetProperty(handle, 0, 0, 0, target.Get()));
    ReopenWith("7.05.03");
    port->On(command::DiscoveredTarget, {.data = Counting(64)});
    EXPECT_EQ(0u, HXGetDiscTargetProperty(handle, 0, 0, 0, target.Get()));
}

TEST_F(PortDatabaseTest, DiscoveredPortsAndTargets) {
    port->On(command::DiscoveredPort, {.data = Counting(60)});
    port->On(command::DiscoveredTarget, {.data = Counting(64, 0x80)});
    Guarded<HX_DISCOVERED_PORT> record;
    ASSERT_EQ(0u, HXGetDiscPortProperty(handle, 9, 0x0102, 7, record.Get()));
    EXPECT_EQ(Counting(60), BytesOf(*record.Get()));
    Bytes request(16);
    request[0] = 2;
    request[1] = 1;
    EXPECT_EQ(request, port->Last().Data());
    Guarded<HX_DISCOVERED_TARGET> target;
    ASSERT_EQ(0u, HXGetDiscTargetProperty(handle, 9, 0x0102, 7, target.Get()));
    EXPECT_EQ(Counting(64, 0x80), BytesOf(*target.Get()));
    EXPECT_EQ(request, port->Last().Data());
    EXPECT_EQ(0x9F9E9D9Cu, target->numberOfLuns);

    port->On(command::DiscoveredPort, {.data = Counting(20)});
    ASSERT_EQ(0u, HXGetDiscPortProperty(handle, 0, 0, 0, record.Get()));
    EXPECT_EQ(20, record->device.bindingFlags);
    EXPECT_EQ(0, record->device.bus) << "what a short reply lacks is zero";
    port->On(command::DiscoveredPort, Reply{.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXGetDiscPortProperty(handle, 0, 0, 0, record.Get()));
}

}  // namespace
