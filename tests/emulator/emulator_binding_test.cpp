// Discovered devices, the port database, masks and bindings, and changes of the fabric.
#include "emulator/emulator_model_fixture.h"

#include "hxpersist.h"
#include "persist/driver_records.h"
#include "properties/port_database_records.h"

namespace {

using namespace emulator_test;

class EmulatorBinding : public ModelFixture {
  protected:
    DriverStatus Add(const properties::PortDatabaseEntry& entry) {
        return Ask(kNewest, command::AddTarget, 0, BytesOf(entry)).Status();
    }

    Bytes Mask(uint8_t target, uint32_t port = kNewest, uint32_t room = 256) {
        Bytes address(16);
        address[2] = target;
        const Answer answer =
            Send(port, Envelope(TargetLunMask, 16, room), address, sizeof(ExtRequest) + room);
        EXPECT_EQ(answer.Status(), Success);
        return answer.data;
    }

    vxemu::ProfileError Change(uint32_t code, const Bytes& record) {
        Bytes buffer = record;
        uint32_t returned = 0;
        const Completion completion =
            model_->Control(code, buffer.data(), static_cast<uint32_t>(buffer.size()),
                            static_cast<uint32_t>(buffer.size()), &returned);
        EXPECT_EQ(completion, Done);
        vxemu::ChangeReply reply = {};
        std::memcpy(&reply, buffer.data(), sizeof reply);
        return reply.error;
    }

    // What a legacy caller sends about the second target, as the port lists it.
    persist::TargetAndMaskRequest SecondTarget(uint32_t port) {
        using List = properties::LegacyTargetListReply;
        const Bytes data = AskPlain(port, LegacyQuery, Selector(kTargetList), sizeof(List));
        persist::TargetAndMaskRequest request = {};
        EXPECT_EQ(data.size(), sizeof(List));
        std::memcpy(&request.entry, &data.at(offsetof(List, entries[1])), sizeof request.entry);
        std::memcpy(request.nodeName, request.entry.nodeName, 8);
        std::memcpy(request.portName, request.entry.portName, 8);
        return request;
    }
    static constexpr auto kTargetList =
        static_cast<uint8_t>(properties::LegacySelector::TargetList);
    static Bytes Selector(uint8_t number) { return {0, 0, 0, 0, number, 0, 0, 0, 0, 0, 0, 0}; }

    const std::unique_ptr<vxemu::Profile> lab = MakeProfile("lab");
};

TEST_F(EmulatorBinding, DiscoveredDevicesAndDatabase) {
    const auto entries = Database();
    ASSERT_EQ(entries.size(), 4u);
    for (uint32_t index = 0; index < 4; ++index) {
        const Answer port =
            Ask(kNewest, DiscoveredPort, 60, BytesOf(properties::DiscoveredRequest{index, {}}));
        EXPECT_EQ(port.data.size(), 60u);
        EXPECT_EQ(std::memcmp(port.data.data(), &entries[index], 26), 0);
        EXPECT_EQ(std::memcmp(entries[index].portName, lab->targets[index].portName, 8), 0);
        EXPECT_EQ(entries[index].targetNumber % 2, 1);
    }
    EXPECT_STREQ(entries[1].symbolicName, "Emulated array B");
    const uint32_t luns[] = {4, 3, 2};
    for (uint32_t index = 0; index < 3; ++index) {
        const auto target =
            Ask(kNewest, DiscoveredTarget, 64, BytesOf(properties::DiscoveredRequest{index, {}}))
                .As<HX_DISCOVERED_TARGET>();
        EXPECT_EQ(+target.numberOfLuns, luns[index]);
    }
    for (uint32_t index : {4u, 0xFFFFFFFFu}) {
        const Bytes request = BytesOf(properties::DiscoveredRequest{index, {}});
        EXPECT_EQ(Ask(kNewest, DiscoveredPort, 60, request).Status(), DeviceNotFound);
        EXPECT_EQ(Ask(kNewest, DiscoveredTarget, 64, request).Status(), DeviceNotFound);
    }

    // Room for one device: the count is that of all.
    const Answer cut = Ask(kNewest, PortDatabase, 8 + 172, {7, 0, 0, 0});
    EXPECT_EQ(cut.Status(), BufferTooSmall);
    EXPECT_EQ(cut.envelope.ext.responseLen, 8u + 4 * 172);
    EXPECT_EQ(cut.data[4], 4);
    EXPECT_EQ(Ask(kNewest, PortDatabase, 8, {7}).Status(), InvalidParameter);
}

TEST_F(EmulatorBinding, MasksArePerPortAndTarget) {
    EXPECT_EQ(Mask(0), Bytes(256, 0xFF));
    EXPECT_EQ(Mask(0, kNewest, 32), Bytes(32, 0xFF));
    // By address, by name, with a mask shorter and longer than whole.
    Bytes byAddress(16);
    byAddress[2] = 1;
    byAddress.insert(byAddress.end(), {0x01, 0x02});
    EXPECT_EQ(Ask(kNewest, SetTargetLunMask, 0, byAddress).Status(), Success);
    Bytes expected(256, 0xFF);
    expected[0] = 0x01;
    expected[1] = 0x02;
    EXPECT_EQ(Mask(1), expected);
    EXPECT_EQ(Mask(1, 1), Bytes(256, 0xFF));
    EXPECT_EQ(Mask(0), Bytes(256, 0xFF));

    persist::FcAddressBlock byName = {};
    std::memcpy(byName.address, lab->targets[1].portName, 8);
    byName.driverType = 2;
    EXPECT_EQ(Ask(kNewest, TargetLunMaskFc, 256, BytesOf(byName)).data, expected);
    EXPECT_EQ(Ask(kNewest, SetTargetLunMaskFc, 0, BytesOf(byName, Bytes(300))).Status(), Success);
    EXPECT_EQ(Mask(1), Bytes(256, 0));
    EXPECT_EQ(Mask(2), Bytes(256, 0xFF));
    EXPECT_EQ(Ask(kNewest, SetTargetLunMaskFc, 0, BytesOf(byName)).Status(), Success);
    EXPECT_EQ(Mask(1), Bytes(256, 0)) << "a mask without bytes changes nothing";

    byName.driverType = 4;
    EXPECT_EQ(Ask(kNewest, TargetLunMaskFc, 256, BytesOf(byName)).Status(), DeviceNotFound);
    byAddress[2] = 3;  // a host has no mask
    EXPECT_EQ(Ask(kNewest, SetTargetLunMask, 0, byAddress).Status(), DeviceNotFound);
    EXPECT_EQ(Ask(kNewest, TargetLunMask, 256, Bytes(15)).Status(), InvalidParameter);
}

TEST_F(EmulatorBinding, TargetsAreBoundAndSwapped) {
    properties::PortDatabaseEntry entry = {};
    entry.portName[7] = 0x77;
    entry.nodeName[7] = 0x76;
    entry.portId[0] = 0x0A;
    entry.target = 9;
    entry.targetNumber = 41;
    entry.bindingFlags = 3;
    // A name that nobody has brings no device.
    EXPECT_EQ(Add(entry), DriverStatus::DeviceNotFound);
    EXPECT_EQ(Add({}), DriverStatus::DeviceNotFound);
    EXPECT_EQ(Database().size(), 4u);
    auto target = vxemu::DefaultTarget(*lab);
    std::memcpy(target.portName, entry.portName, sizeof target.portName);
    ASSERT_EQ(Change(vxemu::control::kTargetAdd, BytesOf(target)), vxemu::ProfileError::None);
    EXPECT_EQ(Add(entry), DriverStatus::Success);
    auto entries = Database();
    ASSERT_EQ(entries.size(), 5u);
    EXPECT_EQ(+entries[4].target, 9);
    EXPECT_EQ(entries[4].bindingFlags, 3);
    EXPECT_EQ(std::memcmp(entries[4].portId, target.portId, 3), 0) << "where it stands stays";
    EXPECT_NE(+Database(1)[4].target, 9) << "a binding is the port's own";
    // Once more: the same device takes the new address.
    entry.target = 10;
    EXPECT_EQ(Ask(kNewest, command::AddTargetOld, 0, BytesOf(entry)).Status(),
              DriverStatus::Success);
    EXPECT_EQ(+Database()[4].target, 10);
    // An address that is taken, too short.
    entry.target = 0;
    EXPECT_EQ(Add(entry), DriverStatus::InvalidParameter);
    EXPECT_EQ(Ask(kNewest, command::AddTargetOld, 0, Bytes(171)).Status(),
              DriverStatus::InvalidParameter);

    entries = Database();
    persist::SwapRequest swap = {entries[0], entries[1]};
    EXPECT_EQ(Ask(kNewest, SwapTargets, 0, BytesOf(swap)).Status(), Success);
    EXPECT_EQ(+Database()[0].target, 1);
    EXPECT_EQ(+Database()[1].target, 0);
    EXPECT_EQ(+Database(1)[0].target, 0) << "a binding is the port's own";
    // One that nobody has cannot take a place, and none can be taken from it.
    swap.newDevice.portName[5] ^= 0x10;
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(Ask(kNewest, command::SwapTargetsOld, 0, BytesOf(swap)).Status(),
                  DriverStatus::DeviceNotFound);
        std::swap(swap.oldDevice, swap.newDevice);
    }
    EXPECT_EQ(std::memcmp(Database()[0].portName, entries[0].portName, 8), 0);
    EXPECT_EQ(+Database()[0].target, 1);

    // As many devices as there is room for.
    vxemu::ProfileError error = vxemu::ProfileError::None;
    uint8_t number = 0;
    for (; error == vxemu::ProfileError::None && number < 100; ++number) {
        vxemu::TargetProfile more = target;
        more.portName[0] = 0x55;
        more.portName[7] = number;
        more.portId[1] = static_cast<uint8_t>(100 + number);
        more.target = static_cast<uint16_t>(100 + number);
        more.loopId = static_cast<uint16_t>(1000 + 2 * number);
        error = Change(vxemu::control::kTargetAdd, BytesOf(more));
    }
    EXPECT_EQ(error, vxemu::ProfileError::TargetCount);
    EXPECT_EQ(number, vxemu::kMaxTargets - 6 + 1);
}

TEST_F(EmulatorBinding, LegacyMasksAndTargets) {
    auto lunList = [&] {
        const Bytes data = AskPlain(kLegacy, LegacyQuery, Selector(12), 73760);
        auto list = std::make_unique<persist::LunDataV1>();
        EXPECT_EQ(data.size(), sizeof *list);
        std::memcpy(list.get(), data.data(), std::min(data.size(), sizeof *list));
        return list;
    };
    const auto before = lunList();
    EXPECT_EQ(+before->head.version, 1);
    ASSERT_EQ(+before->head.count, 3);
    EXPECT_EQ(std::memcmp(before->records[1].portName, lab->targets[1].portName, 8), 0);
    EXPECT_EQ(before->records[1].visible[31], 0xFF);
    EXPECT_EQ(before->records[1].visible[32], 0);

    persist::TargetAndMaskRequest request = SecondTarget(kLegacy);
    request.visible[0] = 0xFE;
    AskPlain(kLegacy, LegacySetTarget, BytesOf(request), 0);
    EXPECT_EQ(lunList()->records[1].visible[0], 0xFE);
    EXPECT_EQ(lunList()->records[1].visible[1], 0);
    EXPECT_EQ(lunList()->records[0].visible[0], 0xFF);
    request.visible[0] = 0x7F;
    AskPlain(kLegacy, LegacyAddTarget, BytesOf(request), 0);
    EXPECT_EQ(lunList()->records[1].visible[0], 0x7F);

    request.portName[7] ^= 0xFF;
    AskPlain(kLegacy, LegacySetTarget, BytesOf(request), 0, Invalid);
    AskPlain(kLegacy, LegacySetTarget, Bytes(363), 0, Invalid);
    AskPlain(kLegacy, LegacySwapTargets, Bytes(75), 0, Invalid);
    AskPlain(kLegacy, LegacySwapTargets, Bytes(76), 0, Invalid);
}

TEST_F(EmulatorBinding, ACurrentDriverTakesAppliedTargetData) {
    persist::TargetAndMaskRequest request = SecondTarget(kNewest);
    request.entry.bindingFlags = 5;
    request.visible[0] = 0xFE;
    AskPlain(kNewest, LegacySetTarget, BytesOf(request), 0);
    EXPECT_EQ(Database()[1].bindingFlags, 5);
    EXPECT_EQ(Mask(1)[0], 0xFE);
    AskPlain(kNewest, LegacyQuery,
             Selector(static_cast<uint8_t>(properties::LegacySelector::LinkValue)), 64, Invalid);
}

TEST_F(EmulatorBinding, TheFabricChangesWhileItRuns) {
    using vxemu::ProfileError;
    auto target = vxemu::DefaultTarget(*lab);
    target.portName[7] = 1;
    EXPECT_EQ(Change(control::kTargetAdd, BytesOf(target)), ProfileError::None);
    EXPECT_EQ(Database().size(), 5u);
    EXPECT_EQ(Change(control::kTargetAdd, BytesOf(target)), ProfileError::DuplicatePortName);
    target.portName[7] = 2;
    EXPECT_EQ(Change(control::kTargetAdd, BytesOf(target)), ProfileError::DuplicateTargetAddress);
    EXPECT_EQ(Database().size(), 5u);

    TargetSelector selector = {};
    selector.portName[7] = 1;
    vxemu::LunRequest lun = {selector, vxemu::DefaultLun(0, 17)};
    lun.lun.masked = 1;
    EXPECT_EQ(Change(control::kLunAdd, BytesOf(lun)), ProfileError::None);
    EXPECT_EQ(Change(control::kLunAdd, BytesOf(lun)), ProfileError::DuplicateLun);
    const auto number = static_cast<uint8_t>(+Database()[4].target);
    EXPECT_EQ(Mask(number)[2], 0xFD);
    const vxemu::LunFieldRequest unmask = {{selector, 17}, {"masked", 1, {0}}};
    EXPECT_EQ(Change(control::kLunSet, BytesOf(unmask)), ProfileError::None);
    EXPECT_EQ(Mask(number)[2], 0xFF);
    vxemu::TargetFieldRequest field = {selector, {"target", 2, {0, 0}}};
    EXPECT_EQ(Change(control::kTargetSet, BytesOf(field)), ProfileError::DuplicateTargetAddress);
    EXPECT_EQ(+Database()[4].target, number);
    field = {selector, {"portName", 8, {}}};
    EXPECT_EQ(Control(control::kTargetSet, field), ShortBuffer);
    EXPECT_EQ(Control(control::kLunRemove, vxemu::LunSelector{selector, 18}), NoDevice);

    // What stands behind a target that is removed keeps its LUNs and masks.
    Bytes hide(17);
    hide[2] = 2;
    Ask(kNewest, SetTargetLunMask, 0, hide);
    std::memcpy(selector.portName, lab->targets[0].portName, 8);
    EXPECT_EQ(Change(control::kTargetRemove, BytesOf(selector)), ProfileError::None);
    ASSERT_EQ(Database().size(), 4u);
    EXPECT_EQ(Mask(2)[0], 0);
    EXPECT_EQ(Mask(1)[0], 0xFF);
    const auto second =
        Ask(kNewest, DiscoveredTarget, 64, BytesOf(properties::DiscoveredRequest{0, {}}))
            .As<HX_DISCOVERED_TARGET>();
    EXPECT_EQ(std::memcmp(second.device.portName, lab->targets[1].portName, 8), 0);
    EXPECT_EQ(+second.numberOfLuns, 3u);
    EXPECT_EQ(Control(control::kTargetRemove, selector), NoDevice);
}

}  // namespace
