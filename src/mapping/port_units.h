// The logical units behind an open handle's port that the system may have devices of.
#pragma once

#include <cstdint>

#include "frame/record_list.h"
#include "mapping/unit_list.h"

namespace mapping {

class PortUnits {
  public:
    // Asks the port. False when it does not tell, as some drivers do not.
    bool Fetch(uint32_t handle);

    // Leaves those at a bus and target alone.
    void KeepAt(uint32_t bus, uint32_t target);

    // Takes the unit off the list whose device was found.
    void Found(uint32_t bus, uint32_t target, uint32_t lun);

    bool Empty() const { return units_.Records().empty(); }

  private:
    template <typename Goes>
    void Remove(Goes goes);

    frame::RecordList<ListedUnit> units_;
};

}  // namespace mapping
