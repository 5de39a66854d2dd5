// The document of a port's NVRAM: JSON with every variable and the block itself. A document that
// nobody touched gives the very bytes back. Free of platform headers.
#pragma once

#include "vxmgr/app/document.h"
#include "vxmgr/settings/nvram_fields.h"

namespace vxmgr {

struct NvramOrigin {
    DocumentPort port;
    uint16_t chip = 0;  // PCI device ID
};

Shape NvramDocumentShape();
std::string NvramDocumentText(const NvramOrigin& origin, const NvramMap& map, Bytes block);

struct NvramDocument {
    NvramOrigin origin;
    std::vector<uint8_t> block;  // with the variables as the document has them, and its checksum
};

// Throws DocumentError: unknown keys or variables, values out of range, another kind of block, one
// whose checksum is wrong, or a change of a variable that cannot be set.
NvramDocument ReadNvramDocument(std::string_view text, const NvramMap& map);

inline bool LooksLikeDocument(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '{';
}

}  // namespace vxmgr
