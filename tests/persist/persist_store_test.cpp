// One port's stored target and LUN data: what stands in the registry, byte by byte, in both
// layouts, and which damaged contents are refused.
#include "support/byte_fields.h"
#include "support/persist_fixture.h"

namespace {

using namespace support;

class PersistStoreTest : public PersistTest {
  protected:
    const std::string subkey = ServiceKey("vxfc2") + "\\" + kPort;
    const std::string deviceZero = ServiceKey("vxfc2") + "\\Device0";
    const std::string device = ServiceKey("vxfc2") + "\\Device";
    static std::string In(const char* name) { return std::string(kPort) + "\\" + name; }

    HX_STATUS WriteTargets(HX_TARGET_DATA block) { return HXSetTargetData(handle, 0, &block, 1); }
    HX_STATUS ReadTargets() {
        HX_TARGET_DATA block;
        memset(&block, 0xEE, sizeof block);
        const HX_STATUS status = HXGetTargetData(handle, 0, &block, 1);
        if (status != HXMGT_SUCCESS) {
            EXPECT_EQ(Bytes(sizeof block, 0xEE), BytesOf(block)) << "the caller's block is changed";
        }
        return status;
    }
    HX_STATUS WriteLuns(HX_LUN_DATA& block) { return HXSetLunData(handle, 0, &block, 1); }
    HX_STATUS ReadLuns() {
        Guarded<HX_LUN_DATA> block;
        const HX_STATUS status = HXGetLunData(handle, 0, block.Get(), 1);
        if (status != HXMGT_SUCCESS) {
            EXPECT_TRUE(block.Raw().Holds(0xEE)) << "the caller's block is changed";
        }
        return status;
    }
};

TEST_F(PersistStoreTest, TargetsInASubkey) {
    const HX_TARGET_DATA block = Targets(3);
    ASSERT_EQ(0u, WriteTargets(block));
    EXPECT_EQ(BytesOf(block), Stored(subkey, "Data"));
    EXPECT_EQ((Bytes{0x20, 0x20, 0, 0}), Stored(subkey, "Length"));
    EXPECT_EQ(NumberBytes(persist::TargetDataChecksum(block)), Stored(subkey, "Checksum"));
    EXPECT_EQ((Bytes{1, 0, 0, 0}), Stored(subkey, "Version"));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), registry.Read(subkey, "Data").type);
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), registry.Read(subkey, "Checksum").type);
    EXPECT_FALSE(registry.HasKey(deviceZero));

    Guarded<HX_TARGET_DATA> read;
    ASSERT_EQ(0u, HXGetTargetData(handle, 7, read.Get(), 0x100)) << "any flag but 0";
    EXPECT_EQ(BytesOf(block), BytesOf(*read.Get()));
    Guarded<HX_TARGET_DATA> older;
    ASSERT_EQ(0u, IHXFoGetTargetData(handle, 1, 2, older.Get(), 1));
    EXPECT_EQ(BytesOf(block), BytesOf(*older.Get()));
    EXPECT_TRUE(port->Requests(command::PortDatabase).empty()) << "the driver is not told or asked";
}

TEST_F(PersistStoreTest, TargetsInValueNames) {
    UseValueNames();
    const HX_TARGET_DATA block = Targets(256);
    ASSERT_EQ(0u, WriteTargets(block));
    for (const std::string& key : {deviceZero, device}) {
        EXPECT_EQ(BytesOf(block), Stored(key, In("Data"))) << key;
        EXPECT_EQ((Bytes{0x20, 0x20, 0, 0}), Stored(key, In("Length")));
        EXPECT_FALSE(IsStored(key, In("Checksum")));
        EXPECT_FALSE(IsStored(key, In("Version")));
    }
    EXPECT_FALSE(registry.HasKey(subkey));
    // Only the first key is read.
    Store(device, In("Data"), Bytes(8224, 0x11));
    Store(device, In("Length"), 4);
    Guarded<HX_TARGET_DATA> read;
    ASSERT_EQ(0u, HXGetTargetData(handle, 0, read.Get(), 1));
    EXPECT_EQ(BytesOf(block), BytesOf(*read.Get()));
    // A length that does not fit the data, none, one beyond any block, and a short block.
    for (const uint32_t length : {8223u, 8225u, 0u, 0xFFFFFFFFu}) {
        Store(deviceZero, In("Length"), length);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << length;
    }
    Store(deviceZero, In("Data"), Bytes(9000, 0x11));
    Store(deviceZero, In("Length"), 9000);
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets());
    Store(deviceZero, In("Data"), Bytes(40, 0x11));
    Store(deviceZero, In("Length"), 40);
    Guarded<HX_TARGET_DATA> part;
    ASSERT_EQ(0u, HXGetTargetData(handle, 0, part.Get(), 1));
    EXPECT_TRUE(part.Raw().Holds(0x11, 0, 40));
    EXPECT_TRUE(part.Raw().Holds(0xEE, 40, 8224));
    Remove(deviceZero, In("Length"));
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets());
}

TEST_F(PersistStoreTest, DamagedTargetsAreRefused) {
    const HX_TARGET_DATA block = Targets(2);
    const uint32_t checksum = persist::TargetDataChecksum(block);
    const auto restore = [&] { ASSERT_EQ(0u, WriteTargets(block)); };
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << "nothing stored";
    for (const uint32_t length : {0u, 8223u, 8225u}) {
        restore();
        Store(subkey, "Length", length);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << length;
    }
    for (const uint32_t version : {0u, 2u}) {
        restore();
        Store(subkey, "Version", version);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << version;
    }
    for (const size_t size : {8223u, 8225u}) {
        restore();
        Store(subkey, "Data", Bytes(size));
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << size;
    }
    for (const char* name : {"Data", "Length", "Version", "Checksum"}) {
        restore();
        Remove(subkey, name);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << name;
    }
    restore();
    Store(subkey, "Checksum", checksum ^ 1);
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets());
    Store(subkey, "Checksum", ~checksum);
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets());
    Store(subkey, "Checksum", checksum);
    EXPECT_EQ(0u, ReadTargets());
    Store(subkey, "Length", Bytes{0x20, 0x20, 0, 0});
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets()) << "not a number";

    // Without a checksum only a block passes whose checksum is 0.
    ASSERT_EQ(0u, WriteTargets(HX_TARGET_DATA{}));
    Remove(subkey, "Checksum");
    EXPECT_EQ(0u, ReadTargets());
}

// Another process shortens the block between two looks at its length. Memory behind it that
// happens to fit the checksum makes no whole block of it.
TEST_F(PersistStoreTest, ALengthThatChangesOnTheWay) {
    HX_TARGET_DATA cut = {};
    cut.count = 1;
    cut.entries[0].bus = 3;
    ASSERT_EQ(0u, WriteTargets(cut));
    Store(subkey, "Data", BlockBytes(&cut, 40));
    static std::string key;
    key = subkey;
    static int lengths;
    lengths = 0;
    const auto query = RedirectLibrary(
        "RegQueryValueExA",
        +[](HKEY opened, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
            LPDWORD size) -> LSTATUS {
            const LSTATUS error = RegQueryValueExA(opened, name, reserved, type, data, size);
            if (strcmp(name, "Length") == 0 && ++lengths == 1) {
                const uint32_t shorter = 40;
                RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_DWORD, &shorter,
                                sizeof shorter);
            }
            return error;
        });
    const auto allocate = RedirectLibrary(
        "calloc", +[](size_t count, size_t size) { return calloc(1, count * size + 16384); });
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets());
}

TEST_F(PersistStoreTest, AWriteThatBreaksOffIsSeenByTheNextRead) {
    ASSERT_EQ(0u, WriteTargets(Targets(2)));
    HX_TARGET_DATA changed = Targets(2);
    changed.entries[0].target = 77;
    const char* const order[] = {"Data", "Length", "Checksum", "Version"};
    for (uint32_t allowed = 0; allowed < std::size(order); ++allowed) {
        for (const char* name : order) {
            Remove(subkey, name);
        }
        const FailingWrites writes(allowed);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, WriteTargets(changed));
        for (uint32_t i = 0; i < std::size(order); ++i) {
            EXPECT_EQ(i < allowed, IsStored(subkey, order[i])) << order[i] << " after " << allowed;
        }
    }
    // New data beside the old checksum.
    ASSERT_EQ(0u, WriteTargets(Targets(2)));
    {
        const FailingWrites writes(2);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, WriteTargets(changed));
    }
    EXPECT_EQ(BytesOf(changed), Stored(subkey, "Data"));
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadTargets());
    EXPECT_EQ(0u, WriteTargets(changed)) << "a new write mends it";
    EXPECT_EQ(0u, ReadTargets());
    // In value names the first key is whole before the second is touched.
    UseValueNames();
    {
        const FailingWrites writes(2);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, WriteTargets(changed));
    }
    EXPECT_TRUE(IsStored(deviceZero, In("Length")));
    EXPECT_FALSE(registry.HasKey(device) && IsStored(device, In("Data")));
    EXPECT_EQ(0u, ReadTargets());
}

TEST_F(PersistStoreTest, LunsOfVersion2) {
    const auto block = Luns(1, 3);
    for (uint32_t lun = 0; lun < 2048; ++lun) {
        block->records[1].luns[lun] = static_cast<uint8_t>(lun * 13);
    }
    ASSERT_EQ(0u, WriteLuns(*block));
    EXPECT_EQ(2, block->version) << "follows the driver";
    const Bytes expected = BlockBytes(block.get(), 32 + 3 * 2080);
    EXPECT_EQ(expected, Stored(subkey, "LunData"));
    EXPECT_EQ(NumberBytes(32 + 3 * 2080), Stored(subkey, "LunLength"));
    EXPECT_EQ(NumberBytes(2), Stored(subkey, "LunVersion"));

    Guarded<HX_LUN_DATA> read;
    Store(subkey, "LunVersion", 1);
    ASSERT_EQ(0u, HXGetLunData(handle, 0, read.Get(), 1)) << "the block's own version counts";
    EXPECT_EQ(expected, BlockBytes(read.Get(), expected.size()));
    EXPECT_TRUE(read.Raw().Holds(0xEE, expected.size(), sizeof(HX_LUN_DATA)));

    // 256 records are all there can be, whatever the count says.
    block->count = 257;
    ASSERT_EQ(0u, IHXFoSetLunData(handle, 8, 9, block.get(), 1));
    EXPECT_EQ(257, block->count);
    EXPECT_EQ(NumberBytes(532512), Stored(subkey, "LunLength"));
    EXPECT_EQ(532512u, Stored(subkey, "LunData").size());
    EXPECT_EQ((Bytes{2, 0, 0, 1}), Part(Stored(subkey, "LunData"), 0, 4));
    EXPECT_EQ(0u, ReadLuns());
}

TEST_F(PersistStoreTest, LunsOfVersion1) {
    ReopenWith("7.05.02");
    const auto block = Luns(2, 2);
    block->records[0].luns[0] = 0x80;
    block->records[0].luns[9] = 0xFF;
    block->records[1].luns[255] = 0x80;
    block->records[1].luns[256] = 0x80;
    ASSERT_EQ(0u, WriteLuns(*block));
    EXPECT_EQ(1, block->version) << "follows the driver";
    EXPECT_EQ(NumberBytes(32 + 2 * 288), Stored(subkey, "LunLength"));
    EXPECT_EQ(NumberBytes(1), Stored(subkey, "LunVersion"));
    Bytes expected(32 + 2 * 288);
    expected[0] = 1;
    expected[2] = 2;
    for (const size_t at : {32u, 320u}) {
        std::fill_n(expected.begin() + static_cast<ptrdiff_t>(at) + 32, 32, uint8_t{0xFF});
    }
    memcpy(&expected[32], &block->records[0], 16);
    memcpy(&expected[320], &block->records[1], 16);
    expected[32 + 32] = 0xFE;
    expected[32 + 33] = 0xFD;
    expected[320 + 32 + 31] = 0x7F;
    EXPECT_EQ(expected, Stored(subkey, "LunData"));

    Guarded<HX_LUN_DATA> read;
    ASSERT_EQ(0u, HXGetLunData(handle, 0, read.Get(), 1));
    block->records[0].luns[9] = 0x80;
    block->records[1].luns[256] = 0;
    EXPECT_EQ(BytesOf(*block), BytesOf(*read.Get())) << "all 532512 bytes";
    ASSERT_EQ(0u, WriteLuns(*read.Get()));
    EXPECT_EQ(expected, Stored(subkey, "LunData")) << "stored again as it was";

    // The whole range in one block, and a count that the bytes do not carry.
    auto full = Luns(1, 256);
    ASSERT_EQ(0u, WriteLuns(*full));
    EXPECT_EQ(NumberBytes(73760), Stored(subkey, "LunLength"));
    Bytes cut = Stored(subkey, "LunData");
    cut.resize(32 + 300);
    Store(subkey, "LunData", cut);
    Store(subkey, "LunLength", 32 + 300);
    ASSERT_EQ(0u, HXGetLunData(handle, 0, read.Get(), 1));
    EXPECT_EQ(1, read->count);
    EXPECT_EQ(0, read->records[1].nodeName[0]);
}

TEST_F(PersistStoreTest, LunsInValueNames) {
    UseValueNames();
    ReopenWith("7.05.02");
    UseValueNames();
    const auto block = Luns(2, 2);
    ASSERT_EQ(0u, WriteLuns(*block));
    EXPECT_EQ(1, block->version);
    const Bytes expected = BlockBytes(block.get(), 32 + 2 * 2080);
    for (const std::string& key : {deviceZero, device}) {
        EXPECT_EQ(expected, Stored(key, In("LunData"))) << "the whole form, whatever the version";
        EXPECT_EQ(NumberBytes(32 + 2 * 2080), Stored(key, In("LunLength")));
        EXPECT_FALSE(IsStored(key, In("LunVersion")));
    }
    Store(device, In("LunLength"), 1);
    Guarded<HX_LUN_DATA> read;
    ASSERT_EQ(0u, HXGetLunData(handle, 0, read.Get(), 1));
    EXPECT_EQ(expected, BlockBytes(read.Get(), expected.size()));
    EXPECT_TRUE(read.Raw().Holds(0xEE, expected.size(), sizeof(HX_LUN_DATA))) << "no conversion";
}

TEST_F(PersistStoreTest, DamagedLunsAreRefused) {
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadLuns()) << "nothing stored";
    for (const bool valueNames : {false, true}) {
        if (valueNames) {
            UseValueNames();
        }
        const std::string key = valueNames ? deviceZero : subkey;
        const std::string data = valueNames ? In("LunData") : "LunData";
        const std::string length = valueNames ? In("LunLength") : "LunLength";
        ASSERT_EQ(0u, WriteLuns(*Luns(2, 1)));
        for (const uint32_t wrong : {0u, 2111u, 2113u, 532513u, 0xFFFFFFFFu}) {
            Store(key, length, wrong);
            EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadLuns()) << wrong;
        }
        Store(key, data, Bytes(532513, 2));
        Store(key, length, 532513);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadLuns()) << "larger than any block";
        Remove(key, length);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadLuns());
        Store(key, length, 2112);
        Remove(key, data);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadLuns());
        // Data written, its length not.
        ASSERT_EQ(0u, WriteLuns(*Luns(2, 1)));
        {
            const FailingWrites writes(1);
            EXPECT_EQ(HXMGT_REGISTRY_INVALID, WriteLuns(*Luns(2, 2)));
        }
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, ReadLuns());
    }
}

TEST_F(PersistStoreTest, FailuresOnTheWayToTheStore) {
    HX_TARGET_DATA targets = {};
    const auto luns = std::make_unique<HX_LUN_DATA>();
    const auto statuses = [&] {
        return std::vector<HX_STATUS>{
            HXGetTargetData(handle, 0, &targets, 1), HXSetTargetData(handle, 0, &targets, 1),
            HXGetLunData(handle, 0, luns.get(), 1), HXSetLunData(handle, 0, luns.get(), 1)};
    };
    const auto all = [](HX_STATUS status) { return std::vector<HX_STATUS>(4, status); };
    port->On(command::PortPropertiesV2, Reply{.status = 21});
    EXPECT_EQ(all(HXMGT_DEVICE_NOT_READY), statuses());
    // A driver that does not know the second version is asked for the first.
    port->On(command::PortPropertiesV2, Reply{.status = 12});
    port->On(command::PortProperties, Reply{.status = 22});
    EXPECT_EQ(all(HXMGT_DEVICE_OFFLINE), statuses());
    properties::PortReply reply = {};
    reply.base.portName[0] = 0xAB;
    port->On(command::PortProperties, {.data = BytesOf(reply)});
    EXPECT_EQ(0u, HXSetTargetData(handle, 0, &targets, 1));
    EXPECT_TRUE(registry.HasKey(ServiceKey("vxfc2") + "\\ab-00-00-00-00-00-00-00"));

    const std::string map = "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 3";
    registry.SetText(map, "Driver", "");
    EXPECT_EQ(all(HXMGT_REGISTRY_INVALID), statuses());
    registry.SetText(map, "Driver", std::string(256, 'v'));
    EXPECT_EQ(all(HXMGT_REGISTRY_INVALID), statuses());
    Remove(map, "Driver");
    EXPECT_EQ(all(HXMGT_REGISTRY_INVALID), statuses());
    port->Forget();
    statuses();
    EXPECT_TRUE(port->Requests().empty()) << "the service name comes first";
}

TEST_F(PersistStoreTest, AnUnknownDriverTypeMeansSubkeys) {
    // The driver type is asked after the port: that request fails.
    port->On(command::NodeProperties, Reply{.status = 1});
    ASSERT_EQ(0u, WriteTargets(Targets(1)));
    EXPECT_TRUE(IsStored(subkey, "Data"));
}

TEST_F(PersistStoreTest, PortsAndServicesDoNotMix) {
    AddPort(4);
    registry.SetText("HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 4", "Driver", "vxfcoe");
    const uint32_t second = Open(1);
    ScriptedPort other("9.04.02.20", 0x7740);
    system.AttachScsiPort(4, &other);
    Close(second);
    const uint32_t third = Open(1);
    properties::PortReplyV2 reply = {};
    memset(reply.base.portName, 0x42, 8);
    other.On(command::PortPropertiesV2, {.data = BytesOf(reply)});

    HX_TARGET_DATA first = Targets(1);
    HX_TARGET_DATA last = Targets(2);
    ASSERT_EQ(0u, HXSetTargetData(handle, 0, &first, 1));
    ASSERT_EQ(0u, HXSetTargetData(third, 0, &last, 1));
    EXPECT_EQ(BytesOf(first), Stored(subkey, "Data"));
    EXPECT_EQ(BytesOf(last), Stored(ServiceKey("vxfcoe") + "\\42-42-42-42-42-42-42-42", "Data"));
    HX_TARGET_DATA read = {};
    ASSERT_EQ(0u, HXGetTargetData(handle, 0, &read, 1));
    EXPECT_EQ(1, read.count);
    system.DetachScsiPort(4);
}

}  // namespace
