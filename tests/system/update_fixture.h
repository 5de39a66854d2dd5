// What tests of whole updates share: an adapter, the images for it, and what this machine keeps of
// its updates.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "flash_fixture.h"

namespace system_test {

// An adapter, and the regions that an update of it writes.
struct Updated {
    std::string port;  // "scsi:3"
    std::string serial;
    std::vector<int> codes;  // in the order in which they are written

    std::string Selected() const { return " -a serial:" + serial; }
    std::string Sure() const { return Selected() + " --yes --confirm " + serial; }
};

class UpdateFixture : public FlashFixture {
  protected:
    static constexpr int kFirmware = 1;

    // Where this machine keeps the updates of an adapter.
    static fs::path UpdatesOf(const std::string& serial) {
        const char* const data = std::getenv("ProgramData");
        return fs::path(data != nullptr ? data : "C:\\ProgramData") / "vxmgr" / "updates" / serial;
    }
    static std::vector<fs::path> Journals(const std::string& serial) {
        std::vector<fs::path> folders;
        if (fs::exists(UpdatesOf(serial))) {
            for (const auto& entry : fs::directory_iterator(UpdatesOf(serial))) {
                folders.push_back(entry.path());
            }
        }
        std::sort(folders.begin(), folders.end());
        return folders;
    }
    static void Forget(const std::string& serial) { fs::remove_all(UpdatesOf(serial)); }

    static json JournalOf(const std::string& serial) {
        const auto folders = Journals(serial);
        return folders.empty()
                   ? json()
                   : json::Parse(support::TextOfFile((folders.back() / "journal.json").string()));
    }

    static void WriteFile(const fs::path& path, const Data& bytes) {
        std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    }

    // The arguments that name an image for each region.
    std::string Files(const Updated& adapter, const std::string& firmware,
                      const std::string& boot) {
        std::string files;
        for (const int code : adapter.codes) {
            files += " \"" + Image(adapter.port, code, code == kFirmware ? firmware : boot) + "\"";
        }
        return files;
    }

    // What `fw update` and `fw restore` say of the only adapter.
    static json Only(const json& document) { return document["result"]["updates"][0]; }
};

}  // namespace system_test
