#include "model/port_eeprom.h"

#include <algorithm>
#include <cstring>

#include "flash/version_text.h"
#include "model/fabric.h"
#include "model/flash.h"
#include "model/flash_report.h"
#include "model/nvram_content.h"
#include "model/vpd_content.h"
#include "properties/chip_families.h"

namespace vxemu {
namespace {

// Large-ROM adapters keep a text record of each version they were updated to.
void PutVersionRecords(const AdapterProfile& adapter, PortEeprom& eeprom) {
    for (const flash::VersionKindRow& row : flash::kVersionKinds) {
        flash::VersionRecord record;
        char version[16];
        FactoryVersion(adapter, row.kind, version);
        const char letter[] = {row.letter, 0};
        TextWriter(record).Text("V:").Text(version).Text(",D:00000000,A:Y,T:").Text(letter);
        static_assert(sizeof record <= kVersionRecordBytes);
        std::memcpy(eeprom.versionRecords + row.offset, record, sizeof record);
    }
}

}  // namespace

}  // namespace vxemu
