// Adapters as a program sees them that knows the standard HBA API alone.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hbaapi.h"

namespace vxmgr {

// An answer of a handler: the record holds when the status is HBA_STATUS_OK.
template <typename Row>
struct HbaAnswer {
    HBA_STATUS status = HBA_STATUS_ERROR;
    Row record{};

    bool Holds() const { return status == HBA_STATUS_OK; }
};

struct HbaAdapter {
    HBA_UINT32 index = 0;
    std::optional<uint32_t> managedPort;  // index of the port as the management API has it
    HBA_STATUS named = HBA_STATUS_OK;     // of the question for the name
    std::string name;
    bool opened = false;
    HbaAnswer<HBA_ADAPTERATTRIBUTES> attributes;
    HbaAnswer<HBA_PORTATTRIBUTES> port;
    // With everything that can be asked.
    HbaAnswer<HBA_PORTSTATISTICS> statistics;
    HbaAnswer<HBA_MGMTINFO> management;
    std::vector<HbaAnswer<HBA_PORTATTRIBUTES>> discovered;
    HBA_STATUS discoveredEnd = HBA_STATUS_OK;  // a failure that ended the list early
    HbaAnswer<std::vector<HBA_FCPSCSIENTRY>> mapping;

    // Whether it answers at all.
    bool Failed() const { return !opened || !attributes.Holds() || !port.Holds(); }
    // The first status that says what is wrong; nothing for an adapter that does not open, which
    // gives none.
    std::optional<HBA_STATUS> Failure() const;
};

enum class HbaDepth { Attributes, Everything };

// Opens the adapter, asks, closes it.
HbaAdapter ReadHbaAdapter(const HBA_ENTRYPOINTS& api, HBA_UINT32 index, HbaDepth depth);

// The SCSI port in the device name "\\.\Scsi3:".
std::optional<uint32_t> ScsiPortOfDevice(const char* name, size_t size);

}  // namespace vxmgr
