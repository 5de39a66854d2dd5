// NVRAM, VPD, transceiver and companion chip of the emulated adapters.
#include "flash/nvram_variables.h"
#include "machine/emulator_flash.h"
#include "model/storage/nvram_content.h"
#include "model/storage/port_eeprom.h"
#include "model/storage/sfp_content.h"
#include "model/storage/sfp_firmware.h"

namespace {

using namespace emulator_test;
namespace variable = vxemu::nvram_variable;

class EmulatorSettings : public EmulatorFlashFixture {
  protected:
    uint8_t ActiveBank(uint32_t port) {
        const Answer answer = Ask(port, ActiveRegions, 37, Bytes(37, '3'));
        EXPECT_EQ(answer.Status(), Success);
        return answer.data.at(2);
    }
    uint16_t Throttle(uint32_t port) {
        return Ask(port, PortPropertiesV2, sizeof(properties::PortReplyV2))
            .As<properties::PortReplyV2>()
            .executionThrottle;
    }
    Bytes Nvram(uint32_t port, uint16_t subCode, uint32_t room) {
        const Answer answer = Ask(port, {NvramRead.code, subCode}, room);
        EXPECT_EQ(answer.Status(), Success);
        return answer.data;
    }
    static Bytes WithThrottle(Bytes block, uint32_t value) {
        flash::SetVariable(block, flash::BlockKind::Extended, variable::kExecutionThrottle, value);
        formats::MakeChecksum(flash::BlockKind::Extended, block);
        return block;
    }
};

uint32_t SumOf(const Bytes& bytes, size_t begin, size_t end) {
    uint32_t sum = 0;
    for (size_t at = begin; at < end; ++at) {
        sum += bytes[at];
    }
    return sum % 256;
}

TEST_F(EmulatorSettings, WrittenBankIsTakenOverByAReload) {
    const Bytes first = ReadRegion(kNewest, 21);
    const Bytes vpd = ReadRegion(kNewest, 20);
    EXPECT_EQ(ActiveBank(kNewest), 1);
    EXPECT_EQ(ReadRegion(kNewest, 269), first) << "delivered with both banks alike";
    EXPECT_EQ(WriteRegion(kNewest, 269, WithThrottle(first, 77)).Status(), Success);
    EXPECT_EQ(Nvram(kNewest, 1, 512), first) << "not in use yet";
    EXPECT_EQ(Throttle(kNewest), 65535);
    EXPECT_EQ(Restart(kNewest, flash::Restart::ReloadNvram), Success);
    EXPECT_EQ(ActiveBank(kNewest), 2);
    EXPECT_EQ(Nvram(kNewest, 1, 512), WithThrottle(first, 77));
    EXPECT_EQ(Throttle(kNewest), 77);
    EXPECT_EQ(ActiveBank(1), 1) << "each port has its own bank";
    EXPECT_EQ(Restart(kNewest, flash::Restart::ReloadNvram), Success);
    EXPECT_EQ(ActiveBank(kNewest), 2) << "nothing to take over";

    // VPD alone: the NVRAM in use goes along to the other bank.
    Bytes changed = vpd;
    changed[5] ^= 0x20;
    EXPECT_EQ(WriteRegion(kNewest, 20, changed).Status(), Success);
    EXPECT_EQ(Ask(kNewest, VpdRead, 512).data, vpd);
    EXPECT_EQ(Ask(kNewest, VpdWrite, 0, changed).Status(), Success);
    EXPECT_EQ(Restart(kNewest, flash::Restart::ReloadNvram), Success);
    EXPECT_EQ(ActiveBank(kNewest), 1);
    EXPECT_EQ(ReadRegion(kNewest, 21), WithThrottle(first, 77));
    EXPECT_EQ(Ask(kNewest, VpdRead, 512).data, changed);

    // A block that does not hold is never taken over.
    Bytes bad = first;
    bad[12] ^= 1;
    EXPECT_EQ(WriteRegion(kNewest, 269, bad).Status(), Success);
    EXPECT_EQ(Restart(kNewest, flash::Restart::ReloadNvram), NvramChecksum);
    EXPECT_EQ(ActiveBank(kNewest), 1);
    EXPECT_EQ(Throttle(kNewest), 77);
    EXPECT_EQ(WriteRegion(kNewest, 269, WithThrottle(first, 78)).Status(), Success);
    Reset(3);
    EXPECT_EQ(Throttle(kNewest), 78) << "a start reads the settings as well";
}

TEST_F(EmulatorSettings, WrongBankIsInUseAfterARestart) {
    const Bytes first = ReadRegion(kNewest, 21);
    const auto wrong = [&](uint32_t times) {
        AddFault({3, RestartFirmware.code, 0, 0, times, FaultKind::WrongBank, 0, 0});
    };
    // It does not switch, or back again: what was written is there and not in use.
    EXPECT_EQ(WriteRegion(kNewest, 269, WithThrottle(first, 77)).Status(), Success);
    wrong(1);
    EXPECT_EQ(Restart(kNewest, flash::Restart::ReloadNvram), Success);
    EXPECT_EQ(ActiveBank(kNewest), 1);
    EXPECT_EQ(Nvram(kNewest, 1, 512), first);
    EXPECT_EQ(Throttle(kNewest), 65535);
    EXPECT_EQ(ReadRegion(kNewest, 269), WithThrottle(first, 77));
    // It switches where nothing was to be taken over.
    wrong(1);
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), Success);
    EXPECT_EQ(ActiveBank(kNewest), 2);
    EXPECT_EQ(Throttle(kNewest), 77);
    EXPECT_EQ(ActiveBank(1), 1);
    AddFault({6, RestartFirmware.code, 0, 0, 0, FaultKind::WrongBank, 0, 0});
    EXPECT_EQ(Restart(kLargeRom, flash::Restart::ReloadNvram), Success);
    EXPECT_EQ(Report(6)->secondBank, 0) << "a chip with one bank";
}

TEST_F(EmulatorSettings, LargeRomPortHasItsBlockInTheFlash) {
    const Bytes block = ReadRegion(kLargeRom, 21);
    EXPECT_EQ(Nvram(kLargeRom, 0, 512), block);
    EXPECT_EQ(Nvram(kLargeRom, 1, 256), Bytes(block.begin(), block.begin() + 256));
    EXPECT_EQ(Ask(kLargeRom, {NvramWrite.code, 0}, 0, block).Status(), InvalidRequest);
    EXPECT_EQ(Ask(kLargeRom, {NvramRead.code, 2}, 512).Status(), UnsupportedSubCode);
    Bytes bad = block;
    bad[100] ^= 1;
    EXPECT_EQ(WriteRegion(kLargeRom, 21, bad).Status(), Success);
    EXPECT_EQ(Ask(kLargeRom, {NvramRead.code, 1}, 512).Status(), NvramChecksum);
    EXPECT_EQ(Nvram(kLargeRom, 0, 512), bad);
    EXPECT_EQ(Ask(kLargeRom, {NvramWrite.code, 2}, 0, bad).Status(), NvramChecksum);
    EXPECT_EQ(WriteRegion(kLargeRom, 21, WithThrottle(block, 3)).Status(), Success);
    EXPECT_EQ(Ask(kLargeRom, {NvramWrite.code, 2}, 0, block).Status(), Success);
}

TEST_F(EmulatorSettings, ClassicPortKeepsItsOwnBlocks) {
    StartClassic();
    const uint32_t port = kLegacy;
    Bytes block = Nvram(port, 0, 256);
    ASSERT_EQ(block.size(), 256u);
    EXPECT_EQ(SumOf(block, 0, 256), 0u);
    EXPECT_EQ(Nvram(port, 1, 256), block);
    EXPECT_EQ(flash::GetVariable(block, flash::BlockKind::Classic, variable::kPortName), 0x21u);
    // The settings alone: the driver makes the checksum.
    Bytes changed = block;
    flash::SetVariable(changed, flash::BlockKind::Classic, variable::kExecutionThrottle, 16);
    changed[0] = 'X';
    changed[200] = 0x77;
    EXPECT_EQ(Ask(port, {NvramWrite.code, 1}, 0, changed).Status(), Success);
    const Bytes after = Nvram(port, 1, 256);
    EXPECT_EQ(after[0], 'K');
    EXPECT_EQ(after[200], block[200]);
    EXPECT_EQ(flash::GetVariable(after, flash::BlockKind::Classic, variable::kExecutionThrottle),
              16u);
    // The whole block as it is.
    EXPECT_EQ(Ask(port, {NvramWrite.code, 0}, 0, changed).Status(), Success);
    EXPECT_EQ(Nvram(port, 0, 256), changed);
    EXPECT_EQ(Ask(port, {NvramRead.code, 1}, 256).Status(), NvramChecksum);
    EXPECT_EQ(Ask(port, {NvramWrite.code, 0}, 0, Bytes(255)).Status(), InvalidParameter);
    EXPECT_EQ(Ask(port, {NvramWrite.code, 2}, 0, block).Status(), Success);
    EXPECT_EQ(Ask(port, {NvramWrite.code, 3}, 0, block).Status(), UnsupportedSubCode);

    const Answer query = Ask(port, VpdRead, 0);
    EXPECT_EQ(query.Status(), BufferTooSmall);
    EXPECT_EQ(+query.envelope.ext.responseLen, 256u);
    Bytes vpd = Ask(port, VpdRead, 256).data;
    ASSERT_EQ(vpd.size(), 256u);
    vpd[100] ^= 1;
    EXPECT_EQ(Ask(port, VpdWrite, 0, vpd).Status(), Success);
    EXPECT_EQ(Ask(port, VpdRead, 256).data, vpd);
    EXPECT_EQ(Ask(port, VpdWrite, 0, Bytes(257)).Status(), InvalidParameter);

    // No memory is a status, not a fault.
    StartClassic();
    host_.failAt = 0;
    EXPECT_EQ(Ask(port, {NvramRead.code, 0}, 256).Status(), InvalidRequest);
}

TEST_F(EmulatorSettings, LegacyDriverHasPlainRequests) {
    const Bytes block = AskPlain(kLegacy, LegacyNvramRead, Bytes(256), 256);
    ASSERT_EQ(block.size(), 256u);
    EXPECT_EQ(SumOf(block, 0, 256), 0u);
    EXPECT_EQ(AskPlain(kLegacy, LegacyNvramRead, Bytes(300), 300).size(), 256u);
    const auto part = [&](flash::LegacyNvramSelector selector, uint32_t size) {
        transport::SelectorRecord record = {};
        record.selector = static_cast<uint32_t>(selector);
        const Bytes reply = AskPlain(kLegacy, LegacyQuery, BytesOf(record), 12 + size);
        return Bytes(reply.begin() + 12, reply.end());
    };
    using flash::LegacyNvramSelector;
    EXPECT_EQ(part(LegacyNvramSelector::Settings, 64),
              Bytes(block.begin() + 6, block.begin() + 70));
    EXPECT_EQ(part(LegacyNvramSelector::Tail, 16), Bytes(block.begin() + 70, block.begin() + 86));
    AskPlain(kLegacy, LegacyNvramWrite64, Bytes(64, 0x31), 0);
    AskPlain(kLegacy, LegacyNvramWrite16, Bytes(16, 0x32), 0);
    Bytes expected = block;
    std::fill_n(expected.begin() + 6, 64, 0x31);
    std::fill_n(expected.begin() + 70, 16, 0x32);
    Bytes found = AskPlain(kLegacy, LegacyNvramRead, Bytes(256), 256);
    EXPECT_EQ(SumOf(found, 0, 256), 0u);
    found.back() = expected.back();
    EXPECT_EQ(found, expected);
    AskPlain(kLegacy, LegacyNvramWrite, block, 256);
    EXPECT_EQ(AskPlain(kLegacy, LegacyNvramRead, Bytes(256), 256), block);
    AskPlain(kLegacy, LegacyNvramWrite64, Bytes(63), 0, Invalid);
    AskPlain(kLegacy, LegacyNvramWrite, {}, 0, Invalid);
    AskPlain(kNewest, LegacyNvramRead, Bytes(256), 256, Invalid);
}

class EmulatorTwoWire : public EmulatorFlashFixture {
  protected:
    Answer Move(Command command, uint16_t device, uint16_t offset, uint16_t length,
                uint16_t options = 0, const Bytes& data = {}, uint32_t port = kNewest) {
        flash::TwoWireRecord record = {};
        record.device = device;
        record.offset = offset;
        record.length = length;
        record.options = options;
        std::copy_n(data.begin(), std::min(data.size(), sizeof record.data), record.data);
        return Ask(port, command, sizeof record, BytesOf(record));
    }
    Bytes Read(uint16_t device, uint16_t offset, uint16_t length, uint16_t options = 0,
               uint32_t port = kNewest) {
        const Answer answer = Move(I2cRead, device, offset, length, options, {}, port);
        EXPECT_EQ(answer.Status(), Success);
        const auto record = answer.As<flash::TwoWireRecord>();
        EXPECT_EQ(+record.deviceStatus, 0);
        return {record.data, record.data + length};
    }
};

TEST_F(EmulatorTwoWire, TransceiverPagesHold) {
    for (const uint32_t port : {0u, 1u, 2u}) {
        const Bytes identity = Read(0xA0, 0, 256, 0, port);
        EXPECT_EQ(SumOf(identity, 0, 63), identity[63]);
        EXPECT_EQ(SumOf(identity, 64, 95), identity[95]);
        EXPECT_EQ(identity[0], 3);
        EXPECT_EQ(std::string(identity.begin() + 20, identity.begin() + 36), "EMULATED OPTICS ");
        const Bytes page = Read(0xA2, 0, 256, 0, port);
        EXPECT_EQ(SumOf(page, 0, 95), page[95]);
        // Every measured value lies within its warning limits.
        for (size_t at = 0; at < 5; ++at) {
            const auto number = [&](size_t place) {
                const int value = page[place] * 256 + page[place + 1];
                return at == 0 && value >= 0x8000 ? value - 0x10000 : value;
            };
            EXPECT_LT(number(96 + 2 * at), number(8 * at + 4)) << at;
            EXPECT_GT(number(96 + 2 * at), number(8 * at + 6)) << at;
            EXPECT_GT(number(8 * at), number(8 * at + 4)) << at;
            EXPECT_LT(number(8 * at + 2), number(8 * at + 6)) << at;
        }
        EXPECT_EQ(page[110], 0);
    }
    const Bytes both = Ask(kNewest, SfpRead, 512, Bytes(512)).data;
    ASSERT_EQ(both.size(), 512u);
    EXPECT_EQ(Bytes(both.begin(), both.begin() + 256), Read(0xA0, 0, 256));
    EXPECT_EQ(Bytes(both.begin() + 256, both.begin() + 352), Read(0xA2, 0, 96));
    EXPECT_EQ(Ask(kNewest, SfpRead, 96, Bytes(96)).data, Bytes(both.begin(), both.begin() + 96));
    EXPECT_NE(Read(0xA0, 68, 16), Read(0xA0, 68, 16, 0, 1)) << "serial numbers";
    EXPECT_NE(Read(0xA2, 96, 10), Read(0xA2, 96, 10)) << "values move";
    Link(3, 0);
    const Bytes dark = Read(0xA2, 96, 22);
    EXPECT_EQ(dark[8] * 256 + dark[9], 1) << "no light";
    EXPECT_EQ(dark[14], 0x02) << "loss of signal";
    EXPECT_EQ(dark[17], 0x40) << "alarm";
}

// Rates of Fibre Channel links in units of 100 MBd, or of 250 MBd behind 255 (SFF-8472).
TEST(EmulatorTransceiver, NominalRate) {
    struct Row {
        uint8_t speed, nominal, beyond;
    };
    for (const Row& row : {Row{HX_SPEED_1GBIT, 11, 0},
                           {HX_SPEED_2GBIT, 21, 0},
                           {HX_SPEED_4GBIT, 43, 0},
                           {HX_SPEED_8GBIT, 85, 0},
                           {HX_SPEED_16GBIT, 140, 0},
                           {HX_SPEED_32GBIT, 255, 112},
                           {HX_SPEED_64GBIT, 255, 116},
                           {HX_SPEED_UNKNOWN, 140, 0}}) {
        vxemu::PortProfile port{};
        port.supportedSpeeds = row.speed;
        formats::SfpIdentity identity;
        vxemu::FillTransceiver(vxemu::AdapterProfile{}, port, identity);
        EXPECT_EQ(row.nominal, identity.nominalRate) << int{row.speed};
        EXPECT_EQ(row.beyond, identity.maxRate) << int{row.speed};
    }
}

TEST_F(EmulatorTwoWire, OnlyWhatIsThereIsMoved) {
    struct Row {
        uint16_t device, offset, length, options;
        uint32_t detail;
    };
    const Row rows[] = {{0xA4, 0, 1, 0, 0x4002},           {0xE0, 0, 1, 0, 0x4002},
                        {0xA2, 0, 1, 0x2000, 0x4002},      {0xA0, 0, 257, 0, 0x4006},
                        {0xA0, 256, 1, 0, 0x4006},         {0xA0, 255, 2, 0, 0x4006},
                        {0xA0, 0xFFFF, 0xFFFF, 0, 0x4006}, {0xA0, 2047, 2, 0x2000, 0x4006}};
    for (const Row& row : rows) {
        for (const Command command : {I2cRead, I2cWrite}) {
            const Answer answer = Move(command, row.device, row.offset, row.length, row.options);
            EXPECT_EQ(answer.Status(), MailboxFailed) << row.device;
            EXPECT_EQ(+answer.envelope.ext.detailStatus, row.detail) << row.device;
        }
    }
    EXPECT_EQ(Read(0xA0, 256, 0).size(), 0u);
    const Bytes before = Read(0xA0, 0, 256);
    EXPECT_EQ(Move(I2cWrite, 0xA0, 0, 1, 0, {0xFF}).Status(), MailboxFailed);
    EXPECT_EQ(Read(0xA0, 0, 256), before) << "identity is read-only";
    EXPECT_EQ(Move(I2cWrite, 0xA2, 128, 3, 0, {1, 2, 3}).Status(), Success);
    EXPECT_EQ(Move(I2cWrite, 0xA2, 129, 3, 1, {9, 9, 9}).Status(), Success);
    EXPECT_EQ(Read(0xA2, 128, 4), (Bytes{1, 2, 3, 0})) << "no data phase, nothing written";
    EXPECT_EQ(Read(0xA2, 128, 3, 0, 1), (Bytes{0, 0, 0})) << "the other port's own";
    // Version records, and the byte that has them read.
    const Bytes record = Read(0xA0, 0x0472, 36, 0x2000);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(record.data())),
              "V:3.61,D:00000000,A:Y,T:B");
    EXPECT_EQ(Read(0xE0, 0, 1, 0x2001), Bytes{0x10});
    EXPECT_EQ(Move(I2cWrite, 0xE0, 0, 1, 0x2000, {0x00}).Status(), Success);
    EXPECT_EQ(Read(0xE0, 0, 1, 0x2001), Bytes{0x00});
    EXPECT_EQ(Ask(kNewest, I2cRead, 266, Bytes(265)).Status(), InvalidParameter);
}

TEST_F(EmulatorTwoWire, FirmwareForTheTransceiver) {
    vxemu::TransceiverFirmwareHead head = {};
    std::memcpy(head.mark, vxemu::kTransceiverMark, sizeof head.mark);
    head.type[0] = 3;
    head.type[1] = 7;
    std::memcpy(head.revision, "2.10", 4);
    const auto make = [&](size_t bytes) {
        Bytes image(bytes, 0x3C);
        head.crc = formats::Crc32(std::span(image).subspan(sizeof head));
        std::memcpy(image.data(), &head, sizeof head);
        return image;
    };
    const auto piece = [&](uint32_t flags, uint32_t size, uint32_t offset, uint32_t length,
                           Bytes data) {
        const flash::TransceiverLoadRecord record = {flags, size, length, offset, {}};
        const Bytes bytes = BytesOf(record);
        data.insert(data.begin(), bytes.begin(), bytes.end());
        return Ask(kNewest, LoadSfpFirmware, sizeof(flash::TransceiverLoadReply), data);
    };
    // Loads an image in pieces; the last result.
    const auto load = [&](const Bytes& bytes) {
        const auto size = static_cast<uint32_t>(bytes.size());
        uint32_t result = 0;
        for (uint32_t at = 0; at < size && result == 0; at += 32768) {
            const uint32_t length = std::min(32768u, size - at);
            const uint32_t flags = (at == 0 ? 1u : 0u) | (at + length == size ? 2u : 0u);
            const Answer answer =
                piece(flags, size, at, length, {bytes.begin() + at, bytes.begin() + at + length});
            EXPECT_EQ(answer.Status(), Success);
            result = answer.As<flash::TransceiverLoadReply>().result;
        }
        return result;
    };
    Bytes image = make(40'000);
    image.back() ^= 1;
    EXPECT_EQ(load(image), 2u) << "damaged";
    EXPECT_EQ(Read(0xA0, 56, 4), (Bytes{'1', '.', '0', '0'}));
    image.back() ^= 1;
    image[8] = 4;
    EXPECT_EQ(load(image), 1u) << "for another transceiver";
    EXPECT_EQ(load({1, 2, 3}), 1u);
    image[8] = 3;
    EXPECT_EQ(load(image), 0u);
    const Bytes identity = Read(0xA0, 0, 96);
    EXPECT_EQ(Bytes(identity.begin() + 56, identity.begin() + 60), (Bytes{'2', '.', '1', '0'}));
    EXPECT_EQ(SumOf(identity, 0, 63), identity[63]);
    EXPECT_EQ(load(make(sizeof head)), 0u);
    // Pieces without a beginning, out of order, or that end too early.
    const auto resultOf = [](const Answer& answer) {
        return answer.As<flash::TransceiverLoadReply>().result;
    };
    EXPECT_EQ(resultOf(piece(2, 100, 50, 50, Bytes(50))), 2u);
    const Bytes whole = make(100);
    EXPECT_EQ(resultOf(piece(1, 100, 0, 50, {whole.begin(), whole.begin() + 50})), 0u);
    EXPECT_EQ(resultOf(piece(2, 100, 51, 49, Bytes(49))), 2u);
    EXPECT_EQ(resultOf(piece(3, 100, 0, 50, {whole.begin(), whole.begin() + 50})), 2u);
    // Lengths that the request does not have.
    EXPECT_EQ(piece(1, 0xFFFFFFFF, 0, 50, Bytes(50)).Status(), InvalidParameter);
    EXPECT_EQ(piece(1, 100, 0, 51, Bytes(50)).Status(), InvalidParameter);
    EXPECT_EQ(piece(1, 100, 0, 0, Bytes(50)).Status(), InvalidParameter);
}

TEST_F(EmulatorTwoWire, CompanionChip) {
    const auto operation = [](uint16_t number) { return Command{AuxiliaryFirmware.code, number}; };
    const auto version = [&] { return Ask(kNewest, operation(2), 4, Bytes(4)).As<uint32_t>(); };
    const uint32_t delivered = version();
    const auto segment = [&](uint32_t offset, uint32_t size, uint32_t total, uint32_t address,
                             bool last) {
        const flash::CompanionSegmentRecord record = {
            last ? flash::kCompanionLastSegment : 0, 1, 0x00020500, address, total, size, offset};
        Bytes input = BytesOf(record);
        input.resize(input.size() + size);
        const Answer answer =
            Ask(kNewest, operation(3), static_cast<uint32_t>(input.size()), input);
        flash::CompanionSegmentRecord reply = {};
        if (answer.data.size() >= sizeof reply) {
            std::memcpy(&reply, answer.data.data(), sizeof reply);
        }
        return std::pair{answer.Status(), uint32_t{reply.exchangeAddress}};
    };
    const auto [status, address] = segment(0, 3952, 5000, 0, false);
    EXPECT_EQ(status, Success);
    EXPECT_NE(address, 0u);
    EXPECT_EQ(segment(3952, 1048, 5000, address + 1, true).first, InvalidParameter);
    EXPECT_EQ(segment(3952, 1048, 5000, address, true).first, InvalidParameter)
        << "the update is over";
    EXPECT_EQ(segment(0, 3952, 5000, 0, false).first, Success);
    EXPECT_EQ(segment(3952, 1048, 5000, address, true).first, Success);
    EXPECT_EQ(version(), delivered) << "until its reset";
    EXPECT_EQ(Ask(kNewest, operation(1), 4, Bytes(4)).Status(), Success);
    EXPECT_EQ(version(), 0x00020500u);

    Bytes information;
    flash::CompanionInformationRecord record = {0, 65536, 32768, 0, 0};
    do {
        record.offset = static_cast<uint32_t>(information.size());
        Bytes input = BytesOf(record);
        const Answer answer = Ask(kNewest, operation(4), sizeof record + 32768, input);
        ASSERT_EQ(answer.Status(), Success);
        std::memcpy(&record, answer.data.data(), sizeof record);
        ASSERT_EQ(answer.data.size(), sizeof record + record.returned);
        information.insert(information.end(), answer.data.begin() + sizeof record,
                           answer.data.end());
    } while (record.returned == 32768);
    EXPECT_EQ(information.size(), record.total);
    record.offset = record.total + 1;
    EXPECT_EQ(Ask(kNewest, operation(4), 1000, BytesOf(record)).Status(), InvalidParameter);
    EXPECT_EQ(Ask(kNewest, operation(5), 4, Bytes(4)).Status(), UnsupportedSubCode);
    EXPECT_EQ(Ask(kLargeRom, operation(2), 4, Bytes(4)).Status(), InvalidRequest);
}

}  // namespace
