// LUN masks of targets, named in every way that an address can.
#pragma once

#include "support/persist_fixture.h"

namespace support {

inline DESTINATIONADDRESS ByName(uint16_t type, const Name& name) {
    DESTINATIONADDRESS address = {};
    address.type = type;
    memcpy(address.address, name.data(), name.size());
    return address;
}

inline DESTINATIONADDRESS ByWords(uint16_t type, uint16_t first, uint16_t second,
                                  uint16_t lun = 0) {
    DESTINATIONADDRESS address = {};
    address.type = type;
    const uint16_t words[] = {first, second};
    memcpy(address.address, words, sizeof words);
    address.lun = lun;
    return address;
}

class PersistMasksTest : public PersistTest {
  protected:
    static HX_TARGET_ENTRY Target(uint8_t number) {
        HX_TARGET_ENTRY entry = {};
        entry.targetNumber = static_cast<uint16_t>(number * 2 + 1);
        entry.bus = 1;
        entry.target = number;
        entry.portId[0] = number;
        entry.portId[1] = 0xAA;
        entry.portId[2] = 0xBB;
        SetNames(entry, NameOf(number), NameOf(number, 0x60));
        return entry;
    }
    // Every way to name target `number`.
    static std::vector<DESTINATIONADDRESS> AddressesOf(uint8_t number) {
        return {ByName(1, NameOf(number)), ByName(2, NameOf(number, 0x60)),
                ByWords(3, static_cast<uint16_t>(0xAA00 | number), 0xBB), ByWords(4, 1, number, 7)};
    }
    // Names that almost fit, and an unknown type.
    static std::vector<DESTINATIONADDRESS> Strangers() {
        return {ByName(1, NameOf(1, 0x60)), ByName(2, NameOf(1)),  ByName(1, Name{}),
                ByWords(3, 0xAA01, 0xBC),   ByWords(4, 1, 0x0101), ByWords(4, 0x0101, 1),
                ByWords(4, 0, 1),           ByName(0, NameOf(1)),  ByName(5, NameOf(1))};
    }

    HX_STATUS Get(const DESTINATIONADDRESS& address, uint32_t fromRegistry, Bytes& mask) {
        GuardedBuffer buffer(mask.size());
        const HX_STATUS status = HXGetHbaTargetLunMaskFC(
            handle, 0, &address, fromRegistry, buffer.Data(), static_cast<uint32_t>(mask.size()));
        mask.assign(buffer.Data(), buffer.Data() + mask.size());
        return status;
    }
    HX_STATUS Get(const HX_BUS_TARGET_LUN& address, uint32_t fromRegistry, Bytes& mask) {
        GuardedBuffer buffer(mask.size());
        const HX_STATUS status = HXGetHbaTargetLunMask(
            handle, 0, &address, fromRegistry, buffer.Data(), static_cast<uint32_t>(mask.size()));
        mask.assign(buffer.Data(), buffer.Data() + mask.size());
        return status;
    }
    template <typename Address>
    HX_STATUS Check(const Address& address, uint32_t fromRegistry) {
        Bytes mask(256);
        return Get(address, fromRegistry, mask);
    }
    HX_STATUS Update(const DESTINATIONADDRESS& address, int32_t toRegistry, const Bytes& mask) {
        return HXUpdateHbaTargetLunMaskFC(handle, 0, &address, toRegistry, mask.data(),
                                          static_cast<uint32_t>(mask.size()));
    }
    HX_STATUS Update(const HX_BUS_TARGET_LUN& address, int32_t toRegistry, const Bytes& mask) {
        return HXUpdateHbaTargetLunMask(handle, 0, &address, toRegistry, mask.data(),
                                        static_cast<uint32_t>(mask.size()));
    }
};

}  // namespace support
