// Prints the events of one adapter for a while: watch_events [adapter index] [seconds]
#include <hxmgtapi.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace {

// An open adapter whose events are collected; given back on every way out.
class WatchedAdapter {
  public:
    explicit WatchedAdapter(uint32_t index) {
        status_ = HXOpenDevice(index, &handle_);
        open_ = status_ == HXMGT_SUCCESS;
        if (open_) {
            status_ = HXEnableAen(handle_);
        }
    }
    ~WatchedAdapter() {
        if (Watching()) {
            HXDisableAen(handle_);
        }
        if (open_) {
            HXCloseDevice(static_cast<int32_t>(handle_));
        }
    }
    WatchedAdapter(const WatchedAdapter&) = delete;
    WatchedAdapter& operator=(const WatchedAdapter&) = delete;

    bool Watching() const { return open_ && status_ == HXMGT_SUCCESS; }
    HX_STATUS Status() const { return status_; }
    uint32_t Handle() const { return handle_; }

  private:
    uint32_t handle_ = 0;
    HX_STATUS status_ = HXMGT_SUCCESS;
    bool open_ = false;
};

const char* TextOf(uint32_t type) {
    switch (type) {
        case HX_EVENT_LIP:
            return "loop initialisation";
        case HX_EVENT_LINK_UP:
            return "link up";
        case HX_EVENT_LINK_DOWN:
            return "link down";
        case HX_EVENT_LIP_RESET:
            return "loop reset";
        case HX_EVENT_RSCN:
            return "fabric change";
        case HX_EVENT_PORT_UPDATE:
            return "discovered ports changed";
        case HX_EVENT_TEST:
            return "test";
        default:
            return "unknown";
    }
}

int Report(HX_STATUS status) {
    std::fprintf(stderr, "%s (0x%x)\n", HXGetErrorString(status), status);
    return 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    constexpr uint32_t kPauseMs = 250;
    const uint32_t index = argumentCount > 1 ? std::strtoul(arguments[1], nullptr, 10) : 0;
    const uint64_t seconds = argumentCount > 2 ? std::strtoul(arguments[2], nullptr, 10) : 30;

    const WatchedAdapter adapter(index);
    if (!adapter.Watching()) {
        return Report(adapter.Status());
    }
    const uint64_t end = GetTickCount64() + 1000 * seconds;
    while (GetTickCount64() < end) {
        HX_EVENT events[32];
        uint32_t count = 0;
        const HX_STATUS status =
            HXGetAen(adapter.Handle(), reinterpret_cast<uint8_t*>(events), sizeof events, &count);
        if (status != HXMGT_SUCCESS) {
            return Report(status);
        }
        for (uint32_t i = 0; i < count; ++i) {
            std::printf("%s (%08x %08x %08x)\n", TextOf(events[i].type), events[i].data[0],
                        events[i].data[1], events[i].data[2]);
        }
        std::fflush(stdout);
        if (count == 0) {
            Sleep(kPauseMs);
        }
    }
    return 0;
}
