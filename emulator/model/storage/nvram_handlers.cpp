// NVRAM and VPD through the driver's own requests, both driver generations.
#include <algorithm>
#include <cstring>

#include "flash/flash_records.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/storage/nvram_content.h"
#include "model/storage/port_eeprom.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

enum class NvramRequest : uint16_t { Block = 0, Verified = 1 };
enum class NvramChange : uint16_t { Block = 0, Settings = 1, BlockAndRestart = 2 };

// As much of the settings as there is room for.
void ReplyBlock(Exchange& exchange, const uint8_t* block, uint32_t length) {
    exchange.StartReply(std::min(length, exchange.Room()));
    exchange.Put(0, block, exchange.ReplyLength());
}

// Puts bytes into the port's own NVRAM; false when there is no memory. Of a part, the driver makes
// the checksum.
bool PutNvram(Exchange& exchange, uint32_t at, const uint8_t* bytes, uint32_t length) {
    Port& port = exchange.GetPort();
    PortEeprom* eeprom = EepromOf(port);
    if (eeprom == nullptr) {
        return false;
    }
    if (WriteEeprom(port, eeprom->nvram + at, bytes, length) && length != sizeof eeprom->nvram) {
        formats::MakeChecksum(flash::BlockKind::Classic, eeprom->nvram);
    }
    port.nvramChanged = true;
    exchange.KeepReply(0);
    return true;
}

bool PutPart(Exchange& exchange, uint32_t at, uint32_t length) {
    return exchange.InputLength() >= length && PutNvram(exchange, at, exchange.Bytes(), length);
}

template <typename Reply>
void ReplyPart(Exchange& exchange, const transport::SelectorRecord& selector, uint32_t at) {
    Reply reply = {};
    reply.selector = selector;
    if (const PortEeprom* eeprom = EepromOf(exchange.GetPort()); eeprom != nullptr) {
        std::memcpy(reply.bytes, eeprom->nvram + at, sizeof reply.bytes);
    }
    exchange.Reply(reply);
}

DriverStatus NvramRead(Exchange& exchange) {
    const auto request = static_cast<NvramRequest>(exchange.Ext().subCode);
    if (request != NvramRequest::Block && request != NvramRequest::Verified) {
        return DriverStatus::UnsupportedSubCode;
    }
    uint8_t block[kSettingsBytes];
    const uint32_t length = ReadNvram(exchange.GetPort(), block);
    if (length == 0) {
        return DriverStatus::InvalidRequest;
    }
    if (request == NvramRequest::Verified && !NvramHolds({block, length})) {
        return DriverStatus::NvramChecksum;
    }
    ReplyBlock(exchange, block, length);
    return DriverStatus::Success;
}

// Chips with NVRAM regions are written there; the request then only has them taken over.
DriverStatus NvramWrite(Exchange& exchange) {
    Port& port = exchange.GetPort();
    const auto change = static_cast<NvramChange>(exchange.Ext().subCode);
    if (change > NvramChange::BlockAndRestart) {
        return DriverStatus::UnsupportedSubCode;
    }
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    const bool restart = change == NvramChange::BlockAndRestart;
    if (flash::HasPortRegions(ChipOf(port))) {
        return restart ? TakeOverSettings(port) : DriverStatus::InvalidRequest;
    }
    const bool settings = change == NvramChange::Settings;
    const uint32_t at = settings ? flash::kLegacySettingsOffset : 0;
    const uint32_t end =
        settings ? flash::kLegacyPartsEnd : static_cast<uint32_t>(flash::kClassicBlock);
    if (exchange.InputLength() < end) {
        return DriverStatus::InvalidParameter;
    }
    if (!PutNvram(exchange, at, exchange.Bytes() + at, end - at)) {
        return DriverStatus::OutOfMemory;
    }
    return restart ? TakeOverSettings(port) : DriverStatus::Success;
}

DriverStatus VpdRead(Exchange& exchange) {
    uint8_t bytes[kSettingsBytes];
    const uint32_t length = ReadVpd(exchange.GetPort(), bytes);
    if (length == 0) {
        return DriverStatus::InvalidRequest;
    }
    exchange.StartReply(length);
    exchange.Put(0, bytes, length);
    return DriverStatus::Success;
}

// Behind the write of a VPD region nothing is left to do: the driver reads it where it stands.
DriverStatus VpdWrite(Exchange& exchange) {
    Port& port = exchange.GetPort();
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    const bool region = flash::HasPortRegions(ChipOf(port));
    PortEeprom* eeprom = EepromOf(port);
    if (eeprom == nullptr) {
        return DriverStatus::OutOfMemory;
    }
    const uint32_t length = region ? kSettingsBytes : static_cast<uint32_t>(sizeof eeprom->vpd);
    if (exchange.InputLength() == 0 || exchange.InputLength() > length) {
        return DriverStatus::InvalidParameter;
    }
    if (!region) {
        WriteEeprom(port, eeprom->vpd, exchange.Bytes(), exchange.InputLength());
    }
    exchange.KeepReply(0);
    return DriverStatus::Success;
}

bool LegacyNvramRead(Exchange& exchange) {
    uint8_t block[kSettingsBytes];
    const uint32_t length = ReadNvram(exchange.GetPort(), block);
    ReplyBlock(exchange, block, length);
    return length != 0;
}

bool LegacyNvramWrite(Exchange& exchange) {
    const uint32_t length =
        std::min(exchange.InputLength(), static_cast<uint32_t>(flash::kClassicBlock));
    return length != 0 && PutPart(exchange, 0, length);
}

bool LegacyNvramWrite64(Exchange& exchange) {
    return PutPart(exchange, flash::kLegacySettingsOffset, flash::kLegacySettingsBytes);
}

bool LegacyNvramWrite16(Exchange& exchange) {
    return PutPart(exchange, flash::kLegacyTailOffset, flash::kLegacyTailBytes);
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::NvramRead, .handle = NvramRead, .flags = AnySubCode | WithinPort},
    {.command = command::NvramWrite, .handle = NvramWrite, .flags = AnySubCode},
    {.command = command::VpdRead, .handle = VpdRead, .flags = WithinPort},
    {.command = command::VpdWrite, .handle = VpdWrite},
};

constexpr PlainRow kPlainRequests[] = {
    {.code = command::LegacyNvramRead, .handle = LegacyNvramRead, .flags = WithinPort},
    {.code = command::LegacyNvramWrite, .handle = LegacyNvramWrite},
    {.code = command::LegacyNvramWrite64, .handle = LegacyNvramWrite64},
    {.code = command::LegacyNvramWrite16, .handle = LegacyNvramWrite16},
};

}  // namespace

void LegacyNvramSettings(Exchange& exchange, const transport::SelectorRecord& selector) {
    ReplyPart<flash::LegacySettingsReply>(exchange, selector, flash::kLegacySettingsOffset);
}

void LegacyNvramTail(Exchange& exchange, const transport::SelectorRecord& selector) {
    ReplyPart<flash::LegacyTailReply>(exchange, selector, flash::kLegacyTailOffset);
}

RequestRows NvramRequests() {
    return {.extended = kRequests, .plain = kPlainRequests};
}

}  // namespace vxemu
