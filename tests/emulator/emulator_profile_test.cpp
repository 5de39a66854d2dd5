// Profiles: what is accepted, and what is not.
#include "emulator/emulator_model_fixture.h"

namespace {

using namespace emulator_test;

TEST(EmulatorProfile, NoMemoryIsNoModel) {
    const auto profile = MakeProfile("lab");
    for (int allocation = 0; allocation < 6; ++allocation) {
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
    for (const char* name : {"labs", "la"}) {
        EXPECT_FALSE(vxemu::FillBuiltInProfile(name, profile));
    }
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
    expect(ProfileError::Version, [](Profile& p) { p.version = 1; });
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

    expect(ProfileError::TargetCount, [](Profile& p) { p.targetCount = 33; });
    expect(ProfileError::LunCount, [](Profile& p) { p.lunCount = 257; });
    expect(ProfileError::TargetIndex, [](Profile& p) { p.luns[0].target = 5; });
    expect(ProfileError::TargetIndex, [](Profile& p) { p.luns[0].target = 3; });  // an initiator
    expect(ProfileError::DuplicateLun, [](Profile& p) { p.luns[1].number = 0; });
    expect(ProfileError::Field, [](Profile& p) { p.luns[8].number = 2048; });
    expect(ProfileError::Field, [](Profile& p) { p.luns[8].blockSize = 0; });
    expect(ProfileError::Field, [](Profile& p) { p.luns[0].blocks = (1ull << 48) + 1; });
    expect(ProfileError::Field, [](Profile& p) { p.targets[1].target = 256; });
    expect(ProfileError::Field, [](Profile& p) { p.adapters[0].rawDumpBytes = 0x1000001; });
    expect(ProfileError::NoPortName, [](Profile& p) { std::memset(p.targets[0].portName, 0, 8); });
    expect(ProfileError::DuplicatePortName,
           [](Profile& p) { std::memcpy(p.targets[2].portName, p.ports[3].portName, 8); });
    expect(ProfileError::DuplicateTargetAddress, [](Profile& p) { p.targets[4].target = 0; });
    // Bit 0 of a loop identifier tells no two apart.
    expect(ProfileError::DuplicateTargetAddress, [](Profile& p) { p.targets[4].loopId = 0; });

    const auto profile = MakeProfile("lab");
    EXPECT_EQ(vxemu::ValidateProfile(profile.get(), sizeof *profile - 1).error, ProfileError::Size);
}

}  // namespace
