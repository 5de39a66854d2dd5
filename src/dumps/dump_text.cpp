#include "dumps/dump_text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "compiler.h"

namespace dumps {
namespace {

// Takes words off the dump; a word that is not there ends the text.
class Words {
  public:
    explicit Words(std::span<const uint8_t> dump) : rest_(dump) {}

    size_t Left() const { return rest_.size() / sizeof(uint32_t); }

    template <class Record>
    bool Take(Record& record) {
        if (rest_.size() < sizeof record) {
            return false;
        }
        std::memcpy(&record, rest_.data(), sizeof record);
        rest_ = rest_.subspan(sizeof record);
        return true;
    }

    // The next word without taking it; 0 at the end.
    uint32_t Peek() const {
        uint32_t word = 0;
        if (rest_.size() >= sizeof word) {
            std::memcpy(&word, rest_.data(), sizeof word);
        }
        return word;
    }

  private:
    std::span<const uint8_t> rest_;
};

class RecordWriter {
  public:
    RecordWriter(Words& words, uint32_t column, const Extents& extents, DumpSink& sink)
        : words_(words), column_(column), extents_(extents), sink_(sink) {}

    // False when the dump ends inside the record.
    bool Write() {
        RecordHeader header;
        if (!words_.Take(header)) {
            return false;
        }
        sink_.Write("Firmware Dump [BEG]\n");
        WriteHeader(header);
        for (const Section& section : kSections) {
            if (HasSection(section, column_, extents_) && !WriteSection(section)) {
                return false;
            }
        }
        sink_.Write("[<==END] KPU Debug Dump\n");
        return true;
    }

  private:
    VX_PRINTF_FORMAT(2, 3) void Print(const char* format, ...) {
        char text[320];
        va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        sink_.Write({text, std::min(static_cast<size_t>(length), sizeof text - 1)});
    }

    void WriteHeader(const RecordHeader& header) {
        const LocalTime time = sink_.ToLocal(header.fileTime);
        char version[sizeof header.driverVersion + 1] = {};
        std::memcpy(version, header.driverVersion, sizeof header.driverVersion);
        Print(
            "[==>BEG] KPU Debug Dump pDevExt %016llX:%016llX DeviceId %x DriverVersion %s "
            "CompressVersion %x TimeStamp %04d/%02d/%02d %02d:%02d:%02d.%d\n",
            static_cast<unsigned long long>(header.deviceExtension[0]),
            static_cast<unsigned long long>(header.deviceExtension[1]), header.deviceId, version,
            header.compressVersion, time.year, time.month, time.day, time.hour, time.minute,
            time.second, time.millisecond);
        const uint8_t* const name = header.portName;
        Print("PN %02x%02x%02x%02x%02x%02x%02x%02x\n", name[0], name[1], name[2], name[3], name[4],
              name[5], name[6], name[7]);
        Print("FunctionNumber %d\n", static_cast<int>(header.function));
        Print("KPU FW Version %d.%02d.%02d Attributes %04X\n",
              static_cast<int>(header.firmwareVersion[0]),
              static_cast<int>(header.firmwareVersion[1]),
              static_cast<int>(header.firmwareVersion[2]), header.firmwareAttributes);
    }

    bool WriteSection(const Section& section) {
        const uint64_t count = SectionWords(section, column_, extents_);
        sink_.Write(section.title);
        switch (section.form) {
            case LineForm::Words1:
                return WriteLines(count, 1);
            case LineForm::Words4:
                return WriteLines(count, 4);
            case LineForm::Words7:
                return WriteLines(count, 7);
            case LineForm::Words8:
                return WriteLines(count, 8);
            case LineForm::Halves16:
                return WriteHalves(count);
            case LineForm::Addressed:
                return WriteAddressed(count, section.startAddress);
            case LineForm::Trace:
                return WriteTrace(count);
            case LineForm::Fce:
                return WriteFce(count);
            case LineForm::Queues:
                return WriteQueues(count);
        }
        return false;
    }

    // The words of one line behind what introduces it. A line of which only a part is there is
    // written as far as it goes.
    bool WriteLine(uint64_t count) {
        for (uint64_t i = 0; i < count; ++i) {
            uint32_t word = 0;
            if (!words_.Take(word)) {
                sink_.Write("\n");
                return false;
            }
            Print(i == 0 ? "%08x" : " %08x", word);
        }
        sink_.Write("\n");
        return true;
    }

    bool WriteLines(uint64_t count, uint64_t perLine) {
        for (; count != 0; count -= std::min(count, perLine)) {
            if (words_.Left() == 0 || !WriteLine(std::min(count, perLine))) {
                return false;
            }
        }
        return true;
    }

    bool WriteHalves(uint64_t count) {
        bool first = true;
        for (uint64_t i = 0; i < 2 * count; ++i) {
            uint16_t half = 0;
            if (!words_.Take(half)) {
                if (!first) {
                    sink_.Write("\n");
                }
                return false;
            }
            Print(first ? "%04x" : " %04x", half);
            first = (i + 1) % 16 == 0;
            if (first) {
                sink_.Write("\n");
            }
        }
        if (!first) {
            sink_.Write("\n");
        }
        return true;
    }

    bool WriteAddressed(uint64_t count, uint32_t address) {
        for (; count != 0; count -= std::min<uint64_t>(count, 8), address += 8 * sizeof(uint32_t)) {
            if (words_.Left() == 0) {
                return false;
            }
            Print("%08x: ", address);
            if (!WriteLine(std::min<uint64_t>(count, 8))) {
                return false;
            }
        }
        return true;
    }

    // Lines that begin with a 64-bit address, then separator.
    bool WriteWide(uint64_t count, uint64_t address, const char* separator) {
        for (; count != 0; count -= std::min<uint64_t>(count, 8), address += 8 * sizeof(uint32_t)) {
            if (words_.Left() == 0) {
                return false;
            }
            Print("%08x%08x%s", static_cast<uint32_t>(address >> 32),
                  static_cast<uint32_t>(address), separator);
            if (!WriteLine(std::min<uint64_t>(count, 8))) {
                return false;
            }
        }
        return true;
    }

    bool WriteTrace(uint64_t count) {
        uint64_t address = 0;
        return words_.Take(address) && WriteWide(count, address, ":  ");
    }

    bool WriteFce(uint64_t count) {
        uint64_t inPointer = 0;
        uint64_t base = 0;
        uint32_t enable[kFceEnableWords];
        if (!words_.Take(inPointer) || !words_.Take(base) || !words_.Take(enable)) {
            return false;
        }
        Print("In Pointer = %08x%08x\n\n", static_cast<uint32_t>(inPointer >> 32),
              static_cast<uint32_t>(inPointer));
        Print("Base = %08x%08x\n\n", static_cast<uint32_t>(base >> 32),
              static_cast<uint32_t>(base));
        sink_.Write("FCE Enable Registers\n");
        Print("%08x %08x %08x %08x %08x %08x\n\n", enable[0], enable[1], enable[2], enable[3],
              enable[4], enable[5]);
        if (!WriteWide(count, base, ": ")) {
            return false;
        }
        sink_.Write("End\n");
        return true;
    }

    bool WriteQueues(uint64_t count) {
        for (uint64_t queue = 0; queue < count / kQueueWords; ++queue) {
            if (words_.Left() == 0) {
                return false;
            }
            Print("Queue %d:\n", static_cast<int>(queue));
            if (!WriteAddressed(kQueueWords, 0)) {
                return false;
            }
        }
        return true;
    }

    Words& words_;
    uint32_t column_;
    const Extents& extents_;
    DumpSink& sink_;
};

}  // namespace

DumpEnd WriteDumpText(std::span<const uint8_t> dump, uint32_t layoutColumn, const Extents& extents,
                      DumpSink& sink) {
    Words words(dump);
    if (words.Peek() != kRecordMarker) {
        return DumpEnd::NoRecord;
    }
    bool whole = true;
    while (whole && words.Peek() == kRecordMarker) {
        whole = RecordWriter(words, layoutColumn, extents, sink).Write();
    }
    sink.Write("Firmware Dump [END]\n");
    return whole ? DumpEnd::Complete : DumpEnd::CutShort;
}

}  // namespace dumps
