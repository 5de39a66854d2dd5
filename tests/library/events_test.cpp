// Events in one process.
#include <algorithm>
#include <atomic>
#include <set>
#include <thread>

#include "support/events_fixture.h"

namespace {

using namespace support;

TEST_F(EventsTest, EnableAndDisableSwitchTheDriverOnce) {
    EXPECT_EQ(0u, HXEnableAen(handle));
    EXPECT_EQ((Masks{0, 0xFFFFFFFF}), driver.TakeMasks());
    const auto requests = driver.port.Requests(command::EventDelivery);
    ASSERT_EQ(2u, requests.size());
    EXPECT_EQ(Bytes(8, 0), requests[0].Data());
    EXPECT_EQ((Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}), requests[1].Data());
    EXPECT_EQ(0u, requests[1].Envelope().ext.responseLen);
    EXPECT_EQ(1u, area->registrations[0]);
    EXPECT_EQ(32u, OwnSlot().capacity[handle]);

    EXPECT_EQ(0u, HXEnableAen(handle));
    EXPECT_EQ(2u, area->registrations[0]);
    EXPECT_EQ(0u, HXDisableAen(handle));
    EXPECT_EQ(Masks{}, driver.TakeMasks());
    EXPECT_EQ(0u, HXDisableAen(handle));
    EXPECT_EQ(Masks{0}, driver.TakeMasks());
    // A disable too many leaves the counters at 0 and still switches off.
    EXPECT_EQ(0u, HXDisableAen(handle));
    EXPECT_EQ(Masks{0}, driver.TakeMasks());
    EXPECT_EQ(0u, area->registrations[0]);
    driver.port.On(command::EventDelivery, Reply{.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, HXDisableAen(handle));
}

TEST_F(EventsTest, EnableThatTheDriverRefuses) {
    driver.port.Next({});
    driver.port.Next({.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, HXEnableAen(handle));
    EXPECT_EQ(0u, area->registrations[0]);
    for (const frame::EventSlot& slot : area->slots) {
        EXPECT_TRUE(slot.inUse == 0 || slot.capacity[handle] == 0);
    }
    // What becomes of the first of the two requests does not matter.
    driver.port.Next({.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(0u, HXEnableAen(handle));
    EXPECT_EQ(1u, area->registrations[0]);
}

TEST_F(EventsTest, TypesOfDriverEvents) {
    HXEnableAen(handle);
    for (uint32_t code = 0x8010; code <= 0x8016; ++code) {
        driver.Raise(code, code);
    }
    for (const uint32_t code : {0x8080u, 0u, 0x800Fu, 0x8081u, 0x18011u, 1u}) {
        driver.Raise(code, code);
    }
    EXPECT_EQ("1:32784 2:32785 3:32786 4:32787 6:32788 5:32789 8:32896", Get(32));
    // A record that is not delivered takes up room all the same.
    driver.Raise(0x8016, 1);
    driver.Raise(0x8011, 2, 2);
    EXPECT_EQ("2:2", Get(2));
    EXPECT_EQ("2:3", Get(2));
    EXPECT_EQ("", Get(2));
}

TEST_F(EventsTest, RoomAndSizes) {
    HXEnableAen(handle);
    GuardedBuffer buffer(47);  // two records and a rest
    uint32_t count = 9;
    driver.Raise(0x8011, 1, 5);
    EXPECT_EQ(0u, HXGetAen(handle, buffer.Data(), 47, &count));
    EXPECT_EQ(2u, count);
    EXPECT_TRUE(buffer.Holds(0xEE, 32, 47));
    const SentRequest request = driver.port.Last();
    EXPECT_EQ(116u, request.inputSize);
    EXPECT_EQ(116u + 47u, request.outputSize);
    EXPECT_EQ("2:3", Get(1));
    // Never more than 32 records from the driver at once.
    driver.Raise(0x8011, 6, 60);
    EXPECT_EQ(Numbers(4, 32), Get(100));
    EXPECT_EQ(116u + 512u, driver.port.Last().outputSize);
    EXPECT_EQ(Numbers(36, 30), Get(100));

    EXPECT_EQ(0u, HXGetAen(handle, nullptr, 0, &count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetAen(handle, nullptr, 16, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetAen(handle, buffer.Data(), 16, nullptr));
}

TEST_F(EventsTest, DriverThatReportsMoreThanItWasAskedFor) {
    HXEnableAen(handle);
    GuardedBuffer buffer(32);
    uint32_t count = 0;
    const properties::DriverEvent event = {0x8011, {1, 2, 3}};
    Bytes many;
    for (int i = 0; i < 8; ++i) {
        Append(many, BytesOf(event));
    }
    for (const uint32_t claimed : {128u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        driver.port.Next({.data = many, .responseLength = claimed});
        EXPECT_EQ(0u, HXGetAen(handle, buffer.Data(), 32, &count));
        EXPECT_EQ(2u, count);
    }
    // A record that is cut short is none.
    driver.port.Next({.data = many, .responseLength = 31});
    EXPECT_EQ(0u, HXGetAen(handle, buffer.Data(), 32, &count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ("", Get(32)) << "nothing was queued";
}

TEST_F(EventsTest, WhoMayAsk) {
    uint8_t buffer[16];
    uint32_t count = 9;
    for (const uint32_t bad : {65u, 0xFFFFFFFFu}) {
        EXPECT_EQ(HXMGT_INVALID_HANDLE, HXEnableAen(bad));
        EXPECT_EQ(HXMGT_INVALID_HANDLE, HXDisableAen(bad));
        EXPECT_EQ(HXMGT_INVALID_HANDLE, HXGetAen(bad, buffer, 16, &count));
    }
    AddPort(9, "7.05.02", 0x7200);
    const uint32_t old = Open(1);
    count = 9;
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXEnableAen(old));
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXDisableAen(old));
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXGetAen(old, buffer, 16, &count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXGetAen(64, buffer, 16, &count)) << "never opened";
    EXPECT_EQ(0u, area->registrations[1]);
    // A closed handle's record still names its driver, but requests fail.
    const uint32_t closed = Open(0);
    Close(closed);
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXEnableAen(closed));
    EXPECT_EQ(HXMGT_DEVICE_BUSY, HXGetAen(closed, buffer, 16, &count));
    EXPECT_EQ(0u, area->registrations[0]);
    // Without an enable a fetch works, and keeps nothing.
    driver.Raise(0x8011, 1, 3);
    EXPECT_EQ("2:1 2:2", Get(2));
    EXPECT_EQ("2:3", Get(2));
}

TEST_F(EventsTest, PortOpenedWithoutCounting) {
    EventDriver later;  // adapter 1
    system.AttachScsiPort(5, &later.port);
    ScriptedPort& last = AddPort(9);
    uint32_t uncounted = 0;
    ASSERT_EQ(0u, HXOpenScsiPort(5, &uncounted));
    driver.port.Forget();
    later.port.Forget();

    // Before events are enabled there is nothing to fetch or to switch off.
    EXPECT_EQ(HXMGT_INVALID_REQUEST, Fetch(uncounted, 4).status);
    EXPECT_EQ(0u, HXDisableAen(uncounted));
    EXPECT_TRUE(later.port.Requests().empty());
    EXPECT_TRUE(driver.port.Requests().empty());

    // An enable that finds the port no longer in the family changes nothing.
    later.port.Next({.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXEnableAen(uncounted));
    EXPECT_EQ(HX_ADAPTER_NOT_COUNTED, Record(uncounted).dwAdapterIndex);
    EXPECT_EQ(0u, OwnSlot().capacity[uncounted]);

    EXPECT_EQ(0u, HXEnableAen(uncounted));
    EXPECT_EQ(1u, Record(uncounted).dwAdapterIndex);
    EXPECT_EQ(1u, driver.port.Requests(command::DriverProperties).size());
    EXPECT_EQ(1u, driver.port.Requests().size()) << "asked who it is, nothing more";
    EXPECT_TRUE(last.Requests().empty()) << "a port behind it";
    EXPECT_EQ(1u, area->registrations[1]);
    EXPECT_EQ(0u, area->registrations[0]);

    // It shares adapter 1 with a handle that was opened by that index, and the mutex with all.
    const uint32_t counted = Open(1);
    HXEnableAen(counted);
    EXPECT_EQ((Masks{0, 0xFFFFFFFF}), later.TakeMasks()) << "switched on once";
    later.Raise(0x8011, 1, 3);
    EXPECT_EQ("2:1", Fetch(uncounted, 1).Text());
    EXPECT_EQ("2:2 2:3", Fetch(counted, 4).Text());
    const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, "HXMGT_GetAENMutex1");
    EXPECT_NE(nullptr, mutex);
    CloseHandle(mutex);
    // A second enable does not count again.
    driver.port.Forget();
    EXPECT_EQ(0u, HXEnableAen(uncounted));
    EXPECT_TRUE(driver.port.Requests().empty());
    for (const uint32_t opened : {uncounted, counted, uncounted}) {
        EXPECT_EQ(0u, HXDisableAen(opened));
    }
    EXPECT_EQ(Masks{0}, later.TakeMasks());

    // The record's next holder starts without index and mutex.
    Close(uncounted);
    uint32_t next = 0;
    ASSERT_EQ(0u, HXOpenScsiPort(3, &next));
    ASSERT_EQ(uncounted, next);
    EXPECT_EQ(HXMGT_INVALID_REQUEST, Fetch(next, 4).status);
    Close(next);
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXEnableAen(next));
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXDisableAen(next));
}

TEST_F(EventsTest, ForcedEvent) {
    driver.port.On(command::ForceEvent, Reply{.data = {1}});
    EXPECT_EQ(0u, HXForceZetaAEN(static_cast<int32_t>(handle)));
    EXPECT_EQ(117u, driver.port.Last().inputSize);
    EXPECT_EQ(117u, driver.port.Last().outputSize);
    driver.port.On(command::ForceEvent, Reply{.status = 12});
    EXPECT_EQ(HXMGT_INVALID_SUBCODE, HXForceZetaAEN(static_cast<int32_t>(handle)));
}

DWORD waitedFor = 0;
DWORD waitResult = WAIT_TIMEOUT;
DWORD WINAPI RefusedWait(HANDLE, DWORD milliseconds) {
    waitedFor = milliseconds;
    return waitResult;
}

TEST_F(EventsTest, MutexThatIsNotFree) {
    HXEnableAen(handle);
    driver.port.Forget();
    const auto wait = RedirectLibrary("WaitForSingleObject", &RefusedWait);
    for (const DWORD result : {DWORD{WAIT_TIMEOUT}, DWORD{WAIT_FAILED}}) {
        waitResult = result;
        EXPECT_EQ(HXMGT_DEVICE_BUSY, Fetch(handle, 4).status);
        EXPECT_EQ(30000u, waitedFor);
    }
    EXPECT_TRUE(driver.port.Requests().empty());
}

TEST_F(EventsTest, MutexWhoseHolderDied) {
    HXEnableAen(handle);
    HANDLE mutex = nullptr;
    std::thread([&] {
        mutex = CreateMutexA(nullptr, FALSE, "HXMGT_GetAENMutex0");
        WaitForSingleObject(mutex, INFINITE);
    }).join();
    driver.Raise(0x8011, 1);
    EXPECT_EQ("2:1", Get(4));
    CloseHandle(mutex);
}

TEST_F(EventsTest, ThreadsFetchEachEventOnce) {
    const uint32_t second = Open(0);
    HXEnableAen(handle);
    HXEnableAen(second);
    constexpr uint32_t kEvents = 3000;
    std::atomic<bool> raised = false;
    std::vector<uint32_t> seen[2];
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&, i] {
            for (bool last = false; !last;) {
                last = raised;
                for (Fetched fetched = Fetch(i == 0 ? handle : second, 32); !fetched.events.empty();
                     fetched = Fetch(i == 0 ? handle : second, 32)) {
                    for (const HX_EVENT& event : fetched.events) {
                        seen[i].push_back(event.data[0]);
                    }
                }
            }
        });
    }
    for (uint32_t number = 0; number < kEvents; number += 10) {
        driver.Raise(0x8011, number, 10);
    }
    raised = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    // Each thread saw its events in order, and together they saw every event once.
    std::set<uint32_t> all;
    for (const std::vector<uint32_t>& numbers : seen) {
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
        all.insert(numbers.begin(), numbers.end());
    }
    EXPECT_EQ(kEvents, all.size());
    EXPECT_EQ(kEvents, seen[0].size() + seen[1].size());
    HXDisableAen(second);
}

}  // namespace
