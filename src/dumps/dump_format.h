// The firmware dump that is written as text: a sequence of 32-bit words made of records. A record
// is a header and the sections of its layout, in the order of the table. The renderer reads it, the
// emulated adapters make it. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace dumps {

inline constexpr uint32_t kRecordMarker = 0x11335577;

#pragma pack(push, 1)

struct RecordHeader {
    uint32_t marker;
    uint32_t deviceId;
    uint64_t deviceExtension[2];
    char driverVersion[32];
    uint32_t compressVersion;
    uint64_t fileTime;  // 100 ns since 1601, UTC
    uint8_t portName[8];
    uint32_t function;
    uint32_t firmwareVersion[3];
    uint32_t firmwareAttributes;
};
static_assert(sizeof(RecordHeader) == 96);
static_assert(sizeof(RecordHeader) % sizeof(uint32_t) == 0);

#pragma pack(pop)

// How the words of a section become lines.
enum class LineForm : uint8_t {
    Words1,     // one 32-bit word
    Words4,     // four
    Words7,     // seven
    Words8,     // eight
    Halves16,   // sixteen 16-bit words
    Addressed,  // address and eight words
    Trace,      // a 64-bit address word pair, then 64-bit address and eight words
    Fce,        // in pointer, base, enable registers, then 64-bit address and eight words
    Queues,     // "Queue %d:" and address and eight words, for each queue
};

// Where the number of words of a section stands.
enum class Extent : uint8_t {
    Fixed,           // in the table, by layout
    ExternalMemory,  // the word counts of the piece header
    TraceBuffer,
    FceBuffer,
    QueueCount,  // kQueueWords for each queue
};

inline constexpr uint32_t kQueueWords = 64;
inline constexpr uint32_t kTraceHeadWords = 2;  // base address
inline constexpr uint32_t kFceEnableWords = 6;
inline constexpr uint32_t kFceHeadWords = 4 + kFceEnableWords;  // in pointer, base, enables
inline constexpr uint32_t kCodeRamAddress = 0x20000;
inline constexpr uint32_t kExternalMemoryAddress = 0x100000;

// The layouts, in the order of the columns below.
inline constexpr uint32_t kLayouts = 5;
inline constexpr uint8_t kLayoutNumbers[kLayouts] = {36, 37, 128, 131, 200};
inline constexpr uint8_t kNewestLayout = 200;  // of the newest chips, whatever their table row says

struct Section {
    const char* title;
    LineForm form;
    Extent extent;
    uint32_t startAddress;     // of Addressed sections
    uint32_t words[kLayouts];  // of Fixed sections; others: 1 = present. 0 = absent
};

// clang-format off
#define VX_REGISTERS(title, ...) {title "\n", LineForm::Words8, Extent::Fixed, 0, {__VA_ARGS__}}
inline constexpr Section kSections[] = {
    {"HCCR Register\n",              LineForm::Words1,   Extent::Fixed, 0, {  1,  1,  1,  1,  1}},
    {"R2H Status Register\n",        LineForm::Words1,   Extent::Fixed, 0, {  1,  1,  1,  1,  1}},
    VX_REGISTERS("HostRisc registers",                                  0,  32,  32,  32,  64),
    {"PCIe registers\n",             LineForm::Words4,   Extent::Fixed, 0, {  0,  4,  4,  4,  8}},
    VX_REGISTERS("Queue #0 Pointers",                                   0,   0,   8,   8,   8),
    VX_REGISTERS("Queue #1 Pointers",                                   0,   0,   8,   8,   8),
    VX_REGISTERS("Queue #2 Pointers",                                   0,   0,   0,   8,   8),
    VX_REGISTERS("Queue #3 Pointers",                                   0,   0,   0,   8,   8),
    VX_REGISTERS("Host Interface Registers",                           32,  32,  32,  32,  64),
    {"Shadow registers\n",           LineForm::Words7,   Extent::Fixed, 0, {  7,  0,  0,  0,  0}},
    VX_REGISTERS("Shadow registers",                                    0,   8,  16,  16,  16),
    VX_REGISTERS("RISC IO Register",                                    0,   8,   8,   8,   8),
    {"Mailbox Registers\n",          LineForm::Halves16, Extent::Fixed, 0, { 16, 16, 16, 16, 16}},
    VX_REGISTERS("XSEQ GP Registers",                                 128, 128, 128, 128, 128),
    VX_REGISTERS("XSEQ-0 Registers",                                   16,  48,  48,  48,  48),
    VX_REGISTERS("XSEQ-1 Registers",                                   16,  16,  16,  16,  16),
    VX_REGISTERS("XSEQ-2 Registers",                                    0,  16,  16,  16,  16),
    VX_REGISTERS("RSEQ GP Registers",                                 128, 128, 128, 128, 128),
    VX_REGISTERS("RSEQ-0 registers",                                   16,  32,  32,  32,  32),
    VX_REGISTERS("RSEQ-1 registers",                                   16,  16,  16,  16,  16),
    VX_REGISTERS("RSEQ-2 registers",                                   16,  16,  16,  16,  16),
    VX_REGISTERS("RSEQ-3 registers",                                    0,   0,  16,  16,  16),
    VX_REGISTERS("ASEQ GP Registers",                                   0, 128, 128, 128, 128),
    VX_REGISTERS("ASEQ-0 Registers",                                    0,  32,  32,  32,  32),
    VX_REGISTERS("ASEQ-1 Registers",                                    0,  16,  16,  16,  16),
    VX_REGISTERS("ASEQ-2 Registers",                                    0,  16,  16,  16,  16),
    VX_REGISTERS("ASEQ-3 Registers",                                    0,   0,  16,  16,  16),
    VX_REGISTERS("Command DMA registers",                              16,  16,  64,  64,  64),
    VX_REGISTERS("Request0 Queue DMA Channel registers",               16,  16,  16,  16,  16),
    VX_REGISTERS("Response0 Queue DMA Channel registers",              16,  16,  16,  16,  16),
    VX_REGISTERS("Request1 Queue DMA Channel registers",               16,  16,  16,  16,  16),
    VX_REGISTERS("XMT0 Data DMA registers",                            32,  32,  32,  32,  32),
    VX_REGISTERS("XMT1 Data DMA registers",                            32,  32,  32,  32,  32),
    VX_REGISTERS("XMT2 Data DMA registers",                            32,  32,  32,  32,  32),
    VX_REGISTERS("XMT3 Data DMA registers",                            32,  32,  32,  32,  32),
    VX_REGISTERS("XMT4 Data DMA registers",                            32,  32,  32,  32,  32),
    VX_REGISTERS("XMT Data DMA Common registers",                      16,  16,  16,  16,  16),
    VX_REGISTERS("RCV Thread 0 Data DMA registers",                    32,  32,  32,  32,  32),
    VX_REGISTERS("RCV Thread 1 Data DMA registers",                    32,  32,  32,  32,  32),
    VX_REGISTERS("RISC GP registers",                                 128, 128, 128, 128, 128),
    VX_REGISTERS("LMC registers",                                     112, 128, 128, 128, 128),
    VX_REGISTERS("FPM Hardware registers",                            192, 192, 224, 224, 224),
    VX_REGISTERS("RQ0 Array registers",                                 0,   0, 256, 256, 256),
    VX_REGISTERS("RQ1 Array registers",                                 0,   0, 256, 256, 256),
    VX_REGISTERS("RP0 Array registers",                                 0,   0, 256, 256, 256),
    VX_REGISTERS("RP1 Array registers",                                 0,   0, 256, 256, 256),
    VX_REGISTERS("AT0 Array registers",                                 0,   0, 128, 128, 256),
    VX_REGISTERS("Queue Control registers",                             0,   0,  16,  16,  32),
    VX_REGISTERS("FB Hardware registers",                             176, 192, 256, 432, 432),
    {"Code RAM\n",              LineForm::Addressed, Extent::Fixed, kCodeRamAddress,
                                                                   {1024, 1024, 2048, 2048, 4096}},
    {"External Memory\n",       LineForm::Addressed, Extent::ExternalMemory, kExternalMemoryAddress,
                                                                            { 1,  1,  1,  1,  1}},
    {"Extended Trace Buffer\n", LineForm::Trace,  Extent::TraceBuffer, 0,   { 0,  1,  1,  1,  1}},
    {"FCE Trace Buffer\n",      LineForm::Fce,    Extent::FceBuffer,   0,   { 1,  1,  1,  1,  1}},
    {"Request Queue\n",         LineForm::Queues, Extent::QueueCount,  0,   { 0,  1,  1,  1,  1}},
    {"Priority Queue\n",        LineForm::Queues, Extent::QueueCount,  0,   { 0,  0,  0,  1,  1}},
    {"Response Queue\n",        LineForm::Queues, Extent::QueueCount,  0,   { 0,  1,  1,  1,  1}},
};
#undef VX_REGISTERS
// clang-format on

// Column of a layout number, or kLayouts when there is no such layout.
constexpr uint32_t ColumnOfLayout(uint8_t layout) {
    uint32_t column = 0;
    while (column < kLayouts && kLayoutNumbers[column] != layout) {
        ++column;
    }
    return column;
}

// The sizes that a dump's piece header tells.
struct Extents {
    uint32_t externalMemoryWords;
    uint32_t traceWords;
    uint32_t fceWords;
    uint32_t queues;
};

// Data words of a section, without the words at its head. 64 bits: the header may claim anything.
constexpr uint64_t SectionWords(const Section& section, uint32_t column, const Extents& extents) {
    if (section.words[column] == 0) {
        return 0;
    }
    switch (section.extent) {
        case Extent::ExternalMemory:
            return extents.externalMemoryWords;
        case Extent::TraceBuffer:
            return extents.traceWords;
        case Extent::FceBuffer:
            return extents.fceWords;
        case Extent::QueueCount:
            return uint64_t{extents.queues} * kQueueWords;
        default:
            return section.form == LineForm::Halves16 ? section.words[column] / 2
                                                      : section.words[column];
    }
}

// Words at the head of a section, before its data.
constexpr uint32_t SectionHeadWords(const Section& section) {
    switch (section.form) {
        case LineForm::Trace:
            return kTraceHeadWords;
        case LineForm::Fce:
            return kFceHeadWords;
        default:
            return 0;
    }
}

// A section without data is left out, head and title too.
constexpr bool HasSection(const Section& section, uint32_t column, const Extents& extents) {
    return SectionWords(section, column, extents) != 0;
}

// Bytes of a record of that layout.
constexpr uint64_t RecordBytes(uint32_t column, const Extents& extents) {
    uint64_t words = sizeof(RecordHeader) / sizeof(uint32_t);
    for (const Section& section : kSections) {
        if (HasSection(section, column, extents)) {
            words += SectionHeadWords(section) + SectionWords(section, column, extents);
        }
    }
    return words * sizeof(uint32_t);
}

}  // namespace dumps
