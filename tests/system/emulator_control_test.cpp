// vxemu on the running driver, as vxmgr and other processes see it: adapters that come and go,
// counters that are raised, traces.
#include "emulated_driver.h"
#include "frame/owned.h"
#include "transport/ext_ioctl.h"

namespace system_test {
namespace {

class SystemEmulatorControl : public FreshDriver {
  protected:
    static void Expect(const std::string& arguments, int exit, const char* place = "",
                       const json& value = nullptr) {
        const json document = VxemuDocument(arguments);
        EXPECT_EQ(exit, document["exit"]) << arguments << document["messages"];
        if (*place != '\0') {
            EXPECT_EQ(value, document["result"].at(place)) << arguments << document["result"];
        }
    }
    static frame::OwnedFile OpenPort(const std::string& name) {
        return frame::OwnedFile(
            CreateFileA(("\\\\.\\" + name).c_str(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    }
    // How a request without an envelope fails.
    static DWORD ErrorOf(const frame::OwnedFile& port) {
        DWORD returned = 0;
        const BOOL sent = DeviceIoControl(port.Get(), transport::kIoctlScsiMiniport, nullptr, 0,
                                          nullptr, 0, &returned, nullptr);
        return sent != FALSE ? DWORD{ERROR_SUCCESS} : GetLastError();
    }
    // The driver's "no such device" arrives as either, depending on the system.
    static bool IsMissing(const frame::OwnedFile& port) {
        constexpr DWORD kNoSuchDevice = 433;
        const DWORD error = ErrorOf(port);
        return error == ERROR_FILE_NOT_FOUND || error == kNoSuchDevice;
    }
    static std::string ScsiPorts() {
        std::string found;
        const json document = Document("port list");
        EXPECT_EQ(0, document["exit"]) << document["messages"];
        for (const json& port : document["result"]["ports"]) {
            found += " " + std::to_string(port["scsi_port"].number());
        }
        return found;
    }
};

TEST_F(SystemEmulatorControl, AdaptersComeAndGo) {
    support::Program stays("vxmgr.exe", "event watch --count 2 -p scsi:3");
    support::Program loses("vxmgr.exe", "event watch -p scsi:6");
    ASSERT_TRUE(PortReaches("scsi:3", "event_delivery", true));
    ASSERT_TRUE(PortReaches("scsi:6", "event_delivery", true));
    const frame::OwnedFile old = OpenPort("scsi6:");
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, ErrorOf(old)) << "an empty request";

    Expect("adapter add 0x7742 --ports 2 --dry-run", 0, "/serial", "EMU7742A0004");
    EXPECT_EQ(" 3 4 6 9", ScsiPorts());
    Expect("adapter add 0x7742 --ports 2 firmware_version=9.10.00", 0, "/ports/1/port", "scsi:11");
    EXPECT_EQ(" 3 4 6 9 10 11", ScsiPorts());
    const json shown = Document("adapter show -a EMU7742A0004")["result"];
    EXPECT_EQ("9.10.00", shown.at("/adapters/0/firmware")) << shown;
    EXPECT_EQ(3u, Document("target list -p scsi:11")["result"]["targets"].size());
    const json disk = Document("map target 0:0 -p scsi:11");
    EXPECT_EQ(0, disk["exit"]) << disk["messages"];
    EXPECT_TRUE(support::Has(disk["result"].dump(), "PhysicalDrive")) << disk["result"];

    // A card that is pulled while somebody has its port open.
    Expect("adapter remove EMU7404A0002", 0, "/ports/0/port", "scsi:6");
    EXPECT_EQ(" 3 4 9 10 11", ScsiPorts());
    EXPECT_EQ(3, ExitOf("port show -p scsi:6"));
    Expect("adapter remove scsi:6", 3);
    Expect("reset scsi:6", 3);
    EXPECT_TRUE(IsMissing(old));
    support::Ended ended = loses.Wait();
    EXPECT_EQ(3u, ended.exit) << ended.out << ended.err;
    EXPECT_TRUE(support::Has(ended.err, "the adapter went away")) << ended.err;
    // It comes back under its number, and is nothing to who has the old one open.
    Expect("adapter add 7404 --scsi-port 6 --serial EMU7404A0002", 0, "/adapter", 3);
    EXPECT_EQ(" 3 4 6 9 10 11", ScsiPorts());
    EXPECT_EQ(0, PortStatus("scsi:6")["open_handles"]);
    EXPECT_EQ(false, PortStatus("scsi:6")["event_delivery"]);
    EXPECT_EQ(0, ExitOf("map target 0:0 -p scsi:6"));
    EXPECT_TRUE(IsMissing(old));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, ErrorOf(OpenPort("scsi6:")));

    ASSERT_EQ(0u, Vxemu("link 3 down").exit);
    ASSERT_EQ(0u, Vxemu("link 3 up").exit);
    ended = stays.Wait();
    EXPECT_EQ(0u, ended.exit) << ended.out << ended.err;
    EXPECT_EQ(0, PortStatus("scsi:3")["open_handles"]);
    EXPECT_EQ(0, PortStatus("scsi:6")["open_handles"]);

    const std::string taken = "adapter add 0x7404 --serial EMU7742A0004";
    Expect(taken, 8);
    Expect("adapter add 0x7404 --scsi-port 9", 8);
    Expect("adapter add 0x7404 --serial REAL7404", 8);
    Expect("adapter add 0x7999", 2);
    Expect("adapter add 0x7404 --ports 9", 2);
    Expect("adapter add 0x7404 serial=EMU1", 2);
    for (const char* adapter : {"EMU7404A0002", "scsi:10", "9"}) {
        Expect(std::string("adapter remove ") + adapter, 0);
    }
    Expect("adapter remove scsi:4", 8);
    EXPECT_EQ(" 3 4", ScsiPorts());
}

}  // namespace
}  // namespace system_test
