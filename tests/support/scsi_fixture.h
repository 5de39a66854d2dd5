// SCSI commands through one adapter whose driver is scripted.
#pragma once

#include "support/library_fixture.h"

namespace support {

inline constexpr size_t kHead = 352;  // what precedes the data of a request
inline constexpr size_t kSense = 96;

inline HX_SCSI_ADDRESS Address(uint16_t type, uint16_t lun = 0) {
    return {type, {1, 2, 3, 4, 5, 6, 7, 8}, lun};
}

class ScsiPassThruTest : public OneAdapterTest {
  protected:
    struct Call {
        HX_SCSI_ADDRESS target = Address(2);
        Bytes cdb = Bytes(6);
        const void* dataOut = nullptr;
        uint32_t dataOutLength = 0;
        void* dataIn = nullptr;
        uint32_t dataInLength = 0;
        uint8_t* sense = nullptr;
        uint32_t senseLength = 0;
    };
    HX_STATUS Send(const Call& call) {
        return HXSendScsiPassThruFC(handle, &call.target, call.cdb.data(),
                                    static_cast<uint32_t>(call.cdb.size()), call.dataOut,
                                    call.dataOutLength, call.dataIn, call.dataInLength, call.sense,
                                    call.senseLength);
    }
    // Sense data that counts from 1, then length bytes of data that count from 101.
    static Bytes ReplyWith(uint32_t length) {
        Bytes reply(kHead + length);
        for (size_t i = 0; i < 256; ++i) {
            reply[kSense + i] = static_cast<uint8_t>(1 + i);
        }
        for (size_t i = 0; i < length; ++i) {
            reply[kHead + i] = static_cast<uint8_t>(101 + i);
        }
        return reply;
    }
    Bytes Head() {
        const Bytes data = port->Last().Data();
        return Bytes(data.begin(), data.begin() + kHead);
    }
};

}  // namespace support
