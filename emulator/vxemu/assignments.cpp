#include "assignments.h"

#include <cstring>

#include "field_text.h"
#include "model/bytes/bytes.h"

namespace vxemu {
namespace {

// One NAME=VALUE of the command line.
Assignment RequireAssignment(Invocation& invocation, FieldScope scope, const std::string& text) {
    const size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    const Field* field = FindField(scope, name.c_str(), name.size() + 1);
    if (equals == std::string::npos || field == nullptr || !field->settable) {
        std::string names;
        for (const Field& known : ProfileFields()) {
            if (known.scope == scope && known.settable) {
                names += (names.empty() ? "" : ", ") + std::string(known.name);
            }
        }
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not NAME=VALUE of a known name",
                        "names are " + names);
    }
    Assignment assignment = {{{}, field->size, {}}, field};
    static_assert(sizeof assignment.change.value >= sizeof(AdapterProfile::manufacturer));
    static_assert(sizeof assignment.change.value >= sizeof(TargetProfile::symbolicName));
    CopyText(assignment.change.name, name.c_str());
    std::string wanted;
    if (!ParseField(*field, text.substr(equals + 1), assignment.change.value, &wanted)) {
        invocation.Fail(ExitCode::Usage, name + " must be " + wanted);
    }
    return assignment;
}

}  // namespace

std::vector<Assignment> RequireAssignments(Invocation& invocation, FieldScope scope) {
    std::vector<Assignment> assignments;
    for (const std::string& text : invocation.Given().All("ASSIGNMENT")) {
        assignments.push_back(RequireAssignment(invocation, scope, text));
    }
    return assignments;
}

void AddAssignment(const Assignment& assignment, Record& result) {
    result.Add(assignment.field->name, assignment.field->name,
               Value::Text(FormatField(*assignment.field, assignment.change.value)));
}

Shape WithAssignments(Shape shape, FieldScope scope) {
    for (const Field& field : ProfileFields()) {
        if (field.scope == scope && field.settable) {
            shape.push_back({.key = field.name, .type = kText.OrAbsent()});
        }
    }
    return shape;
}

}  // namespace vxemu
