// The remote ports whose traffic is authenticated or encrypted.
#include "frame/record_list.h"
#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/paged_list.h"
#include "statistics/query.h"

namespace statistics {

// No page tells the total: the list ends with a page that is not full.
HX_STATUS GetSecurePorts(uint32_t handle, HX_SECURE_PORT* ports, uint32_t* count) {
    if (const HX_STATUS status = Check(handle, needs::kSecurePorts,
                                       frame::CallerList<HX_SECURE_PORT>::Accepts(ports, count));
        status != HXMGT_SUCCESS) {
        return status;
    }
    const std::unique_ptr<SecurePortReply> page = NewPage<SecurePortReply>();
    if (page == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    PagedList<HX_SECURE_PORT> out(ports, count);
    SecurePortRequest request{};
    for (;;) {
        size_t carried = 0;
        if (const HX_STATUS status = FetchPage(handle, transport::command::SecurePortInfo,
                                               BytesOf(request), *page, carried);
            status != HXMGT_SUCCESS) {
            return status;
        }
        const size_t named = page->count;
        const std::span entries = std::span(page->entries).first(std::min(named, carried));
        if (entries.size() > kMostRecords - out.Found() || (entries.empty() && named != 0)) {
            return HXMGT_DATA_UNDERRUN;
        }
        out.Add(entries);
        // A page that names more than it carries is not the end either.
        if (named < std::size(page->entries) && named == entries.size()) {
            return out.Close(out.Found());
        }
        request = {static_cast<uint8_t>(SecurePortOperation::Behind), entries.back()};
    }
}

}  // namespace statistics
