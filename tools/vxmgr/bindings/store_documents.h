// The documents that stored bindings and LUN masks are exported to and imported from.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/document.h"

namespace vxmgr {

// A port's bound targets. The document holds every byte of the block: what is zero and has no name
// of its own is left out. Reading throws DocumentError.
Shape BindDocumentShape();
std::string BindDocument(const DocumentPort& port, const HX_TARGET_DATA& block);
DocumentPort ReadBindDocument(std::string_view text, HX_TARGET_DATA* block);

// A port's LUN masks, with every byte that is stored. Masks are ranges of LUNs; the other bits of
// the LUN bytes come as runs of equal bytes.
Shape LunMaskDocumentShape();
std::string LunMaskDocument(const DocumentPort& port, const HX_LUN_DATA& block);
DocumentPort ReadLunMaskDocument(std::string_view text, HX_LUN_DATA* block);

}  // namespace vxmgr
