// The NAME=VALUE words of a command line: changes of a running profile.
#pragma once

#include <string>
#include <vector>

#include "common/fields.h"
#include "common/invocation.h"
#include "model/control.h"
#include "model/profile/profile_fields.h"

namespace vxemu {

struct Assignment {
    FieldChange change;
    const Field* field;
};

// The argument "ASSIGNMENT". Ends the command with a message when one is wrong.
std::vector<Assignment> RequireAssignments(tools::Invocation& invocation, FieldScope scope);

// What was assigned, in the command's result.
void AddAssignment(const Assignment& assignment, tools::Record& result);

// The shape of such a result: what may be assigned, behind these fields.
tools::Shape WithAssignments(tools::Shape shape, FieldScope scope);

}  // namespace vxemu
