// Reads the text of a dump record back, with a list of sections and line forms of its own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace support {

// Words with leading zeros and words that use all digits.
inline uint32_t DumpWord(size_t index) {
    const auto i = static_cast<uint32_t>(index);
    return i % 3 == 0 ? i : i * 2654435761u;
}

inline constexpr size_t kDumpHeaderWords = 24;

inline std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find('\n', at);
        lines.push_back(text.substr(at, end - at));
        at = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

template <typename... Values>
std::string Format(const char* format, Values... values) {
    char text[64];
    snprintf(text, sizeof text, format, values...);
    return text;
}

// What the sections are called, in their order, and how their lines look.
enum class DumpShape { One, Four, SevenOrEight, Eight, Halves, Addressed, Trace, Fce, Queues };
struct DumpSection {
    std::string_view title;
    DumpShape shape;
    uint32_t address = 0;
};
// The titles in their order; lines of eight words but where the shape says otherwise.
inline constexpr std::string_view kDumpTitles =
    "HCCR Register|R2H Status Register|HostRisc registers|PCIe registers|Queue #0 Pointers|"
    "Queue #1 Pointers|Queue #2 Pointers|Queue #3 Pointers|Host Interface Registers|"
    "Shadow registers|RISC IO Register|Mailbox Registers|XSEQ GP Registers|XSEQ-0 Registers|"
    "XSEQ-1 Registers|XSEQ-2 Registers|RSEQ GP Registers|RSEQ-0 registers|RSEQ-1 registers|"
    "RSEQ-2 registers|RSEQ-3 registers|ASEQ GP Registers|ASEQ-0 Registers|ASEQ-1 Registers|"
    "ASEQ-2 Registers|ASEQ-3 Registers|Command DMA registers|"
    "Request0 Queue DMA Channel registers|Response0 Queue DMA Channel registers|"
    "Request1 Queue DMA Channel registers|XMT0 Data DMA registers|XMT1 Data DMA registers|"
    "XMT2 Data DMA registers|XMT3 Data DMA registers|XMT4 Data DMA registers|"
    "XMT Data DMA Common registers|RCV Thread 0 Data DMA registers|"
    "RCV Thread 1 Data DMA registers|RISC GP registers|LMC registers|FPM Hardware registers|"
    "RQ0 Array registers|RQ1 Array registers|RP0 Array registers|RP1 Array registers|"
    "AT0 Array registers|Queue Control registers|FB Hardware registers|Code RAM|"
    "External Memory|Extended Trace Buffer|FCE Trace Buffer|Request Queue|Priority Queue|"
    "Response Queue";
inline const std::vector<DumpSection> kDumpSections = [] {
    const std::map<std::string_view, std::pair<DumpShape, uint32_t>> shapes = {
        {"HCCR Register", {DumpShape::One, 0}},
        {"R2H Status Register", {DumpShape::One, 0}},
        {"PCIe registers", {DumpShape::Four, 0}},
        {"Shadow registers", {DumpShape::SevenOrEight, 0}},
        {"Mailbox Registers", {DumpShape::Halves, 0}},
        {"Code RAM", {DumpShape::Addressed, 0x20000}},
        {"External Memory", {DumpShape::Addressed, 0x100000}},
        {"Extended Trace Buffer", {DumpShape::Trace, 0}},
        {"FCE Trace Buffer", {DumpShape::Fce, 0}},
        {"Request Queue", {DumpShape::Queues, 0}},
        {"Priority Queue", {DumpShape::Queues, 0}},
        {"Response Queue", {DumpShape::Queues, 0}}};
    std::vector<DumpSection> sections;
    for (std::string_view rest = kDumpTitles; !rest.empty();) {
        const std::string_view title = rest.substr(0, rest.find('|'));
        const auto shape = shapes.find(title);
        sections.push_back({title, DumpShape::Eight, 0});
        if (shape != shapes.end()) {
            std::tie(sections.back().shape, sections.back().address) = shape->second;
        }
        rest.remove_prefix(std::min(rest.size(), title.size() + 1));
    }
    return sections;
}();

// Reads a text of one record with the words of DumpWord() back and reports every line that is not
// the one expected.
class DumpTextReader {
  public:
    DumpTextReader(const std::string& text, uint8_t layout)
        : lines_(LinesOf(text)), layout_(layout) {}

    // Returns the titles met.
    std::set<std::string> ReadSections(size_t firstLine, size_t lastLine) {
        std::set<std::string> titles;
        size_t next = 0;
        line_ = firstLine;
        while (line_ < lastLine) {
            while (next < std::size(kDumpSections) && kDumpSections[next].title != lines_[line_]) {
                ++next;
            }
            if (next == std::size(kDumpSections)) {
                ADD_FAILURE() << "line " << line_ << ": " << lines_[line_] << " is no next title";
                return titles;
            }
            titles.insert(lines_[line_++]);
            ReadSection(kDumpSections[next++]);
        }
        return titles;
    }
    size_t WordsRead() const { return word_; }
    const std::vector<std::string>& Lines() const { return lines_; }

  private:
    void Expect(const std::string& expected) {
        EXPECT_EQ(expected, line_ < lines_.size() ? lines_[line_] : "(end)") << "line " << line_;
        ++line_;
    }
    uint32_t Take() { return DumpWord(word_++); }
    std::string Wide(uint64_t value) {
        return Format("%08x%08x", static_cast<uint32_t>(value >> 32), static_cast<uint32_t>(value));
    }
    uint64_t TakeWide() {
        const uint64_t low = Take();
        return low | uint64_t{Take()} << 32;
    }
    // A line of the next words begins with this and a word.
    bool LineGoesOn(const std::string& prefix) {
        return line_ < lines_.size() &&
               lines_[line_].starts_with(prefix + Format("%08x", DumpWord(word_)));
    }
    // Lines of words up to the section's end; only the last may be shorter.
    void ReadWords(size_t perLine) {
        for (bool whole = true; LineGoesOn(""); ++sectionLines_) {
            EXPECT_TRUE(whole) << "a short line before line " << line_;
            whole = ReadLine("", perLine);
        }
        EXPECT_GT(sectionLines_, 0) << "no words before line " << line_;
    }
    void ReadAddressed(uint64_t address, bool wide, const char* separator) {
        const auto prefix = [&] {
            return (wide ? Wide(address) : Format("%08x", static_cast<uint32_t>(address))) +
                   separator;
        };
        for (bool whole = true; LineGoesOn(prefix()); address += 32) {
            EXPECT_TRUE(whole);
            whole = ReadLine(prefix(), 8);
            ++sectionLines_;
        }
        EXPECT_GT(sectionLines_, 0);
    }
    bool ReadLine(const std::string& prefix, size_t perLine) {
        const size_t present = (lines_[line_].size() - prefix.size() + 1) / 9;
        std::string expected = prefix;
        for (size_t i = 0; i < std::min(present, perLine); ++i) {
            expected += Format(i == 0 ? "%08x" : " %08x", Take());
        }
        Expect(expected);
        return present == perLine;
    }
    void ReadSection(const DumpSection& section) {
        SCOPED_TRACE(section.title);
        sectionLines_ = 0;
        switch (section.shape) {
            case DumpShape::One:
                return ReadWords(1);
            case DumpShape::Four:
                return ReadWords(4);
            case DumpShape::SevenOrEight:
                return ReadWords(layout_ == 36 ? 7 : 8);
            case DumpShape::Eight:
                return ReadWords(8);
            case DumpShape::Halves: {
                std::string expected;
                for (int i = 0; i < 8; ++i) {
                    const uint32_t word = Take();
                    expected +=
                        Format(i == 0 ? "%04x %04x" : " %04x %04x", word & 0xFFFF, word >> 16);
                }
                return Expect(expected);
            }
            case DumpShape::Addressed:
                return ReadAddressed(section.address, false, ": ");
            case DumpShape::Trace:
                return ReadAddressed(TakeWide(), true, ":  ");
            case DumpShape::Fce: {
                Expect("In Pointer = " + Wide(TakeWide()));
                Expect("");
                const uint64_t base = TakeWide();
                Expect("Base = " + Wide(base));
                Expect("");
                Expect("FCE Enable Registers");
                std::string enables = Format("%08x", Take());
                for (int i = 1; i < 6; ++i) {
                    enables += Format(" %08x", Take());
                }
                Expect(enables);
                Expect("");
                ReadAddressed(base, true, ": ");
                return Expect("End");
            }
            case DumpShape::Queues:
                for (int queue = 0; lines_[line_] == Format("Queue %d:", queue); ++queue) {
                    ++line_;
                    const size_t before = word_;
                    ReadAddressed(0, false, ": ");
                    EXPECT_EQ(64u, word_ - before);
                }
                return;
        }
    }

    const std::vector<std::string> lines_;
    const uint8_t layout_;
    size_t line_ = 0;
    size_t word_ = kDumpHeaderWords;
    int sectionLines_ = 0;
};

}  // namespace support
