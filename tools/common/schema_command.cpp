#include "schema_command.h"

#include "console.h"
#include "invocation.h"
#include "records/fields.h"
#include "records/text.h"
#include "schemas.h"

namespace tools {
namespace {

constexpr Argument kArguments[] = {
    {.name = "NAME", .help = "which one to print, as a document's `schema` names it"},
    TextOption("--folder", "DIR", "write all of them to files below this folder"),
};

struct Row {
    Schema schema;
    std::string text;  // when it is to be printed
    std::string file;  // where it was written
};

const Fields<Row> kRowFields = {
    {"name", "", "NAME", kText, [](const Row& row) { return row.schema.name; }},
    {"title", "", "TITLE", kText, [](const Row& row) { return row.schema.title; }},
    {"file", "", "", kText.OrAbsent(), &Row::file, "with --folder"},
    FieldRow<Row>::Raw("text", kText.OrAbsent(), &Row::text, "the schema, with NAME"),
};

using Rows = std::vector<Row>;

const Fields<Rows>& ResultFields(ListLayout layout) {
    const auto make = [](ListLayout schemas) {
        return Fields<Rows>{
            {"schemas", "Schemas", kRowFields, [](const Rows& rows) { return rows; }, schemas},
        };
    };
    static const Fields<Rows> kTable = make(ListLayout::Table);
    static const Fields<Rows> kSections = make(ListLayout::Sections);
    return layout == ListLayout::Table ? kTable : kSections;
}

void Save(Invocation& invocation, const std::string& folder, Row& row) {
    row.file = folder + "/" + row.schema.Path();
    uint32_t error = console::MakeFolder(row.file.substr(0, row.file.rfind('/')));
    Output output;
    if (error == 0) {
        error = output.Open(row.file);
    }
    if (error != 0) {
        invocation.Fail(error, row.file + " cannot be written");
    }
    if (!output.Close(row.schema.Text())) {
        invocation.Fail(ExitCode::Failed, row.file + " cannot be written");
    }
}

}  // namespace

std::span<const Argument> SchemaArguments() {
    return kArguments;
}

Shape SchemaShape() {
    return ResultFields(ListLayout::Table).ShapeOfAll();
}

ExitCode RunSchema(Invocation& invocation) {
    const std::string name = invocation.Given().Text("NAME");
    const std::string folder = invocation.Given().Text("folder");
    if (!name.empty() && !folder.empty()) {
        invocation.Fail(ExitCode::Usage, "NAME and --folder exclude each other",
                        "--folder writes all schemas");
    }
    std::vector<std::string> missing;
    Rows rows;
    for (Schema& schema : SchemasOf(invocation.OwnTool(), &missing)) {
        if (name.empty() || EqualIgnoringCase(name, schema.name)) {
            rows.push_back({std::move(schema), {}, {}});
        }
    }
    if (rows.empty()) {
        invocation.Fail(ExitCode::NotFound, "no schema \"" + name + "\"", "`schema` lists them");
    }
    for (Row& row : rows) {
        if (!folder.empty()) {
            Save(invocation, folder, row);
        } else if (!name.empty()) {
            row.text = row.schema.Text();
        }
    }
    if (name.empty() && !missing.empty()) {
        invocation.Note(std::to_string(missing.size()) + " results are not described yet");
        for (const std::string& one : missing) {
            invocation.Detail("not described yet", one);
        }
    }
    invocation.Result() =
        ResultFields(name.empty() ? ListLayout::Table : ListLayout::Sections).Make(rows);
    return ExitCode::Done;
}

}  // namespace tools
