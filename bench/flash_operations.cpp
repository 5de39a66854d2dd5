#include "flash_operations.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>

#include "flash/flash_records.h"
#include "hxmgtapi.h"
#include "properties/chip_families.h"
#include "properties/driver_replies.h"

namespace bench {

namespace {

namespace command = transport::command;

constexpr uint32_t kSizes[] = {1u << 20, 16u << 20};

class BareRegion {
  public:
    BareRegion(const Carrier& carrier, uint16_t regionCode, bool banked)
        : banked_(banked),
          chip_(carrier, command::ChipProperties, 0, sizeof(properties::ChipReply)),
          layout_(carrier, command::FlashLayout, sizeof(flash::LayoutTable),
                  sizeof(flash::LayoutTable)),
          state_(carrier, command::SecureFlashState, sizeof(flash::SecureStateRecord),
                 sizeof(flash::SecureStateRecord)),
          extendedLayout_(carrier, command::FlashLayoutEx, sizeof(flash::LayoutTable),
                          sizeof(flash::LayoutTable)),
          read_(carrier, {command::FlashRead.code, regionCode}, sizeof(flash::ChunkRequest),
                flash::kChunkBytes),
          write_(carrier, {command::FlashWrite.code, regionCode}, flash::kChunkBytes,
                 sizeof(flash::ChunkRequest)) {
        const flash::LayoutHead head = {sizeof(flash::LayoutTable), flash::kAskedRegions};
        for (BareExtended* table : {&layout_, &extendedLayout_}) {
            memcpy(table->Input().data(), &head, sizeof head);
        }
    }

    void Read(std::vector<uint8_t>& out) {
        chip_.Send();
        layout_.Send();
        ForEachChunk(out.size(), [&](const flash::ChunkRequest& request, size_t offset) {
            memcpy(read_.Input().data(), &request, sizeof request);
            Say(read_, request);
            read_.Exchange(read_.Input().data(), out.data() + offset);
        });
    }

    void Write(const std::vector<uint8_t>& image) {
        chip_.Send();
        if (banked_) {
            state_.Send();
            extendedLayout_.Send();
        }
        chip_.Send();
        layout_.Send();
        flash::ChunkRequest reply;
        ForEachChunk(image.size(), [&](const flash::ChunkRequest& request, size_t offset) {
            Say(write_, request);
            write_.Exchange(image.data() + offset, reinterpret_cast<uint8_t*>(&reply));
        });
    }

  private:
    static void Say(BareExtended& bare, const flash::ChunkRequest& request) {
        bare.Envelope().ext.parameter = request.kib * 0x10000u + request.index;
    }
    template <typename Move>
    static void ForEachChunk(size_t size, Move move) {
        for (size_t offset = 0; offset < size; offset += flash::kChunkBytes) {
            move(flash::ChunkRequest{static_cast<uint16_t>(flash::kChunkBytes / 1024),
                                     static_cast<uint16_t>(offset / flash::kChunkBytes)},
                 offset);
        }
    }

    bool banked_;
    BareExtended chip_;
    BareExtended layout_;
    BareExtended state_;
    BareExtended extendedLayout_;
    BareExtended read_;
    BareExtended write_;
};

// Only whole operations are worth measuring.
bool Works(const std::string& what, HX_STATUS status) {
    if (status != HXMGT_SUCCESS) {
        printf("\n%s: not measured, 0x%08x (%s)\n", what.c_str(), status, HXGetErrorString(status));
    }
    return status == HXMGT_SUCCESS;
}

}  // namespace

std::vector<Result> MeasureFlash(uint32_t handle, const Carrier& carrier, uint32_t samples) {
    std::vector<Result> results;
    const auto layout = std::make_unique<HX_FLASH_LAYOUT>();
    HX_CHIP_PROPERTY chip{};
    layout->count = HX_MAX_FLASH_REGIONS;
    if (!Works("Flash layout", HXGetOptionRomLayout(handle, 0, layout.get())) ||
        !Works("Chip property", HXGetHbaDeviceChipProperty(handle, &chip))) {
        return results;
    }
    const bool banked = properties::ChipOf(chip.deviceId).Has(properties::ChipTrait::Banked);
    for (const uint32_t size : kSizes) {
        const auto end = layout->regions + layout->count;
        const auto region =
            std::find_if(layout->regions, end, [&](const auto& row) { return row.size == size; });
        const std::string name = std::to_string(size >> 10) + " KiB (" +
                                 std::to_string(size / flash::kChunkBytes) + " pieces)";
        if (region == end) {
            printf("\nFlash, %s: not measured, no region has this size\n", name.c_str());
            continue;
        }
        const auto code = static_cast<uint16_t>(region->code);
        std::vector<uint8_t> image(size);
        BareRegion bare(carrier, code, banked);
        const auto read = [&] { return HXGetOptionRomEx(handle, 0, image.data(), size, code); };
        const auto write = [&] {
            return HXUpdateOptionRomEx2(handle, 0, image.data(), size, code);
        };
        if (!Works("HXGetOptionRomEx", read()) || !Works("HXUpdateOptionRomEx2", write())) {
            continue;
        }
        results.push_back(Measure(
            {"HXGetOptionRomEx, " + name, [&] { read(); }, [&] { bare.Read(image); }}, samples));
        results.push_back(
            Measure({"HXUpdateOptionRomEx2, " + name, [&] { write(); }, [&] { bare.Write(image); }},
                    samples));
    }
    return results;
}

}  // namespace bench
