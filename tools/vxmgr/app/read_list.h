// Lists of the library, whole.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "hxmgtapi.h"

namespace vxmgr {

// ask(records, count): one of the library's list functions. A list that grows meanwhile is asked
// for again, a few times.
template <class Record, class Ask>
HX_STATUS ReadList(Ask ask, std::vector<Record>* list) {
    constexpr int kTries = 4;
    uint32_t count = 64;
    HX_STATUS status = HXMGT_BUFFER_TOO_SMALL;
    for (int i = 0; i < kTries && status == HXMGT_BUFFER_TOO_SMALL; ++i) {
        list->assign(count, Record{});
        status = ask(list->data(), &count);
    }
    list->resize(status == HXMGT_SUCCESS ? std::min<size_t>(count, list->size()) : 0);
    return status;
}

}  // namespace vxmgr
