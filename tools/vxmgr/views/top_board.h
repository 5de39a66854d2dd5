// What the threads of the ports find out, and the screen shows.
#pragma once

#include <mutex>

#include "vxmgr/views/top_session.h"
#include "vxmgr/views/top_view.h"

namespace vxmgr {

class TopBoard {
  public:
    // patience: how long a port may take for an answer.
    TopBoard(const std::vector<Port*>& ports, std::chrono::milliseconds patience);

    // The port owes an answer from now on.
    void Asks(size_t place);
    // device: the open port, null for none.
    void Put(size_t place, const TopReading& reading, const std::shared_ptr<Device>& device);
    std::shared_ptr<Device> DeviceAt(size_t place);
    // A line below the ports; tone: how bad it is.
    void Tell(const Port& port, const std::string& text, Tone tone);

    // Everything as it is now. With names as the redactor has them.
    TopPicture Picture(Redactor& names);

    // What stands in the way of the port, if anything.
    HX_STATUS Failure(size_t place, std::string* query);

  private:
    using Clock = std::chrono::steady_clock;

    struct Place {
        Port port;
        HX_STATUS status = HXMGT_SUCCESS;
        std::string query{};
        std::optional<SfpReading> temperature{};
        PortTrend trend{};
        std::shared_ptr<Device> device{};
        std::optional<Clock::time_point> asked{};
        bool silent = false;
    };

    void LookForSilence(Place& place);
    void TellLocked(const Port& port, const std::string& text, Tone tone);

    const std::chrono::milliseconds patience_;
    std::mutex lock_;  // guards what follows
    std::vector<Place> places_;
    std::deque<TopEvent> events_;
};

}  // namespace vxmgr
