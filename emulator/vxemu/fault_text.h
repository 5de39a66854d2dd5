// Fault rules as the command line writes them. Free of platform headers.
#pragma once

#include <string>
#include <string_view>

#include "model/faults.h"

namespace vxemu {

// Sets kind, value and status of the rule from the words of --do: "busy", "hang" and "500",
// "detail" and "11:0x4005" (a bare detail below 256 is a SCSI status, any other a mailbox code). A
// kind that only one request can meet sets that as well, in a rule for any. False with a sentence
// in *error.
bool ParseFaultAction(std::string_view kind, std::string_view value, FaultRule* rule,
                      std::string* error);

// "hang 500", as it could be given again.
std::string FormatFaultAction(const FaultRule& rule);

// A command code as a number or by its name in the table of requests ("NodeProperties"); a name
// with a sub-code of its own sets that as well.
bool ParseFaultCode(std::string_view text, FaultRule* rule);

// The name of the request when only one is meant, or its code.
std::string FormatFaultCode(const FaultRule& rule);

// What --code takes beside numbers, in a sentence for help.
std::string FaultRequestNames();

// "a|b|c" of the kinds, for help.
std::string FaultKindList();

}  // namespace vxemu
