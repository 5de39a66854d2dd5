// The whole screen of a console, for programs that draw it anew again and again. The screen is a
// buffer of the console's own beside the one that was there: that one is back behind it, as it was,
// and even a program that is killed leaves nothing on it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/record.h"

namespace tools {

// A stretch of a line that looks the same.
struct ScreenSpan {
    std::string text;
    Tone tone = Tone::Plain;
    bool strong = false;   // brighter
    bool inverse = false;  // text and background exchanged
};
using ScreenLine = std::vector<ScreenSpan>;

struct ScreenSize {
    size_t columns = 80;
    size_t rows = 25;

    bool operator==(const ScreenSize&) const = default;
};

struct ScreenKey {
    enum class Kind : uint8_t {
        Character,
        Enter,
        Escape,
        Backspace,
        Up,
        Down,
        Left,
        Right,
        PageUp,
        PageDown,
        Home,
        End,
    };

    Kind kind = Kind::Character;
    char32_t character = 0;  // of a Character
};

class Screen {
  public:
    // Null where stdin or stdout is no console.
    static std::unique_ptr<Screen> Open();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    ScreenSize Size() const;
    // Whether it has more than ASCII characters to draw with.
    bool DrawsBlocks() const;

    // From the top; what has changed since the last time is written. Lines are as long as the
    // screen is wide at most, and there are no more than it has.
    void Show(const std::vector<ScreenLine>& lines);

    // The next key, or nothing when the time is over or the size has changed.
    std::optional<ScreenKey> Wait(std::chrono::milliseconds time);

    // Puts the console back, once: by the destructor, or before from any thread.
    void Restore();

  private:
    Screen();

    struct Console;
    const std::unique_ptr<Console> console_;
    std::atomic<bool> open_{true};
};

}  // namespace tools
