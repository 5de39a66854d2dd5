// The driver itself against user mode: hostile requests, and open handles when it is stopped.
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "emulated_driver.h"
#include "properties/driver_replies.h"
#include "support/random_requests.h"
#include "support/rounds.h"
#include "transport/ext_ioctl.h"

namespace system_test {
namespace {

using transport::ExtRequest;

class SystemDriver : public EmulatedDriver {
  protected:
    static HANDLE OpenPort(const char* name = "\\\\.\\scsi3:") {
        return CreateFileA(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_EXISTING, 0, nullptr);
    }

    static bool Send(HANDLE port, void* input, DWORD inputSize, void* output, DWORD outputSize) {
        DWORD returned = 0;
        const BOOL sent = DeviceIoControl(port, transport::kIoctlScsiMiniport, input, inputSize,
                                          output, outputSize, &returned, nullptr);
        EXPECT_LE(returned, outputSize);
        return sent != FALSE;
    }

    static ExtRequest Envelope(transport::Command command, uint32_t room) {
        ExtRequest envelope{};
        envelope.srb.headerLength = transport::kHeaderLength;
        std::memcpy(envelope.srb.signature, transport::kSignature, sizeof transport::kSignature);
        envelope.srb.controlCode = command.code;
        envelope.srb.length = transport::kExtIoctlLength + room;
        std::memcpy(envelope.ext.signature, transport::kSignature, sizeof transport::kSignature);
        envelope.ext.levelAndVersion = transport::kInterfaceLevelAndVersion;
        envelope.ext.subCode = command.subCode;
        envelope.ext.responseLen = room;
        return envelope;
    }

    // A well-formed request is answered.
    static void ExpectHealthy(HANDLE port) {
        std::vector<uint8_t> buffer(sizeof(ExtRequest) + sizeof(properties::ChipReply));
        const ExtRequest envelope =
            Envelope(transport::command::ChipProperties, sizeof(properties::ChipReply));
        std::memcpy(buffer.data(), &envelope, sizeof envelope);
        ASSERT_TRUE(Send(port, buffer.data(), sizeof envelope, buffer.data(),
                         static_cast<DWORD>(buffer.size())));
        properties::ChipReply chip;
        std::memcpy(&chip, buffer.data() + sizeof envelope, sizeof chip);
        EXPECT_EQ(0x7740, chip.deviceId);
    }
};

TEST_F(SystemDriver, HostileRequestsAreAnswered) {
    const HANDLE port = OpenPort();
    ASSERT_NE(INVALID_HANDLE_VALUE, port);
    ExpectHealthy(port);

    std::vector<uint8_t> bytes(70000, 0xFF);
    for (const DWORD input : {0u, 1u, 27u, 28u, 29u, 115u, 116u, 117u, 70000u}) {
        for (const DWORD output : {0u, 1u, 28u, 115u, 116u, 70000u}) {
            std::vector<uint8_t> in = bytes;
            EXPECT_FALSE(Send(port, in.data(), input, in.data(), output)) << input << " " << output;
            ExtRequest wrongSignature = Envelope(transport::command::ChipProperties, 80);
            wrongSignature.srb.signature[0] = 'X';
            std::memcpy(in.data(), &wrongSignature, sizeof wrongSignature);
            EXPECT_FALSE(Send(port, in.data(), input, in.data(), output)) << input << " " << output;
        }
    }
    for (const uint32_t room : {0u, 1u, 79u, 80u, 0xFFFFFFFFu}) {
        for (const transport::ExtendedCommandRow& row : transport::kExtendedCommands) {
            std::vector<uint8_t> in(4096);
            const ExtRequest envelope = Envelope({row.code, row.subCode}, room);
            std::memcpy(in.data(), &envelope, sizeof envelope);
            Send(port, in.data(), sizeof envelope, in.data(), static_cast<DWORD>(in.size()));
            Send(port, in.data(), sizeof envelope, nullptr, 0);
        }
    }
    ExtRequest unknown = Envelope({0xF000FFFF, 0}, 0);
    ASSERT_TRUE(Send(port, &unknown, sizeof unknown, &unknown, sizeof unknown));
    EXPECT_EQ(static_cast<uint32_t>(transport::DriverStatus::InvalidRequest), unknown.ext.status);

    ExpectHealthy(port);
    CloseHandle(port);
}

TEST_F(SystemDriver, RandomRequestsAreAnswered) {
    const uint32_t seed = support::Seed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    support::RandomRequests requests(seed);
    const HANDLE ports[] = {OpenPort(), OpenPort("\\\\.\\scsi4:"), OpenPort("\\\\.\\scsi6:"),
                            OpenPort("\\\\.\\scsi9:")};
    uint32_t answered = 0;
    const uint32_t rounds = support::Rounds(2000);
    for (uint32_t round = 0; round < rounds; ++round) {
        support::RandomRequest request = requests.Next();
        std::vector<uint8_t> reply(request.outputLength);
        answered +=
            Send(ports[requests.Below(std::size(ports))], request.bytes.data(),
                 static_cast<DWORD>(request.bytes.size()), reply.data(), request.outputLength)
                ? 1
                : 0;
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
    EXPECT_GT(answered, rounds / 2) << "few get past the envelope";
    ExpectHealthy(ports[0]);
    for (const HANDLE port : ports) {
        CloseHandle(port);
    }
    EXPECT_EQ(4u, Document("port list")["result"]["ports"].size());
}

TEST_F(SystemDriver, StopsWithAnOpenHandleAndStartsAgain) {
    const HANDLE port = OpenPort();
    ASSERT_NE(INVALID_HANDLE_VALUE, port);
    ExpectHealthy(port);
    Vxemu("stop");  // may say that the driver waits for its last handle
    ExtRequest late = Envelope(transport::command::ChipProperties, 0);
    Send(port, &late, sizeof late, &late, sizeof late);
    CloseHandle(port);
    StartDriver();
    const HANDLE again = OpenPort();
    ASSERT_NE(INVALID_HANDLE_VALUE, again);
    ExpectHealthy(again);
    CloseHandle(again);
}

TEST_F(SystemDriver, APortThatHangsStopsNoOther) {
    Fault("scsi:4 --code ChipProperties --do hang 6000");
    const HANDLE slow = OpenPort("\\\\.\\scsi4:");
    const HANDLE port = OpenPort();
    std::atomic<bool> answered = false;
    std::thread waiting([&] {
        ExtRequest request = Envelope(transport::command::ChipProperties, 0);
        EXPECT_TRUE(Send(slow, &request, sizeof request, &request, sizeof request));
        answered = true;
    });
    // Once the request is in the driver.
    EXPECT_TRUE(PortReaches("scsi:4", "faults", 1));
    ExpectHealthy(port);
    ExtRequest write = Envelope(transport::command::FlashWrite, 0);
    EXPECT_TRUE(Send(port, &write, sizeof write, &write, sizeof write)) << "one that runs alone";
    EXPECT_FALSE(answered);
    waiting.join();
    CloseHandle(slow);
    CloseHandle(port);
}

TEST_F(SystemDriver, SixtyThreePorts) {
    StopDriver();
    StartDriver("full");
    EXPECT_EQ(63u, Document("port list")["result"]["ports"].size());
    StopDriver();
    StartDriver();
}

}  // namespace
}  // namespace system_test
