// An NVRAM block as a whole: its kind, and whether it is sound. Free of platform headers.
#pragma once

#include "formats/nvram_block.h"
#include "hxflash.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

using formats::BlockBytes;
using formats::ChecksumHolds;
using formats::HasSignature;
using formats::MakeChecksum;
using NvramKind = formats::BlockKind;

static_assert(BlockBytes(NvramKind::Classic) == HX_NVRAM_CLASSIC_BYTES);
static_assert(BlockBytes(NvramKind::Extended) == HX_NVRAM_EXTENDED_BYTES);

const char* NameOf(NvramKind kind);  // "classic"

bool IsBlank(Bytes block);  // never written: erased, or zeros

inline bool IsSound(NvramKind kind, Bytes block) {
    return HasSignature(block) && ChecksumHolds(kind, block);
}

}  // namespace vxmgr
