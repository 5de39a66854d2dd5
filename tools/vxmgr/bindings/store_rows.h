// The "targets" of a document: the rows of a stored block by their slots. Rows of zeros are left
// out; free rows with something in them are marked as free, so that no slip of the pen makes one.
#pragma once

#include <set>

#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/bindings/store_document.h"

namespace vxmgr {

template <class Row>
DocumentJson RowHead(size_t slot, const Row& row) {
    DocumentJson json;
    json["slot"] = slot;
    json["target_wwn"] = tools::Wwn::Of(row.portName).Digits();
    json["node_wwn"] = tools::Wwn::Of(row.nodeName).Digits();
    if (IsFree(row)) {
        json["free"] = true;
    }
    return json;
}

// jsonOf(slot, row) makes an object of a row.
template <class Block, class JsonOf>
void PutRows(DocumentJson& document, const Block& block, JsonOf jsonOf) {
    DocumentJson& rows = document["targets"] = DocumentJson::array();
    for (size_t slot = 0; slot < HX_MAX_TARGETS; ++slot) {
        if (!IsNothing(SlotsOf(block)[slot])) {
            rows.push_back(jsonOf(slot, SlotsOf(block)[slot]));
        }
    }
}

// Fills the slots of the block, of which the document may use so many; read(object, row) reads what
// follows the head of a row. No slot and no target comes twice.
template <class Block, class Read>
void ReadRows(const DocumentObject& document, Block& block, size_t slots, Read read) {
    std::set<uint64_t> usedSlots;
    std::set<std::string> usedNames;
    size_t position = 0;
    for (const DocumentJson& json : document.Array("targets")) {
        const DocumentObject object(json, "targets[" + std::to_string(position++) + "]");
        const uint64_t slot = object.Number("slot", HX_MAX_TARGETS - 1);
        if (slot >= slots) {
            object.Fail("slot", std::to_string(slot) + " is beyond the count");
        }
        if (!usedSlots.insert(slot).second) {
            object.Fail("slot", std::to_string(slot) + " stands twice");
        }
        const tools::Wwn portName = object.Name("target_wwn");
        const tools::Wwn nodeName = object.Name("node_wwn");
        if (nodeName.IsZero() != object.Flag("free")) {
            object.Fail("node_wwn",
                        "is zero in free rows, which say \"free\": true, and in no other");
        }
        const bool named = !nodeName.IsZero() && !portName.IsZero();
        if (named && !usedNames.insert(portName.Digits()).second) {
            object.Fail("target_wwn", portName.Digits() + " stands twice");
        }
        auto& row = SlotsOf(block)[static_cast<size_t>(slot)];
        SetNames(row, nodeName, portName);
        read(object, row);
    }
}

}  // namespace vxmgr
