// The NAME=VALUE words of a command line: changes of a running profile.
#pragma once

#include "model/control.h"
#include "model/profile/profile_fields.h"
#include "vocabulary.h"

namespace vxemu {

struct Assignment {
    FieldChange change;
    const Field* field;
};

// The argument "ASSIGNMENT". Ends the command with a message when one is wrong.
std::vector<Assignment> RequireAssignments(Invocation& invocation, FieldScope scope);

// What was assigned, in the command's result.
void AddAssignment(const Assignment& assignment, Record& result);

// The shape of such a result: what may be assigned, behind these fields.
Shape WithAssignments(Shape shape, FieldScope scope);

}  // namespace vxemu
