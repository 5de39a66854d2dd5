// Requests to several ports at a time, behind the locks that the driver takes.
#include <atomic>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <thread>

#include "emulator/emulator_model_fixture.h"
#include "hxflash.h"
#include "model/access.h"

namespace {

using namespace emulator_test;
using vxemu::Reach;
using vxemu::ReachOf;

using Locks = vxemu::AccessLocks<std::shared_mutex, std::mutex>;

// Of a host whose requests run side by side.
struct ManyThreads {
    Locks locks;
    std::atomic<int> blocks = 0;

    vxemu::Host Get() {
        return {this,
                [](void* context, size_t bytes) -> void* {
                    ++static_cast<ManyThreads*>(context)->blocks;
                    return std::calloc(1, bytes);
                },
                [](void* context, void* block) {
                    --static_cast<ManyThreads*>(context)->blocks;
                    std::free(block);
                },
                [](void*) -> uint64_t { return 1000; },
                [](void* context) { static_cast<ManyThreads*>(context)->locks.Common().lock(); },
                [](void* context) { static_cast<ManyThreads*>(context)->locks.Common().unlock(); }};
    }
};

Reach ReachOfCommand(Command command) {
    const ExtRequest request = Envelope(command, 0, 0);
    return ReachOf(reinterpret_cast<const uint8_t*>(&request), sizeof request);
}

TEST(EmulatorAccess, WhoChangesMoreThanItsPortRunsAlone) {
    const Command alone[] = {command::FlashWrite,
                             command::SecureFlashCommit,
                             command::RestartFirmware,
                             command::ScsiPassThrough,
                             command::AddTarget,
                             command::SwapTargets,
                             command::LoadSfpFirmware,
                             command::NvramWrite,
                             command::VpdWrite,
                             command::I2cWrite,
                             command::AuxiliaryFirmware,
                             {0xF000FFFF, 0},
                             {command::LegacyAddTarget, 0}};
    for (const Command& command : alone) {
        EXPECT_EQ(Reach::Model, ReachOfCommand(command)) << std::hex << command.code;
    }
    for (const Command& command :
         {command::NodeProperties, command::FetchEvents, command::PortDatabase, command::SfpRead,
          Command{command::FlashRead.code, 21}, Command{command::LegacyQuery, 0}}) {
        EXPECT_EQ(Reach::Port, ReachOfCommand(command)) << std::hex << command.code;
    }
    EXPECT_EQ(Reach::Model, ReachOfCommand({command::NodeProperties.code, 77}));
    const ExtRequest request = Envelope(command::FlashWrite, 0, 0);
    EXPECT_EQ(Reach::Port,
              ReachOf(reinterpret_cast<const uint8_t*>(&request), sizeof(SrbIoControl) - 1));
}

TEST(EmulatorAccess, APortWaitsForNoOther) {
    Locks locks;
    int order = 0;
    std::thread same;
    std::thread alone;
    locks.WithinPort(0, [&] {
        // Ends while the first port is held, or never.
        std::thread([&] { locks.WithinPort(1, [&] { order = 1; }); }).join();
        EXPECT_EQ(1, order);
        same = std::thread([&] { locks.WithinPort(0, [&] { EXPECT_EQ(2, order); }); });
        order = 2;
    });
    same.join();
    locks.WithinPort(1, [&] {
        alone = std::thread([&] { locks.Alone([&] { EXPECT_EQ(3, order); }); });
        order = 3;
    });
    alone.join();
}

// Every command with whatever comes along, on every port at a time, beside control requests. What
// two of them change together is for a thread sanitizer to see; what is counted comes out right.
TEST(EmulatorAccess, RequestsOfAllPortsAtOnce) {
    constexpr uint32_t kRequests = 3000;
    constexpr uint32_t kFaults = 500;
    ManyThreads host;
    vxemu::Model* const model = vxemu::Model::Create(host.Get(), *MakeProfile("lab"));
    ASSERT_NE(nullptr, model);
    const uint32_t ports = model->PortCount();
    const auto control = [&](uint32_t code, const void* record, uint32_t size,
                             std::vector<uint8_t>& buffer) {
        std::memcpy(buffer.data(), record, size);
        host.locks.Alone([&] {
            uint32_t returned = 0;
            model->Control(code, buffer.data(), size, static_cast<uint32_t>(buffer.size()),
                           &returned);
        });
    };
    std::vector<uint8_t> reply(sizeof(vxemu::StatusReply));
    const FaultRule rule = {kAnyPort, kAnyCode, kAnySubCode, 0, kFaults, FaultKind::Busy, 0, 0};
    control(vxemu::control::kFaultAdd, &rule, sizeof rule, reply);

    std::atomic<uint32_t> busy = 0;
    std::vector<std::thread> threads;
    for (uint32_t turn = 0; turn < 2 * ports; ++turn) {
        threads.emplace_back([&, turn] {
            std::mt19937 random(turn);
            const uint32_t port = turn % ports;
            for (uint32_t i = 0; i < kRequests; ++i) {
                std::vector<uint8_t> buffer(sizeof(ExtRequest) + 1024);
                for (size_t at = 0; at < 32; ++at) {
                    buffer[sizeof(ExtRequest) + at] = static_cast<uint8_t>(random() % 4);
                }
                // Every other one goes to the settings in the flash that two of the ports share.
                constexpr Command kShared[] = {{command::FlashWrite.code, HX_REGION_NVRAM_0},
                                               {command::FlashRead.code, HX_REGION_NVRAM_0}};
                const auto& rows = transport::kExtendedCommands;
                const auto& row = rows[random() % std::size(rows)];
                const bool selects = row.kind != transport::SubCode::Fixed;
                const Command any = {row.code,
                                     static_cast<uint16_t>(selects ? random() % 40 : row.subCode)};
                const ExtRequest request =
                    Envelope(i % 2 == 0 ? any : kShared[random() % std::size(kShared)], 256, 1024);
                std::memcpy(buffer.data(), &request, sizeof request);
                const auto length = static_cast<uint32_t>(buffer.size());
                host.locks.As(ReachOf(buffer.data(), length), port, [&] {
                    uint32_t returned = 0;
                    uint32_t delay = 0;
                    busy += model->Request(port, buffer.data(), length, length, &returned,
                                           &delay) == Completion::Busy
                                ? 1
                                : 0;
                });
            }
        });
    }
    threads.emplace_back([&] {
        std::vector<uint8_t> buffer(sizeof(vxemu::StatusReply));
        for (uint32_t i = 0; i < kRequests / 4; ++i) {
            const vxemu::LinkRequest link = {3, i % 2};
            control(vxemu::control::kSetLink, &link, sizeof link, buffer);
            control(vxemu::control::kStatus, &link, 0, buffer);
            if (i % 64 == 0) {
                // A card that comes and goes leaves the others where they are.
                vxemu::AdapterRecord card = {};
                card.portCount = 2;
                vxemu::FillAdapter(0x7740, 20, card.adapter, {card.ports, card.portCount});
                card.ports[0].scsiPort = 20;
                control(vxemu::control::kAdapterAdd, &card, sizeof card, buffer);
                const vxemu::PortSelector out = {20};
                control(vxemu::control::kAdapterRemove, &out, sizeof out, buffer);
            }
        }
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(kFaults, busy);
    control(vxemu::control::kStatus, &rule, 0, reply);
    uint64_t requests = 0;
    const auto& status = *reinterpret_cast<const vxemu::StatusReply*>(reply.data());
    for (uint32_t port = 0; port < ports; ++port) {
        requests += status.ports[port].requests;
    }
    EXPECT_EQ(2 * ports * uint64_t{kRequests}, requests);
    vxemu::Model::Destroy(model);
    EXPECT_EQ(0, host.blocks);
}

}  // namespace
