// The NVRAM variables in the order of their indexes.
#include <iterator>

#include "flash/nvram_variables.h"

namespace flash {
namespace {

constexpr uint16_t kNone = 0;
constexpr uint16_t kAll = kFamily1 | kFamily2 | kFamily9;

// Two names stand for two fields each ("receive out of order dataData Rate", "enable alt boot
// deviceenable boot order list"), and the family has none, so that later names are not those of the
// field beside them: intended, files written with them must keep their meaning.
// clang-format off
constexpr Variable kTable[] = {
    {"id",                                            "Adapter ID",                                  0,  0, 32, kAll,                         0,  0, 32},
    {"version",                                       "Adapter Version",                             2,  0,  8, kAll,                         4,  0,  8},
    {"version",                                       "Firmare Version",                             2,  8,  8, kAll,                         4,  8,  8},
    {"enable hard loop ID",                           "Enable Hard Loop ID",                         3,  0,  1, kNone,                        4, 16,  1},
    {"enable fairness",                               "Enable Fairness",                             3,  1,  1, kNone,                        4, 17,  1},
    {"enable full duplex",                            "Enable Full Duplex",                          3,  2,  1, kNone,                        4, 18,  1},
    {"enable fast posting",                           "Enable Fast Posting",                         3,  3,  1, kNone,                        4, 19,  1},
    {"enable target mode",                            "Enable Target Mode",                          3,  4,  1, kNone,                        4, 20,  1},
    {"disable initiator mode",                        "Disable Initiator Mode",                      3,  5,  1, kNone,                        4, 21,  1},
    {"Enable ADISC",                                  "Enable ADISC",                                3,  6,  1, kNone,                        4, 22,  1},
    {"Target Inquiry Data",                           "Enable Target Inquiry Data",                  3,  7,  1, kNone,                        4, 23,  1},
    {"Enable PDBC Notify",                            "Enable PDBC Notify",                          3,  8,  1, kNone,                        4, 24,  1},
    {"Non participating LIP",                         "Non-Participating LIP",                       3,  9,  1, kNone,                        4, 25,  1},
    {"Descending Search LoopID",                      "Descending Search Loop ID",                   3, 10,  1, kNone,                        4, 26,  1},
    {"Acquire LoopID in LIPA",                        "Acquire Loop ID in LIPA",                     3, 11,  1, kNone,                        4, 27,  1},
    {"Stop PortQ on FullStatus",                      "Stop Port Queue on Full Status",              3, 12,  1, kNone,                        4, 28,  1},
    {"Full Login After LIP",                          "Full Login After LIP",                        3, 13,  1, kNone,                        4, 29,  1},
    {"Node Name option",                              "Node Name Option",                            3, 14,  1, kNone,                        4, 30,  1},
    {"Ext IFWCB enable bit",                          "Extended Control Block Enable",               3, 15,  1, kNone,                        4, 31,  1},
    {"frame payload size",                            "Frame Payload Size",                          4,  0, 16, kNone,                        8,  0, 16},
    {"max iocb allocation",                           "Maximum IOCB Allocation",                     5,  0, 16, kNone,                        8, 16, 16},
    {"execution throttle",                            "Execution Throttle",                          6,  0, 16, kNone,                       12,  0, 16},
    {"retry count",                                   "Retry Count",                                 7,  0,  8, kNone,                kNotThere,  0,  0},
    {"retry delay",                                   "Retry Delay",                                 7,  8,  8, kNone,                kNotThere,  0,  0},
    {"port name 0",                                   "Port Name Byte 0",                            8,  0,  8, kFamily1 | kFamily9,         16,  0,  8},
    {"port name 1",                                   "Port Name Byte 1",                            8,  8,  8, kFamily1 | kFamily9,         16,  8,  8},
    {"port name 2",                                   "Port Name Byte 2",                            9,  0,  8, kFamily1 | kFamily9,         16, 16,  8},
    {"port name 3",                                   "Port Name Byte 3",                            9,  8,  8, kFamily1 | kFamily9,         16, 24,  8},
    {"port name 4",                                   "Port Name Byte 4",                           10,  0,  8, kFamily1 | kFamily9,         20,  0,  8},
    {"port name 5",                                   "Port Name Byte 5",                           10,  8,  8, kFamily1 | kFamily9,         20,  8,  8},
    {"port name 6",                                   "Port Name Byte 6",                           11,  0,  8, kFamily1 | kFamily9,         20, 16,  8},
    {"port name 7",                                   "Port Name Byte 7",                           11,  8,  8, kFamily1 | kFamily9,         20, 24,  8},
    {"adapter hard loop ID",                          "Adapter Hard Loop ID",                       12,  0,  8, kNone,                       24,  0,  8},
    {"inquiry data",                                  "Inquiry Data",                               12,  8,  8, kNone,                kNotThere,  0,  0},
    {"login timeout",                                 "Login Timeout",                              13,  0,  8, kNone,                       24,  8,  8},
    {"node name 0",                                   "Node Name Byte 0",                           14,  0,  8, kFamily1 | kFamily9,         28,  0,  8},
    {"node name 1",                                   "Node Name Byte 1",                           14,  8,  8, kFamily1 | kFamily9,         28,  8,  8},
    {"node name 2",                                   "Node Name Byte 2",                           15,  0,  8, kFamily1 | kFamily9,         28, 16,  8},
    {"node name 3",                                   "Node Name Byte 3",                           15,  8,  8, kFamily1 | kFamily9,         28, 24,  8},
    {"node name 4",                                   "Node Name Byte 4",                           16,  0,  8, kFamily1 | kFamily9,         32,  0,  8},
    {"node name 5",                                   "Node Name Byte 5",                           16,  8,  8, kFamily1 | kFamily9,         32,  8,  8},
    {"node name 6",                                   "Node Name Byte 6",                           17,  0,  8, kFamily1 | kFamily9,         32, 16,  8},
    {"node name 7",                                   "Node Name Byte 7",                           17,  8,  8, kFamily1 | kFamily9,         32, 24,  8},
    {"Timer Operation Mode",                          "Timer Operation Mode",                       18,  0,  4, kNone,                       36,  0,  4},
    {"Init Config Mode",                              "Initial Configuration Mode",                 18,  4,  3, kNone,                       36,  4,  3},
    {"Enable Non part on LIHA failure",               "Enable Non-Participating on LIHA Failure",   18,  7,  1, kNone,                       36,  7,  1},
    {"Enable Class 2",                                "Enable Class 2",                             18,  8,  1, kNone,                       36,  8,  1},
    {"Enable Ack0",                                   "Enable ACK0",                                18,  9,  1, kNone,                       36,  9,  1},
    {"Enable FC Tape",                                "Enable FC Tape",                             18, 10,  1, kNone,                       36, 10,  1},
    {"Enable FC Confirm",                             "Enable FC Confirm",                          18, 11,  1, kNone,                       36, 11,  1},
    {"Enable Queueing",                               "Enable Queueing",                            18, 12,  1, kNone,                       36, 12,  1},
    {"No Logo On Link Down",                          "No Logout On Link Down",                     18, 13,  1, kNone,                       36, 13,  1},
    {"Response Accumulation Timer",                   "Response Accumulation Timer",                19,  0,  8, kNone,                       36, 16,  8},
    {"Interrupt Delay Timer",                         "Interrupt Delay Timer",                      19,  8,  8, kNone,                       36, 24,  8},
    {"enable read xfr rdy",                           "Enable Read Transfer Ready",                 20,  0,  1, kNone,                       40,  0,  1},
    {"FCP Rsp Payload",                               "FCP Response Payload",                       20,  1,  1, kNone,                       40,  1,  1},
    {"receive out of order dataData Rate",            "Receive Out of Order Data",                  20,  2,  1, kNone,                       40,  2,  1},
    {"disable BIOS",                                  "Data Rate",                                  20,  3,  3, kNone,                       40,  3,  3},
    {"disable LUNs",                                  "Disable BIOS",                               20,  6,  1, kNone,                       40,  6,  1},
    {"enable selectable boot",                        "Disable LUNs",                               20,  7,  1, kNone,                       40,  7,  1},
    {"disable RISC code load",                        "Enable Selectable Boot",                     20,  8,  1, kNone,                       40,  8,  1},
    {"set cache line size 1",                         "Disable RISC Code Load",                     20,  9,  1, kNone,                kNotThere,  0,  0},
    {"PCI Parity Disable",                            "Set Cache Line Size 1",                      20, 10,  1, kFamily2,             kNotThere,  0,  0},
    {"enable extended logging",                       "PCI Parity Disable",                         20, 11,  1, kFamily2,             kNotThere,  0,  0},
    {"enable 64bit addressing",                       "Enable Extended Logging",                    20, 12,  1, kNone,                       40,  9,  1},
    {"enable LIP reset",                              "Enable 64-bit Addressing",                   20, 13,  1, kFamily2,             kNotThere,  0,  0},
    {"enable LIP full login",                         "Enable LIP Reset",                           20, 14,  1, kNone,                       40, 10,  1},
    {"enable target reset",                           "Enable LIP Full Login",                      20, 15,  1, kNone,                       40, 11,  1},
    {"enable database storage",                       "Enable Target Reset",                        21,  0,  1, kNone,                       40, 12,  1},
    {"enable cache flush read",                       "Enable Database Storage",                    21,  1,  1, kNone,                       40, 13,  1},
    {"enable database load",                          "Enable Cache Flush Read",                    21,  2,  1, kNone,                kNotThere,  0,  0},
    {"boot node name 0",                              "Enable Database Load",                       21,  3,  1, kNone,                       40, 14,  1},
    {"boot node name 1",                              "Boot Node Name Byte 0",                      22,  0,  8, kNone,                       44,  0,  8},
    {"boot node name 2",                              "Boot Node Name Byte 1",                      22,  8,  8, kNone,                       44,  8,  8},
    {"boot node name 3",                              "Boot Node Name Byte 2",                      23,  0,  8, kNone,                       44, 16,  8},
    {"boot node name 4",                              "Boot Node Name Byte 3",                      23,  8,  8, kNone,                       44, 24,  8},
    {"boot node name 5",                              "Boot Node Name Byte 4",                      24,  0,  8, kNone,                       48,  0,  8},
    {"boot node name 6",                              "Boot Node Name Byte 5",                      24,  8,  8, kNone,                       48,  8,  8},
    {"boot node name 7",                              "Boot Node Name Byte 6",                      25,  0,  8, kNone,                       48, 16,  8},
    {"boot LUN number",                               "Boot Node Name Byte 7",                      25,  8,  8, kNone,                       48, 24,  8},
    {"reset delay",                                   "Boot LUN Number",                            26,  0, 16, kNone,                       52,  0, 16},
    {"port down retry count",                         "Reset Delay",                                27,  0,  8, kNone,                       52, 16,  8},
    {"maximum LUNs per target",                       "Port Down Retry Count",                      27,  8,  8, kNone,                       52, 24,  8},
    {"fcode boot port name 0",                        "Maximum LUNs per Target",                    28,  0, 16, kNone,                       56,  0, 16},
    {"fcode boot port name 1",                        "FCode Boot Port Name Byte 0",                29,  0,  8, kNone,                       60,  0,  8},
    {"fcode boot port name 2",                        "FCode Boot Port Name Byte 1",                29,  8,  8, kNone,                       60,  8,  8},
    {"fcode boot port name 3",                        "FCode Boot Port Name Byte 2",                30,  0,  8, kNone,                       60, 16,  8},
    {"fcode boot port name 4",                        "FCode Boot Port Name Byte 3",                30,  8,  8, kNone,                       60, 24,  8},
    {"fcode boot port name 5",                        "FCode Boot Port Name Byte 4",                31,  0,  8, kNone,                       64,  0,  8},
    {"fcode boot port name 6",                        "FCode Boot Port Name Byte 5",                31,  8,  8, kNone,                       64,  8,  8},
    {"fcode boot port name 7",                        "FCode Boot Port Name Byte 6",                32,  0,  8, kNone,                       64, 16,  8},
    {"selective login",                               "FCode Boot Port Name Byte 7",                32,  8,  8, kNone,                       64, 24,  8},
    {"enable alt boot deviceenable boot order list",  "Selective Login",                            33,  0,  1, kNone,                       68,  0,  1},
    {"enable selective lun",                          "Enable Alternate Boot Device",               33,  1,  1, kNone,                       68,  1,  1},
    {"enable force world wide login",                 "Enable Boot Order List",                     33,  2,  1, kNone,                       68,  2,  1},
    {"console out disable",                           "Enable Selective LUN",                       33,  3,  1, kNone,                       68,  3,  1},
    {"UEFI BOFM",                                     "Enable Force World Wide Login",              33,  4,  1, kNone,                       68,  4,  1},
    {"ActiveBofmTarget0",                             "Console Output Disable",                     33,  5,  1, kNone,                       68,  5,  1},
    {"ActiveBofmTarget1",                             "UEFI BOFM",                                  33,  6,  1, kNone,                       68,  6,  1},
    {"BOFM Boot Target",                              "Active BOFM Target 0",                       33,  7,  1, kNone,                       68,  7,  1},
    {"Port Error",                                    "Active BOFM Target 1",                       33,  8,  1, kNone,                       68,  8,  1},
    {"NVME Enable",                                   "BOFM Boot Target",                           33,  9,  2, kNone,                       68,  9,  2},
    {"link down timeout",                             "Port Error",                                 33, 11,  1, kNone,                       68, 11,  1},
    {"alt1 boot port name 0",                         "NVMe Enable",                                33, 12,  1, kNone,                       68, 12,  1},
    {"alt1 boot port name 1",                         "Link Down Timeout",                          34,  0,  8, kNone,                       68, 16,  8},
    {"alt1 boot port name 2",                         "Alternate 1 Boot Port Name Byte 0",          35,  0,  8, kNone,                       72,  0,  8},
    {"alt1 boot port name 3",                         "Alternate 1 Boot Port Name Byte 1",          35,  8,  8, kNone,                       72,  8,  8},
    {"alt1 boot port name 4",                         "Alternate 1 Boot Port Name Byte 2",          36,  0,  8, kNone,                       72, 16,  8},
    {"alt1 boot port name 5",                         "Alternate 1 Boot Port Name Byte 3",          36,  8,  8, kNone,                       72, 24,  8},
    {"alt1 boot port name 6",                         "Alternate 1 Boot Port Name Byte 4",          37,  0,  8, kNone,                       76,  0,  8},
    {"alt1 boot port name 7",                         "Alternate 1 Boot Port Name Byte 5",          37,  8,  8, kNone,                       76,  8,  8},
    {"alt1 boot LUN number",                          "Alternate 1 Boot Port Name Byte 6",          38,  0,  8, kNone,                       76, 16,  8},
    {"alt2 boot port name 0",                         "Alternate 1 Boot Port Name Byte 7",          38,  8,  8, kNone,                       76, 24,  8},
    {"alt2 boot port name 1",                         "Alternate 1 Boot LUN Number",                39,  0, 16, kNone,                       80,  0, 16},
    {"alt2 boot port name 2",                         "Alternate 2 Boot Port Name Byte 0",          40,  0,  8, kNone,                       84,  0,  8},
    {"alt2 boot port name 3",                         "Alternate 2 Boot Port Name Byte 1",          40,  8,  8, kNone,                       84,  8,  8},
    {"alt2 boot port name 4",                         "Alternate 2 Boot Port Name Byte 2",          41,  0,  8, kNone,                       84, 16,  8},
    {"alt2 boot port name 5",                         "Alternate 2 Boot Port Name Byte 3",          41,  8,  8, kNone,                       84, 24,  8},
    {"alt2 boot port name 6",                         "Alternate 2 Boot Port Name Byte 4",          42,  0,  8, kNone,                       88,  0,  8},
    {"alt2 boot port name 7",                         "Alternate 2 Boot Port Name Byte 5",          42,  8,  8, kNone,                       88,  8,  8},
    {"alt2 boot LUN number",                          "Alternate 2 Boot Port Name Byte 6",          43,  0,  8, kNone,                       88, 16,  8},
    {"alt3 boot port name 0",                         "Alternate 2 Boot Port Name Byte 7",          43,  8,  8, kNone,                       88, 24,  8},
    {"alt3 boot port name 1",                         "Alternate 2 Boot LUN Number",                44,  0, 16, kNone,                       92,  0, 16},
    {"alt3 boot port name 2",                         "Alternate 3 Boot Port Name Byte 0",          45,  0,  8, kNone,                       96,  0,  8},
    {"alt3 boot port name 3",                         "Alternate 3 Boot Port Name Byte 1",          45,  8,  8, kNone,                       96,  8,  8},
    {"alt3 boot port name 4",                         "Alternate 3 Boot Port Name Byte 2",          46,  0,  8, kNone,                       96, 16,  8},
    {"alt3 boot port name 5",                         "Alternate 3 Boot Port Name Byte 3",          46,  8,  8, kNone,                       96, 24,  8},
    {"alt3 boot port name 6",                         "Alternate 3 Boot Port Name Byte 4",          47,  0,  8, kNone,                      100,  0,  8},
    {"alt3 boot port name 7",                         "Adapter Family",                            126,  0,  8, kAll,                 kNotThere,  0,  0},
    {"alt3 boot LUN number",                          "Alternate 3 Boot Port Name Byte 5",          47,  8,  8, kNone,                      100,  8,  8},
    {"subsystem vendor ID",                           "Alternate 3 Boot Port Name Byte 6",          48,  0,  8, kNone,                      100, 16,  8},
    {"subsystem device ID",                           "Alternate 3 Boot Port Name Byte 7",          48,  8,  8, kNone,                      100, 24,  8},
    {"subsystem vendor ID",                           "Alternate 3 Boot LUN Number",                49,  0, 16, kNone,                      104,  0, 16},
    {"subsystem device ID",                           "Subsystem Vendor ID",                        50,  0, 16, kAll,                       104, 16, 16},
    {"checksum",                                      "Subsystem Device ID",                        51,  0, 16, kAll,                       108,  0, 16},
    {nullptr,                                         "Second Subsystem Vendor ID",                 52,  0, 16, kAll,                 kNotThere,  0,  0},
    {nullptr,                                         "Second Subsystem Device ID",                 53,  0, 16, kAll,                 kNotThere,  0,  0},
    {nullptr,                                         "Checksum",                                  127,  8,  8, kAll,                       508,  0, 32},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
    {nullptr,                                         "Reserved",                                    0,  0,  0, kNone,                kNotThere,  0,  0},
};
// clang-format on
static_assert(std::size(kTable) == kVariables);

// True when every field lies within its word and its block, and none over another.
constexpr bool IsConsistent() {
    bool classic[kClassicBlock * 8] = {};
    bool extended[kExtendedBlock * 8] = {};
    for (const Variable& variable : kTable) {
        const uint32_t wordBits = variable.width > 16 ? 32 : 16;
        if (variable.shift + variable.width > wordBits) {
            return false;
        }
        for (uint32_t i = 0; i < variable.width; ++i) {
            const uint32_t bit = variable.word * 16u + variable.shift + i;
            if (bit >= std::size(classic) || classic[bit]) {
                return false;
            }
            classic[bit] = true;
        }
        if (variable.extendedOffset == kNotThere) {
            continue;
        }
        if (variable.extendedOffset % 4 != 0 || variable.extendedWidth == 0 ||
            variable.extendedShift + variable.extendedWidth > 32) {
            return false;
        }
        for (uint32_t i = 0; i < variable.extendedWidth; ++i) {
            const uint32_t bit = variable.extendedOffset * 8 + variable.extendedShift + i;
            if (bit >= std::size(extended) || extended[bit]) {
                return false;
            }
            extended[bit] = true;
        }
    }
    return true;
}
static_assert(IsConsistent());
static_assert(kTable[kSignatureVariable].word == 0 && kTable[kSignatureVariable].width == 32 &&
              kTable[kSignatureVariable].extendedOffset == 0);
static_assert(kTable[137].extendedOffset == kExtendedBlock - 4);  // the checksum is the last word

}  // namespace

const Variable (&kVariableTable)[kVariables] = kTable;

}  // namespace flash
