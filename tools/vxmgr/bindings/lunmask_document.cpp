#include "vxmgr/bindings/store_documents.h"

#include "vxmgr/bindings/lunmask_luns.h"
#include "vxmgr/bindings/store_rows.h"

namespace vxmgr {
namespace {

constexpr const char* kMasksKind[] = {"vxmgr.lun_masks"};
constexpr uint8_t kOtherBits = static_cast<uint8_t>(~HX_LUN_MASKED);

// LUNs one after the other with the same other bits.
struct BitRun {
    LunRange luns;
    uint8_t bits;
};

const Fields<BitRun> kBitRunFields = {
    {"luns", "", kText, [](const BitRun& run) { return RangeText(run.luns); }},
    {"bits", "", kText, [](const BitRun& run) { return Hex(run.bits, 2); }, "0x01 to 0x7f"},
};

// Those without any other bits are left out.
std::optional<std::vector<BitRun>> BitRunsOf(const HX_LUN_RECORD& record) {
    std::vector<BitRun> runs;
    for (uint32_t first = 0; first < HX_MAX_LUNS;) {
        const uint8_t bits = record.luns[first] & kOtherBits;
        uint32_t last = first;
        while (last + 1 < HX_MAX_LUNS && (record.luns[last + 1] & kOtherBits) == bits) {
            ++last;
        }
        if (bits != 0) {
            runs.push_back({{first, last}, bits});
        }
        first = last + 1;
    }
    return runs.empty() ? std::nullopt : std::optional(std::move(runs));
}

LunSet ReadLuns(const DocumentObject& object, const char* key) {
    const std::string text = object.Text(key);
    LunSet luns;
    std::string error;
    if (!text.empty() && !ParseLuns(text, &luns, &error)) {
        object.Fail(key, "holds no LUNs: " + error);
    }
    return luns;
}

void ReadBitRuns(const DocumentObject& row, HX_LUN_RECORD& record) {
    if (!row.Has("other_bits")) {
        return;
    }
    LunSet seen;
    const Shape known = kBitRunFields.ShapeOfAll();
    for (const DocumentObject& run : row.Objects("other_bits")) {
        run.Close(known);
        const LunSet luns = ReadLuns(run, "luns");
        const auto bits = static_cast<uint8_t>(run.Hex("bits", kOtherBits));
        if ((seen & luns).any()) {
            row.Fail("other_bits", "names a LUN twice");
        }
        seen |= luns;
        for (uint32_t lun = 0; lun < HX_MAX_LUNS; ++lun) {
            record.luns[lun] |= luns[lun] ? bits : uint8_t{0};
        }
    }
}

const StoredDocument<HX_LUN_DATA>& MasksDocument() {
    using Block = HX_LUN_DATA;
    using Record = HX_LUN_RECORD;
    static const StoredDocument<Block> kDocument(
        kMasksKind,
        {
            NumberField("format", &Block::version, "stored form: 1 holds LUNs 0 to 255, 2 all"),
            NumberField("count", &Block::count, "rows in use, free ones among them: 0 to 256",
                        HX_MAX_TARGETS),
            BytesField("reserved4", &Block::reserved4),
        },
        {
            {{"masked", "", kText, [](const Record& record) { return LunsText(MaskedOf(record)); },
              "LUNs as in 0-7,12; empty when none is masked"},
             [](const DocumentObject& row, Record& record) {
                 SetMasked(ReadLuns(row, "masked"), record);
             }},
            {{"other_bits", "", kBitRunFields, BitRunsOf, "",
              "the other bits of the LUN bytes; left out when they are zero"},
             ReadBitRuns},
            BytesField("reserved16", &Record::reserved16),
        },
        // Only the rows that are counted are stored.
        [](const Block& block) { return size_t{block.count}; });
    return kDocument;
}

}  // namespace

Shape LunMaskDocumentShape() {
    return MasksDocument().Shape();
}

std::string LunMaskDocument(const DocumentPort& port, const HX_LUN_DATA& block) {
    return MasksDocument().Write(port, block);
}

DocumentPort ReadLunMaskDocument(std::string_view text, HX_LUN_DATA* block) {
    return MasksDocument().Read(text, block);
}

}  // namespace vxmgr
