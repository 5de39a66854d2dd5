#include "flatten.h"

#include <algorithm>

namespace tools {
namespace {

const Field& NullField() {
    static const Field kField;
    return kField;
}

void FlattenInto(const Record& record, const std::string& prefix, bool spread,
                 std::vector<FlatField>& into);

// The elements beside each other; those that are missing are null.
void FlattenList(const Field& list, const std::string& prefix, std::vector<FlatField>& into) {
    const auto keyOf = [&](const Record& element) {
        for (const Field& field : element.Fields()) {
            const auto* const key = std::get_if<std::string>(&field.value.Content());
            if (field.key == list.spreadBy && key != nullptr) {
                return *key;
            }
        }
        return std::string();
    };
    for (const Record& prototype : list.prototype) {
        const std::string key = keyOf(prototype);
        const auto found =
            std::find_if(list.records.begin(), list.records.end(),
                         [&](const Record& element) { return keyOf(element) == key; });
        std::vector<FlatField> fields;
        FlattenInto(found == list.records.end() ? prototype : *found,
                    prefix + list.key + "_" + key + "_", false, fields);
        for (FlatField& flat : fields) {
            if (flat.field->key != list.spreadBy) {
                flat.field = found == list.records.end() ? &NullField() : flat.field;
                into.push_back(std::move(flat));
            }
        }
    }
}

void FlattenInto(const Record& record, const std::string& prefix, bool spread,
                 std::vector<FlatField>& into) {
    for (const Field& field : record.Fields()) {
        if (field.kind == FieldKind::Value && !field.prototype.empty()) {
            FlattenInto(field.prototype.front(), prefix + field.key + "_", spread, into);
        } else if (field.kind == FieldKind::Value || field.kind == FieldKind::Raw) {
            into.push_back({prefix + field.key, &field});
        } else if (field.kind == FieldKind::Group) {
            FlattenInto(field.records.front(), prefix + field.key + "_", spread, into);
        } else if (spread && !field.spreadBy.empty()) {
            FlattenList(field, prefix, into);
        }
    }
}

}  // namespace

std::vector<FlatField> Flatten(const Record& record) {
    std::vector<FlatField> fields;
    FlattenInto(record, "", true, fields);
    return fields;
}

std::vector<FlatField> FlattenBesideLists(const Record& record) {
    std::vector<FlatField> fields;
    FlattenInto(record, "", false, fields);
    return fields;
}

}  // namespace tools
