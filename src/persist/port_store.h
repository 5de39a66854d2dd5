// The stored target and LUN data of one adapter port.
#pragma once

#include <cstdint>

#include "frame/names.h"
#include "hxmgtapi.h"
#include "hxpersist.h"
#include "persist/port_values.h"

namespace persist {

class PortStore {
  public:
    PortStore(Layout layout, const char* service, const char* port);

    // The store of the port behind an open handle, handed to use(const PortStore&) -> HX_STATUS.
    template <class Use>
    static HX_STATUS With(uint32_t handle, Use use) {
        Place place{};
        const HX_STATUS status = Find(handle, place);
        return status == HXMGT_SUCCESS ? use(PortStore(place.layout, place.service, place.port))
                                       : status;
    }

    // After a failed read the block is as it was.
    HX_STATUS ReadTargets(HX_TARGET_DATA& block) const;
    HX_STATUS WriteTargets(const HX_TARGET_DATA& block) const;
    HX_STATUS ReadLuns(HX_LUN_DATA& block) const;
    HX_STATUS WriteLuns(const HX_LUN_DATA& block) const;

  private:
    struct Place {
        Layout layout;
        char service[256];
        frame::WwnText port;
    };
    static HX_STATUS Find(uint32_t handle, Place& place);

    HX_STATUS WriteLunsAsVersion1(const HX_LUN_DATA& block) const;

    // In the value-name layout the port stands in two keys: the first is read, both are written.
    PortValues values_;
    PortValues second_;
};

}  // namespace persist
