#include <thread>
#include <tuple>

#include "support/library_fixture.h"

namespace {

using namespace support;

class DiscoveryTest : public LibraryTest {
  protected:
    static std::string KeyOf(uint32_t port) {
        return "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + std::to_string(port);
    }
    void NameDriver(uint32_t port, std::string_view name) {
        registry.SetText(KeyOf(port), "Driver", name);
    }
};

TEST_F(DiscoveryTest, ProbeEnvelope) {
    ScriptedPort& port = AddPort(12);
    ASSERT_NE(nullptr, IsKorvexAdapter(12, 3));
    const auto requests = port.Requests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(316u, requests[0].inputSize);
    EXPECT_EQ(316u, requests[0].outputSize);
    EXPECT_TRUE(requests[0].oneBuffer);

    Bytes expected(316);
    const auto put32 = [&](size_t offset, uint32_t value) { memcpy(&expected[offset], &value, 4); };
    put32(0, 28);
    memcpy(&expected[4], "ZNRT", 4);
    put32(12, 60);
    put32(16, 0xF0001001);
    put32(24, 288);
    expected[40] = 6;
    put32(60, 200);
    // Signature, level and version of the EXT_IOCTL body, bytes 28 to 39, stay zero.
    EXPECT_EQ(expected, requests[0].bytes);

    ASSERT_EQ(1u, system.opens.size());
    EXPECT_EQ("\\\\.\\scsi12:", system.opens[0].name);
    EXPECT_EQ(0xC0000000u, system.opens[0].access);
    EXPECT_EQ(3u, system.opens[0].sharing);
}

TEST_F(DiscoveryTest, WhichPortsCount) {
    AddPort(0);
    AddPort(1).On(command::DriverProperties, Reply{.status = 1});
    AddPort(2).On(command::DriverProperties, Reply{.error = ERROR_GEN_FAILURE});
    AddPort(3);
    AddPort(63);
    for (uint32_t port = 0; port < 4; ++port) {
        NameDriver(port, "vxfc2");
    }
    NameDriver(9, "vxfc2");  // named, but nobody answers
    system.FailOpen(3, ERROR_ACCESS_DENIED);

    EXPECT_STREQ("vxfc2", IsKorvexAdapter(0, 1));
    EXPECT_EQ(nullptr, IsKorvexAdapter(1, 1)) << "the status was not 0";
    EXPECT_EQ(nullptr, IsKorvexAdapter(2, 1));
    EXPECT_EQ(nullptr, IsKorvexAdapter(3, 1)) << "it did not open";
    EXPECT_EQ(nullptr, IsKorvexAdapter(9, 1));
    EXPECT_STREQ("", IsKorvexAdapter(63, 0xFFFFFFFF)) << "no name, but it answers";
    EXPECT_EQ(0u, system.OpenHandles());
    EXPECT_TRUE(system.sleeps.empty());
}

TEST_F(DiscoveryTest, BusyProbeIsRepeatedEightyTimes) {
    ScriptedPort& port = AddPort(5);
    port.NextBusy(80);
    EXPECT_NE(nullptr, IsKorvexAdapter(5, 3));
    EXPECT_EQ(std::vector<DWORD>(80, 1000), system.sleeps);
    EXPECT_EQ(81u, port.Requests().size());
    for (const SentRequest& request : port.Requests()) {
        ASSERT_EQ(port.Requests()[0].bytes, request.bytes);
    }

    port.Forget();
    system.sleeps.clear();
    port.NextBusy(81);
    EXPECT_EQ(nullptr, IsKorvexAdapter(5, 3));
    EXPECT_EQ(80u, system.sleeps.size());
    EXPECT_EQ(81u, port.Requests().size());
}

TEST_F(DiscoveryTest, RegistryNames) {
    AddPort(7);
    const auto raw = [&](DWORD type, std::string_view bytes) {
        registry.SetRaw(KeyOf(7), "Driver", type, bytes.data(),
                        static_cast<uint32_t>(bytes.size()));
        return std::string(IsKorvexAdapter(7, 3));
    };
    EXPECT_EQ("", std::string(IsKorvexAdapter(7, 3)));
    registry.MakeKey(KeyOf(7));
    EXPECT_EQ("", std::string(IsKorvexAdapter(7, 3)));
    EXPECT_EQ("vxfc1", raw(REG_SZ, std::string_view("vxfc1\0", 6)));
    EXPECT_EQ("vxfc1", raw(REG_SZ, "vxfc1")) << "no terminator in the registry";
    EXPECT_EQ("vx", raw(REG_SZ, std::string_view("vx\0fc1\0", 7)));
    EXPECT_EQ("", raw(REG_SZ, ""));
    EXPECT_EQ("", raw(REG_DWORD, "vxfc"));
    EXPECT_EQ("", raw(REG_BINARY, std::string_view("vxfc1\0", 6)));
    EXPECT_EQ(std::string(255, 'v'), raw(REG_SZ, std::string(255, 'v') + std::string(1, '\0')));
    EXPECT_EQ("", raw(REG_SZ, std::string(5000, 'v'))) << "longer than the text buffer";
}

TEST_F(DiscoveryTest, PortsOfTheRegistry) {
    uint32_t count = 5;
    std::vector<HX_SCSI_PORT> ports(5);
    EXPECT_EQ(0u, HXListScsiPorts(ports.data(), &count));
    EXPECT_EQ(0u, count);

    ScriptedPort& answering = AddPort(2);
    AddPort(7);  // answers, but the registry does not know it
    const std::tuple<uint32_t, std::string, uint32_t> rows[] = {
        {0, "storahci", 0}, {2, "VXFC2", 1},   {9, "vxfc1.sys", 1},
        {10, "", 0},        {31, "vxfc", 0},   {32, "vxfc22", 0},
        {33, "vxfcoei", 1}, {62, "oemfc2", 1}, {63, std::string(255, 'v'), 0}};
    for (const auto& [port, name, family] : rows) {
        name.empty() ? registry.MakeKey(KeyOf(port)) : NameDriver(port, name);
    }
    NameDriver(64, "vxfc2");  // beyond the ports that are searched

    count = 0;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXListScsiPorts(nullptr, &count));
    ASSERT_EQ(std::size(rows), count);
    // As many records as fit are written, and none behind them.
    GuardedBuffer room(4 * sizeof(HX_SCSI_PORT));
    count = 4;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL,
              HXListScsiPorts(reinterpret_cast<HX_SCSI_PORT*>(room.Data()), &count));
    ASSERT_EQ(std::size(rows), count);
    ports.resize(count);
    EXPECT_EQ(0u, HXListScsiPorts(ports.data(), &count));
    EXPECT_EQ(0, memcmp(room.Data(), ports.data(), 4 * sizeof(HX_SCSI_PORT)));
    for (size_t i = 0; i < std::size(rows); ++i) {
        const auto& [port, name, family] = rows[i];
        EXPECT_EQ(port, ports[i].scsiPort);
        EXPECT_EQ(name, ports[i].driver);
        EXPECT_EQ(family, ports[i].familyDriver) << name;
    }
    registry.SetText(KeyOf(10), "Driver", std::string(256, 'v'));
    EXPECT_EQ(0u, HXListScsiPorts(ports.data(), &count));
    EXPECT_STREQ("", ports[3].driver) << "a name too long is none";

    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXListScsiPorts(ports.data(), nullptr));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXListScsiPorts(nullptr, &count));
    EXPECT_TRUE(system.opens.empty()) << "no port was opened";
    EXPECT_TRUE(answering.Requests().empty());
}

TEST_F(DiscoveryTest, NamesOfTwoThreadsDoNotMix) {
    AddPort(1);
    AddPort(2);
    NameDriver(1, "vxfc1");
    NameDriver(2, "vxfc2");
    const char* const mine = IsKorvexAdapter(1, 3);
    std::string others;
    std::thread([&] { others = IsKorvexAdapter(2, 3); }).join();
    EXPECT_EQ("vxfc2", others);
    EXPECT_STREQ("vxfc1", mine);
}

TEST_F(DiscoveryTest, DriverType) {
    ScriptedPort& port = AddPort(3);
    const uint32_t handle = Open(0);
    port.Forget();
    EXPECT_EQ(0, GetDriverType(handle));
    const SentRequest request = port.Last();
    EXPECT_EQ(116u + 696u, request.inputSize);
    EXPECT_EQ(116u + 696u, request.outputSize);
    EXPECT_EQ(1u, request.Envelope().ext.subCode);

    port.node.vendorSpecificId = 0x01000000;
    port.AnswerProbes();
    EXPECT_EQ(1, GetDriverType(handle));
    port.On(command::NodeProperties, Reply{.status = 9});
    EXPECT_EQ(2, GetDriverType(handle));
}

}  // namespace
