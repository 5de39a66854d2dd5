// A program that knows the standard HBA API alone, beside vxmgr, which asks the management API.
#include <cstring>
#include <set>
#include <vector>

#include "emulated_driver.h"
#include "hbaapi.h"

namespace system_test {
namespace {

constexpr char kKey[] = "SOFTWARE\\SNIA\\HBA\\VXCORE";

std::string Digits(const HBA_WWN& name) {
    char text[17];
    for (size_t i = 0; i < sizeof name.wwn; ++i) {
        snprintf(text + 2 * i, 3, "%02x", name.wwn[i]);
    }
    return text;
}

std::string FcIdText(HBA_UINT32 id) {
    char text[16];
    snprintf(text, sizeof text, "0x%06x", static_cast<unsigned>(id));
    return text;
}

class SystemHbaApi : public EmulatedDriver {
  protected:
    // As the common library loads a vendor's: by its file, with one entry point.
    void SetUp() override {
        module_ = LoadLibraryA("VXMGMT.DLL");
        ASSERT_NE(nullptr, module_);
        const auto registerLibrary = reinterpret_cast<HBA_REGISTERLIBRARY>(
            reinterpret_cast<void (*)()>(GetProcAddress(module_, "HBA_RegisterLibrary")));
        ASSERT_NE(nullptr, registerLibrary);
        ASSERT_EQ(0u, registerLibrary(&api_));
        ASSERT_EQ(0u, api_.LoadLibraryHandler());
    }
    void TearDown() override {
        EmulatedDriver::TearDown();
        for (const HBA_HANDLE handle : open_) {
            api_.CloseAdapterHandler(handle);
        }
        api_.FreeLibraryHandler();
        FreeLibrary(module_);
    }

    HBA_HANDLE Open(HBA_UINT32 index) {
        char name[256];
        EXPECT_EQ(0u, api_.GetAdapterNameHandler(index, name));
        const HBA_HANDLE handle = api_.OpenAdapterHandler(name);
        EXPECT_NE(0u, handle) << name;
        open_.push_back(handle);
        return handle;
    }

    // "device bus:target:lun port" of everything that the system has a device for.
    std::set<std::string> Mapping(HBA_HANDLE handle) {
        std::vector<uint64_t> buffer(64 * sizeof(HBA_FCPSCSIENTRY) / 8);
        auto* const list = reinterpret_cast<HBA_FCPTARGETMAPPING*>(buffer.data());
        list->NumberOfEntries = 60;
        EXPECT_EQ(0u, api_.GetFcpTargetMappingHandler(handle, list));
        std::set<std::string> units;
        for (HBA_UINT32 i = 0; i < list->NumberOfEntries; ++i) {
            const HBA_SCSIID& id = list->entry[i].ScsiId;
            units.insert(id.OSDeviceName + (" " + std::to_string(id.ScsiBusNumber)) + ":" +
                         std::to_string(id.ScsiTargetNumber) + ":" + std::to_string(id.ScsiOSLun) +
                         " " + Digits(list->entry[i].FcpId.PortWWN));
        }
        return units;
    }

    // The same as `map target all` has it.
    std::set<std::string> Mapped(const std::string& port) {
        std::set<std::string> units;
        const json document = Document("map target all -p " + port);
        for (const json& row : document["result"]["units"]) {
            if (row["device"].is_string()) {
                units.insert(row["device"].text() + " " + row["bus"].dump() + ":" +
                             row["target"].dump() + ":" + row["lun"].dump() + " " +
                             row["target_wwn"].text());
            }
        }
        return units;
    }

    // Events as they come, until there are so many.
    std::vector<HBA_EVENTINFO> Events(HBA_HANDLE handle, size_t wanted) {
        std::vector<HBA_EVENTINFO> found;
        for (int turn = 0; turn < 40 && found.size() < wanted; ++turn) {
            HBA_EVENTINFO events[32];
            HBA_UINT32 count = 32;
            const HBA_STATUS status = api_.GetEventBufferHandler(handle, events, &count);
            if (status != HBA_STATUS_OK) {
                ADD_FAILURE() << "status " << status;
                break;
            }
            found.insert(found.end(), events, events + count);
            Sleep(100);
        }
        return found;
    }

    static std::string RegisteredFile() {
        char text[MAX_PATH] = {};
        DWORD size = sizeof text;
        return RegGetValueA(HKEY_LOCAL_MACHINE, kKey, "LibraryFile", RRF_RT_REG_SZ, nullptr, text,
                            &size) == ERROR_SUCCESS
                   ? text
                   : "";
    }

    static void SetRegistered(const std::string& value, const std::string& text) {
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueA(HKEY_LOCAL_MACHINE, kKey, value.c_str(), REG_SZ, text.c_str(),
                                  static_cast<DWORD>(text.size() + 1)));
    }

    HBA_ENTRYPOINTS api_{};

  private:
    HMODULE module_ = nullptr;
    std::vector<HBA_HANDLE> open_;
};

TEST_F(SystemHbaApi, BothInterfacesTellTheSame) {
    ASSERT_EQ(4u, api_.GetNumberOfAdaptersHandler());
    const json shown = Document("port show")["result"]["ports"];
    ASSERT_EQ(4u, shown.size());
    for (HBA_UINT32 index = 0; index < 4; ++index) {
        SCOPED_TRACE(index);
        const json other = shown[index];
        const std::string selector = "index:" + std::to_string(index);
        const bool legacy = other["scsi_port"] == 9;
        const HBA_HANDLE handle = Open(index);

        HBA_ADAPTERATTRIBUTES adapter{};
        ASSERT_EQ(0u, api_.GetAdapterAttributesHandler(handle, &adapter));
        EXPECT_EQ(other["identity"]["serial"], adapter.SerialNumber);
        EXPECT_EQ(other["identity"]["model"], adapter.Model);
        EXPECT_EQ(other["identity"]["node_wwn"], Digits(adapter.NodeWWN));
        EXPECT_EQ(other["versions"]["driver"], adapter.DriverVersion);
        EXPECT_EQ(other["versions"]["firmware"], adapter.FirmwareVersion);
        EXPECT_EQ(other["versions"]["driver_service"].text() + ".sys", adapter.DriverName);
        EXPECT_EQ(other["versions"]["option_rom"].text(), adapter.OptionROMVersion);
        EXPECT_EQ(1u, adapter.NumberOfPorts);

        HBA_PORTATTRIBUTES port{};
        ASSERT_EQ(0u, api_.GetAdapterPortAttributesHandler(handle, 0, &port));
        EXPECT_EQ(other["identity"]["port_wwn"], Digits(port.PortWWN));
        EXPECT_EQ(other["link"]["port_id"], FcIdText(port.PortFcId));
        EXPECT_EQ(HBA_PORTSTATE_ONLINE, static_cast<int>(port.PortState));
        EXPECT_EQ("\\\\.\\Scsi" + other["scsi_port"].dump() + ":", port.OSDeviceName);
        EXPECT_EQ(legacy       ? HBA_PORTSPEED_1GBIT
                  : index == 2 ? HBA_PORTSPEED_8GBIT
                               : HBA_PORTSPEED_32GBIT,
                  static_cast<int>(port.PortSpeed));

        // Every port that is discovered leads back to itself by its name.
        std::set<std::string> names;
        HBA_PORTATTRIBUTES remote{};
        for (HBA_UINT32 at = 0;
             api_.GetDiscoveredPortAttributesHandler(handle, 0, at, &remote) == HBA_STATUS_OK;
             ++at) {
            HBA_PORTATTRIBUTES again{};
            EXPECT_EQ(0u, api_.GetPortAttributesByWWNHandler(handle, remote.PortWWN, &again));
            EXPECT_EQ(remote.PortFcId, again.PortFcId);
            names.insert(Digits(remote.PortWWN));
        }
        EXPECT_EQ(4u, names.size());
        const json targets = Document("target list -p " + selector);
        for (const json& target : targets["result"]["targets"]) {
            EXPECT_TRUE(target["present"] != true || legacy ||
                        names.contains(target["target_wwn"].text()))
                << target.dump();
        }

        const std::set<std::string> mapping = Mapping(handle);
        EXPECT_EQ(8u, mapping.size()) << "LUN 256 has no address in the operating system";
        EXPECT_EQ(Mapped(selector), mapping);
    }
}

TEST_F(SystemHbaApi, StatisticsCountWhatHappens) {
    const HBA_HANDLE handle = Open(0);
    ASSERT_EQ(0u, api_.ResetStatisticsHandler(handle, 0));
    for (const char* state : {"down", "up", "down", "up"}) {
        ASSERT_EQ(0u, Vxemu(std::string("link 3 ") + state).exit);
    }
    HBA_PORTSTATISTICS statistics{};
    ASSERT_EQ(0u, api_.GetPortStatisticsHandler(handle, 0, &statistics));
    const json other = Document("port stats -p scsi:3")["result"]["readings"][0];
    EXPECT_EQ(2, statistics.LinkFailureCount);
    EXPECT_EQ(other["link_failures"], statistics.LinkFailureCount);
    EXPECT_EQ(other["losses_of_sync"], statistics.LossOfSyncCount);
    EXPECT_EQ(other["losses_of_signal"], statistics.LossOfSignalCount);
    EXPECT_EQ(other["invalid_crcs"], statistics.InvalidCRCCount);
    EXPECT_EQ(-1, statistics.TxFrames) << "traffic is not told";
    ASSERT_EQ(0u, api_.ResetStatisticsHandler(handle, 0));
    ASSERT_EQ(0u, api_.GetPortStatisticsHandler(handle, 0, &statistics));
    EXPECT_EQ(0, statistics.LinkFailureCount);
}

TEST_F(SystemHbaApi, EventsArrive) {
    const HBA_HANDLE handle = Open(0);
    Events(handle, 0);
    ASSERT_EQ(0u, Vxemu("link 3 down").exit);
    ASSERT_EQ(0u, Vxemu("link 3 up").exit);
    ASSERT_EQ(0u, Vxemu("event 3 rscn").exit);
    ASSERT_EQ(0u, Vxmgr("event test -p scsi:3").exit);
    std::vector<HBA_UINT32> codes;
    for (const HBA_EVENTINFO& event : Events(handle, 4)) {
        codes.push_back(event.EventCode);
    }
    EXPECT_EQ((std::vector<HBA_UINT32>{HBA_EVENT_LINK_DOWN, HBA_EVENT_LINK_UP, HBA_EVENT_RSCN,
                                       HBA_EVENT_PROPRIETARY}),
              codes);
}

TEST_F(SystemHbaApi, ManagementAddressIsKept) {
    const HBA_HANDLE handle = Open(1);
    HBA_MGMTINFO before{};
    ASSERT_EQ(0u, api_.GetRNIDMgmtInfoHandler(handle, &before));
    HBA_MGMTINFO wanted = before;
    wanted.IPVersion = 2;
    wanted.UDPPort = 0xABCD;
    for (HBA_UINT8 i = 0; i < 16; ++i) {
        wanted.IPAddress[i] = static_cast<HBA_UINT8>(0x20 + i);
    }
    ASSERT_EQ(0u, api_.SetRNIDMgmtInfoHandler(handle, &wanted));
    const json shown = Document("hbaapi show -p index:1")["result"]["adapters"][0]["management"];
    EXPECT_EQ("2021:2223:2425:2627:2829:2a2b:2c2d:2e2f", shown["ip_address"]);
    EXPECT_EQ(0xABCD, shown["udp_port"]);
    EXPECT_EQ(1, shown["port_number"]);
    ASSERT_EQ(0u, api_.SetRNIDMgmtInfoHandler(handle, &before));
}

TEST_F(SystemHbaApi, VxmgrShowsAllOfIt) {
    const json listed = Document("hbaapi list")["result"]["adapters"];
    ASSERT_EQ(4u, listed.size());
    EXPECT_EQ(2u, Document("hbaapi list -a serial:EMU7740A0001")["result"]["adapters"].size());
    const json document = Document("hbaapi show");
    EXPECT_EQ(0, document["exit"]);
    for (const json& adapter : document["result"]["adapters"]) {
        const std::string index = adapter["index"].dump();
        char name[256];
        ASSERT_EQ(0u, api_.GetAdapterNameHandler(static_cast<HBA_UINT32>(adapter["index"].number()),
                                                 name));
        EXPECT_EQ(name, adapter["name"]);
        std::set<std::string> devices;
        for (const json& row : adapter["mapping"]) {
            devices.insert(row["os_device"].text() + " " + row["bus"].dump() + ":" +
                           row["target"].dump() + ":" + row["lun"].dump() + " " +
                           row["port_wwn"].text());
        }
        EXPECT_EQ(Mapping(Open(static_cast<HBA_UINT32>(adapter["index"].number()))), devices);
        EXPECT_EQ(adapter["discovered_status"], "HBA_STATUS_OK");
        const json alone = Document("hbaapi list -p wwn:" + adapter["port"]["port_wwn"].text());
        EXPECT_EQ(index, alone["result"]["adapters"][0]["index"].dump());
    }
    EXPECT_EQ(3, ExitOf("hbaapi show -p scsi:5"));

    // A driver that fails is told under the names of this interface; the other adapters stay.
    Fault("scsi:4 --code PortProperties --do status 23");
    const json failed = Document("hbaapi list");
    EXPECT_EQ(11, failed["exit"]);
    EXPECT_EQ("HBA_STATUS_ERROR", failed["result"]["adapters"][1]["status"]);
    EXPECT_EQ("HBA_STATUS_OK", failed["result"]["adapters"][0]["status"]);
}

TEST_F(SystemHbaApi, RegistrationLeadsTheCommonLibraryHere) {
    const std::string machines = RegisteredFile();  // put back in the end
    EXPECT_EQ(0u, Vxmgr("hbaapi unregister").exit);
    EXPECT_EQ(false, Document("hbaapi unregister")["changed"]);
    EXPECT_EQ(false, Document("hbaapi register --dry-run")["changed"]);
    EXPECT_EQ("", RegisteredFile());
    const json registered = Document("hbaapi register");
    EXPECT_EQ(true, registered["changed"]);
    const std::string file = RegisteredFile();
    EXPECT_EQ(registered["result"]["file"], file);
    const HMODULE module = LoadLibraryA(file.c_str());
    ASSERT_NE(nullptr, module) << file;
    EXPECT_NE(nullptr, reinterpret_cast<void*>(GetProcAddress(module, "HBA_RegisterLibrary")));
    FreeLibrary(module);
    EXPECT_EQ(false, Document("hbaapi register")["changed"]);
    EXPECT_EQ(30, ExitOf("hbaapi register --detailed-exitcode"));

    // Another file is replaced, and told.
    constexpr char kOther[] = "C:\\other.dll";
    SetRegistered("LibraryFile", kOther);
    EXPECT_EQ(kOther, Document("hbaapi register")["result"]["previous"]);
    EXPECT_EQ(file, RegisteredFile());

    // What else stands there stays, and the key with it.
    constexpr char kMore[] = "vxmgmt test";
    SetRegistered(kMore, "kept");
    EXPECT_EQ(file, Document("hbaapi unregister --dry-run")["result"]["file"]);
    EXPECT_EQ(file, RegisteredFile());
    EXPECT_EQ(true, Document("hbaapi unregister")["changed"]);
    EXPECT_EQ("", RegisteredFile());
    EXPECT_EQ(ERROR_SUCCESS, RegGetValueA(HKEY_LOCAL_MACHINE, kKey, kMore, RRF_RT_REG_SZ, nullptr,
                                          nullptr, nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kKey, kMore));
    if (!machines.empty()) {
        SetRegistered("LibraryFile", machines);
    }
}

TEST_F(SystemHbaApi, UnregisteringLeavesNoEmptyKey) {
    const bool mine = RegisteredFile().empty();
    EXPECT_EQ(mine, Document("hbaapi register --dry-run")["result"]["previous"].is_null());
    HKEY key = nullptr;
    if (mine && RegOpenKeyA(HKEY_LOCAL_MACHINE, kKey, &key) != ERROR_SUCCESS) {
        EXPECT_EQ(0u, Vxmgr("hbaapi register").exit);
        EXPECT_EQ(0u, Vxmgr("hbaapi unregister").exit);
        EXPECT_NE(ERROR_SUCCESS, RegOpenKeyA(HKEY_LOCAL_MACHINE, kKey, &key));
    }
    RegCloseKey(key);
}

}  // namespace
}  // namespace system_test
