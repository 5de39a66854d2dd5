#include "flash/version_records.h"

#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/region_rules.h"
#include "flash/version_text.h"
#include "frame/handle_table.h"
#include "frame/trace.h"

namespace flash {
namespace {

constexpr uint16_t kRecordDevice = 0xA0;
constexpr uint16_t kControlDevice = 0xE0;
constexpr uint16_t kOptions = 0x2000;
constexpr uint8_t kTakeOver = 1u << 4;  // the adapter reads the records when this bit rises

// Lowers and raises the bit of the control byte. Its other bits are not known when it cannot be
// read; it is left alone then.
HX_STATUS PulseControl(uint32_t handle) {
    uint8_t control = 0;
    HX_STATUS status = ReadTwoWire(handle, kControlDevice, &control, sizeof control, 0,
                                   kOptions | kTwoWireNoData, nullptr);
    for (const int value : {control & ~kTakeOver, control | kTakeOver}) {
        if (status == HXMGT_SUCCESS) {
            const auto byte = static_cast<uint8_t>(value);
            status = WriteTwoWire(handle, kControlDevice, &byte, sizeof byte, 0, kOptions, nullptr);
        }
    }
    return status;
}

}  // namespace

HX_STATUS RecordVersions(uint32_t handle, uint32_t regionCode, std::span<const uint8_t> image) {
    HX_STATUS first = HXMGT_SUCCESS;
    for (const VersionKindRow& row : kVersionKinds) {
        if ((row.kind == VersionKind::Firmware) != (regionCode == kFirmwareRegion)) {
            continue;
        }
        VersionText version;
        FormatVersion(image, row.kind, version);
        if (version[0] == 0) {
            continue;
        }
        VersionRecord record;
        FormatVersionRecord(version, row.letter, record);
        const HX_STATUS status = WriteTwoWire(handle, kRecordDevice, record, sizeof record,
                                              row.offset, kOptions, nullptr);
        VX_TRACE(handle, "HXWriteSFPData: update i2c %s retStatus = %x\n", row.name,
                 static_cast<unsigned>(status));
        first = first == HXMGT_SUCCESS ? status : first;
    }
    const HX_STATUS pulse = PulseControl(handle);
    return first == HXMGT_SUCCESS ? pulse : first;
}

}  // namespace flash
