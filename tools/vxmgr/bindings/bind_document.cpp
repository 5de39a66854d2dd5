#include "vxmgr/bindings/store_documents.h"

#include "vxmgr/bindings/store_rows.h"

namespace vxmgr {
namespace {

constexpr const char* kBindingsKind[] = {"vxmgr.bindings"};

const StoredDocument<HX_TARGET_DATA>& BindingsDocument() {
    using Block = HX_TARGET_DATA;
    using Entry = HX_TARGET_ENTRY;
    static const StoredDocument<Block> kDocument(
        kBindingsKind,
        {
            NumberField("header", &Block::header, "first word of the stored block"),
            NumberField("count", &Block::count, "rows in use, free ones among them: 0 to 256",
                        HX_MAX_TARGETS),
            BytesField("reserved4", &Block::reserved4),
        },
        {
            {{"port_id", "", kText,
              [](const Entry& entry) { return Hex(PortIdOf(entry.portId), 6); }, "0xDDAAPP"},
             [](const DocumentObject& object, Entry& entry) {
                 SetPortId(static_cast<uint32_t>(object.Hex("port_id", 0xFFFFFF)), entry.portId);
             }},
            NumberField("bus", &Entry::bus),
            NumberField("target", &Entry::target, "target ID"),
            NumberField("target_number", &Entry::targetNumber),
            {{"flags", "", kText, [](const Entry& entry) { return Hex(entry.bindingFlags, 2); },
              "binding flags"},
             [](const DocumentObject& object, Entry& entry) {
                 entry.bindingFlags = static_cast<uint8_t>(object.Hex("flags", UINT8_MAX));
             }},
            NumberField("lun_base", &Entry::lunBase),
            BytesField("reserved4", &Entry::reserved4),
            BytesField("reserved9", &Entry::reserved9),
            BytesField("reserved15", &Entry::reserved15),
        },
        [](const Block&) { return size_t{HX_MAX_TARGETS}; });
    return kDocument;
}

}  // namespace

Shape BindDocumentShape() {
    return BindingsDocument().Shape();
}

std::string BindDocument(const DocumentPort& port, const HX_TARGET_DATA& block) {
    return BindingsDocument().Write(port, block);
}

DocumentPort ReadBindDocument(std::string_view text, HX_TARGET_DATA* block) {
    return BindingsDocument().Read(text, block);
}

}  // namespace vxmgr
