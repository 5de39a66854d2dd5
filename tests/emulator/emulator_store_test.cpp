// What the emulated driver takes over from the persistent store when it starts.
#include "emulator/emulator_model_fixture.h"

#include "model/fabric/stored_config.h"
#include "persist/blocks.h"
#include "persist/driver_records.h"
#include "statistics/fabric_records.h"

namespace {

using namespace emulator_test;

// A port's stored blocks as the library writes them, on a model of the lab profile.
class EmulatorStore : public ModelFixture {
  protected:
    EmulatorStore()
        : targets_(std::make_unique<HX_TARGET_DATA>()), luns_(std::make_unique<HX_LUN_DATA>()) {}

    HX_TARGET_ENTRY& Entry(uint32_t device, uint8_t target) {
        HX_TARGET_ENTRY& entry = targets_->entries[targets_->count++];
        std::memcpy(entry.nodeName, lab->targets[device].nodeName, 8);
        std::memcpy(entry.portName, lab->targets[device].portName, 8);
        entry.target = target;
        entry.targetNumber = static_cast<uint16_t>(101 + 2 * target);
        entry.bindingFlags = 7;
        return entry;
    }
    HX_LUN_RECORD& Record(uint32_t device) {
        HX_LUN_RECORD& record = luns_->records[luns_->count++];
        luns_->version = 2;
        std::memcpy(record.nodeName, lab->targets[device].nodeName, 8);
        std::memcpy(record.portName, lab->targets[device].portName, 8);
        return record;
    }
    vxemu::StoredConfig Stored() {
        vxemu::StoredConfig stored = {};
        stored.hasChecks = true;
        stored.length = sizeof *targets_;
        stored.version = 1;
        stored.checksum = persist::TargetDataChecksum(*targets_);
        stored.targets = {reinterpret_cast<const uint8_t*>(targets_.get()), sizeof *targets_};
        stored.lunLength = persist::BlockLength<HX_LUN_RECORD>(luns_->count);
        stored.luns = {reinterpret_cast<const uint8_t*>(luns_.get()), stored.lunLength};
        return stored;
    }
    // Target number of each device of the profile that the port sees.
    std::vector<uint32_t> Numbers(uint32_t port = kNewest) {
        std::vector<uint32_t> numbers;
        for (const properties::PortDatabaseEntry& entry : Database(port)) {
            numbers.push_back(entry.target);
        }
        return numbers;
    }
    bool Masked(uint32_t device, uint32_t lun, uint32_t port = kNewest) {
        persist::FcAddressBlock block = {};
        block.driverType = static_cast<uint16_t>(properties::DriverAddress::PortName);
        std::memcpy(block.address, lab->targets[device].portName, 8);
        const Answer answer = Ask(port, TargetLunMaskFc, HX_LUN_MASK_SIZE, BytesOf(block));
        EXPECT_EQ(answer.data.size(), HX_LUN_MASK_SIZE);
        return (answer.data.at(lun / 8) >> (lun % 8) & 1) == 0;
    }

    const std::unique_ptr<vxemu::Profile> lab = MakeProfile("lab");
    const std::unique_ptr<HX_TARGET_DATA> targets_;
    const std::unique_ptr<HX_LUN_DATA> luns_;
};

TEST_F(EmulatorStore, BoundTargetsGetTheirAddressAndOthersMakeRoom) {
    const std::vector<uint32_t> before = Numbers();
    Entry(0, 1);
    Entry(1, 0);  // the two change places
    Entry(2, 60);
    model_->ApplyStore(kNewest, Stored());
    auto numbers = Numbers();
    EXPECT_EQ(numbers[0], 1u);
    EXPECT_EQ(numbers[1], 0u);
    EXPECT_EQ(numbers[2], 60u);
    EXPECT_EQ(Database()[0].bindingFlags, 7);
    EXPECT_EQ(+Database()[0].targetNumber, 103);
    EXPECT_EQ(Numbers(1), before) << "another port has a store of its own";

    *targets_ = {};
    Entry(0, static_cast<uint8_t>(before[2]));
    Entry(1, static_cast<uint8_t>(before[2]));  // taken
    model_->ApplyStore(1, Stored());
    numbers = Numbers(1);
    EXPECT_EQ(numbers[0], before[2]);
    EXPECT_EQ(numbers[1], before[1]) << "the first entry has the address";
    EXPECT_EQ(numbers[2], before[0]) << "the lowest number that is free";
    std::sort(numbers.begin(), numbers.end());
    EXPECT_EQ(std::adjacent_find(numbers.begin(), numbers.end()), numbers.end());
}

TEST_F(EmulatorStore, MasksOfBothVersionsAndABase) {
    Record(0).luns[0] = 0x80;
    luns_->records[0].luns[2047] = 0xFF;
    luns_->records[0].luns[1] = 0x7F;  // not the mask bit
    Record(1).luns[12] = 0x80;
    Entry(1, 1).lunBase = 10;
    model_->ApplyStore(kNewest, Stored());
    EXPECT_TRUE(Masked(0, 0));
    EXPECT_TRUE(Masked(0, 2047));
    EXPECT_FALSE(Masked(0, 1));
    EXPECT_TRUE(Masked(1, 2)) << "LUN 2 is byte 10 + 2";
    EXPECT_FALSE(Masked(1, 12));

    auto packed = std::make_unique<persist::LunDataV1>();
    luns_->version = 1;
    *targets_ = {};
    vxemu::StoredConfig stored = Stored();
    stored.lunLength = persist::PackVersion1(*luns_, *packed);
    stored.luns = {reinterpret_cast<const uint8_t*>(packed.get()), stored.lunLength};
    model_->ApplyStore(1, stored);
    EXPECT_TRUE(Masked(0, 0, 1));
    EXPECT_FALSE(Masked(0, 1, 1));
    EXPECT_FALSE(Masked(0, 2047, 1));
    EXPECT_TRUE(Masked(1, 12, 1));
}

// Whoever damages the store loses it, and nothing else happens.
TEST_F(EmulatorStore, AnUnsoundStoreCountsAsNone) {
    const std::vector<uint32_t> before = Numbers();
    Entry(0, 60);
    const auto refused = [&](auto damage) {
        vxemu::StoredConfig stored = Stored();
        damage(stored);
        model_->ApplyStore(kNewest, stored);
        return Numbers() == before && !Masked(0, 3);
    };
    Record(0).luns[3] = 0x80;
    const auto noLuns = [](vxemu::StoredConfig& s) { s.lunLength = 0; };
    EXPECT_TRUE(refused([&](auto& s) { noLuns(s), s.checksum ^= 1; }));
    EXPECT_TRUE(refused([&](auto& s) { noLuns(s), s.version = 2; }));
    EXPECT_TRUE(refused([&](auto& s) { noLuns(s), s.length = 8223; }));
    EXPECT_TRUE(refused([&](auto& s) { noLuns(s), s.targets = s.targets.first(8223); }));
    EXPECT_TRUE(refused([&](auto& s) { noLuns(s), s.targets = {}; }));
    EXPECT_TRUE(refused([&](auto& s) { s.length = 0, s.lunLength += 1; }));
    EXPECT_TRUE(refused([&](auto& s) { s.length = 0, s.luns = {}; }));
    // A count that lies reaches no further than the block.
    luns_->count = 0xFFFF;
    EXPECT_FALSE(refused([&](auto& s) {
        s.length = 0;
        s.lunLength = 32 + sizeof(HX_LUN_RECORD);
        s.luns = s.luns.first(s.lunLength);
    }));
    EXPECT_TRUE(Masked(0, 3));
    // The layout of value names has neither version nor checksum.
    vxemu::StoredConfig stored = Stored();
    stored.lunLength = 0;
    stored.hasChecks = false;
    stored.checksum = stored.version = 0;
    model_->ApplyStore(kNewest, stored);
    EXPECT_EQ(Numbers()[0], 60u);
}

// "bind" and "configrequired" of the driver.
TEST_F(EmulatorStore, ParametersSayWhatBindingsAreFor) {
    const std::vector<uint32_t> before = Numbers();
    const auto apply = [&](const char* parameters) {
        vxemu::StoredConfig stored = Stored();
        stored.parameters = parameters;
        model_->ApplyStore(kNewest, stored);
        return Numbers();
    };
    Entry(0, 60).lunBase = 10;
    Record(0).luns[13] = 0x80;
    EXPECT_EQ(apply("bind=0;other=1"), before);
    EXPECT_TRUE(Masked(0, 3)) << "masks are no bindings";
    EXPECT_EQ(apply("configrequired=0 BIND=1")[0], 60u);

    // The first array is bound; the other host is no target.
    const auto states = [&] {
        statistics::RemotePortRequest request = {};
        request.list.version = 1;
        const Bytes data =
            Ask(kNewest, RemotePortInfo, sizeof(statistics::RemotePortReply), BytesOf(request))
                .data;
        statistics::RemotePortReply reply = {};
        std::memcpy(&reply, data.data(), std::min(data.size(), sizeof reply));
        return std::string{static_cast<char>('0' + reply.entries[0].state),
                           static_cast<char>('0' + reply.entries[1].state),
                           static_cast<char>('0' + reply.entries[4].state)};
    };
    EXPECT_EQ(states(), "112");
    EXPECT_EQ(apply("configrequired=1"), (std::vector<uint32_t>{60, before[3]}));
    EXPECT_EQ(states(), "132") << "reached, but not logged in to";
    EXPECT_EQ(apply("configrequired=1;bind=0").size(), 2u);
    EXPECT_EQ(Database(1).size(), 4u) << "another port";

    // A target that comes later is withheld as well, until it is bound.
    vxemu::TargetProfile late = vxemu::DefaultTarget(*lab);
    late.portName[0] = 0x2B;
    ASSERT_EQ(Control(control::kTargetAdd, late), Done);
    EXPECT_EQ(Numbers().size(), 2u);
    properties::PortDatabaseEntry entry = {};
    std::memcpy(entry.portName, late.portName, sizeof entry.portName);
    entry.target = 40;
    entry.targetNumber = 91;
    EXPECT_EQ(Ask(kNewest, AddTarget, 0, BytesOf(entry)).Status(), Success);
    EXPECT_EQ(Numbers().back(), 40u);

    // Nothing stored, nothing presented.
    vxemu::StoredConfig none = {};
    none.parameters = "configrequired=1";
    model_->ApplyStore(1, none);
    EXPECT_EQ(Database(1).size(), 1u);
}

}  // namespace
