// The emulated adapters: exact replies, events, faults and hostile requests. Every request lies in
// a heap block of exactly its size, so that a sanitizer sees any byte touched beyond it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "model/control.h"
#include "model/event_codes.h"
#include "model/model.h"
#include "model/profile_fields.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"
#include "transport/ext_ioctl.h"

namespace {

using transport::Command;
using transport::DriverStatus;
using transport::ExtRequest;
using transport::SrbIoControl;
using vxemu::Completion;
using vxemu::FaultKind;
using vxemu::FaultRule;
using vxemu::kAnyCode;
using vxemu::kAnyPort;
using vxemu::kAnySubCode;
namespace command = transport::command;

// Ports of the lab profile by their index, which is also the order of their SCSI ports.
constexpr uint32_t kNewest = 0;  // SCSI port 3
constexpr uint32_t kLargeRom = 2;
constexpr uint32_t kLegacy = 3;

struct TestHost {
    int blocks = 0;
    int failAt = -1;  // the allocation that finds no memory
    uint64_t clock = 1000;

    vxemu::Host Get() {
        return {this,
                [](void* context, size_t bytes) -> void* {
                    auto* host = static_cast<TestHost*>(context);
                    if (host->failAt-- == 0) {
                        return nullptr;
                    }
                    ++host->blocks;
                    return std::calloc(1, bytes);
                },
                [](void* context, void* block) {
                    --static_cast<TestHost*>(context)->blocks;
                    std::free(block);
                },
                [](void* context) { return static_cast<TestHost*>(context)->clock; }};
    }
};

std::unique_ptr<vxemu::Profile> MakeProfile(const char* name) {
    auto profile = std::make_unique<vxemu::Profile>();
    EXPECT_TRUE(vxemu::FillBuiltInProfile(name, *profile));
    return profile;
}

// What came back from an extended request.
struct Answer {
    Completion completion = Completion::Done;
    uint32_t returned = 0;
    uint32_t delay = 0;
    ExtRequest envelope = {};
    std::vector<uint8_t> data;  // the bytes handed back behind the envelope

    DriverStatus Status() const { return static_cast<DriverStatus>(envelope.ext.status); }

    template <typename Record>
    Record As() const {
        Record record = {};
        EXPECT_EQ(data.size(), sizeof record);
        std::memcpy(&record, data.data(), std::min(data.size(), sizeof record));
        return record;
    }
};

ExtRequest Envelope(Command command, uint32_t input, uint32_t output) {
    ExtRequest request = {};
    request.srb.headerLength = transport::kHeaderLength;
    std::memcpy(request.srb.signature, transport::kSignature, sizeof transport::kSignature);
    request.srb.timeout = transport::kTimeoutSeconds;
    request.srb.controlCode = command.code;
    request.srb.length = transport::kExtIoctlLength + std::max(input, output);
    std::memcpy(request.ext.signature, transport::kSignature, sizeof transport::kSignature);
    request.ext.levelAndVersion = transport::kInterfaceLevelAndVersion;
    request.ext.subCode = command.subCode;
    request.ext.requestLen = input;
    request.ext.responseLen = output;
    return request;
}

class EmulatorModel : public testing::Test {
  protected:
    void SetUp() override { Start("lab"); }
    void TearDown() override {
        vxemu::Model::Destroy(model_);
        EXPECT_EQ(host_.blocks, 0) << "memory that was never released";
    }

    void Start(const char* profile) {
        vxemu::Model::Destroy(model_);
        model_ = vxemu::Model::Create(host_.Get(), *MakeProfile(profile));
        ASSERT_NE(model_, nullptr);
    }

    // Sends an envelope with input bytes, as the library does: one buffer, output length included.
    Answer Send(uint32_t port, const ExtRequest& request, const std::vector<uint8_t>& input,
                uint32_t outputLength) {
        const auto inputLength = static_cast<uint32_t>(sizeof request + input.size());
        const uint32_t length = std::max(inputLength, outputLength);
        const auto buffer = std::make_unique<uint8_t[]>(length);
        std::memset(buffer.get(), 0xEE, length);
        std::memcpy(buffer.get(), &request, sizeof request);
        std::copy(input.begin(), input.end(), buffer.get() + sizeof request);
        Answer answer;
        answer.completion = model_->Request(port, buffer.get(), inputLength, outputLength,
                                            &answer.returned, &answer.delay);
        EXPECT_LE(answer.returned, outputLength);
        if (answer.completion == Completion::Done) {
            EXPECT_GE(answer.returned, sizeof answer.envelope);
            std::memcpy(&answer.envelope, buffer.get(), sizeof answer.envelope);
            answer.data.assign(buffer.get() + sizeof request, buffer.get() + answer.returned);
        } else {
            EXPECT_EQ(answer.returned, 0u);
        }
        return answer;
    }

    Answer Ask(uint32_t port, Command command, uint32_t output, std::vector<uint8_t> input = {}) {
        const auto inputLength = static_cast<uint32_t>(input.size());
        return Send(port, Envelope(command, inputLength, output), input,
                    static_cast<uint32_t>(sizeof(ExtRequest)) + std::max(inputLength, output));
    }

    // A plain request; the reply data, or nothing when it did not complete as expected.
    std::vector<uint8_t> AskPlain(uint32_t port, uint32_t code, std::vector<uint8_t> input,
                                  uint32_t output, Completion expected = Completion::Done) {
        SrbIoControl srb = Envelope({code, 0}, 0, 0).srb;
        srb.length = std::max(static_cast<uint32_t>(input.size()), output);
        const auto inputLength = static_cast<uint32_t>(sizeof srb + input.size());
        const auto outputLength = static_cast<uint32_t>(sizeof srb + output);
        const auto buffer = std::make_unique<uint8_t[]>(std::max(inputLength, outputLength));
        std::memcpy(buffer.get(), &srb, sizeof srb);
        std::copy(input.begin(), input.end(), buffer.get() + sizeof srb);
        uint32_t returned = 0;
        EXPECT_EQ(model_->Request(port, buffer.get(), inputLength, outputLength, &returned),
                  expected);
        if (expected != Completion::Done) {
            return {};
        }
        return {buffer.get() + sizeof srb, buffer.get() + returned};
    }

    template <typename Reply>
    Reply AskLegacy(properties::LegacySelector selector) {
        std::vector<uint8_t> input(sizeof(transport::SelectorRecord));
        transport::SelectorRecord record = {};
        record.option = transport::kSelectorOption;
        record.selector = static_cast<uint32_t>(selector);
        std::memcpy(input.data(), &record, sizeof record);
        const std::vector<uint8_t> data =
            AskPlain(kLegacy, command::LegacyQuery, input, sizeof(Reply));
        Reply reply = {};
        EXPECT_EQ(data.size(), sizeof reply);
        std::memcpy(&reply, data.data(), std::min(data.size(), sizeof reply));
        EXPECT_EQ(std::memcmp(&reply, &record, sizeof record), 0) << "selector not echoed";
        return reply;
    }

    template <typename Record>
    Completion Control(uint32_t code, const Record& record, uint32_t* count = nullptr) {
        uint8_t buffer[std::max(sizeof record, sizeof(vxemu::CountReply))];
        std::memcpy(buffer, &record, sizeof record);
        uint32_t returned = 0;
        const Completion completion =
            model_->Control(code, buffer, sizeof record, sizeof(vxemu::CountReply), &returned);
        if (count != nullptr) {
            EXPECT_EQ(returned, sizeof(vxemu::CountReply));
            std::memcpy(count, buffer, sizeof *count);
        }
        return completion;
    }

    uint32_t AddFault(const FaultRule& rule) {
        uint32_t id = 0;
        EXPECT_EQ(Control(vxemu::control::kFaultAdd, rule, &id), Completion::Done);
        return id;
    }

    void Delivery(uint32_t port, bool on) {
        const uint8_t byte = on ? 0xFF : 0;
        const Answer answer =
            Ask(port, command::EventDelivery, 0, {byte, byte, byte, byte, 0, 0, 0, 0});
        ASSERT_EQ(answer.Status(), DriverStatus::Success);
    }

    std::vector<uint32_t> FetchCodes(uint32_t port, uint32_t bytes = 512) {
        const Answer answer = Ask(port, command::FetchEvents, bytes);
        EXPECT_EQ(answer.Status(), DriverStatus::Success);
        std::vector<uint32_t> codes(answer.data.size() / sizeof(properties::DriverEvent));
        for (size_t at = 0; at < codes.size(); ++at) {
            std::memcpy(&codes[at], &answer.data[at * sizeof(properties::DriverEvent)],
                        sizeof codes[at]);
        }
        return codes;
    }

    vxemu::StatusReply Status() {
        auto reply = std::make_unique<vxemu::StatusReply>();
        uint32_t returned = 0;
        EXPECT_EQ(model_->Control(vxemu::control::kStatus, reinterpret_cast<uint8_t*>(reply.get()),
                                  0, sizeof *reply, &returned),
                  Completion::Done);
        EXPECT_EQ(returned, sizeof *reply);
        return *reply;
    }

    TestHost host_;
    vxemu::Model* model_ = nullptr;
};

TEST_F(EmulatorModel, LabAndFullHaveTheirPorts) {
    EXPECT_EQ(model_->PortCount(), 4u);
    const uint32_t expected[] = {3, 4, 6, 9};
    for (uint32_t port = 0; port < 4; ++port) {
        EXPECT_EQ(model_->ScsiPortNumber(port), expected[port]);
    }
    EXPECT_STREQ(model_->DriverName(kNewest), "vxfc2");
    EXPECT_STREQ(model_->DriverName(kLegacy), "vxfc1");
    EXPECT_STREQ(model_->DriverName(4), "");

    Start("full");
    EXPECT_EQ(model_->PortCount(), 63u);
    for (uint32_t port = 0; port < 63; ++port) {
        EXPECT_EQ(model_->ScsiPortNumber(port), port);
        EXPECT_EQ(Ask(port, command::NodeProperties, 696).Status(), DriverStatus::Success);
    }
}

TEST_F(EmulatorModel, NodeReply) {
    const Answer answer = Ask(kNewest, command::NodeProperties, sizeof(properties::NodeReply));
    EXPECT_EQ(answer.Status(), DriverStatus::Success);
    EXPECT_EQ(answer.envelope.ext.responseLen, 696u);
    EXPECT_EQ(answer.returned, 116u + 696u);
    const auto node = answer.As<properties::NodeReply>();
    EXPECT_STREQ(node.manufacturerAndSerial, "Tarnel, Inc.-EMU7740A0001");
    EXPECT_STREQ(node.modelDescription, "Emulated 7740");
    EXPECT_STREQ(node.driverVersion, "9.04.02.20");
    EXPECT_STREQ(node.firmwareVersion, "9.12.01");
    EXPECT_EQ(node.flags & 16, 16u);
    EXPECT_EQ(node.numberOfPorts, 1);
    const uint8_t name[] = {0x20, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x01, 0x00};
    EXPECT_EQ(std::memcmp(node.nodeName, name, sizeof name), 0);
    // Made from the bytes as 'A' + value / 100000 and five digits: E00001.
    const uint32_t serial =
        node.serialBytes[0] * 65536u + node.serialBytes[2] * 256u + node.serialBytes[1];
    EXPECT_EQ(serial, 400001u);

    // An adapter whose serial is not a text leaves the field empty, and a legacy driver answers
    // the probe all the same.
    const Answer legacy = Ask(kLegacy, command::NodeProperties, 696);
    EXPECT_EQ(legacy.As<properties::NodeReply>().manufacturerAndSerial[0], 0);
    EXPECT_STREQ(legacy.As<properties::NodeReply>().driverVersion, "7.04.11");

    // With input, as the vendor attribute query sends it: the input changes nothing.
    const Answer again =
        Ask(kNewest, command::NodeProperties, 696, std::vector<uint8_t>(696, 0xA5));
    EXPECT_EQ(again.data, answer.data);
}

TEST_F(EmulatorModel, ChipDriverAndFirmwareReplies) {
    const auto chip = Ask(1, command::ChipProperties, 80).As<properties::ChipReply>();
    EXPECT_EQ(chip.vendorId, properties::kVendorId);
    EXPECT_EQ(chip.deviceId, 0x7740);
    EXPECT_EQ(chip.classWord, 0x0C04);
    EXPECT_EQ(chip.functionBits, 1 << 5);
    EXPECT_EQ(chip.busLocation, 256u);

    const auto driver =
        Ask(kLargeRom, command::DriverProperties, 200).As<properties::DriverReply>();
    EXPECT_STREQ(driver.version, "8.02.03 build 2");
    EXPECT_EQ(std::memcmp(driver.buildText, "emulated\0\0\0\0\0\0\0\0", 16), 0);

    const auto firmware =
        Ask(kLargeRom, command::FirmwareProperties, 200).As<properties::FirmwareReply>();
    EXPECT_STREQ(firmware.version, "8.01.02");
    EXPECT_EQ(firmware.attributes, firmware.activationAttributes);
}

TEST_F(EmulatorModel, PortRepliesFollowTheLink) {
    const auto up = Ask(kNewest, command::PortPropertiesV2, 108).As<properties::PortReplyV2>();
    EXPECT_EQ(up.base.portName[0], 0x21);
    EXPECT_EQ(up.base.state, 0);
    EXPECT_EQ(up.base.topology, 4);
    EXPECT_EQ(up.base.currentSpeed, 50);
    EXPECT_EQ(up.base.portId[0], 1);
    EXPECT_EQ(up.base.discoveredDevices, 4);
    EXPECT_EQ(up.protocolFlags, 0x06);
    const auto first = Ask(kNewest, command::PortProperties, 56).As<properties::PortReply>();
    EXPECT_EQ(std::memcmp(&first.base, &up.base, sizeof up.base), 0);

    EXPECT_EQ(Control(vxemu::control::kSetLink, vxemu::LinkRequest{3, 0}), Completion::Done);
    const auto down = Ask(kNewest, command::PortPropertiesV2, 108).As<properties::PortReplyV2>();
    EXPECT_EQ(down.base.state, 2);
    EXPECT_EQ(down.base.currentSpeed, 0);
    EXPECT_EQ(down.base.supportedSpeeds, 50);
    EXPECT_EQ(down.base.portId[0] | down.base.portId[1] | down.base.portId[2], 0);
    EXPECT_EQ(down.base.discoveredDevices, 0);
    // The other port of the adapter is not concerned.
    EXPECT_EQ(Ask(1, command::PortProperties, 56).As<properties::PortReply>().base.state, 0);

    EXPECT_EQ(Ask(kLargeRom, command::PortPropertiesV2, 108).Status(),
              DriverStatus::UnsupportedSubCode);
}

TEST_F(EmulatorModel, PortDisableInfoNeedsItsByte) {
    EXPECT_EQ(Ask(kNewest, command::PortDisableInfo, 1, {0}).data, std::vector<uint8_t>{0});
    vxemu::FieldRequest field = {3, "port_disabled", 1, {1}};
    EXPECT_EQ(Control(vxemu::control::kSetField, field), Completion::Done);
    EXPECT_EQ(Ask(kNewest, command::PortDisableInfo, 1, {0}).data, std::vector<uint8_t>{1});
    EXPECT_EQ(Ask(kNewest, command::PortDisableInfo, 1).Status(), DriverStatus::InvalidParameter);
}

TEST_F(EmulatorModel, LegacyReplies) {
    using properties::LegacySelector;
    const auto adapter =
        AskLegacy<properties::LegacyAdapterReply>(LegacySelector::AdapterInformation);
    EXPECT_EQ(adapter.firmwareVersion[0], 3);
    EXPECT_EQ(adapter.firmwareVersion[1], 3);
    EXPECT_EQ(adapter.firmwareVersion[2], 25);
    EXPECT_EQ(std::memcmp(adapter.optionRomVersion, "1.54", 4), 0);
    EXPECT_EQ(adapter.portId[1], 3);

    const auto chip = AskLegacy<properties::LegacyChipReply>(LegacySelector::ChipIdentity);
    EXPECT_EQ(chip.deviceId, 0x7200);
    EXPECT_EQ(chip.classWord, 0x0C04);

    // Four devices and a stale one, which keeps its place but not its valid bit.
    const auto list = std::make_unique<properties::LegacyTargetListReply>(
        AskLegacy<properties::LegacyTargetListReply>(LegacySelector::TargetList));
    ASSERT_EQ(list->count, 5);
    for (uint32_t at = 0; at < list->count; ++at) {
        EXPECT_EQ(list->entries[at].loopId & properties::kLegacyTargetValid, at < 4 ? 1 : 0);
        EXPECT_EQ(list->entries[at].portName[7], at + 1);
    }
    EXPECT_EQ(list->entries[5].portName[0], 0);

    EXPECT_GE(AskLegacy<properties::LegacyLinkReply>(LegacySelector::LinkValue).linkValue, 0x8000);
    EXPECT_EQ(Control(vxemu::control::kSetLink, vxemu::LinkRequest{9, 0}), Completion::Done);
    EXPECT_LT(AskLegacy<properties::LegacyLinkReply>(LegacySelector::LinkValue).linkValue, 0x8000);

    const std::vector<uint8_t> record = AskPlain(kLegacy, command::LegacyPortAndNode, {}, 64);
    ASSERT_EQ(record.size(), 64u);
    EXPECT_EQ(record[12], 0x21);
    EXPECT_EQ(record[20], 2 << 4);
}

TEST_F(EmulatorModel, WhatADriverDoesNotKnow) {
    const std::vector<uint8_t> selector(12, 0);
    // Plain requests: no status, so the transfer fails.
    AskPlain(kLegacy, command::LegacyQuery, selector, 36, Completion::Invalid);
    AskPlain(kLegacy, command::LegacyQuery, {}, 36, Completion::Invalid);
    AskPlain(kLegacy, command::LegacyNvramRead, selector, 12, Completion::Invalid);
    AskPlain(kNewest, command::LegacyPortAndNode, {}, 64, Completion::Invalid);
    AskPlain(kLegacy, command::LegacyPortAndNode, {}, 63, Completion::ShortBuffer);

    struct Case {
        uint32_t port;
        Command command;
        DriverStatus status;
    };
    const Case cases[] = {
        {kNewest, {0xF0001001, 77}, DriverStatus::UnsupportedSubCode},
        {kNewest, {0xF0001FFF, 0}, DriverStatus::InvalidRequest},
        {kNewest, {0, 0}, DriverStatus::InvalidRequest},
        {kLegacy, command::PortProperties, DriverStatus::InvalidRequest},
        {kLegacy, command::EventDelivery, DriverStatus::InvalidRequest},
    };
    for (const Case& test : cases) {
        const Answer answer = Ask(test.port, test.command, 64);
        EXPECT_EQ(answer.Status(), test.status) << std::hex << test.command.code;
        EXPECT_EQ(answer.envelope.ext.responseLen, 0u);
        EXPECT_EQ(answer.returned, 116u);
    }
    for (const Command& known :
         {command::NodeProperties, command::DriverProperties, command::ChipProperties}) {
        EXPECT_EQ(Ask(kLegacy, known, 696).Status(), DriverStatus::Success);
    }
}

TEST_F(EmulatorModel, ReplyThatDoesNotFit) {
    const Answer whole = Ask(kNewest, command::NodeProperties, 696);
    // Refused room, given buffer: the smaller of the two counts.
    ExtRequest request = Envelope(command::NodeProperties, 0, 100);
    const Answer small = Send(kNewest, request, {}, 116 + 100);
    EXPECT_EQ(small.Status(), DriverStatus::BufferTooSmall);
    EXPECT_EQ(small.envelope.ext.responseLen, 696u);
    EXPECT_EQ(small.returned, 216u);
    EXPECT_TRUE(std::equal(small.data.begin(), small.data.end(), whole.data.begin()));

    request = Envelope(command::NodeProperties, 0, 100);
    request.ext.responseLen = 0xFFFFFFFF;
    const Answer lying = Send(kNewest, request, {}, 116 + 100);
    EXPECT_EQ(lying.Status(), DriverStatus::BufferTooSmall);
    EXPECT_EQ(lying.data, small.data);

    const Answer none = Ask(kNewest, command::NodeProperties, 0);
    EXPECT_EQ(none.Status(), DriverStatus::BufferTooSmall);
    EXPECT_EQ(none.returned, 116u);

    const Answer roomy = Ask(kNewest, command::NodeProperties, 1000);
    EXPECT_EQ(roomy.Status(), DriverStatus::Success);
    EXPECT_EQ(roomy.envelope.ext.responseLen, 696u);
    EXPECT_EQ(roomy.data, whole.data);
}

TEST_F(EmulatorModel, EnvelopesThatLie) {
    const ExtRequest good = Envelope(command::NodeProperties, 0, 80);
    auto expect = [&](const char* what, Completion completion, auto change) {
        ExtRequest request = good;
        change(request);
        EXPECT_EQ(Send(kNewest, request, {}, 196).completion, completion) << what;
    };
    expect("unchanged", Completion::Done, [](ExtRequest&) {});
    expect("SRB signature", Completion::Invalid, [](ExtRequest& r) { r.srb.signature[7] = 1; });
    expect("header length", Completion::ShortBuffer,
           [](ExtRequest& r) { r.srb.headerLength = 29; });
    expect("one byte too long", Completion::ShortBuffer, [](ExtRequest& r) { ++r.srb.length; });
    expect("longest length", Completion::ShortBuffer, [](ExtRequest& r) { r.srb.length = ~0u; });
    expect("length without body", Completion::ShortBuffer,
           [](ExtRequest& r) { r.srb.length = 87; });
    expect("body signature", Completion::Invalid, [](ExtRequest& r) { r.ext.signature[0] = 'z'; });
    EXPECT_EQ(model_->Request(99, nullptr, 0, 0, std::make_unique<uint32_t>().get()),
              Completion::NoDevice);

    ExtRequest version = good;
    version.ext.levelAndVersion = 0x00060001;
    EXPECT_EQ(Send(kNewest, version, {}, 196).Status(), DriverStatus::UnsupportedVersion);

    // The discovery probe leaves signature and version empty, and is the only one that may.
    for (const auto& [command, completion] :
         {std::pair{command::DriverProperties, Completion::Done},
          std::pair{command::FirmwareProperties, Completion::Invalid}}) {
        ExtRequest probe = Envelope(command, 0, 200);
        std::memset(probe.ext.signature, 0, sizeof probe.ext.signature);
        probe.ext.levelAndVersion = 0;
        EXPECT_EQ(Send(kNewest, probe, {}, 316).completion, completion);
    }
}

// Every pair of lengths around the header sizes, and random bytes behind a plausible header.
TEST_F(EmulatorModel, SurvivesAnyRequest) {
    Delivery(kNewest, true);
    uint32_t seed = 1;
    auto random = [&seed] { return seed = seed * 1664525u + 1013904223u; };
    const Command commands[] = {command::NodeProperties,   command::PortPropertiesV2,
                                command::EventDelivery,    command::FetchEvents,
                                command::ForceEvent,       command::PortDisableInfo,
                                {command::LegacyQuery, 0}, {command::LegacyPortAndNode, 0}};
    const uint32_t lengths[] = {0, 1, 27, 28, 29, 39, 40, 60, 115, 116, 117, 128, 132, 300};
    for (uint32_t input : lengths) {
        for (uint32_t output : lengths) {
            for (uint32_t round = 0; round < 40; ++round) {
                ExtRequest request = Envelope(commands[random() % 8], 0, 0);
                request.srb.length = std::max(input, output) - (round % 4 == 0 ? 0 : 28);
                request.ext.responseLen = random() >> (random() % 32);
                const uint32_t length = std::max(input, output);
                const auto buffer = std::make_unique<uint8_t[]>(length + 1);
                for (uint32_t at = 0; at < length; ++at) {
                    buffer[at] = static_cast<uint8_t>(random() >> 24);
                }
                std::memcpy(buffer.get(), &request, std::min<size_t>(length, sizeof request));
                if (round % 2 == 1 && length > 28) {
                    const uint32_t selector = round % 3 == 0 ? 11 : random() % 20;
                    std::memcpy(buffer.get() + 28 + 4, &selector,
                                std::min<uint32_t>(4, length > 32 ? length - 32 : 0));
                }
                const uint8_t guard = buffer[length];
                uint32_t returned = 77;
                const Completion completion =
                    model_->Request(round % 4, buffer.get(), input, output, &returned);
                EXPECT_LE(returned, output);
                EXPECT_EQ(buffer[length], guard);
                if (completion != Completion::Done) {
                    EXPECT_EQ(returned, 0u);
                }
            }
        }
    }
}

TEST_F(EmulatorModel, BytesThatWereNotSentReadAsZero) {
    AddFault({kAnyPort, kAnyCode, kAnySubCode, 0, 0, FaultKind::Status, 1, 0});
    const Answer answer = Ask(kNewest, command::NodeProperties, 40, {1, 2, 3});
    ASSERT_EQ(answer.data.size(), 40u);
    EXPECT_EQ(answer.data[2], 3);
    EXPECT_EQ(std::count(answer.data.begin() + 3, answer.data.end(), 0), 37);
}

TEST_F(EmulatorModel, EventsAreHandedOutOnce) {
    EXPECT_TRUE(FetchCodes(kNewest).empty());
    // Without delivery an event is gone.
    EXPECT_EQ(Ask(kNewest, command::ForceEvent, 1, {0}).Status(), DriverStatus::Success);
    Delivery(kNewest, true);
    EXPECT_TRUE(FetchCodes(kNewest).empty());

    EXPECT_EQ(Ask(kNewest, command::ForceEvent, 1, {0}).Status(), DriverStatus::Success);
    Control(vxemu::control::kSetLink, vxemu::LinkRequest{3, 0});
    Control(vxemu::control::kSetLink, vxemu::LinkRequest{3, 0});  // no change, no event
    Control(vxemu::control::kSetLink, vxemu::LinkRequest{3, 1});
    // Room for two and a bit: two now, the third next time.
    EXPECT_EQ(FetchCodes(kNewest, 47), (std::vector<uint32_t>{0x8080, 0x8012}));
    EXPECT_EQ(FetchCodes(kNewest, 47), (std::vector<uint32_t>{0x8011}));
    EXPECT_TRUE(FetchCodes(kNewest).empty());
    EXPECT_TRUE(FetchCodes(1).empty()) << "another port's queue";

    // Off discards, and a reset switches off.
    Ask(kNewest, command::ForceEvent, 1, {0});
    Delivery(kNewest, false);
    Delivery(kNewest, true);
    EXPECT_TRUE(FetchCodes(kNewest).empty());
    Control(vxemu::control::kSetLink, vxemu::LinkRequest{3, 0});
    Control(vxemu::control::kPortReset, vxemu::PortSelector{3});
    EXPECT_EQ(+Status().ports[0].delivery, 0);
    EXPECT_EQ(Status().ports[0].state, vxemu::PortState::Online);
    EXPECT_TRUE(FetchCodes(kNewest).empty());

    const Answer mask = Ask(kNewest, command::EventDelivery, 0, {1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(mask.Status(), DriverStatus::InvalidParameter);
    EXPECT_EQ(Ask(kNewest, command::EventDelivery, 0, {0, 0, 0, 0}).Status(),
              DriverStatus::InvalidParameter);
}

TEST_F(EmulatorModel, FullQueueDropsItsOldest) {
    Delivery(kNewest, true);
    for (uint32_t number = 0; number < 70; ++number) {
        uint32_t queued = 0;
        const vxemu::EventRequest request = {3, {0x9000 + number, {number, 2, 3}}};
        Control(vxemu::control::kRaiseEvent, request, &queued);
        EXPECT_EQ(queued, 1u);
    }
    EXPECT_EQ(+Status().ports[0].eventsQueued, 64u);
    EXPECT_EQ(+Status().ports[0].eventsDropped, 6u);
    const std::vector<uint32_t> codes = FetchCodes(kNewest, 80 * 16);
    ASSERT_EQ(codes.size(), 64u);
    EXPECT_EQ(codes.front(), 0x9000u + 6);
    EXPECT_EQ(codes.back(), 0x9000u + 69);
}

TEST_F(EmulatorModel, FaultsActWhenTheyAreDue) {
    const uint32_t code = command::NodeProperties.code;
    AddFault({3, code, 1, 2, 3, FaultKind::Busy, 0, 0});
    const auto ask = [&](uint32_t port, Command which) {
        return Ask(port, which, 696).completion == Completion::Busy;
    };
    std::string busy;
    for (int turn = 0; turn < 7; ++turn) {
        busy += ask(kNewest, command::NodeProperties) ? 'B' : '-';
        EXPECT_FALSE(ask(1, command::NodeProperties)) << "another port";
        EXPECT_FALSE(ask(kNewest, command::PortProperties)) << "another sub-code";
    }
    EXPECT_EQ(busy, "--BBB--");
    EXPECT_EQ(+Status().ports[0].faults, 3u);
    EXPECT_EQ(+Status().ports[1].faults, 0u);

    // The oldest rule that is due acts; the later one has counted meanwhile.
    const uint32_t first = AddFault({kAnyPort, kAnyCode, kAnySubCode, 0, 1, FaultKind::Busy, 0, 0});
    AddFault({kAnyPort, kAnyCode, kAnySubCode, 1, 0, FaultKind::Status, 35, 0});
    EXPECT_EQ(Ask(1, command::PortProperties, 56).completion, Completion::Busy);
    EXPECT_EQ(Ask(1, command::PortProperties, 56).Status(), DriverStatus::NoDump);
    AskPlain(kLegacy, command::LegacyPortAndNode, {}, 64, Completion::Invalid);

    uint32_t removed = 0;
    Control(vxemu::control::kFaultClear, vxemu::FaultClear{first}, &removed);
    EXPECT_EQ(removed, 1u);
    Control(vxemu::control::kFaultClear, vxemu::FaultClear{first}, &removed);
    EXPECT_EQ(removed, 0u);
    Control(vxemu::control::kFaultClear, vxemu::FaultClear{0}, &removed);
    EXPECT_EQ(removed, 2u);
    EXPECT_EQ(Ask(1, command::PortProperties, 56).Status(), DriverStatus::Success);
}

TEST_F(EmulatorModel, WhatFaultsDoToAReply) {
    const Answer plain = Ask(kNewest, command::ChipProperties, 80);
    auto with = [&](FaultKind kind, uint32_t value, uint32_t status = 0) {
        const uint32_t id = AddFault({3, kAnyCode, kAnySubCode, 0, 0, kind, value, status});
        EXPECT_NE(id, 0u);
        Answer answer = Ask(kNewest, command::ChipProperties, 80);
        Control(vxemu::control::kFaultClear, vxemu::FaultClear{id});
        return answer;
    };
    EXPECT_EQ(with(FaultKind::Short, 30).envelope.ext.responseLen, 50u);
    EXPECT_EQ(with(FaultKind::Short, 81).envelope.ext.responseLen, 0u);
    EXPECT_EQ(with(FaultKind::Long, 30).envelope.ext.responseLen, 110u);
    EXPECT_EQ(with(FaultKind::Long, 0xFFFFFFFF).envelope.ext.responseLen, 0xFFFFFFFFu);
    const Answer lie = with(FaultKind::LieLength, 0);
    EXPECT_EQ(lie.envelope.ext.responseLen, 0x7FFFFFFFu);
    EXPECT_EQ(lie.returned, plain.returned);
    EXPECT_EQ(lie.data, plain.data);

    const Answer corrupt = with(FaultKind::Corrupt, 0);
    ASSERT_EQ(corrupt.data.size(), plain.data.size());
    for (size_t at = 0; at < plain.data.size(); ++at) {
        EXPECT_EQ(corrupt.data[at] ^ plain.data[at], 0xFF);
    }
    const Answer hang = with(FaultKind::Hang, 2500);
    EXPECT_EQ(hang.delay, 2500u);
    EXPECT_EQ(hang.data, plain.data);

    const Answer detail = with(FaultKind::Detail, 0x4005, 11);
    EXPECT_EQ(detail.Status(), DriverStatus::MailboxFailed);
    EXPECT_EQ(detail.envelope.ext.detailStatus, 0x4005u);
    EXPECT_EQ(with(FaultKind::Detail, 2, 15).Status(), DriverStatus::ScsiStatus);
    EXPECT_EQ(Ask(kNewest, command::ChipProperties, 80).data, plain.data);
}

TEST_F(EmulatorModel, FaultRulesThatAreRefused) {
    const FaultRule refused[] = {
        {3, 0, 0, 0, 0, FaultKind::None, 0, 0},
        {3, 0, 0, 0, 0, static_cast<FaultKind>(99), 0, 0},
        {64, 0, 0, 0, 0, FaultKind::Busy, 0, 0},
        {3, 0, 0, 0, 0, FaultKind::Detail, 2, 14},
        {3, 0, 0, 0, 0, FaultKind::Hang, vxemu::kMaxHangMilliseconds + 1, 0},
    };
    for (const FaultRule& rule : refused) {
        EXPECT_EQ(Control(vxemu::control::kFaultAdd, rule), Completion::ShortBuffer);
    }
    for (uint32_t number = 0; number < vxemu::kMaxFaults; ++number) {
        EXPECT_EQ(AddFault({3, 1, 1, 0, 0, FaultKind::Busy, 0, 0}), number + 1);
    }
    EXPECT_EQ(AddFault({3, 1, 1, 0, 0, FaultKind::Busy, 0, 0}), 0u) << "the list is full";
}

TEST_F(EmulatorModel, FieldsOfARunningAdapter) {
    vxemu::FieldRequest text = {4, "firmware_version", 32, "8.1.1"};
    EXPECT_EQ(Control(vxemu::control::kSetField, text), Completion::Done);
    // An adapter's value changes for all of its ports.
    for (uint32_t port : {0u, 1u}) {
        EXPECT_STREQ(
            Ask(port, command::FirmwareProperties, 200).As<properties::FirmwareReply>().version,
            "8.1.1");
    }
    const auto refused = [&](vxemu::FieldRequest request) {
        EXPECT_EQ(Control(vxemu::control::kSetField, request), Completion::ShortBuffer)
            << request.name;
    };
    refused({3, "serial", 32, "EMUX"});
    refused({3, "no_such_field", 1, {}});
    refused({3, "current_speed", 2, {1, 0}});
    refused({3, "fec_active", 1, {2}});
    refused({3, "state", 2, {3, 0}});
    vxemu::FieldRequest unterminated = {3, "firmware_version", 32, {}};
    std::memset(unterminated.value, '1', sizeof unterminated.value);
    refused(unterminated);
    std::memset(unterminated.name, 's', sizeof unterminated.name);
    EXPECT_EQ(Control(vxemu::control::kSetField, unterminated), Completion::ShortBuffer);
    EXPECT_EQ(Control(vxemu::control::kSetField, vxemu::FieldRequest{5, "state", 2, {}}),
              Completion::NoDevice);
}

TEST_F(EmulatorModel, ControlRequestsCheckTheirLengths) {
    uint8_t byte = 0;
    uint32_t returned = 9;
    for (uint32_t code :
         {vxemu::control::kStatus, vxemu::control::kFaultList, vxemu::control::kReadProfile,
          vxemu::control::kFaultAdd, vxemu::control::kFaultClear, vxemu::control::kPortReset,
          vxemu::control::kRaiseEvent, vxemu::control::kSetLink, vxemu::control::kSetField}) {
        EXPECT_EQ(model_->Control(code, &byte, 1, 1, &returned), Completion::ShortBuffer);
        EXPECT_EQ(model_->Control(code, nullptr, 0, 0, &returned), Completion::ShortBuffer);
        EXPECT_EQ(returned, 0u);
    }
    EXPECT_EQ(model_->Control(0, &byte, 1, 1, &returned), Completion::Invalid);
    EXPECT_EQ(Control(vxemu::control::kSetLink, vxemu::LinkRequest{5, 1}), Completion::NoDevice);
    EXPECT_EQ(Control(vxemu::control::kSetLink, vxemu::LinkRequest{3, 2}), Completion::ShortBuffer);

    model_->CountHandle(0, 1);
    model_->CountHandle(0, 1);
    model_->CountHandle(0, -1);
    host_.clock += 250;
    const vxemu::StatusReply status = Status();
    EXPECT_EQ(+status.uptime, 250u);
    EXPECT_EQ(+status.portCount, 4u);
    EXPECT_STREQ(status.profileName, "lab");
    EXPECT_EQ(+status.ports[0].openHandles, 1u);
    EXPECT_STREQ(status.ports[2].serial, "EMU7404A0002");
}

TEST_F(EmulatorModel, NoMemoryIsNoModel) {
    const auto profile = MakeProfile("lab");
    for (int allocation = 0; allocation < 3; ++allocation) {
        TestHost host;
        host.failAt = allocation;
        EXPECT_EQ(vxemu::Model::Create(host.Get(), *profile), nullptr);
        EXPECT_EQ(host.blocks, 0);
    }
}

TEST(EmulatorProfile, BuiltInOnesAreValid) {
    for (const vxemu::BuiltInProfile& row : vxemu::kBuiltInProfileTable) {
        const auto profile = MakeProfile(row.name);
        const vxemu::ProfileFault fault = vxemu::ValidateProfile(profile.get(), sizeof *profile);
        EXPECT_EQ(fault.error, vxemu::ProfileError::None)
            << row.name << " " << fault.index << " " << (fault.field ? fault.field : "");
    }
    vxemu::Profile profile;
    EXPECT_FALSE(vxemu::FillBuiltInProfile("labs", profile));
    EXPECT_FALSE(vxemu::FillBuiltInProfile("la", profile));
}

TEST(EmulatorProfile, FaultyOnesAreRefused) {
    using vxemu::Profile;
    using vxemu::ProfileError;
    auto expect = [](ProfileError error, auto change) {
        const auto profile = MakeProfile("lab");
        change(*profile);
        EXPECT_EQ(vxemu::ValidateProfile(profile.get(), sizeof *profile).error, error)
            << vxemu::ProfileErrorText(error);
        TestHost host;
        EXPECT_EQ(vxemu::Model::Create(host.Get(), *profile), nullptr);
    };
    expect(ProfileError::Magic, [](Profile& p) { p.magic ^= 1; });
    expect(ProfileError::Version, [](Profile& p) { p.version = 2; });
    expect(ProfileError::Size, [](Profile& p) { p.size = 4; });
    expect(ProfileError::AdapterCount, [](Profile& p) { p.adapterCount = 65; });
    expect(ProfileError::AdapterCount, [](Profile& p) { p.adapterCount = 0; });
    expect(ProfileError::PortCount, [](Profile& p) { p.portCount = 0xFFFFFFFF; });
    expect(ProfileError::Name, [](Profile& p) { std::memset(p.name, 'n', sizeof p.name); });
    expect(ProfileError::Field, [](Profile& p) { std::memset(p.adapters[2].model, 'm', 17); });
    expect(ProfileError::Field, [](Profile& p) { p.adapters[0].firmwareVersion[0] = '\n'; });
    expect(ProfileError::Field, [](Profile& p) { p.ports[3].scsiPort = 64; });
    expect(ProfileError::Field, [](Profile& p) { p.ports[3].pciFunction = 8; });
    expect(ProfileError::Field, [](Profile& p) { p.ports[0].state = vxemu::PortState{9}; });
    expect(ProfileError::Serial, [](Profile& p) { p.adapters[0].serial[0] = 'X'; });
    expect(ProfileError::Description, [](Profile& p) { p.adapters[0].description[0] = 'e'; });
    expect(ProfileError::AdapterIndex, [](Profile& p) { p.ports[1].adapter = 3; });
    expect(ProfileError::AdapterHasNoPort, [](Profile& p) {
        p.adapters[3] = p.adapters[2];
        p.adapterCount = 4;
    });
    expect(ProfileError::DuplicateScsiPort, [](Profile& p) { p.ports[3].scsiPort = 3; });
    expect(ProfileError::DuplicatePortName,
           [](Profile& p) { std::memcpy(p.ports[1].portName, p.ports[0].portName, 8); });
    expect(ProfileError::NoPortName, [](Profile& p) { std::memset(p.ports[2].portName, 0, 8); });

    const auto profile = MakeProfile("lab");
    EXPECT_EQ(vxemu::ValidateProfile(profile.get(), sizeof *profile - 1).error, ProfileError::Size);
}

}  // namespace
