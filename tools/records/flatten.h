// Records as rows: all values of a record and its groups side by side.
#pragma once

#include <string>
#include <vector>

#include "record.h"

namespace tools {

// One value of a record under its place: groups are joined with '_' ("firmware_version").
struct FlatField {
    std::string path;
    const Field* field;
};

// In order. Of the lists inside, those that are spread.
std::vector<FlatField> Flatten(const Record& record);

std::vector<FlatField> FlattenBesideLists(const Record& record);

}  // namespace tools
