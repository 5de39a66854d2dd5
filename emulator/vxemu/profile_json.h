// Profiles as JSON files: an object with the name and the adapters, each with its values and its
// ports. What is left out has the value that the chip and its driver commonly have. Free of
// platform headers.
#pragma once

#include <string>

#include "model/profile/profile.h"

namespace vxemu {

// The JSON text of a valid profile; reading it gives the same record.
std::string ProfileToJson(const Profile& profile);

// Reads a profile and validates it; false with a sentence that names the place in *error
// ("/adapters/0/ports/1/scsi_port: ..."). Also takes the document that `profile show --json`
// prints.
bool ProfileFromJson(const std::string& text, Profile* profile, std::string* error);

}  // namespace vxemu
