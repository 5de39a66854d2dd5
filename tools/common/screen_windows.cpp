// clang-format off
#include <windows.h>
#include <io.h>
// clang-format on

#include <algorithm>
#include <cstdio>
#include <mutex>

#include "console.h"
#include "frame/owned.h"
#include "records/text.h"
#include "records/unicode.h"
#include "screen.h"

namespace tools {
namespace {

using std::chrono::milliseconds;

constexpr DWORD kVirtualTerminalOutput = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING

HANDLE ConsoleOf(std::FILE* stream) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

WORD AttributeOf(const ScreenSpan& span) {
    constexpr WORD kTones[] = {FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_BLUE,
                               FOREGROUND_GREEN, FOREGROUND_RED | FOREGROUND_GREEN,
                               FOREGROUND_RED | FOREGROUND_INTENSITY};
    WORD attribute = kTones[static_cast<size_t>(span.tone)];
    attribute |= span.strong ? FOREGROUND_INTENSITY : 0;
    // Not every console knows of text that is exchanged with its background.
    return span.inverse ? static_cast<WORD>((attribute & 0x0F) << 4) : attribute;
}

// Nothing in the text moves the cursor, whoever wrote it.
std::string Harmless(std::string_view text) {
    std::string harmless;
    while (!text.empty()) {
        const std::string_view before = text;
        const bool printable = IsPrintable(TakeCharacter(text));
        harmless += printable ? before.substr(0, before.size() - text.size()) : "?";
    }
    return harmless;
}

std::optional<ScreenKey::Kind> KindOf(WORD key) {
    using enum ScreenKey::Kind;
    constexpr struct {
        WORD key;
        ScreenKey::Kind kind;
    } kKeys[] = {{VK_RETURN, Enter},  {VK_ESCAPE, Escape}, {VK_BACK, Backspace}, {VK_UP, Up},
                 {VK_DOWN, Down},     {VK_LEFT, Left},     {VK_RIGHT, Right},    {VK_PRIOR, PageUp},
                 {VK_NEXT, PageDown}, {VK_HOME, Home},     {VK_END, End}};
    for (const auto& row : kKeys) {
        if (row.key == key) {
            return row.kind;
        }
    }
    return std::nullopt;
}

}  // namespace

struct Screen::Console {
    // What the window of a buffer shows.
    struct WindowCells {
        SMALL_RECT window{};
        std::vector<CHAR_INFO> cells{};
        COORD cursor{};
        CONSOLE_CURSOR_INFO look{25, TRUE};  // of the cursor
        DWORD mode = 0;

        explicit WindowCells(HANDLE buffer) {
            CONSOLE_SCREEN_BUFFER_INFO info;
            if (!GetConsoleScreenBufferInfo(buffer, &info)) {
                return;
            }
            window = info.srWindow;
            cursor = info.dwCursorPosition;
            GetConsoleCursorInfo(buffer, &look);
            GetConsoleMode(buffer, &mode);
            cells.resize(static_cast<size_t>(Extent().X) * static_cast<size_t>(Extent().Y));
            SMALL_RECT read = window;
            if (!ReadConsoleOutputW(buffer, cells.data(), Extent(), {0, 0}, &read)) {
                cells.clear();
            }
        }

        COORD Extent() const {
            return {static_cast<SHORT>(window.Right - window.Left + 1),
                    static_cast<SHORT>(window.Bottom - window.Top + 1)};
        }

        void PutBack(HANDLE buffer) const {
            SMALL_RECT written = window;
            if (!cells.empty()) {
                SetConsoleMode(buffer, mode);
                SetConsoleCursorInfo(buffer, &look);
                WriteConsoleOutputW(buffer, cells.data(), Extent(), {0, 0}, &written);
                SetConsoleCursorPosition(buffer, cursor);
            }
        }
    };

    HANDLE in = ConsoleOf(stdin);
    HANDLE out = ConsoleOf(stdout);
    frame::OwnedFile own;  // the buffer that the screen is drawn in
    WindowCells before{out};
    bool isAlias = false;  // the handle of the output is that of whatever buffer is shown
    DWORD inMode = 0;
    bool blocks = false;
    std::mutex lock;                  // guards the drawing against the end
    std::vector<std::wstring> drawn;  // the lines as they stand there, with their attributes
    ScreenSize drawnSize{0, 0};
    ScreenSize seen{0, 0};  // by whoever waits for keys
    wchar_t firstHalf = 0;  // of a character that comes as two

    // Of the window: the buffer of an older console is as large as its history.
    ScreenSize Size() const {
        CONSOLE_SCREEN_BUFFER_INFO info;
        if (!GetConsoleScreenBufferInfo(own.Get(), &info) ||
            info.srWindow.Right < info.srWindow.Left || info.srWindow.Bottom < info.srWindow.Top) {
            return {};
        }
        return {static_cast<size_t>(info.srWindow.Right - info.srWindow.Left) + 1,
                static_cast<size_t>(info.srWindow.Bottom - info.srWindow.Top) + 1};
    }

    void DrawLine(size_t row, const ScreenLine& line, size_t columns) {
        SetConsoleCursorPosition(own.Get(), {0, static_cast<SHORT>(row)});
        size_t used = 0;
        const auto write = [&](const std::string& text, WORD attribute) {
            const std::wstring wide = console::ToWide(text);
            DWORD written = 0;
            SetConsoleTextAttribute(own.Get(), attribute);
            WriteConsoleW(own.Get(), wide.data(), static_cast<DWORD>(wide.size()), &written,
                          nullptr);
        };
        for (const ScreenSpan& span : line) {
            const std::string text = Harmless(span.text);
            used += DisplayWidth(text);
            write(text, AttributeOf(span));
        }
        write(std::string(columns - std::min(columns, used), ' '), AttributeOf({}));
    }
};

Screen::Screen() : console_(std::make_unique<Console>()) {}

std::unique_ptr<Screen> Screen::Open() {
    std::unique_ptr<Screen> screen(new Screen);
    Console& console = *screen->console_;
    DWORD outMode = 0;
    if (!GetConsoleMode(console.in, &console.inMode) || !GetConsoleMode(console.out, &outMode)) {
        screen->open_ = false;
        return nullptr;
    }
    console.own = frame::OwnedFile(
        CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr));
    if (!console.own.Valid() || !SetConsoleActiveScreenBuffer(console.own.Get())) {
        screen->open_ = false;
        return nullptr;
    }
    // A console that knows no handle of the buffer that was there gets its cells back.
    const COORD probe{static_cast<SHORT>(console.before.cursor.X == 1 ? 2 : 1), 0};
    CONSOLE_SCREEN_BUFFER_INFO info;
    SetConsoleCursorPosition(console.own.Get(), probe);
    console.isAlias = GetConsoleScreenBufferInfo(console.out, &info) &&
                      info.dwCursorPosition.X == probe.X && info.dwCursorPosition.Y == probe.Y;
    // A line's last cell must not begin the next line. Only a console that knows sequences has
    // fonts with blocks; none are written.
    console.blocks = SetConsoleMode(console.own.Get(),
                                    ENABLE_PROCESSED_OUTPUT | kVirtualTerminalOutput) != FALSE;
    SetConsoleMode(console.own.Get(), ENABLE_PROCESSED_OUTPUT);
    const CONSOLE_CURSOR_INFO hidden{100, FALSE};
    SetConsoleCursorInfo(console.own.Get(), &hidden);
    // Keys as they are pressed, unseen, and changes of the size; Ctrl-C stays what it is.
    constexpr DWORD kWhole = ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT | ENABLE_MOUSE_INPUT;
    SetConsoleMode(console.in,
                   (console.inMode & ~kWhole) | ENABLE_WINDOW_INPUT | ENABLE_PROCESSED_INPUT);
    return screen;
}

Screen::~Screen() {
    Restore();
}

ScreenSize Screen::Size() const {
    return console_->Size();
}

bool Screen::DrawsBlocks() const {
    return console_->blocks;
}

void Screen::Show(const std::vector<ScreenLine>& lines) {
    Console& console = *console_;
    const std::lock_guard guard(console.lock);
    if (!open_) {
        return;
    }
    const ScreenSize size = console.Size();
    if (size != console.drawnSize) {
        // A buffer of another size than its window would be scrolled.
        SetConsoleScreenBufferSize(
            console.own.Get(), {static_cast<SHORT>(size.columns), static_cast<SHORT>(size.rows)});
        console.drawn.clear();
        console.drawnSize = size;
    }
    console.drawn.resize(size.rows);
    for (size_t row = 0; row < size.rows; ++row) {
        const ScreenLine line = row < lines.size() ? lines[row] : ScreenLine();
        std::wstring look = L"\n";  // nothing that was drawn
        for (const ScreenSpan& span : line) {
            look += static_cast<wchar_t>(AttributeOf(span)) + console::ToWide(span.text);
        }
        if (look != console.drawn[row]) {
            console.DrawLine(row, line, size.columns);
            console.drawn[row] = std::move(look);
        }
    }
}

std::optional<ScreenKey> Screen::Wait(milliseconds time) {
    Console& console = *console_;
    const auto until = std::chrono::steady_clock::now() + time;
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0 ||
            WaitForSingleObject(console.in, static_cast<DWORD>(left.count())) != WAIT_OBJECT_0) {
            return std::nullopt;
        }
        INPUT_RECORD record;
        DWORD count = 0;
        if (!ReadConsoleInputW(console.in, &record, 1, &count) || count == 0) {
            Sleep(50);  // the console has gone: nobody presses keys
            return std::nullopt;
        }
        if (record.EventType == WINDOW_BUFFER_SIZE_EVENT) {
            return std::nullopt;
        }
        const KEY_EVENT_RECORD& key = record.Event.KeyEvent;
        if (record.EventType != KEY_EVENT || !key.bKeyDown) {
            continue;
        }
        if (const auto kind = KindOf(key.wVirtualKeyCode)) {
            return ScreenKey{*kind};
        }
        const wchar_t unit = key.uChar.UnicodeChar;
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            console.firstHalf = unit;
            continue;
        }
        char32_t character = unit;
        if (unit >= 0xDC00 && unit <= 0xDFFF) {
            const uint32_t high = console.firstHalf & 0x3FF;
            character = 0x10000 + (high << 10) + (unit & 0x3FF);
        }
        if (IsPrintable(character)) {
            return ScreenKey{ScreenKey::Kind::Character, character};
        }
    }
}

void Screen::Restore() {
    Console& console = *console_;
    if (!open_.exchange(false)) {
        return;
    }
    const std::lock_guard guard(console.lock);
    SetConsoleMode(console.in, console.inMode);
    SetConsoleActiveScreenBuffer(console.out);
    console.own = frame::OwnedFile();
    if (console.isAlias) {
        console.before.PutBack(console.out);
    }
}

}  // namespace tools
