// Events, management addresses, RNID and Common Transport through the standard API.
#include "support/byte_fields.h"
#include "support/hbaapi_fixture.h"

namespace {

using namespace support;

class HbaApiEventsTest : public HbaApiTest {
  protected:
    void AnswerEvents(const std::vector<properties::DriverEvent>& events) {
        Bytes reply;
        for (const properties::DriverEvent& event : events) {
            Append(reply, BytesOf(event));
        }
        port->On(command::FetchEvents, Reply{.data = reply});
    }
};

TEST_F(HbaApiEventsTest, Conversion) {
    const std::pair<uint32_t, uint32_t> codes[] = {{0x8010, 1},     {0x8011, 2}, {0x8012, 3},
                                                   {0x8013, 4},     {0x8015, 5}, {0x8014, 0xFFFF},
                                                   {0x8080, 0xFFFF}};
    std::vector<properties::DriverEvent> events;
    for (const auto& row : codes) {
        events.push_back({row.first, {0x11223344, 0x55667788, 0x99AABBCC}});
    }
    events.push_back({0x8016, {}});  // never delivered
    AnswerEvents(events);
    GuardedBuffer out(7 * sizeof(HBA_EVENTINFO));
    auto* const infos = reinterpret_cast<HBA_EVENTINFO*>(out.Data());
    HBA_UINT32 count = 7;
    ASSERT_EQ(0u, api.GetEventBufferHandler(handle, infos, &count));
    ASSERT_EQ(7u, count);
    for (size_t i = 0; i < 7; ++i) {
        HBA_EVENTINFO expected = {};
        expected.EventCode = codes[i].second;
        if (expected.EventCode == HBA_EVENT_RSCN) {
            expected.Event.RSCN_EventInfo.NPortPage = 0x11223344;
        }
        EXPECT_EQ(BytesOf(expected), BytesOf(infos[i])) << i;
    }
    EXPECT_EQ(116u + 512u, port->Last().outputSize);
}

TEST_F(HbaApiEventsTest, Rooms) {
    AnswerEvents(std::vector<properties::DriverEvent>(40, {0x8011, {}}));
    for (const uint32_t room : {0u, 1u, 31u, 32u, 33u}) {
        GuardedBuffer out(room * sizeof(HBA_EVENTINFO));
        HBA_UINT32 count = room;
        EXPECT_EQ(0u, api.GetEventBufferHandler(
                          handle, reinterpret_cast<HBA_EVENTINFO*>(out.Data()), &count));
        EXPECT_EQ(std::min(room, 32u), count);
        EXPECT_TRUE(out.Holds(0xEE, count * sizeof(HBA_EVENTINFO), out.Size())) << room;
    }
    HBA_UINT32 none = 0;
    EXPECT_EQ(0u, api.GetEventBufferHandler(handle, nullptr, &none));
    port->On(command::FetchEvents, Reply{});
    HBA_EVENTINFO info;
    HBA_UINT32 count = 1;
    EXPECT_EQ(0u, api.GetEventBufferHandler(handle, &info, &count));
    EXPECT_EQ(0u, count);
}

TEST_F(HbaApiEventsTest, Failures) {
    HBA_EVENTINFO info;
    HBA_UINT32 count = 1;
    port->On(command::FetchEvents, Reply{.status = 6});
    EXPECT_EQ(4u, api.GetEventBufferHandler(handle, &info, &count));
    EXPECT_EQ(1u, count) << "stays";
    Reopen("7.05.02", 0x7200);
    EXPECT_EQ(2u, api.GetEventBufferHandler(handle, &info, &count));
    EXPECT_EQ(1u, count);
}

using HbaApiFabricTest = HbaApiTest;

TEST_F(HbaApiFabricTest, ManagementAddress) {
    const Bytes record = Counting(52);
    port->On(command::ManagementAddress, Reply{.data = record});
    Guarded<HBA_MGMTINFO> info;
    ASSERT_EQ(0u, api.GetRNIDMgmtInfoHandler(handle, info.Get()));
    EXPECT_EQ(116u + 256u, port->Last().outputSize);
    EXPECT_EQ(Part(record, 0, 8), Bytes(info->wwn.wwn, info->wwn.wwn + 8));
    EXPECT_EQ(0x11121314u, info->unittype) << "numbers come in network order";
    EXPECT_EQ(0x15161718u, info->PortId);
    EXPECT_EQ(0x191A1B1Cu, info->NumberOfAttachedNodes);
    EXPECT_EQ(0x1D1Eu, info->IPVersion);
    EXPECT_EQ(0x1F20u, info->UDPPort);
    EXPECT_EQ(Part(record, 32, 16), Bytes(info->IPAddress, info->IPAddress + 16));
    EXPECT_EQ(Part(record, 48, 2), BytesOf(info->reserved)) << "as bytes";
    EXPECT_EQ(0x3334u, info->TopologyDiscoveryFlags);

    port->On(command::SetManagementAddress, Reply{});
    ASSERT_EQ(0u, api.SetRNIDMgmtInfoHandler(handle, info.Get()));
    Bytes expected = {0x1D, 0x1E, 0x1F, 0x20};
    expected.insert(expected.end(), record.begin() + 32, record.begin() + 48);
    expected.resize(84);
    EXPECT_EQ(expected, port->Last().Data()) << "the IP part, and zeros";
    EXPECT_EQ(116u + 84u, port->Last().outputSize);
}

TEST_F(HbaApiFabricTest, ManagementAddressFailures) {
    Guarded<HBA_MGMTINFO> info;
    port->On(command::ManagementAddress, Reply{.status = 9});
    EXPECT_EQ(5u, api.GetRNIDMgmtInfoHandler(handle, info.Get()));
    EXPECT_TRUE(info.Raw().Holds(0xEE));
    port->On(command::ManagementAddress, Reply{.data = Counting(24)});
    ASSERT_EQ(0u, api.GetRNIDMgmtInfoHandler(handle, info.Get()));
    EXPECT_EQ(0x15161718u, info->PortId);
    EXPECT_EQ(0u, info->NumberOfAttachedNodes) << "what did not come is zero";
    Reopen("7.05.02", 0x7200);
    EXPECT_EQ(2u, api.GetRNIDMgmtInfoHandler(handle, info.Get()));
    EXPECT_EQ(2u, api.SetRNIDMgmtInfoHandler(handle, info.Get()));
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(HbaApiFabricTest, Rnid) {
    Bytes reply = Counting(72);
    reply[1] = 16;  // behind the command word: the length of the common data
    port->On(command::ElsRnid, Reply{.data = reply});
    struct Row {
        int type;
        uint8_t sentType;
    };
    for (const Row& row : {Row{NODE_WWN, 1}, Row{PORT_WWN, 2}, Row{7, 4}}) {
        SCOPED_TRACE(row.type);
        GuardedBuffer response(76, 0);
        HBA_UINT32 size = 76;
        ASSERT_EQ(0u, api.SendRNIDHandler(handle, WwnOf(3), static_cast<HBA_WWNTYPE>(row.type),
                                          response.Data(), &size));
        EXPECT_EQ(72u, size) << "56 and the common data";
        EXPECT_EQ((Bytes{2, 0, 0, 0, 1, 16}), response.First(6));
        const Bytes sent = port->Last().Data();
        ASSERT_EQ(80u, sent.size());
        EXPECT_EQ(row.sentType, sent[8]) << "an unset type is the attached port";
        EXPECT_EQ(0xDF, sent[14]);
        if (row.type != 7) {
            EXPECT_EQ(BytesOf(WwnOf(3)), Part(sent, 0, 8));
        }
    }
    for (const uint32_t room : {4u, 5u, 6u, 72u}) {
        GuardedBuffer response(room, 0);
        HBA_UINT32 size = room;
        EXPECT_EQ(0u, api.SendRNIDHandler(handle, WwnOf(3), PORT_WWN, response.Data(), &size));
        EXPECT_EQ(room, size) << "never raised";
    }
    reply[1] = 0;
    port->On(command::ElsRnid, Reply{.data = reply});
    GuardedBuffer response(300, 0);
    HBA_UINT32 size = 300;
    EXPECT_EQ(0u, api.SendRNIDHandler(handle, WwnOf(3), PORT_WWN, response.Data(), &size));
    EXPECT_EQ(56u, size);
    port->On(command::ElsRnid, Reply{.status = 9});
    size = 300;
    EXPECT_EQ(5u, api.SendRNIDHandler(handle, WwnOf(3), PORT_WWN, response.Data(), &size));
    EXPECT_EQ(300u, size);
}

TEST_F(HbaApiFabricTest, CommonTransport) {
    const Bytes request = Counting(16);
    Bytes answer = Counting(24);
    port->On(command::CtPassThrough, Reply{.data = answer});
    GuardedBuffer response(24);
    Bytes sent = request;
    EXPECT_EQ(0u, api.SendCTPassThruHandler(handle, sent.data(), 16, response.Data(), 24));
    EXPECT_EQ(answer, response.First(24));
    EXPECT_EQ(request, port->Last().Data());
    answer[4] ^= 1;
    port->On(command::CtPassThrough, Reply{.data = answer});
    EXPECT_EQ(1u, api.SendCTPassThruHandler(handle, sent.data(), 16, response.Data(), 24))
        << "not the answer to this request";
    Reopen("9.04.02.20", 0x7100);
    EXPECT_EQ(2u, api.SendCTPassThruHandler(handle, sent.data(), 16, response.Data(), 24));
}

}  // namespace
