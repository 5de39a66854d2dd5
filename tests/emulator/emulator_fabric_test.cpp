// The emulated fabric: name server, link services, statistics and diagnostics.
#include "emulator/emulator_model_fixture.h"

#include "passthru/diagnostic_records.h"
#include "passthru/fabric_records.h"

namespace {

using namespace emulator_test;

class EmulatorFabric : public ModelFixture {
  protected:
    static Bytes CtRequest(uint16_t query, const Bytes& payload) {
        Bytes request = {1, 0, 0, 0, 0xFC, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
        request[8] = static_cast<uint8_t>(query >> 8);
        request[9] = static_cast<uint8_t>(query);
        request.insert(request.end(), payload.begin(), payload.end());
        return request;
    }

    Bytes Ct(uint16_t query, const Bytes& payload, uint32_t room = 1024) {
        const Bytes request = CtRequest(query, payload);
        const Answer answer = Ask(kNewest, CtPassThrough, room, request);
        EXPECT_EQ(answer.Status(), Success);
        EXPECT_TRUE(std::equal(request.begin(), request.begin() + 8, answer.data.begin()));
        return answer.data;
    }

    void ExpectCtReject(const Bytes& response, uint8_t reason, uint8_t explanation) {
        ASSERT_EQ(response.size(), 16u);
        EXPECT_EQ(Bytes(response.begin() + 8, response.end()),
                  (Bytes{0x80, 0x01, 0, 0, 0, reason, explanation, 0}));
    }

    Answer Els(const Bytes& payload, uint32_t flags, const vxemu::TargetProfile& remote,
               uint32_t room = 300) {
        passthru::ElsRequest request = {};
        std::memcpy(request.portName, remote.portName, 8);
        std::memcpy(request.portId, remote.portId, 3);
        request.addressFlags = flags;
        return Ask(kNewest, ElsPassThrough, room, BytesOf(request, payload));
    }

    const vxemu::TargetProfile target = MakeProfile("lab")->targets[1];
};

TEST_F(EmulatorFabric, NameServerKnowsPortsAndDevices) {
    // All FCP ports: four of adapters and four present devices, the last one marked.
    const Bytes ids = Ct(0x0171, {0, 0, 0, 8});
    ASSERT_EQ(ids.size(), 16u + 8 * 4);
    EXPECT_EQ(ids[8] << 8 | ids[9], 0x8002);
    for (size_t at = 16; at < ids.size(); at += 4) {
        EXPECT_EQ(ids[at], at + 4 == ids.size() ? 0x80 : 0);
    }
    EXPECT_EQ(Ct(0x0171, {0, 2, 0, 8}).size(), 16u + 4 * 4);
    EXPECT_EQ(Ct(0x0171, {0, 1, 1, 8}).size(), 16u + 2 * 4);
    ExpectCtReject(Ct(0x0171, {0, 9, 0, 8}), 9, 7);
    ExpectCtReject(Ct(0x0171, {0, 0, 0, 0x28}), 9, 7);
    EXPECT_EQ(Ct(0x01A1, {1, 0, 0, 0}), ids);

    const Bytes id = {0, target.portId[0], target.portId[1], target.portId[2]};
    const Bytes name(target.portName, target.portName + 8);
    auto payloadOf = [](const Bytes& response) {
        return Bytes(response.begin() + 16, response.end());
    };
    EXPECT_EQ(payloadOf(Ct(0x0112, id)), name);
    EXPECT_EQ(payloadOf(Ct(0x0113, id)), Bytes(target.nodeName, target.nodeName + 8));
    EXPECT_EQ(payloadOf(Ct(0x0121, name)), id);
    const Bytes symbolic = payloadOf(Ct(0x0118, id));
    ASSERT_EQ(symbolic.size(), 256u);
    EXPECT_EQ(std::string(symbolic.begin() + 1, symbolic.begin() + 1 + symbolic[0]),
              "Emulated array B");
    EXPECT_EQ(payloadOf(Ct(0x0117, id))[2], 1);

    // A port whose link is down is not registered.
    Link(4, 0);
    EXPECT_EQ(Ct(0x0171, {0, 0, 0, 8}).size(), 16u + 7 * 4);
    Link(3, 0);
    EXPECT_EQ(Ask(kNewest, CtPassThrough, 64, CtRequest(0x0171, {0, 0, 0, 8})).Status(),
              ManagementServerSilent);
}

TEST_F(EmulatorFabric, GetAllNextGoesRound) {
    Bytes id(4);
    std::vector<Bytes> seen;
    for (int round = 0; round < 8; ++round) {
        const Bytes next = Ct(0x0100, id);
        ASSERT_EQ(next.size(), 16u + 620);
        EXPECT_EQ(next[16], 1);
        id.assign(next.begin() + 16, next.begin() + 20);
        seen.push_back(id);
    }
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(std::unique(seen.begin(), seen.end()), seen.end());
    const Bytes again = Ct(0x0100, id);
    EXPECT_EQ(Bytes(again.begin() + 16, again.begin() + 20), seen.front());
    const Bytes last = Ct(0x0100, {0, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(Bytes(last.begin() + 16, last.begin() + 20), seen.front());
}

TEST_F(EmulatorFabric, CtRequestsThatAreWrong) {
    ExpectCtReject(Ct(0x0999, {0, 0, 0, 0}), 1, 0);
    ExpectCtReject(Ct(0x0112, {0, 9, 9, 9}), 9, 1);
    ExpectCtReject(Ct(0x0121, Bytes(8)), 9, 2);
    ExpectCtReject(Ct(0x0121, Bytes(7)), 4, 0);
    ExpectCtReject(Ct(0x0112, {}), 4, 0);
    Bytes other = CtRequest(0x0171, {0, 0, 0, 8});
    other[4] = 0xFA;
    EXPECT_EQ(Ask(kNewest, CtPassThrough, 64, other).data[13], 3);
    other[0] = 0;
    EXPECT_EQ(Ask(kNewest, CtPassThrough, 64, other).data[13], 2);

    // What does not fit is cut and told in words.
    const Bytes whole = Ct(0x0171, {0, 0, 0, 8});
    const Bytes cut = Ct(0x0171, {0, 0, 0, 8}, 16 + 5);
    ASSERT_EQ(cut.size(), 21u);
    EXPECT_EQ(cut[11], 7);
    EXPECT_TRUE(std::equal(cut.begin() + 16, cut.end(), whole.begin() + 16));
    EXPECT_EQ(Ct(0x0100, Bytes(4), 16).size(), 16u);
    for (uint32_t room : {0u, 8u, 15u}) {
        EXPECT_EQ(Send(kNewest, Envelope(CtPassThrough, 20, room), CtRequest(0x0171, Bytes(4)),
                       116 + room)
                      .Status(),
                  InvalidParameter);
    }
    EXPECT_EQ(Ask(kNewest, CtPassThrough, 64, Bytes(15)).Status(), InvalidParameter);
}

TEST_F(EmulatorFabric, LegacyCtHasItsOwnEnvelope) {
    auto send = [&](uint32_t requestSize, uint32_t responseSize, uint32_t whole,
                    Completion expected = Done) {
        Bytes input(whole);
        const uint32_t sizes[] = {requestSize, responseSize};
        const Bytes request = CtRequest(0x0171, {0, 0, 0, 8});
        std::memcpy(input.data(), sizes, sizeof sizes);
        std::copy_n(request.begin(), std::min<size_t>(request.size(), whole - 8),
                    input.begin() + 8);
        return AskPlain(kLegacy, LegacyCtPassThrough, input, whole, expected);
    };
    const Bytes answer = send(20, 64, 8 + 20 + 64);
    ASSERT_EQ(answer.size(), 92u);
    EXPECT_EQ(Bytes(answer.begin() + 28, answer.begin() + 38),
              (Bytes{1, 0, 0, 0, 0xFC, 2, 0, 0, 0x80, 0x02}));
    for (const auto& [requestSize, responseSize] :
         {std::pair{20u, 65u}, std::pair{85u, 0u}, std::pair{0xFFFFFFFFu, 0xFFFFFFFFu},
          std::pair{20u, 0xFFFFFFF0u}, std::pair{15u, 64u}, std::pair{20u, 15u}}) {
        send(requestSize, responseSize, 92, Invalid);
    }
}

TEST_F(EmulatorFabric, LinkServices) {
    const uint32_t flags[] = {passthru::kElsByPortName, passthru::kElsByPortId};
    for (uint32_t flag : flags) {
        const Answer echo = Els({0x10, 0, 0, 0, 'e', 'c', 'h', 'o'}, flag, target);
        EXPECT_EQ(echo.Status(), Success);
        EXPECT_EQ(echo.data[26], 0);
        EXPECT_EQ(Bytes(echo.data.begin() + 36, echo.data.end()),
                  (Bytes{2, 0, 0, 0, 'e', 'c', 'h', 'o'}));
    }
    Bytes longest(252, 0x42);
    longest[0] = 0x10;
    EXPECT_EQ(Els(longest, 1, target).data.size(), 36u + 252);
    EXPECT_EQ(Els(longest, 1, target, 36 + 251).Status(), BufferTooSmall);
    EXPECT_EQ(Els({0x0F, 0, 0, 0, 0, 0, 0, 0}, 1, target).data.size(), 36u + 28);
    EXPECT_EQ(Els({0x56, 0, 0, 0}, 1, target).data.size(), 36u + 32);
    const Answer rejected = Els({0x03, 0, 0, 0}, 1, target);
    EXPECT_EQ(rejected.data[26], 1);
    EXPECT_EQ(Bytes(rejected.data.begin() + 36, rejected.data.end()),
              (Bytes{1, 0, 0, 0, 0, 0x0B, 0x2C, 0}));

    EXPECT_EQ(Els({0x10}, 0, target).Status(), DeviceNotFound);
    vxemu::TargetProfile nobody = target;
    nobody.portName[0] ^= 1;
    EXPECT_EQ(Els({0x10}, 1, nobody).Status(), DeviceNotFound);
    EXPECT_EQ(Els({}, 1, target).Status(), InvalidParameter);
    EXPECT_EQ(Els(Bytes(257, 0x10), 1, target).Status(), InvalidParameter);
}

TEST_F(EmulatorFabric, NodeIdentification) {
    passthru::RnidRequest request = {};
    request.format = 0xDF;
    request.destinationType = 2;
    std::memcpy(request.name, target.portName, 8);
    const Bytes topology = Ask(kNewest, ElsRnid, 80, BytesOf(request)).data;
    ASSERT_EQ(topology.size(), 72u);
    EXPECT_EQ(Bytes(topology.begin(), topology.begin() + 4), (Bytes{0xDF, 16, 0, 52}));
    EXPECT_EQ(std::memcmp(topology.data() + 4, target.portName, 8), 0);
    EXPECT_EQ(std::memcmp(topology.data() + 12, target.nodeName, 8), 0);
    request.format = 0;
    EXPECT_EQ(Ask(kNewest, ElsRnid, 72, BytesOf(request)).data.size(), 20u);
    request.destinationType = passthru::kRnidToAttachedPort;
    EXPECT_EQ(Ask(kNewest, ElsRnid, 80, BytesOf(request)).Status(), Success);
    request.destinationType = 0;
    EXPECT_EQ(Ask(kNewest, ElsRnid, 80, BytesOf(request)).Status(), DeviceNotFound);

    passthru::ScmRequest setting = {};
    setting.values[0] = 0x17;
    Ask(kNewest, ScmManagement, 0, BytesOf(setting));
    setting = {passthru::kScmRead, {}};
    EXPECT_EQ(Ask(kNewest, ScmManagement, 24, BytesOf(setting)).data[1], 0x17);
    EXPECT_EQ(Ask(1, ScmManagement, 24, BytesOf(setting)).data[1], 0);
}

TEST_F(EmulatorFabric, LoopbackEchoes) {
    const Bytes data = {1, 2, 3, 4, 5};
    passthru::LoopbackRequest request = {};
    request.length = 5;
    request.iterations = 3;
    const uint32_t size = sizeof request + 128;
    auto run = [&] { return Ask(kNewest, Loopback, size, BytesOf(request, data)).data; };
    const Bytes echo = run();
    EXPECT_EQ(echo[12] | echo[13] << 8, 0x4000);
    EXPECT_EQ(Bytes(echo.begin() + 40, echo.begin() + 45), data);
    Control(control::kSetField, FieldRequest{3, "loopback_errors", 1, {2}});
    const Bytes damaged = run();
    EXPECT_EQ(Bytes(damaged.begin() + 40, damaged.begin() + 45), (Bytes{0xFE, 0xFD, 3, 4, 5}));
    EXPECT_EQ(damaged[14], 2);
    for (uint32_t length : {200u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        request.length = length;
        EXPECT_EQ(run()[12], 0x06) << length;
    }
    request.length = 5;
    request.iterations = 0;
    EXPECT_EQ(run()[12], 0x06);

    passthru::LegacyLoopback legacy = {};
    legacy.sendLength = legacy.receiveLength = 2048;
    legacy.sendLengthAgain = 2048;
    legacy.mailboxCommand = passthru::kLoopbackCommand;
    legacy.iterations = 7;
    legacy.sendData[2047] = 0x99;
    auto runLegacy = [&](uint32_t port) {
        const Bytes reply = AskPlain(port, LegacyLoopback, BytesOf(legacy), sizeof legacy);
        passthru::LegacyLoopback record = {};
        EXPECT_EQ(reply.size(), sizeof record);
        std::memcpy(&record, reply.data(), std::min(reply.size(), sizeof record));
        return record;
    };
    EXPECT_EQ(runLegacy(kLegacy).receiveData[2047], 0x99);
    EXPECT_EQ(runLegacy(kLegacy).value168, 7u);
    EXPECT_EQ(runLegacy(kNewest).receiveData[0], 0xFF);  // damaged there
    legacy.sendLength = legacy.sendLengthAgain = 2049;
    EXPECT_EQ(runLegacy(kLegacy).result[0], 0x06);
    legacy.sendLength = legacy.sendLengthAgain = 2048;
    legacy.receiveLength = 0xFFFF;
    EXPECT_EQ(runLegacy(kLegacy).receiveData[2047], 0x99);
    AskPlain(kLegacy, LegacyLoopback, Bytes(4275), 4276, Invalid);
}

TEST_F(EmulatorFabric, DportAndMailbox) {
    EXPECT_EQ(Ask(kNewest, DportResults, 1088).Status(), TestRunning);
    const Answer results = Ask(kNewest, DportResults, 1088);
    EXPECT_EQ(results.Status(), Success);
    EXPECT_EQ(results.data.size(), 1088u);
    EXPECT_EQ(Ask(kNewest, DportDiagnostic, 72).Status(), TestRunning);
    EXPECT_EQ(Ask(kNewest, DportDiagnostic, 72).Status(), Success);
    EXPECT_EQ(Ask(kLargeRom, DportDiagnostic, 72).Status(), UnsupportedSubCode);

    passthru::MailboxRequest request = {};
    request.inCount = 4;
    request.outCount = 4;
    request.in[0] = 0x06;
    request.in[31] = 0xBEEF;
    auto run = [&] { return Ask(kNewest, Mailbox, sizeof request, BytesOf(request)); };
    const auto echo = run().As<passthru::MailboxRequest>();
    EXPECT_EQ(echo.out[0], 0x4000);
    EXPECT_EQ(echo.out[31], 0xBEEF);
    request.in[0] = 0x08;
    EXPECT_EQ(run().As<passthru::MailboxRequest>().out[2], 12);
    request.in[0] = 0x7E;
    const Answer unknown = run();
    EXPECT_EQ(unknown.Status(), MailboxFailed);
    EXPECT_EQ(unknown.envelope.ext.detailStatus, 0x4001u);
    EXPECT_EQ(unknown.As<passthru::MailboxRequest>().out[0], 0x4001);
    request.inCount = 33;
    EXPECT_EQ(run().Status(), InvalidParameter);
    request.inCount = 1;
    request.outCount = 65;
    EXPECT_EQ(run().Status(), InvalidParameter);
}

}  // namespace
