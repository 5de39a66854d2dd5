#include "vxmgr/fabric/scsi_units.h"

#include "formats/scsi_data.h"
#include "vxmgr/app/size_text.h"

namespace vxmgr {
namespace {

using namespace formats;

template <typename Layout>
std::optional<Capacity> Decode(Bytes data) {
    if (data.size() < sizeof(Layout)) {
        return std::nullopt;
    }
    const auto reply = Padded<Layout>(data);
    return Capacity{BigEndian(reply.lastBlock), BigEndian(reply.blockBytes)};
}

}  // namespace

std::optional<uint64_t> Capacity::Blocks() const {
    return lastBlock == UINT64_MAX ? std::nullopt : std::optional(lastBlock + 1);
}

std::optional<uint64_t> Capacity::TotalBytes() const {
    const auto blocks = Blocks();
    if (!blocks || (blockBytes != 0 && *blocks > UINT64_MAX / blockBytes)) {
        return std::nullopt;
    }
    return *blocks * blockBytes;
}

std::optional<Capacity> DecodeCapacity10(Bytes data) {
    return Decode<Capacity10>(data);
}

std::optional<Capacity> DecodeCapacity16(Bytes data) {
    return Decode<Capacity16>(data);
}

bool NeedsLongForm(const Capacity& capacity) {
    return capacity.lastBlock == UINT32_MAX;
}

const Fields<Capacity> kCapacityFields = {
    {"bytes", "Capacity", kCounter.OrNull(),
     [](const Capacity& capacity) {
         const auto bytes = capacity.TotalBytes();
         return bytes ? Value::Number(*bytes).Shown(SizeText(*bytes)) : Value();
     }},
    {"blocks", "Blocks", kCounter.OrNull(), &Capacity::Blocks},
    {"block_size", "Block size", Integer("bytes"), &Capacity::blockBytes},
    {"last_block", "Last block", kCounter, &Capacity::lastBlock},
};

uint64_t LunListLength(Bytes list) {
    return sizeof(LunListHead) + BigEndian(Padded<LunListHead>(list).length);
}

std::vector<LunEntry> DecodeLuns(Bytes list) {
    constexpr const char* kMethods[] = {"peripheral", "flat", "logical unit", "extended"};
    std::vector<LunEntry> entries;
    Bytes rest = Part(Part(list, 0, LunListLength(list)), sizeof(LunListHead));
    for (; rest.size() >= sizeof(LunAddress); rest = Part(rest, sizeof(LunAddress))) {
        const auto address = Padded<LunAddress>(rest);
        const uint64_t word = BigEndian(address.first);
        const uint64_t method = word >> 14;
        LunEntry entry;
        entry.method = kMethods[method];
        entry.address = HexDigits(BytesOf(address));
        if (method == 0) {
            entry.lun = word & 0xFF;
        } else if (method == 1) {
            entry.lun = word & 0x3FFF;
        } else if (method == 2) {
            entry.lun = word & 0x1F;  // behind bus and target
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

const Fields<LunEntry> kLunEntryFields = {
    {"lun", "LUN", "LUN", kInteger.OrNull(), &LunEntry::lun},
    {"method", "Addressing", "ADDRESSING", kText.OrNull(), &LunEntry::method},
    {"address", "Address", "ADDRESS", kText.OrNull(), &LunEntry::address},
};

}  // namespace vxmgr
