// A port's bound targets as a document. It holds every byte of the block: what is zero and has no
// name of its own is left out.
#pragma once

#include <string>

#include "hxmgtapi.h"
#include "vxmgr/bindings/store_document.h"

namespace vxmgr {

std::string BindDocument(const DocumentPort& port, const HX_TARGET_DATA& block);

// Throws DocumentError.
DocumentPort ReadBindDocument(std::string_view text, HX_TARGET_DATA* block);

}  // namespace vxmgr
