/* The standard API's header alone, in C. */
#include "hbaapi.h"

#include <stddef.h>

_Static_assert(sizeof(HBA_ADAPTERATTRIBUTES) == 2192, "HBA_ADAPTERATTRIBUTES");
_Static_assert(sizeof(HBA_PORTATTRIBUTES) == 632, "HBA_PORTATTRIBUTES");
_Static_assert(sizeof(HBA_FCPTARGETMAPPING) == 312, "HBA_FCPTARGETMAPPING");
_Static_assert(sizeof(HBA_FCPBINDING) == 320, "HBA_FCPBINDING");
_Static_assert(offsetof(HBA_FCPTARGETMAPPING, entry) == 8, "HBA_FCPTARGETMAPPING.entry");
_Static_assert(offsetof(HBA_ENTRYPOINTS, ResetStatisticsHandler) == 14 * sizeof(void*), "slot 14");

HBA_UINT32 StandardVersionSeenFromC(void) {
    HBA_ENTRYPOINTS api;
    HBA_RegisterLibrary(&api);
    return api.GetVersionHandler();
}
HBA_UINT32 HandlersSeenFromC(void) {
    return sizeof(HBA_ENTRYPOINTS) / sizeof(void*);
}
