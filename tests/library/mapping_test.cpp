// Target logical units, operating system devices and volumes.
#include "machine/system_devices.h"
#include "mapping/device_names.h"
#include "mapping/unit_list.h"
#include "support/hbaapi_fixture.h"

namespace {

using namespace support;

TEST(MappingNames, Devices) {
    struct Row {
        const char* name;
        uint32_t type, number;
    };
    const Row rows[] = {
        {"PhysicalDrive0", 1, 0},
        {"PhysicalDrive4294967295", 1, 4294967295},
        {"Tape17", 2, 17},
        {"Changer3", 3, 3},
        {"PhysicalDrive", 0, 0},
        {"PhysicalDrive4294967296", 0, 0},
        {"PhysicalDrive1a", 0, 0},
        {"PhysicalDrive-1", 0, 0},
        {"PhysicalDrive 1", 0, 0},
        {"xPhysicalDrive1", 0, 0},
        {"Tape", 0, 0},
        {"", 0, 0},
    };
    for (const Row& row : rows) {
        const mapping::DeviceName parsed = mapping::ParseDeviceName(row.name);
        EXPECT_EQ(row.type, parsed.type) << row.name;
        EXPECT_EQ(row.number, parsed.number) << row.name;
    }
    mapping::DiskNameText name;
    mapping::WriteDiskName(UINT32_MAX, name);
    EXPECT_STREQ("PhysicalDrive4294967295", name);
}

class MappingTest : public HbaApiTest {
  protected:
    static HX_SCSI_ADDRESS At(uint16_t bus, uint16_t target, uint16_t lun) {
        HX_SCSI_ADDRESS address = {HX_ADDRESS_BUS_TARGET, {}, lun};
        memcpy(address.address, &bus, 2);
        memcpy(address.address + 2, &target, 2);
        return address;
    }
    static HX_SCSI_ADDRESS Named(uint16_t type, const HBA_WWN& name, uint16_t lun) {
        HX_SCSI_ADDRESS address = {type, {}, lun};
        memcpy(address.address, name.wwn, 8);
        return address;
    }
    HX_STATUS Find(const HX_SCSI_ADDRESS& address, uint32_t* count = nullptr,
                   HX_VOLUME* volumes = nullptr) {
        uint32_t none = 0;
        memset(&device, 0xEE, sizeof device);
        return HXMapScsiTargetToVolumes(handle, &address, &device, volumes,
                                        count != nullptr ? count : &none);
    }

    HX_OS_DEVICE device;
    SystemDevices devices{system};
};

TEST_F(MappingTest, DevicesOfLogicalUnits) {
    AnswerDiscovered({{1, 0, 4}, {2, 1, 5}});
    devices.List("C:");
    devices.List("PhysicalDrive3");  // gone
    devices.Add("PhysicalDrive8", {3, 1, 5, 7}, 8);
    devices.Add("PhysicalDrive9", {3, 0, 9, 0}, 9);
    HX_OS_DEVICE expected = {};
    strcpy(expected.name, "\\\\.\\PhysicalDrive8");
    expected.type = HX_OS_DEVICE_DISK;
    expected.number = 8;
    expected.scsiPort = 3;
    expected.bus = 1;
    expected.target = 5;
    expected.lun = 7;
    memcpy(expected.nodeName, WwnOf(2, 0x20).wwn, 8);
    memcpy(expected.portName, WwnOf(2).wwn, 8);
    memcpy(expected.portId, "\x0A\x0B\x02", 3);
    expected.discovered = 1;
    const HX_SCSI_ADDRESS addresses[] = {At(1, 5, 7),
                                         Named(HX_ADDRESS_PORT_NAME, WwnOf(2), 7),
                                         Named(HX_ADDRESS_NODE_NAME, WwnOf(2, 0x20), 7),
                                         {HX_ADDRESS_PORT_ID, {0x0A, 0x0B, 0x02}, 7}};
    for (const HX_SCSI_ADDRESS& address : addresses) {
        EXPECT_EQ(0u, Find(address)) << address.type;
        EXPECT_EQ(BytesOf(expected), BytesOf(device)) << address.type;
    }
    for (const OpenCall& call : system.opens) {
        if (call.name.starts_with("\\\\.\\Physical")) {
            EXPECT_EQ(0u, call.access) << "no right to read is needed";
        }
    }

    EXPECT_EQ(0u, Find(At(0, 9, 0))) << "a device where no port is discovered";
    EXPECT_EQ(0, device.discovered);
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Find(Named(HX_ADDRESS_PORT_NAME, WwnOf(1), 0)))
        << "no device";
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Find(Named(HX_ADDRESS_PORT_NAME, {}, 0)))
        << "zeros name no port";
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Find(At(1, 5, 0x107))) << "no such LUN";
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Find(At(1, 5, 6)));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Find(Named(5, WwnOf(2), 7)));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Find(Named(0, WwnOf(2), 7)));
}

TEST_F(MappingTest, DevicesThatTellLittle) {
    AnswerDiscovered({{1, 0, 4}});
    devices.Add("PhysicalDrive1", {3, 0, 4, 0}, 1).hasAddress = false;
    devices.Add("PhysicalDrive2", {3, 0, 4, 0}, 2).returned = 4;
    devices.Add("PhysicalDrive3", {3, 0, 4, 1}, 77).hasNumber = false;
    devices.Add("PhysicalDrive4", {3, 0, 4, 2}, 78);
    devices.List("PhysicalDrive4");  // for the session and for the machine
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Find(At(0, 4, 0)));
    ASSERT_EQ(0u, Find(At(0, 4, 1)));
    EXPECT_EQ(3u, device.number) << "its name's";
    ASSERT_EQ(0u, Find(At(0, 4, 2)));
    EXPECT_EQ(78u, device.number) << "the one that volumes speak of";
    HBA_FCPTARGETMAPPING mapping[2];
    mapping[0].NumberOfEntries = 1;
    EXPECT_EQ(7u, api.GetFcpTargetMappingHandler(handle, mapping));
    EXPECT_EQ(2u, mapping[0].NumberOfEntries) << "each device once";
}

TEST_F(MappingTest, ManyNames) {
    AnswerDiscovered({{1, 0, 4}});
    for (int i = 0; i < 9000; ++i) {
        devices.List("Device of some other kind " + std::to_string(i));
    }
    devices.Add("PhysicalDrive5", {3, 0, 4, 0}, 5);
    EXPECT_EQ(0u, Find(At(0, 4, 0)));
    EXPECT_EQ((std::vector<uint32_t>{65536, 131072, 262144, 524288}), devices.listRooms);
    devices.listError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(ERROR_ACCESS_DENIED, Find(At(0, 4, 0)));
}

TEST_F(MappingTest, VolumesOfALogicalUnit) {
    AnswerDiscovered({{1, 0, 4}});
    devices.Add("PhysicalDrive5", {3, 0, 4, 0}, 5);
    devices.Add("Tape5", {3, 0, 4, 1}, 5);
    devices.unnamedVolume = "C:\\";
    devices.AddVolume("1", {{5, 0, 1024, 4096}}, {"E:\\", "C:\\mounted\\"});
    devices.AddVolume("2", {{6, 0, 0, 1 << 20}}, {"F:\\"});
    devices.AddVolume("3", {{6, 0, 0, 10}, {5, 0, 8192, 20}, {5, 0, 1 << 20, 30}});
    devices.AddVolume("4", {{5, 0, 0, 7}}, {std::string(300, 'x') + "\\"});
    devices.AddVolume("5", {}).error = ERROR_NOT_READY;
    devices.AddVolume("6", {{5, 0, 0, 9}}, {std::string(2000, 'y')});

    Guarded<HX_VOLUME[4]> found;
    auto* const volumes = reinterpret_cast<HX_VOLUME*>(found.Get());
    uint32_t count = 4;
    ASSERT_EQ(0u, Find(At(0, 4, 0), &count, volumes));
    ASSERT_EQ(4u, count);
    HX_VOLUME expected = {};
    strcpy(expected.name, "\\\\?\\Volume{1}\\");
    strcpy(expected.path, "E:\\");
    expected.extents = 1;
    expected.extentsOnDisk = 1;
    expected.bytesOnDisk = 4096;
    EXPECT_EQ(BytesOf(expected), BytesOf(volumes[0]));
    expected = {};
    strcpy(expected.name, "\\\\?\\Volume{3}\\");
    expected.extents = 3;
    expected.extentsOnDisk = 2;
    expected.bytesOnDisk = 50;
    EXPECT_EQ(BytesOf(expected), BytesOf(volumes[1])) << "spread over two disks, mounted nowhere";
    EXPECT_STREQ("\\\\?\\Volume{4}\\", volumes[2].name);
    EXPECT_STREQ("", volumes[2].path) << "longer than the field";
    EXPECT_STREQ("\\\\?\\Volume{6}\\", volumes[3].name);
    EXPECT_EQ(0u, devices.searchesOpen);

    for (const uint32_t room : {0u, 3u}) {
        GuardedBuffer few(room * sizeof(HX_VOLUME));
        count = room;
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL,
                  Find(At(0, 4, 0), &count,
                       room == 0 ? nullptr : reinterpret_cast<HX_VOLUME*>(few.Data())));
        EXPECT_EQ(4u, count);
        EXPECT_EQ(5u, device.number);
    }
    count = 4;
    ASSERT_EQ(0u, Find(At(0, 4, 1), &count, volumes));
    EXPECT_EQ(0u, count) << "a tape of the same number has none";
    count = 4;
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Find(At(0, 4, 2), &count, volumes));
    EXPECT_EQ(0u, count);
}

TEST_F(MappingTest, LogicalUnitsOfAVolume) {
    AnswerDiscovered({{1, 0, 4}});
    devices.Add("PhysicalDrive5", {3, 0, 4, 0}, 5);
    devices.Add("PhysicalDrive6", {3, 0, 4, 1}, 6);
    devices.Add("PhysicalDrive7", {4, 0, 4, 1}, 7);
    devices.Add("Tape8", {3, 0, 4, 2}, 8);
    devices.AddVolume("ab-c", {{6, 0, 0, 10}, {7, 0, 0, 10}, {5, 0, 0, 10}, {6, 0, 99, 10}},
                      {"E:\\", "C:\\mounted\\"});
    devices.AddVolume("far", {{7, 0, 0, 10}, {8, 0, 0, 10}}, {"F:\\"});
    for (const char* name : {"E:", "E:\\", "C:\\mounted", "C:\\mounted\\",
                             "\\\\.\\E:", "\\\\?\\Volume{ab-c}\\", "\\\\?\\Volume{ab-c}"}) {
        SCOPED_TRACE(name);
        Guarded<HX_OS_DEVICE[2]> found;
        auto* const units = reinterpret_cast<HX_OS_DEVICE*>(found.Get());
        uint32_t count = 2;
        ASSERT_EQ(0u, HXMapVolumeToScsiTarget(handle, name, units, &count));
        ASSERT_EQ(2u, count) << "each disk of this port once";
        EXPECT_EQ(6u, units[0].number) << "in the order of the volume";
        EXPECT_EQ(1u, units[0].lun);
        EXPECT_EQ(0, memcmp(units[0].portName, WwnOf(1).wwn, 8));
        EXPECT_EQ(5u, units[1].number);
    }
    uint32_t count = 1;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXMapVolumeToScsiTarget(handle, "E:", &device, &count));
    EXPECT_EQ(2u, count);
    count = 1;
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXMapVolumeToScsiTarget(handle, "F:", &device, &count))
        << "another port's disk, and a tape's number";
    EXPECT_EQ(0u, count);
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, HXMapVolumeToScsiTarget(handle, "X:", &device, &count));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              HXMapVolumeToScsiTarget(handle, "\\\\?\\Volume{none}\\", &device, &count));
}

TEST_F(MappingTest, DiskExtents) {
    std::vector<HX_DISK_EXTENT> many;
    for (uint32_t i = 0; i < 65; ++i) {  // more than the library asks for at first, and then
        many.push_back({i, 0, uint64_t{i} << 40, i});
    }
    devices.AddVolume("many", many, {"E:\\"});
    Guarded<HX_DISK_EXTENT[65]> found;
    auto* const extents = reinterpret_cast<HX_DISK_EXTENT*>(found.Get());
    uint32_t count = 65;
    ASSERT_EQ(0u, HXGetDiskExtents("E:", extents, &count));
    EXPECT_EQ(65u, count);
    EXPECT_EQ(0, memcmp(many.data(), extents, sizeof many[0] * 65));
    count = 0;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetDiskExtents("E:", nullptr, &count));
    EXPECT_EQ(65u, count);

    SystemDevices::Volume& liar = devices.AddVolume("liar", {{1, 0xEEEEEEEE, 2, 3}}, {"F:\\"});
    liar.claimed = 1'000'000;
    count = 65;
    ASSERT_EQ(0u, HXGetDiskExtents("F:", extents, &count));
    EXPECT_EQ(1u, count) << "what came, whatever the count says";
    EXPECT_EQ(0u, extents[0].reserved);
    devices.AddVolume("none", {}, {"G:\\"});
    ASSERT_EQ(0u, HXGetDiskExtents("G:", extents, &count));
    EXPECT_EQ(0u, count);
    devices.AddVolume("huge", std::vector<HX_DISK_EXTENT>(5000), {"H:\\"});
    count = 65;
    EXPECT_EQ(ERROR_MORE_DATA, HXGetDiskExtents("H:", extents, &count)) << "an end to asking";
    EXPECT_EQ(0u, count);
}

TEST_F(MappingTest, EverythingAtOnce) {
    devices.Add("PhysicalDrive5", {4, 0, 4, 0}, 5);
    devices.Add("PhysicalDrive6", {3, 1, 0, 0}, 6);
    devices.Add("PhysicalDrive7", {3, 0, 9, 1}, 7);
    devices.Add("Tape0", {3, 0, 9, 0}, 0);
    devices.Add("PhysicalDrive8", {3, 0, 9, 2}, 8).hasAddress = false;
    system.opens.clear();
    port->Forget();
    Guarded<HX_OS_DEVICE[4]> room;
    auto* const found = reinterpret_cast<HX_OS_DEVICE*>(room.Get());
    uint32_t count = 4;
    ASSERT_EQ(0u, HXListOsDevices(found, &count));
    EXPECT_EQ(5u, system.opens.size()) << "each device once";
    EXPECT_EQ(0u, port->Requests().size());
    ASSERT_EQ(4u, count);
    const char* const inOrder[] = {"Tape0", "PhysicalDrive7", "PhysicalDrive6", "PhysicalDrive5"};
    for (uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(std::string("\\\\.\\") + inOrder[i], found[i].name);
        EXPECT_EQ(i < 3 ? 3 : 4, found[i].scsiPort);
        EXPECT_EQ(0, found[i].discovered);
    }
    count = 0;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXListOsDevices(nullptr, &count));
    EXPECT_EQ(4u, count);
    devices.listError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(ERROR_ACCESS_DENIED, HXListOsDevices(found, &count));
    EXPECT_EQ(0u, count);

    devices.AddVolume("1", {{5, 0, 1024, 4096}}, {"E:\\"});
    devices.AddVolume("2", {{6, 0, 0, 10}, {5, 0, 0, 20}, {6, 0, 99, 30}});
    devices.AddVolume("3", {{5, 0, 0, 7}}).error = ERROR_NOT_READY;
    const struct {
        uint32_t disk;
        const char* name;
        uint32_t extents;
        uint64_t bytes;
    } rows[] = {{5, "1", 1, 4096}, {6, "2", 2, 40}, {5, "2", 1, 20}};
    system.opens.clear();
    Guarded<HX_DISK_VOLUME[3]> volumeRoom;
    auto* const volumes = reinterpret_cast<HX_DISK_VOLUME*>(volumeRoom.Get());
    count = 3;
    ASSERT_EQ(0u, HXListDiskVolumes(volumes, &count));
    EXPECT_EQ(3u, system.opens.size()) << "volumes alone";
    ASSERT_EQ(std::size(rows), count);
    for (uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(rows[i].disk, volumes[i].disk);
        EXPECT_EQ(SystemDevices::VolumeName(rows[i].name), volumes[i].volume.name);
        EXPECT_EQ(rows[i].extents, volumes[i].volume.extentsOnDisk);
        EXPECT_EQ(rows[i].bytes, volumes[i].volume.bytesOnDisk);
    }
    EXPECT_STREQ("E:\\", volumes[0].volume.path);
    EXPECT_EQ(3u, volumes[2].volume.extents);
    count = 0;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXListDiskVolumes(nullptr, &count));
    EXPECT_EQ(3u, count);
}

struct ListedAs {
    ScsiLocation at;
    uint8_t peripheral;
};

// A port's list of units on as many buses as it takes; wide: more bytes than are asked for at
// first.
Bytes UnitList(const std::vector<ListedAs>& units, size_t inquiry = 36) {
    constexpr uint8_t kBuses = 2;
    Bytes list = {kBuses, 0, 0, 0};
    list.resize(sizeof(mapping::UnitListHead) + kBuses * sizeof(mapping::UnitListBus));
    for (uint8_t bus = 0; bus < kBuses; ++bus) {
        size_t link = sizeof(mapping::UnitListHead) + bus * sizeof(mapping::UnitListBus) + 4;
        for (const ListedAs& row : units) {
            if (row.at.bus != bus) {
                continue;
            }
            const auto place = static_cast<uint32_t>(list.size());
            memcpy(list.data() + link, &place, sizeof place);
            ++list[sizeof(mapping::UnitListHead) + bus * sizeof(mapping::UnitListBus)];
            const mapping::ListedUnit unit = {
                bus, row.at.target, row.at.lun, 1, static_cast<uint32_t>(inquiry), 0};
            const Bytes bytes = BytesOf(unit);
            list.insert(list.end(), bytes.begin(), bytes.end());
            link = list.size() - 4;
            list.resize(list.size() + inquiry);
            list[place + sizeof unit] = row.peripheral;
        }
    }
    return list;
}

TEST(MappingUnits, DamagedListsTellNothing) {
    const Bytes whole = UnitList({{{3, 0, 4, 0}, 0}, {{3, 1, 5, 7}, 1}, {{3, 1, 5, 8}, 5}});
    std::string seen;
    const auto visit = [&](const mapping::ListedUnit& unit) {
        seen += std::to_string(unit.bus) + ":" + std::to_string(unit.target) + ":" +
                std::to_string(unit.lun) + " ";
    };
    EXPECT_TRUE(mapping::ForEachUnit(whole, visit));
    EXPECT_EQ("0:4:0 1:5:7 ", seen) << "no CD drive";
    for (size_t length = 0; length + 36 <= whole.size(); ++length) {
        GuardedBuffer cut(length);
        memcpy(cut.Data(), whole.data(), length);
        EXPECT_FALSE(mapping::ForEachUnit({cut.Data(), length}, visit)) << length;
    }
    for (size_t at = 0; at < whole.size(); ++at) {
        for (const uint8_t value : {uint8_t{20}, uint8_t{0xFF}}) {
            GuardedBuffer bytes(whole.size());
            memcpy(bytes.Data(), whole.data(), whole.size());
            bytes.Data()[at] = value;
            mapping::ForEachUnit({bytes.Data(), whole.size()}, [](const mapping::ListedUnit&) {});
        }
    }
}

// A port that lists its units spares the devices of other ports, and hides nothing for that.
TEST_F(MappingTest, PortsThatTellTheirUnits) {
    AnswerDiscovered({{1, 0, 4}, {2, 1, 5}, {3, 0, 9}});
    for (uint8_t i = 0; i < 20; ++i) {
        devices.Add("PhysicalDrive" + std::to_string(100 + i), {4, 0, i, 0}, 100u + i);
    }
    SystemDevices::Unit& moving = devices.Add("PhysicalDrive120", {3, 0, 4, 0}, 120);
    devices.Add("PhysicalDrive121", {3, 1, 5, 7}, 121);
    const auto asked = [&](HBA_UINT32 expected) {
        system.opens.clear();
        HBA_FCPTARGETMAPPING list[3];
        list[0].NumberOfEntries = 2;
        EXPECT_EQ(expected > 2 ? 7u : 0u, api.GetFcpTargetMappingHandler(handle, list));
        EXPECT_EQ(expected, list[0].NumberOfEntries);
        return system.opens.size();
    };
    EXPECT_EQ(22u, asked(2)) << "a port that tells nothing";
    port->unitList = UnitList({{{3, 0, 4, 0}, 0}, {{3, 1, 5, 7}, 0}, {{3, 0, 4, 9}, 0x0C}});
    asked(2);  // what other tests left behind this port is gone, and forgotten now
    EXPECT_EQ(2u, asked(2)) << "an array controller is no device of the system";
    const auto nameAt = [&](HBA_UINT32 index) {
        HBA_PORTATTRIBUTES attributes{};
        system.opens.clear();
        EXPECT_EQ(0u, api.GetDiscoveredPortAttributesHandler(handle, 0, index, &attributes));
        return std::string(attributes.OSDeviceName) + " " + std::to_string(system.opens.size());
    };
    EXPECT_EQ("\\\\.\\PhysicalDrive121 2", nameAt(1)) << "both of the port, no other";
    EXPECT_EQ(" 0", nameAt(2)) << "the port has nothing there";

    // What comes, moves or goes between two calls is seen.
    devices.Add("PhysicalDrive5", {3, 0, 4, 1}, 5);
    port->unitList = UnitList(
        {{{3, 0, 4, 0}, 0}, {{3, 1, 5, 7}, 0}, {{3, 0, 4, 1}, 0}, {{3, 0, 9, 0}, 0}}, 4000);
    moving.at = {3, 0, 9, 0};
    EXPECT_EQ(25u, asked(3)) << "a unit without a device: all are asked";
    EXPECT_EQ("\\\\.\\PhysicalDrive120 2", nameAt(2));
    moving.at = {4, 7, 7, 7};
    port->unitList = UnitList({{{3, 1, 5, 7}, 0}, {{3, 0, 4, 1}, 0}});
    EXPECT_EQ(3u, asked(2)) << "the one that has moved to another port is asked once more";
    EXPECT_EQ(2u, asked(2));
    port->unitList.resize(20);
    EXPECT_EQ(23u, asked(2)) << "a list that is cut off tells nothing";
}

TEST_F(MappingTest, BadArguments) {
    uint32_t count = 1;
    HX_DISK_EXTENT extent;
    const std::string longest(259, 'x');
    const std::string tooLong(260, 'x');
    const std::string longVolume = SystemDevices::VolumeName(std::string(60, 'x'));
    for (const char* name :
         {static_cast<const char*>(nullptr), "", tooLong.c_str(), longVolume.c_str()}) {
        count = 1;
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXMapVolumeToScsiTarget(handle, name, &device, &count));
        count = 1;
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetDiskExtents(name, &extent, &count));
    }
    count = 1;
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, HXGetDiskExtents(longest.c_str(), &extent, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetDiskExtents("E:", &extent, nullptr));
    count = 1;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetDiskExtents("E:", nullptr, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXListOsDevices(nullptr, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXListOsDevices(&device, nullptr));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXListDiskVolumes(nullptr, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXListDiskVolumes(nullptr, nullptr));
}

}  // namespace
