// What the live screen of the ports shows: the ports as they are now, and how somebody wants to see
// them. Free of platform headers.
#pragma once

#include <deque>

#include "common/screen.h"
#include "vxmgr/app/vocabulary.h"
#include "vxmgr/views/port_trend.h"

namespace vxmgr {

// A port as people read it: names are masked where they have to be.
struct TopPort {
    uint32_t index = 0;
    std::optional<uint32_t> scsiPort{};
    std::string name{};     // world wide port name
    std::string adapter{};  // serial number
    std::string state{};    // or why it does not answer
    Tone stateTone = Tone::Plain;
    std::string speed{};
    std::optional<double> temperature{};  // of the transceiver, in degrees Celsius
    Tone temperatureTone = Tone::Plain;
    PortTrend trend{};
};

struct TopEvent {
    std::string time{};
    std::string text{};
    Tone tone = Tone::Plain;
};

struct TopPicture {
    std::string clock{};
    std::vector<TopPort> ports{};
    std::deque<TopEvent> events{};  // the latest first
};

// What ports can be sorted by: the columns from the left.
enum class TopColumn : uint8_t {
    Port,
    ScsiPort,
    Adapter,
    Name,
    State,
    Speed,
    TxBytes,
    RxBytes,
    TxFrames,
    RxFrames,
    Traffic,
    Errors,
    NewErrors,
    Temperature,
};
inline constexpr size_t kTopColumns = 14;

class TopView {
  public:
    // False: the user wants to leave.
    bool Press(const ScreenKey& key);

    TopColumn SortedBy() const { return sortedBy_; }
    bool Reversed() const { return reversed_; }  // the largest first
    bool Paused() const { return paused_; }
    bool ShowsHelp() const { return showsHelp_; }
    bool Typing() const { return typing_; }
    const std::string& Filter() const { return typing_ ? typed_ : filter_; }

    // The ports to show, in their order.
    std::vector<const TopPort*> Select(const TopPicture& picture) const;
    // The first of `rows` lines that fit, of so many ports: moves back where there are fewer.
    size_t ScrollTo(size_t ports, size_t rows);

  private:
    void PressCommand(char32_t character);
    void PressWhileTyping(const ScreenKey& key);
    void SortBy(TopColumn column);

    TopColumn sortedBy_ = TopColumn::Port;
    bool reversed_ = false;
    bool paused_ = false;
    bool showsHelp_ = false;
    bool typing_ = false;
    std::string filter_;
    std::string typed_;
    size_t scroll_ = 0;
    size_t page_ = 1;
};

}  // namespace vxmgr
