// One request at a port: the data that came, and the reply being made. Both lie in the same place
// of the caller's buffer, so a handler reads what it needs before it replies.
#pragma once

#include <cstdint>
#include <cstring>

#include "model/faults.h"
#include "model/port.h"
#include "transport/ext_ioctl.h"

namespace vxemu {

class Exchange {
  public:
    Exchange(Port& port, uint8_t* data, uint32_t inputLength, uint32_t room)
        : port_(port), data_(data), inputLength_(inputLength), room_(room) {}

    Port& GetPort() const { return port_; }

    // The envelope of an extended request, as it came; empty with a plain one.
    const transport::ExtIoctl& Ext() const { return *ext_; }
    void SetExt(const transport::ExtIoctl& ext) { ext_ = &ext; }

    uint32_t InputLength() const { return inputLength_; }

    // Room for the reply, as asked for and as the buffer has it.
    uint32_t Room() const { return room_; }

    // Length of the whole reply, whether or not it fits.
    uint32_t ReplyLength() const { return replyLength_; }

    // Takes a record from the start of the request data; false when the data is shorter.
    template <typename Record>
    bool Read(Record& record) const {
        if (inputLength_ < sizeof record) {
            return false;
        }
        std::memcpy(&record, data_, sizeof record);
        return true;
    }

    // The reply is this record; of one that does not fit, the beginning is kept.
    template <typename Record>
    void Reply(const Record& record) {
        StartReply(sizeof record);
        Put(0, &record, sizeof record);
    }

    // A reply of length bytes, all zero, to be filled with Put.
    void StartReply(uint32_t length) {
        replyLength_ = length;
        std::memset(data_, 0, length < room_ ? length : room_);
    }

    void Put(uint32_t offset, const void* bytes, uint32_t length) {
        if (offset < room_) {
            std::memcpy(data_ + offset, bytes, length < room_ - offset ? length : room_ - offset);
        }
    }

    // The request's own bytes, which become the reply's: for requests that carry bulk data. Those
    // of the request end at InputLength(), those of the reply at Room().
    uint8_t* Bytes() const { return data_; }

    // The reply is what stands in Bytes().
    void KeepReply(uint32_t length) { replyLength_ = length; }

    bool Fits() const { return replyLength_ <= room_; }

    // Goes with driver status 11 (mailbox completion code) and 15 (SCSI status).
    uint32_t Detail() const { return detail_; }
    void SetDetail(uint32_t detail) { detail_ = detail; }

    // What goes wrong with the request, for those that fail in a way of their own.
    bool Meets(FaultKind fault) const { return fault_ == fault; }
    void SetFault(FaultKind fault) { fault_ = fault; }

    // Where in something larger the reply begins.
    uint32_t Place() const { return place_; }
    void SetPlace(uint32_t place) { place_ = place; }

  private:
    static constexpr transport::ExtIoctl kNoExt = {};

    Port& port_;
    uint8_t* data_;
    uint32_t inputLength_;
    uint32_t room_;
    uint32_t replyLength_ = 0;
    uint32_t detail_ = 0;
    uint32_t place_ = 0;
    FaultKind fault_ = FaultKind::None;
    const transport::ExtIoctl* ext_ = &kNoExt;
};

}  // namespace vxemu
