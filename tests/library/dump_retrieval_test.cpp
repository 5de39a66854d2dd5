// Fetching dumps in pieces: what is asked for, where it lands, and drivers that do not keep to the
// protocol.

#include "support/byte_fields.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

// One retrieval, so that the same cases run on each of them.
struct Kind {
    const char* name;
    transport::Command command;
    uint32_t querySize, pieceSize, dataOffset;
    bool isRaw;  // the caller's buffer begins with a header of 72 bytes
    HX_STATUS (*sized)(uint32_t, uint64_t, void*, uint32_t*);
    HX_STATUS (*raw)(uint32_t, uint64_t, void*);
    uint8_t parts;
};

const Kind kKinds[] = {
    {"firmware", command::RawFirmwareDump, 73, 32840, 72, true, nullptr, &HXGetFcDumpRaw, 1},
    {"MPI", command::RawMpiDump, 73, 32840, 72, true, nullptr, &HXGetMpiDumpRaw, 1},
    {"MCTP", command::MctpDump, 15, 32782, 14, false, &HXGetFcMctpDump, nullptr, 1},
    {"mini", command::MiniDump, 16, 32783, 15, false, &HXGetMiniDump, nullptr, 2},
};

class DumpRetrievalTest : public OneAdapterTest {
  protected:
    // A driver that keeps dumps; the second part of a mini dump is dump2.
    void Keep(const Kind& kind, Bytes dump, Bytes dump2 = {}) {
        dumps[0] = std::move(dump);
        dumps[1] = std::move(dump2);
        port->On(kind.command, [this, &kind](const SentRequest& request) {
            return Answer(kind, request.Data());
        });
        port->Forget();
    }

    Reply Answer(const Kind& kind, const Bytes& request) {
        const uint8_t part = kind.parts == 2 ? request[8] : 1;
        const Bytes& dump = dumps[part - 1];
        Bytes reply(request.size());
        if (kind.parts == 2) {
            reply[8] = part;
        }
        if (request.size() == kind.querySize) {
            Put32(reply, 0, static_cast<uint32_t>(dump.size()));
            return {.status = queryStatus, .data = reply};
        }
        const uint32_t offset = Word32(request, 4);
        ++pieces;
        if (pieces == failingPiece) {
            return {.status = pieceStatus, .data = reply};
        }
        const uint32_t left = static_cast<uint32_t>(dump.size()) - offset;
        const uint32_t delivered =
            std::min({32768u, left, pieces == wholePiece ? 32768 : largestPiece});
        Put32(reply, 0, claimed.value_or(delivered));
        Put32(reply, 4, offset);
        if (kind.isRaw) {
            for (size_t i = 8; i < 72; ++i) {
                reply[i] = static_cast<uint8_t>(i + 16 * static_cast<size_t>(pieces));
            }
        }
        const Bytes data = Part(dump, offset, delivered);
        std::copy(data.begin(), data.end(), reply.begin() + kind.dataOffset);
        if (replied) {
            return {.data = reply, .responseLength = kind.dataOffset + *replied};
        }
        return {.data = reply};
    }

    struct Outcome {
        HX_STATUS status;
        uint32_t size;
        Bytes dump;    // the capacity's bytes
        Bytes header;  // of a raw dump
    };
    Outcome Get(const Kind& kind, uint32_t capacity) {
        pieces = 0;
        if (kind.isRaw) {
            GuardedBuffer buffer(72 + capacity);
            memcpy(buffer.Data(), &capacity, sizeof capacity);
            const HX_STATUS status = kind.raw(handle, 0, buffer.Data());
            const Bytes all(buffer.Data(), buffer.Data() + buffer.Size());
            return {status, Word32(all, 0), Part(all, 72, capacity), Part(all, 0, 72)};
        }
        GuardedBuffer buffer(capacity);
        uint32_t size = capacity;
        const HX_STATUS status = kind.sized(handle, 0, buffer.Data(), &size);
        return {status, size, buffer.First(capacity), {}};
    }
    std::vector<uint32_t> AskedOffsets(const Kind& kind) {
        std::vector<uint32_t> offsets;
        for (const SentRequest& request : port->Requests()) {
            const Bytes data = request.Data();
            if (data.size() != kind.querySize) {
                EXPECT_EQ(kind.pieceSize, data.size());
                EXPECT_EQ(kind.pieceSize, request.Envelope().ext.responseLen);
                EXPECT_EQ(32768u, Word32(data, 0)) << "always a whole piece is asked for";
                offsets.push_back(Word32(data, 4));
            }
        }
        return offsets;
    }

    Bytes dumps[2];
    uint32_t queryStatus = 0;
    int pieces = 0;
    int failingPiece = 0;
    uint32_t pieceStatus = 0;
    uint32_t largestPiece = 32768;
    int wholePiece = 0;               // one that is not cut
    std::optional<uint32_t> claimed;  // instead of the delivered length
    std::optional<uint32_t> replied;  // data bytes of a reply, whatever it says
};

TEST_F(DumpRetrievalTest, WholeDumpsOfAnySize) {
    struct Row {
        uint32_t size;
        std::vector<uint32_t> offsets;
    };
    const Row rows[] = {
        {0, {}},
        {1, {0}},
        {32767, {0}},
        {32768, {0}},
        {32769, {0, 32768}},
        {100000, {0, 32768, 65536, 98304}},
    };
    for (const Kind& kind : kKinds) {
        for (const Row& row : rows) {
            for (const uint32_t extra : {0u, 100u}) {
                SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(row.size));
                Keep(kind, Patterned(row.size));
                const Outcome outcome = Get(kind, row.size + extra);
                EXPECT_EQ(0u, outcome.status);
                EXPECT_EQ(row.size, outcome.size);
                EXPECT_EQ(Patterned(row.size), Part(outcome.dump, 0, row.size));
                EXPECT_EQ(row.offsets, AskedOffsets(kind));
            }
        }
    }
}

TEST_F(DumpRetrievalTest, SizeQueries) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        Keep(kind, Patterned(10), Patterned(5));
        EXPECT_EQ(0u, Get(kind, 15).status);
        for (uint8_t part = 0; part < kind.parts; ++part) {
            const SentRequest query = port->Requests()[part];
            EXPECT_EQ(kind.command.code, query.Code());
            EXPECT_EQ(0u, query.Envelope().ext.subCode);
            EXPECT_EQ(kind.querySize, query.Envelope().ext.responseLen);
            Bytes expected(kind.querySize);
            if (kind.parts == 2) {
                expected[8] = static_cast<uint8_t>(part + 1);
            }
            EXPECT_EQ(expected, query.Data());
        }
    }
}

TEST_F(DumpRetrievalTest, OneByteShort) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        Keep(kind, Patterned(40000));
        for (const uint32_t capacity : {39999u, 1u, 0u}) {
            const Outcome outcome = Get(kind, capacity);
            EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, outcome.status);
            EXPECT_EQ(40000u, outcome.size);
            EXPECT_EQ(Bytes(capacity, 0xEE), outcome.dump);
            EXPECT_TRUE(AskedOffsets(kind).empty());
        }
        // The driver itself may say so.
        queryStatus = 16;
        const Outcome outcome = Get(kind, 50000);
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, outcome.status);
        EXPECT_EQ(40000u, outcome.size);
        queryStatus = 0;
    }
}

TEST_F(DumpRetrievalTest, HeaderOfARawDump) {
    for (const Kind& kind : {kKinds[0], kKinds[1]}) {
        Keep(kind, Patterned(40000));
        const Outcome outcome = Get(kind, 40010);
        // The capacity is cleared from the buffer's start; bytes 8 to 47 are the last piece's.
        Bytes expected(72);
        Put32(expected, 0, 40000);
        for (size_t i = 8; i < 48; ++i) {
            expected[i] = static_cast<uint8_t>(i + 32);
        }
        EXPECT_EQ(expected, outcome.header);
        EXPECT_EQ(Bytes(10, 0xEE), Part(outcome.dump, 40000, 10))
            << "bytes behind 40010 of the buffer are not cleared";
    }
}

TEST_F(DumpRetrievalTest, FailuresOnTheWay) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        Keep(kind, Patterned(70000));
        queryStatus = 35;
        Outcome outcome = Get(kind, 80000);
        EXPECT_EQ(HXMGT_NO_FIRMWARE_DUMP, outcome.status);
        EXPECT_EQ(0u, outcome.size);
        EXPECT_TRUE(AskedOffsets(kind).empty());
        queryStatus = 21;
        outcome = Get(kind, 80000);
        EXPECT_EQ(HXMGT_DEVICE_NOT_READY, outcome.status);
        EXPECT_EQ(80000u, outcome.size) << "nothing is known of the size";
        queryStatus = 0;
        for (const int piece : {1, 2, 3}) {
            failingPiece = piece;
            pieceStatus = 35;
            outcome = Get(kind, 80000);
            EXPECT_EQ(HXMGT_NO_FIRMWARE_DUMP, outcome.status);
            EXPECT_EQ(0u, outcome.size);
            EXPECT_EQ(piece, pieces) << "a failed piece is the last one";
            pieceStatus = 16;
            outcome = Get(kind, 80000);
            EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, outcome.status);
            EXPECT_EQ(70000u, outcome.size);
            pieceStatus = 7;
            EXPECT_EQ(HXMGT_DATA_OVERRUN, Get(kind, 80000).status);
        }
        failingPiece = 0;
    }
}

TEST_F(DumpRetrievalTest, DriverThatDeliversNothing) {
    claimed = 0;
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        Keep(kind, Patterned(70000));
        EXPECT_EQ(HXMGT_DATA_UNDERRUN, Get(kind, 70000).status);
        EXPECT_EQ(1, pieces) << "it is not asked for ever";
    }
}

TEST_F(DumpRetrievalTest, DriverThatDeliversMoreThanAsked) {
    for (const uint32_t length : {32769u, 40000u, 0x80000000u, 0xFFFFFFFFu}) {
        claimed = length;
        for (const Kind& kind : kKinds) {
            SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(length));
            // The guard page behind the buffer sees every byte too many.
            Keep(kind, Patterned(40000));
            const Outcome outcome = Get(kind, 40000);
            EXPECT_EQ(0u, outcome.status);
            EXPECT_EQ(Patterned(40000), outcome.dump);
            EXPECT_EQ((std::vector<uint32_t>{0, 32768}), AskedOffsets(kind));
        }
    }
}

TEST_F(DumpRetrievalTest, ReplyShorterThanItSays) {
    claimed = 32768;
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        Keep(kind, Patterned(250));
        replied = 100;
        if (kind.sized != &HXGetFcMctpDump) {
            const Outcome outcome = Get(kind, 250);
            EXPECT_EQ(0u, outcome.status);
            EXPECT_EQ(Patterned(250), outcome.dump);
            EXPECT_EQ((std::vector<uint32_t>{0, 100, 200}), AskedOffsets(kind));
        }
        for (const uint32_t cut : {0u, 0xFFFFFFFFu}) {  // no data, then not even a header
            replied = cut;
            EXPECT_EQ(HXMGT_DATA_UNDERRUN, Get(kind, 250).status);
            EXPECT_EQ(1, pieces);
        }
    }
}

TEST_F(DumpRetrievalTest, ShortPieces) {
    largestPiece = 10000;
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        Keep(kind, Patterned(35000));
        const Outcome outcome = Get(kind, 35000);
        EXPECT_EQ(0u, outcome.status);
        if (kind.sized == &HXGetFcMctpDump) {
            // Asked for at every 32768; what comes is written where the last piece ended.
            EXPECT_EQ((std::vector<uint32_t>{0, 32768}), AskedOffsets(kind));
            EXPECT_EQ(Part(dumps[0], 0, 10000), Part(outcome.dump, 0, 10000));
            EXPECT_EQ(Part(dumps[0], 32768, 2232), Part(outcome.dump, 10000, 2232));
            EXPECT_EQ(Bytes(35000 - 12232), Part(outcome.dump, 12232, 35000 - 12232));
        } else {
            EXPECT_EQ((std::vector<uint32_t>{0, 10000, 20000, 30000}), AskedOffsets(kind));
            EXPECT_EQ(dumps[0], outcome.dump);
        }
    }
}

TEST_F(DumpRetrievalTest, OneByteAtATime) {
    largestPiece = 1;
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        // Asked for at every 32768, a dump of 1000 pieces is a large one.
        const uint32_t piece = kind.sized == &HXGetFcMctpDump ? 32768 : 1;
        Keep(kind, Patterned(1000 * piece));
        EXPECT_EQ(0u, Get(kind, 1000 * piece).status) << "the last of them may be short";
        EXPECT_EQ(1000, pieces);
        Keep(kind, Patterned(1000 * piece + 1));
        const Outcome outcome = Get(kind, 1000 * piece + 1);
        EXPECT_EQ(HXMGT_DATA_UNDERRUN, outcome.status);
        EXPECT_EQ(1000, pieces);
        EXPECT_EQ(kind.isRaw ? 0 : 1000 * piece + 1, outcome.size) << "cleared, or as it was";
    }
    // In a row: a whole piece starts the count anew.
    const Kind& kind = kKinds[0];
    wholePiece = 1000;
    Keep(kind, Patterned(999 + 32768 + 1000));
    EXPECT_EQ(0u, Get(kind, 999 + 32768 + 1000).status);
    EXPECT_EQ(2000, pieces);
}

TEST_F(DumpRetrievalTest, MiniDumpOfTwoParts) {
    const Kind& kind = kKinds[3];
    Keep(kind, Patterned(32769), Counting(32768, 77));
    const Outcome outcome = Get(kind, 65537);
    EXPECT_EQ(0u, outcome.status);
    EXPECT_EQ(65537u, outcome.size);
    EXPECT_EQ(dumps[0], Part(outcome.dump, 0, 32769));
    EXPECT_EQ(dumps[1], Part(outcome.dump, 32769, 32768));
    EXPECT_EQ((std::vector<uint32_t>{0, 32768, 0}), AskedOffsets(kind));
    Bytes parts;
    for (const SentRequest& request : port->Requests()) {
        parts.push_back(request.Data()[8]);
    }
    EXPECT_EQ((Bytes{1, 2, 1, 1, 2}), parts);
    EXPECT_EQ(65537u, Get(kind, 65536).size);
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, Get(kind, 65536).status);

    // Together more than a size can say.
    for (const uint32_t each : {0x80000000u, 0xFFFFFFFFu}) {
        port->On(kind.command, [each](const SentRequest&) {
            Bytes reply(16);
            Put32(reply, 0, each);
            return Reply{.data = reply};
        });
        const Outcome huge = Get(kind, 100);
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, huge.status);
        EXPECT_EQ(0xFFFFFFFFu, huge.size);
    }
}

TEST_F(DumpRetrievalTest, ForcedDumps) {
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXForceFcMctpDump());
    EXPECT_TRUE(port->Requests().empty());
    port->Next({});
    EXPECT_EQ(0u, HXForceFwDump(handle));
    EXPECT_EQ(0xF000A144u, port->Last().Code());
    EXPECT_EQ(116u, port->Last().bytes.size());
    port->Next({.status = 2});
    EXPECT_EQ(HXMGT_DEVICE_BUSY, HXForceFwDump(handle));

    // A size may be asked for without a buffer.
    Keep(kKinds[2], Patterned(7));
    uint32_t size = 0;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetFcMctpDump(handle, 0, nullptr, &size));
    EXPECT_EQ(7u, size);
}

}  // namespace
