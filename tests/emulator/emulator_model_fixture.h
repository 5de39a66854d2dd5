// An emulated-adapter model in the test process, and requests to it. Every request lies in a heap
// block of exactly its size, so that a sanitizer sees any byte touched beyond it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "model/control.h"
#include "model/model.h"
#include "properties/driver_replies.h"
#include "properties/port_database_records.h"
#include "transport/ext_ioctl.h"

namespace emulator_test {

using transport::Command;
using transport::DriverStatus;
using transport::ExtRequest;
using transport::SrbIoControl;
using enum transport::DriverStatus;
using vxemu::CheckState;
using vxemu::Completion;
using vxemu::FaultClear;
using vxemu::FaultKind;
using vxemu::FaultRule;
using vxemu::FieldRequest;
using vxemu::kAnyCode;
using vxemu::kAnyPort;
using vxemu::kAnySubCode;
using vxemu::LinkRequest;
using vxemu::PortSelector;
using vxemu::TargetSelector;
using vxemu::Completion::Done;
using vxemu::Completion::Invalid;
using vxemu::Completion::NoDevice;
using vxemu::Completion::ShortBuffer;
namespace command = transport::command;
using namespace transport::command;
namespace control = vxemu::control;
using Bytes = std::vector<uint8_t>;

template <typename Record>
Bytes BytesOf(const Record& record, const Bytes& behind = {}) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    bytes.insert(bytes.end(), behind.begin(), behind.end());
    return bytes;
}

// Ports of the lab profile by their index, which is also the order of their SCSI ports.
inline constexpr uint32_t kNewest = 0;  // SCSI port 3
inline constexpr uint32_t kLargeRom = 2;
inline constexpr uint32_t kLegacy = 3;

struct TestHost {
    int blocks = 0;
    int failAt = -1;  // the allocation that finds no memory
    uint64_t clock = 1000;
    const vxemu::HostFiles* files = nullptr;

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
                [](void* context) { return static_cast<TestHost*>(context)->clock; },
                nullptr,
                nullptr,
                nullptr,
                files};
    }
};

inline std::unique_ptr<vxemu::Profile> MakeProfile(const char* name) {
    auto profile = std::make_unique<vxemu::Profile>();
    EXPECT_TRUE(vxemu::FillBuiltInProfile(name, *profile));
    return profile;
}

// What came back from an extended request.
struct Answer {
    Completion completion = Done;
    uint32_t returned = 0;
    uint32_t delay = 0;
    ExtRequest envelope = {};
    Bytes data;  // the bytes handed back behind the envelope

    DriverStatus Status() const { return static_cast<DriverStatus>(envelope.ext.status); }

    template <typename Record>
    Record As() const {
        Record record = {};
        EXPECT_EQ(data.size(), sizeof record);
        std::memcpy(&record, data.data(), std::min(data.size(), sizeof record));
        return record;
    }
};

inline ExtRequest Envelope(Command command, uint32_t input, uint32_t output) {
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

class ModelFixture : public testing::Test {
  protected:
    void SetUp() override { Start("lab"); }
    void TearDown() override {
        vxemu::Model::Destroy(model_);
        EXPECT_EQ(host_.blocks, 0) << "memory that was never released";
    }

    void Start(const char* profile) { Start(*MakeProfile(profile)); }
    void Start(const vxemu::Profile& profile) {
        vxemu::Model::Destroy(model_);
        model_ = vxemu::Model::Create(host_.Get(), profile);
        ASSERT_NE(model_, nullptr);
    }
    // The lab, its last port with a classic chip and the newer driver.
    void StartClassic() {
        const auto profile = MakeProfile("lab");
        profile->adapters[2] = vxemu::DefaultAdapter(0x7300, vxemu::DriverGeneration::Extended);
        std::strcpy(profile->adapters[2].serial, "EMU7300");
        Start(*profile);
    }

    // Sends an envelope with input bytes, as the library does: one buffer, output length included.
    Answer Send(uint32_t port, const ExtRequest& request, const Bytes& input,
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
        if (answer.completion == Done) {
            EXPECT_GE(answer.returned, sizeof answer.envelope);
            std::memcpy(&answer.envelope, buffer.get(), sizeof answer.envelope);
            answer.data.assign(buffer.get() + sizeof request, buffer.get() + answer.returned);
        } else {
            EXPECT_EQ(answer.returned, 0u);
        }
        return answer;
    }

    Answer Ask(uint32_t port, Command command, uint32_t output, Bytes input = {}) {
        const auto inputLength = static_cast<uint32_t>(input.size());
        return Send(port, Envelope(command, inputLength, output), input,
                    static_cast<uint32_t>(sizeof(ExtRequest)) + std::max(inputLength, output));
    }

    // A plain request; the reply data, or nothing when it did not complete as expected.
    Bytes AskPlain(uint32_t port, uint32_t code, Bytes input, uint32_t output,
                   Completion expected = Done) {
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
        if (expected != Done) {
            return {};
        }
        return {buffer.get() + sizeof srb, buffer.get() + returned};
    }

    template <typename Reply>
    Reply AskLegacy(properties::LegacySelector selector) {
        transport::SelectorRecord record = {};
        record.option = transport::kSelectorOption;
        record.selector = static_cast<uint32_t>(selector);
        const Bytes data = AskPlain(kLegacy, LegacyQuery, BytesOf(record), sizeof(Reply));
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
        EXPECT_EQ(Control(control::kFaultAdd, rule, &id), Done);
        return id;
    }

    void Set(uint32_t scsiPort, const char* name, uint32_t value, uint32_t size = 1) {
        FieldRequest request = {scsiPort, {}};
        std::strcpy(request.change.name, name);
        request.change.length = size;
        std::memcpy(request.change.value, &value, size);
        ASSERT_EQ(Control(control::kSetField, request), Done) << name;
    }
    void Link(uint32_t scsiPort, uint32_t up) {
        ASSERT_EQ(Control(control::kSetLink, LinkRequest{scsiPort, up}), Done);
    }
    void Reset(uint32_t scsiPort) {
        ASSERT_EQ(Control(control::kPortReset, PortSelector{scsiPort}), Done);
    }

    void Delivery(uint32_t port, bool on) {
        const uint8_t byte = on ? 0xFF : 0;
        const Answer answer = Ask(port, EventDelivery, 0, {byte, byte, byte, byte, 0, 0, 0, 0});
        ASSERT_EQ(answer.Status(), Success);
    }

    std::vector<uint32_t> FetchCodes(uint32_t port, uint32_t bytes = 512) {
        const Answer answer = Ask(port, FetchEvents, bytes);
        EXPECT_EQ(answer.Status(), Success);
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
        EXPECT_EQ(model_->Control(control::kStatus, reinterpret_cast<uint8_t*>(reply.get()), 0,
                                  sizeof *reply, &returned),
                  Done);
        EXPECT_EQ(returned, sizeof *reply);
        return *reply;
    }

    std::vector<properties::PortDatabaseEntry> Database(uint32_t port = kNewest) {
        const Bytes data =
            Ask(port, PortDatabase, sizeof(properties::PortDatabaseReply), {7, 0, 0, 0}).data;
        std::vector<properties::PortDatabaseEntry> entries((data.size() - 8) / 172);
        std::memcpy(entries.data(), data.data() + 8, entries.size() * 172);
        EXPECT_EQ(data[0], 7);
        EXPECT_EQ(data[4], entries.size());
        return entries;
    }

    TestHost host_;
    vxemu::Model* model_ = nullptr;
};

}  // namespace emulator_test
