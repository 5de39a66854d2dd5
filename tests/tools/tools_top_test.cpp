// The live screen of the ports: what counters make over time, keys, and every line of the screen.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/has.h"
#include "tools/records/unicode.h"
#include "tools/vxmgr/views/top_screen.h"

namespace {

using namespace vxmgr;
using std::chrono::milliseconds;

PortCounters Counted(uint64_t frames, uint64_t words, uint64_t errors, uint64_t seconds = 100) {
    PortCounters counters;
    counters.link.emplace();
    counters.link->secondsSinceReset = seconds;
    counters.link->txFrames = counters.link->rxFrames = frames;
    counters.link->txWords = words;
    counters.link->rxWords = 2 * words;
    counters.link->invalidCrcs = errors;
    counters.link->linkFailures = errors;
    return counters;
}

// Two readings, half a second and 250 words a frame apart.
PortTrend Busy(uint64_t frames, uint64_t errors = 0) {
    PortTrend trend;
    trend.Take(Counted(0, 0, 0), milliseconds(0));
    trend.Take(Counted(frames, 250 * frames, errors), milliseconds(500));
    return trend;
}

TEST(ToolsTop, CountersBecomeRates) {
    PortTrend trend;
    trend.Take(Counted(0xFFFFFFF0, 0xFFFFFFFF, 7), milliseconds(1000));
    EXPECT_FALSE(trend.Rates().txFrames) << "one reading tells nothing of the time between two";
    EXPECT_TRUE(trend.ErrorsBefore().empty());

    // Counters of 32 bits turn over.
    trend.Take(Counted(0x10, 999, 8), milliseconds(3000));
    EXPECT_EQ(trend.Rates().txFrames, 16u);
    EXPECT_EQ(trend.Rates().txBytes, 2000u);
    EXPECT_EQ(trend.NewErrors(), 2u);
    EXPECT_EQ(trend.Errors(), 2u) << "those from before the start do not count";

    // Somebody sets them to zero: what has come since counts.
    trend.Take(Counted(4, 8, 1, 1), milliseconds(5000));
    EXPECT_EQ(trend.Rates().txFrames, 2u);
    EXPECT_EQ(trend.Errors(), 4u);

    // Larger counters are preferred, as far as the driver has them.
    PortCounters both = Counted(4, 8, 1, 3);
    both.traffic.emplace();
    both.traffic->port = *both.link;
    both.traffic->port.txWords = HX_NOT_COUNTED;
    both.traffic->port.txFrames = uint64_t{1} << 40;
    trend.Take(both, milliseconds(6000));
    both.link->txWords += 500;
    both.traffic->port.txFrames += uint64_t{1} << 33;
    trend.Take(both, milliseconds(7000));
    EXPECT_EQ(trend.Rates().txFrames, uint64_t{1} << 33);
    EXPECT_EQ(trend.Rates().txBytes, 2000u);

    // Behind a gap there is no rate; what went wrong before is not forgotten.
    trend.Break();
    EXPECT_FALSE(trend.Rates().txBytes);
    trend.Take(Counted(1000000, 1000000, 500, 900), milliseconds(90000));
    EXPECT_FALSE(trend.Rates().txBytes);
    EXPECT_EQ(trend.Errors(), 4u);
    for (int i = 0; i < 100; ++i) {
        trend.Take(Counted(1, 1, 500, 900), milliseconds(90000 + i));
    }
    EXPECT_EQ(trend.BytesBefore().size(), PortTrend::kHistory);

    // A driver that counts nothing has no errors.
    PortTrend silent;
    silent.Take({}, milliseconds(0));
    silent.Take({}, milliseconds(1000));
    EXPECT_EQ(0u, silent.NewErrors());
    EXPECT_FALSE(silent.Rates().txFrames);
}

TEST(ToolsTop, SparklinesShowWhatIsNotZero) {
    EXPECT_EQ(Sparkline({0, 1, 500, 1000}, 4, true), "▁▂▅█");
    EXPECT_EQ(Sparkline({0, 1, 500, 1000}, 6, false), "  _.=#");
    EXPECT_EQ(Sparkline({9, 0, 0}, 2, false), "__") << "the scale is that of what is shown";
    EXPECT_EQ(Sparkline({}, 3, true), "   ");
    EXPECT_EQ(Sparkline({UINT64_MAX, UINT64_MAX}, 2, false), "##");
}

class ToolsTopScreen : public testing::Test {
  protected:
    ToolsTopScreen() {
        picture_.clock = "12:34:56 UTC";
        picture_.ports = {
            {.index = 0,
             .scsiPort = 3,
             .name = "21:00:02:45:4d:00:01:00",
             .adapter = "SERIAL-B",
             .state = "online",
             .speed = "32G",
             .temperature = 41.53,
             .trend = Busy(5000)},
            {.index = 1,
             .scsiPort = 4,
             .name = "21:01:02:45:4d:00:01:00",
             .adapter = "SERIAL-B",
             .state = "link down",
             .stateTone = Tone::Bad,
             .trend = Busy(100000, 3)},
            {.index = 2,
             .scsiPort = 6,
             .name = "",
             .adapter = "\u0416\u0443\u043a \u65e5\u672c",
             .state = "gone",
             .stateTone = Tone::Bad},
        };
        picture_.events = {{"12:34:50", "port 1: link-down, the link went down", Tone::Bad}};
    }

    std::vector<std::string> Lines(size_t columns, size_t rows, bool blocks = true) {
        std::vector<std::string> lines;
        for (const ScreenLine& line : DrawTop(picture_, view_, {{columns, rows}, blocks})) {
            std::string& text = lines.emplace_back();
            for (const ScreenSpan& span : line) {
                text += span.text;
            }
        }
        return lines;
    }
    // The first cell of each port's line: PORT.
    std::string Order() {
        std::string order;
        for (const TopPort* port : view_.Select(picture_)) {
            order += std::to_string(port->index);
        }
        return order;
    }
    bool Type(std::string_view text) {
        bool stays = true;
        while (!text.empty()) {
            stays = Press(ScreenKey::Kind::Character, TakeCharacter(text));
        }
        return stays;
    }
    bool Press(ScreenKey::Kind kind, char32_t character = 0) {
        return view_.Press({kind, character});
    }

    TopPicture picture_;
    TopView view_;
};

TEST_F(ToolsTopScreen, HasALineForEachPort) {
    const auto lines = Lines(160, 20);
    ASSERT_EQ(lines.size(), 20u);
    EXPECT_EQ(lines[0], "vxmgr top  12:34:56 UTC  3 ports");
    EXPECT_TRUE(support::Has(lines[1], "PORT")) << lines[1];
    for (const char* part : {"0    3 SERIAL-B", "21:00:02:45:4d:00:01:00 online", "32G", "10.00",
                             "20.00", "10000", "41.5"}) {
        EXPECT_TRUE(support::Has(lines[2], part)) << lines[2];
    }
    EXPECT_TRUE(support::Has(lines[3], "link down")) << lines[3];
    EXPECT_TRUE(support::Has(lines[4], "gone")) << lines[4];
    EXPECT_TRUE(support::Has(lines[4], " - ")) << lines[4];
    EXPECT_TRUE(support::Has(lines[14], "12:34:50  port 1: link-down")) << lines[14];
    EXPECT_TRUE(support::Has(lines[19], "q quit")) << lines[19];
}

// Whatever the size, no line is wider and no screen higher; the columns that matter stay.
TEST_F(ToolsTopScreen, FitsEverySize) {
    for (const bool blocks : {true, false}) {
        for (size_t columns = 1; columns < 170; columns += 3) {
            for (const size_t rows : {1, 2, 3, 5, 12, 25}) {
                const auto lines = Lines(columns, rows, blocks);
                EXPECT_LE(lines.size(), rows);
                for (const std::string& line : lines) {
                    EXPECT_LE(DisplayWidth(line), columns) << line;
                }
            }
        }
    }
    for (const bool colors : {true, false}) {
        bool any = false;
        for (const ScreenLine& line : DrawTop(picture_, view_, {{80, 25}, true, colors})) {
            any = any || std::ranges::any_of(
                             line, [](const ScreenSpan& span) { return span.tone != Tone::Plain; });
        }
        EXPECT_EQ(any, colors);
    }
    EXPECT_TRUE(support::Has(Lines(80, 12)[8], "12:34:50"));
    EXPECT_FALSE(support::Has(Lines(80, 11)[10], "EVENTS"));
    EXPECT_EQ("vxmgr top  12:34:56 UTC  3 ports", Lines(80, 6)[0]) << "all of them fit";
    EXPECT_EQ("vxmgr top  12:34:56 UTC  3 ports, 1 to 2", Lines(80, 5)[0]);
    const auto narrow = Lines(40, 12);
    EXPECT_EQ(narrow[1], "PORT STATE      TX MB/S  RX MB/S  ERRORS");
    EXPECT_TRUE(support::Has(narrow[3], "   1 link down      200      400       6")) << narrow[3];
    for (const std::string& line : Lines(170, 25, false)) {
        EXPECT_EQ(line.find("\u2581"), std::string::npos) << line;
    }
}

TEST_F(ToolsTopScreen, KeysSortFilterPauseAndLeave) {
    using enum ScreenKey::Kind;
    EXPECT_EQ(Order(), "012");
    Type("t");
    EXPECT_EQ(Order(), "102") << "the busiest first, the unknown last";
    EXPECT_TRUE(support::Has(Lines(160, 20)[1], "TX MB/Sv"));
    Type("o");
    EXPECT_EQ(Order(), "201");
    Type("e");
    EXPECT_EQ(Order(), "102");
    Type("c");
    EXPECT_EQ(Order().front(), '0');
    Type("n");
    Press(Left);
    EXPECT_EQ(view_.SortedBy(), TopColumn::Temperature) << "around the edge";
    Press(Right);
    Press(Right);
    EXPECT_EQ(view_.SortedBy(), TopColumn::ScsiPort);
    Type("s");
    EXPECT_EQ(Order(), "210");

    Type("n/");
    EXPECT_TRUE(view_.Typing());
    EXPECT_TRUE(Type("serial-bq")) << "no command while a text is typed";
    EXPECT_EQ(Order(), "");
    Press(Backspace);
    EXPECT_EQ(Order(), "01") << "letter case does not matter";
    Press(Enter);
    EXPECT_EQ(Order(), "01");
    EXPECT_TRUE(support::Has(Lines(160, 20)[0], "2 of 3 ports  with \"serial-b\""));
    Type("/");
    Press(Backspace);
    Press(Escape);
    EXPECT_EQ(view_.Filter(), "serial-b") << "as it was";
    Type("/");
    for (int i = 0; i < 20; ++i) {
        Press(Backspace);
    }
    Type("\u0416\u0443\u043a");
    EXPECT_EQ(Order(), "2");
    Press(Backspace);
    EXPECT_EQ(view_.Filter(), "\u0416\u0443") << "a letter, not a byte";
    Press(Enter);

    Type("p");
    EXPECT_TRUE(view_.Paused());
    EXPECT_TRUE(support::Has(Lines(160, 20)[0], "paused"));
    Type(" ?");
    EXPECT_FALSE(view_.Paused());
    EXPECT_TRUE(support::Has(Lines(160, 20).back(), "sort:"));
    EXPECT_FALSE(Type("q"));
    EXPECT_FALSE(Press(Escape));
}

TEST_F(ToolsTopScreen, LongListsScroll) {
    using enum ScreenKey::Kind;
    picture_.ports.resize(63);
    for (uint32_t i = 0; i < 63; ++i) {
        picture_.ports[i].index = i;
    }
    const auto first = [&] { return Lines(80, 13)[2].substr(0, 4); };
    EXPECT_EQ(first(), "   0");
    Press(Down);
    Press(PageDown);
    EXPECT_EQ(first(), "   7");
    EXPECT_TRUE(support::Has(Lines(80, 13)[0], "63 ports, 8 to 13"));
    Press(End);
    EXPECT_EQ(first(), "  57");
    Press(Down);
    EXPECT_EQ(first(), "  57") << "no further than the last";
    Press(PageUp);
    EXPECT_EQ(first(), "  51");
    picture_.ports.resize(3);
    EXPECT_EQ(first(), "   0") << "ports went away";
    Press(Home);
    Press(Up);
    EXPECT_EQ(first(), "   0");
    picture_.ports.resize(63);
    Press(End);
    Lines(80, 13);
    Press(Home);
    EXPECT_TRUE(support::Has(Lines(80, 13)[0], "63 ports, 1 to 6"));
    for (const char* anew : {"c", "/"}) {
        Press(End);
        Lines(80, 13);
        Type(anew);
        Press(Enter);
        EXPECT_TRUE(support::Has(Lines(80, 13)[0], "63 ports, 1 to 6")) << anew;
    }
}

}  // namespace
