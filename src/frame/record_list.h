// Lists of records: the library's own, and the caller's with its room and true count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>

#include "hxtypes.h"

namespace frame {

// Records of a number that is known beforehand.
template <typename Record>
class RecordList {
  public:
    // Empties the list. False when memory ran out.
    bool Reserve(size_t room) {
        records_.reset(new (std::nothrow) Record[room]);
        room_ = records_ != nullptr ? room : 0;
        count_ = 0;
        return records_ != nullptr;
    }
    void Add(const Record& record) {
        if (count_ < room_) {
            records_[count_++] = record;
        }
    }
    void Shorten(size_t count) { count_ = count < count_ ? count : count_; }

    std::span<Record> Records() { return {records_.get(), count_}; }
    std::span<const Record> Records() const { return {records_.get(), count_}; }

  private:
    std::unique_ptr<Record[]> records_;
    size_t room_ = 0;
    size_t count_ = 0;
};

// The caller's records: as many as fit are written, all are counted. *count is 0 until Close, so
// that nobody takes records of a query that failed.
template <typename Record>
class CallerList {
  public:
    static bool Accepts(const Record* records, const uint32_t* count) {
        return count != nullptr && (records != nullptr || *count == 0);
    }
    CallerList(Record* records, uint32_t* count) : records_(records), count_(count), room_(*count) {
        *count_ = 0;
    }
    void Add(const Record& record) {
        if (found_ < room_) {
            records_[found_] = record;
        }
        ++found_;
    }
    uint32_t Found() const { return found_; }
    HX_STATUS Close() {
        *count_ = found_;
        return found_ <= room_ ? HXMGT_SUCCESS : HXMGT_BUFFER_TOO_SMALL;
    }

  private:
    Record* records_;
    uint32_t* count_;
    uint32_t room_;
    uint32_t found_ = 0;
};

}  // namespace frame
