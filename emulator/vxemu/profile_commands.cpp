// profile list, show, validate.
#include <cstring>
#include <memory>

#include "commands.h"
#include "field_text.h"
#include "profile_json.h"
#include "running_driver.h"

namespace vxemu {
namespace {

struct Summary {
    const Profile* profile;
    const char* description;
};

template <auto Member>
auto Of(const Summary& summary) {
    return (*summary.profile).*Member;
}

const Fields<Summary> kSummaryFields = {
    {"name", "Name", "NAME", kText, [](const Summary& s) { return std::string(s.profile->name); }},
    {"adapters", "Adapters", "ADAPTERS", kInteger, Of<&Profile::adapterCount>},
    {"ports", "Ports", "PORTS", kInteger, Of<&Profile::portCount>},
    {"description", "Description", "DESCRIPTION", kText.OrNull(), &Summary::description},
};

const Fields<Profile> kValidFields = {
    {"valid", "Valid", kFlag, [](const Profile&) { return true; }},
    {"name", "Name", kText, [](const Profile& profile) { return std::string(profile.name); }},
    {"adapters", "Adapters", kInteger, &Profile::adapterCount},
    {"ports", "Ports", kInteger, &Profile::portCount},
};

FieldType TypeOf(const Field& field) {
    switch (field.kind) {
        case FieldKind::Number:
            return kInteger;
        case FieldKind::Flag:
            return kFlag;
        default:
            return kText;
    }
}

Value FieldValue(const Field& field, const uint8_t* bytes) {
    switch (TypeOf(field).base) {
        case FieldType::Base::Integer:
            return Value::Number(FieldNumber(field, bytes));
        case FieldType::Base::Flag:
            return Value::Flag(FieldNumber(field, bytes) != 0);
        default:
            return Value::Text(FormatField(field, bytes));
    }
}

Shape ShapeOfScope(FieldScope scope) {
    Shape shape;
    for (const Field& field : ProfileFields()) {
        if (field.scope == scope) {
            shape.push_back({.key = field.name, .label = field.name, .type = TypeOf(field)});
        }
    }
    return shape;
}

Record FieldsOf(FieldScope scope, const void* record) {
    Record row;
    for (const Field& field : ProfileFields()) {
        if (field.scope == scope) {
            row.Add(field.name, field.name,
                    FieldValue(field, static_cast<const uint8_t*>(record) + field.offset));
        }
    }
    return row;
}

// The records of a scope, and in each the list of those that belong to it.
struct Level {
    const char* key;
    const char* label;
    FieldScope scope;
    const Level* below;
};
constexpr Level kPorts = {"ports", "Ports", FieldScope::Port, nullptr};
constexpr Level kLuns = {"luns", "LUNs", FieldScope::Lun, nullptr};
constexpr Level kTop[] = {{"adapters", "Adapters", FieldScope::Adapter, &kPorts},
                          {"targets", "Targets", FieldScope::Target, &kLuns}};

FieldShape ListShape(const Level& level) {
    Shape shape = ShapeOfScope(level.scope);
    if (level.below != nullptr) {
        shape.push_back(ListShape(*level.below));
    }
    return {.key = level.key,
            .label = level.label,
            .kind = tools::FieldKind::List,
            .children = std::move(shape),
            .layout = ListLayout::Sections};
}

void AddList(const Level& level, std::vector<Record> records, Record& result) {
    const FieldShape shape = ListShape(level);
    result.AddList(shape.key, shape.label, shape.layout, PrototypeOf(shape.children), "",
                   std::move(records));
}

// All `count` owners, each with those of the parts that name it as theirs.
template <typename Owner, typename Part>
void AddOwners(const Level& level, const Owner* owners, uint32_t count, const Part* parts,
               uint32_t partCount, uint8_t Part::*owner, Record& result) {
    std::vector<Record> records;
    for (uint32_t index = 0; index < count; ++index) {
        Record record = FieldsOf(level.scope, &owners[index]);
        std::vector<Record> below;
        for (uint32_t at = 0; at < partCount; ++at) {
            if (parts[at].*owner == index) {
                below.push_back(FieldsOf(level.below->scope, &parts[at]));
            }
        }
        AddList(*level.below, std::move(below), record);
        records.push_back(std::move(record));
    }
    AddList(level, std::move(records), result);
}

// The same values, under the same names, as in a profile file.
void AddProfile(const Profile& profile, Record& result) {
    result.Add("name", "Name", Value::Text(profile.name));
    AddOwners(kTop[0], profile.adapters, profile.adapterCount, profile.ports, profile.portCount,
              &PortProfile::adapter, result);
    AddOwners(kTop[1], profile.targets, profile.targetCount, profile.luns, profile.lunCount,
              &LunProfile::target, result);
}

ExitCode RunProfileList(Invocation& invocation) {
    const auto profile = std::make_unique<Profile>();
    std::vector<Record> rows;
    for (const BuiltInProfile& row : kBuiltInProfileTable) {
        row.fill(*profile);
        rows.push_back(kSummaryFields.Make({profile.get(), row.description}));
    }
    invocation.Result().AddList("profiles", "Profiles", ListLayout::Table,
                                kSummaryFields.Prototype(), "", std::move(rows));
    return ExitCode::Done;
}

ExitCode RunProfileShow(Invocation& invocation) {
    auto profile = std::make_unique<Profile>();
    const std::string name = invocation.Given().Text("PROFILE");
    if (name.empty()) {
        profile = RunningDriver(invocation, false).RunningProfile();
    } else {
        RequireProfile(invocation, name, profile.get());
    }
    if (invocation.Mode() == OutputMode::Text) {
        invocation.Result().AddRaw("profile", ProfileToJson(*profile));
    } else {
        AddProfile(*profile, invocation.Result());
    }
    return ExitCode::Done;
}

ExitCode RunProfileValidate(Invocation& invocation) {
    const auto profile = std::make_unique<Profile>();
    RequireProfileFile(invocation, invocation.Given().Text("FILE"), profile.get());
    invocation.Result() = kValidFields.Make(*profile);
    return ExitCode::Done;
}

Shape ProfileListShape() {
    return {{.key = "profiles",
             .kind = tools::FieldKind::List,
             .children = kSummaryFields.ShapeOfAll()}};
}

Shape ProfileShape() {
    return {{.key = "name"}, ListShape(kTop[0]), ListShape(kTop[1])};
}

constexpr Argument kProfileShow[] = {
    {"PROFILE", ArgumentKind::Text, "", "built-in profile or JSON file; without: what runs"}};
constexpr Argument kProfileFile[] = {{.name = "FILE", .help = "JSON file", .required = true}};

}  // namespace

CommandRows ProfileCommands() {
    static const Command kCommands[] = {
        {.path = "profile list",
         .help = "built-in profiles",
         .run = RunProfileList,
         .example = "profile list",
         .result = ProfileListShape},
        {.path = "profile show",
         .help = "a profile as JSON",
         .arguments = kProfileShow,
         .run = RunProfileShow,
         .example = "profile show lab --out my.json",
         .result = ProfileShape},
        {.path = "profile validate",
         .help = "check a profile file",
         .arguments = kProfileFile,
         .run = RunProfileValidate,
         .example = "profile validate my.json",
         .result = ShapeOf<kValidFields>},
    };
    return kCommands;
}

}  // namespace vxemu
