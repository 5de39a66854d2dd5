// The profile that the control tool leaves in the service's registry key.
#pragma once

#include "kernel.h"
#include "model/profile/profile.h"

namespace driver {

// Reads the value "Profile" of the service's Parameters key, validated; the built-in default when
// there is none. *profile is released with Release.
NTSTATUS LoadProfile(UNICODE_STRING* registryPath, vxemu::Profile** profile);

}  // namespace driver
