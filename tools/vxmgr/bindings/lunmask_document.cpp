#include "vxmgr/bindings/lunmask_document.h"

#include <cstring>

#include "common/text.h"
#include "vxmgr/bindings/lunmask_luns.h"
#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/bindings/store_rows.h"

namespace vxmgr {
namespace {

constexpr char kKind[] = "vxmgr.lun_masks";
constexpr uint8_t kOtherBits = static_cast<uint8_t>(~HX_LUN_MASKED);

// Runs of LUNs with the same other bits; those without any are left out.
DocumentJson OtherBits(const HX_LUN_RECORD& record) {
    DocumentJson runs = DocumentJson::array();
    for (uint32_t first = 0; first < HX_MAX_LUNS;) {
        const uint8_t bits = record.luns[first] & kOtherBits;
        uint32_t last = first;
        while (last + 1 < HX_MAX_LUNS && (record.luns[last + 1] & kOtherBits) == bits) {
            ++last;
        }
        if (bits != 0) {
            runs.push_back({{"luns", RangeText({first, last})}, {"bits", tools::Hex(bits, 2)}});
        }
        first = last + 1;
    }
    return runs;
}

DocumentJson JsonOf(size_t slot, const HX_LUN_RECORD& record) {
    DocumentJson row = RowHead(slot, record);
    row["masked"] = LunsText(MaskedOf(record));
    if (DocumentJson runs = OtherBits(record); !runs.empty()) {
        row["other_bits"] = std::move(runs);
    }
    PutBytes(row, "reserved16", record.reserved16);
    return row;
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

void ReadRow(const DocumentObject& row, HX_LUN_RECORD& record) {
    row.Close({"slot", "target_wwn", "node_wwn", "free", "masked", "other_bits", "reserved16"});
    SetMasked(ReadLuns(row, "masked"), record);
    row.Bytes("reserved16", record.reserved16);
    if (!row.Has("other_bits")) {
        return;
    }
    LunSet seen;
    for (const DocumentJson& json : row.Array("other_bits")) {
        const DocumentObject run(json, "a member of other_bits");
        run.Close({"luns", "bits"});
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

}  // namespace

std::string LunMaskDocument(const DocumentPort& port, const HX_LUN_DATA& block) {
    DocumentJson document = DocumentHead(kKind, port);
    document["format"] = block.version;
    document["count"] = block.count;
    PutBytes(document, "reserved4", block.reserved4);
    PutRows(document, block, JsonOf);
    return DocumentText(document);
}

DocumentPort ReadLunMaskDocument(std::string_view text, HX_LUN_DATA* block) {
    const DocumentJson json = ParseDocument(text);
    const DocumentObject document(json, "the document");
    const DocumentPort port = CheckDocumentHead(document, kKind);
    document.Close({"document", "version", "port", "format", "count", "reserved4", "targets"});
    std::memset(block, 0, sizeof *block);
    block->version = static_cast<uint16_t>(document.Number("format", UINT16_MAX));
    block->count = static_cast<uint16_t>(document.Number("count", HX_MAX_TARGETS));
    document.Bytes("reserved4", block->reserved4);
    // Only the rows that are counted are stored.
    ReadRows(document, *block, block->count, ReadRow);
    return port;
}

}  // namespace vxmgr
