// Records as a person sees them.
#pragma once

#include <string>

#include "records/flatten.h"
#include "records/redaction.h"
#include "records/render.h"

namespace support {

// What stands under the key; "(none)" when the record has no such field.
inline std::string Shown(const tools::Record& record, const std::string& key) {
    tools::Redactor redactor(false);
    for (const tools::FlatField& field : tools::Flatten(record)) {
        if (field.path == key) {
            return tools::ShownText(field.field->value, redactor);
        }
    }
    return "(none)";
}

}  // namespace support
