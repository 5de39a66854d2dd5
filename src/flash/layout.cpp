#include "flash/layout.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>

#include "flash/flash.h"
#include "frame/handle_table.h"
#include "properties/properties.h"

namespace flash {
namespace {

static_assert(sizeof(HX_FLASH_REGION) == 8);
static_assert(sizeof(HX_FLASH_LAYOUT) == 2048);
static_assert(sizeof(HX_FLASH_REGION_EX) == sizeof(DriverRegion));
static_assert(offsetof(HX_FLASH_REGION_EX, size) == offsetof(DriverRegion, size));
static_assert(offsetof(HX_FLASH_LAYOUT_EX, regions) == sizeof(LayoutHead));

// The driver's table; its count is cut to the entries that really came.
template <class Table>
HX_STATUS ReadTable(uint32_t handle, transport::Command command, Table& table) {
    table = {};
    table.head = {sizeof table, kAskedRegions};
    uint32_t returned = 0;
    const HX_STATUS status = transport::SendExtended(handle, command.code, command.subCode, &table,
                                                     sizeof table, &table, sizeof table, &returned);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    const uint32_t entryBytes =
        returned > sizeof table.head ? returned - static_cast<uint32_t>(sizeof table.head) : 0;
    const auto room = static_cast<uint32_t>(std::size(table.regions));
    table.head.count =
        std::min({table.head.count, room, entryBytes / uint32_t{sizeof(DriverRegion)}});
    return HXMGT_SUCCESS;
}

void CopyEntry(const DriverRegion& from, HX_FLASH_REGION& to) {
    std::memcpy(&to, &from, sizeof to);  // code, flags and the byte behind them as one number
}

void CopyEntry(const DriverRegion& from, HX_FLASH_REGION_EX& to) {
    to.code = from.code;
    to.flags = from.flags;
    to.size = from.size;
    to.start = from.start;
    to.end = from.end;
}

template <class Table, class Layout>
HX_STATUS Get(uint32_t handle, transport::Command command, Layout* layout) {
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const std::unique_ptr<Table> table(new (std::nothrow) Table);
    if (table == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const HX_STATUS status = ReadTable(handle, command, *table);
    if (status != HXMGT_SUCCESS || layout == nullptr) {
        return status;
    }
    const uint32_t count = table->head.count;
    const uint32_t capacity = layout->count;
    layout->count = count;
    if (capacity < count) {
        return HXMGT_BUFFER_TOO_SMALL;
    }
    layout->size = table->head.bufferSize;
    for (uint32_t i = 0; i < count; ++i) {
        CopyEntry(table->regions[i], layout->regions[i]);
    }
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetLayout(uint32_t handle, HX_FLASH_LAYOUT* layout) {
    return Get<LayoutTable>(handle, transport::command::FlashLayout, layout);
}

HX_STATUS GetLayoutEx(uint32_t handle, HX_FLASH_LAYOUT_EX* layout) {
    return Get<LayoutTableEx>(handle, transport::command::FlashLayoutEx, layout);
}

HX_STATUS RegionTable::Load(uint32_t handle) {
    layout_.reset(new (std::nothrow) HX_FLASH_LAYOUT{});
    if (layout_ == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    layout_->count = kAskedRegions;
    return GetLayout(handle, layout_.get());
}

std::span<const HX_FLASH_REGION> RegionTable::Reported() const {
    return All().first(layout_->count);
}

std::optional<uint32_t> SizeOfRegion(std::span<const HX_FLASH_REGION> regions, uint32_t code) {
    const auto found = std::find_if(regions.begin(), regions.end(),
                                    [&](const auto& region) { return IsRegion(region, code); });
    return found != regions.end() ? std::optional<uint32_t>(found->size) : std::nullopt;
}

void AskExtendedLayout(uint32_t handle) {
    const std::unique_ptr<LayoutTable> table(new (std::nothrow) LayoutTable);
    if (table != nullptr) {
        ReadTable(handle, transport::command::FlashLayoutEx, *table);
    }
}

}  // namespace flash
