// profile list, show, validate.
#include <cstring>
#include <memory>

#include "commands.h"
#include "field_text.h"
#include "profile_json.h"
#include "running_driver.h"

namespace vxemu {
namespace {

using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Value;

Record SummaryRow(const Profile& profile, const char* description) {
    Record row;
    row.Add("name", "Name", Value::Text(profile.name), "NAME");
    row.Add("adapters", "Adapters", Value::Number(profile.adapterCount), "ADAPTERS");
    row.Add("ports", "Ports", Value::Number(profile.portCount), "PORTS");
    row.Add("description", "Description", Value::TextOrNull(description), "DESCRIPTION");
    return row;
}

Value FieldValue(const Field& field, const uint8_t* bytes) {
    if (field.kind == FieldKind::Number) {
        return Value::Number(FieldNumber(field, bytes));
    }
    if (field.kind == FieldKind::Flag) {
        return Value::Flag(FieldNumber(field, bytes) != 0);
    }
    return Value::Text(FormatField(field, bytes));
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

// The same values, under the same names, as in a profile file.
void AddProfile(const Profile& profile, Record& result) {
    result.Add("name", "Name", Value::Text(profile.name));
    std::vector<Record> adapters;
    for (uint32_t index = 0; index < profile.adapterCount; ++index) {
        Record adapter = FieldsOf(FieldScope::Adapter, &profile.adapters[index]);
        std::vector<Record> ports;
        for (uint32_t at = 0; at < profile.portCount; ++at) {
            if (profile.ports[at].adapter == index) {
                ports.push_back(FieldsOf(FieldScope::Port, &profile.ports[at]));
            }
        }
        adapter.AddList("ports", "Ports", ListLayout::Sections,
                        FieldsOf(FieldScope::Port, &profile.ports[0]), "", std::move(ports));
        adapters.push_back(std::move(adapter));
    }
    result.AddList("adapters", "Adapters", ListLayout::Sections,
                   FieldsOf(FieldScope::Adapter, &profile.adapters[0]), "", std::move(adapters));
    std::vector<Record> targets;
    for (uint32_t index = 0; index < profile.targetCount; ++index) {
        Record target = FieldsOf(FieldScope::Target, &profile.targets[index]);
        std::vector<Record> luns;
        for (uint32_t at = 0; at < profile.lunCount; ++at) {
            if (profile.luns[at].target == index) {
                luns.push_back(FieldsOf(FieldScope::Lun, &profile.luns[at]));
            }
        }
        target.AddList("luns", "LUNs", ListLayout::Sections,
                       FieldsOf(FieldScope::Lun, &profile.luns[0]), "", std::move(luns));
        targets.push_back(std::move(target));
    }
    result.AddList("targets", "Targets", ListLayout::Sections,
                   FieldsOf(FieldScope::Target, &profile.targets[0]), "", std::move(targets));
}

}  // namespace

ExitCode RunProfileList(tools::Invocation& invocation) {
    const auto profile = std::make_unique<Profile>();
    std::vector<Record> rows;
    for (const BuiltInProfile& row : kBuiltInProfileTable) {
        row.fill(*profile);
        rows.push_back(SummaryRow(*profile, row.description));
    }
    invocation.Result().AddList("profiles", "Profiles", ListLayout::Table, SummaryRow({}, ""), "",
                                std::move(rows));
    return ExitCode::Done;
}

ExitCode RunProfileShow(tools::Invocation& invocation) {
    auto profile = std::make_unique<Profile>();
    const std::string name = invocation.Given().Text("PROFILE");
    if (name.empty()) {
        profile = RunningDriver(invocation, false).RunningProfile();
    } else {
        RequireProfile(invocation, name, profile.get());
    }
    if (invocation.Mode() == tools::OutputMode::Text) {
        invocation.Result().AddRaw("profile", ProfileToJson(*profile));
    } else {
        AddProfile(*profile, invocation.Result());
    }
    return ExitCode::Done;
}

ExitCode RunProfileValidate(tools::Invocation& invocation) {
    const auto profile = std::make_unique<Profile>();
    RequireProfileFile(invocation, invocation.Given().Text("FILE"), profile.get());
    Record& result = invocation.Result();
    result.Add("valid", "Valid", Value::Flag(true));
    result.Add("name", "Name", Value::Text(profile->name));
    result.Add("adapters", "Adapters", Value::Number(profile->adapterCount));
    result.Add("ports", "Ports", Value::Number(profile->portCount));
    return ExitCode::Done;
}

}  // namespace vxemu
