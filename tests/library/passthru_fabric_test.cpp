// CT, ELS, RNID and SCM requests: bytes sent, what counts as an answer, where buffers end.

#include "support/library_fixture.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

class CtTest : public OneAdapterTest {
  protected:
    HX_STATUS Send(uint32_t requestSize, GuardedBuffer& response) {
        request = Counting(requestSize, 0x31);
        return HXSendCTPassThru(handle, request.data(), requestSize, response.Data(),
                                static_cast<uint32_t>(response.Size()));
    }
    // The request's first bytes, then bytes that count from 201.
    static Bytes AnswerOf(uint32_t size) {
        Bytes answer = Counting(size, 0x31);
        for (size_t i = 8; i < size; ++i) {
            answer[i] = static_cast<uint8_t>(201 + i - 8);
        }
        return answer;
    }
    Bytes request;
};

TEST_F(CtTest, RequestAndResponse) {
    GuardedBuffer response(40);
    port->Next({.data = AnswerOf(24), .responseLength = 24});
    EXPECT_EQ(0u, Send(20, response));
    EXPECT_TRUE(response.Is(AnswerOf(24)));
    const SentRequest sent = port->Last();
    EXPECT_EQ(request, sent.Data());
    EXPECT_EQ(0xF000100Au, sent.Code());
    EXPECT_EQ(120u, sent.Envelope().srb.timeout);
    EXPECT_EQ(40u, sent.Envelope().ext.responseLen);

    GuardedBuffer tight(8);
    port->Next({.data = AnswerOf(24), .responseLength = 0xFFFFFFFF});
    EXPECT_EQ(0u, Send(8, tight));
    EXPECT_EQ(AnswerOf(8), tight.First(8));
}

TEST_F(CtTest, PreambleDecides) {
    for (size_t place = 0; place < 9; ++place) {
        Bytes answer = AnswerOf(16);
        answer[place] ^= 0x80;
        port->Next({.data = answer});
        GuardedBuffer response(16);
        EXPECT_EQ(place < 8 ? HXMGT_MS_NO_RESPONSE : HXMGT_SUCCESS, Send(16, response)) << place;
        EXPECT_EQ(answer, response.First(16));
    }
    port->Next({.status = 14});
    GuardedBuffer response(16);
    EXPECT_EQ(HXMGT_MS_NO_RESPONSE, Send(16, response));
    EXPECT_TRUE(response.Holds(0xEE));
}

TEST_F(CtTest, RefusedBeforeAnythingIsSent) {
    GuardedBuffer small(7);
    GuardedBuffer eight(8);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send(7, eight));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send(8, small));
    EXPECT_TRUE(port->Requests().empty());
    for (const char* version : {"9.04.02", "7.05.02"}) {
        Reopen(version, 0x7100);
        EXPECT_EQ(HXMGT_NOT_SUPPORTED, Send(16, eight));
        EXPECT_TRUE(port->Requests().empty());
    }
    EXPECT_TRUE(eight.Holds(0xEE));
}

TEST_F(CtTest, TraceHoldsBothBuffers) {
    const ScratchFile file;
    ASSERT_EQ(0u, HXEnableDebugTrace(&handle, file.Path().c_str(), 1));
    GuardedBuffer response(8);
    port->Next({.data = AnswerOf(8)});
    EXPECT_EQ(0u, Send(8, response));
    port->Next({.data = Bytes(8)});
    EXPECT_EQ(HXMGT_MS_NO_RESPONSE, Send(8, response));
    HXEnableDebugTrace(&handle, nullptr, 0);
    const std::string trace = file.Contents();
    const std::string dump =
        "Length Showing = 8\n"
        "  0000 :  31 32 33 34 35 36 37 38                          :  12345678        \n";
    const size_t first = trace.find("CT Request buffer to DeviceIoControl\n" + dump);
    const size_t answer = trace.find("CT Response buffer from DeviceIoControl\n" + dump);
    EXPECT_NE(std::string::npos, first);
    EXPECT_NE(std::string::npos, answer);
    EXPECT_EQ(std::string::npos, trace.find("CT Response buffer", answer + 1))
        << "what does not match the request is no response";
}

class LegacyCtTest : public CtTest {
  protected:
    void SetUp() override { Start("7.05.02", 0x7200); }
    // What the driver makes of a request of that size: sizes, request, response.
    Reply Answered(uint32_t requestSize, const Bytes& response) {
        Bytes data(8 + requestSize);
        Append(data, response);
        return {.data = data};
    }
};

TEST_F(LegacyCtTest, RequestByteForByte) {
    GuardedBuffer response(40);
    port->OnPlain(command::LegacyCtPassThrough, Answered(20, AnswerOf(12)));
    EXPECT_EQ(0u, Send(20, response));
    const SentRequest sent = port->Last();
    EXPECT_TRUE(sent.oneBuffer);
    EXPECT_EQ(96u, sent.inputSize);
    EXPECT_EQ(96u, sent.outputSize);
    Bytes expected(36);
    const auto put32 = [&](size_t offset, uint32_t value) { memcpy(&expected[offset], &value, 4); };
    put32(0, 28);
    memcpy(&expected[4], "ZNRT", 4);
    put32(12, 5);
    put32(16, 0xF0000040);
    put32(24, 68);
    put32(28, 20);
    put32(32, 40);
    Append(expected, request);
    expected.resize(96);
    EXPECT_EQ(expected, sent.bytes);
    // The whole response area is the caller's; what the driver left out is zero.
    Bytes answer = AnswerOf(12);
    answer.resize(40);
    EXPECT_EQ(answer, response.First(40));
}

TEST_F(LegacyCtTest, BusyDriver) {
    GuardedBuffer response(16);
    port->OnPlain(command::LegacyCtPassThrough, Answered(16, AnswerOf(16)));
    port->NextBusy(80);
    EXPECT_EQ(0u, Send(16, response));
    EXPECT_EQ(std::vector<DWORD>(80, 1000), system.sleeps);
    EXPECT_EQ(port->Requests().front().bytes, port->Last().bytes);

    system.sleeps.clear();
    port->Forget();
    port->NextBusy(81);
    EXPECT_EQ(Windows(ERROR_BUSY), Send(16, response));
    EXPECT_EQ(80u, system.sleeps.size());
    EXPECT_EQ(81u, port->Requests().size());

    port->Next({.error = ERROR_NOT_READY});
    EXPECT_EQ(Windows(ERROR_NOT_READY), Send(16, response));
}

TEST_F(LegacyCtTest, PreambleAndSizes) {
    GuardedBuffer response(16);
    Bytes other = AnswerOf(16);
    other[7] ^= 1;
    port->OnPlain(command::LegacyCtPassThrough, Answered(16, other));
    EXPECT_EQ(HXMGT_MS_NO_RESPONSE, Send(16, response));
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY,
              HXSendCTPassThru(handle, request.data(), 16, response.Data(), 0xFFFFFFFF - 50));
    EXPECT_EQ(1u, port->Requests().size());
}

class ElsTest : public OneAdapterTest {
  protected:
    HX_STATUS Send(uint16_t type, int32_t payloadSize, GuardedBuffer& response,
                   uint8_t option = 0) {
        const HX_SCSI_ADDRESS destination = {type, {1, 2, 3, 4, 5, 6, 7, 8}, 0xFFFF};
        payload = Counting(payloadSize > 0 ? static_cast<uint32_t>(payloadSize) : 0, 0x60);
        const auto room = static_cast<uint32_t>(response.Size());
        uint32_t size = room;
        const HX_STATUS status = HXSendElsPassThru(handle, 0, &destination, payload.data(),
                                                   payloadSize, response.Data(), &size, option);
        EXPECT_EQ(room, size) << "the caller's size is not changed";
        return status;
    }
    // 36 bytes of header, then length bytes that count from 101.
    static Bytes ReplyWith(uint32_t length, uint8_t rejected = 0) {
        Bytes reply(36);
        reply[26] = rejected;
        Append(reply, Counting(length, 101));
        return reply;
    }
    Bytes payload;
};

TEST_F(ElsTest, RequestByteForByte) {
    GuardedBuffer response(10);
    for (const uint16_t type : {HX_ADDRESS_PORT_NAME, HX_ADDRESS_PORT_ID}) {
        port->Next({.data = ReplyWith(10)});
        EXPECT_EQ(0u, Send(type, 252, response, 0xA5));
        Bytes expected(36);
        if (type == HX_ADDRESS_PORT_NAME) {
            std::copy_n(Counting(8).begin(), 8, expected.begin() + 8);
            expected[20] = 1;
        } else {
            std::copy_n(Counting(3).begin(), 3, expected.begin() + 16);
            expected[20] = 4;
        }
        expected[32] = 0xA5;
        Append(expected, payload);
        EXPECT_EQ(expected, port->Last().Data());
        EXPECT_EQ(0xF0001040u, port->Last().Code());
        EXPECT_EQ(288u, port->Last().Envelope().ext.requestLen);
        EXPECT_EQ(46u, port->Last().Envelope().ext.responseLen);
        EXPECT_EQ(Counting(10, 101), response.First(10));
    }
}

TEST_F(ElsTest, PayloadAndDestinationLimits) {
    port->On(command::ElsPassThrough, Reply{.data = ReplyWith(4)});
    GuardedBuffer response(4);
    EXPECT_EQ(0u, Send(2, 1, response));
    EXPECT_EQ(0u, Send(2, 252, response));
    EXPECT_EQ(2u, port->Requests().size());
    port->Forget();
    for (const int32_t size : {0, -1, 253, 0x7FFFFFFF, INT32_MIN}) {
        const HX_SCSI_ADDRESS destination = {2, {}, 0};
        const uint32_t room = 4;
        EXPECT_EQ(HXMGT_INVALID_PARAMETER,
                  HXSendElsPassThru(handle, 0, &destination, payload.data(), size, response.Data(),
                                    &room, 0))
            << size;
    }
    for (const uint16_t type : {0, 1, 4, 5, 0x102}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send(type, 4, response)) << type;
    }
    const HX_SCSI_ADDRESS destination = {2, {}, 0};
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXSendElsEcho());
    const uint32_t huge = 0xFFFFFFFF;
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, HXSendElsPassThru(handle, 0, &destination, payload.data(), 4,
                                                     response.Data(), &huge, 0));
    EXPECT_TRUE(port->Requests().empty());
    Reopen("7.05.02");
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, Send(2, 4, response));
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(ElsTest, Answers) {
    GuardedBuffer response(100);
    port->Next({.data = ReplyWith(0, 1)});
    EXPECT_EQ(HXMGT_ELS_REJECTED, Send(2, 4, response));
    port->Next({.status = 30});
    EXPECT_EQ(HXMGT_TIMED_OUT, Send(2, 4, response));
    EXPECT_TRUE(response.Holds(0xEE)) << "no answer, no bytes";

    // The driver's count includes the 36 bytes of the header: that many are handed on.
    port->Next({.data = ReplyWith(4, 2)});
    EXPECT_EQ(0u, Send(2, 4, response));
    Bytes expected = Counting(4, 101);
    expected.resize(40);
    EXPECT_EQ(expected, response.First(40));
    EXPECT_TRUE(response.Holds(0xEE, 40, 100));

    GuardedBuffer tight(5);
    port->Next({.data = ReplyWith(200), .responseLength = 0xFFFFFFFF});
    EXPECT_EQ(0u, Send(3, 252, tight));
    EXPECT_EQ(Counting(5, 101), tight.First(5));

    const HX_SCSI_ADDRESS destination = {2, {}, 0};
    const uint32_t none = 0;
    port->Next({.data = ReplyWith(4)});
    EXPECT_EQ(0u, HXSendElsPassThru(handle, 0, &destination, payload.data(), 4, nullptr, &none, 0));
}

TEST_F(ElsTest, TheLongerFormTellsTheLengthAndHandsOnARejectsReason) {
    const HX_SCSI_ADDRESS destination = {HX_ADDRESS_PORT_ID, {1, 2, 3}, 0};
    const Bytes request = Counting(4);
    GuardedBuffer response(20);
    uint32_t length = 0;
    const auto send = [&](uint32_t room) {
        response.Fill(0xEE);
        length = room;
        return HXSendElsPassThruEx(handle, 0, &destination, request.data(), 4, response.Data(),
                                   &length, 0);
    };
    port->Next({.data = ReplyWith(12)});
    EXPECT_EQ(HXMGT_SUCCESS, send(20));
    EXPECT_EQ(12u, length);
    EXPECT_TRUE(response.Is(Counting(12, 101)));
    port->Next({.data = ReplyWith(8, 1)});
    EXPECT_EQ(HXMGT_ELS_REJECTED, send(20));
    EXPECT_EQ(8u, length);
    EXPECT_EQ(Counting(8, 101), response.First(8));
    // A driver that hands on no reason must not have the request taken for one.
    port->Next({.data = ReplyWith(0, 1)});
    EXPECT_EQ(HXMGT_ELS_REJECTED, send(20));
    EXPECT_EQ(0u, length);
    EXPECT_TRUE(response.Holds(0xEE));
    port->Next({.data = ReplyWith(40, 1), .responseLength = 0xFFFFFFFF});
    EXPECT_EQ(HXMGT_ELS_REJECTED, send(8));
    EXPECT_EQ(8u, length);
    port->Next({.status = 30});
    EXPECT_EQ(HXMGT_TIMED_OUT, send(20));
    EXPECT_EQ(20u, length);
    EXPECT_TRUE(response.Holds(0xEE));
}

class RnidTest : public OneAdapterTest {
  protected:
    HX_STATUS Send(uint16_t type, GuardedBuffer& response) {
        const HX_SCSI_ADDRESS destination = {type, {1, 2, 3, 4, 5, 6, 7, 8}, 0};
        return HXSendElsRnid(handle, &destination, 0xDF, response.Data(),
                             static_cast<uint32_t>(response.Size()));
    }
};

TEST_F(RnidTest, RequestByteForByte) {
    const Bytes name = Counting(8, 0x91);
    const Bytes identifier = {0x0C, 0x0B, 0x0A};
    struct Row {
        uint16_t type;
        uint8_t sentType;
        bool hasName;
        Bytes preset;  // the start of the response buffer
        Bytes sent;    // bytes 16 to 26 of the request
    };
    const Row rows[] = {
        {0, 4, false, Bytes(12), Bytes(11)},
        {1, 1, true, Bytes(12), Bytes(11)},
        {2, 2, true, Bytes(12), Bytes(11)},
        {3, 0, false, Bytes(12), Bytes(11)},
        {2, 2, true, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0}, {1, 2, 3, 4, 5, 6, 7, 8, 11, 10, 9}},
        {0, 4, false, {0, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 9}},
        // A buffer too short for an option holds none.
        {0, 4, false, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, Bytes(11)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.type);
        GuardedBuffer response(row.preset.size());
        memcpy(response.Data(), row.preset.data(), row.preset.size());
        port->Next({});
        EXPECT_EQ(0u, Send(row.type, response));
        Bytes expected(80);
        if (row.hasName) {
            std::copy_n(Counting(8).begin(), 8, expected.begin());
        }
        expected[8] = row.sentType;
        expected[14] = 0xDF;
        std::copy(row.sent.begin(), row.sent.end(), expected.begin() + 16);
        EXPECT_EQ(expected, port->Last().Data());
        EXPECT_EQ(0xF0001005u, port->Last().Code());
        EXPECT_EQ(row.preset.size(), port->Last().Envelope().ext.responseLen);
    }
}

TEST_F(RnidTest, ResponseMovesBehindItsCommandCode) {
    for (const uint32_t room : {72u, 13u, 5u, 4u}) {
        SCOPED_TRACE(room);
        GuardedBuffer response(room, 0);
        port->Next({.data = Counting(room, 101), .responseLength = 0xFFFFFFFF});
        EXPECT_EQ(0u, Send(2, response));
        Bytes expected = {2, 0, 0, 0};
        Append(expected, Counting(room - 4, 101));
        EXPECT_EQ(expected, response.First(room));
    }
    // After a failure as well: what stood there moves.
    GuardedBuffer response(16, 0);
    memcpy(response.Data(), Counting(16).data(), 16);
    port->Next({.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Send(2, response));
    Bytes expected = {2, 0, 0, 0};
    Append(expected, Counting(12));
    EXPECT_EQ(expected, response.First(16));
}

TEST_F(RnidTest, RefusedBeforeAnythingIsSent) {
    GuardedBuffer three(3);
    GuardedBuffer response(72);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send(2, three));
    EXPECT_TRUE(port->Requests().empty());
    for (const auto& [version, chip] : {std::pair("7.05.02", 0x7200), {"9.04.02", 0x7100}}) {
        Reopen(version, static_cast<uint16_t>(chip));
        EXPECT_EQ(HXMGT_NOT_SUPPORTED, Send(2, response));
        EXPECT_TRUE(port->Requests().empty());
    }
    EXPECT_TRUE(three.Holds(0xEE));
    EXPECT_TRUE(response.Holds(0xEE));
}

using ScmTest = OneAdapterTest;

TEST_F(ScmTest, ReadFillsWhatCame) {
    for (const auto& [returned, copied] :
         {std::pair(24u, 8u), {9u, 8u}, {8u, 8u}, {3u, 3u}, {0u, 0u}, {0xFFFFFFFFu, 8u}}) {
        SCOPED_TRACE(returned);
        GuardedBuffer settings(9);
        settings.Data()[0] = 0x18;
        port->Next({.data = Counting(24, 50), .responseLength = returned});
        EXPECT_EQ(0u, HXSendSCMMgmt(handle, 0, settings.Data()));
        EXPECT_EQ(0x18, settings[0]);
        // The count includes byte 0, which stays: the last byte may be one that never came.
        Bytes values = Counting(copied, 51);
        if (returned <= copied && copied != 0) {
            values.back() = 0;
        }
        EXPECT_EQ(values, Bytes(settings.Data() + 1, settings.Data() + 1 + copied));
        EXPECT_TRUE(settings.Holds(0xEE, 1 + copied, 9));
        Bytes expected(24);
        expected[0] = 0x18;
        EXPECT_EQ(expected, port->Last().Data());
        EXPECT_EQ(0xF0001008u, port->Last().Code());
        EXPECT_EQ(115u, port->Last().Envelope().ext.subCode);
        EXPECT_EQ(24u, port->Last().Envelope().ext.responseLen);
    }
}

TEST_F(ScmTest, SetSendsOneValue) {
    GuardedBuffer settings(2);
    settings.Data()[0] = 0xF7;
    settings.Data()[1] = 0x5A;
    port->Next({});
    EXPECT_EQ(0u, HXSendSCMMgmt(handle, 0, settings.Data()));
    Bytes expected(24);
    expected[0] = 0xF7;
    expected[1] = 0x5A;
    EXPECT_EQ(expected, port->Last().Data());
    EXPECT_EQ(0u, port->Last().Envelope().ext.responseLen);
    port->Next({.status = 6});
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXSendSCMMgmt(handle, 0, settings.Data()));
    EXPECT_EQ(0x5A, settings[1]);

    port->Forget();
    Reopen("7.05.02");
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXSendSCMMgmt(handle, 0, settings.Data()));
    EXPECT_TRUE(port->Requests().empty());
}

}  // namespace
