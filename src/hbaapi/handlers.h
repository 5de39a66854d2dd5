// The handlers of the standard API's table. The comments of hbaapi.h say what each does.
#pragma once

#include "hbaapi.h"

namespace hbaapi {

// Library and adapters
HBA_UINT32 GetApiVersion();
HBA_STATUS StartLibrary();
HBA_STATUS EndLibrary();
HBA_UINT32 GetNumberOfAdapters();
HBA_STATUS GetAdapterName(HBA_UINT32 index, char* name);
HBA_HANDLE OpenAdapter(char* name);
void CloseAdapter(HBA_HANDLE handle);
void RefreshInformation(HBA_HANDLE handle);

// Attributes
HBA_STATUS GetAdapterAttributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES* attributes);
HBA_STATUS GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32 portIndex,
                                    HBA_PORTATTRIBUTES* attributes);
HBA_STATUS GetDiscoveredPortAttributes(HBA_HANDLE handle, HBA_UINT32 portIndex,
                                       HBA_UINT32 discoveredPortIndex,
                                       HBA_PORTATTRIBUTES* attributes);
HBA_STATUS GetPortAttributesByWwn(HBA_HANDLE handle, HBA_WWN portWwn,
                                  HBA_PORTATTRIBUTES* attributes);

// Statistics
HBA_STATUS GetPortStatistics(HBA_HANDLE handle, HBA_UINT32 portIndex,
                             HBA_PORTSTATISTICS* statistics);
HBA_STATUS ResetStatistics(HBA_HANDLE handle, HBA_UINT32 portIndex);

// Targets
HBA_STATUS GetFcpTargetMapping(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* mapping);
HBA_STATUS GetFcpPersistentBinding(HBA_HANDLE handle, HBA_FCPBINDING* binding);

// Events
HBA_STATUS GetEventBuffer(HBA_HANDLE handle, HBA_EVENTINFO* events, HBA_UINT32* count);

// Fabric
HBA_STATUS SendCtPassThru(HBA_HANDLE handle, void* request, HBA_UINT32 requestSize, void* response,
                          HBA_UINT32 responseSize);
HBA_STATUS SetRnidMgmtInfo(HBA_HANDLE handle, HBA_MGMTINFO* info);
HBA_STATUS GetRnidMgmtInfo(HBA_HANDLE handle, HBA_MGMTINFO* info);
HBA_STATUS SendRnid(HBA_HANDLE handle, HBA_WWN wwn, HBA_WWNTYPE wwnType, void* response,
                    HBA_UINT32* responseSize);

// SCSI commands
HBA_STATUS ScsiInquiry(HBA_HANDLE handle, HBA_WWN portWwn, HBA_UINT64 fcLun, HBA_UINT8 evpd,
                       HBA_UINT32 pageCode, void* response, HBA_UINT32 responseSize, void* sense,
                       HBA_UINT32 senseSize);
HBA_STATUS ReportLuns(HBA_HANDLE handle, HBA_WWN portWwn, void* response, HBA_UINT32 responseSize,
                      void* sense, HBA_UINT32 senseSize);
HBA_STATUS ReadCapacity(HBA_HANDLE handle, HBA_WWN portWwn, HBA_UINT64 fcLun, void* response,
                        HBA_UINT32 responseSize, void* sense, HBA_UINT32 senseSize);

HBA_STATUS RegisterLibrary(HBA_ENTRYPOINTS* entryPoints);

}  // namespace hbaapi
