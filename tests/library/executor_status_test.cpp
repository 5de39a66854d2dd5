// What the executors make of the driver's answers.
#include "machine/executor_fixture.h"

namespace {

using namespace support;

class ExecutorStatusTest : public ExecutorTest {};

TEST_F(ExecutorStatusTest, StatusMapping) {
    const uint32_t unknown = 0x20000075;
    const uint32_t rows[] = {
        /* 0 */ 0,           unknown,    0x20000067, 0x20000068, 0x20000069,
        /* 5 */ 0x2000006A,  0x20000064, 0x2000006B, 0x2000006C, 0x2000006D,
        /* 10 */ 0x2000006E, 0x2000006F, 0x20000070, 0x20000071, 0x20000037,
        /* 15 */ 0,          0x20000072, 0x20000074, unknown,    unknown,
        /* 20 */ 0x20000073, 0x20000079, 0x2000007A, 0x2000007B, 0x2000007C,
        /* 25 */ unknown,    0x200000A3, 0x200000A4, 0x200000A5, 0x200000A6,
        /* 30 */ 0x20000091, 0x2000007D, 0x20000092, 0x2000007E, 0x200000A7,
        /* 35 */ 0x200000A8, 0x200000A9, 0x200000AA, 0x200000AE, unknown,
        /* 40 */ unknown,    unknown,    0x20000113, 0x20000115, 0x20000119,
        /* 45 */ 0x2000011A, unknown,    unknown,
    };
    const auto check = [&](uint32_t status, uint32_t detail, uint32_t expected, bool copied) {
        SCOPED_TRACE(testing::Message() << status << " " << detail);
        port->Next({.status = status, .detailStatus = detail, .data = Counting(6)});
        EXPECT_EQ(expected, Send(0xF0001054, 0, {}, 8));
        EXPECT_EQ(copied ? 6u : 0u, returned);
        Bytes bytes(8, 0xEE);
        if (copied) {
            const Bytes data = Counting(6);
            std::copy(data.begin(), data.end(), bytes.begin());
        }
        EXPECT_EQ(bytes, output);
        EXPECT_TRUE(system.sleeps.empty());
    };
    for (uint32_t status = 0; status < std::size(rows); ++status) {
        check(status, 0, rows[status], status == 0 || status == 15 || status == 16 || status == 43);
    }
    check(0xFFFFFFFF, 0, unknown, false);
    check(0x80000000, 0, unknown, false);
    const std::pair<uint32_t, uint32_t> scsi[] = {
        {2, 0x20000040},      {4, 0x20000041},  {8, 0x20000042},  {16, 0x20000043},
        {20, 0x20000044},     {24, 0x20000045}, {34, 0x20000046}, {40, 0x20000047},
        {1, unknown},         {3, unknown},     {0x30, unknown},  {0x102, unknown},
        {0xFFFFFFFF, unknown}};
    for (const auto& [detail, expected] : scsi) {
        check(15, detail, expected, true);
    }
    // The detail status means nothing beside other statuses.
    check(1, 2, unknown, false);
    check(0, 2, 0, true);
}

TEST_F(ExecutorStatusTest, RepliesThatAreShortLongOrLie) {
    struct Row {
        Reply reply;
        uint32_t room, count;
        Bytes copied;
    };
    const Bytes data = Counting(32);
    Bytes firstFour = data;
    firstFour.resize(4);
    Bytes fourAndZeros = firstFour;
    fourAndZeros.resize(16);
    Bytes sixteen = data;
    sixteen.resize(16);
    const Row rows[] = {
        {{.data = firstFour}, 16, 4, firstFour},
        {{.data = data}, 16, 16, sixteen},
        {{.data = data, .responseLength = 0x7FFFFFFF}, 16, 16, sixteen},
        {{.data = data, .responseLength = 0xFFFFFFFF}, 16, 16, sixteen},
        {{.data = data, .responseLength = 4}, 16, 4, firstFour},
        {{.data = data, .responseLength = 0}, 16, 0, {}},
        {{.data = data, .responseLength = 32}, 0, 0, {}},
        // The driver claims more than it hands back: the rest reads as zero, never as what the
        // memory held before.
        {{.data = firstFour, .responseLength = 16}, 16, 16, fourAndZeros},
        {{.data = data, .responseLength = 0xFFFFFFFF, .returned = 120}, 16, 16, fourAndZeros},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows);
        for (const uint32_t status : {0u, 16u}) {
            Reply reply = row.reply;
            reply.status = status;
            port->Next(reply);
            GuardedBuffer buffer(row.room);
            EXPECT_EQ(status == 0 ? 0u : 0x20000072u,
                      Extended(handle, 0xF0001054, 0, nullptr, 0,
                               row.room == 0 ? nullptr : buffer.Data(), row.room, &returned));
            EXPECT_EQ(row.count, returned);
            EXPECT_EQ(row.copied, buffer.First(row.count));
            EXPECT_TRUE(buffer.Holds(0xEE, row.count, row.room));
        }
    }
    // A reply that ends before the status is no success.
    port->Next({.data = data, .returned = 40});
    EXPECT_EQ(HXMGT_UNKNOWN_ERROR, Send(0xF0001054, 0, {}, 16));
    EXPECT_EQ(Bytes(16, 0xEE), output);
}

TEST_F(ExecutorStatusTest, BusyDriver) {
    for (const bool plain : {false, true}) {
        const auto send = [&] {
            return plain ? Plain(handle, 0xF0000017, &handle, 4, nullptr, 0)
                         : Send(0xF0001054, 0, {1, 2, 3}, 0);
        };
        port->Forget();
        port->NextBusy(5);
        port->Next({});
        EXPECT_EQ(0u, send());
        EXPECT_EQ(std::vector<DWORD>(5, 1000), system.sleeps);
        ASSERT_EQ(6u, port->Requests().size());
        for (const SentRequest& request : port->Requests()) {
            EXPECT_EQ(port->Requests()[0].bytes, request.bytes);
        }

        system.sleeps.clear();
        port->Forget();
        port->NextBusy(80);
        port->Next({});
        EXPECT_EQ(0u, send());
        EXPECT_EQ(80u, system.sleeps.size());

        system.sleeps.clear();
        port->Forget();
        port->NextBusy(81);
        EXPECT_EQ(170u, send());
        EXPECT_EQ(80u, system.sleeps.size());
        EXPECT_EQ(81u, port->Requests().size());

        // Any other error ends the call at once, and is passed on.
        system.sleeps.clear();
        port->NextBusy(1);
        port->Next({.error = ERROR_SEM_TIMEOUT});
        EXPECT_EQ(Windows(ERROR_SEM_TIMEOUT), send());
        EXPECT_EQ(1u, system.sleeps.size());
        system.sleeps.clear();
    }
}

TEST_F(ExecutorStatusTest, MailboxBusyRetry) {
    Bytes write(266);
    write[0] = 0xA0;
    const Reply busy{.status = 11, .detailStatus = 0x4005, .data = Counting(20)};
    const auto send = [&](int busyTimes, Reply then) {
        port->Forget();
        system.sleeps.clear();
        for (int i = 0; i < busyTimes; ++i) {
            port->Next(busy);
        }
        port->Next(then);
        return Send(0xF0001023, 0, write, 266);
    };
    EXPECT_EQ(0u, send(3, {.data = Counting(266)}));
    EXPECT_EQ(4u, port->Requests().size());
    EXPECT_EQ(std::vector<DWORD>(3, 1000), system.sleeps);
    EXPECT_EQ(Counting(266), output);
    // The envelope is built anew: neither status nor data of the failed reply are sent back.
    for (const SentRequest& request : port->Requests()) {
        EXPECT_EQ(port->Requests()[0].bytes, request.bytes);
    }

    // The fourth answer counts, and its data come back although it failed.
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, send(4, {}));
    EXPECT_EQ(4u, port->Requests().size());
    EXPECT_EQ(3u, system.sleeps.size());
    EXPECT_EQ(20u, returned);
    Bytes expected(266, 0xEE);
    std::copy_n(Counting(20).begin(), 20, expected.begin());
    EXPECT_EQ(expected, output);
    port->Requests();
    EXPECT_EQ(HX_STATUS{0}, Send(0xF0001057, 0, {}, 0)) << "one reply was left";

    // Another failure, another address, another code, a short input: no retry.
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, send(0, {.status = 11, .detailStatus = 0x4006}));
    EXPECT_EQ(HXMGT_DEVICE_BUSY, send(0, {.status = 2, .detailStatus = 0x4005}));
    write[1] = 1;
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, send(0, busy));
    write = {0xA2, 0};
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, send(0, busy));
    write = {0xA0};
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, send(0, busy));
    EXPECT_EQ(1u, port->Requests().size());
    port->Next(busy);
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, Send(0xF0001022, 0, {0xA0, 0}, 266));
    EXPECT_TRUE(system.sleeps.empty());
}

TEST_F(ExecutorStatusTest, BusyCountIsSharedAcrossMailboxRetries) {
    const Bytes write = {0xA0, 0};
    const Reply mailboxBusy{.status = 11, .detailStatus = 0x4005};
    port->NextBusy(50);
    port->Next(mailboxBusy);
    port->NextBusy(31);
    EXPECT_EQ(170u, Send(0xF0001023, 0, write, 266));
    EXPECT_EQ(81u, system.sleeps.size());  // 80 busy pauses and one of the mailbox
    EXPECT_EQ(82u, port->Requests().size());
}

TEST_F(ExecutorStatusTest, MailboxFailureEndings) {
    const auto failed = [&](uint32_t code, uint32_t detail) {
        port->Next({.status = 11, .detailStatus = detail, .data = Counting(6)});
        return Send(code, 0, {1, 2}, 8);
    };
    EXPECT_EQ(0x200000A2u, failed(0xF000101A, 0x4002));
    EXPECT_EQ(0x200000A1u, failed(0xF000101A, 0x4005));
    EXPECT_EQ(0x20000064u, failed(0xF000101A, 0x4006));
    EXPECT_EQ(0x2000006Fu, failed(0xF000101A, 0x4001));
    EXPECT_EQ(0x2000006Fu, failed(0xF000101A, 0));
    EXPECT_EQ(Bytes(8, 0xEE), output);
    // The rule is that of status 11 alone.
    port->Next({.status = 1, .detailStatus = 0x4002});
    EXPECT_EQ(0x20000075u, Send(0xF000101A, 0, {}, 8));
    for (const uint32_t code : {0xF0001022u, 0xF0001023u, 0xF000104Au}) {
        EXPECT_EQ(0x2000006Fu, failed(code, 0x4002));
        EXPECT_EQ(6u, returned);
        EXPECT_EQ(6, output[5]);
        EXPECT_EQ(0xEE, output[6]);
    }
    EXPECT_EQ(0x2000006Fu, failed(0xF0001040, 0x4002));
    EXPECT_EQ(Bytes(8, 0xEE), output);
}

TEST_F(ExecutorStatusTest, TooSmallVpdBufferGivesTheNeededSize) {
    port->Next({.status = 16, .data = Counting(16), .responseLength = 512});
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, Send(0xF0001016, 0, {}, 16));
    EXPECT_EQ(512u, returned);
    EXPECT_EQ(Bytes(16, 0xEE), output);
    // Any other command copies what fits.
    port->Next({.status = 16, .data = Counting(16), .responseLength = 512});
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, Send(0xF0001015, 0, {}, 16));
    EXPECT_EQ(16u, returned);
    EXPECT_EQ(Counting(16), output);
}

TEST_F(ExecutorStatusTest, CheckConditionBringsTheSenseData) {
    port->Next({.status = 15, .detailStatus = 2, .data = Counting(32)});
    EXPECT_EQ(HXMGT_SCSI_CHECK_CONDITION, Send(0xF0001009, 1, Counting(80), 256));
    EXPECT_EQ(32u, returned);
    output.resize(32);
    EXPECT_EQ(Counting(32), output);
}

}  // namespace
