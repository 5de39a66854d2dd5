// The driver services of the family, in the order in which their stores are walked. Free of
// platform headers.
#pragma once

namespace frame {

inline constexpr const char* kFamilyServices[] = {"vxfc2",  "vxfc1",  "oemfc2", "vxfcoe",
                                                  "vxnpiv", "vxfc2i", "vxfcoei"};

}  // namespace frame
