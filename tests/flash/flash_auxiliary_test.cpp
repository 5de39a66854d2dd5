// Two-wire devices, companion chip, transceiver firmware, boot from SAN.
#include <algorithm>

#include "machine/flash_driver.h"
#include "support/scratch_file.h"

namespace {

using namespace support;
using flash::TwoWireRecord;

class FlashAuxiliaryTest : public FlashTest {
  protected:
    template <typename Record>
    static Record As(const SentRequest& request) {
        Record record = {};
        const Bytes data = request.Data();
        memcpy(&record, data.data(), std::min(data.size(), sizeof record));
        return record;
    }
};

TEST_F(FlashAuxiliaryTest, TwoWireRead) {
    TwoWireRecord reply = {};
    std::copy_n(Counting(256).begin(), 256, reply.data);
    reply.deviceStatus = 0x1234;
    port->On(command::I2cRead, Reply{.data = BytesOf(reply)});
    for (const uint16_t length : {uint16_t{0}, uint16_t{1}, uint16_t{256}}) {
        GuardedBuffer buffer(length);
        uint16_t status = 0;
        ASSERT_EQ(0u, HXReadSFPData(handle, 0, 0xA2, buffer.Data(), length, 96, 0x2001, &status));
        EXPECT_EQ(0x1234, status);
        EXPECT_EQ(Counting(length), buffer.First(length));
        Bytes expected(266, 0);
        expected[0] = 0xA2;
        memcpy(&expected[2], &length, 2);
        expected[4] = 96, expected[6] = 1, expected[7] = 0x20;
        EXPECT_EQ(expected, port->Last().Data());
    }
    // A mailbox failure brings the device status, not the data.
    port->On(command::I2cRead, Reply{.status = 11, .detailStatus = 0x4005, .data = BytesOf(reply)});
    GuardedBuffer buffer(256);
    uint16_t status = 0;
    EXPECT_EQ(HXMGT_MAILBOX_FAILED,
              HXReadSFPData(handle, 0, 0xA0, buffer.Data(), 256, 0, 0, &status));
    EXPECT_EQ(0x1234, status);
    EXPECT_TRUE(buffer.Holds(0xEE));
    EXPECT_EQ(HXMGT_MAILBOX_FAILED,
              HXReadSFPData(handle, 0, 0xA0, buffer.Data(), 256, 0, 0, nullptr));
    port->Forget();
    for (const uint16_t length : {uint16_t{257}, uint16_t{0xFFFF}}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER,
                  HXReadSFPData(handle, 0, 0xA0, buffer.Data(), length, 0, 0, &status));
    }
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(FlashAuxiliaryTest, TwoWireWrite) {
    TwoWireRecord reply = {};
    reply.deviceStatus = 7;
    port->On(command::I2cWrite, Reply{.data = BytesOf(reply)});
    GuardedBuffer data(256, 0x66);
    uint16_t status = 0;
    ASSERT_EQ(0u, HXWriteSFPData(handle, 0, 0xA2, data.Data(), 256, 0, 0x2000, &status));
    EXPECT_EQ(7, status);
    EXPECT_EQ(0x66, As<TwoWireRecord>(port->Last()).data[255]);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER,
              HXWriteSFPData(handle, 0, 0xA2, data.Data(), 257, 0, 0x2000, &status));
    // Without a data phase neither data nor their length are looked at.
    ASSERT_EQ(0u, HXWriteSFPData(handle, 0, 0xA2, nullptr, 0xFFFF, 0, 0x2001, &status));
    EXPECT_EQ(0xFFFF, As<TwoWireRecord>(port->Last()).length);
    EXPECT_EQ(0, As<TwoWireRecord>(port->Last()).data[0]);
}

TEST_F(FlashAuxiliaryTest, TransceiverMemory) {
    port->On(command::SfpRead, Reply{.data = Counting(512)});
    for (const uint32_t room : {1u, 256u, 511u, 512u, 0xFFFFFFFFu}) {
        const uint32_t read = std::min(room, 512u);
        GuardedBuffer buffer(read);
        uint32_t size = room;
        EXPECT_EQ(0u, HXGetSFPData(handle, 0, buffer.Data(), &size)) << room;
        EXPECT_EQ(read, size);
        EXPECT_EQ(Counting(read), buffer.First(read));
        EXPECT_EQ(Bytes(read, 0), port->Last().Data());
        EXPECT_EQ(read, port->Last().Envelope().ext.responseLen);
    }
    GuardedBuffer buffer(512);
    uint32_t size = 512;
    port->On(command::SfpRead, Reply{.data = Counting(96)});
    EXPECT_EQ(0u, HXGetSFPData(handle, 0, buffer.Data(), &size));
    EXPECT_EQ(96u, size);
    EXPECT_TRUE(buffer.Holds(0xEE, 96, 512));
    port->On(command::SfpRead, Reply{.status = 11, .detailStatus = 0x4005});
    EXPECT_EQ(HXMGT_SFP_DATA_UNAVAILABLE, HXGetSFPData(handle, 0, buffer.Data(), &size));
    EXPECT_EQ(96u, size);
    port->Forget();
    size = 0;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetSFPData(handle, 0, buffer.Data(), &size));
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(FlashAuxiliaryTest, BootFromSan) {
    const std::pair<Reply, HX_STATUS> rows[] = {{{.data = {0}}, 0},
                                                {{.data = {1}}, HXMGT_FLASH_UPDATE_NOT_ACTIVATED},
                                                {{.data = {2}}, 0},
                                                {{.status = 21}, 0x20000112},
                                                {{.error = ERROR_GEN_FAILURE}, 0x20000112}};
    for (const auto& [reply, status] : rows) {
        port->On(command::BootFromSan, reply);
        EXPECT_EQ(status, HXGetBFSInfo(handle));
    }
    EXPECT_EQ(Bytes{0}, port->Last().Data());
}

TEST_F(FlashAuxiliaryTest, TransceiverFirmware) {
    const uint16_t code = command::LoadSfpFirmware.subCode;
    flash::TransceiverLoadReply reply = {};
    port->On({command::LoadSfpFirmware.code, code}, Reply{.data = BytesOf(reply)});
    const Bytes image = Counting(70000);
    ASSERT_EQ(0u, HXLoadSFPFirmware(handle, 0, image.data(), 70000));
    Bytes loaded;
    const auto requests = port->Requests(command::LoadSfpFirmware);
    ASSERT_EQ(3u, requests.size());
    for (uint32_t i = 0; i < 3; ++i) {
        const auto head = As<flash::TransceiverLoadRecord>(requests[i]);
        Bytes expected(32, 0);
        expected[0] = static_cast<uint8_t>((i == 0 ? 1 : 0) | (i == 2 ? 2 : 0));
        const uint32_t numbers[] = {70000, i == 2 ? 4464u : 32768u, i * 32768};
        memcpy(&expected[4], numbers, sizeof numbers);
        const Bytes data = requests[i].Data();
        EXPECT_EQ(32 + head.length, data.size());
        EXPECT_EQ(expected, Bytes(data.begin(), data.begin() + 32));
        EXPECT_EQ(116 + data.size(), requests[i].outputSize);
        loaded.insert(loaded.end(), data.begin() + 32, data.end());
    }
    EXPECT_EQ(image, loaded);
    for (const auto& [result, status] :
         {std::pair<uint32_t, HX_STATUS>{1, HXMGT_SFP_FIRMWARE_INCOMPATIBLE},
          {2, HXMGT_SFP_FIRMWARE_UPDATE_ERROR}}) {
        reply.result = result;
        port->On(command::LoadSfpFirmware, Reply{.data = BytesOf(reply)});
        port->Forget();
        EXPECT_EQ(status, HXLoadSFPFirmware(handle, 0, image.data(), 70000));
        EXPECT_EQ(1u, port->Requests().size());
    }
    // A reply without a result is no acceptance.
    port->On(command::LoadSfpFirmware, Reply{.data = {}});
    EXPECT_EQ(HXMGT_SFP_FIRMWARE_UPDATE_ERROR, HXLoadSFPFirmware(handle, 0, image.data(), 70000));
    port->On(command::LoadSfpFirmware, Reply{.status = 44});
    EXPECT_EQ(HXMGT_SFP_FIRMWARE_UPDATE_ERROR, HXLoadSFPFirmware(handle, 0, image.data(), 1));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXLoadSFPFirmware(handle, 0, image.data(), 0));
}

class CompanionTest : public FlashAuxiliaryTest {
  protected:
    // A request record with data behind it, against a guard page.
    struct Request {
        explicit Request(uint32_t dataBytes) : buffer(sizeof(HX_COMPANION_REQUEST) + dataBytes, 0) {
            *Head() = {.flags = 0x11, .totalSize = 0, .version = 0x77, .capacity = 0};
        }
        HX_COMPANION_REQUEST* Head() {
            return reinterpret_cast<HX_COMPANION_REQUEST*>(buffer.Data());
        }
        uint8_t* Data() { return buffer.Data() + sizeof(HX_COMPANION_REQUEST); }
        GuardedBuffer buffer;
    };
    HX_STATUS Manage(uint32_t operation, Request& request) {
        return HXOrvoMgt(handle, operation, request.Head());
    }
    static transport::Command Operation(uint16_t operation) {
        return {command::AuxiliaryFirmware.code, operation};
    }
};

TEST_F(CompanionTest, ResetAndVersion) {
    ScratchFile trace;
    ASSERT_EQ(0u, HXEnableDebugTrace(&handle, trace.Path().c_str(), 1));
    port->On(Operation(1), Reply{});
    port->On(Operation(2), Reply{.data = {1, 2, 3, 4}});
    Request request(0);
    EXPECT_EQ(0u, Manage(HX_COMPANION_RESET, request));
    EXPECT_EQ((Bytes{0x11, 0, 0, 0}), port->Last().Data());
    EXPECT_EQ(0x77u, request.Head()->version);
    EXPECT_EQ(0u, Manage(HX_COMPANION_VERSION, request));
    EXPECT_EQ(0x04030201u, request.Head()->version);
    port->On(Operation(2), Reply{.status = 21, .data = {9, 9, 9, 9}});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Manage(HX_COMPANION_VERSION, request));
    EXPECT_EQ(0x04030201u, request.Head()->version);
    for (const uint32_t operation : {0u, 5u, 0x10001u}) {
        EXPECT_EQ(HXMGT_INVALID_REQUEST, Manage(operation, request));
    }
    HXEnableDebugTrace(&handle, nullptr, 0);
    const std::string text = trace.Contents();
    EXPECT_TRUE(Has(text, "HXOrvoMgt: Orvo Reset Operation (Flags 11)\n"));
    EXPECT_TRUE(Has(text, "HXOrvoMgt: Return HXMGT_INVALID_REQUEST to caller\n"));
}

TEST_F(CompanionTest, UpdateInSegments) {
    uint32_t exchange = 0xE0;
    port->On(Operation(3), [&](const SentRequest& request) {
        auto head = As<flash::CompanionSegmentRecord>(request);
        head.exchangeAddress = exchange++;
        return Reply{.data = BytesOf(head)};
    });
    for (const uint32_t total : {12u, 3951u, 3952u, 3953u, 7904u, 9000u}) {
        port->Forget();
        exchange = 0xE0;
        Request request(total);
        request.Head()->totalSize = total;
        const Bytes image = Counting(total, 3);
        std::copy(image.begin(), image.end(), request.Data());
        ASSERT_EQ(0u, Manage(HX_COMPANION_UPDATE, request)) << total;
        const auto requests = port->Requests();
        EXPECT_EQ((total + 3951) / 3952, requests.size());
        Bytes sent;
        for (size_t i = 0; i < requests.size(); ++i) {
            const auto head = As<flash::CompanionSegmentRecord>(requests[i]);
            EXPECT_EQ(i + 1 == requests.size() ? 0x4011u : 0x11u, head.flags);
            EXPECT_EQ(1u, head.segmentCount);
            EXPECT_EQ(0x0E0D0C0Bu, head.firmwareVersion);
            EXPECT_EQ(i == 0 ? 0u : 0xE0u, head.exchangeAddress) << "of the first reply";
            EXPECT_EQ(total, head.totalSize);
            EXPECT_EQ(i * 3952, head.offset);
            const Bytes data = requests[i].Data();
            EXPECT_EQ(28 + head.segmentSize, data.size());
            EXPECT_EQ(requests[i].inputSize, requests[i].outputSize);
            sent.insert(sent.end(), data.begin() + 28, data.end());
        }
        EXPECT_EQ(image, sent);
    }
    Request tooShort(11);
    tooShort.Head()->totalSize = 11;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Manage(HX_COMPANION_UPDATE, tooShort));
    Request request(9000);
    request.Head()->totalSize = 9000;
    port->Forget();
    port->Next({});
    port->Next({.status = 22});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, Manage(HX_COMPANION_UPDATE, request));
    EXPECT_EQ(2u, port->Requests().size());
}

TEST_F(CompanionTest, InformationInPieces) {
    uint32_t available = 0;
    uint32_t claimed = 0;  // more than was asked, when not 0
    port->On(Operation(4), [&](const SentRequest& request) {
        auto head = As<flash::CompanionInformationRecord>(request);
        const Bytes all = Counting(available, 9);
        const uint32_t end = std::min(available, head.offset + head.piece);
        head.returned = claimed != 0 ? claimed : end - std::min(end, head.offset);
        head.total = available;
        Reply reply{.data = BytesOf(head)};
        if (head.offset < end) {
            reply.data.insert(reply.data.end(), all.begin() + head.offset, all.begin() + end);
        }
        return reply;
    });
    struct Row {
        uint32_t capacity, available;
        std::vector<uint32_t> pieces;
    };
    const Row rows[] = {
        {0, 0, {0}},
        {100, 60, {100}},
        {100, 200, {100}},
        {32768, 32768, {32768}},
        {32769, 99999, {32768, 1}},
        {99999, 32769, {32768, 1}},
        {99999, 70000, {32768, 32768, 4464}},
        {99999, 0, {32768}},
    };
    for (const Row& row : rows) {
        port->Forget();
        available = row.available;
        Request request(row.capacity);
        request.Head()->capacity = row.capacity;
        ASSERT_EQ(0u, Manage(HX_COMPANION_INFORMATION, request));
        const uint32_t came = std::min(row.capacity, row.available);
        EXPECT_EQ(came, request.Head()->totalSize);
        EXPECT_EQ(Counting(came, 9), Bytes(request.Data(), request.Data() + came));
        std::vector<uint32_t> pieces;
        for (const SentRequest& sent : port->Requests()) {
            pieces.push_back(As<flash::CompanionInformationRecord>(sent).piece);
            EXPECT_EQ(136 + pieces.back(), sent.inputSize);
        }
        EXPECT_EQ(row.pieces, pieces) << row.capacity << " " << row.available;
    }
    // A driver that claims more than it was asked for, or less than it has left.
    Request request(100);
    request.Head()->capacity = 100;
    available = 60;
    claimed = 0xFFFFFFFF;
    ASSERT_EQ(0u, Manage(HX_COMPANION_INFORMATION, request));
    EXPECT_EQ(100u, request.Head()->totalSize);
    port->On(Operation(4), Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Manage(HX_COMPANION_INFORMATION, request));
}

}  // namespace
