// Events of the running driver, seen by several processes.
#include <memory>
#include <sstream>
#include <vector>

#include "emulated_driver.h"

namespace system_test {
namespace {

using support::Program;

class SystemEvents : public EmulatedDriver {
  protected:
    static std::unique_ptr<Program> Watch(const std::string& options) {
        return std::make_unique<Program>("vxmgr.exe", "event watch -p scsi:3 -o jsonl " + options);
    }

    // Waits until so many processes have the port open.
    static bool PortIsOpenTimes(int handles) {
        return PortReaches("scsi:3", "open_handles", handles);
    }

    // The kinds of the events that a watcher printed, in their order.
    static std::vector<std::string> Kinds(const std::string& lines) {
        std::vector<std::string> kinds;
        std::istringstream stream(lines);
        for (std::string line; std::getline(stream, line);) {
            const json document = json::Parse(line);
            if (document.contains("row")) {
                kinds.push_back(document["row"]["kind"].text());
            }
        }
        return kinds;
    }
};

TEST_F(SystemEvents, TwoProcessesSeeEachEventOnce) {
    const auto first = Watch("--count 2");
    const auto second = Watch("--count 2");
    ASSERT_TRUE(PortIsOpenTimes(2));
    ASSERT_TRUE(PortReaches("scsi:3", "event_delivery", true));
    Sleep(500);  // both have registered: opening comes just before
    ASSERT_EQ(0u, Vxemu("link 3 down").exit);
    ASSERT_EQ(0u, Vxemu("link 3 up").exit);
    const std::vector<std::string> expected = {"link-down", "link-up"};
    for (Program* watcher : {first.get(), second.get()}) {
        const support::Ended ended = watcher->Wait();
        EXPECT_EQ(0u, ended.exit) << ended.err;
        EXPECT_EQ(expected, Kinds(ended.out)) << ended.out;
    }
    EXPECT_EQ(false, PortStatus("scsi:3")["event_delivery"]);
}

TEST_F(SystemEvents, ADriverWithoutEventsLeavesAnEmptyList) {
    const json document = Document("event watch -p scsi:9 --count 1");
    EXPECT_EQ(4, document["exit"]);
    EXPECT_EQ("[]", document["result"]["events"].dump());
}

TEST_F(SystemEvents, AQuietTimeIsNoFailure) {
    const json document = Document("event watch -p scsi:3 --for 1");
    EXPECT_EQ(0, document["exit"]);
    EXPECT_EQ("[]", document["result"]["events"].dump());
    EXPECT_EQ(false, PortStatus("scsi:3")["event_delivery"]);
}

TEST_F(SystemEvents, NinthProcessHasNoSlot) {
    std::vector<std::unique_ptr<Program>> watchers;
    for (int i = 0; i < 8; ++i) {
        watchers.push_back(Watch("--count 1"));
        ASSERT_TRUE(PortIsOpenTimes(i + 1));
    }
    Sleep(500);
    const support::Ended ninth = Watch("--count 1")->Wait();
    EXPECT_EQ(6u, ninth.exit) << ninth.err;
    // The eight end with their event, and make room again.
    ASSERT_EQ(0u, Vxemu("event 3 lip").exit);
    for (const auto& watcher : watchers) {
        EXPECT_EQ(0u, watcher->Wait().exit);
    }
    const auto later = Watch("--count 1");
    ASSERT_TRUE(PortReaches("scsi:3", "event_delivery", true));
    Sleep(500);
    ASSERT_EQ(0u, Vxemu("event 3 rscn").exit);
    EXPECT_EQ(std::vector<std::string>{"rscn"}, Kinds(later->Wait().out));
}

}  // namespace
}  // namespace system_test
