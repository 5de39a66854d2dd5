// Ports and adapters as records: the same keys in lists and in detail.
#pragma once

#include "common/record.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

// A row of `port list`; in an adapter's own list the table need not repeat the adapter.
tools::Record PortSummary(const Port& port, bool withAdapter);
tools::Record PortDetail(const Port& port);

tools::Record AdapterSummary(const Adapter& adapter);
tools::Record AdapterDetail(const Adapter& adapter);

}  // namespace vxmgr
