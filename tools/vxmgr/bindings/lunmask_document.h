// A port's LUN masks as a document. Masks are ranges of LUNs; the other bits of the LUN bytes come
// as runs of equal bytes. With these the document holds every byte that is stored.
#pragma once

#include <string>

#include "hxmgtapi.h"
#include "vxmgr/bindings/store_document.h"

namespace vxmgr {

std::string LunMaskDocument(const DocumentPort& port, const HX_LUN_DATA& block);

// Throws DocumentError.
DocumentPort ReadLunMaskDocument(std::string_view text, HX_LUN_DATA* block);

}  // namespace vxmgr
