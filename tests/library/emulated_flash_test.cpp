// The library's flash functions over the emulated adapters.
#include <algorithm>

#include "flash/flash_records.h"
#include "flash/nvram_variables.h"
#include "machine/emulated_adapters.h"
#include "model/storage/nvram_content.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

class EmulatedFlashTest : public LibraryTest {
  protected:
    void Start(uint16_t thirdDevice = 0) {
        profile = std::make_unique<vxemu::Profile>();
        ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
        if (thirdDevice != 0) {
            profile->adapters[2] =
                vxemu::DefaultAdapter(thirdDevice, vxemu::DriverGeneration::Extended);
            strcpy(profile->adapters[2].serial, "EMUCLASSIC");
        }
        adapters = std::make_unique<EmulatedAdapters>(system, *profile);
    }
    void TearDown() override {
        LibraryTest::TearDown();
        adapters.reset();
    }
    std::vector<uint8_t> Region(uint32_t handle, uint32_t code, size_t bytes) {
        std::vector<uint8_t> image(bytes);
        EXPECT_EQ(0u,
                  HXGetOptionRomEx(handle, 0, image.data(), static_cast<uint32_t>(bytes), code));
        return image;
    }

    std::unique_ptr<vxemu::Profile> profile;
    std::unique_ptr<EmulatedAdapters> adapters;
};

constexpr uint32_t kFirmwareBytes = 512 * 1024;

TEST_F(EmulatedFlashTest, NewestAdapterIsUpdatedAndActivated) {
    Start();
    const uint32_t handle = Open(0);
    const uint32_t other = Open(1);
    uint64_t capabilities = 0;
    EXPECT_EQ(0u, HXGetFlashUpdateCapabilities(handle, 0, &capabilities));
    EXPECT_EQ(4u, capabilities);
    EXPECT_EQ(0u, HXGetBFSInfo(handle));
    uint8_t state[64] = {};
    EXPECT_EQ(0u, HXGetAdapterLockdownState(handle, 0, state));

    auto image = Region(handle, HX_REGION_FIRMWARE, kFirmwareBytes);
    EXPECT_EQ(HXMGT_NO_FLASH_UPDATE_TOKEN,
              HXUpdateOptionRomEx2(handle, 0, image.data(), kFirmwareBytes, HX_REGION_FIRMWARE));
    // A handle whose capabilities nobody asked for needs no lock.
    const auto updated = [&] {
        return HXUpdateOptionRomEx2(other, 0, image.data(), kFirmwareBytes, HX_REGION_FIRMWARE);
    };
    // Version and checksum: the words are big-endian, and the first segment's last one balances it.
    image[5 * 4 + 3] += 1;
    const size_t last = kFirmwareBytes / 2 - 1;
    const uint8_t balance = image[last];
    image[last] -= 1;
    ASSERT_NE(0, balance);
    EXPECT_EQ(0u, updated());
    EXPECT_EQ(image, Region(handle, HX_REGION_FIRMWARE, kFirmwareBytes));
    HX_FIRMWARE_PROPERTY firmware = {};
    EXPECT_EQ(0u, HXGetHbaDeviceFirmwareProperty(handle, &firmware));
    EXPECT_STREQ("9.13.01", firmware.version);
    EXPECT_EQ(0u, HXSendFlashUpdateFWAttributes(handle, 0, firmware.activationAttributes, 30));
    EXPECT_EQ(0u, HXOnlineActivateFlashUpdate(handle));
    // That image is not signed any more.
    EXPECT_EQ(
        HXMGT_OPTION_ROM_INVALID_FIRMWARE,
        HXUpdateSecureOptionRomEx(other, 0, image.data(), kFirmwareBytes, HX_REGION_FIRMWARE));
    image[last] += 1;
    image[5 * 4 + 3] -= 1;
    EXPECT_EQ(
        0u, HXUpdateSecureOptionRomEx(other, 0, image.data(), kFirmwareBytes, HX_REGION_FIRMWARE));
    // Where the adapter demands it, the plain update is a secure one.
    vxemu::FieldRequest demand = {3, {"secure_updates", 1, {1}}};
    adapters->Control<vxemu::CountReply>(vxemu::control::kSetField, demand);
    EXPECT_EQ(0u, updated());
    EXPECT_EQ(0u, HXGetHbaDeviceFirmwareProperty(handle, &firmware));
    EXPECT_STREQ("9.13.01", firmware.version) << "not activated by a secure update";
    EXPECT_EQ(0u, HXOnlineActivateFlashUpdate(handle));
    EXPECT_EQ(0u, HXGetHbaDeviceFirmwareProperty(handle, &firmware));
    EXPECT_STREQ("9.12.01", firmware.version);

    vxemu::FieldRequest lock = {3, {"lockdown", 1, {1}}};
    adapters->Control<vxemu::CountReply>(vxemu::control::kSetField, lock);
    EXPECT_EQ(HXMGT_FIRMWARE_LOCKDOWN, HXGetAdapterLockdownState(handle, 0, state));
    EXPECT_EQ(HXMGT_FIRMWARE_LOCKDOWN, updated());
    vxemu::FieldRequest boots = {3, {"boots_from_san", 1, {1}}};
    adapters->Control<vxemu::CountReply>(vxemu::control::kSetField, boots);
    EXPECT_EQ(HXMGT_FLASH_UPDATE_NOT_ACTIVATED, HXGetBFSInfo(handle));
}

TEST_F(EmulatedFlashTest, SettingsOfEveryKindOfChip) {
    Start(0x7300);
    for (uint32_t index : {0u, 2u, 3u}) {
        SCOPED_TRACE(index);
        const uint32_t handle = Open(index);
        const uint32_t bytes = index == 3 ? 256 : 512;
        std::vector<uint8_t> block(bytes);
        EXPECT_EQ(0u, HXVerifyHbaNVRam(handle, 0));
        ASSERT_EQ(0u, HXGetNVRam(handle, 0, HX_NVRAM_BLOCK, block.data(), bytes));
        const uint32_t throttle = vxemu::nvram_variable::kExecutionThrottle;
        EXPECT_EQ(65535u, HXGetVariableValue(handle, block.data(), throttle));
        EXPECT_EQ(1u, HXSetVariableValue(handle, block.data(), throttle, 100));
        if (bytes == 256) {
            block[255] = static_cast<uint8_t>(block[255] + 255 + 255 - 100);
        }
        EXPECT_EQ(0u, HXUpdateNVRam(handle, 0, HX_NVRAM_RESTART, block.data(), bytes));
        std::vector<uint8_t> read(bytes);
        EXPECT_EQ(0u, HXGetNVRam(handle, 0, HX_NVRAM_VERIFIED, read.data(), bytes));
        EXPECT_EQ(block, read);

        std::vector<uint8_t> vpd(bytes);
        uint32_t size = 0;
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetVpd(handle, 0, vpd.data(), &size));
        EXPECT_EQ(bytes, size);
        ASSERT_EQ(0u, HXGetVpd(handle, 0, vpd.data(), &size));
        EXPECT_EQ(0x82, vpd[0]);
        EXPECT_EQ(0u, HXUpdateVpd(handle, 0, vpd.data(), bytes));
        uint8_t identity[96];
        uint16_t device = 1;
        EXPECT_EQ(0u, HXReadSFPData(handle, 0, 0xA0, identity, 96, 0, 0, &device));
        EXPECT_EQ(0, device);
        EXPECT_EQ(3, identity[0]);
    }
    uint8_t active[6] = {};
    EXPECT_EQ(0u, HXGetActiveRegions(1, 0, active));
    EXPECT_EQ(2, active[2]);
    EXPECT_EQ(0u, HXReloadNvramAndInitFw(1));
    EXPECT_EQ(0u, HXGetActiveRegions(1, 0, active));
    EXPECT_EQ(1, active[2]) << "the VPD that was written last";
}

TEST_F(EmulatedFlashTest, BootCodeOfOlderChips) {
    Start(0x7300);
    const uint32_t large = Open(2);
    auto boot = Region(large, HX_REGION_BOOT_CODE, 192 * 1024);
    // The adapter's own identity survives an update with an image that has another.
    auto image = boot;
    image[32] ^= 0xFF;
    image[0x202 + 20] ^= 0xFF;
    EXPECT_EQ(0u, HXUpdateOptionRomEx(large, 0, image.data(), 192 * 1024, HX_REGION_BOOT_CODE));
    EXPECT_EQ(boot, Region(large, HX_REGION_BOOT_CODE, 192 * 1024));
    auto firmware = Region(large, HX_REGION_FIRMWARE, 256 * 1024);
    EXPECT_EQ(0u, HXUpdateOptionRomEx(large, 0, firmware.data(), 256 * 1024, HX_REGION_FIRMWARE));
    char record[36] = {};
    EXPECT_EQ(0u, HXReadSFPData(large, 0, 0xA0, record, 36, 0x0406, 0x2000, nullptr));
    EXPECT_STREQ("V:8.01.02,D:00000000,A:Y,T:G", record);

    const uint32_t classic = Open(3);
    std::vector<uint8_t> whole(128 * 1024);
    ASSERT_EQ(0u, HXGetOptionRom(classic, 0, whole.data(), 128 * 1024));
    auto changed = whole;
    changed[0x202 + 20] ^= 0xFF;
    EXPECT_EQ(0u, HXUpdateOptionRom(classic, 0, changed.data(), 128 * 1024));
    std::vector<uint8_t> read(128 * 1024);
    EXPECT_EQ(0u, HXGetOptionRom(classic, 0, read.data(), 128 * 1024));
    EXPECT_EQ(whole, read);
}

}  // namespace
