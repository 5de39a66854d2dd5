// Rows of the mapping, and the names of disks.
#include <gtest/gtest.h>

#include <cstring>

#include "support/shown.h"
#include "vxmgr/targets/map_rows.h"

namespace {

using namespace vxmgr;
using support::Shown;

HX_OS_DEVICE Disk(uint32_t number, uint8_t discovered) {
    HX_OS_DEVICE device{};
    std::strcpy(device.name, "\\\\.\\PhysicalDrive7");
    device.type = HX_OS_DEVICE_DISK;
    device.number = number;
    device.bus = 1;
    device.target = 300;
    device.lun = 255;
    std::memcpy(device.portName, "\x2B\x00\x02\x45\x4D\x00\x01\x00", 8);
    std::memcpy(device.portId, "\x01\x02\x03", 3);
    device.discovered = discovered;
    return device;
}

HX_VOLUME Volume(const char* path, uint64_t bytes) {
    HX_VOLUME volume{};
    std::strcpy(volume.name, "\\\\?\\Volume{1}\\");
    std::strcpy(volume.path, path);
    volume.extents = 2;
    volume.extentsOnDisk = 1;
    volume.bytesOnDisk = bytes;
    return volume;
}

TEST(ToolsMap, DisksHaveSeveralNames) {
    const struct {
        const char* text;
        int64_t disk;  // -1: no disk
    } kRows[] = {
        {"0", 0},
        {"4294967295", 4294967295},
        {"4294967296", -1},
        {"PhysicalDrive32", 32},
        {"physicaldrive1", 1},
        {"\\\\.\\PHYSICALDRIVE5", 5},
        {"\\\\.\\5", -1},
        {"\\\\.\\", -1},
        {"PhysicalDrive", -1},
        {"PhysicalDrive-1", -1},
        {"PhysicalDrive1x", -1},
        {"PhysicalDrivePhysicalDrive1", -1},
        {"0x10", -1},
        {" 1", -1},
        {"", -1},
        {"C:", -1},
    };
    for (const auto& row : kRows) {
        const auto disk = ParseDisk(row.text);
        EXPECT_EQ(disk ? int64_t{*disk} : -1, row.disk) << row.text;
    }
    EXPECT_STREQ(DeviceTypeText(HX_OS_DEVICE_CHANGER), "changer");
    EXPECT_EQ(DeviceTypeText(0), nullptr);
    EXPECT_EQ(DeviceTypeText(4), nullptr);
}

TEST(ToolsMap, ARowPerVolumeAndOneWithout) {
    MappedUnit unit = UnitOf(Disk(7, 1));
    EXPECT_TRUE(unit.IsDisk(7));
    EXPECT_FALSE(unit.IsDisk(8));
    ASSERT_EQ(PlacesOf(unit).size(), 1u);
    const tools::Record bare = kPlaceFields.Make(PlacesOf(unit)[0]);
    EXPECT_EQ(Shown(bare, "target_wwn"), "2b:00:02:45:4d:00:01:00");
    EXPECT_EQ(Shown(bare, "port_id"), "0x010203");
    EXPECT_EQ(Shown(bare, "disk"), "7");
    EXPECT_EQ(Shown(bare, "device"), "\\\\.\\PhysicalDrive7");
    EXPECT_EQ(Shown(bare, "mounted_at"), "-");
    unit.volumes = {Volume("E:\\", 1ull << 40), Volume("", 5)};
    ASSERT_EQ(PlacesOf(unit).size(), 2u);
    const tools::Record first = kPlaceFields.Make(PlacesOf(unit)[0]);
    EXPECT_EQ(Shown(first, "mounted_at"), "E:\\");
    EXPECT_EQ(Shown(first, "bytes_on_disk"), "1099511627776");
    const tools::Record second = kPlaceFields.Make(PlacesOf(unit)[1]);
    EXPECT_EQ(Shown(second, "mounted_at"), "-");
    EXPECT_EQ(Shown(second, "volume"), "\\\\?\\Volume{1}\\");
}

TEST(ToolsMap, WhatIsNotThereIsNull) {
    // A tape has a number of its own, which is no disk's.
    HX_OS_DEVICE tape = Disk(7, 0);
    tape.type = HX_OS_DEVICE_TAPE;
    const MappedUnit unit = UnitOf(tape);
    EXPECT_FALSE(unit.IsDisk(7));
    const tools::Record row = kPlaceFields.Make({&unit});
    EXPECT_EQ(Shown(row, "device_type"), "tape");
    for (const char* key : {"disk", "target_wwn", "port_id", "volume"}) {
        EXPECT_EQ(Shown(row, key), "-") << key;
    }
    EXPECT_EQ(Shown(row, "target"), "300");
    MappedUnit bare;
    bare.lun = 3;
    EXPECT_FALSE(bare.IsDisk(0));
    EXPECT_EQ(Shown(kPlaceFields.Make({&bare}), "lun"), "3");
    EXPECT_EQ(Shown(kPlaceFields.Make({&bare}), "device"), "-");
    // A port that failed has the same columns.
    const tools::Record failed = kPlaceFields.Make({});
    EXPECT_EQ(Shown(failed, "lun"), "-");
    ASSERT_EQ(failed.Fields().size(), row.Fields().size());
}

TEST(ToolsMap, QuestionsNameWhatIsMountedFirst) {
    MappedUnit plain;
    plain.device = Disk(7, 0);
    MappedUnit mounted = plain;
    std::strcpy(mounted.device->name, "\\\\.\\PhysicalDrive9");
    mounted.volumes = {Volume("E:\\", 1), Volume("", 1)};
    EXPECT_EQ(VolumesText({}), "");
    EXPECT_EQ(VolumesText({MappedUnit()}), "") << "no device, no I/O";
    EXPECT_EQ(VolumesText({plain, mounted}),
              "PhysicalDrive9 (E:\\, a volume that is mounted nowhere), PhysicalDrive7");
    std::vector<MappedUnit> many(8, plain);
    EXPECT_EQ(VolumesText(many).find("more"), std::string::npos);
    many.insert(many.end(), 2, mounted);
    const std::string text = VolumesText(many);
    EXPECT_EQ(text.find("PhysicalDrive9 (E:"), 0u);
    EXPECT_NE(text.find(" and 2 more"), std::string::npos) << text;
}

}  // namespace
