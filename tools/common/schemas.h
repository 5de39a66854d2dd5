// The JSON Schemas of a tool's documents, made from the tables that the documents are made from.
#pragma once

#include <string>
#include <vector>

#include "command.h"

namespace tools {

struct Schema {
    std::string name;   // "vxmgr.port.list"; "envelope" is the same in every tool
    std::string title;  // which command's result it is
    Shape (*shape)();

    std::string Text() const;
    std::string Path() const;  // below a folder of schemas: "vxmgr/port/list.json"
};

// By name, the envelope first. missing: names of results whose fields are not declared in a table.
std::vector<Schema> SchemasOf(const Tool& tool, std::vector<std::string>* missing);

}  // namespace tools
