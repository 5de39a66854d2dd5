// What tests of the running driver's flash share: images for it, what its regions hold, and the
// update locks.
#pragma once

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "emulated_driver.h"
#include "frame/shared_area.h"

namespace system_test {

namespace fs = std::filesystem;
using Data = std::vector<char>;
using Regions = std::map<std::string, Data>;

class FlashFixture : public FreshDriver {
  protected:
    static inline const std::string kBanked = " -a serial:EMU7740A0001";
    static inline const std::string kLargeRom = " -a serial:EMU7404A0002";
    static inline const std::string kYes = " --yes --confirm EMU7740A0001";

    static Data BytesOf(const fs::path& path) {
        const std::string text = support::TextOfFile(path.string());
        return {text.begin(), text.end()};
    }

    // An image of a version for a region of the port's adapter, as the emulator makes it.
    std::string Image(const std::string& port, int region, const std::string& version) {
        const std::string file =
            File(port.substr(port.find(':') + 1) + "-" + std::to_string(region) + "-" + version);
        const support::Ended made = Vxemu("flash image " + port + " " + std::to_string(region) +
                                          " \"" + file + "\" --as " + version);
        EXPECT_EQ(0u, made.exit) << made.err;
        return file;
    }

    // Every region of an adapter, by file name.
    Regions AllRegions(const std::string& name, const std::string& adapter = kBanked) {
        const fs::path folder = folder_ / name;
        EXPECT_EQ(0, ExitOf("flash read all \"" + folder.string() + "\"" + adapter));
        Regions regions;
        for (const auto& entry : fs::directory_iterator(folder)) {
            regions[entry.path().filename().string()] = BytesOf(entry.path());
        }
        return regions;
    }

    // What `fw show` says of a region of an adapter.
    json Code(const std::string& adapter, int region) {
        const json document = Document("fw show" + adapter);
        for (const json& row : document["result"]["code"]) {
            if (row["region"] == region) {
                return row;
            }
        }
        ADD_FAILURE() << "no region " << region;
        return {};
    }

    // Sets the owner of an adapter's lock, as a program does that takes it over or frees it; the
    // one before.
    static uint32_t SetOwner(const std::string& serial, uint32_t owner) {
        const HANDLE mapping =
            OpenFileMappingA(FILE_MAP_WRITE, FALSE, "Global\\HXMGT_FlashUpdateLocksMapFile");
        auto* const area = static_cast<frame::FlashLockArea*>(
            MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(frame::FlashLockArea)));
        EXPECT_NE(nullptr, area);
        uint32_t before = 0;
        for (size_t i = 0; area != nullptr && i < std::size(area->locks); ++i) {
            // The text stands behind the byte that says that there is one.
            if (serial == area->locks[i].serial + 1) {
                before = area->locks[i].owner;
                area->locks[i].owner = owner;
            }
        }
        UnmapViewOfFile(area);
        CloseHandle(mapping);
        return before;
    }

    json Lock(const std::string& serial) {
        const json document = Document("flash lock show");
        for (const json& row : document["result"]["locks"]) {
            if (row["serial"] == serial) {
                return row;
            }
        }
        return {};
    }

    // Waits until the adapter's lock is held; its owner, or 0 after some seconds.
    int WaitForOwner() {
        for (int i = 0; i < 50; ++i) {
            const json lock = Lock("EMU7740A0001");
            if (lock["held"] == true) {
                return static_cast<int>(lock["owner_pid"].number());
            }
            Sleep(100);
        }
        return 0;
    }
};

}  // namespace system_test
