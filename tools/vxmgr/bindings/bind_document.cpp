#include "vxmgr/bindings/bind_document.h"

#include <cstring>

#include "common/text.h"
#include "vxmgr/app/port_id.h"
#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/bindings/store_rows.h"

namespace vxmgr {
namespace {

constexpr char kKind[] = "vxmgr.bindings";

DocumentJson JsonOf(size_t slot, const HX_TARGET_ENTRY& entry) {
    DocumentJson row = RowHead(slot, entry);
    row["port_id"] = tools::Hex(PortIdOf(entry.portId), 6);
    row["bus"] = entry.bus;
    row["target"] = entry.target;
    row["target_number"] = entry.targetNumber;
    row["flags"] = tools::Hex(entry.bindingFlags, 2);
    row["lun_base"] = entry.lunBase;
    PutBytes(row, "reserved4", entry.reserved4);
    PutBytes(row, "reserved9", BytesOf(entry.reserved9));
    PutBytes(row, "reserved15", BytesOf(entry.reserved15));
    return row;
}

void ReadRow(const DocumentObject& row, HX_TARGET_ENTRY& entry) {
    row.Close({"slot", "target_wwn", "node_wwn", "free", "port_id", "bus", "target",
               "target_number", "flags", "lun_base", "reserved4", "reserved9", "reserved15"});
    SetPortId(static_cast<uint32_t>(row.Hex("port_id", 0xFFFFFF)), entry.portId);
    entry.bus = static_cast<uint8_t>(row.Number("bus", UINT8_MAX));
    entry.target = static_cast<uint8_t>(row.Number("target", UINT8_MAX));
    entry.targetNumber = static_cast<uint16_t>(row.Number("target_number", UINT16_MAX));
    entry.bindingFlags = static_cast<uint8_t>(row.Hex("flags", UINT8_MAX));
    entry.lunBase = static_cast<uint16_t>(row.Number("lun_base", UINT16_MAX));
    row.Bytes("reserved4", entry.reserved4);
    row.Bytes("reserved9", {&entry.reserved9, 1});
    row.Bytes("reserved15", {&entry.reserved15, 1});
}

}  // namespace

std::string BindDocument(const DocumentPort& port, const HX_TARGET_DATA& block) {
    DocumentJson document = DocumentHead(kKind, port);
    document["header"] = block.header;
    document["count"] = block.count;
    PutBytes(document, "reserved4", block.reserved4);
    PutRows(document, block, JsonOf);
    return DocumentText(document);
}

DocumentPort ReadBindDocument(std::string_view text, HX_TARGET_DATA* block) {
    const DocumentJson json = ParseDocument(text);
    const DocumentObject document(json, "the document");
    const DocumentPort port = CheckDocumentHead(document, kKind);
    document.Close({"document", "version", "port", "header", "count", "reserved4", "targets"});
    std::memset(block, 0, sizeof *block);
    block->header = static_cast<uint16_t>(document.Number("header", UINT16_MAX));
    block->count = static_cast<uint16_t>(document.Number("count", HX_MAX_TARGETS));
    document.Bytes("reserved4", block->reserved4);
    ReadRows(document, *block, HX_MAX_TARGETS, ReadRow);
    return port;
}

}  // namespace vxmgr
