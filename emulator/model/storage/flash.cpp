#include "model/storage/flash.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "model/fabric/fabric.h"
#include "model/port_settings.h"

namespace vxemu {
namespace {

using transport::DriverStatus;

constexpr WriteResult kAllowed = {DriverStatus::Success, 0};
constexpr WriteResult kRefused = {DriverStatus::MailboxFailed, kWriteRefused};

constexpr std::array<uint8_t, kFlashPageBytes> kErasedPage = [] {
    std::array<uint8_t, kFlashPageBytes> page{};
    page.fill(0xFF);
    return page;
}();

// A page is erased before its first byte is written: where power fails within one, what was still
// to come of it is gone. Neither the pages behind it have been begun, nor what a write does not
// cover.
bool LeaveUnfinished(const Port& port, uint32_t written, uint32_t end) {
    const uint32_t inPage = written % kFlashPageBytes;
    const uint32_t erased = std::min(end - written, kFlashPageBytes - inPage);
    return inPage == 0 || StoreBytes(port, written, kErasedPage.data(), erased);
}

}  // namespace

WriteResult CheckWrite(const Port& port) {
    return port.adapter->lockdown != 0 ? WriteResult{DriverStatus::Lockdown, 0} : kAllowed;
}

WriteResult CheckWrite(const Port& port, uint32_t offset, uint32_t length) {
    WriteResult result = CheckWrite(port);
    const bool secure = port.adapter->secureUpdates != 0;
    port.flash->memory.Regions().ForEachIn(offset, length, [&](const PlacedRegion& placed) {
        const FlashRegion& region = *placed.region;
        if (result.status == DriverStatus::Success &&
            (region.readOnly || (secure && region.IsSigned()))) {
            result = kRefused;
        }
    });
    return result;
}

WriteResult WriteFlash(Port& port, uint32_t offset, const uint8_t* bytes, uint32_t length) {
    if (const WriteResult result = CheckWrite(port, offset, length);
        result.status != DriverStatus::Success) {
        return result;
    }
    const uint32_t written = SpendPower(*port.flash, length);
    if (!StoreBytes(port, offset, bytes, written) ||
        (written != 0 && !LeaveUnfinished(port, offset + written, offset + length))) {
        return {DriverStatus::OutOfMemory, 0};
    }
    NoteSettingsWritten(port, offset, written);
    return kAllowed;
}

bool StoreBytes(const Port& port, uint32_t offset, const uint8_t* bytes, uint32_t length) {
    Flash& flash = *port.flash;
    if (length != 0) {
        if (!flash.memory.Write(port.fabric->host, offset, bytes, length)) {
            return false;
        }
        KeepBytes(flash, offset, bytes, length);
    }
    return true;
}

uint32_t SpendPower(Flash& flash, uint32_t length) {
    if (!flash.failsSoon) {
        return length;
    }
    const uint32_t written = std::min(length, flash.bytesUntilFailure);
    flash.bytesUntilFailure -= written;
    if (written < length) {
        flash.failsSoon = false;
        flash.withoutPower = true;
    }
    return written;
}

bool StartStaging(const Host& host, Staging& staging, StagingUse use, uint32_t size) {
    DropStaging(host, staging);
    if (size != 0) {
        staging.bytes = static_cast<uint8_t*>(host.allocate(host.context, size));
        if (staging.bytes == nullptr) {
            return false;
        }
    }
    staging.use = use;
    staging.size = size;
    return true;
}

void DropStaging(const Host& host, Staging& staging) {
    if (staging.bytes != nullptr) {
        host.release(host.context, staging.bytes);
    }
    staging = {};
}

void ReleaseFlash(const Host& host, Flash& flash) {
    flash.keeping.file.Close();
    DropStaging(host, flash.staging);
    flash.memory.Clear(host);
}

}  // namespace vxemu
