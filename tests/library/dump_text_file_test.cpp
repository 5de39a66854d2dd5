// The firmware dump as a text file: fetching it, choosing the layout, writing the file.

#include "dumps/dump_text.h"
#include "support/byte_fields.h"
#include "support/library_fixture.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

// 2026-01-02 03:04:05.006 UTC
constexpr uint64_t kWrittenAt = 134118758450060000;

class LocalSink final : public dumps::DumpSink {
  public:
    void Write(std::string_view part) override { text += part; }
    dumps::LocalTime ToLocal(uint64_t) override {
        FILETIME utc;
        FILETIME local;
        SYSTEMTIME time;
        memcpy(&utc, &kWrittenAt, sizeof utc);
        EXPECT_TRUE(FileTimeToLocalFileTime(&utc, &local) && FileTimeToSystemTime(&local, &time));
        return {time.wYear,   time.wMonth,  time.wDay,         time.wHour,
                time.wMinute, time.wSecond, time.wMilliseconds};
    }
    std::string text;
};

class DumpTextFileTest : public OneAdapterTest {
  protected:
    static constexpr dumps::Extents kExtents = {2000, 8, 16, 1};

    // A driver that keeps a dump of that layout.
    void Keep(uint8_t layout) {
        const uint32_t column = dumps::ColumnOfLayout(layout);
        dump = Patterned(static_cast<uint32_t>(dumps::RecordBytes(column, kExtents)));
        Put32(dump, 0, 0x11335577);
        memcpy(&dump[60], &kWrittenAt, sizeof kWrittenAt);
        LocalSink sink;
        dumps::WriteDumpText(dump, column, kExtents, sink);
        expected = sink.text;
        port->On(command::FirmwareDump,
                 [this](const SentRequest& request) { return Answer(request.Data()); });
        port->Forget();
    }

    Reply Answer(const Bytes& request) {
        Bytes reply(request.size());
        if (request.size() == 36) {
            Put32(reply, 4, claimedSize.value_or(static_cast<uint32_t>(dump.size())));
            return {.status = queryStatus, .data = reply};
        }
        const uint32_t offset = Word32(request, 0);
        const auto left = static_cast<uint32_t>(dump.size()) - offset;
        const uint32_t delivered = std::min(32768u, left);
        const bool isLast = delivered == left;
        Put32(reply, 0, offset);
        Put32(reply, 4, claimed.value_or(delivered));
        // Only the last header counts.
        Put32(reply, 8, isLast ? kExtents.externalMemoryWords : 0xFFFFFFFF);
        Put32(reply, 12, isLast ? kExtents.traceWords : 0xFFFFFFFF);
        Put32(reply, 16, isLast ? kExtents.fceWords : 0xFFFFFFFF);
        reply[20] = isLast ? formatVersion : 0;
        Put32(reply, 24, isLast ? kExtents.queues : 0xFFFFFFFF);
        const Bytes data = Part(dump, offset, delivered);
        std::copy(data.begin(), data.end(), reply.begin() + 32);
        return {.status = pieceStatus, .data = reply};
    }

    HX_STATUS Write() { return HXGetFcDump(handle, 0, file.Path().c_str()); }
    void PutOldText() {
        FILE* const stream = fopen(file.Path().c_str(), "w");
        fputs("old text", stream);
        fclose(stream);
    }

    ScratchFile file;
    Bytes dump;
    std::string expected;
    uint32_t queryStatus = 0;
    uint32_t pieceStatus = 0;
    uint8_t formatVersion = 3;
    std::optional<uint32_t> claimed;      // instead of a piece's length
    std::optional<uint32_t> claimedSize;  // instead of the dump's
};

TEST_F(DumpTextFileTest, LayoutOfEachChip) {
    const std::pair<uint16_t, uint8_t> rows[] = {
        {0x7400, 36},  {0x7402, 36},  {0x7404, 36},  {0x7412, 36},  {0x7414, 36},
        {0x7500, 37},  {0x7502, 37},  {0x7600, 128}, {0x7601, 131}, {0x7620, 200},
        {0x7700, 200}, {0x7702, 200}, {0x7704, 200}, {0x7720, 200}, {0x7740, 200},
        {0x7742, 200}, {0x7744, 200}, {0x7746, 200}, {0x7760, 200}, {0x7780, 200}};
    for (const auto& [chip, layout] : rows) {
        SCOPED_TRACE(chip);
        Reopen("9.04.02", chip);
        Keep(layout);
        PutOldText();
        EXPECT_EQ(0u, Write());
        EXPECT_TRUE(expected == file.Contents());
        EXPECT_TRUE(Has(expected, "TimeStamp 202"));
    }
    for (const uint16_t chip : {0x7100, 0x7200, 0x7300, 0x7610, 0x7611, 0x7790}) {
        SCOPED_TRACE(chip);
        Reopen("9.04.02", chip);
        Keep(200);
        PutOldText();
        EXPECT_EQ(HXMGT_NOT_SUPPORTED, Write());
        EXPECT_EQ("old text", file.Contents());
    }
}

TEST_F(DumpTextFileTest, Requests) {
    Keep(200);
    ASSERT_GT(dump.size(), 32768u);
    EXPECT_EQ(0u, Write());
    const auto requests = port->Requests(command::FirmwareDump);
    ASSERT_EQ(3u, requests.size());
    EXPECT_EQ(Bytes(36), requests[0].Data());
    EXPECT_EQ(36u, requests[0].Envelope().ext.responseLen);
    for (const uint32_t piece : {0u, 1u}) {
        Bytes request(32803);
        Put32(request, 0, piece * 32768);
        Put32(request, 4, 32768);
        EXPECT_EQ(request, requests[1 + piece].Data());
        EXPECT_EQ(32803u, requests[1 + piece].Envelope().ext.responseLen);
    }
}

TEST_F(DumpTextFileTest, FailuresLeaveTheFileAlone) {
    Keep(200);
    PutOldText();
    formatVersion = 2;
    EXPECT_EQ(HXMGT_INCOMPATIBLE_VERSION, Write());
    queryStatus = 35;
    EXPECT_EQ(HXMGT_NO_FIRMWARE_DUMP, Write());
    queryStatus = 0;
    pieceStatus = 35;
    EXPECT_EQ(HXMGT_NO_FIRMWARE_DUMP, Write());
    pieceStatus = 0;
    claimedSize = 0;
    EXPECT_EQ(HXMGT_NO_FIRMWARE_DUMP, Write());
    claimedSize.reset();
    claimed = 0;
    port->Forget();
    EXPECT_EQ(HXMGT_DATA_UNDERRUN, Write());
    EXPECT_EQ(2u, port->Requests(command::FirmwareDump).size()) << "it is not asked for ever";
    port->On(command::ChipProperties, Reply{.status = 22});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, Write());
    EXPECT_EQ("old text", file.Contents());

    // The format is looked at before the chip.
    Reopen("9.04.02", 0x7300);
    Keep(200);
    claimed.reset();
    EXPECT_EQ(HXMGT_INCOMPATIBLE_VERSION, Write());
}

TEST_F(DumpTextFileTest, FileThatCannotBeOpenedOrWritten) {
    Keep(200);
    for (const std::string& name : {file.Path() + ".missing\\dump.txt", std::string()}) {
        EXPECT_EQ(HXMGT_DUMP_FILE_NOT_OPENED, HXGetFcDump(handle, 0, name.c_str()));
    }
    const auto fflush = RedirectLibrary(
        "fflush", +[](FILE*) { return EOF; });
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, Write()) << "a full disk shows at the end";
}

TEST_F(DumpTextFileTest, MemoryThatRunsOut) {
    Keep(200);
    claimedSize = 0xFFFFFFFF;
    const auto calloc = NoClearedMemory();
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Write());
    EXPECT_EQ(1u, port->Requests(command::FirmwareDump).size());
}

TEST_F(DumpTextFileTest, DumpsThatAreNotWhole) {
    Keep(200);
    dump.resize(dump.size() - 40);
    EXPECT_EQ(HXMGT_DATA_UNDERRUN, Write());
    const std::string text = file.Contents();
    EXPECT_TRUE(text.ends_with("\nFirmware Dump [END]\n"));
    EXPECT_TRUE(expected.starts_with(text.substr(0, text.size() - 21)));
    EXPECT_GT(text.size(), expected.size() - 300);

    Keep(200);
    dump[3] = 0;
    EXPECT_EQ(HXMGT_INCOMPATIBLE_VERSION, Write());
    EXPECT_EQ("", file.Contents()) << "no record: no text";

    // A driver that claims more than it was asked for.
    Keep(200);
    claimed = 0xFFFFFFF0;
    EXPECT_EQ(0u, Write());
    EXPECT_TRUE(expected == file.Contents());
}

}  // namespace
