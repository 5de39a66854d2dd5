#include "model/storage/port_eeprom.h"

#include <cstring>

#include "flash/version_text.h"
#include "model/fabric/fabric.h"
#include "model/storage/flash.h"
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

void FillEeprom(const AdapterProfile& adapter, const PortProfile& port, PortEeprom& eeprom) {
    FillNvram(adapter, port, flash::BlockKind::Classic, eeprom.nvram);
    FillVpd(adapter, eeprom.vpd, sizeof eeprom.vpd);
    FillTransceiver(adapter, port, eeprom.identity);
    FillTransceiver(eeprom.diagnostics);
    PutVersionRecords(adapter, eeprom.versionRecords);
    eeprom.control = kControlIdle;
}

PortEeprom* EepromOf(Port& port) {
    if (port.eeprom == nullptr) {
        const Host& host = port.fabric->host;
        port.eeprom = static_cast<PortEeprom*>(host.allocate(host.context, sizeof(PortEeprom)));
        if (port.eeprom != nullptr) {
            FillEeprom(*port.adapter, *port.profile, *port.eeprom);
        }
    }
    return port.eeprom;
}

bool WriteEeprom(Port& port, uint8_t* place, const void* bytes, uint32_t length) {
    const uint32_t written = SpendPower(*port.flash, length);
    std::memcpy(place, bytes, written);
    NoteEepromWritten(port);
    return written == length;
}

void NoteEepromWritten(Port& port) {
    port.eepromWritten = true;
    port.eepromChanged = true;
    NoteStored(port);
}

}  // namespace vxemu
