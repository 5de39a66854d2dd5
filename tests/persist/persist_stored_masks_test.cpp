// LUN masks in the store.
#include "support/persist_mask_fixture.h"

namespace {

using namespace support;

class PersistStoredMasksTest : public PersistMasksTest {
  protected:
    // The store of the masks: named after model and node name.
    const std::string maskKey =
        "SYSTEM\\CurrentControlSet\\Services\\vxKM7740\\Parameters\\20-00-00-24-ff-01-02-03";
    void NameNode() {
        const Name name = {0x20, 0x00, 0x00, 0x24, 0xFF, 0x01, 0x02, 0x03};
        memcpy(port->node.nodeName, name.data(), name.size());
        SetText(port->node.model, "KM7740");
        port->AnswerProbes();
    }
    void StoreTargets(const std::vector<HX_TARGET_ENTRY>& entries) {
        HX_TARGET_DATA data = {};
        std::copy(entries.begin(), entries.end(), data.entries);
        Store(maskKey, "Data", BytesOf(data));
        Store(maskKey, "Length", sizeof data);
    }
    void StoreLuns(uint32_t version, const Bytes& bytes) {
        Store(maskKey, "LunData", bytes);
        Store(maskKey, "LunLength", static_cast<uint32_t>(bytes.size()));
        Store(maskKey, "LunVersion", version);
    }
    // A stored block of records for these targets, all LUNs visible.
    static Bytes LunBlock(uint16_t version, const std::vector<uint8_t>& targets) {
        const auto block = Luns(version, static_cast<uint16_t>(targets.size()));
        for (size_t i = 0; i < targets.size(); ++i) {
            SetNames(block->records[i], NameOf(targets[i]), NameOf(targets[i], 0x60));
        }
        if (version == 2) {
            return BlockBytes(block.get(), 32 + targets.size() * 2080);
        }
        const auto packed = std::make_unique<persist::LunDataV1>();
        return BlockBytes(packed.get(), persist::PackVersion1(*block, *packed));
    }
};

TEST_F(PersistStoredMasksTest, StoredMasks) {
    NameNode();
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, Check(HX_BUS_TARGET_LUN{1, 1, 0}, 1)) << "nothing stored";
    HX_TARGET_ENTRY based = Target(2);
    based.lunBase = 8;
    HX_TARGET_ENTRY free = Target(2);  // passed over, though everything else fits
    memset(free.nodeName, 0, sizeof free.nodeName);
    StoreTargets({free, Target(1), based});
    Bytes block = LunBlock(2, {1, 2});
    block[32 + 2080 + 32 + 7] = 0x80;
    block[32 + 2080 + 32 + 9] = 0xFF;
    StoreLuns(2, block);
    Bytes expected(256, 0xFF);
    expected[0] = 0xFD;
    expected[255] = 0;  // eight LUNs behind the record
    for (const DESTINATIONADDRESS& address : AddressesOf(2)) {
        Bytes mask(256);
        ASSERT_EQ(0u, Get(address, 1, mask)) << address.type;
        EXPECT_EQ(expected, mask);
    }
    // All 256 bytes are written, whatever the size says.
    GuardedBuffer whole(256);
    const HX_BUS_TARGET_LUN second = {1, 2, 3};
    ASSERT_EQ(0u, HXGetHbaTargetLunMask(handle, 0, &second, 9, whole.Data(), 1));
    EXPECT_EQ(expected, whole.First(256));
    for (const DESTINATIONADDRESS& address : Strangers()) {
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(address, 1)) << address.type;
    }
    // Entries beyond any count are looked at, records beyond theirs are not.
    StoreTargets(std::vector<HX_TARGET_ENTRY>(256, Target(7)));
    HX_TARGET_DATA data = {};
    data.entries[255] = Target(1);
    Store(maskKey, "Data", BytesOf(data));
    EXPECT_EQ(0u, Check(HX_BUS_TARGET_LUN{1, 1, 0}, 1));
    block[2] = 0;
    StoreLuns(2, block);
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(HX_BUS_TARGET_LUN{1, 1, 0}, 1));

    // Version 1: as many bytes as the caller has room for.
    Bytes first = LunBlock(1, {1});
    const Bytes mask = Counting(256);
    std::copy(mask.begin(), mask.end(), first.begin() + 64);
    StoreLuns(1, first);
    for (const size_t size : {size_t{0}, size_t{5}, size_t{256}, size_t{300}}) {
        Bytes out(size);
        ASSERT_EQ(0u, Get(HX_BUS_TARGET_LUN{1, 1, 0}, 1, out));
        Bytes cut = mask;
        cut.resize(size, 0xEE);
        EXPECT_EQ(cut, out);
    }
    EXPECT_TRUE(port->Requests(command::TargetLunMask).empty());
}

TEST_F(PersistStoredMasksTest, StoredMasksThatAreRefused) {
    NameNode();
    const HX_BUS_TARGET_LUN address = {1, 1, 0};
    const DESTINATIONADDRESS name = ByName(1, NameOf(1));
    const auto expect = [&](HX_STATUS status, const std::string& what) {
        EXPECT_EQ(status, Check(address, 1)) << what;
        EXPECT_EQ(status, Update(name, 1, Bytes(256, 0xFF))) << what;
    };
    const auto restore = [&](uint16_t version) {
        StoreTargets({Target(1)});
        StoreLuns(version, LunBlock(version, {1}));
    };
    for (const uint16_t version : {uint16_t{1}, uint16_t{2}}) {
        restore(version);
        expect(0, "whole");
        for (const char* value : {"Length", "Data", "LunVersion", "LunLength", "LunData"}) {
            restore(version);
            Remove(maskKey, value);
            expect(HXMGT_REGISTRY_INVALID, value);
        }
        for (const uint32_t length : {8223u, 8225u}) {
            restore(version);
            Store(maskKey, "Length", length);
            Store(maskKey, "Data", Bytes(length));
            expect(HXMGT_REGISTRY_INVALID, "target length");
        }
        for (const uint32_t wrong : {0u, 3u, 0x10002u}) {
            restore(version);
            Store(maskKey, "LunVersion", wrong);
            expect(HXMGT_REGISTRY_INVALID, "version");
        }
        // The limits of a block, the block itself as long as its length says.
        const uint32_t smallest = version == 1 ? 320 : 2112;
        const uint32_t largest = version == 1 ? 73760 : 532512;
        for (const uint32_t length : {smallest - 1, smallest, largest, largest + 1}) {
            restore(version);
            Bytes block = LunBlock(version, {1});
            block.resize(length);
            StoreLuns(version, block);
            const bool fits = length == smallest || length == largest;
            expect(fits ? HX_STATUS{HXMGT_SUCCESS} : HX_STATUS{HXMGT_REGISTRY_INVALID},
                   std::to_string(length));
            Store(maskKey, "LunData", Bytes(length - 1));
            expect(HXMGT_REGISTRY_INVALID, "short data");
        }
    }
    // The checksum is not looked at.
    restore(2);
    Store(maskKey, "Checksum", 0x12345678);
    expect(0, "checksum");
    port->On(command::NodeProperties, Reply{.status = 21});
    expect(HXMGT_DEVICE_NOT_READY, "node");
}

TEST_F(PersistStoredMasksTest, UpdatingTheStore) {
    NameNode();
    StoreTargets({Target(1), Target(2)});
    Bytes block = LunBlock(2, {1, 2});
    for (size_t i = 0; i < 2048; ++i) {
        block[32 + 2080 + 32 + i] = static_cast<uint8_t>(i * 7);
    }
    StoreLuns(2, block);
    Bytes mask = Counting(256);
    for (size_t lun = 0; lun < 2048; ++lun) {
        uint8_t& byte = block[32 + 2080 + 32 + lun];
        byte = static_cast<uint8_t>((byte & 0x7F) | (mask[lun / 8] >> lun % 8 & 1 ? 0 : 0x80));
    }
    ASSERT_EQ(0u, Update(ByName(1, NameOf(2)), 1, mask));
    EXPECT_EQ(block, Stored(maskKey, "LunData"));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), registry.Read(maskKey, "LunData").type);
    StoreLuns(2, LunBlock(2, {1, 2}));
    ASSERT_EQ(0u, Update(ByName(2, NameOf(2, 0x60)), 1, mask));
    Bytes read(256);
    ASSERT_EQ(0u, Get(ByName(1, NameOf(2)), 1, read));
    EXPECT_EQ(mask, read);
    ASSERT_EQ(0u, Get(ByName(1, NameOf(1)), 1, read));
    EXPECT_EQ(Bytes(256, 0xFF), read) << "the other target is left alone";

    // Version 1: the bytes of the mask as they are.
    Bytes first = LunBlock(1, {1, 2});
    StoreLuns(1, first);
    ASSERT_EQ(0u, Update(ByName(1, NameOf(2)), 1, {0x12, 0x34}));
    first[32 + 288 + 32] = 0x12;
    first[32 + 288 + 33] = 0x34;
    EXPECT_EQ(first, Stored(maskKey, "LunData"));
    ASSERT_EQ(0u, Update(ByName(1, NameOf(2)), 1, Bytes(300, 0x55)));
    std::fill_n(first.begin() + 32 + 288 + 32, 256, uint8_t{0x55});
    EXPECT_EQ(first, Stored(maskKey, "LunData"));

    for (const uint16_t type : {3, 4, 0, 5}) {
        EXPECT_EQ(HXMGT_NOT_SUPPORTED, Update(ByName(type, NameOf(2)), 1, mask));
    }
    const FailingWrites writes(0);
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, Update(ByName(1, NameOf(2)), 1, mask));
}

TEST_F(PersistStoredMasksTest, ATargetWithoutARecordGetsOne) {
    NameNode();
    StoreTargets({Target(1), Target(2)});
    for (const uint16_t version : {uint16_t{1}, uint16_t{2}}) {
        const size_t size = version == 1 ? 288 : 2080;
        // By either name both names are stored.
        for (const DESTINATIONADDRESS& address :
             {ByName(1, NameOf(2)), ByName(2, NameOf(2, 0x60))}) {
            StoreLuns(version, LunBlock(version, {1}));
            ASSERT_EQ(0u, Update(address, 1, Bytes(256, 0x0F)));
            const Bytes block = Stored(maskKey, "LunData");
            ASSERT_EQ(32 + 2 * size, block.size());
            EXPECT_EQ(NumberBytes(static_cast<uint32_t>(block.size())),
                      Stored(maskKey, "LunLength"));
            EXPECT_EQ(2, block[2]);
            HX_LUN_RECORD names = {};
            SetNames(names, NameOf(2), NameOf(2, 0x60));
            EXPECT_EQ(0, memcmp(&names, &block[32 + size], 32)) << address.type;
            Bytes mask(256);
            ASSERT_EQ(0u, Get(ByName(1, NameOf(2)), 1, mask));
            EXPECT_EQ(Bytes(256, 0x0F), mask);
        }
        // A target that the stored data does not have: its one name stands for both, so that the
        // next update finds the record.
        for (const uint16_t type : {uint16_t{1}, uint16_t{2}}) {
            StoreLuns(version, LunBlock(version, {1}));
            for (int update = 0; update < 2; ++update) {
                ASSERT_EQ(0u, Update(ByName(type, NameOf(9)), 1, Bytes(256)));
                const Bytes block = Stored(maskKey, "LunData");
                EXPECT_EQ(32 + 2 * size, block.size());
                HX_LUN_RECORD names = {};
                SetNames(names, NameOf(9), NameOf(9));
                EXPECT_EQ(0, memcmp(&names, &block[32 + size], 32)) << type;
            }
        }
        // The length grows by one record from what it was, as far as a block goes.
        const uint32_t largest = version == 1 ? 73760 : 532512;
        for (const uint32_t length : {static_cast<uint32_t>(32 + 3 * size + 5), largest}) {
            Bytes longer = LunBlock(version, {1});
            longer.resize(length);
            StoreLuns(version, longer);
            ASSERT_EQ(0u, Update(ByName(1, NameOf(2)), 1, Bytes(256)));
            const uint32_t grown = std::min(largest, static_cast<uint32_t>(length + size));
            EXPECT_EQ(NumberBytes(grown), Stored(maskKey, "LunLength"));
            EXPECT_EQ(grown, Stored(maskKey, "LunData").size());
            EXPECT_EQ(0u, Check(ByName(1, NameOf(2)), 1));
        }
        // Broken off behind the data: the length does not fit any more.
        StoreLuns(version, LunBlock(version, {1}));
        {
            const FailingWrites writes(1);
            EXPECT_EQ(HXMGT_REGISTRY_INVALID, Update(ByName(1, NameOf(2)), 1, Bytes(256)));
        }
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, Check(ByName(1, NameOf(1)), 1));
        // A full block stays as it is.
        std::vector<uint8_t> all(256, 1);
        const Bytes full = LunBlock(version, all);
        StoreLuns(version, full);
        EXPECT_EQ(HXMGT_REGISTRY_INVALID, Update(ByName(1, NameOf(2)), 1, Bytes(256)));
        EXPECT_EQ(full, Stored(maskKey, "LunData"));
    }
}

}  // namespace
