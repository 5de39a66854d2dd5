// D-port results and mailbox commands.
#include <array>
#include <set>

#include "support/byte_fields.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

class DportTest : public OneAdapterTest {
  protected:
    HX_STATUS Get() { return HXRunDportDiagEx(handle, 0, brief.Get()); }
    HX_STATUS GetWide() { return HXRunDportDiagEx2(handle, 0, wide.Get()); }
    template <typename Record>
    static Bytes Seen(Guarded<Record>& record) {
        return Bytes(record.Raw().Data(), record.Raw().Data() + sizeof(Record));
    }

    Guarded<HX_DPORT_RESULT> brief;
    Guarded<HX_DPORT_RESULT_EX2> wide;
};

TEST_F(DportTest, ShorterResults) {
    port->On(command::DportDiagnostic, Reply{.data = Patterned(72)});
    EXPECT_EQ(0u, Get());
    EXPECT_EQ(Patterned(72), Seen(brief));
    EXPECT_EQ(Bytes(72), port->Last().Data());
    EXPECT_EQ(117u, port->Last().Envelope().ext.subCode);
    EXPECT_EQ(72u, port->Last().Envelope().ext.responseLen);
    port->On(command::DportDiagnostic, Reply{.status = 43, .data = Patterned(3)});
    EXPECT_EQ(HXMGT_DIAGNOSTIC_TEST_RUNNING, Get());
    EXPECT_EQ((Bytes{1, 2, 3, 0}), Part(Seen(brief), 0, 4));
}

TEST_F(DportTest, WiderResults) {
    port->On(command::DportResults, Reply{.data = Patterned(1088)});
    EXPECT_EQ(0u, GetWide());
    EXPECT_EQ(Patterned(1088), Seen(wide));
    EXPECT_EQ(Bytes(1088), port->Last().Data());
    EXPECT_EQ(121u, port->Last().Envelope().ext.subCode);

    memset(wide->bytes, 0xEE, 1088);
    port->On(command::DportResults, Reply{.status = 43, .data = Patterned(1088)});
    EXPECT_EQ(HXMGT_DIAGNOSTIC_TEST_RUNNING, GetWide());
    EXPECT_EQ(Patterned(6), Part(Seen(wide), 0, 6));
    EXPECT_TRUE(wide.Raw().Holds(0xEE, 6, 1088));

    memset(wide->bytes, 0xEE, 1088);
    port->On(command::DportResults, Reply{.status = 11, .data = Patterned(1088)});
    EXPECT_EQ(HXMGT_MAILBOX_FAILED, GetWide());
    EXPECT_TRUE(wide.Raw().Holds(0xEE));
}

TEST_F(DportTest, ShorterResultsStandIn) {
    port->On(command::DportResults, Reply{.status = 12});
    for (const uint32_t driverStatus : {0u, 43u}) {
        const Bytes reply = Patterned(72);
        port->On(command::DportDiagnostic, Reply{.status = driverStatus, .data = reply});
        memset(wide->bytes, 0xEE, 1088);
        EXPECT_EQ(driverStatus == 0 ? HXMGT_SUCCESS : HXMGT_DIAGNOSTIC_TEST_RUNNING, GetWide());
        Bytes expected(1088, 0xEE);
        expected[2] = reply[0];
        expected[3] = reply[1];
        expected[4] = reply[2];
        expected[5] = reply[3];
        expected[6] = expected[7] = 0;
        std::copy(reply.begin() + 8, reply.end(), expected.begin() + 8);
        EXPECT_EQ(expected, Seen(wide));
    }
    EXPECT_EQ(72u, port->Last().Data().size());
}

TEST_F(DportTest, OnlyTheNewestChips) {
    const std::set<uint16_t> newest = {0x7620, 0x7700, 0x7702, 0x7704, 0x7720, 0x7740,
                                       0x7742, 0x7744, 0x7746, 0x7760, 0x7780};
    for (const uint16_t id :
         {0x7100, 0x7300, 0x7400, 0x7500, 0x7600, 0x7601, 0x7610, 0x7611, 0x7620, 0x7700,
          0x7702, 0x7704, 0x7720, 0x7740, 0x7742, 0x7744, 0x7746, 0x7760, 0x7780, 0x7790}) {
        SCOPED_TRACE(id);
        Reopen("9.04.02", id);
        port->On(command::DportDiagnostic, Reply{.data = Patterned(72)});
        port->On(command::DportResults, Reply{.data = Patterned(1088)});
        const HX_STATUS expected = newest.contains(id) ? HXMGT_SUCCESS : HXMGT_NOT_SUPPORTED;
        EXPECT_EQ(expected, Get());
        EXPECT_EQ(expected, GetWide());
    }
    Reopen("9.04.02");
    port->On(command::ChipProperties, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Get()) << "without the chip's identity nothing is known";
    EXPECT_EQ(1u, port->Requests().size());
    Reopen("7.05.02");
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, Get());
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, GetWide());
    EXPECT_TRUE(port->Requests().empty());
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXRunDportDiag());
}

class MailboxTest : public OneAdapterTest {
  protected:
    HX_STATUS Send(uint16_t mailboxCommand, int16_t inCount, int16_t outCount) {
        in = {mailboxCommand};
        for (uint16_t i = 1; i < in.size(); ++i) {
            in[i] = static_cast<uint16_t>(0x100 * i + 1);
        }
        return HXMailboxPassthru(handle, 0, in.data(), inCount,
                                 reinterpret_cast<uint16_t*>(out.Data()), outCount);
    }
    // Registers of the reply count from 1.
    static Bytes Registers() {
        Bytes reply(196, 0xDD);
        for (uint16_t i = 0; i < 64; ++i) {
            Put16(reply, 68u + 2u * i, static_cast<uint16_t>(i + 1));
        }
        return reply;
    }
    Bytes Seen() { return Bytes(out.Data(), out.Data() + out.Size()); }

    std::array<uint16_t, 33> in = {};
    GuardedBuffer out{128};
};

TEST_F(MailboxTest, RequestAndRegisters) {
    for (const auto& [inCount, outCount] : {std::pair(1, 0), {5, 3}, {32, 64}}) {
        SCOPED_TRACE(inCount);
        memset(out.Data(), 0xEE, out.Size());
        port->Next({.data = Registers()});
        EXPECT_EQ(0u, Send(0x7E, static_cast<int16_t>(inCount), static_cast<int16_t>(outCount)));
        Bytes expected(196);
        Put16(expected, 0, static_cast<uint16_t>(inCount));
        Put16(expected, 2, static_cast<uint16_t>(outCount));
        memcpy(&expected[4], in.data(), 2u * static_cast<uint32_t>(inCount));
        EXPECT_EQ(expected, port->Last().Data());
        EXPECT_EQ(0xF000104Au, port->Last().Code());
        EXPECT_EQ(196u, port->Last().Envelope().ext.responseLen);
        const size_t written = 2u * static_cast<size_t>(outCount);
        EXPECT_EQ(Part(Registers(), 68, written), Part(Seen(), 0, written));
        EXPECT_TRUE(out.Holds(0xEE, written, 128));
    }
}

TEST_F(MailboxTest, RegistersAreWrittenWhateverTheStatus) {
    const std::pair<Reply, HX_STATUS> rows[] = {
        {{.status = 11, .detailStatus = 0x4005, .data = Registers()}, HXMGT_MAILBOX_FAILED},
        {{.status = 30, .data = Registers()}, HXMGT_TIMED_OUT},
        {{.error = ERROR_IO_DEVICE}, ERROR_IO_DEVICE},
    };
    for (const auto& [reply, status] : rows) {
        memset(out.Data(), 0xEE, out.Size());
        port->Next(reply);
        EXPECT_EQ(status, Send(0x03, 2, 4));
        const Bytes registers =
            status == HXMGT_MAILBOX_FAILED ? Bytes{1, 0, 2, 0, 3, 0, 4, 0} : Bytes(8);
        EXPECT_EQ(registers, Part(Seen(), 0, 8)) << "nothing came: zeros, not what was there";
        EXPECT_TRUE(out.Holds(0xEE, 8, 128));
    }
    EXPECT_TRUE(system.sleeps.empty()) << "only a transceiver write is sent again";
}

TEST_F(MailboxTest, RefusedCommands) {
    const std::set<uint16_t> refused = {0x02, 0x07, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x12,
                                        0x1F, 0x27, 0x30, 0x31, 0x44, 0x45, 0x48, 0x49, 0x4A,
                                        0x50, 0x51, 0x53, 0x54, 0x57, 0x59, 0x5A, 0x60, 0x61,
                                        0x63, 0x64, 0x6B, 0x6D, 0x6E, 0x75, 0x7A, 0x7C, 0x7D};
    port->On(command::Mailbox, Reply{.data = Registers()});
    for (uint32_t code = 0; code <= 0x200; ++code) {
        port->Forget();
        const bool isRefused = refused.contains(static_cast<uint16_t>(code));
        EXPECT_EQ(isRefused ? HXMGT_INVALID_REQUEST : HXMGT_SUCCESS,
                  Send(static_cast<uint16_t>(code), 1, 1))
            << code;
        EXPECT_EQ(isRefused ? 0u : 1u, port->Requests().size()) << code;
    }
    EXPECT_EQ(0u, Send(0x4500, 1, 1)) << "the whole register is the command";
    EXPECT_EQ(0u, Send(0xFFFF, 1, 1));
}

TEST_F(MailboxTest, RegisterCounts) {
    for (const auto& [inCount, outCount] :
         {std::pair(0, 1), {-1, 1}, {33, 1}, {1, -1}, {1, 65}, {0x7FFF, 1}, {1, 0x7FFF}}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER,
                  Send(0x7E, static_cast<int16_t>(inCount), static_cast<int16_t>(outCount)))
            << inCount << ' ' << outCount;
    }
    EXPECT_TRUE(port->Requests().empty());
    EXPECT_TRUE(out.Holds(0xEE));
    port->Next({.data = Registers()});
    EXPECT_EQ(0u, HXMailboxPassthru(handle, 0, in.data(), 1, nullptr, 0));
}

}  // namespace
