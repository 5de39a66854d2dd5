// The document of a stored block, from one table for both ways: what each member of the block and
// of its rows is called, how it is written and how it is read. Rows are named by their slots. Rows
// of zeros are left out; free rows with something in them are marked as free, so that no slip of
// the pen makes one.
#pragma once

#include <set>

#include "common/json_document.h"
#include "vxmgr/app/document_fields.h"
#include "vxmgr/bindings/store_blocks.h"

namespace vxmgr {

// Reserved bytes: the key is left out when they are all zero.
template <class Record, class Member>
DocumentField<Record> BytesField(const char* key, Member Record::*member) {
    static const std::string kAbout = std::to_string(sizeof(Member)) +
                                      " reserved bytes in hexadecimal digits; left out when zero";
    const auto digits = [member](const Record& record) {
        return IsNothing(record.*member) ? "" : HexDigits(BytesOf(record.*member));
    };
    return {{key, "", kText.OrAbsent(), digits, kAbout.c_str()},
            [=](const DocumentObject& object, Record& record) {
                object.Bytes(key, {reinterpret_cast<uint8_t*>(&(record.*member)), sizeof(Member)});
            }};
}

template <class Block>
class StoredDocument {
  public:
    using Row = std::remove_cvref_t<decltype(SlotsOf(std::declval<Block&>()).front())>;

    // usable: how many slots a document may fill, once the members of the block are read.
    StoredDocument(DocumentKind kind, DocumentFields<Block> block, DocumentFields<Row> row,
                   size_t (*usable)(const Block& block))
        : kind_(kind),
          blockFields_(std::move(block)),
          rowFields_(std::move(row)),
          usable_(usable),
          head_(DocumentHeadFields(kind)),
          block_(WrittenFields(blockFields_)),
          row_(WrittenFields(rowFields_)),
          slot_{
              {"slot", "", kInteger, &Slot::number, "place in the stored block, from 0"},
              {"target_wwn", "", kText,
               [](const Slot& slot) { return Wwn::Of(slot.row->portName).Digits(); },
               "port name, 16 hexadecimal digits"},
              {"node_wwn", "", kText,
               [](const Slot& slot) { return Wwn::Of(slot.row->nodeName).Digits(); },
               "node name; zeros mark a free row"},
              {"free", "", kFlag.OrAbsent(),
               [](const Slot& slot) {
                   return IsFree(*slot.row) ? std::optional(true) : std::nullopt;
               },
               "true with every node name of zeros, and with no other"},
              {row_, &Slot::row},
          },
          whole_{
              {head_, &Source::port},
              {block_, &Source::block},
              {"targets", "", slot_, UsedSlots},
          } {}
    StoredDocument(const StoredDocument&) = delete;
    StoredDocument& operator=(const StoredDocument&) = delete;

    tools::Shape Shape() const { return whole_.ShapeOfAll(); }

    std::string Write(const DocumentPort& port, const Block& block) const {
        return RecordDocument(whole_.Make({&port, &block}));
    }

    // Throws DocumentError. No slot and no target comes twice.
    DocumentPort Read(std::string_view text, Block* block) const {
        const DocumentObject document(text);
        DocumentPort port = ReadDocumentHead(document, kind_);
        document.Close(whole_.ShapeOfAll());
        std::memset(block, 0, sizeof *block);
        for (const DocumentField<Block>& field : blockFields_) {
            field.read(document, *block);
        }
        std::set<uint64_t> usedSlots;
        std::set<std::string> usedNames;
        const tools::Shape known = slot_.ShapeOfAll();
        for (const DocumentObject& object : document.Objects("targets")) {
            object.Close(known);
            const uint64_t slot = object.Number("slot", HX_MAX_TARGETS - 1);
            if (slot >= usable_(*block)) {
                object.Fail("slot", std::to_string(slot) + " is beyond the count");
            }
            if (!usedSlots.insert(slot).second) {
                object.Fail("slot", std::to_string(slot) + " stands twice");
            }
            Row& row = SlotsOf(*block)[static_cast<size_t>(slot)];
            const Wwn portName = ReadNames(object, row);
            if (!IsFree(row) && !portName.IsZero() && !usedNames.insert(portName.Digits()).second) {
                object.Fail("target_wwn", portName.Digits() + " stands twice");
            }
            for (const DocumentField<Row>& field : rowFields_) {
                field.read(object, row);
            }
        }
        return port;
    }

  private:
    struct Slot {
        size_t number;
        const Row* row;
    };
    struct Source {
        const DocumentPort* port;
        const Block* block;
    };

    static std::vector<Slot> UsedSlots(const Source& source) {
        std::vector<Slot> used;
        for (const Row& row : SlotsOf(*source.block)) {
            if (!IsNothing(row)) {
                used.push_back({static_cast<size_t>(&row - SlotsOf(*source.block).data()), &row});
            }
        }
        return used;
    }

    static Wwn ReadNames(const DocumentObject& object, Row& row) {
        const Wwn portName = object.Name("target_wwn");
        const Wwn nodeName = object.Name("node_wwn");
        if (nodeName.IsZero() != object.Flag("free")) {
            object.Fail("node_wwn",
                        "is zero in free rows, which say \"free\": true, and in no other");
        }
        SetNames(row, nodeName, portName);
        return portName;
    }

    const DocumentKind kind_;
    const DocumentFields<Block> blockFields_;
    const DocumentFields<Row> rowFields_;
    size_t (*const usable_)(const Block& block);
    const Fields<DocumentPort> head_;
    const Fields<Block> block_;
    const Fields<Row> row_;
    const Fields<Slot> slot_;
    const Fields<Source> whole_;
};

}  // namespace vxmgr
