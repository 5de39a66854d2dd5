// The driver services of the family, in the order in which their stores are walked.
#pragma once

namespace persist {

inline constexpr const char* kServices[] = {"vxfc2",  "vxfc1",  "oemfc2", "vxfcoe",
                                            "vxnpiv", "vxfc2i", "vxfcoei"};

// The two keys of the value-name layout. Readers read the first; writers write both, in this order.
inline constexpr char kDeviceZero[] = "Device0";
inline constexpr char kDevice[] = "Device";

}  // namespace persist
