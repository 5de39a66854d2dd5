// What the executors send, and what they ask of their caller.
#include <thread>

#include "machine/executor_fixture.h"

namespace {

using namespace support;

TEST_F(ExecutorTest, ExtendedEnvelopeByteForByte) {
    port->Next({.data = Counting(9)});
    EXPECT_EQ(0u, Send(0xF0001007, 106, {0xA1, 0xA2, 0xA3, 0xA4}, 9));
    const SentRequest request = port->Last();
    EXPECT_TRUE(request.oneBuffer);
    EXPECT_EQ(120u, request.inputSize);
    EXPECT_EQ(125u, request.outputSize);
    Bytes expected(120);
    const auto put32 = [&](size_t offset, uint32_t value) { memcpy(&expected[offset], &value, 4); };
    put32(0, 28);
    memcpy(&expected[4], "ZNRT", 4);
    put32(12, 60);
    put32(16, 0xF0001007);
    put32(24, 88 + 9);
    memcpy(&expected[28], "ZNRT", 4);
    put32(36, 0x00050001);
    expected[40] = 106;
    put32(56, 4);
    put32(60, 9);
    put32(116, 0xA4A3A2A1);
    EXPECT_EQ(expected, request.bytes);
    EXPECT_EQ(Counting(9), output);
    EXPECT_EQ(9u, returned);
}

TEST_F(ExecutorTest, ExtendedSizes) {
    struct Row {
        uint32_t input, output, length, inputSize, outputSize;
    };
    const Row rows[] = {{4, 176136, 176224, 120, 176252},
                        {0, 0, 88, 116, 116},
                        {526, 0, 614, 642, 642},
                        {1, 1, 89, 117, 117},
                        {0, 1, 89, 116, 117}};
    for (const Row& row : rows) {
        port->Next({});
        EXPECT_EQ(0u, Send(0xF0001054, 0, Counting(row.input), row.output));
        const SentRequest request = port->Last();
        EXPECT_EQ(row.length, request.Envelope().srb.length);
        EXPECT_EQ(row.inputSize, request.inputSize);
        EXPECT_EQ(row.outputSize, request.outputSize);
        EXPECT_EQ(row.input, request.Envelope().ext.requestLen);
        EXPECT_EQ(row.output, request.Envelope().ext.responseLen);
        EXPECT_EQ(0u, returned) << "the driver filled nothing";
        EXPECT_EQ(Bytes(row.output, 0xEE), output);
    }
}

TEST_F(ExecutorTest, OnlyCtPassThroughWaitsLonger) {
    for (const transport::ExtendedCommandRow& row : transport::kExtendedCommands) {
        port->Next({});
        Send(row.code, row.subCode, Counting(16), 16);
        EXPECT_EQ(row.code == 0xF000100A ? 120u : 60u, port->Last().Envelope().srb.timeout)
            << row.name;
    }
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        port->Next({});
        Plain(handle, row.code, nullptr, 0, nullptr, 0);
        EXPECT_EQ(60u, port->Last().Envelope().srb.timeout) << row.name;
    }
}

TEST_F(ExecutorTest, Rewrites) {
    // Every envelope differs from the plain one in these fields alone.
    struct Row {
        const char* what;
        uint32_t code;
        uint16_t subCode;
        Bytes input;
        Bytes record;  // in the output buffer
        uint16_t sentSubCode;
        uint32_t detailStatus, parameter, requestLen;
        uint16_t resyncFlag;
    };
    const uint32_t read = 0xF0001012;
    const uint32_t write = 0xF000100D;
    const Bytes chunk = Words16(0x0040, 0x0003);
    const Bytes place = Words32(0x00010000, 0x00ABC000);
    const Bytes data = Counting(10);
    const Row rows[] = {
        {"resync", 0xF0001001, 9, {}, Bytes(696), 1, 0, 0, 0, 1},
        {"no resync", 0xF0001001, 1, {}, Bytes(696), 1, 0, 0, 0, 0},
        {"sub-code 9 of another code", 0xF0001007, 9, {}, Bytes(512), 9, 0, 0, 0, 0},
        {"whole read", read, 0, place, Bytes(16), 0, 0, 0, 8, 0},
        {"region read", read, 0x90, chunk, Bytes(16), 0x90, 0, 0x00400003, 4, 0},
        {"region read without input", read, 0x90, {}, Bytes(16), 0x90, 0, 0, 0, 0},
        {"region read, long input", read, 7, place, Bytes(16), 7, 0, 1, 8, 0},
        {"offset read", read, 0xFFFF, place, Bytes(16), 0xFFFF, 0, 0x00ABC000, 0x00010000, 0},
        {"sub-code 0xFFFE of a read", read, 0xFFFE, chunk, Bytes(8), 0xFFFE, 0, 0x00400003, 4, 0},
        {"whole write", write, 0, data, place, 0, 0, 0, 10, 0},
        {"region write", write, 0x90, data, chunk, 0x90, 0, 0x00400003, 10, 0},
        {"sub-code 0xFFFC", write, 0xFFFC, data, chunk, 0xFFFC, 0, 0x00400003, 10, 0},
        {"flagged write", write, 0xFFFD, data, place, 0xFFFF, 1, 0x00ABC000, 0x00010000, 0},
        {"sub-code 0xFFFE", write, 0xFFFE, data, place, 0xFFFE, 0, 0x00ABC000, 0x00010000, 0},
        {"offset write", write, 0xFFFF, data, place, 0xFFFF, 0, 0x00ABC000, 0x00010000, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        port->Next({});
        EXPECT_EQ(0u, SendWithRecord(row.code, row.subCode, row.input, row.record));
        const transport::ExtIoctl body = SentBody();
        EXPECT_EQ(row.sentSubCode, body.subCode);
        EXPECT_EQ(row.detailStatus, body.detailStatus);
        EXPECT_EQ(row.parameter, body.parameter);
        EXPECT_EQ(row.requestLen, body.requestLen);
        EXPECT_EQ(row.record.size(), body.responseLen);
        EXPECT_EQ(row.resyncFlag, body.resyncFlag);
        EXPECT_EQ(0u, body.status);
        EXPECT_EQ(row.input, port->Last().Data());
    }
    // A write without a record in the output buffer.
    port->Next({});
    EXPECT_EQ(0u, Send(write, 0x90, data, 0));
    EXPECT_EQ(0u, SentBody().parameter);
    EXPECT_EQ(10u, SentBody().requestLen);
    // A record whose buffer has length 0 counts, and is not sent.
    port->Next({});
    EXPECT_EQ(0u, Extended(handle, read, 0x90, chunk.data(), 0, nullptr, 0, &returned));
    EXPECT_EQ(0x00400003u, SentBody().parameter);
    EXPECT_EQ(0u, SentBody().requestLen);
    EXPECT_EQ(Bytes(), port->Last().Data());
    Bytes writable = place;
    port->Next({});
    EXPECT_EQ(0u, Extended(handle, write, 0xFFFD, data.data(), 10, writable.data(), 0, &returned));
    EXPECT_EQ(0xFFFFu, SentBody().subCode);
    EXPECT_EQ(1u, SentBody().detailStatus);
    EXPECT_EQ(0x00ABC000u, SentBody().parameter);
    EXPECT_EQ(0x00010000u, SentBody().requestLen);
    EXPECT_EQ(0u, SentBody().responseLen);
}

TEST_F(ExecutorTest, FlashRecordCutShortIsRefused) {
    port->Forget();
    GuardedBuffer three(3);
    GuardedBuffer seven(7);
    const auto refused = [&](uint32_t code, uint16_t subCode, GuardedBuffer& buffer) {
        const bool isRead = code == 0xF0001012;
        const auto length = static_cast<uint32_t>(buffer.Size());
        EXPECT_EQ(
            HXMGT_INVALID_PARAMETER,
            Extended(handle, code, subCode, isRead ? buffer.Data() : nullptr, isRead ? length : 0,
                     isRead ? nullptr : buffer.Data(), isRead ? 0 : length, &returned));
    };
    refused(0xF0001012, 0x90, three);
    refused(0xF0001012, 0xFFFF, seven);
    refused(0xF000100D, 0x90, three);
    refused(0xF000100D, 0xFFFD, seven);
    refused(0xF000100D, 0xFFFF, seven);
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(ExecutorTest, NvramWriteFlag) {
    const auto write = [&](uint32_t flag, const Bytes& input) {
        returned = flag;
        port->Next({});
        EXPECT_EQ(0u, Extended(handle, 0xF0001010, 3, input.data(),
                               static_cast<uint32_t>(input.size()), nullptr, 0, &returned));
        EXPECT_EQ(0u, returned);
        return SentBody().detailStatus;
    };
    EXPECT_EQ(0u, write(0, Counting(256)));
    EXPECT_EQ(1u, write(1, Counting(256)));
    EXPECT_EQ(1u, write(0x80000000, Counting(256)));
    EXPECT_EQ(0u, write(1, {})) << "no input, no flag";
    // The word is a flag of that one code.
    returned = 1;
    port->Next({});
    Extended(handle, 0xF0001017, 0, &handle, 4, nullptr, 0, &returned);
    EXPECT_EQ(0u, SentBody().detailStatus);
}

TEST_F(ExecutorTest, BuffersAndLengths) {
    uint8_t byte = 0;
    const auto send = [&](const void* in, uint32_t inLength, void* out, uint32_t outLength) {
        return std::pair(Extended(handle, 0xF0001054, 0, in, inLength, out, outLength, &returned),
                         Plain(handle, 0xF0000017, in, inLength, out, outLength));
    };
    const std::pair invalid(HX_STATUS{HXMGT_INVALID_PARAMETER}, HX_STATUS{HXMGT_INVALID_PARAMETER});
    const std::pair noMemory(HX_STATUS{HXMGT_OUT_OF_MEMORY}, HX_STATUS{HXMGT_OUT_OF_MEMORY});
    EXPECT_EQ(invalid, send(nullptr, 1, &byte, 1));
    EXPECT_EQ(invalid, send(&byte, 1, nullptr, 1));
    EXPECT_EQ(invalid, send(nullptr, 0xFFFFFFFF, nullptr, 0));
    // Sizes that a 32-bit length cannot carry together with the envelope.
    EXPECT_EQ(noMemory, send(&byte, 0xFFFFFFFF, nullptr, 0));
    EXPECT_EQ(noMemory, send(nullptr, 0, &byte, 0xFFFFFFFF));
    EXPECT_EQ(noMemory, send(nullptr, 0, &byte, 0xFFFFFFFF - 27));
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY,
              Extended(handle, 0xF0001054, 0, nullptr, 0, &byte, 0xFFFFFFFF - 115, nullptr));
    EXPECT_TRUE(port->Requests().empty());

    // Without a place for the count.
    port->Next({.data = {7}});
    EXPECT_EQ(0u, Extended(handle, 0xF0001054, 0, nullptr, 0, &byte, 1, nullptr));
    EXPECT_EQ(7, byte);
    // Pointers with length 0 are not looked at.
    port->Next({});
    EXPECT_EQ(0u, Extended(handle, 0xF0001054, 0, reinterpret_cast<void*>(1), 0,
                           reinterpret_cast<void*>(1), 0, &returned));
}

TEST_F(ExecutorTest, MemoryThatRunsOut) {
    uint8_t bytes[8];
    const auto malloc = RedirectLibrary(
        "malloc", +[](size_t) -> void* { return nullptr; });
    const auto calloc = NoClearedMemory();
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Extended(handle, 0xF0001054, 0, bytes, 8, bytes, 8, &returned));
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Plain(handle, 0xF0000017, bytes, 8, bytes, 8));
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(ExecutorTest, InputAndOutputMayBeOneBuffer) {
    GuardedBuffer buffer(100, 0x11);
    port->Next({.data = Counting(40)});
    EXPECT_EQ(0u,
              Extended(handle, 0xF000104A, 0, buffer.Data(), 100, buffer.Data(), 100, &returned));
    EXPECT_EQ(Bytes(100, 0x11), port->Last().Data());
    EXPECT_EQ(Counting(40), buffer.First(40));
    EXPECT_TRUE(buffer.Holds(0x11, 40, 100));

    port->OnPlain(0xF0000017, {.data = Counting(40)});
    EXPECT_EQ(0u, Plain(handle, 0xF0000017, buffer.Data(), 100, buffer.Data(), 100));
    EXPECT_EQ(Counting(40), buffer.First(40));
    EXPECT_TRUE(buffer.Holds(0, 40, 100));
}

TEST_F(ExecutorTest, PlainFormByteForByte) {
    GuardedBuffer reply(16);
    port->Next({.data = Counting(5), .returned = 33});
    const Bytes input = {0, 0, 0x80, 0, 5, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(0u, Plain(handle, 0xF000000B, input.data(), 12, reply.Data(), 16));
    const SentRequest request = port->Last();
    EXPECT_FALSE(request.oneBuffer);
    EXPECT_EQ(28u + 12u, request.inputSize);
    EXPECT_EQ(28u + 16u, request.outputSize);
    Bytes expected(40);
    const auto put32 = [&](size_t offset, uint32_t value) { memcpy(&expected[offset], &value, 4); };
    put32(0, 28);
    memcpy(&expected[4], "ZNRT", 4);
    put32(12, 60);
    put32(16, 0xF000000B);
    put32(24, 16);
    memcpy(&expected[28], input.data(), 12);
    EXPECT_EQ(expected, request.bytes);
    // All the room is written: what the driver left open is zero.
    EXPECT_EQ(Counting(5), reply.First(5));
    EXPECT_TRUE(reply.Holds(0, 5, 16));
}

TEST_F(ExecutorTest, ThreadsShareAHandle) {
    port->On(command::Mailbox, [](const SentRequest& request) {
        return Reply{.data = request.Data()};  // every caller must get its own bytes back
    });
    std::vector<std::thread> threads;
    std::array<int, 4> wrong = {};
    for (size_t index = 0; index < wrong.size(); ++index) {
        threads.emplace_back([&, index] {
            for (int round = 0; round < 200; ++round) {
                const Bytes input(196, static_cast<uint8_t>(index * 50 + round % 50));
                Bytes reply(196);
                uint32_t count = 0;
                const HX_STATUS status =
                    Extended(handle, 0xF000104A, 0, input.data(), 196, reply.data(), 196, &count);
                wrong[index] += status != 0 || count != 196 || reply != input;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ((std::array<int, 4>{}), wrong);
}

}  // namespace
