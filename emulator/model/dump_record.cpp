#include "model/dump_record.h"

#include <cstring>

#include "formats/version_numbers.h"
#include "model/bytes/pattern.h"
#include "properties/chip_families.h"

namespace vxemu {
namespace {

// 2024-01-01 00:00:00 UTC; each dump of a port is an hour younger than the one before.
constexpr uint64_t kFirstDumpTime = 133'485'408'000'000'000;
constexpr uint64_t kHour = 36'000'000'000;

uint8_t LayoutOf(uint16_t deviceId) {
    const properties::Chip chip = properties::ChipOf(deviceId);
    return chip.Has(properties::ChipTrait::Newest) ? dumps::kNewestLayout : chip.dumpLayout;
}

}  // namespace

uint32_t DumpSeed(const Port& port) {
    return port.dumpsForced * 251 + port.profile->scsiPort;
}

DumpRecord::DumpRecord(const Port& port)
    : port_(port),
      extents_{port.adapter->dumpWords, port.adapter->dumpTraceWords, port.adapter->dumpFceWords,
               port.adapter->dumpQueues},
      column_(dumps::ColumnOfLayout(LayoutOf(port.adapter->deviceId))),
      seed_(DumpSeed(port)) {}

dumps::RecordHeader DumpRecord::Header() const {
    const AdapterProfile& adapter = *port_.adapter;
    dumps::RecordHeader header = {};
    header.marker = dumps::kRecordMarker;
    header.deviceId = adapter.deviceId;
    header.deviceExtension[0] = 0xFFFFA00000000000u + port_.profile->scsiPort * 0x1000u;
    std::memcpy(header.driverVersion, adapter.driverVersion, sizeof header.driverVersion);
    header.fileTime = kFirstDumpTime + port_.dumpsForced * kHour;
    std::memcpy(header.portName, port_.profile->portName, sizeof header.portName);
    header.function = port_.profile->pciFunction;
    const formats::VersionNumbers version = formats::ParseVersion(adapter.firmwareVersion);
    static_assert(sizeof header.firmwareVersion <= sizeof version.parts);
    std::memcpy(header.firmwareVersion, version.parts, sizeof header.firmwareVersion);
    header.firmwareAttributes = adapter.firmwareAttributes;
    return header;
}

void DumpRecord::Put(uint64_t offset, uint8_t* bytes, uint32_t length) const {
    WordWindow window(offset, bytes, length);
    constexpr uint32_t kHeaderWords = sizeof(dumps::RecordHeader) / sizeof(uint32_t);
    uint32_t header[kHeaderWords];
    const dumps::RecordHeader record = Header();
    std::memcpy(header, &record, sizeof header);
    for (uint64_t index = window.First(); index < window.End(); ++index) {
        // The marker stands at the start of a record and nowhere else.
        const uint32_t word = PatternWord(index, seed_);
        window.Put(index, index < kHeaderWords           ? header[index]
                          : word == dumps::kRecordMarker ? ~word
                                                         : word);
    }
}

}  // namespace vxemu
