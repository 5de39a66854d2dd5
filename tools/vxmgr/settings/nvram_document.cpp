#include "vxmgr/settings/nvram_document.h"

#include "common/json_document.h"

namespace vxmgr {
namespace {

constexpr const char* kNvramKind[] = {"vxmgr.nvram"};
constexpr size_t kLargestBlock = 65536;

struct WrittenVariable {
    const NvramVariable* variable;
    uint32_t value;
};

const Fields<WrittenVariable> kWrittenVariableFields = {
    {"number", "", kInteger, [](const WrittenVariable& row) { return row.variable->number; }},
    {"name", "", kText, [](const WrittenVariable& row) { return row.variable->name; }},
    {"value", "", kInteger, &WrittenVariable::value},
};

struct NvramSource {
    const NvramOrigin* origin;
    const NvramMap* map;
    Bytes block;

    std::vector<WrittenVariable> Variables() const {
        std::vector<WrittenVariable> rows;
        for (const NvramVariable& variable : map->variables) {
            if (variable.field) {
                rows.push_back({&variable, ValueOf(block, variable)});
            }
        }
        return rows;
    }
};

const char* const kKinds[] = {NameOf(NvramKind::Classic), NameOf(NvramKind::Extended)};
const auto kNvramHead = DocumentHeadFields(kNvramKind);
const Fields<NvramSource> kNvramDocumentFields = {
    {kNvramHead, [](const NvramSource& source) { return &source.origin->port; }},
    {"chip", "", Hexadecimal(4), [](const NvramSource& source) { return source.origin->chip; },
     "PCI device ID"},
    {"kind", "", Choice(kKinds),
     [](const NvramSource& source) { return NameOf(source.map->kind); }},
    {"size", "", kInteger, [](const NvramSource& source) { return source.block.size(); }},
    {"variables", "", kWrittenVariableFields, &NvramSource::Variables, "",
     "a value that differs from the block's is a change"},
    {"block", "", kText, [](const NvramSource& source) { return HexDigits(source.block); },
     "hexadecimal digits, with its checksum"},
};

void TakeVariable(const DocumentObject& row, const NvramMap& map, std::vector<uint8_t>& block,
                  std::vector<bool>& taken) {
    row.Close(kWrittenVariableFields.ShapeOfAll());
    const uint64_t number = row.Number("number", HX_NVRAM_VARIABLES - 1);
    const NvramVariable* variable = map.WithNumber(number);
    if (variable == nullptr || !variable->field) {
        row.Fail("number", std::to_string(number) + " is no variable of this chip");
    }
    if (const std::string name = row.Text("name"); name != variable->name) {
        row.Fail("name", "\"" + name + "\" is not that of variable " + std::to_string(number) +
                             ", \"" + variable->name + "\"");
    }
    if (taken[number]) {
        row.Fail("number", std::to_string(number) + " stands twice");
    }
    taken[number] = true;
    const auto value = static_cast<uint32_t>(row.Number("value", variable->Most()));
    if (value == ValueOf(block, *variable)) {
        return;
    }
    if (!variable->Settable()) {
        row.Fail("value", "differs from the block's, but " + variable->name + " cannot be set");
    }
    SetValue(block, *variable, value);
}

}  // namespace

Shape NvramDocumentShape() {
    return kNvramDocumentFields.ShapeOfAll();
}

std::string NvramDocumentText(const NvramOrigin& origin, const NvramMap& map, Bytes block) {
    return RecordDocument(kNvramDocumentFields.Make({&origin, &map, block}));
}

NvramDocument ReadNvramDocument(std::string_view text, const NvramMap& map) {
    const DocumentObject document(text);
    NvramDocument result;
    result.origin.port = ReadDocumentHead(document, kNvramKind);
    document.Close(kNvramDocumentFields.ShapeOfAll());
    result.origin.chip = static_cast<uint16_t>(document.Hex("chip", UINT16_MAX));
    if (const std::string kind = document.Text("kind"); kind != NameOf(map.kind)) {
        document.Fail("kind", "is \"" + kind + "\", this chip's blocks are " + NameOf(map.kind));
    }
    const uint64_t size = document.Number("size", kLargestBlock);
    if (size < BlockBytes(map.kind)) {
        document.Fail("size", std::to_string(size) + " is too small for a block");
    }
    if (!document.Has("block")) {
        document.Fail("block", "is missing");
    }
    result.block.resize(size);
    document.Bytes("block", result.block);
    if (!HasSignature(result.block)) {
        document.Fail("block", "does not begin as an NVRAM block does");
    }
    if (!ChecksumHolds(map.kind, result.block)) {
        document.Fail("block", "has a wrong checksum");
    }
    std::vector<bool> taken(HX_NVRAM_VARIABLES);
    for (const DocumentObject& row : document.Objects("variables")) {
        TakeVariable(row, map, result.block, taken);
    }
    MakeChecksum(map.kind, result.block);
    return result;
}

}  // namespace vxmgr
