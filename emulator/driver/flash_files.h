// The folder in which the flash of each adapter lasts, as a file by its serial number.
#pragma once

#include "kernel.h"
#include "model/storage/host_files.h"

namespace driver {

class FlashFiles {
  public:
    // Opens the folder that the control tool has named in the service's registry key; without it
    // nothing lasts. To be called when the driver starts.
    void Open(UNICODE_STRING* registryPath);
    void Close();

    // For the model; null where nothing lasts. The object stays where it is.
    const vxemu::HostFiles* Get() const { return folder_ != nullptr ? &files_ : nullptr; }

  private:
    HANDLE folder_;
    vxemu::HostFiles files_;
};

}  // namespace driver
