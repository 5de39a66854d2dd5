// Both loopback tests.
#include <set>

#include "support/byte_fields.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

const std::pair<uint16_t, uint16_t> kCompletions[] = {
    {0x4000, 1}, {0x4006, 2}, {0x400B, 3}, {0x4001, 4}, {0, 4}, {1, 4}, {0xFFFF, 4}};

class LoopbackTest : public OneAdapterTest {
  protected:
    HX_STATUS Run(GuardedBuffer& send, GuardedBuffer& receive, HX_LOOPBACK_RESULT* result) {
        return HXRunDiagLoopback(handle, 0, 0x8002, send.Data(), static_cast<uint16_t>(send.Size()),
                                 receive.Data(), static_cast<uint16_t>(receive.Size()), 0x0304,
                                 result);
    }
};

TEST_F(LoopbackTest, RequestByteForByte) {
    GuardedBuffer send(2048);
    GuardedBuffer receive(5000);
    memcpy(send.Data(), Counting(2048, 7).data(), 2048);
    memcpy(receive.Data(), Counting(5000, 9).data(), 5000);
    port->OnPlain(command::LegacyLoopback, {.data = Bytes(4276)});
    Guarded<HX_LOOPBACK_RESULT> result;
    EXPECT_EQ(0u, Run(send, receive, result.Get()));
    Bytes expected(4276);
    Put16(expected, 28, 2048);
    Put16(expected, 32, 5000);
    Put16(expected, 88, 0x0016);
    Put16(expected, 90, 0x0014);
    Put16(expected, 92, 0x45);
    Put16(expected, 94, 0x8002);
    Put16(expected, 112, 2048);
    Put16(expected, 128, 0x0304);
    memcpy(&expected[180], Counting(2048, 7).data(), 2048);
    memcpy(&expected[2228], Counting(2048, 9).data(), 2048);
    EXPECT_EQ(expected, port->Last().Data());
    EXPECT_EQ(0xF0001002u, port->Last().Code());
    EXPECT_EQ(28u + 4276u, port->Last().outputSize);
    EXPECT_TRUE(send.Holds(0));
    EXPECT_TRUE(receive.Holds(0, 0, 2048));
    EXPECT_EQ(static_cast<uint8_t>(9 + 2048), receive[2048]) << "no more than 2048 bytes come back";
}

TEST_F(LoopbackTest, WhatComesBack) {
    for (const auto& [code, completion] : kCompletions) {
        SCOPED_TRACE(code);
        Bytes reply = Patterned(4276);
        Put16(reply, 136, code);
        port->OnPlain(command::LegacyLoopback, {.data = reply});
        GuardedBuffer send(5);
        GuardedBuffer receive(7);
        Guarded<HX_LOOPBACK_RESULT> result;
        EXPECT_EQ(0u, Run(send, receive, result.Get()));
        Bytes expected = {static_cast<uint8_t>(completion), 0};
        const auto append = [&](const Bytes& part) { Append(expected, part); };
        append(Part(reply, 138, 30));
        append(Part(reply, 168, 4));
        append(Bytes(4, 0xEE));
        append(Part(reply, 176, 8));
        EXPECT_EQ(expected, Bytes(result.Raw().Data(), result.Raw().Data() + 48));
        EXPECT_EQ(Part(reply, 180, 5), send.First(5));
        EXPECT_EQ(Part(reply, 2228, 7), receive.First(7));
    }
}

TEST_F(LoopbackTest, LimitsAndFailures) {
    port->OnPlain(command::LegacyLoopback, {.data = Patterned(4276)});
    GuardedBuffer longest(2048);
    GuardedBuffer tooLong(2049);
    GuardedBuffer receive(4);
    Guarded<HX_LOOPBACK_RESULT> result;
    EXPECT_EQ(0u, Run(longest, receive, result.Get()));
    port->Forget();
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Run(tooLong, receive, result.Get()));
    EXPECT_TRUE(port->Requests().empty());

    Guarded<HX_LOOPBACK_RESULT> untouched;
    GuardedBuffer send(4);
    GuardedBuffer into(4);
    port->Next({.error = ERROR_IO_DEVICE});
    EXPECT_EQ(Windows(ERROR_IO_DEVICE), Run(send, into, untouched.Get()));
    EXPECT_TRUE(untouched.Raw().Holds(0xEE));
    EXPECT_TRUE(send.Holds(0xEE));
    EXPECT_TRUE(into.Holds(0xEE));
    EXPECT_EQ(0u, HXRunDiagLoopback(handle, 0, 0, nullptr, 0, nullptr, 0, 1, result.Get()));
}

// Echoes the data with one bit turned in each byte, and counts its requests in the results.
class LoopbackExTest : public OneAdapterTest {
  protected:
    void SetUp() override {
        OneAdapterTest::SetUp();
        port->On(command::Loopback, [this](const SentRequest& request) {
            ++requests;
            if (failing.contains(requests)) {
                return Reply{.status = 30};
            }
            Bytes reply = request.Data();
            for (size_t i = 40; i < reply.size(); ++i) {
                reply[i] ^= 0x80;
            }
            Put16(reply, 12, completion);
            for (uint16_t i = 0; i < 5; ++i) {
                Put16(reply, 14u + 2u * i, static_cast<uint16_t>(0x100 * requests + i));
            }
            return Reply{.data = reply};
        });
    }
    HX_STATUS Run(uint32_t length, GuardedBuffer& receive, HX_LOOPBACK_EX_RESULT* result) {
        data = Patterned(length);
        return HXRunDiagLoopbackEx(handle, 0, 0x8102, length == 0 ? nullptr : data.data(), length,
                                   receive.Data(), static_cast<uint32_t>(receive.Size()),
                                   0x01020304, result);
    }
    // Counters in the order of the result: the last two stand the other way round in the reply.
    static Bytes ResultOf(uint8_t request, uint8_t code = 1) {
        return {code, 0, 0, request, 1, request, 2, request, 4, request, 3, request};
    }
    static Bytes Seen(Guarded<HX_LOOPBACK_EX_RESULT>& result) {
        return Bytes(result.Raw().Data(), result.Raw().Data() + 12);
    }
    Bytes EchoOf(size_t from, size_t count) const {
        Bytes echo = Part(data, from, count);
        for (uint8_t& byte : echo) {
            byte ^= 0x80;
        }
        return echo;
    }

    Bytes data;
    uint16_t completion = 0x4000;
    int requests = 0;
    std::set<int> failing;
};

TEST_F(LoopbackExTest, RequestByteForByte) {
    GuardedBuffer receive(20);
    Guarded<HX_LOOPBACK_EX_RESULT> result;
    EXPECT_EQ(0u, Run(12, receive, result.Get()));
    const SentRequest request = port->Last();
    EXPECT_EQ(0xF000100Cu, request.Code());
    EXPECT_EQ(20u + 128u, request.Envelope().ext.requestLen);
    EXPECT_EQ(20u + 128u, request.Envelope().ext.responseLen);
    Bytes expected(148);
    Put16(expected, 0, 0x8102);
    Put16(expected, 2, 12);
    Put16(expected, 6, 0x0304);
    Put16(expected, 8, 0x0102);
    Put16(expected, 18, 12);
    Put16(expected, 28, 12);
    Put16(expected, 32, 12);
    std::copy(data.begin(), data.end(), expected.begin() + 40);
    EXPECT_EQ(expected, request.Data());
    EXPECT_EQ(ResultOf(1), Seen(result));
    EXPECT_TRUE(receive.Is(EchoOf(0, 12)));
    for (const auto& [code, reported] : kCompletions) {
        completion = code;
        EXPECT_EQ(0u, Run(12, receive, result.Get()));
        EXPECT_EQ(reported, result->completion) << code;
    }
}

TEST_F(LoopbackExTest, LongTransfersGoInPieces) {
    struct Row {
        uint32_t length, room;
        std::vector<uint32_t> pieces;
    };
    const Row rows[] = {
        {0, 4, {0}},
        {65536, 65536, {65536}},
        {65536, 10, {65536}},
        {65536, 70000, {65536}},
        {65537, 65536, {65536, 1}},
        {131072, 65537, {65536, 65536}},
        {200000, 100, {65536, 65536, 65536, 3392}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.length);
        port->Forget();
        requests = 0;
        GuardedBuffer receive(row.room);
        Guarded<HX_LOOPBACK_EX_RESULT> result;
        EXPECT_EQ(0u, Run(row.length, receive, result.Get()));
        const auto sent = port->Requests();
        ASSERT_EQ(row.pieces.size(), sent.size());
        Bytes expected(row.room, 0xEE);
        size_t position = 0;
        for (size_t i = 0; i < sent.size(); ++i) {
            const Bytes bytes = sent[i].Data();
            const uint32_t piece = row.pieces[i];
            const bool isOnly = sent.size() == 1;
            EXPECT_EQ((isOnly ? std::max(piece, row.room) : piece) + 128, bytes.size());
            for (const size_t offset : {2, 18, 28, 32}) {
                EXPECT_EQ(piece, Word32(bytes, offset)) << "length at " << offset;
            }
            EXPECT_EQ(Part(data, position, piece), Part(bytes, 40, piece));
            // Each echo goes to the start of the receive buffer, as far as it fits.
            const Bytes echo = EchoOf(position, std::min(piece, row.room));
            std::copy(echo.begin(), echo.end(), expected.begin());
            position += piece;
        }
        EXPECT_EQ(expected, receive.First(row.room));
        EXPECT_EQ(ResultOf(static_cast<uint8_t>(sent.size())), Seen(result));
    }
}

TEST_F(LoopbackExTest, FailedPieces) {
    GuardedBuffer receive(8);
    Guarded<HX_LOOPBACK_EX_RESULT> result;
    failing = {1};
    EXPECT_EQ(HXMGT_TIMED_OUT, Run(8, receive, result.Get()));
    EXPECT_TRUE(result.Raw().Holds(0xEE));
    EXPECT_TRUE(receive.Holds(0xEE));
    // The last one's status counts; the results are those of the last piece that succeeded.
    requests = 0;
    EXPECT_EQ(0u, Run(65544, receive, result.Get()));
    EXPECT_EQ(2, requests);
    EXPECT_EQ(ResultOf(2), Seen(result));
    EXPECT_EQ(EchoOf(65536, 8), receive.First(8));
    requests = 0;
    failing = {2};
    EXPECT_EQ(HXMGT_TIMED_OUT, Run(65544, receive, result.Get()));
    EXPECT_EQ(ResultOf(1), Seen(result));
    EXPECT_EQ(EchoOf(0, 8), receive.First(8));
}

TEST_F(LoopbackExTest, OlderDriversAndBadArguments) {
    GuardedBuffer receive(8);
    Guarded<HX_LOOPBACK_EX_RESULT> result;
    const uint8_t byte = 0;
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, HXRunDiagLoopbackEx(handle, 0, 0, &byte, 1, receive.Data(),
                                                       0xFFFFFFFF, 1, result.Get()));
    EXPECT_TRUE(port->Requests().empty());
    for (const char* version : {"8.00.99", "7.05.02"}) {
        Reopen(version);
        EXPECT_EQ(0u, Run(8, receive, result.Get())) << "success without a test";
        EXPECT_TRUE(port->Requests().empty());
        EXPECT_TRUE(result.Raw().Holds(0xEE));
        EXPECT_TRUE(receive.Holds(0xEE));
    }
    Reopen("8.01.00");
    EXPECT_EQ(HXMGT_INVALID_REQUEST, Run(8, receive, result.Get())) << "asked, this time";
}

}  // namespace
