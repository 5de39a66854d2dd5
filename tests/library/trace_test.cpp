
#include "frame/trace.h"
#include "support/library_fixture.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

class TraceTest : public OneAdapterTest {
  protected:
    void Trace() { ASSERT_EQ(0u, HXEnableDebugTrace(&handle, file.Path().c_str(), 7)); }
    std::string End() {
        EXPECT_EQ(0u, HXEnableDebugTrace(&handle, nullptr, 0));
        return file.Contents();
    }
    // A trace whose line numbers are blanked out.
    static std::string WithoutLines(std::string text) {
        for (size_t at = 0; (at = text.find(".cpp(", at)) != std::string::npos; at += 5) {
            text.replace(at + 5, 4, "....");
        }
        return text;
    }
    std::string Dump(const Bytes& data) {
        FILE* stream = fopen(file.Path().c_str(), "w");
        frame::DumpBytes(stream, data.data(), static_cast<uint32_t>(data.size()));
        fclose(stream);
        return file.Contents();
    }
    static int Count(const std::string& text, std::string_view part) {
        int count = 0;
        for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
            ++count;
        }
        return count;
    }

    ScratchFile file;
};

TEST_F(TraceTest, EnableAndDisable) {
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXEnableDebugTrace(nullptr, file.Path().c_str(), 1));
    EXPECT_EQ(0u, HXEnableDebugTrace(&handle, nullptr, 5)) << "without a file: nothing changes";
    EXPECT_EQ(nullptr, Record(handle).pTraceFile);
    EXPECT_EQ(0u, Record(handle).dwTraceLevel);

    Trace();
    EXPECT_EQ(7u, Record(handle).dwTraceLevel);
    ASSERT_NE(nullptr, Record(handle).pTraceFile);
    HXfprintf("x", 1, Record(handle).pTraceFile, "one\n");
    Trace();  // again: closed, and appended to
    HXfprintf("x", 2, Record(handle).pTraceFile, "two\n");
    EXPECT_EQ("x(0001): one\nx(0002): two\n", End());
    EXPECT_EQ(nullptr, Record(handle).pTraceFile);
    EXPECT_EQ(0u, Record(handle).dwTraceLevel);
}

TEST_F(TraceTest, FileThatCannotBeOpened) {
    Trace();
    const std::string missing = file.Path() + ".missing\\trace.txt";
    EXPECT_EQ(Windows(ERROR_PATH_NOT_FOUND), HXEnableDebugTrace(&handle, missing.c_str(), 3));
    EXPECT_EQ(nullptr, Record(handle).pTraceFile) << "the earlier trace ended";
    EXPECT_EQ(0u, Record(handle).dwTraceLevel);
    EXPECT_NE(0u, HXEnableDebugTrace(&handle, "", 3));
    EXPECT_EQ(nullptr, Record(handle).pTraceFile);
}

TEST_F(TraceTest, CloseEndsTheTrace) {
    Trace();
    HXfprintf("x", 1, Record(handle).pTraceFile, "kept\n");
    Close(handle);
    EXPECT_EQ(nullptr, Record(handle).pTraceFile);
    EXPECT_EQ(7u, Record(handle).dwTraceLevel);
    EXPECT_EQ("x(0001): kept\n", file.Contents());
    EXPECT_TRUE(DeleteFileA(file.Path().c_str())) << "still open";
}

TEST_F(TraceTest, LinePrefix) {
    Trace();
    FILE* const stream = Record(handle).pTraceFile;
    EXPECT_EQ(21, HXfprintf("c:\\src\\hxmgtapi.cpp", 7, stream, "%s%c", "", '\n'));
    HXfprintf("/usr/a.cpp", 12345, stream, "%d %s 0x%08x\n", -1, "two", 0xABu);
    HXfprintf("100%s\\100%d.cpp", 0, stream, "100%%\n");
    HXfprintf("c:\\src\\", 1, stream, "\n");
    EXPECT_LT(HXfprintf(nullptr, 1, stream, "\n"), 0);
    EXPECT_LT(HXfprintf("a", 1, nullptr, "\n"), 0);
    EXPECT_LT(HXfprintf("a", 1, stream, nullptr), 0);
    const std::string text(5000, 'y');
    EXPECT_EQ(5010, HXfprintf("a", 1, stream, "%s\n", text.c_str()));
    EXPECT_EQ(
        "hxmgtapi.cpp(0007): \n"
        "/usr/a.cpp(12345): -1 two 0x000000ab\n"
        "100%d.cpp(0000): 100%\n"
        "(0001): \n"
        "a(0001): " +
            text + "\n",
        End());
}

TEST_F(TraceTest, HexDump) {
    EXPECT_EQ("Length Showing = 0\n", Dump({}));
    EXPECT_EQ(
        "Length Showing = 20\n"
        "  0000 :  1e 1f 20 21 22 23 24 25 26 27 28 29 2a 2b 2c 2d  :  .. !\"#$%&'()*+,-\n"
        "  0010 :  2e 2f 30 31                                      :  ./01            \n",
        Dump(Counting(20, 0x1E)));
    EXPECT_EQ(
        "Length Showing = 16\n"
        "  0000 :  78 79 7a 7b 7c 7d 7e 7f 80 81 82 83 84 85 86 87  :  xyz{|}~.........\n",
        Dump(Counting(16, 0x78)));
    const std::string full = Dump(Counting(256, 0));
    EXPECT_TRUE(full.starts_with("Length Showing = 256\n  0000 :  00 01"));
    EXPECT_EQ(17, Count(full, "\n"));
    EXPECT_EQ("Actual Buffer Length 300\n" + full, Dump(Counting(300, 0)));
    EXPECT_EQ("Actual Buffer Length 257\n" + full, Dump(Counting(257, 0)));
    EXPECT_TRUE(full.ends_with(
        "  00f0 :  f0 f1 f2 f3 f4 f5 f6 f7 f8 f9 fa fb fc fd fe ff  :  ................\n"));
}

TEST_F(TraceTest, ExtendedRequest) {
    port->On(command::PortDisableInfo, Reply{.data = {0x41}});
    Trace();
    uint8_t byte = 0x42;
    uint32_t returned = 0;
    EXPECT_EQ(0u, Extended(handle, 0xF0001061, 0, &byte, 1, &byte, 1, &returned));
    const std::string header =
        "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0001061, Length 89\n"
        "EXT_IOCTL SubCode 0x00000000, Instance 0, ReqLen 1\n"
        "Length Showing = 1\n";
    EXPECT_EQ(
        "executor.cpp(....): Input buffer to DeviceIoControl\n" + header +
            "  0000 :  42                                               :  B               \n"
            "executor.cpp(....): Output buffer from DeviceIoControl\n" +
            header +
            "  0000 :  41                                               :  A               \n",
        WithoutLines(End()));
}

// What did not come back is not in the dump: neither the heap's bytes nor the request's.
TEST_F(TraceTest, ShortReplies) {
    Trace();
    uint32_t returned = 0;
    const Bytes request = Counting(40, 0x61);
    Bytes reply(20);
    const std::string nothing = "  :  ................\n";
    const std::string zeros = " 00 00 00 00 00 00 00 00";
    for (const uint32_t status : {0u, 15u}) {
        // A reply of 3 bytes that claims 20.
        port->Next({.status = status,
                    .detailStatus = 2,
                    .data = {0x41, 0x42, 0x43},
                    .responseLength = 20});
        Extended(handle, 0xF0001009, 1, request.data(), 40, reply.data(), 20, &returned);
        EXPECT_EQ(20u, returned);
        const std::string text = WithoutLines(End());
        EXPECT_TRUE(
            text.ends_with("Length Showing = 20\n"
                           "  0000 :  41 42 43 00 00 00 00 00" +
                           zeros +
                           "  :  ABC.............\n"
                           "  0010 :  00 00 00 00                                      :  "
                           "....            \n"))
            << text;
        Trace();
    }
    // From buffers that the heap has used before.
    for (uint32_t length = 1; length <= 150; ++length) {
        const Bytes used(length, 0xA5);
        Bytes out(length);
        port->Next({.data = Bytes(length, 0xA5)});
        Extended(handle, 0xF0001057, 0, used.data(), length, out.data(), length, &returned);
    }
    End();
    Trace();
    port->Next({});
    Bytes out(128);
    Extended(handle, 0xF0001057, 0, nullptr, 0, out.data(), 128, &returned);
    std::string expected = "Length Showing = 128\n";
    for (const char* const row : {"00", "10", "20", "30", "40", "50", "60", "70"}) {
        expected += std::string("  00") + row + " : " + zeros + zeros + nothing;
    }
    const std::string text = End();
    EXPECT_TRUE(text.ends_with(expected)) << text;
}

TEST_F(TraceTest, PlainRequest) {
    port->OnPlain(0xF0000017, {.data = {0x41, 0x42}});
    Trace();
    uint8_t reply[2];
    EXPECT_EQ(0u, Plain(handle, 0xF0000017, nullptr, 0, reply, sizeof reply));
    // The input's dump runs over header and data from behind the header: 28 bytes of zeros here.
    const std::string zeros = " 00 00 00 00 00 00 00 00 00 00 00 00";
    EXPECT_EQ(
        "executor.cpp(....): Input buffer to DeviceIoControl\n"
        "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0000017, Length 2\n"
        "Length Showing = 28\n"
        "  0000 :  00 00 00 00" +
            zeros +
            "  :  ................\n"
            "  0010 : " +
            zeros +
            "              :  ............    \n"
            "executor.cpp(....): Output buffer from DeviceIoControl\n"
            "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0000017, Length 2\n"
            "Length Showing = 2\n"
            "  0000 :  41 42                                            :  AB              \n",
        WithoutLines(End()));
}

TEST_F(TraceTest, RetriesAndFailures) {
    uint32_t returned = 0;
    Trace();
    port->NextBusy(2);
    port->Next({.error = 31});
    EXPECT_EQ(31u, Extended(handle, 0xF0001057, 0, nullptr, 0, nullptr, 0, &returned));
    port->Next({.status = 11, .detailStatus = 0x4005, .data = Counting(4)});
    Extended(handle, 0xF0001057, 0, nullptr, 0, nullptr, 0, &returned);
    port->Next({.status = 15, .detailStatus = 2, .data = Counting(4)});
    Bytes sense(32);
    Extended(handle, 0xF0001009, 1, nullptr, 0, sense.data(), 32, &returned);
    // Retries of a plain request leave no line.
    port->Next({.error = ERROR_BUSY});
    port->Next({.error = 31});
    Plain(handle, 0xF0000017, nullptr, 0, nullptr, 0);

    const std::string request =
        "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0001057, Length 88\n"
        "EXT_IOCTL SubCode 0x00000000, Instance 0, ReqLen 0\n"
        "Length Showing = 0\n";
    const std::string failed =
        "executor.cpp(....): ::DeviceIoControl() failed, getLastErrorStatus=0x";
    const std::string input = "executor.cpp(....): Input buffer to DeviceIoControl\n";
    const std::string text = WithoutLines(End());
    const std::string expected =
        input + request + failed + "aa\nexecutor.cpp(....): retryCount=1\n" + failed +
        "aa\nexecutor.cpp(....): retryCount=2\n" + failed + "1f\n" + input + request +
        "executor.cpp(....): Mailbox Failure\n" + request + input +
        "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0001009, Length 120\n"
        "EXT_IOCTL SubCode 0x00000001, Instance 0, ReqLen 0\n"
        "Length Showing = 0\n"
        "executor.cpp(....): Output Sense Data\n"
        "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0001009, Length 120\n"
        "EXT_IOCTL SubCode 0x00000001, Instance 0, ReqLen 0\n"
        "Length Showing = 4\n"
        "  0000 :  01 02 03 04                                      :  ....            \n" +
        input +
        "SRB_IO_CONTROL 28, 0x54524e5a, 60, Code 0xf0000017, Length 0\n"
        "Length Showing = 28\n"
        "  0000 :  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  :  ................\n"
        "  0010 :  00 00 00 00 00 00 00 00 00 00 00 00              :  ............    \n";
    EXPECT_EQ(expected, text);
}

}  // namespace
