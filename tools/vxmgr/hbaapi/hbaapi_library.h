// The vendor library, loaded as the common library loads it: by its file name, with one entry
// point. And its entry in the registry, where the common library finds that name.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "hbaapi.h"

namespace vxmgr {

// The library beside this program; its path in UTF-8. Nothing when there is no such file.
std::optional<std::string> OwnLibraryFile();

class VendorLibrary {
  public:
    VendorLibrary() = default;
    ~VendorLibrary();
    VendorLibrary(const VendorLibrary&) = delete;
    VendorLibrary& operator=(const VendorLibrary&) = delete;

    // False with a sentence in *error.
    bool Load(const std::string& file, std::string* error);
    const HBA_ENTRYPOINTS& Api() const { return api_; }

  private:
    HMODULE module_ = nullptr;
    bool started_ = false;
    HBA_ENTRYPOINTS api_{};
};

inline constexpr char kRegisteredValue[] = "LibraryFile";
std::string RegistrationKey();  // for people: the whole path of the key

// All give the Windows error, 0 for success. Nothing registered is no error.
uint32_t ReadRegisteredFile(std::optional<std::string>* file);
uint32_t WriteRegisteredFile(const std::string& file);
// Takes the value away, and the key when nothing else is in it.
uint32_t RemoveRegisteredFile();

}  // namespace vxmgr
