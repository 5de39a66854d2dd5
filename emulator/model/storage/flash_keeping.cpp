#include "model/storage/flash_keeping.h"

#include <algorithm>
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/fabric/fabric.h"
#include "model/storage/flash.h"
#include "model/storage/flash_start.h"
#include "model/storage/nvram_content.h"
#include "model/storage/port_eeprom.h"

namespace vxemu {
namespace {

constexpr char kNewFile[] = ".new";  // one that is being written, at the end of its name
constexpr uint64_t kSpareBytes = 4u * 1024 * 1024;

const AdapterProfile& DeliveredAs(const Flash& flash) {
    return flash.memory.Origin().Adapter();
}

FlashFileName NameOf(const Flash& flash, const char* suffix = "") {
    return FlashFileName(DeliveredAs(flash).serial, suffix);
}

// Both keep the adapter's ports in the same order.
template <typename Visit>
void ForEachPortOf(const Fabric& fabric, const Flash& flash, Visit visit) {
    const FlashOrigin& origin = flash.memory.Origin();
    const PortProfile* delivered = origin.profile->ports;
    const PortProfile* const end = delivered + origin.profile->portCount;
    ForEachHostPort(fabric, [&](Port& port) {
        while (port.flash == &flash && delivered != end && delivered->adapter != origin.adapter) {
            ++delivered;
        }
        if (port.flash == &flash && delivered != end) {
            visit(port, *delivered++);
        }
    });
}

KeptPort StateOf(const Port& port) {
    return {port.secondBank, static_cast<uint8_t>(port.nvramWaits),
            static_cast<uint8_t>(port.vpdWaits)};
}

bool Same(const KeptPort& left, const KeptPort& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

// A sum over all that the adapter is delivered with: kept bytes go with no other content. False
// when there is no memory.
bool SumDelivered(const Fabric& fabric, const Flash& flash, uint32_t& sum) {
    constexpr uint32_t kPieceBytes = 65536;
    const Host& host = fabric.host;
    const FlashOrigin& origin = flash.memory.Origin();
    auto* const piece = static_cast<uint8_t*>(host.allocate(host.context, kPieceBytes));
    if (piece == nullptr) {
        return false;
    }
    static_assert(sizeof(PortEeprom) <= kPieceBytes);
    uint32_t remainder = 0xFFFFFFFF;
    flash.memory.Regions().ForEach([&](const PlacedRegion& placed) {
        const FlashRegion& region = *placed.region;
        for (uint32_t at = 0; region.content != RegionContent::Blank && at < region.size;) {
            const uint32_t length = std::min(kPieceBytes, region.size - at);
            PutRegion(origin, region, ByteWindow(at, piece, length));
            remainder = formats::Crc32Remainder(remainder, {piece, length});
            at += length;
        }
    });
    ForEachPortOf(fabric, flash, [&](const Port&, const PortProfile& delivered) {
        std::memset(piece, 0, sizeof(PortEeprom));
        FillEeprom(origin.Adapter(), delivered, *reinterpret_cast<PortEeprom*>(piece));
        remainder = formats::Crc32Remainder(remainder, {piece, sizeof(PortEeprom)});
        remainder = formats::Crc32Remainder(remainder, delivered.portName);
    });
    host.release(host.context, piece);
    sum = ~remainder;
    return true;
}

bool MakeHead(const Fabric& fabric, const Flash& flash, FlashFileHead& head) {
    head = {};
    const AdapterProfile& adapter = DeliveredAs(flash);
    head.deviceId = adapter.deviceId;
    CopyText(head.serial, adapter.serial);
    head.flashBytes = flash.memory.Bytes();
    uint32_t sum = 0;
    if (!SumDelivered(fabric, flash, sum)) {
        return false;
    }
    head.delivered = sum;
    SealHead(head);
    return true;
}

// Nothing lasts any more; what did is in the file.
void GiveUp(Flash& flash) {
    flash.keeping.state = FlashKeep::Failed;
    flash.keeping.file.Close();
}

bool AppendBytes(FlashFile& file, uint32_t offset, const uint8_t* bytes, uint32_t length) {
    bool appended = true;
    for (uint32_t done = 0; appended && done < length;) {
        const uint32_t part = std::min(kMostRecordBytes, length - done);
        appended = file.Append({FlashRecordKind::Bytes, part, offset + done, {}, 0}, bytes + done);
        done += part;
    }
    return appended;
}

bool AppendOf(FlashFile& file, const Port& port, FlashRecordKind kind, const void* bytes,
              uint32_t length) {
    FlashFileRecord record = {kind, length, 0, {}, 0};
    std::memcpy(record.portName, port.profile->portName, sizeof record.portName);
    return file.Append(record, bytes);
}

// What stands beside the flash, as far as it is not kept already, or (all) as far as it is not as
// delivered.
bool AppendRest(const Fabric& fabric, const Flash& flash, FlashFile& file, bool all) {
    static_assert(sizeof(PortEeprom) <= kMostRecordBytes);
    bool appended = true;
    ForEachPortOf(fabric, flash, [&](const Port& port, const PortProfile&) {
        const KeptPort state = StateOf(port);
        if (!Same(state, all ? KeptPort{} : port.kept)) {
            appended =
                appended && AppendOf(file, port, FlashRecordKind::Port, &state, sizeof state);
        }
        if (port.eeprom != nullptr && (all ? port.eepromWritten : port.eepromChanged)) {
            appended = appended && AppendOf(file, port, FlashRecordKind::Eeprom, port.eeprom,
                                            sizeof *port.eeprom);
        }
    });
    const uint32_t stored = flash.companion.stored;
    if (appended && stored != (all ? 0 : flash.keeping.companion)) {
        appended = file.Append({FlashRecordKind::Companion, sizeof stored, 0, {}, 0}, &stored);
    }
    return appended;
}

void NoteKept(const Fabric& fabric, Flash& flash) {
    ForEachPortOf(fabric, flash, [](Port& port, const PortProfile&) {
        port.kept = StateOf(port);
        port.eepromChanged = false;
    });
    flash.keeping.companion = flash.companion.stored;
}

// A file with what counts now, in place of the one with the way there.
bool WriteAnew(const Fabric& fabric, Flash& flash) {
    FlashKeeping& keeping = flash.keeping;
    const HostFiles& files = *fabric.host.files;
    FlashFileHead head;
    FlashFile file = {};
    if (!MakeHead(fabric, flash, head) ||
        !file.Create(files, NameOf(flash, kNewFile).Get(), head)) {
        return false;
    }
    const bool written =
        flash.memory.ForEachWritten([&](uint32_t offset, const uint8_t* bytes, uint32_t length) {
            return AppendBytes(file, offset, bytes, length);
        }) &&
        AppendRest(fabric, flash, file, true) && file.Commit();
    if (!written || !file.TakePlaceOf(keeping.file, NameOf(flash).Get())) {
        file.Erase();
        return false;
    }
    keeping.file = file;
    keeping.mostBytes = 2 * file.Bytes() + kSpareBytes;
    return true;
}

Port* FindPort(const Fabric& fabric, const Flash& flash, const uint8_t (&portName)[8]) {
    Port* found = nullptr;
    ForEachPortOf(fabric, flash, [&](Port& port, const PortProfile&) {
        if (std::memcmp(port.profile->portName, portName, sizeof portName) == 0) {
            found = &port;
        }
    });
    return found;
}

// Takes over a record that has been checked against its sum; false when it says what cannot be.
bool TakeOver(const Fabric& fabric, Flash& flash, const FlashFileRecord& record,
              const uint8_t* bytes) {
    const auto take = [&](auto& value) {
        if (record.length != sizeof value) {
            return false;
        }
        std::memcpy(&value, bytes, sizeof value);
        return true;
    };
    if (record.kind == FlashRecordKind::Bytes) {
        const uint32_t size = flash.memory.Bytes();
        return record.offset <= size && record.length <= size - record.offset &&
               flash.memory.Write(fabric.host, record.offset, bytes, record.length);
    }
    if (record.kind == FlashRecordKind::Companion) {
        return take(flash.companion.stored);
    }
    Port* const port = FindPort(fabric, flash, record.portName);
    if (port == nullptr) {
        return false;
    }
    if (record.kind == FlashRecordKind::Port) {
        KeptPort state;
        if (!take(state) || state.secondBank > 1) {
            return false;
        }
        port->secondBank = state.secondBank;
        port->nvramWaits = state.nvramWaits != 0;
        port->vpdWaits = state.vpdWaits != 0;
        return true;
    }
    port->eepromWritten = true;
    return record.kind == FlashRecordKind::Eeprom && EepromOf(*port) != nullptr &&
           take(*port->eeprom);
}

// As delivered, but for the file.
void DropStored(const Fabric& fabric, Flash& flash) {
    const Host& host = fabric.host;
    DropStaging(host, flash.staging);
    flash.memory.Clear(host);
    flash.companion = {};
    ForEachPortOf(fabric, flash, [&](Port& port, const PortProfile&) {
        if (port.eeprom != nullptr) {
            host.release(host.context, port.eeprom);
            port.eeprom = nullptr;
        }
        port.eepromWritten = false;
        port.secondBank = 0;
        port.nvramWaits = false;
        port.vpdWaits = false;
        port.nvramChanged = false;
    });
    NoteKept(fabric, flash);
    flash.keeping.changed = false;
}

}  // namespace

void StartKeeping(Fabric& fabric, Flash& flash) {
    FlashKeeping& keeping = flash.keeping;
    if (fabric.host.files == nullptr) {
        return;
    }
    const FileFound found = keeping.file.Open(*fabric.host.files, NameOf(flash).Get());
    if (found != FileFound::Opened) {
        keeping.state = found == FileFound::NotThere ? FlashKeep::Kept : FlashKeep::Failed;
        return;
    }
    FlashFileHead head;
    keeping.state = MakeHead(fabric, flash, head) ? keeping.file.Check(head) : FlashKeep::Failed;
    if (keeping.state == FlashKeep::Kept) {
        keeping.state = keeping.file.Replay(
            fabric.host, [&](const FlashFileRecord& record, const uint8_t* bytes) {
                return TakeOver(fabric, flash, record, bytes);
            });
    }
    if (keeping.state != FlashKeep::Kept) {
        keeping.file.Close();
        DropStored(fabric, flash);
        return;
    }
    NoteKept(fabric, flash);
    keeping.mostBytes = 2 * keeping.file.Bytes() + kSpareBytes;
    ForEachPortOf(fabric, flash, [](Port& port, const PortProfile&) {
        port.nvramChanged = true;
        PowerCycle(port);
    });
    KeepChanges(fabric, flash);
}

void KeepBytes(Flash& flash, uint32_t offset, const uint8_t* bytes, uint32_t length) {
    FlashKeeping& keeping = flash.keeping;
    keeping.changed = true;
    if (keeping.file.IsOpen() && !AppendBytes(keeping.file, offset, bytes, length)) {
        GiveUp(flash);
    }
}

void NoteStored(const Port& port) {
    port.flash->keeping.changed = true;
}

void KeepChanges(const Fabric& fabric, Flash& flash) {
    FlashKeeping& keeping = flash.keeping;
    if (!keeping.changed) {
        return;
    }
    keeping.changed = false;
    if (keeping.state != FlashKeep::Kept) {
        return;
    }
    FlashFile& file = keeping.file;
    bool kept = false;
    if (!file.IsOpen()) {
        kept = WriteAnew(fabric, flash);
    } else {
        kept = AppendRest(fabric, flash, file, false) && (!file.Pending() || file.Commit());
        if (kept && file.Bytes() > keeping.mostBytes && !WriteAnew(fabric, flash)) {
            // The old one still does.
            keeping.mostBytes = 2 * file.Bytes();
            kept = file.IsOpen();
        }
    }
    if (!kept) {
        GiveUp(flash);
    }
    NoteKept(fabric, flash);
}

bool ForgetStored(Fabric& fabric, Flash& flash) {
    FlashKeeping& keeping = flash.keeping;
    const HostFiles* const files = fabric.host.files;
    if (files != nullptr) {
        // Also one that was left alone, and one that did not get its place.
        keeping.file.Close();
        bool erased = true;
        for (const char* suffix : {kNewFile, ""}) {
            FlashFile file = {};
            const FileFound found = file.Open(*files, NameOf(flash, suffix).Get());
            erased = erased && found != FileFound::Failed && file.Erase();
        }
        if (!erased) {
            keeping.state = FlashKeep::Failed;
            return false;
        }
        keeping.state = FlashKeep::Kept;
    }
    DropStored(fabric, flash);
    flash.withoutPower = false;
    flash.failsSoon = false;
    const AdapterProfile& delivered = DeliveredAs(flash);
    ForEachPortOf(fabric, flash, [&](Port& port, const PortProfile& deliveredPort) {
        CopyText(port.adapter->firmwareVersion, delivered.firmwareVersion);
        CopyText(port.adapter->optionRomVersion, delivered.optionRomVersion);
        port.adapter->firmwareAttributes = delivered.firmwareAttributes;
        CopySettings(deliveredPort, *port.profile);
    });
    return true;
}

}  // namespace vxemu
