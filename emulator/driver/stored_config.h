// The bindings and LUN masks that the library left in the registry for each port.
#pragma once

#include "model/model.h"

namespace driver {

// Reads the store of every port; to be called before the ports take requests.
void ApplyStores(vxemu::Model& model);

}  // namespace driver
