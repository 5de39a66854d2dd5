// Lists and deletes over the stores of every driver service.
#include <set>

#include "support/byte_fields.h"
#include "support/persist_fixture.h"

namespace {

using namespace support;

constexpr const char* kAllServices[] = {"vxfc2",  "vxfc1",  "oemfc2", "vxfcoe",
                                        "vxnpiv", "vxfc2i", "vxfcoei"};

class PersistEntriesTest : public PersistTest {
  protected:
    static std::string PortText(uint8_t last) {
        char text[24];
        sprintf(text, "21-00-00-24-ff-0a-0b-%02x", last);
        return text;
    }
    static Name PortNamed(uint8_t last) { return {0x21, 0x00, 0x00, 0x24, 0xFF, 0x0A, 0x0B, last}; }

    // Values of a port, in a subkey or (with a leaf) in the names of one key's values.
    struct Place {
        std::string key, prefix;
    };
    static Place At(const std::string& service, uint8_t last, const char* leaf = nullptr) {
        return leaf == nullptr ? Place{ServiceKey(service) + "\\" + PortText(last), ""}
                               : Place{ServiceKey(service) + "\\" + leaf, PortText(last) + "\\"};
    }
    void Put(const Place& place, const std::vector<uint8_t>& targets,
             const std::vector<uint8_t>& lunTargets, uint16_t lunVersion = 2) {
        HX_TARGET_DATA data = {};
        data.count = static_cast<uint16_t>(targets.size());
        for (size_t i = 0; i < targets.size(); ++i) {
            data.entries[i].target = 1;
            SetNames(data.entries[i], NameOf(targets[i]), NameOf(targets[i], 0x60));
        }
        Store(place.key, place.prefix + "Data", BytesOf(data));
        Store(place.key, place.prefix + "Length", sizeof data);
        if (place.prefix.empty()) {
            Store(place.key, "Checksum", persist::TargetDataChecksum(data));
            Store(place.key, "Version", 1);
        }
        auto luns = Luns(lunVersion, static_cast<uint16_t>(lunTargets.size()));
        for (size_t i = 0; i < lunTargets.size(); ++i) {
            SetNames(luns->records[i], NameOf(lunTargets[i]), NameOf(lunTargets[i], 0x60));
        }
        Bytes stored = BlockBytes(luns.get(), 32 + lunTargets.size() * 2080);
        if (lunVersion == 1 && place.prefix.empty()) {
            const auto packed = std::make_unique<persist::LunDataV1>();
            stored = BlockBytes(packed.get(), persist::PackVersion1(*luns, *packed));
        }
        Store(place.key, place.prefix + "LunData", stored);
        Store(place.key, place.prefix + "LunLength", static_cast<uint32_t>(stored.size()));
        if (place.prefix.empty()) {
            Store(place.key, "LunVersion", lunVersion);
        }
    }

    using Names = std::vector<Name>;
    static Names In(const HX_WWN_LIST& list) {
        Names names;
        for (const auto& slot : list.names) {
            Name name;
            memcpy(name.data(), slot, name.size());
            if (name != Name{}) {
                names.push_back(name);
            }
        }
        return names;
    }
    // The lists, and their status when it is to be a failure.
    static Names Devices(HX_STATUS status = 0) {
        Guarded<HX_WWN_LIST> list;
        EXPECT_EQ(status, HXGetPersistentDeviceEntryList(list.Get()));
        return In(*list.Get());
    }
    static Names TargetsListed(HX_STATUS status = 0) {
        Guarded<HX_WWN_LIST> list;
        EXPECT_EQ(status, HXGetPersistentTargetEntryList(list.Get()));
        return In(*list.Get());
    }
    static Names TargetNames(const std::vector<uint8_t>& lasts) {
        Names names;
        for (const uint8_t last : lasts) {
            names.push_back(NameOf(last));
        }
        return names;
    }
    static HX_STATUS DeletePort(uint8_t last) {
        return HXDeletePersistentDeviceEntry(PortNamed(last).data());
    }
    static HX_STATUS DeleteTarget(uint8_t last) {
        return HXDeletePersistentTargetEntry(NameOf(last).data());
    }
};

TEST_F(PersistEntriesTest, PortsOfEveryServiceAndLayout) {
    EXPECT_EQ(Names{}, Devices());
    Names expected;
    uint8_t last = 0x10;
    for (const char* service : kAllServices) {
        registry.MakeKey(ServiceKey(service) + "\\" + PortText(++last));
        expected.push_back(PortNamed(last));
    }
    for (const char* leaf : {"Device", "Device0"}) {
        for (const char* service : kAllServices) {
            Store(ServiceKey(service) + "\\" + leaf, PortText(++last) + "\\Length", 1);
            expected.push_back(PortNamed(last));
        }
    }
    // The same port again, in another spelling and under values of its own; what is no port; and
    // a service that is none.
    Store(ServiceKey("vxnpiv") + "\\Device0", "21-00-00-24-FF-0A-0B-11\\Data", 1);
    registry.SetText(ServiceKey("vxfc2") + "\\Device", "DriverParameter", "x=1");
    registry.MakeKey(ServiceKey("vxfc2") + "\\PnpInterface");
    registry.MakeKey(ServiceKey("vxfc2") + "\\21-00-00-24-ff-0a-0b");
    registry.MakeKey(ServiceKey("vxfc3") + "\\" + PortText(0x77));
    EXPECT_EQ(expected, Devices()) << "in the order of the walk";
    HX_WWN_LIST list;
    memset(&list, 0xEE, sizeof list);
    EXPECT_EQ(0u, IHXFoGetPersistentDeviceEntryList(&list));
    EXPECT_EQ(expected, In(list)) << "the list is cleared first";
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetPersistentDeviceEntryList(nullptr));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetPersistentTargetEntryList(nullptr));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXDeletePersistentDeviceEntry(nullptr));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXDeletePersistentTargetEntry(nullptr));
}

TEST_F(PersistEntriesTest, MalformedNames) {
    const char* const malformed = "21-00-00-24-ff-0a-0b-zz";
    // In a subkey: nothing behind it is looked at, in no later service either.
    registry.MakeKey(ServiceKey("vxfc1") + "\\" + malformed);
    registry.MakeKey(ServiceKey("vxfc2") + "\\" + PortText(7));
    registry.MakeKey(ServiceKey("vxfcoe") + "\\" + PortText(8));
    EXPECT_EQ(Names{PortNamed(7)}, Devices(HXMGT_PERSISTENT_STORAGE_ERROR));
    TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR);
    {
        const auto failing = RedirectLibrary(
            "RegEnumKeyExA",
            +[](HKEY, DWORD, LPSTR, LPDWORD, LPDWORD, LPSTR, LPDWORD, PFILETIME) -> LSTATUS {
                return ERROR_ACCESS_DENIED;
            });
        EXPECT_EQ(Names{}, Devices(HXMGT_PERSISTENT_STORAGE_ERROR));
    }
    // What is to be deleted is found behind one.
    const std::string first = ServiceKey("vxfc1") + "\\20-00-00-24-ff-0a-0b-zz";
    registry.MakeKey(first);
    registry.MakeKey(ServiceKey("vxfc1") + "\\" + PortText(6));
    for (const uint8_t last : {uint8_t{6}, uint8_t{7}, uint8_t{8}}) {
        EXPECT_EQ(0u, DeletePort(last));
    }
    EXPECT_FALSE(registry.HasKey(ServiceKey("vxfc1") + "\\" + PortText(6)));
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, first.c_str());
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, (ServiceKey("vxfc1") + "\\" + malformed).c_str());
    EXPECT_EQ(Names{}, Devices());

    // In the first of the two keys: dropped. In the second: the result, the list still filled.
    Store(ServiceKey("vxfc1") + "\\Device", std::string(malformed) + "\\LunData", 1);
    Store(ServiceKey("vxfc2") + "\\Device", PortText(1) + "\\Length", 1);
    EXPECT_EQ(Names{PortNamed(1)}, Devices());
    EXPECT_EQ(Names{}, TargetsListed());
    Store(ServiceKey("vxfc1") + "\\Device0", std::string(malformed) + "\\LunData", 1);
    Store(ServiceKey("vxfcoei") + "\\Device0", PortText(2) + "\\Length", 1);
    EXPECT_EQ((Names{PortNamed(1), PortNamed(2)}), Devices(HXMGT_PERSISTENT_STORAGE_ERROR));
    TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR);
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeleteTarget(1));
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeletePort(9)) << "not found, and perhaps unseen";
    // A value name longer than the buffer cannot be enumerated.
    Remove(ServiceKey("vxfc1") + "\\Device0", std::string(malformed) + "\\LunData");
    EXPECT_EQ(0u, DeletePort(9));
    Store(ServiceKey("vxfc1") + "\\Device0", std::string(300, 'x'), 1);
    Devices(HXMGT_PERSISTENT_STORAGE_ERROR);
}

TEST_F(PersistEntriesTest, TargetsOfEveryPort) {
    Put(At("vxfc2", 1), {1, 2}, {2, 3});
    Put(At("vxfc2", 2), {4}, {5}, 1);
    Put(At("vxfcoei", 3), {6}, {});
    Put(At("vxfc1", 4, "Device"), {7}, {8, 1});
    // In value names records have one form, whatever the version word.
    Put(At("oemfc2", 5, "Device0"), {9}, {1, 10}, 1);
    EXPECT_EQ(TargetNames({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), TargetsListed());
    HX_WWN_LIST list;
    EXPECT_EQ(0u, IHXFoGetPersistentTargetEntryList(&list));
    EXPECT_EQ(10u, In(list).size());

    // The checksum is not looked at; free slots and what is beyond the count are not listed.
    Store(At("vxfc2", 1).key, "Checksum", 0xDEADBEEF);
    HX_TARGET_DATA data = {};
    data.count = 3;
    SetNames(data.entries[0], NameOf(1), NameOf(1));
    SetNames(data.entries[1], Name{}, NameOf(99));
    SetNames(data.entries[2], NameOf(2), NameOf(2));
    SetNames(data.entries[3], NameOf(98), NameOf(98));
    Store(At("vxfc2", 1).key, "Data", BytesOf(data));
    EXPECT_EQ(10u, TargetsListed().size());
    // A count beyond the block.
    data.count = 65535;
    Store(At("vxfc2", 1).key, "Data", BytesOf(data));
    EXPECT_EQ(11u, TargetsListed().size());

    // In value names a port without LUN data is passed over, whatever its targets.
    Remove(At("vxfc1", 4, "Device").key, PortText(4) + "\\LunData");
    EXPECT_EQ(9u, TargetsListed().size());
}

TEST_F(PersistEntriesTest, PortsWithHalfOfTheirData) {
    Put(At("vxfc2", 1), {1}, {2});
    Put(At("vxfc2", 2), {3}, {});
    Put(At("vxfc1", 3), {4}, {});
    const std::string key = At("vxfc2", 1).key;
    for (const char* name : {"LunData", "LunLength"}) {
        Remove(key, name);
    }
    EXPECT_EQ(TargetNames({1, 3, 4}), TargetsListed()) << "nothing stored is no error";
    registry.MakeKey(ServiceKey("vxfc2") + "\\" + PortText(0));
    EXPECT_EQ(TargetNames({1, 3, 4}), TargetsListed());

    // A block without its length, or of another length, ends the walk of its service.
    Remove(key, "Length");
    EXPECT_EQ(TargetNames({4}), TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR));
    for (const uint32_t length : {8223u, 8225u, 0xFFFFFFFFu}) {
        Store(key, "Length", length);
        EXPECT_EQ(TargetNames({4}), TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR)) << length;
    }
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeleteTarget(3));
    EXPECT_EQ(TargetNames({4}), TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR));
    Store(key, "Length", 8224);
    EXPECT_EQ(TargetNames({1, 4}), TargetsListed()) << "the other ports were served";
    // A block of its own short length is listed, but not rewritten.
    Bytes cut = Stored(key, "Data");
    cut.resize(64);
    Store(key, "Data", cut);
    Store(key, "Length", 64);
    EXPECT_EQ(TargetNames({1, 4}), TargetsListed());
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeleteTarget(1));
    EXPECT_EQ(cut, Stored(key, "Data"));
    // One damaged block does not keep the target in the other.
    Put(At("vxfc2", 9), {30}, {30});
    Store(At("vxfc2", 9).key, "Length", 1);
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeleteTarget(30));
    EXPECT_EQ(Bytes(2080), [&] {
        const Bytes luns = Stored(At("vxfc2", 9).key, "LunData");
        return Bytes(luns.begin() + 32, luns.end());
    }());
    EXPECT_EQ(0u, DeletePort(9));
    // LUN data of 31 bytes has no head, and of a wrong length no meaning.
    Store(key, "LunData", Bytes(31, 1));
    Store(key, "LunLength", 31);
    EXPECT_EQ(TargetNames({1, 4}), TargetsListed());
    Store(key, "LunLength", 32);
    EXPECT_EQ(TargetNames({1, 4}), TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR));
    Store(key, "LunData", Bytes(532513, 1));
    Store(key, "LunLength", 532513);
    EXPECT_EQ(TargetNames({1, 4}), TargetsListed(HXMGT_PERSISTENT_STORAGE_ERROR));
}

TEST_F(PersistEntriesTest, NoMoreThan256Names) {
    for (uint8_t i = 0; i < 2; ++i) {
        std::vector<uint8_t> lasts(i == 0 ? 255 : 2);
        for (size_t n = 0; n < lasts.size(); ++n) {
            lasts[n] = static_cast<uint8_t>(n + (i == 0 ? 1 : 0));
        }
        Put(At("vxfc2", i), lasts, {});
    }
    // 255 and one more: the 256th name.
    EXPECT_EQ(256u, TargetsListed().size());
    HX_TARGET_DATA data = {};
    data.count = 1;
    SetNames(data.entries[0], NameOf(1, 0x51), NameOf(1));
    Store(At("vxfc2", 2).key, "Data", BytesOf(data));
    Store(At("vxfc2", 2).key, "Length", 8224);
    const Names names = TargetsListed();
    EXPECT_EQ(256u, names.size()) << "the 257th is dropped";
    EXPECT_EQ(names.end(), std::find(names.begin(), names.end(), NameOf(1, 0x51)));
    for (int i = 0; i < 257; ++i) {
        char text[24];
        sprintf(text, "21-00-00-24-ff-0a-%02x-%02x", i >> 8, i & 0xFF);
        registry.MakeKey(ServiceKey("vxfc1") + "\\" + text);
    }
    EXPECT_EQ(256u, Devices().size());
}

// Fields may have one digit, and what follows the last is not looked at.
TEST_F(PersistEntriesTest, NamesOfOtherForms) {
    Put(At("vxfc2", 1), {1}, {2});
    const std::string key = ServiceKey("vxfc2") + "\\";
    registry.MakeKey(key + "21-00-00-24-ff-0a-0b-2");
    registry.MakeKey(key + " 1-00-00-24-FF-0A-0B-03 or so");
    Store(ServiceKey("vxfc1") + "\\Device0", "21-00-00-24-ff-0a-0b-4\\Length", 1);
    Name spaced = PortNamed(3);
    spaced[0] = 1;
    const Names expected = {spaced, PortNamed(1), PortNamed(2), PortNamed(4)};
    Names found = Devices();
    std::sort(found.begin(), found.end());
    EXPECT_EQ(expected, found);

    // In value names the port's other values are those of its whole name.
    const Place whole = At("vxfc1", 4, "Device0");
    Put(whole, {3}, {4});
    for (const char* name : {"LunData", "LunLength"}) {
        Remove(whole.key, whole.prefix + name);
    }
    Store(whole.key, "21-00-00-24-ff-0a-0b-4\\LunData", 1);
    EXPECT_EQ(TargetNames({1, 2, 3}), TargetsListed());

    // A target is deleted from every subkey of the pattern, whatever its letters, and of the
    // length.
    const Place letters = {key + "zz-00-00-24-ff-0a-0b-01", ""};
    const Place longer = {key + PortText(1) + "-old", ""};
    Put(letters, {1}, {1});
    Put(longer, {1}, {1});
    EXPECT_EQ(0u, DeleteTarget(1));
    for (const Place& place : {At("vxfc2", 1), letters}) {
        EXPECT_EQ(Bytes(32), Part(Stored(place.key, "Data"), 32, 32)) << place.key;
    }
    EXPECT_NE(Bytes(32), Part(Stored(longer.key, "Data"), 32, 32));

    // A port is deleted under its whole name alone.
    EXPECT_EQ(0u, DeletePort(1));
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeletePort(1)) << "found, but under another name";
    EXPECT_TRUE(registry.HasKey(longer.key));
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeletePort(2));
}

TEST_F(PersistEntriesTest, DeletingAPort) {
    EXPECT_EQ(0u, DeletePort(1)) << "stored nowhere";
    Put(At("vxfc2", 1), {1}, {1});
    Put(At("vxfc2", 2), {2}, {2});
    Put(At("vxfcoe", 1), {3}, {3});
    Put(At("vxfc1", 1, "Device"), {1}, {1});
    Put(At("vxfc1", 1, "Device0"), {1}, {1});
    Put(At("vxfc1", 2, "Device0"), {2}, {2});
    Put(At("vxfcoe", 1, "Device0"), {4}, {4});
    EXPECT_EQ(0u, DeletePort(1));
    EXPECT_FALSE(registry.HasKey(At("vxfc2", 1).key));
    EXPECT_TRUE(registry.HasKey(At("vxfc2", 2).key));
    EXPECT_TRUE(registry.HasKey(At("vxfcoe", 1).key)) << "only the first in the walk";
    for (const char* leaf : {"Device", "Device0"}) {
        for (const char* name : {"Data", "Length", "LunData", "LunLength"}) {
            EXPECT_FALSE(IsStored(At("vxfc1", 1, leaf).key, PortText(1) + "\\" + name));
        }
    }
    EXPECT_TRUE(IsStored(At("vxfc1", 2, "Device0").key, PortText(2) + "\\Data"));
    EXPECT_TRUE(IsStored(At("vxfcoe", 1, "Device0").key, PortText(1) + "\\Data"));
    EXPECT_EQ(0u, IHXFoDeletePersistentDeviceEntry(PortNamed(1).data()));
    EXPECT_EQ(0u, DeletePort(1));
    EXPECT_EQ(Names{PortNamed(2)}, Devices());
}

TEST_F(PersistEntriesTest, DeletionsThatFail) {
    Put(At("vxfc2", 1), {1}, {1});
    Put(At("vxfc2", 2, "Device0"), {2}, {2});
    Put(At("vxfc2", 1, "Device0"), {1}, {1});
    // A key with a subkey of its own cannot be deleted; the values elsewhere are left then.
    registry.MakeKey(At("vxfc2", 1).key + "\\child");
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeletePort(1));
    EXPECT_TRUE(IsStored(At("vxfc2", 1, "Device0").key, PortText(1) + "\\Data"));
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, (At("vxfc2", 1).key + "\\child").c_str());
    EXPECT_EQ(0u, DeletePort(1));
    // A port with one pair of values alone is whole; one with half a pair is not, yet is cleaned.
    const Place place = At("vxfc2", 2, "Device0");
    Remove(place.key, place.prefix + "LunData");
    EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeletePort(2));
    EXPECT_EQ(Names{}, Devices());
    Store(place.key, place.prefix + "Data", Bytes(1));
    Store(place.key, place.prefix + "Length", 1);
    EXPECT_EQ(0u, DeletePort(2));
    EXPECT_EQ(Names{}, Devices());
    // In the first of the two keys a failure is dropped.
    Store(At("vxfc2", 2, "Device").key, place.prefix + "Data", Bytes(1));
    EXPECT_EQ(0u, DeletePort(2));
}

TEST_F(PersistEntriesTest, DeletingATarget) {
    EXPECT_EQ(0u, DeleteTarget(1)) << "stored nowhere";
    Put(At("vxfc2", 1), {1, 2, 1}, {1, 2});
    Put(At("vxfc2", 2), {2}, {2, 1}, 1);
    Put(At("vxfcoei", 3), {3}, {3});
    Put(At("vxfc1", 4, "Device"), {2, 1}, {1});
    Put(At("vxnpiv", 5, "Device0"), {1}, {2, 1, 2});
    const Bytes untouched = Stored(At("vxfcoei", 3).key, "Data");
    const Bytes before = Stored(At("vxfc2", 2).key, "LunData");
    ASSERT_EQ(0u, DeleteTarget(1));
    EXPECT_EQ(TargetNames({2, 3}), TargetsListed());

    HX_TARGET_DATA data = {};
    data.count = 3;
    data.entries[1].target = 1;
    SetNames(data.entries[1], NameOf(2), NameOf(2, 0x60));
    EXPECT_EQ(BytesOf(data), Stored(At("vxfc2", 1).key, "Data")) << "holes, the count as it was";
    EXPECT_EQ(NumberBytes(persist::TargetDataChecksum(data)),
              Stored(At("vxfc2", 1).key, "Checksum"));
    EXPECT_EQ(32u + 2 * 2080, Stored(At("vxfc2", 1).key, "LunData").size());
    Bytes hole = before;
    std::fill(hole.begin() + 32 + 288, hole.end(), uint8_t{0});
    EXPECT_EQ(hole, Stored(At("vxfc2", 2).key, "LunData")) << "a record of version 1";
    EXPECT_EQ(untouched, Stored(At("vxfcoei", 3).key, "Data"));
    const Bytes luns = Stored(At("vxnpiv", 5, "Device0").key, PortText(5) + "\\LunData");
    EXPECT_EQ(Bytes(2080), Bytes(luns.begin() + 32 + 2080, luns.begin() + 32 + 2 * 2080));
    EXPECT_FALSE(IsStored(At("vxnpiv", 5, "Device0").key, PortText(5) + "\\Checksum"));
    EXPECT_EQ(0u, IHXFoDeletePersistentTargetEntry(NameOf(1).data()));
    const Name none = {};
    EXPECT_EQ(0u, HXDeletePersistentTargetEntry(none.data()));
    EXPECT_EQ(TargetNames({2, 3}), TargetsListed());

    // Nothing is written where the target is not stored.
    {
        const FailingWrites writes(0);
        EXPECT_EQ(0u, DeleteTarget(1));
        EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeleteTarget(3));
    }
    // Broken off between data and checksum: the next read refuses the port.
    {
        const FailingWrites writes(1);
        EXPECT_EQ(HXMGT_PERSISTENT_STORAGE_ERROR, DeleteTarget(2));
    }
    EXPECT_NE(NumberBytes(persist::TargetDataChecksum(*reinterpret_cast<const HX_TARGET_DATA*>(
                  Stored(At("vxfc2", 1).key, "Data").data()))),
              Stored(At("vxfc2", 1).key, "Checksum"));
}

}  // namespace
