#include "model/storage/port_eeprom.h"

#include <cstring>

#include "flash/version_text.h"
#include "model/fabric/fabric.h"
#include "model/storage/flash_content.h"
#include "model/storage/nvram_content.h"
#include "model/storage/vpd_content.h"
#include "properties/chip_families.h"

namespace vxemu {
namespace {

constexpr uint8_t kControlIdle = 0x10;

void WriteVersion(const AdapterProfile& adapter, flash::VersionKind kind,
                  formats::TextWriter& writer) {
    const auto boot = [&](formats::RomCode code) {
        const formats::VersionNumbers version = BootVersion(adapter, code);
        formats::WriteBootVersion(writer, version.parts[0], version.parts[1]);
    };
    switch (kind) {
        case flash::VersionKind::Efi:
            return boot(formats::RomCode::Efi);
        case flash::VersionKind::Fcode:
            return boot(formats::RomCode::Fcode);
        case flash::VersionKind::Bios:
            return boot(formats::RomCode::Bios);
        case flash::VersionKind::Firmware:
            writer.Text(adapter.firmwareVersion);
            return;
    }
}

// The records that updates leave behind, as an update at the factory left them.
void PutVersionRecords(const AdapterProfile& adapter, uint8_t (&records)[kVersionRecordBytes]) {
    for (const flash::VersionKindRow& row : flash::kVersionKinds) {
        flash::VersionRecord record;
        formats::TextWriter writer(record);
        writer.Text("V:");
        WriteVersion(adapter, row.kind, writer);
        const char letter[] = {row.letter, 0};
        writer.Text(",D:00000000,A:Y,T:").Text(letter);
        std::memcpy(records + row.offset, record, sizeof record);
    }
}

}  // namespace

PortEeprom* EepromOf(Port& port) {
    if (port.eeprom != nullptr) {
        return port.eeprom;
    }
    const Host& host = port.fabric->host;
    auto* eeprom = static_cast<PortEeprom*>(host.allocate(host.context, sizeof(PortEeprom)));
    if (eeprom == nullptr) {
        return nullptr;
    }
    const AdapterProfile& adapter = *port.adapter;
    FillNvram(adapter, *port.profile, flash::BlockKind::Classic, eeprom->nvram);
    FillVpd(adapter, eeprom->vpd, sizeof eeprom->vpd);
    FillTransceiver(adapter, *port.profile, eeprom->identity);
    FillTransceiver(eeprom->diagnostics);
    PutVersionRecords(adapter, eeprom->versionRecords);
    eeprom->control = kControlIdle;
    port.eeprom = eeprom;
    return eeprom;
}

}  // namespace vxemu
