// The bindings and LUN masks that the library left in the registry for a port.
#pragma once

#include "model/model.h"

namespace driver {

// Reads the store of a port; to be called before it takes requests.
void ApplyStore(vxemu::Model& model, uint32_t port);

}  // namespace driver
