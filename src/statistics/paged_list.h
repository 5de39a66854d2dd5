// Lists that the driver gives page by page. Pages lie: only entries that came count, and totals are
// bounded.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>

#include "hxtypes.h"
#include "transport/requests.h"

namespace statistics {

inline constexpr uint32_t kMostRecords = 65536;

// The caller's records: as many as fit are written. *count changes with Close alone, so that it is
// as it was after a failure.
template <class Record>
class PagedList {
  public:
    PagedList(Record* records, uint32_t* count) : records_(records), count_(count), room_(*count) {}

    void Add(std::span<const Record> page) {
        if (found_ < room_) {
            std::copy_n(page.begin(), std::min<size_t>(page.size(), room_ - found_),
                        records_ + found_);
        }
        found_ += static_cast<uint32_t>(page.size());
    }
    uint32_t Found() const { return found_; }
    bool IsFull() const { return found_ >= room_; }
    HX_STATUS Close(uint32_t total) {
        *count_ = total;
        return total <= room_ ? HXMGT_SUCCESS : HXMGT_BUFFER_TOO_SMALL;
    }

  private:
    Record* records_;
    uint32_t* count_;
    uint32_t room_;
    uint32_t found_ = 0;
};

// Room for a page; empty when memory ran out.
template <class Reply>
std::unique_ptr<Reply> NewPage() {
    return std::unique_ptr<Reply>(new (std::nothrow) Reply);
}

// Asks for a page. carried: how many entries came, whatever the page says of itself. Without its
// head a page says nothing at all.
template <class Reply>
HX_STATUS FetchPage(uint32_t handle, transport::Command command, std::span<const std::byte> request,
                    Reply& reply, size_t& carried) {
    uint32_t returned = 0;
    const HX_STATUS status = transport::SendExtended(
        handle, command.code, command.subCode, request.data(),
        static_cast<uint32_t>(request.size()), &reply, sizeof reply, &returned);
    if (status != HXMGT_SUCCESS) {
        return status == HXMGT_BUFFER_TOO_SMALL ? HXMGT_DATA_UNDERRUN : status;
    }
    if (returned < offsetof(Reply, entries)) {
        return HXMGT_DATA_UNDERRUN;
    }
    carried = (returned - offsetof(Reply, entries)) / sizeof reply.entries[0];
    return HXMGT_SUCCESS;
}

template <class Request>
std::span<const std::byte> BytesOf(const Request& request) {
    static_assert(transport::kIsRecord<Request>);
    return std::as_bytes(std::span(&request, 1));
}

// What tells one list with a total from another: its pages, the most that the total may be, and how
// many entries a page has at least that is not the last.
template <class PageReply, uint32_t Most = kMostRecords, uint32_t LeastOnPage = 1>
struct ListTraits {
    using Reply = PageReply;
    static constexpr uint32_t kMost = Most;
    static constexpr uint32_t kLeastOnPage = LeastOnPage;
    static uint32_t Total(const Reply& reply) { return reply.head.total; }
    template <class Record>
    static void Settle(Record&) {}  // makes an entry keep what its record promises
};

// Fetches a list of which each page tells the total; the latest one holds. No more pages are asked
// for than the caller has room for. page: from NewPage; holds the latest page afterwards.
template <class List, class Record>
HX_STATUS FetchList(uint32_t handle, const List& list, Record* records, uint32_t* count,
                    typename List::Reply* page) {
    if (page == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    PagedList<Record> out(records, count);
    for (;;) {
        const auto request = list.RequestFrom(out.Found());
        size_t carried = 0;
        if (const HX_STATUS status =
                FetchPage(handle, List::kCommand, BytesOf(request), *page, carried);
            status != HXMGT_SUCCESS) {
            return status;
        }
        const uint32_t total = List::Total(*page);
        if (total > List::kMost) {
            return HXMGT_DATA_UNDERRUN;
        }
        const size_t wanted = total > out.Found() ? total - out.Found() : 0;
        const size_t here = std::min<size_t>(page->head.count, carried);
        const std::span entries = std::span(page->entries).first(std::min(here, wanted));
        for (Record& entry : entries) {
            List::Settle(entry);
        }
        out.Add(entries);
        if (here >= wanted) {
            return out.Close(total);
        }
        if (here < List::kLeastOnPage) {
            return HXMGT_DATA_UNDERRUN;
        }
        if (out.IsFull()) {
            return out.Close(total);
        }
    }
}

}  // namespace statistics
