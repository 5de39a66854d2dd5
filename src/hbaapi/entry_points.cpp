// The table of handlers, and the sizes that callers of the standard API rely on.
#include <cstddef>

#include "hbaapi/handlers.h"

namespace hbaapi {
namespace {

#define VX_AT(record, member, offset) static_assert(offsetof(record, member) == (offset))

static_assert(sizeof(HBA_WWN) == 8);
static_assert(sizeof(HBA_WWNTYPE) == 4);
static_assert(sizeof(HBA_HANDLE) == 4);
static_assert(sizeof(HBA_STATUS) == 4);

static_assert(sizeof(HBA_ADAPTERATTRIBUTES) == 2192 && alignof(HBA_ADAPTERATTRIBUTES) == 4);
VX_AT(HBA_ADAPTERATTRIBUTES, Manufacturer, 0);
VX_AT(HBA_ADAPTERATTRIBUTES, SerialNumber, 64);
VX_AT(HBA_ADAPTERATTRIBUTES, Model, 128);
VX_AT(HBA_ADAPTERATTRIBUTES, ModelDescription, 384);
VX_AT(HBA_ADAPTERATTRIBUTES, NodeWWN, 640);
VX_AT(HBA_ADAPTERATTRIBUTES, NodeSymbolicName, 648);
VX_AT(HBA_ADAPTERATTRIBUTES, HardwareVersion, 904);
VX_AT(HBA_ADAPTERATTRIBUTES, DriverVersion, 1160);
VX_AT(HBA_ADAPTERATTRIBUTES, OptionROMVersion, 1416);
VX_AT(HBA_ADAPTERATTRIBUTES, FirmwareVersion, 1672);
VX_AT(HBA_ADAPTERATTRIBUTES, VendorSpecificID, 1928);
VX_AT(HBA_ADAPTERATTRIBUTES, NumberOfPorts, 1932);
VX_AT(HBA_ADAPTERATTRIBUTES, DriverName, 1936);

static_assert(sizeof(HBA_PORTATTRIBUTES) == 632 && alignof(HBA_PORTATTRIBUTES) == 4);
VX_AT(HBA_PORTATTRIBUTES, NodeWWN, 0);
VX_AT(HBA_PORTATTRIBUTES, PortWWN, 8);
VX_AT(HBA_PORTATTRIBUTES, PortFcId, 16);
VX_AT(HBA_PORTATTRIBUTES, PortType, 20);
VX_AT(HBA_PORTATTRIBUTES, PortState, 24);
VX_AT(HBA_PORTATTRIBUTES, PortSupportedClassofService, 28);
VX_AT(HBA_PORTATTRIBUTES, PortSupportedFc4Types, 32);
VX_AT(HBA_PORTATTRIBUTES, PortActiveFc4Types, 64);
VX_AT(HBA_PORTATTRIBUTES, PortSymbolicName, 96);
VX_AT(HBA_PORTATTRIBUTES, OSDeviceName, 352);
VX_AT(HBA_PORTATTRIBUTES, PortSupportedSpeed, 608);
VX_AT(HBA_PORTATTRIBUTES, PortSpeed, 612);
VX_AT(HBA_PORTATTRIBUTES, PortMaxFrameSize, 616);
VX_AT(HBA_PORTATTRIBUTES, FabricName, 620);
VX_AT(HBA_PORTATTRIBUTES, NumberofDiscoveredPorts, 628);

static_assert(sizeof(HBA_PORTSTATISTICS) == 120 && alignof(HBA_PORTSTATISTICS) == 8);
VX_AT(HBA_PORTSTATISTICS, SecondsSinceLastReset, 0);
VX_AT(HBA_PORTSTATISTICS, TxFrames, 8);
VX_AT(HBA_PORTSTATISTICS, TxWords, 16);
VX_AT(HBA_PORTSTATISTICS, RxFrames, 24);
VX_AT(HBA_PORTSTATISTICS, RxWords, 32);
VX_AT(HBA_PORTSTATISTICS, LIPCount, 40);
VX_AT(HBA_PORTSTATISTICS, NOSCount, 48);
VX_AT(HBA_PORTSTATISTICS, ErrorFrames, 56);
VX_AT(HBA_PORTSTATISTICS, DumpedFrames, 64);
VX_AT(HBA_PORTSTATISTICS, LinkFailureCount, 72);
VX_AT(HBA_PORTSTATISTICS, LossOfSyncCount, 80);
VX_AT(HBA_PORTSTATISTICS, LossOfSignalCount, 88);
VX_AT(HBA_PORTSTATISTICS, PrimitiveSeqProtocolErrCount, 96);
VX_AT(HBA_PORTSTATISTICS, InvalidTxWordCount, 104);
VX_AT(HBA_PORTSTATISTICS, InvalidCRCCount, 112);

static_assert(sizeof(HBA_SCSIID) == 268 && alignof(HBA_SCSIID) == 4);
VX_AT(HBA_SCSIID, OSDeviceName, 0);
VX_AT(HBA_SCSIID, ScsiBusNumber, 256);
VX_AT(HBA_SCSIID, ScsiTargetNumber, 260);
VX_AT(HBA_SCSIID, ScsiOSLun, 264);

static_assert(sizeof(HBA_FCPID) == 32 && alignof(HBA_FCPID) == 8);
VX_AT(HBA_FCPID, FcId, 0);
VX_AT(HBA_FCPID, NodeWWN, 4);
VX_AT(HBA_FCPID, PortWWN, 12);
VX_AT(HBA_FCPID, FcpLun, 24);

static_assert(sizeof(HBA_FCPSCSIENTRY) == 304 && alignof(HBA_FCPSCSIENTRY) == 8);
VX_AT(HBA_FCPSCSIENTRY, ScsiId, 0);
VX_AT(HBA_FCPSCSIENTRY, FcpId, 272);

static_assert(sizeof(HBA_FCPTARGETMAPPING) == 312 && alignof(HBA_FCPTARGETMAPPING) == 8);
VX_AT(HBA_FCPTARGETMAPPING, NumberOfEntries, 0);
VX_AT(HBA_FCPTARGETMAPPING, entry, 8);

static_assert(sizeof(HBA_FCPBINDING) == 320 && alignof(HBA_FCPBINDING) == 8);

static_assert(sizeof(HBA_MGMTINFO) == 44 && alignof(HBA_MGMTINFO) == 4);
VX_AT(HBA_MGMTINFO, wwn, 0);
VX_AT(HBA_MGMTINFO, unittype, 8);
VX_AT(HBA_MGMTINFO, PortId, 12);
VX_AT(HBA_MGMTINFO, NumberOfAttachedNodes, 16);
VX_AT(HBA_MGMTINFO, IPVersion, 20);
VX_AT(HBA_MGMTINFO, UDPPort, 22);
VX_AT(HBA_MGMTINFO, IPAddress, 24);
VX_AT(HBA_MGMTINFO, reserved, 40);
VX_AT(HBA_MGMTINFO, TopologyDiscoveryFlags, 42);

static_assert(sizeof(HBA_EVENTINFO) == 20 && alignof(HBA_EVENTINFO) == 4);
VX_AT(HBA_EVENTINFO, EventCode, 0);
VX_AT(HBA_EVENTINFO, Event, 4);
VX_AT(HBA_EVENTINFO, Event.RSCN_EventInfo.NPortPage, 8);

#undef VX_AT

constexpr HBA_ENTRYPOINTS kEntryPoints = {
    GetApiVersion,
    StartLibrary,
    EndLibrary,
    GetNumberOfAdapters,
    GetAdapterName,
    OpenAdapter,
    CloseAdapter,
    GetAdapterAttributes,
    GetAdapterPortAttributes,
    GetPortStatistics,
    GetDiscoveredPortAttributes,
    GetPortAttributesByWwn,
    SendCtPassThru,
    RefreshInformation,
    ResetStatistics,
    GetFcpTargetMapping,
    GetFcpPersistentBinding,
    GetEventBuffer,
    SetRnidMgmtInfo,
    GetRnidMgmtInfo,
    SendRnid,
    ScsiInquiry,
    ReportLuns,
    ReadCapacity,
};
static_assert(sizeof kEntryPoints == 24 * sizeof(void*));

}  // namespace

HBA_STATUS RegisterLibrary(HBA_ENTRYPOINTS* entryPoints) {
    *entryPoints = kEntryPoints;
    return HBA_STATUS_OK;
}

}  // namespace hbaapi
