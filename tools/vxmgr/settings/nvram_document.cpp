#include "vxmgr/settings/nvram_document.h"

#include "common/text.h"

namespace vxmgr {
namespace {

constexpr char kKind[] = "vxmgr.nvram";
constexpr size_t kLargestBlock = 65536;

void TakeVariable(const DocumentObject& row, const NvramMap& map, std::vector<uint8_t>& block,
                  std::vector<bool>& taken) {
    row.Close({"number", "name", "value"});
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

std::string NvramDocumentText(const NvramOrigin& origin, const NvramMap& map, Bytes block) {
    DocumentJson document = DocumentHead(kKind, origin.port);
    document["chip"] = tools::Hex(origin.chip, 4);
    document["kind"] = NameOf(map.kind);
    document["size"] = block.size();
    DocumentJson rows = DocumentJson::array();
    for (const NvramVariable& variable : map.variables) {
        if (variable.field) {
            rows.push_back({{"number", variable.number},
                            {"name", variable.name},
                            {"value", ValueOf(block, variable)}});
        }
    }
    document["variables"] = std::move(rows);
    document["block"] = HexDigits(block);
    return DocumentText(document);
}

NvramDocument ReadNvramDocument(std::string_view text, const NvramMap& map) {
    const DocumentJson json = ParseDocument(text);
    const DocumentObject document(json, "the document");
    NvramDocument result;
    result.origin.port = CheckDocumentHead(document, kKind);
    document.Close({"document", "version", "port", "chip", "kind", "size", "variables", "block"});
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
    size_t index = 0;
    for (const DocumentJson& row : document.Array("variables")) {
        TakeVariable(DocumentObject(row, "variables[" + std::to_string(index++) + "]"), map,
                     result.block, taken);
    }
    MakeChecksum(map.kind, result.block);
    return result;
}

}  // namespace vxmgr
